#include "core_fixture.h"
#include "zevoci/encodings.h"

namespace zev::test {
namespace {

sword create(OCIEnv **env, ub4 mode, size_t extra = 0, void **userMemory = nullptr) {
  return OCIEnvCreate(env, mode, nullptr, nullptr, nullptr, nullptr, extra, userMemory);
}

sword createNls(OCIEnv **env, ub4 mode, ub2 charset) {
  return OCIEnvNlsCreate(env, mode, nullptr, nullptr, nullptr, nullptr, 0, nullptr,
                         charset, 0);
}

struct ModeCase {
  ub4 mode;
  bool accepted;
  ub4 kept;
};

TEST(EnvCreate, ModesAreAcceptedAndKeptByTheirBits) {
  const ModeCase rows[] = {
      {0, true, 0},
      {1, true, 1},
      {2, true, 2},
      {4, true, 4},
      {8, true, 8},
      {64, true, 64},
      {0x20000, true, 0x20000},
      {0x4000, true, 0x4000},
      {0x80, false, 0},
      {0x10, false, 0},
      {0x20, false, 0},
      {0x100, false, 0},
      {0x2000, false, 0},
      {0x81, true, 1},
      {0x4f, true, 0x4f},
      {0x4001, true, 0x4001},
      {0x2004f, true, 0x2004f},
      {0x80000000, false, 0},
  };
  for (const ModeCase &row : rows) {
    OCIEnv *env = reinterpret_cast<OCIEnv *>(1);
    ASSERT_EQ(create(&env, row.mode), row.accepted ? OCI_SUCCESS : OCI_ERROR) << row.mode;
    if (!row.accepted) {
      EXPECT_EQ(env, nullptr) << row.mode;
      continue;
    }
    EXPECT_EQ(env->mode, row.kept) << row.mode;
    EXPECT_EQ(env->handleType, HANDLE_OCIEnv);
    EXPECT_EQ(env->parenth, nullptr);
    EXPECT_EQ(env->errh->handleType, HANDLE_OCIError);
    EXPECT_EQ(env->errh->parenth, nullptr);
    EXPECT_EQ(env->utf16, row.mode & 0x4000 ? 1 : 0);
    EXPECT_EQ(OCIHandleFree(env, OCI_HTYPE_ENV), OCI_SUCCESS);
  }
}

TEST(EnvCreate, ANullOutputIsAnError) {
  EXPECT_EQ(create(nullptr, OCI_DEFAULT), OCI_ERROR);
  EXPECT_EQ(createNls(nullptr, OCI_DEFAULT, 6), OCI_ERROR);
  EXPECT_EQ(OCIEnvInit(nullptr, OCI_DEFAULT, 0, nullptr), OCI_ERROR);
}

TEST(EnvCreate, UserMemoryIsZeroedAndBelongsToTheEnvironment) {
  OCIEnv *env = nullptr;
  void *memory = nullptr;
  ASSERT_EQ(create(&env, OCI_DEFAULT, 24, &memory), OCI_SUCCESS);
  EXPECT_EQ(memory, env->userMem);
  EXPECT_EQ(env->userMemSize, 24u);
  EXPECT_EQ(std::string(static_cast<char *>(memory), 24), std::string(24, '\0'));
  OCIHandleFree(env, OCI_HTYPE_ENV);
}

TEST(EnvCreate, UserMemoryWithoutAPlaceForItIsAnError) {
  OCIEnv *env = nullptr;
  EXPECT_EQ(create(&env, OCI_DEFAULT, 24, nullptr), OCI_ERROR);
  EXPECT_EQ(env, nullptr);
}

TEST(EnvInit, OnlyTheThreadedAndMutexBitsAreKept) {
  for (const ub4 mode : {0u, 1u, 128u, 129u, 2u, 4u, 64u, 8u, 0x20000u, 0xffffbfffu}) {
    OCIEnv *env = nullptr;
    ASSERT_EQ(OCIEnvInit(&env, mode, 0, nullptr), OCI_SUCCESS);
    EXPECT_EQ(env->mode, mode & 129u);
    OCIHandleFree(env, OCI_HTYPE_ENV);
  }
}

TEST(EnvCreate, Utf16OpensBothConversions) {
  const Environment env(OCI_UTF16);
  EXPECT_EQ(env.get()->utf16, 1);
  EXPECT_STREQ(pg_encoding_to_char(env.get()->encoding), "UTF-16LE");
  char wide[] = {'h', 0, 'i', 0};
  void *out = nullptr;
  std::size_t length = 0;
  int error = 0;
  EXPECT_EQ(transcode(env.get()->toUtf8, &error, wide, 4, &out, &length), 2u);
  EXPECT_STREQ(static_cast<char *>(out), "hi");
  std::free(out);
  EXPECT_EQ(transcode(env.get()->fromUtf8, &error, "hi", 2, &out, &length), 4u);
  EXPECT_EQ(std::string(static_cast<char *>(out), 4), std::string(wide, 4));
  std::free(out);
}

TEST(EnvCreate, EmptyTextIsNullUnlessAVariableSaysOtherwise) {
  {
    const Variable unset("OCI_PG_VARCHARS", nullptr);
    EXPECT_EQ(Environment().get()->oracleVarchars, 1);
  }
  for (const char *value : {"", "0", "no", "1"}) {
    const Variable set("OCI_PG_VARCHARS", value);
    EXPECT_EQ(Environment().get()->oracleVarchars, 0) << value;
  }
}

TEST(EnvCreate, TheCallbackTablesAreEmpty) {
  const Environment env;
  for (int i = 0; i < kUcbSlots; ++i) {
    EXPECT_EQ(env.get()->entryUcbs[i], nullptr);
    EXPECT_EQ(env.get()->replaceUcbs[i], nullptr);
    EXPECT_EQ(env.get()->exitUcbs[i], nullptr);
  }
}

/// The canonical name "CP866" is no alias, and names that are not known mean UTF8.
constexpr int kCp866 = 20;

TEST(EnvNlsCreate, ACharsetUpTo40IsTheEncodingsNumberAndCp866MeansUtf8) {
  for (ub2 charset = 1; charset <= 40; ++charset) {
    OCIEnv *env = nullptr;
    ASSERT_EQ(createNls(&env, OCI_DEFAULT, charset), OCI_SUCCESS);
    EXPECT_EQ(env->encoding, charset == kCp866 ? 6 : charset);
    OCIHandleFree(env, OCI_HTYPE_ENV);
  }
}

TEST(EnvNlsCreate, ACharsetAbove40IsRefused) {
  for (const ub2 charset : {ub2{41}, ub2{873}, ub2{0xffff}}) {
    OCIEnv *env = reinterpret_cast<OCIEnv *>(1);
    EXPECT_EQ(createNls(&env, OCI_DEFAULT, charset), OCI_ERROR);
    EXPECT_EQ(env, nullptr);
  }
}

TEST(EnvNlsCreate, ARefusedModeComesFirst) {
  OCIEnv *env = reinterpret_cast<OCIEnv *>(1);
  EXPECT_EQ(createNls(&env, 0x80, 6), OCI_ERROR);
  EXPECT_EQ(env, nullptr);
}

TEST(EnvNlsCreate, ACharsetReplacesTheEncodingOfAUtf16EnvironmentAndNotItsConversions) {
  OCIEnv *env = nullptr;
  ASSERT_EQ(createNls(&env, OCI_UTF16, 6), OCI_SUCCESS);
  EXPECT_EQ(env->encoding, 6);
  EXPECT_EQ(env->utf16, 1);
  void *out = nullptr;
  std::size_t length = 0;
  int error = 0;
  EXPECT_EQ(transcode(env->fromUtf8, &error, "x", 1, &out, &length), 2u);
  std::free(out);
  OCIHandleFree(env, OCI_HTYPE_ENV);
}

/// OCIInitialize settles the whole process; each test ends it again.
class Initialize : public testing::Test {
 protected:
  ~Initialize() override { OCITerminate(OCI_DEFAULT); }
  static sword initialize(ub4 mode) {
    return OCIInitialize(mode, nullptr, nullptr, nullptr, nullptr);
  }
};

TEST_F(Initialize, IsOnceUntilTerminated) {
  EXPECT_EQ(OCITerminate(OCI_DEFAULT), OCI_ERROR);
  EXPECT_EQ(initialize(OCI_DEFAULT), OCI_SUCCESS);
  EXPECT_EQ(initialize(OCI_DEFAULT), OCI_ERROR);
  EXPECT_EQ(OCITerminate(1), OCI_ERROR);
  EXPECT_EQ(OCITerminate(OCI_DEFAULT), OCI_SUCCESS);
  EXPECT_EQ(OCITerminate(OCI_DEFAULT), OCI_ERROR);
  EXPECT_EQ(initialize(OCI_THREADED | OCI_OBJECT), OCI_SUCCESS);
}

TEST_F(Initialize, RefusedModesLeaveItOpen) {
  for (const ub4 mode : {4u, 5u, 6u, 7u, 8u, 64u, 0x4000u}) {
    EXPECT_EQ(initialize(mode), OCI_ERROR) << mode;
    EXPECT_EQ(OCITerminate(OCI_DEFAULT), OCI_ERROR) << mode;
  }
}

TEST_F(Initialize, ObjectModeReachesLaterEnvironments) {
  ASSERT_EQ(initialize(OCI_OBJECT), OCI_SUCCESS);
  EXPECT_EQ(Environment().get()->mode, 2u);
  OCITerminate(OCI_DEFAULT);
  EXPECT_EQ(Environment().get()->mode, 0u);
}

TEST_F(Initialize, ARefusedEventsModeStillLeavesTheObjectBit) {
  EXPECT_EQ(initialize(OCI_EVENTS | OCI_OBJECT), OCI_ERROR);
  EXPECT_EQ(Environment().get()->mode, 2u);
  EXPECT_EQ(initialize(OCI_DEFAULT), OCI_SUCCESS);
  EXPECT_EQ(Environment().get()->mode, 0u);
}

}  // namespace
}  // namespace zev::test
