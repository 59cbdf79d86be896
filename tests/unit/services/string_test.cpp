/// The strings of object mode.
#include <cstring>

#include "tests/unit/core/core_fixture.h"
#include "zevoci/string_value.h"

namespace zev::test {
namespace {

const OraText *oraText(const char *text) {
  return reinterpret_cast<const OraText *>(text);
}

class Strings : public testing::Test {
 protected:
  ~Strings() override {
    if (string_) OCIStringResize(env(), err(), 0, &string_);
  }
  OCIEnv *env() { return env_.get(); }
  OCIError *err() { return env_.errhp(); }
  sword assign(const char *text, ub4 length) {
    return OCIStringAssignText(env(), err(), oraText(text), length, &string_);
  }
  std::string text() {
    return reinterpret_cast<const char *>(OCIStringPtr(env(), string_));
  }

  Environment env_{OCI_OBJECT};
  OCIString *string_ = nullptr;
};

TEST_F(Strings, TakeTextWhole) {
  ASSERT_EQ(assign("abc", 3), OCI_SUCCESS);
  EXPECT_EQ(text(), "abc");
  EXPECT_EQ(OCIStringSize(env(), string_), 3u);
  ub4 size = 0;
  ASSERT_EQ(OCIStringAllocSize(env(), err(), string_, &size), OCI_SUCCESS);
  EXPECT_EQ(size, 3u);
  ASSERT_EQ(assign("a longer text", 100), OCI_SUCCESS)
      << "the length is what the text has";
  EXPECT_EQ(text(), "a longer text");
  EXPECT_EQ(OCIStringSize(env(), string_), 13u);
  ASSERT_EQ(assign("", 0), OCI_SUCCESS);
  EXPECT_EQ(text(), "");
}

TEST_F(Strings, TextLongerThanItsLengthIsRefusedWithoutARecord) {
  EXPECT_EQ(assign("abc", 2), OCI_ERROR);
  EXPECT_EQ(codesOf(err()), Codes{});
  EXPECT_EQ(string_, nullptr);
}

TEST_F(Strings, AreCopied) {
  ASSERT_EQ(assign("abc", 3), OCI_SUCCESS);
  OCIString *copy = nullptr;
  ASSERT_EQ(OCIStringAssign(env(), err(), string_, &copy), OCI_SUCCESS);
  EXPECT_STREQ(reinterpret_cast<char *>(OCIStringPtr(env(), copy)), "abc");
  EXPECT_NE(OCIStringPtr(env(), copy), OCIStringPtr(env(), string_));
  EXPECT_EQ(OCIStringSize(env(), copy), 3u);
  ASSERT_EQ(OCIStringAssign(env(), err(), copy, &copy), OCI_SUCCESS);
  EXPECT_STREQ(reinterpret_cast<char *>(OCIStringPtr(env(), copy)), "abc");
  ASSERT_EQ(OCIStringResize(env(), err(), 0, &copy), OCI_SUCCESS);
  EXPECT_EQ(copy, nullptr);
}

TEST_F(Strings, CopiedTextGoesToItsEndAndTheLengthIsTheOthers) {
  ASSERT_EQ(OCIStringResize(env(), err(), 20, &string_), OCI_SUCCESS);
  std::strcpy(reinterpret_cast<char *>(OCIStringPtr(env(), string_)), "abcdef");
  string_->length = 3;
  OCIString *copy = nullptr;
  ASSERT_EQ(OCIStringAssign(env(), err(), string_, &copy), OCI_SUCCESS);
  ub4 size = 0;
  ASSERT_EQ(OCIStringAllocSize(env(), err(), copy, &size), OCI_SUCCESS);
  EXPECT_EQ(size, 6u);
  EXPECT_EQ(OCIStringSize(env(), copy), 3u);
  OCIStringResize(env(), err(), 0, &copy);
}

TEST_F(Strings, RoomIsZeroedAndHasOneByteMore) {
  ASSERT_EQ(OCIStringResize(env(), err(), 10, &string_), OCI_SUCCESS);
  EXPECT_EQ(OCIStringSize(env(), string_), 0u);
  const OraText *const room = OCIStringPtr(env(), string_);
  for (int i = 0; i <= 10; ++i) EXPECT_EQ(room[i], 0);
  ASSERT_EQ(OCIStringResize(env(), err(), 5, &string_), OCI_SUCCESS);
  ub4 size = 0;
  ASSERT_EQ(OCIStringAllocSize(env(), err(), string_, &size), OCI_SUCCESS);
  EXPECT_EQ(size, 5u);
}

TEST_F(Strings, ResizedToNothingAreFreed) {
  ASSERT_EQ(OCIStringResize(env(), err(), 10, &string_), OCI_SUCCESS);
  ASSERT_EQ(OCIStringResize(env(), err(), 0, &string_), OCI_SUCCESS);
  EXPECT_EQ(string_, nullptr);
  EXPECT_EQ(OCIStringResize(env(), err(), 0, &string_), OCI_SUCCESS);
}

TEST_F(Strings, NullsAreToldByTheirNumbers) {
  ASSERT_EQ(assign("abc", 3), OCI_SUCCESS);
  ub4 size = 0;
  const auto expectNull = [&](sword status, const char *number) {
    EXPECT_EQ(status, OCI_ERROR) << number;
    EXPECT_EQ(codesOf(err()), Codes{21560}) << number;
    OraText message[200];
    sb4 code = 0;
    OCIErrorGet(err(), 1, nullptr, &code, message, sizeof message, OCI_HTYPE_ERROR);
    EXPECT_NE(std::strstr(reinterpret_cast<char *>(message),
                          (std::string("argument ") + number).c_str()),
              nullptr);
  };
  expectNull(OCIStringAllocSize(env(), err(), nullptr, &size), "3");
  expectNull(OCIStringAllocSize(env(), err(), string_, nullptr), "4");
  expectNull(OCIStringAssign(env(), err(), nullptr, &string_), "3");
  expectNull(OCIStringAssign(env(), err(), string_, nullptr), "4");
  expectNull(OCIStringAssignText(env(), err(), nullptr, 3, &string_), "3");
  expectNull(OCIStringAssignText(env(), err(), oraText("x"), 1, nullptr), "5");
  expectNull(OCIStringResize(env(), err(), 3, nullptr), "4");
  EXPECT_EQ(OCIStringPtr(env(), nullptr), nullptr);
  EXPECT_EQ(OCIStringSize(env(), nullptr), 0u);
}

TEST_F(Strings, NeedObjectMode) {
  Environment plain;
  OCIString string{};
  OCIString *place = nullptr;
  ub4 size = 0;
  const auto expectMode = [&](sword status) {
    EXPECT_EQ(status, OCI_ERROR);
    EXPECT_EQ(codesOf(plain.errhp()), Codes{21301});
    ClearErrorHandle(plain.errhp());
  };
  expectMode(OCIStringAllocSize(plain.get(), plain.errhp(), &string, &size));
  expectMode(OCIStringAssign(plain.get(), plain.errhp(), &string, &place));
  expectMode(OCIStringAssignText(plain.get(), plain.errhp(), oraText("x"), 1, &place));
  expectMode(OCIStringResize(plain.get(), plain.errhp(), 3, &place));
  EXPECT_EQ(OCIStringPtr(plain.get(), &string), nullptr);
  EXPECT_EQ(OCIStringSize(plain.get(), &string), static_cast<ub4>(-1));
  EXPECT_EQ(place, nullptr);
}

TEST_F(Strings, ObjectModeWithThreadsIsObjectMode) {
  Environment threaded(OCI_OBJECT | OCI_THREADED);
  OCIString *place = nullptr;
  ASSERT_EQ(OCIStringResize(threaded.get(), threaded.errhp(), 3, &place), OCI_SUCCESS);
  EXPECT_EQ(OCIStringResize(threaded.get(), threaded.errhp(), 0, &place), OCI_SUCCESS);
}

TEST_F(Strings, NeedAnEnvironmentAndAnErrorHandle) {
  auto *const bad = reinterpret_cast<OCIEnv *>(err());
  EXPECT_EQ(OCIStringResize(nullptr, err(), 3, &string_), OCI_INVALID_HANDLE);
  EXPECT_EQ(OCIStringResize(bad, err(), 3, &string_), OCI_INVALID_HANDLE);
  EXPECT_EQ(OCIStringResize(env(), nullptr, 3, &string_), OCI_INVALID_HANDLE);
  ASSERT_EQ(assign("abc", 3), OCI_SUCCESS);
  EXPECT_EQ(OCIStringPtr(bad, string_), nullptr);
  EXPECT_EQ(OCIStringSize(nullptr, string_), static_cast<ub4>(-2));
}

TEST(StringsUtf16, EndInAUnitOfZero) {
  Environment env(OCI_OBJECT | OCI_UTF16);
  OCIString *string = nullptr, *copy = nullptr;
  const char16_t text[] = u"a\x0100Ж\xD83D\xDE00";
  const auto *bytes = reinterpret_cast<const OraText *>(text);
  EXPECT_EQ(OCIStringAssignText(env.get(), env.errhp(), bytes, 9, &string), OCI_ERROR)
      << "the text is longer";
  ASSERT_EQ(OCIStringAssignText(env.get(), env.errhp(), bytes, 10, &string), OCI_SUCCESS);
  ASSERT_EQ(OCIStringAssign(env.get(), env.errhp(), string, &copy), OCI_SUCCESS);
  for (OCIString *each : {string, copy}) {
    ub4 allocated = 0;
    EXPECT_EQ(OCIStringSize(env.get(), each), 10u);
    EXPECT_EQ(OCIStringAllocSize(env.get(), env.errhp(), each, &allocated), OCI_SUCCESS);
    EXPECT_EQ(allocated, 10u);
    EXPECT_EQ(std::memcmp(OCIStringPtr(env.get(), each), text, sizeof text), 0);
  }
  ASSERT_EQ(OCIStringResize(env.get(), env.errhp(), 4, &copy), OCI_SUCCESS);
  EXPECT_EQ(std::memcmp(OCIStringPtr(env.get(), copy), u"\0\0", 6), 0);
  OCIStringResize(env.get(), env.errhp(), 0, &string);
  OCIStringResize(env.get(), env.errhp(), 0, &copy);
}

}  // namespace
}  // namespace zev::test
