/// A connection with a table of its own, and what its session holds on the server.
#pragma once

#include <vector>

#include "tests/integration/support/oci_test.h"

namespace zev::test {

class StatementFixture : public OciTest {
 protected:
  void SetUp() override;
  void TearDown() override;

  /// A table "(id int, t text)" that no other process uses; empty, and committed.
  const std::string &table() const { return table_; }
  /// "count:sum of id" of the table as others see it.
  std::string committed();

  /// The first value of a query that is run on the fixture's session.
  std::string inSession(const std::string &sql);
  /// "prepared statements/cursors" that the session holds, this question's own left out.
  std::string leftovers();
  /// Codes of all records of the error handle.
  std::vector<sb4> codes();
  /// The server handle of the fixture's connection.
  OCIServer *server();

  /// SQL with the numbers of generated names masked: "stmt_#".
  static std::string masked(const std::string &sql);
  static std::vector<std::string> masked(const WireLog &log);

  static sword bindByPos(Statement &stmt, OCIError *errhp, ub4 position, void *value,
                         sb4 size, ub2 type, sb2 *indicator = nullptr,
                         ub2 *length = nullptr, ub4 mode = OCI_DEFAULT,
                         OCIBind **bind = nullptr);

 private:
  std::string table_;
};

}  // namespace zev::test
