#include "decimal_fixture.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <memory>

namespace zevtest {
namespace {

/// What MPFR keeps for itself is no leak.
class MpfrCache : public testing::Environment {
  void TearDown() override { mpfr_free_cache(); }
};
const testing::Environment *const kMpfrCache =
    testing::AddGlobalTestEnvironment(new MpfrCache);

}  // namespace

std::string Number::scientific(int places) const {
  const int digits = places < 0 ? number_->digitCount : places;
  std::string text(static_cast<std::size_t>(digits) + 32, '\0');
  m_apm_to_string(text.data(), places, number_);
  return text.c_str();
}

std::string Number::plain(int places) const {
  const auto digits = static_cast<std::size_t>(
      std::abs(number_->exponent) + std::max(places, 0) + number_->digitCount + 8);
  std::string text(digits, '\0');
  m_apm_to_fixpt_string(text.data(), places, number_);
  return text.c_str();
}

std::string Number::integer() const {
  std::string text(static_cast<std::size_t>(std::max(number_->exponent, 0) + 4), '\0');
  m_apm_to_integer_string(text.data(), number_);
  return text.c_str();
}

std::string Integer::text() const {
  const std::unique_ptr<char, decltype(&std::free)> text(mpz_get_str(nullptr, 10, value_),
                                                         std::free);
  return text.get();
}

double unitsOff(M_APM result, mpfr_ptr exact, int places) {
  std::string text(static_cast<std::size_t>(result->digitCount) + 32, '\0');
  m_apm_to_string(text.data(), -1, result);
  const long bits = mpfr_get_prec(exact);
  Real value(bits), unit(bits);
  mpfr_set_str(value, text.c_str(), 10, MPFR_RNDN);
  mpfr_sub(value, value, exact, MPFR_RNDN);
  if (mpfr_zero_p(value)) return 0;
  if (mpfr_zero_p(exact)) return 1e300;
  mpfr_abs(unit, exact, MPFR_RNDN);
  mpfr_log10(unit, unit, MPFR_RNDN);
  mpfr_floor(unit, unit);
  mpfr_sub_si(unit, unit, places, MPFR_RNDN);
  mpfr_exp10(unit, unit, MPFR_RNDN);
  mpfr_div(value, value, unit, MPFR_RNDN);
  return std::abs(mpfr_get_d(value, MPFR_RNDA));
}

int between(std::mt19937_64 &random, int low, int high) {
  return std::uniform_int_distribution<int>(low, high)(random);
}

std::string randomDigits(std::mt19937_64 &random, int count) {
  std::string digits;
  while (static_cast<int>(digits.size()) < count) {
    const int kind = between(random, 0, 5);
    const auto run = static_cast<std::size_t>(between(random, 1, 12));
    if (kind < 2)
      digits.append(run, kind == 0 ? '0' : '9');
    else
      digits += std::to_string(random());
  }
  digits.resize(static_cast<std::size_t>(count));
  for (char *end : {&digits.front(), &digits.back()})
    if (*end == '0') *end = static_cast<char>('1' + random() % 9);
  return digits;
}

int someLength(std::mt19937_64 &random) {
  constexpr int kBorders[] = {1,  2,  7,  8,  9,  15,  16,  17,
                              40, 94, 95, 96, 97, 128, 160, 161};
  switch (random() % 8) {
    case 0:
      return kBorders[random() % std::size(kBorders)];
    case 1:
      return between(random, 1, 400);
    case 2:
      return random() % 16 ? between(random, 1, 100) : between(random, 400, 3000);
    default:
      return between(random, 1, 80);
  }
}

std::string warningsOf(const std::function<void()> &work) {
  testing::internal::CaptureStderr();
  work();
  return testing::internal::GetCapturedStderr();
}

void expectNormalForm(M_APM number) {
  ASSERT_GE(number->digitCount, 1);
  ASSERT_LE((number->digitCount + 1) / 2, number->capacityBytes);
  const unsigned char first = number->digits[0];
  const unsigned char last = number->digits[(number->digitCount - 1) / 2];
  if (number->sign == 0) {
    EXPECT_EQ(number->exponent, 0);
    EXPECT_EQ(number->digitCount, 1);
    EXPECT_EQ(first, 0);
    return;
  }
  EXPECT_TRUE(number->sign == 1 || number->sign == -1);
  EXPECT_GE(first, 10);
  for (int i = 0; i < (number->digitCount + 1) / 2; ++i)
    EXPECT_LT(number->digits[i], 100);
  if (number->digitCount % 2 == 0)
    EXPECT_NE(last % 10, 0);
  else
    EXPECT_EQ(last % 10, 0);
  EXPECT_NE(last, 0);
}

}  // namespace zevtest
