/*
 * orl.h: number, date, text and collection values of the client.
 */
#ifndef ZEVOCI_ORL_H
#define ZEVOCI_ORL_H

#include "oratypes.h"
#include "oro.h"

#define OCI_NUMBER_SIZE 22 /* bytes of an OCINumber */

/* Oracle number: a length byte, an exponent byte and up to 20 base-100 digits. */
typedef struct OCINumber {
  ub1 OCINumberPart[OCI_NUMBER_SIZE];
} OCINumber;

/* Time of day of an OCIDate. */
typedef struct OCITime {
  ub1 OCITimeHH; /* 0 to 23 */
  ub1 OCITimeMI; /* 0 to 59 */
  ub1 OCITimeSS; /* 0 to 59 */
} OCITime;

/* Calendar date with time, 8 bytes; years before Christ are negative. */
typedef struct OCIDate {
  sb2 OCIDateYYYY; /* -4712 to 9999 */
  ub1 OCIDateMM;   /* 1 to 12 */
  ub1 OCIDateDD;   /* 1 to 31 */
  OCITime OCIDateTime;
} OCIDate;

/* The parts of an OCIDate, read into variables and set. */
#define OCIDateGetTime(date, hour, min, sec) \
  do {                                       \
    *(hour) = (date)->OCIDateTime.OCITimeHH; \
    *(min) = (date)->OCIDateTime.OCITimeMI;  \
    *(sec) = (date)->OCIDateTime.OCITimeSS;  \
  } while (0)
#define OCIDateGetDate(date, year, month, day) \
  do {                                         \
    *(year) = (date)->OCIDateYYYY;             \
    *(month) = (date)->OCIDateMM;              \
    *(day) = (date)->OCIDateDD;                \
  } while (0)
#define OCIDateSetTime(date, hour, min, sec) \
  do {                                       \
    (date)->OCIDateTime.OCITimeHH = (hour);  \
    (date)->OCIDateTime.OCITimeMI = (min);   \
    (date)->OCIDateTime.OCITimeSS = (sec);   \
  } while (0)
#define OCIDateSetDate(date, year, month, day) \
  do {                                         \
    (date)->OCIDateYYYY = (year);              \
    (date)->OCIDateMM = (month);               \
    (date)->OCIDateDD = (day);                 \
  } while (0)

typedef struct OCIString OCIString; /* text of variable length */
typedef struct OCIRaw OCIRaw;       /* bytes of variable length */
typedef struct OCIColl OCIColl;     /* collection of either kind */
typedef OCIColl OCIArray;           /* varying array */
typedef OCIColl OCITable;           /* nested table */
typedef struct OCIIter OCIIter;     /* iterator over a collection */

/* clang-format off */
/* What OCIDateCheck found, as bits. */
#define OCI_DATE_INVALID_DAY                       0x1
#define OCI_DT_INVALID_DAY                         0x1
#define OCI_DATE_DAY_BELOW_VALID                   0x2
#define OCI_DT_DAY_BELOW_VALID                     0x2
#define OCI_DATE_INVALID_MONTH                     0x4
#define OCI_DT_INVALID_MONTH                       0x4
#define OCI_DATE_MONTH_BELOW_VALID                 0x8
#define OCI_DT_MONTH_BELOW_VALID                   0x8
#define OCI_DATE_INVALID_YEAR                      0x10
#define OCI_DT_INVALID_YEAR                        0x10
#define OCI_DATE_YEAR_BELOW_VALID                  0x20
#define OCI_DT_YEAR_BELOW_VALID                    0x20
#define OCI_DATE_INVALID_HOUR                      0x40
#define OCI_DATE_HOUR_BELOW_VALID                  0x80
#define OCI_DATE_INVALID_MINUTE                    0x100
#define OCI_DATE_MINUTE_BELOW_VALID                0x200
#define OCI_DATE_INVALID_SECOND                    0x400
#define OCI_DATE_DAY_MISSING_FROM_1582             0x1000
#define OCI_DATE_YEAR_ZERO                         0x2000
#define OCI_DT_INVALID_TIMEZONE                    0x4000

/* What OCIIntervalCheck found, as bits. */
#define OCI_INTER_INVALID_DAY                      0x1
#define OCI_INTER_DAY_BELOW_VALID                  0x2
#define OCI_INTER_INVALID_MONTH                    0x4
#define OCI_INTER_MONTH_BELOW_VALID                0x8
#define OCI_INTER_INVALID_YEAR                     0x10
#define OCI_INTER_YEAR_BELOW_VALID                 0x20
#define OCI_INTER_INVALID_HOUR                     0x40
#define OCI_INTER_HOUR_BELOW_VALID                 0x80

/* Whether an integer is signed in the OCINumber conversions. */
#define OCI_NUMBER_UNSIGNED                        0
#define OCI_NUMBER_SIGNED                          2
/* clang-format on */

#endif /* ZEVOCI_ORL_H */
