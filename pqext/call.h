/// Calls of routines: which routine is meant, what is sent for it, and where in the
/// answer the values of its OUT parameters stand.
#pragma once

#include <libpq-fe.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "pqext/adapter.h"

namespace zev::pqext {

/// "CALL name ( $1 , $2 );" taken apart.
struct CallText {
  std::string name;            ///< as written, with a schema where it has one
  std::vector<int> arguments;  ///< the numbers behind the "$"
};

/// Empty for a text of another form, and for arguments that are no parameters.
std::optional<CallText> parseCall(std::string_view text);

/// One argument as the catalogue has it.
struct Argument {
  char mode;         ///< 'i', 'o', 'b', 'v' or 't', as in pg_proc.proargmodes
  std::string type;  ///< to cast to; empty for a type that nothing can be cast to
};

/// One routine as the catalogue has it.
struct Routine {
  bool isFunction = false;
  int defaults = 0;
  std::vector<Argument> arguments;

  /// The modes of all arguments, one character each.
  std::string modes() const;
  /// Whether it can be called with `count` arguments, OUT parameters of a function given
  /// or not.
  bool takes(std::size_t count) const;
};

/// The routines that a name as written can mean. Empty when there are none, and when the
/// server would not say.
std::vector<Routine> findRoutines(PGconn *conn, std::string_view name);

/// The command for a call, and how its parameters and answers meet.
Call planCall(const CallText &text, const std::vector<Routine> &routines,
              const std::vector<unsigned> &directions);

/// The row of OUT values for the answer of a call whose parameters were `sent`.
Result outRow(PGconn *conn, const Call &call, const PGresult *answer,
              const std::vector<SentValue> &sent);
/// Whether the answer of a procedure is that row as it stands.
bool isOutRow(const Call &call, const PGresult *answer);
/// An answer that has a row: `answer` itself, or one of NULLs in place of no row.
Result withRow(Result answer);

}  // namespace zev::pqext
