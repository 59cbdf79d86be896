/// Fetched values that go through a callback, whole or in pieces.
#include <vector>

#include "tests/integration/support/oci_test.h"

namespace zev::test {
namespace {

/// A program's side of OCIDefineDynamic: offers buffers of one size and keeps what came.
struct Receiver {
  explicit Receiver(ub4 roomOffered) : room(roomOffered) {}

  ub4 room;
  ub1 pieceAnswered = 0xff;  ///< stored in place of the piece asked for, unless 0xff
  sb4 outcome = OCI_CONTINUE;
  int failAtCall = -1;
  std::vector<ub1> pieces;
  std::vector<ub4> rows;
  std::vector<std::vector<char>> buffers;
  std::vector<ub4> lengths = std::vector<ub4>(10000);
  sb2 indicator = 77;
  ub2 returnCode = 77;

  std::string received() const {
    std::string all;
    for (std::size_t i = 0; i < buffers.size(); ++i) {
      all.append(buffers[i].data(), lengths[i]);
    }
    return all;
  }
  std::string receivedText() const { return decoded(received()); }

  static sb4 ask(void *context, OCIDefine *, ub4 iter, void **bufpp, ub4 **alenpp,
                 ub1 *piecep, void **indpp, ub2 **rcodepp) {
    auto *self = static_cast<Receiver *>(context);
    const std::size_t call = self->pieces.size();
    if (static_cast<int>(call) == self->failAtCall) return OCI_ERROR;
    self->rows.push_back(iter);
    self->pieces.push_back(*piecep);
    self->buffers.emplace_back(self->room);
    self->lengths[call] = self->room;
    *bufpp = self->buffers.back().data();
    *alenpp = &self->lengths[call];
    *indpp = &self->indicator;
    *rcodepp = &self->returnCode;
    if (self->pieceAnswered != 0xff) *piecep = self->pieceAnswered;
    return self->outcome;
  }
};

class DynamicDefineTest : public OciTest {
 protected:
  /// Defines column 1 of `stmt` as `type` for the callback of `receiver`.
  void define(Statement &stmt, Receiver *receiver, ub2 type) {
    OCIDefine *handle = nullptr;
    ASSERT_EQ(OCIDefineByPos(stmt.handle(), &handle, errhp(), 1, nullptr, 100000, type,
                             nullptr, nullptr, nullptr, OCI_DYNAMIC_FETCH),
              OCI_SUCCESS);
    ASSERT_EQ(
        OCIDefineDynamic(handle, errhp(), receiver, receiver ? &Receiver::ask : nullptr),
        OCI_SUCCESS);
  }

  /// Fetches one row of `sql` as `type`.
  sword fetchOne(const std::string &sql, Receiver &receiver, ub2 type) {
    Statement stmt = statement(sql);
    define(stmt, &receiver, type);
    return stmt.execute();
  }
};

TEST_F(DynamicDefineTest, TwentyFiveBytesIntoTenAskThreeTimes) {
  Receiver receiver(bytes(10u));
  ASSERT_EQ(fetchOne("SELECT 'abcdefghijklmnopqrstuvwxy'", receiver, SQLT_CHR),
            OCI_SUCCESS)
      << errorText();
  EXPECT_EQ(receiver.pieces,
            (std::vector<ub1>{OCI_FIRST_PIECE, OCI_NEXT_PIECE, OCI_NEXT_PIECE}));
  EXPECT_EQ(receiver.receivedText(), "abcdefghijklmnopqrstuvwxy");
  EXPECT_EQ(receiver.lengths[2], bytes(5u));
  EXPECT_EQ(receiver.indicator, 0);
  EXPECT_EQ(receiver.returnCode, 0);
}

TEST_F(DynamicDefineTest, ValueOfTheBuffersSizeAsksOnce) {
  Receiver receiver(bytes(5u));
  ASSERT_EQ(fetchOne("SELECT 'abcde'", receiver, SQLT_CHR), OCI_SUCCESS);
  EXPECT_EQ(receiver.pieces, std::vector<ub1>{OCI_FIRST_PIECE});
  EXPECT_EQ(receiver.receivedText(), "abcde");
}

TEST_F(DynamicDefineTest, LongTextArrivesWholeInPieces) {
  Receiver receiver(997);
  ASSERT_EQ(fetchOne("SELECT string_agg(to_char(i, 'FM000000'), '' ORDER BY i)"
                     " FROM generate_series(1, 100000) i",
                     receiver, SQLT_LNG),
            OCI_SUCCESS)
      << errorText();
  std::string expected;
  for (int i = 1; i <= 100000; ++i) {
    char digits[16];
    std::snprintf(digits, sizeof digits, "%06d", i);
    expected += digits;
  }
  // SQLT_LNG gives text as the server has it, in every encoding of the program.
  EXPECT_EQ(receiver.received(), expected);
  EXPECT_EQ(receiver.pieces.size(), (expected.size() + 996) / 997);
}

TEST_F(DynamicDefineTest, EachPiecewiseTypeDeliversItsForm) {
  struct Row {
    ub2 type;
    const char *sql;
    std::string expected;
  };
  const Row rows[] = {
      {SQLT_CHR, "SELECT 'text'", encoded("text")},
      {SQLT_LNG, "SELECT 'text'", "text"},
      {SQLT_STR, "SELECT 'text'", encoded("text")},
      {SQLT_VCS, "SELECT 'text'", std::string({bytes('\4'), '\0'}) + encoded("text")},
      {SQLT_BIN, "SELECT '\\x00ff10'::bytea", std::string("\x00\xff\x10", 3)},
      {SQLT_LBI, "SELECT '\\x0102'::bytea", "\1\2"},
  };
  for (const Row &row : rows) {
    Receiver receiver(2);
    ASSERT_EQ(fetchOne(row.sql, receiver, row.type), OCI_SUCCESS)
        << row.type << ": " << errorText();
    EXPECT_EQ(receiver.received(), row.expected) << row.type;
  }
}

TEST_F(DynamicDefineTest, NullSetsIndicatorAndDeliversNothing) {
  Receiver receiver(10);
  ASSERT_EQ(fetchOne("SELECT NULL::text", receiver, SQLT_CHR), OCI_SUCCESS);
  EXPECT_EQ(receiver.indicator, -1);
  EXPECT_EQ(receiver.returnCode, 1405);
  EXPECT_EQ(receiver.lengths[0], 0u);
  EXPECT_EQ(receiver.pieces.size(), 1u);
}

TEST_F(DynamicDefineTest, IntegerConvertsStraightIntoTheBuffer) {
  Receiver receiver(4);
  receiver.pieceAnswered = OCI_ONE_PIECE;
  ASSERT_EQ(fetchOne("SELECT 123456", receiver, SQLT_INT), OCI_SUCCESS) << errorText();
  EXPECT_EQ(receiver.received(), std::string("\x40\xe2\x01\x00", 4));
}

TEST_F(DynamicDefineTest, PieceForAnUndividedTypeIsRefused) {
  Receiver receiver(4);
  EXPECT_EQ(fetchOne("SELECT 1", receiver, SQLT_INT), OCI_ERROR);
  expectError(24370);
}

TEST_F(DynamicDefineTest, CallbackThatDoesNotContinueFails) {
  for (const sb4 outcome : {OCI_SUCCESS, OCI_ERROR, 1, OCI_NEED_DATA}) {
    Receiver receiver(4);
    receiver.outcome = outcome;
    EXPECT_EQ(fetchOne("SELECT 'abc'", receiver, SQLT_CHR), OCI_ERROR) << outcome;
    expectError(24343);
  }
}

TEST_F(DynamicDefineTest, CallbackThatStopsBetweenPiecesFails) {
  Receiver receiver(4);
  receiver.failAtCall = 1;
  EXPECT_EQ(fetchOne("SELECT 'abcdefgh'", receiver, SQLT_CHR), OCI_ERROR);
  expectError(24343);
  EXPECT_EQ(receiver.receivedText(), decoded(encoded("abcdefgh").substr(0, 4)));
}

TEST_F(DynamicDefineTest, BufferOfNoBytesIsInvalid) {
  Receiver receiver(0);
  EXPECT_EQ(fetchOne("SELECT 'abc'", receiver, SQLT_CHR), OCI_ERROR);
  expectError(3131);
  receiver.pieceAnswered = OCI_ONE_PIECE;
  receiver.pieces.clear();
  EXPECT_EQ(fetchOne("SELECT 1", receiver, SQLT_INT), OCI_ERROR);
  expectError(3131);
}

TEST_F(DynamicDefineTest, WithoutACallbackDataIsNeeded) {
  Statement stmt = statement("SELECT 'abc'");
  define(stmt, nullptr, SQLT_CHR);
  EXPECT_EQ(stmt.execute(), OCI_NEED_DATA);
}

TEST_F(DynamicDefineTest, CallbackIsToldTheRowOfTheCall) {
  Statement stmt = statement("SELECT i::text FROM generate_series(1, 5) i ORDER BY i");
  Receiver receiver(10);
  define(stmt, &receiver, SQLT_CHR);
  ASSERT_EQ(stmt.execute(3), OCI_SUCCESS) << errorText();
  EXPECT_EQ(receiver.rows, (std::vector<ub4>{0, 1, 2}));
  ASSERT_EQ(stmt.fetch(2), OCI_SUCCESS);
  EXPECT_EQ(receiver.rows, (std::vector<ub4>{0, 1, 2, 0, 1}));
  EXPECT_EQ(receiver.receivedText(), "12345");
}

TEST_F(DynamicDefineTest, ConnectionServesAfterAFailedCallback) {
  Receiver receiver(4);
  receiver.outcome = OCI_ERROR;
  EXPECT_EQ(fetchOne("SELECT 'abc'", receiver, SQLT_CHR), OCI_ERROR);
  sb4 answer = 0;
  Statement stmt = statement("SELECT 42");
  stmt.define(1, answer);
  ASSERT_EQ(stmt.execute(), OCI_SUCCESS) << errorText();
  EXPECT_EQ(answer, 42);
}

TEST_F(DynamicDefineTest, LongValueWithoutASizeRuleIsRefused) {
  run("CREATE TEMP TABLE dyn_lob (l oid)");
  run("INSERT INTO dyn_lob VALUES (4711)");
  Receiver receiver(8);
  EXPECT_EQ(fetchOne("SELECT l FROM dyn_lob", receiver, SQLT_BLOB), OCI_ERROR);
  expectError(24330);
}

}  // namespace
}  // namespace zev::test
