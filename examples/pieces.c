/*
 * pieces: a long text that is fetched through a callback, a piece at a time.
 *
 * usage: pieces [connect [user [password]]]
 */
#include "example.h"

#define LENGTH 1000000
#define PIECE 4096

struct sink {
  char piece[PIECE];
  ub4 length; /* room offered, then bytes received */
  ub4 total;  /* bytes of the pieces before */
  ub4 pieces;
  sb2 is_null;
  ub2 code;
};

/* Checks the piece that has come. */
static void take(struct sink *sink) {
  ub4 i;
  for (i = 0; i < sink->length; ++i) {
    expect(sink->piece[i] == (char)('a' + (sink->total + i) % 26), "the text is whole");
  }
  sink->total += sink->length;
}

/* Asked where the next piece goes; the one before it is in the buffer by then. */
static sb4 next_piece(void *context, OCIDefine *define, ub4 row, void **buffer,
                      ub4 **length, ub1 *piece, void **is_null, ub2 **code) {
  struct sink *sink = context;
  (void)define;
  (void)row;
  if (*piece == OCI_NEXT_PIECE) take(sink);
  ++sink->pieces;
  sink->length = PIECE;
  *buffer = sink->piece;
  *length = &sink->length;
  *is_null = &sink->is_null;
  *code = &sink->code;
  return OCI_CONTINUE;
}

int main(int argc, char **argv) {
  struct session s = log_on(target_of(argc, argv, 1));
  OCIStmt *stmt = prepare(&s,
                          "SELECT substr(repeat('abcdefghijklmnopqrstuvwxyz', 38462),"
                          " 1, 1000000)");
  OCIDefine *handle = NULL;
  static struct sink sink;

  must(s.err,
       OCIDefineByPos(stmt, &handle, s.err, 1, NULL, LENGTH, SQLT_CHR, NULL, NULL, NULL,
                      OCI_DYNAMIC_FETCH),
       "defining a column");
  must(s.err, OCIDefineDynamic(handle, s.err, &sink, next_piece), "giving the callback");
  execute(&s, stmt, 1, "fetching");
  take(&sink);
  printf("%u bytes in %u pieces\n", (unsigned)sink.total, (unsigned)sink.pieces);
  expect(sink.total == LENGTH && !sink.is_null, "all of the text came");
  expect(sink.pieces == (LENGTH + PIECE - 1) / PIECE, "in full pieces");
  finish(&s, stmt);
  log_off(&s);
  return EXIT_SUCCESS;
}
