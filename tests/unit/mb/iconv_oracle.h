/// The system's iconv as a second opinion on encodings.
#pragma once

#include <gtest/gtest.h>
#include <iconv.h>

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace zev::test {

/// An encoding number and iconv's name for the same encoding.
struct KnownEncoding {
  int number;
  const char *name;
};

/// The encodings of more than one byte that iconv knows; some by two names that differ in
/// their vendors' characters.
inline constexpr KnownEncoding kMultibyteEncodings[] = {
    {1, "EUC-JP"}, {2, "EUC-CN"}, {3, "EUC-KR"}, {4, "EUC-TW"},   {5, "JOHAB"},
    {6, "UTF-8"},  {34, "SJIS"},  {34, "CP932"}, {35, "BIG5"},    {35, "CP950"},
    {36, "GBK"},   {36, "CP936"}, {37, "UHC"},   {38, "GB18030"},
};

inline constexpr KnownEncoding kOneByteEncodings[] = {
    {8, "ISO-8859-1"},   {9, "ISO-8859-2"},   {10, "ISO-8859-3"},  {11, "ISO-8859-4"},
    {12, "ISO-8859-9"},  {13, "ISO-8859-10"}, {14, "ISO-8859-13"}, {15, "ISO-8859-14"},
    {16, "ISO-8859-15"}, {17, "ISO-8859-16"}, {18, "CP1256"},      {19, "CP1258"},
    {20, "CP866"},       {21, "CP874"},       {22, "KOI8-R"},      {23, "CP1251"},
    {24, "CP1252"},      {25, "ISO-8859-5"},  {26, "ISO-8859-6"},  {27, "ISO-8859-7"},
    {28, "ISO-8859-8"},  {29, "CP1250"},      {30, "CP1253"},      {31, "CP1254"},
    {32, "CP1255"},      {33, "CP1257"},
};

inline void PrintTo(const KnownEncoding &encoding, std::ostream *out) {
  *out << encoding.number << ' ' << encoding.name;
}

inline std::string nameOf(const testing::TestParamInfo<KnownEncoding> &row) {
  std::string name;
  for (const char *c = row.param.name; *c; ++c) {
    if (*c != '-') name += *c;
  }
  return name;
}

/// Conversion of whole texts; opened for the test alone.
class Iconv {
 public:
  Iconv(const char *to, const char *from) : cd_(iconv_open(to, from)) {
    EXPECT_NE(cd_, reinterpret_cast<iconv_t>(-1)) << to << " from " << from;
  }
  ~Iconv() { iconv_close(cd_); }
  Iconv(const Iconv &) = delete;
  Iconv &operator=(const Iconv &) = delete;

  /// The converted text; none when any of it cannot be converted.
  std::optional<std::string> operator()(std::string_view source) const {
    char *from = const_cast<char *>(source.data());
    std::size_t left = source.size();
    std::string out(source.size() * 4 + 8, '\0');
    char *to = out.data();
    std::size_t room = out.size();
    iconv(cd_, nullptr, nullptr, nullptr, nullptr);
    const bool done = iconv(cd_, &from, &left, &to, &room) == 0 &&
                      iconv(cd_, nullptr, nullptr, &to, &room) == 0;
    if (!done) return {};
    out.resize(out.size() - room);
    return out;
  }

 private:
  iconv_t cd_;
};

inline std::string ucs4(char32_t c) {
  return {reinterpret_cast<const char *>(&c), sizeof c};
}

inline char32_t codePointOf(const std::string &ucs4) {
  char32_t c = 0;
  ucs4.copy(reinterpret_cast<char *>(&c), sizeof c);
  return c;
}

/// A character and its bytes.
struct Encoded {
  char32_t codePoint;
  std::string bytes;
};

/// All characters but NUL that iconv has in an encoding. It drops the tag characters.
inline std::vector<Encoded> charactersOf(const char *name) {
  const Iconv encode(name, "UCS-4LE");
  std::vector<Encoded> all;
  for (char32_t c = 1; c < 0x110000; ++c) {
    if (c == 0xD800) c = 0xE000;
    const auto bytes = encode(ucs4(c));
    if (bytes && !bytes->empty()) all.push_back({c, *bytes});
  }
  return all;
}

}  // namespace zev::test
