#include "stmt/bind_data.h"

#include <cstring>

#include "stmt_fixture.h"

namespace zevtest {
namespace {

/// A statement with binds, executed as far as the conversion of their values.
class BindData : public testing::Test {
 protected:
  void SetUp() override { prepareText("select :a, :b"); }
  void prepareText(const std::string &text) {
    ASSERT_EQ(session.prepare(text), OCI_SUCCESS);
    session.stmt->paramCount = 2;
  }
  OCIBind *bind(const char *name, void *value, sb4 size, ub2 dty,
                sb2 *indicator = nullptr, ub2 *length = nullptr, ub4 mode = OCI_DEFAULT) {
    OCIBind *made = nullptr;
    EXPECT_EQ(OCIBindByName(session.stmt, &made, session.errhp, oraText(name), -1, value,
                            size, dty, indicator, length, nullptr, 0, nullptr, mode),
              OCI_SUCCESS);
    return made;
  }
  sword convert(ub4 iteration = 0) {
    return GetOCIBindData(session.stmt, session.errhp, iteration);
  }
  /// The value of a bind as the server would see it, which is freed; "NULL" for none.
  static std::string take(OCIBind *bind) {
    if (!bind->pgValue) return "NULL";
    std::string text(bind->pgValue, bind->pgLength);
    std::free(bind->pgValue);
    bind->pgValue = nullptr;
    return text;
  }

  Session session;
};

TEST_F(BindData, WrongHandlesAreRefused) {
  auto *notAStatement = reinterpret_cast<OCIStmt *>(session.env);
  auto *notAnError = reinterpret_cast<OCIError *>(session.env);
  EXPECT_EQ(GetOCIBindData(nullptr, session.errhp, 0), OCI_INVALID_HANDLE);
  EXPECT_EQ(GetOCIBindData(notAStatement, session.errhp, 0), OCI_INVALID_HANDLE);
  EXPECT_EQ(GetOCIBindData(session.stmt, nullptr, 0), OCI_INVALID_HANDLE);
  EXPECT_EQ(GetOCIBindData(session.stmt, notAnError, 0), OCI_INVALID_HANDLE);
}

TEST_F(BindData, NothingToSendIsSuccess) {
  EXPECT_EQ(convert(), OCI_SUCCESS);  // no bind
  sb4 value = 5;
  OCIBind *a = bind(":a", &value, sizeof value, SQLT_INT);
  session.stmt->paramCount = 0;
  a->pgLength = 77;
  EXPECT_EQ(convert(), OCI_SUCCESS);
  EXPECT_EQ(a->pgLength, 77u);  // not looked at
}

struct EmptyCase {
  const char *name;
  ub2 dty;
  const char *whereEmptyIsNull;  ///< the value sent
  const char *elsewhere;
  bool writesIndicator;
};

void PrintTo(const EmptyCase &row, std::ostream *out) {
  *out << row.name;
}

class EmptyValue : public BindData, public testing::WithParamInterface<EmptyCase> {};

TEST_P(EmptyValue, IsNullOrEmptyByType) {
  for (const bool emptyIsNull : {true, false}) {
    SCOPED_TRACE(emptyIsNull);
    session.env->oracleVarchars = emptyIsNull;
    char value[8] = "";
    sb2 indicators[] = {0, 5};
    ub2 lengths[] = {0, 0};
    OCIBind *a = bind(":a", value, sizeof value, GetParam().dty, indicators, lengths);
    for (const ub4 row : {0u, 1u}) {
      const sb2 before = indicators[row];
      EXPECT_EQ(convert(row), OCI_SUCCESS);
      const std::string sent = take(a);
      EXPECT_STREQ(sent.c_str(),
                   emptyIsNull ? GetParam().whereEmptyIsNull : GetParam().elsewhere);
      EXPECT_EQ(indicators[row], GetParam().writesIndicator ? -1 : before);
    }
    EXPECT_EQ(session.takeRecord(), kNoRecord);
  }
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(Types, EmptyValue, testing::Values(
    EmptyCase{"Characters",       SQLT_CHR, "NULL", "NULL", true},
    EmptyCase{"Long",             SQLT_LNG, "NULL", "NULL", true},
    EmptyCase{"Integer",          SQLT_INT, "NULL", "NULL", true},
    EmptyCase{"Float",            SQLT_FLT, "NULL", "NULL", true},
    EmptyCase{"Raw",              SQLT_BIN, "NULL", "NULL", true},
    EmptyCase{"CountedText",      SQLT_VCS, "NULL", "NULL", true},
    EmptyCase{"TerminatedText",   SQLT_STR, "NULL", "",     false},
    EmptyCase{"FixedText",        SQLT_AFC, "NULL", "",     false}),
    nameOf<EmptyCase>);
// clang-format on

TEST_F(BindData, AnEmptyTextBelowAllIndicatorsIsNull) {
  char value[8] = "";
  sb2 indicator = -2;
  ub2 length = 0;
  OCIBind *a = bind(":a", value, sizeof value, SQLT_STR, &indicator, &length);
  EXPECT_EQ(convert(), OCI_SUCCESS);
  EXPECT_EQ(take(a), "NULL");
}

TEST_F(BindData, AnIndicatorBelowMinusOneFails) {
  char value[8] = "abc";
  sb2 indicator = -2;
  ub2 length = 3;
  bind(":a", value, sizeof value, SQLT_CHR, &indicator, &length);
  EXPECT_EQ(convert(), OCI_ERROR);
}

TEST_F(BindData, AMissingBufferIsNull) {
  for (const ub2 dty : {SQLT_CHR, SQLT_INT, SQLT_FLT, SQLT_STR, SQLT_LNG, SQLT_VCS,
                        SQLT_BIN, SQLT_UIN, SQLT_AFC, SQLT_AVC}) {
    SCOPED_TRACE(dty);
    sb2 indicator = 0;
    OCIBind *a = bind(":a", nullptr, 4, static_cast<ub2>(dty), &indicator);
    EXPECT_EQ(convert(), OCI_SUCCESS);
    EXPECT_EQ(take(a), "NULL");
    EXPECT_EQ(indicator, -1);
    a = bind(":a", nullptr, 4, static_cast<ub2>(dty));  // no indicator to write to
    EXPECT_EQ(convert(), OCI_SUCCESS);
    EXPECT_EQ(take(a), "NULL");
  }
  EXPECT_EQ(session.takeRecord(), kNoRecord);
}

TEST_F(BindData, AnIndicatorOfMinusOneHidesTheValue) {
  sb4 value = 5;
  sb2 indicators[] = {-1, 0};
  OCIBind *a = bind(":a", &value, 0, SQLT_INT, indicators);
  a->valueSize = sizeof value;
  EXPECT_EQ(convert(), OCI_SUCCESS);
  EXPECT_EQ(take(a), "NULL");
  EXPECT_EQ(a->pgLength, 0u);
}

TEST_F(BindData, PlainArraysStepByTheirElements) {
  char values[3][4] = {"one", "two", "six"};
  sb2 indicators[] = {0, -1, 0};
  ub2 lengths[] = {3, 3, 2};
  OCIBind *a = bind(":a", values, sizeof values[0], SQLT_CHR, indicators, lengths);
  const char *expected[] = {"one", "NULL", "si"};
  for (ub4 row = 0; row < 3; ++row) {
    EXPECT_EQ(convert(row), OCI_SUCCESS);
    EXPECT_STREQ(take(a).c_str(), expected[row]);
    EXPECT_EQ(a->pgFormat, 0);
  }
}

TEST_F(BindData, WithoutLengthsTheBufferSizeCounts) {
  char values[2][4] = {{'a', 'b', 'c', 'd'}, {'e', 'f', ' ', ' '}};
  OCIBind *a = bind(":a", values, sizeof values[0], SQLT_CHR);
  EXPECT_EQ(convert(0), OCI_SUCCESS);
  EXPECT_STREQ(take(a).c_str(), "abcd");
  EXPECT_EQ(convert(1), OCI_SUCCESS);
  EXPECT_STREQ(take(a).c_str(), "ef");
}

TEST_F(BindData, StructsStepByTheSkips) {
  struct Row {
    char value[6];
    sb2 indicator;
    ub2 length;
    double other;
  } rows[] = {{"first", 0, 5, 0}, {"other", -1, 5, 0}, {"third", 0, 2, 0}};
  OCIBind *a = bind(":a", rows[0].value, sizeof rows[0].value, SQLT_CHR,
                    &rows[0].indicator, &rows[0].length);
  ASSERT_EQ(
      OCIBindArrayOfStruct(a, session.errhp, sizeof(Row), sizeof(Row), sizeof(Row), 0),
      OCI_SUCCESS);
  const char *expected[] = {"first", "NULL", "th"};
  for (ub4 row = 0; row < 3; ++row) {
    EXPECT_EQ(convert(row), OCI_SUCCESS);
    EXPECT_STREQ(take(a).c_str(), expected[row]);
  }
}

TEST_F(BindData, IntegersGoInBinary) {
  sb4 values[] = {1, 0x01020304};
  OCIBind *a = bind(":a", values, sizeof values[0], SQLT_INT);
  EXPECT_EQ(convert(1), OCI_SUCCESS);
  EXPECT_EQ(a->pgFormat, 1);
  EXPECT_EQ(take(a), "\x01\x02\x03\x04");
}

TEST_F(BindData, AFailureWithoutLengthsSaysSo) {
  char unterminated[4] = {'a', 'b', 'c', 'd'};
  session.env->oracleVarchars = 0;
  bind(":a", unterminated, sizeof unterminated, SQLT_STR);
  EXPECT_EQ(convert(), OCI_ERROR);
  EXPECT_EQ(list_length(session.errhp->records), 2u);  // the converter's 1480 comes first
  EXPECT_EQ(session.takeRecord(), 16530);
  ub2 length = sizeof unterminated;
  bind(":a", unterminated, sizeof unterminated, SQLT_STR, nullptr, &length);
  EXPECT_EQ(convert(), OCI_ERROR);
  EXPECT_EQ(session.takeRecord(), 1480);
}

TEST_F(BindData, APairWithoutConverterIsRefused) {
  sb4 value = 5;
  ub2 length = sizeof value;
  OCIBind *a = bind(":a", &value, sizeof value, SQLT_INT, nullptr, &length);
  a->pgType = 600;  // point
  EXPECT_EQ(convert(), OCI_ERROR);
  EXPECT_EQ(session.takeRecord(), 1460);
}

TEST_F(BindData, AFailureLeavesNoValueBehind) {
  char text[] = "abc";
  char unterminated[4] = {'a', 'b', 'c', 'd'};
  session.env->oracleVarchars = 0;
  const OCIBind *a = bind(":a", text, 3, SQLT_CHR);
  bind(":b", unterminated, sizeof unterminated, SQLT_STR);
  EXPECT_EQ(convert(), OCI_ERROR);
  EXPECT_EQ(a->pgValue, nullptr);  // the sanitizer sees whether it was freed
}

TEST_F(BindData, ADynamicBindWithoutCallbackNeedsData) {
  char text[] = "abc";
  const OCIBind *a = bind(":a", text, 3, SQLT_CHR);
  OCIBind *b = bind(":b", nullptr, 10, SQLT_CHR, nullptr, nullptr, OCI_DATA_AT_EXEC);
  ASSERT_EQ(OCIBindDynamic(b, session.errhp, nullptr, nullptr, nullptr, nullptr),
            OCI_SUCCESS);
  EXPECT_EQ(convert(), OCI_NEED_DATA);
  EXPECT_EQ(a->pgValue, nullptr);
}

TEST_F(BindData, TheReturnPlaceholderSendsNoValue) {
  sb4 value = 5;
  OCIBind *a = bind(":a", &value, sizeof value, SQLT_INT);
  OCIBind *b = bind(":b", &value, sizeof value, SQLT_INT);
  session.stmt->returnBind = a;
  EXPECT_EQ(convert(), OCI_SUCCESS);
  EXPECT_EQ(take(a), "NULL");
  EXPECT_EQ(take(b), "\0\0\0\5"s);
}

TEST_F(BindData, AResultSetWithoutLengthsSendsNoValue) {
  OCIStmt *child = session.make<OCIStmt>(OCI_HTYPE_STMT);
  sb2 indicator = 3;
  const OCIBind *a = bind(":a", &child, 0, SQLT_RSET, &indicator);
  EXPECT_EQ(convert(), OCI_SUCCESS);
  EXPECT_EQ(a->pgValue, nullptr);
  EXPECT_EQ(indicator, 3);
}

TEST_F(BindData, ABindWithoutANameIsPassedOver) {
  void *own = nullptr;
  ASSERT_EQ(OCIHandleAlloc(session.stmt, &own, OCI_HTYPE_BIND, 0, nullptr), OCI_SUCCESS);
  EXPECT_EQ(convert(), OCI_SUCCESS);
  EXPECT_EQ(session.takeRecord(), kNoRecord);
}

TEST(BindPgValues, GathersInPlaceholderOrder) {
  NamedBinds binds({":a", ":b"});
  char first[] = "one";
  char second[] = "2";
  binds[0].pgValue = first;
  binds[0].pgLength = 3;
  binds[1].pgValue = second;
  binds[1].pgLength = 1;
  binds[1].pgFormat = 1;
  List *order = nullptr;
  for (void *bind : {&binds[1], &binds[0], static_cast<OCIBind *>(nullptr), &binds[1]}) {
    order = lappend(order, bind);
  }
  char **values = nullptr;
  int *lengths = nullptr;
  int *formats = nullptr;
  ASSERT_EQ(bindPgValues(&order, &values, &lengths, &formats), OCI_SUCCESS);
  const zev::Malloced<char *> ownedValues(values);
  const zev::Malloced<int> ownedLengths(lengths);
  const zev::Malloced<int> ownedFormats(formats);
  EXPECT_EQ(std::vector<char *>(values, values + 4),
            (std::vector<char *>{second, first, nullptr, second}));
  EXPECT_EQ(std::vector<int>(lengths, lengths + 4), (std::vector<int>{1, 3, 0, 1}));
  EXPECT_EQ(std::vector<int>(formats, formats + 4), (std::vector<int>{1, 0, 0, 1}));
  list_free(order);
}

TEST(ReleaseBindsPgdata, FreesEachValueOnce) {
  NamedBinds binds({":a", ":b"});
  binds[0].pgValue = strdup("value");
  List *list = lappend(list_copy(binds.list()), nullptr);
  release_binds_pgdata(list);
  EXPECT_EQ(binds[0].pgValue, nullptr);
  EXPECT_EQ(binds[1].pgValue, nullptr);
  release_binds_pgdata(list);
  list_free(list);
}

}  // namespace
}  // namespace zevtest
