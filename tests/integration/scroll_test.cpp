/// Scrolling through results, compared with a model that holds the rows in an array.
#include <unistd.h>

#include <cstdlib>
#include <random>

#include "tests/integration/support/oci_test.h"

namespace zev::test {
namespace {

constexpr sb4 kRows = 23;

/// Where a scrolled cursor of `kRows` rows stands after each fetch of one row.
class Model {
 public:
  /// The row that a fetch gives, 0 for none.
  sb4 fetch(ub2 orientation, sb4 offset) {
    const sb4 target = targetOf(orientation, offset);
    if (target < 1) return 0;
    current_ = target - 1;
    if (target > kRows) return 0;
    current_ = target;
    return target;
  }

 private:
  sb4 targetOf(ub2 orientation, sb4 offset) const {
    switch (orientation) {
      case OCI_FETCH_CURRENT:
        return current_;
      case OCI_FETCH_FIRST:
        return 1;
      case OCI_FETCH_LAST:
        return kRows;
      case OCI_FETCH_PRIOR:
        return current_ - 1;
      case OCI_FETCH_ABSOLUTE:
        return offset;
      case OCI_FETCH_RELATIVE:
        return current_ + offset;
      default:
        return current_ + 1;
    }
  }

  sb4 current_ = 0;
};

unsigned seed() {
  const char *given = std::getenv("ZEVOCI_TEST_SEED");
  return given ? static_cast<unsigned>(std::strtoul(given, nullptr, 10)) : 20261120u;
}

/// A query whose plan cannot run backward by itself.
struct Plan {
  const char *name;
  std::string sql;
};

const Plan kPlans[] = {
    {"Aggregate",
     "SELECT g FROM (SELECT g, count(*) FROM generate_series(1, 23) g GROUP BY g) s "
     "ORDER BY g"},
    {"Join",
     "SELECT a.g FROM generate_series(1, 23) a(g) JOIN generate_series(1, 40) b(g) "
     "ON a.g = b.g ORDER BY a.g"},
    {"SetReturningFunction", "SELECT generate_series(1, 23)"},
    {"Union",
     "SELECT g FROM generate_series(1, 11) g UNION ALL "
     "SELECT g FROM generate_series(12, 23) g"},
    {"Limit", "SELECT g FROM generate_series(1, 100) g LIMIT 23"},
};

struct Road {
  const char *name;
  ub4 strategy;
};
const Road kRoads[] = {{"Portal", 2}, {"Declared", 1}};

class ScrollTest : public OciTest,
                   public testing::WithParamInterface<std::tuple<Plan, Road>> {
 protected:
  Statement scrolling() {
    Statement stmt = statement(std::get<Plan>(GetParam()).sql);
    stmt.setAttribute(ZEVOCI_ATTR_CURSOR_STRATEGY, std::get<Road>(GetParam()).strategy);
    stmt.define(1, value_);
    return stmt;
  }

  void expectFetch(Statement &stmt, Model &model, ub2 orientation, sb4 offset) {
    const sb4 expected = model.fetch(orientation, offset);
    value_ = -1;
    const sword status = stmt.fetch(1, orientation, offset);
    ASSERT_EQ(status, expected ? OCI_SUCCESS : OCI_NO_DATA)
        << "orientation " << orientation << " offset " << offset << ": " << errorText();
    if (expected) {
      ASSERT_EQ(value_, expected) << "orientation " << orientation << ' ' << offset;
    }
  }

  sb4 value_ = 0;
};

TEST_P(ScrollTest, EveryOrientationGivesTheRowOfTheModel) {
  Statement stmt = scrolling();
  ASSERT_EQ(stmt.execute(0, OCI_STMT_SCROLLABLE_READONLY), OCI_SUCCESS) << errorText();
  Model model;
  struct Step {
    ub2 orientation;
    sb4 offset;
  };
  for (const auto &[orientation, offset] : std::initializer_list<Step>{
           {OCI_FETCH_NEXT, 0},      {OCI_FETCH_CURRENT, 0},   {OCI_FETCH_LAST, 0},
           {OCI_FETCH_PRIOR, 0},     {OCI_FETCH_PRIOR, 0},     {OCI_FETCH_FIRST, 0},
           {OCI_FETCH_PRIOR, 0},     {OCI_FETCH_NEXT, 0},      {OCI_FETCH_ABSOLUTE, 9},
           {OCI_FETCH_RELATIVE, 5},  {OCI_FETCH_RELATIVE, -3}, {OCI_FETCH_RELATIVE, 0},
           {OCI_FETCH_ABSOLUTE, 23}, {OCI_FETCH_NEXT, 0},      {OCI_FETCH_ABSOLUTE, 24},
           {OCI_FETCH_ABSOLUTE, 0},  {OCI_FETCH_ABSOLUTE, -4}, {OCI_FETCH_FIRST, 0},
           {OCI_FETCH_LAST, 0},      {OCI_FETCH_CURRENT, 0},   {OCI_DEFAULT, 0}}) {
    expectFetch(stmt, model, orientation, offset);
  }
}

TEST_P(ScrollTest, TheLastRowIsFoundFromFarBehindIt) {
  Statement stmt = scrolling();
  ASSERT_EQ(stmt.execute(0, OCI_STMT_SCROLLABLE_READONLY), OCI_SUCCESS) << errorText();
  Model model;
  expectFetch(stmt, model, OCI_FETCH_ABSOLUTE, 500);
  expectFetch(stmt, model, OCI_FETCH_LAST, 0);
  expectFetch(stmt, model, OCI_FETCH_PRIOR, 0);
  EXPECT_EQ(stmt.fetch(1, OCI_FETCH_RELATIVE, SB4MAXVAL), OCI_NO_DATA);
  EXPECT_EQ(stmt.fetch(1, OCI_FETCH_RELATIVE, SB4MINVAL), OCI_NO_DATA);
}

TEST_P(ScrollTest, RandomWalksGiveTheRowsOfTheModel) {
  constexpr int kSteps = 60;
  SCOPED_TRACE("ZEVOCI_TEST_SEED=" + std::to_string(seed()));
  std::mt19937 random(seed());
  Statement stmt = scrolling();
  ASSERT_EQ(stmt.execute(0, OCI_STMT_SCROLLABLE_READONLY), OCI_SUCCESS) << errorText();
  Model model;
  const ub2 orientations[] = {OCI_FETCH_NEXT, OCI_FETCH_CURRENT,  OCI_FETCH_FIRST,
                              OCI_FETCH_LAST, OCI_FETCH_PRIOR,    OCI_FETCH_ABSOLUTE,
                              OCI_FETCH_NEXT, OCI_FETCH_RELATIVE, OCI_FETCH_PRIOR};
  for (int step = 0; step < kSteps && !HasFailure(); ++step) {
    const ub2 orientation = orientations[random() % std::size(orientations)];
    expectFetch(stmt, model, orientation, static_cast<sb4>(random() % 36) - 8);
  }
}

TEST_P(ScrollTest, ArraysAreFetchedFromWhereTheOrientationSays) {
  Statement stmt = scrolling();
  sb4 values[5] = {};
  stmt.define(1, values, sizeof values[0], SQLT_INT);
  ASSERT_EQ(stmt.execute(0, OCI_STMT_SCROLLABLE_READONLY), OCI_SUCCESS);
  ASSERT_EQ(stmt.fetch(5, OCI_FETCH_ABSOLUTE, 7), OCI_SUCCESS);
  EXPECT_EQ(values[0], 7);
  EXPECT_EQ(values[4], 11);
  EXPECT_EQ(stmt.attribute(OCI_ATTR_CURRENT_POSITION), 11u);
  ASSERT_EQ(stmt.fetch(5, OCI_FETCH_NEXT), OCI_SUCCESS);
  EXPECT_EQ(values[0], 12);
  ASSERT_EQ(stmt.fetch(5, OCI_FETCH_ABSOLUTE, 21), OCI_NO_DATA);
  EXPECT_EQ(values[2], 23);
  EXPECT_EQ(stmt.attribute(OCI_ATTR_ROWS_FETCHED), 3u);
  EXPECT_EQ(stmt.fetch(5, OCI_FETCH_LAST), OCI_SUCCESS) << "the last row alone is no end";
  EXPECT_EQ(values[0], 23);
  EXPECT_EQ(stmt.attribute(OCI_ATTR_ROW_COUNT), 23u);
}

INSTANTIATE_TEST_SUITE_P(Plans, ScrollTest,
                         testing::Combine(testing::ValuesIn(kPlans),
                                          testing::ValuesIn(kRoads)),
                         [](const auto &row) {
                           return std::string(std::get<Plan>(row.param).name) +
                                  std::get<Road>(row.param).name;
                         });

class ForwardTest : public OciTest {};

TEST_F(ForwardTest, OrientationsOtherThanNextNeedAScrollableExecute) {
  Statement stmt = statement("SELECT g FROM generate_series(1, 3) g");
  sb4 value = 0;
  stmt.define(1, value);
  ASSERT_EQ(stmt.execute(), OCI_SUCCESS);
  for (const ub2 orientation :
       {OCI_FETCH_CURRENT, OCI_FETCH_FIRST, OCI_FETCH_LAST, OCI_FETCH_PRIOR,
        OCI_FETCH_ABSOLUTE, OCI_FETCH_RELATIVE}) {
    EXPECT_EQ(stmt.fetch(1, orientation, 1), OCI_ERROR) << orientation;
    expectError(24391, "KESTREL-24391: fetch operation is illegal");
  }
  EXPECT_EQ(stmt.fetch(1, OCI_DEFAULT), OCI_SUCCESS);
  EXPECT_EQ(value, 2);
}

TEST_F(ForwardTest, UnknownOrientationsAndModesAreRefused) {
  Statement stmt = statement("SELECT 1");
  sb4 value = 0;
  stmt.define(1, value);
  ASSERT_EQ(stmt.execute(1, OCI_STMT_SCROLLABLE_READONLY), OCI_SUCCESS);
  for (const ub2 orientation : {3, 6, 128, 256, 0x22}) {
    EXPECT_EQ(stmt.fetch(1, orientation), OCI_ERROR) << orientation;
    expectError(24391);
  }
  // The elder call knows neither absolute nor relative positions.
  for (const ub2 orientation : {OCI_FETCH_ABSOLUTE, OCI_FETCH_RELATIVE}) {
    EXPECT_EQ(OCIStmtFetch(stmt.handle(), errhp(), 1, orientation, OCI_DEFAULT),
              OCI_ERROR);
    expectError(24391);
  }
  EXPECT_EQ(OCIStmtFetch2(stmt.handle(), errhp(), 1, OCI_FETCH_NEXT, 0, 1), OCI_ERROR);
  expectError(24300);
  EXPECT_EQ(OCIStmtFetch(stmt.handle(), errhp(), 1, OCI_FETCH_NEXT, 1), OCI_ERROR);
  expectError(24300);
}

TEST_F(ForwardTest, ModeEightWithAnotherBitDoesNotScroll) {
  Statement stmt = statement("SELECT g FROM generate_series(1, 3) g");
  sb4 value = 0;
  stmt.define(1, value);
  stmt.setAttribute(ZEVOCI_ATTR_CURSOR_STRATEGY, 1);
  const WireLog log = wireOf([&] { EXPECT_EQ(stmt.execute(1, 40), OCI_SUCCESS); });
  ASSERT_GE(log.sql.size(), 2u);
  EXPECT_NE(log.sql[1].find(" NO SCROLL CURSOR WITH HOLD"), std::string::npos)
      << log.sql[1];
  EXPECT_EQ(stmt.fetch(1, OCI_FETCH_FIRST), OCI_ERROR);
  expectError(24391);
}

}  // namespace
}  // namespace zev::test
