// zevoci_bench_numbers: OCINumber functions, and the engine's calls under them, beside
// MPFR at the same precision; without a server.
#include <mpfr.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <vector>

#include "bench/error_handle.h"
#include "bench/measure.h"
#include "decimal/exchange.h"
#include "types/number.h"

namespace bench {
namespace {

using namespace zev::decimal;

constexpr int kOperands = 256;
constexpr mpfr_prec_t kBits = 136;  ///< of 41 digits

using Unary = sword (*)(OCIError *, const OCINumber *, OCINumber *);
using Binary = sword (*)(OCIError *, const OCINumber *, const OCINumber *, OCINumber *);

/// An operand in the forms that each side takes.
struct Operand {
  OCINumber number;
  M_APM engine = m_apm_init();
  mpfr_t mpfr;

  explicit Operand(const std::string &text) {
    ConvertStringToVARNUM(text.c_str(), number.OCINumberPart);
    m_apm_set_string(engine, text.c_str());
    mpfr_init2(mpfr, kBits);
    mpfr_set_str(mpfr, text.c_str(), 10, MPFR_RNDN);
  }
};

std::vector<Operand> operands(const char *before) {
  std::mt19937 random(20);
  std::vector<Operand> all;
  for (int i = 0; i < kOperands; ++i) {
    std::string text = before;
    for (int digit = 0; digit < 37; ++digit)
      text += static_cast<char>('0' + random() % 10);
    all.emplace_back(text + '7');
  }
  return all;
}

void keep(const void *p) {
  asm volatile("" : : "r"(p) : "memory");
}

class Numbers {
 public:
  explicit Numbers(int rounds) : rounds_(rounds) { mpfr_init2(out_, kBits); }

  void measureAll() {
    const std::vector<Operand> large = operands("12."), small = operands("0.");
    binary("Add", 200, large, small, OCINumberAdd, mpfr_add, m_apm_add);
    binary("Sub", 200, large, small, OCINumberSub, mpfr_sub, m_apm_subtract);
    binary("Mul", 200, large, small, OCINumberMul, mpfr_mul, m_apm_multiply);
    binary("Div", 50, large, small, OCINumberDiv, mpfr_div, divide);
    compare(large, small);
    unary("Sqrt", 20, large, OCINumberSqrt, mpfr_sqrt, m_apm_sqrt);
    unary("Exp", 5, small, OCINumberExp, mpfr_exp, m_apm_exp);
    unary("Ln", 5, large, OCINumberLn, mpfr_log, m_apm_log);
    unary("Sin", 5, small, OCINumberSin, mpfr_sin, m_apm_sin);
    unary("Cos", 5, small, OCINumberCos, mpfr_cos, m_apm_cos);
    unary("Tan", 5, small, OCINumberTan, mpfr_tan, m_apm_tan);
    unary("ArcSin", 2, small, OCINumberArcSin, mpfr_asin, m_apm_arcsin);
    unary("ArcCos", 2, small, OCINumberArcCos, mpfr_acos, m_apm_arccos);
    unary("ArcTan", 2, small, OCINumberArcTan, mpfr_atan, m_apm_arctan);
    unary("HypSin", 5, small, OCINumberHypSin, mpfr_sinh, m_apm_sinh);
    unary("HypCos", 5, small, OCINumberHypCos, mpfr_cosh, m_apm_cosh);
    unary("HypTan", 5, small, OCINumberHypTan, mpfr_tanh, m_apm_tanh);
    binary("Power", 2, large, small, OCINumberPower, mpfr_pow, power);
    byText(large, small);
    printTable(reports_);
  }

 private:
  static void divide(M_APM r, M_APM a, M_APM b) { m_apm_divide(r, kDecimals, a, b); }
  static void power(M_APM r, M_APM a, M_APM b) { m_apm_pow(r, kDecimals, a, b); }

  /// Rounds of `theirs` and `ours` on each pair of operands, `passes` times.
  template <class Theirs, class Ours>
  void add(const std::string &name, int passes, const std::vector<Operand> &a,
           const std::vector<Operand> &b, Theirs theirs, Ours ours) {
    const auto side = [&a, &b, passes](auto work) {
      return [&a, &b, passes, work] {
        return seconds([&] {
          for (int pass = 0; pass < passes; ++pass) {
            for (int i = 0; i < kOperands; ++i)
              work(a[static_cast<std::size_t>(i)], b[static_cast<std::size_t>(i)]);
          }
        });
      };
    };
    reports_.push_back(run({.name = name,
                            .unit = "ns/call",
                            .factor = 1e9 / kOperands / passes,
                            .libpq = side(theirs),
                            .ours = side(ours)},
                           rounds_));
  }

  void binary(const char *name, int passes, const std::vector<Operand> &a,
              const std::vector<Operand> &b, Binary ours,
              int (*theirs)(mpfr_ptr, mpfr_srcptr, mpfr_srcptr, mpfr_rnd_t),
              void (*engine)(M_APM, M_APM, M_APM)) {
    const auto mpfr = [this, theirs](const Operand &x, const Operand &y) {
      theirs(out_, x.mpfr, y.mpfr, MPFR_RNDN);
      keep(out_);
    };
    add(std::string("OCINumber") + name, passes, a, b, mpfr,
        [this, ours](const Operand &x, const Operand &y) {
          ours(error_.errhp, &x.number, &y.number, &result_);
          keep(&result_);
        });
    add(std::string("  engine ") + name, passes, a, b, mpfr,
        [this, engine](const Operand &x, const Operand &y) {
          engine(engineResult_, x.engine, y.engine);
          keep(engineResult_);
        });
  }

  void unary(const char *name, int passes, const std::vector<Operand> &a, Unary ours,
             int (*theirs)(mpfr_ptr, mpfr_srcptr, mpfr_rnd_t),
             void (*engine)(M_APM, int, M_APM)) {
    const auto mpfr = [this, theirs](const Operand &x, const Operand &) {
      theirs(out_, x.mpfr, MPFR_RNDN);
      keep(out_);
    };
    add(std::string("OCINumber") + name, passes, a, a, mpfr,
        [this, ours](const Operand &x, const Operand &) {
          ours(error_.errhp, &x.number, &result_);
          keep(&result_);
        });
    add(std::string("  engine ") + name, passes, a, a, mpfr,
        [this, engine](const Operand &x, const Operand &) {
          engine(engineResult_, kDecimals, x.engine);
          keep(engineResult_);
        });
  }

  void compare(const std::vector<Operand> &a, const std::vector<Operand> &b) {
    add(
        "OCINumberCmp", 200, a, b,
        [](const Operand &x, const Operand &y) {
          const int order = mpfr_cmp(x.mpfr, y.mpfr);
          keep(&order);
        },
        [this](const Operand &x, const Operand &y) {
          sword order = 0;
          OCINumberCmp(error_.errhp, &x.number, &y.number, &order);
          keep(&order);
        });
  }

  /// The way through text, of which the other rows have the results.
  void byText(const std::vector<Operand> &a, const std::vector<Operand> &b) {
    M_APM x = m_apm_init(), y = m_apm_init();
    add(
        "Add through text", 50, a, b,
        [this](const Operand &p, const Operand &q) {
          mpfr_add(out_, p.mpfr, q.mpfr, MPFR_RNDN);
          keep(out_);
        },
        [this, x, y](const Operand &p, const Operand &q) {
          readNumberByText(p.number, x);
          readNumberByText(q.number, y);
          m_apm_add(engineResult_, x, y);
          writeNumberByText(engineResult_, result_);
          keep(&result_);
        });
  }

  const int rounds_;
  const ErrorHandle error_;
  mpfr_t out_;
  M_APM engineResult_ = m_apm_init();
  OCINumber result_{};
  std::vector<Report> reports_;
};

}  // namespace
}  // namespace bench

int main(int argc, char **argv) {
  try {
    bench::Numbers(argc > 1 ? std::max(1, std::atoi(argv[1])) : 7).measureAll();
    return 0;
  } catch (const std::exception &failure) {
    std::fprintf(stderr, "zevoci_bench_numbers: %s\n", failure.what());
    return 2;
  }
}
