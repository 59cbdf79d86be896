/// Connect strings that are looked up in tnsnames.ora files, by many threads at once.
#include <gtest/gtest.h>
#include <oci.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

namespace zev::test {
namespace {

constexpr int kThreads = 8;
constexpr int kAttempts = 50;

/// A file of many entries, so that the threads meet in its midst.
std::string manyEntries() {
  std::string text;
  for (int i = 0; i < 100; ++i) {
    text += "n" + std::to_string(i) +
            " = (DESCRIPTION = (ADDRESS = (PROTOCOL = TCP)(HOST = h)(PORT = 1521))\n"
            "  (CONNECT_DATA = (SERVER = DEDICATED)(SERVICE_NAME = s)(SID = t)))\n";
  }
  return text;
}

/// The directory that TNS_ADMIN names and HOME does not, for one test.
class ThreadsTnsnames : public testing::Test {
 protected:
  ThreadsTnsnames()
      : directory_(std::filesystem::path(testing::TempDir()) /
                   ("zevoci-tns-threads-" + std::to_string(getpid()))) {
    std::filesystem::create_directories(directory_);
    setenv("HOME", "/nonexistent", 1);
    setenv("TNS_ADMIN", directory_.c_str(), 1);
  }
  ~ThreadsTnsnames() override { std::filesystem::remove_all(directory_); }

  void write(const std::string &text) {
    std::ofstream(directory_ / "tnsnames.ora", std::ios::trunc) << text;
  }

  /// Attaches from many threads at once; how many attempts ended with `code`, or without
  /// a record for 0.
  static int attempts(sb4 code) {
    std::atomic<int> count{0};
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (int i = 0; i < kThreads; ++i) {
      threads.emplace_back([&count, code] { count += attachOften(code); });
    }
    for (std::thread &thread : threads) thread.join();
    return count;
  }

 private:
  static int attachOften(sb4 code) {
    OCIEnv *env = nullptr;
    if (OCIEnvCreate(&env, OCI_THREADED, nullptr, nullptr, nullptr, nullptr, 0,
                     nullptr)) {
      return -1;
    }
    void *err = nullptr, *server = nullptr;
    OCIHandleAlloc(env, &err, OCI_HTYPE_ERROR, 0, nullptr);
    OCIHandleAlloc(env, &server, OCI_HTYPE_SERVER, 0, nullptr);
    int count = 0;
    for (int i = 0; i < kAttempts; ++i) {
      count += attachOnce(static_cast<OCIServer *>(server), static_cast<OCIError *>(err),
                          code);
    }
    OCIHandleFree(env, OCI_HTYPE_ENV);
    return count;
  }

  static bool attachOnce(OCIServer *server, OCIError *errhp, sb4 code) {
    const std::string name = "a/b:c";
    const sword status =
        OCIServerAttach(server, errhp, reinterpret_cast<const OraText *>(name.data()),
                        static_cast<sb4>(name.size()), OCI_DEFAULT);
    if (status == OCI_SUCCESS) {
      return code == 0 && OCIServerDetach(server, errhp, OCI_DEFAULT) == OCI_SUCCESS;
    }
    sb4 recorded = 0;
    OraText buffer[256];
    OCIErrorGet(errhp, 1, nullptr, &recorded, buffer, sizeof buffer, OCI_HTYPE_ERROR);
    return recorded == code;
  }

  std::filesystem::path directory_;
};

TEST_F(ThreadsTnsnames, AFileIsReadSideBySide) {
  write(manyEntries());
  EXPECT_EQ(attempts(0), kThreads * kAttempts);
}

TEST_F(ThreadsTnsnames, ABrokenFileIsRefusedSideBySide) {
  write(manyEntries() + "broken");
  testing::internal::CaptureStderr();
  const int refused = attempts(12227);
  const std::string err = testing::internal::GetCapturedStderr();
  EXPECT_EQ(refused, kThreads * kAttempts);
  EXPECT_NE(err.find("201:syntax error, unexpected end of file, expecting '='\n"),
            err.npos);
}

}  // namespace
}  // namespace zev::test
