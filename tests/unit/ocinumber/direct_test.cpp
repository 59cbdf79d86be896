/// The way between encodings and the engine without text.
#include "decimal/direct.h"

#include "decimal/exchange.h"
#include "ocinumber_fixture.h"

namespace zevtest {
namespace {

class Direct : public Numbers {
 protected:
  Direct() : a_(m_apm_init()), b_(m_apm_init()) {}
  ~Direct() override {
    m_apm_free(a_);
    m_apm_free(b_);
  }
  M_APM a_, b_;
};

TEST_F(Direct, ExponentsThereAndBack) {
  for (int power = -126; power <= 124; power += 2) {
    for (const boolean positive : {0, 1}) {
      OCINumber x{};
      x.OCINumberPart[1] = EncodeOCIExponent(static_cast<sb2>(power), positive);
      if (x.OCINumberPart[1] == 0x80) continue;
      EXPECT_EQ(DecodeOCIExponent(&x), power) << int{positive};
    }
  }
  const OCINumber zero = number("0");
  EXPECT_EQ(DecodeOCIExponent(&zero), 0);
  EXPECT_EQ(EncodeOCIExponent(3, 1), EncodeOCIExponent(2, 1)) << "halves are cut";
  EXPECT_EQ(EncodeOCIExponent(-3, 1), EncodeOCIExponent(-2, 1));
}

TEST_F(Direct, NumbersAreReadAsThroughText) {
  for (int i = 0; i < rounds(20000, 1000000); ++i) {
    const OCINumber x = random(38, 60);
    ASSERT_EQ(ConvertOCINumberToM_APM(&x, a_), 0) << hex(x);
    ASSERT_TRUE(zev::decimal::readNumberByText(x, b_));
    ASSERT_EQ(m_apm_compare(a_, b_), 0) << hex(x);
  }
}

TEST_F(Direct, NumbersLeadThereAndBack) {
  for (int i = 0; i < rounds(20000, 1000000); ++i) {
    const OCINumber x = random(38, 60);
    OCINumber back;
    ASSERT_EQ(ConvertOCINumberToM_APM(&x, a_), 0);
    ASSERT_EQ(ConvertM_APMToOCINumber(a_, &back), 0);
    ASSERT_EQ(value(back), value(x)) << hex(x);
  }
}

TEST_F(Direct, ZerosAtTheEndsAreStripped) {
  OCINumber x = {{5, 0xC1, 2, 3, 1, 1}};
  StripOCINumber(&x);
  EXPECT_EQ(hex(x), "03 C1 02 03");
  x = {{4, 0xC2, 1, 2, 3}};
  StripOCINumber(&x);
  EXPECT_EQ(hex(x), "03 C1 02 03");
  x = {{4, 0x3E, 100, 101, 102}};
  StripOCINumber(&x);
  EXPECT_EQ(hex(x), "03 3E 64 66");
}

TEST_F(Direct, WhatIsNoNumberIsRefused) {
  OCINumber x;
  EXPECT_EQ(ConvertM_APMToOCINumber(nullptr, &x), -1);
  EXPECT_EQ(ConvertOCINumberToM_APM(nullptr, a_), -1);
  m_apm_set_string(a_, std::string(81, '7').c_str());
  EXPECT_EQ(ConvertM_APMToOCINumber(a_, &x), -1);
  const auto cookie = a_->cookie;
  m_apm_set_long(a_, 5);
  a_->cookie = 7;
  EXPECT_EQ(ConvertM_APMToOCINumber(a_, &x), -1);
  a_->cookie = cookie;
  m_apm_set_long(a_, 0);
  ASSERT_EQ(ConvertM_APMToOCINumber(a_, &x), 0);
  EXPECT_EQ(hex(x), "01 80");
  EXPECT_TRUE(MAPMIsZero(a_));
  EXPECT_TRUE(OCINumberIsZero2(&x));
  const OCINumber bad = {{3, 0xC1, 2, 103}};
  EXPECT_EQ(ConvertOCINumberToM_APM(&bad, a_), -1);
}

}  // namespace
}  // namespace zevtest
