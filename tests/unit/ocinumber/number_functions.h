/// The OCINumber functions of one number and of two, for tests that go through all of
/// them.
#pragma once

#include <oci.h>

namespace zevtest {

using UnaryNumber = sword (*)(OCIError *, const OCINumber *, OCINumber *);
using BinaryNumber = sword (*)(OCIError *, const OCINumber *, const OCINumber *,
                               OCINumber *);

inline constexpr UnaryNumber kUnaryNumbers[] = {
    OCINumberNeg,    OCINumberAbs,    OCINumberCeil,   OCINumberFloor,  OCINumberSqrt,
    OCINumberSin,    OCINumberCos,    OCINumberTan,    OCINumberArcSin, OCINumberArcCos,
    OCINumberArcTan, OCINumberHypSin, OCINumberHypCos, OCINumberHypTan, OCINumberExp,
    OCINumberLn,     OCINumberAssign};
inline constexpr BinaryNumber kBinaryNumbers[] = {
    OCINumberAdd, OCINumberSub,     OCINumberMul,   OCINumberDiv,
    OCINumberMod, OCINumberArcTan2, OCINumberPower, OCINumberLog};

}  // namespace zevtest
