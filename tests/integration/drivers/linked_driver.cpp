// A C++ client in the manner of database libraries: handles that free themselves, errors
// that are thrown, values by their C++ types. Linked with the library.
//
// usage: linked_driver USER PASSWORD CONNECT_STRING
#include <oci.h>

#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

const OraText *bytes(const std::string &text) {
  return reinterpret_cast<const OraText *>(text.data());
}

class DatabaseError : public std::runtime_error {
 public:
  DatabaseError(sb4 code, const std::string &text)
      : std::runtime_error(text), code_(code) {}
  sb4 code() const { return code_; }

 private:
  sb4 code_;
};

class Connection {
 public:
  Connection(const std::string &user, const std::string &password,
             const std::string &target) {
    if (OCIEnvCreate(&env_, OCI_DEFAULT, nullptr, nullptr, nullptr, nullptr, 0, nullptr))
      throw std::runtime_error("no environment");
    OCIHandleAlloc(env_, reinterpret_cast<void **>(&error_), OCI_HTYPE_ERROR, 0, nullptr);
    check(OCILogon2(env_, error_, &service_, bytes(user), lengthOf(user), bytes(password),
                    lengthOf(password), bytes(target), lengthOf(target),
                    OCI_LOGON2_STMTCACHE));
  }
  ~Connection() {
    if (service_) OCILogoff(service_, error_);
    OCIHandleFree(env_, OCI_HTYPE_ENV);
  }
  Connection(const Connection &) = delete;
  Connection &operator=(const Connection &) = delete;

  void check(sword status) const {
    if (status == OCI_SUCCESS || status == OCI_SUCCESS_WITH_INFO) return;
    sb4 code = 0;
    OraText text[1024] = {};
    OCIErrorGet(error_, 1, nullptr, &code, text, sizeof text, OCI_HTYPE_ERROR);
    throw DatabaseError(code, reinterpret_cast<char *>(text));
  }
  static ub4 lengthOf(const std::string &text) { return static_cast<ub4>(text.size()); }

  OCIError *error() const { return error_; }
  OCISvcCtx *service() const { return service_; }
  void commit() const { check(OCITransCommit(service_, error_, OCI_DEFAULT)); }
  void rollback() const { check(OCITransRollback(service_, error_, OCI_DEFAULT)); }

 private:
  OCIEnv *env_ = nullptr;
  OCIError *error_ = nullptr;
  OCISvcCtx *service_ = nullptr;
};

class Statement {
 public:
  Statement(const Connection &on, const std::string &sql) : on_(on) {
    on_.check(OCIStmtPrepare2(on_.service(), &handle_, on_.error(), bytes(sql),
                              Connection::lengthOf(sql), nullptr, 0, OCI_NTV_SYNTAX,
                              OCI_DEFAULT));
  }
  ~Statement() { OCIStmtRelease(handle_, on_.error(), nullptr, 0, OCI_DEFAULT); }
  Statement(const Statement &) = delete;
  Statement &operator=(const Statement &) = delete;

  void bind(const std::string &name, void *value, sb4 size, ub2 type) {
    OCIBind *made = nullptr;
    on_.check(OCIBindByName(handle_, &made, on_.error(), bytes(name),
                            static_cast<sb4>(name.size()), value, size, type, nullptr,
                            nullptr, nullptr, 0, nullptr, OCI_DEFAULT));
  }
  ub4 execute(ub4 iters) {
    on_.check(OCIStmtExecute(on_.service(), handle_, on_.error(), iters, 0, nullptr,
                             nullptr, OCI_DEFAULT));
    return attribute<ub4>(OCI_ATTR_ROW_COUNT);
  }
  template <class T>
  T attribute(ub4 number) const {
    T value{};
    on_.check(OCIAttrGet(handle_, OCI_HTYPE_STMT, &value, nullptr, number, on_.error()));
    return value;
  }

  /// All rows as texts, with the columns' names in front.
  std::vector<std::vector<std::string>> table() {
    execute(0);
    struct Column {
      char value[64];
      sb2 missing;
    };
    const ub4 count = attribute<ub4>(OCI_ATTR_PARAM_COUNT);
    std::vector<Column> columns(count);
    std::vector<std::vector<std::string>> rows(1);
    for (ub4 i = 0; i < count; ++i) {
      rows[0].push_back(nameOf(i + 1));
      OCIDefine *made = nullptr;
      on_.check(OCIDefineByPos(handle_, &made, on_.error(), i + 1, columns[i].value,
                               sizeof columns[i].value, SQLT_STR, &columns[i].missing,
                               nullptr, nullptr, OCI_DEFAULT));
    }
    while (fetch()) {
      auto &row = rows.emplace_back();
      for (const Column &c : columns) row.emplace_back(c.missing ? "(null)" : c.value);
    }
    return rows;
  }

 private:
  bool fetch() {
    const sword status =
        OCIStmtFetch2(handle_, on_.error(), 1, OCI_FETCH_NEXT, 0, OCI_DEFAULT);
    if (status == OCI_NO_DATA) return false;
    on_.check(status);
    return true;
  }
  std::string nameOf(ub4 position) const {
    void *column = nullptr;
    OraText *name = nullptr;
    ub4 length = 0;
    on_.check(OCIParamGet(handle_, OCI_HTYPE_STMT, on_.error(), &column, position));
    on_.check(
        OCIAttrGet(column, OCI_DTYPE_PARAM, &name, &length, OCI_ATTR_NAME, on_.error()));
    return {reinterpret_cast<char *>(name), length};
  }

  const Connection &on_;
  OCIStmt *handle_ = nullptr;
};

void print(const std::vector<std::vector<std::string>> &rows) {
  for (const auto &row : rows) {
    for (const std::string &cell : row) std::printf("[%s]", cell.c_str());
    std::puts("");
  }
}

/// Half of a number and the day after a date, computed by the library.
void insert(const Connection &db, sb4 id, double amount) {
  OCINumber number, half;
  const double two = 2;
  OCINumber divisor;
  OCIDate date, next;
  db.check(OCINumberFromReal(db.error(), &amount, sizeof amount, &number));
  db.check(OCINumberFromReal(db.error(), &two, sizeof two, &divisor));
  db.check(OCINumberDiv(db.error(), &number, &divisor, &half));
  const std::string text = "28-FEB-2024", model = "DD-MON-YYYY";
  db.check(OCIDateFromText(db.error(), bytes(text), Connection::lengthOf(text),
                           bytes(model), static_cast<ub1>(model.size()), nullptr, 0,
                           &date));
  db.check(OCIDateAddDays(db.error(), &date, id, &next));

  Statement statement(db, "INSERT INTO zevoci_linked VALUES (:id, :amount, :day)");
  statement.bind(":id", &id, sizeof id, SQLT_INT);
  statement.bind(":amount", &half, sizeof half, SQLT_VNU);
  statement.bind(":day", &next, sizeof next, SQLT_ODT);
  if (statement.execute(1) != 1) throw std::runtime_error("not one row");
}

void work(const Connection &db) {
  Statement(db,
            "CREATE TEMPORARY TABLE zevoci_linked (id integer PRIMARY KEY, amount "
            "numeric(10,2), day date)")
      .execute(1);
  insert(db, 1, 5);
  insert(db, 2, 0.5);
  db.commit();
  try {
    insert(db, 2, 7);
  } catch (const DatabaseError &error) {
    std::printf("error %d\n", static_cast<int>(error.code()));
  }
  insert(db, 3, 9);
  db.rollback();
  print(Statement(db,
                  "SELECT id, amount, to_char(day, 'YYYY-MM-DD') AS day, NULL::text AS "
                  "nothing FROM zevoci_linked ORDER BY id")
            .table());
}

}  // namespace

int main(int argc, char **argv) {
  if (argc != 4) return 1;
  try {
    work(Connection(argv[1], argv[2], argv[3]));
  } catch (const std::exception &failure) {
    std::fprintf(stderr, "%s\n", failure.what());
    return 1;
  }
  std::puts("done");
  return 0;
}
