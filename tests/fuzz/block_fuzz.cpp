/// A text that is parsed as a call block: what comes out is a call whose parts follow
/// from the text, and which the other side can take apart again.
#include <cstdio>
#include <cstring>
#include <string>

#include "pqext/call.h"
#include "stmt/block.h"

namespace {

void require(bool holds) {
  if (!holds) __builtin_trap();
}

/// The blocks' echo and messages would flood the fuzzer's own, which holds the former
/// standard error stream by now.
void silence() {
  stdout = std::fopen("/dev/null", "w");
  stderr = stdout;
  require(stdout);
}

/// The call with "$1", "$2", ... in place of its placeholders.
std::string numbered(const std::string &call, int &count) {
  std::string text;
  for (std::size_t i = 0; i < call.size(); ++i) {
    if (call[i] != ':') {
      text += call[i];
      continue;
    }
    text += "$" + std::to_string(++count);
    i = call.find(' ', i) - 1;
  }
  return text;
}

void check(const callableStmt &block, const std::string &text) {
  const std::string call(block.text), name(block.name);
  require(call.starts_with("CALL " + name + " ( ") && call.ends_with(" );"));
  require(text.find(name) != text.npos || text.find('\'') != text.npos || !name.empty());
  require((block.hasReturn != 0) == (block.returnParam != nullptr));
  require(!block.returnParam || block.returnParam[0] == ':');
  int count = 0;
  const auto parsed = zev::pqext::parseCall(numbered(call, count));
  require(parsed.has_value() && parsed->name == name);
  require(static_cast<int>(parsed->arguments.size()) == count);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***) {
  silence();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  std::string text(reinterpret_cast<const char *>(data), size);
  std::erase(text, '\0');
  callableStmt *block = zev::parseBlock(text.c_str());
  if (block) check(*block, text);
  ReleaseOCICallableStmt(block);
  ScanGramKeywordLookup(text.c_str());
  zev::pqext::parseCall(text);
  return 0;
}
