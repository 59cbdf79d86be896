/// An arbitrary-precision decimal engine: numbers, the four operations, rounding, text
/// and machine numbers, and the elementary functions.
///
/// `places` is everywhere the count of digits wanted after the first significant one: 40
/// places are 41 digits. Where a function takes it, the result is rounded to it, halves
/// away from zero, unless it says otherwise. A result may stand in the place of an
/// operand only where that is said.
///
/// Bad input writes a warning to standard error and gives zero. Exhausted memory ends the
/// process with status 100. A number, once made, may be used by any one thread at a time;
/// all else that the engine keeps (constants, scratch numbers, caches, the random state)
/// belongs to the thread that called it and is released when that thread ends.
#pragma once

#include <cstdint>

#ifdef ZEVOCI_HIDE_HELPERS
#define ZEV_HELPER
#else
#define ZEV_HELPER __attribute__((visibility("default")))
#endif

/// A decimal number, 0.d1d2d3... times ten to the power of its exponent. In normal form
/// neither the first nor the last digit is 0, what stands in a byte behind the last digit
/// is 0, and zero has sign 0, exponent 0 and one digit.
struct M_APM_struct {
  unsigned char *digits;  ///< two digits a byte, 0 to 99, most significant first
  std::int64_t cookie;    ///< 0x6BCC9AE5 while the number lives, 0x0FFFFFF0 once freed
  std::int32_t refCount;  ///< 1; not used
  std::int32_t capacityBytes;  ///< bytes of `digits` that may be used
  std::int32_t digitCount;     ///< decimal digits that count
  std::int32_t exponent;
  std::int32_t sign;  ///< 1, -1, or 0 for zero
};
using M_APM = M_APM_struct *;

extern "C" {

// --- Making and freeing ---

/// A new number, zero, for m_apm_free to release. The first call of a thread makes its
/// constants.
ZEV_HELPER M_APM m_apm_init(void);
/// Frees a number. One that is not alive draws a warning and is left alone.
ZEV_HELPER void m_apm_free(M_APM number);
/// Releases everything that the engine keeps for this thread, the constants included; the
/// next call makes it anew. Numbers that the caller made stay.
ZEV_HELPER void m_apm_free_all_mem(void);
/// Gives memory that earlier calls needed back to the system; the constants are made anew
/// at once.
ZEV_HELPER void m_apm_trim_mem_usage(void);

// --- Constants of the calling thread; null before its first m_apm_init ---

#define ZEV_DECIMAL_CONSTANT extern ZEV_HELPER constinit thread_local M_APM
ZEV_DECIMAL_CONSTANT MM_Zero, MM_One, MM_Two, MM_Three, MM_Four, MM_Five, MM_Ten;
ZEV_DECIMAL_CONSTANT MM_0_5, MM_0_85;
/// 1/125, 1/64 and 1/256, which shorten the angle of a series; 8, 16 and 20.
ZEV_DECIMAL_CONSTANT MM_5x_125R, MM_5x_64R, MM_5x_256R;
ZEV_DECIMAL_CONSTANT MM_5x_Eight, MM_5x_Sixteen, MM_5x_Twenty;
/// Transcendental constants to 128 digits.
ZEV_DECIMAL_CONSTANT MM_LOG_2_BASE_E, MM_LOG_3_BASE_E, MM_LOG_10_BASE_E;
ZEV_DECIMAL_CONSTANT MM_LOG_E_BASE_10, MM_E, MM_PI, MM_HALF_PI, MM_2_PI;
/// Those that grow on demand: pi, its half and its double to MM_lc_PI_digits digits; the
/// logarithms of 2 and 10 and the reciprocal of the latter to MM_lc_log_digits.
ZEV_DECIMAL_CONSTANT MM_lc_PI, MM_lc_HALF_PI, MM_lc_2_PI;
ZEV_DECIMAL_CONSTANT MM_lc_log2, MM_lc_log10, MM_lc_log10R;
#undef ZEV_DECIMAL_CONSTANT
extern ZEV_HELPER constinit thread_local int MM_lc_PI_digits, MM_lc_log_digits;
/// The least precision that a caller need ever ask for.
extern ZEV_HELPER constinit thread_local int MM_cpp_min_precision;

// --- Setting and reading ---

/// Reads an optional sign, digits with at most one ".", and an optional exponent behind
/// "e" or "E"; blanks and tabs may lead. A text without digits is zero. Anything else
/// draws three warnings and gives zero, as does an exponent that does not fit 32 bits.
ZEV_HELPER void m_apm_set_string(M_APM r, const char *s);
ZEV_HELPER void m_apm_set_long(M_APM r, long v);
/// Keep 15 significant digits. Infinity and NaN draw a warning and give zero.
ZEV_HELPER void m_apm_set_double(M_APM r, double v);
ZEV_HELPER void m_apm_set_float(M_APM r, float v);

/// Scientific text, as "-1.25E+3", with `places` digits behind the point, or with all of
/// them (one at least) when `places` is negative. `s` must have room for `places`, or
/// `digitCount`, and 16 more.
ZEV_HELPER void m_apm_to_string(char *s, int places, M_APM a);
/// Plain text, as "-1250.00", with `places` digits behind the point, halves rounded away
/// from zero; with all of them, one at least, when `places` is negative; without a point
/// when it is 0. `s` must have room for all digits before and behind the point and 4
/// more.
ZEV_HELPER void m_apm_to_fixpt_string(char *s, int places, M_APM a);
/// The same with `radix` for the point and, unless it is 0, `separator` after each
/// `group` digits that stand before it. "-" is written only where a digit other than 0
/// is.
ZEV_HELPER void m_apm_to_fixpt_stringex(char *s, int places, M_APM a, char radix,
                                        char separator, int group);
/// The same into memory that the caller frees with free(); null when there is none.
ZEV_HELPER char *m_apm_to_fixpt_stringexp(int places, M_APM a, char radix, char separator,
                                          int group);
/// The integer part as plain text. `s` must have room for its digits and 3 more.
ZEV_HELPER void m_apm_to_integer_string(char *s, M_APM a);

/// `r` may be `a` in these three.
ZEV_HELPER void m_apm_copy(M_APM r, M_APM a);
ZEV_HELPER void m_apm_negate(M_APM r, M_APM a);
ZEV_HELPER void m_apm_absolute_value(M_APM r, M_APM a);

/// -1, 0 or 1 as `a` is less than, equal to or greater than `b`.
ZEV_HELPER int m_apm_compare(M_APM a, M_APM b);
/// The sign: -1, 0 or 1.
ZEV_HELPER int m_apm_sign(M_APM a);
/// The power of ten of the first digit: 2 for 123. 0 for zero.
ZEV_HELPER int m_apm_exponent(M_APM a);
/// The digits from the first to the last that is not 0; 1 for zero.
ZEV_HELPER int m_apm_significant_digits(M_APM a);
/// 1 or 0; a number with a fraction is neither even nor odd.
ZEV_HELPER int m_apm_is_integer(M_APM a);
ZEV_HELPER int m_apm_is_even(M_APM a);
ZEV_HELPER int m_apm_is_odd(M_APM a);

// --- Exact operations; `r` may be an operand ---

ZEV_HELPER void m_apm_add(M_APM r, M_APM a, M_APM b);
ZEV_HELPER void m_apm_subtract(M_APM r, M_APM a, M_APM b);
ZEV_HELPER void m_apm_multiply(M_APM r, M_APM a, M_APM b);
/// The integer part of a / b; zero and a warning when `b` is zero.
ZEV_HELPER void m_apm_integer_divide(M_APM r, M_APM a, M_APM b);
/// Quotient as above and remainder, a = q b + rem with the sign of `a`. `q` and `rem`
/// must differ from each other and from the operands.
ZEV_HELPER void m_apm_integer_div_rem(M_APM q, M_APM rem, M_APM a, M_APM b);
/// The largest integer not above, the smallest not below `a`; `r` may be `a`.
ZEV_HELPER void m_apm_floor(M_APM r, M_APM a);
ZEV_HELPER void m_apm_ceil(M_APM r, M_APM a);
/// x to the power of n, exactly. A negative `n` draws a warning and gives zero.
ZEV_HELPER void m_apm_integer_pow_nr(M_APM r, M_APM x, int n);
/// x!; 1 for all up to 1.
ZEV_HELPER void m_apm_factorial(M_APM r, M_APM x);
/// Greatest common divisor, not negative, and least common multiple of integers.
/// Fractions draw a warning and give zero.
ZEV_HELPER void m_apm_gcd(M_APM r, M_APM a, M_APM b);
ZEV_HELPER void m_apm_lcm(M_APM r, M_APM a, M_APM b);

// --- Operations to a number of places ---

/// Half away from zero; `r` may be `a`.
ZEV_HELPER void m_apm_round(M_APM r, int places, M_APM a);
/// a / b, zero and a warning when `b` is zero. Below 250 places the quotient is cut and
/// not rounded. A quotient of numbers of which `a` has the larger exponent gets as many
/// more digits.
ZEV_HELPER void m_apm_divide(M_APM r, int places, M_APM a, M_APM b);
/// 1 / a, zero and a warning when `a` is zero.
ZEV_HELPER void m_apm_reciprocal(M_APM r, int places, M_APM a);
/// Square root, zero and a warning when `x` is negative; cube root, of any sign.
ZEV_HELPER void m_apm_sqrt(M_APM r, int places, M_APM x);
ZEV_HELPER void m_apm_cbrt(M_APM r, int places, M_APM x);
/// Natural and decimal logarithm; zero and a warning unless `x` is positive.
ZEV_HELPER void m_apm_log(M_APM r, int places, M_APM x);
ZEV_HELPER void m_apm_log10(M_APM r, int places, M_APM x);
/// e to the power of x; zero and a warning when x / ln 2 does not fit 32 bits.
ZEV_HELPER void m_apm_exp(M_APM r, int places, M_APM x);
/// x to the power of y; 1 when `y` is zero, else zero when `x` is. A negative `x` wants
/// an integer `y` of less than 8 digits: any other draws the logarithm's warning and
/// gives zero.
ZEV_HELPER void m_apm_pow(M_APM r, int places, M_APM x, M_APM y);
ZEV_HELPER void m_apm_integer_pow(M_APM r, int places, M_APM x, int n);

/// Sine, cosine, both at once, tangent; angles are in radians. `sine` and `cosine` must
/// differ.
ZEV_HELPER void m_apm_sin(M_APM r, int places, M_APM x);
ZEV_HELPER void m_apm_cos(M_APM r, int places, M_APM x);
ZEV_HELPER void m_apm_sin_cos(M_APM sine, M_APM cosine, int places, M_APM x);
ZEV_HELPER void m_apm_tan(M_APM r, int places, M_APM x);
/// Arc sine and arc cosine; zero and a warning beyond -1 and 1.
ZEV_HELPER void m_apm_arcsin(M_APM r, int places, M_APM x);
ZEV_HELPER void m_apm_arccos(M_APM r, int places, M_APM x);
/// Arc tangent of any number, between -pi / 2 and pi / 2.
ZEV_HELPER void m_apm_arctan(M_APM r, int places, M_APM x);
/// The angle of the point (x, y), above -pi and up to pi; zero and a warning for (0, 0).
ZEV_HELPER void m_apm_arctan2(M_APM r, int places, M_APM y, M_APM x);
/// Hyperbolic sine, cosine and tangent, and the inverse of the first.
ZEV_HELPER void m_apm_sinh(M_APM r, int places, M_APM x);
ZEV_HELPER void m_apm_cosh(M_APM r, int places, M_APM x);
ZEV_HELPER void m_apm_tanh(M_APM r, int places, M_APM x);
ZEV_HELPER void m_apm_arcsinh(M_APM r, int places, M_APM x);
/// Inverse hyperbolic cosine; zero and a warning below 1.
ZEV_HELPER void m_apm_arccosh(M_APM r, int places, M_APM x);
/// Inverse hyperbolic tangent; zero and a warning unless `x` lies between -1 and 1.
ZEV_HELPER void m_apm_arctanh(M_APM r, int places, M_APM x);

// --- Random numbers ---

/// The next number of this thread's sequence, 15 digits from 0 up to below 1. A sequence
/// that was given no seed takes it from the clock.
ZEV_HELPER void m_apm_get_random(M_APM r);
ZEV_HELPER void m_apm_set_random_seed(const char *s);

}  // extern "C"
