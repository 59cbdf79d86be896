/// What character data do on their way to the program, whatever they are stored in.
#pragma once

#include "core/edge_text.h"
#include "types/fetch_rules.h"

namespace zev {

/// The environment of a fetch as far as text is concerned.
struct TextEnvironment {
  explicit TextEnvironment(const OCIError *errhp)
      : env(parentEnv(errhp)), emptyIsNull(env && env->oracleVarchars) {}
  const OCIEnv *env;
  bool emptyIsNull;

  /// Whether text changes its bytes on the way to the program.
  bool converts() const { return env && env->utf16; }
  /// Whether a field is null rather than an empty text.
  bool holdsNull(const void *value, sb4 valueLength, ub1 format) const {
    return emptyIsNull && isNullField(value, valueLength, format);
  }
};

}  // namespace zev
