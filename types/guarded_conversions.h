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
#include "types/converters_pending.h"
#include "types/fetch_rules.h"
#include "types/number.h"

namespace zev {

/// Runs a member that writes up to `PerByte` bytes for each byte of the field and `Fixed`
/// more.
template <FromServerConverter Fetch, ub4 PerByte, ub4 Fixed>
sword fetchGuarded(FETCH_PARAMS) {
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

namespace guards {
inline constexpr ub4 kPrefix = 4;           ///< a length, in a target too short for it
inline constexpr ub4 kShort = kPrefix + 6;  ///< a length and a printed 16-bit integer
inline constexpr ub4 kFloat = sizeof(double);
}  // namespace guards

// clang-format off
#define GUARDED_MEMBERS(X)                                                                \
  X(ConvertTEXTOIDToSQLT_VCS,       2, kPrefix)     /* a byte doubles in UTF-16 */        \
  X(ConvertTEXTOIDToSQLT_LVC,       2, kPrefix)                                           \
  X(ConvertTEXTOIDToSQLT_VBI,       0, kPrefix)                                           \
  X(ConvertTEXTOIDToSQLT_LVB,       0, kPrefix)                                           \
  X(ConvertTEXTOIDToSQLT_NUM,       0, kVarnumSize)                                       \
  X(ConvertTEXTOIDToSQLT_VNU,       0, kVarnumSize)                                       \
  X(ConvertBYTEAOIDToSQLT_VCS,      0, kPrefix)                                           \
  X(ConvertBYTEAOIDToSQLT_LVC,      0, kPrefix)                                           \
  X(ConvertBYTEAOIDToSQLT_VBI,      1, kPrefix)                                           \
  X(ConvertBYTEAOIDToSQLT_LVB,      1, kPrefix)                                           \
  X(ConvertCHAROIDToSQLT_VCS,       0, kPrefix)                                           \
  X(ConvertCHAROIDToSQLT_LVC,       0, kPrefix + 1)                                       \
  X(ConvertCHAROIDToSQLT_VNU,       0, kVarnumSize)                                       \
  X(ConvertINT2OIDToSQLT_VCS,       1, kShort)                                            \
  X(ConvertINT2OIDToSQLT_LVC,       1, kShort)                                            \
  X(ConvertINT2OIDToSQLT_VNU,       0, kVarnumSize)                                       \
  X(ConvertINT4OIDToSQLT_VNU,       0, kVarnumSize)                                       \
  X(ConvertINT8OIDToSQLT_VNU,       0, kVarnumSize)                                       \
  X(ConvertINT8OIDToSQLT_BDOUBLE,   0, kFloat)                                            \
  X(ConvertFLOAT4OIDToSQLT_LVC,     0, kPrefix)                                           \
  X(ConvertFLOAT8OIDToSQLT_LVC,     0, kPrefix)                                           \
  X(ConvertFLOAT4OIDToSQLT_NUM,     0, kVarnumSize)                                       \
  X(ConvertFLOAT8OIDToSQLT_NUM,     0, kVarnumSize)                                       \
  X(ConvertFLOAT4OIDToSQLT_VNU,     0, kVarnumSize)                                       \
  X(ConvertFLOAT8OIDToSQLT_VNU,     0, kVarnumSize)                                       \
  X(ConvertFLOAT4OIDToSQLT_BFLOAT,  0, kFloat)                                            \
  X(ConvertFLOAT8OIDToSQLT_BFLOAT,  0, kFloat)                                            \
  X(ConvertFLOAT4OIDToSQLT_BDOUBLE, 0, kFloat)                                            \
  X(ConvertFLOAT8OIDToSQLT_BDOUBLE, 0, kFloat)                                            \
  X(ConvertNUMERICOIDToSQLT_VNU,    0, kVarnumSize)
// clang-format on

/// The converter to run on memory of the program in place of `member`, which may be null.
constexpr FromServerConverter guarded(FromServerConverter member) {
#define GUARD(name, perByte, fixed) \
  if (member == name) return fetchGuarded<name, perByte, fixed>;
  using namespace guards;
  GUARDED_MEMBERS(GUARD)
#undef GUARD
  return member;
}
#undef GUARDED_MEMBERS

}  // namespace zev
