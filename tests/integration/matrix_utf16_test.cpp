/// Character data through a server in an environment of UTF-16: every target of the
/// character columns, and every external type that binds characters, against the models.
#include "tests/integration/support/oci_test.h"
#include "tests/server/address.h"
#include "tests/unit/types/model/bind_model.h"
#include "tests/unit/types/model/pairs.h"
#include "tests/unit/types/model/utf.h"

namespace zev::test {
namespace {

using zevtest::model::BindCall;
using zevtest::model::BindOutcome;
using zevtest::model::Call;
using zevtest::model::kUntouched;
using zevtest::model::native;
using zevtest::model::Outcome;
using zevtest::model::Pair;

std::string wide(const std::string &text) {
  return zevtest::model::utf8ToUtf16(text).text;
}
std::string narrow(const std::string &text) {
  return zevtest::model::utf16ToUtf8(text).text;
}
const OraText *asText(const std::string &text) {
  return reinterpret_cast<const OraText *>(text.data());
}
ub4 lengthOf(const std::string &text) {
  return static_cast<ub4>(text.size());
}

/// An environment whose texts are in UTF-16, with a connection.
class Utf16MatrixTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(
        OCIEnvCreate(&env_, OCI_UTF16, nullptr, nullptr, nullptr, nullptr, 0, nullptr),
        OCI_SUCCESS);
    void *handle = nullptr;
    ASSERT_EQ(OCIHandleAlloc(env_, &handle, OCI_HTYPE_ERROR, 0, nullptr), OCI_SUCCESS);
    errhp_ = static_cast<OCIError *>(handle);
    const ServerAddress &at = testServer();
    const std::string user = wide(at.user), password = wide(at.password),
                      target = wide(at.host + ":" + at.port + "/" + at.db);
    ASSERT_EQ(
        OCILogon(env_, errhp_, &svchp_, asText(user), lengthOf(user), asText(password),
                 lengthOf(password), asText(target), lengthOf(target)),
        OCI_SUCCESS);
  }

  void TearDown() override {
    if (svchp_) {
      EXPECT_EQ(OCILogoff(svchp_, errhp_), OCI_SUCCESS);
    }
    OCIHandleFree(env_, OCI_HTYPE_ENV);
  }

  Statement statement(const std::string &text) {
    Statement stmt(env_, errhp_, svchp_);
    EXPECT_EQ(stmt.prepare(wide(text)), OCI_SUCCESS);
    return stmt;
  }

  /// The number of the last record, 0 without one.
  sb4 lastRecord() {
    sb4 code = 0;
    OraText message[4096];
    for (ub4 i = 1; OCIErrorGet(errhp_, i, nullptr, &code, message, sizeof message,
                                OCI_HTYPE_ERROR) == OCI_SUCCESS;) {
      ++i;
    }
    return code;
  }

  /// One value of a character column in one target.
  void fetch(const Pair &pair, const char *type, const std::string &value, ub4 size) {
    const Call call{.oid = pair.oid,
                    .dty = pair.dty,
                    .value = value,
                    .cap = size,
                    .env = {.oracleVarchars = true, .utf16 = true}};
    const Outcome e = *zevtest::model::predict(call);
    const bool endsInNul = pair.dty == SQLT_STR || pair.dty == SQLT_AVC;
    std::vector<char> target(size + (endsInNul ? 1 : 0), kUntouched);
    sb2 indicator = 0;
    ub2 length = 0, returnCode = 0;
    Statement stmt = statement("SELECT CAST('" + value + "' AS " + type + ")");
    ASSERT_EQ(stmt.define(1, target.data(), static_cast<sb4>(size), pair.dty, &indicator,
                          &length, &returnCode),
              OCI_SUCCESS);
    EXPECT_EQ(stmt.execute(), e.result == 1 ? OCI_SUCCESS_WITH_INFO : e.result);
    EXPECT_EQ(lastRecord(), e.record);
    EXPECT_EQ(std::string(target.begin(), target.end()),
              e.target.substr(0, target.size()));
    EXPECT_EQ(indicator, e.indicator);
    EXPECT_EQ(returnCode, e.returnCode);
    EXPECT_EQ(length, static_cast<ub2>(e.length.value_or(length)));
  }

  OCIEnv *env_ = nullptr;
  OCIError *errhp_ = nullptr;
  OCISvcCtx *svchp_ = nullptr;
};

TEST_F(Utf16MatrixTest, CharacterColumns) {
  for (const Pair &pair : zevtest::model::modelledPairs()) {
    const bool isNumber = pair.dty == SQLT_INT || pair.dty == SQLT_UIN ||
                          pair.dty == SQLT_FLT || pair.dty == SQLT_BFLOAT ||
                          pair.dty == SQLT_BDOUBLE;
    if (!zevtest::model::isCharacterRow(pair.oid) || pair.dty == SQLT_VST) continue;
    const char *type = pair.oid == 25 ? "text" : pair.oid == 1043 ? "varchar" : "bpchar";
    for (const std::string value :
         {"abc", "12", "\xC3\xA9t\xE2\x82\xAC", "\xF0\x9F\x98\x80", ""}) {
      for (const ub4 size :
           isNumber ? std::vector<ub4>{4, 8} : std::vector<ub4>{30, 5, 4}) {
        SCOPED_TRACE(zevtest::model::nameOf(pair) + " \"" + value + "\" size " +
                     std::to_string(size));
        fetch(pair, type, value, size);
      }
    }
  }
}

TEST_F(Utf16MatrixTest, BoundCharacters) {
  for (const ub2 dty :
       {SQLT_CHR, SQLT_STR, SQLT_LNG, SQLT_VCS, SQLT_LVC, SQLT_AFC, SQLT_AVC}) {
    for (const std::string text :
         {"abc", "a  ", "\xC3\xA9t\xE2\x82\xAC", "\xF0\x9F\x98\x80"}) {
      SCOPED_TRACE("type " + std::to_string(dty) + " \"" + text + "\"");
      std::string bytes = wide(text);
      if (dty == SQLT_VCS) bytes = native(static_cast<int>(bytes.size()), 2) + bytes;
      if (dty == SQLT_LVC) bytes = native(static_cast<int>(bytes.size()), 4) + bytes;
      if (dty == SQLT_STR || dty == SQLT_AVC) bytes += std::string(2, '\0');
      const auto size = static_cast<sb4>(bytes.size());
      const BindOutcome e = *zevtest::model::predictBind(
          {.dty = dty, .oid = 1043, .bytes = bytes, .length = size, .env = {true, true}});
      ASSERT_EQ(e.result, 0);
      Statement stmt = statement("SELECT '<' || :v || '>'");
      ASSERT_EQ(stmt.bind(wide(":v"), bytes.data(), size, dty), OCI_SUCCESS);
      char answer[64] = {};
      ub2 length = 0;
      ASSERT_EQ(stmt.define(1, answer, sizeof answer, SQLT_CHR, nullptr, &length),
                OCI_SUCCESS);
      ASSERT_EQ(stmt.execute(), OCI_SUCCESS) << lastRecord();
      EXPECT_EQ(narrow({answer, length}), "<" + std::string(e.bytes->c_str()) + ">");
    }
  }
}

}  // namespace
}  // namespace zev::test
