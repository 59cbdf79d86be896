/*
 * xa.h: the transaction identifier of the X/Open XA interface.
 */
#ifndef ZEVOCI_XA_H
#define ZEVOCI_XA_H

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

#endif /* ZEVOCI_XA_H */
