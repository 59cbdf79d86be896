/*
 * ort.h: type codes of the object interface.
 */
#ifndef ZEVOCI_ORT_H
#define ZEVOCI_ORT_H

#include "oratypes.h"

/* clang-format off */
/* Type codes (OCITypeCode). */
#define OCI_TYPECODE_NONE                          0
#define OCI_TYPECODE_VARCHAR                       1
#define OCI_TYPECODE_NUMBER                        2
#define OCI_TYPECODE_INTEGER                       3
#define OCI_TYPECODE_FLOAT                         4
#define OCI_TYPECODE_DECIMAL                       7
#define OCI_TYPECODE_VARCHAR2                      9
#define OCI_TYPECODE_DATE                          12
#define OCI_TYPECODE_REAL                          21
#define OCI_TYPECODE_DOUBLE                        22
#define OCI_TYPECODE_UNSIGNED8                     23
#define OCI_TYPECODE_UNSIGNED16                    25
#define OCI_TYPECODE_UNSIGNED32                    26
#define OCI_TYPECODE_SIGNED8                       27
#define OCI_TYPECODE_SIGNED16                      28
#define OCI_TYPECODE_SIGNED32                      29
#define OCI_TYPECODE_PTR                           32
#define OCI_TYPECODE_OPAQUE                        58
#define OCI_TYPECODE_RAW                           95
#define OCI_TYPECODE_CHAR                          96
#define OCI_TYPECODE_BFLOAT                        100
#define OCI_TYPECODE_BDOUBLE                       101
#define OCI_TYPECODE_UROWID                        104
#define OCI_TYPECODE_MLSLABEL                      105
#define OCI_TYPECODE_OBJECT                        108
#define OCI_TYPECODE_REF                           110
#define OCI_TYPECODE_CLOB                          112
#define OCI_TYPECODE_BLOB                          113
#define OCI_TYPECODE_BFILE                         114
#define OCI_TYPECODE_CFILE                         115
#define OCI_TYPECODE_NAMEDCOLLECTION               122
#define OCI_TYPECODE_TIME                          185
#define OCI_TYPECODE_TIME_TZ                       186
#define OCI_TYPECODE_TIMESTAMP                     187
#define OCI_TYPECODE_TIMESTAMP_TZ                  188
#define OCI_TYPECODE_INTERVAL_YM                   189
#define OCI_TYPECODE_INTERVAL_DS                   190
#define OCI_TYPECODE_OTMFIRST                      228
#define OCI_TYPECODE_SYSFIRST                      228
#define OCI_TYPECODE_TIMESTAMP_LTZ                 232
#define OCI_TYPECODE_SYSLAST                       235
#define OCI_TYPECODE_OCTET                         245
#define OCI_TYPECODE_SMALLINT                      246
#define OCI_TYPECODE_VARRAY                        247
#define OCI_TYPECODE_TABLE                         248
#define OCI_TYPECODE_ROWID                         262
#define OCI_TYPECODE_LONG                          263
#define OCI_TYPECODE_LONG_RAW                      264
#define OCI_TYPECODE_BINARY_INTEGER                265
#define OCI_TYPECODE_PLS_INTEGER                   266
#define OCI_TYPECODE_ERRHP                         283
#define OCI_TYPECODE_NCHAR                         286
#define OCI_TYPECODE_NVARCHAR2                     287
#define OCI_TYPECODE_NCLOB                         288
#define OCI_TYPECODE_OTMLAST                       320
/* clang-format on */

typedef ub2 OCITypeCode; /* one of the codes above */

/* How much of a type a lookup brings. */
typedef enum OCITypeGetOpt {
  OCI_TYPEGET_HEADER = 0, /* its header alone */
  OCI_TYPEGET_ALL = 1     /* attributes and methods too */
} OCITypeGetOpt;

/* clang-format off */
/* Direction of a method's argument. */
#define OCI_TYPEPARAM_IN                           0
#define OCI_TYPEPARAM_OUT                          1
#define OCI_TYPEPARAM_INOUT                        2
/* clang-format on */

typedef struct OCIType OCIType;             /* description of a type */
typedef struct OCIAnyData OCIAnyData;       /* a value with its type */
typedef struct OCIAnyDataSet OCIAnyDataSet; /* values of one type */

#endif /* ZEVOCI_ORT_H */
