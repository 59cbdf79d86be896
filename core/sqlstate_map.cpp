#include <algorithm>
#include <array>
#include <string_view>

#include "zevoci/errors.h"

namespace zev {
namespace {

/// A row of the map: 0 stands for a SQLSTATE that is known and has no Oracle number.
struct SqlstateCode {
  sb4 encoded;
  sb4 code;
};

constexpr sb4 encode(std::string_view sqlstate) {
  sb4 value = 0;
  for (int i = 4; i >= 0; --i) value = value << 6 | ((sqlstate[i] - '0') & 0x3f);
  return value;
}

// clang-format off
constexpr auto kDeclared = std::to_array<SqlstateCode>({
    {encode("42601"), 16945}, {encode("42P01"), 942}, {encode("02000"), 1403}, {encode("08000"), 12545},
    {encode("08003"), 12545}, {encode("08006"), 12545}, {encode("08001"), 12545}, {encode("08004"), 12545},
    {encode("25000"), 1453}, {encode("08007"), 1453}, {encode("0A000"), 3001}, {encode("22012"), 1476},
    {encode("2200B"), 1424}, {encode("22019"), 911}, {encode("2200D"), 1424}, {encode("22025"), 1424},
    {encode("22P06"), 1424}, {encode("2200C"), 1424}, {encode("22004"), 1400}, {encode("23000"), 1},
    {encode("23505"), 1}, {encode("40P01"), 60}, {encode("42701"), 1430}, {encode("53000"), 1659},
    {encode("53100"), 1659}, {encode("53200"), 82100}, {encode("42P07"), 955}, {encode("21000"), 1427},
    {encode("22003"), 1426}, {encode("22P02"), 1858}, {encode("28000"), 1017}, {encode("28P01"), 1017},
    {encode("2200F"), 1425}, {encode("42704"), 1418}, {encode("2BP01"), 2429}, {encode("22027"), 30001},
    {encode("22001"), 1401}, {encode("22002"), 1405}, {encode("22008"), 1800}, {encode("44000"), 1402},
    {encode("01007"), 0}, {encode("01006"), 0}, {encode("02001"), 0}, {encode("03000"), 0},
    {encode("08P01"), 0}, {encode("23001"), 0}, {encode("23502"), 0}, {encode("23503"), 0},
    {encode("23514"), 0}, {encode("24000"), 1001}, {encode("26000"), 0}, {encode("42830"), 0},
    {encode("55006"), 0}, {encode("55P03"), 54}, {encode("72000"), 1555}, {encode("P0003"), 1422},
});
// clang-format on

constexpr bool byEncoded(const SqlstateCode &a, const SqlstateCode &b) {
  return a.encoded < b.encoded;
}

constexpr auto sqlstate_map = [] {
  auto rows = kDeclared;
  std::sort(rows.begin(), rows.end(), byEncoded);
  return rows;
}();

static_assert(sqlstate_map.size() == 56);

}  // namespace

sb4 encodeSqlstate(const char *sqlstate) {
  return encode(sqlstate);
}

sb4 oracleCodeOf(sb4 encodedSqlstate) {
  const auto *row = std::lower_bound(sqlstate_map.begin(), sqlstate_map.end(),
                                     SqlstateCode{encodedSqlstate, 0}, byEncoded);
  return row != sqlstate_map.end() && row->encoded == encodedSqlstate ? row->code : 0;
}

}  // namespace zev

extern "C" int compare_sqlstate(const void *a, const void *b) {
  const sb4 left = static_cast<const zev::SqlstateCode *>(a)->encoded;
  const sb4 right = static_cast<const zev::SqlstateCode *>(b)->encoded;
  return (left > right) - (left < right);
}
