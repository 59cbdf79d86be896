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
typedef uint32_t OCIWchar;

typedef void dvoid;

#define UB1MAXVAL UINT8_MAX
#define UB2MAXVAL UINT16_MAX
#define UB4MAXVAL UINT32_MAX
#define SB1MAXVAL INT8_MAX
#define SB1MINVAL INT8_MIN
#define SB2MAXVAL INT16_MAX
#define SB2MINVAL INT16_MIN
#define SB4MAXVAL INT32_MAX
#define SB4MINVAL INT32_MIN

/* Macros of old programs for prototypes and constants. */
#define CONST const
#define STATICF static
#ifdef __cplusplus
#define externC extern "C"
#else
#define externC extern
#endif

#endif /* ZEVOCI_ORATYPES_H */
