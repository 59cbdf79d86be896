#include "pairs.h"

#include <algorithm>
#include <iterator>
#include <ostream>

namespace zevtest::model {
namespace {

struct Name {
  ub4 number;
  const char *name;
};

const Name kRows[] = {
    {17, "BYTEAOID"},       {18, "CHAROID"},          {20, "INT8OID"},
    {21, "INT2OID"},        {23, "INT4OID"},          {25, "TEXTOID"},
    {26, "OIDOID"},         {700, "FLOAT4OID"},       {701, "FLOAT8OID"},
    {1042, "BPCHAROID"},    {1043, "VARCHAROID"},     {1082, "DATEOID"},
    {1114, "TIMESTAMPOID"}, {1184, "TIMESTAMPTZOID"}, {1186, "INTERVALOID"},
    {1700, "NUMERICOID"},   {1790, "REFCURSOROID"},   {12487, "RAWOID"},
};

const Name kTargets[] = {
    {1, "CHR"},
    {2, "NUM"},
    {3, "INT"},
    {4, "FLT"},
    {5, "STR"},
    {6, "VNU"},
    {8, "LNG"},
    {9, "VCS"},
    {12, "DAT"},
    {15, "VBI"},
    {21, "BFLOAT"},
    {22, "BDOUBLE"},
    {23, "BIN"},
    {24, "LBI"},
    {68, "UIN"},
    {94, "LVC"},
    {95, "LVB"},
    {96, "AFC"},
    {97, "AVC"},
    {113, "BLOB"},
    {116, "RSET"},
    {155, "VST"},
    {156, "ODT"},
    {184, "DATE"},
    {187, "TIMESTAMP"},
    {188, "TIMESTAMP_TZ"},
    {189, "INTERVAL_YM"},
    {190, "INTERVAL_DS"},
    {232, "TIMESTAMP_LTZ"},
};

template <std::size_t N>
std::string lookUp(const Name (&names)[N], ub4 number) {
  for (const Name &n : names) {
    if (n.number == number) return n.name;
  }
  return std::to_string(number);
}

}  // namespace

std::string nameOf(const Pair &pair) {
  return lookUp(kRows, pair.oid) + "_to_" + lookUp(kTargets, pair.dty);
}

void PrintTo(const Pair &pair, std::ostream *out) {
  *out << nameOf(pair);
}

bool isDatePair(const Pair &pair) {
  const Oid rows[] = {1082, 1114, 1184, 1186};
  const ub2 targets[] = {12, 156, 184, 187, 188, 189, 190, 232};
  return std::count(std::begin(rows), std::end(rows), pair.oid) != 0 ||
         std::count(std::begin(targets), std::end(targets), pair.dty) != 0;
}

std::vector<Pair> modelledPairs() {
  std::vector<Pair> pairs;
  const auto addRow = [&](Oid oid, std::initializer_list<ub2> targets) {
    for (const ub2 dty : targets) pairs.push_back({oid, dty});
  };
  const std::initializer_list<ub2> binary = {1, 5, 8, 9, 15, 23, 24, 94, 95, 96, 97, 155};
  const std::initializer_list<ub2> numbers = {1,  2,  3,  4,  5,  6,  8,  9,
                                              21, 22, 68, 94, 96, 97, 155};
  const std::initializer_list<ub2> characters = {1,  2,  3,  4,  5,  6,  8,  9,  15, 21,
                                                 22, 23, 24, 68, 94, 95, 96, 97, 155};
  addRow(17, binary);
  for (const Oid oid : {18, 20, 21, 23}) addRow(oid, numbers);
  addRow(25, characters);
  for (const Oid oid : {700, 701}) addRow(oid, numbers);
  for (const Oid oid : {1042, 1043}) addRow(oid, characters);
  addRow(1700, numbers);
  addRow(1790, {116});
  addRow(12487, binary);
  return pairs;
}

}  // namespace zevtest::model
