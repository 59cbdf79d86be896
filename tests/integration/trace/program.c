/*
 * A fixed program whose traces are compared with a stored text. It does a little of
 * everything that is traced.
 *
 * usage: trace_program USER PASSWORD CONNECT_STRING
 */
#include <oci.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static OCIEnv *env;
static OCIError *err;
static OCISvcCtx *svc;

static const OraText *text_of(const char *chars) {
  return (const OraText *)chars;
}

static void check(sword status, const char *what) {
  if (status == OCI_SUCCESS || status == OCI_SUCCESS_WITH_INFO) return;
  fprintf(stderr, "%s: %d\n", what, (int)status);
  exit(2);
}

static OCIStmt *prepared(const char *sql) {
  void *made = NULL;
  check(OCIHandleAlloc(env, &made, OCI_HTYPE_STMT, 0, NULL), "OCIHandleAlloc");
  check(OCIStmtPrepare(made, err, text_of(sql), (ub4)strlen(sql), OCI_NTV_SYNTAX,
                       OCI_DEFAULT),
        "OCIStmtPrepare");
  return made;
}

static sword execute(OCIStmt *stmt, ub4 iters) {
  return OCIStmtExecute(svc, stmt, err, iters, 0, NULL, NULL, OCI_DEFAULT);
}

static void run(const char *sql) {
  OCIStmt *stmt = prepared(sql);
  check(execute(stmt, 1), sql);
  OCIHandleFree(stmt, OCI_HTYPE_STMT);
}

static void insert_row(void) {
  OCIStmt *stmt = prepared("INSERT INTO zevoci_trace (id, name) VALUES (:id, :name)");
  OCIBind *id = NULL, *name = NULL;
  sb4 number = 7;
  char chars[] = "seven";
  check(OCIBindByName(stmt, &id, err, text_of(":id"), 3, &number, sizeof number, SQLT_INT,
                      NULL, NULL, NULL, 0, NULL, OCI_DEFAULT),
        "OCIBindByName");
  check(OCIBindByPos(stmt, &name, err, 2, chars, sizeof chars, SQLT_STR, NULL, NULL, NULL,
                     0, NULL, OCI_DEFAULT),
        "OCIBindByPos");
  check(execute(stmt, 1), "INSERT");
  OCIHandleFree(stmt, OCI_HTYPE_STMT);
}

static void select_rows(void) {
  OCIStmt *stmt = prepared("SELECT id, name FROM zevoci_trace WHERE id < :most");
  OCIBind *most = NULL;
  OCIDefine *id = NULL, *name = NULL;
  sb4 limit = 10, number = 0;
  char chars[20];
  check(OCIBindByName(stmt, &most, err, text_of(":most"), 5, &limit, sizeof limit,
                      SQLT_INT, NULL, NULL, NULL, 0, NULL, OCI_DEFAULT),
        "OCIBindByName");
  check(OCIDefineByPos(stmt, &id, err, 1, &number, sizeof number, SQLT_INT, NULL, NULL,
                       NULL, OCI_DEFAULT),
        "OCIDefineByPos");
  check(OCIDefineByPos(stmt, &name, err, 2, chars, sizeof chars, SQLT_STR, NULL, NULL,
                       NULL, OCI_DEFAULT),
        "OCIDefineByPos");
  check(execute(stmt, 0), "SELECT");
  check(OCIStmtFetch(stmt, err, 1, OCI_FETCH_NEXT, OCI_DEFAULT), "OCIStmtFetch");
  if (OCIStmtFetch2(stmt, err, 1, OCI_FETCH_NEXT, 0, OCI_DEFAULT) != OCI_NO_DATA) exit(3);
  check(execute(stmt, 1), "SELECT again");
  OCIStmtFetch(stmt, err, 0, OCI_FETCH_NEXT, OCI_DEFAULT); /* closes the portal */
  OCIHandleFree(stmt, OCI_HTYPE_STMT);
}

static void fail_at_prepare_and_fetch(void) {
  OCIStmt *stmt = prepared("SELECT nothing FROM zevoci_trace");
  OCIDefine *define = NULL;
  sb4 number = 0;
  if (execute(stmt, 1) != OCI_ERROR) exit(4);
  OCIHandleFree(stmt, OCI_HTYPE_STMT);

  stmt = prepared("SELECT 1 / (g - 1) FROM generate_series(1, 1) g");
  check(OCIDefineByPos(stmt, &define, err, 1, &number, sizeof number, SQLT_INT, NULL,
                       NULL, NULL, OCI_DEFAULT),
        "OCIDefineByPos");
  check(execute(stmt, 0), "SELECT");
  if (OCIStmtFetch2(stmt, err, 1, OCI_FETCH_NEXT, 0, OCI_DEFAULT) != OCI_ERROR) exit(5);
  OCIHandleFree(stmt, OCI_HTYPE_STMT);
}

static sword watch(void *ctxp, void *hndlp, ub4 type, ub4 fcode, ub4 when,
                   sword returnCode, sb4 *errnop, va_list arglist) {
  (void)ctxp, (void)hndlp, (void)type, (void)fcode, (void)when, (void)returnCode;
  (void)errnop, (void)arglist;
  return OCI_CONTINUE;
}

/* What only the other kind of trace shows. */
static void tell(void) {
  OraText name[40];
  OCIDate today, next;
  ub4 amount = 1;
  OCIUserCallbackRegister(env, OCI_HTYPE_ENV, err, watch, NULL, OCI_FNCODE_LOBAPPEND,
                          OCI_UCBTYPE_ENTRY, NULL);
  OCIUserCallbackRegister(env, OCI_HTYPE_ENV, err, watch, NULL, 9, 4, NULL);
  OCIUserCallbackGet(env, OCI_HTYPE_ENV, err, 2, OCI_UCBTYPE_ENTRY, NULL, NULL, NULL);
  OCINlsCharSetIdToName(env, name, sizeof name, 6);
  check(OCIDateSysDate(err, &today), "OCIDateSysDate");
  check(OCIDateAddDays(err, &today, 1, &next), "OCIDateAddDays");
  OCILobAppend(svc, err, NULL, NULL);
  OCILobErase(svc, err, NULL, &amount, 1);
}

int main(int argc, char **argv) {
  ub1 strategy = 0;
  if (argc != 4) return 1;
  setenv("ZEV_OCI_UIFCTN_RET_OK", "1", 1);
  check(OCIEnvCreate(&env, OCI_DEFAULT, NULL, NULL, NULL, NULL, 0, NULL), "OCIEnvCreate");
  check(OCIHandleAlloc(env, (void **)&err, OCI_HTYPE_ERROR, 0, NULL), "OCIHandleAlloc");
  check(OCILogon(env, err, &svc, text_of(argv[1]), (ub4)strlen(argv[1]), text_of(argv[2]),
                 (ub4)strlen(argv[2]), text_of(argv[3]), (ub4)strlen(argv[3])),
        "OCILogon");
  run("CREATE TEMPORARY TABLE zevoci_trace (id integer, name varchar(20))");
  insert_row();
  check(OCITransCommit(svc, err, OCI_DEFAULT), "OCITransCommit");
  select_rows();
  fail_at_prepare_and_fetch();
  check(OCITransRollback(svc, err, OCI_DEFAULT), "OCITransRollback");
  OCIAttrSet(env, OCI_HTYPE_ENV, &strategy, sizeof strategy, 5002, err);
  tell();
  check(OCILogoff(svc, err), "OCILogoff");
  return OCIHandleFree(env, OCI_HTYPE_ENV) == OCI_SUCCESS ? 0 : 1;
}
