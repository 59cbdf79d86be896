#include <set>

#include "types_fixture.h"
#include "zevoci/conversion.h"

namespace zevtest {
namespace {

const std::set<ub4> kKnown = {1,   2,   3,   4,   5,   6,   7,   8,   9,   10,  11,  12,
                              15,  21,  22,  23,  24,  68,  91,  94,  95,  96,  97,  100,
                              101, 102, 104, 105, 106, 108, 110, 112, 113, 114, 115, 116,
                              122, 155, 156, 184, 185, 186, 187, 188, 189, 190, 232, 241};

TEST(TypeMappings, ExternalTypesAreKnownByTheirLow16Bits) {
  for (ub4 code = 0; code < 70000; ++code) {
    const bool known = kKnown.count(code & 0xFFFF) != 0;
    ASSERT_EQ(IsValidOCIDataType(code), known ? 0 : -1) << code;
    ASSERT_EQ(IsValidOraDataType(code), known ? 1 : 0) << code;
  }
  EXPECT_EQ(IsValidOCIDataType(0xABCD0001), 0);
}

TEST(TypeMappings, ServerTypesAreKnown) {
  std::set<Oid> known = {600,  601,  602,  603,  604,  628,  650,  700,  701,   702,
                         703,  704,  705,  718,  790,  869,  1042, 1043, 1082,  1083,
                         1114, 1184, 1186, 1266, 1560, 1562, 1700, 1790, 12487, 12501};
  for (Oid oid = 16; oid <= 30; ++oid) known.insert(oid);
  for (Oid oid = 0; oid < 70000; ++oid) {
    ASSERT_EQ(IsValidPQDataType(oid), known.count(oid) ? 0 : -1) << oid;
  }
}

TEST(TypeMappings, NamesOfExternalTypesCoverAllCodes) {
  EXPECT_STREQ(SQLTTypes[0], "INVALID(0)");
  EXPECT_STREQ(SQLTTypes[1], "SQLT_CHR");
  EXPECT_STREQ(SQLTTypes[100], "SQLT_IBFLOAT");
  EXPECT_STREQ(SQLTTypes[101], "SQLT_IBDOUBLE");
  EXPECT_STREQ(SQLTTypes[116], "SQLT_RSET");
  EXPECT_STREQ(SQLTTypes[190], "SQLT_INTERVAL_DS");
  for (ub4 code = 0; code < 191; ++code) {
    const std::string expected = "INVALID(" + std::to_string(code) + ")";
    if (kKnown.count(code)) {
      EXPECT_EQ(std::string(SQLTTypes[code]).rfind("SQLT_", 0), 0u) << code;
    } else {
      EXPECT_EQ(SQLTTypes[code], expected);
    }
  }
}

// clang-format off
TEST(TypeMappings, NamesOfExternalTypesStandAtTheirCodes) {
#define NAMED(name) EXPECT_STREQ(SQLTTypes[name], #name)
  NAMED(SQLT_CHR); NAMED(SQLT_NUM); NAMED(SQLT_INT); NAMED(SQLT_FLT); NAMED(SQLT_STR);
  NAMED(SQLT_VNU); NAMED(SQLT_PDN); NAMED(SQLT_LNG); NAMED(SQLT_VCS); NAMED(SQLT_NON);
  NAMED(SQLT_RID); NAMED(SQLT_DAT); NAMED(SQLT_VBI); NAMED(SQLT_BFLOAT); NAMED(SQLT_BDOUBLE);
  NAMED(SQLT_BIN); NAMED(SQLT_LBI); NAMED(SQLT_UIN); NAMED(SQLT_SLS); NAMED(SQLT_LVC);
  NAMED(SQLT_LVB); NAMED(SQLT_AFC); NAMED(SQLT_AVC); NAMED(SQLT_CUR); NAMED(SQLT_RDD);
  NAMED(SQLT_LAB); NAMED(SQLT_OSL); NAMED(SQLT_NTY); NAMED(SQLT_REF); NAMED(SQLT_CLOB);
  NAMED(SQLT_BLOB); NAMED(SQLT_BFILEE); NAMED(SQLT_CFILEE); NAMED(SQLT_RSET); NAMED(SQLT_NCO);
  NAMED(SQLT_VST); NAMED(SQLT_ODT); NAMED(SQLT_DATE); NAMED(SQLT_TIME); NAMED(SQLT_TIME_TZ);
  NAMED(SQLT_TIMESTAMP); NAMED(SQLT_TIMESTAMP_TZ); NAMED(SQLT_INTERVAL_YM);
  NAMED(SQLT_INTERVAL_DS);
#undef NAMED
}

Oid expectedParameterType(ub4 code, sb4 length) {
  switch (code) {
    case 1: case 5: case 8: case 9: case 94: case 96: case 97: case 112: case 155: return 1043;
    case 2: case 6: case 7: case 100: case 101: return 1700;
    case 3: case 68: return length == 2 ? 21 : length == 8 ? 20 : 23;
    case 4: case 22: return 701;
    case 21: return 700;
    case 12: case 156: case 184: case 187: return 1114;
    case 15: case 23: case 24: case 95: case 113: case 114: case 115: return 17;
    case 102: case 116: return 1790;
    case 185: return 1083;
    case 186: return 1266;
    case 188: case 232: return 1184;
    case 189: case 190: return 1186;
    default: return static_cast<Oid>(-1);
  }
}
// clang-format on

TEST(TypeMappings, ParameterTypeOfEveryCodeAndLength) {
  for (ub4 code = 0; code < 65536; ++code) {
    for (const sb4 length : {0, 1, 2, 3, 4, 7, 8, 16}) {
      ASSERT_EQ(OraDataType_To_PGType(static_cast<ub2>(code), length),
                expectedParameterType(code, length))
          << code << " " << length;
    }
  }
}

TEST(TypeMappings, IntegersOfOneAndSixteenBytesAreDeclaredAsFour) {
  EXPECT_EQ(OraDataType_To_PGType(SQLT_INT, 1), 23u);
  EXPECT_EQ(OraDataType_To_PGType(SQLT_INT, 2), 21u);
  EXPECT_EQ(OraDataType_To_PGType(SQLT_INT, 8), 20u);
  EXPECT_EQ(OraDataType_To_PGType(SQLT_INT, 16), 23u);
}

TEST(TypeMappings, UndescribedParametersGoByTheirExternalType) {
  EXPECT_EQ(GetParamType(nullptr, 1, SQLT_INT, 4), 23u);
  OCIStmt stmt{};
  EXPECT_EQ(GetParamType(&stmt, 1, SQLT_FLT, 4), 701u);
}

TEST(TypeMappings, ParametersOfAnotherResultGoByTheirExternalType) {
  // A result that describes no parameter answers 0 for each.
  OCIStmt stmt{};
  stmt.pgResult = PQmakeEmptyPGresult(nullptr, PGRES_COMMAND_OK);
  EXPECT_EQ(GetParamType(&stmt, 0, SQLT_CHR, 4), 1043u);
  EXPECT_EQ(GetParamType(&stmt, 1, SQLT_CHR, 4), 1043u);
  PQclear(stmt.pgResult);
}

TEST(TypeMappings, ReportedTypeOfEveryOid) {
  struct Row {
    ub2 code;
    std::vector<Oid> oids;
  };
  const Row rows[] = {
      {3, {16, 20, 21, 23}},
      {23, {17}},
      {1, {18, 1043, 705}},
      {5, {25}},
      {108, {600, 601, 602, 603, 604, 628, 650, 718, 790, 869, 1560, 1562}},
      {4, {700, 701}},
      {156, {702, 1082}},
      {96, {1042}},
      {185, {1083}},
      {187, {1114}},
      {188, {1184}},
      {189, {1186}},
      {186, {1266}},
      {2, {1700}},
      {102, {1790}}};
  for (Oid oid = 0; oid < 13000; ++oid) {
    ub2 expected = 0;
    for (const auto &row : rows) {
      for (const Oid o : row.oids) expected = o == oid ? row.code : expected;
    }
    ASSERT_EQ(MapPostgresDataTypeToOracleDataType(oid), expected) << oid;
  }
}

TEST(TypeMappings, BooleansAreReportedAsIntegersAndFetchedAsNothing) {
  EXPECT_EQ(MapPostgresDataTypeToOracleDataType(16), SQLT_INT);
  for (ub2 code = 0; code < 242; ++code) {
    EXPECT_EQ(findPQToOCIConversion(16, code, nullptr), nullptr);
  }
}

TEST(TypeMappings, BinaryTypes) {
  const std::set<ub2> binary = {3,   4,   6,   7,   10,  11,  12,  15,  21,
                                22,  23,  24,  68,  91,  95,  100, 101, 102,
                                104, 105, 106, 108, 110, 113, 114, 116, 122,
                                156, 184, 185, 186, 187, 188, 189, 190, 232};
  for (ub4 code = 0; code < 65536; ++code) {
    const auto type = static_cast<ub2>(code);
    ASSERT_EQ(IsBinaryDataType(type), binary.count(type) ? 1 : 0) << code;
  }
}

TEST(TypeMappings, PlainCharacterTypesAreVcs) {
  for (Oid oid = 0; oid < 2000; ++oid) {
    const bool plain = oid == 18 || oid == 19 || oid == 25 || oid == 1043;
    ASSERT_EQ(oid2oci(oid), plain ? 9 : 0) << oid;
  }
}

std::string serverClass(Oid oid) {
  const std::unique_ptr<char, decltype(&std::free)> name(GetPQDatatypeName(oid),
                                                         std::free);
  return name.get();
}

std::string externalClass(ub2 code) {
  const std::unique_ptr<char, decltype(&std::free)> name(GetOCIDatatypeName(code),
                                                         std::free);
  return name.get();
}

TEST(TypeMappings, ClassNamesOfServerTypes) {
  const std::set<Oid> numbers = {16, 18, 20, 21, 23, 700, 701, 1700};
  const std::set<Oid> texts = {25, 1042, 1043};
  const std::set<Oid> timestamps = {1083, 1114, 1184, 1186, 1266};
  for (Oid oid = 0; oid < 13000; ++oid) {
    const std::string expected = numbers.count(oid)      ? "NUMBER"
                                 : oid == 17             ? "BINARY"
                                 : texts.count(oid)      ? "TEXT"
                                 : oid == 1082           ? "DATE"
                                 : timestamps.count(oid) ? "TIMESTAMP"
                                                         : "";
    ASSERT_EQ(serverClass(oid), expected) << oid;
  }
}

TEST(TypeMappings, ClassNamesOfExternalTypes) {
  const std::set<ub2> texts = {1, 5, 8, 9, 94, 96, 97, 155};
  const std::set<ub2> numbers = {2, 3, 4, 6, 7, 21, 22, 68};
  const std::set<ub2> dates = {12, 156, 184};
  const std::set<ub2> binary = {15, 23, 24, 95, 100, 101};
  const std::set<ub2> timestamps = {185, 186, 187, 188, 189, 190, 232};
  for (ub4 code = 0; code < 65536; ++code) {
    const auto type = static_cast<ub2>(code);
    const std::string expected = texts.count(type)        ? "TEXT"
                                 : numbers.count(type)    ? "NUMBER"
                                 : dates.count(type)      ? "DATE"
                                 : binary.count(type)     ? "BINARY"
                                 : timestamps.count(type) ? "TIMESTAMP"
                                                          : "";
    ASSERT_EQ(externalClass(type), expected) << code;
  }
}

}  // namespace
}  // namespace zevtest
