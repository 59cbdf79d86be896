/*
 * A server of transactions in the manner of application servers: sessions from a pool,
 * and one more that a transaction manager's open string describes; a transaction in two
 * phases over both.
 *
 * usage: pooled_driver USER PASSWORD HOST PORT DATABASE
 */
#include <oci.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <xa.h>

static OCIEnv *env;
static OCIError *err;

static void check(sword status, const char *what) {
  OraText message[512] = "";
  sb4 code = 0;
  if (status == OCI_SUCCESS || status == OCI_SUCCESS_WITH_INFO) return;
  OCIErrorGet(err, 1, NULL, &code, message, sizeof message, OCI_HTYPE_ERROR);
  fprintf(stderr, "%s: %d %s\n", what, (int)status, (const char *)message);
  exit(1);
}

static void *allocated(OCIEnv *in, ub4 type) {
  void *handle = NULL;
  check(OCIHandleAlloc(in, &handle, type, 0, NULL), "OCIHandleAlloc");
  return handle;
}

static OCIEnv *environment_of(OCISvcCtx *svc) {
  OCIEnv *found = NULL;
  check(OCIAttrGet(svc, OCI_HTYPE_SVCCTX, &found, NULL, OCI_ATTR_ENV, err),
        "OCI_ATTR_ENV");
  return found;
}

static void run(OCISvcCtx *svc, const char *sql) {
  OCIStmt *stmt = allocated(environment_of(svc), OCI_HTYPE_STMT);
  check(OCIStmtPrepare(stmt, err, (const OraText *)sql, (ub4)strlen(sql), OCI_NTV_SYNTAX,
                       OCI_DEFAULT),
        "OCIStmtPrepare");
  check(OCIStmtExecute(svc, stmt, err, 1, 0, NULL, NULL, OCI_DEFAULT), sql);
  OCIHandleFree(stmt, OCI_HTYPE_STMT);
}

static sb4 number(OCISvcCtx *svc, const char *sql) {
  sb4 value = 0;
  OCIDefine *define = NULL;
  OCIStmt *stmt = allocated(environment_of(svc), OCI_HTYPE_STMT);
  check(OCIStmtPrepare(stmt, err, (const OraText *)sql, (ub4)strlen(sql), OCI_NTV_SYNTAX,
                       OCI_DEFAULT),
        "OCIStmtPrepare");
  check(OCIDefineByPos(stmt, &define, err, 1, &value, sizeof value, SQLT_INT, NULL, NULL,
                       NULL, OCI_DEFAULT),
        "OCIDefineByPos");
  check(OCIStmtExecute(svc, stmt, err, 1, 0, NULL, NULL, OCI_DEFAULT), sql);
  OCIHandleFree(stmt, OCI_HTYPE_STMT);
  return value;
}

static OraText *pool_name;
static ub4 pool_name_length;

static OCISvcCtx *session_from_pool(void) {
  OCISvcCtx *svc = NULL;
  OCIAuthInfo *as = allocated(env, OCI_HTYPE_SESSION);
  const sword status = OCISessionGet(env, err, &svc, as, pool_name, pool_name_length,
                                     NULL, 0, NULL, NULL, NULL, OCI_SESSGET_SPOOL);
  return status == OCI_SUCCESS ? svc : NULL;
}

/* Prepares what the session has done as a transaction of the given name. */
static void prepare_branch(OCISvcCtx *svc, const char *name) {
  OCITrans *trans = allocated(environment_of(svc), OCI_HTYPE_TRANS);
  check(OCIAttrSet(trans, OCI_HTYPE_TRANS, (void *)name, (ub4)strlen(name),
                   OCI_ATTR_TRANS_NAME, err),
        "OCI_ATTR_TRANS_NAME");
  check(OCIAttrSet(svc, OCI_HTYPE_SVCCTX, trans, 0, OCI_ATTR_TRANS, err),
        "OCI_ATTR_TRANS");
  check(OCITransPrepare(svc, err, OCI_DEFAULT), "OCITransPrepare");
}

int main(int argc, char **argv) {
  char target[256], open_string[256];
  OCISPool *pool;
  OCISvcCtx *first, *second, *third, *global;
  OCIEnv *global_env;

  if (argc != 6) return 1;
  check(OCIEnvCreate(&env, OCI_THREADED, NULL, NULL, NULL, NULL, 0, NULL),
        "OCIEnvCreate");
  err = allocated(env, OCI_HTYPE_ERROR);
  pool = allocated(env, OCI_HTYPE_SPOOL);
  snprintf(target, sizeof target, "//%s:%s/%s", argv[3], argv[4], argv[5]);
  check(OCISessionPoolCreate(env, err, pool, &pool_name, &pool_name_length,
                             (OraText *)target, (ub4)strlen(target), 1, 2, 1,
                             (OraText *)argv[1], (ub4)strlen(argv[1]), (OraText *)argv[2],
                             (ub4)strlen(argv[2]), OCI_SPC_HOMOGENEOUS),
        "OCISessionPoolCreate");
  first = session_from_pool();
  second = session_from_pool();
  third = session_from_pool();
  if (!first || !second) check(OCI_ERROR, "OCISessionGet");
  printf("two of two sessions, %s\n", third ? "and a third" : "and no more");
  printf("of processes: %s\n", number(first, "SELECT pg_backend_pid()") !=
                                       number(second, "SELECT pg_backend_pid()")
                                   ? "different"
                                   : "the same");

  snprintf(open_string, sizeof open_string,
           "hostname=%s+portnumber=%s+sqlnet=%s+acc=P/%s/%s+appname=pooled", argv[3],
           argv[4], argv[5], argv[1], argv[2]);
  global = xaoSvcCtx((OraText *)open_string);
  if (!global) check(OCI_ERROR, "xaoSvcCtx");

  run(first, "DROP TABLE IF EXISTS zevoci_pooled");
  run(first, "CREATE TABLE zevoci_pooled (amount integer)");
  check(OCITransCommit(first, err, OCI_DEFAULT), "OCITransCommit");
  run(first, "INSERT INTO zevoci_pooled VALUES (40)");
  run(global, "INSERT INTO zevoci_pooled VALUES (2)");
  prepare_branch(first, "zevoci_pooled_1");
  prepare_branch(global, "zevoci_pooled_2");
  printf("prepared, seen by others: %d\n",
         (int)number(second, "SELECT count(*) FROM zevoci_pooled"));
  check(OCITransRollback(second, err, OCI_DEFAULT), "OCITransRollback");
  check(OCITransCommit(first, err, OCI_TRANS_TWOPHASE), "OCITransCommit");
  check(OCITransCommit(global, err, OCI_TRANS_TWOPHASE), "OCITransCommit");
  printf("committed, seen by others: %d\n",
         (int)number(second, "SELECT sum(amount)::integer FROM zevoci_pooled"));
  run(second, "DROP TABLE zevoci_pooled");
  check(OCITransCommit(second, err, OCI_DEFAULT), "OCITransCommit");

  global_env = environment_of(global);
  check(OCIHandleFree(global_env, OCI_HTYPE_ENV), "the environment of XA");
  check(OCILogoff(first, err), "OCILogoff");
  check(OCISessionRelease(second, err, NULL, 0, OCI_DEFAULT), "OCISessionRelease");
  check(OCISessionPoolDestroy(pool, err, OCI_DEFAULT), "OCISessionPoolDestroy");
  free(pool_name);
  check(OCIHandleFree(env, OCI_HTYPE_ENV), "OCIHandleFree");
  printf("done\n");
  return 0;
}
