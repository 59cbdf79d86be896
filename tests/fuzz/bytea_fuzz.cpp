/// Text forms of byte strings, through the three parsers in blocks of exactly their size,
/// against a plain reading of the same text. The first two bytes tell the room.
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <string>

#include "types/binary_text.h"
#include "zevoci/errors.h"

namespace {

void require(bool holds) {
  if (!holds) __builtin_trap();
}

OCIError *errorHandle() {
  OCIEnv *env = nullptr;
  void *errhp = nullptr;
  OCIEnvCreate(&env, OCI_DEFAULT, nullptr, nullptr, nullptr, nullptr, 0, nullptr);
  OCIHandleAlloc(env, &errhp, OCI_HTYPE_ERROR, 0, nullptr);
  return static_cast<OCIError *>(errhp);
}

bool isOctal(char c) {
  return c >= '0' && c <= '7';
}

/// The bytes of an escape form; none for a bad escape.
std::optional<std::string> unescaped(const std::string &text) {
  std::string out;
  for (std::size_t i = 0; i < text.size();) {
    if (text[i] != '\\') {
      out += text[i++];
    } else if (i + 1 < text.size() && text[i + 1] == '\\') {
      out += '\\';
      i += 2;
    } else if (i + 3 < text.size() && text[i + 1] <= '3' && isOctal(text[i + 1]) &&
               isOctal(text[i + 2]) && isOctal(text[i + 3])) {
      out += static_cast<char>(std::stoi(text.substr(i + 1, 3), nullptr, 8));
      i += 4;
    } else {
      return {};
    }
  }
  return out;
}

std::string digitsOf(const std::string &bytes) {
  std::string out;
  for (const char c : bytes) {
    out += OracleBinaryStringReps[static_cast<unsigned char>(c) >> 4];
    out += OracleBinaryStringReps[static_cast<unsigned char>(c) & 15];
  }
  return out;
}

bool isHexForm(const std::string &text) {
  return text.size() >= 2 && text[0] == '\\' && text[1] == 'x';
}

/// What a parser did.
struct Outcome {
  sword status;
  std::string out;  ///< as much as it reports
  int indicator;
};

template <class Parser>
Outcome run(OCIError *errhp, Parser &&parse, const std::string &text, sb4 room) {
  const std::unique_ptr<char[]> in(new char[text.size()]);
  std::memcpy(in.get(), text.data(), text.size());
  const std::unique_ptr<char[]> out(new char[static_cast<std::size_t>(room)]());
  sb4 length = room;
  sb2 indicator = 77;
  const sword status = parse(errhp, in.get(), static_cast<sb4>(text.size()), out.get(),
                             &length, &indicator);
  ClearErrorHandle(errhp);
  require(length >= 0 && length <= room);
  return {status, {out.get(), static_cast<std::size_t>(length)}, indicator};
}

void checkDigits(OCIError *errhp, const std::string &text, std::size_t room) {
  const Outcome got =
      run(errhp, ConvertPQBinStrToOCIBinStr, text, static_cast<sb4>(room));
  if (isHexForm(text)) {
    require(got.status == 0 && got.out == text.substr(2, room));
    return;
  }
  const auto bytes = unescaped(text);
  if (!bytes) {
    // A bad escape behind what has room is not reached.
    require(got.status == -1 || room < 2 * text.size());
    return;
  }
  const std::string digits = digitsOf(*bytes);
  if (digits.size() <= room || room % 2 != 0) {
    require(got.status == 0 && got.out == digits.substr(0, room / 2 * 2));
  } else {
    require(got.status == 1 && got.indicator < 77);
  }
}

void checkBytes(OCIError *errhp, const std::string &text, std::size_t room) {
  const Outcome got = run(errhp, ConvertStringToBinary, text, static_cast<sb4>(room));
  if (isHexForm(text)) {
    const std::size_t pairs = (text.size() - 2) / 2;
    require(got.status == (pairs > room ? 1 : 0));
    if (got.status != 0) return;
    std::string expected;
    for (std::size_t i = 0; i < pairs; ++i) {
      expected += static_cast<char>(zev::hexDigitValue(text[2 + 2 * i]) << 4 |
                                    zev::hexDigitValue(text[3 + 2 * i]));
    }
    require(got.out == expected);
    return;
  }
  const auto bytes = unescaped(text);
  if (!bytes) {
    require(got.status == -1 || room < text.size());
  } else if (bytes->size() <= room) {
    require(got.status == 0 && got.out == *bytes);
  } else {
    require(got.status == 1);
  }
}

/// The digits of raw bytes go into an array of words.
void checkWords(OCIError *errhp, const std::string &bytes, std::size_t room) {
  const std::unique_ptr<char[]> in(new char[bytes.size()]);
  std::memcpy(in.get(), bytes.data(), bytes.size());
  const std::unique_ptr<sb4[]> words(new sb4[room + 1]());
  words[0] = static_cast<sb4>(room);
  sb2 indicator = 77;
  const sword status = ConvertBinaryToString(
      errhp, in.get(), static_cast<sb4>(bytes.size()), nullptr, words.get(), &indicator);
  ClearErrorHandle(errhp);
  const std::size_t taken = std::min(bytes.size(), room / 2);
  require(status == (taken < bytes.size() ? 1 : 0));
  const std::string digits = digitsOf(bytes.substr(0, taken));
  for (std::size_t i = 0; i < digits.size(); ++i) require(words[i] == digits[i]);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  static OCIError *const errhp = errorHandle();
  if (size < 2) return 0;
  const std::size_t room = (data[0] | data[1] << 8) % 1000;
  const std::string text(reinterpret_cast<const char *>(data) + 2, size - 2);
  checkDigits(errhp, text, room);
  checkBytes(errhp, text, room);
  checkWords(errhp, text, room);
  return 0;
}
