#include <gtest/gtest.h>

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>
#include <random>
#include <string>

#include "core/edge_text.h"
#include "zevoci/encodings.h"
#include "zevoci/errors.h"

namespace zev::test {
namespace {

/// A conversion of the system, opened for the test alone.
class Conversion {
 public:
  Conversion(const char *to, const char *from) : cd_(iconv_open(to, from)) {}
  ~Conversion() { iconv_close(cd_); }
  Conversion(const Conversion &) = delete;
  Conversion &operator=(const Conversion &) = delete;
  iconv_t get() const { return cd_; }

 private:
  iconv_t cd_;
};

struct Outcome {
  std::string text;
  int error = 0;
  bool operator==(const Outcome &) const = default;
};

/// What transcode makes of `source`.
Outcome ours(iconv_t cd, const std::string &source) {
  void *out = &cd;
  std::size_t length = 4711;
  int error = 0;
  const std::size_t returned =
      transcode(cd, &error, source.data(), source.size(), &out, &length);
  if (returned == SIZE_MAX) {
    EXPECT_EQ(out, nullptr);
    return {"", error};
  }
  EXPECT_EQ(returned, length);
  std::string text;
  if (out) {
    text.assign(static_cast<char *>(out), length);
    EXPECT_EQ(static_cast<char *>(out)[length], '\0');
  }
  std::free(out);
  return {text, 0};
}

/// What the system's iconv makes of it, one byte of room at a time.
Outcome iconvs(iconv_t cd, std::string source) {
  iconv(cd, nullptr, nullptr, nullptr, nullptr);
  std::string text;
  char *from = source.data();
  std::size_t left = source.size();
  char room[16];
  while (left) {
    char *to = room;
    std::size_t space = sizeof room;
    const std::size_t done = iconv(cd, &from, &left, &to, &space);
    const int error = errno;
    text.append(room, sizeof room - space);
    if (done == static_cast<std::size_t>(-1) && error != E2BIG) return {"", error};
  }
  char *to = room;
  std::size_t space = sizeof room;
  iconv(cd, nullptr, nullptr, &to, &space);
  return {text.append(room, sizeof room - space), 0};
}

std::string utf8Of(std::mt19937 &random, std::size_t characters) {
  std::u32string text;
  while (text.size() < characters) {
    constexpr char32_t kLimits[] = {0x80, 0x800, 0x10000, 0x110000};
    const char32_t c = random() % kLimits[random() % 4];
    if (c && (c < 0xd800 || c > 0xdfff)) text += c;
  }
  std::string out;
  for (const char32_t c : text) {
    if (c < 0x80) {
      out += static_cast<char>(c);
      continue;
    }
    const int more = c < 0x800 ? 1 : c < 0x10000 ? 2 : 3;
    out += static_cast<char>((0xff00 >> (more + 1) & 0xff) | c >> (6 * more));
    for (int i = more - 1; i >= 0; --i)
      out += static_cast<char>(0x80 | (c >> (6 * i) & 0x3f));
  }
  return out;
}

class Transcode : public testing::Test {
 protected:
  Conversion toUtf8{"UTF-8", "UTF-16LE"}, fromUtf8{"UTF-16LE", "UTF-8"};
  std::mt19937 random{20261120};
};

TEST_F(Transcode, AnEmptySourceAllocatesNothing) {
  void *out = this;
  std::size_t length = 1;
  int error = 0;
  EXPECT_EQ(transcode(toUtf8.get(), &error, "x", 0, &out, &length), 0u);
  EXPECT_EQ(out, nullptr);
  EXPECT_EQ(length, 0u);
  out = this;
  EXPECT_EQ(transcode(toUtf8.get(), &error, nullptr, 5, &out, &length), 0u);
  EXPECT_EQ(out, nullptr);
}

TEST_F(Transcode, RandomTextAgreesWithIconvAndComesBack) {
  for (int i = 0; i < 5000; ++i) {
    const std::string text = utf8Of(random, random() % 40);
    const Outcome wide = ours(fromUtf8.get(), text);
    ASSERT_EQ(wide, iconvs(fromUtf8.get(), text));
    ASSERT_EQ(wide.error, 0);
    ASSERT_EQ(ours(toUtf8.get(), wide.text).text, text);
  }
}

TEST_F(Transcode, RandomBytesAgreeWithIconvInTextAndError) {
  int incomplete = 0, invalid = 0, good = 0;
  for (int i = 0; i < 20000; ++i) {
    std::string bytes = utf8Of(random, random() % 8);
    for (auto n = random() % 3; n && !bytes.empty(); --n) {
      bytes[random() % bytes.size()] = static_cast<char>(random());
    }
    if (random() % 3 == 0 && !bytes.empty()) bytes.pop_back();
    const iconv_t cd = random() % 2 ? toUtf8.get() : fromUtf8.get();
    const Outcome got = ours(cd, bytes);
    ASSERT_EQ(got, iconvs(cd, bytes));
    ++(got.error == EINVAL ? incomplete : got.error == EILSEQ ? invalid : good);
  }
  EXPECT_GT(incomplete, 100);
  EXPECT_GT(invalid, 100);
  EXPECT_GT(good, 100);
}

struct SequenceCase {
  const char *name;
  bool wide;  ///< the source is UTF-16LE
  std::string source;
  int error;
};

TEST_F(Transcode, IncompleteAndInvalidSequencesAreToldApart) {
  const SequenceCase rows[] = {
      {"OddByte", true, "a", EINVAL},
      {"HighSurrogateAtTheEnd", true, std::string("\x3d\xd8", 2), EINVAL},
      {"LowSurrogateAlone", true, std::string("\x00\xdc", 2), EILSEQ},
      {"HalfOfTwo", false, "\xc3", EINVAL},
      {"TwoOfThree", false, "\xe2\x82", EINVAL},
      {"ThreeOfFour", false, "\xf0\x9f\x98", EINVAL},
      {"ContinuationAlone", false, "\x80", EILSEQ},
      {"NeverInUtf8", false, "\xff", EILSEQ},
      {"SurrogateInUtf8", false, "\xed\xa0\x80", EILSEQ},
  };
  for (const SequenceCase &row : rows) {
    EXPECT_EQ(ours(row.wide ? toUtf8.get() : fromUtf8.get(), row.source).error, row.error)
        << row.name;
  }
}

TEST_F(Transcode, AFailureLeavesNoStateForTheNextCall) {
  const Conversion stateful("UTF-8", "ISO-2022-JP");
  EXPECT_EQ(ours(stateful.get(), "\x1b$B\x30").error, EINVAL);
  EXPECT_EQ(ours(stateful.get(), "abc").text, "abc");
}

TEST_F(Transcode, TheShiftBackAtTheEndBelongsToTheText) {
  const Conversion stateful("ISO-2022-JP", "UTF-8");
  EXPECT_EQ(ours(stateful.get(), "\xe4\xba\x9c"), iconvs(stateful.get(), "\xe4\xba\x9c"));
  EXPECT_EQ(ours(stateful.get(), "\xe4\xba\x9c").text, "\x1b$B\x30\x21\x1b(B");
}

TEST_F(Transcode, TheLastCharacterIsNotLostWhenTheTargetHasNone) {
  const Conversion waiting("ISO-8859-1", "CP1258");  // "\xe3" may take a combining mark
  EXPECT_EQ(ours(waiting.get(), "a\xe2").text, "a\xe2");
  EXPECT_EQ(ours(waiting.get(), "a\xe3").error, EILSEQ);
  EXPECT_EQ(ours(waiting.get(), "a").text, "a");
}

TEST_F(Transcode, ZeroBytesPassThrough) {
  const std::string text("a\0b", 3);
  EXPECT_EQ(ours(fromUtf8.get(), text).text, std::string("a\0\0\0b\0", 6));
}

class EdgeTextTest : public testing::Test {
 protected:
  ~EdgeTextTest() override {
    Free_OCIEnv(plain);
    Free_OCIEnv(wide);
  }
  static OCIEnv *create(ub4 mode) {
    OCIEnv *env = nullptr;
    EXPECT_EQ(OCIEnvCreate(&env, mode, nullptr, nullptr, nullptr, nullptr, 0, nullptr),
              OCI_SUCCESS);
    return env;
  }
  OCIEnv *plain = create(OCI_DEFAULT);
  OCIEnv *wide = create(OCI_UTF16);
};

TEST_F(EdgeTextTest, WithoutUtf16ThePointerPassesStraightThrough) {
  const char text[] = "\xff no text at all";
  const EdgeText in(plain, text, 5);
  EXPECT_TRUE(in);
  EXPECT_EQ(in.data(), text);
  EXPECT_EQ(in.size(), 5u);
  const EdgeResult out(plain, text, 7);
  EXPECT_EQ(out.data(), text);
  EXPECT_EQ(out.size(), 7u);
  EXPECT_EQ(EdgeText(nullptr, text, 5).data(), text);
}

TEST_F(EdgeTextTest, ANullSourceIsAnEmptyText) {
  for (const OCIEnv *env : {plain, wide}) {
    const EdgeText in(env, nullptr, 9);
    EXPECT_TRUE(in);
    EXPECT_EQ(in.data(), nullptr);
    EXPECT_EQ(in.size(), 0u);
  }
}

TEST_F(EdgeTextTest, InUtf16LengthsAreBytesOfEachSide) {
  const std::string euro("\xac\x20", 2);
  EXPECT_EQ(EdgeText(wide, euro.data(), euro.size()).view(), "\xe2\x82\xac");
  EXPECT_EQ(EdgeResult(wide, "\xe2\x82\xac", 3).view(), euro);
}

TEST_F(EdgeTextTest, AFailedConversionIsRecordedInItsWords) {
  const EdgeText incomplete(wide, "a", 1);
  EXPECT_FALSE(incomplete);
  EXPECT_EQ(incomplete.size(), 0u);
  EXPECT_EQ(incomplete.fail(wide->errh), OCI_ERROR);
  const EdgeResult invalid(wide, "\xff", 1);
  EXPECT_FALSE(invalid);
  EXPECT_EQ(invalid.fail(wide->errh), OCI_ERROR);
  const auto text = [&](ub4 n) {
    return std::string(static_cast<ErrorRecord *>(list_nth(wide->errh->records, n))->msg);
  };
  EXPECT_EQ(text(0),
            "An incomplete multibyte sequence has been encountered in the input");
  EXPECT_EQ(text(1), "An invalid multibyte sequence has been encountered in the input");
}

}  // namespace
}  // namespace zev::test
