/// Converters that stay inside the program's buffers.
///
/// Some members put more bytes at their target than its size allows: a whole text behind
/// a length, a number of its full size. Guarded, they work in memory of the library and
/// the program gets as many bytes as it has room for; length, indicator and status are
/// the member's. The NUL that some members put one byte behind a text target stays,
/// because programs reckon with it.
#pragma once

#include <algorithm>

#include "core/owned.h"
#include "types/converters.h"
#include "types/fetch_rules.h"
#include "types/number.h"

namespace zev {

/// Runs a member that writes up to `PerByte` bytes for each byte of the field and `Fixed`
/// more.
template <FromServerConverter Fetch, ub4 PerByte, ub4 Fixed>
sword fetchGuarded(FETCH_PARAMS) {
  if (!target || !targetLength) return -1;
  const ub4 cap = *targetLength;
  const std::size_t most =
      static_cast<std::size_t>(std::max(valueLength, 0)) * PerByte + Fixed;
  if (cap >= most) return Fetch(FETCH_ARGUMENTS);
  char onStack[256];
  Malloced<> onHeap;
  char *room = onStack;
  if (most > sizeof onStack) {
    onHeap.reset(static_cast<char *>(std::malloc(most)));
    room = onHeap.get();
    if (!room) return fail(errhp, 16506);
  }
  copyBytes(room, target, cap);
  const sword status =
      Fetch(errhp, value, valueLength, format, room, targetLength, indicator, returnCode);
  copyBytes(target, room, cap);
  return status;
}

inline constexpr ub4 kLongPrefix = 4;  ///< a length, in a target too short for it
inline constexpr ub4 kPrintedShort =
    kLongPrefix + 6;  ///< a length and a printed 16-bit integer
inline constexpr ub4 kLongestFloat = sizeof(double);

// clang-format off
#define GUARDED_MEMBERS(X)                                                                \
  X(ConvertTEXTOIDToSQLT_VCS,       2, kLongPrefix)     /* a byte doubles in UTF-16 */        \
  X(ConvertTEXTOIDToSQLT_LVC,       2, kLongPrefix)                                           \
  X(ConvertTEXTOIDToSQLT_VBI,       0, kLongPrefix)                                           \
  X(ConvertTEXTOIDToSQLT_LVB,       0, kLongPrefix)                                           \
  X(ConvertTEXTOIDToSQLT_NUM,       0, kVarnumSize)                                       \
  X(ConvertTEXTOIDToSQLT_VNU,       0, kVarnumSize)                                       \
  X(ConvertBYTEAOIDToSQLT_VCS,      0, kLongPrefix)                                           \
  X(ConvertBYTEAOIDToSQLT_LVC,      0, kLongPrefix)                                           \
  X(ConvertBYTEAOIDToSQLT_VBI,      1, kLongPrefix)                                           \
  X(ConvertBYTEAOIDToSQLT_LVB,      1, kLongPrefix)                                           \
  X(ConvertCHAROIDToSQLT_VCS,       0, kLongPrefix)                                           \
  X(ConvertCHAROIDToSQLT_LVC,       0, kLongPrefix + 1)                                       \
  X(ConvertCHAROIDToSQLT_VNU,       0, kVarnumSize)                                       \
  X(ConvertINT2OIDToSQLT_VCS,       1, kPrintedShort)                                            \
  X(ConvertINT2OIDToSQLT_LVC,       1, kPrintedShort)                                            \
  X(ConvertINT2OIDToSQLT_VNU,       0, kVarnumSize)                                       \
  X(ConvertINT4OIDToSQLT_VNU,       0, kVarnumSize)                                       \
  X(ConvertINT8OIDToSQLT_VNU,       0, kVarnumSize)                                       \
  X(ConvertINT8OIDToSQLT_BDOUBLE,   0, kLongestFloat)                                            \
  X(ConvertFLOAT4OIDToSQLT_LVC,     0, kLongPrefix)                                           \
  X(ConvertFLOAT8OIDToSQLT_LVC,     0, kLongPrefix)                                           \
  X(ConvertFLOAT4OIDToSQLT_NUM,     0, kVarnumSize)                                       \
  X(ConvertFLOAT8OIDToSQLT_NUM,     0, kVarnumSize)                                       \
  X(ConvertFLOAT4OIDToSQLT_VNU,     0, kVarnumSize)                                       \
  X(ConvertFLOAT8OIDToSQLT_VNU,     0, kVarnumSize)                                       \
  X(ConvertFLOAT4OIDToSQLT_BFLOAT,  0, kLongestFloat)                                            \
  X(ConvertFLOAT8OIDToSQLT_BFLOAT,  0, kLongestFloat)                                            \
  X(ConvertFLOAT4OIDToSQLT_BDOUBLE, 0, kLongestFloat)                                            \
  X(ConvertFLOAT8OIDToSQLT_BDOUBLE, 0, kLongestFloat)                                            \
  X(ConvertNUMERICOIDToSQLT_VNU,    0, kVarnumSize)
// clang-format on

/// The converter to run on memory of the program in place of `Member`, which may be null.
template <FromServerConverter Member>
inline constexpr FromServerConverter kGuarded = Member;

#define GUARD(name, perByte, fixed)                     \
  template <>                                           \
  inline constexpr FromServerConverter kGuarded<name> = \
      fetchGuarded<name, perByte, fixed>;
GUARDED_MEMBERS(GUARD)
#undef GUARD
#undef GUARDED_MEMBERS

}  // namespace zev
