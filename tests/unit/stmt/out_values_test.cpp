/// The rules by which the OUT values of a call are spread over its binds, for every list
/// of up to four binds, on results made without a server.
#include "stmt/out_values.h"

#include <cstring>

#include "core/owned.h"
#include "stmt_fixture.h"
#include "zevoci/connection.h"

namespace zevtest {
namespace {

constexpr Oid kText = 25;
constexpr ub4 kIteration = 1;  ///< the second row of the buffers is the one that counts
constexpr std::size_t kWidth = 4;
constexpr const char *kUntouched = "~~~~";

enum class Form { Plain, Struct, WithCallback, WithoutCallback };
constexpr Form kForms[] = {Form::Plain, Form::Struct, Form::WithCallback,
                           Form::WithoutCallback};
constexpr ub4 kDirections[] = {kParamIn, kParamOut, kParamInOut};

struct Parameter {
  Form form;
  ub4 direction;
};
using Parameters = std::vector<Parameter>;

/// Calls `use` for every list of `length` parameters.
template <class Use>
void forEachList(std::size_t length, Parameters &list, const Use &use) {
  if (list.size() == length) return use(list);
  for (const Form form : kForms) {
    for (const ub4 direction : kDirections) {
      list.push_back({form, direction});
      forEachList(length, list, use);
      list.pop_back();
    }
  }
}

/// A row of text columns; a null value is SQL NULL.
zev::PgResult makeRow(const std::vector<const char *> &values) {
  zev::PgResult row(PQmakeEmptyPGresult(nullptr, PGRES_TUPLES_OK));
  char name[] = "c";
  std::vector<PGresAttDesc> columns(values.size(), {name, 0, 0, 0, kText, -1, -1});
  const int count = static_cast<int>(values.size());
  EXPECT_TRUE(PQsetResultAttrs(row.get(), count, columns.data()));
  for (int i = 0; i < count; ++i) {
    const char *value = values[static_cast<std::size_t>(i)];
    std::string bytes = value ? value : "";
    EXPECT_TRUE(PQsetvalue(row.get(), 0, i, bytes.data(),
                           value ? static_cast<int>(bytes.size()) : -1));
  }
  return row;
}

/// What a bind has in its buffers or is given through its callback.
struct Target {
  struct Row {
    char value[kWidth];
    sb2 indicator;
    ub2 length;
    ub2 returnCode;
    char gap[6];
  };
  Row rows[2];
  char plain[2][kWidth];
  sb2 indicators[2] = {77, 77};
  ub2 lengths[2] = {77, 77};
  ub2 codes[2] = {77, 77};
  char offered[kWidth];
  ub4 offeredLength = kWidth;
  sb2 offeredIndicator = 77;
  int asked = 0;

  Target() {
    std::memset(rows, '~', sizeof rows);
    std::memset(plain, '~', sizeof plain);
    std::memset(offered, '~', sizeof offered);
  }

  static sb4 take(void *context, OCIBind *, ub4 iteration, ub4 index, void **buffer,
                  ub4 **length, ub1 *piece, void **indicator, ub2 **) {
    auto *self = static_cast<Target *>(context);
    EXPECT_EQ(iteration, kIteration);
    EXPECT_EQ(index, 0u);
    ++self->asked;
    *buffer = self->offered;
    *length = &self->offeredLength;
    *piece = OCI_ONE_PIECE;
    *indicator = &self->offeredIndicator;
    return OCI_CONTINUE;
  }

  void bindTo(OCIBind &bind, Form form) {
    bind.dty = SQLT_AFC;
    bind.valueSize = kWidth;
    bind.isDynamic = form == Form::WithCallback || form == Form::WithoutCallback;
    bind.isStruct = form == Form::Struct;
    if (form == Form::WithCallback) {
      bind.ocbctx = this;
      bind.ocbfp = take;
    } else if (form == Form::Struct) {
      bind.valuep = rows[0].value;
      bind.indp = &rows[0].indicator;
      bind.alenp = &rows[0].length;
      bind.rcodep = &rows[0].returnCode;
      bind.pvskip = bind.indskip = bind.alskip = bind.rcskip = sizeof(Row);
    } else if (form == Form::Plain) {
      bind.valuep = plain;
      bind.indp = indicators;
      bind.alenp = lengths;
      bind.rcodep = codes;
    }
  }
  std::string value(Form form) const {
    switch (form) {
      case Form::Plain:
        return {plain[kIteration], kWidth};
      case Form::Struct:
        return {rows[kIteration].value, kWidth};
      default:
        return {offered, kWidth};
    }
  }
  std::string otherRow(Form form) const {
    return {form == Form::Struct ? rows[0].value : plain[0], kWidth};
  }
};

/// A statement whose call has been made, with its binds.
class Call {
 public:
  Call(Session &session, const Parameters &parameters)
      : session_(session),
        parameters_(parameters),
        binds_(namesOf(parameters.size())),
        targets_(parameters.size()) {
    OCIStmt *stmt = session.stmt;
    stmt->paramCount = static_cast<ub4>(parameters.size());
    std::free(stmt->paramDirs);
    stmt->paramDirs = static_cast<ub4 *>(std::malloc(5 * sizeof(ub4)));
    for (std::size_t i = 0; i < parameters.size(); ++i) {
      stmt->paramDirs[i] = parameters[i].direction;
      targets_[i].bindTo(binds_[i], parameters[i].form);
    }
  }
  ~Call() {
    std::free(session_.stmt->paramDirs);
    session_.stmt->paramDirs = nullptr;
    session_.stmt->paramCount = 0;
  }
  Call(const Call &) = delete;
  Call &operator=(const Call &) = delete;

  sword fill(const PGresult *out, OCIBind *returnBind = nullptr,
             const PGresult *result = nullptr) {
    return fill_bind_parameters(session_.stmt, session_.errhp, returnBind, binds_.list(),
                                result, out, returnBind != nullptr, kIteration);
  }
  const Target &target(std::size_t i) const { return targets_[i]; }
  OCIBind &bind(std::size_t i) { return binds_[i]; }

  /// Compares every bind with the column that its place in the list gives it.
  sword expectColumns(const std::vector<const char *> &columns) {
    sword last = OCI_SUCCESS;
    std::size_t column = 0;
    for (std::size_t i = 0; i < parameters_.size(); ++i) {
      const auto [form, direction] = parameters_[i];
      SCOPED_TRACE(testing::Message()
                   << "bind " << i << " form " << static_cast<int>(form) << " direction "
                   << direction);
      const bool in = direction == kParamIn;
      const bool takesNone = in && (form == Form::Plain || form == Form::WithoutCallback);
      const char *expected = takesNone ? nullptr : columns[column++];
      const bool arrives = expected && form != Form::WithoutCallback;
      expectValue(i, form, arrives ? expected : kUntouched);
      if (takesNone) continue;
      const bool isCalled = form == Form::WithCallback;
      EXPECT_EQ(targets_[i].asked, isCalled ? 1 : 0);
      if (isCalled) {
        EXPECT_EQ(targets_[i].offeredIndicator, expected ? 0 : -1);
      }
      if (form == Form::WithoutCallback) {
        last = OCI_NEED_DATA;
      } else if (expected || isCalled) {
        last = OCI_SUCCESS;
      }
    }
    return last;
  }

 private:
  static std::vector<std::string> namesOf(std::size_t count) {
    std::vector<std::string> names;
    for (std::size_t i = 0; i < count; ++i) names.push_back(":b" + std::to_string(i));
    return names;
  }
  void expectValue(std::size_t i, Form form, const std::string &expected) {
    const Target &target = targets_[i];
    EXPECT_EQ(target.value(form), expected);
    EXPECT_EQ(target.otherRow(form), kUntouched);
    if (form != Form::Plain) return;
    const bool isSet = expected != kUntouched;
    EXPECT_EQ(target.indicators[kIteration], isSet ? 0 : 77);
    EXPECT_EQ(target.lengths[kIteration], isSet ? kWidth : 77);
    EXPECT_EQ(target.codes[kIteration], 77) << "return codes are the return value's";
  }

  Session &session_;
  Parameters parameters_;
  NamedBinds binds_;
  std::vector<Target> targets_;
};

class OutValues : public testing::Test {
 protected:
  OutValues() : version_(gDBServerVersion) { gDBServerVersion = 150000; }
  ~OutValues() override { gDBServerVersion = version_; }

  /// Each list of binds with these columns, of which a list takes what it needs.
  void spread(const std::vector<const char *> &columns) {
    const zev::PgResult out = makeRow(columns);
    for (std::size_t length = 1; length <= columns.size(); ++length) {
      Parameters list;
      forEachList(length, list, [&](const Parameters &parameters) {
        Call call(session_, parameters);
        const sword status = call.fill(out.get());
        EXPECT_EQ(status, call.expectColumns(columns));
        EXPECT_EQ(session_.takeRecord(), kNoRecord);
      });
      if (HasFailure()) return;
    }
  }

  Session session_;

 private:
  sb4 version_;
};

TEST_F(OutValues, EveryListOfBindsTakesItsColumns) {
  spread({"aa11", "bb22", "cc33", "dd44"});
}

TEST_F(OutValues, NullColumnsAreTakenAndLeaveThePlainBindsAsTheyAre) {
  spread({"aa11", nullptr, "cc33", nullptr});
  spread({nullptr, "bb22", nullptr, "dd44"});
}

TEST_F(OutValues, ReturnValueIsTheFirstColumnOfTheMainResult) {
  const zev::PgResult out = makeRow({"aa11"});
  const zev::PgResult result = makeRow({"ret0", "aa11"});
  for (const Form form : {Form::Plain, Form::Struct, Form::WithCallback}) {
    NamedBinds returns({":r"});
    Target returned;
    returned.bindTo(returns[0], form);
    Call call(session_, {{Form::Plain, kParamOut}});
    EXPECT_EQ(call.fill(out.get(), &returns[0], result.get()), OCI_SUCCESS);
    EXPECT_EQ(returned.value(form), "ret0");
    EXPECT_EQ(call.target(0).value(Form::Plain), "aa11");
    if (form == Form::Plain) {
      EXPECT_EQ(returned.codes[kIteration], 0);
      EXPECT_EQ(returned.lengths[kIteration], kWidth);
    }
  }
}

TEST_F(OutValues, WithoutResultsOrListsNothingIsDone) {
  const zev::PgResult row = makeRow({"aa11"});
  Call call(session_, {{Form::Plain, kParamOut}});
  NamedBinds returns({":r"});
  EXPECT_EQ(call.fill(nullptr), OCI_ERROR);
  EXPECT_EQ(call.fill(row.get(), &returns[0], nullptr), OCI_ERROR);
  session_.stmt->paramCount = 2;
  EXPECT_EQ(call.fill(row.get()), OCI_ERROR) << "one bind for two parameters";
  session_.stmt->paramCount = 1;
  const auto fillOf = [&](OCIStmt *stmt, OCIError *errhp, const List *list) {
    return fill_bind_parameters(stmt, errhp, nullptr, list, nullptr, row.get(), 0, 0);
  };
  EXPECT_EQ(fillOf(nullptr, session_.errhp, returns.list()), OCI_ERROR);
  EXPECT_EQ(fillOf(session_.stmt, nullptr, returns.list()), OCI_ERROR);
  EXPECT_EQ(fillOf(session_.stmt, session_.errhp, nullptr), OCI_ERROR);
  EXPECT_EQ(call.target(0).value(Form::Plain), kUntouched);
}

TEST_F(OutValues, AnOldServerGivesEveryPlainBindAColumn) {
  gDBServerVersion = 80300;
  const zev::PgResult out = makeRow({"aa11", "bb22"});
  Call call(session_, {{Form::Plain, kParamIn}, {Form::Plain, kParamOut}});
  EXPECT_EQ(call.fill(out.get()), OCI_SUCCESS);
  EXPECT_EQ(call.target(0).value(Form::Plain), "aa11");
  EXPECT_EQ(call.target(1).value(Form::Plain), "bb22");
}

TEST_F(OutValues, BindWithoutABufferIsRefused) {
  const zev::PgResult out = makeRow({"aa11"});
  Call call(session_, {{Form::Plain, kParamOut}});
  call.bind(0).valuep = nullptr;
  EXPECT_EQ(call.fill(out.get()), OCI_ERROR);
  EXPECT_EQ(session_.takeRecord(), 3131);
}

}  // namespace
}  // namespace zevtest
