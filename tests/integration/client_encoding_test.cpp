/// The server's idea of a program's encoding.
#include <gtest/gtest.h>
#include <oci.h>

#include "tests/server/address.h"

namespace zev::test {
namespace {

const OraText *asText(const std::string &text) {
  return reinterpret_cast<const OraText *>(text.data());
}

ub4 lengthOf(const std::string &text) {
  return static_cast<ub4>(text.size());
}

std::string utf16(const std::string &ascii) {
  std::string wide;
  for (const char c : ascii) wide += std::string{c, '\0'};
  return wide;
}

struct EncodingCase {
  const char *name;
  ub2 charset;
  ub4 mode;
  const char *clientEncoding;
};

class ClientEncoding : public testing::TestWithParam<EncodingCase> {};

TEST_P(ClientEncoding, IsThatOfTheEnvironment) {
  const EncodingCase &c = GetParam();
  const ServerAddress &at = testServer();
  OCIEnv *env = nullptr;
  ASSERT_EQ(OCIEnvNlsCreate(&env, c.mode, nullptr, nullptr, nullptr, nullptr, 0, nullptr,
                            c.charset, 0),
            OCI_SUCCESS);
  OCIError *errhp = nullptr;
  OCIHandleAlloc(env, reinterpret_cast<void **>(&errhp), OCI_HTYPE_ERROR, 0, nullptr);
  const auto edge = [&](const std::string &text) { return c.mode ? utf16(text) : text; };
  const std::string user = edge(at.user), password = edge(at.password),
                    target = edge(at.host + ":" + at.port + "/" + at.db),
                    sql =
                        edge("select 1 / case current_setting('client_encoding') when '" +
                             std::string(c.clientEncoding) + "' then 1 else 0 end");
  OCISvcCtx *service = nullptr;
  ASSERT_EQ(OCILogon(env, errhp, &service, asText(user), lengthOf(user), asText(password),
                     lengthOf(password), asText(target), lengthOf(target)),
            OCI_SUCCESS);
  OCIStmt *stmt = nullptr;
  OCIHandleAlloc(env, reinterpret_cast<void **>(&stmt), OCI_HTYPE_STMT, 0, nullptr);
  OCIStmtPrepare(stmt, errhp, asText(sql), lengthOf(sql), OCI_NTV_SYNTAX, OCI_DEFAULT);
  sb4 answer = 0;
  OCIDefine *define = nullptr;
  OCIDefineByPos(stmt, &define, errhp, 1, &answer, sizeof answer, SQLT_INT, nullptr,
                 nullptr, nullptr, OCI_DEFAULT);
  EXPECT_EQ(OCIStmtExecute(service, stmt, errhp, 1, 0, nullptr, nullptr, OCI_DEFAULT),
            OCI_SUCCESS);
  EXPECT_EQ(answer, 1);
  OCIHandleFree(stmt, OCI_HTYPE_STMT);
  EXPECT_EQ(OCILogoff(service, errhp), OCI_SUCCESS);
  EXPECT_EQ(OCIHandleFree(env, OCI_HTYPE_ENV), OCI_SUCCESS);
}

INSTANTIATE_TEST_SUITE_P(Encodings, ClientEncoding,
                         testing::Values(EncodingCase{"Utf8", 6, 0, "UTF8"},
                                         EncodingCase{"Latin1", 8, 0, "LATIN1"},
                                         EncodingCase{"Latin9", 16, 0, "LATIN9"},
                                         EncodingCase{"Windows1251", 23, 0, "WIN1251"},
                                         EncodingCase{"EucJp", 1, 0, "EUC_JP"},
                                         EncodingCase{"Sjis", 34, 0, "SJIS"},
                                         EncodingCase{"Gb18030", 38, 0, "GB18030"},
                                         EncodingCase{"Iso88595", 25, 0, "ISO_8859_5"},
                                         EncodingCase{"Utf16", 39, OCI_UTF16, "UTF8"},
                                         EncodingCase{"Utf16Big", 40, OCI_UTF16, "UTF8"}),
                         [](const auto &p) { return std::string(p.param.name); });

}  // namespace
}  // namespace zev::test
