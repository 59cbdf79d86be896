/// The vocabulary of format models: elements such as "HH24" or "Month", and the prefixes
/// and postfixes that change them. Elements are found by their first character and then
/// in order of rows, in which longer names stand before their beginnings.
#pragma once

#include <oci.h>

#include "zevoci/api.h"

struct FormatNode;

extern "C" {
/// Prints (`isToChar`) or reads one element at `cursor`. `record` is a TmToChar or a
/// TmFromChar. The number of characters written or consumed, which on reading may pass
/// the end of the text; -1 for a failure, with its error recorded.
typedef sb4 (*FormatAction)(sb4 id, char *cursor, sb4 suffix, boolean isToChar,
                            sb4 dateKind, const FormatNode *node, void *record,
                            OCIError *errhp);

/// Elements of the calendar.
ZEV_HELPER sb4 dch_date(sb4 id, char *cursor, sb4 suffix, boolean isToChar, sb4 dateKind,
                        const FormatNode *node, void *record, OCIError *errhp);
/// Elements of the clock and of the zone.
ZEV_HELPER sb4 dch_time(sb4 id, char *cursor, sb4 suffix, boolean isToChar, sb4 dateKind,
                        const FormatNode *node, void *record, OCIError *errhp);
/// Elements that only set a flag while a model is compiled: always 0.
ZEV_HELPER sb4 dch_global(sb4 id, char *cursor, sb4 suffix, boolean isToChar,
                          sb4 dateKind, const FormatNode *node, void *record,
                          OCIError *errhp);

/// One spelling of an element.
struct KeyWord {
  const char *name;
  sb4 len;  ///< characters compared and consumed
  FormatAction action;
  sb4 id;           ///< a zev::format::Element; spellings that mean the same share it
  boolean isDigit;  ///< it reads as digits
};

/// One spelling of a prefix or postfix.
struct KeySuffix {
  const char *name;
  sb4 len;
  sb4 id;    ///< a bit of zev::format::Suffix
  sb4 type;  ///< 1 prefix, 2 postfix
};

/// All elements, in ASCII order of their first characters, and a row with a null name.
extern ZEV_HELPER const KeyWord DCH_keywords[104];
/// The first row of DCH_keywords of each character from ' ' to '}', or -1.
extern ZEV_HELPER const sb4 DCH_index[94];
/// All prefixes and postfixes and a row with a null name.
extern ZEV_HELPER const KeySuffix DCH_suff[8];

/// The row of `table`, ordered as DCH_keywords, that `text` begins with, or null.
ZEV_HELPER const KeyWord *index_seq_search(const char *text, const KeyWord *table);
/// The first row of that type that `text` begins with, or null.
ZEV_HELPER const KeySuffix *suff_search(const char *text, const KeySuffix *table,
                                        sb4 type);
}

namespace zev::format {

/// What an element is, by the row of its first spelling. A lower-case spelling has an
/// identity of its own where it prints other letters.
enum Element : sb4 {
  // clang-format off
  kDottedAD, kDottedAM, kAD, kAM, kDottedBC, kBC, kCC, kDAY, kDDD, kDD, kDL, kDS, kDY,
  kDay, kDy, kD, kEE, kE, kFF, kFX, kHH24, kHH12, kHH, kIW, kIYYY, kIYY, kIY, kI, kJ,
  kMI, kMM, kMONTH, kMON, kMS, kMonth, kMon, kDottedPM, kPM, kQ, kRM, kRRRR, kRR, kSCC,
  kSSSSS, kSS, kSYEAR, kSYYYY, kTS, kTZD, kTZH, kTZM, kTZR, kUS, kWW, kW, kX, kYCommaYYY,
  kYEAR, kYYYY, kYYY, kYY, kY,
  kLowerDottedAD, kLowerDottedAM, kLowerAD, kLowerAM, kLowerDottedBC, kLowerBC,
  kLowerDay = 69, kLowerDy = 72, kLowerMonth = 86, kLowerMon = 87, kLowerDottedPM = 89,
  kLowerPM = 90, kLowerRM = 92,
  // clang-format on
};
inline constexpr sb4 kElementLimit = 103;  ///< every Element is below it

/// What stands around an element, one bit each.
enum Suffix : sb4 {
  kFillMode = 1,      ///< FM: no padding
  kUpperOrdinal = 2,  ///< TH
  kLowerOrdinal = 4,  ///< th
  kSpelled = 8,       ///< SP: accepted, without effect
  kTranslated = 16,   ///< TM: the localize_* names
  kOrdinal = kUpperOrdinal | kLowerOrdinal,
};

/// As index_seq_search in DCH_keywords, in the `length` characters at `text`, of which
/// there is at least one.
const KeyWord *findElement(const char *text, std::size_t length);

/// False where neither character stands at its place in any name of DCH_suff.
constexpr bool maySuffixBegin(char first, char second) {
  const bool isFirst =
      first == 'F' || first == 'S' || first == 'T' || first == 'f' || first == 't';
  return isFirst && (second == 'M' || second == 'H' || second == 'P' || second == 'm' ||
                     second == 'h');
}

}  // namespace zev::format
