/// Format models, such as "DD-MON-YYYY HH24:MI:SS", compiled to nodes: an element, a
/// single character or a literal each.
#pragma once

#include <oci.h>

#include <cstdlib>
#include <memory>

#include "core/owned.h"
#include "types/ocitimestamp/format_keywords.h"

namespace zev::format {

enum NodeType : sb4 {
  kEndNode = 1,
  kElementNode = 2,
  kCharacterNode = 3,
  kLiteralNode = 4,
};

/// The kind of value that a model is used on. It decides which elements are legal.
enum DateKind : sb4 {
  kDateDescriptor = 1,
  kOCIDate = 2,
  kTimestampDescriptor = 3,
  kZonedDescriptor = 4,  ///< timestamps with a time zone, their own or the local one
};

inline constexpr std::size_t kLiteralSize = 30;  ///< most characters of a literal node

}  // namespace zev::format

extern "C" {
/// One step of a compiled model.
struct FormatNode {
  sb4 type;            ///< a zev::format::NodeType
  const KeyWord *key;  ///< the element; null for other types
  sb4 character;       ///< a character node's; the digit behind FF, or 0
  sb4 suffix;          ///< bits of zev::format::Suffix
  char text[zev::format::kLiteralSize + 1];  ///< a literal node's, terminated
  sb4 macroOrigin;  ///< the element that was expanded into this node, or -1
};

/// Whether an FX stood in this thread's model: characters must match exactly.
extern ZEV_HELPER constinit thread_local boolean DCH_global_fx;
/// Whether FM was on at the end of this thread's model.
extern ZEV_HELPER constinit thread_local boolean DCH_global_fm;

/// Compiles `format`, which is terminated, for printing (`isToChar`) or reading. `nodes`
/// has room for zev::format::nodesNeeded(format). 0; or -1 with 1821, 1820 or 1878 for an
/// element that the kind of value cannot carry, and on reading 1810, 1814 or 1815 for
/// one that contradicts an earlier one.
ZEV_HELPER sb4 parse_format(FormatNode *nodes, const char *format, OCIError *errhp,
                            boolean isToChar, sb4 dateKind);
/// Whether an element from `firstNode` up to `thisNode` rules that one out, with 1810,
/// 1814, 1815 or 1821 recorded.
ZEV_HELPER boolean DuplicateNodeExists(OCIError *errhp, const FormatNode *firstNode,
                                       const FormatNode *thisNode, sb4 dateKind);
/// Whether something that is no digit must follow the number that `node` reads.
ZEV_HELPER boolean is_next_separator(const FormatNode *node);
}

namespace zev::format {

/// How many nodes, with the end node, compiling `format` writes at most.
std::size_t nodesNeeded(const char *format);

/// Forgets earlier records and adds `code` with the catalogue's text, whose "%s" is
/// `word` where one is given. Returns -1.
sb4 fail(OCIError *errhp, sb4 code);
sb4 fail(OCIError *errhp, sb4 code, const char *word);

/// A compiled model and the memory of its nodes: short models live on the stack.
class CompiledModel {
 public:
  explicit CompiledModel(const char *format) : format_(format) {}
  /// As parse_format; also -1, with 16506 recorded, without memory.
  sb4 compile(OCIError *errhp, bool isToChar, sb4 dateKind);
  FormatNode *nodes() { return nodes_; }
  /// How many there are, without the end node.
  std::size_t count() const { return static_cast<std::size_t>(end_ - nodes_); }

 private:
  bool makeRoom();

  static constexpr std::size_t kShort = 128;
  const char *format_;
  FormatNode *nodes_ = nullptr;
  const FormatNode *end_ = nullptr;
  zev::Malloced<FormatNode> heap_;
  FormatNode short_[kShort];
};

}  // namespace zev::format
