/*
 * nonblocking: an array insert that is repeated while it is still executing, and one that
 * a second thread breaks off.
 *
 * usage: nonblocking [connect [user [password]]]
 */
#define _POSIX_C_SOURCE 200809L
#include <pthread.h>
#include <time.h>

#include "example.h"

#define TABLE "zevoci_nonblocking"
#define ROWS 2000

static void pause_for(long milliseconds) {
  struct timespec pause;
  pause.tv_sec = 0;
  pause.tv_nsec = milliseconds * 1000000;
  nanosleep(&pause, NULL);
}

/* Repeats the call until it has ended; a program would do other work in between. */
static sword until_done(struct session *s, OCIStmt *stmt, ub4 *calls) {
  sword status;
  for (*calls = 1;; ++*calls) {
    status = OCIStmtExecute(s->svc, stmt, s->err, ROWS, 0, NULL, NULL, OCI_DEFAULT);
    if (status != OCI_STILL_EXECUTING) return status;
    pause_for(1);
  }
}

/* Breaks off what the session is executing, on handles of its own. */
static void *break_off(void *context) {
  struct session *s = context;
  OCIError *err = NULL;
  pause_for(100);
  must(NULL, OCIHandleAlloc(s->env, (void **)&err, OCI_HTYPE_ERROR, 0, NULL),
       "error handle of the second thread");
  must(err, OCIBreak(s->svc, err), "breaking off");
  OCIHandleFree(err, OCI_HTYPE_ERROR);
  return NULL;
}

int main(int argc, char **argv) {
  struct session s = log_on(target_of(argc, argv, 1));
  OCIServer *server = NULL;
  OCIStmt *quick, *slow;
  pthread_t breaker;
  sb4 ids[ROWS];
  ub4 calls = 0;
  int i;

  for (i = 0; i < ROWS; ++i) ids[i] = i;
  run(&s, "DROP TABLE IF EXISTS " TABLE);
  run(&s, "CREATE TABLE " TABLE " (id int)");
  must(s.err, OCIAttrGet(s.svc, OCI_HTYPE_SVCCTX, &server, NULL, OCI_ATTR_SERVER, s.err),
       "reaching the server handle");
  must(s.err,
       OCIAttrSet(server, OCI_HTYPE_SERVER, NULL, 0, OCI_ATTR_NONBLOCKING_MODE, s.err),
       "leaving blocking mode");

  quick = prepare(&s, "INSERT INTO " TABLE " VALUES (:id)");
  bind_name(&s, quick, ":id", ids, sizeof ids[0], SQLT_INT, NULL);
  must(s.err, until_done(&s, quick, &calls), "inserting");
  printf("%d rows in %u calls\n", ROWS, (unsigned)calls);
  expect(calls >= 3, "no call waits for the server");
  must(s.err, OCITransCommit(s.svc, s.err, OCI_DEFAULT), "committing");

  slow = prepare(&s, "INSERT INTO " TABLE " SELECT :id FROM pg_sleep(0.01)");
  bind_name(&s, slow, ":id", ids, sizeof ids[0], SQLT_INT, NULL);
  expect(pthread_create(&breaker, NULL, break_off, &s) == 0, "a second thread starts");
  expect(until_done(&s, slow, &calls) == OCI_ERROR, "the broken call fails");
  expect(pthread_join(breaker, NULL) == 0, "the second thread ends");
  print_records(s.err);

  must(s.err,
       OCIAttrSet(server, OCI_HTYPE_SERVER, NULL, 0, OCI_ATTR_NONBLOCKING_MODE, s.err),
       "returning to blocking mode");
  finish(&s, slow);
  finish(&s, quick);
  run(&s, "DROP TABLE " TABLE);
  log_off(&s);
  return EXIT_SUCCESS;
}
