/// Hand-written converters, the yardstick of zevoci_bench_cells. They know the column's
/// type, trust what the server sent and report nothing.
#pragma once

#include <oratypes.h>

namespace bench {

/// The size of every target in bytes.
constexpr ub4 kTarget = 64;

/// Where a field goes, as a define has it.
struct Cell {
  char bytes[kTarget];
  ub4 length;
  sb2 indicator;
  ub2 returnCode;
};

/// Converts the `length` bytes of a field.
using ByHand = void (*)(const char *value, int length, Cell &cell);

/// INT4 text to a native int.
void integerByHand(const char *value, int length, Cell &cell);
/// Text to a NUL-terminated string.
void stringByHand(const char *value, int length, Cell &cell);
/// bytea in hex to bytes.
void binaryByHand(const char *value, int length, Cell &cell);
/// Plain decimal text, "[-]digits[.digits]" of up to 38 digits, to a VARNUM.
void varnumByHand(const char *value, int length, Cell &cell);

}  // namespace bench
