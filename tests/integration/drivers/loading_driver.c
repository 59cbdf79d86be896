/*
 * A C wrapper in the manner of drivers that are built where no client library is: nothing
 * is linked, every function is found by dlsym.
 *
 * usage: loading_driver LIBRARY EXPORT_LIST USER PASSWORD CONNECT_STRING
 */
#include <dlfcn.h>
#include <oci.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

/* The functions that the wrapper uses; each becomes a pointer of the exact type. */
/* clang-format off */
#define FUNCTIONS(X)                                                                  \
  X(OCIEnvCreate) X(OCIHandleAlloc) X(OCIHandleFree) X(OCIErrorGet)                   \
  X(OCIClientVersion) X(OCIServerAttach) X(OCIServerDetach) X(OCIServerVersion)       \
  X(OCIServerRelease) X(OCISessionBegin) X(OCISessionEnd) X(OCIAttrGet)               \
  X(OCIAttrSet) X(OCIPing) X(OCIStmtPrepare) X(OCIStmtExecute) X(OCIStmtFetch2)       \
  X(OCIBindByName) X(OCIDefineByPos) X(OCIParamGet) X(OCITransCommit)                 \
  X(OCITransRollback)
/* clang-format on */

#define POINTER(name) static __typeof__(&name) p##name;
FUNCTIONS(POINTER)
#undef POINTER

static void fail(const char *what, const char *why) {
  fprintf(stderr, "%s: %s\n", what, why);
  exit(1);
}

/* A function pointer as dlsym gives it; C knows no conversion from void *. */
static void find(void *library, const char *name, void *pointer) {
  void *found = dlsym(library, name);
  if (!found) fail(name, dlerror());
  memcpy(pointer, &found, sizeof found);
}

/* Every published name must be there, not only those that are used. */
static void find_all(void *library, const char *list) {
  char name[128];
  int count = 0;
  FILE *file = fopen(list, "r");
  if (!file) fail(list, "cannot be read");
  while (fscanf(file, "%127s", name) == 1) {
    void *found;
    find(library, name, &found);
    ++count;
  }
  fclose(file);
  printf("all published functions: %s\n", count > 400 ? "found" : "too few");
}

static OCIEnv *env;
static OCIError *err;

static void check(sword status, const char *what) {
  OraText message[512];
  sb4 code = 0;
  if (status == OCI_SUCCESS) return;
  if (pOCIErrorGet(err, 1, NULL, &code, message, sizeof message, OCI_HTYPE_ERROR))
    message[0] = 0;
  fail(what, (const char *)message);
}

static void *allocated(ub4 type) {
  void *handle = NULL;
  check(pOCIHandleAlloc(env, &handle, type, 0, NULL), "OCIHandleAlloc");
  return handle;
}

static void set(void *handle, ub4 type, void *value, ub4 size, ub4 attribute) {
  check(pOCIAttrSet(handle, type, value, size, attribute, err), "OCIAttrSet");
}

static OCIStmt *prepared(const char *sql) {
  OCIStmt *stmt = allocated(OCI_HTYPE_STMT);
  check(pOCIStmtPrepare(stmt, err, (const OraText *)sql, (ub4)strlen(sql), OCI_NTV_SYNTAX,
                        OCI_DEFAULT),
        "OCIStmtPrepare");
  return stmt;
}

static void run(OCISvcCtx *svc, const char *sql) {
  OCIStmt *stmt = prepared(sql);
  check(pOCIStmtExecute(svc, stmt, err, 1, 0, NULL, NULL, OCI_DEFAULT), sql);
  pOCIHandleFree(stmt, OCI_HTYPE_STMT);
}

static void insert_rows(OCISvcCtx *svc) {
  enum { kRows = 3 };
  sb4 ids[kRows] = {1, 2, 3};
  char names[kRows][8] = {"one", "two", ""};
  sb2 indicators[kRows] = {0, 0, -1};
  ub4 count = 0;
  OCIBind *bind = NULL;
  OCIStmt *stmt = prepared("INSERT INTO zevoci_driver VALUES (:id, :name)");
  check(pOCIBindByName(stmt, &bind, err, (const OraText *)":id", 3, ids, sizeof *ids,
                       SQLT_INT, NULL, NULL, NULL, 0, NULL, OCI_DEFAULT),
        "OCIBindByName");
  bind = NULL;
  check(
      pOCIBindByName(stmt, &bind, err, (const OraText *)":name", 5, names, sizeof *names,
                     SQLT_STR, indicators, NULL, NULL, 0, NULL, OCI_DEFAULT),
      "OCIBindByName");
  check(pOCIStmtExecute(svc, stmt, err, kRows, 0, NULL, NULL, OCI_DEFAULT), "INSERT");
  check(pOCIAttrGet(stmt, OCI_HTYPE_STMT, &count, NULL, OCI_ATTR_ROW_COUNT, err),
        "OCI_ATTR_ROW_COUNT");
  printf("inserted: %u\n", (unsigned)count);
  pOCIHandleFree(stmt, OCI_HTYPE_STMT);
}

static void print_columns(OCIStmt *stmt) {
  ub4 count = 0, position;
  check(pOCIAttrGet(stmt, OCI_HTYPE_STMT, &count, NULL, OCI_ATTR_PARAM_COUNT, err),
        "OCI_ATTR_PARAM_COUNT");
  for (position = 1; position <= count; ++position) {
    void *column = NULL;
    OraText *name = NULL;
    ub4 length = 0;
    check(pOCIParamGet(stmt, OCI_HTYPE_STMT, err, &column, position), "OCIParamGet");
    check(pOCIAttrGet(column, OCI_DTYPE_PARAM, &name, &length, OCI_ATTR_NAME, err),
          "OCI_ATTR_NAME");
    printf("column: %.*s\n", (int)length, (const char *)name);
  }
}

static void select_rows(OCISvcCtx *svc) {
  sb4 id = 0;
  char name[16];
  sb2 missing = 0;
  OCIDefine *define = NULL;
  OCIStmt *stmt = prepared("SELECT id, name FROM zevoci_driver ORDER BY id");
  check(pOCIStmtExecute(svc, stmt, err, 0, 0, NULL, NULL, OCI_DEFAULT), "SELECT");
  print_columns(stmt);
  check(pOCIDefineByPos(stmt, &define, err, 1, &id, sizeof id, SQLT_INT, NULL, NULL, NULL,
                        OCI_DEFAULT),
        "OCIDefineByPos");
  define = NULL;
  check(pOCIDefineByPos(stmt, &define, err, 2, name, sizeof name, SQLT_STR, &missing,
                        NULL, NULL, OCI_DEFAULT),
        "OCIDefineByPos");
  while (pOCIStmtFetch2(stmt, err, 1, OCI_FETCH_NEXT, 0, OCI_DEFAULT) == OCI_SUCCESS) {
    printf("row: %d %s\n", (int)id, missing ? "(null)" : name);
  }
  pOCIHandleFree(stmt, OCI_HTYPE_STMT);
}

static void meet_an_error(OCISvcCtx *svc) {
  OraText message[512];
  sb4 code = 0;
  OCIStmt *stmt = prepared("INSERT INTO zevoci_driver VALUES (1, 'again')");
  if (pOCIStmtExecute(svc, stmt, err, 1, 0, NULL, NULL, OCI_DEFAULT) != OCI_ERROR) {
    fail("a second row of one key", "is accepted");
  }
  pOCIErrorGet(err, 1, NULL, &code, message, sizeof message, OCI_HTYPE_ERROR);
  printf("error: %d\n", (int)code);
  pOCIHandleFree(stmt, OCI_HTYPE_STMT);
}

int main(int argc, char **argv) {
  void *library;
  OCIServer *server;
  OCISession *session;
  OCISvcCtx *svc;
  sword major, minor, update, patch, port;

  if (argc != 6) return 1;
  library = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
  if (!library) fail(argv[1], dlerror());
#define FIND(name) find(library, #name, &p##name);
  FUNCTIONS(FIND)
#undef FIND
  find_all(library, argv[2]);
  pOCIClientVersion(&major, &minor, &update, &patch, &port);
  printf("client: %d.%d\n", (int)major, (int)minor);

  check(pOCIEnvCreate(&env, OCI_THREADED, NULL, NULL, NULL, NULL, 0, NULL),
        "OCIEnvCreate");
  err = allocated(OCI_HTYPE_ERROR);
  server = allocated(OCI_HTYPE_SERVER);
  svc = allocated(OCI_HTYPE_SVCCTX);
  session = allocated(OCI_HTYPE_SESSION);
  check(pOCIServerAttach(server, err, (const OraText *)argv[5], (sb4)strlen(argv[5]),
                         OCI_DEFAULT),
        "OCIServerAttach");
  set(svc, OCI_HTYPE_SVCCTX, server, 0, OCI_ATTR_SERVER);
  set(session, OCI_HTYPE_SESSION, argv[3], (ub4)strlen(argv[3]), OCI_ATTR_USERNAME);
  set(session, OCI_HTYPE_SESSION, argv[4], (ub4)strlen(argv[4]), OCI_ATTR_PASSWORD);
  check(pOCISessionBegin(svc, err, session, OCI_CRED_RDBMS, OCI_DEFAULT),
        "OCISessionBegin");
  set(svc, OCI_HTYPE_SVCCTX, session, 0, OCI_ATTR_SESSION);
  check(pOCIPing(svc, err, OCI_DEFAULT), "OCIPing");

  run(svc, "CREATE TEMPORARY TABLE zevoci_driver (id integer PRIMARY KEY, name text)");
  insert_rows(svc);
  check(pOCITransCommit(svc, err, OCI_DEFAULT), "OCITransCommit");
  meet_an_error(svc);
  check(pOCITransRollback(svc, err, OCI_DEFAULT), "OCITransRollback");
  select_rows(svc);

  check(pOCISessionEnd(svc, err, session, OCI_DEFAULT), "OCISessionEnd");
  check(pOCIServerDetach(server, err, OCI_DEFAULT), "OCIServerDetach");
  pOCIHandleFree(env, OCI_HTYPE_ENV);
  printf("done\n");
  return dlclose(library);
}
