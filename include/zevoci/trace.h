/// The trace stream and its two channels: by subject (ocitrace, ocitracehex) and by
/// verbosity (o2pTrace). With no log open a call site is one load and one branch.
#pragma once

#include <libpq-fe.h>

#include <cstdint>
#include <cstdio>

#include "zevoci/handle.h"

/// Bits of the trace mask, by what is written under them.
enum TraceMask : std::uint64_t {
  kTracePrepare = 0x1,
  kTraceExecute = 0x2,
  kTraceBindData = 0x4,
  kTraceStatement = 0x8,
  kTraceToServer = 0x10,
  kTraceErrors = 0x20,
  kTraceFetched = 0x40,
  kTraceService = 0x80,
  kTraceTransaction = 0x100,
  kTraceAttributes = 0x200,
  kTracePortals = 0x400,
  kTraceResults = 0x800,
  kTraceWaits = 0x2000,
  kTraceSession = 0x4000,
};

extern "C" {
/// Null while tracing is off. Each new environment may set the three settings anew.
extern ZEV_HELPER std::FILE *oci_debug_log;
extern ZEV_HELPER std::uint64_t oci_debug_mask;
/// Verbosity of the narrative lines of stubs and callbacks.
extern ZEV_HELPER int OCI2PQ_TRACE_LEVEL;
/// Names of the pieces of a value, by their published numbers.
extern ZEV_HELPER const char *const OCIPieceCodes[4];

/// Writes "label: " (for a non-null label) and the formatted text when `mask` is on.
ZEV_HELPER void ocitrace(std::uint64_t mask, const char *label, const char *format, ...)
    __attribute__((cold, format(printf, 3, 4)));
/// Writes a labelled hex dump, 16 bytes a row, when `mask` is on.
ZEV_HELPER void ocitracehex(std::uint64_t mask, const char *label, const void *data,
                            sb4 length) __attribute__((cold));
/// Writes a narrative line, and flushes, unless OCI2PQ_TRACE_LEVEL is below `level`. The
/// arguments are not expanded: only a format without placeholders reads as meant.
ZEV_HELPER void o2pTrace(int level, const char *format, ...) __attribute__((cold));
/// Whether a trace under `mask` would be written.
ZEV_HELPER int ocitracing(std::uint64_t mask);
/// Writes the server's wait statistics for this session when mask 0x2000 is on.
ZEV_HELPER void traceMoltaCounters(PGconn *conn);
/// Lists the session's open cursors when mask 0x400 is on.
ZEV_HELPER void debugLogCursors(PGconn *conn, const char *where);
/// Lists the session's prepared statements when mask 0x400 is on.
ZEV_HELPER void debugLogPreparedStmts(PGconn *conn, const char *where);

/// Runs `sql` with notices going to `errhp`. The caller clears the result.
ZEV_HELPER PGresult *execSimpleCommand(PGconn *conn, const char *sql, OCIError *errhp);
/// 1 unless the result is PGRES_COMMAND_OK or PGRES_TUPLES_OK.
ZEV_HELPER int simpleCommandFailed(const PGresult *result);
}

namespace zev {

/// Levels of o2pTrace. An error is shown while there is a log at all.
enum TraceLevel { kTraceFailures = 0, kTraceNarrative = 3, kTraceArguments = 4 };

/// ocitracing without a call.
inline bool tracing(std::uint64_t mask) {
  return __atomic_load_n(&oci_debug_log, __ATOMIC_RELAXED) != nullptr &&
         (__atomic_load_n(&oci_debug_mask, __ATOMIC_RELAXED) & mask) != 0;
}

/// Whether o2pTrace would write a line of `level`.
inline bool narrating(int level) {
  return __atomic_load_n(&oci_debug_log, __ATOMIC_RELAXED) != nullptr &&
         __atomic_load_n(&OCI2PQ_TRACE_LEVEL, __ATOMIC_RELAXED) >= level;
}

/// Reads the three debug variables of the process environment, opening the log they name.
void readDebugVariables();

}  // namespace zev

// Each call site tests for itself, so that neither the call is made nor its arguments are
// evaluated for a line that nobody reads. The functions test again for other callers.
#define ocitrace(mask, ...) (zev::tracing(mask) ? ocitrace(mask, __VA_ARGS__) : void())
#define ocitracehex(mask, ...) \
  (zev::tracing(mask) ? ocitracehex(mask, __VA_ARGS__) : void())
#define o2pTrace(level, ...) \
  (zev::narrating(level) ? o2pTrace(level, __VA_ARGS__) : void())
