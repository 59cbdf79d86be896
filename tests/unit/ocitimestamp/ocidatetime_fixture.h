/// What the tests of the OCIDateTime functions share: descriptors of the four types, made
/// and shown in a line.
#pragma once

#include <ociap.h>

#include <cstring>
#include <memory>

#include "datetime_fixture.h"
#include "zevoci/datetime.h"

namespace zevtest {

inline constexpr ub4 kTypes[] = {OCI_DTYPE_DATE, OCI_DTYPE_TIMESTAMP,
                                 OCI_DTYPE_TIMESTAMP_TZ, OCI_DTYPE_TIMESTAMP_LTZ};

inline const OraText *oraText(const char *text) {
  return reinterpret_cast<const OraText *>(text);
}

class OciDateTime : public testing::Test {
 protected:
  OCIError *err() { return records_.errhp; }
  OCIEnv *env() { return records_.env; }

  OCIDateTime *dateTime(ub4 type) {
    void *made = nullptr;
    EXPECT_EQ(OCIDescriptorAlloc(env(), &made, type, 0, nullptr), OCI_SUCCESS);
    return static_cast<OCIDateTime *>(made);
  }
  OCIInterval *interval(sb4 months, sb4 days, double seconds = 0) {
    void *made = nullptr;
    EXPECT_EQ(OCIDescriptorAlloc(env(), &made, OCI_DTYPE_INTERVAL_DS, 0, nullptr),
              OCI_SUCCESS);
    auto *span = static_cast<OCIInterval *>(made);
    span->body->interval = {seconds, days, months};
    span->body->valid = 1;
    return span;
  }
  sword construct(OCIDateTime *d, int year, int month, int day, int hour = 0,
                  int minute = 0, int second = 0, ub4 fraction = 0,
                  const char *zone = nullptr) {
    std::string text = zone ? zone : "";
    return OCIDateTimeConstruct(
        env(), err(), d, static_cast<sb2>(year), static_cast<ub1>(month),
        static_cast<ub1>(day), static_cast<ub1>(hour), static_cast<ub1>(minute),
        static_cast<ub1>(second), fraction,
        zone ? reinterpret_cast<OraText *>(text.data()) : nullptr, text.size());
  }
  OCIDateTime *made(ub4 type, int year, int month, int day, int hour = 0, int minute = 0,
                    int second = 0, ub4 fraction = 0, const char *zone = nullptr) {
    OCIDateTime *d = dateTime(type);
    EXPECT_EQ(construct(d, year, month, day, hour, minute, second, fraction, zone),
              OCI_SUCCESS);
    return d;
  }
  static std::string fields(const OCIDateTime *d) {
    const OCIDate &date = d->body->date;
    char text[64];
    std::snprintf(text, sizeof text, "%d-%02d-%02d %02d:%02d:%02d", date.OCIDateYYYY,
                  date.OCIDateMM, date.OCIDateDD, date.OCIDateTime.OCITimeHH,
                  date.OCIDateTime.OCITimeMI, date.OCIDateTime.OCITimeSS);
    return text;
  }
  std::string toText(const OCIDateTime *d, const char *format = nullptr, ub4 size = 100) {
    OraText text[128];
    const sword status = OCIDateTimeToText(
        env(), err(), d, oraText(format),
        static_cast<ub1>(format ? std::strlen(format) : 0), 0, nullptr, 0, &size, text);
    if (status != OCI_SUCCESS) return "record " + std::to_string(records_.takeRecord());
    EXPECT_EQ(std::strlen(reinterpret_cast<char *>(text)), size);
    return reinterpret_cast<char *>(text);
  }
  sword fromText(OCIDateTime *d, const std::string &text, const char *format = nullptr) {
    return OCIDateTimeFromText(
        env(), err(), oraText(text.c_str()), text.size(), oraText(format),
        static_cast<ub1>(format ? std::strlen(format) : 0), nullptr, 0, d);
  }

  LocalZone zone_{"UTC"};
  Environment records_;
};

}  // namespace zevtest
