#include "tests/server/address.h"

#include <cstdlib>
#include <fstream>
#include <map>
#include <stdexcept>

namespace zev::test {
namespace {

std::map<std::string, std::string> readSettings(const char *path) {
  std::map<std::string, std::string> settings;
  std::ifstream file(path);
  for (std::string line; std::getline(file, line);) {
    const std::size_t equals = line.find('=');
    if (equals != std::string::npos) {
      settings[line.substr(0, equals)] = line.substr(equals + 1);
    }
  }
  return settings;
}

ServerAddress findServer() {
  const auto written = readSettings(ZEVOCI_TEST_SERVER_ENV);
  const auto setting = [&](const char *name) -> std::string {
    if (const char *value = std::getenv(name)) return value;
    if (const auto found = written.find(name); found != written.end()) {
      return found->second;
    }
    throw std::runtime_error(
        std::string(name) +
        " is unknown: run under ctest or tests/server/private_server");
  };
  return {setting("ZEVOCI_TEST_HOST"),     setting("ZEVOCI_TEST_PORT"),
          setting("ZEVOCI_TEST_DB"),       setting("ZEVOCI_TEST_USER"),
          setting("ZEVOCI_TEST_PASSWORD"), setting("ZEVOCI_TEST_SOCKET_DIR"),
          setting("ZEVOCI_TEST_LOG")};
}

}  // namespace

std::string ServerAddress::conninfo() const {
  return "host=" + host + " port=" + port + " dbname=" + db + " user=" + user +
         " password=" + password;
}

const ServerAddress &testServer() {
  static const ServerAddress address = findServer();
  return address;
}

}  // namespace zev::test
