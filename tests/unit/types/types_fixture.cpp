#include "types_fixture.h"

#include "types/numeric.h"
#include "zevoci/conversion.h"
#include "zevoci/string_value.h"

std::string zevtest::hex(const std::string &bytes) {
  std::string out;
  char two[4];
  for (const char c : bytes) {
    std::snprintf(two, sizeof two, "%02X ", static_cast<unsigned char>(c));
    out += two;
  }
  if (!out.empty()) out.pop_back();
  return out;
}

std::string zevtest::wireNumeric(const std::string &number) {
  numeric *record = nullptr;
  EXPECT_EQ(ConvertStringToNumeric(number.c_str(), &record), 0);
  const std::unique_ptr<numeric, decltype(&std::free)> owned(record, std::free);
  const std::size_t size = zev::numericSize(record->ndigits);
  ConvertNumericFromHostToNetOrder(record);
  return {reinterpret_cast<char *>(record), size};
}

namespace {

/// Fetches by `convert`, which has the arguments of a converter, and compares.
template <class Convert>
void expectFetchBy(Convert convert, zevtest::Session &session,
                   const zevtest::FetchCase &c) {
  SCOPED_TRACE(c.name);
  const auto target = zevtest::guarded(c.bytes.size());
  // libpq ends every field with a NUL.
  const auto value = zevtest::exactCopy(c.value + '\0');
  ub4 length = c.cap;
  sb2 indicator = 77;
  ub2 returnCode = 0;
  const bool hasIndicator = c.indicator != zevtest::kNoIndicator;
  errno = 0;
  const sword result =
      convert(session.errhp, value.get(), static_cast<sb4>(c.value.size()), c.format,
              target.get(), &length, hasIndicator ? &indicator : nullptr, &returnCode);
  EXPECT_EQ(result, c.result);
  EXPECT_EQ(std::string(target.get(), c.bytes.size()), c.bytes);
  EXPECT_EQ(length, c.length);
  if (hasIndicator) {
    EXPECT_EQ(indicator, static_cast<sb2>(c.indicator));
  }
  EXPECT_EQ(returnCode, c.returnCode);
  EXPECT_EQ(session.takeRecord(), c.code);
}

}  // namespace

void zevtest::expectFetch(Session &session, const FetchCase &c) {
  const auto dispatch = [&c](OCIError *errhp, const char *value, sb4 valueLength,
                             ub1 format, void *target, ub4 *length, sb2 *indicator,
                             ub2 *returnCode) {
    *returnCode = 77;
    return PQ2OCIType(errhp, c.oid, value, valueLength, format, c.dty, target, length,
                      indicator, returnCode, 0);
  };
  expectFetchBy(dispatch, session, c);
}

void zevtest::expectDirectFetch(Session &session, const FetchCase &c) {
  const FromServerConverter convert = findPQToOCIConversion(c.oid, c.dty, nullptr);
  ASSERT_NE(convert, nullptr);
  expectFetchBy(convert, session, c);
}

void zevtest::expectStringFetch(Session &session, const StringFetchCase &c) {
  SCOPED_TRACE(c.name);
  const auto text = guarded(c.size + 1);
  const auto value = exactCopy(c.value + '\0');
  OCIString string{c.size, 9, reinterpret_cast<OraText *>(text.get())};
  OCIString *target = &string;
  ub4 length = c.cap;
  sb2 indicator = 77;
  ub2 returnCode = 77;
  const bool hasIndicator = c.indicator != kNoIndicator;
  const sword result = PQ2OCIType(
      session.errhp, c.oid, value.get(), static_cast<sb4>(c.value.size()), c.format,
      SQLT_VST, &target, &length, hasIndicator ? &indicator : nullptr, &returnCode, 0);
  EXPECT_EQ(result, c.result);
  EXPECT_EQ(std::string(text.get(), c.size + 1), c.bytes);
  EXPECT_EQ(string.length, c.length);
  EXPECT_EQ(length, c.cap);
  if (hasIndicator) {
    EXPECT_EQ(indicator, static_cast<sb2>(c.indicator));
  }
  EXPECT_EQ(returnCode, c.returnCode);
  EXPECT_EQ(session.takeRecord(), c.code);
}

void zevtest::expectBind(Session &session, const BindCase &c) {
  SCOPED_TRACE(c.name);
  const auto value = exactCopy(c.value);
  void *out = nullptr;
  ub4 length = 99;
  ub1 format = 99;
  sb2 indicator = 0;
  const sword result =
      c.convert(session.errhp, value.get(), c.length, &indicator, &out, &length, &format);
  const std::unique_ptr<void, decltype(&std::free)> owned(out, std::free);
  EXPECT_EQ(result, c.result);
  EXPECT_EQ(out == nullptr, c.isNull || c.result < 0);
  EXPECT_EQ(length, out ? c.bytes.size() : 0);
  if (out) {
    EXPECT_EQ(std::string(static_cast<char *>(out), length), c.bytes);
  }
  EXPECT_EQ(format, c.format);
  EXPECT_EQ(session.takeRecord(), c.code);
}
