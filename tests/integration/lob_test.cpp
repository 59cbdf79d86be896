/// Large objects through locators.
#include <algorithm>
#include <random>

#include "tests/integration/support/statement_fixture.h"

namespace zev::test {
namespace {

constexpr ub4 kPlain = 0;

/// The pieces that a read delivers.
struct Pieces {
  std::vector<std::pair<std::string, int>> got;
  std::size_t stopAfter = 1000;

  static sb4 take(void *context, const void *bytes, ub4 length, ub1 piece) {
    auto *self = static_cast<Pieces *>(context);
    self->got.emplace_back(std::string(static_cast<const char *>(bytes), length), piece);
    return self->got.size() < self->stopAfter ? OCI_CONTINUE : OCI_ERROR;
  }
};
using Got = std::vector<std::pair<std::string, int>>;

class LobTest : public StatementFixture {
 protected:
  void SetUp() override {
    StatementFixture::SetUp();
    void *made = nullptr;
    ASSERT_EQ(OCIDescriptorAlloc(env(), &made, OCI_DTYPE_LOB, 0, nullptr), OCI_SUCCESS);
    kept() = locator_ = static_cast<OCILobLocator *>(made);
  }

  /// Points the locator to a new object; it goes with the transaction.
  void makeObject(const std::string &content) {
    locate("SELECT lo_from_bytea(0, '" + content + "')");
  }
  void locate(const std::string &sql) {
    Statement stmt = statement(sql);
    ASSERT_EQ(stmt.define(1, &locator_, 8, SQLT_BLOB), OCI_SUCCESS);
    ASSERT_EQ(stmt.execute(), OCI_SUCCESS) << errorText();
  }
  ub4 length() {
    ub4 size = 99;
    EXPECT_EQ(OCILobGetLength(svchp(), errhp(), locator_, &size), OCI_SUCCESS);
    return size;
  }
  sword read(ub4 &amount, ub4 offset, void *buffer, ub4 capacity,
             Pieces *pieces = nullptr) {
    return OCILobRead(svchp(), errhp(), locator_, &amount, offset, buffer, capacity,
                      pieces, pieces ? Pieces::take : nullptr, 0, 0);
  }
  sword append(std::string bytes, ub4 &amount) {
    amount = static_cast<ub4>(bytes.size());
    return OCILobWriteAppend(svchp(), errhp(), locator_, &amount, bytes.data(), amount,
                             OCI_ONE_PIECE, nullptr, nullptr, 0, 0);
  }
  sword open() { return OCILobOpen(svchp(), errhp(), locator_, kPlain); }
  sword close() { return OCILobClose(svchp(), errhp(), locator_); }
  OCILobLocator *locator() { return locator_; }

 private:
  /// The environment does not free locators: they stay reachable here.
  static OCILobLocator *&kept() {
    static std::vector<OCILobLocator *> *all = new std::vector<OCILobLocator *>;
    return all->emplace_back();
  }
  OCILobLocator *locator_ = nullptr;
};

TEST_F(LobTest, BytesAreAppendedMeasuredCutAndReadBack) {
  makeObject("abc");
  EXPECT_EQ(length(), 3u);
  ub4 amount = 0;
  ASSERT_EQ(append(std::string("de\0f", 4), amount), OCI_SUCCESS);
  EXPECT_EQ(amount, 4u);
  EXPECT_EQ(length(), 7u);
  char buffer[16] = {};
  amount = 7;
  ASSERT_EQ(read(amount, 0, buffer, sizeof buffer), OCI_SUCCESS);
  EXPECT_EQ(std::string(buffer, amount), std::string("abcde\0f", 7));
  ASSERT_EQ(OCILobTrim(svchp(), errhp(), locator(), 2), OCI_SUCCESS);
  EXPECT_EQ(length(), 2u);
}

TEST_F(LobTest, TheOffsetIsWhereReadingBegins) {
  makeObject("abcdef");
  char buffer[16] = {};
  ub4 amount = 3;
  ASSERT_EQ(read(amount, 1, buffer, sizeof buffer), OCI_SUCCESS);
  EXPECT_EQ(std::string(buffer, amount), "bcd");
  amount = 100;
  ASSERT_EQ(read(amount, 1, buffer, sizeof buffer), OCI_SUCCESS);
  EXPECT_EQ(std::string(buffer, amount), "bcdef");
  for (const ub4 beyond : {6u, 7u, 8u, 4000000000u}) {
    amount = 5;
    EXPECT_EQ(read(amount, beyond, buffer, sizeof buffer), OCI_SUCCESS) << beyond;
    EXPECT_EQ(amount, 0u) << beyond;
  }
}

TEST_F(LobTest, EveryPieceGoesToTheCallback) {
  makeObject("abcdef");
  char buffer[4];
  Pieces pieces;
  ub4 amount = 5;
  ASSERT_EQ(read(amount, 0, buffer, 2, &pieces), OCI_SUCCESS);
  EXPECT_EQ(amount, 5u);
  EXPECT_EQ(
      pieces.got,
      (Got{{"ab", OCI_FIRST_PIECE}, {"cd", OCI_NEXT_PIECE}, {"e", OCI_LAST_PIECE}}));
}

TEST_F(LobTest, OneBufferIsTheLastPiece) {
  makeObject("abcdef");
  char buffer[8];
  Pieces pieces;
  ub4 amount = 6;
  ASSERT_EQ(read(amount, 0, buffer, 8, &pieces), OCI_SUCCESS);
  EXPECT_EQ(pieces.got, (Got{{"abcdef", OCI_LAST_PIECE}}));
}

TEST_F(LobTest, TheEndOfTheObjectIsAnEmptyLastPiece) {
  makeObject("abcdef");
  char buffer[8];
  Pieces pieces;
  ub4 amount = 6;
  ASSERT_EQ(read(amount, 1, buffer, 4, &pieces), OCI_SUCCESS);
  EXPECT_EQ(amount, 5u);
  EXPECT_EQ(
      pieces.got,
      (Got{{"bcde", OCI_FIRST_PIECE}, {"f", OCI_NEXT_PIECE}, {"", OCI_LAST_PIECE}}));
}

TEST_F(LobTest, ACallbackEndsTheRead) {
  makeObject("abcdef");
  char buffer[2];
  Pieces pieces{.got = {}, .stopAfter = 2};
  ub4 amount = 6;
  EXPECT_EQ(read(amount, 0, buffer, 2, &pieces), OCI_SUCCESS);
  EXPECT_EQ(amount, 4u);
  EXPECT_EQ(pieces.got.size(), 2u);
}

TEST_F(LobTest, TooSmallABufferNeedsDataOnAnOpenLocatorOnly) {
  makeObject("abcdef");
  char buffer[2];
  ub4 amount = 6;
  EXPECT_EQ(read(amount, 0, buffer, 2), OCI_SUCCESS);
  EXPECT_EQ(amount, 0u);
  ASSERT_EQ(open(), OCI_SUCCESS);
  amount = 6;
  EXPECT_EQ(read(amount, 0, buffer, 2), OCI_NEED_DATA);
  EXPECT_EQ(amount, 0u);
  EXPECT_EQ(close(), OCI_SUCCESS);
}

TEST_F(LobTest, AnOpenLocatorStaysOpen) {
  makeObject("abcdef");
  char buffer[2];
  ub4 amount = 0;
  const auto readTwice = [&] {
    for (int i = 0; i < 2; ++i) {
      amount = 2;
      EXPECT_EQ(read(amount, 0, buffer, 2), OCI_SUCCESS);
    }
  };
  readTwice();  // the first calls of a connection look the functions up
  const auto calls = [](const WireLog &log) {
    return std::count(log.messages.begin(), log.messages.end(), "F FunctionCall");
  };
  const auto closed = calls(wireOf(readTwice));
  ASSERT_EQ(open(), OCI_SUCCESS);
  const auto opened = calls(wireOf(readTwice));
  EXPECT_EQ(closed - opened, 4) << "an open and a close for each read";
  EXPECT_EQ(close(), OCI_SUCCESS);
  EXPECT_EQ(close(), OCI_SUCCESS) << "closing twice is harmless";
}

TEST_F(LobTest, ALocatorOfNothingIsRefused) {
  ub4 size = 4711;
  EXPECT_EQ(OCILobGetLength(svchp(), errhp(), locator(), &size), OCI_ERROR);
  EXPECT_EQ(codes(), (std::vector<sb4>{1733}));
  EXPECT_EQ(size, 4711u);
  rollback();
  char buffer[2];
  ub4 amount = 2;
  EXPECT_EQ(read(amount, 0, buffer, 2), OCI_ERROR);
  EXPECT_EQ(codes(), (std::vector<sb4>{1733}));
  rollback();
  EXPECT_EQ(open(), OCI_ERROR);
  EXPECT_EQ(codes(), (std::vector<sb4>{1733}));
  rollback();
  EXPECT_EQ(OCILobTrim(svchp(), errhp(), locator(), 0), OCI_ERROR);
  EXPECT_EQ(codes(), (std::vector<sb4>{1733, 1733}));
  rollback();
  EXPECT_EQ(append("x", amount), OCI_ERROR);
  EXPECT_EQ(codes(), (std::vector<sb4>{1733, 1733}));
  rollback();
  EXPECT_EQ(inSession("SELECT 1"), "1");
}

TEST_F(LobTest, AMissingObjectIsRefused) {
  locate("SELECT 4000000001::oid");
  ub4 size = 0;
  EXPECT_EQ(OCILobGetLength(svchp(), errhp(), locator(), &size), OCI_ERROR);
  expectError(1733);
}

TEST_F(LobTest, TrimCannotLengthen) {
  makeObject("abc");
  EXPECT_EQ(OCILobTrim(svchp(), errhp(), locator(), 4), OCI_ERROR);
  EXPECT_EQ(codes(), (std::vector<sb4>{1733}));
  EXPECT_EQ(OCILobTrim(svchp(), errhp(), locator(), 3), OCI_SUCCESS);
}

TEST_F(LobTest, AnOpenLocatorDoesNotSurviveItsTransaction) {
  makeObject("abc");
  ASSERT_EQ(open(), OCI_SUCCESS);
  rollback();
  ub4 size = 0;
  EXPECT_EQ(OCILobGetLength(svchp(), errhp(), locator(), &size), OCI_ERROR);
  EXPECT_EQ(codes(), (std::vector<sb4>{1733}));
  ub4 amount = 0;
  EXPECT_EQ(append("x", amount), OCI_ERROR);
  EXPECT_EQ(close(), OCI_SUCCESS);
}

TEST_F(LobTest, WorkIsDoneInTheSessionsTransaction) {
  makeObject("abc");
  commit();
  ub4 amount = 0;
  ASSERT_EQ(append("def", amount), OCI_SUCCESS);
  rollback();
  EXPECT_EQ(length(), 3u);
  ASSERT_EQ(append("def", amount), OCI_SUCCESS);
  commit();
  EXPECT_EQ(length(), 6u);
}

TEST_F(LobTest, MegabytesCrossWhole) {
  std::mt19937 random(7);
  std::string bytes(3'000'000, '\0');
  for (char &c : bytes) c = static_cast<char>(random());
  makeObject("");
  EXPECT_EQ(length(), 0u);
  ub4 amount = 0;
  for (std::size_t at = 0; at < bytes.size(); at += 250'000) {
    ASSERT_EQ(append(bytes.substr(at, 250'000), amount), OCI_SUCCESS);
    ASSERT_EQ(amount, 250'000u);
  }
  Pieces pieces;
  std::string buffer(65536, '?'), back;
  amount = 3'000'000;
  ASSERT_EQ(read(amount, 0, buffer.data(), 65536, &pieces), OCI_SUCCESS);
  EXPECT_EQ(amount, 3'000'000u);
  for (const auto &[piece, number] : pieces.got) back += piece;
  EXPECT_TRUE(back == bytes);
}

TEST_F(LobTest, AnOpenLocatorIsCutAndReadWithoutBeingClosed) {
  makeObject("abcdef");
  ASSERT_EQ(open(), OCI_SUCCESS);
  ASSERT_EQ(OCILobTrim(svchp(), errhp(), locator(), 4), OCI_SUCCESS);
  char buffer[2];
  Pieces pieces{.got = {}, .stopAfter = 1};
  ub4 amount = 4;
  EXPECT_EQ(read(amount, 0, buffer, 2, &pieces), OCI_SUCCESS);
  EXPECT_EQ(amount, 2u);
  EXPECT_EQ(length(), 4u);
  EXPECT_EQ(close(), OCI_SUCCESS);
}

TEST_F(LobTest, HandlesOfOtherKindsAreRefused) {
  ub4 size = 0;
  EXPECT_EQ(OCILobGetLength(nullptr, errhp(), locator(), &size), OCI_INVALID_HANDLE);
  EXPECT_EQ(OCILobOpen(svchp(), errhp(), nullptr, 0), OCI_INVALID_HANDLE);
  EXPECT_EQ(OCILobClose(svchp(), nullptr, locator()), OCI_INVALID_HANDLE);
}

TEST_F(LobTest, ALostConnectionIsReported) {
  makeObject("abc");
  query("SELECT pg_terminate_backend(" + inSession("SELECT pg_backend_pid()::text") +
        ")");
  ub4 size = 0;
  EXPECT_EQ(OCILobGetLength(svchp(), errhp(), locator(), &size), OCI_ERROR);
  expectError(1733);
}

}  // namespace
}  // namespace zev::test
