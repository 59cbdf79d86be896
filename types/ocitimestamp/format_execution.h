/// Format models at work: values printed through a model, and texts read through one.
#pragma once

#include <string_view>

#include "types/ocitimestamp/format_model.h"
#include "zevoci/pgtm.h"

extern "C" {
/// What is printed.
struct TmToChar {
  PGtm tm;
  double fsec;   ///< of an OCIDateTime the plain count of its fraction, of an OCIDate 0
  sb1 tzHour;    ///< of the zone, east positive
  ub1 tzMinute;  ///< of the zone
};

/// What the elements of a model read, each for itself. 0 is also "not read".
struct TmFromChar {
  sb4 hh;
  sb4 am;
  sb4 pm;
  sb4 mi;
  sb4 ss;
  sb4 ssss;  ///< second of the day
  sb4 d;
  sb4 dd;
  sb4 ddd;
  sb4 mm;
  sb4 ms;
  sb4 year;
  sb4 bc;
  sb4 iw;
  sb4 ww;
  sb4 w;
  sb4 cc;
  sb4 q;
  sb4 j;
  sb4 us;
  sb4 yysz;  ///< how many digits the year had
  sb4 tzh;
  sb4 tzm;
  double ff;  ///< the digits of FF as a plain number
};

/// Walks compiled nodes and prints a TmToChar to `text`, or reads `text` into a
/// TmFromChar. For printing `text` has room for zev::format::roomFor(nodes) bytes.
/// Returns `text`; null with a record for what does not fit the model.
ZEV_HELPER char *DCH_processor(OCIError *errhp, const FormatNode *nodes, char *text,
                               boolean isToChar, sb4 dateKind, void *record);

/// Prints through `format`. A new text that the caller frees; null with a record for an
/// illegal model or a value that it cannot print.
ZEV_HELPER char *datetime_to_char_body(OCIError *errhp, const TmToChar *value,
                                       const char *format, sb4 dateKind);

/// Reads `text` through `format`: fields and, apart from them, what FF, MS and US read.
/// A year that the model leaves out is the present one, a month February, a day the
/// first. 0, or -1 with a record; findings that do not stop it add records too.
ZEV_HELPER sb4 do_to_timestamp(OCIError *errhp, const char *text, const char *format,
                               PGtm *tm, double *fsec, sb4 dateKind);

/// 0 if `format` ends in "TZD", "TZH" or "TZM", otherwise -1.
ZEV_HELPER sb4 hasTimeZoneInFormat(const char *format);
}

namespace zev::format {

/// The bytes that printing through compiled nodes takes at most, with the terminator.
std::size_t roomFor(const FormatNode *nodes);

/// A value printed through a model. Short texts take no memory.
class PrintedText {
 public:
  /// False with a record for an illegal model, a value that it cannot print, and without
  /// memory.
  bool print(OCIError *errhp, const TmToChar &value, const char *format, sb4 dateKind);
  std::string_view text() const { return text_; }

 private:
  char *makeRoom(CompiledModel &model);

  char short_[2048];
  zev::Malloced<> heap_;
  std::string_view text_;
};

/// An element to print, and where.
struct Printing {
  sb4 id;
  char *out;
  sb4 suffix;
  sb4 dateKind;
  const FormatNode &node;
  const TmToChar &value;
  OCIError *errhp;
};

/// An element to read, and from where.
struct Scanning {
  sb4 id;
  const char *text;
  sb4 suffix;
  sb4 dateKind;
  const FormatNode &node;
  TmFromChar &fields;
  OCIError *errhp;
};

/// The elements' two sides, by family. The number of characters written or consumed, or
/// -1 with a record; without one for elements that are not of the family.
sb4 printDate(const Printing &p);
sb4 printTime(const Printing &p);
sb4 scanDate(const Scanning &s);
sb4 scanTime(const Scanning &s);

/// Makes a date and time of what was read. `tm` and `fsec` come in with what the model
/// left out. Adds records for contradictions, which it passes over.
void settle(const TmFromChar &fields, OCIError *errhp, PGtm &tm, double &fsec);

/// As do_to_timestamp for values without a zone: neither the local zone nor, where the
/// text has a year, the clock is asked. `tm_isdst` and `tm_gmtoff` mean nothing.
sb4 scanDateTime(OCIError *errhp, const char *text, const char *format, PGtm &tm,
                 double &fsec, sb4 dateKind);

/// An element's function.
template <class Work>
struct ElementRow {
  sb4 id;
  sb4 (*function)(const Work &);
};

/// Functions by element, from rows of a family.
template <class Work>
class ElementTable {
 public:
  template <std::size_t N>
  constexpr explicit ElementTable(const ElementRow<Work> (&rows)[N]) {
    for (const ElementRow<Work> &row : rows) functions_[row.id] = row.function;
  }
  sb4 operator()(const Work &work) const {
    if (work.id < 0 || work.id >= kElementLimit || !functions_[work.id]) return -1;
    return functions_[work.id](work);
  }

 private:
  sb4 (*functions_[kElementLimit])(const Work &) = {};
};

}  // namespace zev::format
