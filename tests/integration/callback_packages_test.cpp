/// Packages of user callbacks, found by the loader's search path and by directory.
#include <gtest/gtest.h>
#include <oci.h>

#include <cstdlib>
#include <string>

namespace {

constexpr const char *kPackages = "ORA_OCI_UCBPKG";
constexpr const char *kNoLimit = "ZEV_OCI_NOUCBPKGLIMIT";
constexpr const char *kReports = "ZEVOCI_TEST_PACKAGES";

class CallbackPackages : public testing::Test {
 protected:
  CallbackPackages() { clear(); }
  ~CallbackPackages() override { clear(); }

  static void clear() {
    for (const char *name : {kPackages, kNoLimit, kReports, "OCI_DEBUG_LOG",
                             "OCI_DEBUG_LEVEL", "OCI_DEBUG_MASK"}) {
      unsetenv(name);
    }
  }

  /// What the packages of a new environment report, and of a statement allocated there.
  static std::string load(const std::string &packages, ub4 mode = OCI_DEFAULT) {
    setenv(kPackages, packages.c_str(), 1);
    return reports(mode);
  }

  static std::string reports(ub4 mode = OCI_DEFAULT) {
    unsetenv(kReports);
    OCIEnv *env = nullptr;
    EXPECT_EQ(OCIEnvCreate(&env, mode, nullptr, nullptr, nullptr, nullptr, 0, nullptr),
              OCI_SUCCESS);
    void *statement = nullptr;
    EXPECT_EQ(OCIHandleAlloc(env, &statement, OCI_HTYPE_STMT, 0, nullptr), OCI_SUCCESS);
    EXPECT_EQ(OCIHandleFree(env, OCI_HTYPE_ENV), OCI_SUCCESS);
    const char *all = std::getenv(kReports);
    return all ? all : "";
  }
};

TEST_F(CallbackPackages, WithoutTheVariableNothingIsLoaded) {
  EXPECT_EQ(reports(), "");
}

TEST_F(CallbackPackages, StartAndRegisterInTheOrderOfTheirNames) {
  EXPECT_EQ(load("zevoci_package_2;zevoci_package_1"),
            "zevoci_package_2 zevoci_package_1 !zevoci_package_2 !zevoci_package_1 ");
}

TEST_F(CallbackPackages, StartAnewWithEachEnvironment) {
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(load("zevoci_package_1"), "zevoci_package_1 !zevoci_package_1 ");
  }
}

TEST_F(CallbackPackages, AreLoadedWhateverTheModeSays) {
  EXPECT_EQ(load("zevoci_package_1", OCI_NO_UCB), "zevoci_package_1 !zevoci_package_1 ");
  EXPECT_EQ(load("zevoci_package_1", OCI_UTF16), "zevoci_package_1 !zevoci_package_1 ");
}

TEST_F(CallbackPackages, EmptyNamesArePassedOver) {
  EXPECT_EQ(load(";;zevoci_package_1;"), "zevoci_package_1 !zevoci_package_1 ");
  EXPECT_EQ(load(""), "");
}

std::string sixPackages() {
  std::string all;
  for (const char number : {'1', '2', '3', '4', '5', '6'}) {
    all += std::string("zevoci_package_") + number + ';';
  }
  return all;
}

TEST_F(CallbackPackages, TheSixthIsNotLoaded) {
  const std::string reports = load(sixPackages());
  EXPECT_NE(reports.find("zevoci_package_5 "), std::string::npos);
  EXPECT_EQ(reports.find("zevoci_package_6"), std::string::npos);
}

TEST_F(CallbackPackages, WithoutTheLimitTheSixthIsLoaded) {
  setenv(kNoLimit, "", 1);
  EXPECT_NE(load(sixPackages()).find("!zevoci_package_6 "), std::string::npos);
}

TEST_F(CallbackPackages, OneThatCannotBeOpenedIsTracedAndCounted) {
  setenv("OCI_DEBUG_LOG", "-", 1);
  testing::internal::CaptureStderr();
  const std::string reports = load("zevoci_absent;" + sixPackages());
  const std::string log = testing::internal::GetCapturedStderr();
  EXPECT_NE(reports.find("zevoci_package_4 "), std::string::npos);
  EXPECT_EQ(reports.find("zevoci_package_5"), std::string::npos);
  EXPECT_NE(
      log.find("TRACE0-o2pTrace[trace.cpp:916]: Could not load user callback package "),
      std::string::npos)
      << log;
}

TEST_F(CallbackPackages, EachIsToldByNarrative) {
  setenv("OCI_DEBUG_LOG", "-", 1);
  setenv("OCI_DEBUG_LEVEL", "3", 1);
  testing::internal::CaptureStderr();
  load("zevoci_package_1");
  const std::string log = testing::internal::GetCapturedStderr();
  EXPECT_EQ(log.find("TRACE3-o2pTrace[trace.cpp:916]: Loading Callback Module: "), 0u)
      << log;
  EXPECT_NE(log.find("]: Registering User Callback\n"), std::string::npos) << log;
}

TEST_F(CallbackPackages, MayBeNamedWithTheirDirectory) {
  EXPECT_EQ(load(ZEVOCI_TEST_PACKAGE_DIR "/zevoci_package_3"),
            "zevoci_package_3 !zevoci_package_3 ");
}

using CallbackPackagesDeathTest = CallbackPackages;

TEST_F(CallbackPackagesDeathTest, OneWithoutItsEntryEndsTheProcess) {
  EXPECT_EXIT(load("zevoci_package_without_init"), testing::ExitedWithCode(1),
              "undefined symbol: zevoci_package_without_initInit");
  EXPECT_EXIT(load(ZEVOCI_TEST_PACKAGE_DIR "/zevoci_package_without_init"),
              testing::ExitedWithCode(1), "zevoci_package_without_initInit");
}

}  // namespace
