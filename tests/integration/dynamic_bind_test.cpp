/// Bound values that the program gives through a callback while the statement executes.
#include <vector>

#include "tests/integration/support/oci_test.h"

namespace zev::test {
namespace {

/// One answer of an in callback.
struct Piece {
  std::string bytes;  ///< a text's in UTF-8
  sb2 indicator = 0;
  ub1 piece = OCI_ONE_PIECE;
  bool hasBuffer = true;
  bool hasIndicator = true;
};

/// A program's side of OCIBindDynamic: answers one prepared piece after the other.
struct Sender {
  std::vector<Piece> pieces;  ///< texts as the program has them
  sb4 outcome = OCI_CONTINUE;
  std::size_t failAtCall = 1000;
  std::size_t calls = 0;
  std::vector<ub1> asked;
  std::vector<ub4> rows;
  bool startedEmpty = true;  ///< whether each call began with null buffer and indicator

  static sb4 ask(void *context, OCIBind *, ub4 iter, ub4 index, void **bufpp, ub4 *alenp,
                 ub1 *piecep, void **indpp) {
    auto *self = static_cast<Sender *>(context);
    EXPECT_EQ(index, 0u);
    self->startedEmpty = self->startedEmpty && !*bufpp && !*alenp && !*indpp;
    self->asked.push_back(*piecep);
    self->rows.push_back(iter);
    if (self->calls == self->failAtCall) return OCI_ERROR;
    Piece &answer = self->pieces.at(self->calls++ % self->pieces.size());
    *bufpp = answer.hasBuffer ? answer.bytes.data() : nullptr;
    *alenp = static_cast<ub4>(answer.bytes.size());
    *piecep = answer.piece;
    *indpp = answer.hasIndicator ? &answer.indicator : nullptr;
    return self->outcome;
  }
};

class DynamicBindTest : public OciTest {
 protected:
  void bind(Statement &stmt, Sender *sender, ub2 type) {
    OCIBind *handle = nullptr;
    ASSERT_EQ(OCIBindByPos(stmt.handle(), &handle, errhp(), 1, nullptr, 100000, type,
                           nullptr, nullptr, nullptr, 0, nullptr, OCI_DATA_AT_EXEC),
              OCI_SUCCESS);
    ASSERT_EQ(OCIBindDynamic(handle, errhp(), sender, sender ? &Sender::ask : nullptr,
                             nullptr, nullptr),
              OCI_SUCCESS);
  }

  static void encode(Sender &sender) {
    for (Piece &piece : sender.pieces) piece.bytes = encoded(piece.bytes);
  }

  /// Executes "SELECT <expression>" with the sender's value for :v; `seen` takes the
  /// server's text of it.
  sword echo(const std::string &expression, Sender &sender, ub2 type) {
    Statement stmt = statement("SELECT (" + expression + ")::text");
    if (type != SQLT_INT) encode(sender);
    bind(stmt, &sender, type);
    TextBuffer<> text;
    stmt.define(1, text);
    const sword status = stmt.execute();
    seen = text.indicator == -1 ? "NULL" : text.text();
    return status;
  }
  std::string seen;
};

TEST_F(DynamicBindTest, ValueInOnePieceIsSent) {
  Sender sender{.pieces = {{.bytes = dressed("hello")}}};
  ASSERT_EQ(echo(":v", sender, SQLT_CHR), OCI_SUCCESS) << errorText();
  EXPECT_EQ(seen, dressed("hello"));
  EXPECT_EQ(sender.asked, std::vector<ub1>{OCI_FIRST_PIECE});
  EXPECT_TRUE(sender.startedEmpty);
}

TEST_F(DynamicBindTest, LastPieceAtOnceIsAWholeValue) {
  Sender sender{.pieces = {{.bytes = "hello", .piece = OCI_LAST_PIECE}}};
  ASSERT_EQ(echo(":v", sender, SQLT_CHR), OCI_SUCCESS) << errorText();
  EXPECT_EQ(seen, "hello");
}

TEST_F(DynamicBindTest, IndicatorMakesNull) {
  Sender sender{.pieces = {{.bytes = "x", .indicator = -1, .piece = OCI_NEXT_PIECE}}};
  ASSERT_EQ(echo(":v", sender, SQLT_CHR), OCI_SUCCESS) << errorText();
  EXPECT_EQ(seen, "NULL");
  EXPECT_EQ(sender.calls, 1u);
}

TEST_F(DynamicBindTest, MissingBufferIsNull) {
  Sender sender{.pieces = {{.hasBuffer = false}}};
  ASSERT_EQ(echo(":v", sender, SQLT_CHR), OCI_SUCCESS) << errorText();
  EXPECT_EQ(seen, "NULL");
  EXPECT_EQ(sender.pieces[0].indicator, -1);
}

TEST_F(DynamicBindTest, EmptyTextIsNullAsInPlainBinds) {
  Sender sender{.pieces = {{.bytes = ""}}};
  ASSERT_EQ(echo(":v", sender, SQLT_STR), OCI_SUCCESS) << errorText();
  EXPECT_EQ(seen, "NULL");
}

TEST_F(DynamicBindTest, IndicatorMayBeMissing) {
  Sender sender{.pieces = {{.bytes = "hello", .hasIndicator = false}}};
  ASSERT_EQ(echo(":v", sender, SQLT_CHR), OCI_SUCCESS) << errorText();
  EXPECT_EQ(seen, "hello");
}

TEST_F(DynamicBindTest, GatheringEndsOnlyAtALastPieceThatIsNull) {
  Sender sender{.pieces = {{.bytes = "one", .piece = OCI_FIRST_PIECE},
                           {.bytes = "two", .piece = OCI_NEXT_PIECE},
                           {.bytes = "three", .piece = OCI_LAST_PIECE},
                           {.bytes = "four", .indicator = -1, .piece = OCI_NEXT_PIECE},
                           {.bytes = "", .indicator = -1, .piece = OCI_LAST_PIECE}}};
  ASSERT_EQ(echo(":v", sender, SQLT_CHR), OCI_SUCCESS) << errorText();
  EXPECT_EQ(seen, "NULL");
  EXPECT_EQ(sender.asked,
            (std::vector<ub1>{OCI_FIRST_PIECE, OCI_NEXT_PIECE, OCI_NEXT_PIECE,
                              OCI_NEXT_PIECE, OCI_NEXT_PIECE}));
  EXPECT_TRUE(sender.startedEmpty);
}

TEST_F(DynamicBindTest, FailureWhileGatheringFails) {
  Sender sender{.pieces = {{.bytes = "one", .piece = OCI_FIRST_PIECE}}, .failAtCall = 1};
  EXPECT_EQ(echo(":v", sender, SQLT_CHR), OCI_ERROR);
  expectError(24343);
}

TEST_F(DynamicBindTest, CallbackThatDoesNotContinueFails) {
  for (const sb4 outcome : {OCI_SUCCESS, OCI_ERROR, 1, OCI_NEED_DATA}) {
    Sender sender{.pieces = {{.bytes = "x"}}, .outcome = outcome};
    EXPECT_EQ(echo(":v", sender, SQLT_CHR), OCI_ERROR) << outcome;
    expectError(24343);
  }
}

TEST_F(DynamicBindTest, PieceOfAnIntegerIsRefused) {
  Sender sender{.pieces = {{.bytes = std::string(4, '\1'), .piece = OCI_FIRST_PIECE}}};
  EXPECT_EQ(echo(":v::int4", sender, SQLT_INT), OCI_ERROR);
  expectError(24370);
}

TEST_F(DynamicBindTest, WholeIntegerIsSent) {
  Sender sender{.pieces = {{.bytes = std::string("\x2a\0\0\0", 4)}}};
  ASSERT_EQ(echo(":v::int4", sender, SQLT_INT), OCI_SUCCESS) << errorText();
  EXPECT_EQ(seen, "42");
}

TEST_F(DynamicBindTest, WithoutACallbackDataIsNeeded) {
  Statement stmt = statement("SELECT :v::text");
  bind(stmt, nullptr, SQLT_CHR);
  TextBuffer<> text;
  stmt.define(1, text);
  EXPECT_EQ(stmt.execute(), OCI_NEED_DATA);
  Statement insert = statement("INSERT INTO pg_temp.none VALUES (:v)");
  run("CREATE TEMP TABLE none (a text)");
  bind(insert, nullptr, SQLT_CHR);
  EXPECT_EQ(insert.execute(), OCI_NEED_DATA);
}

TEST_F(DynamicBindTest, CallbackIsToldTheRowOfAnArray) {
  run("CREATE TEMP TABLE dyn_rows (a text)");
  Statement insert = statement("INSERT INTO dyn_rows VALUES (:v)");
  Sender sender{.pieces = {{.bytes = "a"}, {.bytes = "b"}, {.bytes = "c"}}};
  encode(sender);
  bind(insert, &sender, SQLT_CHR);
  ASSERT_EQ(insert.execute(3), OCI_SUCCESS) << errorText();
  EXPECT_EQ(sender.rows, (std::vector<ub4>{0, 1, 2}));
  TextBuffer<> all;
  Statement select = statement("SELECT string_agg(a, '' ORDER BY a) FROM dyn_rows");
  select.define(1, all);
  ASSERT_EQ(select.execute(), OCI_SUCCESS);
  EXPECT_EQ(all.text(), "abc");
}

TEST_F(DynamicBindTest, DeleteAsksForARowOnlyWhenThoseBeforeItAreDone) {
  run("CREATE TEMP TABLE dyn_del AS SELECT i::text AS a FROM generate_series(1, 3) i");
  Statement remove = statement("DELETE FROM dyn_del WHERE a = :v");
  Sender sender{.pieces = {{.bytes = "1"}, {.bytes = "2"}, {.bytes = "3"}},
                .failAtCall = 2};
  encode(sender);
  bind(remove, &sender, SQLT_CHR);
  EXPECT_EQ(remove.execute(3), OCI_ERROR);
  expectError(24343);
  TextBuffer<> left;
  Statement select = statement("SELECT string_agg(a, '' ORDER BY a) FROM dyn_del");
  select.define(1, left);
  ASSERT_EQ(select.execute(), OCI_SUCCESS);
  EXPECT_EQ(left.text(), "3");
}

}  // namespace
}  // namespace zev::test
