/// The string value of the object interface, as SQLT_VST binds and defines point to it.
#pragma once

#include <oci.h>

/// A text with the room it may take. `text` comes from the system allocator and has one
/// byte more than it tells, for the NUL behind a text that fills it.
struct OCIString {
  ub4 allocatedSize;  ///< bytes that `text` has room for, and one more for a NUL
  ub4 length;         ///< bytes of `text` in use, without a terminator
  OraText *text;
};
