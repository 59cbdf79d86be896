/// The server that the fixture started.
#pragma once

#include <string>

namespace zev::test {

struct ServerAddress {
  std::string host;
  std::string port;
  std::string db;
  std::string user;      ///< a superuser
  std::string password;  ///< both roads in ask for it
  std::string socketDir;
  std::string log;  ///< path of the server's log, every statement in it

  /// The connection string for libpq.
  std::string conninfo() const;
};

/// The address from the environment (ZEVOCI_TEST_HOST and its kin, as `private_server
/// run` exports them), else from the file that the fixture wrote. Throws
/// std::runtime_error when there is neither: a test without its server must fail.
const ServerAddress &testServer();

}  // namespace zev::test
