/// Every pair of the fetch matrix against its model: telling values in both formats, all
/// sizes of the target, with and without indicator and return code.
#include <algorithm>
#include <set>

#include "matrix_target.h"
#include "model/pairs.h"
#include "model/values.h"
#include "types/conversion_tables.h"
#include "types_fixture.h"

namespace zevtest {
namespace {

using model::Pair;

/// The table's converter, null while it is not there.
FromServerConverter converterOf(const Pair &pair) {
  return GetConversionFunctionInternal(pair.oid, pair.dty, PQToOCIConversionFunctions, 0,
                                       kFromServerEntries - 1)
      .fromServer;
}

constexpr int kPrintedMismatches = 5;
/// Lengths of text that a row prints values with lie below this.
constexpr ub4 kShort = 26;

std::vector<ub4> capsFor(const Call &call) {
  std::set<ub4> caps;
  const ub4 length = static_cast<ub4>(call.value.size());
  if (call.dty == SQLT_VST) return {0, 1, 3, 4, 8};
  if (call.format == 2) return {8, 21};
  const ub4 end = call.format == 0 ? std::max(length, 8u) + 6 : kShort;
  for (ub4 cap = 0; cap <= std::min(end, kShort); ++cap) caps.insert(cap);
  for (ub4 cap = end > kShort ? end - 10 : end; cap <= end; ++cap) caps.insert(cap);
  return {caps.begin(), caps.end()};
}

std::vector<ub4> sizesFor(const Call &call) {
  if (call.dty != SQLT_VST) return {0};
  const ub4 length = static_cast<ub4>(call.value.size());
  if (call.cap != 8) return {length + 1};
  std::vector<ub4> sizes{0, 1, 2, 3, 4, 5};
  for (ub4 size = std::max(length, 8u) - 2; size <= 2 * length + 4; ++size) {
    sizes.push_back(size);
  }
  return sizes;
}

std::vector<model::Environment> environmentsFor(Oid row) {
  std::vector<model::Environment> all{{true, false}, {false, false}};
  if (model::isCharacterRow(row)) all.push_back({true, true});
  return all;
}

/// Calls `visit` with every call of a pair.
template <class Visit>
void forEachCall(const Pair &pair, const Visit &visit) {
  const model::Values values = model::valuesOf(pair.oid);
  const auto sweep = [&](ub1 format, const std::string &value) {
    Call call{.oid = pair.oid, .dty = pair.dty, .format = format, .value = value};
    for (const auto env : environmentsFor(pair.oid)) {
      for (const ub4 cap : capsFor(call)) {
        call.cap = cap;
        for (const ub4 size : sizesFor(call)) {
          for (const bool indicator : {true, false}) {
            for (const bool returnCode : {true, false}) {
              if (!returnCode && cap % 3 != 0) continue;
              call.stringSize = size;
              call.indicator = indicator;
              call.returnCode = returnCode;
              call.env = env;
              visit(call);
            }
          }
        }
      }
    }
  };
  for (const std::string &text : values.texts) sweep(0, text);
  for (const std::string &binary : values.binaries) sweep(1, binary);
  sweep(2, "1");
}

/// Lengths at which members draw a line.
constexpr std::size_t kLimits[] = {2000, 4000, 65533, 65535, 65536, 70000};

/// Members that have no null rule, or skip it in large targets.
bool needsAValue(const Pair &pair) {
  const bool isNumber = pair.dty == SQLT_NUM || pair.dty == SQLT_VNU;
  return pair.dty == SQLT_RSET || (pair.oid == NUMERICOID && isNumber) ||
         (model::isCharacterRow(pair.oid) && pair.dty == SQLT_NUM);
}

class MatrixTest : public testing::TestWithParam<Pair> {
 protected:
  /// Calls the converter itself, in a target that is larger than it is told.
  void checkConverter(const Call &call) {
    const auto expected = model::predict(call);
    if (!expected) return;
    ++calls_;
    Session &session = sessions_.of(call.env);
    const std::size_t room = std::max(expected->target.size(), expected->text.size());
    Target target(call, room);
    const auto value = exactCopy(call.value + '\0');
    errno = 0;
    const sword result = converterOf(GetParam())(
        session.errhp, call.nullPointer ? nullptr : value.get(),
        static_cast<sb4>(call.value.size()), call.format, target.address(),
        target.length(), target.indicator(), target.returnCode());
    const Outcome seen = target.seen(result, session.takeRecord());
    if (!agree(*expected, seen, room)) mismatch(call, *expected, seen);
  }

  /// Goes through the dispatcher, in a block of exactly the size that it is told.
  void checkDispatcher(const Call &call) {
    const auto expected = model::predict(call);
    if (!expected) return;
    ++calls_;
    Session &session = sessions_.of(call.env);
    Target target(call, exactRoom(call));
    const auto value = exactCopy(call.value + '\0');
    errno = 0;
    const sword result = PQ2OCIType_2(
        session.errhp, call.oid, value.get(), static_cast<sb4>(call.value.size()),
        call.format, call.dty, target.address(), target.length(), target.indicator(),
        target.returnCode(), nullptr, 0);
    const Outcome seen = target.seen(result, session.takeRecord());
    const std::size_t bytes = call.dty == SQLT_VST ? call.stringSize : call.cap;
    if (!agree(*expected, seen, bytes)) mismatch(call, *expected, seen);
  }

  /// Values as long as the limits, and one more.
  void checkLongValues() {
    for (const std::size_t limit : kLimits) {
      for (const std::size_t length : {limit, limit + 1}) {
        for (const ub4 cap :
             {10u, static_cast<ub4>(limit), static_cast<ub4>(limit) + 8}) {
          for (const bool indicator : {true, false}) {
            const Call call{.oid = GetParam().oid,
                            .dty = GetParam().dty,
                            .value = std::string(length, '1'),
                            .cap = cap,
                            .indicator = indicator,
                            .stringSize = cap};
            checkConverter(call);
          }
        }
      }
    }
  }

  /// No value at all, which is null whatever its length.
  void checkNullPointers() {
    if (needsAValue(GetParam())) return;
    for (const ub4 cap : {4u, 8u, 30u}) {
      for (const ub1 format : {ub1{0}, ub1{1}}) {
        for (const bool indicator : {true, false}) {
          const bool noLength = model::isCharacterRow(GetParam().oid);
          const Call call{.oid = GetParam().oid,
                          .dty = GetParam().dty,
                          .format = format,
                          .value = noLength ? "" : "12345678",
                          .cap = cap,
                          .indicator = indicator,
                          .stringSize = 8,
                          .nullPointer = true};
          checkConverter(call);
        }
      }
    }
  }

  /// Random fields through the converter and through the dispatcher.
  void checkRandomValues() {
    auto random = generator();
    const auto below = [&](unsigned n) { return static_cast<ub4>(random() % n); };
    const auto environments = environmentsFor(GetParam().oid);
    for (int i = 0; i < 2000; ++i) {
      const bool isBinary = below(4) == 0;
      const std::string value = isBinary ? model::randomBinary(GetParam().oid, random)
                                         : model::randomText(GetParam().oid, random);
      const Call call{.oid = GetParam().oid,
                      .dty = GetParam().dty,
                      .format = static_cast<ub1>(isBinary),
                      .value = value,
                      .cap = below(below(2) ? 10 : 40),
                      .indicator = below(3) != 0,
                      .returnCode = below(3) != 0,
                      .env = environments[below(static_cast<ub4>(environments.size()))],
                      .stringSize = below(40)};
      checkConverter(call);
      checkDispatcher(call);
    }
  }

  /// Prints the first few of a pair.
  void mismatch(const Call &call, const Outcome &expected, const Outcome &seen) {
    ++mismatches_;
    if (mismatches_ > kPrintedMismatches) return;
    const bool isString = call.dty == SQLT_VST;
    ADD_FAILURE() << described(call) << "\n  expected " << described(expected, isString)
                  << "\n  seen     " << described(seen, isString);
  }

  void TearDown() override {
    EXPECT_GT(calls_, 0);
    if (mismatches_ > kPrintedMismatches) {
      ADD_FAILURE() << mismatches_ << " mismatches in " << calls_ << " calls";
    }
  }

  Sessions sessions_;
  int calls_ = 0;
  int mismatches_ = 0;
};

TEST_P(MatrixTest, ConverterDoesAsTheModel) {
  ASSERT_NE(converterOf(GetParam()), nullptr) << "the converter is missing";
  forEachCall(GetParam(), [&](const Call &call) { checkConverter(call); });
  checkLongValues();
  checkNullPointers();
  checkRandomValues();
}

TEST_P(MatrixTest, DispatcherStaysInsideTheTarget) {
  ASSERT_NE(converterOf(GetParam()), nullptr) << "the converter is missing";
  forEachCall(GetParam(), [&](const Call &call) { checkDispatcher(call); });
}

INSTANTIATE_TEST_SUITE_P(Fetch, MatrixTest, testing::ValuesIn(model::modelledPairs()),
                         [](const auto &row) { return model::nameOf(row.param); });

/// One text in a target of 30 bytes that holds `before`.
struct Plain {
  explicit Plain(char before) : target(30, before) {}
  sword run(const Pair &pair, Session &session, const char *text) {
    const FromServerConverter convert = converterOf(pair);
    EXPECT_NE(convert, nullptr);
    if (!convert) return -1;
    errno = errnoBefore;
    return convert(session.errhp, text, static_cast<sb4>(std::strlen(text)), 0,
                   target.data(), &length, &indicator, nullptr);
  }
  std::string target;
  ub4 length = 30;
  sb2 indicator = 77;
  int errnoBefore = 0;
};

TEST(Matrix, ANumberTakesInNoByteThatStoodInTheTarget) {
  Session session;
  for (const Oid row : {INT2OID, INT4OID, INT8OID, TEXTOID, NUMERICOID}) {
    const Pair pair{row, SQLT_VNU};
    SCOPED_TRACE(model::nameOf(pair));
    Plain plain('\x20');
    EXPECT_EQ(plain.run(pair, session, "5"), 0);
    EXPECT_EQ(plain.length, 3u);
    EXPECT_EQ(plain.target.substr(0, 3), "\x02\xC1\x06");
  }
}

TEST(Matrix, AnOldRangeErrorRefusesShortIntegers) {
  Session session;
  for (const Oid row : {INT2OID, INT4OID}) {
    for (const ub2 dty : {SQLT_INT, SQLT_UIN}) {
      SCOPED_TRACE(model::nameOf({row, dty}));
      Plain plain('~');
      plain.length = 4;
      plain.errnoBefore = ERANGE;
      EXPECT_EQ(plain.run({row, dty}, session, "5"), -1);
      EXPECT_EQ(session.takeRecord(), kNoRecord);
    }
  }
}

TEST(Matrix, TheIndicatorIsClearedButByTheMembersThatLeaveItAlone) {
  Session session;
  const auto leavesIt = [](Oid row, ub2 dty) {
    if (row == INT2OID || row == INT4OID) return dty == SQLT_VNU;
    const ub2 ofCharacters[] = {SQLT_CHR, SQLT_NUM, SQLT_STR,
                                SQLT_VNU, SQLT_VCS, SQLT_LVC};
    return row == CHAROID &&
           std::count(std::begin(ofCharacters), std::end(ofCharacters), dty) != 0;
  };
  for (const Oid row : {CHAROID, INT2OID, INT4OID, INT8OID}) {
    for (const ub2 dty : {SQLT_CHR, SQLT_NUM, SQLT_INT, SQLT_FLT, SQLT_STR, SQLT_VNU,
                          SQLT_VCS, SQLT_UIN, SQLT_LVC, SQLT_AVC}) {
      SCOPED_TRACE(model::nameOf({row, static_cast<ub2>(dty)}));
      Plain plain('~');
      if (dty == SQLT_INT || dty == SQLT_UIN || dty == SQLT_FLT) plain.length = 8;
      EXPECT_EQ(plain.run({row, static_cast<ub2>(dty)}, session, "5"), 0);
      EXPECT_EQ(plain.indicator, leavesIt(row, dty) ? 77 : 0);
    }
  }
}

TEST(Matrix, AllOfTheTableIsModelledButDatesAndLargeObjects) {
  std::vector<std::string> inTable, modelled;
  for (const ConversionEntry &entry : PQToOCIConversionFunctions) {
    const Pair pair{entry.firstKey, static_cast<ub2>(entry.secondKey)};
    if (model::isDatePair(pair)) continue;
    EXPECT_NE(entry.converter.fromServer, nullptr) << model::nameOf(pair);
    if (pair.dty != SQLT_BLOB) inTable.push_back(model::nameOf(pair));
  }
  for (const Pair &pair : model::modelledPairs()) modelled.push_back(model::nameOf(pair));
  EXPECT_EQ(inTable, modelled);
}

}  // namespace
}  // namespace zevtest
