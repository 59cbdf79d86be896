/// What the adapter knows about one connection, and the pieces that keep it true.
#pragma once

#include <libpq-fe.h>

#include <map>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zev::pqext {

struct ClearResult {
  void operator()(PGresult *result) const noexcept { PQclear(result); }
};
using Result = std::unique_ptr<PGresult, ClearResult>;

/// Whether a portal that was opened here is still on the server.
enum class Presence {
  Live,
  Doubtful,  ///< only the server can tell
  Gone,
};

struct Portal {
  Presence presence = Presence::Doubtful;
  Result ahead;  ///< a fetch's result, read with the bind; null when none is held
  unsigned aheadCount = 0;  ///< the rows that were asked for it; 0: all
};

/// A single-row INSERT as one with many rows.
struct ManyRows {
  bool refused = false;    ///< the outcome could be another: rows go one by one
  std::string table;       ///< as written
  std::string head;        ///< the text up to the parenthesis of the values
  std::string values;      ///< the values in their parentheses
  std::vector<Oid> types;  ///< the parameters of one row
  std::vector<std::string> prepared;  ///< names of the statements prepared for it
};

/// The text and the declared parameter types of a prepared statement.
struct Statement {
  std::string text;
  std::vector<Oid> types;
  bool asked =
      false;  ///< learnt from the server, so it may change without our being told
  std::optional<ManyRows> many = {};  ///< once rows of it have been sent together
};

/// What the next bind was told to do beside binding.
struct NextBind {
  bool scrolls = false;
  bool begins = false;
  std::optional<unsigned> fetches;
};

/// A bind on its way, until its result has been read.
struct Bind {
  std::string portal = {};
  bool pipelined = false;
  std::size_t before = 0;  ///< commands before it in the pipeline
  std::optional<unsigned> fetches = {};
};

/// Where the value of an OUT or INOUT parameter comes from.
struct OutColumn {
  int parameter;    ///< which parameter of the caller, from 0
  int column = -1;  ///< of the answer; -1: what was sent, or NULL where nothing was
};

/// A call of a routine, as it was prepared.
struct Call {
  std::string command;
  std::vector<int> sent;        ///< the caller's parameters that go out, in "$n" order
  bool sendsFirst = false;      ///< these are the caller's first ones, in order
  std::vector<OutColumn> outs;  ///< one per OUT or INOUT parameter
  std::vector<Oid> types;       ///< one per parameter of the caller
};

/// A parameter's value as it was sent, for a call that gives it back.
struct SentValue {
  std::string bytes;
  int format = 0;
  bool isNull = true;
};

/// A call on its way, until its answer has been read.
struct PendingCall {
  const Call *call;
  std::vector<SentValue> sent;  ///< one per parameter of the caller, or none
};

class BulkRun;

struct Adapter {
  Adapter();
  Adapter(Adapter &&) noexcept;
  Adapter &operator=(Adapter &&) noexcept;
  ~Adapter();

  std::unique_ptr<BulkRun> run;  ///< a bulk run that is open
  std::string bulkError;         ///< of the last bulk operation; empty after success
  std::map<std::string, Statement, std::less<>> statements;
  std::map<std::string, Call, std::less<>> calls;
  std::optional<PendingCall> call;
  Result out;  ///< the OUT values of the last call, until they are handed out
  std::map<std::string, Portal, std::less<>> portals;
  std::vector<std::string> closes;  ///< names still to be closed
  bool closesOverdue = false;       ///< the first operation that can must do them
  int closesSent = 0;               ///< own CLOSE commands whose tags are still to come
  NextBind next;
  std::optional<Bind> bind;
  bool sent = false;  ///< a command of an operation is on its way
  Result ready;       ///< handed out before any result of the connection
  Result head;        ///< rows that belong before those of the result to come
};

/// The state of a connection, null when none has been attached.
Adapter *attached(PGconn *conn);
/// The same, attached if need be; null without memory.
Adapter *attach(PGconn *conn);

/// Begins an operation: drops what the former one left unread, brings the portals up to
/// date with the transaction and does overdue closes. Null when there is no state.
Adapter *beginOperation(PGconn *conn);

/// Whether a command could be sent now and would not fail for the transaction's state.
bool takesQuestions(PGconn *conn);
bool succeeded(const PGresult *result);
/// Reads all results of one command and returns the first, which is the one that tells: a
/// lost connection adds more. Null when there was none.
Result readCommand(PGconn *conn);
/// A name as an SQL identifier; empty, with the connection's error message set, on
/// failure.
std::string quoted(PGconn *conn, std::string_view name);
/// Sends the one command of an operation, and notes that. Non-zero when sent.
int sendOnly(PGconn *conn, Adapter &adapter, const std::string &sql);

/// Runs the body of an exported function; exhausted memory is `failure`.
template <class Value, class Body>
Value guarded(Value failure, Body &&body) noexcept {
  try {
    return body();
  } catch (const std::bad_alloc &) {
    return failure;
  }
}

// statement.cpp

/// The statement of that name, asked from the server if need be. Null with `refusal` set
/// when the server would not answer, null alone when it knows none.
const Statement *findStatement(PGconn *conn, Adapter &adapter, std::string_view name,
                               Result &refusal);
/// Drops what DEALLOCATE and DISCARD make untrue, by the tag of a finished command.
void noteStatements(Adapter &adapter, std::string_view tag);

// portal_state.cpp

/// Marks the portals that a finished command has closed or put into doubt, by its tag.
void notePortals(Adapter &adapter, std::string_view tag);
/// Marks all portals as gone when no transaction is open.
void settlePortals(PGconn *conn, Adapter &adapter);
/// Removes the doubt from a portal. False when the server would not say.
bool settlePortal(PGconn *conn, Adapter &adapter, Portal &portal);
/// Whether a cursor of that name exists, asked from the server; empty when it would not
/// say.
std::optional<bool> cursorExists(PGconn *conn, Adapter &adapter, std::string_view name);
/// Leaves in `closes` only what exists on the server. False when that cannot be known
/// now.
bool settleCloses(PGconn *conn, Adapter &adapter);
/// Takes note of a close that has to wait, and drops such a note.
void queueClose(Adapter &adapter, std::string_view name);
void unqueueClose(Adapter &adapter, std::string_view name);
/// The commands for `closes`, which is empty afterwards; call settleCloses first.
std::vector<std::string> takeCloses(PGconn *conn, Adapter &adapter);
/// Does the waiting closes. False when some are left or were refused.
bool flushCloses(PGconn *conn, Adapter &adapter);

// bind.cpp

/// Reads what belongs to the bind on its way, leaves the pipeline and returns the bind's
/// own result.
Result collectBind(PGconn *conn, Adapter &adapter);

// many_rows.cpp

/// Drops the variants of a statement on the server, as far as it can be reached.
void dropVariants(PGconn *conn, const Statement &statement);

// bulk.cpp

/// Ends an open bulk run, waiting for the rows on their way; whether all of them ran.
bool endRun(PGconn *conn, Adapter &adapter);

// call.cpp

/// Makes the row of OUT values from the answer to the call on its way.
Result takeAnswer(PGconn *conn, Adapter &adapter, Result answer);

// fetch.cpp

/// The command that fetches `count` rows (0, or more than INT_MAX: all); empty, with the
/// connection's error message set, when the name cannot be quoted.
std::string fetchCommand(PGconn *conn, std::string_view portal, unsigned count);

// read_ahead.cpp

/// Serves a fetch of `count` rows (0: all) from those read ahead, into `ready`. Where
/// they are too few they become `head`, and the count that is still to be fetched is
/// returned (0: all).
std::optional<unsigned> takeAhead(Adapter &adapter, Portal &portal, unsigned count);
/// The rows of `head` and then of `tail`; a tail that failed stays alone.
Result joinRows(Result head, Result tail);

}  // namespace zev::pqext
