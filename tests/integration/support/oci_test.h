/// A program of the published interface in short forms, against the server fixture.
#pragma once

#include <gtest/gtest.h>
#include <libpq-fe.h>
#include <oci.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "tests/integration/support/program_text.h"
#include "tests/server/wire_log.h"

namespace zev::test {

/// A buffer for one text value, as a program has it: bytes, indicator, length and return
/// code. It holds `Capacity` characters of ASCII.
template <std::size_t Capacity = 256>
struct TextBuffer {
  char value[2 * Capacity] = {};
  sb2 indicator = 0;
  ub2 length = 0;
  ub2 returnCode = 0;

  /// Stores a text with its terminator.
  void set(std::string_view utf8) { put(value, utf8); }
  /// What the program says of its size.
  static sb4 size() { return bytes(static_cast<sb4>(Capacity)); }
  /// What was fetched, up to the returned length.
  std::string text() const { return decoded({value, length}); }
  /// The same of a number, whose characters are ASCII in every encoding.
  std::string digits() const { return {value, length}; }
  /// What stands there, up to its terminator.
  std::string textUpToEnd() const { return decodedUpToEnd(value); }
};

/// A statement handle; freed with its owner. Texts are UTF-8, and are given to the
/// library in the program's encoding.
class Statement {
 public:
  Statement(OCIEnv *env, OCIError *errhp, OCISvcCtx *svchp);

  OCIStmt *handle() const { return handle_.get(); }

  sword prepare(std::string_view text);
  /// Runs the statement `iters` times, or fetches as many rows of a SELECT.
  sword execute(ub4 iters = 1, ub4 mode = OCI_DEFAULT);
  sword fetch(ub4 rows = 1, ub2 orientation = OCI_FETCH_NEXT, sb4 offset = 0);

  sword bind(std::string_view placeholder, void *value, sb4 size, ub2 type,
             sb2 *indicator = nullptr, ub2 *length = nullptr, ub2 *returnCode = nullptr);
  sword bind(std::string_view placeholder, sb4 &value, sb2 *indicator = nullptr) {
    return bind(placeholder, &value, sizeof value, SQLT_INT, indicator);
  }
  /// Binds a terminated text that must outlive the execute.
  sword bind(std::string_view placeholder, Given &value, sb2 *indicator = nullptr) {
    return bind(placeholder, value.data(), value.room(), SQLT_STR, indicator);
  }

  /// Binds a buffer that a text comes and goes in, by its terminator.
  template <std::size_t Capacity>
  sword bind(std::string_view placeholder, TextBuffer<Capacity> &buffer) {
    return bind(placeholder, buffer.value, buffer.size(), SQLT_STR, &buffer.indicator);
  }

  /// Defines column `position`, counted from 1.
  sword define(ub4 position, void *value, sb4 size, ub2 type, sb2 *indicator = nullptr,
               ub2 *length = nullptr, ub2 *returnCode = nullptr);
  sword define(ub4 position, sb4 &value, sb2 *indicator = nullptr) {
    return define(position, &value, sizeof value, SQLT_INT, indicator);
  }
  template <std::size_t Capacity>
  sword define(ub4 position, TextBuffer<Capacity> &buffer, ub2 type = SQLT_CHR) {
    return define(position, buffer.value, buffer.size(), type, &buffer.indicator,
                  &buffer.length, &buffer.returnCode);
  }

  /// An attribute of type ub4, such as OCI_ATTR_ROW_COUNT.
  ub4 attribute(ub4 number) const;
  sword setAttribute(ub4 number, ub4 value);

 private:
  struct FreeStatement {
    void operator()(OCIStmt *handle) const noexcept {
      OCIHandleFree(handle, OCI_HTYPE_STMT);
    }
  };
  OCIError *errhp_;
  OCISvcCtx *svchp_;
  std::unique_ptr<OCIStmt, FreeStatement> handle_;
};

/// An environment with one connection, whose traffic is recorded. Variables of the
/// process environment that steer the library are cleared for each test, so that it sets
/// what it means.
class OciTest : public testing::Test {
 protected:
  OciTest();
  ~OciTest() override;

  /// Environment, error handle and connection.
  void SetUp() override;
  void TearDown() override;

  OCIEnv *env() const { return env_; }
  OCIError *errhp() const { return errhp_; }
  OCISvcCtx *svchp() const { return svchp_; }

  /// The connect string of the fixture's server, host:port/db, in UTF-8.
  static std::string connectString();
  /// One more connection; the caller ends it with OCILogoff.
  OCISvcCtx *logon();
  /// Ends the fixture's connection and makes it anew, so that variables set before take
  /// effect.
  void reconnect();
  /// Sets a variable of the process environment until the test ends.
  void setVariable(const char *name, const std::string &value);

  /// A statement with its text prepared.
  Statement statement(std::string_view text);
  /// Prepares and executes a statement without binds that must succeed.
  void run(std::string_view text);
  void commit();
  void rollback();

  /// Fails unless the last recorded error has this number, and `text` in its message.
  void expectError(sb4 code, std::string_view text = {});
  /// The message of a record, or "" without one.
  std::string errorText(ub4 record = 1);
  /// SQLSTATE of the server's error behind the first record, or "".
  std::string serverState();

  /// The first value that SQL gives on a connection of its own, past the library: what is
  /// committed on the server. NULL reads "NULL", no row "".
  std::string query(const std::string &sql);

  /// What the fixture's connection sends and receives during `work`.
  WireLog wireOf(const std::function<void()> &work);

 private:
  struct Finish {
    void operator()(PGconn *conn) const noexcept { PQfinish(conn); }
  };
  void logoff();

  std::string tracePath_;
  OCIEnv *env_ = nullptr;
  OCIError *errhp_ = nullptr;
  OCISvcCtx *svchp_ = nullptr;
  std::unique_ptr<PGconn, Finish> plain_;
};

}  // namespace zev::test
