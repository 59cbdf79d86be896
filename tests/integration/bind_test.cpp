/// Bound values as the server sees them, and what the engine does to indicators.
#include <algorithm>
#include <cstring>

#include "tests/integration/support/oci_test.h"

namespace zev::test {
namespace {

/// One bound value and the server's own text of it.
struct Bound {
  const char *name;
  const char *sql;  ///< an expression with the placeholder :v
  ub2 type;
  std::string bytes;       ///< the program's buffer, its text in UTF-8
  const char *seen;        ///< the expression as text; null for NULL
  std::size_t prefix = 0;  ///< bytes of a length in front of the text
};

/// Types whose values are the program's text.
bool isText(ub2 type) {
  constexpr ub2 kTexts[] = {SQLT_CHR, SQLT_AFC, SQLT_STR, SQLT_AVC,
                            SQLT_LNG, SQLT_VCS, SQLT_LVC};
  return std::ranges::find(kTexts, type) != std::end(kTexts);
}

/// The buffer of a row as the program has it. A length in front of text counts bytes.
std::string bufferOf(const Bound &row) {
  if (!isText(row.type)) return row.bytes;
  std::string prefix = row.bytes.substr(0, row.prefix);
  if (!prefix.empty()) prefix[0] = bytes(prefix[0]);
  return prefix + encoded(row.bytes.substr(row.prefix));
}

template <class T>
std::string bytesOf(T value) {
  std::string bytes(sizeof value, '\0');
  std::memcpy(bytes.data(), &value, sizeof value);
  return bytes;
}

std::string prefixed(const std::string &prefix, const std::string &rest) {
  return prefix + rest;
}

// clang-format off
const Bound kBound[] = {
    {"IntOfTwoBytes",         ":v::int2",             SQLT_INT, bytesOf<sb2>(-1234),              "-1234"},
    {"IntOfFourBytes",        ":v::int4",             SQLT_INT, bytesOf<sb4>(-2147483647),        "-2147483647"},
    {"IntOfEightBytes",       ":v::int8",             SQLT_INT, bytesOf<sb8>(4294967301),         "4294967301"},
    {"IntOfOneByteIsWidened", ":v::int4",             SQLT_INT, bytesOf<sb1>(-7),                 "-7"},
    {"IntOfThreeBytesIsZero", ":v::int4",             SQLT_INT, std::string("\1\2\3"),            "0"},
    {"UnsignedByteIsSigned",  ":v::int4",             SQLT_UIN, bytesOf<ub1>(200),                "-56"},
    {"Double",                ":v::float8",           SQLT_FLT, bytesOf<double>(-12.0625),        "-12.0625"},
    {"FloatWidens",           ":v::float8",           SQLT_FLT, bytesOf<float>(0.5f),             "0.5"},
    {"BinaryDouble",          ":v::float8",           SQLT_BDOUBLE, bytesOf<double>(1e300),       "1e+300"},
    {"BinaryFloat",           ":v::float4",           SQLT_BFLOAT, bytesOf<float>(1.5f),          "1.5"},
    {"ChrLosesItsBlanks",     "'<' || :v || '>'",     SQLT_CHR, "abc  ",                          "<abc>"},
    {"ChrKeepsOneBlank",      "'<' || :v || '>'",     SQLT_CHR, "   ",                            "< >"},
    {"AfcKeepsItsBlanks",     "'<' || :v || '>'",     SQLT_AFC, "abc  ",                          "<abc  >"},
    {"StrEndsAtItsNul",       "'<' || :v || '>'",     SQLT_STR, std::string("ab\0", 3),           "<ab>"},
    {"StrWithoutNulIsCut",    "'<' || :v || '>'",     SQLT_STR, std::string("ab\0cd", 5),         "<ab>"},
    {"EmptyStrIsNull",        ":v",                   SQLT_STR, std::string("\0\0", 2),           nullptr},
    {"Avc",                   "'<' || :v || '>'",     SQLT_AVC, std::string("xy\0", 3),           "<xy>"},
    {"Lng",                   "'<' || :v || '>'",     SQLT_LNG, "long text ",                     "<long text>"},
    {"Vcs",                   "'<' || :v || '>'",     SQLT_VCS, prefixed(bytesOf<ub2>(3), "abcdef"), "<abc>", 2},
    {"Lvc",                   "'<' || :v || '>'",     SQLT_LVC, prefixed(bytesOf<ub4>(4), "abcdef"), "<abcd>", 4},
    {"Bin",                   "encode(:v, 'hex')",    SQLT_BIN, std::string("\x00\xff\x10", 3),   "00ff10"},
    {"Lbi",                   "encode(:v, 'hex')",    SQLT_LBI, std::string("\x01\x02", 2),       "0102"},
    {"Vbi",                   "encode(:v, 'hex')",    SQLT_VBI, prefixed(bytesOf<ub2>(2), std::string("\xde\xad\x00", 3)), "dead"},
    {"Lvb",                   "encode(:v, 'hex')",    SQLT_LVB, prefixed(bytesOf<ub4>(1), std::string("\xbe\x00", 2)),     "be"},
};
// clang-format on

class BoundValueTest : public OciTest, public testing::WithParamInterface<Bound> {};

TEST_P(BoundValueTest, ArrivesAsTheServerShowsIt) {
  const Bound &row = GetParam();
  Statement stmt = statement(std::string("SELECT (") + row.sql + ")::text");
  std::string bytes = bufferOf(row);
  ASSERT_EQ(stmt.bind(":v", bytes.data(), static_cast<sb4>(bytes.size()), row.type),
            OCI_SUCCESS)
      << errorText();
  TextBuffer<> seen;
  stmt.define(1, seen);
  ASSERT_EQ(stmt.execute(), OCI_SUCCESS) << errorText();
  if (row.seen) {
    EXPECT_EQ(seen.indicator, 0);
    EXPECT_EQ(seen.text(), row.seen);
  } else {
    EXPECT_EQ(seen.indicator, -1);
  }
}

INSTANTIATE_TEST_SUITE_P(Types, BoundValueTest, testing::ValuesIn(kBound),
                         [](const auto &row) { return std::string(row.param.name); });

class BindTest : public OciTest {
 protected:
  /// "null" or the value of the bind ":v" of type `type` as text.
  std::string send(void *value, sb4 size, ub2 type, sb2 *indicator, ub2 *length) {
    Statement stmt = statement("SELECT coalesce('<' || :v || '>', 'null')");
    EXPECT_EQ(stmt.bind(":v", value, size, type, indicator, length), OCI_SUCCESS);
    TextBuffer<> seen;
    stmt.define(1, seen);
    EXPECT_EQ(stmt.execute(), OCI_SUCCESS) << errorText();
    return seen.text();
  }
};

TEST_F(BindTest, AnIndicatorOfMinusOneIsNull) {
  Given value(dressed("text"));
  sb2 indicator = -1;
  EXPECT_EQ(send(value.data(), value.size<sb4>(), SQLT_CHR, &indicator, nullptr), "null");
  indicator = 0;
  EXPECT_EQ(send(value.data(), value.size<sb4>(), SQLT_CHR, &indicator, nullptr),
            '<' + dressed("text") + '>');
}

TEST_F(BindTest, AnIndicatorBelowMinusOneFailsTheExecute) {
  Statement stmt = statement("SELECT :v");
  char value[] = "text";
  sb2 indicator = -2;
  stmt.bind(":v", value, 4, SQLT_CHR, &indicator);
  TextBuffer<> seen;
  stmt.define(1, seen);
  EXPECT_EQ(stmt.execute(), OCI_ERROR);
  expectError(16530, "KESTREL-16530: buffer or length invalid");
}

TEST_F(BindTest, AZeroLengthChrIsNullAndTheIndicatorTellsSo) {
  char value[] = "text";
  sb2 indicator = 0;
  ub2 length = 0;
  EXPECT_EQ(send(value, 4, SQLT_CHR, &indicator, &length), "null");
  EXPECT_EQ(indicator, -1);
}

TEST_F(BindTest, AZeroLengthStrIsEmptyWhereEmptyTextIsNotNull) {
  ub1 server = 4;
  ASSERT_EQ(OCIAttrSet(env(), OCI_HTYPE_ENV, &server, 0, ZEVOCI_ATTR_VARCHARS, errhp()),
            OCI_SUCCESS);
  char value[] = "text";
  sb2 indicator = 0;
  ub2 length = 0;
  EXPECT_EQ(send(value, 4, SQLT_STR, &indicator, &length), "<>");
  EXPECT_EQ(indicator, 0);
}

TEST_F(BindTest, AZeroLengthStrIsNullWhereEmptyTextIsNull) {
  char value[] = "text";
  sb2 indicator = 0;
  ub2 length = 0;
  EXPECT_EQ(send(value, 4, SQLT_STR, &indicator, &length), "null");
  EXPECT_EQ(indicator, 0) << "the program's indicator stays as it is";
}

TEST_F(BindTest, ANullBufferIsNullForEveryType) {
  for (const ub2 type : {SQLT_CHR, SQLT_STR, SQLT_AFC, SQLT_LNG, SQLT_VCS}) {
    EXPECT_EQ(send(nullptr, 4, type, nullptr, nullptr), "null") << type;
  }
}

TEST_F(BindTest, TheLengthArrayMeasuresTheValue) {
  Given value("text");
  ub2 length = bytes(2);
  EXPECT_EQ(send(value.data(), value.size<sb4>(), SQLT_CHR, nullptr, &length), "<te>");
}

TEST_F(BindTest, APairWithoutAConverterIsAnIllegalConversion) {
  Statement stmt = statement("SELECT :v");
  char value[22] = {};
  stmt.bind(":v", value, sizeof value, SQLT_PDN);
  TextBuffer<> seen;
  stmt.define(1, seen);
  EXPECT_EQ(stmt.execute(), OCI_ERROR);
  expectError(1460, "KESTREL-01460: illegal conversion requested");
}

TEST_F(BindTest, ADynamicBindWithoutACallbackNeedsData) {
  for (const char *sql : {"SELECT :v", "DELETE FROM pg_class WHERE relname = :v"}) {
    Statement stmt = statement(sql);
    OCIBind *bind = nullptr;
    ASSERT_EQ(
        OCIBindByName(stmt.handle(), &bind, errhp(), Given(":v").text(), -1, nullptr, 10,
                      SQLT_CHR, nullptr, nullptr, nullptr, 0, nullptr, OCI_DATA_AT_EXEC),
        OCI_SUCCESS);
    ASSERT_EQ(OCIBindDynamic(bind, errhp(), nullptr, nullptr, nullptr, nullptr),
              OCI_SUCCESS);
    TextBuffer<> seen;
    stmt.define(1, seen);
    EXPECT_EQ(stmt.execute(), OCI_NEED_DATA) << sql;
  }
}

TEST_F(BindTest, PlaceholdersByPositionShareAHandleByName) {
  Statement stmt = statement("SELECT :a::int * 100 + :b::int * 10 + :a::int");
  sb4 first = 1, second = 2, third = 3;
  OCIBind *one = nullptr, *two = nullptr, *three = nullptr;
  const auto bind = [&](OCIBind **handle, ub4 position, sb4 &value) {
    return OCIBindByPos(stmt.handle(), handle, errhp(), position, &value, sizeof value,
                        SQLT_INT, nullptr, nullptr, nullptr, 0, nullptr, OCI_DEFAULT);
  };
  // The casts are no placeholders: they are not counted.
  ASSERT_EQ(bind(&one, 1, first), OCI_SUCCESS);
  ASSERT_EQ(bind(&two, 2, second), OCI_SUCCESS);
  ASSERT_EQ(bind(&three, 3, third), OCI_SUCCESS);
  EXPECT_EQ(one, three);
  EXPECT_EQ(bind(&three, 4, third), OCI_ERROR);
  expectError(28553, "KESTREL-28553: bind variable error");
  sb4 value = 0;
  stmt.define(1, value);
  EXPECT_EQ(stmt.execute(), OCI_SUCCESS) << errorText();
  EXPECT_EQ(value, 323) << "the later position's buffer holds";
}

TEST_F(BindTest, ASoftBindGivesAnExecutedStatementANewBuffer) {
  Statement stmt = statement("SELECT :v::int");
  sb4 first = 1, second = 2, value = 0;
  OCIBind *bind = nullptr;
  const auto call = [&](sb4 &buffer, sb4 size, ub4 mode) {
    return OCIBindByName(stmt.handle(), &bind, errhp(), Given(":v").text(), -1, &buffer,
                         size, SQLT_INT, nullptr, nullptr, nullptr, 0, nullptr, mode);
  };
  ASSERT_EQ(call(first, 4, OCI_DEFAULT), OCI_SUCCESS);
  EXPECT_EQ(call(second, 4, OCI_BIND_SOFT), OCI_ERROR) << "not executed yet";
  stmt.define(1, value);
  ASSERT_EQ(stmt.execute(), OCI_SUCCESS);
  EXPECT_EQ(call(second, 8, OCI_BIND_SOFT), OCI_ERROR) << "another size";
  ASSERT_EQ(call(second, 4, OCI_BIND_SOFT), OCI_SUCCESS);
  ASSERT_EQ(stmt.execute(), OCI_SUCCESS);
  EXPECT_EQ(value, 2);
}

}  // namespace
}  // namespace zev::test
