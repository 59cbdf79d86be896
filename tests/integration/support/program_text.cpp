#include "tests/integration/support/program_text.h"

#include <iconv.h>

#include <cstdlib>
#include <cstring>
#include <stdexcept>

namespace zev::test {
namespace {

// Identifiers of the server may hold letters of all scripts.
constexpr ProgramText kTexts[] = {
    {"", "UTF-8", OCI_DEFAULT, 0, 1, ""},
    {"UTF-16", "UTF-16LE", OCI_UTF16, 0, 2, "_äЖ漢한😀"},
    {"WIN1251", "CP1251", OCI_DEFAULT, 23, 1, "_Жягь"},
};

const ProgramText &pick() {
  const char *wanted = std::getenv("ZEVOCI_TEST_TEXT");
  for (const ProgramText &text : kTexts) {
    if (std::string_view(text.name) == (wanted ? wanted : "")) return text;
  }
  throw std::runtime_error(std::string("ZEVOCI_TEST_TEXT names no encoding: ") + wanted);
}

std::string convert(const char *to, const char *from, std::string_view text) {
  const iconv_t conversion = iconv_open(to, from);
  const auto none = reinterpret_cast<iconv_t>(-1);  // NOLINT(performance-no-int-to-ptr)
  if (conversion == none) throw std::runtime_error("iconv_open");
  std::string out(4 * text.size(), '\0');
  char *in = const_cast<char *>(text.data()), *at = out.data();
  std::size_t left = text.size(), room = out.size();
  const bool failed = iconv(conversion, &in, &left, &at, &room) == std::size_t(-1);
  iconv_close(conversion);
  if (failed) throw std::runtime_error("no text of this run: " + std::string(text));
  out.resize(out.size() - room);
  return out;
}

}  // namespace

const ProgramText &programText() {
  static const ProgramText &picked = pick();
  return picked;
}

sword createEnv(OCIEnv **env, ub4 mode) {
  const ProgramText &text = programText();
  mode |= text.mode;
  return text.charset
             ? OCIEnvNlsCreate(env, mode, nullptr, nullptr, nullptr, nullptr, 0, nullptr,
                               text.charset, 0)
             : OCIEnvCreate(env, mode, nullptr, nullptr, nullptr, nullptr, 0, nullptr);
}

std::string encoded(std::string_view utf8) {
  const char *name = programText().iconvName;
  return *programText().name ? convert(name, "UTF-8", utf8) : std::string(utf8);
}

std::string decoded(std::string_view bytes) {
  const char *name = programText().iconvName;
  return *programText().name ? convert("UTF-8", name, bytes) : std::string(bytes);
}

std::string decodedUpToEnd(const void *text) {
  if (!isUtf16()) return decoded(static_cast<const char *>(text));
  const auto *units = static_cast<const char *>(text);
  std::size_t length = 0;
  while (units[length] || units[length + 1]) length += 2;
  return decoded({units, length});
}

std::string dressed(std::string_view ascii) {
  return std::string(ascii) + programText().letters;
}

Given::Given(std::string_view utf8) {
  const std::string text = encoded(utf8);
  size_ = text.size();
  bytes_.assign(text.begin(), text.end());
  bytes_.resize(size_ + programText().unit, '\0');
}

void put(void *buffer, std::string_view utf8) {
  Given given(utf8);
  std::memcpy(buffer, given.data(), given.room<std::size_t>());
}

}  // namespace zev::test
