// zevoci_bench_decimal: each call of the decimal engine beside MPFR at the same
// precision and, where it has it, the decNumber library, and multiplication from 40 to
// 100,000 digits. Needs no server.
//
// usage: zevoci_bench_decimal [PLACES...]   (40)
#include <mpfr.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "bench/decimal_peer.h"
#include "bench/measure.h"
#include "decimal/m_apm.h"

namespace bench {
namespace {

constexpr double kBitsPerDigit = 3.3219280948873623;

/// Bits that hold so many digits.
long bitsFor(int digits) {
  return static_cast<long>(digits * kBitsPerDigit) + 1;
}

/// The same number for all sides.
class Operand {
 public:
  Operand(const std::string &text, int digits)
      : decimal(m_apm_init()), peer(text, digits) {
    m_apm_set_string(decimal, text.c_str());
    mpfr_init2(binary, bitsFor(digits));
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
  PeerNumber peer;
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
  std::printf("\n%-14s %14s %14s %14s %10s %8s\n", what, "engine 1/s", "MPFR 1/s",
              "decNumber 1/s", "engine us", "ratio");
}

/// `ratio` is to MPFR. A `peer` of 0 stands for none.
void printRow(const std::string &name, double engine, double mpfr, double peer = 0) {
  std::printf("%-14s %14.0f %14.0f ", name.c_str(), engine, mpfr);
  if (peer > 0)
    std::printf("%14.0f ", peer);
  else
    std::printf("%14s ", "-");
  std::printf("%10.3f %8.3f\n", 1e6 / engine, engine / mpfr);
}

/// That of the decNumber library, 0 where it does not have the operation.
double peerRate(const std::string &name, Operand &r, const Operand &a, const Operand &b) {
  const PeerOperation compute = peerOperation(name);
  return compute ? rate([&] { compute(r.peer, a.peer, b.peer); }) : 0;
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
  const std::string digits = digitsOf(places + 1);
  Operand a("7." + digits.substr(1), places + 1),
      b("3." + digits.substr(0, digits.size() - 1), places + 1);
  Operand r("0", places + 1);
  const std::vector<std::pair<const char *, std::pair<Exact2, Mpfr2>>> exact = {
      {"add", {m_apm_add, mpfr_add}},
      {"subtract", {m_apm_subtract, mpfr_sub}},
      {"multiply", {m_apm_multiply, mpfr_mul}}};
  for (const auto &[name, pair] : exact) {
    const auto [engine, mpfr] = pair;
    printRow(name,
             rate([&, engine = engine] { engine(r.decimal, a.decimal, b.decimal); }),
             rate([&, mpfr = mpfr] { mpfr(r.binary, a.binary, b.binary, MPFR_RNDN); }),
             peerRate(name, r, a, b));
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
             rate([&, mpfr = mpfr] { mpfr(r.binary, a.binary, b.binary, MPFR_RNDN); }),
             peerRate(name, r, a, b));
  }
}

void benchText(int places) {
  const std::string text = "7." + digitsOf(places);
  Operand a(text, places + 1);
  std::string out(static_cast<std::size_t>(places) + 64, '\0');
  printRow("from text", rate([&] { m_apm_set_string(a.decimal, text.c_str()); }),
           rate([&] { mpfr_set_str(a.binary, text.c_str(), 10, MPFR_RNDN); }));
  printRow(
      "to text", rate([&] { m_apm_to_fixpt_string(out.data(), places, a.decimal); }),
      rate([&] { mpfr_snprintf(out.data(), out.size(), "%.*Rf", places, a.binary); }));
}

void benchFunctions(int places) {
  Operand r("0", places + 1);
  for (const Row1 &row : kFunctions) {
    Operand x(row.before + digitsOf(places), places + 1);
    printRow(row.name, rate([&] { row.engine(r.decimal, places, x.decimal); }),
             rate([&] { row.mpfr(r.binary, x.binary, MPFR_RNDN); }),
             peerRate(row.name, r, x, x));
  }
}

void benchMultiplication() {
  constexpr int kMostPeerDigits = 10'000;  // by schoolbook, whose time grows too far
  printHead("digits");
  for (const int digits :
       {40, 80, 160, 320, 640, 1250, 2500, 5000, 10000, 25000, 50000, 100000}) {
    const std::string text = digitsOf(digits);
    Operand a("7" + text.substr(1), digits),
        b("3" + text.substr(0, text.size() - 1), digits);
    Operand r("0", 2 * digits);
    printRow(std::to_string(digits),
             rate([&] { m_apm_multiply(r.decimal, a.decimal, b.decimal); }),
             rate([&] { mpfr_mul(r.binary, a.binary, b.binary, MPFR_RNDN); }),
             digits <= kMostPeerDigits ? peerRate("multiply", r, a, b) : 0);
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
