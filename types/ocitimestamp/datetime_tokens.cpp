#include "types/ocitimestamp/datetime_tokens.h"

#include <algorithm>
#include <cstring>
#include <span>

namespace {

using namespace zev;

constexpr bool areSorted(std::span<const datetkn> rows) {
  return std::ranges::adjacent_find(rows, std::ranges::greater_equal(), &datetkn::text) ==
         rows.end();
}

}  // namespace

// clang-format off
extern "C" constexpr datetkn datetktbl[] = {
    {"-infinity", kReserved, 9}, {"abstime", kIgnored, 0}, {"acsst", kDaylightZone, 42},
    {"acst", kDaylightZone, -112}, {"act", kZone, -108}, {"ad", kAdBc, 0},
    {"adt", kDaylightZone, -116}, {"aesst", kDaylightZone, 44}, {"aest", kZone, 40},
    {"aft", kZone, 18}, {"ahst", kZone, -88}, {"akdt", kDaylightZone, -96},
    {"akst", kDaylightZone, -92}, {"allballs", kReserved, 16}, {"almst", kZone, 28},
    {"almt", kZone, 24}, {"am", kAmPm, 0}, {"amst", kDaylightZone, 20}, {"amt", kZone, 16},
    {"anast", kDaylightZone, 52}, {"anat", kZone, 48}, {"apr", kMonth, 4}, {"april", kMonth, 4},
    {"art", kZone, -116}, {"ast", kZone, -112}, {"at", kIgnored, 0}, {"aug", kMonth, 8},
    {"august", kMonth, 8}, {"awsst", kDaylightZone, 36}, {"awst", kZone, 32},
    {"awt", kDaylightZone, -116}, {"azost", kDaylightZone, 0}, {"azot", kZone, -124},
    {"azst", kDaylightZone, 20}, {"azt", kZone, 16}, {"bc", kAdBc, 1}, {"bdst", kZone, 8},
    {"bdt", kZone, 24}, {"bnt", kZone, 32}, {"bort", kZone, 32}, {"bot", kZone, -112},
    {"bra", kZone, -116}, {"bst", kDaylightZone, 4}, {"bt", kZone, 12}, {"btt", kZone, 24},
    {"cadt", kDaylightZone, 42}, {"cast", kZone, 38}, {"cat", kZone, -88}, {"cct", kZone, 32},
    {"cdt", kDaylightZone, -108}, {"cest", kDaylightZone, 8}, {"cet", kZone, 4},
    {"cetdst", kDaylightZone, 8}, {"chadt", kDaylightZone, 55}, {"chast", kZone, 51},
    {"ckt", kZone, 48}, {"clst", kDaylightZone, -116}, {"clt", kZone, -112},
    {"cot", kZone, -108}, {"cst", kZone, -104}, {"current", kReserved, 8}, {"cvt", kZone, 28},
    {"cxt", kZone, 28}, {"d", kUnit, 21}, {"davt", kZone, 28}, {"ddut", kZone, 40},
    {"dec", kMonth, 12}, {"december", kMonth, 12}, {"dnt", kZone, 4}, {"dow", kReserved, 32},
    {"doy", kReserved, 33}, {"dst", kDst, 6}, {"easst", kDaylightZone, -108},
    {"east", kZone, -104}, {"eat", kZone, 12}, {"edt", kDaylightZone, -112},
    {"eest", kDaylightZone, 12}, {"eet", kZone, 8}, {"eetdst", kDaylightZone, 12},
    {"egst", kDaylightZone, 0}, {"egt", kZone, -124}, {"epoch", kReserved, 11},
    {"est", kZone, -108}, {"feb", kMonth, 2}, {"february", kMonth, 2},
    {"fjst", kDaylightZone, -76}, {"fjt", kZone, -80}, {"fkst", kDaylightZone, -116},
    {"fkt", kZone, -120}, {"fri", kWeekday, 5}, {"friday", kWeekday, 5}, {"fst", kZone, 4},
    {"fwt", kDaylightZone, 8}, {"galt", kZone, -104}, {"gamt", kZone, -92},
    {"gest", kDaylightZone, 20}, {"get", kZone, 16}, {"gft", kZone, -116}, {"gilt", kZone, 48},
    {"gmt", kZone, 0}, {"gst", kZone, 40}, {"gyt", kZone, -112}, {"h", kUnit, 20},
    {"hdt", kDaylightZone, -92}, {"hkt", kZone, 32}, {"hst", kZone, -88}, {"ict", kZone, 28},
    {"idle", kZone, 48}, {"idlw", kZone, -80}, {"infinity", kReserved, 10},
    {"invalid", kReserved, 7}, {"iot", kZone, 20}, {"irkst", kDaylightZone, 36},
    {"irkt", kZone, 32}, {"irt", kZone, 14}, {"ist", kZone, 8}, {"it", kZone, 14},
    {"j", kUnit, 31}, {"jan", kMonth, 1}, {"january", kMonth, 1}, {"javt", kZone, 28},
    {"jayt", kZone, 36}, {"jd", kUnit, 31}, {"jst", kZone, 36}, {"jt", kZone, 30},
    {"jul", kMonth, 7}, {"julian", kUnit, 31}, {"july", kMonth, 7}, {"jun", kMonth, 6},
    {"june", kMonth, 6}, {"kdt", kDaylightZone, 40}, {"kgst", kDaylightZone, 24},
    {"kgt", kZone, 20}, {"kost", kZone, 48}, {"krast", kDaylightZone, 28}, {"krat", kZone, 32},
    {"kst", kZone, 36}, {"lhdt", kDaylightZone, 44}, {"lhst", kZone, 42}, {"ligt", kZone, 40},
    {"lint", kZone, 56}, {"lkt", kZone, 24}, {"m", kUnit, 23}, {"magst", kDaylightZone, 48},
    {"magt", kZone, 44}, {"mar", kMonth, 3}, {"march", kMonth, 3}, {"mart", kZone, -90},
    {"mawt", kZone, 24}, {"may", kMonth, 5}, {"mdt", kDaylightZone, -104},
    {"mest", kDaylightZone, 8}, {"met", kZone, 4}, {"metdst", kDaylightZone, 8},
    {"mewt", kZone, 4}, {"mez", kZone, 4}, {"mht", kZone, 48}, {"mm", kUnit, 19},
    {"mmt", kZone, 26}, {"mon", kWeekday, 1}, {"monday", kWeekday, 1}, {"mpt", kZone, 40},
    {"msd", kDaylightZone, 16}, {"msk", kZone, 12}, {"mst", kZone, -100}, {"mt", kZone, 34},
    {"mut", kZone, 16}, {"mvt", kZone, 20}, {"myt", kZone, 32}, {"nct", kZone, 44},
    {"ndt", kDaylightZone, -118}, {"nft", kZone, -114}, {"nor", kZone, 4}, {"nov", kMonth, 11},
    {"november", kMonth, 11}, {"novst", kDaylightZone, 28}, {"novt", kZone, 24},
    {"now", kReserved, 12}, {"npt", kZone, 23}, {"nst", kZone, -114}, {"nt", kZone, -84},
    {"nut", kZone, -84}, {"nzdt", kDaylightZone, 52}, {"nzst", kZone, 48}, {"nzt", kZone, 48},
    {"oct", kMonth, 10}, {"october", kMonth, 10}, {"omsst", kDaylightZone, 28},
    {"omst", kZone, 24}, {"on", kIgnored, 0}, {"pdt", kDaylightZone, -100},
    {"pet", kZone, -108}, {"petst", kDaylightZone, 52}, {"pett", kZone, 48}, {"pgt", kZone, 40},
    {"phot", kZone, 52}, {"pht", kZone, 32}, {"pkt", kZone, 20}, {"pm", kAmPm, 1},
    {"pmdt", kDaylightZone, -120}, {"pont", kZone, 44}, {"pst", kZone, -96}, {"pwt", kZone, 36},
    {"pyst", kDaylightZone, -116}, {"pyt", kZone, -112}, {"ret", kDaylightZone, 16},
    {"s", kUnit, 18}, {"sadt", kDaylightZone, 42}, {"sast", kZone, 38}, {"sat", kWeekday, 6},
    {"saturday", kWeekday, 6}, {"sct", kDaylightZone, 16}, {"sep", kMonth, 9},
    {"sept", kMonth, 9}, {"september", kMonth, 9}, {"set", kZone, -124},
    {"sst", kDaylightZone, 8}, {"sun", kWeekday, 0}, {"sunday", kWeekday, 0}, {"swt", kZone, 4},
    {"t", kIsoTime, 3}, {"tft", kZone, 20}, {"that", kZone, -88}, {"thu", kWeekday, 4},
    {"thur", kWeekday, 4}, {"thurs", kWeekday, 4}, {"thursday", kWeekday, 4},
    {"tjt", kZone, 20}, {"tkt", kZone, -88}, {"tmt", kZone, 20}, {"today", kReserved, 14},
    {"tomorrow", kReserved, 15}, {"tot", kZone, 52}, {"truk", kZone, 40}, {"tue", kWeekday, 2},
    {"tues", kWeekday, 2}, {"tuesday", kWeekday, 2}, {"tvt", kZone, 48},
    {"ulast", kDaylightZone, 36}, {"ulat", kZone, 32}, {"undefined", kReserved, 7},
    {"ut", kZone, 0}, {"utc", kZone, 0}, {"uyst", kDaylightZone, -120}, {"uyt", kZone, -116},
    {"uzst", kDaylightZone, 24}, {"uzt", kZone, 20}, {"vet", kZone, -112},
    {"vlast", kDaylightZone, 44}, {"vlat", kZone, 40}, {"vut", kZone, 44},
    {"wadt", kDaylightZone, 32}, {"wakt", kZone, 48}, {"wast", kZone, 28}, {"wat", kZone, -124},
    {"wdt", kDaylightZone, 36}, {"wed", kWeekday, 3}, {"wednesday", kWeekday, 3},
    {"weds", kWeekday, 3}, {"west", kDaylightZone, 4}, {"wet", kZone, 0},
    {"wetdst", kDaylightZone, 4}, {"wft", kZone, 48}, {"wgst", kDaylightZone, -120},
    {"wgt", kZone, -116}, {"wst", kZone, 32}, {"y", kUnit, 25}, {"yakst", kDaylightZone, 40},
    {"yakt", kZone, 36}, {"yapt", kZone, 40}, {"ydt", kDaylightZone, -96},
    {"yekst", kDaylightZone, 24}, {"yekt", kZone, 20}, {"yesterday", kReserved, 13},
    {"yst", kZone, -92}, {"z", kZone, 0}, {"zp4", kZone, -112}, {"zp5", kZone, -108},
    {"zp6", kZone, -104}, {"zulu", kZone, 0}};
extern "C" constexpr datetkn deltatktbl[] = {
    {"@", kIgnored, 0}, {"ago", kAgo, 0}, {"c", kUnit, 27}, {"cent", kUnit, 27},
    {"centuries", kUnit, 27}, {"century", kUnit, 27}, {"d", kUnit, 21}, {"day", kUnit, 21},
    {"days", kUnit, 21}, {"dec", kUnit, 26}, {"decade", kUnit, 26}, {"decades", kUnit, 26},
    {"decs", kUnit, 26}, {"h", kUnit, 20}, {"hour", kUnit, 20}, {"hours", kUnit, 20},
    {"hr", kUnit, 20}, {"hrs", kUnit, 20}, {"invalid", kReserved, 7}, {"m", kUnit, 19},
    {"microsecon", kUnit, 30}, {"mil", kUnit, 28}, {"millennia", kUnit, 28},
    {"millennium", kUnit, 28}, {"millisecon", kUnit, 29}, {"mils", kUnit, 28},
    {"min", kUnit, 19}, {"mins", kUnit, 19}, {"minute", kUnit, 19}, {"minutes", kUnit, 19},
    {"mon", kUnit, 23}, {"mons", kUnit, 23}, {"month", kUnit, 23}, {"months", kUnit, 23},
    {"ms", kUnit, 29}, {"msec", kUnit, 29}, {"msecond", kUnit, 29}, {"mseconds", kUnit, 29},
    {"msecs", kUnit, 29}, {"qtr", kUnit, 24}, {"quarter", kUnit, 24}, {"s", kUnit, 18},
    {"sec", kUnit, 18}, {"second", kUnit, 18}, {"seconds", kUnit, 18}, {"secs", kUnit, 18},
    {"timezone", kUnit, 4}, {"timezone_h", kUnit, 34}, {"timezone_m", kUnit, 35},
    {"undefined", kReserved, 7}, {"us", kUnit, 30}, {"usec", kUnit, 30}, {"usecond", kUnit, 30},
    {"useconds", kUnit, 30}, {"usecs", kUnit, 30}, {"w", kUnit, 22}, {"week", kUnit, 22},
    {"weeks", kUnit, 22}, {"y", kUnit, 25}, {"year", kUnit, 25}, {"years", kUnit, 25},
    {"yr", kUnit, 25}, {"yrs", kUnit, 25}};
// clang-format on

static_assert(areSorted(datetktbl) && areSorted(deltatktbl));

namespace {

/// The row that each position matched last.
using Cache = const datetkn *[kMostFields];
thread_local Cache datecache;
thread_local Cache deltacache;

const datetkn *find(std::span<const datetkn> table, Cache &cache, sb4 position,
                    const char *text) {
  const datetkn *&last = cache[position];
  if (!last || std::strncmp(text, last->token, kTokenSize) != 0) {
    last = datebsearch(text, table.data(), static_cast<sb4>(table.size()));
  }
  return last;
}

sb4 minutesWest(sb1 quarters) {
  constexpr sb4 kMinutes = 15;
  return quarters < 0 ? (quarters & 0x7f) * kMinutes : -quarters * kMinutes;
}

bool isZone(sb1 type) {
  return type == kZone || type == kDaylightZone || type == kDst;
}

}  // namespace

extern "C" {

const datetkn *datebsearch(const char *text, const datetkn *table, sb4 rows) {
  const std::span all(table, static_cast<std::size_t>(rows));
  const std::string_view word(text, strnlen(text, kTokenSize));
  const auto found = std::ranges::lower_bound(all, word, {}, &datetkn::text);
  return found != all.end() && found->text() == word ? &*found : nullptr;
}

sb4 DecodeSpecial(sb4 position, const char *text, sb4 *value) {
  const datetkn *row = find(datetktbl, datecache, position, text);
  *value = !row ? 0 : isZone(row->type) ? minutesWest(row->value) : row->value;
  return row ? sb4{row->type} : sb4{kUnknown};
}

sb4 DecodeUnits(sb4 position, const char *text, sb4 *value) {
  const datetkn *row = find(deltatktbl, deltacache, position, text);
  *value = row ? row->value : 0;
  return row ? sb4{row->type} : sb4{kUnknown};
}

}  // extern "C"
