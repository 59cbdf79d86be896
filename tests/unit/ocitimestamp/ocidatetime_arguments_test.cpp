/// What the OCIDateTime functions say of arguments that are missing or cannot be read.
#include <functional>

#include "ocidatetime_fixture.h"

namespace zevtest {
namespace {

using Call = std::function<sword()>;

class OciDateTimeArguments : public OciDateTime {
 protected:
  OCIDateTime *const date_ =
      made(OCI_DTYPE_TIMESTAMP_TZ, 2001, 2, 3, 4, 5, 6, 0, "+01:00");
  OCIDateTime *const other_ =
      made(OCI_DTYPE_TIMESTAMP_TZ, 2001, 2, 4, 4, 5, 6, 0, "+01:00");
  OCIInterval *const span_ = interval(0, 1);
  OraText text_[64] = "03-FEB-01";
  ub1 bytes_[64] = {};
  ub1 ub1_[3] = {};
  sb1 sb1_[2] = {};
  sb2 year_ = 0;
  ub4 length_ = sizeof text_, valid_ = 0, fraction_ = 0;
  sword result_ = 0;
};

TEST_F(OciDateTimeArguments, NullsAreToldByTheirNumbers) {
  void *const h = env();
  struct Row {
    const char *number;
    Call call;
  };
  const Row rows[] = {
      {"1", [&] { return OCIDateTimeAssign(nullptr, err(), date_, other_); }},
      {"3", [&] { return OCIDateTimeAssign(h, err(), nullptr, other_); }},
      {"4", [&] { return OCIDateTimeAssign(h, err(), date_, nullptr); }},
      {"3", [&] { return OCIDateTimeCheck(nullptr, err(), nullptr, &valid_); }},
      {"4", [&] { return OCIDateTimeCheck(nullptr, err(), date_, nullptr); }},
      {"3", [&] { return OCIDateTimeCompare(h, err(), nullptr, other_, &result_); }},
      {"4", [&] { return OCIDateTimeCompare(h, err(), date_, nullptr, &result_); }},
      {"5", [&] { return OCIDateTimeCompare(h, err(), date_, other_, nullptr); }},
      {"1",
       [&] {
         return OCIDateTimeConstruct(nullptr, err(), date_, 1, 1, 1, 0, 0, 0, 0, nullptr,
                                     0);
       }},
      {"3",
       [&] {
         return OCIDateTimeConstruct(h, err(), nullptr, 1, 1, 1, 0, 0, 0, 0, nullptr, 0);
       }},
      {"3", [&] { return OCIDateTimeConvert(h, err(), nullptr, other_); }},
      {"4", [&] { return OCIDateTimeConvert(h, err(), date_, nullptr); }},
      {"1",
       [&] {
         return OCIDateTimeFromArray(nullptr, err(), bytes_, 7, 187, date_, span_, 0);
       }},
      {"5",
       [&] { return OCIDateTimeFromArray(h, err(), nullptr, 7, 187, date_, span_, 0); }},
      {"3",
       [&] { return OCIDateTimeFromArray(h, err(), bytes_, 7, 187, nullptr, span_, 0); }},
      {"1",
       [&] {
         return OCIDateTimeFromText(nullptr, err(), text_, 9, nullptr, 0, nullptr, 0,
                                    date_);
       }},
      {"3",
       [&] {
         return OCIDateTimeFromText(h, err(), nullptr, 9, nullptr, 0, nullptr, 0, date_);
       }},
      {"9",
       [&] {
         return OCIDateTimeFromText(h, err(), text_, 9, nullptr, 0, nullptr, 0, nullptr);
       }},
      {"1",
       [&] { return OCIDateTimeGetDate(nullptr, err(), date_, &year_, ub1_, ub1_ + 1); }},
      {"3",
       [&] { return OCIDateTimeGetDate(h, err(), nullptr, &year_, ub1_, ub1_ + 1); }},
      {"4", [&] { return OCIDateTimeGetDate(h, err(), date_, nullptr, ub1_, ub1_ + 1); }},
      {"5", [&] { return OCIDateTimeGetDate(h, err(), date_, &year_, nullptr, ub1_); }},
      {"6", [&] { return OCIDateTimeGetDate(h, err(), date_, &year_, ub1_, nullptr); }},
      {"1",
       [&] {
         return OCIDateTimeGetTime(nullptr, err(), date_, ub1_, ub1_, ub1_, &fraction_);
       }},
      {"3",
       [&] {
         return OCIDateTimeGetTime(h, err(), nullptr, ub1_, ub1_, ub1_, &fraction_);
       }},
      {"4",
       [&] {
         return OCIDateTimeGetTime(h, err(), date_, nullptr, ub1_, ub1_, &fraction_);
       }},
      {"5",
       [&] {
         return OCIDateTimeGetTime(h, err(), date_, ub1_, nullptr, ub1_, &fraction_);
       }},
      {"6",
       [&] {
         return OCIDateTimeGetTime(h, err(), date_, ub1_, ub1_, nullptr, &fraction_);
       }},
      {"7",
       [&] { return OCIDateTimeGetTime(h, err(), date_, ub1_, ub1_, ub1_, nullptr); }},
      {"1",
       [&] {
         return OCIDateTimeGetTimeZoneName(nullptr, err(), date_, text_, &length_);
       }},
      {"3",
       [&] { return OCIDateTimeGetTimeZoneName(h, err(), nullptr, text_, &length_); }},
      {"4",
       [&] { return OCIDateTimeGetTimeZoneName(h, err(), date_, nullptr, &length_); }},
      {"5", [&] { return OCIDateTimeGetTimeZoneName(h, err(), date_, text_, nullptr); }},
      {"1",
       [&] { return OCIDateTimeGetTimeZoneOffset(nullptr, err(), date_, sb1_, sb1_); }},
      {"3", [&] { return OCIDateTimeGetTimeZoneOffset(h, err(), nullptr, sb1_, sb1_); }},
      {"4", [&] { return OCIDateTimeGetTimeZoneOffset(h, err(), date_, nullptr, sb1_); }},
      {"5", [&] { return OCIDateTimeGetTimeZoneOffset(h, err(), date_, sb1_, nullptr); }},
      {"1", [&] { return OCIDateTimeIntervalAdd(nullptr, err(), date_, span_, other_); }},
      {"3", [&] { return OCIDateTimeIntervalAdd(h, err(), nullptr, span_, other_); }},
      {"5", [&] { return OCIDateTimeIntervalAdd(h, err(), date_, span_, nullptr); }},
      {"1", [&] { return OCIDateTimeIntervalSub(nullptr, err(), date_, span_, other_); }},
      {"3", [&] { return OCIDateTimeIntervalSub(h, err(), nullptr, span_, other_); }},
      {"4", [&] { return OCIDateTimeIntervalSub(h, err(), date_, nullptr, other_); }},
      {"5", [&] { return OCIDateTimeIntervalSub(h, err(), date_, span_, nullptr); }},
      {"3", [&] { return OCIDateTimeSubtract(nullptr, err(), nullptr, other_, span_); }},
      {"4", [&] { return OCIDateTimeSubtract(nullptr, err(), date_, nullptr, span_); }},
      {"5", [&] { return OCIDateTimeSubtract(nullptr, err(), date_, other_, nullptr); }},
      {"1", [&] { return OCIDateTimeSysTimeStamp(nullptr, err(), date_); }},
      {"3", [&] { return OCIDateTimeSysTimeStamp(h, err(), nullptr); }},
      {"1",
       [&] {
         return OCIDateTimeToArray(nullptr, err(), date_, span_, bytes_, &length_, 0);
       }},
      {"3",
       [&] { return OCIDateTimeToArray(h, err(), nullptr, span_, bytes_, &length_, 0); }},
      {"5",
       [&] { return OCIDateTimeToArray(h, err(), date_, span_, nullptr, &length_, 0); }},
      {"2",
       [&] {
         return OCIDateTimeToText(nullptr, err(), nullptr, nullptr, 0, 0, nullptr, 0,
                                  &length_, text_);
       }},
      {"6",
       [&] {
         return OCIDateTimeToText(nullptr, err(), date_, nullptr, 0, 0, nullptr, 0,
                                  nullptr, text_);
       }},
      {"7",
       [&] {
         return OCIDateTimeToText(nullptr, err(), date_, nullptr, 0, 0, nullptr, 0,
                                  &length_, nullptr);
       }},
  };
  for (const Row &row : rows) {
    const auto place = &row - rows;
    EXPECT_EQ(row.call(), OCI_ERROR) << place;
    EXPECT_EQ(records_.takeRecord(), 21560) << place;
    EXPECT_EQ(records_.lastMessage,
              std::string("KESTREL-21560: null, invalid, or out of range "
                          "argument ") +
                  row.number)
        << place;
  }
}

TEST_F(OciDateTimeArguments, WhatIsNoErrorHandleOrEnvironmentLeavesNoRecord) {
  for (OCIError *bad :
       {static_cast<OCIError *>(nullptr), reinterpret_cast<OCIError *>(env())}) {
    EXPECT_EQ(OCIDateTimeAssign(env(), bad, date_, other_), OCI_INVALID_HANDLE);
    EXPECT_EQ(OCIDateTimeCompare(env(), bad, date_, other_, &result_),
              OCI_INVALID_HANDLE);
    EXPECT_EQ(OCIDateTimeSubtract(env(), bad, date_, other_, span_), OCI_INVALID_HANDLE);
    EXPECT_EQ(OCIDateTimeCheck(env(), bad, date_, &valid_), OCI_INVALID_HANDLE);
  }
  for (void *bad : {static_cast<void *>(nullptr), static_cast<void *>(err())}) {
    EXPECT_EQ(OCIDateTimeCompare(bad, err(), nullptr, other_, &result_),
              OCI_INVALID_HANDLE);
    EXPECT_EQ(OCIDateTimeConvert(bad, err(), nullptr, other_), OCI_INVALID_HANDLE);
  }
  EXPECT_EQ(records_.takeRecord(), 0);
}

TEST_F(OciDateTimeArguments, WhatIsNoDescriptorIsAnInvalidHandle) {
  auto *bad = reinterpret_cast<OCIDateTime *>(span_);
  EXPECT_EQ(OCIDateTimeAssign(env(), err(), bad, other_), OCI_INVALID_HANDLE);
  EXPECT_EQ(OCIDateTimeCheck(env(), err(), bad, &valid_), OCI_INVALID_HANDLE);
  EXPECT_EQ(OCIDateTimeSubtract(env(), err(), date_, other_,
                                reinterpret_cast<OCIInterval *>(date_)),
            OCI_INVALID_HANDLE);
  EXPECT_EQ(records_.takeRecord(), 0);
}

TEST_F(OciDateTimeArguments, ValuesThatMayNotBeReadAre16384) {
  void *const h = env();
  const Call readers[] = {
      [&] { return OCIDateTimeCompare(h, err(), date_, other_, &result_); },
      [&] { return OCIDateTimeCompare(h, err(), other_, date_, &result_); },
      [&] { return OCIDateTimeConvert(h, err(), date_, other_); },
      [&] { return OCIDateTimeGetDate(h, err(), date_, &year_, ub1_, ub1_ + 1); },
      [&] { return OCIDateTimeGetTime(h, err(), date_, ub1_, ub1_, ub1_, &fraction_); },
      [&] { return OCIDateTimeGetTimeZoneName(h, err(), date_, text_, &length_); },
      [&] { return OCIDateTimeGetTimeZoneOffset(h, err(), date_, sb1_, sb1_); },
      [&] { return OCIDateTimeSubtract(h, err(), date_, other_, span_); },
      [&] { return OCIDateTimeSubtract(h, err(), other_, date_, span_); },
      [&] { return OCIDateTimeToArray(h, err(), date_, span_, bytes_, &length_, 0); },
      [&] {
        return OCIDateTimeToText(h, err(), date_, nullptr, 0, 0, nullptr, 0, &length_,
                                 text_);
      },
  };
  date_->body->valid = 0;
  for (const Call &reader : readers) {
    EXPECT_EQ(reader(), OCI_ERROR) << &reader - readers;
    EXPECT_EQ(records_.takeRecord(), 16384) << &reader - readers;
  }
}

TEST_F(OciDateTimeArguments, ArithmeticOnWhatMayNotBeReadIs932) {
  for (ub1 *valid : {&date_->body->valid, &other_->body->valid, &span_->body->valid}) {
    *valid = 0;
    EXPECT_EQ(OCIDateTimeIntervalAdd(env(), err(), date_, span_, other_), OCI_ERROR);
    EXPECT_EQ(records_.takeRecord(), 932);
    EXPECT_EQ(OCIDateTimeIntervalSub(env(), err(), date_, span_, other_), OCI_ERROR);
    EXPECT_EQ(records_.takeRecord(), 932);
    EXPECT_EQ(span_->body->interval.day, 1);
    *valid = 1;
  }
  EXPECT_EQ(OCIDateTimeIntervalAdd(env(), err(), date_, nullptr, other_), OCI_ERROR);
  EXPECT_EQ(records_.takeRecord(), 932);
}

TEST_F(OciDateTimeArguments, ArraysNeedAReferenceZone) {
  EXPECT_EQ(OCIDateTimeFromArray(env(), err(), bytes_, 7, 187, date_, nullptr, 0),
            OCI_INVALID_HANDLE);
  EXPECT_EQ(records_.takeRecord(), 100);
  EXPECT_EQ(OCIDateTimeToArray(env(), err(), date_, nullptr, bytes_, &length_, 0),
            OCI_INVALID_HANDLE);
  EXPECT_EQ(records_.takeRecord(), 100);
}

}  // namespace
}  // namespace zevtest
