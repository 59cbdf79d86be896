/*
 * oci1.h: handles of the small services: messages, files and external procedures.
 */
#ifndef ZEVOCI_OCI1_H
#define ZEVOCI_OCI1_H

#include "oratypes.h"
#include "oro.h"

typedef struct OCIMsg OCIMsg;                       /* message file */
typedef struct OCIFileObject OCIFileObject;         /* open file */
typedef struct OCIExtProcContext OCIExtProcContext; /* caller of an external procedure */

/* clang-format off */
/* How OCIFileOpen opens a file: for what, */
#define OCI_FILE_READ_ONLY                         1
#define OCI_FILE_WRITE_ONLY                        2
#define OCI_FILE_READ_WRITE                        3
/* what it does about a missing or an existing one (OCI_FILE_CREATE and OCI_FILE_APPEND go
   together), */
#define OCI_FILE_CREATE                            1
#define OCI_FILE_EXCL                              2
#define OCI_FILE_TRUNC                             4
#define OCI_FILE_APPEND                            8
/* and whether it is a named file (the first two) or a stream of the process. */
#define OCI_FILE_BIN                               0
#define OCI_FILE_TEXT                              1
#define OCI_FILE_STDIN                             2
#define OCI_FILE_STDOUT                            3
#define OCI_FILE_STDERR                            4

/* From where, and in which direction, OCIFileSeek moves. */
#define OCI_FILE_SEEK_BEGINNING                    1
#define OCI_FILE_SEEK_CURRENT                      2
#define OCI_FILE_SEEK_END                          3
#define OCI_FILE_FORWARD                           1
#define OCI_FILE_BACKWARD                          2
/* clang-format on */

#endif /* ZEVOCI_OCI1_H */
