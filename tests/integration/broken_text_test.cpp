/// Text that is none, at every argument of the interface that takes text.
#include "tests/integration/broken_text.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

#include "tests/server/address.h"

namespace zev::test {
namespace {

// Only UTF-16 is converted; this holds before the first use of the run's encoding.
[[maybe_unused]] const int kRunInUtf16 = setenv("ZEVOCI_TEST_TEXT", "UTF-16", 1);

constexpr std::string_view kIncomplete =
    "An incomplete multibyte sequence has been encountered in the input";
constexpr std::string_view kInvalid =
    "An invalid multibyte sequence has been encountered in the input";

const BrokenText kBroken[] = {
    {"HalfAUnitAtTheEnd", u"ab", 1, kIncomplete},
    {"HalfAPairAtTheEnd", u"ab\xD83D", 0, kIncomplete},
    {"ASecondUnitWithoutItsFirst", u"a\xDC00z", 0, kInvalid},
};

class BrokenTextTest : public OciTest, public testing::WithParamInterface<BrokenTextRow> {
 protected:
  void forgetRecords() {
    ub4 object = 0;
    OCIAttrGet(env(), OCI_HTYPE_ENV, &object, nullptr, OCI_ATTR_OBJECT, errhp());
    void *made = nullptr;  // an allocation clears the environment's own
    OCIHandleAlloc(env(), &made, OCI_HTYPE_TRANS, 0, nullptr);
    OCIHandleFree(made, OCI_HTYPE_TRANS);
  }
  /// The first record on the handle that this kind of failure uses.
  std::string recorded(RecordedOn where) {
    OraText message[1024] = {};
    sb4 code = 77;
    const bool onError = where == RecordedOn::Error;
    EXPECT_EQ(
        OCIErrorGet(onError ? static_cast<void *>(errhp()) : env(), 1, nullptr, &code,
                    message, sizeof message, onError ? OCI_HTYPE_ERROR : OCI_HTYPE_ENV),
        OCI_SUCCESS);
    EXPECT_EQ(code, 0);
    return decodedUpToEnd(message);
  }
};

TEST_P(BrokenTextTest, IsRecordedAndLosesNothing) {
  const BrokenTextRow &row = GetParam();
  ASSERT_TRUE(isUtf16());
  const auto alloc = [this](ub4 type) {
    void *made = nullptr;
    EXPECT_EQ(OCIHandleAlloc(env(), &made, type, 0, nullptr), OCI_SUCCESS);
    return made;
  };
  const ServerAddress &at = testServer();
  const BrokenTextCaller caller{
      env(), errhp(), svchp(), Given(at.user), Given(at.password), Given(connectString()),
      alloc};
  for (const BrokenText &text : kBroken) {
    if (row.end == EndsBy::Terminator && text.missing) continue;
    SCOPED_TRACE(text.name);
    forgetRecords();
    EXPECT_EQ(row.call(caller, text), OCI_ERROR);
    EXPECT_EQ(recorded(row.record), text.record);
    EXPECT_EQ(OCIPing(svchp(), errhp(), OCI_DEFAULT), OCI_SUCCESS);
  }
}

std::string nameOf(const testing::TestParamInfo<BrokenTextRow> &info) {
  const BrokenTextRow &row = info.param;
  return std::string(row.function) + "_" + row.argument +
         (row.end == EndsBy::Terminator ? "_ToItsEnd" : "");
}

INSTANTIATE_TEST_SUITE_P(Arguments, BrokenTextTest,
                         testing::ValuesIn(brokenTextRows().begin(),
                                           brokenTextRows().end()),
                         nameOf);

/// Functions whose arguments of type text are not converted, and what they are.
struct Unconverted {
  const char *function;  ///< or the beginning of the names of a family
  const char *reason;
};
constexpr Unconverted kUnconverted[] = {
    {"OCIAQ", "does nothing"},
    {"OCIAppCtx", "does nothing"},
    {"OCIColl", "does nothing"},
    {"OCIConnectionPoolCreate", "does nothing"},
    {"OCIDateZoneToZone", "does nothing"},
    {"OCIDirPath", "does nothing"},
    {"OCIExtract", "does nothing"},
    {"OCIFormat", "does nothing"},
    {"OCILobFile", "does nothing"},
    {"OCILobGetContentType", "does nothing"},
    {"OCILobSetContentType", "does nothing"},
    {"OCIMessage", "does nothing"},
    {"OCIObject", "does nothing"},
    {"OCIRef", "does nothing"},
    {"OCIRowidToChar", "does nothing"},
    {"OCISoda", "does nothing"},
    {"OCISubscription", "does nothing"},
    {"OCIType", "does nothing"},
    {"OCIVector", "does nothing"},
    {"OCIErrorGet", "gives text alone"},
    {"OCIPGErrorGet", "gives text alone"},
    {"OCIServerRelease", "gives text alone"},
    {"OCIServerVersion", "gives text alone"},
    {"OCIStmtGetBindInfo", "gives text alone"},
    {"OCIIntervalToText", "gives text alone"},
    {"OCIStmtRelease", "a key, which is compared by its bytes"},
    {"OCIContext", "a key, which is compared by its bytes"},
    {"OCISessionRelease", "a tag, which has no effect"},
    {"OCINls", "names of encodings are ASCII"},
    {"OCIMultiByte", "text in the encoding that is measured"},
    {"OCIWideChar", "text in the encoding that is measured"},
    {"OCICharSet", "text in the encoding that is converted"},
    {"OCIUnicodeToCharSet", "text in the encoding that is converted"},
    {"OCIString", "strings are kept in the program's encoding"},
    {"OCIUserCallback", "names no text"},
    {"ocie", "does nothing"},
    {"xao", "finds no environment"},
};

std::string withoutComments(const std::string &source) {
  std::string code;
  for (std::size_t at = 0; at < source.size();) {
    const std::size_t comment = source.find("/*", at);
    code += source.substr(at, comment - at);
    const std::size_t end = source.find("*/", comment);
    if (comment == source.npos || end == source.npos) break;
    at = end + 2;
  }
  return code;
}

/// The name of the function that a declaration declares, "" where it has no text.
std::string functionWithText(const std::string &declaration) {
  const std::size_t open = declaration.find('(');
  if (open == declaration.npos || declaration.find("typedef") != declaration.npos) {
    return "";
  }
  const bool hasText = declaration.find("OraText *", open) != declaration.npos ||
                       declaration.find("oratext *", open) != declaration.npos;
  const std::size_t begin = declaration.find_last_of(" *\n", open) + 1;
  return hasText ? declaration.substr(begin, open - begin) : "";
}

/// Adds the functions of a folder's headers that have an argument of a text type.
void findFunctionsWithText(const char *folder, std::set<std::string> &found) {
  for (const auto &header : std::filesystem::directory_iterator(folder)) {
    if (header.path().extension() != ".h") continue;
    std::stringstream whole;
    whole << std::ifstream(header.path()).rdbuf();
    std::stringstream code(withoutComments(whole.str()));
    for (std::string declaration; std::getline(code, declaration, ';');) {
      found.insert(functionWithText(declaration));
    }
  }
  found.erase("");
}

TEST(BrokenTextTable, HasEveryFunctionOfTheHeadersThatTakesText) {
  std::set<std::string> rows;
  for (const BrokenTextRow &row : brokenTextRows()) rows.insert(row.function);
  const auto isUnconverted = [](const std::string &name) {
    for (const Unconverted &other : kUnconverted) {
      if (name.starts_with(other.function)) return true;
    }
    return false;
  };
  std::set<std::string> found;
  findFunctionsWithText(ZEVOCI_INCLUDE_DIR, found);
  findFunctionsWithText(ZEVOCI_GENERATED_INCLUDE_DIR, found);
  EXPECT_GT(found.size(), 50u);
  for (const std::string &name : found) {
    EXPECT_TRUE(rows.contains(name) != isUnconverted(name)) << name;
  }
}

}  // namespace
}  // namespace zev::test
