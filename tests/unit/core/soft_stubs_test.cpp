/// Every function that fails softly: the same with and without the operator's leave to go
/// on, which is for those that end the process.
#include <functional>

#include "stub_calls.h"

namespace zev::test {

// What no header declares.
namespace undeclared {
#define UNDECLARED_STUB(name) extern "C" sword name();
#include "core/surface/surface.def"
}  // namespace undeclared

namespace {

/// What a call came to, of results of all types.
enum class Answer { Failure, Null, Other };

template <class Result>
Answer answerOf(Result result) {
  if constexpr (std::is_pointer_v<Result>) {
    return result ? Answer::Other : Answer::Null;
  } else {
    return result == static_cast<Result>(OCI_ERROR) ? Answer::Failure : Answer::Other;
  }
}

template <class Result, class... Parameters>
Answer call(Arguments &arguments, Result (*function)(Parameters...)) {
  if constexpr (std::is_void_v<Result>) {
    callWith(arguments, function);
    return Answer::Null;
  } else {
    return answerOf(callWith(arguments, function));
  }
}
template <class Result, class... Parameters>
Answer call(Arguments &arguments, Result (*function)(Parameters..., ...)) {
  return answerOf(callWith(arguments, function));
}

template <class Result, class... Parameters>
constexpr bool takesErrorHandle(Result (*)(Parameters...)) {
  return (std::is_same_v<Parameters, OCIError *> || ...);
}

/// A function and what it is to do.
struct Stub {
  const char *name;
  std::function<Answer(Arguments &)> call;
  Answer answer;
  bool records;           ///< 3001
  const char *narrative;  ///< its line, and nothing else, at level 3
};

std::ostream &operator<<(std::ostream &out, const Stub &stub) {
  return out << stub.name;
}

#define CALL(name) [](Arguments &arguments) { return call(arguments, name); }
#define SOFT_STUB(result, name, parameters, line) \
  Stub{#name, CALL(name), Answer::Failure, false, line},
#define NULL_STUB(result, name, parameters, line) \
  Stub{#name, CALL(name), Answer::Null, false, line},
#define UNSUPPORTED_STUB(result, name, parameters, errhp)          \
  Stub{#name, CALL(name), Answer::Failure, takesErrorHandle(name), \
       #name " is not supported\n"},
#define UNDECLARED_STUB(name)                                                            \
  Stub{#name, [](Arguments &) { return answerOf(undeclared::name()); }, Answer::Failure, \
       false, #name " is not supported\n"},

const Stub kStubs[] = {
#include "core/surface/surface.def"
};

#undef CALL

class SoftStub : public testing::TestWithParam<Stub> {
 protected:
  void expectFailure() {
    EXPECT_EQ(
        traced(3, [&] { EXPECT_EQ(GetParam().call(arguments_), GetParam().answer); }),
        GetParam().narrative);
    EXPECT_TRUE(arguments_.areUntouched());
    EXPECT_EQ(codesOf(env_.errhp()), GetParam().records ? Codes{3001} : Codes{});
    EXPECT_EQ(codesOf(env_.get()->errh), Codes{});
    EXPECT_STREQ(env_.errhp()->scratchText, "");
  }

  Environment env_;
  Arguments arguments_{env_};
};

TEST_P(SoftStub, FailsAndLeavesEverythingAsItIs) {
  const Variable unset(kGoOn, nullptr);
  expectFailure();
}

TEST_P(SoftStub, FailsWithTheOperatorsLeaveToo) {
  const Variable set(kGoOn, "1");
  expectFailure();
}

TEST_P(SoftStub, TracesItsReturnUnlessItIsNull) {
  const std::string lines = traced(4, [&] { GetParam().call(arguments_); });
  EXPECT_EQ(lines.find("\tRETURNING ") == std::string::npos,
            GetParam().answer == Answer::Null)
      << lines;
}

INSTANTIATE_TEST_SUITE_P(Each, SoftStub, testing::ValuesIn(kStubs),
                         [](const auto &row) { return std::string(row.param.name); });

class Single : public testing::Test {
 protected:
  Environment env_;
  Arguments arguments_{env_};
};

TEST_F(Single, FamiliesTellTheirPurpose) {
  const auto line = [this](auto function) {
    return traced(3, [&] { callWith(arguments_, function); });
  };
  EXPECT_EQ(line(OCICacheFlush), "Flushing Persistent Cache\n");
  EXPECT_EQ(line(OCIObjectFlush), "Flushing Modified Object\n");
  for (const auto &same :
       {line(OCITypeBeginCreate), line(OCIAnyDataAccess), line(OCIMessageOpen),
        line(OCIMessageGet), line(OCICollSize), line(OCIRawPtr), line(OCIRefClear),
        line(OCIIterNext), line(OCITableSize), line(OCIWideCharToUpper)}) {
    EXPECT_EQ(same, "Setting Piece Information\n");
  }
}

TEST_F(Single, ADocumentContextIsNullAndSaysWhyWhereNobodyReads) {
  const std::string lines =
      traced(3, [&] { EXPECT_EQ(callWith(arguments_, OCIXmlDbInitXmlCtx), nullptr); });
  EXPECT_EQ(lines, "Describing Any Object\n");
  EXPECT_STREQ(env_.errhp()->scratchText, "KESTREL-03001: unsupported feature");
  EXPECT_EQ(codesOf(env_.errhp()), Codes{});
  EXPECT_EQ(OCIXmlDbInitXmlCtx(nullptr, nullptr, nullptr, nullptr, 0), nullptr);
}

TEST_F(Single, FreeingADocumentContextTraces) {
  const std::string lines = traced(4, [] { OCIXmlDbFreeXmlCtx(nullptr); });
  EXPECT_EQ(lines.find("Freeing XMLDB Context\n"), 0u);
  EXPECT_NE(lines.find("\txctx = "), std::string::npos);
  EXPECT_NE(lines.find("\tRETURNING "), std::string::npos);
}

TEST_F(Single, ConnectionPoolsFailWithoutAWord) {
  for (const char *leave : {static_cast<const char *>(nullptr), "1"}) {
    const Variable set(kGoOn, leave);
    env_.errhp()->scratchText[0] = '\0';
    EXPECT_EQ(callWith(arguments_, OCIConnectionPoolCreate), OCI_ERROR);
    EXPECT_STREQ(env_.errhp()->scratchText, "KESTREL-03001: unsupported feature");
    EXPECT_EQ(callWith(arguments_, OCIConnectionPoolDestroy), OCI_ERROR);
    EXPECT_EQ(codesOf(env_.errhp()), Codes{});
    EXPECT_TRUE(arguments_.areUntouched());
  }
}

TEST_F(Single, AnUnsupportedFunctionForgetsFormerRecords) {
  AddErrorRecord(env_.errhp(), OCI_ERROR, 1403);
  EXPECT_EQ(callWith(arguments_, OCISodaFind), OCI_ERROR);
  EXPECT_EQ(codesOf(env_.errhp()), Codes{3001});
  EXPECT_EQ(OCISodaFind(nullptr, nullptr, nullptr, 0, nullptr, nullptr, 0), OCI_ERROR);
}

}  // namespace
}  // namespace zev::test
