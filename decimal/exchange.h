/// OCINumbers as numbers of the decimal engine and back.
///
/// What counts is what the way through text gives: an operand is printed in full and read
/// by the engine; a result is printed with 40 decimals, halves rounded away from zero,
/// and its first 20 base-100 digits are kept, those between the first digit and the point
/// even where they end in zeros. Numbers of usual size take a direct way with the same
/// result.
#pragma once

#include <oci.h>

#include <cstddef>

#include "decimal/m_apm.h"

namespace zev::decimal {

inline constexpr int kDecimals = 40;  ///< of every result

/// Whether an encoding is that of zero, and the encoding itself.
bool isZero(const OCINumber &number);
void writeZero(OCINumber &to);

/// An encoding as a number. False for bytes that are none.
bool readNumber(const OCINumber &from, M_APM to);
bool readNumberByText(const OCINumber &from, M_APM to);

/// A number as an encoding, which keeps what stood behind its bytes. False, with `to` as
/// it was, for one of more than 212 digits before the point.
bool writeNumber(M_APM from, OCINumber &to);
bool writeNumberByText(M_APM from, OCINumber &to);

/// Bytes of an encoding in plain notation with 40 decimals, its terminator included.
inline constexpr std::size_t kPlainTextSize = 200;

}  // namespace zev::decimal
