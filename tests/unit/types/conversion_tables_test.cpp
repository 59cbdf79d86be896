#include "types/conversion_tables.h"

#include <dlfcn.h>

#include <sstream>

#include "types_fixture.h"

namespace zevtest {
namespace {

/// An entry as the conversion matrix names it.
struct Expected {
  ub4 firstKey;
  ub4 secondKey;
  std::string converter;
};

/// The function of that name, or null while it does not exist.
void *functionNamed(const std::string &name) {
  return ::dlsym(RTLD_DEFAULT, name.c_str());
}

template <class Function>
void *address(Function *function) {
  return reinterpret_cast<void *>(function);
}

/// Reads "1 CHR 2 NUM ..." into the entries of one row.
void addRow(std::vector<Expected> &out, ub4 oid, const std::string &family,
            const char *cells) {
  std::istringstream in(cells);
  ub4 code = 0;
  std::string suffix;
  while (in >> code >> suffix) {
    const bool whole = suffix.find("ToSQLT_") != suffix.npos;
    out.push_back(
        {oid, code, "Convert" + (whole ? suffix : family + "ToSQLT_" + suffix)});
  }
}

std::vector<Expected> expectedFetches() {
  const char *numbers =
      "1 CHR 2 NUM 3 INT 4 FLT 5 STR 6 VNU 8 LNG 9 VCS 21 BFLOAT 22 BDOUBLE 68 UIN 94 "
      "LVC "
      "96 AFC 97 AVC 155 VST";
  const char *numeric =
      "1 CHR 2 VNU 3 INT 4 FLT 5 STR 6 VNU 8 LNG 9 VCS 21 BFLOAT 22 BDOUBLE 68 UIN 94 "
      "LVC "
      "96 AFC 97 AVC 155 VST";
  const char *characters =
      "1 CHR 2 NUM 3 INT 4 FLT 5 STR 6 VNU 8 LNG 9 VCS 12 DAT 15 VBI 21 BFLOAT 22 "
      "BDOUBLE "
      "23 BIN 24 LBI 68 UIN 94 LVC 95 LVB 96 CHR 97 AVC 155 VST 156 ODT 184 DATE "
      "187 TIMESTAMP 188 TIMESTAMP_TZ 232 TIMESTAMP_TZ";
  const char *binary =
      "1 CHR 5 STR 8 LNG 9 VCS 15 VBI 23 BIN 24 LBI 94 LVC 95 LVB 96 AFC 97 AVC 155 VST";
  const char *dates =
      "1 DATEOIDToSQLT_CHR 5 DATEOIDToSQLT_STR 8 DATEOIDToSQLT_LNG 9 DATEOIDToSQLT_VCS "
      "12 TIMESTAMPOIDToSQLT_DAT 94 DATEOIDToSQLT_LVC 96 DATEOIDToSQLT_AFC "
      "97 DATEOIDToSQLT_AVC 155 DATEOIDToSQLT_VST 156 TIMESTAMPOIDToSQLT_ODT "
      "184 TIMESTAMPOIDToSQLT_DATE 187 TIMESTAMPOIDToSQLT_TIMESTAMP ";
  const std::string withoutZone = dates +
                                  "188 TIMESTAMPOIDToSQLT_TIMESTAMP_TZ "
                                  "232 TIMESTAMPOIDToSQLT_TIMESTAMP_TZ"s;
  const std::string withZone = dates +
                               "188 TIMESTAMPTZOIDToSQLT_TIMESTAMP_TZ "
                               "232 TIMESTAMPTZOIDToSQLT_TIMESTAMP_TZ"s;
  std::vector<Expected> out;
  addRow(out, 17, "BYTEAOID", binary);
  addRow(out, 18, "CHAROID", numbers);
  addRow(out, 20, "INT8OID", numbers);
  addRow(out, 21, "INT2OID", numbers);
  addRow(out, 23, "INT4OID", numbers);
  addRow(out, 25, "TEXTOID", characters);
  addRow(out, 26, "OIDOID", "113 BLOB");
  addRow(out, 700, "FLOAT4OID", numbers);
  addRow(out, 701, "FLOAT8OID", numbers);
  addRow(out, 1042, "TEXTOID", characters);
  addRow(out, 1043, "TEXTOID", characters);
  addRow(out, 1082, "", withoutZone.c_str());
  addRow(out, 1114, "", withoutZone.c_str());
  addRow(out, 1184, "", withZone.c_str());
  addRow(out, 1186, "INTERVALOID", "189 INTERVAL_DS 190 INTERVAL_DS");
  addRow(out, 1700, "NUMERICOID", numeric);
  addRow(out, 1790, "TEXTOID", "116 STR");
  addRow(out, 12487, "BYTEAOID", binary);
  return out;
}

const Expected kBinds[] = {
    {1, 1043, "ConvertSQLT_CHRToTEXTOID"},
    {2, 1700, "ConvertSQLT_NUMToNUMERICOID"},
    {3, 18, "ConvertSQLT_INTToCHAROID"},
    {3, 20, "ConvertSQLT_INTToINT8OID"},
    {3, 21, "ConvertSQLT_INTToINT2OID"},
    {3, 23, "ConvertSQLT_INTToINT4OID"},
    {3, 1700, "ConvertSQLT_INTToNUMERICOID"},
    {4, 700, "ConvertSQLT_FLTToFLOAT4OID"},
    {4, 701, "ConvertSQLT_FLTToFLOAT8OID"},
    {5, 25, "ConvertSQLT_STRToTEXTOID"},
    {5, 1043, "ConvertSQLT_STRToTEXTOID"},
    {6, 1700, "ConvertSQLT_VNUToNUMERICOID"},
    {8, 1043, "ConvertSQLT_LNGToTEXTOID"},
    {9, 1043, "ConvertSQLT_VCSToTEXTOID"},
    {12, 1082, "ConvertSQLT_DATToDATEOID"},
    {12, 1114, "ConvertSQLT_DATToTIMESTAMPOID"},
    {15, 17, "ConvertSQLT_VBIToBYTEAOID"},
    {21, 700, "ConvertSQLT_FLTToFLOAT4OID"},
    {22, 701, "ConvertSQLT_FLTToFLOAT8OID"},
    {23, 17, "ConvertSQLT_BINToBYTEAOID"},
    {24, 17, "ConvertSQLT_LBIToBYTEAOID"},
    {68, 18, "ConvertSQLT_INTToCHAROID"},
    {68, 20, "ConvertSQLT_INTToINT8OID"},
    {68, 21, "ConvertSQLT_INTToINT2OID"},
    {68, 23, "ConvertSQLT_INTToINT4OID"},
    {94, 1043, "ConvertSQLT_LVCToTEXTOID"},
    {95, 17, "ConvertSQLT_LVBToBYTEAOID"},
    {96, 1043, "ConvertSQLT_AFCToTEXTOID"},
    {97, 1043, "ConvertSQLT_STRToTEXTOID"},
    {116, 1790, "ConvertSQLT_STRToTEXTOID"},
    {155, 1043, "ConvertSQLT_VSTToTEXTOID"},
    {156, 1114, "ConvertSQLT_ODTToTIMESTAMPOID"},
    {184, 1114, "ConvertSQLT_DATEToTIMESTAMPOID"},
    {187, 1114, "ConvertSQLT_TIMESTAMPToTIMESTAMPOID"},
    {188, 1184, "ConvertSQLT_TIMESTAMP_TZToTIMESTAMPTZOID"},
    {189, 1186, "ConvertSQLT_INTERVAL_DSToINTERVALOID"},
    {190, 1186, "ConvertSQLT_INTERVAL_DSToINTERVALOID"},
    {232, 1184, "ConvertSQLT_TIMESTAMP_TZToTIMESTAMPTZOID"},
};

TEST(ConversionTables, EveryBindEntryHoldsItsConverter) {
  ASSERT_EQ(std::size(kBinds), 38u);
  for (std::size_t i = 0; i < std::size(kBinds); ++i) {
    const ConversionEntry &entry = OCIToPQConversionFunctions[i];
    SCOPED_TRACE(kBinds[i].converter);
    EXPECT_EQ(entry.firstKey, kBinds[i].firstKey);
    EXPECT_EQ(entry.secondKey, kBinds[i].secondKey);
    EXPECT_EQ(address(entry.converter.toServer), functionNamed(kBinds[i].converter));
  }
}

TEST(ConversionTables, EveryFetchEntryHoldsItsConverter) {
  const auto expected = expectedFetches();
  ASSERT_EQ(expected.size(), 250u);
  for (std::size_t i = 0; i < expected.size(); ++i) {
    const ConversionEntry &entry = PQToOCIConversionFunctions[i];
    SCOPED_TRACE(expected[i].converter + " at " + std::to_string(i));
    EXPECT_EQ(entry.firstKey, expected[i].firstKey);
    EXPECT_EQ(entry.secondKey, expected[i].secondKey);
    EXPECT_EQ(address(entry.converter.fromServer), functionNamed(expected[i].converter));
  }
}

TEST(ConversionTables, ConvertersAreFoundByTheirNames) {
  // Without this the two tests above could compare null with null throughout.
  EXPECT_EQ(functionNamed("ConvertINT4OIDToSQLT_INT"), address(ConvertINT4OIDToSQLT_INT));
  EXPECT_EQ(functionNamed("ConvertTEXTOIDToSQLT_STR"), address(ConvertTEXTOIDToSQLT_STR));
  EXPECT_EQ(functionNamed("ConvertSQLT_VCSToTEXTOID"), address(ConvertSQLT_VCSToTEXTOID));
  const auto isBuilt = [](const ConversionEntry &entry) {
    return entry.converter.fromServer != nullptr;
  };
  EXPECT_EQ(std::count_if(PQToOCIConversionFunctions, PQToOCIConversionFunctions + 250,
                          isBuilt),
            250);
  EXPECT_EQ(
      std::count_if(OCIToPQConversionFunctions, OCIToPQConversionFunctions + 38, isBuilt),
      38);
}

TEST(ConversionTables, SearchFindsEveryEntry) {
  for (const auto &e : PQToOCIConversionFunctions) {
    EXPECT_EQ(GetConversionFunctionInternal(e.firstKey, e.secondKey,
                                            PQToOCIConversionFunctions, 0, 249)
                  .fromServer,
              e.converter.fromServer);
  }
  for (const auto &e : OCIToPQConversionFunctions) {
    EXPECT_EQ(GetConversionFunctionInternal(e.firstKey, e.secondKey,
                                            OCIToPQConversionFunctions, 0, 37)
                  .toServer,
              e.converter.toServer);
  }
}

TEST(ConversionTables, SearchAgreesWithAWalkForAllSmallKeys) {
  for (ub4 oid = 0; oid < 1300; ++oid) {
    for (ub4 code = 0; code < 242; ++code) {
      FromServerConverter walked = nullptr;
      for (const auto &e : PQToOCIConversionFunctions) {
        if (e.firstKey == oid && e.secondKey == code) walked = e.converter.fromServer;
        if (e.firstKey > oid) break;
      }
      ASSERT_EQ(
          GetConversionFunctionInternal(oid, code, PQToOCIConversionFunctions, 0, 249)
              .fromServer,
          walked)
          << oid << " " << code;
    }
  }
}

TEST(ConversionTables, SearchOfAnEmptyRangeFindsNothing) {
  EXPECT_EQ(
      GetConversionFunctionInternal(17, 1, PQToOCIConversionFunctions, 1, 0).fromServer,
      nullptr);
}

TEST(ConversionTables, ComparisonTellsTheKeyThatDiffers) {
  const ConversionEntry entry{20, 5, {}};
  EXPECT_EQ(CompareConversionFunctionEntry(&entry, 19, 5), 2);
  EXPECT_EQ(CompareConversionFunctionEntry(&entry, 21, 5), -2);
  EXPECT_EQ(CompareConversionFunctionEntry(&entry, 20, 4), 1);
  EXPECT_EQ(CompareConversionFunctionEntry(&entry, 20, 6), -1);
  EXPECT_EQ(CompareConversionFunctionEntry(&entry, 20, 5), 0);
}

TEST(ConversionTables, KeysCompareAsSigned) {
  const ConversionEntry entry{0xFFFFFFFFu, 0xFFFFFFFFu, {}};
  EXPECT_EQ(CompareConversionFunctionEntry(&entry, 1, 0), -2);
  EXPECT_EQ(CompareConversionFunctionEntry(&entry, -1, 0), -1);
}

}  // namespace
}  // namespace zevtest
