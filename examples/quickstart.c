/*
 * quickstart: one table from creation to removal, through bound inserts, a described
 * query, an update, both ends of a transaction and a failing statement.
 *
 * usage: quickstart [connect [user [password]]]
 */
#include "example.h"

#define TABLE "zevoci_quickstart"
#define NULL_VALUE (-1)

static void create_table(struct session *s) {
  run(s, "DROP TABLE IF EXISTS " TABLE);
  run(s, "CREATE TABLE " TABLE
         " (id integer PRIMARY KEY, name text NOT NULL, price numeric(10,2) NOT NULL,"
         " weight double precision)");
}

/* Binds by name; the second row's weight is NULL by its indicator. */
static void insert_by_name(struct session *s) {
  static const struct {
    int id;
    const char *name;
    double price, weight;
    sb2 weighed;
  } rows[] = {{1, "anvil", 49.95, 12.5, 0}, {2, "idea", 0.25, 0, NULL_VALUE}};
  int id = 0;
  char name[20] = "";
  double price = 0, weight = 0;
  sb2 weighed = 0;
  size_t i;
  OCIStmt *stmt =
      prepare(s, "INSERT INTO " TABLE
                 " (id, name, price, weight) VALUES (:id, :name, :price, :weight)");

  bind_name(s, stmt, ":id", &id, sizeof id, SQLT_INT, NULL);
  bind_name(s, stmt, ":name", name, sizeof name, SQLT_STR, NULL);
  bind_name(s, stmt, ":price", &price, sizeof price, SQLT_FLT, NULL);
  bind_name(s, stmt, ":weight", &weight, sizeof weight, SQLT_FLT, &weighed);
  for (i = 0; i < sizeof rows / sizeof rows[0]; ++i) {
    id = rows[i].id;
    strcpy(name, rows[i].name);
    price = rows[i].price;
    weight = rows[i].weight;
    weighed = rows[i].weighed;
    execute(s, stmt, 1, "inserting by name");
  }
  finish(s, stmt);
}

/* Binds by position; the text's length stands in a variable of its own. */
static void insert_by_position(struct session *s) {
  int id = 3;
  char name[] = "feather and more";
  ub2 name_length = 7;
  double price = 1.5;
  float weight = 0.125f;
  OCIBind *bind = NULL;
  OCIStmt *stmt = prepare(s, "INSERT INTO " TABLE " VALUES (:1, :2, :3, :4)");

  must(s->err,
       OCIBindByPos(stmt, &bind, s->err, 1, &id, sizeof id, SQLT_INT, NULL, NULL, NULL, 0,
                    NULL, OCI_DEFAULT),
       "binding 1");
  must(s->err,
       OCIBindByPos(stmt, &bind, s->err, 2, name, sizeof name, SQLT_CHR, NULL,
                    &name_length, NULL, 0, NULL, OCI_DEFAULT),
       "binding 2");
  must(s->err,
       OCIBindByPos(stmt, &bind, s->err, 3, &price, sizeof price, SQLT_FLT, NULL, NULL,
                    NULL, 0, NULL, OCI_DEFAULT),
       "binding 3");
  must(s->err,
       OCIBindByPos(stmt, &bind, s->err, 4, &weight, sizeof weight, SQLT_FLT, NULL, NULL,
                    NULL, 0, NULL, OCI_DEFAULT),
       "binding 4");
  execute(s, stmt, 1, "inserting by position");
  expect(statement_number(s, stmt, OCI_ATTR_ROW_COUNT) == 1, "one row inserted");
  finish(s, stmt);
}

/* Asks the server what a query gives, without running it. Binds made afterwards take the
   types that the server has found for their placeholders. */
static void describe(struct session *s, OCIStmt *stmt) {
  ub2 type = OCI_STMT_UNKNOWN;
  ub4 columns;
  must(s->err, OCIStmtExecute(s->svc, stmt, s->err, 0, 0, NULL, NULL, OCI_DESCRIBE_ONLY),
       "describing");
  must(s->err, OCIAttrGet(stmt, OCI_HTYPE_STMT, &type, NULL, OCI_ATTR_STMT_TYPE, s->err),
       "statement type");
  columns = statement_number(s, stmt, OCI_ATTR_PARAM_COUNT);
  printf("a statement of type %d with %u columns\n", type, (unsigned)columns);
  expect(type == OCI_STMT_SELECT && columns == 4, "a SELECT of four columns");
}

/* Prints the rows from id first on; gives their number. */
static int query(struct session *s, int first) {
  int id = 0, rows = 0;
  char name[20], price[20];
  double weight = 0;
  sb2 null[4];
  ub2 length[4], code[4];
  sword status;
  OCIStmt *stmt = prepare(
      s, "SELECT id, name, price, weight FROM " TABLE " WHERE id >= :first ORDER BY id");

  describe(s, stmt);
  bind_name(s, stmt, ":first", &first, sizeof first, SQLT_INT, NULL);
  define(s, stmt, 1, &id, sizeof id, SQLT_INT, &null[0], &length[0], &code[0]);
  define(s, stmt, 2, name, sizeof name, SQLT_STR, &null[1], &length[1], &code[1]);
  define(s, stmt, 3, price, sizeof price, SQLT_STR, &null[2], &length[2], &code[2]);
  define(s, stmt, 4, &weight, sizeof weight, SQLT_FLT, &null[3], &length[3], &code[3]);
  execute(s, stmt, 0, "opening the query");
  while ((status = OCIStmtFetch2(stmt, s->err, 1, OCI_FETCH_NEXT, 0, OCI_DEFAULT)) !=
         OCI_NO_DATA) {
    must(s->err, status, "fetching");
    ++rows;
    printf("  %d  %-8s (%d bytes)  %6s  ", id, name, (int)length[1], price);
    if (null[3] == NULL_VALUE)
      printf("no weight (code %d)\n", (int)code[3]);
    else
      printf("%g kg\n", weight);
    expect((null[3] == NULL_VALUE) == (id == 2), "only the idea has no weight");
  }
  finish(s, stmt);
  return rows;
}

/* Doubles the prices below a limit; gives the number of rows. */
static ub4 update(struct session *s, double limit) {
  ub4 changed;
  OCIStmt *stmt =
      prepare(s, "UPDATE " TABLE " SET price = price * 2 WHERE price < :limit");
  bind_name(s, stmt, ":limit", &limit, sizeof limit, SQLT_FLT, NULL);
  execute(s, stmt, 1, "updating");
  changed = statement_number(s, stmt, OCI_ATTR_ROW_COUNT);
  finish(s, stmt);
  return changed;
}

/* The sum of all prices, times 100. */
static long total(struct session *s) {
  double sum = 0;
  sb2 null = 0;
  OCIStmt *stmt = prepare(s, "SELECT sum(price) * 100 FROM " TABLE);
  define(s, stmt, 1, &sum, sizeof sum, SQLT_FLT, &null, NULL, NULL);
  execute(s, stmt, 1, "summing");
  finish(s, stmt);
  return null == NULL_VALUE ? 0 : (long)(sum + 0.5);
}

/* An update undone, and the same one kept. */
static void roll_back_and_commit(struct session *s) {
  const long before = total(s);
  const ub4 changed = update(s, 10);
  printf("%u prices doubled: total %ld, was %ld\n", (unsigned)changed, total(s), before);
  expect(changed == 2 && total(s) > before, "two prices doubled");
  must(s->err, OCITransRollback(s->svc, s->err, OCI_DEFAULT), "rolling back");
  printf("rolled back: total %ld\n", total(s));
  expect(total(s) == before, "nothing changed after the rollback");

  update(s, 10);
  must(s->err, OCITransCommit(s->svc, s->err, OCI_DEFAULT), "committing");
  must(s->err, OCITransRollback(s->svc, s->err, OCI_DEFAULT), "rolling back");
  printf("committed: total %ld, also after a rollback\n", total(s));
  expect(total(s) == before + 25 + 150, "the doubled prices stay");
}

/* A second row 1: the error as number and text, and in the server's own words. */
static void fail_on_purpose(struct session *s) {
  OraText message[512] = "", words[512] = "", sqlstate[6] = "";
  sb4 code = 0;
  OCIStmt *stmt = prepare(s, "INSERT INTO " TABLE " VALUES (1, 'copy', 1, NULL)");

  expect(OCIStmtExecute(s->svc, stmt, s->err, 1, 0, NULL, NULL, OCI_DEFAULT) == OCI_ERROR,
         "a second row 1 is refused");
  must(s->err,
       OCIErrorGet(s->err, 1, NULL, &code, message, sizeof message, OCI_HTYPE_ERROR),
       "reading the error");
  must(s->err,
       OCIPGErrorGet(s->err, 1, sqlstate, sizeof sqlstate, words, sizeof words,
                     OCI_HTYPE_ERROR),
       "reading the server's words");
  printf("error %d: %s\nSQLSTATE %.5s: %s\n", (int)code, (const char *)message,
         (const char *)sqlstate, (const char *)words);
  expect(code == 1 && memcmp(sqlstate, "23505", 5) == 0, "a unique violation");
  finish(s, stmt);
}

int main(int argc, char **argv) {
  struct session s = log_on(target_of(argc, argv, 1));
  OraText version[200] = "";

  must(s.err,
       OCIServerVersion(s.svc, s.err, version, sizeof version - 1, OCI_HTYPE_SVCCTX),
       "server version");
  printf("connected to %s\n", (const char *)version);

  create_table(&s);
  insert_by_name(&s);
  insert_by_position(&s);
  must(s.err, OCITransCommit(s.svc, s.err, OCI_DEFAULT), "committing the inserts");
  expect(query(&s, 1) == 3, "three rows");
  expect(query(&s, 3) == 1, "one row from 3 on");
  roll_back_and_commit(&s);
  fail_on_purpose(&s);
  run(&s, "DROP TABLE " TABLE);
  log_off(&s);
  puts("quickstart: all as expected");
  return EXIT_SUCCESS;
}
