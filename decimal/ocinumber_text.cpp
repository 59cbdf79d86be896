/// OCINumbers from and to text by formats of digits, group marks and a point.
#include <orl.h>

#include <algorithm>
#include <cstring>
#include <new>
#include <string>
#include <string_view>

#include "core/edge_text.h"
#include "decimal/ocinumber_frame.h"
#include "types/number.h"

namespace {

using namespace zev::decimal;

constexpr char kGroup = 'G', kPoint = 'D', kComma = ',';

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

sword failWith(OCIError *errhp, sb4 code, std::string_view text) {
  AddErrorRecordStringX(errhp, OCI_ERROR, code, 1, std::string(text).c_str());
  return OCI_ERROR;
}

/// A number in plain notation.
std::string plainText(M_APM number, std::size_t places) {
  const auto integral = static_cast<std::size_t>(std::max(number->exponent, 1));
  std::string text(integral + places + 8, '\0');
  m_apm_to_fixpt_string(text.data(), static_cast<int>(places), number);
  text.resize(std::strlen(text.c_str()));
  return text;
}

/// The whole number, which is reported 41 characters long.
sword printMinimal(OCIError *errhp, M_APM number, OraText *buffer, ub4 *size) {
  constexpr ub4 kLeastRoom = 40, kReported = 41;
  const OCIEnv *env = zev::parentEnv(errhp);
  const auto unit = static_cast<ub4>(zev::terminatorSize(env));
  const ub4 room = *size;
  if (room < kLeastRoom * unit) return OCI_ERROR;
  const std::string text = plainText(number, kDecimals);
  const zev::EdgeResult edge(env, text);
  if (!edge) return edge.fail(errhp);
  *size = kReported * unit;
  edge.copyInto(buffer, room);
  return OCI_SUCCESS;
}

/// Digits in the places of a format, from the left; digits without a place follow.
std::string fill(std::string_view format, std::string_view digits) {
  std::string filled;
  for (const char c : format) {
    if (digits.empty()) break;
    if (c == kGroup) {
      filled += kComma;
    } else {
      filled += digits.front();
      digits.remove_prefix(1);
    }
  }
  return filled.append(digits);
}

sword printByFormat(OCIError *errhp, M_APM number, std::string_view format,
                    OraText *buffer, ub4 *size) {
  const std::size_t point = format.find(kPoint);
  const std::size_t decimals = point == format.npos ? 0 : format.size() - point - 1;
  const std::string printed = plainText(number, decimals);
  const bool hasSign = !isDigit(printed.front());
  if (format.starts_with(kGroup)) return failWith(errhp, 22061, format);
  std::string text = printed.substr(0, hasSign);
  text += fill(format, std::string_view(printed).substr(hasSign));
  if (text.size() > format.size() + hasSign)
    return zev::fail(errhp, 22065, o2pGetErrorText(22065));
  const std::size_t width = format.size() + 1;
  text.insert(0, width - std::min(width, text.size()), ' ');
  const zev::EdgeResult edge(zev::parentEnv(errhp), text);
  if (!edge) return edge.fail(errhp);
  const ub4 room = *size;
  if (edge.size() > room) return OCI_ERROR;
  *size = static_cast<ub4>(edge.size());
  edge.copyInto(buffer, room);
  return OCI_SUCCESS;
}

/// Whether the group marks of a text stand where those of its format do; with a record
/// where not.
bool areGroupsInPlace(OCIError *errhp, std::string_view text, std::string_view format) {
  const std::string_view whole = text;
  if (!isDigit(text.front())) {
    const char first = text.front();
    if (first == '+' || first == kComma) {
      const bool isBadFormat = format.starts_with(kGroup);
      failWith(errhp, isBadFormat ? 22061 : 22062, isBadFormat ? format : whole);
      return false;
    }
    text.remove_prefix(1);
  }
  if (format.starts_with(kGroup)) {
    failWith(errhp, 22061, format);
    return false;
  }
  const auto at = [](std::string_view s, std::size_t i) {
    return i < s.size() ? s[i] : '\0';
  };
  for (std::size_t i = 0; i < std::max(text.size(), format.size()); ++i) {
    if ((at(format, i) == kGroup) == (at(text, i) == kComma)) continue;
    failWith(errhp, 22062, whole);
    return false;
  }
  return true;
}

sword read(OCIError *errhp, std::string_view text, std::string_view format,
           OCINumber *number) {
  if (format.find(kGroup) != format.npos) {
    const bool hasEnd = text.find('\0') != text.npos || format.find('\0') != format.npos;
    if (hasEnd || !areGroupsInPlace(errhp, text, format)) return OCI_ERROR;
  }
  return ConvertStringToVARNUM(std::string(text).c_str(), number->OCINumberPart) == 0
             ? OCI_SUCCESS
             : OCI_ERROR;
}

/// Cuts a plain text with its point to as many decimals; to tens and so on where they are
/// negative.
void cut(char *text, sword decimals) {
  char *const point = std::strchr(text, '.');
  if (!point) return;
  if (decimals >= 0) {
    if (static_cast<std::size_t>(decimals) < std::strlen(point + 1))
      point[1 + decimals] = '\0';
    return;
  }
  *point = '\0';
  for (char *digit = point; decimals < 0 && digit > text && isDigit(digit[-1]);
       ++decimals)
    *--digit = '0';
}

/// `work`, which takes memory.
template <class Work>
sword withMemory(OCIError *errhp, const Work &work) {
  try {
    return work();
  } catch (const std::bad_alloc &) {
    return zev::fail(errhp, 16506);
  }
}

}  // namespace

extern "C" {

ZEV_API sword OCINumberToText(OCIError *err, const OCINumber *number, const OraText *fmt,
                              ub4 fmt_length, const OraText *, ub4, ub4 *buf_size,
                              OraText *buf) {
  return run(err, {{number, "2"}, {buf_size, "7"}, {buf, "8"}}, [&]() -> sword {
    if (*buf_size == 0) return OCI_ERROR;
    Workspace &w = workspace();
    if (!readNumber(*number, w.a)) return OCI_ERROR;
    return withMemory(err, [&] {
      const zev::EdgeText format(zev::parentEnv(err), fmt, fmt_length);
      if (!format) return format.fail(err);
      if (format.view() == "TM9") return printMinimal(err, w.a, buf, buf_size);
      return printByFormat(err, w.a, format.view(), buf, buf_size);
    });
  });
}

ZEV_API sword OCINumberFromText(OCIError *err, const OraText *str, ub4 str_length,
                                const OraText *fmt, ub4 fmt_length, const OraText *, ub4,
                                OCINumber *number) {
  return run(err, {{str, "2"}, {number, "8"}}, [&]() -> sword {
    if (str_length == 0) return OCI_ERROR;
    return withMemory(err, [&] {
      const OCIEnv *env = zev::parentEnv(err);
      const zev::EdgeText text(env, str, str_length), format(env, fmt, fmt_length);
      if (!text) return text.fail(err);
      if (!format) return format.fail(err);
      return read(err, text.view(), format.view(), number);
    });
  });
}

ZEV_API sword OCINumberTrunc(OCIError *err, const OCINumber *number, sword decplace,
                             OCINumber *result) {
  return run(err, {{number, "2"}, {result, "3"}}, [&]() -> sword {
    Workspace &w = workspace();
    if (!readNumber(*number, w.a)) return OCI_ERROR;
    char text[kPlainTextSize];
    m_apm_to_fixpt_string(text, kDecimals, w.a);
    cut(text, decplace);
    return ConvertStringToVARNUM(text, result->OCINumberPart) == 0 ? OCI_SUCCESS
                                                                   : OCI_ERROR;
  });
}

}  // extern "C"
