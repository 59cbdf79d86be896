#include <clocale>
#include <memory>

#include "core_fixture.h"
#include "zevoci/encodings.h"

namespace zev::test {
namespace {

struct Free {
  void operator()(char *p) const { std::free(p); }
};
using Text = std::unique_ptr<char, Free>;

struct LocaleCase {
  const char *name;
  const char *parts[3];  ///< null for a name that is refused
};

TEST(ParseLocale, ThreePartsOrNone) {
  const LocaleCase rows[] = {
      {"AMERICAN_AMERICA.UTF-8", {"AMERICAN", "AMERICA", "UTF-8"}},
      {"a_b.c", {"a", "b", "c"}},
      {"a_b_c.d.e", {"a", "b_c", "d.e"}},
      {"_a__b..c", {"a", "_b", ".c"}},
      {"en_US.UTF-8@euro", {"en", "US", "UTF-8@euro"}},
      {"AMERICAN_AMERICA", {}},
      {"AMERICAN.UTF-8", {}},
      {"a_b.", {}},
      {"a_.c", {}},
      {"_", {}},
      {"C", {}},
      {"", {}},
  };
  for (const LocaleCase &row : rows) {
    char poison;
    char *parts[3] = {&poison, &poison, &poison};
    const boolean parsed = ParseLocale(row.name, &parts[0], &parts[1], &parts[2]);
    EXPECT_EQ(parsed, row.parts[0] != nullptr) << row.name;
    for (int i = 0; i < 3; ++i)
      EXPECT_STREQ(Text(parts[i]).get(), row.parts[i]) << row.name;
  }
}

TEST(ParseLocale, OutputsMayBeLeftOut) {
  EXPECT_EQ(ParseLocale("a_b.c", nullptr, nullptr, nullptr), 1);
  char *charset = nullptr;
  EXPECT_EQ(ParseLocale("a_b.c", nullptr, nullptr, &charset), 1);
  EXPECT_STREQ(Text(charset).get(), "c");
}

struct SystemName {
  const char *server, *system;
};
constexpr SystemName kSystemNames[] = {
#include "system_names.inc"
};

TEST(SystemEncodings, EveryPairIsFoundInAnyCase) {
  ASSERT_EQ(std::size(kSystemNames), 73u);
  for (const SystemName &row : kSystemNames) {
    std::string lower = row.system, upper = row.system;
    for (char &c : lower) c = static_cast<char>(std::tolower(c));
    for (char &c : upper) c = static_cast<char>(std::toupper(c));
    for (const std::string &name : {std::string(row.system), lower, upper}) {
      EXPECT_STREQ(Text(findMatchingPgEncoding(name.c_str())).get(), row.server) << name;
      EXPECT_STRCASEEQ(Text(findMatchingSysEncoding(name.c_str())).get(), row.system)
          << name;
    }
    EXPECT_STREQ(Text(findMatchingSysEncoding(lower.c_str())).get(),
                 Text(findMatchingSysEncoding(upper.c_str())).get());
  }
}

TEST(SystemEncodings, TheFirstMatchInAnyCaseWins) {
  EXPECT_STREQ(Text(findMatchingSysEncoding("iso8859-1")).get(), "ISO8859-1");
  EXPECT_STREQ(Text(findMatchingSysEncoding("utf-8")).get(), "UTF-8");
}

TEST(SystemEncodings, OtherNamesAreNotFound) {
  for (const char *name : {"AL32UTF8", "LATIN1", "", "UTF 8", "CP1250", "WE8ISO8859P1"}) {
    EXPECT_EQ(findMatchingPgEncoding(name), nullptr) << name;
    EXPECT_EQ(findMatchingSysEncoding(name), nullptr) << name;
  }
}

struct NlsCase {
  const char *name;
  const char *nlsLang;  ///< null for unset
  const char *locale;   ///< LC_ALL
  int encoding;
  const char *processLocale;  ///< what LC_CTYPE is afterwards
};

class InitNlsTest : public testing::TestWithParam<NlsCase> {};

TEST_P(InitNlsTest, SettlesTheEncodingAndTheProcessLocale) {
  const NlsCase &c = GetParam();
  const Variable lang("NLS_LANG", c.nlsLang);
  const Variable locale("LC_ALL", c.locale);
  Environment env;
  EXPECT_EQ(env.get()->encoding, c.encoding);
  EXPECT_STREQ(std::setlocale(LC_CTYPE, nullptr), c.processLocale);
}

// The system here has the locales "C", "POSIX" and "C.UTF-8"; a name without "_" is no
// name of three parts, so that the process locale gives SQL_ASCII.
INSTANTIATE_TEST_SUITE_P(
    Search, InitNlsTest,
    testing::Values(
        NlsCase{"NothingSet", nullptr, "C", 0, "C"},
        NlsCase{"LocaleWithoutTerritory", nullptr, "C.UTF-8", 0, "C"},
        NlsCase{"TwoPartsLeaveItToTheLocale", "AMERICAN_AMERICA", "C", 0, "C"},
        NlsCase{"AnOracleNameLeavesItToTheLocale", "AMERICAN_AMERICA.AL32UTF8", "C", 0,
                "C"},
        NlsCase{"ThePosixCharsetIsNoEncodingName", "A_B.POSIX", "C.UTF-8", 6, "C"},
        NlsCase{"PosixInAnyCase", "A_B.posix", "C.UTF-8", 6, "C"},
        NlsCase{"TheTerritoryAloneIsTheLocale", "A_C.ISO-8859-1", "C.UTF-8", 8, "C"},
        NlsCase{"TheTerritoryMayHoldALocaleName", "A_POSIX.UTF-8", "C.UTF-8", 6, "C"},
        NlsCase{"AnUnknownTerritoryLeavesItToTheLocale", "AMERICAN_AMERICA.UTF-8", "C", 0,
                "C"}),
    [](const auto &p) { return std::string(p.param.name); });

TEST(InitNls, ANumberIsTakenAndTheLocaleLeftAlone) {
  Environment env;
  std::setlocale(LC_ALL, "C.UTF-8");
  for (ub2 number = 1; number <= 40; ++number) {
    InitNls(env.get(), number);
    EXPECT_EQ(env.get()->encoding, number == 20 ? 6 : number);  // CP866 has no alias
  }
  EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), "C.UTF-8");
  std::setlocale(LC_ALL, "C");
}

TEST(InitNls, WrongHandlesAreLeftAlone) {
  Environment env;
  InitNls(nullptr, 6);
  InitNls(reinterpret_cast<OCIEnv *>(env.errhp()), 6);
  EXPECT_EQ(env.errhp()->handleType, HANDLE_OCIError);
}

}  // namespace
}  // namespace zev::test
