/*
 * copy_lob: a file copied into a large object and back, piece by piece, and compared.
 *
 * usage: copy_lob file [connect [user [password]]]
 */
#include "example.h"

enum { PIECE = 8192 };

/* The file that pieces are compared with. */
struct comparison {
  FILE *file;
  ub4 length;
  int last_seen;
};

/* Makes an empty large object and points the locator to it. Locators cannot be freed:
   this one is kept for the whole run. */
static OCILobLocator *make_object(struct session *s) {
  static OCILobLocator *locator;
  OCIStmt *stmt = prepare(s, "SELECT lo_create(0)");
  must(s->err, OCIDescriptorAlloc(s->env, (void **)&locator, OCI_DTYPE_LOB, 0, NULL),
       "locator");
  define(s, stmt, 1, &locator, sizeof locator, SQLT_BLOB, NULL, NULL, NULL);
  execute(s, stmt, 1, "making a large object");
  finish(s, stmt);
  return locator;
}

/* Appends the file; gives its length. */
static ub4 append_file(struct session *s, OCILobLocator *locator, FILE *file) {
  char piece[PIECE];
  ub4 total = 0;
  size_t got;
  while ((got = fread(piece, 1, sizeof piece, file)) > 0) {
    ub4 amount = (ub4)got;
    must(s->err,
         OCILobWriteAppend(s->svc, s->err, locator, &amount, piece, amount, OCI_ONE_PIECE,
                           NULL, NULL, 0, 0),
         "appending");
    expect(amount == got, "the whole piece was written");
    total += amount;
  }
  expect(!ferror(file), "the file can be read");
  return total;
}

/* Compares one piece of the object with the next bytes of the file. */
static sb4 compare(void *context, const void *bytes, ub4 length, ub1 piece) {
  struct comparison *c = context;
  char expected[PIECE];
  expect(fread(expected, 1, length, c->file) == length, "the file is as long");
  expect(memcmp(expected, bytes, length) == 0, "the bytes are the same");
  c->length += length;
  c->last_seen = piece == OCI_LAST_PIECE;
  return OCI_CONTINUE;
}

int main(int argc, char **argv) {
  struct session s;
  struct comparison back = {NULL, 0, 0};
  OCILobLocator *locator;
  char piece[PIECE];
  ub4 written, size = 0, amount;

  expect(argc > 1, "a file to copy is named");
  back.file = fopen(argv[1], "rb");
  expect(back.file != NULL, "the file can be opened");
  s = log_on(target_of(argc, argv, 2));

  locator = make_object(&s);
  must(s.err, OCILobOpen(s.svc, s.err, locator, 0), "opening");
  written = append_file(&s, locator, back.file);
  must(s.err, OCILobGetLength(s.svc, s.err, locator, &size), "measuring");
  expect(size == written, "the object is as long as the file");

  rewind(back.file);
  amount = size;
  must(s.err,
       OCILobRead(s.svc, s.err, locator, &amount, 0, piece, sizeof piece, &back, compare,
                  0, 0),
       "reading back");
  expect(amount == size && back.length == size, "everything came back");
  expect(back.last_seen || !size, "the last piece was marked");
  must(s.err, OCILobClose(s.svc, s.err, locator), "closing");
  printf("%u bytes copied and read back\n", (unsigned)size);

  /* The object was made in this transaction and goes with it. */
  must(s.err, OCITransRollback(s.svc, s.err, OCI_DEFAULT), "rolling back");
  fclose(back.file);
  log_off(&s);
  return EXIT_SUCCESS;
}
