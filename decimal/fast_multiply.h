/// Multiplication of long numbers.
#pragma once

#include "decimal/m_apm.h"

extern "C" {
/// The exact product of two numbers other than zero.
ZEV_HELPER void M_fast_multiply(M_APM r, M_APM a, M_APM b);
/// The least power of two that is not below `n`; a value below 3 stands.
ZEV_HELPER int M_next_power_of_2(int n);
/// out = a b, by divide and conquer and, for halves that are short enough, by the
/// transform. The operands are `n` bytes of digit pairs each, n a power of two; `out`
/// gets 2 n and overlaps neither.
ZEV_HELPER void M_fmul_div_conq(unsigned char *out, const unsigned char *a,
                                const unsigned char *b, int n);
/// result = |a - b| of `n` bytes; returns the sign of a - b.
ZEV_HELPER int M_fmul_subtract(unsigned char *result, const unsigned char *a,
                               const unsigned char *b, int n);
/// The same product as M_fmul_div_conq by a transform of length `n`, at most 0x40000.
ZEV_HELPER void M_fast_mul_fft(unsigned char *out, const unsigned char *a,
                               const unsigned char *b, int n);
}
