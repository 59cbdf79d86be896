/// Arguments of exported functions that must not be null.
#pragma once

#include <initializer_list>

#include "zevoci/errors.h"

namespace zev {

/// An argument, and the number that it is reported by.
struct Argument {
  const void *pointer;
  const char *number;
};

/// OCI_SUCCESS, or OCI_ERROR with record 21560 for the first that is null.
inline sword checkArguments(OCIError *errhp, std::initializer_list<Argument> arguments) {
  for (const auto &[pointer, number] : arguments) {
    if (!pointer) return failArgument(errhp, number);
  }
  return OCI_SUCCESS;
}

}  // namespace zev
