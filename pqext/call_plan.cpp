#include <algorithm>
#include <cctype>
#include <charconv>

#include "pqext/call.h"
#include "pqext/pqext.h"

namespace zev::pqext {
namespace {

constexpr std::string_view kCall = "CALL ";

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\n\r\f";
  const auto first = text.find_first_not_of(kBlanks);
  if (first == text.npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

/// The number of a parameter, "$1".
std::optional<int> parameterNumber(std::string_view text) {
  if (!text.starts_with('$')) return std::nullopt;
  int number = 0;
  const char *const end = text.data() + text.size();
  const auto [next, error] = std::from_chars(text.data() + 1, end, number);
  if (error != std::errc() || next != end || number < 1) return std::nullopt;
  return number;
}

bool isInput(char mode) {
  return mode == 'i' || mode == 'b' || mode == 'v';
}
bool isOutput(char mode) {
  return mode == 'o' || mode == 'b' || mode == 't';
}

std::size_t inputsOf(const Routine &routine) {
  return static_cast<std::size_t>(
      std::ranges::count_if(routine.arguments, isInput, &Argument::mode));
}

/// The arguments that a caller can name, which a function's result columns are not.
std::size_t named(const Routine &routine) {
  return routine.arguments.size() - static_cast<std::size_t>(std::ranges::count(
                                        routine.arguments, 't', &Argument::mode));
}

bool hasOutputs(const Routine &routine) {
  return std::ranges::any_of(routine.arguments, isOutput, &Argument::mode);
}

/// A name as the server folds it: ASCII letters only.
std::string folded(std::string_view name) {
  std::string copy(name);
  for (char &c : copy) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return copy;
}

/// One row per argument; one alone for a routine without.
constexpr const char *kRoutineQuery =
    "SELECT p.oid, p.prokind, p.pronargdefaults, a.place, coalesce(a.mode, 'i'),"
    " CASE WHEN t.typtype <> 'p' THEN pg_catalog.format_type(t.oid, NULL) ELSE '' END"
    " FROM pg_catalog.pg_proc p"
    " JOIN pg_catalog.pg_namespace n ON n.oid = p.pronamespace"
    " LEFT JOIN LATERAL ROWS FROM (pg_catalog.unnest(coalesce(p.proallargtypes,"
    " p.proargtypes::pg_catalog.oid[])), pg_catalog.unnest(p.proargmodes))"
    " WITH ORDINALITY a(type, mode, place) ON true"
    " LEFT JOIN pg_catalog.pg_type t ON t.oid = a.type"
    " WHERE p.proname = $1::pg_catalog.name AND p.prokind IN ('p', 'f')"
    " AND CASE WHEN $2::pg_catalog.text IS NULL"
    " THEN pg_catalog.pg_function_is_visible(p.oid)"
    " ELSE n.nspname = $2::pg_catalog.name END"
    " ORDER BY p.oid, a.place";

/// The routines that can be called with so many arguments; all of them when none can.
std::vector<const Routine *> candidates(const std::vector<Routine> &routines,
                                        std::size_t count) {
  std::vector<const Routine *> all, fitting;
  for (const Routine &routine : routines) {
    all.push_back(&routine);
    if (routine.takes(count)) fitting.push_back(&routine);
  }
  return fitting.empty() ? all : fitting;
}

/// Whether a call means routines of one shape, whichever of them the server takes.
bool agree(const std::vector<const Routine *> &routines) {
  return !routines.empty() && std::ranges::all_of(routines, [&](const Routine *r) {
    return r->isFunction == routines[0]->isFunction && r->modes() == routines[0]->modes();
  });
}

/// Builds the command of a call argument by argument.
class Planner {
 public:
  Planner(const CallText &text, const std::vector<unsigned> &directions)
      : text_(text), directions_(directions) {}

  /// For routines of one shape; `cast` when there is only one of them.
  Call plan(const Routine &routine, bool cast) {
    const std::size_t given = text_.arguments.size();
    const bool skipsOutputs = routine.isFunction && given < named(routine);
    std::size_t next = 0;
    int column = 0;
    for (const Argument &argument : routine.arguments) {
      const int from = isOutput(argument.mode) ? column++ : -1;
      const bool isNamed =
          argument.mode != 't' && !(skipsOutputs && argument.mode == 'o');
      if (!isNamed || next == given) continue;
      const int parameter = text_.arguments[next++] - 1;
      noteOut(parameter, from);
      const bool isPassed = !routine.isFunction || isInput(argument.mode);
      const bool sends =
          isInput(argument.mode) && directionOf(parameter) != kDirectionOut;
      if (isPassed) add(sends ? send(parameter) : "NULL", cast ? argument : Argument{});
    }
    for (; next < given; ++next) passAsItIs(text_.arguments[next] - 1);
    return finish(routine.isFunction ? hasOutputs(routine) ? "SELECT * FROM " : "SELECT "
                                     : "CALL ");
  }

  /// For a routine that is not known: the answer's columns in order.
  Call planUnknown(const char *verb) {
    int column = 0;
    for (const int number : text_.arguments) {
      const bool isOut = directionOf(number - 1) != kDirectionIn;
      noteOut(number - 1, isOut ? column++ : -1);
      add(send(number - 1), {});
    }
    return finish(verb);
  }

 private:
  unsigned directionOf(int parameter) const {
    const auto place = static_cast<std::size_t>(parameter);
    if (place >= directions_.size()) return kDirectionIn;
    return directions_[place];
  }

  void noteOut(int parameter, int column) {
    if (directionOf(parameter) != kDirectionIn) call_.outs.push_back({parameter, column});
  }

  void passAsItIs(int parameter) {
    noteOut(parameter, -1);
    add(send(parameter), {});
  }

  /// The parameter's new number.
  std::string send(int parameter) {
    call_.sent.push_back(parameter);
    return "$" + std::to_string(call_.sent.size());
  }

  void add(std::string expression, const Argument &argument) {
    if (!argument.type.empty() && argument.mode != 'v')
      expression += "::" + argument.type;
    arguments_ += (arguments_.empty() ? "" : ", ") + expression;
  }

  Call finish(const char *verb) {
    call_.command = verb + text_.name + "(" + arguments_ + ")";
    std::ranges::stable_sort(call_.outs, {}, &OutColumn::parameter);
    return std::move(call_);
  }

  const CallText &text_;
  const std::vector<unsigned> &directions_;
  std::string arguments_;
  Call call_;
};

}  // namespace

std::string Routine::modes() const {
  std::string all;
  for (const Argument &argument : arguments) all += argument.mode;
  return all;
}

bool Routine::takes(std::size_t count) const {
  const auto optional = static_cast<std::size_t>(defaults);
  const auto between = [&](std::size_t most) {
    return count <= most && count + optional >= most;
  };
  const bool isVariadic = std::ranges::count(arguments, 'v', &Argument::mode) != 0;
  return between(named(*this)) || (isFunction && between(inputsOf(*this))) ||
         (isVariadic && count + 1 >= named(*this));
}

std::optional<CallText> parseCall(std::string_view text) {
  text = trimmed(text);
  if (text.ends_with(';')) text = trimmed(text.substr(0, text.size() - 1));
  const auto open = text.find('(');
  if (!text.starts_with(kCall) || open == text.npos || !text.ends_with(')')) {
    return std::nullopt;
  }
  CallText call{std::string(trimmed(text.substr(kCall.size(), open - kCall.size()))), {}};
  std::string_view rest = trimmed(text.substr(open + 1, text.size() - open - 2));
  while (!rest.empty()) {
    const auto comma = std::min(rest.find(','), rest.size());
    const std::optional<int> number = parameterNumber(trimmed(rest.substr(0, comma)));
    if (!number) return std::nullopt;
    call.arguments.push_back(*number);
    rest.remove_prefix(std::min(comma + 1, rest.size()));
  }
  return call;
}

std::vector<Routine> findRoutines(PGconn *conn, std::string_view name) {
  if (!takesQuestions(conn)) return {};
  const auto dot = name.rfind('.');
  const std::string own = folded(dot == name.npos ? name : name.substr(dot + 1));
  const std::string schema = folded(dot == name.npos ? "" : name.substr(0, dot));
  const char *const values[] = {own.c_str(), dot == name.npos ? nullptr : schema.c_str()};
  const Result rows(
      PQexecParams(conn, kRoutineQuery, 2, nullptr, values, nullptr, nullptr, 0));
  std::vector<Routine> routines;
  std::string_view former;
  for (int row = 0; row < PQntuples(rows.get()); ++row) {
    const auto field = [&](int column) { return PQgetvalue(rows.get(), row, column); };
    if (field(0) != former) {
      former = field(0);
      routines.push_back({*field(1) == 'f', std::atoi(field(2)), {}});
    }
    if (!PQgetisnull(rows.get(), row, 3)) {
      routines.back().arguments.push_back({*field(4), field(5)});
    }
  }
  return routines;
}

Call planCall(const CallText &text, const std::vector<Routine> &routines,
              const std::vector<unsigned> &directions) {
  Planner planner(text, directions);
  const std::vector<const Routine *> meant = candidates(routines, text.arguments.size());
  if (agree(meant)) return planner.plan(*meant[0], meant.size() == 1);
  const bool allFunctions =
      !meant.empty() && std::ranges::all_of(meant, [](auto *r) { return r->isFunction; });
  return planner.planUnknown(allFunctions ? "SELECT " : "CALL ");
}

}  // namespace zev::pqext
