#include "pqext/many_rows.h"

#include <algorithm>

namespace zev::pqext {
namespace {

/// The numbers of rows of the variants, largest first.
constexpr int kSizes[] = {128, 16};
constexpr int kFewestRows = 32;
constexpr int kMostParameters = 65535;

/// Classes of SQLSTATE (SQL standard, server manual) that do not depend on how the rows
/// are sent.
constexpr std::string_view kFinalFailures[] = {"08", "25", "40", "53",
                                               "55", "57", "58", "XX"};

constexpr const char *kSavepoint = "SAVEPOINT zevoci_rows";
constexpr const char *kRelease = "RELEASE SAVEPOINT zevoci_rows";
constexpr const char *kUndo = "ROLLBACK TO SAVEPOINT zevoci_rows";

/// Fails unless the rows of one INSERT do to a table what as many INSERTs would: nothing
/// may run for a row or a statement that could see the other rows, no row may need
/// another, only what the server itself comes with computes values, and no limit holds
/// for the time of a statement.
constexpr const char *kGuard =
    "SELECT 1 / CASE WHEN pg_catalog.current_setting('statement_timeout') = '0'"
    " AND c.relkind = 'r' AND NOT c.relhasrules AND NOT c.relrowsecurity"
    " AND NOT EXISTS (SELECT FROM pg_catalog.pg_trigger t"
    " WHERE t.tgrelid = c.oid AND NOT t.tgisinternal)"
    " AND NOT EXISTS (SELECT FROM pg_catalog.pg_constraint k"
    " WHERE k.conrelid = c.oid AND k.contype = 'f' AND k.confrelid = c.oid)"
    " AND NOT EXISTS (SELECT FROM pg_catalog.pg_attribute a"
    " JOIN pg_catalog.pg_type y ON y.oid = a.atttypid"
    " WHERE a.attrelid = c.oid AND a.attnum > 0 AND NOT a.attisdropped"
    " AND a.atttypid >= 16384 AND y.typtype <> 'e')"
    " AND NOT EXISTS (SELECT FROM pg_catalog.pg_depend d"
    " WHERE d.refobjid >= 16384 AND d.refclassid IN ('pg_catalog.pg_proc'::regclass,"
    " 'pg_catalog.pg_operator'::regclass, 'pg_catalog.pg_opclass'::regclass)"
    " AND (d.classid, d.objid) IN ("
    "SELECT 'pg_catalog.pg_attrdef'::regclass, f.oid FROM pg_catalog.pg_attrdef f"
    " WHERE f.adrelid = c.oid UNION ALL "
    "SELECT 'pg_catalog.pg_constraint'::regclass, k.oid FROM pg_catalog.pg_constraint k"
    " WHERE k.conrelid = c.oid UNION ALL "
    "SELECT 'pg_catalog.pg_class'::regclass, i.indexrelid FROM pg_catalog.pg_index i"
    " WHERE i.indrelid = c.oid))"
    " THEN 1 ELSE 0 END FROM pg_catalog.pg_class c"
    " WHERE c.oid = $1::pg_catalog.text::pg_catalog.regclass";

std::string variantName(std::string_view name, int rows) {
  return std::string(name) + "_x" + std::to_string(rows);
}
std::string guardName(std::string_view name) {
  return std::string(name) + "_guard";
}

/// What is known of a statement as an INSERT of many rows; learnt at the first use. The
/// types of its parameters cost a question.
ManyRows learn(PGconn *conn, const char *name, const Statement &statement,
               const RowArrays &rows) {
  ManyRows many;
  const std::optional<InsertText> insert = parseInsert(statement.text);
  many.refused = !insert || rows.params == 0;
  if (many.refused) return many;
  many.table = insert->table;
  many.head = insert->head;
  many.values = insert->values;
  const Result described(PQdescribePrepared(conn, name));
  many.refused = !succeeded(described.get()) || PQnparams(described.get()) != rows.params;
  if (many.refused) return many;
  for (int i = 0; i < rows.params; ++i) {
    many.types.push_back(PQparamtype(described.get(), i));
  }
  return many;
}

/// One statement of the pipeline: `rows` rows from row `first` on.
struct Portion {
  int first;
  int rows;
};

std::vector<Portion> portionsOf(const RowArrays &rows) {
  std::vector<Portion> portions;
  int first = 0;
  for (const int size : kSizes) {
    if (size * rows.params > kMostParameters) continue;
    for (; rows.count - first >= size; first += size) portions.push_back({first, size});
  }
  for (; first < rows.count; ++first) portions.push_back({first, 1});
  return portions;
}

/// The attempt: everything between a savepoint and its release in one pipeline.
class Attempt {
 public:
  Attempt(PGconn *conn, const char *name, ManyRows &many, const RowArrays &rows)
      : conn_(conn), name_(name), many_(many), rows_(rows), portions_(portionsOf(rows)) {
    for (int i = 0; rows.formats && i < kSizes[0]; ++i) {
      formats_.insert(formats_.end(), rows.formats, rows.formats + rows.params);
    }
    plan();
  }

  /// Whether all rows are stored.
  bool run() {
    BulkRun run(conn_);
    if (!run.isOpen()) return false;
    run.add(static_cast<int>(steps_.size()),
            [this](int i) { return steps_[static_cast<std::size_t>(i)](); });
    run.finish(conn_);
    run.close(conn_);
    if (!run.failed()) {
      keepPrepared();
      return true;
    }
    noteFailure(run.failedCommand());
    message_ = run.message();
    failure_ = run.takeResult();
    return false;
  }

  /// Whether the rows one by one could end in another way. They could not when the
  /// program broke off, the server was short of something or went away, or another
  /// transaction was in the way.
  bool isWorthAnother() const {
    const char *state = PQresultErrorField(failure_.get(), PG_DIAG_SQLSTATE);
    if (!state || PQstatus(conn_) == CONNECTION_BAD) return false;
    const std::string_view group(state, 2);
    return std::ranges::count(kFinalFailures, group) == 0;
  }
  const std::string &message() const { return message_; }
  Result takeFailure() { return std::move(failure_); }

 private:
  using Step = std::function<int()>;

  void plan() {
    steps_.push_back([this] { return command(kSavepoint); });
    planPrepared(guardName(name_), [this](const char *guard) {
      return PQsendPrepare(conn_, guard, kGuard, 0, nullptr);
    });
    steps_.push_back([this] { return guard(); });
    for (const int size : kSizes) planVariant(size);
    firstRow_ = static_cast<int>(steps_.size());
    for (const Portion &portion : portions_) {
      steps_.push_back([this, portion] { return store(portion); });
    }
    // By now the table is locked against changes that would make the answer untrue.
    guard_ = static_cast<int>(steps_.size());
    steps_.push_back([this] { return guard(); });
    steps_.push_back([this] { return command(kRelease); });
  }

  /// A statement that `prepare` makes at its first use.
  template <class Prepare>
  void planPrepared(std::string name, Prepare prepare) {
    if (std::ranges::count(many_.prepared, name)) return;
    newlyPrepared_.push_back(name);
    steps_.push_back([name = std::move(name), prepare] { return prepare(name.c_str()); });
  }

  void planVariant(int size) {
    if (!std::ranges::count(portions_, size, &Portion::rows)) return;
    planPrepared(variantName(name_, size), [this, size](const char *variant) {
      std::vector<Oid> types;
      for (int i = 0; i < size; ++i) {
        types.insert(types.end(), many_.types.begin(), many_.types.end());
      }
      const std::string text = insertOf(many_.head, many_.values, rows_.params, size);
      return PQsendPrepare(conn_, variant, text.c_str(), static_cast<int>(types.size()),
                           types.data());
    });
  }

  void keepPrepared() {
    many_.prepared.insert(many_.prepared.end(), newlyPrepared_.begin(),
                          newlyPrepared_.end());
  }

  int command(const char *sql) {
    return PQsendQueryParams(conn_, sql, 0, nullptr, nullptr, nullptr, nullptr, 0);
  }

  int guard() {
    const char *const values[] = {many_.table.c_str()};
    return PQsendQueryPrepared(conn_, guardName(name_).c_str(), 1, values, nullptr,
                               nullptr, 0);
  }

  int store(const Portion &portion) {
    const std::string name = portion.rows == 1 ? name_ : variantName(name_, portion.rows);
    return PQsendQueryPrepared(
        conn_, name.c_str(), portion.rows * rows_.params, rows_.valuesOf(portion.first),
        rows_.lengthsOf(portion.first), formats_.empty() ? nullptr : formats_.data(), 0);
  }

  /// A table that is no plain one is not tried again, nor a text that cannot be prepared.
  void noteFailure(int failed) {
    if (failed < 0) return;
    const bool ofRows = failed >= firstRow_ && failed < guard_;
    many_.refused = !ofRows;
    if (failed >= firstRow_) keepPrepared();
  }

  PGconn *conn_;
  std::string name_;
  ManyRows &many_;
  const RowArrays &rows_;
  std::vector<Portion> portions_;
  std::vector<int> formats_;
  std::vector<std::string> newlyPrepared_;
  std::vector<Step> steps_;
  std::string message_;
  Result failure_;
  int firstRow_ = 0;
  int guard_ = 0;
};

}  // namespace

void dropVariants(PGconn *conn, const Statement &statement) {
  if (!statement.many || !takesQuestions(conn)) return;
  std::string all;
  for (const std::string &prepared : statement.many->prepared) {
    all += "DEALLOCATE " + quoted(conn, prepared) + ';';
  }
  if (!all.empty()) PQclear(PQexec(conn, all.c_str()));
}

Result runTogether(PGconn *conn, Adapter &adapter, const char *name,
                   const RowArrays &rows) {
  if (!name || rows.count < kFewestRows || PQtransactionStatus(conn) != PQTRANS_INTRANS) {
    return nullptr;
  }
  const auto known = adapter.statements.find(std::string_view(name));
  if (known == adapter.statements.end()) return nullptr;
  Statement &statement = known->second;
  if (!statement.many) statement.many = learn(conn, name, statement, rows);
  ManyRows &many = *statement.many;
  if (many.refused || static_cast<int>(many.types.size()) != rows.params) return nullptr;
  Attempt attempt(conn, name, many, rows);
  if (attempt.run()) return Result(PQmakeEmptyPGresult(conn, PGRES_COMMAND_OK));
  if (!attempt.isWorthAnother()) {
    adapter.bulkError = attempt.message();
    return attempt.takeFailure();
  }
  return runRows(conn, adapter, name, rows, {kUndo, kRelease});
}

}  // namespace zev::pqext
