/// Large objects through their locators.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <random>
#include <vector>

#include "tests/integration/support/oci_test.h"

namespace zev::test {
namespace {

/// A program's read callback: keeps what it is given.
struct Reader {
  std::string bytes;
  std::vector<ub1> pieces;
  int stopAt = -1;

  static sb4 take(void *context, const void *buffer, ub4 length, ub1 piece) {
    auto *self = static_cast<Reader *>(context);
    self->bytes.append(static_cast<const char *>(buffer), length);
    self->pieces.push_back(piece);
    return static_cast<int>(self->pieces.size()) == self->stopAt ? OCI_ERROR
                                                                 : OCI_CONTINUE;
  }
};

std::string randomBytes(std::size_t count) {
  std::mt19937 random(7);
  std::string bytes(count, '\0');
  for (char &c : bytes) c = static_cast<char>(random());
  return bytes;
}

class LargeObjectTest : public OciTest {
 protected:
  /// A locator of no object.
  OCILobLocator *allocate() {
    void *locator = nullptr;
    EXPECT_EQ(OCIDescriptorAlloc(env(), &locator, OCI_DTYPE_LOB, 0, nullptr),
              OCI_SUCCESS);
    owned_.push_back(locator);
    return static_cast<OCILobLocator *>(locator);
  }
  /// A locator of a new large object with these bytes.
  OCILobLocator *create(const std::string &bytes) {
    OCILobLocator *locator = allocate();
    Statement stmt = statement("SELECT lo_create(0)");
    stmt.define(1, &locator, sizeof locator, SQLT_BLOB);
    EXPECT_EQ(stmt.execute(), OCI_SUCCESS) << errorText();
    ub4 amount = 0;
    if (!bytes.empty()) {
      EXPECT_EQ(append(locator, bytes, amount), OCI_SUCCESS) << errorText();
    }
    return locator;
  }
  /// OCILobGetLength, as text.
  std::string lengthOf(OCILobLocator *locator) {
    ub4 length = 4711;
    EXPECT_EQ(OCILobGetLength(svchp(), errhp(), locator, &length), OCI_SUCCESS)
        << errorText();
    return std::to_string(length);
  }
  sword read(OCILobLocator *locator, ub4 &amount, ub4 offset, std::string &buffer,
             Reader *reader = nullptr) {
    return OCILobRead(svchp(), errhp(), locator, &amount, offset, buffer.data(),
                      static_cast<ub4>(buffer.size()), reader,
                      reader ? &Reader::take : nullptr, 0, SQLCS_IMPLICIT);
  }
  sword append(OCILobLocator *locator, std::string bytes, ub4 &amount) {
    amount = static_cast<ub4>(bytes.size());
    return OCILobWriteAppend(svchp(), errhp(), locator, &amount, bytes.data(), amount,
                             OCI_ONE_PIECE, nullptr, nullptr, 0, SQLCS_IMPLICIT);
  }
  void TearDown() override {
    OciTest::TearDown();
    for (void *locator : owned_) std::free(locator);
  }

 private:
  std::vector<void *> owned_;
};

TEST_F(LargeObjectTest, LengthIsInBytes) {
  EXPECT_EQ(lengthOf(create("hello")), "5");
  EXPECT_EQ(lengthOf(create("")), "0");
}

TEST_F(LargeObjectTest, LengthOfNoObjectFails) {
  ub4 length = 4711;
  EXPECT_EQ(OCILobGetLength(svchp(), errhp(), allocate(), &length), OCI_ERROR);
  expectError(1733);
  EXPECT_EQ(length, 4711u);
  rollback();
  sb4 one = 0;
  Statement next = statement("SELECT 1");
  next.define(1, one);
  EXPECT_EQ(next.execute(), OCI_SUCCESS) << errorText();
}

TEST_F(LargeObjectTest, ReadStartsAtTheByteBehindTheOffset) {
  OCILobLocator *locator = create("abcdefgh");
  std::string buffer(8, '?');
  ub4 amount = 3;
  ASSERT_EQ(read(locator, amount, 1, buffer), OCI_SUCCESS) << errorText();
  EXPECT_EQ(amount, 3u);
  EXPECT_EQ(buffer, "bcd?????");
  amount = 8;
  ASSERT_EQ(read(locator, amount, 0, buffer), OCI_SUCCESS);
  EXPECT_EQ(amount, 8u);
  EXPECT_EQ(buffer, "abcdefgh");
}

TEST_F(LargeObjectTest, ReadEndsWithTheObject) {
  OCILobLocator *locator = create("abcdefgh");
  std::string buffer(100, '?');
  ub4 amount = 100;
  ASSERT_EQ(read(locator, amount, 1, buffer), OCI_SUCCESS) << errorText();
  EXPECT_EQ(amount, 7u);
  EXPECT_EQ(buffer.substr(0, 8), "bcdefgh?");
  for (const ub4 offset : {8u, 9u, 10u, 4000000000u}) {
    amount = 100;
    EXPECT_EQ(read(locator, amount, offset, buffer), OCI_SUCCESS) << offset;
    EXPECT_EQ(amount, 0u) << offset;
  }
}

TEST_F(LargeObjectTest, CallbackGetsEveryPieceTheLastIncluded) {
  const std::string bytes = randomBytes(2500);
  OCILobLocator *locator = create(bytes);
  Reader reader;
  std::string buffer(1000, '?');
  ub4 amount = 2500;
  ASSERT_EQ(read(locator, amount, 0, buffer, &reader), OCI_SUCCESS) << errorText();
  EXPECT_EQ(amount, 2500u);
  EXPECT_EQ(reader.bytes, bytes);
  EXPECT_EQ(reader.pieces,
            (std::vector<ub1>{OCI_FIRST_PIECE, OCI_NEXT_PIECE, OCI_LAST_PIECE}));
}

TEST_F(LargeObjectTest, CallbackIsCalledAlsoForOneBuffer) {
  OCILobLocator *locator = create("abc");
  Reader reader;
  std::string buffer(10, '?');
  ub4 amount = 3;
  ASSERT_EQ(read(locator, amount, 0, buffer, &reader), OCI_SUCCESS);
  EXPECT_EQ(reader.bytes, "abc");
  EXPECT_EQ(reader.pieces, std::vector<ub1>{OCI_LAST_PIECE});
}

TEST_F(LargeObjectTest, CallbackThatStopsEndsTheRead) {
  OCILobLocator *locator = create(randomBytes(2500));
  ASSERT_EQ(OCILobOpen(svchp(), errhp(), locator, OCI_LOB_READONLY), OCI_SUCCESS);
  Reader reader{.bytes = {}, .pieces = {}, .stopAt = 2};
  std::string buffer(1000, '?');
  ub4 amount = 2500;
  EXPECT_EQ(read(locator, amount, 0, buffer, &reader), OCI_SUCCESS);
  EXPECT_EQ(amount, 2000u);
  EXPECT_EQ(reader.pieces.size(), 2u);
}

TEST_F(LargeObjectTest, TooSmallABufferNeedsData) {
  OCILobLocator *locator = create("abcdefgh");
  std::string buffer(4, '?');
  ub4 amount = 8;
  EXPECT_EQ(read(locator, amount, 0, buffer), OCI_SUCCESS);
  EXPECT_EQ(amount, 0u);
  ASSERT_EQ(OCILobOpen(svchp(), errhp(), locator, OCI_LOB_READONLY), OCI_SUCCESS);
  amount = 8;
  EXPECT_EQ(read(locator, amount, 0, buffer), OCI_NEED_DATA);
  EXPECT_EQ(amount, 0u);
  EXPECT_EQ(buffer, "????");
}

TEST_F(LargeObjectTest, OpenedLocatorStaysOpen) {
  OCILobLocator *locator = create("abcdefgh");
  ASSERT_EQ(OCILobOpen(svchp(), errhp(), locator, OCI_LOB_READONLY), OCI_SUCCESS);
  std::string buffer(8, '?');
  ub4 amount = 8;
  // An open object costs no calls to open and close it: size, position and the bytes.
  const auto callsOfARead = [&] {
    const WireLog log = wireOf([&] { read(locator, amount, 0, buffer); });
    return std::ranges::count(log.messages, "F FunctionCall");
  };
  const auto open = callsOfARead();
  EXPECT_EQ(open, 4);
  EXPECT_EQ(callsOfARead(), open);
  ASSERT_EQ(OCILobClose(svchp(), errhp(), locator), OCI_SUCCESS);
  EXPECT_EQ(callsOfARead(), open + 2);
  EXPECT_EQ(OCILobClose(svchp(), errhp(), locator), OCI_SUCCESS);
}

TEST_F(LargeObjectTest, AppendGrowsTheObject) {
  OCILobLocator *locator = create("abc");
  ub4 amount = 0;
  ASSERT_EQ(append(locator, "defg", amount), OCI_SUCCESS) << errorText();
  EXPECT_EQ(amount, 4u);
  EXPECT_EQ(lengthOf(locator), "7");
  std::string buffer(7, '?');
  amount = 7;
  ASSERT_EQ(read(locator, amount, 0, buffer), OCI_SUCCESS);
  EXPECT_EQ(buffer, "abcdefg");
}

TEST_F(LargeObjectTest, AppendToNoObjectFailsWithTwoRecords) {
  ub4 amount = 0;
  EXPECT_EQ(append(allocate(), "x", amount), OCI_ERROR);
  sb4 code = 0;
  OraText text[512];
  for (ub4 record : {1u, 2u}) {
    ASSERT_EQ(
        OCIErrorGet(errhp(), record, nullptr, &code, text, sizeof text, OCI_HTYPE_ERROR),
        OCI_SUCCESS)
        << record;
    EXPECT_EQ(code, 1733);
  }
}

TEST_F(LargeObjectTest, TrimCuts) {
  OCILobLocator *locator = create("abcdefgh");
  ASSERT_EQ(OCILobTrim(svchp(), errhp(), locator, 3), OCI_SUCCESS) << errorText();
  EXPECT_EQ(lengthOf(locator), "3");
  ASSERT_EQ(OCILobTrim(svchp(), errhp(), locator, 3), OCI_SUCCESS);
  EXPECT_EQ(OCILobTrim(svchp(), errhp(), locator, 4), OCI_ERROR);
  expectError(1733);
  EXPECT_EQ(OCILobTrim(svchp(), errhp(), allocate(), 0), OCI_ERROR);
  expectError(1733);
}

TEST_F(LargeObjectTest, OpenOfNoObjectFails) {
  EXPECT_EQ(OCILobOpen(svchp(), errhp(), allocate(), OCI_LOB_READONLY), OCI_ERROR);
  expectError(1733);
}

TEST_F(LargeObjectTest, WorkIsDoneInTheSessionsTransaction) {
  OCILobLocator *locator = create("abc");
  commit();
  ub4 amount = 0;
  ASSERT_EQ(append(locator, "def", amount), OCI_SUCCESS);
  rollback();
  EXPECT_EQ(lengthOf(locator), "3");
  ASSERT_EQ(append(locator, "def", amount), OCI_SUCCESS);
  commit();
  EXPECT_EQ(lengthOf(locator), "6");
}

TEST_F(LargeObjectTest, OpenLocatorDoesNotOutliveItsTransaction) {
  OCILobLocator *locator = create("abc");
  ASSERT_EQ(OCILobOpen(svchp(), errhp(), locator, OCI_LOB_READONLY), OCI_SUCCESS);
  commit();
  ub4 length = 0;
  EXPECT_EQ(OCILobGetLength(svchp(), errhp(), locator, &length), OCI_ERROR);
  rollback();
  EXPECT_EQ(OCILobClose(svchp(), errhp(), locator), OCI_SUCCESS);
  rollback();
  EXPECT_EQ(lengthOf(locator), "3");
}

TEST_F(LargeObjectTest, MegabytesCrossWhole) {
  const std::string bytes = randomBytes(3'000'000);
  OCILobLocator *locator = create("");
  ub4 amount = 0;
  for (std::size_t at = 0; at < bytes.size(); at += 250'000) {
    ASSERT_EQ(append(locator, bytes.substr(at, 250'000), amount), OCI_SUCCESS);
    ASSERT_EQ(amount, 250'000u);
  }
  Reader reader;
  std::string buffer(65536, '?');
  amount = 3'000'000;
  ASSERT_EQ(read(locator, amount, 0, buffer, &reader), OCI_SUCCESS);
  EXPECT_EQ(amount, 3'000'000u);
  EXPECT_TRUE(reader.bytes == bytes);
}

}  // namespace
}  // namespace zev::test
