#include "pqext/call.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "pqext/pqext.h"

namespace zev::pqext {
namespace {

constexpr Oid kTextOid = 25;

/// Makes room for a row of `attributes`, all NULL; null without memory.
Result nullRow(PGconn *conn, std::vector<PGresAttDesc> &attributes) {
  Result row(PQmakeEmptyPGresult(conn, PGRES_TUPLES_OK));
  if (!row) return nullptr;
  const int count = static_cast<int>(attributes.size());
  if (count == 0) return row;
  if (!PQsetResultAttrs(row.get(), count, attributes.data())) return nullptr;
  if (!PQsetvalue(row.get(), 0, 0, nullptr, -1)) return nullptr;
  return row;
}

PGresAttDesc attributeOf(const PGresult *result, int column) {
  return {.name = PQfname(result, column),
          .tableid = PQftable(result, column),
          .columnid = PQftablecol(result, column),
          .format = PQfformat(result, column),
          .typid = PQftype(result, column),
          .typlen = PQfsize(result, column),
          .atttypmod = PQfmod(result, column)};
}

/// A column for a value that the server does not give back.
PGresAttDesc attributeOf(const Call &call, int parameter, const SentValue *sent) {
  static char name[] = "";
  const auto place = static_cast<std::size_t>(parameter);
  const Oid type = place < call.types.size() ? call.types[place] : 0;
  return {.name = name,
          .tableid = 0,
          .columnid = 0,
          .format = sent ? sent->format : 0,
          .typid = type ? type : kTextOid,
          .typlen = -1,
          .atttypmod = -1};
}

const SentValue *sentFor(const std::vector<SentValue> &sent, int parameter) {
  const auto place = static_cast<std::size_t>(parameter);
  return place < sent.size() && !sent[place].isNull ? &sent[place] : nullptr;
}

bool isAnswered(const OutColumn &out, const PGresult *answer) {
  return out.column >= 0 && out.column < PQnfields(answer);
}

/// Keeps the values that go out where the call gives some of them back.
std::vector<SentValue> keepSent(const Call &call, int nParams, const char *const *values,
                                const int *lengths, const int *formats) {
  std::vector<SentValue> sent;
  for (const OutColumn &out : call.outs) {
    if (out.column >= 0 || out.parameter >= nParams || !values[out.parameter]) continue;
    if (!std::ranges::count(call.sent, out.parameter)) continue;
    sent.resize(static_cast<std::size_t>(nParams));
    SentValue &kept = sent[static_cast<std::size_t>(out.parameter)];
    const char *value = values[out.parameter];
    kept.format = formats ? formats[out.parameter] : 0;
    kept.isNull = false;
    if (kept.format == 0) {
      kept.bytes = value;
    } else {
      kept.bytes.assign(value, static_cast<std::size_t>(lengths[out.parameter]));
    }
  }
  return sent;
}

/// Sends a prepared call's own parameters, picked from those of the caller.
bool sendPicked(PGconn *conn, const char *name, const Call &call, int nParams,
                const char *const *values, const int *lengths, const int *formats) {
  const std::size_t count = call.sent.size();
  if (call.sendsFirst && static_cast<int>(count) <= nParams) {
    return PQsendQueryPrepared(conn, name, static_cast<int>(count), values, lengths,
                               formats, 0);
  }
  std::vector<const char *> pickedValues(count);
  std::vector<int> pickedLengths(count), pickedFormats(count);
  for (std::size_t i = 0; i < count; ++i) {
    const int from = call.sent[i];
    if (from >= nParams) return false;
    pickedValues[i] = values[from];
    pickedLengths[i] = lengths ? lengths[from] : 0;
    pickedFormats[i] = formats ? formats[from] : 0;
  }
  return PQsendQueryPrepared(conn, name, static_cast<int>(count), pickedValues.data(),
                             pickedLengths.data(), pickedFormats.data(), 0);
}

Call plainCall(const char *query, const std::vector<unsigned> &directions) {
  Call call{.command = query, .sent = {}, .outs = {}, .types = {}};
  int column = 0;
  for (int i = 0; i < static_cast<int>(directions.size()); ++i) {
    call.sent.push_back(i);
    if (directions[static_cast<std::size_t>(i)] != kDirectionIn) {
      call.outs.push_back({i, column++});
    }
  }
  return call;
}

/// What a call is prepared as.
Call plan(PGconn *conn, const char *query, const std::vector<unsigned> &directions) {
  const std::optional<CallText> text = parseCall(query);
  if (!text) return plainCall(query, directions);
  return planCall(*text, findRoutines(conn, text->name), directions);
}

/// Plans a call and keeps the plan under the statement's name; null without state.
const Call *prepareCall(PGconn *conn, const char *stmtName, const char *query,
                        int nParams, const Oid *paramTypes, const unsigned int *paramDirs,
                        std::vector<Oid> &types) {
  Adapter *adapter = beginOperation(conn);
  if (!adapter) return nullptr;
  const auto count = static_cast<std::size_t>(nParams);
  std::vector<unsigned> directions(count, kDirectionIn);
  if (paramDirs) directions.assign(paramDirs, paramDirs + count);
  Call call = plan(conn, query, directions);
  std::vector<int> leading(call.sent.size());
  std::iota(leading.begin(), leading.end(), 0);
  call.sendsFirst = call.sent == leading;
  if (paramTypes) call.types.assign(paramTypes, paramTypes + count);
  for (const int parameter : call.sent) {
    const auto place = static_cast<std::size_t>(parameter);
    types.push_back(place < call.types.size() ? call.types[place] : 0);
  }
  return &(adapter->calls[stmtName] = std::move(call));
}

}  // namespace

Result outRow(PGconn *conn, const Call &call, const PGresult *answer,
              const std::vector<SentValue> &sent) {
  std::vector<PGresAttDesc> attributes;
  for (const OutColumn &out : call.outs) {
    attributes.push_back(
        isAnswered(out, answer)
            ? attributeOf(answer, out.column)
            : attributeOf(call, out.parameter, sentFor(sent, out.parameter)));
  }
  Result row = nullRow(conn, attributes);
  for (int i = 0; row && i < static_cast<int>(call.outs.size()); ++i) {
    const OutColumn &out = call.outs[static_cast<std::size_t>(i)];
    const SentValue *kept = sentFor(sent, out.parameter);
    std::string bytes;
    bool isNull = true;
    if (isAnswered(out, answer)) {
      isNull = !PQntuples(answer) || PQgetisnull(answer, 0, out.column);
      if (!isNull) {
        bytes.assign(PQgetvalue(answer, 0, out.column),
                     static_cast<std::size_t>(PQgetlength(answer, 0, out.column)));
      }
    } else if (kept) {
      isNull = false;
      bytes = kept->bytes;
    }
    if (!PQsetvalue(row.get(), 0, i, isNull ? nullptr : bytes.data(),
                    isNull ? -1 : static_cast<int>(bytes.size()))) {
      return nullptr;
    }
  }
  return row;
}

Result withRow(Result answer) {
  const bool isEmpty = PQresultStatus(answer.get()) == PGRES_TUPLES_OK &&
                       PQntuples(answer.get()) == 0 && PQnfields(answer.get()) > 0;
  if (!isEmpty) return answer;
  Result copy(PQcopyResult(answer.get(), PG_COPYRES_ATTRS | PG_COPYRES_NOTICEHOOKS));
  return copy && PQsetvalue(copy.get(), 0, 0, nullptr, -1) ? std::move(copy) : nullptr;
}

/// Whether a procedure's answer is the row of OUT values as it stands, which is what it
/// is but where the caller takes its arguments for something else.
bool isOutRow(const Call &call, const PGresult *answer) {
  if (!call.command.starts_with("CALL ") || PQntuples(answer) != 1) return false;
  int column = 0;
  for (const OutColumn &out : call.outs) {
    if (out.column != column++) return false;
  }
  return column == PQnfields(answer);
}

Result takeAnswer(PGconn *conn, Adapter &adapter, Result answer) {
  const PendingCall pending = std::move(*adapter.call);
  adapter.call.reset();
  if (!succeeded(answer.get())) return answer;
  if (isOutRow(*pending.call, answer.get())) {
    adapter.out = std::move(answer);
    return Result(PQmakeEmptyPGresult(nullptr, PGRES_COMMAND_OK));
  }
  answer = withRow(std::move(answer));
  adapter.out = outRow(conn, *pending.call, answer.get(), pending.sent);
  return answer;
}

}  // namespace zev::pqext

using namespace zev::pqext;

PGresult *PQprepareOut(PGconn *conn, const char *stmtName, const char *query, int nParams,
                       const Oid *paramTypes, const unsigned int *paramDirs) {
  return guarded<PGresult *>(nullptr, [&]() -> PGresult * {
    std::vector<Oid> types;
    const Call *call =
        prepareCall(conn, stmtName, query, nParams, paramTypes, paramDirs, types);
    if (!call) return nullptr;
    Result result;
    if (PQsendPrepare(conn, stmtName, call->command.c_str(),
                      static_cast<int>(types.size()), types.data())) {
      result = readCommand(conn);
    }
    if (!succeeded(result.get())) PQextForgetPrepared(conn, stmtName);
    return result.release();
  });
}

int PQsendPrepareOut(PGconn *conn, const char *stmtName, const char *query, int nParams,
                     const Oid *paramTypes, const unsigned int *paramDirs) {
  return guarded(0, [&] {
    std::vector<Oid> types;
    const Call *call =
        prepareCall(conn, stmtName, query, nParams, paramTypes, paramDirs, types);
    if (!call) return 0;
    const int sent = PQsendPrepare(conn, stmtName, call->command.c_str(),
                                   static_cast<int>(types.size()), types.data());
    attached(conn)->sent = sent != 0;
    return sent;
  });
}

int PQsendQueryPreparedOut(PGconn *conn, const char *stmtName, int nParams,
                           const char *const *paramValues, const int *paramLengths,
                           const int *paramFormats, int resultFormat) {
  return guarded(0, [&] {
    Adapter *adapter = beginOperation(conn);
    if (!adapter || resultFormat != 0) return 0;
    // The client library itself says what is wrong with no name.
    if (!stmtName)
      return PQsendQueryPrepared(conn, stmtName, 0, nullptr, nullptr, nullptr, 0);
    auto call = adapter->calls.find(std::string_view(stmtName));
    if (call == adapter->calls.end()) {
      const std::vector<unsigned> directions(static_cast<std::size_t>(nParams),
                                             kDirectionIn);
      call = adapter->calls.emplace(stmtName, plainCall("", directions)).first;
    }
    std::vector<SentValue> sent =
        keepSent(call->second, nParams, paramValues, paramLengths, paramFormats);
    adapter->sent = sendPicked(conn, stmtName, call->second, nParams, paramValues,
                               paramLengths, paramFormats);
    if (adapter->sent) adapter->call = {&call->second, std::move(sent)};
    return adapter->sent ? 1 : 0;
  });
}

PGresult *PQgetOutResult(PGconn *conn) {
  Adapter *adapter = attached(conn);
  return adapter ? adapter->out.release() : nullptr;
}
