/*
 * xa.h: the transaction identifier of the X/Open XA interface, and the handles of a
 * connection that is described by an XA open string.
 */
#ifndef ZEVOCI_XA_H
#define ZEVOCI_XA_H

#include "oci.h"

#define XIDDATASIZE 128
#define MAXGTRIDSIZE 64
#define MAXBQUALSIZE 64

/* Global transaction identifier, 152 bytes; formatID -1 is the null XID (X/Open XA). */
struct xid_t {
  long formatID;
  long gtrid_length;
  long bqual_length;
  char data[XIDDATASIZE];
};
typedef struct xid_t XID;

#ifdef __cplusplus
extern "C" {
#endif

/* A new environment, or null; dbname is not looked at. The caller frees it. */
OCIEnv *xaoEnv(OraText *dbname);

/* A service context with a session begun, in an environment of its own that is read as
   OCI_ATTR_ENV and that the caller frees; null after any failure. open_string is shorter
   than 256 bytes and holds items NAME=VALUE with "+" between them: acc=P/user/password,
   sqlnet (connect string, or the database on hostname and portnumber where both are
   given), hostname, portnumber, appname; others are skipped, and names may be in either
   case. */
OCISvcCtx *xaoSvcCtx(OraText *open_string);

#ifdef __cplusplus
}
#endif

#endif /* ZEVOCI_XA_H */
