/*
 * example.h: what the examples share: where to connect, and how to read errors.
 */
#ifndef ZEVOCI_EXAMPLE_H
#define ZEVOCI_EXAMPLE_H

#include <oci.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

/* Address and credentials of the server. */
struct target {
  const char *connect; /* "[//]host[:port][/database]" */
  const char *user;
  const char *password;
};

/* What a program holds while it is logged on. */
struct session {
  OCIEnv *env;
  OCIError *err;
  OCISvcCtx *svc;
};

/* The n-th argument, else the environment variable, else the default. */
static inline const char *setting(int argc, char **argv, int n, const char *variable,
                                  const char *otherwise) {
  const char *value = n < argc ? argv[n] : getenv(variable);
  return value ? value : otherwise;
}

/* Connect string, user and password from argument first on. */
static inline struct target target_of(int argc, char **argv, int first) {
  struct target to;
  to.connect = setting(argc, argv, first, "ZEVOCI_DEMO_CONNECT", "localhost:5444/zev");
  to.user = setting(argc, argv, first + 1, "ZEVOCI_DEMO_USER", "zev");
  to.password = setting(argc, argv, first + 2, "ZEVOCI_DEMO_PASSWORD", "zev");
  return to;
}

/* Writes every record of an error handle: Oracle number, text, and the server's own
 * words. */
static inline void print_records(OCIError *err) {
  OraText words[1024];
  OraText sqlstate[6];
  sb4 code = 0;
  ub4 n;
  for (n = 1; OCIErrorGet(err, n, NULL, &code, words, sizeof words, OCI_HTYPE_ERROR) ==
              OCI_SUCCESS;
       ++n) {
    fprintf(stderr, "  %d: %s\n", (int)code, (const char *)words);
    if (OCIPGErrorGet(err, n, sqlstate, sizeof sqlstate, words, sizeof words,
                      OCI_HTYPE_ERROR) == OCI_SUCCESS)
      fprintf(stderr, "  SQLSTATE %.5s: %s\n", (const char *)sqlstate,
              (const char *)words);
  }
}

/* Ends the program with status 1 and the records of err unless the call went well. */
static inline void must(OCIError *err, sword status, const char *what) {
  if (status == OCI_SUCCESS || status == OCI_SUCCESS_WITH_INFO) return;
  fprintf(stderr, "%s: status %d\n", what, (int)status);
  if (err) print_records(err);
  exit(EXIT_FAILURE);
}

/* Ends the program with status 1 unless the condition holds. */
static inline void expect(int condition, const char *what) {
  if (condition) return;
  fprintf(stderr, "not as expected: %s\n", what);
  exit(EXIT_FAILURE);
}

/* Makes an environment and an error handle, and logs on. */
static inline struct session log_on(struct target to) {
  struct session s = {NULL, NULL, NULL};
  must(NULL, OCIEnvCreate(&s.env, OCI_DEFAULT, NULL, NULL, NULL, NULL, 0, NULL),
       "environment");
  must(NULL, OCIHandleAlloc(s.env, (void **)&s.err, OCI_HTYPE_ERROR, 0, NULL),
       "error handle");
  must(s.err,
       OCILogon(s.env, s.err, &s.svc, (const OraText *)to.user, (ub4)strlen(to.user),
                (const OraText *)to.password, (ub4)strlen(to.password),
                (const OraText *)to.connect, (ub4)strlen(to.connect)),
       "logging on");
  return s;
}

/* Logs off and frees all that the environment owns. */
static inline void log_off(struct session *s) {
  must(s->err, OCILogoff(s->svc, s->err), "logging off");
  must(NULL, OCIHandleFree(s->err, OCI_HTYPE_ERROR), "freeing the error handle");
  must(NULL, OCIHandleFree(s->env, OCI_HTYPE_ENV), "freeing the environment");
}

/* A statement with its text; the caller frees it. */
static OCIStmt *prepare(struct session *s, const char *sql) {
  OCIStmt *stmt = NULL;
  must(s->err, OCIHandleAlloc(s->env, (void **)&stmt, OCI_HTYPE_STMT, 0, NULL),
       "statement handle");
  must(s->err,
       OCIStmtPrepare(stmt, s->err, (const OraText *)sql, (ub4)strlen(sql),
                      OCI_NTV_SYNTAX, OCI_DEFAULT),
       sql);
  return stmt;
}

/* Frees a statement, its binds, its defines and what it holds on the server. */
static inline void finish(struct session *s, OCIStmt *stmt) {
  must(s->err, OCIHandleFree(stmt, OCI_HTYPE_STMT), "freeing a statement");
}

/* Executes a statement iters times (a SELECT: fetches iters rows). */
static inline void execute(struct session *s, OCIStmt *stmt, ub4 iters,
                           const char *what) {
  must(s->err, OCIStmtExecute(s->svc, stmt, s->err, iters, 0, NULL, NULL, OCI_DEFAULT),
       what);
}

/* Prepares, executes once and frees. */
static inline void run(struct session *s, const char *sql) {
  OCIStmt *stmt = prepare(s, sql);
  execute(s, stmt, 1, sql);
  finish(s, stmt);
}

/* Binds a placeholder by its name, colon included. */
static inline void bind_name(struct session *s, OCIStmt *stmt, const char *name,
                             void *value, size_t size, ub2 type, sb2 *indicator) {
  OCIBind *bind = NULL;
  must(s->err,
       OCIBindByName(stmt, &bind, s->err, (const OraText *)name, -1, value, (sb4)size,
                     type, indicator, NULL, NULL, 0, NULL, OCI_DEFAULT),
       name);
}

/* Gives column position an array of buffers with indicators; lengths and codes may be
 * null. */
static inline void define(struct session *s, OCIStmt *stmt, ub4 position, void *value,
                          size_t size, ub2 type, sb2 *indicators, ub2 *lengths,
                          ub2 *codes) {
  OCIDefine *handle = NULL;
  must(s->err,
       OCIDefineByPos(stmt, &handle, s->err, position, value, (sb4)size, type, indicators,
                      lengths, codes, OCI_DEFAULT),
       "defining a column");
}

/* Reads a ub4 attribute of a statement. */
static inline ub4 statement_number(struct session *s, OCIStmt *stmt, ub4 attribute) {
  ub4 value = 0;
  must(s->err, OCIAttrGet(stmt, OCI_HTYPE_STMT, &value, NULL, attribute, s->err),
       "reading an attribute of a statement");
  return value;
}

#endif /* ZEVOCI_EXAMPLE_H */
