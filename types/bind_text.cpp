/// Character data on their way to the server, as text in its encoding.
#include <string_view>

#include "core/edge_text.h"
#include "types/bind_rules.h"
#include "zevoci/errors.h"
#include "zevoci/string_value.h"

namespace zev {
namespace {

bool emptyTextIsNull(const OCIEnv *env) {
  return env && env->oracleVarchars;
}

/// Hands out `length` bytes of `text`. A NUL always stands behind them, counted or not,
/// because the server connection sends text up to its NUL.
sword sendBytes(std::string_view text, void **outBuffer, ub4 *outLength, ub4 counted) {
  auto *buffer = static_cast<char *>(std::malloc(text.size() + 1));
  if (!buffer) return -1;
  copyBytes(buffer, text.data(), text.size());
  buffer[text.size()] = '\0';
  *outBuffer = buffer;
  *outLength = counted;
  return 0;
}

sword sendTerminated(std::string_view text, void **outBuffer, ub4 *outLength) {
  return sendBytes(text, outBuffer, outLength, static_cast<ub4>(text.size()) + 1);
}

/// Drops blanks at the end, never the first byte.
std::string_view withoutTrailingBlanks(std::string_view text) {
  while (text.size() > 1 && text.back() == ' ') text.remove_suffix(1);
  return text;
}

enum class Blanks { Cut, Keep };

/// Raw characters: SQLT_CHR, SQLT_LNG and SQLT_AFC.
template <Blanks Rule>
sword bindCharacters(BIND_PARAMS) {
  clearOutputs(outBuffer, outLength, outFormat, kTextFormat);
  const OCIEnv *env = parentEnv(errhp);
  const bool emptyIsNull = Rule == Blanks::Cut || emptyTextIsNull(env);
  if (!value || (emptyIsNull && valueLength == 0)) return 0;
  if (valueLength < 0) return -1;
  const EdgeText text(env, value, static_cast<std::size_t>(valueLength));
  if (!text) return text.fail(errhp);
  return sendTerminated(
      Rule == Blanks::Cut ? withoutTrailingBlanks(text.view()) : text.view(), outBuffer,
      outLength);
}

/// Characters behind a length; limits and a VCS's 16-bit result are the member's own.
sword sendCounted(OCIError *errhp, const void *bytes, ub4 length, void **outBuffer,
                  ub4 *outLength, ub4 resultMask) {
  const EdgeText text(parentEnv(errhp), bytes, length);
  if (!text) return text.fail(errhp);
  const auto counted = static_cast<ub4>(text.view().size()) & resultMask;
  return sendTerminated(text.view().substr(0, counted), outBuffer, outLength);
}

constexpr std::size_t kLongestString = 4000;

/// The part of `text` up to its last NUL, which is not looked for at index 0; empty if
/// none.
std::string_view upToLastNul(std::string_view text) {
  std::size_t size = text.size();
  while (size > 1 && text[size - 1] != '\0') --size;
  return size > 1 ? text.substr(0, size) : std::string_view{};
}

/// SQLT_STR while empty text is null: the buffer's size tells where the text may end.
sword bindSizedString(BIND_PARAMS) {
  if (valueLength < 2 || !value) return -1;
  if (valueLength == 2 && *static_cast<const char *>(value) == '\0') return 0;
  const EdgeText text(parentEnv(errhp), value, static_cast<std::size_t>(valueLength));
  if (!text) return text.fail(errhp);
  const std::string_view string = upToLastNul(text.view());
  if (string.empty() || string.size() > kLongestString) return fail(errhp, 1480);
  return sendBytes(string, outBuffer, outLength, static_cast<ub4>(string.size()));
}

/// SQLT_STR otherwise: the text ends at its first NUL.
sword bindTerminatedString(BIND_PARAMS) {
  if (valueLength == 0) return sendTerminated({}, outBuffer, outLength);
  if (valueLength < 0 || !value) return -1;
  const std::string_view given(static_cast<const char *>(value),
                               static_cast<std::size_t>(valueLength));
  const std::size_t length = given.find('\0');
  if (length == given.npos) return fail(errhp, 1480);
  const EdgeText text(parentEnv(errhp), value, length + 1);
  if (!text) return text.fail(errhp);
  return sendBytes(text.view(), outBuffer, outLength,
                   static_cast<ub4>(text.view().size()));
}

}  // namespace
}  // namespace zev

extern "C" {

#define CHARACTER_MEMBERS(X)               \
  X(ConvertSQLT_CHRToTEXTOID, Blanks::Cut) \
  X(ConvertSQLT_LNGToTEXTOID, Blanks::Cut) \
  X(ConvertSQLT_AFCToTEXTOID, Blanks::Keep)
#define DEFINE(name, blanks)                                 \
  sword name(BIND_PARAMS) {                                  \
    return zev::bindCharacters<zev::blanks>(BIND_ARGUMENTS); \
  }
CHARACTER_MEMBERS(DEFINE)
#undef DEFINE
#undef CHARACTER_MEMBERS

sword ConvertSQLT_VCSToTEXTOID(BIND_PARAMS) {
  zev::clearOutputs(outBuffer, outLength, outFormat, zev::kTextFormat);
  if (valueLength < 2) return zev::fail(errhp, 1084);
  const auto length = zev::readNative<ub2>(value);
  if (length >= 65534 || valueLength >= 65536) return zev::fail(errhp, 1458);
  return zev::sendCounted(errhp, static_cast<const char *>(value) + 2, length, outBuffer,
                          outLength, UB2MAXVAL);
}

sword ConvertSQLT_LVCToTEXTOID(BIND_PARAMS) {
  zev::clearOutputs(outBuffer, outLength, outFormat, zev::kTextFormat);
  const auto length = zev::readNative<ub4>(value);
  if (length > 0x7FFFFFFB) return zev::fail(errhp, 1458);
  return zev::sendCounted(errhp, static_cast<const char *>(value) + 4, length, outBuffer,
                          outLength, UB4MAXVAL);
}

sword ConvertSQLT_VSTToTEXTOID(BIND_PARAMS) {
  zev::clearOutputs(outBuffer, outLength, outFormat, zev::kTextFormat);
  const auto *string = zev::readNative<const OCIString *>(value);
  if (!string || valueLength >= 65536 || string->length >= 65534) return -1;
  return zev::sendCounted(errhp, string->text, string->length, outBuffer, outLength,
                          UB4MAXVAL);
}

sword ConvertSQLT_STRToTEXTOID(BIND_PARAMS) {
  zev::clearOutputs(outBuffer, outLength, outFormat, zev::kTextFormat);
  return zev::emptyTextIsNull(zev::parentEnv(errhp))
             ? zev::bindSizedString(BIND_ARGUMENTS)
             : zev::bindTerminatedString(BIND_ARGUMENTS);
}

}  // extern "C"
