// Tables and their columns from the server's catalogues.
#include <cstdlib>

#include "stmt/describe_names.h"
#include "types/server_types.h"
#include "zevoci/conversion.h"
#include "zevoci/parameter.h"

namespace {

constexpr Oid kIntegerParameters[] = {INT4OID, INT4OID};
constexpr Oid kNameParameter[] = {1043};
constexpr int kNone = -1;

int intAt(const zev::PgResult &result, int column) {
  return static_cast<int>(std::strtol(PQgetvalue(result.get(), 0, column), nullptr, 10));
}

Oid oidAt(const zev::PgResult &result, int column) {
  return static_cast<Oid>(std::strtoul(PQgetvalue(result.get(), 0, column), nullptr, 10));
}

/// Records what keeps an answer from being read: none at all, the server's refusal, or no
/// row. OCI_SUCCESS for an answer with a row.
template <class NoRow>
sword checkAnswer(OCIError *errhp, const zev::PgResult &answer, NoRow noRow) {
  if (!answer) return zev::fail(errhp, 24319);
  if (PQresultStatus(answer.get()) != PGRES_TUPLES_OK) {
    return zev::failFromServer(errhp, answer.get());
  }
  return PQntuples(answer.get()) ? OCI_SUCCESS : noRow();
}

sword checkColumnAnswer(OCIError *errhp, const zev::PgResult &answer) {
  return checkAnswer(errhp, answer, [&] { return zev::fail(errhp, 1312); });
}

void setNumeric(OCIColumnParamHandle &out, int declared) {
  out.scale = static_cast<sb1>(declared);
  out.explicitPrecision = static_cast<ub1>(zev::precisionOf(declared));
}

/// What the type and its modifier say; widths of types without modifier stay 0.
void setType(OCIColumnParamHandle &out, Oid type, int modifier) {
  out.dataType = MapPostgresDataTypeToOracleDataType(type);
  out.charUsed = static_cast<ub1>(IsBinaryDataType(out.dataType));
  const int declared = zev::declaredSize(modifier);
  if (declared == kNone) return;
  if (type == NUMERICOID) {
    setNumeric(out, declared);
  } else if (out.charUsed) {
    out.dataSize = static_cast<ub4>(declared);
  } else {
    out.charSize = static_cast<ub2>(declared);
  }
}

sword setText(const OCIEnv *env, OCIError *errhp, ParamText &out, const char *text) {
  return zev::giveParamText(env, out, text) ? OCI_SUCCESS : zev::fail(errhp, 24319);
}

sword setTypeNames(OCIEnv *env, OCIError *errhp, PGconn *conn, Oid type,
                   OCIColumnParamHandle &out) {
  const zev::PgResult types = zev::askCatalogue<1>(
      conn, "SELECT typname, typnamespace FROM pg_type WHERE oid = $1",
      {std::to_string(type)});
  if (const sword status = checkColumnAnswer(errhp, types)) return status;
  const zev::PgResult schemas =
      zev::askCatalogue<1>(conn, "SELECT nspname FROM pg_namespace WHERE oid = $1",
                           {PQgetvalue(types.get(), 0, 1)});
  if (const sword status = checkColumnAnswer(errhp, schemas)) return status;
  const sword status = setText(env, errhp, out.typeName, PQgetvalue(types.get(), 0, 0));
  return status ? status
                : setText(env, errhp, out.schemaName, PQgetvalue(schemas.get(), 0, 0));
}

bool append(OCIListParamHandle *list, zev::ParamTree<> element) {
  List *longer = lappend(list->handles, element.get());
  if (!longer) return false;
  list->handles = longer;
  element.release();
  return true;
}

/// Columns 1 to `count` as a new list.
sword buildColumns(OCIEnv *env, OCIError *errhp, PGconn *conn, Oid relid, int count,
                   OCIListParamHandle **out) {
  if (const sword status = Build_OCIListParamHandle(errhp, out)) return status;
  zev::ParamTree<OCIListParamHandle> list(*out);
  *out = nullptr;
  for (int attnum = 1; attnum <= count; ++attnum) {
    OCIParamHandle *column = nullptr;
    const sword status =
        Build_OCIColumnParamHandle(env, errhp, conn, relid, attnum, &column);
    if (status) return status;
    if (!append(list.get(), zev::ParamTree<>(column))) return zev::fail(errhp, 24319);
  }
  *out = list.release();
  return OCI_SUCCESS;
}

}  // namespace

extern "C" {

sword Build_OCIListParamHandle(OCIError *errhp, OCIListParamHandle **handle) {
  *handle = zev::newParamHandle<OCIListParamHandle>(kListParam).release();
  return *handle ? OCI_SUCCESS : zev::fail(errhp, 24319);
}

sword Build_OCIColumnParamHandle(OCIEnv *env, OCIError *errhp, PGconn *conn, Oid relid,
                                 int attnum, OCIParamHandle **handle) {
  auto out = zev::newParamHandle<OCIColumnParamHandle>(kColumnParam);
  if (!out) return zev::fail(errhp, 24319);
  const zev::PgResult found = zev::askCatalogue<2>(
      conn,
      "SELECT attname, atttypid, atttypmod, attnotnull FROM pg_attribute WHERE attrelid "
      "= $1 AND attnum = $2",
      {std::to_string(static_cast<int>(relid)), std::to_string(attnum)},
      kIntegerParameters);
  if (const sword status = checkColumnAnswer(errhp, found)) return status;
  const Oid type = oidAt(found, 1);
  sword status = setText(env, errhp, out->name, PQgetvalue(found.get(), 0, 0));
  if (status) return status;
  setType(*out, type, intAt(found, 2));
  out->isNull = zev::mayBeNull(PQgetvalue(found.get(), 0, 3));
  status = setTypeNames(env, errhp, conn, type, *out);
  if (status == OCI_SUCCESS) *handle = out.release();
  return status;
}

sword Build_OCITableParamHandle(OCIEnv *env, OCIError *errhp, PGconn *conn,
                                const char *name, ub4 length, ub1 objtyp,
                                OCIParamHandle **handle) {
  if (objtyp == OCI_PTYPE_TABLE && !length) return OCI_INVALID_HANDLE;
  const std::string relation(name, length);
  const zev::PgResult found = zev::askCatalogue<1>(
      conn,
      "SELECT oid, relnatts, relkind, reltablespace FROM PG_CLASS WHERE relname = $1",
      {relation}, kNameParameter);
  const sword status = checkAnswer(errhp, found, [&] {
    AddErrorRecordStringX(errhp, OCI_ERROR, 4043, 1, relation.c_str());
    return OCI_ERROR;
  });
  if (status) return status;
  auto table = zev::newParamHandle<OCITableParamHandle>(kTableParam);
  if (!table) return zev::fail(errhp, 24319);
  const char kind = PQgetvalue(found.get(), 0, 2)[0];
  table->objectId = oidAt(found, 0);
  table->columnCount = static_cast<ub2>(intAt(found, 1));
  table->isTyped = kind == 'c';
  table->isTemporary = kind == 'u';
  table->tablespace = oidAt(found, 3);
  // A table with a column that cannot be described is one without columns.
  if (buildColumns(env, errhp, conn, table->objectId, table->columnCount,
                   &table->columns) != OCI_SUCCESS &&
      Build_OCIListParamHandle(errhp, &table->columns) != OCI_SUCCESS) {
    return OCI_ERROR;
  }
  *handle = table.release();
  return OCI_SUCCESS;
}

}  // extern "C"
