#include "stmt_fixture.h"

namespace zevtest {

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

std::string randomText(std::mt19937_64 &random, const std::string &alphabet,
                       std::size_t most) {
  std::string text(random() % (most + 1), ' ');
  for (char &c : text) c = alphabet[random() % alphabet.size()];
  return text;
}

}  // namespace zevtest
