/// OCINumber functions on arbitrary bytes: numbers that no function wrote, text and
/// formats of any length. Each call ends with a number or a failure, and what it gives is
/// the same by the direct way to the engine as by that through text.
#include <ociap.h>
#include <sanitizer/common_interface_defs.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <memory>

#include "decimal/exchange.h"
#include "decimal_steps.h"
#include "tests/unit/ocinumber/number_functions.h"
#include "zevoci/errors.h"

namespace {

void require(bool holds) {
  if (!holds) __builtin_trap();
}

/// No call computes for long, whatever its numbers are.
template <class Call>
void bounded(const Call &call) {
  constexpr long kMostSteps = 100'000;
  const long before = zevtest::decimalSteps();
  call();
  require(zevtest::decimalSteps() - before <= kMostSteps);
}

OCIError *errorHandle() {
  static OCIError *errhp = [] {
    // What has no result is told on standard error, which nobody reads here but for the
    // sanitizers' reports.
    const std::intptr_t reports = dup(STDERR_FILENO);
    __sanitizer_set_report_fd(reinterpret_cast<void *>(reports));
    if (!std::freopen("/dev/null", "w", stderr)) std::abort();
    OCIEnv *env = nullptr;
    OCIEnvCreate(&env, OCI_DEFAULT, nullptr, nullptr, nullptr, nullptr, 0, nullptr);
    void *handle = nullptr;
    OCIHandleAlloc(env, &handle, OCI_HTYPE_ERROR, 0, nullptr);
    return static_cast<OCIError *>(handle);
  }();
  return errhp;
}

/// Reads pieces off the input.
class Input {
 public:
  Input(const std::uint8_t *data, std::size_t size) : at_(data), left_(size) {}

  int byte() {
    if (left_ == 0) return 0;
    --left_;
    return *at_++;
  }
  sword integer() {
    sword value = 0;
    for (int i = 0; i < 4; ++i) value = value << 8 | byte();
    return value;
  }
  OCINumber number() {
    OCINumber out{};
    for (ub1 &part : out.OCINumberPart) part = static_cast<ub1>(byte());
    return out;
  }
  /// The rest, in memory of exactly its size.
  std::unique_ptr<OraText[]> rest(std::size_t size) {
    size = std::min(size, left_);
    std::unique_ptr<OraText[]> copy(new OraText[size]);
    if (size != 0) std::memcpy(copy.get(), at_, size);
    at_ += size;
    left_ -= size;
    taken_ = static_cast<ub4>(size);
    return copy;
  }
  ub4 taken() const { return taken_; }

 private:
  const std::uint8_t *at_;
  std::size_t left_;
  ub4 taken_ = 0;
};

void requireAlike(const OCINumber &number) {
  static M_APM direct = m_apm_init(), byText = m_apm_init();
  const bool isRead = zev::decimal::readNumber(number, direct);
  require(isRead == zev::decimal::readNumberByText(number, byText));
  if (!isRead) return;
  require(m_apm_compare(direct, byText) == 0);
  OCINumber first{}, second{};
  require(zev::decimal::writeNumber(direct, first) ==
          zev::decimal::writeNumberByText(byText, second));
  require(std::memcmp(&first, &second, sizeof first) == 0);
}

void compute(Input &input) {
  OCIError *const errhp = errorHandle();
  const int choice = input.byte();
  const sword n = input.integer();
  const OCINumber a = input.number(), b = input.number();
  OCINumber result{};
  requireAlike(a);
  const auto unary = zevtest::kUnaryNumbers[static_cast<std::size_t>(choice) %
                                            std::size(zevtest::kUnaryNumbers)];
  const auto binary = zevtest::kBinaryNumbers[static_cast<std::size_t>(choice) %
                                              std::size(zevtest::kBinaryNumbers)];
  bounded([&] { unary(errhp, &a, &result); });
  bounded([&] { binary(errhp, &a, &b, &result); });
  bounded([&] { OCINumberIntPower(errhp, &a, n, &result); });
  bounded([&] { OCINumberShift(errhp, &a, n, &result); });
  bounded([&] { OCINumberPrec(errhp, &a, n, &result); });
  bounded([&] { OCINumberRound(errhp, &a, n, &result); });
  bounded([&] { OCINumberTrunc(errhp, &a, n, &result); });
  sword order = 0;
  sb8 machine = 0;
  bounded([&] { OCINumberCmp(errhp, &a, &b, &order); });
  bounded(
      [&] { OCINumberToInt(errhp, &a, static_cast<uword>(choice % 9), 2, &machine); });
  bounded([&] { OCINumberToReal(errhp, &a, choice % 2 ? 4 : 8, &machine); });
}

void print(Input &input) {
  const OCINumber number = input.number();
  const ub4 room = static_cast<ub4>(input.byte());
  const auto format = input.rest(1000);
  const std::unique_ptr<OraText[]> buffer(new OraText[room]);
  ub4 size = room;
  bounded([&] {
    OCINumberToText(errorHandle(), &number, format.get(), input.taken(), nullptr, 0,
                    &size, buffer.get());
  });
}

void read(Input &input) {
  const auto format = input.rest(static_cast<std::size_t>(input.byte()));
  const ub4 formatLength = input.taken();
  const auto text = input.rest(1000);
  OCINumber number{};
  sword status = OCI_ERROR;
  bounded([&] {
    status = OCINumberFromText(errorHandle(), text.get(), input.taken(), format.get(),
                               formatLength, nullptr, 0, &number);
  });
  if (status == OCI_SUCCESS) requireAlike(number);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  Input input(data, size);
  switch (input.byte() % 4) {
    case 0:
      print(input);
      break;
    case 1:
      read(input);
      break;
    default:
      compute(input);
      break;
  }
  return 0;
}
