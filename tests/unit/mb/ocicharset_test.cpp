/// The published conversions between encodings.
#include <cerrno>
#include <optional>
#include <random>

#include "iconv_oracle.h"
#include "mb_fixture.h"
#include "zevoci/encodings.h"

namespace zev::test {
namespace {

const std::string kArgument = "KESTREL-21560: null, invalid, or out of range argument ";
constexpr const char *kIncomplete =
    "An incomplete multibyte sequence has been encountered in the input";
constexpr const char *kInvalid =
    "An invalid multibyte sequence has been encountered in the input";

class Conversion : public testing::Test {
 protected:
  /// Converts with a target of `room` bytes; what the target holds then. No target for no
  /// room.
  std::string convert(ub2 to, ub2 from, std::string_view source, std::size_t room) {
    std::string target(room, '#');
    size = 4711;
    status =
        OCINlsCharSetConvert(env.get(), env.errhp(), to, room ? target.data() : nullptr,
                             room, from, source.data(), source.size(), &size);
    return target;
  }
  Codes codes() const { return codesOf(env.errhp()); }
  std::string text() const { return firstText(env.errhp()); }

  Environment env;
  sword status = 0;
  std::size_t size = 0;
};

TEST_F(Conversion, GoesByEncodingNumbers) {
  EXPECT_EQ(convert(6, 8, "caf\xe9", 8), "caf\xc3\xa9###");
  EXPECT_EQ(status, OCI_SUCCESS);
  EXPECT_EQ(size, 5u);
  EXPECT_EQ(convert(8, 6, "caf\xc3\xa9", 4), "caf\xe9");
  EXPECT_EQ(convert(39, 6, "ab", 4), std::string("a\0b\0", 4));
}

TEST_F(Conversion, AShortTargetIsFilledAndTheFullLengthTold) {
  EXPECT_EQ(convert(6, 8, "\xe9\xe9\xe9", 5), "\xc3\xa9\xc3\xa9\xc3");
  EXPECT_EQ(status, OCI_SUCCESS);
  EXPECT_EQ(size, 6u);
}

TEST_F(Conversion, WithoutATargetTheLengthIsTold) {
  convert(6, 8, "\xe9\xe9\xe9", 0);
  EXPECT_EQ(status, OCI_SUCCESS);
  EXPECT_EQ(size, 6u);
}

TEST_F(Conversion, TheLengthMayBeLeftOut) {
  char target[2];
  EXPECT_EQ(
      OCINlsCharSetConvert(env.get(), env.errhp(), 6, target, 2, 8, "\xe9", 1, nullptr),
      OCI_SUCCESS);
  EXPECT_EQ(std::string(target, 2), "\xc3\xa9");
}

TEST_F(Conversion, OfNothingIsNothing) {
  EXPECT_EQ(convert(6, 8, "", 3), "###");
  EXPECT_EQ(status, OCI_SUCCESS);
  EXPECT_EQ(size, 0u);
}

TEST_F(Conversion, FailuresAreRecordedInTheirWordsAndTouchNothing) {
  EXPECT_EQ(convert(8, 6, "caf\xc3", 4), "####");
  EXPECT_EQ(status, OCI_ERROR);
  EXPECT_EQ(text(), kIncomplete);
  EXPECT_EQ(convert(8, 6, "caf\xff!", 4), "####");
  EXPECT_EQ(status, OCI_ERROR);
  EXPECT_EQ(text(), kInvalid);
  EXPECT_EQ(convert(8, 6, "\xe2\x82\xac", 4), "####");  // no euro sign in Latin 1
  EXPECT_EQ(text(), kInvalid);
  EXPECT_EQ(codes(), Codes{0});
  EXPECT_EQ(size, 4711u);
}

TEST_F(Conversion, AFailureLeavesTheEnvironmentUsable) {
  convert(8, 6, "\xff", 4);
  EXPECT_EQ(env.get()->utf16, 0);
  OraText name[4];
  EXPECT_EQ(OCINlsCharSetIdToName(env.get(), name, 4, 6), OCI_SUCCESS);
  auto *stmt = env.alloc<OCIStmt>(OCI_HTYPE_STMT);
  EXPECT_EQ(OCIStmtPrepare(stmt, env.errhp(), asText("SELECT 1"), 8, OCI_NTV_SYNTAX,
                           OCI_DEFAULT),
            OCI_SUCCESS);
}

TEST_F(Conversion, EncodingsThatTheSystemDoesNotKnowFailWithoutARecord) {
  for (const ub2 unknown : {0, 7, 41, 873, 2000, 65535}) {
    EXPECT_EQ(convert(unknown, 6, "a", 4), "####") << unknown;
    EXPECT_EQ(status, OCI_ERROR) << unknown;
    convert(6, unknown, "a", 4);
    EXPECT_EQ(status, OCI_ERROR) << unknown;
    EXPECT_EQ(codes(), Codes{});
  }
}

TEST_F(Conversion, NeedsAnEnvironmentAnErrorHandleAndASource) {
  char target[4];
  EXPECT_EQ(OCINlsCharSetConvert(nullptr, env.errhp(), 6, target, 4, 8, "a", 1, nullptr),
            OCI_INVALID_HANDLE);
  EXPECT_EQ(
      OCINlsCharSetConvert(env.errhp(), env.errhp(), 6, target, 4, 8, "a", 1, nullptr),
      OCI_INVALID_HANDLE);
  EXPECT_EQ(OCINlsCharSetConvert(env.get(), nullptr, 6, target, 4, 8, "a", 1, nullptr),
            OCI_INVALID_HANDLE);
  EXPECT_EQ(OCINlsCharSetConvert(env.get(), reinterpret_cast<OCIError *>(env.get()), 6,
                                 target, 4, 8, "a", 1, nullptr),
            OCI_INVALID_HANDLE);
  EXPECT_EQ(codes(), Codes{});
  EXPECT_EQ(
      OCINlsCharSetConvert(env.get(), env.errhp(), 6, target, 4, 8, nullptr, 1, nullptr),
      OCI_ERROR);
  EXPECT_EQ(codes(), Codes{21560});
  EXPECT_EQ(text(), kArgument + "7");
}

TEST_F(Conversion, EveryPairAgreesWithIconv) {
  std::mt19937 random(20261121);
  int open = 0, converted = 0, refused = 0;
  for (ub2 from = 0; from <= 40; ++from) {
    for (ub2 to = 0; to <= 40; ++to) {
      const char *toName = pg_encoding_to_char(to), *fromName = pg_encoding_to_char(from);
      const iconv_t probe = iconv_open(toName, fromName);
      if (probe == reinterpret_cast<iconv_t>(-1)) {
        convert(to, from, "a", 4);
        EXPECT_EQ(status, OCI_ERROR) << toName << " from " << fromName;
        continue;
      }
      iconv_close(probe);
      ++open;
      const Iconv oracle(toName, fromName);
      for (int i = 0; i < 12; ++i) {
        std::string source(random() % 9, '\0');
        for (char &c : source) {
          c = static_cast<char>(random() % 3 ? random() % 0x80 : random());
        }
        const std::optional<std::string> expected = oracle(source);
        const std::string target = convert(to, from, source, 64);
        ASSERT_EQ(status == OCI_SUCCESS, expected.has_value())
            << toName << " from " << fromName;
        if (!expected) {
          ++refused;
          continue;
        }
        ++converted;
        ASSERT_EQ(size, expected->size()) << toName << " from " << fromName;
        ASSERT_EQ(target, *expected + std::string(64 - size, '#'));
      }
    }
  }
  EXPECT_GT(open, 800);
  EXPECT_GT(converted, 4000);
  EXPECT_GT(refused, 1000);
}

class ConversionOfAll : public Conversion,
                        public testing::WithParamInterface<KnownEncoding> {};

TEST_P(ConversionOfAll, EveryCharacterGoesToUtf8AndBack) {
  const auto [encoding, name] = GetParam();
  const char *own = pg_encoding_to_char(encoding);
  const iconv_t probe = iconv_open("UTF-8", own);
  const bool known = probe != reinterpret_cast<iconv_t>(-1);
  if (known) iconv_close(probe);
  std::string text, utf8;
  const Iconv toUtf8("UTF-8", name);
  for (const Encoded &character : charactersOf(name)) {
    const auto alone = toUtf8(character.bytes);
    ASSERT_TRUE(alone);
    // A letter behind each character, as some wait for a mark to combine with.
    text += character.bytes + "x";
    utf8 += *alone + "x";
  }
  const auto id = static_cast<ub2>(encoding);
  const std::string converted = convert(6, id, text, utf8.size());
  ASSERT_EQ(status, known ? OCI_SUCCESS : OCI_ERROR);
  if (!known) return;
  EXPECT_EQ(size, utf8.size());
  EXPECT_TRUE(converted == utf8);
  const std::string back = convert(id, 6, utf8, text.size());
  ASSERT_EQ(status, OCI_SUCCESS);
  EXPECT_EQ(size, text.size());
  EXPECT_TRUE(back == text);
}

/// The names of this library that the system knows too mean the same encoding there.
std::vector<KnownEncoding> sameNames() {
  std::vector<KnownEncoding> all(std::begin(kOneByteEncodings),
                                 std::end(kOneByteEncodings));
  for (const KnownEncoding &one : kMultibyteEncodings) {
    const std::string name = one.name;
    if (name.substr(0, 2) != "CP") all.push_back(one);
  }
  return all;
}

INSTANTIATE_TEST_SUITE_P(Known, ConversionOfAll, testing::ValuesIn(sameNames()), nameOf);

/// Conversion between an environment's encoding and UTF-8.
class UnicodeConversion : public testing::Test {
 protected:
  sword toUnicode(const EncodedEnvironment &env, std::string_view source,
                  std::size_t room) {
    target.assign(room, '#');
    return OCICharSetToUnicode(env.get(),
                               room ? reinterpret_cast<ub2 *>(target.data()) : nullptr,
                               room, asText(source), source.size(), &size);
  }
  sword fromUnicode(const EncodedEnvironment &env, const std::string &source,
                    std::size_t room) {
    target.assign(room, '#');
    return OCIUnicodeToCharSet(
        env.get(), room ? reinterpret_cast<OraText *>(target.data()) : nullptr, room,
        reinterpret_cast<const ub2 *>(source.data()), source.size(), &size);
  }

  std::string target;
  std::size_t size = 0;
};

TEST_F(UnicodeConversion, GoesThereAndBackInBytes) {
  EncodedEnvironment latin1(8);
  EXPECT_EQ(toUnicode(latin1, "caf\xe9", 6), OCI_SUCCESS);
  EXPECT_EQ(target, "caf\xc3\xa9#");
  EXPECT_EQ(size, 5u);
  EXPECT_EQ(fromUnicode(latin1, "caf\xc3\xa9", 3), OCI_SUCCESS);
  EXPECT_EQ(target, "caf");
  EXPECT_EQ(size, 4u);
}

TEST_F(UnicodeConversion, WithoutATargetTheLengthIsTold) {
  EncodedEnvironment latin1(8);
  EXPECT_EQ(toUnicode(latin1, "\xe9\xe9", 0), OCI_SUCCESS);
  EXPECT_EQ(size, 4u);
  EXPECT_EQ(fromUnicode(latin1, "\xc3\xa9", 0), OCI_SUCCESS);
  EXPECT_EQ(size, 1u);
}

TEST_F(UnicodeConversion, AUtf16EnvironmentConvertsItsUtf16) {
  EncodedEnvironment wide(39);
  EXPECT_EQ(toUnicode(wide, std::string("\xac\x20", 2), 4), OCI_SUCCESS);
  EXPECT_EQ(target, "\xe2\x82\xac#");
  EXPECT_EQ(fromUnicode(wide, "a\xe2\x82\xac", 4), OCI_SUCCESS);
  EXPECT_EQ(target, std::string("a\0\xac\x20", 4));
}

TEST_F(UnicodeConversion, FailuresAreRecordedOnTheEnvironment) {
  EncodedEnvironment latin1(8);
  EXPECT_EQ(fromUnicode(latin1, "\xff", 4), OCI_ERROR);
  EXPECT_EQ(firstText(latin1.errors()), kInvalid);
  EXPECT_EQ(fromUnicode(latin1, "\xc3", 4), OCI_ERROR);
  EXPECT_EQ(firstText(latin1.errors()), kIncomplete);
  EXPECT_EQ(codesOf(latin1.errors()).size(), 1u);
  EXPECT_EQ(OCICharSetToUnicode(latin1.get(), nullptr, 0, nullptr, 4, &size), OCI_ERROR);
  EXPECT_EQ(firstText(latin1.errors()), kArgument + "4");
  EXPECT_EQ(OCIUnicodeToCharSet(latin1.get(), nullptr, 0, nullptr, 4, &size), OCI_ERROR);
  EXPECT_EQ(firstText(latin1.errors()), kArgument + "4");
  EXPECT_EQ(codesOf(latin1.errors()), Codes{21560});
}

TEST_F(UnicodeConversion, NeedsAnEnvironment) {
  Environment env;
  for (void *handle : {static_cast<void *>(nullptr), static_cast<void *>(env.errhp())}) {
    EXPECT_EQ(OCICharSetToUnicode(handle, nullptr, 0, asText("a"), 1, &size),
              OCI_INVALID_HANDLE);
    EXPECT_EQ(OCIUnicodeToCharSet(handle, nullptr, 0, nullptr, 1, &size),
              OCI_INVALID_HANDLE);
  }
}

TEST_F(UnicodeConversion, AnEncodingThatTheSystemDoesNotKnowFailsWithoutARecord) {
  EncodedEnvironment ascii(0);
  EXPECT_EQ(toUnicode(ascii, "a", 4), OCI_ERROR);
  EXPECT_EQ(fromUnicode(ascii, "a", 4), OCI_ERROR);
  EXPECT_EQ(codesOf(ascii.errors()), Codes{});
}

}  // namespace
}  // namespace zev::test
