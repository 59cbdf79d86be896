#include <ociap.h>

#include <cstdlib>
#include <cstring>

#include "tests/integration/broken_text.h"
#include "tests/integration/support/descriptor.h"

namespace zev::test {
namespace {

using P = const BrokenTextCaller &;
using T = const BrokenText &;

/// Executes "SELECT :v" with a bound value of `type`.
sword bound(P p, ub2 type, void *value, sb4 size) {
  Statement stmt(p.env, p.err, p.svc);
  TextBuffer<> seen;
  if (stmt.prepare("SELECT :v::text") || stmt.bind(":v", value, size, type) ||
      stmt.define(1, seen)) {
    return OCI_INVALID_HANDLE;
  }
  return stmt.execute();
}
sword bound(P p, ub2 type, T t) {
  return bound(p, type, t.text(), t.size<sb4>());
}
/// The same of a value with its length in `prefix` bytes in front.
sword boundBehindLength(P p, ub2 type, std::size_t prefix, T t) {
  std::string value(prefix, '\0');
  const ub4 length = t.size();
  std::memcpy(value.data(), &length, prefix);
  value.append(reinterpret_cast<char *>(t.text()), length);
  return bound(p, type, value.data(), static_cast<sb4>(value.size()));
}

sword setOnSession(P p, ub4 attribute, T t) {
  return OCIAttrSet(p.alloc(OCI_HTYPE_SESSION), OCI_HTYPE_SESSION, t.text(), t.size(),
                    attribute, p.err);
}

constexpr OCIDate kDate{2001, 2, 3, {4, 5, 6}};

sword logon(P p, const OraText *user, ub4 userSize, const OraText *password,
            ub4 passwordSize, const OraText *target, ub4 targetSize, bool second) {
  OCISvcCtx *made = nullptr;
  const sword status = second ? OCILogon2(p.env, p.err, &made, user, userSize, password,
                                          passwordSize, target, targetSize, OCI_DEFAULT)
                              : OCILogon(p.env, p.err, &made, user, userSize, password,
                                         passwordSize, target, targetSize);
  EXPECT_EQ(made, nullptr);
  return status;
}

sword createPool(P p, const BrokenText *target, const BrokenText *user,
                 const BrokenText *password) {
  OraText *name = nullptr;
  ub4 length = 0;
  const auto text = [](const BrokenText *t) { return t ? t->text() : nullptr; };
  const auto size = [](const BrokenText *t) { return t ? t->size() : 0; };
  auto *pool = static_cast<OCISPool *>(p.alloc(OCI_HTYPE_SPOOL));
  const sword status = OCISessionPoolCreate(
      p.env, p.err, pool, &name, &length, text(target), size(target), 0, 1, 1, text(user),
      size(user), text(password), size(password), OCI_SPC_HOMOGENEOUS);
  OCIHandleFree(pool, OCI_HTYPE_SPOOL);
  std::free(name);
  return status;
}

sword changePassword(P p, const OraText *user, ub4 userSize, const OraText *former,
                     ub4 formerSize, const OraText *next, ub4 nextSize) {
  return OCIPasswordChange(p.svc, p.err, user, userSize, former, formerSize, next,
                           nextSize, OCI_DEFAULT);
}

sword bindByName(P p, T t, sb4 length) {
  Statement stmt(p.env, p.err, p.svc);
  EXPECT_EQ(stmt.prepare("SELECT :v::int"), OCI_SUCCESS);
  sb4 value = 1;
  OCIBind *bind = nullptr;
  return OCIBindByName(stmt.handle(), &bind, p.err, t.text(), length, &value,
                       sizeof value, SQLT_INT, nullptr, nullptr, nullptr, 0, nullptr,
                       OCI_DEFAULT);
}

sb4 giveText(void *context, OCIBind *, ub4, ub4, void **buffer, ub4 *length, ub1 *piece,
             void **) {
  const auto &t = *static_cast<const BrokenText *>(context);
  *buffer = t.text();
  *length = t.size();
  *piece = OCI_ONE_PIECE;
  return OCI_CONTINUE;
}

/// Executes a statement whose value a callback gives.
sword bindDynamically(P p, T t) {
  Statement stmt(p.env, p.err, p.svc);
  EXPECT_EQ(stmt.prepare("SELECT :v::text"), OCI_SUCCESS);
  const Given name(":v");
  OCIBind *bind = nullptr;
  EXPECT_EQ(OCIBindByName(stmt.handle(), &bind, p.err, name.text(), name.size<sb4>(),
                          nullptr, 100, SQLT_CHR, nullptr, nullptr, nullptr, 0, nullptr,
                          OCI_DATA_AT_EXEC),
            OCI_SUCCESS);
  EXPECT_EQ(OCIBindDynamic(bind, p.err, const_cast<BrokenText *>(&t), giveText, nullptr,
                           nullptr),
            OCI_SUCCESS);
  TextBuffer<> seen;
  stmt.define(1, seen);
  return stmt.execute();
}

sword openFile(P p, OraText *name, OraText *path) {
  EXPECT_EQ(OCIFileInit(p.env, p.err), OCI_SUCCESS);
  OCIFileObject *file = nullptr;
  return OCIFileOpen(p.env, p.err, &file, name, path, OCI_FILE_READ_ONLY, OCI_FILE_APPEND,
                     OCI_FILE_BIN);
}

sword dateTime(P p, const BrokenText *text, const BrokenText *format, const Given &good) {
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

constexpr BrokenTextRow kRows[] = {
    {"OCIServerAttach", "dblink", EndsBy::Length, RecordedOn::Error,
     [](P p, T t) {
       auto *server = static_cast<OCIServer *>(p.alloc(OCI_HTYPE_SERVER));
       return OCIServerAttach(server, p.err, t.text(), t.size<sb4>(), OCI_DEFAULT);
     }},
    {"OCILogon", "username", EndsBy::Length, RecordedOn::Error,
     [](P p, T t) {
       return logon(p, t.text(), t.size(), p.password.text(), p.password.size(),
                    p.target.text(), p.target.size(), false);
     }},
    {"OCILogon", "password", EndsBy::Length, RecordedOn::Error,
     [](P p, T t) {
       return logon(p, p.user.text(), p.user.size(), t.text(), t.size(), p.target.text(),
                    p.target.size(), false);
     }},
    {"OCILogon", "dbname", EndsBy::Length, RecordedOn::Error,
     [](P p, T t) {
       return logon(p, p.user.text(), p.user.size(), p.password.text(), p.password.size(),
                    t.text(), t.size(), false);
     }},
    {"OCILogon2", "username", EndsBy::Length, RecordedOn::Error,
     [](P p, T t) {
       return logon(p, t.text(), t.size(), p.password.text(), p.password.size(),
                    p.target.text(), p.target.size(), true);
     }},
    {"OCILogon2", "password", EndsBy::Length, RecordedOn::Error,
     [](P p, T t) {
       return logon(p, p.user.text(), p.user.size(), t.text(), t.size(), p.target.text(),
                    p.target.size(), true);
     }},
    {"OCILogon2", "dbname", EndsBy::Length, RecordedOn::Error,
     [](P p, T t) {
       return logon(p, p.user.text(), p.user.size(), p.password.text(), p.password.size(),
                    t.text(), t.size(), true);
     }},
    {"OCIAttrSet", "OCI_ATTR_USERNAME", EndsBy::Length, RecordedOn::Environment,
     [](P p, T t) { return setOnSession(p, OCI_ATTR_USERNAME, t); }},
    {"OCIAttrSet", "OCI_ATTR_PASSWORD", EndsBy::Length, RecordedOn::Environment,
     [](P p, T t) { return setOnSession(p, OCI_ATTR_PASSWORD, t); }},
    {"OCIAttrSet", "OCI_ATTR_MODULE", EndsBy::Length, RecordedOn::Environment,
     [](P p, T t) { return setOnSession(p, OCI_ATTR_MODULE, t); }},
    {"OCISessionPoolCreate", "connStr", EndsBy::Length, RecordedOn::Error,
     [](P p, T t) { return createPool(p, &t, nullptr, nullptr); }},
    {"OCISessionPoolCreate", "userid", EndsBy::Length, RecordedOn::Error,
     [](P p, T t) { return createPool(p, nullptr, &t, nullptr); }},
    {"OCISessionPoolCreate", "password", EndsBy::Length, RecordedOn::Error,
     [](P p, T t) { return createPool(p, nullptr, nullptr, &t); }},
    {"OCISessionGet", "dbName", EndsBy::Length, RecordedOn::Error,
     [](P p, T t) {
       Given user("nobody");
       auto *as = static_cast<OCISession *>(p.alloc(OCI_HTYPE_SESSION));
       OCIAttrSet(as, OCI_HTYPE_SESSION, user.data(), user.size(), OCI_ATTR_USERNAME,
                  p.err);
       OCISvcCtx *made = nullptr;
       return OCISessionGet(p.env, p.err, &made, as, t.text(), t.size(), nullptr, 0,
                            nullptr, nullptr, nullptr, OCI_DEFAULT);
     }},
    {"OCIPasswordChange", "user_name", EndsBy::Length, RecordedOn::Error,
     [](P p, T t) {
       return changePassword(p, t.text(), t.size(), p.password.text(), p.password.size(),
                             p.password.text(), p.password.size());
     }},
    {"OCIPasswordChange", "opasswd", EndsBy::Length, RecordedOn::Error,
     [](P p, T t) {
       return changePassword(p, p.user.text(), p.user.size(), t.text(), t.size(),
                             p.password.text(), p.password.size());
     }},
    {"OCIPasswordChange", "npasswd", EndsBy::Length, RecordedOn::Error,
     [](P p, T t) {
       return changePassword(p, p.user.text(), p.user.size(), p.password.text(),
                             p.password.size(), t.text(), t.size());
     }},
    {"OCIStmtPrepare", "stmt", EndsBy::Length, RecordedOn::Error,
     [](P p, T t) {
       Statement stmt(p.env, p.err, p.svc);
       return OCIStmtPrepare(stmt.handle(), p.err, t.text(), t.size(), OCI_NTV_SYNTAX,
                             OCI_DEFAULT);
     }},
    {"OCIStmtPrepare2", "stmt", EndsBy::Length, RecordedOn::Error,
     [](P p, T t) {
       OCIStmt *made = nullptr;
       return OCIStmtPrepare2(p.svc, &made, p.err, t.text(), t.size(), nullptr, 0,
                              OCI_NTV_SYNTAX, OCI_DEFAULT);
     }},
    {"OCIBindByName", "placeholder", EndsBy::Length, RecordedOn::Error,
     [](P p, T t) { return bindByName(p, t, t.size<sb4>()); }},
    {"OCIBindByName", "placeholder", EndsBy::Terminator, RecordedOn::Error,
     [](P p, T t) { return bindByName(p, t, -1); }},
    {"OCIBindByName2", "placeholder", EndsBy::Length, RecordedOn::Error,
     [](P p, T t) {
       Statement stmt(p.env, p.err, p.svc);
       EXPECT_EQ(stmt.prepare("SELECT :v::int"), OCI_SUCCESS);
       sb4 value = 1;
       OCIBind *bind = nullptr;
       return OCIBindByName2(stmt.handle(), &bind, p.err, t.text(), t.size<sb4>(), &value,
                             sizeof value, SQLT_INT, nullptr, nullptr, nullptr, 0,
                             nullptr, OCI_DEFAULT);
     }},
    {"OCIDescribeAny", "objptr", EndsBy::Length, RecordedOn::Error,
     [](P p, T t) {
       auto *describe = static_cast<OCIDescribe *>(p.alloc(OCI_HTYPE_DESCRIBE));
       return OCIDescribeAny(p.svc, p.err, t.text(), t.size(), OCI_OTYPE_NAME, 0,
                             OCI_PTYPE_TABLE, describe);
     }},
    {"OCIFileOpen", "filename", EndsBy::Terminator, RecordedOn::Error,
     [](P p, T t) { return openFile(p, t.text(), Given("/tmp").text()); }},
    {"OCIFileOpen", "path", EndsBy::Terminator, RecordedOn::Error,
     [](P p, T t) { return openFile(p, Given("file").text(), t.text()); }},
    {"OCIFileExists", "filename", EndsBy::Terminator, RecordedOn::Error,
     [](P p, T t) {
       OCIFileInit(p.env, p.err);
       ub1 flag = 0;
       return OCIFileExists(p.env, p.err, t.text(), Given("/tmp").text(), &flag);
     }},
    {"OCIFileExists", "path", EndsBy::Terminator, RecordedOn::Error,
     [](P p, T t) {
       OCIFileInit(p.env, p.err);
       ub1 flag = 0;
       return OCIFileExists(p.env, p.err, Given("file").text(), t.text(), &flag);
     }},
    {"OCIFileGetLength", "filename", EndsBy::Terminator, RecordedOn::Error,
     [](P p, T t) {
       OCIFileInit(p.env, p.err);
       ubig_ora length = 0;
       return OCIFileGetLength(p.env, p.err, t.text(), Given("/tmp").text(), &length);
     }},
    {"OCIFileGetLength", "path", EndsBy::Terminator, RecordedOn::Error,
     [](P p, T t) {
       OCIFileInit(p.env, p.err);
       ubig_ora length = 0;
       return OCIFileGetLength(p.env, p.err, Given("file").text(), t.text(), &length);
     }},
    {"OCIDateFromText", "date_str", EndsBy::Length, RecordedOn::Error,
     [](P p, T t) {
       const Given format("YYYY");
       OCIDate date;
       return OCIDateFromText(p.err, t.text(), t.size(), format.text(),
                              format.size<ub1>(), nullptr, 0, &date);
     }},
    {"OCIDateFromText", "fmt", EndsBy::Length, RecordedOn::Error,
     [](P p, T t) {
       const Given text("2001");
       OCIDate date;
       return OCIDateFromText(p.err, text.text(), text.size(), t.text(), t.size<ub1>(),
                              nullptr, 0, &date);
     }},
    {"OCIDateNextDay", "day_p", EndsBy::Length, RecordedOn::Error,
     [](P p, T t) {
       OCIDate next;
       return OCIDateNextDay(p.err, &kDate, t.text(), t.size(), &next);
     }},
    {"OCIDateToText", "fmt", EndsBy::Length, RecordedOn::Error,
     [](P p, T t) {
       OraText buffer[64];
       ub4 room = sizeof buffer;
       return OCIDateToText(p.err, &kDate, t.text(), t.size<ub1>(), nullptr, 0, &room,
                            buffer);
     }},
    {"OCIDateTimeFromText", "date_str", EndsBy::Length, RecordedOn::Error,
     [](P p, T t) { return dateTime(p, &t, nullptr, Given("")); }},
    {"OCIDateTimeFromText", "fmt", EndsBy::Length, RecordedOn::Error,
     [](P p, T t) { return dateTime(p, nullptr, &t, Given("2001")); }},
    {"OCIDateTimeToText", "fmt", EndsBy::Length, RecordedOn::Error,
     [](P p, T t) {
       Descriptor value(p.env, OCI_DTYPE_TIMESTAMP);
       EXPECT_EQ(OCIDateTimeConstruct(p.env, p.err, value.as<OCIDateTime>(), 2001, 2, 3,
                                      4, 5, 6, 0, nullptr, 0),
                 OCI_SUCCESS);
       OraText buffer[64];
       ub4 room = sizeof buffer;
       return OCIDateTimeToText(p.env, p.err, value.as<OCIDateTime>(), t.text(),
                                t.size<ub1>(), 0, nullptr, 0, &room, buffer);
     }},
    {"OCIDateTimeConstruct", "timezone", EndsBy::Terminator, RecordedOn::Error,
     [](P p, T t) {
       Descriptor value(p.env, OCI_DTYPE_TIMESTAMP_TZ);
       return OCIDateTimeConstruct(p.env, p.err, value.as<OCIDateTime>(), 2001, 2, 3, 4,
                                   5, 6, 0, t.text(), 0);
     }},
    {"OCIIntervalFromText", "inpstring", EndsBy::Terminator, RecordedOn::Error,
     [](P p, T t) {
       Descriptor value(p.env, OCI_DTYPE_INTERVAL_DS);
       EXPECT_EQ(
           OCIIntervalSetDaySecond(p.env, p.err, 1, 0, 0, 0, 0, value.as<OCIInterval>()),
           OCI_SUCCESS);
       return OCIIntervalFromText(p.env, p.err, t.text(), 0, value.as<OCIInterval>());
     }},
    {"OCIIntervalFromTZ", "inpstring", EndsBy::Terminator, RecordedOn::Error,
     [](P p, T t) {
       Descriptor value(p.env, OCI_DTYPE_INTERVAL_DS);
       EXPECT_EQ(
           OCIIntervalSetDaySecond(p.env, p.err, 1, 0, 0, 0, 0, value.as<OCIInterval>()),
           OCI_SUCCESS);
       return OCIIntervalFromTZ(p.env, p.err, t.text(), 0, value.as<OCIInterval>());
     }},
    {"OCINumberFromText", "str", EndsBy::Length, RecordedOn::Error,
     [](P p, T t) {
       const Given format("9");
       OCINumber number;
       return OCINumberFromText(p.err, t.text(), t.size(), format.text(), format.size(),
                                nullptr, 0, &number);
     }},
    {"OCINumberFromText", "fmt", EndsBy::Length, RecordedOn::Error,
     [](P p, T t) {
       const Given text("1");
       OCINumber number;
       return OCINumberFromText(p.err, text.text(), text.size(), t.text(), t.size(),
                                nullptr, 0, &number);
     }},
    {"OCINumberToText", "fmt", EndsBy::Length, RecordedOn::Error,
     [](P p, T t) {
       const OCINumber number = one();
       OraText buffer[64];
       ub4 room = sizeof buffer;
       return OCINumberToText(p.err, &number, t.text(), t.size(), nullptr, 0, &room,
                              buffer);
     }},
    {"OCIBindDynamic", "bufpp", EndsBy::Length, RecordedOn::Error,
     [](P p, T t) { return bindDynamically(p, t); }},
    {"OCIStmtExecute", "SQLT_CHR", EndsBy::Length, RecordedOn::Error,
     [](P p, T t) { return bound(p, SQLT_CHR, t); }},
    {"OCIStmtExecute", "SQLT_LNG", EndsBy::Length, RecordedOn::Error,
     [](P p, T t) { return bound(p, SQLT_LNG, t); }},
    {"OCIStmtExecute", "SQLT_AFC", EndsBy::Length, RecordedOn::Error,
     [](P p, T t) { return bound(p, SQLT_AFC, t); }},
    {"OCIStmtExecute", "SQLT_STR", EndsBy::Length, RecordedOn::Error,
     [](P p, T t) { return bound(p, SQLT_STR, t); }},
    {"OCIStmtExecute", "SQLT_AVC", EndsBy::Length, RecordedOn::Error,
     [](P p, T t) { return bound(p, SQLT_AVC, t); }},
    {"OCIStmtExecute", "SQLT_VCS", EndsBy::Length, RecordedOn::Error,
     [](P p, T t) { return boundBehindLength(p, SQLT_VCS, sizeof(ub2), t); }},
    {"OCIStmtExecute", "SQLT_LVC", EndsBy::Length, RecordedOn::Error,
     [](P p, T t) { return boundBehindLength(p, SQLT_LVC, sizeof(ub4), t); }},
};

}  // namespace

std::span<const BrokenTextRow> brokenTextRows() {
  return kRows;
}

}  // namespace zev::test
