#include <climits>

#include "core_fixture.h"

namespace zev::test {
namespace {

class ErrorRecords : public testing::Test {
 protected:
  Environment env;
  OCIError *errhp = env.errhp();

  const ErrorRecord *record(ub4 n = 0) const {
    return static_cast<const ErrorRecord *>(list_nth(errhp->records, n));
  }
};

TEST_F(ErrorRecords, ANumberTakesTheCataloguesTextWhenRead) {
  EXPECT_EQ(AddErrorRecord(errhp, OCI_ERROR, 1403), 0);
  EXPECT_EQ(record()->content, 0x3u);
  EXPECT_EQ(record()->severity, OCI_ERROR);
  EXPECT_EQ(record()->errcode, 1403);
  EXPECT_EQ(record()->msg, nullptr);
  EXPECT_EQ(firstText(errhp), "KESTREL-01403: no data found");
}

TEST_F(ErrorRecords, TheSecondNameDoesTheSame) {
  EXPECT_EQ(AddErrorRecord_MSG(errhp, OCI_ERROR, 1403), 0);
  EXPECT_EQ(record()->content, 0x3u);
  EXPECT_EQ(record()->errcode, 1403);
}

TEST_F(ErrorRecords, ATextOfItsOwnReplacesTheCataloguesText) {
  std::string text = "words";
  EXPECT_EQ(AddErrorRecord2(errhp, OCI_ERROR, 12154, text.c_str()), 0);
  text = "WORDS";
  EXPECT_EQ(record()->content, 0x7u);
  EXPECT_EQ(record()->errcode, 12154);
  EXPECT_STREQ(record()->msg, "words");
}

TEST_F(ErrorRecords, ABareTextHasNumberMinusOneInside) {
  EXPECT_EQ(AddErrorRecordMsg(errhp, OCI_ERROR, "words"), 0);
  EXPECT_EQ(record()->content, 0x5u);
  EXPECT_EQ(record()->errcode, -1);
  EXPECT_STREQ(record()->msg, "words");
}

struct FillCase {
  const char *name;
  sb4 code;
  int count;
  std::string text;
};

class FilledText : public testing::TestWithParam<FillCase> {};

TEST_P(FilledText, PlaceholdersAreFilledInOrder) {
  const FillCase &c = GetParam();
  const Environment env;
  EXPECT_EQ(AddErrorRecordStringX(env.errhp(), OCI_ERROR, c.code, c.count, "A", "B", "C"),
            0);
  const auto *record =
      static_cast<const ErrorRecord *>(list_nth(env.errhp()->records, 0));
  EXPECT_EQ(record->content, 0x7u);
  EXPECT_EQ(record->errcode, c.code);
  EXPECT_EQ(record->msg, c.text);
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(Catalogue, FilledText, testing::Values(
    FillCase{"Both", 932, 2, "KESTREL-00932: data types not consistent - expected A got B"},
    FillCase{"FirstOnly", 932, 1, "KESTREL-00932: data types not consistent - expected A got %s"},
    FillCase{"MoreTextsThanPlaceholders", 932, 3, "KESTREL-00932: data types not consistent - expected A got B"},
    FillCase{"NoText", 4043, 0, "KESTREL-04043: object %s does not exist"},
    FillCase{"NoPlaceholder", 1403, 1, "KESTREL-01403: no data found"},
    FillCase{"QuotedPlaceholdersStay", 9216, 2, "KESTREL-09216: sdnfy: illegal value '%s' for parameter '%s'"},
    FillCase{"InBrackets", 22061, 1, "KESTREL-22061: Format text not valid [A]\n"},
    FillCase{"JoinedByADot", 1, 2, "KESTREL-00001: unique constraint (A.B) violated"},
    FillCase{"UnknownNumber", 911, 1, "UNKNOWN ERROR CODE"}),
    [](const auto &p) { return std::string(p.param.name); });
// clang-format on

TEST_F(ErrorRecords, AFillerThatHoldsAPlaceholderIsFilledByTheNext) {
  AddErrorRecordStringX(errhp, OCI_ERROR, 932, 2, "x%s", "B");
  EXPECT_STREQ(record()->msg,
               "KESTREL-00932: data types not consistent - expected xB got %s");
}

TEST_F(ErrorRecords, AFilledTextKeepsWithin1023Bytes) {
  const std::string filler(5000, 'x');
  AddErrorRecordStringX(errhp, OCI_ERROR, 4043, 1, filler.c_str());
  EXPECT_EQ(std::string(record()->msg).size(), 1023u);
  EXPECT_EQ(std::string(record()->msg).substr(0, 25), "KESTREL-04043: object xxx");
}

TEST_F(ErrorRecords, ANullResultIsAProtocolViolation) {
  EXPECT_EQ(AddPGErrorRecord(errhp, OCI_ERROR, nullptr), 0);
  EXPECT_EQ(record()->content, 0x1fu);
  EXPECT_EQ(record()->errcode, 0);
  EXPECT_STREQ(record()->sqlstate, "08P01");
  EXPECT_STREQ(record()->msg, "Unexpected NULL PGresult");
  EXPECT_STREQ(record()->pg_msg, "Unexpected NULL PGresult");
}

TEST_F(ErrorRecords, AResultWithoutSqlstateIsUnexpected) {
  PGresult *result = PQmakeEmptyPGresult(nullptr, PGRES_FATAL_ERROR);
  EXPECT_EQ(AddPGErrorRecord(errhp, OCI_ERROR, result), 0);
  PQclear(result);
  EXPECT_EQ(record()->content, 0x4u);
  EXPECT_STREQ(record()->msg, "Unexpected error");
}

TEST_F(ErrorRecords, RecordsStandInTheOrderOfTheirHappening) {
  AddErrorRecord(errhp, OCI_ERROR, 1);
  AddErrorRecordMsg(errhp, OCI_ERROR, "two");
  AddErrorRecord2(errhp, OCI_ERROR, 3, "three");
  AddPGErrorRecord(errhp, OCI_ERROR, nullptr);
  EXPECT_EQ(codesOf(errhp), (Codes{1, 0, 3, 0}));
}

TEST_F(ErrorRecords, ClearingForgetsAllAndMayBeRepeated) {
  AddErrorRecord2(errhp, OCI_ERROR, 1, "x");
  AddPGErrorRecord(errhp, OCI_ERROR, nullptr);
  ClearErrorHandle(errhp);
  EXPECT_EQ(errhp->records, nullptr);
  ClearErrorHandle(errhp);
  ClearErrorHandle(nullptr);
  EXPECT_EQ(errhp->records, nullptr);
}

TEST_F(ErrorRecords, NullAndWrongHandlesAreRefused) {
  auto *wrong = reinterpret_cast<OCIError *>(env.get());
  for (OCIError *handle : {static_cast<OCIError *>(nullptr), wrong}) {
    EXPECT_EQ(AddErrorRecord(handle, OCI_ERROR, 1), -2);
    EXPECT_EQ(AddErrorRecord_MSG(handle, OCI_ERROR, 1), -2);
    EXPECT_EQ(AddErrorRecord2(handle, OCI_ERROR, 1, "x"), -2);
    EXPECT_EQ(AddErrorRecordMsg(handle, OCI_ERROR, "x"), -2);
    EXPECT_EQ(AddErrorRecordStringX(handle, OCI_ERROR, 1, 1, "x"), -2);
    ClearErrorHandle(handle);
  }
  EXPECT_EQ(AddPGErrorRecord(nullptr, OCI_ERROR, nullptr), -1);
  EXPECT_EQ(AddPGErrorRecord(wrong, OCI_ERROR, nullptr), -2);
}

struct ConversionText {
  int error;
  const char *text;
};

TEST_F(ErrorRecords, AFailedConversionHasOneOfThreeTexts) {
  const ConversionText rows[] = {
      {22, "An incomplete multibyte sequence has been encountered in the input"},
      {84, "An invalid multibyte sequence has been encountered in the input"},
      {7, "Error in byte conversion"},
      {0, "Error in byte conversion"},
  };
  for (const ConversionText &row : rows) {
    ClearErrorHandle(errhp);
    EXPECT_EQ(failConversion(errhp, OCI_ERROR, row.error), OCI_ERROR);
    EXPECT_EQ(record()->content, 0x5u);
    EXPECT_EQ(firstText(errhp), row.text);
  }
}

TEST_F(ErrorRecords, ANoticeIsARecordOfStatusOneAndMarksTheHandle) {
  OCINoticeHandler(errhp, "NOTICE:  hello\n");
  EXPECT_EQ(record()->severity, OCI_SUCCESS_WITH_INFO);
  EXPECT_EQ(firstText(errhp), "NOTICE:  hello\n");
  EXPECT_TRUE(takeNotice(errhp));
  EXPECT_FALSE(takeNotice(errhp));
  OCINoticeHandler(nullptr, "nobody listens");
}

}  // namespace
}  // namespace zev::test
