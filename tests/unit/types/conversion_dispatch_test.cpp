#include "types/conversion_dispatch.h"

#include <csignal>

#include "types_fixture.h"
#include "zevoci/trace.h"

namespace zevtest {
namespace {

class ToServer : public testing::Test {
 protected:
  sword bind(ub2 type, void *value, sb4 size, sb2 *indp, Oid oid) {
    std::free(out);
    out = &length;
    const sword status =
        OCI2PQType(session.errhp, type, value, size, indp, oid, &out, &length, &format);
    if (out == &length) out = nullptr;
    return status;
  }
  ~ToServer() override { std::free(out); }

  Session session;
  void *out = nullptr;
  ub4 length = 99;
  ub1 format = 99;
  sb2 indicator = 0;
  sb4 four = 5;
};

TEST_F(ToServer, IntegerReachesANumericParameter) {
  EXPECT_EQ(bind(SQLT_INT, &four, 4, &indicator, NUMERICOID), 0);
  EXPECT_EQ(length, 10u);
  EXPECT_EQ(format, 1);
}

TEST_F(ToServer, UnsignedIntegerDoesNotReachANumericParameter) {
  EXPECT_EQ(bind(SQLT_UIN, &four, 4, &indicator, NUMERICOID), -1);
  EXPECT_EQ(session.takeRecord(), 1460);
}

TEST_F(ToServer, PairsThatAreMissingOnPurpose) {
  EXPECT_EQ(bind(SQLT_CHR, &four, 4, &indicator, TEXTOID), -1);
  EXPECT_EQ(session.takeRecord(), 1460);
  EXPECT_EQ(bind(SQLT_FLT, &four, 4, &indicator, NUMERICOID), -1);
  EXPECT_EQ(session.takeRecord(), 1460);
}

TEST_F(ToServer, UnknownTypesAreRefused) {
  EXPECT_EQ(bind(13, &four, 4, &indicator, 1043), -1);
  EXPECT_EQ(session.takeRecord(), 1460);
  EXPECT_EQ(bind(SQLT_CHR, &four, 4, &indicator, 99999), -1);
  EXPECT_EQ(session.takeRecord(), 1460);
}

TEST_F(ToServer, NullIndicatorSendsNull) {
  indicator = -1;
  EXPECT_EQ(bind(SQLT_INT, &four, 4, &indicator, INT4OID), 0);
  EXPECT_EQ(out, nullptr);
  EXPECT_EQ(length, 0u);
  EXPECT_EQ(format, 0);
}

TEST_F(ToServer, MissingBufferWithNullIndicatorSendsNull) {
  indicator = -1;
  EXPECT_EQ(bind(SQLT_INT, nullptr, 0, &indicator, INT4OID), 0);
  EXPECT_EQ(out, nullptr);
}

TEST_F(ToServer, MissingBufferSetsTheIndicatorWhileEmptyTextIsNotNull) {
  session.env->oracleVarchars = 0;
  EXPECT_EQ(bind(SQLT_INT, nullptr, 0, &indicator, INT4OID), 0);
  EXPECT_EQ(indicator, -1);
  EXPECT_EQ(out, nullptr);
  EXPECT_EQ(bind(SQLT_INT, nullptr, 0, nullptr, INT4OID), 0);
  EXPECT_EQ(out, nullptr);
}

TEST_F(ToServer, IndicatorBelowNullFails) {
  indicator = -2;
  EXPECT_EQ(bind(SQLT_INT, &four, 4, &indicator, INT4OID), -1);
  EXPECT_EQ(session.takeRecord(), kNoRecord);
  EXPECT_EQ(length, 0u);
}

TEST_F(ToServer, CursorsSendNothing) {
  EXPECT_EQ(bind(SQLT_RSET, &four, 4, &indicator, 1790), 0);
  EXPECT_EQ(out, nullptr);
  EXPECT_EQ(length, 0u);
}

TEST_F(ToServer, NoIndicatorMeansAValue) {
  EXPECT_EQ(bind(SQLT_INT, &four, 4, nullptr, INT4OID), 0);
  EXPECT_EQ(std::string(static_cast<char *>(out), length), network<sb4>(5));
}

TEST_F(ToServer, MissingOutputsFailWithoutARecord) {
  sword status = OCI2PQType(session.errhp, SQLT_INT, &four, 4, &indicator, INT4OID,
                            nullptr, &length, &format);
  EXPECT_EQ(status, -1);
  status = OCI2PQType(session.errhp, SQLT_INT, &four, 4, &indicator, INT4OID, &out,
                      nullptr, &format);
  EXPECT_EQ(status, -1);
  status = OCI2PQType(session.errhp, SQLT_INT, &four, 4, &indicator, INT4OID, &out,
                      &length, nullptr);
  EXPECT_EQ(status, -1);
  EXPECT_EQ(session.takeRecord(), kNoRecord);
}

TEST_F(ToServer, MissingErrorHandleFails) {
  EXPECT_EQ(OCI2PQType(nullptr, SQLT_INT, &four, 4, &indicator, INT4OID, &out, &length,
                       &format),
            -1);
}

/// What is traced under `mask` while `work` runs.
template <class Work>
std::string tracedBy(std::uint64_t mask, Work &&work) {
  char *buffer = nullptr;
  std::size_t size = 0;
  oci_debug_log = ::open_memstream(&buffer, &size);
  oci_debug_mask = mask;
  work();
  std::fclose(oci_debug_log);
  oci_debug_log = nullptr;
  oci_debug_mask = 0;
  const std::unique_ptr<char, decltype(&std::free)> owned(buffer, std::free);
  return {buffer, size};
}

TEST_F(ToServer, TracesTheTypesAndTheBytesOfBothSides) {
  const std::string trace =
      tracedBy(0x10, [&] { bind(SQLT_INT, &four, 4, &indicator, INT4OID); });
  EXPECT_EQ(
      trace.rfind("OCI2PQType: pgtype(23), ocitype(3), bufferin_sz(4) *indp(0)\n", 0), 0u)
      << trace;
  const auto source = trace.find("  source:"), result = trace.find("  result:");
  ASSERT_NE(source, trace.npos);
  ASSERT_NE(result, trace.npos);
  EXPECT_LT(source, result);
  EXPECT_NE(trace.find("05 00 00 00", source), trace.npos);
  EXPECT_NE(trace.find("00 00 00 05", result), trace.npos);
}

TEST_F(ToServer, TracesNothingUnderAnotherMask) {
  EXPECT_EQ(tracedBy(0x8, [&] { bind(SQLT_INT, &four, 4, &indicator, INT4OID); }), "");
}

using ToServerDeathTest = ToServer;

TEST_F(ToServerDeathTest, MissingBufferWithAValueIsAsserted) {
  EXPECT_EXIT(bind(SQLT_INT, nullptr, 4, &indicator, INT4OID),
              testing::KilledBySignal(SIGABRT),
              "bufferin \\|\\| \\(indp && \\(\\*\\(sb2 \\*\\)indp\\) == -1\\)");
}

TEST_F(ToServerDeathTest, MissingSizeWithAValueIsAsserted) {
  EXPECT_EXIT(bind(SQLT_INT, &four, 0, &indicator, INT4OID),
              testing::KilledBySignal(SIGABRT),
              "bufferin_sz \\|\\| \\(indp && \\(\\*\\(sb2 \\*\\)indp\\) == -1\\)");
}

TEST(BindLookup, FoundConverterIsHandedOutWhenAskedFor) {
  ToServerConverter found = nullptr;
  EXPECT_EQ(IsOCIToPQConversionPossible(SQLT_INT, NUMERICOID, &found), 0);
  EXPECT_EQ(found, ConvertSQLT_INTToNUMERICOID);
  EXPECT_EQ(IsOCIToPQConversionPossible(SQLT_INT, NUMERICOID, nullptr), 0);
  EXPECT_EQ(IsOCIToPQConversionPossible(SQLT_UIN, NUMERICOID, nullptr), -1);
}

class FromServer : public testing::Test {
 protected:
  sword fetch(Oid oid, const char *value, ub2 type, int isNull = 0) {
    length = sizeof target;
    return PQ2OCIType(session.errhp, oid, value,
                      value ? static_cast<sb4>(std::strlen(value)) : 0, 0, type, target,
                      &length, &indicator, &returnCode, isNull);
  }

  Session session;
  char target[16] = {};
  ub4 length = 0;
  sb2 indicator = 77;
  ub2 returnCode = 77;
};

TEST_F(FromServer, UntypedLiteralsAreText) {
  EXPECT_EQ(findPQToOCIConversion(705, SQLT_STR, nullptr), ConvertTEXTOIDToSQLT_STR);
  EXPECT_EQ(fetch(705, "abc", SQLT_STR), 0);
  EXPECT_STREQ(target, "abc");
}

TEST_F(FromServer, RawFetchedAsBytesIsABytea) {
  for (const Oid oid : {12487u, 12501u, 12502u}) {
    EXPECT_EQ(findPQToOCIConversion(oid, SQLT_BIN, nullptr), ConvertBYTEAOIDToSQLT_BIN);
  }
  EXPECT_EQ(fetch(12502, "\\xDEAD", SQLT_BIN), 0);
  EXPECT_EQ(std::string(target, length), "\xDE\xAD");
}

TEST_F(FromServer, AliasesOfRawHaveItsRow) {
  for (const ub2 type : {1, 5, 8, 9, 15, 23, 24, 94, 95, 96, 97, 155}) {
    const auto raw =
        GetConversionFunctionInternal(12487, type, PQToOCIConversionFunctions, 0, 249)
            .fromServer;
    EXPECT_NE(raw, nullptr);
    EXPECT_EQ(findPQToOCIConversion(12487, type, nullptr), raw);
    EXPECT_EQ(findPQToOCIConversion(12501, type, nullptr), raw);
    EXPECT_EQ(findPQToOCIConversion(12502, type, nullptr), raw);
  }
}

TEST_F(FromServer, NullIsNoErrorAndTouchesNoBuffer) {
  target[0] = 'x';
  EXPECT_EQ(fetch(INT4OID, "5", SQLT_INT, 1), 0);
  EXPECT_EQ(indicator, -1);
  EXPECT_EQ(returnCode, 1405);
  EXPECT_EQ(target[0], 'x');
  EXPECT_EQ(session.takeRecord(), kNoRecord);
}

TEST_F(FromServer, NullNeedsNoIndicatorAndNoPair) {
  EXPECT_EQ(PQ2OCIType(session.errhp, 99999, nullptr, 0, 0, SQLT_INT, target, &length,
                       nullptr, nullptr, 1),
            0);
  EXPECT_EQ(PQ2OCIType_2(session.errhp, 99999, nullptr, 0, 0, SQLT_INT, target, &length,
                         nullptr, &returnCode, nullptr, 1),
            0);
  EXPECT_EQ(returnCode, 1405);
  EXPECT_EQ(session.takeRecord(), kNoRecord);
}

TEST_F(FromServer, MissingPairNamesBothClasses) {
  EXPECT_EQ(fetch(INT4OID, "5", SQLT_DAT), -1);
  EXPECT_EQ(session.takeRecord(), 932);
  EXPECT_EQ(session.lastMessage,
            "KESTREL-00932: data types not consistent - expected NUMBER got DATE");
  EXPECT_EQ(indicator, 77) << "a missing pair leaves the indicator alone";
}

TEST_F(FromServer, UnknownServerTypeHasNoClass) {
  EXPECT_EQ(fetch(99999, "5", SQLT_STR), -1);
  EXPECT_EQ(session.takeRecord(), 932);
  EXPECT_EQ(session.lastMessage,
            "KESTREL-00932: data types not consistent - expected  got TEXT");
}

TEST_F(FromServer, BooleansConvertToNothing) {
  EXPECT_EQ(fetch(16, "t", SQLT_INT), -1);
  EXPECT_EQ(session.takeRecord(), 932);
}

TEST_F(FromServer, RowsThatTheMatrixLacks) {
  for (const Oid oid :
       {16u,  19u,  22u,  24u,  27u,  28u,  29u,  30u,  600u,  601u,  602u,  603u, 604u,
        628u, 650u, 702u, 703u, 704u, 718u, 790u, 869u, 1083u, 1266u, 1560u, 1562u}) {
    EXPECT_EQ(fetch(oid, "5", SQLT_STR), -1) << oid;
    EXPECT_EQ(session.takeRecord(), 932) << oid;
  }
}

TEST_F(FromServer, ExternalTypeGoesByAllItsSixteenBits) {
  EXPECT_EQ(findPQToOCIConversion(INT4OID, 13, nullptr), nullptr);
  EXPECT_EQ(findPQToOCIConversion(INT4OID, 241, nullptr), nullptr);
}

TEST_F(FromServer, ValueClearsIndicatorAndReturnCode) {
  EXPECT_EQ(fetch(INT4OID, "5", SQLT_STR), 0);
  EXPECT_EQ(indicator, 0);
  EXPECT_EQ(returnCode, 0);
}

TEST_F(FromServer, CursorNameGoesToTheChildStatement) {
  OCIStmt child{};
  child.handleType = HANDLE_OCIStmt;
  child.preparedName = ::strdup("an older name");
  ub4 unused = 3;
  const auto status = PQ2OCIType(session.errhp, 1790, "portal_1", 8, 0, SQLT_RSET, &child,
                                 &unused, &indicator, &returnCode, 0);
  EXPECT_EQ(status, 0);
  EXPECT_STREQ(child.preparedName, "portal_1");
  EXPECT_EQ(unused, 3u) << "the length of the define is not the name's";
  EXPECT_EQ(indicator, 0);
  std::free(child.preparedName);
}

TEST_F(FromServer, CursorNameStaysInTheServersEncoding) {
  Session wide(OCI_UTF16);
  OCIStmt child{};
  child.handleType = HANDLE_OCIStmt;
  EXPECT_EQ(PQ2OCIType(wide.errhp, 1790, "portal_1", 8, 0, SQLT_RSET, &child, nullptr,
                       nullptr, nullptr, 0),
            0);
  EXPECT_STREQ(child.preparedName, "portal_1");
  std::free(child.preparedName);
}

TEST_F(FromServer, CursorNeedsAStatement) {
  OCIError *wrong = session.errhp;
  EXPECT_EQ(PQ2OCIType(session.errhp, 1790, "p", 1, 0, SQLT_RSET, wrong, nullptr, nullptr,
                       nullptr, 0),
            OCI_INVALID_HANDLE);
  EXPECT_EQ(PQ2OCIType(session.errhp, 1790, "p", 1, 0, SQLT_RSET, nullptr, nullptr,
                       nullptr, nullptr, 0),
            OCI_INVALID_HANDLE);
}

TEST_F(FromServer, NullCursorLeavesTheChildAlone) {
  OCIStmt child{};
  child.handleType = HANDLE_OCIStmt;
  EXPECT_EQ(PQ2OCIType(session.errhp, 1790, nullptr, 0, 0, SQLT_RSET, &child, nullptr,
                       &indicator, nullptr, 1),
            0);
  EXPECT_EQ(child.preparedName, nullptr);
  EXPECT_EQ(indicator, -1);
}

TEST_F(FromServer, WithAConnectionACursorNameIsBytes) {
  length = sizeof target;
  EXPECT_EQ(PQ2OCIType_2(session.errhp, 1790, "portal_1", 8, 0, SQLT_RSET, target,
                         &length, &indicator, &returnCode, nullptr, 0),
            0);
  EXPECT_STREQ(target, "portal_1");
  EXPECT_EQ(length, 8u);
}

TEST_F(FromServer, ColumnConvertsCellByCellWithOneLookup) {
  const auto column = zev::conversionOf(INT4OID, SQLT_INT, nullptr);
  for (int i = 0; i < 3; ++i) {
    const std::string digits = std::to_string(i * 1000);
    sb4 number = 0;
    ub4 size = sizeof number;
    EXPECT_EQ(
        zev::convertField(session.errhp, column,
                          {digits.c_str(), static_cast<sb4>(digits.size()), 0, false},
                          {&number, &size, &indicator, &returnCode}),
        0);
    EXPECT_EQ(number, i * 1000);
  }
}

using FromServerDeathTest = FromServer;

TEST_F(FromServerDeathTest, MissingErrorHandleIsAsserted) {
  EXPECT_EXIT(PQ2OCIType(nullptr, INT4OID, "5", 1, 0, SQLT_INT, target, &length, nullptr,
                         nullptr, 0),
              testing::KilledBySignal(SIGABRT), "errhndl != \\(\\(void \\*\\)0\\)");
}

}  // namespace
}  // namespace zevtest
