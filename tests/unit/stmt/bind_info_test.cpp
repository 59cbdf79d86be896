#include <cstring>

#include "stmt_fixture.h"

namespace zevtest {
namespace {

constexpr ub4 kRoom = 8;

/// The arrays of a call, filled with what no answer is.
class BindInfo : public testing::Test {
 protected:
  void SetUp() override {
    for (ub4 i = 0; i < kRoom; ++i) {
      names[i] = indicatorNames[i] = unset;
      lengths[i] = indicatorLengths[i] = duplicates[i] = 99;
      binds[i] = nullptr;
    }
  }
  sword ask(ub4 size, ub4 startloc) {
    SetUp();
    found = 4711;
    return OCIStmtGetBindInfo(session.stmt, session.errhp, size, startloc, &found, names,
                              lengths, indicatorNames, indicatorLengths, duplicates,
                              binds);
  }
  /// The names given, "-" for an index without an answer.
  std::vector<std::string> given(ub4 count) const {
    std::vector<std::string> answers;
    for (ub4 i = 0; i < count; ++i) {
      answers.push_back(names[i] == unset ? "-"
                                          : reinterpret_cast<const char *>(names[i]));
      if (names[i] == unset) continue;
      EXPECT_EQ(lengths[i], answers.back().size());
      EXPECT_EQ(indicatorNames[i], nullptr);
      EXPECT_EQ(indicatorLengths[i], 0);
      EXPECT_EQ(duplicates[i], 0);
    }
    return answers;
  }

  Session session;
  OraText none = 0;
  OraText *unset = &none;
  sb4 found = 0;
  OraText *names[kRoom], *indicatorNames[kRoom];
  ub1 lengths[kRoom], indicatorLengths[kRoom], duplicates[kRoom];
  OCIBind *binds[kRoom];
};

TEST_F(BindInfo, DescribesThePlaceholders) {
  const struct {
    const char *text;
    ub4 size;
    ub4 startloc;
    sb4 found;
    std::vector<std::string> names;
  } rows[] = {
      {"select :a, :bc", 8, 1, 2, {"a", "bc", "-"}},
      {"select :a, :b, :a", 8, 1, 3, {"a", "b", "a"}},  // no duplicates are told
      {"select :a, :b, :c", 8, 3, 3, {"-", "-", "c", "-"}},
      {"select :a, :b, :c", 2, 1, -1, {"a", "b", "-"}},
      {"select :a, :b, :c", 2, 3, -1, {"-", "-", "-"}},
      {"select :a, :b, :c", 0, 1, -3, {"-", "-"}},
      {"select :a", 8, 5, 1, {"-"}},
      {"x := :a", 8, 1, 1, {"a", "-"}},
      {"select a::int, :b", 8, 1, 3, {":int", "int", "b", "-"}},
      {"select ':x', :a", 8, 1, 1, {"a", "-"}},
      {"select :1, :a\nfrom", 8, 1, 2, {"1", "a\nfrom"}},
      {"select : x", 8, 1, 1, {""}},
  };
  for (const auto &row : rows) {
    SCOPED_TRACE(row.text);
    ASSERT_EQ(session.prepare(row.text), OCI_SUCCESS);
    EXPECT_EQ(ask(row.size, row.startloc), OCI_SUCCESS);
    EXPECT_EQ(found, row.found);
    EXPECT_EQ(given(static_cast<ub4>(row.names.size())), row.names);
    EXPECT_EQ(session.takeRecord(), kNoRecord);
  }
}

TEST_F(BindInfo, WithoutPlaceholdersThereIsNoData) {
  EXPECT_EQ(ask(8, 1), OCI_NO_DATA);  // no text yet
  for (const char *text : {"select 1", "select ':a'", "x := 1"}) {
    ASSERT_EQ(session.prepare(text), OCI_SUCCESS);
    EXPECT_EQ(ask(8, 1), OCI_NO_DATA) << text;
    EXPECT_EQ(found, 4711) << text;
  }
  ASSERT_EQ(session.prepare("select :a"), OCI_SUCCESS);
  EXPECT_EQ(ask(8, 0), OCI_NO_DATA);
  EXPECT_EQ(session.takeRecord(), kNoRecord);
}

TEST_F(BindInfo, GivesTheBindHandlesWithoutRegardToCase) {
  ASSERT_EQ(session.prepare("select :a, :b, :A"), OCI_SUCCESS);
  OCIBind *a = nullptr;
  ASSERT_EQ(OCIBindByName(session.stmt, &a, session.errhp, oraText(":a"), -1, nullptr, 4,
                          SQLT_INT, nullptr, nullptr, nullptr, 0, nullptr, OCI_DEFAULT),
            OCI_SUCCESS);
  EXPECT_EQ(ask(8, 1), OCI_SUCCESS);
  EXPECT_EQ(binds[0], a);
  EXPECT_EQ(binds[1], nullptr);
  EXPECT_EQ(binds[2], a);
}

TEST_F(BindInfo, EachArrayMayBeMissing) {
  ASSERT_EQ(session.prepare("select :a"), OCI_SUCCESS);
  EXPECT_EQ(OCIStmtGetBindInfo(session.stmt, session.errhp, 8, 1, &found, nullptr,
                               nullptr, nullptr, nullptr, nullptr, nullptr),
            OCI_SUCCESS);
  EXPECT_EQ(found, 1);
  EXPECT_EQ(session.env->memCache, nullptr);  // no name was copied
}

TEST_F(BindInfo, WrongHandlesAreRefused) {
  OCIStmt *const stmt = session.stmt;
  session.stmt = nullptr;
  EXPECT_EQ(ask(8, 1), OCI_INVALID_HANDLE);
  session.stmt = reinterpret_cast<OCIStmt *>(session.errhp);
  EXPECT_EQ(ask(8, 1), OCI_INVALID_HANDLE);
  session.stmt = stmt;
  OCIError *const errhp = session.errhp;
  session.errhp = nullptr;
  EXPECT_EQ(ask(8, 1), OCI_INVALID_HANDLE);
  session.errhp = errhp;
}

TEST(BindInfoUtf16, NamesAreTranscoded) {
  Session session(OCI_UTF16);
  ASSERT_EQ(session.prepare(utf16("select :ab")), OCI_SUCCESS);
  OraText *name = nullptr;
  ub1 length = 0;
  sb4 found = 0;
  ASSERT_EQ(OCIStmtGetBindInfo(session.stmt, session.errhp, 1, 1, &found, &name, &length,
                               nullptr, nullptr, nullptr, nullptr),
            OCI_SUCCESS);
  EXPECT_EQ(std::memcmp(name, "a\0b\0\0\0", 6), 0);
  EXPECT_EQ(length, 2);
}

}  // namespace
}  // namespace zevtest
