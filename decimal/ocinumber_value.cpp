/// OCINumbers as they stand: constants, copies, comparison and signs.
#include <orl.h>

#include <algorithm>
#include <cstring>

#include "decimal/ocinumber_frame.h"

namespace {

using namespace zev::decimal;

constexpr ub1 kPositive = 0x80;  ///< in an exponent byte; zero has it too

/// Pi to the 40 digits of an encoding.
constexpr ub1 kPi[] = {21, 0xC1, 4,  15, 16, 93, 66, 36, 90, 80, 33,
                       39, 47,   27, 44, 39, 33, 80, 51, 29, 85, 20};

/// Whether a constant can be written; there is no status to return.
bool isSettable(OCIError *errhp, const OCINumber *number) {
  if (errhp && !number) zev::failArgument(errhp, "2");
  return errhp && number;
}

}  // namespace

extern "C" {

ZEV_API void OCINumberSetZero(OCIError *err, OCINumber *num) {
  if (isSettable(err, num)) writeZero(*num);
}

ZEV_API void OCINumberSetPi(OCIError *err, OCINumber *num) {
  if (isSettable(err, num)) std::memcpy(num->OCINumberPart, kPi, sizeof kPi);
}

ZEV_API sword OCINumberAssign(OCIError *err, const OCINumber *from, OCINumber *to) {
  return run(err, {{from, "2"}, {to, "3"}}, [&] {
    const std::size_t size = std::min<std::size_t>(
        from->OCINumberPart[0] + std::size_t{1}, sizeof from->OCINumberPart);
    std::memmove(to->OCINumberPart, from->OCINumberPart, size);
    return OCI_SUCCESS;
  });
}

ZEV_API sword OCINumberCmp(OCIError *err, const OCINumber *number1,
                           const OCINumber *number2, sword *result) {
  return run(err, {{number1, "2"}, {number2, "3"}, {result, "4"}}, [&] {
    Workspace &w = workspace();
    if (!readNumber(*number1, w.a) || !readNumber(*number2, w.b)) return OCI_ERROR;
    *result = m_apm_compare(w.a, w.b);
    return OCI_SUCCESS;
  });
}

ZEV_API sword OCINumberIsZero(OCIError *err, const OCINumber *number, boolean *result) {
  return run(err, {{number, "2"}, {result, "3"}}, [&] {
    *result = isZero(*number);
    return OCI_SUCCESS;
  });
}

ZEV_API sword OCINumberSign(OCIError *err, const OCINumber *number, sword *result) {
  return run(err, {{number, "2"}, {result, "3"}}, [&] {
    *result = isZero(*number) ? 0 : number->OCINumberPart[1] & kPositive ? 1 : -1;
    return OCI_SUCCESS;
  });
}

ZEV_API sword OCINumberIsInt(OCIError *err, const OCINumber *number, boolean *result) {
  return run(err, {{number, "2"}, {result, "3"}}, [&] {
    Workspace &w = workspace();
    if (!readNumber(*number, w.a)) return OCI_ERROR;
    *result = m_apm_is_integer(w.a);
    return OCI_SUCCESS;
  });
}

}  // extern "C"
