// A large object written and read, through the same blocks.
#include <libpq/libpq-fs.h>

#include <memory>
#include <stdexcept>
#include <vector>

#include "bench/cases.h"

namespace bench {
namespace {

constexpr std::size_t kBlock = std::size_t{1} << 20;

void check(bool condition, const char *what) {
  if (!condition) throw std::runtime_error(what);
}

struct Sides {
  explicit Sides(const Setup &setup)
      : conn(connect(setup.target)), session(setup.target), blocks(setup.scaled(64)) {
    for (std::size_t i = 0; i < kBlock; ++i) block[i] = static_cast<char>(i * 7919 >> 3);
    void *made = nullptr;
    session.must(OCIDescriptorAlloc(session.env(), &made, OCI_DTYPE_LOB, 0, nullptr));
    locator = static_cast<OCILobLocator *>(made);
  }

  /// Points the locator to a new object in the session's transaction.
  void locate() {
    const Statement stmt = session.prepare("SELECT lo_create(0)");
    sb2 null = 0;
    session.define(stmt.get(), 1, &locator, sizeof locator, SQLT_BLOB, &null);
    session.execute(stmt.get(), 1);
    session.must(OCILobOpen(session.svc(), session.err(), locator, 0));
  }
  void write() {
    for (int i = 0; i < blocks; ++i) {
      ub4 amount = kBlock;
      session.must(OCILobWriteAppend(session.svc(), session.err(), locator, &amount,
                                     block.data(), kBlock, OCI_ONE_PIECE, nullptr,
                                     nullptr, 0, 0));
      check(amount == kBlock, "a block was cut");
    }
  }
  void forget() {
    session.must(OCILobClose(session.svc(), session.err(), locator));
    session.must(OCITransRollback(session.svc(), session.err(), OCI_DEFAULT));
  }
  int newObject() {
    exec(conn.get(), "BEGIN");
    const int fd = lo_open(conn.get(), lo_create(conn.get(), 0), INV_READ | INV_WRITE);
    check(fd >= 0, "no large object");
    return fd;
  }
  void writeByLibpq(int fd) {
    for (int i = 0; i < blocks; ++i) {
      check(lo_write(conn.get(), fd, block.data(), kBlock) == static_cast<int>(kBlock),
            "a block was cut");
    }
  }

  PgConnection conn;
  Session session;
  int blocks;
  std::vector<char> block = std::vector<char>(kBlock), got = std::vector<char>(kBlock);
  OCILobLocator *locator = nullptr;
  std::size_t delivered = 0;
};

sb4 count(void *context, const void *, ub4 length, ub1) {
  static_cast<Sides *>(context)->delivered += length;
  return OCI_CONTINUE;
}

double writeByLibpq(Sides &sides) {
  const int fd = sides.newObject();
  const double taken = seconds([&] { sides.writeByLibpq(fd); });
  exec(sides.conn.get(), "ROLLBACK");
  return taken;
}

double writeByOci(Sides &sides) {
  sides.locate();
  const double taken = seconds([&] { sides.write(); });
  sides.forget();
  return taken;
}

double readByLibpq(Sides &sides) {
  const int fd = sides.newObject();
  sides.writeByLibpq(fd);
  PGconn *conn = sides.conn.get();
  const double taken = seconds([&] {
    lo_lseek(conn, fd, 0, SEEK_SET);
    for (int i = 0; i < sides.blocks; ++i) {
      check(lo_read(conn, fd, sides.got.data(), kBlock) == static_cast<int>(kBlock),
            "a block was cut");
    }
  });
  check(sides.got == sides.block, "other bytes came back");
  exec(conn, "ROLLBACK");
  return taken;
}

double readByOci(Sides &sides) {
  sides.locate();
  sides.write();
  const std::size_t all = kBlock * static_cast<std::size_t>(sides.blocks);
  auto amount = static_cast<ub4>(all);
  sides.delivered = 0;
  const double taken = seconds([&] {
    sides.session.must(OCILobRead(sides.session.svc(), sides.session.err(), sides.locator,
                                  &amount, 0, sides.got.data(), kBlock, &sides, count, 0,
                                  0));
  });
  check(sides.delivered == all && amount == all, "not everything came back");
  check(sides.got == sides.block, "other bytes came back");
  sides.forget();
  return taken;
}

Case lobCase(const Setup &setup, const char *name, double (*libpq)(Sides &),
             double (*ours)(Sides &)) {
  const auto sides = std::make_shared<Sides>(setup);
  return {.name = name,
          .unit = "ms/MiB",
          .factor = 1e3 / sides->blocks,
          .libpq = [=] { return libpq(*sides); },
          .ours = [=] { return ours(*sides); }};
}

}  // namespace

Case lobWriteCase(const Setup &setup) {
  return lobCase(setup, "large object write", writeByLibpq, writeByOci);
}

Case lobReadCase(const Setup &setup) {
  return lobCase(setup, "large object read", readByLibpq, readByOci);
}

}  // namespace bench
