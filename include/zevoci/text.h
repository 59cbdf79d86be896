/// Small helpers on NUL-terminated text.
#pragma once

#include <oratypes.h>

#include <cstddef>

#include "zevoci/api.h"

extern "C" {
/// New copies without white space (blank, tab, newline, form feed, carriage return; a
/// vertical tab stays) at the left, the right, or both ends. Null for null, for an empty
/// text, and when memory runs out. The caller frees them.
ZEV_HELPER char *strltrim(const char *text);
ZEV_HELPER char *strrtrim(const char *text);
ZEV_HELPER char *strtrim(const char *text);
/// A NUL-terminated copy of `length` bytes, freed by the caller; null when memory runs
/// out.
ZEV_HELPER char *makeString(const void *text, std::size_t length);
/// Comparisons without regard to the case of ASCII letters, as strcmp and strncmp;
/// oci_stricmp also of those that the process's locale has in single bytes above 127.
ZEV_HELPER int oci_strcasecmp(const char *a, const char *b);
ZEV_HELPER int oci_strncasecmp(const char *a, const char *b, std::size_t n);
ZEV_HELPER int oci_stricmp(const char *a, const char *b);
/// Fold the ASCII letters of a text in place and return it.
ZEV_HELPER char *str_tolower(char *text);
ZEV_HELPER char *str_toupper(char *text);
/// As strstr, passing over what stands in single quotes; an unterminated quote ends the
/// search.
ZEV_HELPER char *oci_strstr(const char *text, const char *wanted);
}
