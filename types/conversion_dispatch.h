/// Converting fetched fields: the lookup, once a column, and the conversion, once a cell.
#pragma once

#include "types/conversion_tables.h"

namespace zev {

/// A value in the program's buffers; `*indicator` may be null and is set for a null
/// buffer.
struct BoundValue {
  ub2 ociType;
  void *buffer;
  sb4 length;
  sb2 *indicator;
};

/// A parameter for the server; `value` comes from the system allocator, null for SQL
/// NULL.
struct ServerParameter {
  void *value;
  ub4 length;
  ub1 format;
};

/// Converts a bound value by the converter of its pair, which OCI2PQType looks up for
/// each value. Record 1460 for a null `convert`.
sword convertBound(OCIError *errhp, ToServerConverter convert, Oid pgType,
                   const BoundValue &bound, ServerParameter &parameter);

/// What a column converts to. `convert` is null for a pair without a converter.
struct ColumnConversion {
  FromServerConverter convert;
  Oid pgType;
  ub2 ociType;
};

/// A field as libpq hands it out; `value` is NUL-terminated at `length`.
struct Field {
  const char *value;
  sb4 length;
  ub1 format;  ///< 0 text, 1 binary
  bool isNull;
};

/// Where a field goes. `*length` is the size of `buffer`, then the bytes produced;
/// `indicator` and `returnCode` may be null.
struct FieldTarget {
  void *buffer;
  ub4 *length;
  sb2 *indicator;
  ub2 *returnCode;
};

/// Looks the converter of a column up, one that stays inside the program's buffers.
/// `conn` is asked about an unknown OID; null asks nobody.
ColumnConversion conversionOf(Oid pgType, ub2 ociType, PGconn *conn);

/// Records 932 with the class names of both types and returns OCI_ERROR.
sword failInconsistentTypes(OCIError *errhp, Oid pgType, ub2 ociType);

/// Converts a cursor name into the `preparedName` of the child statement at
/// `target.buffer`.
sword convertCursorName(OCIError *errhp, FromServerConverter convert, const Field &field,
                        const FieldTarget &target);

/// A null field: indicator -1, return code 1405, no error. The buffer stays as it is.
inline sword deliverNullField(const FieldTarget &target) {
  if (target.indicator) *target.indicator = -1;
  if (target.returnCode) *target.returnCode = 1405;
  return OCI_SUCCESS;
}

/// Converts one field; a SQLT_RSET goes into `target.buffer` as its bytes.
inline sword convertPlainField(OCIError *errhp, const ColumnConversion &column,
                               const Field &field, const FieldTarget &target) {
  if (field.isNull) return deliverNullField(target);
  if (!column.convert) return failInconsistentTypes(errhp, column.pgType, column.ociType);
  if (target.indicator) *target.indicator = 0;
  if (target.returnCode) *target.returnCode = 0;
  return column.convert(errhp, field.value, field.length, field.format, target.buffer,
                        target.length, target.indicator, target.returnCode);
}

/// Converts one field; the buffer of a SQLT_RSET is the handle of a child statement,
/// which takes the name of its server cursor.
inline sword convertField(OCIError *errhp, const ColumnConversion &column,
                          const Field &field, const FieldTarget &target) {
  if (column.ociType == SQLT_RSET && column.convert && !field.isNull) [[unlikely]] {
    return convertCursorName(errhp, column.convert, field, target);
  }
  return convertPlainField(errhp, column, field, target);
}

}  // namespace zev
