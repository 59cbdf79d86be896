/// OIDs of the server types that the conversion code names (catalogue pg_type).
#pragma once

#include <libpq-fe.h>

enum ServerType : Oid {
  BYTEAOID = 17,
  CHAROID = 18,
  INT8OID = 20,
  INT2OID = 21,
  INT4OID = 23,
  TEXTOID = 25,
  OIDOID = 26,
  FLOAT4OID = 700,
  FLOAT8OID = 701,
  DATEOID = 1082,
  TIMESTAMPOID = 1114,
  TIMESTAMPTZOID = 1184,
  INTERVALOID = 1186,
  NUMERICOID = 1700,
};

namespace zev {

inline constexpr Oid kUnknownOid = 705;  ///< an untyped literal
inline constexpr Oid kBpcharOid = 1042;  ///< blank-padded characters
inline constexpr Oid kVarcharOid = 1043;
inline constexpr Oid kTimeOid = 1083;
inline constexpr Oid kTimeTzOid = 1266;
inline constexpr Oid kRefcursorOid = 1790;
inline constexpr Oid kRawOid = 12487;  ///< the raw type where it has its usual number

}  // namespace zev
