/// Values that cross through the program's callbacks, whole or in pieces.
#pragma once

#include "zevoci/statement.h"

extern "C" {
/// Whether values of an external type cannot come in pieces.
ZEV_HELPER boolean getOraclePieceInfo(ub2 dty);
/// The bytes that a value of `length` server bytes can take in a type that comes in
/// pieces; 0 for an empty value and for the other types.
ZEV_HELPER std::size_t getOracleDataTypeSize(ub2 dty, ub4 length, boolean isUtf16);

/// Gives a fetched field to a define's callback: whole, or dealt out in pieces of the
/// size that the program offers. `conn` may be null; it is asked about unknown types. 0,
/// a conversion's status, -1 with record 24343, 24370, 24330 or 3131, OCI_NEED_DATA
/// without a callback, OCI_INVALID_HANDLE.
ZEV_HELPER sword call_define_callback(OCIDefine *define, OCIError *errhp,
                                      const PGresult *result, sb4 iteration, sb4 row,
                                      sb4 column, PGconn *conn);
/// The same for a value in row 0 of a call's result and the out callback of a bind.
ZEV_HELPER sword call_out_bind_callback(OCIError *errhp, OCIBind *bind, sb4 iteration,
                                        const PGresult *result, sb4 column);
}

namespace zev {

/// Asks a bind's in callback for the value of a row and converts it into pgValue.
/// OCI_NEED_DATA without a callback; -1 with record 24343 or 24370.
sword takeDynamicValue(OCIBind *bind, OCIError *errhp, ub4 iteration);

}  // namespace zev
