/// The short road of the server's usual text beside the general one.
#include "types/ocitimestamp/iso_text.h"

#include <cstring>
#include <memory>
#include <optional>

#include "datetime_fixture.h"
#include "types/ocitimestamp/decode_datetime.h"

namespace zevtest {
namespace {

class IsoText : public testing::Test {
 protected:
  /// What the general road makes of a text.
  std::optional<zev::IsoMoment> decoded(const std::string &text) {
    char work[zev::kWorkSize];
    char *fields[zev::kMostFields];
    sb4 types[zev::kMostFields], count = 0, dtype = 0, tz = 0;
    zev::IsoMoment moment;
    if (ParseDateTime(text.c_str(), work, sizeof work, fields, types, zev::kMostFields,
                      &count) != 0 ||
        DecodeDateTime(records_.errhp, fields, types, count, &dtype, &moment.tm,
                       &moment.fsec, &tz, 0) != 0) {
      records_.takeRecord();
      return std::nullopt;
    }
    EXPECT_EQ(dtype, zev::kPlainDate);
    return moment;
  }
  /// The short road on exactly the bytes of a text.
  static std::optional<zev::IsoMoment> read(const std::string &text) {
    const std::unique_ptr<char[]> exact(new char[text.size()]);
    std::memcpy(exact.get(), text.data(), text.size());
    zev::IsoMoment moment;
    if (!zev::readIsoText(exact.get(), text.size(), moment)) return std::nullopt;
    return moment;
  }
  /// Whether both roads agree on a text that the short one takes; false where it does
  /// not.
  bool agree(const std::string &text) {
    const auto shortRoad = read(text);
    if (!shortRoad) return false;
    const auto general = decoded(text);
    EXPECT_TRUE(general) << text;
    if (!general) return true;
    EXPECT_EQ(shown(shortRoad->tm), shown(general->tm)) << text;
    EXPECT_EQ(shortRoad->fsec, general->fsec) << text;
    if (shortRoad->hasZone) {
      EXPECT_EQ(shortRoad->tm.tm_gmtoff, general->tm.tm_gmtoff) << text;
    }
    return true;
  }
  int between(int low, int high) {
    return std::uniform_int_distribution<int>(low, high)(random_);
  }
  /// A text as the server writes it, of a date, with a time, a fraction and a zone as it
  /// comes.
  std::string text() {
    char date[64], time[64], zone[64];
    std::snprintf(date, sizeof date, "%04d-%02d-%02d", between(1, 9999), between(1, 12),
                  between(1, 28));
    std::string all = date;
    if (between(0, 3) == 0) return all;
    std::snprintf(time, sizeof time, " %02d:%02d:%02d", between(0, 23), between(0, 59),
                  between(0, 59));
    all += time;
    if (between(0, 1)) all += '.' + std::to_string(between(1, 1000000)).substr(0, 6);
    const int parts = between(0, 3);
    std::snprintf(zone, sizeof zone, "%c%02d:%02d:%02d", between(0, 1) ? '+' : '-',
                  between(0, 14), between(0, 59), between(0, 59));
    return all + std::string(zone).substr(0, static_cast<std::size_t>(parts) * 3);
  }

  LocalZone zone_{"UTC"};
  Environment records_;
  std::mt19937_64 random_ = generator();
};

TEST_F(IsoText, IsReadAsTheGeneralRoadReadsIt) {
  for (int i = 0; i < rounds(100000, 10000000); ++i) {
    const std::string given = text();
    ASSERT_TRUE(agree(given)) << given;
  }
}

TEST_F(IsoText, EveryDayOfTheYears1To9999) {
  using namespace std::chrono;
  int days_ = 0;
  for (auto day = sys_days(January / 1 / 1); day < sys_days(January / 1 / 10000);
       day += days(rounds(7, 1))) {
    const year_month_day date(day);
    char given[32];
    std::snprintf(given, sizeof given, "%04d-%02u-%02u", int{date.year()},
                  unsigned{date.month()}, unsigned{date.day()});
    const auto moment = read(given);
    ASSERT_TRUE(moment) << given;
    ASSERT_EQ(shown(moment->tm), given + std::string(" 00:00:00"));
    ++days_;
  }
  EXPECT_GT(days_, 500000);
}

TEST_F(IsoText, WhateverItTakesTheGeneralRoadTakesToo) {
  int taken = 0;
  const std::string characters = "0123456789-:.+ TZBC/";
  for (int i = 0; i < rounds(200000, 20000000); ++i) {
    std::string given = text();
    for (int changes = between(1, 3); changes > 0; --changes) {
      const auto place =
          static_cast<std::size_t>(between(0, static_cast<int>(given.size()) - 1));
      const char c = characters[static_cast<std::size_t>(
          between(0, static_cast<int>(characters.size()) - 1))];
      switch (between(0, 2)) {
        case 0:
          given[place] = c;
          break;
        case 1:
          given.insert(place, 1, c);
          break;
        default:
          given.erase(place, 1);
      }
      if (given.empty()) break;
    }
    taken += agree(given);
    if (HasFailure()) return;
  }
  EXPECT_GT(taken, 1000);
}

TEST_F(IsoText, OtherFormsAreLeftToTheGeneralRoad) {
  for (const char *given : {"",
                            "2001-02-0",
                            "2001-2-3",
                            "0000-01-01",
                            "2001-13-01",
                            "2001-00-01",
                            "2001-02-29",
                            "2001-02-00",
                            "20010203",
                            "2001/02/03",
                            "2001-02-03T04:05:06",
                            "2001-02-03 04:05",
                            "2001-02-03 24:00:00",
                            "2001-02-03 04:60:00",
                            "2001-02-03 04:05:60",
                            "2001-02-03 04:05:06.",
                            "2001-02-03 04:05:06.1234567",
                            "2001-02-03 04:05:06+15",
                            "2001-02-03 04:05:06+05:60",
                            "2001-02-03 04:05:06+05:30:60",
                            "2001-02-03 04:05:06+0530",
                            "2001-02-03 04:05:06 +05",
                            "2001-02-03 04:05:06+05:3",
                            "2001-02-03 04:05:06+05:30:15:00",
                            "2001-02-03 04:05:06Z",
                            "2001-02-03 04:05:06 BC",
                            "2001-02-03 BC",
                            "12001-02-03",
                            "infinity",
                            "-infinity",
                            "2001-02-03 "}) {
    EXPECT_FALSE(read(given)) << given;
  }
  EXPECT_FALSE(read(std::string("2001-02-03\0 04:05:06", 20)));
}

}  // namespace
}  // namespace zevtest
