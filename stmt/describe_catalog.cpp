#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "core/wire.h"
#include "types/server_types.h"
#include "zevoci/conversion.h"
#include "zevoci/errors.h"
#include "zevoci/parameter.h"

namespace {

using zev::PgResult;

constexpr int kNoModifier = -1;
/// What a modifier counts beside the size that was declared.
constexpr int kModifierHeader = 4;

struct FreeHandle {
  void operator()(OCIParamHandle *handle) const noexcept { FreeOCIParamHandle(handle); }
};
template <class T>
using Owned = std::unique_ptr<T, FreeHandle>;

template <class T>
Owned<T> makeHandle(ParameterKind kind) {
  Owned<T> handle(static_cast<T *>(std::calloc(1, sizeof(T))));
  if (handle) handle->kind = kind;
  return handle;
}

/// Asks the catalogue with parameters as text.
PgResult ask(PGconn *conn, const char *sql, const std::vector<std::string> &values,
             const std::vector<Oid> &types = {}) {
  std::vector<const char *> pointers;
  for (const std::string &value : values) pointers.push_back(value.c_str());
  return zev::wire::execParams(conn, sql,
                               {.count = static_cast<int>(values.size()),
                                .types = types.empty() ? nullptr : types.data(),
                                .values = pointers.data()});
}

bool hasRow(const PgResult &result) {
  return PQresultStatus(result.get()) == PGRES_TUPLES_OK && PQntuples(result.get()) > 0;
}

/// The answer must have a row: 24319 without an answer, 1312 without a row.
sword requireRow(OCIError *errhp, const PgResult &result) {
  if (!result) return zev::fail(errhp, 24319);
  return hasRow(result) ? OCI_SUCCESS : zev::fail(errhp, 1312);
}

const char *valueOf(const PgResult &result, int column) {
  return PQgetvalue(result.get(), 0, column);
}
int numberOf(const PgResult &result, int column) {
  return static_cast<int>(std::strtol(valueOf(result, column), nullptr, 10));
}
Oid oidOf(const PgResult &result, int column) {
  return static_cast<Oid>(std::strtoul(valueOf(result, column), nullptr, 10));
}

/// A column may be null unless the catalogue says "t" for attnotnull.
ub1 mayBeNull(const char *attnotnull) {
  return *attnotnull != 't';
}

sword keepText(OCIError *errhp, zev::DescribedText &target, const OCIEnv *env,
               const char *text) {
  return zev::storeText(target, env, text) ? OCI_SUCCESS : zev::fail(errhp, 24319);
}

/// The sizes that a modifier declares.
void takeModifier(OCIColumnParamHandle &column, Oid type, int modifier) {
  const int declared = modifier - kModifierHeader;
  if (modifier == kNoModifier || declared == kNoModifier) return;
  if (type == NUMERICOID) {
    column.scale = static_cast<sb1>(declared & 0xffff);
    column.explicitPrecision = static_cast<ub1>(declared >> 16);
  } else if (column.charUsed) {
    column.dataSize = static_cast<ub4>(declared);
  } else {
    column.charSize = static_cast<ub2>(declared);
  }
}

/// The names of a column's type and of the type's schema.
sword takeTypeNames(OCIEnv *env, OCIError *errhp, PGconn *conn, Oid type,
                    OCIColumnParamHandle &column) {
  const PgResult named =
      ask(conn, "SELECT typname, typnamespace FROM pg_type WHERE oid = $1",
          {std::to_string(type)});
  if (sword status = requireRow(errhp, named); status != OCI_SUCCESS) return status;
  if (sword status = keepText(errhp, column.typeName, env, valueOf(named, 0));
      status != OCI_SUCCESS) {
    return status;
  }
  const PgResult schema =
      ask(conn, "SELECT nspname FROM pg_namespace WHERE oid = $1", {valueOf(named, 1)});
  if (sword status = requireRow(errhp, schema); status != OCI_SUCCESS) return status;
  return keepText(errhp, column.schemaName, env, valueOf(schema, 0));
}

/// Appends the description of one column.
sword addColumn(OCIEnv *env, OCIError *errhp, PGconn *conn, Oid relid, int attnum,
                OCIListParamHandle &list) {
  OCIParamHandle *column = nullptr;
  const sword status =
      Build_OCIColumnParamHandle(env, errhp, conn, relid, attnum, &column);
  if (status != OCI_SUCCESS) return status;
  Owned<OCIParamHandle> owned(column);
  List *longer = lappend(list.handles, column);
  if (!longer) return zev::fail(errhp, 24319);
  owned.release();
  list.handles = longer;
  return OCI_SUCCESS;
}

/// A list of the columns, an empty one when one of them cannot be described; null when
/// memory runs out.
Owned<OCIListParamHandle> describeColumns(OCIEnv *env, OCIError *errhp, PGconn *conn,
                                          Oid relid, int count) {
  auto list = makeHandle<OCIListParamHandle>(kParameterList);
  for (int attnum = 1; list && attnum <= count; ++attnum) {
    if (addColumn(env, errhp, conn, relid, attnum, *list) != OCI_SUCCESS) {
      return makeHandle<OCIListParamHandle>(kParameterList);
    }
  }
  return list;
}

/// The size of an integer or float by its server type; 0 for one that tells none.
ub4 numberSize(ub2 oracleType, Oid type) {
  switch (type) {
    case CHAROID:
      return 1;
    case INT8OID:
      return 8;
    case INT2OID:
      return 2;
    case INT4OID:
    case FLOAT4OID:
      return 4;
    case FLOAT8OID:
      return oracleType == SQLT_FLT ? 8 : 4;
    default:
      return oracleType == SQLT_INT ? 4 : 0;
  }
}

ub4 longestValue(const PGresult *result, int column) {
  int longest = 0;
  for (int row = 0; row < PQntuples(result); ++row) {
    if (!PQgetisnull(result, row, column)) {
      longest = std::max(longest, PQgetlength(result, row, column));
    }
  }
  return static_cast<ub4>(longest);
}

constexpr ub4 kUnknownSize = 4000;
constexpr ub4 kNumberSize = 22;

void takeSize(OCIColumnParamHandle &described, const PGresult *result, int column,
              int declared) {
  switch (described.dataType) {
    case SQLT_NUM:
      described.dataSize = kNumberSize;
      return;
    case SQLT_INT:
    case SQLT_FLT:
      described.dataSize = numberSize(described.dataType, PQftype(result, column));
      return;
    default:
      break;
  }
  const ub4 size = declared != kNoModifier  ? static_cast<ub4>(declared)
                   : PQntuples(result) == 0 ? kUnknownSize
                                            : longestValue(result, column);
  described.dataSize = size;
  described.charSize = static_cast<ub2>(size);
}

void takePrecision(OCIColumnParamHandle &described, int declared, boolean flag) {
  described.precisionIsImplicit = static_cast<ub1>(flag != 0);
  const int precision = declared >> 16;
  if (flag) {
    described.implicitPrecision = static_cast<ub2>(precision);
  } else {
    described.explicitPrecision = static_cast<ub1>(precision);
  }
  described.scale = static_cast<sb1>(declared);
}

/// Whether the column of a table can be null; one that is computed can.
ub1 nullability(PGconn *conn, const PGresult *result, int column) {
  const Oid table = PQftable(result, column);
  if (!table) return 1;
  const PgResult answer =
      ask(conn,
          "SELECT attnotnull FROM pg_catalog.pg_attribute WHERE attrelid = $1 AND "
          "attnum = $2",
          {std::to_string(table), std::to_string(PQftablecol(result, column))});
  const bool isOne =
      hasRow(answer) && PQntuples(answer.get()) == 1 && PQnfields(answer.get()) == 1;
  return isOne ? mayBeNull(valueOf(answer, 0)) : 0;
}

bool takeResultTypeNames(OCIEnv *env, PGconn *conn, Oid type,
                         OCIColumnParamHandle &described) {
  const PgResult names =
      ask(conn,
          "SELECT t.typname, n.nspname FROM pg_catalog.pg_type t, "
          "pg_catalog.pg_namespace n WHERE t.oid = $1 AND n.oid = t.typnamespace",
          {std::to_string(type)});
  return !hasRow(names) || (zev::storeText(described.typeName, env, valueOf(names, 0)) &&
                            zev::storeText(described.schemaName, env, valueOf(names, 1)));
}

}  // namespace

extern "C" {

OCIColumnParamHandle *Alloc_OCIColumnParamHandle(OCIEnv *env, OCIStmt *stmt, int column,
                                                 boolean flag) {
  auto described = makeHandle<OCIColumnParamHandle>(kParameterColumn);
  const PGresult *result = stmt->pgResult;
  if (!described || !result || !stmt->service || !stmt->service->server) return nullptr;
  PGconn *conn = stmt->service->server->conn;
  const Oid type = PQftype(result, column);
  int declared = PQfmod(result, column);
  if (declared != kNoModifier) declared -= kModifierHeader;

  described->dataType = MapPostgresDataTypeToOracleDataType(type);
  described->charUsed = static_cast<ub1>(IsBinaryDataType(described->dataType));
  takeSize(*described, result, column, declared);
  if (!zev::storeText(described->name, env, PQfname(result, column))) return nullptr;
  if (type == NUMERICOID) takePrecision(*described, declared, flag);
  described->isNull = nullability(conn, result, column);
  if (!takeResultTypeNames(env, conn, type, *described)) return nullptr;
  return described.release();
}

sword Build_OCIColumnParamHandle(OCIEnv *env, OCIError *errhp, PGconn *conn, Oid relid,
                                 int attnum, OCIParamHandle **handle) {
  const PgResult found =
      ask(conn,
          "SELECT attname, atttypid, atttypmod, attnotnull FROM pg_attribute WHERE "
          "attrelid = $1 AND attnum = $2",
          {std::to_string(relid), std::to_string(attnum)}, {INT4OID, INT4OID});
  if (sword status = requireRow(errhp, found); status != OCI_SUCCESS) return status;
  auto column = makeHandle<OCIColumnParamHandle>(kParameterColumn);
  if (!column) return zev::fail(errhp, 24319);
  if (sword status = keepText(errhp, column->name, env, valueOf(found, 0));
      status != OCI_SUCCESS) {
    return status;
  }
  const Oid type = oidOf(found, 1);
  column->isNull = mayBeNull(valueOf(found, 3));
  column->dataType = MapPostgresDataTypeToOracleDataType(type);
  column->charUsed = static_cast<ub1>(IsBinaryDataType(column->dataType));
  takeModifier(*column, type, numberOf(found, 2));
  const sword status = takeTypeNames(env, errhp, conn, type, *column);
  if (status == OCI_SUCCESS) *handle = column.release();
  return status;
}

sword Build_OCITableParamHandle(OCIEnv *env, OCIError *errhp, PGconn *conn,
                                const char *name, ub4 length, ub1 objtyp,
                                OCIParamHandle **handle) {
  if (objtyp == OCI_PTYPE_TABLE && !length) return OCI_INVALID_HANDLE;
  const std::string relname(name, length);
  const PgResult found =
      ask(conn,
          "SELECT oid, relnatts, relkind, reltablespace FROM PG_CLASS WHERE relname = $1",
          {relname}, {zev::kVarcharOid});
  if (!found) return zev::fail(errhp, 24319);
  if (PQresultStatus(found.get()) != PGRES_TUPLES_OK) {
    return zev::failFromServer(errhp, found.get());
  }
  if (!hasRow(found)) {
    AddErrorRecordStringX(errhp, OCI_ERROR, 4043, 1, relname.c_str());
    return OCI_ERROR;
  }
  auto table = makeHandle<OCITableParamHandle>(kParameterTable);
  if (!table) return zev::fail(errhp, 24319);
  table->objectId = oidOf(found, 0);
  table->columnCount = static_cast<ub2>(numberOf(found, 1));
  table->isTyped = *valueOf(found, 2) == 'c';
  table->isTemporary = *valueOf(found, 2) == 'u';
  table->tablespace = oidOf(found, 3);
  table->columns =
      describeColumns(env, errhp, conn, table->objectId, table->columnCount).release();
  if (!table->columns) return zev::fail(errhp, 24319);
  *handle = table.release();
  return OCI_SUCCESS;
}

sword Build_OCIListParamHandle(OCIError *errhp, OCIParamHandle **handle) {
  *handle = makeHandle<OCIListParamHandle>(kParameterList).release();
  return *handle ? OCI_SUCCESS : zev::fail(errhp, 24319);
}

}  // extern "C"
