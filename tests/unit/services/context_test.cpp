#include "tests/unit/core/core_fixture.h"

namespace zev::test {
namespace {

class ContextValues : public testing::Test {
 protected:
  OCIError *err() const { return env_.errhp(); }

  sword set(void *hndl, std::string key, const char *value) {
    return OCIContextSetValue(hndl, err(), OCI_DURATION_PROCESS, bytesOf(key),
                              static_cast<ub1>(key.size()), const_cast<char *>(value));
  }
  std::string get(void *hndl, std::string key) {
    void *value = const_cast<char *>("untouched");
    EXPECT_EQ(OCIContextGetValue(hndl, err(), bytesOf(key), static_cast<ub1>(key.size()),
                                 &value),
              OCI_SUCCESS);
    return static_cast<char *>(value);
  }
  static ub1 *bytesOf(std::string &text) { return reinterpret_cast<ub1 *>(text.data()); }

  Environment env_;
};

TEST_F(ContextValues, OfAKeySetTwiceTheLaterOneIsFound) {
  EXPECT_EQ(set(env_.get(), "key", "first"), OCI_SUCCESS);
  EXPECT_EQ(set(env_.get(), "other", "second"), OCI_SUCCESS);
  EXPECT_EQ(get(env_.get(), "key"), "first");
  EXPECT_EQ(set(env_.get(), "key", "third"), OCI_SUCCESS);
  EXPECT_EQ(get(env_.get(), "key"), "third");
  EXPECT_EQ(get(env_.get(), "other"), "second");
  EXPECT_EQ(list_length(env_.get()->contextValues), 3u);
}

TEST_F(ContextValues, AnUnknownKeyLeavesTheResultAlone) {
  EXPECT_EQ(get(env_.get(), "key"), "untouched");
  set(env_.get(), "key", "value");
  for (const char *other : {"ke", "keys", "KEY"}) {
    EXPECT_EQ(get(env_.get(), other), "untouched");
  }
}

TEST_F(ContextValues, OfASessionAreItsOwnAndGoWithIt) {
  auto *session = env_.alloc<OCISession>(OCI_HTYPE_SESSION);
  EXPECT_EQ(set(session, "key", "session"), OCI_SUCCESS);
  EXPECT_EQ(get(env_.get(), "key"), "untouched");
  EXPECT_EQ(set(env_.get(), "key", "environment"), OCI_SUCCESS);
  EXPECT_EQ(get(session, "key"), "session");
  EXPECT_EQ(OCIHandleFree(session, OCI_HTYPE_SESSION), OCI_SUCCESS);
  EXPECT_EQ(get(env_.get(), "key"), "environment");
}

TEST_F(ContextValues, AKeyEndsAtItsTerminatorAndNeedsNone) {
  EXPECT_EQ(set(env_.get(), std::string("key\0x", 5), "value"), OCI_SUCCESS);
  EXPECT_EQ(get(env_.get(), "key"), "value");
  EXPECT_EQ(get(env_.get(), std::string("key\0", 4)), "value");
  ub1 open[] = {'k', 'e', 'y', 'x'};
  void *found = nullptr;
  EXPECT_EQ(OCIContextGetValue(env_.get(), err(), open, 3, &found), OCI_SUCCESS);
  EXPECT_STREQ(static_cast<char *>(found), "value");
}

TEST_F(ContextValues, KeysHaveOneTo64BytesAndValuesAreNotNull) {
  AddErrorRecord(err(), OCI_ERROR, 1403);
  EXPECT_EQ(set(env_.get(), "", "value"), OCI_ERROR);
  EXPECT_TRUE(codesOf(err()).empty());
  EXPECT_EQ(set(env_.get(), std::string(65, 'k'), "value"), OCI_ERROR);
  EXPECT_EQ(set(env_.get(), std::string(255, 'k'), "value"), OCI_ERROR);
  EXPECT_EQ(set(env_.get(), "key", nullptr), OCI_ERROR);
  EXPECT_EQ(OCIContextSetValue(env_.get(), err(), 10, nullptr, 3, this), OCI_ERROR);
  EXPECT_TRUE(codesOf(err()).empty());
  EXPECT_EQ(list_length(env_.get()->contextValues), 0u);
  EXPECT_EQ(set(env_.get(), std::string(64, 'k'), "long"), OCI_SUCCESS);
  EXPECT_EQ(set(env_.get(), "k", "short"), OCI_SUCCESS);
  EXPECT_EQ(get(env_.get(), std::string(64, 'k')), "long");
  EXPECT_EQ(get(env_.get(), "k"), "short");
}

TEST_F(ContextValues, ReadingChecksItsArgumentsToo) {
  std::string key = "key";
  void *value = nullptr;
  const auto read = [&](void *hndl, OCIError *errhp, ub1 *k, ub1 length, void **out) {
    return OCIContextGetValue(hndl, errhp, k, length, out);
  };
  ub1 *bytes = bytesOf(key);
  EXPECT_EQ(read(nullptr, err(), bytes, 3, &value), OCI_INVALID_HANDLE);
  EXPECT_EQ(read(env_.get(), nullptr, bytes, 3, &value), OCI_INVALID_HANDLE);
  EXPECT_EQ(read(env_.get(), err(), nullptr, 3, &value), OCI_ERROR);
  EXPECT_EQ(read(env_.get(), err(), bytes, 0, &value), OCI_ERROR);
  EXPECT_EQ(read(env_.get(), err(), bytes, 65, &value), OCI_ERROR);
  EXPECT_EQ(read(env_.get(), err(), bytes, 3, nullptr), OCI_ERROR);
  EXPECT_TRUE(codesOf(err()).empty());
}

TEST_F(ContextValues, OtherHandlesAre24316) {
  auto *server = env_.alloc<OCIServer>(OCI_HTYPE_SERVER);
  EXPECT_EQ(set(server, "key", "value"), OCI_ERROR);
  EXPECT_EQ(codesOf(err()), Codes{24316});
  EXPECT_EQ(firstText(err()), "KESTREL-24316: handle is invalid");
  std::string key = "key";
  void *value = nullptr;
  EXPECT_EQ(OCIContextGetValue(err(), err(), bytesOf(key), 3, &value), OCI_ERROR);
  EXPECT_EQ(codesOf(err()), Codes{24316});
}

TEST_F(ContextValues, WrongHandlesRecordNothing) {
  AddErrorRecord(err(), OCI_ERROR, 1403);
  EXPECT_EQ(set(nullptr, "key", "value"), OCI_INVALID_HANDLE);
  std::string key = "key";
  auto *notAnError = reinterpret_cast<OCIError *>(env_.get());
  EXPECT_EQ(OCIContextSetValue(env_.get(), notAnError, 10, bytesOf(key), 3, this),
            OCI_INVALID_HANDLE);
  EXPECT_EQ(codesOf(err()), Codes{1403});
}

TEST(ContextValuesUtf16, KeysThatBeginAlikeAreTwo) {
  Environment env(OCI_UTF16);
  int values[3] = {};
  const std::string keys[] = {utf16("ab"), utf16("ac"), utf16("a")};
  const auto key = [&](int i) {
    return reinterpret_cast<ub1 *>(const_cast<char *>(keys[i].data()));
  };
  const auto size = [&](int i) { return static_cast<ub1>(keys[i].size()); };
  for (int i = 0; i < 3; ++i) {
    ASSERT_EQ(OCIContextSetValue(env.get(), env.errhp(), OCI_DURATION_PROCESS, key(i),
                                 size(i), &values[i]),
              OCI_SUCCESS);
  }
  for (int i = 0; i < 3; ++i) {
    void *found = nullptr;
    EXPECT_EQ(OCIContextGetValue(env.get(), env.errhp(), key(i), size(i), &found),
              OCI_SUCCESS);
    EXPECT_EQ(found, &values[i]);
  }
}

}  // namespace
}  // namespace zev::test
