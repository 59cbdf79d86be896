#include "types/ocitimestamp/datetime_parts.h"
#include "zevoci/errors.h"

namespace {

using zev::dates::Parts;

/// A byte as the interface's 8-bit arithmetic takes it.
sb1 asSigned(ub1 byte) {
  return static_cast<sb1>(byte);
}
bool isNegative(ub1 byte) {
  return asSigned(byte) < 0;
}

/// Brings `low` into 0 to `size` - 1 by units of `high`; a negative one borrows one more
/// than it needs.
void carry(ub1 &low, ub1 &high, int size) {
  if (isNegative(low)) {
    const int units = asSigned(low) / size;
    high = static_cast<ub1>(high + units - 1);
    low = static_cast<ub1>(low + size - units * size);
  } else if (low >= size) {
    high = static_cast<ub1>(high + low / size);
    low = static_cast<ub1>(low % size);
  }
}

void carryMonth(Parts &p) {
  if (p.month <= 12) return;
  p.year = static_cast<sb2>(p.year + p.month / 12);
  p.month %= 12;
}

void carryDay(Parts &p) {
  if (isNegative(p.day)) {
    if (p.month == 1) {
      p.month = 12;
      --p.year;
    } else {
      --p.month;
    }
    p.day = static_cast<ub1>(p.day + zev::daysOfMonth(p.year, p.month));
  } else if (p.day > zev::daysOfMonth(p.year, p.month)) {
    p.day = 1;
    ++p.month;
  }
}

/// What a part is tested for, by the types of the values that it is tested in.
struct PartTest {
  bool fails;
  sb4 error;
};

constexpr sb4 kYear = 9216;

sword failYear(OCIError *err, sb2 year) {
  char number[8];
  std::snprintf(number, sizeof number, "%d", year);
  ClearErrorHandle(err);
  AddErrorRecordStringX(err, OCI_ERROR, kYear, 2, number, "yr");
  return OCI_ERROR;
}

/// The first of the tests that fails, as a record.
sword check(OCIError *err, const OCIDateTimeBody &body, const Parts &p) {
  const bool isPlain = body.dateTimeType == OCI_DTYPE_TIMESTAMP,
             isZoned = zev::isZoned(body), isLocal = zev::isLocal(body);
  const PartTest tests[] = {
      {p.year == 0 && p.month == 0 && p.day == 0, 8207},
      {p.year == 0 || p.year > 9999, kYear},
      {p.day == 0, 3},
      {isNegative(p.day), 1},
      {p.month > 12, 4},
      {p.month == 0, 12},
      {p.day > zev::daysOfMonth(p.year, p.month), 1},
      {isZoned && isNegative(p.hour), 64},
      {isZoned && isNegative(p.minute), 256},
      {isZoned && isNegative(p.second), 1024},
      {isZoned && body.tzHour == 0 && p.hour > 23, 64},
      {(isPlain || isLocal) && p.hour > 23, 64},
      {isLocal && isNegative(p.minute), 256},
      {isLocal && p.second > 59, 1024},
      {isPlain && p.minute > 59, 256},
      {isPlain && p.second > 59, 1024},
  };
  for (const auto &[fails, error] : tests) {
    if (!fails) continue;
    if (error == kYear) return failYear(err, p.year);
    ClearErrorHandle(err);
    return zev::fail(err, error, o2pGetErrorText(error));
  }
  return OCI_SUCCESS;
}

}  // namespace

namespace zev::dates {

void ConstructTmFromData(OCIDate &out, Parts p) {
  if (p.second > 59) {
    p.minute = static_cast<ub1>(p.minute + p.second / 60);
    p.second %= 60;
  }
  carry(p.minute, p.hour, 60);
  carry(p.hour, p.day, 24);
  carryMonth(p);
  carryDay(p);
  carryMonth(p);
  out.OCIDateYYYY = p.year;
  out.OCIDateMM = p.month;
  out.OCIDateDD = p.day;
  out.OCIDateTime = {p.hour, p.minute, p.second};
}

sword construct(OCIError *err, OCIDateTimeBody &body, const Parts &parts,
                const char *timezone) {
  body.date = {parts.year, parts.month, parts.day, {0, 0, 0}};
  body.tzHour = 0;
  body.tzMinute = 0;
  if (hasTime(body)) {
    body.date.OCIDateTime = {parts.hour, parts.minute, parts.second};
    setFraction(body, parts.fraction);
  }
  if (hasZone(body)) {
    ub1 second = 0;
    if (DecodeTZ(timezone, &body.tzSeconds, &body.tzHour, &body.tzMinute, &second) ==
        -5) {
      body.tzMinute = 0;
      return fail(err, 16384);
    }
  }
  if (const sword status = check(err, body, parts); status != OCI_SUCCESS) return status;
  if (hasZone(body)) {
    writeZoneText(body, body.tzHour, body.tzMinute);
    if (isLocal(body)) body.tzSeconds = (body.tzHour * 60 + body.tzMinute) * 60;
  }
  if (hasTime(body)) ConstructTmFromData(body.date, parts);
  body.valid = 1;
  return OCI_SUCCESS;
}

}  // namespace zev::dates
