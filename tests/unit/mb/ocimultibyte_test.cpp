/// The published functions that measure and compare multibyte and wide text.
#include <cstring>
#include <memory>

#include "mb_fixture.h"
#include "zevoci/multibyte.h"

namespace zev::test {
namespace {

const std::string kArgument = "KESTREL-21560: null, invalid, or out of range argument ";
constexpr std::size_t kInvalid = static_cast<std::size_t>(-2);
constexpr std::size_t kFailed = static_cast<std::size_t>(-1);

/// The call left one record on `errhp`: argument `number` is missing.
void expectMissing(const OCIError *errhp, const char *number) {
  EXPECT_EQ(codesOf(errhp), Codes{21560});
  EXPECT_EQ(firstText(errhp), kArgument + number);
}

const char *const kMixed = "a\xc3\xa9\xe3\x81\x82\xf0\x9f\x98\x80";

class MultiByte : public testing::Test {
 protected:
  EncodedEnvironment utf8{6};
  EncodedEnvironment latin1{8};
  Environment other;  // for handles of other kinds
};

TEST_F(MultiByte, LengthsAreInTheEnvironmentsEncoding) {
  EXPECT_EQ(OCIMultiByteStrlen(utf8.get(), asText(kMixed)), 4u);
  EXPECT_EQ(OCIMultiByteStrlen(latin1.get(), asText(kMixed)), 10u);
  EXPECT_EQ(OCIMultiByteStrlen(utf8.get(), asText("")), 0u);
  EXPECT_EQ(OCIMultiByteStrnDisplayLength(utf8.get(), asText(kMixed), 1), 6u);
  EXPECT_EQ(OCIMultiByteStrnDisplayLength(latin1.get(), asText(kMixed), 0), 10u);
}

TEST_F(MultiByte, AWidthBelowZeroIsExtended) {
  EXPECT_EQ(OCIMultiByteStrnDisplayLength(utf8.get(), asText("\t\t\t"), 3),
            static_cast<std::size_t>(-3));
}

TEST_F(MultiByte, AUtf16EnvironmentMeasuresUtf16) {
  Environment wide(OCI_UTF16);
  const std::string text("a\0\x3d\xd8\0\xde\x42\x30\0\0", 10);
  EXPECT_EQ(OCIMultiByteStrlen(wide.get(), asText(text)), 3u);
  EXPECT_EQ(OCIMultiByteStrnDisplayLength(wide.get(), asText(text), 0), 5u);
  OCIWchar dst[16];
  std::size_t count = 0;
  EXPECT_EQ(OCIMultiByteInSizeToWideChar(wide.get(), dst, 16, asText(text), 8, &count),
            OCI_SUCCESS);
  EXPECT_EQ(count, 3u);
  EXPECT_EQ(dst[1], 0x1F600u);
}

TEST_F(MultiByte, NullTextIsReportedOnTheEnvironment) {
  EXPECT_EQ(OCIMultiByteStrlen(utf8.get(), nullptr), kFailed);
  expectMissing(utf8.errors(), "2");
  EXPECT_EQ(OCIMultiByteStrnDisplayLength(utf8.get(), nullptr, 0), kFailed);
  expectMissing(utf8.errors(), "2");
  OCIWchar dst[4];
  EXPECT_EQ(OCIMultiByteInSizeToWideChar(utf8.get(), dst, 4, nullptr, 3, nullptr),
            OCI_ERROR);
  expectMissing(utf8.errors(), "4");
}

TEST_F(MultiByte, OtherHandlesAreRefusedWithoutARecord) {
  for (void *handle :
       {static_cast<void *>(nullptr), static_cast<void *>(other.errhp())}) {
    EXPECT_EQ(OCIMultiByteStrlen(handle, asText("a")), kInvalid);
    EXPECT_EQ(OCIMultiByteStrlen(handle, nullptr), kInvalid);
    EXPECT_EQ(OCIMultiByteStrnDisplayLength(handle, asText("a"), 1), kInvalid);
    EXPECT_EQ(OCIMultiByteInSizeToWideChar(handle, nullptr, 0, asText("a"), 1, nullptr),
              OCI_INVALID_HANDLE);
  }
  EXPECT_EQ(codesOf(other.errhp()), Codes{});
}

/// What a conversion to wide characters left in a target of `room` characters.
struct WideResult {
  sword status;
  std::size_t count = 4711;
  std::vector<OCIWchar> target;
};

WideResult convert(OCIEnv *env, std::size_t room, std::string_view source) {
  WideResult result;
  // No byte behind the source, no character behind the target.
  const std::unique_ptr<OraText[]> src(new OraText[source.size()]);
  std::memcpy(src.get(), source.data(), source.size());
  result.target.assign(room, 0xAAAA);
  result.target.shrink_to_fit();
  result.status = OCIMultiByteInSizeToWideChar(env, result.target.data(), room, src.get(),
                                               source.size(), &result.count);
  return result;
}

using Wides = std::vector<OCIWchar>;

TEST_F(MultiByte, BecomesWideWithATerminatorThatFits) {
  const WideResult result = convert(utf8.get(), 6, "a\xc3\xa9z");
  EXPECT_EQ(result.status, OCI_SUCCESS);
  EXPECT_EQ(result.count, 3u);
  EXPECT_EQ(result.target, (Wides{'a', 0xE9, 'z', 0, 0xAAAA, 0xAAAA}));
}

TEST_F(MultiByte, TheTargetsSizeBoundsCharactersAndBytesOfTheSource) {
  const WideResult full = convert(utf8.get(), 3, "abcdef");
  EXPECT_EQ(full.count, 3u);
  EXPECT_EQ(full.target, (Wides{'a', 'b', 'c'}));
  const WideResult cut = convert(utf8.get(), 3, "\xc3\xa9\xc3\xa9");
  EXPECT_EQ(cut.count, 1u);
  EXPECT_EQ(cut.target, (Wides{0xE9, 0, 0xAAAA}));
}

TEST_F(MultiByte, WithoutATargetTheSourceIsMeasured) {
  for (OCIWchar *dst : {static_cast<OCIWchar *>(nullptr), Wides(1).data()}) {
    std::size_t count = 0;
    EXPECT_EQ(
        OCIMultiByteInSizeToWideChar(utf8.get(), dst, 0, asText(kMixed), 10, &count),
        OCI_SUCCESS);
    EXPECT_EQ(count, 4u);
  }
  std::size_t count = 0;
  EXPECT_EQ(
      OCIMultiByteInSizeToWideChar(utf8.get(), nullptr, 9, asText(kMixed), 6, &count),
      OCI_SUCCESS);
  EXPECT_EQ(count, 3u);
}

TEST_F(MultiByte, TheCountMayBeLeftOut) {
  Wides dst(5, 0xAAAA);
  EXPECT_EQ(
      OCIMultiByteInSizeToWideChar(utf8.get(), dst.data(), 5, asText("ab"), 2, nullptr),
      OCI_SUCCESS);
  EXPECT_EQ(dst, (Wides{'a', 'b', 0, 0xAAAA, 0xAAAA}));
  EXPECT_EQ(
      OCIMultiByteInSizeToWideChar(utf8.get(), nullptr, 5, asText("ab"), 2, nullptr),
      OCI_SUCCESS);
}

TEST_F(MultiByte, OneByteEncodingsHaveRoomForEveryCharacter) {
  const std::string text(1000, '\xe9');
  const WideResult result = convert(latin1.get(), 1001, text);
  EXPECT_EQ(result.count, 1000u);
  EXPECT_EQ(result.target[999], 0xE9u);
  EXPECT_EQ(result.target[1000], 0u);
  std::size_t count = 0;
  EXPECT_EQ(
      OCIMultiByteInSizeToWideChar(latin1.get(), nullptr, 0, asText(text), 1000, &count),
      OCI_SUCCESS);
  EXPECT_EQ(count, 1000u);
}

TEST(MultiByteEncodings, WithoutAWideFormAreAnError) {
  for (ub2 encoding = 0; encoding <= 40; ++encoding) {
    EncodedEnvironment env(encoding);
    OCIWchar dst[4];
    const sword status =
        OCIMultiByteInSizeToWideChar(env.get(), dst, 4, asText("ab"), 2, nullptr);
    if (encoding >= 34 && encoding <= 38) {
      EXPECT_EQ(status, OCI_ERROR) << encoding;
      EXPECT_EQ(firstText(env.errors()), "Error in byte conversion");
    } else {
      EXPECT_EQ(status, OCI_SUCCESS) << encoding;
    }
  }
}

class WideChar : public MultiByte {
 protected:
  static Wides wide(std::string_view text) {
    Wides characters(text.begin(), text.end());
    characters.push_back(0);
    return characters;
  }
  int compare(std::string_view a, std::string_view b, int flag = 0) {
    return OCIWideCharStrcmp(utf8.get(), wide(a).data(), wide(b).data(), flag);
  }
  int compareN(std::string_view a, std::size_t lengthA, std::string_view b,
               std::size_t lengthB) {
    return OCIWideCharStrncmp(utf8.get(), wide(a).data(), lengthA, wide(b).data(),
                              lengthB, 0);
  }
};

TEST_F(WideChar, LengthOfNullIsZeroWithoutARecord) {
  EXPECT_EQ(OCIWideCharStrlen(utf8.get(), wide("abc").data()), 3u);
  EXPECT_EQ(OCIWideCharStrlen(utf8.get(), nullptr), 0u);
  EXPECT_EQ(OCIWideCharStrlen(nullptr, wide("abc").data()), 0u);
  EXPECT_EQ(OCIWideCharStrlen(other.errhp(), wide("abc").data()), 0u);
  EXPECT_EQ(codesOf(utf8.errors()), Codes{});
}

TEST_F(WideChar, ComparisonEndsWithTheSecondString) {
  EXPECT_LT(compare("abc", "abd"), 0);
  EXPECT_GT(compare("abd", "abc"), 0);
  EXPECT_EQ(compare("abc", "ab"), 0);
  EXPECT_LT(compare("ab", "abc"), 0);
  EXPECT_EQ(compare("anything", ""), 0);
  EXPECT_GT(compare("abc", "ABC", 1), 0);  // the flag makes no difference
}

TEST_F(WideChar, ComparisonTakesTheSmallerLength) {
  EXPECT_EQ(compareN("abc", 2, "abd", 3), 0);
  EXPECT_EQ(compareN("abc", 3, "abd", 2), 0);
  EXPECT_LT(compareN("abc", 3, "abd", 3), 0);
  EXPECT_EQ(compareN("abc", 0, "xyz", 3), 0);
  EXPECT_EQ(compareN("ab", 9, "ab", 9), 0);
}

TEST_F(WideChar, MissingStringsAreReportedOnTheEnvironment) {
  const Wides text = wide("a");
  EXPECT_EQ(OCIWideCharStrcmp(utf8.get(), nullptr, text.data(), 0), OCI_ERROR);
  expectMissing(utf8.errors(), "2");
  EXPECT_EQ(OCIWideCharStrcmp(utf8.get(), text.data(), nullptr, 0), OCI_ERROR);
  expectMissing(utf8.errors(), "3");
  EXPECT_EQ(OCIWideCharStrncmp(utf8.get(), nullptr, 1, text.data(), 1, 0), OCI_ERROR);
  expectMissing(utf8.errors(), "2");
  EXPECT_EQ(OCIWideCharStrncmp(utf8.get(), text.data(), 1, nullptr, 1, 0), OCI_ERROR);
  expectMissing(utf8.errors(), "3");
}

TEST_F(WideChar, ComparisonNeedsAnEnvironment) {
  const Wides text = wide("a");
  for (void *handle :
       {static_cast<void *>(nullptr), static_cast<void *>(other.errhp())}) {
    EXPECT_EQ(OCIWideCharStrcmp(handle, text.data(), text.data(), 0), OCI_INVALID_HANDLE);
    EXPECT_EQ(OCIWideCharStrncmp(handle, text.data(), 1, text.data(), 1, 0),
              OCI_INVALID_HANDLE);
  }
}

}  // namespace
}  // namespace zev::test
