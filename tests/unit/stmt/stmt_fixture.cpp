#include "stmt_fixture.h"

#include <cstdio>

namespace zevtest {

Session::Session(ub4 mode) {
  EXPECT_EQ(OCIEnvCreate(&env, mode, nullptr, nullptr, nullptr, nullptr, 0, nullptr),
            OCI_SUCCESS);
  errhp = make<OCIError>(OCI_HTYPE_ERROR);
  stmt = make<OCIStmt>(OCI_HTYPE_STMT);
}

int Session::takeRecord() {
  int code = kNoRecord;
  lastMessage.clear();
  for (const ErrorRecord *record : zev::Elements<ErrorRecord>(errhp->records)) {
    code = record->errcode;
    if ((record->content & kHasMsg) && record->msg) lastMessage = record->msg;
  }
  ClearErrorHandle(errhp);
  return code;
}

NamedBinds::NamedBinds(std::vector<std::string> names)
    : names_(std::move(names)), binds_(names_.size()) {
  for (std::size_t i = 0; i < names_.size(); ++i) {
    binds_[i] = {};
    binds_[i].handleType = HANDLE_OCIBind;
    binds_[i].name = names_[i].data();
    binds_[i].nameLen = static_cast<ub4>(names_[i].size());
    binds_[i].pgType = static_cast<ub4>(1000 + i);
    binds_[i].paramMode = static_cast<ub4>(1 + i % 3);
    list_ = lappend(list_, &binds_[i]);
  }
}

int NamedBinds::indexOf(const OCIBind *bind) const {
  for (std::size_t i = 0; i < binds_.size(); ++i) {
    if (&binds_[i] == bind) return static_cast<int>(i);
  }
  return -1;
}

std::mt19937_64 generator() {
  const char *given = std::getenv("ZEVOCI_TEST_SEED");
  const std::uint64_t run =
      given ? std::strtoull(given, nullptr, 10) : std::random_device{}();
  const auto *info = testing::UnitTest::GetInstance()->current_test_info();
  std::printf("ZEVOCI_TEST_SEED=%llu\n", static_cast<unsigned long long>(run));
  return std::mt19937_64(run ^ std::hash<std::string>{}(info->name()));
}

std::string randomText(std::mt19937_64 &random, const std::string &alphabet,
                       std::size_t most) {
  std::string text(random() % (most + 1), ' ');
  for (char &c : text) c = alphabet[random() % alphabet.size()];
  return text;
}

}  // namespace zevtest
