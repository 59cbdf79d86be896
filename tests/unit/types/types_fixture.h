/// What the tests of the converters share: environments, guarded buffers, error records,
/// and the rows that state a case.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/environment.h"
#include "tests/support/random_inputs.h"
#include "types/bytes.h"
#include "types/converters.h"
#include "types/server_types.h"

namespace zevtest {

using namespace std::string_literals;

/// In place of an indicator's value: the case passes no indicator.
constexpr int kNoIndicator = 100000;

/// An environment in which empty text and NULL are the same.
struct Session : Environment {
  explicit Session(ub4 mode = OCI_DEFAULT) : Environment(mode) {
    env->oracleVarchars = 1;
  }
};

/// The native bytes of a value.
template <class T>
std::string native(T value) {
  std::string bytes(sizeof value, '\0');
  std::memcpy(bytes.data(), &value, sizeof value);
  return bytes;
}

/// The bytes of a value in network order.
template <class T>
std::string network(T value) {
  std::string bytes = native(value);
  return {bytes.rbegin(), bytes.rend()};
}

/// ASCII text as UTF-16LE.
inline std::string utf16(const std::string &ascii) {
  std::string wide;
  for (const char c : ascii) wide += std::string{c, '\0'};
  return wide;
}

/// A block of exactly `size` bytes, filled with "~", so that the sanitizer sees a write
/// behind it.
inline std::unique_ptr<char[]> guarded(std::size_t size) {
  auto block = std::make_unique<char[]>(size);
  std::memset(block.get(), '~', size);
  return block;
}

/// A copy of `bytes` in a block of exactly their size.
inline std::unique_ptr<char[]> exactCopy(const std::string &bytes) {
  auto block = std::make_unique<char[]>(bytes.size());
  zev::copyBytes(block.get(), bytes.data(), bytes.size());
  return block;
}

/// Bytes in hexadecimal, as "C1 02".
std::string hex(const std::string &bytes);

/// The binary form of a numeric in text.
std::string wireNumeric(const std::string &number);

/// One fetch of a field. `bytes` is the whole target afterwards, "~" where nothing was
/// written, and longer than `cap` for the members that write behind it.
struct FetchCase {
  const char *name;
  Oid oid;
  ub2 dty;
  ub1 format;
  std::string value;
  ub4 cap;
  std::string bytes;
  ub4 length;
  int indicator = 0;
  int code = kNoRecord;
  sword result = 0;
  int returnCode = 0;
};

/// One fetch into a string value of `size` bytes. `bytes` is the string's whole room and
/// one byte more, `length` its length afterwards, 9 where it was not set.
struct StringFetchCase {
  const char *name;
  Oid oid;
  ub1 format;
  std::string value;
  ub4 cap;
  ub4 size;
  std::string bytes;
  ub4 length;
  int indicator = 0;
  int code = kNoRecord;
  sword result = 0;
  int returnCode = 0;
};

/// One bind. A missing buffer is told by `isNull`.
struct BindCase {
  const char *name;
  ToServerConverter convert;
  std::string value;
  sb4 length;
  std::string bytes;
  ub1 format;
  sword result = 0;
  int code = kNoRecord;
  bool isNull = false;
};

template <class Case>
std::string nameOf(const testing::TestParamInfo<Case> &info) {
  return info.param.name;
}

inline std::ostream &operator<<(std::ostream &out, const FetchCase &c) {
  return out << c.name;
}
inline std::ostream &operator<<(std::ostream &out, const StringFetchCase &c) {
  return out << c.name;
}
inline std::ostream &operator<<(std::ostream &out, const BindCase &c) {
  return out << c.name;
}

/// Runs a fetch through the dispatcher and compares all that is visible.
void expectFetch(Session &session, const FetchCase &c);
/// Runs a fetch through the converter alone, which writes behind the target where its
/// text or prefix is longer.
void expectDirectFetch(Session &session, const FetchCase &c);
/// Runs a fetch into a string value through the dispatcher and compares all that is
/// visible.
void expectStringFetch(Session &session, const StringFetchCase &c);
/// Runs a bind converter and compares all that is visible.
void expectBind(Session &session, const BindCase &c);

}  // namespace zevtest
