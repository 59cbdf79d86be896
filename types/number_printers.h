/// Binary number fields as text, for the character targets. Digits come out in the order
/// of the helper that prints them.
#pragma once

#include <string_view>

#include "core/owned.h"
#include "types/bytes.h"
#include "types/number_text.h"

namespace zev {

/// Room for the printed form of a binary field.
struct Scratch {
  char digits[100];
  Malloced<> longText;
};

/// Prints a binary field of `length` bytes into `scratch` and sets `out` to the text,
/// which ends in a NUL. False when the field cannot be printed.
using Printer = bool(const void *value, sb4 length, Scratch &scratch,
                     std::string_view &out);

Printer printNumeric;

/// As its unswapped bytes read, with 21 decimals.
Printer printUnswappedNumeric;

/// An integer by one of the helpers that print into an array of known size.
template <class Wire, auto Print>
bool printIntoArray(const void *value, sb4 length, Scratch &scratch,
                    std::string_view &out) {
  if (length < static_cast<sb4>(sizeof(Wire))) return false;
  sb4 printed = sizeof scratch.digits - 1;
  Print(readNetwork<Wire>(value), scratch.digits, &printed);
  scratch.digits[printed] = '\0';
  out = {scratch.digits, static_cast<std::size_t>(printed)};
  return true;
}

/// An integer by one of the helpers that end it with a NUL.
template <class Wire, auto Print>
bool printTerminated(const void *value, sb4 length, Scratch &scratch,
                     std::string_view &out) {
  if (length < static_cast<sb4>(sizeof(Wire))) return false;
  out = Print(readNetwork<Wire>(value), scratch.digits, 10);
  return true;
}

/// How a binary float is read.
enum class Order { Network, AsItStands };

/// Prints into `scratch`; see dtostr.
bool printDouble(double number, sb4 precision, boolean trim, Scratch &scratch,
                 std::string_view &out);

template <class Float, sb4 Precision, boolean Trim, Order Bytes>
bool printFloat(const void *value, sb4 length, Scratch &scratch, std::string_view &out) {
  if (length < static_cast<sb4>(sizeof(Float))) return false;
  const auto number =
      Bytes == Order::Network ? readNetwork<Float>(value) : readNative<Float>(value);
  return printDouble(static_cast<double>(number), Precision, Trim, scratch, out);
}

// The printers of the members, by row; an Array stops where its buffer does, and Raw
// floats are read as they stand.
inline constexpr auto printInt2 = printIntoArray<sb2, Int16ToCharArray>;
inline constexpr auto printInt4 = printTerminated<sb4, oci_itoa>;
inline constexpr auto printInt4Array = printIntoArray<sb4, Int32ToCharArray>;
inline constexpr auto printInt8 = printTerminated<sb8, _i64toa>;
inline constexpr auto printInt8Array = printIntoArray<sb8, Int64ToCharArray>;
inline constexpr auto printFloat4 = printFloat<float, 6, TRUE, Order::Network>;
inline constexpr auto printFloat8 = printFloat<double, 15, TRUE, Order::Network>;
inline constexpr auto printRawFloat4 = printFloat<float, 6, FALSE, Order::AsItStands>;
inline constexpr auto printRawFloat8 = printFloat<double, 6, FALSE, Order::AsItStands>;
inline constexpr auto printLongRawFloat8 =
    printFloat<double, 17, FALSE, Order::AsItStands>;
/// In order, and with all digits of the lowest value.
inline constexpr auto printWholeInt2 = printTerminated<sb2, oci_itoa>;

}  // namespace zev
