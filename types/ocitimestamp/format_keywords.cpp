#include "types/ocitimestamp/format_keywords.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "types/bytes.h"

namespace {
using namespace zev::format;

constexpr FormatAction kDate = dch_date, kTime = dch_time, kGlobal = dch_global;
constexpr boolean kDigits = 1, kWords = 0;
constexpr sb4 kPrefix = 1, kPostfix = 2;
constexpr char kFirstIndexed = ' ';

}  // namespace

extern "C" {

// "RRRR" and "sssss" are one character shorter than their names: the last letter of a
// model that spells them out is a character of its own. "j" is the clock's, which does
// not know it.
// clang-format off
constexpr KeyWord DCH_keywords[] = {
    {"A.D.",   4, kDate,   kDottedAD,       kWords},
    {"A.M.",   4, kTime,   kDottedAM,       kWords},
    {"AD",     2, kDate,   kAD,             kWords},
    {"AM",     2, kTime,   kAM,             kWords},
    {"B.C.",   4, kDate,   kDottedBC,       kWords},
    {"BC",     2, kDate,   kBC,             kWords},
    {"CC",     2, kDate,   kCC,             kDigits},
    {"DAY",    3, kDate,   kDAY,            kWords},
    {"DDD",    3, kDate,   kDDD,            kDigits},
    {"DD",     2, kDate,   kDD,             kDigits},
    {"DL",     2, kDate,   kDL,             kWords},
    {"DS",     2, kDate,   kDS,             kWords},
    {"DY",     2, kDate,   kDY,             kWords},
    {"Day",    3, kDate,   kDay,            kWords},
    {"Dy",     2, kDate,   kDy,             kWords},
    {"D",      1, kDate,   kD,              kDigits},
    {"EE",     2, kDate,   kEE,             kDigits},
    {"E",      1, kDate,   kE,              kDigits},
    {"FF",     2, kDate,   kFF,             kDigits},
    {"FX",     2, kGlobal, kFX,             kWords},
    {"HH24",   4, kTime,   kHH24,           kDigits},
    {"HH12",   4, kTime,   kHH12,           kDigits},
    {"HH",     2, kTime,   kHH,             kDigits},
    {"IW",     2, kDate,   kIW,             kDigits},
    {"IYYY",   4, kDate,   kIYYY,           kDigits},
    {"IYY",    3, kDate,   kIYY,            kDigits},
    {"IY",     2, kDate,   kIY,             kDigits},
    {"I",      1, kDate,   kI,              kDigits},
    {"J",      1, kDate,   kJ,              kDigits},
    {"MI",     2, kTime,   kMI,             kDigits},
    {"MM",     2, kDate,   kMM,             kDigits},
    {"MONTH",  5, kDate,   kMONTH,          kWords},
    {"MON",    3, kDate,   kMON,            kWords},
    {"MS",     2, kTime,   kMS,             kDigits},
    {"Month",  5, kDate,   kMonth,          kWords},
    {"Mon",    3, kDate,   kMon,            kWords},
    {"P.M.",   4, kTime,   kDottedPM,       kWords},
    {"PM",     2, kTime,   kPM,             kWords},
    {"Q",      1, kDate,   kQ,              kDigits},
    {"RM",     2, kDate,   kRM,             kWords},
    {"RRRR",   3, kDate,   kRRRR,           kDigits},
    {"RR",     2, kDate,   kRR,             kDigits},
    {"SCC",    3, kDate,   kSCC,            kDigits},
    {"SSSSS",  5, kTime,   kSSSSS,          kDigits},
    {"SS",     2, kTime,   kSS,             kDigits},
    {"SYEAR",  5, kDate,   kSYEAR,          kWords},
    {"SYYYY",  5, kDate,   kSYYYY,          kDigits},
    {"TS",     2, kDate,   kTS,             kWords},
    {"TZD",    3, kTime,   kTZD,            kWords},
    {"TZH",    3, kTime,   kTZH,            kDigits},
    {"TZM",    3, kTime,   kTZM,            kDigits},
    {"TZR",    3, kTime,   kTZR,            kWords},
    {"US",     2, kTime,   kUS,             kDigits},
    {"WW",     2, kDate,   kWW,             kDigits},
    {"W",      1, kDate,   kW,              kDigits},
    {"X",      1, kTime,   kX,              kWords},
    {"Y,YYY",  5, kDate,   kYCommaYYY,      kDigits},
    {"YEAR",   4, kDate,   kYEAR,           kWords},
    {"YYYY",   4, kDate,   kYYYY,           kDigits},
    {"YYY",    3, kDate,   kYYY,            kDigits},
    {"YY",     2, kDate,   kYY,             kDigits},
    {"Y",      1, kDate,   kY,              kDigits},
    {"a.d.",   4, kDate,   kLowerDottedAD,  kWords},
    {"a.m.",   4, kTime,   kLowerDottedAM,  kWords},
    {"ad",     2, kDate,   kLowerAD,        kWords},
    {"am",     2, kTime,   kLowerAM,        kWords},
    {"b.c.",   4, kDate,   kLowerDottedBC,  kWords},
    {"bc",     2, kDate,   kLowerBC,        kWords},
    {"cc",     2, kDate,   kCC,             kDigits},
    {"day",    3, kDate,   kLowerDay,       kWords},
    {"ddd",    3, kDate,   kDDD,            kDigits},
    {"dd",     2, kDate,   kDD,             kDigits},
    {"dy",     2, kDate,   kLowerDy,        kWords},
    {"d",      1, kDate,   kD,              kDigits},
    {"fx",     2, kGlobal, kFX,             kWords},
    {"hh24",   4, kTime,   kHH24,           kDigits},
    {"hh12",   4, kTime,   kHH12,           kDigits},
    {"hh",     2, kTime,   kHH,             kDigits},
    {"iw",     2, kDate,   kIW,             kDigits},
    {"iyyy",   4, kDate,   kIYYY,           kDigits},
    {"iyy",    3, kDate,   kIYY,            kDigits},
    {"iy",     2, kDate,   kIY,             kDigits},
    {"i",      1, kDate,   kI,              kDigits},
    {"j",      1, kTime,   kJ,              kDigits},
    {"mi",     2, kTime,   kMI,             kDigits},
    {"mm",     2, kDate,   kMM,             kDigits},
    {"month",  5, kDate,   kLowerMonth,     kWords},
    {"mon",    3, kDate,   kLowerMon,       kWords},
    {"ms",     2, kTime,   kMS,             kDigits},
    {"p.m.",   4, kTime,   kLowerDottedPM,  kWords},
    {"pm",     2, kTime,   kLowerPM,        kWords},
    {"q",      1, kDate,   kQ,              kDigits},
    {"rm",     2, kDate,   kLowerRM,        kWords},
    {"sssss",  4, kTime,   kSSSSS,          kDigits},
    {"ss",     2, kTime,   kSS,             kDigits},
    {"us",     2, kTime,   kUS,             kDigits},
    {"ww",     2, kDate,   kWW,             kDigits},
    {"w",      1, kDate,   kW,              kDigits},
    {"y,yyy",  5, kDate,   kYCommaYYY,      kDigits},
    {"yyyy",   4, kDate,   kYYYY,           kDigits},
    {"yyy",    3, kDate,   kYYY,            kDigits},
    {"yy",     2, kDate,   kYY,             kDigits},
    {"y",      1, kDate,   kY,              kDigits},
    {nullptr,  0, nullptr, -1,              kWords},
};

constexpr sb4 DCH_index[] = {
     -1,  -1,  -1,  -1,  -1,  -1,  -1,  -1,  -1,  -1,  -1,  -1,  -1,  -1,  -1,  -1,  // ' ' to '/'
     -1,  -1,  -1,  -1,  -1,  -1,  -1,  -1,  -1,  -1,  -1,  -1,  -1,  -1,  -1,  -1,  // '0' to '?'
     -1,   0,   4,   6,   7,  16,  18,  -1,  20,  23,  28,  -1,  -1,  29,  -1,  -1,  // '@' to 'O'
     36,  38,  39,  42,  47,  52,  -1,  53,  55,  56,  -1,  -1,  -1,  -1,  -1,  -1,  // 'P' to '_'
     -1,  62,  66,  68,  69,  -1,  74,  -1,  75,  78,  83,  -1,  -1,  84,  -1,  -1,  // '`' to 'o'
     89,  91,  92,  93,  -1,  95,  -1,  96,  -1,  98,  -1,  -1,  -1,  -1,  // 'p' to '}'
};

constexpr KeySuffix DCH_suff[] = {
    {"FM", 2, kFillMode,     kPrefix},
    {"fm", 2, kFillMode,     kPrefix},
    {"TM", 2, kTranslated,   kPrefix},
    {"tm", 2, kTranslated,   kPrefix},
    {"TH", 2, kUpperOrdinal, kPostfix},
    {"th", 2, kLowerOrdinal, kPostfix},
    {"SP", 2, kSpelled,      kPostfix},
    {nullptr, 0, 0, 0},
};
// clang-format on
}

namespace {

constexpr sb4 kRows = std::size(DCH_keywords) - 1;
static_assert(kRows == kElementLimit);

constexpr std::string_view matched(const KeyWord &row) {
  return {row.name, static_cast<std::size_t>(row.len)};
}

constexpr bool charactersAscend() {
  for (sb4 i = 1; i < kRows; ++i) {
    if (DCH_keywords[i].name[0] < DCH_keywords[i - 1].name[0]) return false;
  }
  return true;
}
static_assert(charactersAscend(), "the index needs all names of a character together");

constexpr bool longestMatchIsFirst() {
  for (sb4 i = 0; i < kRows; ++i) {
    for (sb4 later = i + 1; later < kRows; ++later) {
      if (matched(DCH_keywords[later]).starts_with(matched(DCH_keywords[i])))
        return false;
    }
  }
  return true;
}
static_assert(longestMatchIsFirst(), "a name hides longer ones behind it");

constexpr bool identitiesAreRows() {
  for (sb4 i = 0; i < kRows; ++i) {
    const KeyWord &row = DCH_keywords[i];
    const bool shared = row.id < i && row.id <= kY;
    if (row.id != i && !shared) return false;
  }
  return true;
}
static_assert(identitiesAreRows());

constexpr auto firstRows() {
  std::array<sb4, std::size(DCH_index)> index{};
  index.fill(-1);
  for (sb4 i = kRows - 1; i >= 0; --i) index[DCH_keywords[i].name[0] - kFirstIndexed] = i;
  return index;
}
constexpr auto kFirstRows = firstRows();
static_assert(std::equal(std::begin(DCH_index), std::end(DCH_index), kFirstRows.begin()));

/// The characters of a name as one number, and the bits that they take.
struct PackedName {
  ub8 bits;
  ub8 mask;
};
constexpr sb4 kLongestMatch = 5;

constexpr ub8 packed(const char *text, sb4 length) {
  ub8 bits = 0;
  for (sb4 i = 0; i < length && text[i]; ++i)
    bits |= ub8{static_cast<ub1>(text[i])} << 8 * i;
  return bits;
}

constexpr auto packedNames() {
  std::array<PackedName, kRows> names{};
  for (sb4 i = 0; i < kRows; ++i) {
    const sb4 length = DCH_keywords[i].len;
    names[i] = {packed(DCH_keywords[i].name, length), ~(~ub8{0} << 8 * length)};
  }
  return names;
}
constexpr auto kPackedNames = packedNames();

constexpr bool namesFit() {
  return std::all_of(DCH_keywords, DCH_keywords + kRows,
                     [](const KeyWord &row) { return row.len <= kLongestMatch; });
}
static_assert(namesFit());

/// The first row of a character, or -1.
sb4 firstRow(char first) {
  return first <= kFirstIndexed || first > '}' ? -1 : DCH_index[first - kFirstIndexed];
}

constexpr bool suffixesBeginAsTheyMay() {
  for (const KeySuffix *row = DCH_suff; row->name; ++row) {
    if (!maySuffixBegin(row->name[0], row->name[1])) return false;
  }
  return true;
}
static_assert(suffixesBeginAsTheyMay());

/// Whether the `len` characters of a row stand at `text`, which may end before. Names are
/// too short for a call of the C library to pay.
template <class Row>
bool standsAt(const char *text, const Row &row) {
  for (sb4 i = 0; i < row.len; ++i) {
    if (text[i] != row.name[i]) return false;
  }
  return true;
}

}  // namespace

namespace zev::format {

const KeyWord *findElement(const char *text, std::size_t length) {
  const sb4 start = firstRow(*text);
  if (start < 0) return nullptr;
  const ub8 bits = length >= sizeof(ub8) ? zev::readNative<ub8>(text)
                                         : packed(text, static_cast<sb4>(length));
  for (sb4 i = start;
       i < kRows && static_cast<ub1>(kPackedNames[i].bits) == static_cast<ub1>(*text);
       ++i) {
    if ((bits & kPackedNames[i].mask) == kPackedNames[i].bits) return &DCH_keywords[i];
  }
  return nullptr;
}

}  // namespace zev::format

extern "C" const KeyWord *index_seq_search(const char *text, const KeyWord *table) {
  const sb4 start = firstRow(*text);
  if (start < 0) return nullptr;
  for (const KeyWord *row = table + start; row->name && *row->name == *text; ++row) {
    if (standsAt(text, *row)) return row;
  }
  return nullptr;
}

extern "C" const KeySuffix *suff_search(const char *text, const KeySuffix *table,
                                        sb4 type) {
  for (const KeySuffix *row = table; row->name; ++row) {
    if (row->type == type && standsAt(text, *row)) return row;
  }
  return nullptr;
}
