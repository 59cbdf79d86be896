// Logging on and off, and a call that does next to nothing.
#include <memory>
#include <stdexcept>

#include "bench/cases.h"

namespace bench {
namespace {

/// A session with one prepared statement, which must go before it.
struct Prepared {
  explicit Prepared(const Target &to) : session(to), stmt(session.prepare("SELECT 1")) {}

  Session session;
  Statement stmt;
};

}  // namespace

Case logonCase(const Setup &setup) {
  const auto session = std::make_shared<Session>(setup.target);
  session->logOff();
  const int times = setup.scaled(100);
  const auto libpq = [=] {
    return seconds([&] {
      for (int i = 0; i < times; ++i) connect(setup.target);
    });
  };
  const auto ours = [=] {
    return seconds([&] {
      for (int i = 0; i < times; ++i) {
        session->logOn(setup.target);
        session->logOff();
      }
    });
  };
  return {.name = "logon and logoff",
          .unit = "us/logon",
          .factor = 1e6 / times,
          .libpq = libpq,
          .ours = ours};
}

Case frameCase(const Setup &setup) {
  const auto held = std::make_shared<Prepared>(setup.target);
  const int times = setup.scaled(5'000'000);
  const auto ours = [=] {
    long sum = 0;
    const double taken = seconds([&] {
      for (int i = 0; i < times; ++i) {
        ub2 type = 0;
        OCIAttrGet(held->stmt.get(), OCI_HTYPE_STMT, &type, nullptr, OCI_ATTR_STMT_TYPE,
                   held->session.err());
        sum += type;
      }
    });
    if (sum != times) throw std::runtime_error("OCIAttrGet did not say SELECT");
    return taken;
  };
  return {.name = "OCIAttrGet",
          .unit = "ns/call",
          .factor = 1e9 / times,
          .libpq = nullptr,
          .ours = ours};
}

}  // namespace bench
