/// The direct way between encodings and the engine's numbers beside the way through text.
#include "decimal/exchange.h"

#include "ocinumber_fixture.h"

namespace zevtest {
namespace {

using namespace zev::decimal;

class Exchange : public Numbers {
 protected:
  Exchange() : a_(m_apm_init()), b_(m_apm_init()) {}
  ~Exchange() override {
    m_apm_free(a_);
    m_apm_free(b_);
  }
  static std::string shown(M_APM number) {
    char text[1000];
    m_apm_to_string(text, -1, number);
    return text + std::string(" of ") + std::to_string(number->digitCount) + " sign " +
           std::to_string(number->sign);
  }
  void expectReadAlike(const OCINumber &encoding) {
    m_apm_set_long(a_, 7);
    m_apm_set_long(b_, 7);
    const bool direct = readNumber(encoding, a_), byText = readNumberByText(encoding, b_);
    ASSERT_EQ(direct, byText) << hex(encoding);
    if (!direct) return;
    ASSERT_EQ(shown(a_), shown(b_)) << hex(encoding);
    ASSERT_EQ(m_apm_compare(a_, b_), 0) << hex(encoding);
  }
  void expectWrittenAlike() {
    OCINumber direct, byText;
    std::memset(&direct, 0x55, sizeof direct);
    byText = direct;
    ASSERT_EQ(writeNumber(a_, direct), writeNumberByText(a_, byText)) << shown(a_);
    ASSERT_EQ(std::memcmp(&direct, &byText, sizeof direct), 0)
        << shown(a_) << " is " << hex(direct) << ", not " << hex(byText);
  }

  M_APM a_, b_;
};

TEST_F(Exchange, EncodingsAreReadAlike) {
  for (int i = 0; i < rounds(100000, 5000000); ++i) expectReadAlike(random(44, 126));
}

TEST_F(Exchange, ArbitraryBytesAreReadAlike) {
  for (int i = 0; i < rounds(200000, 10000000); ++i) {
    OCINumber encoding;
    for (ub1 &byte : encoding.OCINumberPart) {
      // Mostly bytes that digits have.
      byte = static_cast<ub1>(between(0, 9) ? between(0, 104) : between(0, 255));
    }
    encoding.OCINumberPart[0] = static_cast<ub1>(between(0, 22));
    encoding.OCINumberPart[1] = static_cast<ub1>(between(0, 255));
    const int last = encoding.OCINumberPart[0];
    if (last < 22 && between(0, 1)) encoding.OCINumberPart[last] = 102;
    expectReadAlike(encoding);
    if (HasFatalFailure()) return;
  }
}

TEST_F(Exchange, NumbersAreWrittenAlike) {
  for (int i = 0; i < rounds(200000, 10000000); ++i) {
    std::string text = decimal(between(0, 1) ? 45 : 170, 0);
    text = text.substr(0, text.find('E'));
    text += "E" + std::to_string(between(0, 9) ? between(-90, 90) : between(-300, 300));
    m_apm_set_string(a_, text.c_str());
    expectWrittenAlike();
    if (HasFatalFailure()) return;
  }
}

TEST_F(Exchange, RoundingRunsThroughNines) {
  for (int power = -45; power <= 60; ++power) {
    for (const char *digits : {"0.5", "0.49", "0.9", "0.99999999999999999999",
                               "0.9999999999999999999999999999999999999999",
                               "0.99999999999999999999999999999999999999999999999999999",
                               "0.1", "0.10", "0.05", "0.04", "0.95"}) {
      for (const char *sign : {"", "-"}) {
        m_apm_set_string(
            a_, (std::string(sign) + digits + "E" + std::to_string(power)).c_str());
        expectWrittenAlike();
      }
    }
  }
}

TEST_F(Exchange, TheFortyFirstDecimalRoundsAwayFromZero) {
  OCINumber out;
  m_apm_set_string(a_, "5E-41");
  ASSERT_TRUE(writeNumber(a_, out));
  EXPECT_EQ(value(out), "1e-40");
  m_apm_set_string(a_, "-4.9E-41");
  ASSERT_TRUE(writeNumber(a_, out));
  EXPECT_EQ(hex(out), "01 80");
}

TEST_F(Exchange, IntegersKeepTheirZerosUpToThePoint) {
  OCINumber out;
  m_apm_set_string(a_, "100");
  ASSERT_TRUE(writeNumber(a_, out));
  EXPECT_EQ(hex(out), "03 C2 02 01");
}

TEST_F(Exchange, NumbersThatNoEncodingHoldsAreRefused) {
  for (const char *text : {"1E212", "-1E300", "1E100000", "9E2147483000"}) {
    OCINumber out = number("7"), before = out;
    m_apm_set_string(a_, text);
    EXPECT_FALSE(writeNumber(a_, out)) << text;
    EXPECT_EQ(std::memcmp(&out, &before, sizeof out), 0);
  }
}

}  // namespace
}  // namespace zevtest
