/// The conversion matrix: converter shapes, the two dispatchers and the type mappings.
#pragma once

#include <libpq-fe.h>

#include "zevoci/statement.h"

/// Fetched field to program buffer. `value` and `format` (0 text, 1 binary) are libpq's;
/// `*targetLength` is the size of `target` on entry and the bytes produced on exit.
/// `indicator` and `returnCode` may be null. Returns 0, 1 (delivered with a warning) or a
/// negative status.
using FromServerConverter = sword (*)(OCIError *errhp, const void *value, sb4 valueLength,
                                      ub1 format, void *target, ub4 *targetLength,
                                      sb2 *indicator, ub2 *returnCode);

extern "C" {
/// 0, with the converter in `*found` when `found` is given, if the pair can be bound;
/// else -1.
ZEV_HELPER sword IsOCIToPQConversionPossible(ub2 ociType, Oid pgType,
                                             ToServerConverter *found);
/// The converter of a fetched pair, or null. `conn` is asked for the OID of type raw when
/// the OID is not a known one; null means not to ask.
ZEV_HELPER FromServerConverter findPQToOCIConversion(Oid pgType, ub2 ociType,
                                                     PGconn *conn);

/// Converts a bound value; a null parameter comes back as null, length 0, format 0.
/// Record 1460 for a pair without a converter.
ZEV_HELPER sword OCI2PQType(OCIError *errhp, ub2 ociType, void *bufferin, sb4 bufferin_sz,
                            sb2 *indp, Oid pgType, void **out, ub4 *outLength,
                            ub1 *outFormat);
/// Converts a fetched field. A null field sets `*indicator` to -1 and `*returnCode` to
/// 1405 and succeeds. Record 932 for a pair without a converter.
ZEV_HELPER sword PQ2OCIType(OCIError *errhp, Oid pgType, const char *value,
                            sb4 valueLength, ub1 format, ub2 ociType, void *target,
                            ub4 *targetLength, sb2 *indicator, ub2 *returnCode,
                            int isNull);
/// As PQ2OCIType, with a connection to ask about unknown OIDs and without child
/// statements.
ZEV_HELPER sword PQ2OCIType_2(OCIError *errhp, Oid pgType, const char *value,
                              sb4 valueLength, ub1 format, ub2 ociType, void *target,
                              ub4 *targetLength, sb2 *indicator, ub2 *returnCode,
                              PGconn *conn, int isNull);

/// 0 for a known external type, -1 otherwise; only the low 16 bits count.
ZEV_HELPER sword IsValidOCIDataType(ub4 ociType);
/// 1 for a known external type, 0 otherwise.
ZEV_HELPER sword IsValidOraDataType(ub4 ociType);
/// 0 for a server type that the matrix knows, -1 otherwise.
ZEV_HELPER sword IsValidPQDataType(Oid pgType);
/// The server type to declare for a bind of this external type and length; -1 for none.
ZEV_HELPER Oid OraDataType_To_PGType(ub2 ociType, sb4 length);
/// The server type of parameter `position` (from 1): the server's own description where
/// the statement has one, else OraDataType_To_PGType.
ZEV_HELPER Oid GetParamType(OCIStmt *stmt, ub4 position, ub2 ociType, sb4 length);
/// The external type reported for a result column, 0 for none.
ZEV_HELPER ub2 MapPostgresDataTypeToOracleDataType(Oid oid);
/// Whether an external type counts as binary.
ZEV_HELPER boolean IsBinaryDataType(ub2 ociType);
/// SQLT_VCS for the plain character types, else 0.
ZEV_HELPER ub2 oid2oci(Oid oid);
/// New class names ("NUMBER", "TEXT", ...) for message 932, freed by the caller; empty
/// for types without a class, null when memory runs out.
ZEV_HELPER char *GetPQDatatypeName(Oid oid);
ZEV_HELPER char *GetOCIDatatypeName(ub2 ociType);
/// Names of the external types 0 to 190, for traces.
extern ZEV_HELPER const char *const SQLTTypes[191];
}
