/// A naive model of the converters of bound values, written to be compared with the
/// library.
#pragma once

#include "outcome.h"

namespace zevtest::model {

/// One value to bind. `bytes` is all that the program's buffer holds, and `length` what
/// it says of it; for SQLT_VST `bytes` is the text of the string. A null value has none.
struct BindCall {
  ub2 dty = 0;
  Oid oid = 0;
  std::string bytes;
  sb4 length = 0;
  bool isNull = false;
  Environment env;
};

/// What goes to the server; no bytes means SQL NULL. `record` is the number of the last
/// record, -1 for one that is only the text `message`.
struct BindOutcome {
  sword result = 0;
  std::optional<std::string> bytes;
  ub1 format = 0;
  int record = 0;
  std::string message;
};

/// What the converter of the pair does; nothing for pairs that are not modelled.
std::optional<BindOutcome> predictBind(const BindCall &call);

}  // namespace zevtest::model
