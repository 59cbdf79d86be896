#include "types/conversion_dispatch.h"

#include <cstring>

#include "core/owned.h"
#include "core/wire.h"
#include "types/server_types.h"
#include "zevoci/errors.h"
#include "zevoci/trace.h"

using zev::ColumnConversion;
using zev::Field;
using zev::FieldTarget;

namespace {

/// Whether the server of `conn` has given its raw type the number `oid`.
bool isRawType(PGconn *conn, Oid oid) {
  if (!conn) return false;
  const auto result =
      zev::wire::exec(conn, "select oid from pg_type where typname = 'raw';");
  if (PQresultStatus(result.get()) != PGRES_TUPLES_OK) return false;
  if (PQntuples(result.get()) < 1) return false;
  return static_cast<Oid>(std::strtol(PQgetvalue(result.get(), 0, 0), nullptr, 10)) ==
         oid;
}

/// The OID whose row serves `oid`.
Oid aliasOf(Oid oid) {
  switch (oid) {
    case zev::kUnknownOid:
      return TEXTOID;
    case 12501:
    case 12502:
      return zev::kRawOid;
    default:
      return oid;
  }
}

/// The program's two promises about a bind while empty text and null are the same.
void assertBindHasValue(const void *bufferin, sb4 bufferin_sz, const sb2 *indp) {
  const bool isNull = indp && *indp == -1;
  ZEV_ASSERT(bufferin || isNull, "bufferin || (indp && (*(sb2 *)indp) == -1)");
  ZEV_ASSERT(bufferin_sz || isNull, "bufferin_sz || (indp && (*(sb2 *)indp) == -1)");
}

void traceBind(Oid pgType, ub2 ociType, sb4 size, const sb2 *indp) {
  if (!zev::tracing(kTraceToServer)) return;
  ocitrace(kTraceToServer, "OCI2PQType",
           "pgtype(%d), ocitype(%d), bufferin_sz(%d) *indp(%d)\n",
           static_cast<int>(pgType), ociType, size, indp ? *indp : 0);
}

void traceBytes(const char *label, const void *data, sb4 length) {
  if (data && zev::tracing(kTraceToServer)) {
    ocitracehex(kTraceToServer, label, data, length);
  }
}

}  // namespace

namespace {

sb4 order(const ConversionEntry &e, sb4 firstKey, sb4 secondKey) {
  const auto first = static_cast<sb4>(e.firstKey);
  const auto second = static_cast<sb4>(e.secondKey);
  if (first != firstKey) return first > firstKey ? 2 : -2;
  return (second > secondKey) - (second < secondKey);
}

/// The row of a fetched pair, or -1.
sb4 findFromServer(Oid pgType, ub2 ociType, PGconn *conn) {
  Oid oid = aliasOf(pgType);
  if (IsValidPQDataType(oid) != 0) {
    if (!isRawType(conn, oid)) return -1;
    oid = zev::kRawOid;
  }
  if (IsValidOCIDataType(ociType) != 0) return -1;
  return zev::findConversion(oid, ociType, PQToOCIConversionFunctions, 0,
                             kFromServerEntries - 1);
}

}  // namespace

sb4 zev::findConversion(ub4 firstKey, ub4 secondKey, const ConversionEntry *table,
                        sb4 low, sb4 high) {
  while (low <= high) {
    const sb4 middle = (low + high) >> 1;
    const sb4 sign =
        order(table[middle], static_cast<sb4>(firstKey), static_cast<sb4>(secondKey));
    if (sign == 0) return middle;
    if (sign > 0) {
      high = middle - 1;
    } else {
      low = middle + 1;
    }
  }
  return -1;
}

ColumnConversion zev::conversionOf(Oid pgType, ub2 ociType, PGconn *conn) {
  const sb4 row = findFromServer(pgType, ociType, conn);
  return {row < 0 ? nullptr : kGuardedConverters[row], pgType, ociType};
}

extern "C" sb4 CompareConversionFunctionEntry(const ConversionEntry *e, sb4 firstKey,
                                              sb4 secondKey) {
  return order(*e, firstKey, secondKey);
}

extern "C" Converter GetConversionFunctionInternal(ub4 firstKey, ub4 secondKey,
                                                   const ConversionEntry *table, sb4 low,
                                                   sb4 high) {
  const sb4 row = zev::findConversion(firstKey, secondKey, table, low, high);
  return row < 0 ? Converter{} : table[row].converter;
}

extern "C" sword IsOCIToPQConversionPossible(ub2 ociType, Oid pgType,
                                             ToServerConverter *found) {
  if (IsValidOCIDataType(ociType) != 0 || IsValidPQDataType(pgType) != 0) return -1;
  const auto converter =
      GetConversionFunctionInternal(ociType, pgType, OCIToPQConversionFunctions, 0,
                                    kToServerEntries - 1)
          .toServer;
  if (!converter) return -1;
  if (found) *found = converter;
  return 0;
}

extern "C" FromServerConverter findPQToOCIConversion(Oid pgType, ub2 ociType,
                                                     PGconn *conn) {
  const sb4 row = findFromServer(pgType, ociType, conn);
  return row < 0 ? nullptr : PQToOCIConversionFunctions[row].converter.fromServer;
}

sword zev::convertBound(OCIError *errhp, ToServerConverter convert, Oid pgType,
                        const BoundValue &bound, ServerParameter &parameter) {
  sb2 *const indp = bound.indicator;
  traceBind(pgType, bound.ociType, bound.length, indp);
  if (!convert) return fail(errhp, 1460);
  parameter = {};
  const OCIEnv *env = parentEnv(errhp);
  if (env && env->oracleVarchars) assertBindHasValue(bound.buffer, bound.length, indp);
  if (!bound.buffer && indp) *indp = -1;
  if (!bound.buffer || (indp && *indp == -1) || bound.ociType == SQLT_RSET) {
    return OCI_SUCCESS;
  }
  if (indp && *indp < -1) return -1;
  traceBytes("  source:", bound.buffer, bound.length);
  const sword status = convert(errhp, bound.buffer, bound.length, indp, &parameter.value,
                               &parameter.length, &parameter.format);
  traceBytes("  result:", parameter.value, static_cast<sb4>(parameter.length));
  return status;
}

extern "C" sword OCI2PQType(OCIError *errhp, ub2 ociType, void *bufferin, sb4 bufferin_sz,
                            sb2 *indp, Oid pgType, void **out, ub4 *outLength,
                            ub1 *outFormat) {
  if (!errhp || !out || !outLength || !outFormat) return -1;
  ToServerConverter convert = nullptr;
  IsOCIToPQConversionPossible(ociType, pgType, &convert);
  zev::ServerParameter parameter{*out, *outLength, *outFormat};
  const sword status = zev::convertBound(
      errhp, convert, pgType, {ociType, bufferin, bufferin_sz, indp}, parameter);
  *out = parameter.value;
  *outLength = parameter.length;
  *outFormat = parameter.format;
  return status;
}

sword zev::failInconsistentTypes(OCIError *errhp, Oid pgType, ub2 ociType) {
  const Malloced<> expected(GetPQDatatypeName(pgType));
  const Malloced<> got(GetOCIDatatypeName(ociType));
  if (!expected || !got) return fail(errhp, 932);
  AddErrorRecordStringX(errhp, OCI_ERROR, 932, 2, expected.get(), got.get());
  return OCI_ERROR;
}

sword zev::convertCursorName(OCIError *errhp, FromServerConverter convert,
                             const Field &field, const FieldTarget &target) {
  OCIStmt *child = asStmt(target.buffer);
  if (!child) return OCI_INVALID_HANDLE;
  if (target.indicator) *target.indicator = 0;
  if (target.returnCode) *target.returnCode = 0;
  ub4 size = static_cast<ub4>(field.length) + 1;
  auto *name = static_cast<char *>(std::calloc(size, 1));
  if (!name) return fail(errhp, 16506);
  std::free(child->preparedName);
  child->preparedName = name;
  // A name that the library itself sends back to the server stays in the server's
  // encoding.
  const OCIEnv *env = parentEnv(errhp);
  if (env && env->utf16 && field.value) {
    std::memcpy(name, field.value, static_cast<std::size_t>(field.length));
    return OCI_SUCCESS;
  }
  return convert(errhp, field.value, field.length, field.format, name, &size,
                 target.indicator, target.returnCode);
}

extern "C" sword PQ2OCIType(OCIError *errhp, Oid pgType, const char *value,
                            sb4 valueLength, ub1 format, ub2 ociType, void *target,
                            ub4 *targetLength, sb2 *indicator, ub2 *returnCode,
                            int isNull) {
  ZEV_ASSERT(errhp, "errhndl != ((void *)0)");
  const FieldTarget place{target, targetLength, indicator, returnCode};
  if (isNull) return zev::deliverNullField(place);
  return zev::convertField(errhp, zev::conversionOf(pgType, ociType, nullptr),
                           {value, valueLength, format, false}, place);
}

extern "C" sword PQ2OCIType_2(OCIError *errhp, Oid pgType, const char *value,
                              sb4 valueLength, ub1 format, ub2 ociType, void *target,
                              ub4 *targetLength, sb2 *indicator, ub2 *returnCode,
                              PGconn *conn, int isNull) {
  ZEV_ASSERT(errhp, "errhndl != ((void *)0)");
  const FieldTarget place{target, targetLength, indicator, returnCode};
  if (isNull) return zev::deliverNullField(place);
  return zev::convertPlainField(errhp, zev::conversionOf(pgType, ociType, conn),
                                {value, valueLength, format, false}, place);
}
