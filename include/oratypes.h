/*
 * oratypes.h: the scalar types of the published interface.
 */
#ifndef ZEVOCI_ORATYPES_H
#define ZEVOCI_ORATYPES_H

#include <limits.h>
#include <stddef.h>
#include <stdint.h>

#ifndef TRUE
#define TRUE 1
#define FALSE 0
#endif

/* Integers of 8, 16, 32 and 64 bits; the u forms are unsigned. */
typedef uint8_t ub1;
typedef int8_t sb1;
typedef uint16_t ub2;
typedef int16_t sb2;
typedef uint32_t ub4;
typedef int32_t sb4;
typedef uint64_t ub8;
typedef int64_t sb8;
typedef uint64_t oraub8;
typedef int64_t orasb8;
typedef uint64_t ubig_ora;
typedef int64_t sbig_ora;

/* Characters or small numbers, of 8, 16 and 32 bits, whose sign does not matter. */
typedef int8_t eb1;
typedef int16_t eb2;
typedef int32_t eb4;

/* Machine words: what functions return, and the argument type of small counts. */
typedef int sword;
typedef unsigned int uword;
typedef int eword;
typedef int boolean;
typedef size_t size_T;

/* Characters. A text is bytes of the client encoding unless a function says otherwise. */
typedef unsigned char text;
typedef unsigned char OraText;
typedef unsigned char oratext;
typedef uint16_t utext; /* of UTF-16 */
typedef uint32_t OCIWchar;

typedef void dvoid;

#define UB1MAXVAL UINT8_MAX
#define UB1MINVAL 0
#define UB2MAXVAL UINT16_MAX
#define UB2MINVAL 0
#define UB4MAXVAL UINT32_MAX
#define UB4MINVAL 0
#define UB8MAXVAL UINT64_MAX
#define UB8MINVAL 0
#define SB1MAXVAL INT8_MAX
#define SB1MINVAL INT8_MIN
#define SB2MAXVAL INT16_MAX
#define SB2MINVAL INT16_MIN
#define SB4MAXVAL INT32_MAX
#define SB4MINVAL INT32_MIN
#define SB8MAXVAL INT64_MAX
#define SB8MINVAL INT64_MIN
#define UWORDMAXVAL UINT_MAX
#define UWORDMINVAL 0
#define SWORDMAXVAL INT_MAX
#define SWORDMINVAL INT_MIN
#define EWORDMAXVAL INT_MAX
#define EWORDMINVAL INT_MIN
#define SIZE_TMAXVAL SIZE_MAX

/* Macros of old programs for prototypes and constants. */
#define CONST const
#define STATICF static
#ifdef __cplusplus
#define externC extern "C"
#else
#define externC extern
#endif

#endif /* ZEVOCI_ORATYPES_H */
