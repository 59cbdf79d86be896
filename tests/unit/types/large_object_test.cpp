/// The one pair of the fetch matrix that fills a locator.
#include "types/converters.h"
#include "types_fixture.h"
#include "zevoci/lob_locator.h"

namespace zevtest {
namespace {

/// One number of a large object, as a field, and what becomes of it.
struct LargeObject {
  const char *name;
  std::string value;
  ub1 format;
  ub4 cap;
  HandleTag tag;
  Oid stored;  ///< 77 where nothing is
  sword result;
  int record;
  int indicator;
};

static_assert(HANDLE_OCILobLocator == 19);

void PrintTo(const LargeObject &c, std::ostream *out) {
  *out << c.name;
}

class LargeObjectTest : public testing::TestWithParam<LargeObject> {};

TEST_P(LargeObjectTest, TheNumberGoesIntoTheLocator) {
  const LargeObject &c = GetParam();
  Session session;
  OCILobLocator locator{};
  locator.handleType = c.tag;
  locator.loOid = 77;
  OCILobLocator *pointer = &locator;
  ub4 length = c.cap;
  sb2 indicator = 0;
  const auto value = exactCopy(c.value + '\0');
  EXPECT_EQ(ConvertOIDOIDToSQLT_BLOB(session.errhp, value.get(),
                                     static_cast<sb4>(c.value.size()), c.format, &pointer,
                                     &length, &indicator, nullptr),
            c.result);
  EXPECT_EQ(locator.loOid, c.stored);
  EXPECT_EQ(indicator, c.indicator);
  EXPECT_EQ(session.takeRecord(), c.record);
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(OidOid, LargeObjectTest, testing::Values(
    LargeObject{"Text",              "16384",             0, 8, HANDLE_OCILobLocator, 16384,      0,  0,    0},
    LargeObject{"LargestText",       "4294967295",        0, 8, HANDLE_OCILobLocator, 4294967295, 0,  0,    0},
    LargeObject{"TextEndsAtLetter",  "12x",               0, 8, HANDLE_OCILobLocator, 12,         0,  0,    0},
    LargeObject{"Binary",            "\x01\x02\x03\x04", 1, 8, HANDLE_OCILobLocator, 0x01020304, 0,  0,    0},
    LargeObject{"OtherFormat",       "16384",             2, 8, HANDLE_OCILobLocator, 77,         -1, 0,    0},
    LargeObject{"NothingWanted",     "16384",             0, 0, HANDLE_OCILobLocator, 77,         0,  0,    0},
    LargeObject{"Null",              "",                  0, 8, HANDLE_OCILobLocator, 77,         0,  0,    -1},
    LargeObject{"NotALocator",       "16384",             0, 8, HANDLE_OCIError,      77,         -1, 1733, 0}),
    [](const auto &row) { return row.param.name; });
// clang-format on

}  // namespace
}  // namespace zevtest
