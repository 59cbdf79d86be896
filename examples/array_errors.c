/*
 * array_errors: an array insert in which one row fails. Nothing of the batch is stored,
 * and the record says which value the server refused.
 *
 * usage: array_errors [connect [user [password]]]
 */
#include "example.h"

#define TABLE "zevoci_array_errors"
#define ROWS 100

static sword insert(struct session *s, OCIStmt *stmt) {
  return OCIStmtExecute(s->svc, stmt, s->err, ROWS, 0, NULL, NULL, OCI_DEFAULT);
}

static sb4 count(struct session *s) {
  OCIStmt *stmt = prepare(s, "SELECT count(*)::int4 FROM " TABLE);
  sb4 rows = -1;
  define(s, stmt, 1, &rows, sizeof rows, SQLT_INT, NULL, NULL, NULL);
  execute(s, stmt, 1, "counting");
  finish(s, stmt);
  return rows;
}

int main(int argc, char **argv) {
  struct session s = log_on(target_of(argc, argv, 1));
  sb4 ids[ROWS];
  char names[ROWS][16] = {{0}};
  OCIStmt *stmt;
  OraText words[1024];
  sb4 code = 0;
  int i;

  run(&s, "DROP TABLE IF EXISTS " TABLE);
  run(&s, "CREATE TABLE " TABLE " (id int PRIMARY KEY, name varchar(16))");
  stmt = prepare(&s, "INSERT INTO " TABLE " VALUES (:id, :name)");
  bind_name(&s, stmt, ":id", ids, sizeof ids[0], SQLT_INT, NULL);
  bind_name(&s, stmt, ":name", names, sizeof names[0], SQLT_STR, NULL);
  for (i = 0; i < ROWS; ++i) {
    ids[i] = i;
    snprintf(names[i], sizeof names[i], "row %d", i);
  }
  ids[70] = 7;

  expect(insert(&s, stmt) == OCI_ERROR, "the batch fails");
  OCIErrorGet(s.err, 1, NULL, &code, words, sizeof words, OCI_HTYPE_ERROR);
  printf("refused: %s\n", (char *)words);
  OCIErrorGet(s.err, 2, NULL, &code, words, sizeof words, OCI_HTYPE_ERROR);
  expect(count(&s) == 0, "nothing of the batch is stored");

  ids[70] = 70;
  must(s.err, insert(&s, stmt), "the corrected batch");
  expect(statement_number(&s, stmt, OCI_ATTR_ROW_COUNT) == ROWS, "all rows are counted");
  must(s.err, OCITransCommit(s.svc, s.err, OCI_DEFAULT), "committing");
  expect(count(&s) == ROWS, "all rows are stored");
  printf("%d rows stored\n", ROWS);

  finish(&s, stmt);
  run(&s, "DROP TABLE " TABLE);
  log_off(&s);
  return EXIT_SUCCESS;
}
