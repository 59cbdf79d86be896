/// Descriptors that are made and freed many at a time.
#include "core_fixture.h"

namespace zev::test {
namespace {

class DescriptorArray : public testing::Test {
 protected:
  sword alloc(ub4 type, ub4 size, size_t extra = 0, void **memory = nullptr) {
    return OCIArrayDescriptorAlloc(env_.get(), made_, type, size, extra, memory);
  }
  ub4 children() const { return list_length(env_.get()->children); }

  Environment env_;
  void *made_[4] = {};
};

TEST_F(DescriptorArray, EachElementIsADescriptorOfTheType) {
  const ub4 before = children();
  ASSERT_EQ(alloc(OCI_DTYPE_TIMESTAMP, 3), OCI_SUCCESS);
  EXPECT_EQ(children(), before + 3);
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(static_cast<OCIHandle *>(made_[i])->handleType, HANDLE_OCIDateTime);
  }
  EXPECT_EQ(made_[3], nullptr);
  EXPECT_EQ(OCIArrayDescriptorFree(made_, OCI_DTYPE_TIMESTAMP), OCI_SUCCESS);
  EXPECT_EQ(children(), before);
  for (const void *descriptor : made_) EXPECT_EQ(descriptor, nullptr);
}

TEST_F(DescriptorArray, TwoArraysAreFreedEachWithItsOwnSize) {
  void *other[2] = {};
  ASSERT_EQ(alloc(OCI_DTYPE_INTERVAL_DS, 4), OCI_SUCCESS);
  ASSERT_EQ(
      OCIArrayDescriptorAlloc(env_.get(), other, OCI_DTYPE_INTERVAL_DS, 2, 0, nullptr),
      OCI_SUCCESS);
  const ub4 all = children();
  EXPECT_EQ(OCIArrayDescriptorFree(other, OCI_DTYPE_INTERVAL_DS), OCI_SUCCESS);
  EXPECT_EQ(children(), all - 2);
  EXPECT_EQ(OCIArrayDescriptorFree(made_, OCI_DTYPE_INTERVAL_DS), OCI_SUCCESS);
  EXPECT_EQ(children(), all - 6);
}

TEST_F(DescriptorArray, AnArrayThatIsNotFreedGoesWithItsEnvironment) {
  EXPECT_EQ(alloc(OCI_DTYPE_DATE, 4), OCI_SUCCESS);
}

TEST_F(DescriptorArray, AWrongTypeFreesNothing) {
  ASSERT_EQ(alloc(OCI_DTYPE_TIMESTAMP, 2), OCI_SUCCESS);
  const ub4 all = children();
  EXPECT_EQ(OCIArrayDescriptorFree(made_, OCI_DTYPE_PARAM), OCI_INVALID_HANDLE);
  EXPECT_EQ(children(), all);
  EXPECT_NE(made_[0], nullptr);
}

TEST_F(DescriptorArray, OnlyAnArrayIsFreedAsOne) {
  void *single = nullptr;
  ASSERT_EQ(OCIDescriptorAlloc(env_.get(), &single, OCI_DTYPE_DATE, 0, nullptr),
            OCI_SUCCESS);
  EXPECT_EQ(OCIArrayDescriptorFree(&single, OCI_DTYPE_DATE), OCI_INVALID_HANDLE);
  EXPECT_EQ(OCIArrayDescriptorFree(nullptr, OCI_DTYPE_DATE), OCI_INVALID_HANDLE);
  void *none = nullptr;
  EXPECT_EQ(OCIArrayDescriptorFree(&none, OCI_DTYPE_DATE), OCI_INVALID_HANDLE);
  ASSERT_EQ(alloc(OCI_DTYPE_DATE, 2), OCI_SUCCESS);
  EXPECT_EQ(OCIArrayDescriptorFree(made_, OCI_DTYPE_DATE), OCI_SUCCESS);
  EXPECT_EQ(OCIArrayDescriptorFree(made_, OCI_DTYPE_DATE), OCI_INVALID_HANDLE);
}

TEST_F(DescriptorArray, RefusesWhatTheSingleCallRefuses) {
  EXPECT_EQ(alloc(OCI_DTYPE_TIME, 2), OCI_INVALID_HANDLE);
  EXPECT_EQ(alloc(OCI_DTYPE_RSET, 2), OCI_INVALID_HANDLE);
  EXPECT_EQ(OCIArrayDescriptorAlloc(env_.errhp(), made_, OCI_DTYPE_DATE, 2, 0, nullptr),
            OCI_INVALID_HANDLE);
  EXPECT_EQ(OCIArrayDescriptorAlloc(env_.get(), nullptr, OCI_DTYPE_DATE, 2, 0, nullptr),
            OCI_INVALID_HANDLE);
  EXPECT_EQ(alloc(OCI_DTYPE_DATE, 2, 8), OCI_ERROR);
  EXPECT_EQ(codesOf(env_.get()->errh), Codes{16530});
  EXPECT_EQ(alloc(OCI_DTYPE_DATE, 0), OCI_ERROR);
  EXPECT_EQ(codesOf(env_.get()->errh).back(), 1084);
}

TEST_F(DescriptorArray, TheProgramsBlockBelongsToTheFirst) {
  void *memory = nullptr;
  ASSERT_EQ(alloc(OCI_DTYPE_DATE, 3, 16, &memory), OCI_SUCCESS);
  EXPECT_EQ(memory, static_cast<OCIHandle *>(made_[0])->userMem);
  EXPECT_EQ(static_cast<OCIHandle *>(made_[1])->userMem, nullptr);
  EXPECT_EQ(OCIArrayDescriptorFree(made_, OCI_DTYPE_DATE), OCI_SUCCESS);
}

}  // namespace
}  // namespace zev::test
