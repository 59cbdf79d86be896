/// Numbers that free themselves, random ones, and what the tests say about them.
#pragma once

#include <gmp.h>
#include <gtest/gtest.h>
#include <mpfr.h>

#include <cstdint>
#include <functional>
#include <random>
#include <string>

#include "decimal/m_apm.h"
#include "tests/support/random_inputs.h"

namespace zevtest {

/// An engine number for the length of a scope.
class Number {
 public:
  Number() : number_(m_apm_init()) {}
  explicit Number(const std::string &text) : Number() {
    m_apm_set_string(number_, text.c_str());
  }
  Number(const Number &) = delete;
  Number &operator=(const Number &) = delete;
  ~Number() { m_apm_free(number_); }

  operator M_APM() const { return number_; }
  M_APM operator->() const { return number_; }

  /// All its digits, as "-1.25E+3".
  std::string text() const { return scientific(-1); }
  std::string scientific(int places) const;
  std::string plain(int places) const;
  std::string integer() const;

 private:
  M_APM number_;
};

/// A binary number of so many bits for the length of a scope.
class Real {
 public:
  explicit Real(long bits) { mpfr_init2(value_, bits); }
  Real(const Real &) = delete;
  Real &operator=(const Real &) = delete;
  ~Real() { mpfr_clear(value_); }

  operator mpfr_ptr() { return value_; }

 private:
  mpfr_t value_;
};

/// An integer of GMP's for the length of a scope.
class Integer {
 public:
  Integer() { mpz_init(value_); }
  explicit Integer(const std::string &text) {
    mpz_init_set_str(value_, text.c_str(), 10);
  }
  Integer(const Integer &) = delete;
  Integer &operator=(const Integer &) = delete;
  ~Integer() { mpz_clear(value_); }

  operator mpz_ptr() { return value_; }
  std::string text() const;

 private:
  mpz_t value_;
};

/// How far a result lies from the true value, in units of the digit at `places` of the
/// latter.
double unitsOff(M_APM result, mpfr_ptr exact, int places);

/// `count` random digits, of which the first and the last are not 0. Runs of 0 and of 9
/// are frequent.
std::string randomDigits(std::mt19937_64 &random, int count);

/// A random number from `low` to `high`, both included.
int between(std::mt19937_64 &random, int low, int high);

/// Lengths around the borders of words, limbs, tables and tiers, and any others, up to
/// 3000.
int someLength(std::mt19937_64 &random);

/// What `work` writes to standard error.
std::string warningsOf(const std::function<void()> &work);

/// That a number is in normal form.
void expectNormalForm(M_APM number);

}  // namespace zevtest
