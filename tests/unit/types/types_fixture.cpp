#include "types_fixture.h"

#include "zevoci/conversion.h"

void zevtest::expectFetch(Session &session, const FetchCase &c) {
  SCOPED_TRACE(c.name);
  const auto target = guarded(c.bytes.size());
  // libpq ends every field with a NUL.
  const auto value = exactCopy(c.value + '\0');
  ub4 length = c.cap;
  sb2 indicator = 77;
  ub2 returnCode = 77;
  const bool hasIndicator = c.indicator != kNoIndicator;
  errno = 0;
  const sword result = PQ2OCIType(
      session.errhp, c.oid, value.get(), static_cast<sb4>(c.value.size()), c.format,
      c.dty, target.get(), &length, hasIndicator ? &indicator : nullptr, &returnCode, 0);
  EXPECT_EQ(result, c.result);
  EXPECT_EQ(std::string(target.get(), c.bytes.size()), c.bytes);
  EXPECT_EQ(length, c.length);
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
