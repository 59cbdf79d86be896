/// What the tests of format models share: values printed and texts read through a model,
/// each answered as a text in which "!1821" stands for a failure with that record.
#pragma once

#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "datetime_fixture.h"
#include "types/ocitimestamp/format_execution.h"
#include "types/ocitimestamp/format_words.h"

namespace zevtest {

using namespace zev::format;

constexpr sb4 kAllKinds[] = {kDateDescriptor, kOCIDate, kTimestampDescriptor,
                             kZonedDescriptor};

/// Saturday, 2001-02-03 04:05:06 with its weekday and day of year.
inline TmToChar saturday() {
  TmToChar value{};
  value.tm = {6, 5, 4, 3, 2, 2001, 6, 33, 0, 0, nullptr};
  return value;
}

inline TmToChar at(sb4 year, sb4 month, sb4 day, sb4 hour = 0, sb4 minute = 0,
                   sb4 second = 0) {
  TmToChar value{};
  const sb4 julian = date2j(year, month, day);
  value.tm = {second, minute, hour,          day,
              month,  year,   j2day(julian), julian - date2j(year, 1, 1),
              0,      0,      nullptr};
  return value;
}

/// "2001-02-03 04:05:06".
inline std::string trimmed(const PGtm &tm) {
  char text[96];
  std::snprintf(text, sizeof text, "%d-%02d-%02d %02d:%02d:%02d", tm.tm_year, tm.tm_mon,
                tm.tm_mday, tm.tm_hour, tm.tm_min, tm.tm_sec);
  return text;
}

/// What reading through a model made.
struct Read {
  sb4 status = 0;
  int code = 0;  ///< of the last record
  PGtm tm{};
  double fsec = 0;
};

class Formats : public ::testing::Test {
 protected:
  static std::string failure(int code) { return "!" + std::to_string(code); }

  std::string print(const std::string &format, const TmToChar &value = saturday(),
                    sb4 kind = kOCIDate) {
    char *text = datetime_to_char_body(records_.errhp, &value, format.c_str(), kind);
    const int code = records_.takeRecord();
    if (!text) return failure(code);
    EXPECT_EQ(code, 0) << format;
    const std::string result(text);
    std::free(text);
    return result;
  }

  Read read(const std::string &format, const std::string &text, sb4 kind = kOCIDate) {
    Read result;
    result.status = do_to_timestamp(records_.errhp, text.c_str(), format.c_str(),
                                    &result.tm, &result.fsec, kind);
    result.code = records_.takeRecord();
    return result;
  }

  /// "2001-02-03 04:05:06", with a fraction that is not 0 behind it.
  std::string shown(const std::string &format, const std::string &text,
                    sb4 kind = kOCIDate) {
    const Read result = read(format, text, kind);
    if (result.status != 0) return failure(result.code);
    EXPECT_EQ(result.code, 0) << format << " of " << text;
    std::string out = trimmed(result.tm);
    char fraction[32];
    std::snprintf(fraction, sizeof fraction, " +%g", result.fsec);
    if (result.fsec != 0) out += fraction;
    return out;
  }

  /// The fields that `text` fills, or the record.
  std::string fields(const std::string &format, const std::string &text, sb4 kind,
                     TmFromChar &out) {
    CompiledModel model(format.c_str());
    out = {};
    std::string copy = text;
    const bool done =
        model.compile(records_.errhp, false, kind) == 0 &&
        DCH_processor(records_.errhp, model.nodes(), copy.data(), 0, kind, &out);
    EXPECT_EQ(copy, text);
    const int code = records_.takeRecord();
    return done ? "" : failure(code);
  }

  /// 0, or the record of a model that does not compile.
  int compiled(const std::string &format, bool isToChar, sb4 kind) {
    CompiledModel model(format.c_str());
    const sb4 status = model.compile(records_.errhp, isToChar, kind);
    const int code = records_.takeRecord();
    EXPECT_EQ(status, code ? -1 : 0);
    return code;
  }

  Environment records_;
};

}  // namespace zevtest
