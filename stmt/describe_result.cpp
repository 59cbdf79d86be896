// A column of a result that a statement holds.
#include <algorithm>

#include "stmt/describe_names.h"
#include "types/server_types.h"
#include "zevoci/conversion.h"
#include "zevoci/parameter.h"

namespace {

constexpr int kNone = -1;
constexpr int kUnknownSize = 4000;  // of a type without length in a result without rows
constexpr int kNumberSize = 22;

int integerSize(Oid type) {
  switch (type) {
    case CHAROID:
      return 1;
    case INT2OID:
      return 2;
    case INT8OID:
      return 8;
    default:
      return 4;
  }
}

int floatSize(Oid type) {
  return type == FLOAT4OID ? 4 : type == FLOAT8OID ? 8 : 0;
}

int longestValue(const PGresult *result, int column) {
  int longest = 0;
  for (int row = 0; row < PQntuples(result); ++row) {
    if (PQgetisnull(result, row, column)) continue;
    longest = std::max(longest, PQgetlength(result, row, column));
  }
  return longest;
}

/// The length of a type that has no width of its own.
int variableSize(const PGresult *result, int column, int declared) {
  if (declared != kNone) return declared;
  return PQntuples(result) ? longestValue(result, column) : kUnknownSize;
}

void setSizes(OCIColumnParamHandle &out, const PGresult *result, int column,
              int declared) {
  const Oid type = PQftype(result, column);
  switch (out.dataType) {
    case SQLT_NUM:
      out.dataSize = kNumberSize;
      return;
    case SQLT_INT:
      out.dataSize = static_cast<ub4>(integerSize(type));
      return;
    case SQLT_FLT:
      out.dataSize = static_cast<ub4>(floatSize(type));
      return;
    default:
      out.dataSize = static_cast<ub4>(variableSize(result, column, declared));
      out.charSize = static_cast<ub2>(out.dataSize);
  }
}

void setNumeric(OCIColumnParamHandle &out, int declared, bool implicit) {
  out.precisionIsImplicit = implicit;
  if (implicit) {
    out.implicitPrecision = static_cast<ub2>(zev::precisionOf(declared));
  } else {
    out.explicitPrecision = static_cast<ub1>(zev::precisionOf(declared));
  }
  out.scale = static_cast<sb1>(declared);
}

/// Whether the column may be null: always where no table stands behind it.
bool isNullable(PGconn *conn, const PGresult *result, int column) {
  const Oid table = PQftable(result, column);
  if (!table) return true;
  const zev::PgResult found = zev::askCatalogue<2>(
      conn,
      "SELECT attnotnull FROM pg_catalog.pg_attribute WHERE attrelid = $1 AND attnum = "
      "$2",
      {std::to_string(table), std::to_string(PQftablecol(result, column))});
  return PQntuples(found.get()) == 1 && PQnfields(found.get()) == 1 &&
         zev::mayBeNull(PQgetvalue(found.get(), 0, 0));
}

/// Names of the type and its schema; false when they cannot be stored.
bool setTypeNames(const OCIEnv *env, OCIColumnParamHandle &out, PGconn *conn, Oid type) {
  const zev::PgResult found = zev::askCatalogue<1>(
      conn,
      "SELECT t.typname, n.nspname FROM pg_catalog.pg_type t, pg_catalog.pg_namespace n "
      "WHERE t.oid = $1 AND n.oid = t.typnamespace",
      {std::to_string(type)});
  const bool known = PQntuples(found.get()) == 1;
  return zev::giveParamText(env, out.typeName,
                            known ? PQgetvalue(found.get(), 0, 0) : "") &&
         zev::giveParamText(env, out.schemaName,
                            known ? PQgetvalue(found.get(), 0, 1) : "");
}

/// The connection that a statement's result came from; null when it is gone.
PGconn *connectionOf(const OCIStmt *stmt) {
  const OCIServer *server = stmt->cursor ? zev::asServer(stmt->cursor->server) : nullptr;
  if (!server && stmt->service) server = zev::asServer(stmt->service->server);
  return server ? server->conn : nullptr;
}

}  // namespace

extern "C" OCIColumnParamHandle *Alloc_OCIColumnParamHandle(OCIEnv *env, OCIStmt *stmt,
                                                            int column, boolean flag) {
  auto out = zev::newParamHandle<OCIColumnParamHandle>(kColumnParam);
  if (!out) return nullptr;
  const PGresult *result = stmt->pgResult;
  const Oid type = PQftype(result, column);
  const int declared = zev::declaredSize(PQfmod(result, column));
  out->dataType = MapPostgresDataTypeToOracleDataType(type);
  out->charUsed = static_cast<ub1>(IsBinaryDataType(out->dataType));
  setSizes(*out, result, column, declared);
  if (type == NUMERICOID) setNumeric(*out, declared, flag);
  PGconn *conn = connectionOf(stmt);
  out->isNull = isNullable(conn, result, column);
  const bool named = zev::giveParamText(env, out->name, PQfname(result, column)) &&
                     setTypeNames(env, *out, conn, type);
  return named ? out.release() : nullptr;
}
