// The C consumer's work from C++20.
#include <oci.h>

#include <iostream>
#include <memory>

namespace {

struct FreeEnv {
  void operator()(OCIEnv *env) const noexcept { OCIHandleFree(env, OCI_HTYPE_ENV); }
};

}  // namespace

int main() {
  OCIEnv *made = nullptr;
  if (OCIEnvCreate(&made, OCI_DEFAULT, nullptr, nullptr, nullptr, nullptr, 0, nullptr) !=
      OCI_SUCCESS) {
    std::cerr << "no environment\n";
    return 1;
  }
  const std::unique_ptr<OCIEnv, FreeEnv> env(made);
  sword part[5] = {};
  OCIClientVersion(&part[0], &part[1], &part[2], &part[3], &part[4]);
  std::cout << part[0] << '.' << part[1] << '.' << part[2] << '.' << part[3] << '.'
            << part[4] << '\n';
}
