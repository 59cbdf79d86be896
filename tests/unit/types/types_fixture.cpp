#include "types_fixture.h"

#include "zevoci/conversion.h"

namespace {

using zevtest::FetchCase;

/// Runs a fetch by `run`, which gets the arguments of a converter.
template <class Run>
void expectBy(zevtest::Session &session, const FetchCase &c, Run &&run) {
  SCOPED_TRACE(c.name);
  const auto target = zevtest::guarded(c.bytes.size());
  // libpq ends every field with a NUL.
  const auto value = zevtest::exactCopy(c.value + '\0');
  ub4 length = c.cap;
  sb2 indicator = 77;
  ub2 returnCode = 77;
  const bool hasIndicator = c.indicator != zevtest::kNoIndicator;
  errno = 0;
  const sword result =
      run(session.errhp, value.get(), static_cast<sb4>(c.value.size()), c.format,
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
  expectBy(session, c,
           [&c](OCIError *errhp, const void *value, sb4 size, ub1 format, void *target,
                ub4 *length, sb2 *indicator, ub2 *returnCode) {
             return PQ2OCIType(errhp, c.oid, static_cast<const char *>(value), size,
                               format, c.dty, target, length, indicator, returnCode, 0);
           });
}

void zevtest::expectMember(Session &session, const FetchCase &c) {
  const auto member = findPQToOCIConversion(c.oid, c.dty, nullptr);
  ASSERT_NE(member, nullptr);
  expectBy(session, c,
           [member](OCIError *errhp, const void *value, sb4 size, ub1 format,
                    void *target, ub4 *length, sb2 *indicator, ub2 *returnCode) {
             // The dispatcher does so.
             if (indicator) *indicator = 0;
             *returnCode = 0;
             return member(errhp, value, size, format, target, length, indicator,
                           returnCode);
           });
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
