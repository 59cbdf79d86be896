#include "types/ocitimestamp/format_rules.h"

namespace zev::format {
namespace {

/// Kinds of values as bits.
using Kinds = unsigned;
constexpr Kinds kDate = 1 << kDateDescriptor;
constexpr Kinds kTimestamp = 1 << kTimestampDescriptor;
constexpr Kinds kAnyKind = ~0u;

constexpr bool has(Kinds kinds, sb4 dateKind) {
  return kinds == kAnyKind || (kinds >> (dateKind & 31) & 1) != 0;
}

struct ClassTest {
  Elements elements;
  Direction direction;
  Kinds refused;
  sb4 error;
};

// clang-format off
constexpr ClassTest kClassTests[] = {
    {{kDottedAM, kAM, kFF, kHH24, kHH12, kHH, kMI, kMS, kDottedPM, kPM, kSSSSS, kSS, kTS,
      kUS, kX, kLowerDottedAM, kLowerAM, kLowerDottedPM, kLowerPM},
                                               kBoth,    kDate,              1821},
    {{kCC, kIW, kIYYY, kIYY, kIY, kI, kQ, kSCC, kWW, kW},
                                               kReading, kAnyKind,           1820},
    {{kRM, kRRRR, kRR, kLowerRM},              kBoth,    kTimestamp,         1878},
    {{kTZD, kTZH, kTZM},                       kBoth,    kDate | kTimestamp, 1821},
    {{kTZR},                                   kReading, kDate | kTimestamp, 1821},
};

/// What an element cannot stand behind.
struct Conflict {
  Elements current;
  Elements earlier;
  Kinds kinds;
  bool expanded;  ///< only those that an earlier `current` was expanded into
  sb4 error;
};

constexpr Elements kAnyElement = Elements::all();
constexpr Conflict kConflicts[] = {
    {{kDottedAD, kDottedBC}, {kAD, kBC},               kAnyKind, false, 1815},
    {{kDottedAD, kDottedBC}, {kDottedAD, kDottedBC},   kAnyKind, false, 1810},
    {{kAD, kBC},             {kDottedAD, kDottedBC},   kAnyKind, false, 1815},
    {{kAD, kBC},             {kAD, kBC},               kAnyKind, false, 1810},
    {{kDottedAM, kDottedPM}, kAnyElement,              kDate,    false, 1821},
    {{kDottedAM, kDottedPM}, {kAM, kPM},               kAnyKind, false, 1814},
    {{kDottedAM, kDottedPM}, {kDottedAM, kDottedPM},   kAnyKind, false, 1810},
    {{kAM, kPM},             kAnyElement,              kDate,    false, 1821},
    {{kAM, kPM},             {kDottedAM, kDottedPM},   kAnyKind, false, 1814},
    {{kAM, kPM},             {kAM, kPM},               kAnyKind, false, 1810},
    {{kDL},                  {kDD, kDay, kMonth, kYYYY}, kAnyKind, true, 1810},
    {{kDS},                  {kDD, kMM, kYYYY},        kAnyKind, true,  1810},
    {{kTS},                  {kAM, kHH, kMI, kSS},     kDate,    false, 1821},
    {{kTS},                  {kAM, kHH, kMI, kSS},     kAnyKind, true,  1810},
};

/// Elements that may stand twice except in a model of a zoned timestamp.
constexpr Elements kMayRepeat = {kCC, kEE, kE, kIW, kIYYY, kIYY, kIY, kI, kQ, kSCC,
                                 kSYEAR, kTZD, kTZH, kTZM, kTZR, kWW, kYEAR};
// clang-format on

constexpr Elements elementsWithConflicts() {
  Elements all = {};
  for (const Conflict &row : kConflicts) all = all | row.current;
  return all;
}
constexpr Elements kHaveConflicts = elementsWithConflicts();

/// The error of an element behind an earlier one, or 0.
sb4 conflictOf(sb4 current, const FormatNode &earlier, sb4 dateKind) {
  const sb4 id = earlier.key->id;
  if (!kHaveConflicts.has(current)) return id == current ? 1810 : 0;
  for (const Conflict &row : kConflicts) {
    if (row.current.has(current) && row.earlier.has(id) && has(row.kinds, dateKind) &&
        (!row.expanded || earlier.macroOrigin == current)) {
      return row.error;
    }
  }
  return 0;
}

constexpr std::size_t kKinds = 8;  ///< columns by kind of value, unknown ones included

/// The errors of kClassTests by direction, kind of value and element.
struct ClassErrors {
  constexpr ClassErrors() {
    for (const ClassTest &row : kClassTests) {
      for (const Direction direction : {kReading, kPrinting}) {
        if (row.direction & direction) add(row, direction);
      }
    }
  }
  constexpr void add(const ClassTest &row, Direction direction) {
    for (sb4 kind = 0; kind < static_cast<sb4>(kKinds); ++kind) {
      for (sb4 id = 0; id < kElementLimit; ++id) {
        if (row.elements.has(id) && has(row.refused, kind))
          error[direction - 1][kind][id] = static_cast<ub2>(row.error);
      }
    }
  }
  ub2 error[2][kKinds][kElementLimit] = {};
};
constexpr ClassErrors kClassErrors;

}  // namespace

const ub2 *classErrorsOf(Direction direction, sb4 dateKind) {
  return kClassErrors.error[direction - 1][dateKind & (kKinds - 1)];
}

bool conflictsWithOthers(sb4 id) {
  return kHaveConflicts.has(id);
}

}  // namespace zev::format

using namespace zev::format;

extern "C" boolean DuplicateNodeExists(OCIError *errhp, const FormatNode *firstNode,
                                       const FormatNode *thisNode, sb4 dateKind) {
  const sb4 current = thisNode->key->id;
  if (kMayRepeat.has(current) && dateKind < kZonedDescriptor) return 0;
  for (const FormatNode *node = firstNode; node < thisNode; ++node) {
    if (node->type != kElementNode) continue;
    if (const sb4 error = conflictOf(current, *node, dateKind)) {
      fail(errhp, error);
      return 1;
    }
  }
  return 0;
}
