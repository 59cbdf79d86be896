/// A text that is split and decoded as date and time: what comes out stands within its
/// ranges, and decodes to itself once it is printed.
#include <cstdlib>
#include <string>

#include "types/ocitimestamp/decode_datetime.h"
#include "types/ocitimestamp/encode_datetime.h"
#include "types/ocitimestamp/iso_text.h"
#include "types/ocitimestamp/zone.h"
#include "zevoci/errors.h"

namespace {

void require(bool holds) {
  if (!holds) __builtin_trap();
}

OCIError *errorHandle() {
  static OCIError *errhp = [] {
    OCIEnv *env = nullptr;
    OCIEnvCreate(&env, OCI_DEFAULT, nullptr, nullptr, nullptr, nullptr, 0, nullptr);
    void *handle = nullptr;
    OCIHandleAlloc(env, &handle, OCI_HTYPE_ERROR, 0, nullptr);
    return static_cast<OCIError *>(handle);
  }();
  ClearErrorHandle(errhp);
  return errhp;
}

struct Decoded {
  sb4 status = -1, dtype = 0, tz = 0;
  PGtm tm{};
  double fsec = 0;

  explicit Decoded(const std::string &text) {
    char work[zev::kWorkSize];
    char *fields[zev::kMostFields];
    sb4 types[zev::kMostFields], count = 0;
    if (ParseDateTime(text.c_str(), work, sizeof work, fields, types, zev::kMostFields,
                      &count) == 0) {
      status =
          DecodeDateTime(errorHandle(), fields, types, count, &dtype, &tm, &fsec, &tz, 0);
    }
  }
  bool isDate() const { return status == 0 && dtype == zev::kPlainDate; }
};

/// The short road takes nothing that the general one refuses, and reads the same.
void compareShortRoad(const std::string &text, const Decoded &decoded) {
  zev::IsoMoment moment;
  if (!zev::readIsoText(text.data(), text.size(), moment)) return;
  const PGtm &a = moment.tm, &b = decoded.tm;
  require(decoded.isDate() && a.tm_year == b.tm_year && a.tm_mon == b.tm_mon &&
          a.tm_mday == b.tm_mday && a.tm_hour == b.tm_hour && a.tm_min == b.tm_min &&
          a.tm_sec == b.tm_sec && moment.fsec == decoded.fsec &&
          (!moment.hasZone || a.tm_gmtoff == b.tm_gmtoff));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  const std::string text(reinterpret_cast<const char *>(data), size);
  const Decoded decoded(text);
  compareShortRoad(text, decoded);
  ConvertStringToTimestamp(errorHandle(), text.c_str());
  if (!decoded.isDate()) return 0;
  PGtm tm = decoded.tm;
  require(tm.tm_mon >= 1 && tm.tm_mon <= 12 && tm.tm_mday >= 1 && tm.tm_mday <= 31);
  char printed[zev::kLongestDateTime];
  EncodeDateTime(&tm, nullptr, nullptr, zev::kIsoDates, printed, 0);
  const bool isPlain = tm.tm_year > 999 && tm.tm_year < 10000 && tm.tm_hour >= 0 &&
                       tm.tm_hour < 24 && tm.tm_min >= 0 && tm.tm_min < 60 &&
                       tm.tm_sec >= 0 && tm.tm_sec < 60;
  if (!isPlain) return 0;
  const Decoded again(printed);
  require(again.isDate() && again.tm.tm_year == tm.tm_year &&
          again.tm.tm_mon == tm.tm_mon && again.tm.tm_mday == tm.tm_mday &&
          again.tm.tm_hour == tm.tm_hour && again.tm.tm_min == tm.tm_min &&
          again.tm.tm_sec == tm.tm_sec);
  return 0;
}
