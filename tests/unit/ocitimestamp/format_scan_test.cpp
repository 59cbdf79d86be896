/// Texts read through format models.
#include <ctime>

#include "format_fixture.h"
#include "types/ocitimestamp/zone.h"

namespace zevtest {
namespace {

struct FieldRow {
  const char *format;
  const char *text;
  sb4 TmFromChar::*field;
  sb4 value;
};

struct FailureRow {
  const char *format;
  const char *text;
  int code;
};

class Scanned : public Formats {
 protected:
  template <std::size_t N>
  void checkFailures(const FailureRow (&rows)[N], sb4 kind = kOCIDate) {
    for (const FailureRow &row : rows)
      EXPECT_EQ(shown(row.format, row.text, kind), failure(row.code))
          << row.format << " of '" << row.text << "'";
  }

  template <std::size_t N>
  void checkFields(const FieldRow (&rows)[N], sb4 kind = kOCIDate) {
    for (const FieldRow &row : rows) {
      TmFromChar fields;
      EXPECT_EQ(this->fields(row.format, row.text, kind, fields), "")
          << row.format << " of '" << row.text << "'";
      EXPECT_EQ(fields.*row.field, row.value) << row.format << " of " << row.text;
    }
  }

  std::string thisYear(const std::string &rest) {
    const std::time_t now = std::time(nullptr);
    struct tm local;
    localtime_r(&now, &local);
    return std::to_string(local.tm_year + 1900) + rest;
  }
};

using F = TmFromChar;

TEST_F(Scanned, Dates) {
  const char *const rows[][3] = {
      {"DD-MON-YYYY", "03-FEB-2001", "2001-02-03 00:00:00"},
      {"DD-MON-YYYY", "03-feb-2001", "2001-02-03 00:00:00"},
      {"dd-mon-yyyy", "03-Feb-2001", "2001-02-03 00:00:00"},
      {"DD-MON-YYYY", "03/FEB.2001", "2001-02-03 00:00:00"},
      {"DD-MON-YYYY", "03FEB2001", "2001-02-03 00:00:00"},
      {"DD-MON-YYYY", "  3 - february - 2001", "2001-02-03 00:00:00"},
      {"YYYY-MM-DD HH24:MI:SS", "2001-12-31 23:59:58", "2001-12-31 23:59:58"},
      {"YYYYMMDDHH24MISS", "20010203040506", "2001-02-03 04:05:06"},
      {"YYYY Month DD", "2001 September 9", "2001-09-09 00:00:00"},
      {"DDTH Month YYYY", "3rd May 2001", "2001-05-03 00:00:00"},
      {"FMDD-FMMM-YYYY", "3-2-2001", "2001-02-03 00:00:00"},
      {"YYYY Q", "2001 1", "!1820"},
      {"DS", "2/3/2001", "2001-02-03 00:00:00"},
      {"DL", "Saturday, February 03, 2001", "2001-02-03 00:00:00"},
      {"YYYY TS", "2001 4:05:06 PM", "2001-02-01 16:05:06"},
      {"YYYY RM DD", "2001 IV 05", "2001-04-05 00:00:00"},
      {"YYYY MM DD", "2001", "2001-02-01 00:00:00"},
      {"YYYY MM DD", "2001-", "!1841"},
      {"YYYY.J", "2001.2451545", "2000-01-01 00:00:00"},
      {"J", "2440588", "1970-01-01 00:00:00"},
      {"YYYY-MM-DD BC", "0044-03-15 BC", "-43-03-15 00:00:00"},
      {"YYYY-MM-DD A.D.", "0044-03-15 b.c.", "-43-03-15 00:00:00"},
      {"YYYY SSSSS", "2001 86399", "2001-02-01 23:59:59"},
      {"YYYY SSSSS MI", "2001 86399 30", "2001-02-01 23:30:59"},
      {"YYYY HH:MI AM", "2001 12:30 AM", "2001-02-01 00:30:00"},
      {"YYYY HH:MI AM", "2001 12:30 PM", "2001-02-01 12:30:00"},
      {"YYYY HH:MI PM", "2001 11:30 PM", "2001-02-01 23:30:00"},
      {"YYYY HH:MI A.M.", "2001 01:30 P.M.", "2001-02-01 13:30:00"},
      {"YYYY HH:MI am", "2001 01:30 pm", "2001-02-01 13:30:00"},
      {"YYYY MS", "2001 5", "2001-02-01 00:00:00 +0.5"},
      {"YYYY MS", "2001 05", "2001-02-01 00:00:00 +0.05"},
      {"YYYY MS", "2001 005", "2001-02-01 00:00:00 +0.005"},
      {"YYYY US", "2001 5", "2001-02-01 00:00:00 +0.5"},
      {"YYYY US", "2001 000005", "2001-02-01 00:00:00 +5e-06"},
      {"MSUS YYYY", "25050 2001", "2001-02-01 00:00:00 +0.75"},
  };
  for (const auto &[format, text, result] : rows)
    EXPECT_EQ(shown(format, text), result) << format << " of " << text;
}

TEST_F(Scanned, WhatIsLeftOutIsThisYearsFirstOfFebruary) {
  EXPECT_EQ(shown("", "anything"), thisYear("-02-01 00:00:00"));
  EXPECT_EQ(shown("DD", "05"), thisYear("-02-05 00:00:00"));
  EXPECT_EQ(shown("MM", "05"), thisYear("-05-01 00:00:00"));
  EXPECT_EQ(shown("HH24:MI", "05:06"), thisYear("-02-01 05:06:00"));
  EXPECT_EQ(shown("DD", ""), thisYear("-02-01 00:00:00"));
}

TEST_F(Scanned, FieldsOfElements) {
  const FieldRow rows[] = {
      // clang-format off
      {"A.D.", "A.D.", &F::bc, 0},  {"A.D.", "B.C.", &F::bc, 1},
      {"B.C.", "a.d.", &F::bc, 0},  {"B.C.", "b.c.", &F::bc, 1},
      {"a.d.", "b.c.", &F::bc, 1},  {"b.c.", "a.d.", &F::bc, 0},
      {"b.c.", "B.C.", &F::bc, 0},  {"b.c.", "x", &F::bc, 0},
      {"AD", "AD", &F::bc, 0},      {"AD", "bc", &F::bc, 1},
      {"BC", "ad", &F::bc, 0},      {"BC", "BC", &F::bc, 1},
      {"ad", "bc", &F::bc, 1},      {"bc", "xy", &F::bc, 0},
      {"bc", "BC", &F::bc, 0},
      {"A.M.", "A.M.", &F::am, 1},  {"A.M.", "P.M.", &F::pm, 1},
      {"P.M.", "P.M.", &F::pm, 1},  {"P.M.", "A.M.", &F::am, 1},
      {"AM", "AM", &F::am, 1},      {"PM", "PM", &F::pm, 1},
      {"a.m.", "p.m.", &F::pm, 1},  {"p.m.", "a.m.", &F::am, 1},
      {"am", "pm", &F::pm, 1},      {"pm", "am", &F::am, 1},
      {"DAY", "SATURDAY", &F::d, 6}, {"Day", "sunday", &F::d, 0},
      {"day", "monday", &F::d, 1},   {"FMDay,DD", "Monday,05", &F::dd, 5},
      {"DAYDD", "Monday   05", &F::dd, 5}, {"DAYDD", "Wednesday05", &F::dd, 5},
      {"DY", "SAT", &F::d, 6},      {"Dy", "mon", &F::d, 1}, {"dy", "TUE", &F::d, 2},
      {"DYDD", "sat05", &F::dd, 5},
      {"DDD", "034", &F::ddd, 34},  {"ddd", "5", &F::ddd, 5}, {"DDDDD", "03405", &F::dd, 5},
      {"DD", "31", &F::dd, 31},     {"dd", "1", &F::dd, 1},
      {"D", "7", &F::d, 7},         {"d", " 1", &F::d, 1},
      {"HH24", "23", &F::hh, 23},   {"hh24", "0", &F::hh, 0},
      {"HH12", "12", &F::hh, 12},   {"HH", "01", &F::hh, 1}, {"hh", "7", &F::hh, 7},
      {"MI", "59", &F::mi, 59},     {"mi", "00", &F::mi, 0},
      {"MM", "12", &F::mm, 12},     {"mm", "1", &F::mm, 1},
      {"MM", "December", &F::mm, 12}, {"MM", "dec", &F::mm, 12},
      {"MONTH", "JUNE", &F::mm, 6}, {"Month", "jun", &F::mm, 6}, {"month", "May", &F::mm, 5},
      {"MON", "MARCH", &F::mm, 3},  {"Mon", "mar", &F::mm, 3},   {"mon", "MAR", &F::mm, 3},
      {"MON-DD", "05-07", &F::mm, 5}, {"MONTHTH", "05th", &F::mm, 5},
      {"MS", "123", &F::ms, 123},   {"ms", "12", &F::ms, 120},  {"MS", "1", &F::ms, 100},
      {"US", "123456", &F::us, 123456}, {"us", "1234", &F::us, 123400},
      {"RM", "XII", &F::mm, 12},    {"RM", "viii", &F::mm, 8}, {"rm", "IX", &F::mm, 9},
      {"rm", "i", &F::mm, 1},       {"FMRM-DD", "iv-05", &F::dd, 5},
      {"RMDD", "IV  05", &F::dd, 5},
      {"SSSSS", "86399", &F::ssss, 86399}, {"ssss", "0", &F::ssss, 0},
      {"SSSSS-", "90000", &F::ssss, 90000},
      {"SS", "59", &F::ss, 59},     {"ss", "0", &F::ss, 0},
      {"J", "2451545", &F::j, 2451545},
      {"YYYY", "2001", &F::year, 2001}, {"yyyy", "1", &F::year, 1},
      {"YYYY", "9999", &F::year, 9999}, {"SYYYY", "2001", &F::year, 2001},
      {"YYYYMM", "200112", &F::mm, 12}, {"YYYYTH", "2001st", &F::year, 2001},
      {"YYY", "999", &F::year, 2999},   {"YYY", "1999", &F::year, 1999},
      {"yyy", "0", &F::year, 2000},
      {"YY", "69", &F::year, 2069},     {"YY", "70", &F::year, 1970},
      {"yy", "99", &F::year, 1999},     {"YY", "100", &F::year, 100},
      {"Y", "5", &F::year, 2005},       {"y", "12345", &F::year, 14345},
      {"YYMM", "0112", &F::mm, 12},     {"YMM", "112", &F::mm, 12},
      {"YYYY", "2001", &F::yysz, 4},    {"YY", "2001", &F::yysz, 4},
      {"YYMM", "0112", &F::yysz, 2},    {"YYYMM", "00112", &F::yysz, 3},
      {"Y,YYY", "2,001", &F::year, 2001}, {"y,yyy", "12,345", &F::year, 12345},
      {"Y,YYY", "2,001", &F::yysz, 4},  {"Y,YYYMM", "2,00112", &F::mm, 12},
      {"FX", "", &F::dd, 0},
      // clang-format on
  };
  checkFields(rows);
}

TEST_F(Scanned, FieldsOfZonedTimestamps) {
  const FieldRow rows[] = {
      // clang-format off
      {"TZH", "+05", &F::tzh, 5},     {"TZH", "-05", &F::tzh, -5},
      {"TZH", "14", &F::tzh, 14},     {"TZH", "-12", &F::tzh, -12},
      {"TZH", "+05:30", &F::tzm, 30}, {"TZH", "-05:30", &F::tzm, 30},
      {"TZH", "-00:30", &F::tzm, -30}, {"TZH", "-00:30", &F::tzh, 0},
      {"TZH", "5:-59", &F::tzm, -59},
      {"TZH:TZM", "+05:30", &F::tzh, 5},  {"TZH:TZM", "+05:30", &F::tzm, 30},
      {"TZH:TZM", "-05:30", &F::tzh, -5}, {"TZH:TZM", "-05:30", &F::tzm, 30},
      {"TZH:TZM", "-05", &F::tzh, -5},    {"TZH:TZM", "-05", &F::tzm, 0},
      {"TZH:TZM", "05:30", &F::tzm, 30},  {"FMTZH", "-5", &F::tzh, -5},
      {"TZH:TZM", "59:00", &F::tzh, 59},
      {"TZM", "59", &F::tzm, 59},     {"TZM", "0", &F::tzm, 0},
      {"TZM", "7", &F::tzm, 7},       {"TZM-DD", "7-05", &F::dd, 5},
      {"TZR", "05", &F::tzh, 5},      {"TZR", "05 30", &F::tzm, 30},
      {"TZR", "05 30", &F::tzh, 5},   {"TZR", "05x30", &F::tzm, 30},
      {"TZR", "-9 30", &F::tzh, -9},  {"TZR-DD", "+05 30-07", &F::tzm, 30},
      {"TZR-DD", "+05 30-07", &F::dd, 7},
      {"TZR TZD", "05 30", &F::tzh, 5},
      {"X", ".", &F::dd, 0},
      // clang-format on
  };
  checkFields(rows, kZonedDescriptor);
}

TEST_F(Scanned, FractionsAreCounts) {
  struct Row {
    const char *format;
    const char *text;
    double fraction;
  };
  const Row rows[] = {
      {"SS.FF", "06.123", 123},
      {"SS.FF3", "06.123", 123},
      {"SSXFF", "06.5", 5},
      {"SSXFF9", "06.000000001", 1},
      {"SS.FF1", "06.123456", 123456},
      {"SS.FF0", "06.12", 12},
      {"FF", "1234567890123456", 1234567890123456.0},
  };
  for (const Row &row : rows) {
    for (const sb4 kind : {kTimestampDescriptor, kZonedDescriptor}) {
      const Read result = read(row.format, row.text, kind);
      EXPECT_EQ(result.status, 0) << row.format;
      EXPECT_EQ(result.fsec, row.fraction) << row.format << " of " << row.text;
    }
  }
  EXPECT_EQ(shown("FF", "12345678901234567", kTimestampDescriptor), "!1830");
  EXPECT_EQ(read("FF3", std::string(51, '0'), kTimestampDescriptor).status, 0);
  EXPECT_EQ(shown("FF3", std::string(52, '0'), kTimestampDescriptor), "!1830");
  EXPECT_EQ(read("FF0", std::string(48, '0'), kTimestampDescriptor).status, 0);
  EXPECT_EQ(shown("FF0", std::string(49, '0'), kTimestampDescriptor), "!1830");
}

TEST_F(Scanned, FailuresOfElements) {
  const FailureRow rows[] = {
      // clang-format off
      {"A.D.", "AD", 1856},  {"B.C.", "x", 1856},  {"AD", "A.D.", 1856},
      {"BC", "Bc", 1856},
      {"AM", "am", 1855},    {"am", "AM", 1855},   {"A.M.", "AM", 1855},
      {"PM", "x", 1855},     {"AM", "  ", 1830},
      {"CC", "21", 1820},    {"SCC", "21", 1820},  {"IW", "1", 1820}, {"Q", "1", 1820},
      {"WW", "1", 1820},     {"W", "1", 1820},     {"IYYY", "1", 1820},
      {"IYY", "1", 1820},    {"IY", "1", 1820},    {"I", "1", 1820},
      {"DAY", "someday", 1846}, {"DY", "xyz", 1846}, {"DY", "s", 1846},
      {"DDD", "x", 1858},
      {"DD", "32", 1847},    {"DD", "00", 1847},   {"DD", "x", 1858}, {"DD", "-1", 1858},
      {"FMDD", "4294967297", 1847},
      {"D", "0", 1846},      {"D", "8", 1846},     {"D", "x", 1846},
      {"E", "1", 1822},      {"EE", "1", 1822},    {"FF", "1", 1822},
      {"HH24", "24", 1850},  {"HH24", "x", 1858},
      {"HH12", "13", 1849},  {"HH", "0", 1849},    {"HH", "x", 1858},
      {"MI", "60", 1851},    {"MI", "x", 1858},
      {"MM", "13", 1843},    {"MM", "00", 1843},   {"MM", "x", 1858},
      {"MM-DD", "x", 1841},  {"MMTH", "x", 1841},
      {"MONTH", "05", 1843}, {"MON", "1", 1843},   {"MON", "Foo", 1858},
      {"MON-DD", "Foo", 1841}, {"MON-DD", "13-01", 1843},
      {"Month", "Ma", 1858}, {"MS", "x", 1858},    {"US", "x", 1858},
      {"RM", "A", 1843},     {"rm", "0", 1843},
      {"RR", "01", 30475},   {"RRRR", "2001", 30475},
      {"SSSSS", "86400", 1853}, {"SSSSS", "x", 1858}, {"SS", "60", 1852},
      {"SYEAR", "2001", 1820}, {"YEAR", "2001", 1820},
      {"YYYY", "0", 1841},   {"YYYY", "10000", 1830}, {"YYYY", "20011", 1830},
      {"YYYY", "x", 1858},   {"YYYY", "-5", 1858}, {"YYYY", "2001x", 1830},
      {"YYYY", "99999999999999999999", 1830},
      {"YYY", "10000", 1830}, {"YY", "10000", 1830}, {"Y", "x", 1858},
      {"Y,YYY", "x", 1858},  {"Y,YYY", "2.001", 1861}, {"Y,YYY", "2,x", 1858},
      {"J", "x", 1858},      {"j", "5", 0},
      {"TZD", "x", 1821},    {"TZH", "5", 1821},   {"TZM", "5", 1821}, {"TZR", "5", 1821},
      {"X", ".", 1821},
      // clang-format on
  };
  checkFailures(rows);
}

TEST_F(Scanned, FailuresOfZonedTimestamps) {
  const FailureRow rows[] = {
      {"TZH", "x", 1858},          {"TZH", "-", 1858},       {"TZH", "-13", 1874},
      {"TZH", "15", 1874},         {"TZH", "05:60", 1875},   {"TZH", "-00:60", 1875},
      {"TZH:TZM", "60:00", 1852},  {"TZH:TZM", "x", 1858},   {"TZH:TZM", "+", 1858},
      {"TZM", "60", 1852},         {"TZM", "-5", 1852},      {"TZM", "x", 1858},
      {"TZR", "15", 1852},         {"TZR", "05 60", 1852},   {"TZR", "05:30", 1830},
      {"TZR", "+05:30", 1830},     {"TZH", "+05:30x", 1830}, {"X", ",", 1821},
      {"E", "1", 30475},           {"EE", "1", 30475},       {"RR", "1", 30475},
      {"TZR-DD", "-13 0-1", 1852},
  };
  checkFailures(rows, kZonedDescriptor);
}

TEST_F(Scanned, KindsOfValues) {
  struct Row {
    const char *format;
    const char *text;
    int codes[4];  ///< by kind
  };
  const Row rows[] = {
      {"E", "1", {1822, 1822, 1822, 30475}},
      {"FF", "1", {1821, 1822, 0, 0}},
      {"X", ".", {1821, 1821, 0, 0}},
      {"TZD", "", {1821, 0, 1821, 0}},
      {"TZD", "x", {1821, 1821, 1821, 1830}},
      {"TZH", "5", {1821, 1821, 1821, 0}},
      {"TZM", "5", {1821, 1821, 1821, 0}},
      {"TZR", "5", {1821, 1821, 1821, 0}},
      {"RR", "1", {30475, 30475, 1878, 30475}},
      {"RM", "I", {0, 0, 1878, 0}},
      {"HH24", "5", {1821, 0, 0, 0}},
      {"YYYY", "2001", {0, 0, 0, 0}},
      {"MS", "5", {1821, 0, 0, 0}},
  };
  for (const Row &row : rows) {
    for (const sb4 kind : kAllKinds) {
      const Read result = read(row.format, row.text, kind);
      EXPECT_EQ(result.code, row.codes[kind - 1]) << row.format << " of kind " << kind;
      EXPECT_EQ(result.status, row.codes[kind - 1] ? -1 : 0);
    }
  }
}

TEST_F(Scanned, TextBetweenElements) {
  struct Row {
    const char *format;
    const char *text;
    int code;
  };
  const Row rows[] = {
      {"DD-MM", "05-06", 0},
      {"DD-MM", "05 06", 0},
      {"DD-MM", "05 / 06", 0},
      {"DD-MM", "0506", 1847},
      {"DD-MM", "05--06", 1858},
      {"DD MM", "0506", 1847},
      {"DD MM", "05-06", 1858},
      {"DD  MM", "05 06", 0},
      {"DD-MM", "05", 0},
      {"DD-MM", "05-", 0},
      {"DDxMM", "05", 1821},
      {"DDxMM", "05x06", 1821},
      {"DD\"x\"MM", "05", 0},
      {"DD\"x\"MM", "05x06", 0},
      {"DD\"x\"MM", "05  x06", 0},
      {"DD\"x\"MM", "05y06", 1861},
      {"DD\"xy\"MM", "05x", 1861},
      {"DD-\"x\"MM", "05-x06", 0},
      {"DD-\"x\"MM", "05/x06", 1861},
      {"DD-\"x\"MM", "05x06", 1861},
      {"DD \"of\" MM", "05 of 06", 0},
      {"DD \"of\" MM", "05of 06", 1861},
      {"DD - \"x\" MM", "05 - x 06", 0},
      {"DD\" of \"MM", "05 of 06", 1861},
      {"DD\"a\"\"b\"MM", "05ab06", 0},
      {"DD\"a\"-MM", "05a-06", 0},
      {"DD\"a\"-MM", "05a/06", 1861},
      {"-DD", "05", 0},
      {"-DD", "- 05", 0},
      {" DD", "  05", 0},
      {" ", "x", 1861},
      {"-", "x", 1861},
      {"- -", "x", 1861},
      {"x", "x", 1821},
      {"DD", "05 ", 1830},
      {"DD", "05x", 1830},
      {"DD-", "05-", 0},
      {"DD-", "05-x", 1830},
      {"DD\"", "05", 0},
      {"DD\xc3", "05", 1821},
      {"FXDD-MM", "05-06", 0},
      {"FXDD-MM", "05/06", 1861},
      {"FXDD-MM", "05 06", 1861},
      {"FXDD MM", "05 06", 0},
      {"FXDD MM", "05  06", 1858},
      {"FXDDxMM", "05x06", 0},
      {"FXDDxMM", "05", 1821},
      {"FXDD-MM", "05", 0},
      {"FX-DD", "-05", 0},
      {"DD-MMFX", "05/06", 1861},
      {"FX\xc3\xa4 DD", "\xc3\xa4 05", 0},
  };
  for (const Row &row : rows) {
    const Read result = read(row.format, row.text);
    EXPECT_EQ(result.code, row.code) << row.format << " of '" << row.text << "'";
    EXPECT_EQ(result.status, row.code ? -1 : 0) << row.format << " of " << row.text;
  }
}

TEST_F(Scanned, ADifferentLiteralNamesAString) {
  EXPECT_EQ(read("DD\"x\"", "05y").code, 1861);
  EXPECT_EQ(records_.lastMessage, "KESTREL-01861: illegal literal for format string");
}

TEST_F(Scanned, FillModeReadsAllDigits) {
  EXPECT_EQ(shown("FMMM", "5"), thisYear("-05-01 00:00:00"));
  EXPECT_EQ(shown("FMDDMMYYYY", "05"), thisYear("-02-05 00:00:00"));
  EXPECT_EQ(shown("FMDDMM", "0506"), "!1847");
  EXPECT_EQ(shown("DDMM", "0506"), thisYear("-06-05 00:00:00"));
  EXPECT_EQ(shown("DD-MM", "000005-06"), thisYear("-06-05 00:00:00"));
  EXPECT_EQ(shown("DD-MM", "00000000005-06"), "!1830");
}

TEST_F(Scanned, TheTextStaysAsItIs) {
  const std::string text = "sAtUrDaY, fEbRuArY 03, 2001";
  std::string copy = text;
  PGtm tm;
  double fsec = 0;
  EXPECT_EQ(do_to_timestamp(records_.errhp, copy.c_str(), "DL", &tm, &fsec, kOCIDate), 0);
  EXPECT_EQ(copy, text);
}

TEST_F(Scanned, WidthsEndWithTheText) {
  for (const char *format : {"DAY", "RM", "a.d.", "ad", "DDTH", "YYYYTH", "MONTHTH"}) {
    for (const char *text : {"sunday", "i", "a", "5", "2001", "may"}) {
      TmFromChar fields;
      this->fields(format, text, kZonedDescriptor, fields);
    }
  }
  EXPECT_EQ(shown("DDTH", "5"), thisYear("-02-05 00:00:00"));
  EXPECT_EQ(shown("DAY", "Sunday"), thisYear("-02-01 00:00:00"));
}

// What the fields make of a date.

class Settled : public Formats {
 protected:
  /// Settles fields over 2001-02-01 00:00:00.
  std::string settled(const TmFromChar &fields, int code = 0) {
    PGtm tm = dateTime(2001, 2, 1);
    fsec_ = 0;
    settle(fields, records_.errhp, tm, fsec_);
    EXPECT_EQ(records_.takeRecord(), code);
    wday_ = tm.tm_wday;
    yday_ = tm.tm_yday;
    return zevtest::shown(tm);
  }

  double fsec_ = 0;
  sb4 wday_ = 0;
  sb4 yday_ = 0;
};

TEST_F(Settled, Clock) {
  EXPECT_EQ(settled({.ssss = 86399}), "2001-02-01 23:59:59");
  EXPECT_EQ(settled({.hh = 5, .mi = 6, .ss = 7, .ssss = 86399}), "2001-02-01 05:06:07");
  EXPECT_EQ(settled({.hh = 5, .pm = 1}), "2001-02-01 17:00:00");
  EXPECT_EQ(settled({.hh = 12, .pm = 1}), "2001-02-01 12:00:00");
  EXPECT_EQ(settled({.hh = 12, .am = 1}), "2001-02-01 00:00:00");
  EXPECT_EQ(settled({.hh = 12, .am = 1, .pm = 1}), "2001-02-01 12:00:00");
  EXPECT_EQ(settled({.hh = 13, .pm = 1}, 1849), "2001-02-01 13:00:00");
  EXPECT_EQ(settled({.am = 1}, 1849), "2001-02-01 00:00:00");
  EXPECT_EQ(settled({.pm = 1}, 1849), "2001-02-01 12:00:00");
  EXPECT_EQ(settled({.ms = 250, .us = 125}), "2001-02-01 00:00:00");
  EXPECT_DOUBLE_EQ(fsec_, 0.250125);
}

TEST_F(Settled, Dates) {
  EXPECT_EQ(settled({.dd = 5, .mm = 6, .year = 7}), "0007-06-05 00:00:00");
  EXPECT_EQ(settled({.d = 3}), "2001-02-01 00:00:00");
  EXPECT_EQ(wday_, 3);
  EXPECT_EQ(settled({.q = 3}), "2001-07-01 00:00:00");
  EXPECT_EQ(settled({.mm = 5, .q = 4}), "2001-05-01 00:00:00");
  EXPECT_EQ(settled({.q = 5}), "2001-02-01 00:00:00");
  EXPECT_EQ(settled({.w = 3}), "2001-02-15 00:00:00");
  EXPECT_EQ(settled({.j = 2451545}), "2000-01-01 00:00:00");
  EXPECT_EQ(settled({.iw = 1}), "2001-01-01 00:00:00");
  EXPECT_EQ(settled({.year = 2005, .iw = 53}), "2006-01-02 00:00:00");
}

TEST_F(Settled, Centuries) {
  EXPECT_EQ(settled({.cc = 19}), "1800-02-01 00:00:00");
  EXPECT_EQ(settled({.year = 1985, .cc = 19, .yysz = 2}), "1885-02-01 00:00:00");
  EXPECT_EQ(settled({.year = 2005, .cc = 19, .yysz = 2}), "1805-02-01 00:00:00");
  EXPECT_EQ(settled({.year = 2005, .cc = 19, .yysz = 1}), "1805-02-01 00:00:00");
  EXPECT_EQ(settled({.year = 1234, .cc = 19, .yysz = 4}), "1234-02-01 00:00:00");
}

TEST_F(Settled, Eras) {
  EXPECT_EQ(settled({.year = 44, .bc = 1}), "-043-02-01 00:00:00");
  EXPECT_EQ(settled({.bc = 1}), "-2000-02-01 00:00:00");
  PGtm tm = dateTime(0, 2, 1);
  double fsec = 0;
  settle({.bc = 1}, records_.errhp, tm, fsec);
  EXPECT_EQ(records_.takeRecord(), 0);
  EXPECT_EQ(records_.lastMessage, "inconsistent use of year 0000 and \"BC\"");
  EXPECT_EQ(tm.tm_year, 0);
}

TEST_F(Settled, DaysOfTheYearCountFromTheEndOfTheMonthBefore) {
  EXPECT_EQ(settled({.ddd = 45}), "2001-02-14 00:00:00");
  EXPECT_EQ(yday_, 45);
  EXPECT_EQ(settled({.ddd = 100}), "2001-02-10 00:00:00");
  EXPECT_EQ(settled({.ddd = 100, .mm = 1}), "2001-04-10 00:00:00");
  EXPECT_EQ(settled({.dd = 7, .ddd = 100, .mm = 1}), "2001-04-07 00:00:00");
  EXPECT_EQ(settled({.dd = 7, .ddd = 100, .mm = 5}), "2001-05-07 00:00:00");
  EXPECT_EQ(settled({.ddd = 30, .mm = 1}), "2001-01-30 00:00:00");
  EXPECT_EQ(settled({.ddd = 31, .mm = 1}), "2001-02-00 00:00:00");
  EXPECT_EQ(settled({.ddd = 60, .mm = 1, .year = 2000}), "2000-03-00 00:00:00");
  EXPECT_EQ(settled({.ddd = 61, .mm = 1, .year = 2000}), "2000-03-01 00:00:00");
  EXPECT_EQ(settled({.ddd = 365, .mm = 1}), "2001-12-31 00:00:00");
  EXPECT_EQ(settled({.ddd = 366, .mm = 1, .year = 2000}), "2000-12-31 00:00:00");
  EXPECT_EQ(settled({.ww = 2}), "2001-02-08 00:00:00");
  EXPECT_EQ(yday_, 8);
}

TEST_F(Settled, ADayOfTheYearWithoutAYearIsTold) {
  PGtm tm = dateTime(0, 2, 1);
  double fsec = 0;
  settle({.ddd = 45}, records_.errhp, tm, fsec);
  EXPECT_EQ(records_.takeRecord(), 0);
  EXPECT_EQ(records_.lastMessage,
            "cannot calculate day of year without year information");
  EXPECT_EQ(tm.tm_mday, 14);
}

TEST_F(Scanned, FindingsDoNotStopTheCall) {
  Read result = read("YYYY HH24 PM", "2001 13 PM");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.code, 1849);
  EXPECT_EQ(result.tm.tm_hour, 13);
}

TEST_F(Scanned, AZoneAtTheEndOfTheModelIsTheValues) {
  const LocalZone utc("UTC");
  struct Row {
    const char *format;
    const char *text;
    std::int64_t offset;
  };
  const Row rows[] = {
      {"TZH", "+05", 18000},        {"YYYY TZH", "2001 -05", -18000},
      {"TZH:TZM", "+05:30", 19800}, {"TZH:TZM", "-05:30", -19800},
      {"TZH", "-05:30", -19800},    {"TZH", "-00:30", -1800},
      {"TZH", "5:-30", -19800},     {"TZH YYYY", "+05 2001", 0},
      {"TZM", "30", 1800},          {"TZR", "05 30", 0},
      {"YYYY TZD", "2001 ", 0},     {"YYYY tzh", "2001", -1},
  };
  for (const Row &row : rows) {
    const Read result = read(row.format, row.text, kZonedDescriptor);
    if (row.offset == -1) {
      EXPECT_EQ(result.code, 1821);
      continue;
    }
    EXPECT_EQ(result.status, 0) << row.format;
    EXPECT_EQ(result.tm.tm_gmtoff, row.offset) << row.format << " of " << row.text;
  }
}

TEST_F(Scanned, WithoutAZoneTheLocalOneHolds) {
  const LocalZone east("XYZ-3:30");
  const Read local = read("YYYY-MM-DD", "2001-02-03");
  EXPECT_EQ(local.tm.tm_gmtoff, 12600);
  EXPECT_EQ(local.tm.tm_isdst, 0);
  EXPECT_EQ(read("YYYY", "2100").tm.tm_gmtoff, 0);
  EXPECT_EQ(read("YYYY TZH", "2001 +05", kZonedDescriptor).tm.tm_gmtoff, 18000);
}

TEST(ZoneInFormat, OnlyAtTheEndAndInCapitals) {
  for (const char *format : {"TZH", "TZM", "TZD", "DD TZH:TZM"})
    EXPECT_EQ(hasTimeZoneInFormat(format), 0) << format;
  for (const char *format : {"", "T", "TZ", "TZR", "tzh", "TZH ", "TZHDD", "TZHTH"})
    EXPECT_EQ(hasTimeZoneInFormat(format), -1) << format;
}

// Words and digits.

TEST(Words, AreFoundInTheCaseOfTheirType) {
  struct Row {
    const char *text;
    const char *const *table;
    sb4 type;
    sb4 max;
    sb4 index;
    sb4 length;
    const char *rewritten;
  };
  const Row rows[] = {
      {"sUNDAYX", days, 1, 0, 0, 6, "SundayX"},
      {"sUN", days, 1, 3, 0, 3, "Sun"},
      {"SUNX", days, 1, 0, -1, 0, "Sunx"},
      {"viii-", rm_months_upper, 2, 0, 4, 4, "VIII-"},
      {"XI", rm_months_lower, 3, 0, 1, 2, "xi"},
      {"", days, 1, 0, -1, 0, ""},
      {"Zzz", months, 1, 0, -1, 0, "Zzz"},
  };
  for (const Row &row : rows) {
    std::string text = row.text;
    sb4 length = -1;
    EXPECT_EQ(seq_search(text.data(), row.table, row.type, row.max, &length), row.index);
    EXPECT_EQ(length, row.length) << row.text;
    EXPECT_EQ(text, row.rewritten);
  }
}

TEST(Digits, Lengths) {
  EXPECT_EQ(strspace_len(" \t\n\v\f\rx"), 6);
  EXPECT_EQ(strspace_len(""), 0);
  EXPECT_EQ(strdigits_len("  123x"), 5);
  EXPECT_EQ(strdigits_len("12345678901234"), 10);
  EXPECT_EQ(strdigits_len("            1"), 12);
  EXPECT_EQ(strdigits_len("-1"), 0);
  for (const char *text : {"1", "-", "+5"}) EXPECT_NE(isLeadingDigit(text), 0) << text;
  for (const char *text : {"", " 1", "x", ".5"}) EXPECT_EQ(isLeadingDigit(text), 0);
}

}  // namespace
}  // namespace zevtest
