/// Format models made by machine: each pair of elements, and random models that determine
/// a value, printed and read back.
#include <algorithm>
#include <iomanip>
#include <numeric>
#include <sstream>

#include "format_fixture.h"

namespace zevtest {
namespace {

class Generated : public Formats {
 protected:
  /// Prints and, where the model compiles for reading, reads what was printed. The same
  /// model always does the same.
  void runBothWays(const std::string &format, const TmToChar &value, sb4 kind) {
    const std::string text = print(format, value, kind);
    ASSERT_EQ(print(format, value, kind), text);
    if (text[0] == '!') {
      const int code = std::stoi(text.substr(1));
      ASSERT_TRUE(isFormatError(code) || (code == 0 && knowsNoPrinting(format)))
          << format;
      return;
    }
    const Read result = read(format, text, kind);
    ASSERT_EQ(read(format, text, kind).code, result.code);
    if (result.status != 0) {
      ASSERT_TRUE(isFormatError(result.code) || knowsNoPrinting(format))
          << format << ": " << result.code;
    }
  }

  static bool isFormatError(int code) {
    const int known[] = {1810, 1814, 1815, 1820, 1821, 1822, 1830, 1841,
                         1843, 1846, 1847, 1849, 1850, 1851, 1852, 1853,
                         1855, 1856, 1858, 1861, 1874, 1875, 1878, 30475};
    return std::find(std::begin(known), std::end(known), code) != std::end(known);
  }

  /// "j" alone fails without a record.
  static bool knowsNoPrinting(const std::string &format) {
    return format.find('j') != format.npos;
  }
};

TEST_F(Generated, EachPairOfSpellingsRunsBothWays) {
  TmToChar value = at(2001, 11, 29, 17, 18, 19);
  value.fsec = 123456;
  value.tzHour = -5;
  value.tzMinute = 30;
  for (sb4 first = 0; DCH_keywords[first].name; ++first) {
    for (sb4 second = 0; DCH_keywords[second].name; ++second) {
      const std::string a = DCH_keywords[first].name;
      const std::string b = DCH_keywords[second].name;
      for (const sb4 kind : kAllKinds) {
        runBothWays(a + ' ' + b, value, kind);
        runBothWays("FM" + a + b + "TH", value, kind);
      }
    }
  }
}

/// Ways to write each part of a date and time so that reading finds it again.
using Pieces = std::vector<std::string>;
const Pieces kYears = {"YYYY", "yyyy", "Y,YYY"};
const Pieces kMonths = {"MM",  "mm", "FMMONTHFM", "FMmonthFM", "MON",
                        "Mon", "RM", "rm",        "FMRMFM"};
const Pieces kDays = {"DD", "dd", "DDTH", "DDth"};
const Pieces kHours = {"HH24", "hh24", "HH24TH"};
const Pieces kHalfDays = {"HH AM", "HH12 p.m.", "HH\"h\"P.M.", "am HH"};
const Pieces kMinutes = {"MI", "mi", "MITH"};
const Pieces kSeconds = {"SS", "ss"};
const Pieces kNoise = {"Day", "DY", "AD", "b.c.", "\"at\""};

class RandomModels : public Generated {
 protected:
  template <class T>
  const T &any(const std::vector<T> &choices) {
    return choices[random_() % choices.size()];
  }
  sb4 between(sb4 low, sb4 high) {
    return std::uniform_int_distribution<sb4>(low, high)(random_);
  }

  /// The parts in any order, with separators between.
  std::string model(bool halfDays) {
    Pieces pieces = {any(kYears),   any(kMonths),
                     any(kDays),    any(halfDays ? kHalfDays : kHours),
                     any(kMinutes), any(kSeconds)};
    if (between(0, 1)) pieces.push_back(any(kNoise));
    std::shuffle(pieces.begin(), pieces.end(), random_);
    std::string format;
    for (std::size_t i = 0; i < pieces.size(); ++i) {
      if (i > 0) format += std::string(1, " -/;:_"[between(0, 5)]);
      format += pieces[i];
    }
    return format;
  }

  TmToChar value() {
    return at(between(1, 9999), between(1, 12), between(1, 28), between(0, 23),
              between(0, 59), between(0, 59));
  }

  std::mt19937_64 random_ = generator();
};

TEST_F(RandomModels, WhatIsPrintedIsReadBack) {
  const int count = rounds(20000, 2000000);
  for (int i = 0; i < count; ++i) {
    const TmToChar original = value();
    const std::string format = model(i % 2 == 0);
    const std::string text = print(format, original);
    ASSERT_EQ(shown(format, text), zevtest::trimmed(original.tm))
        << format << ": " << text;
    PGtm tm{};
    double fsec = 1;
    ASSERT_EQ(
        scanDateTime(records_.errhp, text.c_str(), format.c_str(), tm, fsec, kOCIDate),
        0);
    ASSERT_EQ(zevtest::trimmed(tm), zevtest::trimmed(original.tm));
    ASSERT_EQ(fsec, 0);
  }
}

TEST_F(RandomModels, WithoutAYearBothReadersTakeThisYears) {
  PGtm tm{};
  double fsec = 0;
  ASSERT_EQ(scanDateTime(records_.errhp, "05", "MM", tm, fsec, kOCIDate), 0);
  EXPECT_EQ(zevtest::trimmed(tm), shown("MM", "05"));
  EXPECT_EQ(scanDateTime(records_.errhp, "13", "MM", tm, fsec, kOCIDate), -1);
  EXPECT_EQ(records_.takeRecord(), 1843);
}

TEST_F(RandomModels, NumbersOfFixedWidthNeedNoSeparators) {
  std::vector<std::string> elements = {"YYYY", "MM", "DD", "HH24", "MI", "SS"};
  for (int i = 0; i < rounds(5000, 500000); ++i) {
    std::shuffle(elements.begin(), elements.end(), random_);
    const std::string format =
        std::accumulate(elements.begin(), elements.end(), std::string());
    const TmToChar original = value();
    const std::string text = print(format, original);
    ASSERT_EQ(shown(format, text), zevtest::trimmed(original.tm))
        << format << ": " << text;
  }
}

TEST_F(RandomModels, JulianDaysAndSecondsOfTheDayDetermineTheMoment) {
  for (int i = 0; i < rounds(5000, 500000); ++i) {
    const TmToChar original = value();
    const std::string text = print("J SSSSS", original);
    ASSERT_EQ(shown("J SSSSS", text), zevtest::trimmed(original.tm)) << text;
  }
}

TEST_F(RandomModels, NumbersAreTheCLibrarysOwn) {
  const std::pair<const char *, const char *> rows[] = {
      {"YYYY-MM-DD HH24:MI:SS", "%Y-%m-%d %H:%M:%S"},
      {"DD/MM/YY", "%d/%m/%y"},
      {"HH12:MI:SS AM", "%I:%M:%S %p"},
      {"DDD", "%j"},
      {"Mon FMDayFM DD", "%b %A %d"},
      {"FMMonthFM Dy", "%B %a"},
      {"IYYY-IW IY", "%G-%V %g"},
  };
  for (int i = 0; i < rounds(20000, 1000000); ++i) {
    const TmToChar original = at(between(1000, 9999), between(1, 12), between(1, 28),
                                 between(0, 23), between(0, 59), between(0, 59));
    struct tm system;
    ConvertPGtmToSystm(&original.tm, &system);
    system.tm_wday = original.tm.tm_wday;
    system.tm_yday = original.tm.tm_yday;
    const auto &[format, directives] = rows[i % std::size(rows)];
    std::ostringstream expected;
    expected << std::put_time(&system, directives);
    ASSERT_EQ(print(format, original), expected.str()) << format;
  }
}

TEST_F(RandomModels, AnyTextAndModelEndWithAValueOrARecord) {
  const char characters[] = "DMYHSIRTZFAPCBJQWXEULOTNdmyhsix -/,.\"x059:;_\xc3";
  const auto scramble = [&](std::size_t most) {
    std::string text;
    for (std::size_t n = random_() % most; n > 0; --n)
      text += characters[random_() % (sizeof characters - 1)];
    return text;
  };
  for (int i = 0; i < rounds(50000, 5000000); ++i) {
    const std::string format = scramble(i % 50 == 0 ? 400 : 20);
    const sb4 kind = kAllKinds[i % 4];
    runBothWays(format, saturday(), kind);
    const Read result = read(format, scramble(30), kind);
    if (result.status != 0 && !knowsNoPrinting(format)) {
      ASSERT_TRUE(isFormatError(result.code)) << format << ' ' << result.code;
    }
  }
}

}  // namespace
}  // namespace zevtest
