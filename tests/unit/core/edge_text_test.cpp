/// Text on its way into the library and out of it.
#include "core/edge_text.h"

#include "tests/unit/core/core_fixture.h"

namespace zev::test {
namespace {

using namespace std::string_literals;

std::string utf16Of(std::u16string_view units) {
  return {reinterpret_cast<const char *>(units.data()), 2 * units.size()};
}

TEST(TextLength, EndsAtAZeroOfTheEncodingsWidth) {
  const Environment narrow, wide(OCI_UTF16);
  // The middle unit and the halves of its neighbours are full of zero bytes.
  const char16_t units[] = u"a\x0100\x0100z";
  EXPECT_EQ(textLength(wide.get(), units), 8u);
  EXPECT_EQ(textLength(narrow.get(), units), 1u);
  EXPECT_EQ(textLength(nullptr, "abc"), 3u);
  for (const Environment *env : {&narrow, &wide}) {
    EXPECT_EQ(textLength(env->get(), nullptr), 0u);
    EXPECT_EQ(textLength(env->get(), u""), 0u);
  }
}

TEST(TextLength, GoesNoFurtherThanItsLimit) {
  const Environment narrow, wide(OCI_UTF16);
  const std::vector<char> exact{'a', 'b', 'c'};
  EXPECT_EQ(textLength(narrow.get(), exact.data(), 3), 3u);
  EXPECT_EQ(textLength(wide.get(), exact.data(), 3), 3u) << "half a unit stays";
  EXPECT_EQ(textLength(wide.get(), exact.data(), 2), 2u);
  EXPECT_EQ(textLength(wide.get(), exact.data(), 0), 0u);
  EXPECT_EQ(textLength(wide.get(), u"ab", 6), 4u);
}

TEST(EdgeText, PassesAsItStandsOrIsConverted) {
  const Environment narrow, wide(OCI_UTF16);
  const char text[] = "abc";
  const EdgeText same(narrow.get(), text, 2);
  EXPECT_EQ(same.data(), text);
  EXPECT_EQ(same.view(), "ab");
  EXPECT_EQ(EdgeText(wide.get(), u"aЖ漢\xD83D\xDE00").view(), "aЖ漢😀");
  EXPECT_EQ(EdgeText(wide.get(), u"").view(), "");
  EXPECT_STREQ(EdgeText(wide.get(), u"").cString(), "");
  EXPECT_STREQ(EdgeText(wide.get(), u"Ж").cString(), "Ж");
}

TEST(EdgeText, FailuresHaveTheirRecords) {
  Environment wide(OCI_UTF16);
  const struct {
    std::string bytes;
    const char *record;
  } rows[] = {
      {"a", "An incomplete multibyte sequence has been encountered in the input"},
      {utf16Of(u"a\xD83D"),
       "An incomplete multibyte sequence has been encountered in the input"},
      {utf16Of(u"a\xDE00"),
       "An invalid multibyte sequence has been encountered in the input"},
      {utf16Of(u"\xD83Dz"),
       "An invalid multibyte sequence has been encountered in the input"},
  };
  for (const auto &[bytes, record] : rows) {
    const EdgeText text(wide.get(), bytes.data(), bytes.size());
    EXPECT_FALSE(text);
    EXPECT_EQ(text.view(), "");
    ClearErrorHandle(wide.errhp());
    EXPECT_EQ(text.fail(wide.errhp()), OCI_ERROR);
    EXPECT_EQ(firstText(wide.errhp()), record);
  }
  const EdgeResult result(wide.get(), "\xff");
  EXPECT_FALSE(result) << "nor can bytes that are not UTF-8 leave";
}

/// What a copy leaves in a buffer of `room` bytes, '~' where it writes nothing.
template <class Copy>
std::string copied(std::size_t room, const Copy &copy) {
  std::vector<char> exact(room, '~');
  copy(exact.data());
  return {exact.begin(), exact.end()};
}

TEST(EdgeResult, IsCutBetweenCharactersAndTerminated) {
  const Environment narrow, wide(OCI_UTF16);
  const EdgeResult plain(narrow.get(), "abc");
  const EdgeResult pair(wide.get(), "a😀z");
  const struct {
    const EdgeResult &text;
    std::size_t room, length;
    std::string written;
  } rows[] = {
      {plain, 0, 0, ""},
      {plain, 1, 0, "\0"s},
      {plain, 3, 2, "ab\0"s},
      {plain, 4, 3, "abc\0"s},
      {plain, 6, 3, "abc\0~~"s},
      {pair, 1, 0, "~"},
      {pair, 2, 0, "\0\0"s},
      {pair, 4, 2, utf16Of({u"a\0", 2})},
      {pair, 6, 2, utf16Of({u"a\0", 2}) + "~~"},
      {pair, 8, 6, utf16Of({u"a\xD83D\xDE00\0", 4})},
      {pair, 9, 6, utf16Of({u"a\xD83D\xDE00\0", 4}) + "~"},
      {pair, 10, 8, utf16Of({u"a\xD83D\xDE00z\0", 5})},
      {pair, 12, 8, utf16Of({u"a\xD83D\xDE00z\0", 5}) + "~~"},
  };
  for (const auto &row : rows) {
    std::size_t length = 99;
    EXPECT_EQ(
        copied(row.room, [&](char *out) { length = row.text.copyCut(out, row.room); }),
        row.written)
        << row.room;
    EXPECT_EQ(length, row.length) << row.room;
  }
}

TEST(EdgeResult, FillsABufferWithAsMuchAsItHolds) {
  const Environment wide(OCI_UTF16);
  const EdgeResult text(wide.get(), "ab");
  const auto into = [&](std::size_t room) {
    return copied(room, [&](char *out) { text.copyInto(out, room); });
  };
  EXPECT_EQ(into(0), "");
  EXPECT_EQ(into(3), "a\0b"s);
  EXPECT_EQ(into(4), utf16("ab"));
  EXPECT_EQ(into(5), utf16("ab") + "\0"s);
  EXPECT_EQ(into(8), utf16("ab") + "\0\0~~"s);
}

TEST(EdgeResult, CopiesOfItsOwnEndInATerminator) {
  const Environment narrow, wide(OCI_UTF16);
  for (const Environment *env : {&narrow, &wide}) {
    for (const std::string text : {"", "abc"}) {
      const EdgeResult result(env->get(), text);
      const std::unique_ptr<char, ClosedBy<std::free>> copy(result.copy());
      EXPECT_EQ(textLength(env->get(), copy.get()), result.size());
    }
  }
}

}  // namespace
}  // namespace zev::test
