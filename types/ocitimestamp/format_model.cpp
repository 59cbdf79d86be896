#include "types/ocitimestamp/format_model.h"

#include <cstring>
#include <initializer_list>

#include "types/ocitimestamp/format_words.h"
#include "zevoci/errors.h"

extern "C" {
constinit thread_local boolean DCH_global_fx = 0;
constinit thread_local boolean DCH_global_fm = 0;
}

namespace zev::format {
namespace {

constexpr sb4 kPrefix = 1, kPostfix = 2;

/// A set of elements.
class Elements {
 public:
  constexpr Elements(std::initializer_list<sb4> ids) {
    for (const sb4 id : ids) add(id);
  }
  static constexpr Elements all() {
    Elements set = {};
    for (ub8 &bits : set.bits_) bits = ~ub8{0};
    return set;
  }
  constexpr Elements operator|(Elements other) const {
    for (int i = 0; i < 2; ++i) other.bits_[i] |= bits_[i];
    return other;
  }
  constexpr void add(sb4 id) { bits_[id / 64] |= ub8{1} << id % 64; }
  constexpr bool has(sb4 id) const { return bits_[id / 64] >> id % 64 & 1; }

 private:
  ub8 bits_[2] = {0, 0};
};

/// Kinds of values as bits.
using Kinds = unsigned;
constexpr Kinds kDate = 1 << kDateDescriptor;
constexpr Kinds kTimestamp = 1 << kTimestampDescriptor;
constexpr Kinds kAnyKind = ~0u;

constexpr bool has(Kinds kinds, sb4 dateKind) {
  return kinds == kAnyKind || (kinds >> (dateKind & 31) & 1) != 0;
}

enum Direction : ub1 { kReading = 1, kPrinting = 2, kBoth = 3 };

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

sb4 classErrorOf(sb4 id, Direction direction, sb4 dateKind) {
  return kClassErrors.error[direction - 1][dateKind & (kKinds - 1)][id];
}

/// A node of an expanded element: an element, or a character where that is set.
struct MacroNode {
  sb4 id;
  char character = '\0';
  sb4 suffix = 0;
};

// clang-format off
constexpr MacroNode kLongDate[] = {
    {kDay, 0, kFillMode}, {-1, ','}, {-1, ' '}, {kMonth, 0, kFillMode}, {-1, ' '}, {kDD},
    {-1, ','}, {-1, ' '}, {kYYYY, 0, kFillMode}};
constexpr MacroNode kShortDate[] = {
    {kMM, 0, kFillMode}, {-1, '/'}, {kDD, 0, kFillMode}, {-1, '/'},
    {kYYYY, 0, kFillMode}};
constexpr MacroNode kClockTime[] = {
    {kHH, 0, kFillMode}, {-1, ':'}, {kMI}, {-1, ':'}, {kSS}, {-1, ' '}, {kAM}};
// clang-format on
constexpr std::size_t kLongestMacro = std::size(kLongDate);

bool isDigit(sb4 character) {
  return character >= '0' && character <= '9';
}

void clear(FormatNode &node) {
  node.type = 0;
  node.key = nullptr;
  node.character = 0;
  node.suffix = 0;
  node.text[0] = '\0';
  node.macroOrigin = -1;
}

/// Turns the text of a model into nodes, from left to right.
class Compiler {
 public:
  Compiler(FormatNode *nodes, const char *format, OCIError *errhp, bool isToChar,
           sb4 dateKind)
      : first_(nodes),
        node_(nodes),
        at_(format),
        errhp_(errhp),
        direction_(isToChar ? kPrinting : kReading),
        dateKind_(dateKind) {}

  sb4 run() {
    while (*at_) {
      if (compileNext() < 0) return -1;
    }
    clear(*node_);
    node_->type = kEndNode;
    return 0;
  }

 private:
  sb4 compileNext() {
    clear(*node_);
    const sb4 prefix = takeSuffix(kPrefix);
    if (prefix == kFillMode) toggleFillMode();
    if (!*at_) return 0;
    const KeyWord *key = findElement(at_);
    if (!key) {
      compileText();
      return 0;
    }
    return compileElement(key, prefix);
  }

  sb4 compileElement(const KeyWord *key, sb4 prefix) {
    node_->key = key;
    if (const sb4 error = classErrorOf(key->id, direction_, dateKind_))
      return fail(errhp_, error);
    if (direction_ == kReading && mayConflict(key->id) &&
        DuplicateNodeExists(errhp_, first_, node_, dateKind_)) {
      return -1;
    }
    placeElement(key);
    node_->suffix = prefix | takeSuffix(kPostfix) | fillMode_;
    ++node_;
    return 0;
  }

  /// Whether the nodes must be looked at: most elements only conflict with themselves.
  bool mayConflict(sb4 id) const { return kHaveConflicts.has(id) || seen_.has(id); }

  void toggleFillMode() {
    fillMode_ ^= kFillMode;
    DCH_global_fm = fillMode_ != 0;
  }

  /// Steps over a prefix or postfix and returns its bit, 0 for none.
  sb4 takeSuffix(sb4 type) {
    if (!mayBeginSuffix(*at_)) return 0;
    const KeySuffix *found = suff_search(at_, DCH_suff, type);
    if (!found) return 0;
    at_ += found->len;
    return found->id;
  }

  /// Leaves `node_` at the last node of the element.
  void placeElement(const KeyWord *key) {
    at_ += key->len;
    switch (key->id) {
      case kDL:
        return expand(key, kLongDate, std::size(kLongDate));
      case kDS:
        return expand(key, kShortDate, std::size(kShortDate));
      case kTS:
        return expand(key, kClockTime, std::size(kClockTime));
      case kFX:
        DCH_global_fx = 1;
        break;
      case kFF:
        if (isDigit(*at_)) node_->character = *at_++;
        break;
      default:
        break;
    }
    node_->type = kElementNode;
    seen_.add(key->id);
  }

  void expand(const KeyWord *key, const MacroNode *parts, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
      FormatNode &node = node_[i];
      clear(node);
      node.type = parts[i].character ? kCharacterNode : kElementNode;
      node.key = parts[i].character ? nullptr : &DCH_keywords[parts[i].id];
      node.character = parts[i].character;
      node.suffix = parts[i].suffix;
      node.macroOrigin = key->id;
      if (node.key) seen_.add(node.key->id);
    }
    node_ += count - 1;
  }

  void compileText() {
    const bool behindLiteral = node_ > first_ && node_[-1].type == kLiteralNode;
    if (*at_ == '"') {
      compileLiteral();
    } else if (behindLiteral && isSeparator(*at_)) {
      lengthenLiteral(*at_++);
    } else {
      node_->type = kCharacterNode;
      node_->character = static_cast<unsigned char>(*at_++);
      ++node_;
    }
  }

  /// Without a closing quote only the first full node of the literal stays.
  void compileLiteral() {
    const char *text = at_ + 1;
    const char *close = std::strchr(text, '"');
    if (!close) {
      const std::size_t length = std::strlen(text);
      if (length >= kLiteralSize) addLiteral(text, kLiteralSize);
      at_ = text + length;
      return;
    }
    for (; close - text >= static_cast<long>(kLiteralSize); text += kLiteralSize)
      addLiteral(text, kLiteralSize);
    addLiteral(text, static_cast<std::size_t>(close - text));
    at_ = close + 1;
  }

  void addLiteral(const char *text, std::size_t length) {
    clear(*node_);
    node_->type = kLiteralNode;
    std::memcpy(node_->text, text, length);
    node_->text[length] = '\0';
    ++node_;
  }

  void lengthenLiteral(char character) {
    char *const text = node_[-1].text;
    const std::size_t length = std::strlen(text);
    if (length == kLiteralSize) return addLiteral(&character, 1);
    text[length] = character;
    text[length + 1] = '\0';
  }

  FormatNode *const first_;
  FormatNode *node_;
  const char *at_;
  OCIError *const errhp_;
  const Direction direction_;
  const sb4 dateKind_;
  sb4 fillMode_ = 0;
  Elements seen_ = {};
};

}  // namespace

sb4 fail(OCIError *errhp, sb4 code) {
  ClearErrorHandle(errhp);
  AddErrorRecord2(errhp, OCI_ERROR, code, o2pGetErrorText(code));
  return -1;
}

sb4 fail(OCIError *errhp, sb4 code, const char *word) {
  ClearErrorHandle(errhp);
  AddErrorRecordStringX(errhp, OCI_ERROR, code, 1, word);
  return -1;
}

std::size_t nodesNeeded(const char *format) {
  std::size_t count = 1;
  for (const char *p = format; *p; ++p) {
    const bool macro =
        (p[0] == 'D' && (p[1] == 'L' || p[1] == 'S')) || (p[0] == 'T' && p[1] == 'S');
    count += macro ? kLongestMacro : 1;
  }
  return count;
}

bool CompiledModel::makeRoom() {
  const std::size_t count = nodesNeeded(format_);
  nodes_ = short_;
  if (count <= kShort) return true;
  heap_.reset(static_cast<FormatNode *>(std::malloc(count * sizeof(FormatNode))));
  nodes_ = heap_.get();
  return nodes_ != nullptr;
}

sb4 CompiledModel::compile(OCIError *errhp, bool isToChar, sb4 dateKind) {
  if (!makeRoom()) return fail(errhp, 16506);
  return parse_format(nodes_, format_, errhp, isToChar, dateKind);
}

}  // namespace zev::format

using namespace zev::format;

extern "C" sb4 parse_format(FormatNode *nodes, const char *format, OCIError *errhp,
                            boolean isToChar, sb4 dateKind) {
  DCH_global_fx = 0;
  DCH_global_fm = 0;
  return Compiler(nodes, format, errhp, isToChar != 0, dateKind).run();
}

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

extern "C" boolean is_next_separator(const FormatNode *node) {
  if (node->type == kEndNode) return 0;
  if (node->type == kElementNode && (node->suffix & kOrdinal)) return 1;
  const FormatNode &next = node[1];
  if (next.type == kEndNode) return 0;
  if (next.type == kElementNode) return !next.key->isDigit;
  return !isDigit(next.character);
}
