#include <cstring>

#include "core_fixture.h"

namespace zev::test {
namespace {

constexpr sb4 kUnset = 4711;

struct Read {
  sword status;
  sb4 code;
  std::string bytes;  ///< the whole buffer
};

Read readError(void *hndlp, ub4 recordno, ub4 bufsiz = 64, ub4 type = OCI_HTYPE_ERROR) {
  std::string buffer(80, '#');
  sb4 code = kUnset;
  const sword status =
      OCIErrorGet(hndlp, recordno, nullptr, &code,
                  reinterpret_cast<OraText *>(buffer.data()), bufsiz, type);
  return {status, code, buffer};
}

class ErrorGet : public testing::Test {
 protected:
  Environment env;
  OCIError *errhp = env.errhp();
};

TEST_F(ErrorGet, AnEmptyHandleHasNoDataAndLeavesTheNumberUnset) {
  const Read read = readError(errhp, 1);
  EXPECT_EQ(read.status, OCI_NO_DATA);
  EXPECT_EQ(read.code, kUnset);
  EXPECT_EQ(read.bytes, std::string(80, '#'));
}

TEST_F(ErrorGet, RecordsAreReadInOrderAndTheNextIsNoData) {
  AddErrorRecord(errhp, OCI_ERROR, 1403);
  AddErrorRecord2(errhp, OCI_ERROR, 24315, "second");
  EXPECT_EQ(readError(errhp, 1).code, 1403);
  EXPECT_EQ(readError(errhp, 2).code, 24315);
  EXPECT_STREQ(readError(errhp, 2).bytes.c_str(), "second");
  EXPECT_EQ(readError(errhp, 3).status, OCI_NO_DATA);
}

TEST_F(ErrorGet, ReadingDoesNotClear) {
  AddErrorRecord(errhp, OCI_ERROR, 1403);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(readError(errhp, 1).status, OCI_SUCCESS);
}

TEST_F(ErrorGet, RecordsWithoutANumberReadZero) {
  AddErrorRecordMsg(errhp, OCI_ERROR, "text");
  EXPECT_EQ(readError(errhp, 1).code, 0);
  PGresult *result = PQmakeEmptyPGresult(nullptr, PGRES_FATAL_ERROR);
  AddPGErrorRecord(errhp, OCI_ERROR, result);
  PQclear(result);
  EXPECT_EQ(readError(errhp, 2).code, 0);
  EXPECT_STREQ(readError(errhp, 2).bytes.c_str(), "Unexpected error");
}

TEST_F(ErrorGet, AnUnknownNumberReadsUnknown) {
  AddErrorRecord(errhp, OCI_ERROR, 1733);
  EXPECT_STREQ(readError(errhp, 1).bytes.c_str(), "UNKNOWN ERROR CODE");
}

TEST_F(ErrorGet, TheBufferBoundsTheTextAndAlwaysEndsIt) {
  const std::string text = "0123456789";
  AddErrorRecord2(errhp, OCI_ERROR, 1, text.c_str());
  for (ub4 size = 1; size <= 14; ++size) {
    const Read read = readError(errhp, 1, size);
    const std::string wanted = text.substr(0, size - 1);
    EXPECT_EQ(read.bytes, wanted + '\0' + std::string(79 - wanted.size(), '#')) << size;
  }
}

TEST_F(ErrorGet, WithoutABufferOnlyTheNumberIsGiven) {
  AddErrorRecord(errhp, OCI_ERROR, 1403);
  EXPECT_EQ(readError(errhp, 1, 0).bytes, std::string(80, '#'));
  sb4 code = 0;
  EXPECT_EQ(OCIErrorGet(errhp, 1, nullptr, &code, nullptr, 10, OCI_HTYPE_ERROR),
            OCI_SUCCESS);
  EXPECT_EQ(code, 1403);
}

TEST_F(ErrorGet, ATextWithoutLengthLeavesTheBufferAlone) {
  AddErrorRecord2(errhp, OCI_ERROR, 1, "");
  EXPECT_EQ(readError(errhp, 1).bytes, std::string(80, '#'));
}

TEST_F(ErrorGet, TheSqlstateArgumentIsNotWritten) {
  AddPGErrorRecord(errhp, OCI_ERROR, nullptr);
  OraText state[6] = "#####";
  sb4 code = 0;
  OCIErrorGet(errhp, 1, state, &code, nullptr, 0, OCI_HTYPE_ERROR);
  EXPECT_STREQ(reinterpret_cast<char *>(state), "#####");
}

TEST_F(ErrorGet, AnotherTypeReadsTheEnvironmentsOwnHandle) {
  AddErrorRecord(errhp, OCI_ERROR, 1403);
  AddErrorRecord(env.get()->errh, OCI_ERROR, 16530);
  EXPECT_EQ(readError(errhp, 1, 64, OCI_HTYPE_ENV).code, 16530);
  EXPECT_EQ(readError(env.get(), 1, 64, OCI_HTYPE_ENV).code, 16530);
}

TEST_F(ErrorGet, WrongArgumentsAreErrors) {
  AddErrorRecord(errhp, OCI_ERROR, 1403);
  EXPECT_EQ(readError(nullptr, 1).status, OCI_ERROR);
  EXPECT_EQ(readError(errhp, 0).status, OCI_ERROR);
  EXPECT_EQ(OCIErrorGet(errhp, 1, nullptr, nullptr, nullptr, 0, OCI_HTYPE_ERROR),
            OCI_ERROR);
  EXPECT_EQ(readError(env.alloc<OCIStmt>(OCI_HTYPE_STMT), 1).status, OCI_ERROR);
  EXPECT_EQ(readError(env.get(), 1).status, OCI_ERROR);
}

TEST_F(ErrorGet, AHandleWithoutAnEnvironmentAboveIsInvalid) {
  EXPECT_EQ(readError(env.get()->errh, 1).status, OCI_INVALID_HANDLE);
}

TEST(ErrorGetUtf16, TheTextIsInUtf16WithOneByteBehindIt) {
  const Environment env(OCI_UTF16);
  AddErrorRecord2(env.errhp(), OCI_ERROR, 1, "ab");
  EXPECT_EQ(readError(env.errhp(), 1).bytes, utf16("ab") + '\0' + std::string(75, '#'));
  EXPECT_EQ(readError(env.errhp(), 1, 4).bytes,
            utf16("ab").substr(0, 3) + '\0' + std::string(76, '#'));
}

TEST(ErrorGetUtf16, ATextThatCannotBeConvertedAddsARecordAndStays) {
  const Environment env(OCI_UTF16);
  AddErrorRecord2(env.errhp(), OCI_ERROR, 1, "\xff\xfe");
  EXPECT_EQ(readError(env.errhp(), 1).status, OCI_ERROR);
  ASSERT_EQ(list_length(env.errhp()->records), 2u);
  EXPECT_EQ(readError(env.errhp(), 2).status, OCI_SUCCESS);
  const auto *added = static_cast<const ErrorRecord *>(list_nth(env.errhp()->records, 1));
  EXPECT_STREQ(added->msg,
               "An invalid multibyte sequence has been encountered in the input");
}

struct ServerWords {
  sword status;
  std::string state, text;
};

ServerWords readServerError(void *hndlp, ub4 recordno, ub4 stateSize = 6, ub4 bufsiz = 64,
                            ub4 type = OCI_HTYPE_ERROR) {
  char state[8] = "#######";
  char text[64] = "###";
  const sword status =
      OCIPGErrorGet(hndlp, recordno, reinterpret_cast<OraText *>(state), stateSize,
                    reinterpret_cast<OraText *>(text), bufsiz, type);
  return {status, state, text};
}

TEST_F(ErrorGet, TheServersWordsAndStateAreReadApart) {
  AddPGErrorRecord(errhp, OCI_ERROR, nullptr);
  const ServerWords read = readServerError(errhp, 1);
  EXPECT_EQ(read.status, OCI_SUCCESS);
  EXPECT_EQ(read.state, "08P01");
  EXPECT_EQ(read.text, "Unexpected NULL PGresult");
  EXPECT_EQ(readServerError(errhp, 1, 3).state, "08");
  EXPECT_EQ(readServerError(errhp, 1, 1).state, "");
  EXPECT_EQ(readServerError(errhp, 1, 0).state, "#######");
  EXPECT_EQ(readServerError(errhp, 1, 6, 5).text, "Unex");
}

TEST_F(ErrorGet, TheLibrarysOwnRecordsAreNoServerErrors) {
  AddErrorRecord(errhp, OCI_ERROR, 1403);
  AddErrorRecord2(errhp, OCI_ERROR, 1403, "x");
  AddErrorRecordMsg(errhp, OCI_ERROR, "x");
  for (const ub4 n : {1u, 2u, 3u, 4u}) {
    EXPECT_EQ(readServerError(errhp, n).status, OCI_NO_DATA) << n;
  }
}

TEST_F(ErrorGet, WrongArgumentsAreErrorsForTheServersWordsToo) {
  OraText state[6];
  EXPECT_EQ(readServerError(nullptr, 1).status, OCI_ERROR);
  EXPECT_EQ(readServerError(errhp, 0).status, OCI_ERROR);
  EXPECT_EQ(OCIPGErrorGet(errhp, 1, nullptr, 6, state, 6, OCI_HTYPE_ERROR), OCI_ERROR);
  EXPECT_EQ(readServerError(env.get(), 1).status, OCI_ERROR);
  EXPECT_EQ(readServerError(env.get()->errh, 1).status, OCI_INVALID_HANDLE);
  AddPGErrorRecord(env.get()->errh, OCI_ERROR, nullptr);
  EXPECT_EQ(readServerError(env.get(), 1, 6, 64, OCI_HTYPE_ENV).state, "08P01");
}

TEST(ErrorGetUtf16, TheServersStateIsNeverConverted) {
  const Environment env(OCI_UTF16);
  AddPGErrorRecord(env.errhp(), OCI_ERROR, nullptr);
  const ServerWords read = readServerError(env.errhp(), 1);
  EXPECT_EQ(read.state, "08P01");
  EXPECT_EQ(read.text, "U");
}

}  // namespace
}  // namespace zev::test
