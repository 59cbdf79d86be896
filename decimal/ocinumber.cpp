/// Arithmetic on OCINumbers: each function is a row.
#include <orl.h>

#include <cmath>

#include "decimal/ocinumber_frame.h"

namespace zev::decimal {

Workspace &workspace() {
  thread_local Workspace numbers;
  return numbers;
}

}  // namespace zev::decimal

namespace {

using namespace zev::decimal;

bool hasNoLength(const OCINumber *number) {
  return number->OCINumberPart[0] == 0;
}

/// `compute` on a number, whose checks are done.
template <class Compute>
sword computeOne(const OCINumber *number, OCINumber *result, const Compute &compute) {
  Workspace &w = workspace();
  if (!readNumber(*number, w.a)) return OCI_ERROR;
  compute(w);
  return deliver(w, result);
}

/// A function of one number, whose result is reported by `position`.
template <class Compute>
sword unary(OCIError *errhp, const OCINumber *number, const char *position,
            OCINumber *result, const Compute &compute) {
  return run(errhp, {{number, "2"}, {result, position}},
             [&] { return computeOne(number, result, compute); });
}

/// A function of two numbers. Where `emptySecond` is given, encodings without a length
/// count as nulls, and the second one is reported by it.
template <class Compute>
sword binary(OCIError *errhp, const OCINumber *a, const OCINumber *b, OCINumber *result,
             const char *emptySecond, const Compute &compute) {
  return run(errhp, {{a, "2"}, {b, "3"}, {result, "4"}}, [&]() -> sword {
    if (emptySecond) {
      if (hasNoLength(a)) return zev::failArgument(errhp, "2");
      if (hasNoLength(b)) return zev::failArgument(errhp, emptySecond);
    }
    Workspace &w = workspace();
    if (!readNumber(*a, w.a) || !readNumber(*b, w.b)) return OCI_ERROR;
    compute(w);
    return deliver(w, result);
  });
}

/// The logarithm of `number` to a base, each part to as many places.
void logarithm(const Workspace &w) {
  m_apm_log(w.rest, kDecimals, w.b);
  m_apm_log(w.b, kDecimals, w.a);
  m_apm_divide(w.result, kDecimals, w.rest, w.b);
}

void shift(const Workspace &w, sword digits) {
  m_apm_set_double(w.b, std::pow(10.0, digits));
  m_apm_multiply(w.result, w.a, w.b);
}

}  // namespace

extern "C" {

// clang-format off
// A number in place:           what is computed
#define IN_PLACE(X)                                                                      \
  X(OCINumberInc,     m_apm_add(w.result, w.a, MM_One))                                  \
  X(OCINumberDec,     m_apm_subtract(w.result, w.a, MM_One))

// Of one number:               what is computed
#define UNARY(X)                                                                         \
  X(OCINumberNeg,     m_apm_negate(w.result, w.a))                                       \
  X(OCINumberCeil,    m_apm_ceil(w.result, w.a))                                         \
  X(OCINumberFloor,   m_apm_floor(w.result, w.a))                                        \
  X(OCINumberSqrt,    m_apm_sqrt(w.result, kDecimals, w.a))                              \
  X(OCINumberSin,     m_apm_sin(w.result, kDecimals, w.a))                               \
  X(OCINumberCos,     m_apm_cos(w.result, kDecimals, w.a))                               \
  X(OCINumberTan,     m_apm_tan(w.result, kDecimals, w.a))                               \
  X(OCINumberArcSin,  m_apm_arcsin(w.result, kDecimals, w.a))                            \
  X(OCINumberArcCos,  m_apm_arccos(w.result, kDecimals, w.a))                            \
  X(OCINumberArcTan,  m_apm_arctan(w.result, kDecimals, w.a))                            \
  X(OCINumberHypSin,  m_apm_sinh(w.result, kDecimals, w.a))                              \
  X(OCINumberHypCos,  m_apm_cosh(w.result, kDecimals, w.a))                              \
  X(OCINumberHypTan,  m_apm_tanh(w.result, kDecimals, w.a))                              \
  X(OCINumberExp,     m_apm_exp(w.result, kDecimals, w.a))                               \
  X(OCINumberLn,      m_apm_log(w.result, kDecimals, w.a))

// Of two numbers:    empty second    what is computed
#define BINARY(X)                                                                        \
  X(OCINumberAdd,     "3",          m_apm_add(w.result, w.a, w.b))         \
  X(OCINumberSub,     "3",          m_apm_subtract(w.result, w.a, w.b))    \
  X(OCINumberMul,     "3",          m_apm_multiply(w.result, w.a, w.b))    \
  X(OCINumberDiv,     "3",          m_apm_divide(w.result, kDecimals, w.a, w.b)) \
  X(OCINumberArcTan2, "",           m_apm_arctan2(w.result, kDecimals, w.a, w.b)) \
  X(OCINumberMod,     nullptr,      m_apm_integer_div_rem(w.rest, w.result, w.a, w.b)) \
  X(OCINumberPower,   nullptr,      m_apm_pow(w.result, kDecimals, w.a, w.b)) \
  X(OCINumberLog,     nullptr,      logarithm(w))

// Of a number and an integer:  position of the result, what is computed
#define WITH_INTEGER(X)                                                                  \
  X(OCINumberIntPower, "4", (m_apm_set_long(w.b, n), m_apm_pow(w.result, kDecimals, w.a, w.b))) \
  X(OCINumberShift,    "3", shift(w, n))
// clang-format on

#define MEMBER(name, compute)                                                 \
  ZEV_API sword name(OCIError *err, OCINumber *number) {                      \
    return run(err, {{number, "2"}}, [&] {                                    \
      return computeOne(number, number, [](const Workspace &w) { compute; }); \
    });                                                                       \
  }
IN_PLACE(MEMBER)
#undef MEMBER

#define MEMBER(name, compute)                                                     \
  ZEV_API sword name(OCIError *err, const OCINumber *number, OCINumber *result) { \
    return unary(err, number, "3", result, [](const Workspace &w) { compute; });  \
  }
UNARY(MEMBER)
#undef MEMBER

#define MEMBER(name, emptySecond, compute)                                              \
  ZEV_API sword name(OCIError *err, const OCINumber *a, const OCINumber *b,             \
                     OCINumber *result) {                                               \
    return binary(err, a, b, result, emptySecond, [](const Workspace &w) { compute; }); \
  }
BINARY(MEMBER)
#undef MEMBER

#define MEMBER(name, position, compute)                                                \
  ZEV_API sword name(OCIError *err, const OCINumber *number, const sword n,            \
                     OCINumber *result) {                                              \
    return unary(err, number, position, result, [n](const Workspace &w) { compute; }); \
  }
WITH_INTEGER(MEMBER)
#undef MEMBER

ZEV_API sword OCINumberAbs(OCIError *err, const OCINumber *number, OCINumber *result) {
  return run(err, {{number, "2"}, {result, "3"}}, [&]() -> sword {
    constexpr ub1 kPositive = 0x80;
    if (number->OCINumberPart[1] & kPositive) return OCINumberAssign(err, number, result);
    return computeOne(number, result,
                      [](const Workspace &w) { m_apm_absolute_value(w.result, w.a); });
  });
}

ZEV_API sword OCINumberPrec(OCIError *err, const OCINumber *number, eword nDigs,
                            OCINumber *result) {
  return run(err, {{number, "2"}, {result, "3"}}, [&]() -> sword {
    if (nDigs <= 0) {
      writeZero(*result);
      return OCI_ERROR;
    }
    return computeOne(number, result, [nDigs](const Workspace &w) {
      m_apm_round(w.result, nDigs - 1, w.a);
    });
  });
}

ZEV_API sword OCINumberRound(OCIError *err, const OCINumber *number, sword decplace,
                             OCINumber *result) {
  constexpr sword kMostDecimals = 38;
  return run(err, {{number, "2"}, {result, "3"}}, [&]() -> sword {
    if (decplace < 0) return zev::fail(err, 3001, o2pGetErrorText(3001));
    if (decplace > kMostDecimals) return zev::fail(err, 1426, o2pGetErrorText(1426));
    if (decplace == kMostDecimals) return OCI_SUCCESS;
    return computeOne(number, result, [decplace](const Workspace &w) {
      m_apm_round(w.result, w.a->exponent + decplace - 1, w.a);
    });
  });
}

}  // extern "C"
