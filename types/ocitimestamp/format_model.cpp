#include "types/ocitimestamp/format_model.h"

#include <cstring>
#include <string_view>

#include "types/ocitimestamp/format_rules.h"
#include "types/ocitimestamp/format_words.h"
#include "zevoci/errors.h"

extern "C" {
constinit thread_local boolean DCH_global_fx = 0;
constinit thread_local boolean DCH_global_fm = 0;
}

namespace zev::format {
namespace {

constexpr sb4 kPrefix = 1, kPostfix = 2;

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
  Compiler(FormatNode *nodes, std::string_view format, OCIError *errhp, bool isToChar,
           sb4 dateKind)
      : first_(nodes),
        node_(nodes),
        at_(format.data()),
        end_(format.data() + format.size()),
        errhp_(errhp),
        direction_(isToChar ? kPrinting : kReading),
        dateKind_(dateKind),
        classErrors_(classErrorsOf(direction_, dateKind)) {}

  /// The end node; null with a record.
  const FormatNode *run() {
    while (at_ != end_) {
      if (compileNext() < 0) return nullptr;
    }
    clear(*node_);
    node_->type = kEndNode;
    return node_;
  }

 private:
  sb4 compileNext() {
    clear(*node_);
    const sb4 prefix = takeSuffix(kPrefix);
    if (prefix == kFillMode) toggleFillMode();
    if (at_ == end_) return 0;
    const KeyWord *key = findElement(at_, static_cast<std::size_t>(end_ - at_));
    if (!key) {
      compileText();
      return 0;
    }
    return compileElement(key, prefix);
  }

  sb4 compileElement(const KeyWord *key, sb4 prefix) {
    node_->key = key;
    if (const sb4 error = classErrors_[key->id]) return fail(errhp_, error);
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
  bool mayConflict(sb4 id) const { return conflictsWithOthers(id) || seen_.has(id); }

  void toggleFillMode() {
    fillMode_ ^= kFillMode;
    DCH_global_fm = fillMode_ != 0;
  }

  /// Steps over a prefix or postfix and returns its bit, 0 for none.
  sb4 takeSuffix(sb4 type) {
    if (!maySuffixBegin(at_[0], at_[0] ? at_[1] : '\0')) return 0;
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
  const char *const end_;
  OCIError *const errhp_;
  const Direction direction_;
  const sb4 dateKind_;
  const ub2 *const classErrors_;
  sb4 fillMode_ = 0;
  Elements seen_ = {};
};

/// The end node; null with a record.
const FormatNode *compileNodes(FormatNode *nodes, const char *format, OCIError *errhp,
                               bool isToChar, sb4 dateKind) {
  DCH_global_fx = 0;
  DCH_global_fm = 0;
  return Compiler(nodes, format, errhp, isToChar, dateKind).run();
}

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
  nodes_ = short_;
  // Even if every two characters were expanded.
  if (std::strlen(format_) * kLongestMacro / 2 + 1 < kShort) return true;
  const std::size_t count = nodesNeeded(format_);
  if (count <= kShort) return true;
  heap_.reset(static_cast<FormatNode *>(std::malloc(count * sizeof(FormatNode))));
  nodes_ = heap_.get();
  return nodes_ != nullptr;
}

sb4 CompiledModel::compile(OCIError *errhp, bool isToChar, sb4 dateKind) {
  if (!makeRoom()) return fail(errhp, 16506);
  end_ = compileNodes(nodes_, format_, errhp, isToChar, dateKind);
  return end_ ? 0 : -1;
}

}  // namespace zev::format

using namespace zev::format;

extern "C" sb4 parse_format(FormatNode *nodes, const char *format, OCIError *errhp,
                            boolean isToChar, sb4 dateKind) {
  return compileNodes(nodes, format, errhp, isToChar != 0, dateKind) ? 0 : -1;
}

extern "C" boolean is_next_separator(const FormatNode *node) {
  if (node->type == kEndNode) return 0;
  if (node->type == kElementNode && (node->suffix & kOrdinal)) return 1;
  const FormatNode &next = node[1];
  if (next.type == kEndNode) return 0;
  if (next.type == kElementNode) return !next.key->isDigit;
  return !isDigit(next.character);
}
