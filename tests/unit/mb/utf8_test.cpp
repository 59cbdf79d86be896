/// Well-formed UTF-8, over all sequences.
#include <gtest/gtest.h>

#include <array>
#include <string>

#include "zevoci/multibyte.h"

namespace zev::test {
namespace {

using Bytes = std::array<unsigned char, 4>;

/// A row of Unicode's table of well-formed byte sequences: the second byte's range; the
/// bytes behind it are 80 to BF.
struct WellFormed {
  int firstLead, lastLead, secondFirst, secondLast, length;
};
constexpr WellFormed kTable[] = {
    {0x00, 0x7F, 0, 0, 1},       {0xC2, 0xDF, 0x80, 0xBF, 2}, {0xE0, 0xE0, 0xA0, 0xBF, 3},
    {0xE1, 0xEC, 0x80, 0xBF, 3}, {0xED, 0xED, 0x80, 0x9F, 3}, {0xEE, 0xEF, 0x80, 0xBF, 3},
    {0xF0, 0xF0, 0x90, 0xBF, 4}, {0xF1, 0xF3, 0x80, 0xBF, 4}, {0xF4, 0xF4, 0x80, 0x8F, 4},
};

bool isContinuation(unsigned char c) {
  return c >= 0x80 && c <= 0xBF;
}

/// The length of the well-formed sequence at the start of `length` bytes, or -1.
int reference(const Bytes &s, int length) {
  for (const WellFormed &row : kTable) {
    if (s[0] < row.firstLead || s[0] > row.lastLead) continue;
    if (row.length > length) return -1;
    const bool second =
        row.length < 2 || (s[1] >= row.secondFirst && s[1] <= row.secondLast);
    const bool third = row.length < 3 || isContinuation(s[2]);
    const bool fourth = row.length < 4 || isContinuation(s[3]);
    return second && third && fourth ? row.length : -1;
  }
  return -1;
}

void expectAsTable(const Bytes &s) {
  for (int length = 1; length <= 4; ++length) {
    const int expected = reference(s, length);
    ASSERT_EQ(pg_utf8_verifier(s.data(), length), expected);
    ASSERT_EQ(pg_utf8_islegal(s.data(), length), expected == length);
  }
}

TEST(Utf8, EveryPairOfBytesWithEachKindOfByteBehindItFollowsTheTable) {
  constexpr unsigned char kKinds[] = {0x00, 0x7F, 0x80, 0x8F, 0xBF, 0xC0, 0xFF};
  for (int lead = 0; lead < 256; ++lead) {
    for (int second = 0; second < 256; ++second) {
      for (const unsigned char third : kKinds) {
        for (const unsigned char fourth : kKinds) {
          expectAsTable({static_cast<unsigned char>(lead),
                         static_cast<unsigned char>(second), third, fourth});
        }
      }
    }
  }
}

TEST(Utf8, EveryContinuationOfEachLeadByteFollowsTheTable) {
  constexpr unsigned char kLeads[] = {0xC2, 0xE0, 0xE1, 0xED, 0xEE,
                                      0xF0, 0xF1, 0xF4, 0xF5};
  for (const unsigned char lead : kLeads) {
    for (int third = 0; third < 256; ++third) {
      for (int fourth = 0; fourth < 256; ++fourth) {
        expectAsTable({lead, 0x90, static_cast<unsigned char>(third),
                       static_cast<unsigned char>(fourth)});
      }
    }
  }
}

int isLegal(const std::string &text) {
  return pg_utf8_islegal(reinterpret_cast<const unsigned char *>(text.data()),
                         static_cast<int>(text.size()));
}

TEST(Utf8, OverlongAndSurrogateSequencesAreIllegal) {
  EXPECT_FALSE(isLegal("\xC0"));
  EXPECT_FALSE(isLegal("\xC0\x80"));
  EXPECT_FALSE(isLegal("\xC1\xBF"));
  EXPECT_FALSE(isLegal("\xE0\x9F\xBF"));
  EXPECT_FALSE(isLegal("\xED\xA0\x80"));
  EXPECT_FALSE(isLegal("\xF0\x8F\xBF\xBF"));
  EXPECT_FALSE(isLegal("\xF4\x90\x80\x80"));
  EXPECT_FALSE(isLegal("\xF5\x80\x80\x80"));
  EXPECT_TRUE(isLegal("\xED\x9F\xBF"));
  EXPECT_TRUE(isLegal("\xF4\x8F\xBF\xBF"));
}

TEST(Utf8, NoSequenceIsLegalInAnotherLength) {
  EXPECT_FALSE(isLegal(""));
  EXPECT_FALSE(isLegal("ab"));
  EXPECT_FALSE(isLegal("\xC3\xA9z"));
  EXPECT_FALSE(isLegal("\xF0\x9F\x98\x80\x80"));
  EXPECT_EQ(pg_utf8_islegal(reinterpret_cast<const unsigned char *>("a"), -1), 0);
}

}  // namespace
}  // namespace zev::test
