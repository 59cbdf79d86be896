/// Square roots against GMP's: rounded right in every digit, near squares and near ties.
#include <algorithm>

#include "decimal_fixture.h"

namespace zevtest {
namespace {

/// The root of integer * 10^(2 * tens), halves away from zero behind `places` + 1 digits.
std::string roundedRoot(const std::string &integer, int tens, int places) {
  // As many zeros behind the integer as give the root two digits more than are wanted.
  const int longer = std::max(places + 3, static_cast<int>(integer.size()));
  Integer square(integer + std::string(2 * static_cast<std::size_t>(longer), '0')), root;
  mpz_sqrt(root, square);
  const int cut = static_cast<int>(root.text().size()) - (places + 1);
  Integer unit;
  mpz_ui_pow_ui(unit, 10, static_cast<unsigned long>(cut - 1));
  mpz_tdiv_q(root, root, unit);
  mpz_add_ui(root, root, 5);
  mpz_tdiv_q_ui(root, root, 10);
  return root.text() + "E" + std::to_string(cut - longer + tens);
}

void expectRoot(const std::string &integer, int tens, int places) {
  const Number x(integer + "E" + std::to_string(2 * tens));
  Number root;
  m_apm_sqrt(root, places, x);
  expectNormalForm(root);
  ASSERT_EQ(m_apm_compare(root, Number(roundedRoot(integer, tens, places))), 0)
      << integer << "E" << 2 * tens << " to " << places << " places: " << root.text();
}

/// Mostly what numbers of 40 digits need, now and then the border to Newton's iteration.
int somePlaces(std::mt19937_64 &random) {
  if (random() % 16 == 0) return between(random, 990, 1010);
  return random() % 8 ? between(random, 0, 60) : between(random, 0, 400);
}

TEST(DecimalSquareRoot, IsRoundedRight) {
  std::mt19937_64 random = generator();
  for (int i = rounds(3000, 100'000); i > 0; --i) {
    expectRoot(randomDigits(random, someLength(random)), between(random, -100, 100),
               somePlaces(random));
    if (HasFatalFailure()) return;
  }
}

/// Of squares, and of the integers beside them.
TEST(DecimalSquareRoot, IsRoundedRightNearSquares) {
  std::mt19937_64 random = generator();
  for (int i = rounds(3000, 100'000); i > 0; --i) {
    Integer root(randomDigits(random, between(random, 1, 90)));
    Integer square;
    mpz_mul(square, root, root);
    if (random() % 3 == 0) mpz_add_ui(square, square, 1);
    if (random() % 3 == 0) mpz_sub_ui(square, square, 1);
    if (square.text() == "0") continue;
    const int places =
        random() % 2 ? between(random, 0, 300) : static_cast<int>(root.text().size()) - 1;
    expectRoot(square.text(), between(random, -20, 20), places);
    if (HasFatalFailure()) return;
  }
}

/// A root of one digit more than are wanted, that digit a 5, and its neighbours.
TEST(DecimalSquareRoot, IsRoundedRightNearTies) {
  std::mt19937_64 random = generator();
  for (int i = rounds(3000, 100'000); i > 0; --i) {
    const std::string digits = randomDigits(random, between(random, 1, 90)) + "5";
    Integer root(digits);
    Integer square;
    mpz_mul(square, root, root);
    const int by = between(random, -1, 1);
    if (by > 0) mpz_add_ui(square, square, 1);
    if (by < 0) mpz_sub_ui(square, square, 1);
    expectRoot(square.text(), between(random, -20, 20),
               static_cast<int>(digits.size()) - 2);
    if (HasFatalFailure()) return;
  }
}

/// Roots of nines and of a one with zeros, where the limbs of the root are the largest
/// and the smallest.
TEST(DecimalSquareRoot, IsRoundedRightAtTheBordersOfLimbs) {
  for (int length = 1; length <= 200; ++length) {
    const std::string nines(static_cast<std::size_t>(length), '9');
    for (const int places : {0, 1, 6, 7, 8, 14, 15, 16, 22, 23, 40, 100}) {
      expectRoot(nines, -length, places);
      expectRoot("1" + std::string(nines.size(), '0'), 3, places);
      expectRoot("1" + std::string(nines.size(), '0') + "1", 0, places);
      if (HasFatalFailure()) return;
    }
  }
}

}  // namespace
}  // namespace zevtest
