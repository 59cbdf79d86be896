/// OCINumber arithmetic beside the server's numeric.
#include <cmath>
#include <random>

#include "tests/integration/support/statement_fixture.h"
#include "tests/support/random_inputs.h"

namespace zev::test {
namespace {

using Unary = sword (*)(OCIError *, const OCINumber *, OCINumber *);
using Binary = sword (*)(OCIError *, const OCINumber *, const OCINumber *, OCINumber *);

class NumberTest : public StatementFixture {
 protected:
  OCINumber number(const std::string &text) {
    OCINumber made{};
    const Given given(text);
    EXPECT_EQ(OCINumberFromText(errhp(), given.text(), given.size(), nullptr, 0, nullptr,
                                0, &made),
              OCI_SUCCESS)
        << text;
    return made;
  }
  static std::string hex(const OCINumber &value) {
    std::string text;
    for (int i = 0; i <= value.OCINumberPart[0] && i < OCI_NUMBER_SIZE; ++i) {
      char two[8];
      std::snprintf(two, sizeof two, "%02x ", value.OCINumberPart[i]);
      text += two;
    }
    return text;
  }
  int between(int low, int high) {
    return std::uniform_int_distribution<int>(low, high)(random_);
  }
  /// Plain text of up to 18 digits before the point and 18 behind.
  std::string decimal() {
    std::string text = between(0, 1) ? "-" : "";
    text += static_cast<char>('1' + between(0, 8));
    for (int i = between(0, 17); i > 0; --i)
      text += static_cast<char>('0' + between(0, 9));
    if (between(0, 3)) {
      text += '.';
      for (int i = between(1, 18); i > 0; --i)
        text += static_cast<char>('0' + between(0, 9));
    }
    return text;
  }
  /// What the server makes of an expression, with 40 decimals as results have them.
  OCINumber server(const std::string &expression) {
    return number(inSession("SELECT round(" + expression + ", 40)::text"));
  }
  static std::string quoted(const std::string &text) { return "'" + text + "'::numeric"; }
  double real(const OCINumber &value) {
    double out = 0;
    EXPECT_EQ(OCINumberToReal(errhp(), &value, sizeof out, &out), OCI_SUCCESS);
    return out;
  }
  /// Both agree but for a part of `least` of the value.
  void expectNear(const OCINumber &ours, const OCINumber &theirs, double least,
                  const std::string &what) {
    OCINumber difference{};
    ASSERT_EQ(OCINumberSub(errhp(), &ours, &theirs, &difference), OCI_SUCCESS);
    ASSERT_LE(std::fabs(real(difference)), least * std::fabs(real(theirs)) + 1e-39)
        << what << ": " << hex(ours) << " and " << hex(theirs);
  }

  std::mt19937_64 random_ = zevtest::generator();
  const int count_ = zevtest::rounds(300, 20'000);
};

TEST_F(NumberTest, ExactOperationsHaveTheServersDigits) {
  for (int i = 0; i < count_; ++i) {
    const std::string a = decimal(), b = decimal();
    const OCINumber x = number(a), y = number(b);
    const std::pair<Binary, const char *> binary[] = {{OCINumberAdd, " + "},
                                                      {OCINumberSub, " - "},
                                                      {OCINumberMul, " * "},
                                                      {OCINumberMod, " % "}};
    for (const auto &[function, sign] : binary) {
      OCINumber ours{};
      ASSERT_EQ(function(errhp(), &x, &y, &ours), OCI_SUCCESS);
      ASSERT_EQ(hex(ours), hex(server(quoted(a) + sign + quoted(b)))) << a << sign << b;
    }
    const std::pair<Unary, const char *> unary[] = {
        {OCINumberNeg, "-"}, {OCINumberCeil, "ceil"}, {OCINumberFloor, "floor"}};
    for (const auto &[function, name] : unary) {
      OCINumber ours{};
      ASSERT_EQ(function(errhp(), &x, &ours), OCI_SUCCESS);
      ASSERT_EQ(hex(ours), hex(server(std::string(name) + "(" + quoted(a) + ")")))
          << name << a;
    }
    sword order = 9;
    ASSERT_EQ(OCINumberCmp(errhp(), &x, &y, &order), OCI_SUCCESS);
    ASSERT_EQ(std::to_string(order),
              inSession("SELECT sign(" + quoted(a) + " - " + quoted(b) + ")::int"));
  }
}

TEST_F(NumberTest, RoundingIsTheServers) {
  for (int i = 0; i < count_; ++i) {
    const std::string a = decimal();
    const OCINumber x = number(a);
    // A number keeps so many digits before its first decimal that none is out of reach.
    const int places = between(0, 17);
    OCINumber rounded{}, cut{};
    ASSERT_EQ(OCINumberRound(errhp(), &x, places, &rounded), OCI_SUCCESS);
    ASSERT_EQ(real(rounded),
              real(server("round(" + quoted(a) + ", " + std::to_string(places) + ")")))
        << a << " to " << places;
    ASSERT_EQ(OCINumberTrunc(errhp(), &x, places, &cut), OCI_SUCCESS);
    ASSERT_EQ(real(cut),
              real(server("trunc(" + quoted(a) + ", " + std::to_string(places) + ")")))
        << a << " to " << places;
  }
}

TEST_F(NumberTest, OtherOperationsAreNearTheServers) {
  for (int i = 0; i < count_; ++i) {
    const std::string a = decimal(), b = decimal();
    const std::string positive = a[0] == '-' ? a.substr(1) : a;
    const OCINumber x = number(a), y = number(b), p = number(positive);
    OCINumber ours{};
    ASSERT_EQ(OCINumberDiv(errhp(), &x, &y, &ours), OCI_SUCCESS);
    expectNear(ours, server(quoted(a) + "::numeric(120, 80) / " + quoted(b)), 1e-36,
               a + " / " + b);
    ASSERT_EQ(OCINumberSqrt(errhp(), &p, &ours), OCI_SUCCESS);
    expectNear(ours, server("sqrt(" + quoted(positive) + "::numeric(120, 60))"), 1e-36,
               "root of " + positive);
    ASSERT_EQ(OCINumberLn(errhp(), &p, &ours), OCI_SUCCESS);
    expectNear(ours, server("ln(" + quoted(positive) + "::numeric(120, 60))"), 1e-36,
               "logarithm of " + positive);
    const std::string small = "0." + std::to_string(between(1, 999999));
    const OCINumber s = number(small);
    ASSERT_EQ(OCINumberExp(errhp(), &s, &ours), OCI_SUCCESS);
    expectNear(ours, server("exp(" + quoted(small) + "::numeric(120, 60))"), 1e-36,
               "exponential of " + small);
  }
}

/// A number crosses to the server and back but for the last digits.
TEST_F(NumberTest, ComputedNumbersAreBoundAndFetched) {
  for (int i = 0; i < 50; ++i) {
    const OCINumber x = number(decimal()), y = number(decimal());
    OCINumber product{};
    ASSERT_EQ(OCINumberMul(errhp(), &x, &y, &product), OCI_SUCCESS);
    Statement stmt = statement("SELECT CAST(:v AS numeric)");
    ASSERT_EQ(stmt.bind(":v", &product, sizeof product, SQLT_VNU), OCI_SUCCESS);
    OCINumber back{};
    ASSERT_EQ(stmt.define(1, &back, sizeof back, SQLT_VNU), OCI_SUCCESS);
    ASSERT_EQ(stmt.execute(), OCI_SUCCESS) << errorText();
    // A fetched number has up to 19 bytes of digits, one less than a computed one.
    expectNear(back, product, 1e-36, "product");
  }
}

}  // namespace
}  // namespace zev::test
