/// Any field into any target through the dispatcher. The value and the target are blocks
/// of exactly their size, so that the sanitizer sees what goes beyond them.
#include <cstring>
#include <memory>
#include <string>

#include "types/server_types.h"
#include "zevoci/conversion.h"
#include "zevoci/errors.h"

namespace {

/// How a field is fetched, from the first bytes of an input.
struct Fetch {
  std::uint8_t oid, dty, format, flags;
  std::uint16_t cap;
};
enum Flag : std::uint8_t {
  kIndicator = 1,
  kReturnCode = 2,
  kEmptyIsNull = 4,
  kUtf16 = 8
};

constexpr Oid kOids[] = {17,   18,   20,   21,   23,    25,    26,
                         700,  701,  705,  1042, 1043,  1082,  1114,
                         1184, 1186, 1700, 1790, 12487, 12502, 99999};
/// External types whose target is plain bytes.
constexpr ub2 kTypes[] = {1,  2,  3,  4,  5,  6,  8,  9,  12, 15,
                          21, 22, 23, 24, 68, 94, 95, 96, 97, 13};

OCIError *errorHandle(ub4 mode) {
  OCIEnv *env = nullptr;
  void *errhp = nullptr;
  OCIEnvCreate(&env, mode, nullptr, nullptr, nullptr, nullptr, 0, nullptr);
  OCIHandleAlloc(env, &errhp, OCI_HTYPE_ERROR, 0, nullptr);
  return static_cast<OCIError *>(errhp);
}

/// Bytes that members write behind the target by design: the NUL of a text without room.
std::size_t slackOf(Oid oid, ub2 dty) {
  const bool behind = oid == INT4OID || oid == INT8OID || oid == NUMERICOID;
  return behind && dty == SQLT_STR ? 1 : 0;
}

void fetch(OCIError *errhp, const Fetch &f, const char *value, sb4 length) {
  const Oid oid = kOids[f.oid % std::size(kOids)];
  const ub2 dty = kTypes[f.dty % std::size(kTypes)];
  const ub4 cap = f.cap % 600;
  const std::unique_ptr<char[]> target(new char[cap + slackOf(oid, dty)]);
  ub4 targetLength = cap;
  sb2 indicator = 0;
  ub2 returnCode = 0;
  PQ2OCIType(errhp, oid, value, length, f.format % 3, dty, target.get(), &targetLength,
             f.flags & kIndicator ? &indicator : nullptr,
             f.flags & kReturnCode ? &returnCode : nullptr, 0);
  ClearErrorHandle(errhp);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  static OCIError *const narrow = errorHandle(OCI_DEFAULT);
  static OCIError *const wide = errorHandle(OCI_UTF16);
  Fetch f;
  if (size < sizeof f) return 0;
  std::memcpy(&f, data, sizeof f);
  const std::size_t length = size - sizeof f;
  const std::unique_ptr<char[]> value(new char[length + 1]);
  std::memcpy(value.get(), data + sizeof f, length);
  value[length] = '\0';
  OCIError *const errhp = f.flags & kUtf16 ? wide : narrow;
  zev::parentEnv(errhp)->oracleVarchars = f.flags & kEmptyIsNull ? 1 : 0;
  fetch(errhp, f, value.get(), static_cast<sb4>(length));
  return 0;
}
