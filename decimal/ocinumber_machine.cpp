/// OCINumbers from and to integers and floats of the machine.
#include <orl.h>

#include <algorithm>
#include <charconv>
#include <cstring>
#include <limits>

#include "decimal/ocinumber_frame.h"
#include "types/bytes.h"

namespace {

using namespace zev::decimal;

bool isFlag(uword flag) {
  return flag == OCI_NUMBER_UNSIGNED || flag == OCI_NUMBER_SIGNED;
}

// --- Integers ---

/// The range of an integer by its length; its outermost values are out of range too.
struct Range {
  uword length;
  sb4 signedFrom;     ///< lower ones underflow
  sb4 signedBelow;    ///< these and higher ones overflow
  ub4 unsignedBelow;  ///< these and higher ones overflow
};
constexpr Range kRanges[] = {
    {1, -127, 127, 256},
    {2, -32767, 32767, 65536},
    {4, -2147483647, 2147483647, 2147483648},
};

/// The integer part of a number, the nearest 32-bit one of what does not fit.
sb4 integerPart(M_APM number) {
  // The first digits of a longer one are out of range already.
  constexpr int kMostDigits = 12;
  sb8 value = 0;
  for (int i = 0; i < std::min(number->exponent, kMostDigits); ++i) {
    const int pair = i < number->digitCount ? number->digits[i / 2] : 0;
    value = value * 10 + (i % 2 ? pair % 10 : pair / 10);
  }
  value = number->sign < 0 ? -value : value;
  return static_cast<sb4>(std::clamp<sb8>(value, std::numeric_limits<sb4>::min(),
                                          std::numeric_limits<sb4>::max()));
}

/// Stores an integer. One out of range is recorded, and no failure.
void storeInteger(OCIError *errhp, sb4 value, const Range &range, bool isSigned,
                  void *target) {
  if (isSigned && value < range.signedFrom) {
    zev::fail(errhp, 22054, o2pGetErrorText(22054));
  } else if (isSigned ? value >= range.signedBelow
                      : static_cast<ub4>(value) >= range.unsignedBelow) {
    zev::fail(errhp, 22053, o2pGetErrorText(22053));
  } else {
    std::memcpy(target, &value, range.length);
  }
}

/// An integer of a length that no machine has reads as 0, and of a signed one of two
/// bytes only the first is read, without a sign.
struct Integer {
  bool isSigned;
  sb8 value;  ///< its bits

  Integer(const void *from, uword length, bool withSign) : isSigned(withSign), value(0) {
    switch (length) {
      case 1:
        value = withSign ? sb8{zev::readNative<sb1>(from)} : zev::readNative<ub1>(from);
        break;
      case 2:
        value = withSign ? sb8{zev::readNative<ub1>(from)} : zev::readNative<ub2>(from);
        break;
      case 4:
        value = withSign ? sb8{zev::readNative<sb4>(from)} : zev::readNative<ub4>(from);
        break;
      case 8:
        value = zev::readNative<sb8>(from);
        break;
      default:
        break;
    }
  }
  double asDouble() const {
    return isSigned ? static_cast<double>(value)
                    : static_cast<double>(static_cast<ub8>(value));
  }
};

/// Sets a number as from a double, of which 15 digits count.
void setInteger(M_APM number, const Integer &integer) {
  constexpr sb8 kExact = 1000000000000000;
  const bool isExact = integer.value < kExact && integer.value > -kExact &&
                       (integer.isSigned || integer.value >= 0);
  if (isExact) {
    m_apm_set_long(number, integer.value);
  } else {
    m_apm_set_double(number, integer.asDouble());
  }
}

// --- Floats ---

/// The nearest double of a number's plain text with 40 decimals.
double toDouble(M_APM number) {
  char text[kPlainTextSize];
  m_apm_to_fixpt_string(text, kDecimals, number);
  double value = 0;
  std::from_chars(text, text + std::strlen(text), value);
  return value;
}

sword storeFloat(OCIError *errhp, double value, uword length, void *target) {
  const bool isDouble = length == sizeof(double);
  if (!isDouble && length != sizeof(float)) return OCI_ERROR;
  const double limit = isDouble ? std::numeric_limits<double>::max()
                                : double{std::numeric_limits<float>::max()};
  if (!(value < limit)) return zev::fail(errhp, 22053, o2pGetErrorText(22053));
  if (isDouble) {
    zev::writeNative(target, value);
  } else {
    const bool isHuge = value < -limit;
    zev::writeNative(target, isHuge ? -std::numeric_limits<float>::infinity()
                                    : static_cast<float>(value));
  }
  return OCI_SUCCESS;
}

}  // namespace

extern "C" {

ZEV_API sword OCINumberToInt(OCIError *err, const OCINumber *number, uword rsl_length,
                             uword rsl_flag, void *rsl) {
  return run(err, {{number, "2"}, {rsl, "5"}}, [&]() -> sword {
    const auto *range =
        std::find_if(std::begin(kRanges), std::end(kRanges),
                     [&](const Range &r) { return r.length == rsl_length; });
    if (!isFlag(rsl_flag) || range == std::end(kRanges)) return OCI_ERROR;
    Workspace &w = workspace();
    if (!readNumber(*number, w.a)) return OCI_ERROR;
    storeInteger(err, integerPart(w.a), *range, rsl_flag == OCI_NUMBER_SIGNED, rsl);
    return OCI_SUCCESS;
  });
}

ZEV_API sword OCINumberFromInt(OCIError *err, const void *inum, uword inum_length,
                               uword inum_s_flag, OCINumber *number) {
  return run(err, {{inum, "2"}, {number, "5"}}, [&]() -> sword {
    if (!isFlag(inum_s_flag) || inum_length < 1 || inum_length > 8) return OCI_ERROR;
    Workspace &w = workspace();
    setInteger(w.result, Integer(inum, inum_length, inum_s_flag == OCI_NUMBER_SIGNED));
    return deliver(w, number);
  });
}

ZEV_API sword OCINumberToReal(OCIError *err, const OCINumber *number, uword rsl_length,
                              void *rsl) {
  return run(err, {{number, "2"}, {rsl, "5"}}, [&]() -> sword {
    Workspace &w = workspace();
    if (!readNumber(*number, w.a)) return OCI_ERROR;
    return storeFloat(err, toDouble(w.a), rsl_length, rsl);
  });
}

ZEV_API sword OCINumberToRealArray(OCIError *err, const OCINumber **number, uword elems,
                                   uword rsl_length, void *rsl) {
  return run(err, {{number, "2"}, {rsl, "5"}}, [&]() -> sword {
    if (rsl_length < sizeof(float) || elems == 0) return OCI_ERROR;
    const uword size = rsl_length >= sizeof(double) ? sizeof(double) : sizeof(float);
    for (uword i = 0; i < elems; ++i) {
      auto *const target = static_cast<char *>(rsl) + std::size_t{i} * rsl_length;
      if (const sword status = OCINumberToReal(err, number[i], size, target);
          status != OCI_SUCCESS)
        return status;
    }
    return OCI_SUCCESS;
  });
}

ZEV_API sword OCINumberFromReal(OCIError *err, const void *rnum, uword rnum_length,
                                OCINumber *number) {
  return run(err, {{rnum, "2"}, {number, "4"}}, [&]() -> sword {
    if (rnum_length < sizeof(float)) return OCI_ERROR;
    Workspace &w = workspace();
    if (rnum_length >= sizeof(double)) {
      m_apm_set_double(w.result, zev::readNative<double>(rnum));
    } else {
      m_apm_set_float(w.result, zev::readNative<float>(rnum));
    }
    return deliver(w, number);
  });
}

}  // extern "C"
