/// How a test program's text is encoded, which each run of the tests picks anew.
#pragma once

#include <oci.h>

#include <string>
#include <string_view>
#include <vector>

namespace zev::test {

/// An encoding of programs. The variable ZEVOCI_TEST_TEXT of the process names the one of
/// this run: "UTF-16" or "WIN1251"; without it text is the server's own UTF-8, which an
/// environment of no particular encoding passes as it stands.
struct ProgramText {
  const char *name;
  const char *iconvName;
  ub4 mode;             ///< of OCIEnvCreate
  ub2 charset;          ///< of OCIEnvNlsCreate, or 0
  std::size_t unit;     ///< bytes of an ASCII character, and of a terminator
  const char *letters;  ///< of several scripts, as an identifier may hold them
};
const ProgramText &programText();

inline bool isUtf16() {
  return programText().unit == 2;
}

/// An environment of this run's encoding.
sword createEnv(OCIEnv **env, ub4 mode = OCI_DEFAULT);

/// UTF-8 as a program of this run writes it, and back.
std::string encoded(std::string_view utf8);
std::string decoded(std::string_view bytes);
/// What a program has in a buffer, up to its terminator.
std::string decodedUpToEnd(const void *text);
/// The number of bytes that so many ASCII characters take.
template <class T>
T bytes(T characters) {
  return static_cast<T>(characters * programText().unit);
}

/// A text with letters of this run's scripts behind it: an identifier where `ascii` is
/// one.
std::string dressed(std::string_view ascii);

/// A text of the program's to be passed as an argument: encoded, with a terminator.
class Given {
 public:
  explicit Given(std::string_view utf8);
  const OraText *text() const { return reinterpret_cast<const OraText *>(bytes_.data()); }
  OraText *text() { return reinterpret_cast<OraText *>(bytes_.data()); }
  void *data() { return bytes_.data(); }
  /// Bytes without the terminator, and with it.
  template <class T = ub4>
  T size() const {
    return static_cast<T>(size_);
  }
  template <class T = sb4>
  T room() const {
    return static_cast<T>(bytes_.size());
  }

 private:
  std::vector<char> bytes_;
  std::size_t size_;
};

/// Puts a text with its terminator into a program's buffer, which is large enough.
void put(void *buffer, std::string_view utf8);

}  // namespace zev::test
