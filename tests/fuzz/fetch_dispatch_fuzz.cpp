/// Any field into any target through the dispatcher. The value and the target are blocks
/// of exactly their size, so that the sanitizer sees what goes beyond them.
#include <cstring>
#include <memory>
#include <string>

#include "types/server_types.h"
#include "zevoci/conversion.h"
#include "zevoci/datetime.h"
#include "zevoci/errors.h"
#include "zevoci/lob_locator.h"
#include "zevoci/string_value.h"

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
constexpr ub2 kTypes[] = {1,   2,   3,   4,   5,   6,   8,   9,   12,  15,
                          21,  22,  23,  24,  68,  94,  95,  96,  97,  13,
                          113, 116, 155, 156, 184, 187, 188, 189, 190, 232};

OCIError *errorHandle(ub4 mode) {
  OCIEnv *env = nullptr;
  void *errhp = nullptr;
  OCIEnvCreate(&env, mode, nullptr, nullptr, nullptr, nullptr, 0, nullptr);
  OCIHandleAlloc(env, &errhp, OCI_HTYPE_ERROR, 0, nullptr);
  return static_cast<OCIError *>(errhp);
}

/// A NUL stands behind the target where a text fills it.
std::size_t slackOf(ub2 dty) {
  return dty == SQLT_STR || dty == SQLT_AVC ? 1 : 0;
}

bool isDateTime(ub2 dty) {
  return dty == SQLT_DATE || dty == SQLT_TIMESTAMP || dty == SQLT_TIMESTAMP_TZ ||
         dty == SQLT_TIMESTAMP_LTZ;
}
bool isInterval(ub2 dty) {
  return dty == SQLT_INTERVAL_YM || dty == SQLT_INTERVAL_DS;
}
bool isByAddress(ub2 dty) {
  return dty == SQLT_VST || dty == SQLT_BLOB || isDateTime(dty) || isInterval(dty);
}

/// What a field is fetched into: bytes, or the address of something that holds them.
class Target {
 public:
  Target(OCIError *errhp, ub2 dty, ub4 cap)
      : bytes_(new char[cap + 1]), plain_(new char[cap + slackOf(dty)]) {
    string_ = {cap, 0, reinterpret_cast<OraText *>(bytes_.get())};
    locator_.reset(Alloc_OCILobLocator());
    dateTime_.reset(Alloc_OCIDateTime(OCI_DTYPE_TIMESTAMP_TZ));
    interval_.reset(Alloc_OCIInterval(OCI_DTYPE_INTERVAL_DS));
    pointer_ = &string_;
    if (dty == SQLT_BLOB) pointer_ = locator_.get();
    if (isDateTime(dty)) pointer_ = dateTime_.get();
    if (isInterval(dty)) pointer_ = interval_.get();
    if (dty != SQLT_RSET) return;
    OCIHandleAlloc(errhp->parenth, &statement_, OCI_HTYPE_STMT, 0, nullptr);
  }
  ~Target() {
    if (statement_) OCIHandleFree(statement_, OCI_HTYPE_STMT);
  }
  Target(const Target &) = delete;
  Target &operator=(const Target &) = delete;

  void *address(ub2 dty) {
    if (dty == SQLT_RSET) return statement_;
    return isByAddress(dty) ? &pointer_ : static_cast<void *>(plain_.get());
  }

 private:
  struct Free {
    void operator()(OCILobLocator *locator) const { Free_OCILobLocator(locator); }
    void operator()(OCIDateTime *value) const { Free_OCIDateTime(value); }
    void operator()(OCIInterval *value) const { Free_OCIInterval(value); }
  };
  std::unique_ptr<char[]> bytes_;  // a string has room for a NUL behind its size
  std::unique_ptr<char[]> plain_;
  std::unique_ptr<OCILobLocator, Free> locator_;
  std::unique_ptr<OCIDateTime, Free> dateTime_;
  std::unique_ptr<OCIInterval, Free> interval_;
  OCIString string_;
  void *pointer_ = nullptr;
  void *statement_ = nullptr;
};

void fetch(OCIError *errhp, const Fetch &f, const char *value, sb4 length) {
  const Oid oid = kOids[f.oid % std::size(kOids)];
  const ub2 dty = kTypes[f.dty % std::size(kTypes)];
  const ub4 cap = f.cap % 600;
  Target target(errhp, dty, cap);
  ub4 targetLength = cap;
  sb2 indicator = 0;
  ub2 returnCode = 0;
  PQ2OCIType(errhp, oid, value, length, f.format % 3, dty, target.address(dty),
             &targetLength, f.flags & kIndicator ? &indicator : nullptr,
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
