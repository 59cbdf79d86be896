#include "core/error_catalogue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "core_fixture.h"

namespace zev::test {
namespace {

// clang-format off
constexpr CatalogueEntry kTexts[] = {
#include "error_texts.inc"
};
struct StateRow { const char *state; sb4 code; };
constexpr StateRow kStates[] = {
#include "sqlstates.inc"
};
// clang-format on

constexpr const char *kUnknown = "UNKNOWN ERROR CODE";

const CatalogueEntry *listed(sb4 code) {
  const auto *row =
      std::find_if(std::begin(kTexts), std::end(kTexts),
                   [code](const CatalogueEntry &e) { return e.code == code; });
  return row == std::end(kTexts) ? nullptr : row;
}

TEST(ErrorCatalogue, EveryNumberUpTo100000HasItsTextOrNone) {
  ASSERT_EQ(std::size(kTexts), 154u);
  for (sb4 code = -10; code <= 100000; ++code) {
    const CatalogueEntry *row = listed(code);
    ASSERT_STREQ(o2pGetErrorText(code), row ? row->text : kUnknown) << code;
  }
}

TEST(ErrorCatalogue, MappedNumbersWithoutATextReadUnknown) {
  for (const sb4 code : {911, 1659, 1733}) EXPECT_STREQ(o2pGetErrorText(code), kUnknown);
}

TEST(SqlstateMap, EveryRowGivesItsNumber) {
  ASSERT_EQ(std::size(kStates), 56u);
  for (const StateRow &row : kStates) {
    EXPECT_EQ(oracleCodeOf(encodeSqlstate(row.state)), row.code) << row.state;
  }
}

TEST(SqlstateMap, StatesOutsideTheMapGiveNone) {
  for (const char *state : {"00000", "42883", "XX000", "ZZZZZ", "23P01", "22P03"}) {
    EXPECT_EQ(oracleCodeOf(encodeSqlstate(state)), 0) << state;
  }
}

TEST(SqlstateMap, FiveSixBitCharactersFirstOneLowest) {
  EXPECT_EQ(encodeSqlstate("00000"), 0);
  EXPECT_EQ(encodeSqlstate("10000"), 1);
  EXPECT_EQ(encodeSqlstate("00001"), 1 << 24);
  EXPECT_EQ(encodeSqlstate("42P01"), 4 | 2 << 6 | ('P' - '0') << 12 | 1 << 24);
}

TEST(SqlstateMap, RowsOrderAsSignedNumbers) {
  const sb4 low[2] = {-5, 9}, high[2] = {7, 1};
  EXPECT_LT(compare_sqlstate(low, high), 0);
  EXPECT_GT(compare_sqlstate(high, low), 0);
  EXPECT_EQ(compare_sqlstate(low, low), 0);
}

}  // namespace
}  // namespace zev::test
