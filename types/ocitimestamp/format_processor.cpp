#include <algorithm>
#include <cstring>

#include "types/number_text.h"
#include "types/ocitimestamp/format_execution.h"
#include "types/ocitimestamp/format_words.h"

namespace zev::format {
namespace {

/// No element prints more, not even a spelled year of ten digits with its ordinal.
constexpr std::size_t kWidestElement = 64;

bool isSpaceNode(const FormatNode &node) {
  return node.character <= 0x7f && isSpace(static_cast<char>(node.character));
}

bool maySeparate(const FormatNode &node) {
  return isSeparator(node.character) || isSpaceNode(node);
}

bool isOrdinary(const FormatNode &node) {
  return node.type == kCharacterNode;
}

sb4 callAction(const FormatNode &node, char *cursor, bool isToChar, sb4 dateKind,
               void *record, OCIError *errhp) {
  const KeyWord &key = *node.key;
  return key.action(key.id, cursor, node.suffix, isToChar, dateKind, &node, record,
                    errhp);
}

/// Prints an element; the two usual actions without the way over their C signature.
sb4 printElement(OCIError *errhp, const FormatNode &node, char *out, sb4 dateKind,
                 void *value) {
  const FormatAction action = node.key->action;
  if (action != dch_date && action != dch_time)
    return callAction(node, out, true, dateKind, value, errhp);
  const Printing printing{node.key->id, out,  node.suffix,
                          dateKind,     node, *static_cast<const TmToChar *>(value),
                          errhp};
  return action == dch_date ? printDate(printing) : printTime(printing);
}

/// Prints one node at `out`. The end of what it printed; null with a record.
char *printNode(OCIError *errhp, const FormatNode &node, char *out, sb4 dateKind,
                void *value) {
  if (node.type == kElementNode) {
    const sb4 length = printElement(errhp, node, out, dateKind, value);
    return length < 0 ? nullptr : out + length;
  }
  if (node.type == kLiteralNode) return stpcpy(out, node.text);
  if (!maySeparate(node)) {
    fail(errhp, 1821);
    return nullptr;
  }
  *out = static_cast<char>(node.character);
  return out + 1;
}

/// Prints all nodes. The end of the text, which has its terminator; null with a record.
char *print(OCIError *errhp, const FormatNode *nodes, char *text, sb4 dateKind,
            void *value) {
  for (const FormatNode *node = nodes; node->type != kEndNode; ++node) {
    text = printNode(errhp, *node, text, dateKind, value);
    if (!text) return nullptr;
  }
  *text = '\0';
  return text;
}

/// Reads a text by a model's nodes.
class Scanner {
 public:
  Scanner(OCIError *errhp, const FormatNode *nodes, char *text, sb4 dateKind,
          void *fields)
      : errhp_(errhp),
        first_(nodes),
        node_(nodes),
        start_(text),
        at_(text),
        dateKind_(dateKind),
        exact_(DCH_global_fx != 0),
        fields_(fields) {}

  /// 0, or -1 with a record.
  sb4 run() {
    for (; node_->type != kEndNode; ++node_) {
      if (!*at_) return checkTail();
      if (scanNode() < 0) return -1;
    }
    return *at_ ? fail(errhp_, 1830) : 0;
  }

 private:
  sb4 scanNode() {
    if (node_->type == kElementNode) return scanElement();
    if (node_->type == kLiteralNode) return scanLiteral();
    if (exact_) return scanExactly();
    return isSpaceNode(*node_) ? scanSpace() : scanSeparator();
  }

  /// What stands behind the end of the text may only separate.
  sb4 checkTail() {
    for (; node_->type != kEndNode; ++node_) {
      if (isOrdinary(*node_) && !maySeparate(*node_)) return fail(errhp_, 1821);
    }
    return 0;
  }

  sb4 scanElement() {
    const sb4 length = callAction(*node_, at_, false, dateKind_, fields_, errhp_);
    if (length < 0) return -1;
    // An element of fixed width may ask for more than is left.
    for (sb4 i = 0; i < length && *at_; ++i) ++at_;
    return 0;
  }

  /// Literals right behind each other are one.
  sb4 scanLiteral() {
    const bool misplaced =
        node_ > first_ && isOrdinary(node_[-1]) && node_[-1].character != lastRead();
    skipSpaces();
    for (;; ++node_) {
      const std::size_t length = std::strlen(node_->text);
      if (std::strncmp(at_, node_->text, length) != 0) return failLiteral();
      at_ += length;
      if (node_[1].type != kLiteralNode) break;
    }
    return misplaced ? failLiteral() : 0;
  }

  sb4 scanSpace() {
    if (!elementFollowsFirst()) return failLiteral();
    skipSpaces();
    return 0;
  }

  sb4 scanSeparator() {
    if (!isSeparator(node_->character)) return fail(errhp_, 1821);
    if (!elementFollowsFirst()) return failLiteral();
    skipSpaces();
    if (isSeparator(*at_)) ++at_;
    skipSpaces();
    return 0;
  }

  sb4 scanExactly() {
    if (static_cast<unsigned char>(*at_) != node_->character) return failLiteral();
    ++at_;
    return 0;
  }

  /// False for a first node behind which the model has no element.
  bool elementFollowsFirst() const {
    if (node_ != first_) return true;
    const FormatNode *next = node_ + 1;
    while (next->type != kEndNode && next->type != kElementNode) ++next;
    return next->type == kElementNode;
  }

  void skipSpaces() {
    while (isSpace(*at_)) ++at_;
  }

  /// The character that was read last, 0 at the start.
  sb4 lastRead() const { return at_ > start_ ? static_cast<unsigned char>(at_[-1]) : 0; }

  sb4 failLiteral() { return fail(errhp_, 1861, "string"); }

  OCIError *const errhp_;
  const FormatNode *const first_;
  const FormatNode *node_;
  char *const start_;
  char *at_;
  const sb4 dateKind_;
  const bool exact_;
  void *const fields_;
};

}  // namespace

std::size_t roomFor(const FormatNode *nodes) {
  std::size_t room = 1;
  for (const FormatNode *node = nodes; node->type != kEndNode; ++node)
    room += node->type == kElementNode   ? kWidestElement
            : node->type == kLiteralNode ? std::strlen(node->text)
                                         : 1;
  return room;
}

namespace {

using Print = sb4 (*)(const Printing &);
using Scan = sb4 (*)(const Scanning &);

/// An action: one of its two sides.
sb4 act(Print print, Scan scan, sb4 id, char *cursor, sb4 suffix, boolean isToChar,
        sb4 dateKind, const FormatNode *node, void *record, OCIError *errhp) {
  if (isToChar) {
    const auto &value = *static_cast<const TmToChar *>(record);
    return print({id, cursor, suffix, dateKind, *node, value, errhp});
  }
  auto &fields = *static_cast<TmFromChar *>(record);
  return scan({id, cursor, suffix, dateKind, *node, fields, errhp});
}

}  // namespace
}  // namespace zev::format

using namespace zev::format;

extern "C" sb4 dch_date(sb4 id, char *cursor, sb4 suffix, boolean isToChar, sb4 dateKind,
                        const FormatNode *node, void *record, OCIError *errhp) {
  return act(printDate, scanDate, id, cursor, suffix, isToChar, dateKind, node, record,
             errhp);
}

extern "C" sb4 dch_time(sb4 id, char *cursor, sb4 suffix, boolean isToChar, sb4 dateKind,
                        const FormatNode *node, void *record, OCIError *errhp) {
  return act(printTime, scanTime, id, cursor, suffix, isToChar, dateKind, node, record,
             errhp);
}

extern "C" sb4 dch_global(sb4, char *, sb4, boolean, sb4, const FormatNode *, void *,
                          OCIError *) {
  return 0;
}

extern "C" char *DCH_processor(OCIError *errhp, const FormatNode *nodes, char *text,
                               boolean isToChar, sb4 dateKind, void *record) {
  if (isToChar) return print(errhp, nodes, text, dateKind, record) ? text : nullptr;
  return Scanner(errhp, nodes, text, dateKind, record).run() < 0 ? nullptr : text;
}

namespace zev::format {

char *PrintedText::makeRoom(CompiledModel &model) {
  if (model.count() * kWidestElement < sizeof short_) return short_;
  const std::size_t room = roomFor(model.nodes());
  if (room <= sizeof short_) return short_;
  heap_.reset(static_cast<char *>(std::malloc(room)));
  return heap_.get();
}

bool PrintedText::print(OCIError *errhp, const TmToChar &value, const char *format,
                        sb4 dateKind) {
  CompiledModel model(format);
  const char *end = nullptr;
  if (model.compile(errhp, true, dateKind) == 0) {
    if (char *const text = makeRoom(model)) {
      end = zev::format::print(errhp, model.nodes(), text, dateKind,
                               const_cast<TmToChar *>(&value));
      if (end) text_ = {text, static_cast<std::size_t>(end - text)};
    } else {
      fail(errhp, 16506);
    }
  }
  DCH_global_fx = 0;
  return end != nullptr;
}

}  // namespace zev::format

extern "C" char *datetime_to_char_body(OCIError *errhp, const TmToChar *value,
                                       const char *format, sb4 dateKind) {
  PrintedText printed;
  if (!printed.print(errhp, *value, format, dateKind)) return nullptr;
  const std::string_view text = printed.text();
  auto *copy = static_cast<char *>(std::malloc(text.size() + 1));
  if (!copy) {
    fail(errhp, 16506);
    return nullptr;
  }
  std::memcpy(copy, text.data(), text.size() + 1);
  return copy;
}
