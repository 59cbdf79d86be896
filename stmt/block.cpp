#include "stmt/block.h"

#include <algorithm>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include "core/keyword_lookup.h"
#include "core/owned.h"
#include "stmt/block_parser.h"
#include "stmt/block_scanner.h"

thread_local callableStmt *parse_stmt_node = nullptr;

namespace {

constexpr zev::Keyword kKeywords[] = {{"begin", 260}, {"end", 261}};

/// A scanner over a text of its own.
class Scanner {
 public:
  Scanner() = default;
  ~Scanner() { finish(); }
  Scanner(const Scanner &) = delete;
  Scanner &operator=(const Scanner &) = delete;

  void start(const char *text) {
    finish();
    text_ = text;
    text_.append(2, '\0');
    if (blocklex_init(&scanner_) != 0) throw std::bad_alloc();
    block_scan_buffer(text_.data(), text_.size(), scanner_);
  }
  void finish() {
    if (scanner_) blocklex_destroy(scanner_);
    scanner_ = nullptr;
    text_.clear();
  }
  yyscan_t get() const { return scanner_; }

 private:
  std::string text_;
  yyscan_t scanner_ = nullptr;
};

thread_local Scanner scanner;

}  // namespace

void *zev::blockScanner() {
  return scanner.get();
}

callableStmt *zev::parseBlock(const char *text) {
  ReleaseOCICallableStmt(parse_stmt_node);
  parse_stmt_node = nullptr;
  int outcome = 1;
  try {
    if (scanner_init(text) != 0) return nullptr;
    outcome = yyparse();
  } catch (const std::bad_alloc &) {
    outcome = 2;
  }
  scanner_finish();
  callableStmt *node = parse_stmt_node;
  parse_stmt_node = nullptr;
  if (outcome == 0) return node;
  ReleaseOCICallableStmt(node);
  return nullptr;
}

extern "C" {

int scanner_init(const char *text) {
  try {
    scanner.start(text);
    return 0;
  } catch (const std::bad_alloc &) {
    scanner.finish();
    return -1;
  }
}

void scanner_finish() {
  scanner.finish();
}

void ReleaseOCICallableStmt(callableStmt *node) {
  if (!node || node->tag != kCallableStmtTag) return;
  node->tag = 0;
  std::free(node->text);
  std::free(node->returnParam);
  std::free(node->name);
  std::free(node);
}

int ScanGramKeywordLookup(const char *word) {
  return zev::findKeyword(kKeywords, word);
}

char *make_str(const char *text) {
  char *copy = strdup(text);
  if (!copy) throw std::bad_alloc();
  return copy;
}

char *cat_str(int count, ...) {
  std::vector<zev::Malloced<>> parts;
  va_list list;
  va_start(list, count);
  for (int i = 0; i < count; ++i) parts.emplace_back(va_arg(list, char *));
  va_end(list);
  if (count == 1) return parts[0].release();
  std::string joined;
  for (const auto &part : parts) {
    if (&part != &parts.front()) joined += ' ';
    joined += part.get();
  }
  return make_str(joined.c_str());
}

}  // extern "C"
