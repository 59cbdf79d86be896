/*
 * routines: a procedure with IN, OUT and INOUT arguments, and a REF CURSOR of a function
 * that is drained through a statement of its own.
 *
 * usage: routines [connect [user [password]]]
 */
#include "example.h"

static void call_procedure(struct session *s) {
  OCIStmt *stmt = prepare(s, "BEGIN zevoci_scale(:factor, :text, :result); END;");
  sb4 factor = 3, result = 0;
  sb2 result_is_null = 0;
  char words[32] = "three times";

  bind_name(s, stmt, ":factor", &factor, sizeof factor, SQLT_INT, NULL);
  bind_name(s, stmt, ":text", words, sizeof words, SQLT_STR, NULL);
  bind_name(s, stmt, ":result", &result, sizeof result, SQLT_INT, &result_is_null);
  execute(s, stmt, 1, "calling a procedure");
  printf("%s: %d\n", words, (int)result);
  expect(result == 42 && !result_is_null, "the OUT argument came back");
  expect(strcmp(words, "three times fourteen") == 0, "so did the INOUT argument");
  finish(s, stmt);
}

static void drain_cursor(struct session *s) {
  OCIStmt *stmt = prepare(s, "BEGIN :rows := zevoci_squares(:upto); END;");
  OCIStmt *rows = NULL;
  sb4 upto = 5, number = 0, square = 0, fetched = 0;
  sword status;

  must(s->err, OCIHandleAlloc(s->env, (void **)&rows, OCI_HTYPE_STMT, 0, NULL),
       "statement of the cursor");
  bind_name(s, stmt, ":rows", &rows, 0, SQLT_RSET, NULL);
  bind_name(s, stmt, ":upto", &upto, sizeof upto, SQLT_INT, NULL);
  execute(s, stmt, 1, "calling a function");
  define(s, rows, 1, &number, sizeof number, SQLT_INT, NULL, NULL, NULL);
  define(s, rows, 2, &square, sizeof square, SQLT_INT, NULL, NULL, NULL);
  while ((status = OCIStmtFetch(rows, s->err, 1, OCI_FETCH_NEXT, OCI_DEFAULT)) !=
         OCI_NO_DATA) {
    must(s->err, status, "fetching from the cursor");
    ++fetched;
    printf("%d squared is %d\n", (int)number, (int)square);
    expect(number == fetched && square == number * number, "rows come in order");
  }
  expect(fetched == upto, "every row came");
  finish(s, rows);
  finish(s, stmt);
}

int main(int argc, char **argv) {
  struct session s = log_on(target_of(argc, argv, 1));

  run(&s,
      "CREATE OR REPLACE PROCEDURE zevoci_scale(factor int, INOUT t text, OUT r int)"
      " LANGUAGE plpgsql AS 'BEGIN r := factor * 14; t := t || '' fourteen''; END'");
  run(&s,
      "CREATE OR REPLACE FUNCTION zevoci_squares(upto int) RETURNS refcursor"
      " LANGUAGE plpgsql AS 'DECLARE c refcursor; BEGIN OPEN c FOR"
      " SELECT g, g * g FROM generate_series(1, upto) g; RETURN c; END'");
  call_procedure(&s);
  drain_cursor(&s);
  run(&s, "DROP FUNCTION zevoci_squares");
  run(&s, "DROP PROCEDURE zevoci_scale");
  log_off(&s);
  return EXIT_SUCCESS;
}
