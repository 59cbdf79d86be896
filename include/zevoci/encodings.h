/// Encoding numbers and names, and conversion of text at the interface edge.
#pragma once

#include <iconv.h>
#include <oratypes.h>

#include <cstddef>

#include "zevoci/api.h"

struct OCIEnv;

/// Encoding numbers that the code names.
enum EncodingNumber : int { kSqlAscii = 0, kUtf8 = 6, kUtf16Le = 39, kUtf16Be = 40 };
inline constexpr int kLastEncoding = 40;

/// A canonical name and its number.
struct pg_enc2name {
  const char *name;
  int encoding;
};
/// An alias: lower-case alphanumeric name and encoding number.
struct pg_encname {
  const char *name;
  int encoding;
};

extern "C" {
extern ZEV_HELPER const pg_enc2name zev_enc2name_tbl[];
/// Sorted by name, with a null end row.
extern ZEV_HELPER const pg_encname zev_encname_tbl[];
/// Rows of zev_encname_tbl without the end row.
extern ZEV_HELPER const unsigned int zev_encname_tbl_sz;

/// The number of a name in any spelling; 6 (UTF8) for a name that is not known, -1 for
/// null. Hidden: libpq has a function of this name.
int pg_char_to_encoding(const char *name);
/// The alias row of a name, or null. More than 63 characters are refused on standard
/// error.
ZEV_HELPER const pg_encname *pg_char_to_encname_struct(const char *name);
/// The canonical name; empty for a number outside 0 to 40. Hidden: libpq has one too.
const char *pg_encoding_to_char(int encoding);

/// Converts `sourceLength` bytes; `*out` is a new NUL-terminated block that the caller
/// frees and
/// `*outLength` its length without the terminator, also the return. An empty source gives
/// null and 0. -1 on failure, with errno in `*error`.
ZEV_HELPER std::size_t transcode(iconv_t cd, int *error, const void *source,
                                 std::size_t sourceLength, void **out,
                                 std::size_t *outLength);

/// Splits "language_territory.charset" into new copies for the outputs given; 1 when all
/// three parts are there, else 0 with the outputs null.
ZEV_HELPER boolean ParseLocale(const char *text, char **language, char **territory,
                               char **charset);
/// A copy of the system's spelling of an encoding that the table of system names holds,
/// or null.
ZEV_HELPER char *findMatchingSysEncoding(const char *name);
/// A copy of the server's name for a system encoding, or null.
ZEV_HELPER char *findMatchingPgEncoding(const char *name);
/// Settles the environment's encoding and the process locale; `csid` 1 to 40 is the
/// number itself, 0 searches NLS_LANG and the locale.
ZEV_HELPER void InitNls(OCIEnv *env, ub2 csid);
/// Binds the message domain, once per process.
ZEV_HELPER void SetNlsMessagesPath();
}
