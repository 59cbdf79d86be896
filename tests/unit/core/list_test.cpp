#include <algorithm>
#include <random>

#include "core/memory_cache.h"
#include "core_fixture.h"

namespace zev::test {
namespace {

int values[8];

std::vector<void *> elementsOf(const List *list) {
  std::vector<void *> found;
  for (void *element : Elements<void>(list)) found.push_back(element);
  return found;
}

class ListTest : public testing::Test {
 protected:
  ~ListTest() override { list_free(list); }
  void append(int n) {
    for (int i = 0; i < n; ++i) list = lappend(list, &values[i]);
  }
  List *list = nullptr;
};

TEST_F(ListTest, ANewListHasOneCellWithoutData) {
  list = new_list();
  EXPECT_EQ(list_length(list), 1u);
  EXPECT_EQ(list_head(list)->data, nullptr);
  EXPECT_EQ(list_head(list), list_tail(list));
}

TEST_F(ListTest, AppendingToNullMakesAListAndOtherwiseReturnsTheSame) {
  list = lappend(nullptr, &values[0]);
  EXPECT_EQ(lappend(list, &values[1]), list);
  EXPECT_EQ(elementsOf(list), (std::vector<void *>{&values[0], &values[1]}));
}

TEST_F(ListTest, ACellIsInsertedBehindAnother) {
  append(2);
  ListCell *tail = list_tail(list);
  EXPECT_EQ(lappend_cell(list, list_head(list), &values[5])->data, &values[5]);
  EXPECT_EQ(list_tail(list), tail);
  ListCell *last = lappend_cell(list, tail, &values[6]);
  EXPECT_EQ(list_tail(list), last);
  EXPECT_EQ(elementsOf(list),
            (std::vector<void *>{&values[0], &values[5], &values[1], &values[6]}));
  EXPECT_EQ(lappend_cell(nullptr, tail, &values[0]), nullptr);
  EXPECT_EQ(lappend_cell(list, nullptr, &values[0]), nullptr);
}

TEST_F(ListTest, AnElementIsPutInFront) {
  list = lcons(&values[0], nullptr);
  EXPECT_EQ(lcons(&values[1], list), list);
  EXPECT_EQ(elementsOf(list), (std::vector<void *>{&values[1], &values[0]}));
}

TEST_F(ListTest, TheNthElementCountsFromZeroAndTheLengthGivesNull) {
  append(3);
  for (ub4 i = 0; i < 3; ++i) EXPECT_EQ(list_nth(list, i), &values[i]);
  EXPECT_EQ(list_nth(list, 3), nullptr);
  EXPECT_EQ(list_nth(nullptr, 0), nullptr);
}

TEST_F(ListTest, ACopyHasTheSameElementsInCellsOfItsOwn) {
  append(3);
  List *copy = list_copy(list);
  EXPECT_NE(copy, list);
  EXPECT_EQ(elementsOf(copy), elementsOf(list));
  list_free(copy);
  EXPECT_EQ(list_copy(nullptr), nullptr);
}

TEST_F(ListTest, NullIsAnEmptyList) {
  EXPECT_EQ(list_head(nullptr), nullptr);
  EXPECT_EQ(list_tail(nullptr), nullptr);
  EXPECT_EQ(list_length(nullptr), 0u);
  EXPECT_EQ(list_member(nullptr, &values[0]), 0);
  EXPECT_EQ(is_member_of_list(nullptr, "x"), 0);
  EXPECT_EQ(list_delete(nullptr, &values[0]), nullptr);
  list_free(nullptr);
  free_list_members(nullptr);
}

TEST_F(ListTest, MembershipGoesByPointer) {
  append(2);
  EXPECT_EQ(list_member(list, &values[1]), 1);
  EXPECT_EQ(list_member(list, &values[2]), 0);
}

TEST_F(ListTest, ATextIsFoundByItsLengthWithoutRegardToCase) {
  char words[3][8] = {":AMOUNT", ":b", ":BEE"};
  for (char *word : words) list = lappend(list, word);
  EXPECT_EQ(is_member_of_list(list, ":am"), 1);
  EXPECT_EQ(is_member_of_list(list, ":B"), 2);
  EXPECT_EQ(is_member_of_list(list, ":be"), 3);
  EXPECT_EQ(is_member_of_list(list, ":beetle"), 0);
  EXPECT_EQ(is_member_of_list(list, ":c"), 0);
}

TEST_F(ListTest, DeletingTheOnlyElementFreesTheList) {
  append(1);
  list = list_delete(list, &values[0]);
  EXPECT_EQ(list, nullptr);
}

TEST_F(ListTest, DeletingAMissingElementChangesNothing) {
  append(2);
  EXPECT_EQ(list_delete(list, &values[7]), list);
  EXPECT_EQ(list_length(list), 2u);
}

TEST_F(ListTest, TheFirstOfTwoEqualElementsIsDeleted) {
  append(2);
  list = lappend(list, &values[0]);
  list = list_delete(list, &values[0]);
  EXPECT_EQ(elementsOf(list), (std::vector<void *>{&values[1], &values[0]}));
  list = list_delete(list, &values[0]);
  EXPECT_EQ(list_tail(list)->data, &values[1]);
}

TEST_F(ListTest, FreedMembersLeaveTheirCells) {
  for (int i = 0; i < 3; ++i) list = lappend(list, std::malloc(4));
  free_list_members(list);
  EXPECT_EQ(elementsOf(list), (std::vector<void *>{nullptr, nullptr, nullptr}));
}

TEST_F(ListTest, ElementsArePrintedCountedFromZero) {
  char word[] = "x", other[] = "yz";
  list = lappend(lappend(nullptr, word), other);
  testing::internal::CaptureStdout();
  print_list(list);
  std::fflush(stdout);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "\n[Param # 0][x]\n\n[Param # 1][yz]\n");
  char wanted[96];
  std::snprintf(wanted, sizeof wanted, "\n[Param # 0][%p]\n\n[Param # 1][%p]\n",
                static_cast<void *>(word), static_cast<void *>(other));
  testing::internal::CaptureStdout();
  print_list_ptrs(list);
  std::fflush(stdout);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), wanted);
}

TEST_F(ListTest, RandomWorkAgreesWithAVector) {
  std::mt19937 random(20261120);
  std::vector<void *> model;
  for (int step = 0; step < 20000; ++step) {
    void *element = &values[random() % 8];
    switch (random() % 5) {
      case 0:
      case 1:
        list = lappend(list, element);
        model.push_back(element);
        break;
      case 2:
        list = lcons(element, list);
        model.insert(model.begin(), element);
        break;
      default:
        list = list_delete(list, element);
        if (auto at = std::find(model.begin(), model.end(), element); at != model.end()) {
          model.erase(at);
        }
    }
    ASSERT_EQ(list_length(list), model.size());
    ASSERT_EQ(elementsOf(list), model);
    ASSERT_EQ(list_tail(list) ? list_tail(list)->data : nullptr,
              model.empty() ? nullptr : model.back());
  }
}

TEST(MemoryCache, EmptyRequestsAndWrongOwnersGetNothing) {
  Environment env;
  auto *stmt = env.alloc<OCIStmt>(OCI_HTYPE_STMT);
  EXPECT_EQ(AllocateMemFromEnvCache(env.get(), 0), nullptr);
  EXPECT_EQ(AllocateMemFromStmtCache(stmt, 0), nullptr);
  EXPECT_EQ(AllocateMemFromEnvCache(nullptr, 8), nullptr);
  EXPECT_EQ(AllocateMemFromStmtCache(nullptr, 8), nullptr);
  EXPECT_EQ(AllocateMemFromEnvCache(reinterpret_cast<OCIEnv *>(stmt), 8), nullptr);
  EXPECT_EQ(AllocateMemFromStmtCache(reinterpret_cast<OCIStmt *>(env.get()), 8), nullptr);
}

TEST(MemoryCache, BlocksLiveAsLongAsTheirOwner) {
  Environment env;
  auto *stmt = env.alloc<OCIStmt>(OCI_HTYPE_STMT);
  for (int i = 0; i < 3; ++i) {
    ASSERT_NE(AllocateMemFromEnvCache(env.get(), 100), nullptr);
    ASSERT_NE(AllocateMemFromStmtCache(stmt, 100), nullptr);
  }
  EXPECT_EQ(list_length(env.get()->memCache), 3u);
  FreeMemFromEnvCache(env.get());
  EXPECT_EQ(env.get()->memCache, nullptr);
  FreeMemFromStmtCache(stmt);
  EXPECT_EQ(stmt->memCache, nullptr);
  ASSERT_NE(AllocateMemFromEnvCache(env.get(), 100), nullptr);
  ASSERT_NE(AllocateMemFromStmtCache(stmt, 100), nullptr);
}

}  // namespace
}  // namespace zev::test
