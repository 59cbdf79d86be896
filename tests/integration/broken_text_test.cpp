/// Text that is none, at every argument of the interface that takes text.
#include <ociap.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <set>
#include <sstream>

#include "tests/integration/support/descriptor.h"
#include "tests/integration/support/statement_fixture.h"
#include "tests/server/address.h"

namespace zev::test {
namespace {

// Only UTF-16 is converted; this holds before the first use of the run's encoding.
[[maybe_unused]] const int kRunInUtf16 = setenv("ZEVOCI_TEST_TEXT", "UTF-16", 1);

constexpr std::string_view kIncomplete =
    "An incomplete multibyte sequence has been encountered in the input";
constexpr std::string_view kInvalid =
    "An invalid multibyte sequence has been encountered in the input";

/// A text in UTF-16 that cannot be converted, with a terminator behind it.
struct Broken {
  const char *name;
  std::u16string units;
  std::size_t missing;  ///< bytes that its end lacks
  std::string_view record;

  OraText *text() const {
    return reinterpret_cast<OraText *>(const_cast<char16_t *>(units.data()));
  }
  template <class T = ub4>
  T size() const {
    return static_cast<T>(2 * units.size() - missing);
  }
};

const Broken kBroken[] = {
    {"HalfAUnitAtTheEnd", u"ab", 1, kIncomplete},
    {"HalfAPairAtTheEnd", u"ab\xD83D", 0, kIncomplete},
    {"ASecondUnitWithoutItsFirst", u"a\xDC00z", 0, kInvalid},
};

/// Where a failure is recorded.
enum class Record { OnError, OnEnvironment };

/// How a text argument says where it ends.
enum class End { Length, Terminator };

/// What the rows call with: handles of a connected program.
struct Program {
  OCIEnv *env;
  OCIError *err;
  OCISvcCtx *svc;
  Given user, password, target;
  std::function<void *(ub4)> alloc;

  /// Executes "SELECT :v" with a bound value of `type`.
  sword bound(ub2 type, void *value, sb4 size) const {
    Statement stmt(env, err, svc);
    TextBuffer<> seen;
    if (stmt.prepare("SELECT :v::text") || stmt.bind(":v", value, size, type) ||
        stmt.define(1, seen)) {
      return OCI_INVALID_HANDLE;
    }
    return stmt.execute();
  }
  sword prefixed(ub2 type, std::size_t prefix, const Broken &t) const {
    std::string value(prefix, '\0');
    const ub4 length = t.size();
    std::memcpy(value.data(), &length, prefix);
    value.append(reinterpret_cast<char *>(t.text()), length);
    return bound(type, value.data(), static_cast<sb4>(value.size()));
  }
  sword setOnSession(ub4 attribute, const Broken &t) const {
    return OCIAttrSet(alloc(OCI_HTYPE_SESSION), OCI_HTYPE_SESSION, t.text(), t.size(),
                      attribute, err);
  }
};

/// One text argument of one function.
struct Row {
  const char *function, *argument;
  End end;
  Record record;
  sword (*call)(const Program &, const Broken &);
};

constexpr OCIDate kDate{2001, 2, 3, {4, 5, 6}};

sword logon(const Program &p, const OraText *user, ub4 userSize, const OraText *password,
            ub4 passwordSize, const OraText *target, ub4 targetSize, bool second) {
  OCISvcCtx *made = nullptr;
  const sword status = second ? OCILogon2(p.env, p.err, &made, user, userSize, password,
                                          passwordSize, target, targetSize, OCI_DEFAULT)
                              : OCILogon(p.env, p.err, &made, user, userSize, password,
                                         passwordSize, target, targetSize);
  EXPECT_EQ(made, nullptr);
  return status;
}

sword createPool(const Program &p, const Broken *target, const Broken *user,
                 const Broken *password) {
  OraText *name = nullptr;
  ub4 length = 0;
  const auto text = [](const Broken *t) { return t ? t->text() : nullptr; };
  const auto size = [](const Broken *t) { return t ? t->size() : 0; };
  auto *pool = static_cast<OCISPool *>(p.alloc(OCI_HTYPE_SPOOL));
  const sword status = OCISessionPoolCreate(
      p.env, p.err, pool, &name, &length, text(target), size(target), 0, 1, 1, text(user),
      size(user), text(password), size(password), OCI_SPC_HOMOGENEOUS);
  OCIHandleFree(pool, OCI_HTYPE_SPOOL);
  std::free(name);
  return status;
}

sword changePassword(const Program &p, const OraText *user, ub4 userSize,
                     const OraText *former, ub4 formerSize, const OraText *next,
                     ub4 nextSize) {
  return OCIPasswordChange(p.svc, p.err, user, userSize, former, formerSize, next,
                           nextSize, OCI_DEFAULT);
}

sword bindByName(const Program &p, const Broken &t, sb4 length) {
  Statement stmt(p.env, p.err, p.svc);
  EXPECT_EQ(stmt.prepare("SELECT :v::int"), OCI_SUCCESS);
  sb4 value = 1;
  OCIBind *bind = nullptr;
  return OCIBindByName(stmt.handle(), &bind, p.err, t.text(), length, &value,
                       sizeof value, SQLT_INT, nullptr, nullptr, nullptr, 0, nullptr,
                       OCI_DEFAULT);
}

sword openFile(const Program &p, OraText *name, OraText *path) {
  EXPECT_EQ(OCIFileInit(p.env, p.err), OCI_SUCCESS);
  OCIFileObject *file = nullptr;
  return OCIFileOpen(p.env, p.err, &file, name, path, OCI_FILE_READ_ONLY, OCI_FILE_APPEND,
                     OCI_FILE_BIN);
}

sword dateTime(const Program &p, const Broken *text, const Broken *format,
               const Given &good) {
  Descriptor value(p.env, OCI_DTYPE_TIMESTAMP);
  return OCIDateTimeFromText(p.env, p.err, text ? text->text() : good.text(),
                             text ? text->size<size_t>() : good.size<size_t>(),
                             format ? format->text() : nullptr,
                             format ? format->size<ub1>() : ub1{0}, nullptr, 0,
                             value.as<OCIDateTime>());
}

OCINumber one() {
  OCINumber number{};
  const ub1 bytes[] = {2, 0xC1, 2};
  std::memcpy(number.OCINumberPart, bytes, sizeof bytes);
  return number;
}

#define CALL [](const Program &p, const Broken &t) -> sword
const Row kRows[] = {
    {"OCIServerAttach", "dblink", End::Length, Record::OnError,
     CALL{auto *server = static_cast<OCIServer *>(p.alloc(OCI_HTYPE_SERVER));
return OCIServerAttach(server, p.err, t.text(), t.size<sb4>(), OCI_DEFAULT);
}  // namespace
}  // namespace zev::test
, {"OCILogon", "username", End::Length, Record::OnError,
   CALL{return logon(p, t.text(), t.size(), p.password.text(), p.password.size(),
                     p.target.text(), p.target.size(), false);
}
}
, {"OCILogon", "password", End::Length, Record::OnError,
   CALL{return logon(p, p.user.text(), p.user.size(), t.text(), t.size(), p.target.text(),
                     p.target.size(), false);
}
}
, {"OCILogon", "dbname", End::Length, Record::OnError,
   CALL{return logon(p, p.user.text(), p.user.size(), p.password.text(),
                     p.password.size(), t.text(), t.size(), false);
}
}
, {"OCILogon2", "username", End::Length, Record::OnError,
   CALL{return logon(p, t.text(), t.size(), p.password.text(), p.password.size(),
                     p.target.text(), p.target.size(), true);
}
}
, {"OCILogon2", "password", End::Length, Record::OnError,
   CALL{return logon(p, p.user.text(), p.user.size(), t.text(), t.size(), p.target.text(),
                     p.target.size(), true);
}
}
, {"OCILogon2", "dbname", End::Length, Record::OnError,
   CALL{return logon(p, p.user.text(), p.user.size(), p.password.text(),
                     p.password.size(), t.text(), t.size(), true);
}
}
, {"OCIAttrSet", "OCI_ATTR_USERNAME", End::Length, Record::OnEnvironment,
   CALL{return p.setOnSession(OCI_ATTR_USERNAME, t);
}
}
, {"OCIAttrSet", "OCI_ATTR_PASSWORD", End::Length, Record::OnEnvironment,
   CALL{return p.setOnSession(OCI_ATTR_PASSWORD, t);
}
}
, {"OCIAttrSet", "OCI_ATTR_MODULE", End::Length, Record::OnEnvironment,
   CALL{return p.setOnSession(OCI_ATTR_MODULE, t);
}
}
, {"OCISessionPoolCreate", "connStr", End::Length, Record::OnError,
   CALL{return createPool(p, &t, nullptr, nullptr);
}
}
, {"OCISessionPoolCreate", "userid", End::Length, Record::OnError,
   CALL{return createPool(p, nullptr, &t, nullptr);
}
}
, {"OCISessionPoolCreate", "password", End::Length, Record::OnError,
   CALL{return createPool(p, nullptr, nullptr, &t);
}
}
, {"OCISessionGet", "dbName", End::Length, Record::OnError, CALL{Given user("nobody");
auto *as = static_cast<OCISession *>(p.alloc(OCI_HTYPE_SESSION));
OCIAttrSet(as, OCI_HTYPE_SESSION, user.data(), user.size(), OCI_ATTR_USERNAME, p.err);
OCISvcCtx *made = nullptr;
return OCISessionGet(p.env, p.err, &made, as, t.text(), t.size(), nullptr, 0, nullptr,
                     nullptr, nullptr, OCI_DEFAULT);
}
}
, {"OCIPasswordChange", "user_name", End::Length, Record::OnError,
   CALL{return changePassword(p, t.text(), t.size(), p.password.text(), p.password.size(),
                              p.password.text(), p.password.size());
}
}
, {"OCIPasswordChange", "opasswd", End::Length, Record::OnError,
   CALL{return changePassword(p, p.user.text(), p.user.size(), t.text(), t.size(),
                              p.password.text(), p.password.size());
}
}
, {"OCIPasswordChange", "npasswd", End::Length, Record::OnError,
   CALL{return changePassword(p, p.user.text(), p.user.size(), p.password.text(),
                              p.password.size(), t.text(), t.size());
}
}
, {"OCIStmtPrepare", "stmt", End::Length, Record::OnError,
   CALL{Statement stmt(p.env, p.err, p.svc);
return OCIStmtPrepare(stmt.handle(), p.err, t.text(), t.size(), OCI_NTV_SYNTAX,
                      OCI_DEFAULT);
}
}
, {"OCIStmtPrepare2", "stmt", End::Length, Record::OnError, CALL{OCIStmt *made = nullptr;
return OCIStmtPrepare2(p.svc, &made, p.err, t.text(), t.size(), nullptr, 0,
                       OCI_NTV_SYNTAX, OCI_DEFAULT);
}
}
, {"OCIBindByName", "placeholder", End::Length, Record::OnError,
   CALL{return bindByName(p, t, t.size<sb4>());
}
}
, {"OCIBindByName", "placeholder", End::Terminator, Record::OnError,
   CALL{return bindByName(p, t, -1);
}
}
, {"OCIDescribeAny", "objptr", End::Length, Record::OnError,
   CALL{auto *describe = static_cast<OCIDescribe *>(p.alloc(OCI_HTYPE_DESCRIBE));
return OCIDescribeAny(p.svc, p.err, t.text(), t.size(), OCI_OTYPE_NAME, 0,
                      OCI_PTYPE_TABLE, describe);
}
}
, {"OCIFileOpen", "filename", End::Terminator, Record::OnError,
   CALL{return openFile(p, t.text(), Given("/tmp").text());
}
}
, {"OCIFileOpen", "path", End::Terminator, Record::OnError,
   CALL{return openFile(p, Given("file").text(), t.text());
}
}
, {"OCIFileExists", "filename", End::Terminator, Record::OnError,
   CALL{OCIFileInit(p.env, p.err);
ub1 flag = 0;
return OCIFileExists(p.env, p.err, t.text(), Given("/tmp").text(), &flag);
}
}
, {"OCIFileExists", "path", End::Terminator, Record::OnError,
   CALL{OCIFileInit(p.env, p.err);
ub1 flag = 0;
return OCIFileExists(p.env, p.err, Given("file").text(), t.text(), &flag);
}
}
, {"OCIFileGetLength", "filename", End::Terminator, Record::OnError,
   CALL{OCIFileInit(p.env, p.err);
ubig_ora length = 0;
return OCIFileGetLength(p.env, p.err, t.text(), Given("/tmp").text(), &length);
}
}
, {"OCIFileGetLength", "path", End::Terminator, Record::OnError,
   CALL{OCIFileInit(p.env, p.err);
ubig_ora length = 0;
return OCIFileGetLength(p.env, p.err, Given("file").text(), t.text(), &length);
}
}
, {"OCIDateFromText", "date_str", End::Length, Record::OnError,
   CALL{const Given format("YYYY");
OCIDate date;
return OCIDateFromText(p.err, t.text(), t.size(), format.text(), format.size<ub1>(),
                       nullptr, 0, &date);
}
}
, {"OCIDateFromText", "fmt", End::Length, Record::OnError, CALL{const Given text("2001");
OCIDate date;
return OCIDateFromText(p.err, text.text(), text.size(), t.text(), t.size<ub1>(), nullptr,
                       0, &date);
}
}
, {"OCIDateNextDay", "day_p", End::Length, Record::OnError, CALL{OCIDate next;
return OCIDateNextDay(p.err, &kDate, t.text(), t.size(), &next);
}
}
, {"OCIDateToText", "fmt", End::Length, Record::OnError, CALL{OraText buffer[64];
ub4 room = sizeof buffer;
return OCIDateToText(p.err, &kDate, t.text(), t.size<ub1>(), nullptr, 0, &room, buffer);
}
}
, {"OCIDateTimeFromText", "date_str", End::Length, Record::OnError,
   CALL{return dateTime(p, &t, nullptr, Given(""));
}
}
, {"OCIDateTimeFromText", "fmt", End::Length, Record::OnError,
   CALL{return dateTime(p, nullptr, &t, Given("2001"));
}
}
, {"OCIDateTimeToText", "fmt", End::Length, Record::OnError,
   CALL{Descriptor value(p.env, OCI_DTYPE_TIMESTAMP);
EXPECT_EQ(OCIDateTimeConstruct(p.env, p.err, value.as<OCIDateTime>(), 2001, 2, 3, 4, 5, 6,
                               0, nullptr, 0),
          OCI_SUCCESS);
OraText buffer[64];
ub4 room = sizeof buffer;
return OCIDateTimeToText(p.env, p.err, value.as<OCIDateTime>(), t.text(), t.size<ub1>(),
                         0, nullptr, 0, &room, buffer);
}
}
, {"OCIDateTimeConstruct", "timezone", End::Terminator, Record::OnError,
   CALL{Descriptor value(p.env, OCI_DTYPE_TIMESTAMP_TZ);
return OCIDateTimeConstruct(p.env, p.err, value.as<OCIDateTime>(), 2001, 2, 3, 4, 5, 6, 0,
                            t.text(), 0);
}
}
, {"OCIIntervalFromText", "inpstring", End::Terminator, Record::OnError,
   CALL{Descriptor value(p.env, OCI_DTYPE_INTERVAL_DS);
EXPECT_EQ(OCIIntervalSetDaySecond(p.env, p.err, 1, 0, 0, 0, 0, value.as<OCIInterval>()),
          OCI_SUCCESS);
return OCIIntervalFromText(p.env, p.err, t.text(), 0, value.as<OCIInterval>());
}
}
, {"OCIIntervalFromTZ", "inpstring", End::Terminator, Record::OnError,
   CALL{Descriptor value(p.env, OCI_DTYPE_INTERVAL_DS);
EXPECT_EQ(OCIIntervalSetDaySecond(p.env, p.err, 1, 0, 0, 0, 0, value.as<OCIInterval>()),
          OCI_SUCCESS);
return OCIIntervalFromTZ(p.env, p.err, t.text(), 0, value.as<OCIInterval>());
}
}
, {"OCINumberFromText", "str", End::Length, Record::OnError, CALL{const Given format("9");
OCINumber number;
return OCINumberFromText(p.err, t.text(), t.size(), format.text(), format.size(), nullptr,
                         0, &number);
}
}
, {"OCINumberFromText", "fmt", End::Length, Record::OnError, CALL{const Given text("1");
OCINumber number;
return OCINumberFromText(p.err, text.text(), text.size(), t.text(), t.size(), nullptr, 0,
                         &number);
}
}
, {"OCINumberToText", "fmt", End::Length, Record::OnError,
   CALL{const OCINumber number = one();
OraText buffer[64];
ub4 room = sizeof buffer;
return OCINumberToText(p.err, &number, t.text(), t.size(), nullptr, 0, &room, buffer);
}
}
, {"OCIStmtExecute", "SQLT_CHR", End::Length, Record::OnError,
   CALL{return p.bound(SQLT_CHR, t.text(), t.size<sb4>());
}
}
, {"OCIStmtExecute", "SQLT_LNG", End::Length, Record::OnError,
   CALL{return p.bound(SQLT_LNG, t.text(), t.size<sb4>());
}
}
, {"OCIStmtExecute", "SQLT_AFC", End::Length, Record::OnError,
   CALL{return p.bound(SQLT_AFC, t.text(), t.size<sb4>());
}
}
, {"OCIStmtExecute", "SQLT_STR", End::Length, Record::OnError,
   CALL{return p.bound(SQLT_STR, t.text(), t.size<sb4>());
}
}
, {"OCIStmtExecute", "SQLT_AVC", End::Length, Record::OnError,
   CALL{return p.bound(SQLT_AVC, t.text(), t.size<sb4>());
}
}
, {"OCIStmtExecute", "SQLT_VCS", End::Length, Record::OnError,
   CALL{return p.prefixed(SQLT_VCS, sizeof(ub2), t);
}
}
, {"OCIStmtExecute", "SQLT_LVC", End::Length, Record::OnError,
   CALL{return p.prefixed(SQLT_LVC, sizeof(ub4), t);
}
}
,
}
;
#undef CALL

class BrokenTextTest : public OciTest, public testing::WithParamInterface<Row> {
 protected:
  void forgetRecords() {
    ub4 object = 0;
    OCIAttrGet(env(), OCI_HTYPE_ENV, &object, nullptr, OCI_ATTR_OBJECT, errhp());
    void *made = nullptr;  // an allocation clears the environment's own
    OCIHandleAlloc(env(), &made, OCI_HTYPE_TRANS, 0, nullptr);
    OCIHandleFree(made, OCI_HTYPE_TRANS);
  }
  /// The first record on the handle that this kind of failure uses.
  std::string recorded(Record where) {
    OraText message[1024] = {};
    sb4 code = 77;
    const bool onError = where == Record::OnError;
    EXPECT_EQ(
        OCIErrorGet(onError ? static_cast<void *>(errhp()) : env(), 1, nullptr, &code,
                    message, sizeof message, onError ? OCI_HTYPE_ERROR : OCI_HTYPE_ENV),
        OCI_SUCCESS);
    EXPECT_EQ(code, 0);
    return decodedUpToEnd(message);
  }
};

TEST_P(BrokenTextTest, IsRecordedAndLosesNothing) {
  const Row &row = GetParam();
  ASSERT_TRUE(isUtf16());
  const auto alloc = [this](ub4 type) {
    void *made = nullptr;
    EXPECT_EQ(OCIHandleAlloc(env(), &made, type, 0, nullptr), OCI_SUCCESS);
    return made;
  };
  const ServerAddress &at = testServer();
  const Program program{
      env(), errhp(), svchp(), Given(at.user), Given(at.password), Given(connectString()),
      alloc};
  for (const Broken &text : kBroken) {
    if (row.end == End::Terminator && text.missing) continue;
    SCOPED_TRACE(text.name);
    forgetRecords();
    EXPECT_EQ(row.call(program, text), OCI_ERROR);
    EXPECT_EQ(recorded(row.record), text.record);
    EXPECT_EQ(OCIPing(svchp(), errhp(), OCI_DEFAULT), OCI_SUCCESS);
  }
}

std::string nameOf(const testing::TestParamInfo<Row> &info) {
  const Row &row = info.param;
  return std::string(row.function) + "_" + row.argument +
         (row.end == End::Terminator ? "_ToItsEnd" : "");
}

INSTANTIATE_TEST_SUITE_P(Arguments, BrokenTextTest, testing::ValuesIn(kRows), nameOf);

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
    {"OCIMessage", "does nothing"},
    {"OCIObject", "does nothing"},
    {"OCIRef", "does nothing"},
    {"OCIRowidToChar", "does nothing"},
    {"OCISubscription", "does nothing"},
    {"OCIType", "does nothing"},
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

/// The functions of the published headers that have an argument of a text type.
std::set<std::string> functionsWithText() {
  std::set<std::string> found;
  for (const auto &header :
       std::filesystem::directory_iterator(ZEVOCI_SOURCE_DIR "/include")) {
    if (header.path().extension() != ".h") continue;
    std::stringstream whole;
    whole << std::ifstream(header.path()).rdbuf();
    std::stringstream code(withoutComments(whole.str()));
    for (std::string declaration; std::getline(code, declaration, ';');) {
      found.insert(functionWithText(declaration));
    }
  }
  found.erase("");
  return found;
}

TEST(BrokenTextTable, HasEveryFunctionOfTheHeadersThatTakesText) {
  std::set<std::string> rows;
  for (const Row &row : kRows) rows.insert(row.function);
  const auto isUnconverted = [](const std::string &name) {
    for (const Unconverted &other : kUnconverted) {
      if (name.starts_with(other.function)) return true;
    }
    return false;
  };
  const std::set<std::string> found = functionsWithText();
  EXPECT_GT(found.size(), 50u);
  for (const std::string &name : found) {
    EXPECT_TRUE(rows.contains(name) != isUnconverted(name)) << name;
  }
}

}  // namespace
}  // namespace zev::test
