#include <algorithm>
#include <utility>

#include "tests/integration/support/oci_test.h"

namespace zev::test {
namespace {

struct StateRow {
  const char *state;
  sb4 code;
};
constexpr StateRow kStates[] = {
#include "tests/unit/core/sqlstates.inc"
};

struct TextRow {
  sb4 code;
  const char *text;
};
constexpr TextRow kTexts[] = {
#include "tests/unit/core/error_texts.inc"
};

std::string catalogueText(sb4 code) {
  for (const TextRow &row : kTexts) {
    if (row.code == code) return row.text;
  }
  return "UNKNOWN ERROR CODE";
}

class Errors : public OciTest {
 protected:
  /// Lets the server raise an error of this SQLSTATE in its own words.
  void raise(const std::string &state) {
    auto raising = statement("do $$ declare nothing int; begin raise exception '" +
                             kWords + "' using errcode = '" + state + "'; end $$");
    EXPECT_EQ(raising.execute(), OCI_ERROR) << state;
  }
  sb4 code(ub4 record = 1) {
    sb4 found = 4711;
    OCIErrorGet(errhp(), record, nullptr, &found, nullptr, 0, OCI_HTYPE_ERROR);
    return found;
  }
  std::string serverWords() {
    OraText state[6], text[256] = {};
    const sword status =
        OCIPGErrorGet(errhp(), 1, state, 6, text, sizeof text, OCI_HTYPE_ERROR);
    return status == OCI_SUCCESS ? decodedUpToEnd(text) : "";
  }
  const std::string kWords = dressed("own words");
};

TEST_F(Errors, EveryMappedSqlstateReadsAsItsNumberAndKeepsTheServersWords) {
  for (const StateRow &row : kStates) {
    if (std::string(row.state).substr(0, 2) == "08") continue;
    raise(row.state);
    EXPECT_EQ(code(), row.code) << row.state;
    EXPECT_EQ(errorText(), row.code ? catalogueText(row.code) : kWords) << row.state;
    EXPECT_EQ(serverState(), row.state);
    EXPECT_EQ(serverWords(), kWords);
  }
}

TEST_F(Errors, AConnectionErrorRaisedByTheServerIsUnexpected) {
  for (const StateRow &row : kStates) {
    if (std::string(row.state).substr(0, 2) != "08") continue;
    raise(row.state);
    EXPECT_EQ(code(), 0) << row.state;
    EXPECT_EQ(errorText(), "Unexpected error");
    EXPECT_EQ(serverState(), "");
  }
}

TEST_F(Errors, AStateOutsideTheMapReadsInTheServersWords) {
  for (const char *state : {"42883", "P0001", "XX000", "ZZ999", "23P01"}) {
    raise(state);
    EXPECT_EQ(code(), 0) << state;
    EXPECT_EQ(errorText(), kWords);
    EXPECT_EQ(serverState(), state);
  }
}

TEST_F(Errors, AUniqueViolationKeepsThePlaceholdersUnfilled) {
  run("create temporary table once (n int primary key)");
  commit();
  run("insert into once values (1)");
  auto again = statement("insert into once values (1)");
  EXPECT_EQ(again.execute(), OCI_ERROR);
  expectError(1, "KESTREL-00001: unique constraint (%s.%s) violated");
  EXPECT_EQ(serverState(), "23505");
  EXPECT_NE(serverWords().find("duplicate key value violates unique constraint"),
            std::string::npos);
}

TEST_F(Errors, TheNextCallForgetsTheFormersRecords) {
  raise("22012");
  EXPECT_EQ(code(), 1476);
  ub4 value = 0;
  OCIAttrGet(env(), OCI_HTYPE_ENV, &value, nullptr, OCI_ATTR_OBJECT, errhp());
  EXPECT_EQ(code(), 4711);
}

TEST_F(Errors, ANoticeIsARecordBesideSuccess) {
  auto noisy = statement("do $$ begin raise notice '" + dressed("listen") + "'; end $$");
  EXPECT_EQ(noisy.execute(), OCI_SUCCESS_WITH_INFO);
  expectError(0, "NOTICE:  " + dressed("listen"));
}

}  // namespace
}  // namespace zev::test
