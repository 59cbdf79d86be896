/// OCINumbers from and to text.
#include <memory>

#include "ocinumber_fixture.h"

namespace zevtest {
namespace {

class OciNumberText : public Numbers {
 protected:
  /// The text, or the record; "-1" for a failure without one.
  std::string toText(const std::string &from, const std::string &format, ub4 room = 64) {
    const OCINumber x = number(from);
    // No byte behind the format or the buffer is there to be touched.
    const std::unique_ptr<OraText[]> exact(new OraText[format.size()]),
        buffer(new OraText[room]);
    std::memcpy(exact.get(), format.data(), format.size());
    ub4 size = room;
    const sword status =
        OCINumberToText(err(), &x, exact.get(), static_cast<ub4>(format.size()), nullptr,
                        0, &size, buffer.get());
    if (status != OCI_SUCCESS) return recordOr("-1");
    reported_ = size;
    return {reinterpret_cast<char *>(buffer.get()), std::min(size, room)};
  }
  std::string fromText(const std::string &text, const std::string &format) {
    const std::unique_ptr<OraText[]> exact(new OraText[text.size()]);
    std::memcpy(exact.get(), text.data(), text.size());
    OCINumber x = number("77");
    const sword status = OCINumberFromText(
        err(), exact.get(), static_cast<ub4>(text.size()), oraText(format.c_str()),
        static_cast<ub4>(format.size()), nullptr, 0, &x);
    return status == OCI_SUCCESS ? value(x) : recordOr("-1");
  }
  std::string recordOr(const std::string &otherwise) {
    text_.clear();
    const int code = take(&text_);
    return code ? "record " + std::to_string(code) : otherwise;
  }

  std::string text_;
  ub4 reported_ = 0;
};

TEST_F(OciNumberText, DigitsFillTheFormat) {
  struct Row {
    const char *number, *format, *text;
  };
  for (const Row &row :
       {Row{"1234.5", "9G999D9", " 1,234.5"}, Row{"-1234.5", "9G999D9", "-1,234.5"},
        Row{"1234.56", "9G999D9", " 1,234.6"}, Row{"0", "999", "   0"},
        Row{"0", "9D99", " 0.00"}, Row{"5", "999", "   5"}, Row{"-5", "999", "  -5"},
        Row{"12", "9G999", "   1,2"}, Row{"12345", "999", "record 22065"},
        Row{"-123", "999", "-123"}, Row{"-1234", "999", "record 22065"},
        Row{"1.5", "9", " 2"}, Row{"1", "G999", "record 22061"},
        Row{"1", "", "record 22065"}}) {
    EXPECT_EQ(toText(row.number, row.format), row.text)
        << row.number << " by " << row.format;
  }
}

TEST_F(OciNumberText, FormatsThatBeginWithAGroupAreNamed) {
  EXPECT_EQ(toText("1", "G999"), "record 22061");
  EXPECT_EQ(text_, "KESTREL-22061: Format text not valid [G999]\n");
  EXPECT_EQ(toText("12345", "999"), "record 22065");
  EXPECT_EQ(text_, "KESTREL-22065: Invalid format for number to text translation \n");
}

TEST_F(OciNumberText, BuffersAreToldTheirLength) {
  EXPECT_EQ(toText("5", "999", 4), "   5");
  EXPECT_EQ(reported_, 4u);
  EXPECT_EQ(toText("5", "999", 3), "-1");
  EXPECT_EQ(toText("5", "999", 0), "-1");
}

TEST_F(OciNumberText, TheMinimalFormatPrintsFortyDecimals) {
  const std::string whole = "1.5" + std::string(39, '0');
  EXPECT_EQ(toText("1.5", "TM9", 100).substr(0, 41), whole.substr(0, 41));
  EXPECT_EQ(reported_, 41u);
  EXPECT_EQ(toText("1.5", "TM9", 40), whole.substr(0, 40));
  EXPECT_EQ(toText("1.5", "TM9", 39), "-1");
}

TEST_F(OciNumberText, LongFormats) {
  const std::string format = "9D" + std::string(3000, '9');
  EXPECT_EQ(toText("1.5", format, 4000), " 1.5" + std::string(2999, '0'));
}

TEST_F(OciNumberText, TextIsReadWithItsGroups) {
  struct Row {
    const char *text, *format, *number;
  };
  for (const Row &row :
       {Row{"1,234", "9G999", "1234e0"}, Row{"12,34", "9G999", "record 22062"},
        Row{"-1,234", "9G999", "-1234e0"}, Row{"+1,234", "9G999", "record 22062"},
        Row{",234", "9G999", "record 22062"}, Row{"+1", "G9", "record 22061"},
        Row{"1234", "G999", "record 22061"}, Row{"1234", "9G999", "record 22062"},
        Row{"1,234,567", "9G999", "record 22062"}, Row{"1", "9G999", "record 22062"},
        Row{"1,234.5", "9G999D9", "12345e-1"}, Row{"12.5", "", "125e-1"},
        Row{"12.5", "any9format", "125e-1"}, Row{"1,234", "9999", "1234e0"},
        Row{"abc", "999", "-1"}, Row{"", "999", "-1"}}) {
    EXPECT_EQ(fromText(row.text, row.format), row.number)
        << row.text << " by " << row.format;
  }
}

TEST_F(OciNumberText, BadInputIsNamed) {
  EXPECT_EQ(fromText("12,34", "9G999"), "record 22062");
  EXPECT_EQ(text_, "KESTREL-22062: Input string not valid [12,34]\n");
  EXPECT_EQ(fromText("1234", "G999"), "record 22061");
  EXPECT_EQ(text_, "KESTREL-22061: Format text not valid [G999]\n");
}

TEST_F(OciNumberText, LengthsMustBeThoseOfTheTexts) {
  EXPECT_EQ(fromText(std::string("1,\0"
                                 "34",
                                 5),
                     "9G999"),
            "-1");
  EXPECT_EQ(fromText("1,234", std::string("9G\0"
                                          "99",
                                          5)),
            "-1");
}

TEST_F(OciNumberText, RandomNumbersThereAndBack) {
  for (int i = 0; i < rounds(20000, 1000000); ++i) {
    std::string text = std::to_string(between(0, 999999));
    const std::string decimals = std::to_string(between(100, 999));
    const std::string given = text + "." + decimals;
    std::string format(text.size(), '9');
    format += "D999";
    const std::string printed = toText(given, format);
    ASSERT_EQ(printed, " " + given);
    ASSERT_EQ(fromText(given, format), value(number(given)));
  }
}

}  // namespace
}  // namespace zevtest
