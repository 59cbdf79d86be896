/*
 * describe_table: the columns of a table, as the server's catalogue has them.
 *
 * usage: describe_table [connect [user [password]]]
 */
#include "example.h"

#define TABLE "zevoci_describe_table"

static void get(struct session *s, void *from, ub4 type, ub4 attribute, void *value,
                ub4 *size) {
  must(s->err, OCIAttrGet(from, type, value, size, attribute, s->err),
       "reading an attribute");
}

/* Prints a column. Texts belong to the description: they are not copied or freed. */
static void print_column(struct session *s, OCIParam *list, ub4 position) {
  OCIParam *column = NULL;
  OraText *name = NULL, *type = NULL;
  ub4 name_length = 0, type_length = 0;
  ub2 chars = 0;
  ub1 precision = 0, may_be_null = 0;
  sb1 scale = 0;

  must(s->err, OCIParamGet(list, OCI_DTYPE_PARAM, s->err, (void **)&column, position),
       "reaching a column");
  get(s, column, OCI_DTYPE_PARAM, OCI_ATTR_NAME, &name, &name_length);
  get(s, column, OCI_DTYPE_PARAM, OCI_ATTR_TYPE_NAME, &type, &type_length);
  get(s, column, OCI_DTYPE_PARAM, OCI_ATTR_CHAR_SIZE, &chars, NULL);
  get(s, column, OCI_DTYPE_PARAM, OCI_ATTR_PRECISION, &precision, NULL);
  get(s, column, OCI_DTYPE_PARAM, OCI_ATTR_SCALE, &scale, NULL);
  get(s, column, OCI_DTYPE_PARAM, OCI_ATTR_IS_NULL, &may_be_null, NULL);
  printf("  %-8.*s %-8.*s", (int)name_length, (const char *)name, (int)type_length,
         (const char *)type);
  if (chars) printf(" of %d characters", (int)chars);
  if (precision) printf(" of %d digits, %d behind the point", (int)precision, (int)scale);
  printf("%s\n", may_be_null ? "" : ", never null");
  expect(may_be_null == (position > 2), "the first two columns are never null");
  expect(position != 2 || chars == 30, "a name has 30 characters");
  expect(position != 3 || (precision == 10 && scale == 2), "a price is numeric(10,2)");
  must(s->err, OCIDescriptorFree(column, OCI_DTYPE_PARAM), "freeing a column");
}

static void describe(struct session *s) {
  char name[] = TABLE; /* exactly as the catalogue has it */
  OCIDescribe *handle = NULL;
  OCIParam *table = NULL, *list = NULL;
  ub2 columns = 0;
  ub4 position;

  must(s->err, OCIHandleAlloc(s->env, (void **)&handle, OCI_HTYPE_DESCRIBE, 0, NULL),
       "describe handle");
  must(s->err,
       OCIDescribeAny(s->svc, s->err, name, (ub4)strlen(name), OCI_OTYPE_NAME, 0,
                      OCI_PTYPE_TABLE, handle),
       "describing");
  get(s, handle, OCI_HTYPE_DESCRIBE, OCI_ATTR_PARAM, &table, NULL);
  get(s, table, OCI_DTYPE_PARAM, OCI_ATTR_NUM_COLS, &columns, NULL);
  get(s, table, OCI_DTYPE_PARAM, OCI_ATTR_LIST_COLUMNS, &list, NULL);
  printf("%s has %d columns\n", name, (int)columns);
  expect(columns == 4, "four columns");
  for (position = 1; position <= columns; ++position) print_column(s, list, position);
  must(s->err, OCIDescriptorFree(list, OCI_DTYPE_PARAM), "freeing the list");
  must(s->err, OCIDescriptorFree(table, OCI_DTYPE_PARAM), "freeing the table");
  must(s->err, OCIHandleFree(handle, OCI_HTYPE_DESCRIBE), "freeing the describe handle");
}

int main(int argc, char **argv) {
  struct session s = log_on(target_of(argc, argv, 1));
  run(&s, "DROP TABLE IF EXISTS " TABLE);
  run(&s, "CREATE TABLE " TABLE
          " (id integer NOT NULL, name varchar(30) NOT NULL,"
          " price numeric(10,2), added date)");
  describe(&s);
  run(&s, "DROP TABLE " TABLE);
  must(s.err, OCITransCommit(s.svc, s.err, OCI_DEFAULT), "committing");
  log_off(&s);
  return EXIT_SUCCESS;
}
