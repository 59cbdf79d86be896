/// Calls of functions that do nothing, with arguments for whatever parameters they have.
#pragma once

#include <oci.h>
#include <ocixmldb.h>
#include <sys/mman.h>

#include <algorithm>
#include <span>
#include <type_traits>

#include "core_fixture.h"

namespace zev::test {

inline constexpr const char *kGoOn = "ZEV_OCI_UIFCTN_RET_OK";

/// Zeroed memory that a process shares with its children: what they write there is seen.
class SharedBlock {
 public:
  static constexpr std::size_t kSize = 4096;

  SharedBlock()
      : memory_(mmap(nullptr, kSize, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS,
                     -1, 0)) {
    EXPECT_NE(memory_, MAP_FAILED);
  }
  ~SharedBlock() { munmap(memory_, kSize); }
  SharedBlock(const SharedBlock &) = delete;
  SharedBlock &operator=(const SharedBlock &) = delete;

  std::span<unsigned char> bytes() const {
    return {static_cast<unsigned char *>(memory_), kSize};
  }

 private:
  void *memory_;
};

/// Values for the parameters of any function: handles where they are asked for, and for
/// each other pointer a block whose bytes are looked at afterwards.
class Arguments {
 public:
  explicit Arguments(Environment &env)
      : env_(env),
        svchp_(env.alloc<OCISvcCtx>(OCI_HTYPE_SVCCTX)),
        stmtp_(env.alloc<OCIStmt>(OCI_HTYPE_STMT)),
        bindp_(env.alloc<OCIBind>(OCI_HTYPE_BIND, stmtp_)),
        defnp_(env.alloc<OCIDefine>(OCI_HTYPE_DEFINE, stmtp_)) {}

  template <class T>
  T make() {
    using Plain = std::remove_const_t<std::remove_pointer_t<T>>;
    if constexpr (std::is_same_v<Plain, OCIEnv>) {
      return env_.get();
    } else if constexpr (std::is_same_v<Plain, OCIError>) {
      return env_.errhp();
    } else if constexpr (std::is_same_v<Plain, OCISvcCtx>) {
      return svchp_;
    } else if constexpr (std::is_same_v<Plain, OCIStmt>) {
      return stmtp_;
    } else if constexpr (std::is_same_v<Plain, OCIBind>) {
      return bindp_;
    } else if constexpr (std::is_same_v<Plain, OCIDefine>) {
      return defnp_;
    } else if constexpr (std::is_pointer_v<T> &&
                         !std::is_function_v<std::remove_pointer_t<T>>) {
      return static_cast<T>(static_cast<void *>(block_.bytes().data()));
    } else {
      return T{};
    }
  }
  bool areUntouched() const {
    return std::ranges::all_of(block_.bytes(), [](unsigned char c) { return c == 0; });
  }

 private:
  Environment &env_;
  OCISvcCtx *svchp_;
  OCIStmt *stmtp_;
  OCIBind *bindp_;
  OCIDefine *defnp_;
  SharedBlock block_;
};

template <class Result, class... Parameters>
Result callWith(Arguments &arguments, Result (*function)(Parameters...)) {
  return function(arguments.make<Parameters>()...);
}
template <class Result, class... Parameters>
Result callWith(Arguments &arguments, Result (*function)(Parameters..., ...)) {
  return function(arguments.make<Parameters>()...);
}

}  // namespace zev::test
