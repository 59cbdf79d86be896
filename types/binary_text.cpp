#include "types/binary_text.h"

#include <algorithm>
#include <array>
#include <bit>
#include <optional>
#include <string_view>

#include "types/fetch_rules.h"

extern "C" constexpr char OracleBinaryStringReps[16] = {
    '0', '1', '2', '3', '4', '5', '6', '7', '8', '9', 'A', 'B', 'C', 'D', 'E', 'F'};

namespace zev {
namespace {

std::size_t roomOf(const sb4 *length) {
  return static_cast<std::size_t>(std::max(*length, 0));
}

bool isHexForm(std::string_view text) {
  return text.size() >= 2 && text[0] == '\\' && text[1] == 'x';
}

/// Counts down from 0, one for each of `remaining` characters.
void countDown(sb2 *indicator, std::size_t remaining) {
  if (indicator) *indicator = static_cast<sb2>(0 - remaining);
}

bool isOctal(char c, char highest = '7') {
  return c >= '0' && c <= highest;
}

/// Takes one byte of the escape form off the front of `text`, which is not empty; none
/// for a bad escape, which stays.
std::optional<ub1> takeEscaped(std::string_view &text) {
  const auto take = [&text](int value, std::size_t width) {
    text.remove_prefix(width);
    return static_cast<ub1>(value);
  };
  if (text[0] != '\\') return take(text[0], 1);
  if (text.size() > 1 && text[1] == '\\') return take('\\', 2);
  if (text.size() > 3 && isOctal(text[1], '3') && isOctal(text[2]) && isOctal(text[3])) {
    return take((text[1] - '0') << 6 | (text[2] - '0') << 3 | (text[3] - '0'), 4);
  }
  return {};
}

/// The two hex digits of a byte.
using DigitPair = std::array<char, 2>;

constexpr auto kDigitPairs = [] {
  std::array<DigitPair, 256> pairs{};
  for (std::size_t byte = 0; byte < pairs.size(); ++byte) {
    pairs[byte] = {OracleBinaryStringReps[byte >> 4], OracleBinaryStringReps[byte & 0xF]};
  }
  return pairs;
}();

constexpr auto kDigitValues = [] {
  std::array<ub1, 256> values{};
  for (int c = 0; c < 256; ++c) {
    values[static_cast<std::size_t>(c)] = hexDigitValue(static_cast<char>(c));
  }
  return values;
}();

// A block of hex digits, and the same as pairs and as the bytes that they stand for.
using DigitBlock [[gnu::vector_size(16)]] = ub1;
using PairBlock [[gnu::vector_size(16)]] = ub2;
using ByteBlock [[gnu::vector_size(8)]] = ub1;

/// hexDigitValue of each digit: both kinds of letters differ from decimal digits by 9 in
/// the bits that count.
DigitBlock valuesOf(DigitBlock digits) {
  const auto isLetter = reinterpret_cast<DigitBlock>(digits - '0' >= 10);
  return (digits + (isLetter & 9)) & 0xF;
}

/// Decodes as many whole blocks as there are; the count of bytes.
std::size_t decodeBlocks(const char *digits, std::size_t pairs, char *out) {
  std::size_t done = 0;
  for (; pairs - done >= sizeof(ByteBlock); done += sizeof(ByteBlock)) {
    const auto block = valuesOf(readNative<DigitBlock>(digits + 2 * done));
    const auto pair = std::bit_cast<PairBlock>(block);
    writeNative(out + done, __builtin_convertvector(pair << 4 | pair >> 8, ByteBlock));
  }
  return done;
}

void decodeHex(const char *digits, std::size_t pairs, char *out) {
  const auto *in = reinterpret_cast<const ub1 *>(digits);
  for (std::size_t i = decodeBlocks(digits, pairs, out); i < pairs; ++i) {
    out[i] =
        static_cast<char>(kDigitValues[in[2 * i]] << 4 | kDigitValues[in[2 * i + 1]]);
  }
}

sword hexToBinary(OCIError *errhp, std::string_view digits, char *out, sb4 *length,
                  sb2 *indicator) {
  const std::size_t pairs = digits.size() / 2;
  const std::size_t room = roomOf(length);
  decodeHex(digits.data(), std::min(pairs, room), out);
  if (pairs > room) {
    reportMissing(indicator, pairs);
    return record(errhp, 1406, 1);
  }
  *length = static_cast<sb4>(pairs);
  return 0;
}

/// How many bytes of a binary value have room for both their digits.
std::size_t bytesWithRoom(std::string_view bytes, const sb4 *length) {
  return std::min(bytes.size(), roomOf(length) / 2);
}

/// What follows the digits of the first `taken` bytes.
sword finishBinary(OCIError *errhp, std::size_t size, std::size_t taken, sb2 *indicator) {
  if (taken == size) return 0;
  if (indicator) {
    *indicator = static_cast<sb2>(std::min<std::size_t>(2 * (size - taken), 65534));
  }
  return record(errhp, 1406, 1);
}

}  // namespace

sword binaryToTextLength(OCIError *errhp, const void *value, sb4 valueLength, sb4 *length,
                         sb2 *indicator) {
  clearIndicator(indicator);
  const std::string_view bytes = fieldText(value, valueLength);
  const std::size_t taken = bytesWithRoom(bytes, length);
  if (bytes.empty()) *length = 0;
  if (taken != 0) *length = static_cast<ub1>(kDigitPairs[static_cast<ub1>(bytes[0])][0]);
  return finishBinary(errhp, bytes.size(), taken, indicator);
}

}  // namespace zev

extern "C" {

sword ConvertPQBinStrToOCIBinStr(OCIError *errhp, const void *value, sb4 valueLength,
                                 char *out, sb4 *length, sb2 *indicator) {
  zev::clearIndicator(indicator);
  std::string_view text = zev::fieldText(value, valueLength);
  const std::size_t room = zev::roomOf(length);
  if (zev::isHexForm(text)) {
    text = text.substr(2, room);
    zev::copyBytes(out, text.data(), text.size());
    *length = static_cast<sb4>(text.size());
    return 0;
  }
  std::size_t written = 0;
  for (; !text.empty() && room - written >= 2; written += 2) {
    const auto byte = zev::takeEscaped(text);
    if (!byte) return zev::fail(errhp, 1465);
    std::memcpy(out + written, zev::kDigitPairs[*byte].data(), 2);
  }
  if (!text.empty() && written == room) {
    zev::countDown(indicator, text.size());
    return zev::record(errhp, 1406, 1);
  }
  *length = static_cast<sb4>(written);
  return 0;
}

sword ConvertBinaryToString(OCIError *errhp, const void *value, sb4 valueLength, char *,
                            sb4 *length, sb2 *indicator) {
  zev::clearIndicator(indicator);
  const std::string_view bytes = zev::fieldText(value, valueLength);
  const std::size_t taken = zev::bytesWithRoom(bytes, length);
  if (bytes.empty() && *length > 0) *length = 0;
  sb4 *word = length;
  for (const char byte : bytes.substr(0, taken)) {
    for (const char digit : zev::kDigitPairs[static_cast<ub1>(byte)])
      *word++ = static_cast<ub1>(digit);
  }
  return zev::finishBinary(errhp, bytes.size(), taken, indicator);
}

sword ConvertStringToBinary(OCIError *errhp, const void *given, sb4 textLength, char *out,
                            sb4 *length, sb2 *indicator) {
  zev::clearIndicator(indicator);
  std::string_view text = zev::fieldText(given, textLength);
  if (zev::isHexForm(text)) {
    return zev::hexToBinary(errhp, text.substr(2), out, length, indicator);
  }
  const std::size_t room = zev::roomOf(length);
  std::size_t written = 0;
  for (; !text.empty() && written < room; ++written) {
    const auto byte = zev::takeEscaped(text);
    if (!byte) return zev::fail(errhp, 1465);
    out[written] = static_cast<char>(*byte);
  }
  if (!text.empty()) {
    zev::countDown(indicator, text.size());
    return zev::record(errhp, 1406, 1);
  }
  *length = static_cast<sb4>(written);
  return 0;
}

}  // extern "C"
