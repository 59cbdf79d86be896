/// Numbers into string values, limited by the string's allocated size.
#include "types/numeric.h"
#include "types_fixture.h"
#include "zevoci/string_value.h"

namespace zevtest {
namespace {

class FetchStringValue : public testing::TestWithParam<StringFetchCase> {
 protected:
  Session session;
};

TEST_P(FetchStringValue, Arrives) {
  expectStringFetch(session, GetParam());
}

const Oid kInt2 = INT2OID, kInt4 = INT4OID, kInt8 = INT8OID, kFloat4 = FLOAT4OID,
          kFloat8 = FLOAT8OID, kNumeric = NUMERICOID;
const std::string k70000 = std::string(70000, '1');

// clang-format off
//                  name               oid    format value  cap size target       length indicator ...
INSTANTIATE_TEST_SUITE_P(Text, FetchStringValue, testing::Values(
    StringFetchCase{"Int2Fits",                 kInt2, 0, "123", 8, 5, "123\0~"s + '~',      3},
    StringFetchCase{"Int2ExactFit",             kInt2, 0, "123", 8, 4, "123\0"s + '~',       3},
    StringFetchCase{"Int2Truncated",            kInt2, 0, "123", 8, 3, "12\0"s + '~',        2, 1, 1406, 1},
    StringFetchCase{"Int4WithoutIndicator",     kInt4, 0, "12345", 8, 3, "12\0"s + '~',       2, kNoIndicator, 1406, 1},
    StringFetchCase{"Int8Truncated",            kInt8, 0, "12345", 8, 3, "12\0"s + '~',       2, 3, 1406, 1},
    StringFetchCase{"Float4Truncated",          kFloat4, 0, "12.5", 8, 3, "12\0"s + '~',        2, 2, 1406, 1},
    StringFetchCase{"Float8Fits",               kFloat8, 0, "12.5", 8, 5, "12.5\0"s + '~',      4},
    StringFetchCase{"NumericFits",              kNumeric, 0, "1.50", 8, 6, "1.50\0~"s + '~',     4},
    StringFetchCase{"NumericTruncated",         kNumeric, 0, "1.50", 8, 3, "1.\0"s + '~',        2, 2, 1406, 1},
    StringFetchCase{"ManyMissingBytes",         kInt4, 0, k70000, 8, 3, "11\0"s + '~',        2, 65534, 1406, 1},
    StringFetchCase{"NoMemoryAtAll",            kInt4, 0, "123", 8, 0, ""s + '~',             0, 4, 1406, 1},
    StringFetchCase{"Null",                     kInt2, 0, "", 8, 3, "~~~"s + '~',         9, -1, kNoRecord, 0, 1405},
    StringFetchCase{"NullWithoutIndicator",     kFloat8, 0, "", 8, 3, "~~~"s + '~',         9, kNoIndicator, 1405, 1, 1405},
    StringFetchCase{"OtherFormat",              kInt2, 2, "123", 8, 5, "~~~~~"s + '~',       9, 0, kNoRecord, -1}));

// Where the printed text has no room, the bytes of the field itself come.
INSTANTIATE_TEST_SUITE_P(Binary, FetchStringValue, testing::Values(
    StringFetchCase{"Int2InOrder",              kInt2, 1, network<sb2>(-123), 8, 6, "-123\0~"s + '~',    4},
    StringFetchCase{"Int2TruncatedField",       kInt2, 1, network<sb2>(0x4142), 8, 4, "AB~\0"s + '~',    3, 2, 1406, 1},
    StringFetchCase{"Int4InOrder",              kInt4, 1, network<sb4>(-123), 8, 6, "-123\0~"s + '~',    4},
    StringFetchCase{"Int4TruncatedField",       kInt4, 1, network<sb4>(0x41424344), 8, 4, "ABC\0"s + '~', 3, 7, 1406, 1},
    StringFetchCase{"Int8Reversed",             kInt8, 1, network<sb8>(123), 8, 5, "321\0~"s + '~',      3},
    StringFetchCase{"Int8TruncatedText",        kInt8, 1, network<sb8>(12345), 8, 4, "543\0"s + '~',     3, 2, 1406, 1},
    StringFetchCase{"Float4",                   kFloat4, 1, network(12.5f), 8, 11, "21.000005\0~"s + '~', 9},
    StringFetchCase{"Float8Beyond",             kFloat8, 1, network(1e300), 8, 4, "~~~~"s + '~',               9, 0, kNoRecord, -1},
    StringFetchCase{"Int2TooShort",             kInt2, 1, "1", 8, 3, "~~~"s + '~',                    9, 0, kNoRecord, -1},
    StringFetchCase{"NumericTooShort",          kNumeric, 1, "1234567", 8, 3, "~~~"s + '~',                 9, 0, kNoRecord, -1}));
// clang-format on

TEST_F(FetchStringValue, ShortTargetsAreRefusedButThoseOfNumerics) {
  OCIString string{0, 0, nullptr};
  OCIString *target = &string;
  const auto fetch = [&](FromServerConverter convert, ub4 cap) {
    return convert(session.errhp, "1", 1, 0, &target, &cap, nullptr, nullptr);
  };
  for (const auto convert :
       {ConvertINT2OIDToSQLT_VST, ConvertINT4OIDToSQLT_VST, ConvertINT8OIDToSQLT_VST,
        ConvertFLOAT4OIDToSQLT_VST, ConvertFLOAT8OIDToSQLT_VST}) {
    EXPECT_EQ(fetch(convert, 3), -1);
  }
  EXPECT_EQ(fetch(ConvertNUMERICOIDToSQLT_VST, 0), 0);
  EXPECT_EQ(fetch(ConvertNUMERICOIDToSQLT_VST, 1), 1);
  EXPECT_EQ(session.takeRecord(), 1406);
}

/// A float whose network bytes are printable ones.
TEST_F(FetchStringValue, BinaryFloatsTruncateToTheirField) {
  const std::string field = "@AAA";  // 3.016...
  OraText text[] = "~~~~";
  OCIString string{4, 9, text};
  OCIString *target = &string;
  ub4 length = sizeof target;
  sb2 indicator = 0;
  EXPECT_EQ(ConvertFLOAT4OIDToSQLT_VST(session.errhp, field.c_str(), 4, 1, &target,
                                       &length, &indicator, nullptr),
            1);
  EXPECT_STREQ(reinterpret_cast<char *>(text), "@AA");
  EXPECT_EQ(string.length, 3u);
  EXPECT_EQ(session.takeRecord(), 1406);
}

// The record is read as it stands, its fields in network order: what comes out is no
// number, but it stays inside the string and reads nothing beyond the field.
TEST_F(FetchStringValue, BinaryNumericsAreReadUnswapped) {
  auto random = generator();
  for (int i = 0; i < 2000; ++i) {
    std::string field(8 + random() % 40, '\0');
    for (char &c : field) c = static_cast<char>(random());
    if (i % 2 == 0) field.replace(0, 8, network<sb2>(1) + network<sb2>(0) + "\0\0\0\0"s);
    const auto value = exactCopy(field);
    const auto text = guarded(40);
    OCIString string{40, 99, reinterpret_cast<OraText *>(text.get())};
    OCIString *target = &string;
    ub4 length = sizeof target;
    const sword result = ConvertNUMERICOIDToSQLT_VST(session.errhp, value.get(),
                                                     static_cast<sb4>(field.size()), 1,
                                                     &target, &length, nullptr, nullptr);
    EXPECT_GE(result, 0);
    EXPECT_LT(string.length, 40u);
    EXPECT_EQ(text[string.length], '\0');
    EXPECT_EQ(session.takeRecord(), result == 1 ? 1406 : kNoRecord);
  }
}

TEST_F(FetchStringValue, UnswappedNumericOfKnownBytes) {
  // 512 digits as they stand: the field's own 0x0C00 and zeros; weight 0.
  const std::string field = "\x00\x02\x00\x00\x00\x00\x00\x00\x0C\x00"s;
  OraText text[64] = {};
  OCIString string{sizeof text, 0, text};
  OCIString *target = &string;
  ub4 length = sizeof target;
  EXPECT_EQ(ConvertNUMERICOIDToSQLT_VST(session.errhp, field.data(), 10, 1, &target,
                                        &length, nullptr, nullptr),
            0);
  EXPECT_STREQ(reinterpret_cast<char *>(text), "12.000000000000000000000");
}

}  // namespace
}  // namespace zevtest
