/// Calls with every combination of argument modes up to four, as procedures and
/// functions, by name and through callbacks, beside what the server's own client prints.
#include <unistd.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "tests/integration/support/oci_test.h"
#include "tests/server/address.h"

namespace zev::test {
namespace {

enum class Mode { In, Out, InOut };
constexpr Mode kModes[] = {Mode::In, Mode::Out, Mode::InOut};

struct CloseConnection {
  void operator()(PGconn *conn) const noexcept { PQfinish(conn); }
};

bool gives(Mode mode) {
  return mode != Mode::In;
}
bool takes(Mode mode) {
  return mode != Mode::Out;
}

/// All lists of modes of one length.
std::vector<std::vector<Mode>> combinations(std::size_t length) {
  std::vector<std::vector<Mode>> all = {{}};
  for (std::size_t i = 0; i < length; ++i) {
    std::vector<std::vector<Mode>> longer;
    for (const auto &modes : all) {
      for (const Mode mode : kModes) {
        longer.push_back(modes);
        longer.back().push_back(mode);
      }
    }
    all = std::move(longer);
  }
  return all;
}

/// One argument on the program's side: its value, or the callbacks that cross it.
struct Argument {
  sb4 value;
  ub4 length = sizeof value;
  sb2 indicator = 0;
  ub2 returnCode = 0;

  static sb4 give(void *context, OCIBind *, ub4, ub4, void **buffer, ub4 *length,
                  ub1 *piece, void **indicator) {
    auto *self = static_cast<Argument *>(context);
    *buffer = &self->value;
    *length = sizeof self->value;
    *piece = OCI_ONE_PIECE;
    *indicator = &self->indicator;
    return OCI_CONTINUE;
  }
  static sb4 take(void *context, OCIBind *, ub4, ub4, void **buffer, ub4 **length,
                  ub1 *piece, void **indicator, ub2 **returnCode) {
    auto *self = static_cast<Argument *>(context);
    self->length = sizeof self->value;
    *buffer = &self->value;
    *length = &self->length;
    *piece = OCI_ONE_PIECE;
    *indicator = &self->indicator;
    *returnCode = &self->returnCode;
    return OCI_CONTINUE;
  }
};

enum class Binding { Plain, Dynamic, Alternating };

/// A routine whose OUT values are ten times its place plus the sum of its inputs.
struct Routine {
  std::vector<Mode> modes;
  bool isFunction;  ///< without OUT arguments then, and it returns the sum

  static const char *word(Mode mode) {
    return mode == Mode::In ? "IN" : mode == Mode::Out ? "OUT" : "INOUT";
  }
  std::string argument(std::size_t i) const { return "a" + std::to_string(i); }
  std::string sum() const {
    std::string text = "0";
    for (std::size_t i = 0; i < modes.size(); ++i) {
      if (takes(modes[i])) text += " + coalesce(a" + std::to_string(i) + ", 0)";
    }
    return text;
  }
  std::string create(const std::string &name) const {
    std::string list, body = "DECLARE s int := " + sum() + "; BEGIN ";
    for (std::size_t i = 0; i < modes.size(); ++i) {
      list += (i ? ", " : "") + std::string(word(modes[i])) + " " + argument(i) + " int";
      if (gives(modes[i])) {
        body += argument(i) + " := s + " + std::to_string(10 * (i + 1)) + "; ";
      }
    }
    if (isFunction) body += "RETURN s; ";
    return std::string("CREATE ") + (isFunction ? "FUNCTION " : "PROCEDURE ") + name +
           "(" + list + ")" + (isFunction ? " RETURNS int" : "") +
           " LANGUAGE plpgsql AS $$ " + body + "END $$";
  }
};

class CallCombinationsTest : public OciTest {
 protected:
  void SetUp() override {
    OciTest::SetUp();
    plain_.reset(PQconnectdb(testServer().conninfo().c_str()));
    ASSERT_EQ(PQstatus(plain_.get()), CONNECTION_OK);
    onPlain("CREATE SCHEMA " + schema_);
    onPlain("SET search_path = " + schema_);
    Statement path = statement("SET search_path = " + schema_);
    ASSERT_EQ(path.execute(), OCI_SUCCESS);
    commit();
  }
  void TearDown() override {
    OciTest::TearDown();
    onPlain("SET client_min_messages = warning; DROP SCHEMA " + schema_ + " CASCADE");
  }

  /// The values of the first row.
  std::vector<sb4> onPlain(const std::string &sql) {
    PGresult *result = PQexec(plain_.get(), sql.c_str());
    EXPECT_NE(PQresultStatus(result), PGRES_FATAL_ERROR) << PQerrorMessage(plain_.get());
    std::vector<sb4> values;
    for (int i = 0; PQntuples(result) > 0 && i < PQnfields(result); ++i) {
      values.push_back(std::atoi(PQgetvalue(result, 0, i)));
    }
    PQclear(result);
    return values;
  }

  /// What the server's own client gets for the call with the inputs 1, 2, 3, ...
  std::vector<sb4> expected(const Routine &routine, const std::string &name) {
    std::string list;
    for (std::size_t i = 0; i < routine.modes.size(); ++i) {
      list += i ? ", " : "";
      list += takes(routine.modes[i]) ? std::to_string(i + 1) : "NULL";
    }
    return onPlain((routine.isFunction ? "SELECT " : "CALL ") + name + "(" + list + ")");
  }

  void bind(Statement &call, const std::string &name, Argument &argument, Mode mode,
            bool dynamic) {
    if (!dynamic) {
      ASSERT_EQ(call.bind(name, &argument.value, sizeof argument.value, SQLT_INT,
                          &argument.indicator),
                OCI_SUCCESS);
      return;
    }
    OCIBind *handle = nullptr;
    ASSERT_EQ(OCIBindByName(call.handle(), &handle, errhp(), Given(name).text(), -1,
                            nullptr, sizeof(sb4), SQLT_INT, nullptr, nullptr, nullptr, 0,
                            nullptr, OCI_DATA_AT_EXEC),
              OCI_SUCCESS);
    ASSERT_EQ(OCIBindDynamic(handle, errhp(), &argument, &Argument::give, &argument,
                             gives(mode) ? &Argument::take : nullptr),
              OCI_SUCCESS);
  }

  /// Calls the routine and compares what came back.
  void check(const Routine &routine, const std::string &name, Binding binding) {
    const std::vector<sb4> answer = expected(routine, name);
    std::string list;
    for (std::size_t i = 0; i < routine.modes.size(); ++i) {
      list += (i ? ", :" : ":") + routine.argument(i);
    }
    Statement call =
        statement("BEGIN " + std::string(routine.isFunction ? ":r := " : "") + name +
                  "(" + list + "); END;");
    std::vector<Argument> arguments(routine.modes.size());
    const auto isDynamic = [&](std::size_t i) {
      return binding == Binding::Dynamic || (binding == Binding::Alternating && i % 2);
    };
    for (std::size_t i = 0; i < arguments.size(); ++i) {
      arguments[i].value = static_cast<sb4>(i) + 1;
      bind(call, ":" + routine.argument(i), arguments[i], routine.modes[i], isDynamic(i));
    }
    Argument returned{.value = -1};
    if (routine.isFunction) {
      bind(call, ":r", returned, Mode::Out, binding != Binding::Plain);
    }
    ASSERT_EQ(call.execute(), OCI_SUCCESS) << routine.create(name) << ": " << errorText();
    std::vector<sb4> got;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
      if (gives(routine.modes[i])) {
        got.push_back(arguments[i].value);
      } else {
        EXPECT_EQ(arguments[i].value, static_cast<sb4>(i) + 1) << routine.create(name);
      }
    }
    if (routine.isFunction) got.insert(got.begin(), returned.value);
    EXPECT_EQ(got, answer) << routine.create(name);
  }

  std::string schema_ = dressed("call_combinations_" + std::to_string(getpid()));

 private:
  std::unique_ptr<PGconn, CloseConnection> plain_;
};

TEST_F(CallCombinationsTest, ProceduresGiveBackWhatTheServersClientPrints) {
  int number = 0;
  for (std::size_t length = 1; length <= 4; ++length) {
    for (const auto &modes : combinations(length)) {
      const Routine routine{modes, false};
      const std::string name = "cc_" + std::to_string(++number);
      onPlain(routine.create(name));
      for (const Binding binding :
           {Binding::Plain, Binding::Dynamic, Binding::Alternating}) {
        check(routine, name, binding);
      }
    }
  }
  EXPECT_EQ(number, 3 + 9 + 27 + 81);
}

TEST_F(CallCombinationsTest, FunctionsReturnWhatTheServersClientPrints) {
  for (std::size_t length = 1; length <= 4; ++length) {
    const Routine routine{std::vector<Mode>(length, Mode::In), true};
    const std::string name = "cf_" + std::to_string(length);
    onPlain(routine.create(name));
    for (const Binding binding :
         {Binding::Plain, Binding::Dynamic, Binding::Alternating}) {
      check(routine, name, binding);
    }
  }
}

}  // namespace
}  // namespace zev::test
