#include "services/file.h"

#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>

#include "tests/unit/core/core_fixture.h"
#include "zevoci/trace.h"

namespace zev::test {
namespace {

/// A folder of a test's own, removed at its end.
class Folder {
 public:
  Folder() {
    std::string pattern = testing::TempDir() + "zevoci_file_XXXXXX";
    path_ = mkdtemp(pattern.data());
  }
  ~Folder() { std::filesystem::remove_all(path_); }
  Folder(const Folder &) = delete;
  Folder &operator=(const Folder &) = delete;

  const std::string &path() const { return path_; }

  void put(const std::string &name, const std::string &content) const {
    std::ofstream(path_ + "/" + name) << content;
  }
  std::string read(const std::string &name) const {
    std::ifstream file(path_ + "/" + name);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  bool has(const std::string &name) const {
    return std::filesystem::exists(path_ + "/" + name);
  }

 private:
  std::string path_;
};

OraText *mutableText(std::string &text) {
  return reinterpret_cast<OraText *>(text.data());
}

class Files : public testing::Test {
 protected:
  Files() { EXPECT_EQ(OCIFileInit(env(), err()), OCI_SUCCESS); }
  ~Files() override { std::free(file_); }

  OCIEnv *env() const { return env_.get(); }
  OCIError *err() const { return env_.errhp(); }

  sword open(std::string name, ub4 mode, ub4 create, ub4 type = OCI_FILE_BIN) {
    return openIn(folder_.path(), std::move(name), mode, create, type);
  }
  sword openIn(std::string path, std::string name, ub4 mode, ub4 create,
               ub4 type = OCI_FILE_BIN) {
    std::free(file_);
    file_ = nullptr;
    return OCIFileOpen(env(), err(), &file_, mutableText(name), mutableText(path), mode,
                       create, type);
  }
  void close() {
    EXPECT_EQ(OCIFileClose(env(), err(), file_), OCI_SUCCESS);
    file_ = nullptr;
  }
  void write(std::string text) {
    ub4 written = 0;
    EXPECT_EQ(OCIFileWrite(env(), err(), file_, text.data(),
                           static_cast<ub4>(text.size()), &written),
              OCI_SUCCESS);
    EXPECT_EQ(written, text.size());
  }
  std::string read(ub4 count) {
    std::string text(count, '\0');
    ub4 got = count + 1;
    EXPECT_EQ(OCIFileRead(env(), err(), file_, text.data(), count, &got), OCI_SUCCESS);
    text.resize(got);
    return text;
  }
  sword seek(uword origin, ubig_ora offset, sb1 dir) {
    return OCIFileSeek(env(), err(), file_, origin, offset, dir);
  }

  void expectError(sword status, sb4 code) {
    EXPECT_EQ(status, OCI_ERROR);
    EXPECT_EQ(codesOf(err()), Codes{code});
  }

  Environment env_;
  Folder folder_;
  OCIFileObject *file_ = nullptr;
};

TEST_F(Files, WhatIsWrittenIsReadAgain) {
  ASSERT_EQ(open("f", OCI_FILE_READ_WRITE, OCI_FILE_CREATE), OCI_SUCCESS);
  write("some bytes");
  EXPECT_EQ(OCIFileFlush(env(), err(), file_), OCI_SUCCESS);
  EXPECT_EQ(seek(OCI_FILE_SEEK_BEGINNING, 0, OCI_FILE_FORWARD), OCI_SUCCESS);
  EXPECT_EQ(read(4), "some");
  EXPECT_EQ(read(100), " bytes");
  EXPECT_EQ(read(100), "");
  close();
  EXPECT_EQ(folder_.read("f"), "some bytes");
}

TEST_F(Files, AMissingFileIs30152) {
  for (const ub4 create : {OCI_FILE_TRUNC, OCI_FILE_APPEND}) {
    expectError(open("f", OCI_FILE_READ_WRITE, create), 30152);
    EXPECT_EQ(firstText(err()), "KESTREL-30152: file not found");
  }
  EXPECT_FALSE(folder_.has("f"));
}

TEST_F(Files, AnExistingFileThatMustBeNewIs30151) {
  ASSERT_EQ(open("f", OCI_FILE_WRITE_ONLY, OCI_FILE_EXCL), OCI_SUCCESS);
  write("kept");
  close();
  expectError(open("f", OCI_FILE_WRITE_ONLY, OCI_FILE_EXCL), 30151);
  EXPECT_EQ(folder_.read("f"), "kept");
}

TEST_F(Files, AFailedOpenLeavesAnObjectOfNoFile) {
  expectError(open("f", OCI_FILE_READ_ONLY, OCI_FILE_TRUNC), 30152);
  ASSERT_NE(file_, nullptr);
  EXPECT_EQ(file_->descriptor, -1);
  char byte;
  ub4 got = 7;
  expectError(OCIFileRead(env(), err(), file_, &byte, 1, &got), 30155);
  EXPECT_EQ(got, 7u);
  expectError(OCIFileClose(env(), err(), file_), 30155);
}

struct Creation {
  ub4 create;
  const char *content;  ///< of an existing "abc" once "X" was written
  bool makes;           ///< whether a missing file is made
};

TEST_F(Files, EachCreationDoesItsWork) {
  const Creation creations[] = {
      {OCI_FILE_CREATE, "Xbc", true},
      {OCI_FILE_TRUNC, "X", false},
      {OCI_FILE_APPEND, "abcX", false},
      {OCI_FILE_CREATE | OCI_FILE_APPEND, "abcX", true},
  };
  for (const Creation &c : creations) {
    SCOPED_TRACE(c.create);
    folder_.put("there", "abc");
    ASSERT_EQ(open("there", OCI_FILE_WRITE_ONLY, c.create), OCI_SUCCESS);
    write("X");
    close();
    EXPECT_EQ(folder_.read("there"), c.content);
    const std::string missing = "missing" + std::to_string(c.create);
    EXPECT_EQ(open(missing, OCI_FILE_WRITE_ONLY, c.create),
              c.makes ? OCI_SUCCESS : OCI_ERROR);
    EXPECT_EQ(folder_.has(missing), c.makes);
    if (c.makes) close();
  }
}

TEST_F(Files, OtherModesCreationsAndTypesAre30150) {
  folder_.put("f", "abc");
  for (const ub4 mode : {0u, 4u, 5u, 0xffffffffu}) {
    expectError(open("f", mode, OCI_FILE_CREATE), 30150);
  }
  for (ub4 create = 0; create < 32; ++create) {
    const bool known =
        create == 1 || create == 2 || create == 4 || create == 8 || create == 9;
    if (!known) expectError(open("f", OCI_FILE_READ_ONLY, create), 30150);
  }
  for (const ub4 type : {5u, 6u, 0xffffffffu}) {
    expectError(open("f", OCI_FILE_READ_ONLY, OCI_FILE_CREATE, type), 30150);
  }
  EXPECT_EQ(file_, nullptr);
  EXPECT_EQ(firstText(err()), "KESTREL-30150: invalid argument in OCIFile function");
}

TEST_F(Files, ModesAllowWhatTheySay) {
  folder_.put("f", "abc");
  char byte = 'X';
  ub4 count = 0;
  ASSERT_EQ(open("f", OCI_FILE_READ_ONLY, OCI_FILE_CREATE, OCI_FILE_TEXT), OCI_SUCCESS);
  expectError(OCIFileWrite(env(), err(), file_, &byte, 1, &count), 30155);
  EXPECT_EQ(read(1), "a");
  close();
  ASSERT_EQ(open("f", OCI_FILE_WRITE_ONLY, OCI_FILE_CREATE, OCI_FILE_TEXT), OCI_SUCCESS);
  expectError(OCIFileRead(env(), err(), file_, &byte, 1, &count), 30155);
  write("X");
  close();
  EXPECT_EQ(folder_.read("f"), "Xbc");
}

TEST_F(Files, ANewFileHasThePermissionsThatTheMaskLeaves) {
  const mode_t former = umask(027);
  EXPECT_EQ(open("f", OCI_FILE_WRITE_ONLY, OCI_FILE_CREATE), OCI_SUCCESS);
  umask(former);
  close();
  struct stat facts = {};
  ASSERT_EQ(stat((folder_.path() + "/f").c_str(), &facts), 0);
  EXPECT_EQ(facts.st_mode & 0777, 0640u);
}

TEST_F(Files, StandardStreamsTakeAnObjectThatIsThereAndNoInitialisation) {
  EXPECT_EQ(OCIFileTerm(env(), err()), OCI_SUCCESS);
  OCIFileObject object = {77};
  OCIFileObject *file = &object;
  for (const ub4 type : {OCI_FILE_STDIN, OCI_FILE_STDOUT, OCI_FILE_STDERR}) {
    EXPECT_EQ(OCIFileOpen(env(), err(), &file, nullptr, nullptr, 0, 0, type),
              OCI_SUCCESS);
    EXPECT_EQ(file, &object);
    EXPECT_EQ(object.descriptor, static_cast<sb4>(type) - 2);
  }
  file = nullptr;
  expectError(OCIFileOpen(env(), err(), &file, nullptr, nullptr, 0, 0, OCI_FILE_STDIN),
              30150);
}

struct Move {
  uword origin;
  ubig_ora offset;
  sb1 dir;
  const char *rest;  ///< of "0123456789" from the new place
};

TEST_F(Files, SeekingGoesInBothDirectionsFromEachOrigin) {
  folder_.put("f", "0123456789");
  ASSERT_EQ(open("f", OCI_FILE_READ_ONLY, OCI_FILE_CREATE), OCI_SUCCESS);
  const Move moves[] = {
      {OCI_FILE_SEEK_BEGINNING, 3, OCI_FILE_FORWARD, "3456789"},
      {OCI_FILE_SEEK_BEGINNING, 0, OCI_FILE_BACKWARD, "0123456789"},
      {OCI_FILE_SEEK_CURRENT, 2, OCI_FILE_FORWARD, "6789"},
      {OCI_FILE_SEEK_CURRENT, 1, OCI_FILE_BACKWARD, "3456789"},
      {OCI_FILE_SEEK_END, 5, OCI_FILE_BACKWARD, "56789"},
      {OCI_FILE_SEEK_END, 0, OCI_FILE_FORWARD, ""},
      {OCI_FILE_SEEK_END, 4, OCI_FILE_FORWARD, ""},
  };
  for (const Move &m : moves) {
    SCOPED_TRACE(testing::Message() << m.origin << " " << m.offset << " " << int{m.dir});
    ASSERT_EQ(lseek(file_->descriptor, 4, SEEK_SET), 4);
    EXPECT_EQ(seek(m.origin, m.offset, m.dir), OCI_SUCCESS);
    EXPECT_EQ(read(100), m.rest);
  }
  close();
}

TEST_F(Files, SeekingFromElsewhereOrAskewIs30150) {
  folder_.put("f", "abc");
  ASSERT_EQ(open("f", OCI_FILE_READ_ONLY, OCI_FILE_CREATE), OCI_SUCCESS);
  for (const uword origin : {0u, 4u, 99u}) {
    expectError(seek(origin, 0, OCI_FILE_FORWARD), 30150);
  }
  for (const sb1 dir : {-1, 0, 3}) {
    expectError(seek(OCI_FILE_SEEK_BEGINNING, 0, static_cast<sb1>(dir)), 30150);
  }
  close();
}

TEST_F(Files, AFailedSeekShowsOnlyWithAnOffsetOf0) {
  folder_.put("f", "abc");
  ASSERT_EQ(open("f", OCI_FILE_READ_ONLY, OCI_FILE_CREATE), OCI_SUCCESS);
  EXPECT_EQ(seek(OCI_FILE_SEEK_BEGINNING, 2, OCI_FILE_BACKWARD), OCI_SUCCESS);
  EXPECT_EQ(seek(OCI_FILE_SEEK_BEGINNING, ~ubig_ora{0}, OCI_FILE_FORWARD), OCI_SUCCESS);
  EXPECT_EQ(read(100), "abc");
  close();
  OCIFileObject none = {-1};
  expectError(
      OCIFileSeek(env(), err(), &none, OCI_FILE_SEEK_BEGINNING, 0, OCI_FILE_FORWARD),
      30155);
  EXPECT_EQ(
      OCIFileSeek(env(), err(), &none, OCI_FILE_SEEK_BEGINNING, 1, OCI_FILE_FORWARD),
      OCI_SUCCESS);
}

TEST_F(Files, OffsetsGoBeyondThirtyTwoBits) {
  constexpr ubig_ora kFar = ubig_ora{5} << 30;
  ASSERT_EQ(open("f", OCI_FILE_READ_WRITE, OCI_FILE_CREATE), OCI_SUCCESS);
  ASSERT_EQ(seek(OCI_FILE_SEEK_BEGINNING, kFar, OCI_FILE_FORWARD), OCI_SUCCESS);
  write("far away");  // which leaves a hole before it
  std::string path = folder_.path(), name = "f";
  ubig_ora length = 0;
  EXPECT_EQ(OCIFileGetLength(env(), err(), mutableText(name), mutableText(path), &length),
            OCI_SUCCESS);
  EXPECT_EQ(length, kFar + 8);
  ASSERT_EQ(seek(OCI_FILE_SEEK_CURRENT, kFar + 8, OCI_FILE_BACKWARD), OCI_SUCCESS);
  EXPECT_EQ(read(2), std::string(2, '\0'));
  ASSERT_EQ(seek(OCI_FILE_SEEK_CURRENT, kFar, OCI_FILE_FORWARD), OCI_SUCCESS);
  EXPECT_EQ(read(100), "r away");
  ASSERT_EQ(seek(OCI_FILE_SEEK_END, 4, OCI_FILE_BACKWARD), OCI_SUCCESS);
  EXPECT_EQ(read(100), "away");
  close();
}

/// How a child process that worked on a small file system ended.
enum Ending { kAsExpected = 0, kNotAllowed = 77 };

/// Gives this process a file system of 64 KiB at `path`; false where it may not.
bool mountSmall(const std::string &path) {
  const bool own = unshare(CLONE_NEWNS) == 0 || unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0;
  return own && mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
         mount("none", path.c_str(), "tmpfs", 0, "size=64k") == 0;
}

/// Writes until the file system is full. What was written must be what the file holds,
/// and the file must take more when there is room again. The number of the step that
/// failed, or kAsExpected.
int fillUp(OCIEnv *env, OCIError *err, std::string path) {
  std::string name = "f", ballast = "ballast";
  std::ofstream(path + '/' + ballast) << std::string(20000, 'b');
  OCIFileObject *file = nullptr;
  if (OCIFileOpen(env, err, &file, mutableText(name), mutableText(path),
                  OCI_FILE_READ_WRITE, OCI_FILE_CREATE, OCI_FILE_BIN)) {
    return 1;
  }
  const std::string piece(3000, 'x');
  ubig_ora total = 0;
  sword status = OCI_SUCCESS;
  for (int i = 0; i < 100 && status == OCI_SUCCESS; ++i) {
    ub4 written = 0;
    status =
        OCIFileWrite(env, err, file, const_cast<char *>(piece.data()), 3000, &written);
    if (status == OCI_SUCCESS) total += written;
  }
  if (status != OCI_ERROR || codesOf(err) != Codes{30156}) return 2;
  ubig_ora length = 0;
  OCIFileGetLength(env, err, mutableText(name), mutableText(path), &length);
  if (length != total || total < 30000) return 3;
  std::filesystem::remove(path + '/' + ballast);
  ub4 written = 0;
  status = OCIFileWrite(env, err, file, const_cast<char *>(piece.data()), 3000, &written);
  if (status != OCI_SUCCESS || written != 3000) return 4;
  return OCIFileClose(env, err, file) == OCI_SUCCESS ? kAsExpected : 5;
}

TEST_F(Files, AFullFileSystemIs30156AndLosesNothing) {
  // A child, since the file system is that of its own names alone and goes with it.
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    _exit(mountSmall(folder_.path()) ? fillUp(env(), err(), folder_.path())
                                     : kNotAllowed);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFEXITED(status));
  if (WEXITSTATUS(status) == kNotAllowed) {
    GTEST_SKIP() << "this process may not mount a file system";
  }
  EXPECT_EQ(WEXITSTATUS(status), kAsExpected);
}

TEST_F(Files, ExistenceAndLengthAreThoseOfTheSystem) {
  folder_.put("f", "12345");
  std::string path = folder_.path(), there = "f", missing = "g";
  ub1 flag = 7;
  ubig_ora length = 7;
  EXPECT_EQ(OCIFileExists(env(), err(), mutableText(there), mutableText(path), &flag),
            OCI_SUCCESS);
  EXPECT_EQ(flag, 1);
  EXPECT_EQ(OCIFileExists(env(), err(), mutableText(missing), mutableText(path), &flag),
            OCI_SUCCESS);
  EXPECT_EQ(flag, 0);
  EXPECT_EQ(
      OCIFileGetLength(env(), err(), mutableText(there), mutableText(path), &length),
      OCI_SUCCESS);
  EXPECT_EQ(length, 5u);
  expectError(
      OCIFileGetLength(env(), err(), mutableText(missing), mutableText(path), &length),
      30152);
  EXPECT_EQ(length, 5u);
}

TEST_F(Files, TheSystemsErrorsHaveNumbers) {
  folder_.put("f", "x");
  expectError(openIn(folder_.path() + "/f", "below", OCI_FILE_READ_ONLY, OCI_FILE_TRUNC),
              30155);
  ASSERT_EQ(openIn("/dev", "full", OCI_FILE_WRITE_ONLY, OCI_FILE_CREATE), OCI_SUCCESS);
  char byte = 'X';
  ub4 written = 0;
  expectError(OCIFileWrite(env(), err(), file_, &byte, 1, &written), 30156);
  EXPECT_EQ(firstText(err()), "KESTREL-30156: disk space error");
  close();
  ASSERT_EQ(openIn("/dev", "null", OCI_FILE_WRITE_ONLY, OCI_FILE_CREATE), OCI_SUCCESS);
  expectError(OCIFileFlush(env(), err(), file_), 30157);
  EXPECT_EQ(firstText(err()), "KESTREL-30157: operating system call error");
  close();
}

TEST_F(Files, EveryErrorOfTheSystemIsTranslated) {
  for (int error = 0; error < 200; ++error) {
    ClearErrorHandle(err());
    const sb4 code = error == ENOENT   ? 30152
                     : error == EEXIST ? 30151
                     : error == EINVAL ? 30157
                     : error == ENOSPC ? 30156
                                       : 30155;
    expectError(TranslateSysFileErrorToOCIError(err(), error), code);
  }
}

TEST_F(Files, InUtf16NamesAreConverted) {
  Environment wide(OCI_UTF16);
  EXPECT_EQ(OCIFileInit(wide.get(), wide.errhp()), OCI_SUCCESS);
  folder_.put("f", "12345");
  std::string path = utf16(folder_.path()) + std::string(2, '\0');
  std::string there = utf16("f") + std::string(2, '\0');
  std::string broken = std::string("\x00\xd8\x41\x00", 4) + std::string(2, '\0');
  ubig_ora length = 0;
  EXPECT_EQ(OCIFileGetLength(wide.get(), wide.errhp(), mutableText(there),
                             mutableText(path), &length),
            OCI_SUCCESS);
  EXPECT_EQ(length, 5u);
  OCIFileObject *file = nullptr;
  EXPECT_EQ(
      OCIFileOpen(wide.get(), wide.errhp(), &file, mutableText(there), mutableText(path),
                  OCI_FILE_READ_ONLY, OCI_FILE_CREATE, OCI_FILE_BIN),
      OCI_SUCCESS);
  EXPECT_EQ(OCIFileClose(wide.get(), wide.errhp(), file), OCI_SUCCESS);
  ub1 flag = 7;
  EXPECT_EQ(OCIFileExists(wide.get(), wide.errhp(), mutableText(broken),
                          mutableText(path), &flag),
            OCI_ERROR);
  EXPECT_EQ(firstText(wide.errhp()),
            "An invalid multibyte sequence has been encountered in the input");
}

/// Each function, with sound arguments that are null where `bad` says so.
struct FileCall {
  const char *name;
  std::function<sword(OCIEnv *, OCIError *, OCIFileObject *, bool bad)> run;
};

OraText name[] = "f", path[] = "/tmp";
char buffer[1];
ub4 count;
ub1 flag;
ubig_ora length;

template <class T>
T *unless(bool bad, T *argument) {
  return bad ? nullptr : argument;
}

// clang-format off
const FileCall kCalls[] = {
    {"Open", [](OCIEnv *h, OCIError *e, OCIFileObject *f, bool bad) {
       return OCIFileOpen(h, e, unless(bad, &f), name, path, 1, 1, 0); }},
    {"OpenFilename", [](OCIEnv *h, OCIError *e, OCIFileObject *f, bool bad) {
       return OCIFileOpen(h, e, &f, unless(bad, name), path, 1, 1, 0); }},
    {"OpenPath", [](OCIEnv *h, OCIError *e, OCIFileObject *f, bool bad) {
       return OCIFileOpen(h, e, &f, name, unless(bad, path), 1, 1, 0); }},
    {"Close", [](OCIEnv *h, OCIError *e, OCIFileObject *f, bool bad) {
       return OCIFileClose(h, e, unless(bad, f)); }},
    {"Read", [](OCIEnv *h, OCIError *e, OCIFileObject *f, bool bad) {
       return OCIFileRead(h, e, unless(bad, f), buffer, 1, &count); }},
    {"ReadBuffer", [](OCIEnv *h, OCIError *e, OCIFileObject *f, bool bad) {
       return OCIFileRead(h, e, f, unless(bad, buffer), 1, &count); }},
    {"ReadCount", [](OCIEnv *h, OCIError *e, OCIFileObject *f, bool bad) {
       return OCIFileRead(h, e, f, buffer, 1, unless(bad, &count)); }},
    {"Write", [](OCIEnv *h, OCIError *e, OCIFileObject *f, bool bad) {
       return OCIFileWrite(h, e, unless(bad, f), buffer, 1, &count); }},
    {"WriteBuffer", [](OCIEnv *h, OCIError *e, OCIFileObject *f, bool bad) {
       return OCIFileWrite(h, e, f, unless(bad, buffer), 1, &count); }},
    {"WriteCount", [](OCIEnv *h, OCIError *e, OCIFileObject *f, bool bad) {
       return OCIFileWrite(h, e, f, buffer, 1, unless(bad, &count)); }},
    {"Flush", [](OCIEnv *h, OCIError *e, OCIFileObject *f, bool bad) {
       return OCIFileFlush(h, e, unless(bad, f)); }},
    {"Seek", [](OCIEnv *h, OCIError *e, OCIFileObject *f, bool bad) {
       return OCIFileSeek(h, e, unless(bad, f), 1, 0, 1); }},
    {"Exists", [](OCIEnv *h, OCIError *e, OCIFileObject *, bool bad) {
       return OCIFileExists(h, e, unless(bad, name), path, &flag); }},
    {"ExistsPath", [](OCIEnv *h, OCIError *e, OCIFileObject *, bool bad) {
       return OCIFileExists(h, e, name, unless(bad, path), &flag); }},
    {"ExistsFlag", [](OCIEnv *h, OCIError *e, OCIFileObject *, bool bad) {
       return OCIFileExists(h, e, name, path, unless(bad, &flag)); }},
    {"GetLength", [](OCIEnv *h, OCIError *e, OCIFileObject *, bool bad) {
       return OCIFileGetLength(h, e, unless(bad, name), path, &length); }},
    {"GetLengthPath", [](OCIEnv *h, OCIError *e, OCIFileObject *, bool bad) {
       return OCIFileGetLength(h, e, name, unless(bad, path), &length); }},
    {"GetLengthResult", [](OCIEnv *h, OCIError *e, OCIFileObject *, bool bad) {
       return OCIFileGetLength(h, e, name, path, unless(bad, &length)); }},
};
// clang-format on

class EveryFileCall : public Files, public testing::WithParamInterface<FileCall> {
 protected:
  sword run(void *hndl, void *errhp, bool bad = false) {
    return GetParam().run(static_cast<OCIEnv *>(hndl), static_cast<OCIError *>(errhp),
                          &none_, bad);
  }
  OCIFileObject none_ = {-1};
};

TEST_P(EveryFileCall, BeforeInitialisationIs30162) {
  EXPECT_EQ(OCIFileTerm(env(), err()), OCI_SUCCESS);
  AddErrorRecord(err(), OCI_ERROR, 1403);
  expectError(run(env(), err()), 30162);
  EXPECT_EQ(firstText(err()), "KESTREL-30162: uninitialized context");
  expectError(run(env(), err(), true), 30162);
}

TEST_P(EveryFileCall, WithoutAnArgumentIs30150) {
  AddErrorRecord(err(), OCI_ERROR, 1403);
  expectError(run(env(), err(), true), 30150);
}

TEST_P(EveryFileCall, RefusesNullAndForeignHandles) {
  AddErrorRecord(err(), OCI_ERROR, 1403);
  auto *session = env_.alloc<OCISession>(OCI_HTYPE_SESSION);
  EXPECT_EQ(run(nullptr, err()), OCI_INVALID_HANDLE);
  EXPECT_EQ(run(session, err()), OCI_INVALID_HANDLE);
  EXPECT_EQ(run(env(), nullptr), OCI_INVALID_HANDLE);
  EXPECT_EQ(run(env(), env()), OCI_INVALID_HANDLE);
  EXPECT_EQ(codesOf(err()), Codes{1403});
}

TEST_P(EveryFileCall, TracesItsNameAndHowItEnds) {
  oci_debug_log = std::tmpfile();
  OCI2PQ_TRACE_LEVEL = 4;
  run(env(), err(), true);
  std::rewind(oci_debug_log);
  std::string written(1000, '\0');
  written.resize(std::fread(written.data(), 1, written.size(), oci_debug_log));
  std::fclose(oci_debug_log);
  oci_debug_log = nullptr;
  OCI2PQ_TRACE_LEVEL = 0;
  EXPECT_NE(written.find("OCIFile"), std::string::npos);
  EXPECT_NE(written.find("\tRETURNING ERROR\n"), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(Functions, EveryFileCall, testing::ValuesIn(kCalls),
                         [](const auto &p) { return std::string(p.param.name); });

TEST(FileLayer, InitAndTermRefuseNullAndForeignHandles) {
  Environment env;
  for (auto *function : {OCIFileInit, OCIFileTerm}) {
    EXPECT_EQ(function(nullptr, env.errhp()), OCI_INVALID_HANDLE);
    EXPECT_EQ(function(env.errhp(), env.errhp()), OCI_INVALID_HANDLE);
    EXPECT_EQ(function(env.get(), nullptr), OCI_INVALID_HANDLE);
    EXPECT_EQ(function(env.get(), env.errhp()), OCI_SUCCESS);
  }
}

}  // namespace
}  // namespace zev::test
