/// Values printed through format models.
#include <cmath>
#include <limits>

#include "format_fixture.h"

namespace zevtest {
namespace {

struct PrintRow {
  const char *format;
  const char *text;  ///< or "!" and the record
};

class Printed : public Formats {
 protected:
  template <std::size_t N>
  void check(const PrintRow (&rows)[N], const TmToChar &value, sb4 kind = kOCIDate) {
    for (const PrintRow &row : rows)
      EXPECT_EQ(print(row.format, value, kind), row.text) << row.format;
  }

  static TmToChar zoned(sb1 hour, ub1 minute) {
    TmToChar value = saturday();
    value.tzHour = hour;
    value.tzMinute = minute;
    return value;
  }

  static TmToChar withFraction(double fsec) {
    TmToChar value = saturday();
    value.fsec = fsec;
    return value;
  }
};

TEST_F(Printed, EachElement) {
  const PrintRow rows[] = {
      // clang-format off
      {"A.D.", "A.D."}, {"B.C.", "A.D."}, {"AD", "AD"},   {"BC", "AD"},
      {"a.d.", "a.d."}, {"b.c.", "a.d."}, {"ad", "ad"},   {"bc", "ad"},
      {"A.M.", "A.M."}, {"P.M.", "A.M."}, {"AM", "AM"},   {"PM", "AM"},
      {"a.m.", "a.m."}, {"p.m.", "a.m."}, {"am", "am"},   {"pm", "am"},
      {"CC", "21"},     {"cc", "21"},     {"SCC", " 21"},
      {"DAY", "SATURDAY "}, {"Day", "Saturday "}, {"day", "saturday "},
      {"FMDAY", "SATURDAY"}, {"FMDay", "Saturday"}, {"FMday", "saturday"},
      {"TMDAY", "SATURDAY"}, {"TMDay", "Saturday"}, {"TMday", "saturday"},
      {"DY", "SAT"}, {"Dy", "Sat"}, {"dy", "sat"}, {"TMDY", "SAT"},
      {"DDD", "034"}, {"ddd", "034"}, {"FMDDD", "34"},
      {"DD", "03"},   {"dd", "03"},   {"FMDD", "3"},
      {"D", "7"},     {"d", "7"},
      {"HH24", "04"}, {"hh24", "04"}, {"FMHH24", "4"},
      {"HH12", "04"}, {"hh12", "04"}, {"HH", "04"}, {"hh", "04"}, {"FMHH", "4"},
      {"IW", "05"},   {"iw", "05"},   {"FMIW", "5"},
      {"IYYY", "2001"}, {"iyyy", "2001"}, {"IYY", "001"}, {"iyy", "001"},
      {"IY", "01"}, {"iy", "01"}, {"I", "1"}, {"i", "1"},
      {"YYYY", "2001"}, {"yyyy", "2001"}, {"SYYYY", " 2001"},
      {"YYY", "001"}, {"yyy", "001"}, {"YY", "01"}, {"yy", "01"}, {"Y", "1"}, {"y", "1"},
      {"FMYY", "01"},
      {"Y,YYY", "2,001"}, {"y,yyy", "2,001"},
      {"J", "2451944"}, {"j", "!0"},
      {"MI", "05"}, {"mi", "05"}, {"FMMI", "5"},
      {"MM", "02"}, {"mm", "02"}, {"FMMM", "2"},
      {"MONTH", "FEBRUARY "}, {"Month", "February "}, {"month", "february "},
      {"FMMONTH", "FEBRUARY"}, {"TMMonth", "February"}, {"TMmonth", "february"},
      {"MON", "FEB"}, {"Mon", "Feb"}, {"mon", "feb"}, {"TMMon", "Feb"},
      {"MS", "000"}, {"ms", "000"}, {"US", "000000"}, {"us", "000000"},
      {"Q", "1"}, {"q", "1"},
      {"RM", "II  "}, {"rm", "ii  "}, {"FMRM", "II"},
      {"RR", "!30475"}, {"RRRR", "!30475"},
      {"SSSSS", "14706"}, {"ssss", "14706"},
      {"SS", "06"}, {"ss", "06"}, {"FMSS", "6"},
      {"YEAR", "TWO THOUSAND ONE"}, {"SYEAR", " TWO THOUSAND ONE"},
      {"WW", "05"}, {"ww", "05"}, {"FMWW", "5"},
      {"W", "1"}, {"w", "1"},
      {"FX", ""}, {"fx", ""},
      {"DS", "2/3/2001"},
      {"DL", "Saturday, February 03, 2001"},
      {"TS", "4:05:06 AM"},
      {"E", "!1822"}, {"EE", "!1822"}, {"FF", "!1822"}, {"FF3", "!1822"},
      {"X", "!1821"}, {"TZD", "!1821"}, {"TZH", "!1821"}, {"TZM", "!1821"},
      {"TZR", "!1821"},
      // clang-format on
  };
  check(rows, saturday());
}

TEST_F(Printed, TextBetweenElements) {
  const PrintRow rows[] = {
      {"", ""},
      {"DD-MON-YYYY", "03-FEB-2001"},
      {"YYYY/MM/DD HH24:MI:SS", "2001/02/03 04:05:06"},
      {"DD;MM,YY_.", "03;02,01_."},
      {"DD\tMM\nYY", "03\t02\n01"},
      {"DD\" of \"Mon", "03 of Feb"},
      {"\"DD\"", "DD"},
      {"\"\"", ""},
      {"DD\"open", "03"},
      {"DDx", "!1821"},
      {"RRRR", "!30475"},
      {"DD\xc3", "!1821"},
      {"DD*MM", "!1821"},
      {"1", "!1821"},
      {"sssss", "!1821"},
  };
  check(rows, saturday());
}

TEST_F(Printed, TheUnsupportedElementIsNamed) {
  const TmToChar value = saturday();
  const char *const rows[][2] = {{"RR", "RR"}, {"RRRR", "RRRR"}};
  for (const auto &[format, name] : rows) {
    EXPECT_EQ(datetime_to_char_body(records_.errhp, &value, format, kOCIDate), nullptr);
    EXPECT_EQ(records_.takeRecord(), 30475);
    EXPECT_EQ(records_.lastMessage,
              std::string("KESTREL-30475: unsupported feature: ") + name);
  }
  EXPECT_EQ(datetime_to_char_body(records_.errhp, &value, "EE", kZonedDescriptor),
            nullptr);
  EXPECT_EQ(records_.takeRecord(), 30475);
  EXPECT_EQ(records_.lastMessage, "KESTREL-30475: unsupported feature: EE");
}

TEST_F(Printed, KindsOfValues) {
  struct Row {
    const char *format;
    const char *texts[4];  ///< by kind
  };
  const Row rows[] = {
      {"E", {"!1822", "!1822", "!1822", "!30475"}},
      {"EE", {"!1822", "!1822", "!1822", "!30475"}},
      {"FF", {"!1821", "!1822", "0000000000123456", "0000000000123456"}},
      {"FF3", {"!1821", "!1822", "000", "000"}},
      {"X", {"!1821", "!1821", ".", "."}},
      {"TZD", {"!1821", "!1821", "!1821", ""}},
      {"TZH", {"!1821", "!1821", "!1821", "-05"}},
      {"TZM", {"!1821", "!1821", "!1821", "30"}},
      {"TZR", {"!1821", "!1821", "!1821", "-05:30"}},
      {"RR", {"!30475", "!30475", "!1878", "!30475"}},
      {"RM", {"II  ", "II  ", "!1878", "II  "}},
      {"HH24", {"!1821", "04", "04", "04"}},
      {"TS", {"!1821", "4:05:06 AM", "4:05:06 AM", "4:05:06 AM"}},
      {"DD-MM", {"03-02", "03-02", "03-02", "03-02"}},
  };
  TmToChar value = zoned(-5, 30);
  value.fsec = 123456000;
  for (const Row &row : rows) {
    for (const sb4 kind : kAllKinds) {
      EXPECT_EQ(print(row.format, value, kind), row.texts[kind - 1])
          << row.format << " of kind " << kind;
    }
  }
}

TEST_F(Printed, AFractionShowsTheHeadOfSixteenDigits) {
  const PrintRow rows[] = {
      {"FF", "0000000000123456"},
      {"FF0", ""},
      {"FF1", "0"},
      {"FF3", "000"},
      {"FF9", "000000000"},
      {"FF3TH", "000"},
      {"SSXFF", "06.0000000000123456"},
  };
  check(rows, withFraction(123456000), kTimestampDescriptor);
  check({{"FF", "0000000000000000"}}, withFraction(999), kTimestampDescriptor);
  check({{"FF9", "000000999"}}, withFraction(1e13 - 1), kTimestampDescriptor);
}

TEST_F(Printed, FractionsOfSecondsAreRounded) {
  check({{"MS", "124"}, {"US", "123500"}, {"FMMS", "124"}}, withFraction(0.1235001),
        kTimestampDescriptor);
  check({{"MS", "002"}}, withFraction(0.0025), kTimestampDescriptor);
  check({{"MS", "123456000000"}, {"US", "123456000000000"}}, withFraction(123456000),
        kTimestampDescriptor);
}

TEST_F(Printed, FractionsBeyondAllNumbers) {
  check({{"MS", "9223372036854775807"}, {"FF3", "922"}}, withFraction(1e300),
        kTimestampDescriptor);
  check({{"MS", "-9223372036854775808"}, {"FF3", "-92"}}, withFraction(-1e300),
        kTimestampDescriptor);
  check({{"US", "000000"}}, withFraction(std::nan("")), kTimestampDescriptor);
}

TEST_F(Printed, Zones) {
  check({{"TZH:TZM", "+05:30"}, {"TZR", "+05:30"}, {"TZHTZM", "+0530"}}, zoned(5, 30),
        kZonedDescriptor);
  check({{"TZH:TZM", "-12:00"}, {"TZR", "-12:00"}}, zoned(-12, 0), kZonedDescriptor);
  check({{"TZH:TZM", "+00:45"}, {"FMTZH", "+00"}}, zoned(0, 45), kZonedDescriptor);
  check({{"TZR", "-128:255"}}, zoned(-128, 255), kZonedDescriptor);
}

TEST_F(Printed, Ordinals) {
  const char *const suffixes[] = {"TH", "ST", "ND", "RD"};
  for (int day = 1; day <= 31; ++day) {
    const bool teen = day >= 11 && day <= 13;
    const std::string upper = suffixes[teen || day % 10 > 3 ? 0 : day % 10];
    char expected[16];
    std::snprintf(expected, sizeof expected, "%02d", day);
    EXPECT_EQ(print("DDTH", at(2001, 3, day)), expected + upper);
    EXPECT_EQ(print("FMDDTH", at(2001, 3, day)), std::to_string(day) + upper);
    const std::string lower = {toLower(upper[0]), toLower(upper[1])};
    EXPECT_EQ(print("DDth", at(2001, 3, day)), expected + lower);
  }
  const PrintRow rows[] = {
      {"HHTH", "04th"},       {"HH12TH", "04th"}, {"HH24TH", "04TH"},
      {"YYYYTH", "2001ST"},   {"YYth", "01st"},   {"CCTH", "21ST"},
      {"SCCth", " 21st"},     {"MITH", "05TH"},   {"JTH", "2451944TH"},
      {"DDDTH", "034TH"},     {"DTH", "7TH"},     {"Y,YYYTH", "2,001ST"},
      {"SSSSSTH", "14706TH"}, {"MSTH", "000TH"},  {"MONTHTH", "FEBRUARY "},
      {"QTH", "1ST"},         {"WTH", "1ST"},     {"WWTH", "05TH"},
      {"SYYYYTH", " 2001ST"}, {"DDSP", "03"},     {"AMTH", "AM"},
  };
  check(rows, saturday());
}

TEST_F(Printed, OrdinalsOfTexts) {
  char text[16] = "112";
  EXPECT_STREQ(str_numth(text, text, 1), "112TH");
  EXPECT_STREQ(str_numth(text, "122", 2), "122nd");
  EXPECT_STREQ(str_numth(text, "3", 1), "3RD");
  EXPECT_STREQ(str_numth(text, "x", 2), "xth");
  EXPECT_STREQ(str_numth(text, "", 1), "TH");
}

TEST_F(Printed, HoursOfHalfDays) {
  for (int hour = 0; hour < 24; ++hour) {
    const TmToChar value = at(2001, 2, 3, hour);
    const int half = hour % 12 == 0 ? 12 : hour % 12;
    EXPECT_EQ(print("FMHH AM", value),
              std::to_string(half) + (hour < 12 ? " AM" : " PM"));
    EXPECT_EQ(print("b.c. p.m.", value), hour < 12 ? "a.d. a.m." : "a.d. p.m.");
  }
  EXPECT_EQ(print("HH24 HH AM", at(2001, 2, 3, 24)), "24 12 AM");
}

TEST_F(Printed, YearsBeforeTheFirst) {
  const PrintRow firstBC[] = {
      {"YYYY BC", "0001 BC"}, {"FMYYYY", "1"},  {"YYY", "001"},
      {"YY", "01"},           {"Y", "1"},       {"SYYYY", " 0001"},
      {"Y,YYY", "0,001"},     {"b.c.", "b.c."}, {"CC", "1"},
      {"YEAR", ""},           {"SYEAR", " "},   {"B.C.", "B.C."},
  };
  check(firstBC, at(0, 6, 15));
  const PrintRow caesar[] = {
      {"YYYY AD", "0044 BC"},
      {"SYYYY", "-0044"},
      {"FMSYYYY", "-44"},
      {"SCC", "-1"},
      {"SYEAR", "-FOURTY THREE"},
      {"YEAR", "FOURTY THREE"},
      {"YY", "44"},
      {"FMYYY", "44"},
  };
  check(caesar, at(-43, 3, 15));
  check({{"CC", "-1"}, {"SCC", "--1"}, {"YYYY", "0251"}}, at(-250, 6, 15));
}

TEST_F(Printed, YearsOfManyDigits) {
  const PrintRow rows[] = {
      {"YYYY", "12345"},
      {"YYY", "345"},
      {"SYYYY", " 12345"},
      {"FMYYYY", "12345"},
      {"Y,YYY", "12,345"},
      {"YY", "45"},
      {"YEAR", "12 THOUSAND THREE HUNDRED FOURTY FIVE"},
  };
  check(rows, at(12345, 6, 15));
}

TEST_F(Printed, YearsInWords) {
  const std::pair<sb4, const char *> rows[] = {
      {1, "ONE"},
      {10, "TEN"},
      {100, "ONE HUNDRED"},
      {1000, "ONE THOUSAND"},
      {1999, "ONE THOUSAND NINE HUNDRED NINTY NINE"},
      {2001, "TWO THOUSAND ONE"},
      {2015, "TWO THOUSAND TEN FIVE"},
      {2060, "TWO THOUSAND SIZTY"},
      {3333, "THREE THOUSAND THREE HUNDRED THIRTY THREE"},
      {9840, "NINE THOUSAND EIGHT HUNDRED FOURTY"},
  };
  for (const auto &[year, words] : rows) {
    EXPECT_EQ(print("YEAR", at(year, 6, 15)), words);
    EXPECT_EQ(print("SYEAR", at(year, 6, 15)), std::string(" ") + words);
  }
}

TEST_F(Printed, WeeksAndIsoYears) {
  const PrintRow newYear[] = {
      {"IW", "53"}, {"IYYY", "2004"},   {"IYY", "004"}, {"IY", "04"},
      {"I", "4"},   {"SYYYY", " 2004"}, {"WW", "01"},   {"W", "1"},
  };
  check(newYear, at(2005, 1, 1));
  check({{"IW", "01"}, {"IYYY", "2009"}, {"WW", "52"}, {"W", "5"}, {"DDD", "364"}},
        at(2008, 12, 29));
  check({{"WW", "01"}}, at(2001, 1, 8));
  check({{"WW", "02"}, {"W", "2"}}, at(2001, 1, 9));
}

TEST_F(Printed, DaysAndMonthsByName) {
  for (sb4 day = 0; day < 7; ++day) {
    const TmToChar value = at(2001, 2, 4 + day);
    EXPECT_EQ(print("FMDay", value), days[day]);
    EXPECT_EQ(print("Dy D", value),
              std::string(days_short[day]) + ' ' + std::to_string(day + 1));
    EXPECT_EQ(print("DAY", value).size(), 9u);
  }
  EXPECT_EQ(print("DAY", at(2001, 2, 4)), "SUNDAY   ");
  EXPECT_EQ(print("FMDAY", at(2001, 2, 4)), "SUNDAY");
  const char *const quarters = "111222333444";
  for (sb4 month = 1; month <= 12; ++month) {
    const TmToChar value = at(2001, month, 5);
    EXPECT_EQ(print("FMMonth", value), months_full[month - 1]);
    EXPECT_EQ(print("Mon", value), months[month - 1]);
    EXPECT_EQ(print("FMRM", value), rm_months_upper[12 - month]);
    EXPECT_EQ(print("FMrm", value), rm_months_lower[12 - month]);
    EXPECT_EQ(print("Q", value), std::string(1, quarters[month - 1]));
    EXPECT_EQ(print("RM", value).size(), 4u);
  }
}

TEST_F(Printed, ValuesWithoutAName) {
  for (const sb4 month :
       {0, 13, -1, std::numeric_limits<sb4>::max(), std::numeric_limits<sb4>::min()}) {
    TmToChar value = saturday();
    value.tm.tm_mon = month;
    for (const char *format : {"MONTH", "Mon", "RM", "rm"})
      EXPECT_EQ(print(format, value), "!1843") << format << month;
  }
  for (const sb4 day : {-1, 7, std::numeric_limits<sb4>::max()}) {
    TmToChar value = saturday();
    value.tm.tm_wday = day;
    for (const char *format : {"DAY", "Dy"})
      EXPECT_EQ(print(format, value), "!1846") << format << day;
  }
  TmToChar value = saturday();
  value.tm.tm_mon = 0;
  EXPECT_EQ(print("Q", value), "!0");
}

TEST_F(Printed, ExtremeFieldsHaveRoom) {
  TmToChar value{};
  for (const sb4 extreme :
       {std::numeric_limits<sb4>::max(), std::numeric_limits<sb4>::min()}) {
    value.tm = {extreme, extreme, extreme, extreme, 12,     extreme,
                3,       extreme, 0,       0,       nullptr};
    value.fsec = 1e300;
    value.tzHour = -128;
    value.tzMinute = 255;
    std::string format;
    for (sb4 i = 0; DCH_keywords[i].name; ++i) {
      const sb4 id = DCH_keywords[i].id;
      if (id == kE || id == kEE || id == kRR || id == kRRRR || i == 83 || id == kSSSSS)
        continue;
      format = DCH_keywords[i].name;
      EXPECT_NE(print(format + "TH" + format + "th", value, kZonedDescriptor)[0], '!')
          << format;
    }
  }
  std::string words;
  for (int i = 0; i < 63; ++i) words += "YEAR";
  EXPECT_EQ(print(words, at(7777, 6, 15)).size(),
            63 * std::string("SEVEN THOUSAND SEVEN HUNDRED SEVENTY SEVEN").size());
  std::string longDates;
  for (int i = 0; i < 127; ++i) longDates += "DL";
  EXPECT_EQ(print(longDates, at(2001, 9, 5)).size(),
            127 * std::string("Wednesday, September 05, 2001").size());
}

TEST_F(Printed, LocalizedNamesAreTheEnglishOnes) {
  for (sb4 i = 0; i < 12; ++i) {
    EXPECT_EQ(localize_month(i), months[i]);
    EXPECT_EQ(localize_month_full(i), months_full[i]);
  }
  for (sb4 i = 0; i < 7; ++i) EXPECT_EQ(localize_day(i), days[i]);
  EXPECT_EQ(localize_month(12), nullptr);
  EXPECT_EQ(localize_month_full(-1), nullptr);
  EXPECT_EQ(localize_day(7), nullptr);
}

TEST_F(Printed, ElementsOfOtherFamiliesAreNoElements) {
  char out[64];
  FormatNode node{};
  TmToChar value = saturday();
  EXPECT_EQ(dch_time(kJ, out, 0, 1, kOCIDate, &node, &value, records_.errhp), -1);
  EXPECT_EQ(dch_date(kHH, out, 0, 1, kOCIDate, &node, &value, records_.errhp), -1);
  EXPECT_EQ(dch_date(kElementLimit, out, 0, 1, kOCIDate, &node, &value, records_.errhp),
            -1);
  EXPECT_EQ(dch_date(-1, out, 0, 1, kOCIDate, &node, &value, records_.errhp), -1);
  EXPECT_EQ(dch_global(kFX, out, 0, 1, kOCIDate, &node, &value, records_.errhp), 0);
  EXPECT_EQ(records_.takeRecord(), 0);
}

}  // namespace
}  // namespace zevtest
