/// The first byte of the input picks a kind of value; up to the first newline stands a
/// format model, and behind it a text. The model prints a value made of the text's first
/// bytes into a block of the size that was asked for, and reads the text. What was
/// printed has the length that it tells, reading leaves the text alone, and each failure
/// but that of an element without a printer leaves exactly one record.
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include "core/owned.h"
#include "types/ocitimestamp/format_execution.h"
#include "zevoci/errors.h"
#include "zevoci/list.h"

namespace {

using namespace zev::format;

void require(bool holds) {
  if (!holds) __builtin_trap();
}

OCIError *errorHandle() {
  static OCIError *const errhp = [] {
    OCIEnv *env = nullptr;
    OCIEnvCreate(&env, OCI_DEFAULT, nullptr, nullptr, nullptr, nullptr, 0, nullptr);
    void *handle = nullptr;
    OCIHandleAlloc(env, &handle, OCI_HTYPE_ERROR, 0, nullptr);
    return static_cast<OCIError *>(handle);
  }();
  return errhp;
}

/// Text in a block of exactly its size.
using Block = std::unique_ptr<char[]>;
Block blockOf(const std::string &text) {
  Block block(new char[text.size() + 1]);
  std::memcpy(block.get(), text.c_str(), text.size() + 1);
  return block;
}

int takeRecords() {
  const int count = list_length(errorHandle()->records);
  ClearErrorHandle(errorHandle());
  return count;
}

void checkFailure(bool failed) {
  const int count = takeRecords();
  require(failed ? count <= 1 : count == 0);
}

/// A value whose fields are the bytes of `text`, in and beyond their ranges.
TmToChar valueOf(const std::string &text) {
  TmToChar value{};
  const std::size_t size = std::min(text.size(), offsetof(PGtm, tm_isdst));
  std::memcpy(&value.tm, text.data(), size);
  if (text.size() > size + sizeof value.fsec) {
    std::memcpy(&value.fsec, text.data() + size, sizeof value.fsec);
    value.tzHour = static_cast<sb1>(text.back());
    value.tzMinute = static_cast<ub1>(text.front());
  }
  return value;
}

void checkPrinting(const std::string &format, const TmToChar &value, sb4 kind) {
  const Block model = blockOf(format);
  const zev::Malloced<char> text(
      datetime_to_char_body(errorHandle(), &value, model.get(), kind));
  checkFailure(!text);
  CompiledModel compiled(model.get());
  if (compiled.compile(errorHandle(), true, kind) == 0 && text)
    require(std::strlen(text.get()) < roomFor(compiled.nodes()));
  takeRecords();
}

void checkReading(const std::string &format, const std::string &text, sb4 kind) {
  const Block model = blockOf(format);
  const Block block = blockOf(text);
  CompiledModel compiled(model.get());
  TmFromChar fields{};
  bool failed = compiled.compile(errorHandle(), false, kind) != 0;
  if (!failed)
    failed =
        !DCH_processor(errorHandle(), compiled.nodes(), block.get(), 0, kind, &fields);
  checkFailure(failed);
  PGtm tm;
  double fsec;
  const sb4 status =
      do_to_timestamp(errorHandle(), block.get(), model.get(), &tm, &fsec, kind);
  require(format.empty() || (status != 0) == failed);
  require(text == block.get());
  takeRecords();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  if (size == 0) return 0;
  const sb4 kind = data[0] % 4 + 1;
  std::string input(reinterpret_cast<const char *>(data + 1), size - 1);
  const std::size_t line = std::min(input.find('\n'), input.size());
  std::string format = input.substr(0, line);
  std::string text = input.substr(std::min(line + 1, input.size()));
  const TmToChar value = valueOf(text);
  std::erase(format, '\0');
  std::erase(text, '\0');
  checkPrinting(format, value, kind);
  checkReading(format, text, kind);
  return 0;
}
