/// The published services on names of encodings.
#include "mb_fixture.h"
#include "zevoci/encodings.h"

namespace zev::test {
namespace {

class OCINls : public testing::Test {
 protected:
  std::string nameOf(ub2 id) {
    OraText name[OCI_NLS_MAXBUFSZ];
    EXPECT_EQ(OCINlsCharSetIdToName(env.get(), name, sizeof name, id), OCI_SUCCESS);
    return reinterpret_cast<const char *>(name);
  }
  ub2 idOf(const char *name) {
    return OCINlsCharSetNameToId(env.get(), reinterpret_cast<const OraText *>(name));
  }

  Environment env;
};

TEST_F(OCINls, EveryEncodingNumberHasItsName) {
  for (ub2 id = 0; id <= 40; ++id) {
    EXPECT_EQ(nameOf(id), zev_enc2name_tbl[id].name);
    EXPECT_EQ(idOf(nameOf(id).c_str()), id == 20 ? 6 : id);  // "CP866" is no alias
  }
}

TEST_F(OCINls, OtherNumbersHaveAnEmptyName) {
  for (const ub2 id : {41, 873, 2000, 65535}) EXPECT_EQ(nameOf(id), "");
}

TEST_F(OCINls, ANameFillsItsBufferAndIsCutWithoutTerminator) {
  OraText name[8];
  std::fill(std::begin(name), std::end(name), OraText{'x'});
  EXPECT_EQ(OCINlsCharSetIdToName(env.get(), name, 3, 6), OCI_SUCCESS);
  EXPECT_EQ(std::string(reinterpret_cast<const char *>(name), 4), "UTFx");
  EXPECT_EQ(OCINlsCharSetIdToName(env.get(), name, 7, 6), OCI_SUCCESS);
  EXPECT_EQ(std::string(reinterpret_cast<const char *>(name), 8),
            std::string("UTF8\0\0\0x", 8));
  EXPECT_EQ(OCINlsCharSetIdToName(env.get(), name, 0, 6), OCI_SUCCESS);
}

TEST_F(OCINls, ANameNeedsAnEnvironmentAndABuffer) {
  OraText name[8];
  EXPECT_EQ(OCINlsCharSetIdToName(nullptr, name, sizeof name, 6), OCI_INVALID_HANDLE);
  EXPECT_EQ(OCINlsCharSetIdToName(env.get(), nullptr, 8, 6), OCI_ERROR);
}

TEST_F(OCINls, NamesAreTraced) {
  OraText name[8];
  const auto call = [&] { OCINlsCharSetIdToName(env.get(), name, sizeof name, 6); };
  EXPECT_EQ(traced(3, call), "Getting Character Set Name from ID\n");
  const std::string all = traced(4, call);
  std::size_t at = 0;
  for (const char *line : {"Getting Character Set Name from ID\n", "\tenvhp = ",
                           "\tbuf = ", "\tbuflen = ", "\tid = ", "\tRETURNING "}) {
    at = all.find(line, at);
    ASSERT_NE(at, std::string::npos) << line;
  }
}

TEST_F(OCINls, UnknownNamesMeanUtf8AndNoNameSqlAscii) {
  for (const char *name : {"no-such-name", "AL32UTF8", "WE8ISO8859P1", ""}) {
    EXPECT_EQ(idOf(name), 6) << name;
  }
  EXPECT_EQ(idOf(nullptr), 0);
  EXPECT_EQ(idOf("latin-1"), 8);
  EXPECT_EQ(idOf("SQL_ASCII"), 0);
}

TEST_F(OCINls, ANumberNeedsAnEnvironment) {
  const auto *name = reinterpret_cast<const OraText *>("utf8");
  EXPECT_EQ(OCINlsCharSetNameToId(nullptr, name), 65534);
  EXPECT_EQ(OCINlsCharSetNameToId(env.errhp(), name), 65534);
}

struct VariableCase {
  const char *name;
  ub2 item;
  const char *nlsLang, *nlsNchar;  ///< null for unset
  ub2 encoding;
};

class OCINlsVariable : public testing::TestWithParam<VariableCase> {};

TEST_P(OCINlsVariable, GivesTheEncodingThatItNames) {
  const VariableCase &c = GetParam();
  const Variable lang("NLS_LANG", c.nlsLang);
  const Variable nchar("NLS_NCHAR", c.nlsNchar);
  ub2 value[2] = {4711, 4712};
  std::size_t size = 0;
  EXPECT_EQ(OCINlsEnvironmentVariableGet(value, 0, c.item, 0, &size), OCI_SUCCESS);
  EXPECT_EQ(value[0], c.encoding);
  EXPECT_EQ(value[1], 4712);
  EXPECT_EQ(size, 2u);
  value[0] = 4711;
  EXPECT_EQ(OCINlsEnvironmentVariableGet(value, 99, c.item, 1, nullptr), OCI_SUCCESS);
  EXPECT_EQ(value[0], c.encoding);
}

INSTANTIATE_TEST_SUITE_P(
    Case, OCINlsVariable,
    testing::Values(
        VariableCase{"LangUnset", OCI_NLS_CHARSET_ID, nullptr, "latin1", 0},
        VariableCase{"LangInTwoParts", OCI_NLS_CHARSET_ID, "A_B", nullptr, 0},
        VariableCase{"Lang", OCI_NLS_CHARSET_ID, "A_B.latin2", "latin1", 9},
        VariableCase{"LangOfOracle", OCI_NLS_CHARSET_ID, "A_B.WE8ISO8859P1", nullptr, 6},
        VariableCase{"NcharUnset", OCI_NLS_NCHARSET_ID, "A_B.latin2", nullptr, 0},
        VariableCase{"Nchar", OCI_NLS_NCHARSET_ID, "A_B.latin2", "UTF-16LE", 39},
        VariableCase{"NcharOfOracle", OCI_NLS_NCHARSET_ID, nullptr, "AL16UTF16", 6},
        VariableCase{"NcharEmpty", OCI_NLS_NCHARSET_ID, nullptr, "", 6}),
    [](const auto &p) { return std::string(p.param.name); });

TEST(OCINlsVariable, OtherItemsAndNoTargetFail) {
  ub2 value = 4711;
  std::size_t size = 4711;
  for (const ub2 item : {0, 91, 92, 95, 65535}) {
    EXPECT_EQ(OCINlsEnvironmentVariableGet(&value, 2, item, 0, &size), OCI_ERROR) << item;
  }
  EXPECT_EQ(OCINlsEnvironmentVariableGet(nullptr, 2, 93, 0, &size), OCI_ERROR);
  EXPECT_EQ(value, 4711);
  EXPECT_EQ(size, 4711u);
}

}  // namespace
}  // namespace zev::test
