/// A connection to the test server and short forms of the operations on it.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "pqext/adapter.h"
#include "pqext/pqext.h"
#include "tests/server/wire_log.h"

namespace zev::test {

struct Finish {
  void operator()(PGconn *conn) const noexcept { PQfinish(conn); }
};
using Connection = std::unique_ptr<PGconn, Finish>;
using pqext::Result;
using Row = std::vector<std::string>;
using Rows = std::vector<Row>;

Connection connectToServer();

class PqextTest : public testing::Test {
 protected:
  PqextTest() : conn_(connectToServer()) {}

  PGconn *conn() const { return conn_.get(); }

  /// Runs SQL that must succeed; the first value, or "" without one.
  std::string run(const std::string &sql) { return run(conn(), sql); }
  static std::string run(PGconn *conn, const std::string &sql);
  /// Runs SQL that must fail; its SQLSTATE.
  std::string runFailing(const std::string &sql);
  /// Prepares a statement, and tells the adapter unless it is to ask.
  void prepare(const std::string &name, const std::string &sql,
               std::vector<Oid> types = {}, bool tell = true);

  /// The one result of the operation that was sent; a second one is a failure.
  Result only(int sent) { return only(conn(), sent); }
  static Result only(PGconn *conn, int sent);
  Result bind(const std::string &portal, const std::string &statement,
              const std::vector<const char *> &values = {});
  Result fetch(const std::string &portal, unsigned count = 0);
  Result close(const std::string &portal);

  /// The same, for what must succeed.
  void bound(const std::string &portal, const std::string &statement,
             const std::vector<const char *> &values = {});
  Rows fetched(const std::string &portal, unsigned count = 0);
  void closed(const std::string &portal);

  /// Whether the server has a cursor of that name, by a plain question.
  bool exists(const std::string &cursor);
  PGTransactionStatusType state() const { return PQtransactionStatus(conn()); }

  /// Begins and ends a stretch whose traffic is recorded.
  void record();
  WireLog recorded();

 private:
  struct CloseFile {
    void operator()(FILE *file) const noexcept { std::fclose(file); }
  };
  Connection conn_;
  std::unique_ptr<FILE, CloseFile> trace_;
};

Rows rowsOf(const PGresult *result);
std::string sqlstate(const PGresult *result);

}  // namespace zev::test
