// zevoci_bench_decimal: each call of the decimal engine beside MPFR at the same
// precision, and multiplication from 40 to 100,000 digits. Needs no server.
//
// usage: zevoci_bench_decimal [PLACES...]   (40)
#include <mpfr.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "bench/measure.h"
#include "decimal/m_apm.h"

namespace bench {
namespace {

constexpr double kBitsPerDigit = 3.3219280948873623;

/// The same number for both sides.
class Operand {
 public:
  Operand(const std::string &text, long bits) : decimal(m_apm_init()) {
    m_apm_set_string(decimal, text.c_str());
    mpfr_init2(binary, bits);
    mpfr_set_str(binary, text.c_str(), 10, MPFR_RNDN);
  }
  Operand(const Operand &) = delete;
  Operand &operator=(const Operand &) = delete;
  ~Operand() {
    m_apm_free(decimal);
    mpfr_clear(binary);
  }

  M_APM decimal;
  mpfr_t binary;
};

/// Operations a second: the best of many rounds, each long enough for the clock and
/// short enough to stay undisturbed.
double rate(const std::function<void()> &operation) {
  constexpr double kRound = 0.001;
  constexpr int kRounds = 60;
  int count = 1;
  const auto round = [&] {
    return seconds([&] {
      for (int i = 0; i < count; ++i) operation();
    });
  };
  while (round() < kRound) count *= 2;
  double best = round();
  for (int i = 1; i < kRounds; ++i) best = std::min(best, round());
  return count / best;
}

void printHead(const char *what) {
  std::printf("\n%-14s %14s %14s %10s %8s\n", what, "engine 1/s", "MPFR 1/s", "engine us",
              "ratio");
}

void printRow(const std::string &name, double engine, double mpfr) {
  std::printf("%-14s %14.0f %14.0f %10.3f %8.3f\n", name.c_str(), engine, mpfr,
              1e6 / engine, engine / mpfr);
}

std::string digitsOf(int count) {
  std::string digits;
  for (unsigned seed = 12345; static_cast<int>(digits.size()) < count;
       seed = seed * 1664525 + 1013904223)
    digits += std::to_string(seed % 9000 + 1000);
  digits.resize(static_cast<std::size_t>(count));
  return digits;
}

using Engine1 = void (*)(M_APM, int, M_APM);
using Mpfr1 = int (*)(mpfr_ptr, mpfr_srcptr, mpfr_rnd_t);
using Exact2 = void (*)(M_APM, M_APM, M_APM);
using Engine2 = void (*)(M_APM, int, M_APM, M_APM);
using Mpfr2 = int (*)(mpfr_ptr, mpfr_srcptr, mpfr_srcptr, mpfr_rnd_t);

struct Row1 {
  const char *name;
  const char *before;  ///< what stands before the digits of the argument
  Engine1 engine;
  Mpfr1 mpfr;
};

// clang-format off
const Row1 kFunctions[] = {
    {"sqrt",    "7.",  m_apm_sqrt,    mpfr_sqrt},   {"cbrt",    "7.",  m_apm_cbrt,    mpfr_cbrt},
    {"log",     "7.",  m_apm_log,     mpfr_log},    {"log10",   "7.",  m_apm_log10,   mpfr_log10},
    {"exp",     "7.",  m_apm_exp,     mpfr_exp},    {"sin",     "0.7", m_apm_sin,     mpfr_sin},
    {"cos",     "0.7", m_apm_cos,     mpfr_cos},    {"tan",     "0.7", m_apm_tan,     mpfr_tan},
    {"arcsin",  "0.7", m_apm_arcsin,  mpfr_asin},   {"arccos",  "0.7", m_apm_arccos,  mpfr_acos},
    {"arctan",  "0.7", m_apm_arctan,  mpfr_atan},   {"sinh",    "0.7", m_apm_sinh,    mpfr_sinh},
    {"cosh",    "0.7", m_apm_cosh,    mpfr_cosh},   {"tanh",    "0.7", m_apm_tanh,    mpfr_tanh},
    {"arcsinh", "0.7", m_apm_arcsinh, mpfr_asinh},  {"arccosh", "7.",  m_apm_arccosh, mpfr_acosh},
    {"arctanh", "0.7", m_apm_arctanh, mpfr_atanh},
};
// clang-format on

void benchOperations(int places) {
  const auto bits = static_cast<long>((places + 1) * kBitsPerDigit) + 1;
  const std::string digits = digitsOf(places + 1);
  Operand a("7." + digits.substr(1), bits),
      b("3." + digits.substr(0, digits.size() - 1), bits);
  Operand r("0", bits);
  const std::vector<std::pair<const char *, std::pair<Exact2, Mpfr2>>> exact = {
      {"add", {m_apm_add, mpfr_add}},
      {"subtract", {m_apm_subtract, mpfr_sub}},
      {"multiply", {m_apm_multiply, mpfr_mul}}};
  for (const auto &[name, pair] : exact) {
    const auto [engine, mpfr] = pair;
    printRow(name,
             rate([&, engine = engine] { engine(r.decimal, a.decimal, b.decimal); }),
             rate([&, mpfr = mpfr] { mpfr(r.binary, a.binary, b.binary, MPFR_RNDN); }));
  }
  const std::vector<std::pair<const char *, std::pair<Engine2, Mpfr2>>> rounded = {
      {"divide", {m_apm_divide, mpfr_div}},
      {"pow", {m_apm_pow, mpfr_pow}},
      {"arctan2", {m_apm_arctan2, mpfr_atan2}}};
  for (const auto &[name, pair] : rounded) {
    const auto [engine, mpfr] = pair;
    printRow(name, rate([&, engine = engine] {
               engine(r.decimal, places, a.decimal, b.decimal);
             }),
             rate([&, mpfr = mpfr] { mpfr(r.binary, a.binary, b.binary, MPFR_RNDN); }));
  }
}

void benchText(int places) {
  const auto bits = static_cast<long>((places + 1) * kBitsPerDigit) + 1;
  const std::string text = "7." + digitsOf(places);
  Operand a(text, bits);
  std::string out(static_cast<std::size_t>(places) + 64, '\0');
  printRow("from text", rate([&] { m_apm_set_string(a.decimal, text.c_str()); }),
           rate([&] { mpfr_set_str(a.binary, text.c_str(), 10, MPFR_RNDN); }));
  printRow(
      "to text", rate([&] { m_apm_to_fixpt_string(out.data(), places, a.decimal); }),
      rate([&] { mpfr_snprintf(out.data(), out.size(), "%.*Rf", places, a.binary); }));
}

void benchFunctions(int places) {
  const auto bits = static_cast<long>((places + 1) * kBitsPerDigit) + 1;
  Operand r("0", bits);
  for (const Row1 &row : kFunctions) {
    Operand x(row.before + digitsOf(places), bits);
    printRow(row.name, rate([&] { row.engine(r.decimal, places, x.decimal); }),
             rate([&] { row.mpfr(r.binary, x.binary, MPFR_RNDN); }));
  }
}

void benchMultiplication() {
  printHead("digits");
  for (const int digits :
       {40, 80, 160, 320, 640, 1250, 2500, 5000, 10000, 25000, 50000, 100000}) {
    const auto bits = static_cast<long>(digits * kBitsPerDigit) + 1;
    const std::string text = digitsOf(digits);
    Operand a("7" + text.substr(1), bits), b("3" + text.substr(0, text.size() - 1), bits);
    Operand r("0", 2 * bits);
    printRow(std::to_string(digits),
             rate([&] { m_apm_multiply(r.decimal, a.decimal, b.decimal); }),
             rate([&] { mpfr_mul(r.binary, a.binary, b.binary, MPFR_RNDN); }));
  }
}

void benchPlaces(int places) {
  printHead((std::to_string(places) + " places").c_str());
  benchOperations(places);
  benchText(places);
  benchFunctions(places);
}

}  // namespace
}  // namespace bench

int main(int argc, char **argv) {
  if (argc == 1) bench::benchPlaces(40);
  for (int i = 1; i < argc; ++i) bench::benchPlaces(std::max(1, std::atoi(argv[i])));
  bench::benchMultiplication();
  return 0;
}
