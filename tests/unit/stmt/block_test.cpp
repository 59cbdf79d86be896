#include "stmt/block.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>

#include "core/owned.h"
#include "tests/unit/stmt/stmt_fixture.h"

namespace zevtest {
namespace {

struct ReleaseBlock {
  void operator()(callableStmt *node) const noexcept { ReleaseOCICallableStmt(node); }
};
using Block = std::unique_ptr<callableStmt, ReleaseBlock>;

/// Parses a text and keeps what went to standard output and standard error meanwhile.
struct Parsed {
  explicit Parsed(const std::string &text) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    block.reset(zev::parseBlock(text.c_str()));
    std::fflush(stdout);
    out = testing::internal::GetCapturedStdout();
    err = testing::internal::GetCapturedStderr();
  }
  Block block;
  std::string out;
  std::string err;
};

struct Call {
  const char *name;
  const char *text;
  const char *call;  ///< the call text; null for a text that is none
  const char *routine = nullptr;
  const char *returns = nullptr;
};

// clang-format off
const Call kCalls[] = {
    {"TwoArguments",            "BEGIN p(:a,:b); END;",              "CALL p ( :a , :b );",        "p"},
    {"NoArguments",             "BEGIN p(); END;",                   "CALL p (  );",               "p"},
    {"KeywordsInAnyCase",       "Begin p(); eNd;",                   "CALL p (  );",               "p"},
    {"WithoutLastSemicolon",    "BEGIN pkg.proc(:a); END",           "CALL pkg.proc ( :a );",      "pkg.proc"},
    {"ReturnValue",             "BEGIN :r := f(); END;",             "CALL f (  );",               "f", ":r"},
    {"ReturnValueAndArgument",  "BEGIN :r:=f(:a); END;",             "CALL f ( :a );",             "f", ":r"},
    {"BlanksOfAllKinds",        "\tBEGIN\np\f(\r:a )\n;  END ; ",    "CALL p ( :a );",             "p"},
    {"CommentToTheEndOfLine",   "BEGIN # say\n p(:a); #\nEND;",      "CALL p ( :a );",             "p"},
    {"DashBelongsToAName",      "BEGIN p(:a-b); END;",               "CALL p ( :a-b );",           "p"},
    {"DashBelongsToARoutine",   "BEGIN a-b(:a); END;",               "CALL a-b ( :a );",           "a-b"},
    {"NumberedPlaceholders",    "BEGIN p(:1,:22); END;",             "CALL p ( :1 , :22 );",       "p"},
    {"NameWithSigns",           "BEGIN _p$1#x(:_a$2#); END;",        "CALL _p$1#x ( :_a$2# );",    "_p$1#x"},
    {"BytesBeyondAscii",        "BEGIN gr\xc3\xbc\xc3\x9f(:\xc3\xa4); END;", "CALL gr\xc3\xbc\xc3\x9f ( :\xc3\xa4 );", "gr\xc3\xbc\xc3\x9f"},
    {"KeywordInsideADottedName","BEGIN begin.end(:a); END;",         "CALL begin.end ( :a );",     "begin.end"},
    {"ThreePartName",           "BEGIN a.b.c(:a); END;",             "CALL a.b.c ( :a );",         "a.b.c"},
    {"CaseOfNamesStays",        "BEGIN Pkg.PROC(:Arg); END;",        "CALL Pkg.PROC ( :Arg );",    "Pkg.PROC"},
    {"QuotesAreDropped",        "BEGIN 'p'(:a); END;",               "CALL p ( :a );",             "p"},
    {"MissingParentheses",      "begin p; end;",                     nullptr},
    {"LiteralArgument",         "BEGIN p(1); END;",                  nullptr},
    {"LiteralAmongArguments",   "BEGIN p(:a, 1); END;",              nullptr},
    {"LiteralText",             "BEGIN p('x'); END;",                nullptr},
    {"NameAsArgument",          "BEGIN p(a); END;",                  nullptr},
    {"SlashBehindTheEnd",       "BEGIN p(:a); END; /",               nullptr},
    {"SecondSemicolon",         "BEGIN p(:a); END;;",                nullptr},
    {"TwoCalls",                "BEGIN p(:a); q(:b); END;",          nullptr},
    {"MissingSemicolon",        "BEGIN p(:a) END;",                  nullptr},
    {"MissingEnd",              "BEGIN p(:a);",                      nullptr},
    {"NamedEnd",                "BEGIN p(:a); END p;",               nullptr},
    {"TrailingComma",           "BEGIN p(:a,); END;",                nullptr},
    {"MissingComma",            "BEGIN p(:a :b); END;",              nullptr},
    {"DashComment",             "BEGIN p(:a); -- say\nEND;",         nullptr},
    {"BlanksAroundTheDot",      "BEGIN a . b(:a); END;",             nullptr},
    {"TwoDots",                 "BEGIN a..b(:a); END;",              nullptr},
    {"KeywordAsRoutine",        "BEGIN end(:a); END;",               nullptr},
    {"Assignment",              "BEGIN :r := :a; END;",              nullptr},
    {"ColonAlone",              "BEGIN p(:); END;",                  nullptr},
    {"NoBegin",                 "p(:a);",                            nullptr},
    {"Empty",                   "",                                  nullptr},
    {"BlanksOnly",              " \n ",                              nullptr},
};
// clang-format on

class BlockTest : public testing::TestWithParam<Call> {};

TEST_P(BlockTest, BecomesItsCall) {
  const Call &row = GetParam();
  const Parsed parsed(row.text);
  if (!row.call) {
    EXPECT_EQ(parsed.block, nullptr);
    return;
  }
  ASSERT_NE(parsed.block, nullptr) << parsed.err;
  EXPECT_STREQ(parsed.block->text, row.call);
  EXPECT_STREQ(parsed.block->name, row.routine);
  EXPECT_EQ(parsed.block->hasReturn, row.returns != nullptr);
  EXPECT_STREQ(parsed.block->returnParam, row.returns);
  EXPECT_EQ(parsed.block->tag, kCallableStmtTag);
  EXPECT_EQ(parsed.err, "");
}

INSTANTIATE_TEST_SUITE_P(Texts, BlockTest, testing::ValuesIn(kCalls), nameOf<Call>);

TEST(BlockMessages, UnknownBytesAreEchoed) {
  const Parsed digits("BEGIN p(1); END;");
  EXPECT_EQ(digits.out, "1");
  EXPECT_EQ(digits.block, nullptr);
  const Parsed quotes("BEGIN 'p'(:a)\"; !?@\\`{|}~&$\x01 END;");
  EXPECT_EQ(quotes.out, "''\"!?@\\`{|}~&$\x01");
  EXPECT_NE(quotes.block, nullptr);
}

TEST(BlockMessages, SyntaxErrorGoesToStandardError) {
  const Parsed parsed("BEGIN p(:a) END;");
  EXPECT_TRUE(parsed.err.starts_with("syntax error")) << parsed.err;
  EXPECT_TRUE(parsed.err.ends_with("\n")) << parsed.err;
  EXPECT_NE(parsed.err.find("unexpected END"), std::string::npos) << parsed.err;
  EXPECT_NE(parsed.err.find("expecting ';'"), std::string::npos) << parsed.err;
}

TEST(BlockMessages, EmptyTextIsNoError) {
  const Parsed parsed("");
  EXPECT_EQ(parsed.err, "");
  EXPECT_EQ(parsed.block, nullptr);
}

TEST(BlockParser, TakesThousandsOfParameters) {
  std::string text = "BEGIN p(:p0", expected = "CALL p ( :p0";
  for (int i = 1; i < 20000; ++i) {
    text += ",:p" + std::to_string(i);
    expected += " , :p" + std::to_string(i);
  }
  const Parsed parsed(text + "); END;");
  ASSERT_NE(parsed.block, nullptr) << parsed.err;
  EXPECT_EQ(parsed.block->text, expected + " );");
}

TEST(BlockParser, TheInterfaceWorksStepByStep) {
  ASSERT_EQ(scanner_init("BEGIN :r := f(:a); END;"), 0);
  EXPECT_EQ(yyparse(), 0);
  scanner_finish();
  ASSERT_NE(parse_stmt_node, nullptr);
  EXPECT_STREQ(parse_stmt_node->text, "CALL f ( :a );");
  ReleaseOCICallableStmt(parse_stmt_node);
  parse_stmt_node = nullptr;
  scanner_finish();
}

TEST(BlockParser, RandomTextsAreParsedOrRefused) {
  auto random = generator();
  const char *const words[] = {"BEGIN", "END", "p", ":a", "(", ")", ",", ";",  ":=",
                               ".",     "\n",  " ", "1",  "'", "#", "-", ":r", "\xff"};
  int accepted = 0;
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  for (int i = 0; i < 20000; ++i) {
    std::string text = "BEGIN ";
    for (auto n = random() % 12; n > 0; --n) text += words[random() % std::size(words)];
    if (random() % 2) text = "BEGIN p(" + text.substr(6) + "); END;";
    const Block block(zev::parseBlock(text.c_str()));
    accepted += block != nullptr;
  }
  testing::internal::GetCapturedStdout();
  testing::internal::GetCapturedStderr();
  EXPECT_GT(accepted, 10);
}

TEST(BlockWords, KeywordsAreFoundInAnyCase) {
  EXPECT_EQ(ScanGramKeywordLookup("begin"), 260);
  EXPECT_EQ(ScanGramKeywordLookup("BeGiN"), 260);
  EXPECT_EQ(ScanGramKeywordLookup("END"), 261);
  for (const char *word : {"", "beg", "beginn", "ends", "procedure", "\xc9nd"}) {
    EXPECT_EQ(ScanGramKeywordLookup(word), 0) << word;
  }
}

TEST(BlockWords, LongWordsAreNone) {
  EXPECT_EQ(ScanGramKeywordLookup(std::string(63, 'b').c_str()), 0);
  EXPECT_EQ(ScanGramKeywordLookup(std::string(64, 'b').c_str()), 0);
  EXPECT_EQ(ScanGramKeywordLookup(std::string(100000, 'b').c_str()), 0);
}

TEST(BlockWords, TextsAreJoinedWithBlanks) {
  const zev::Malloced<> alone(cat_str(1, make_str("x")));
  EXPECT_STREQ(alone.get(), "x");
  const zev::Malloced<> three(cat_str(3, make_str("a"), make_str(""), make_str("c")));
  EXPECT_STREQ(three.get(), "a  c");
}

TEST(BlockRelease, LeavesWhatIsNoBlock) {
  ReleaseOCICallableStmt(nullptr);
  callableStmt other{
      .tag = 5, .text = nullptr, .hasReturn = 0, .returnParam = nullptr, .name = nullptr};
  ReleaseOCICallableStmt(&other);
  EXPECT_EQ(other.tag, 5u);
}

class BlockPrepareTest : public testing::Test {
 protected:
  Session session;
};

TEST_F(BlockPrepareTest, StatementTakesTheCall) {
  ASSERT_EQ(session.prepare("BEGIN :r := pkg.f(:a, :b); END;"), OCI_SUCCESS);
  EXPECT_TRUE(session.stmt->isCallable);
  EXPECT_EQ(session.stmt->hasReturn, 1u);
  EXPECT_STREQ(session.stmt->procName, "pkg.f");
  EXPECT_STREQ(session.stmt->callText, "CALL pkg.f ( :a , :b );");
  EXPECT_STREQ(session.stmt->returnParam, ":r");
  ASSERT_EQ(session.prepare("SELECT 1"), OCI_SUCCESS);
  EXPECT_FALSE(session.stmt->isCallable);
  EXPECT_EQ(session.stmt->hasReturn, 0u);
  EXPECT_EQ(session.stmt->callText, nullptr);
}

TEST_F(BlockPrepareTest, EveryOtherBlockIsRefused) {
  testing::internal::CaptureStderr();
  for (const char *text : {"BEGIN p; END;", "BEGIN NULL; END;", "BEGIN", "begin;",
                           "BEGIN p(:a); q(:a); END;"}) {
    EXPECT_EQ(session.prepare(text), OCI_ERROR) << text;
    EXPECT_EQ(session.takeRecord(), 13780) << text;
  }
  EXPECT_NE(testing::internal::GetCapturedStderr(), "");
}

}  // namespace
}  // namespace zevtest
