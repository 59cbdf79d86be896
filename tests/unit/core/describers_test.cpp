/// The names that traces give to numbers.
#include "zevoci/describers.h"

#include <algorithm>

#include "core_fixture.h"
#include "trace_log.h"
#include "zevoci/user_callbacks.h"

namespace zev::test {
namespace {

TEST(HandleTypeNames, HandlesThenDescriptorsByNumber) {
  const char *handles[] = {"",
                           "HTYPE_ENV",
                           "HTYPE_ERROR",
                           "HTYPE_SVCCTX",
                           "HTYPE_STMT",
                           "HTYPE_BIND",
                           "HTYPE_DEFINE",
                           "HTYPE_DESCRIBE",
                           "HTYPE_SERVER",
                           "HTYPE_SESSION",
                           "HTYPE_TRANS",
                           "HTYPE_COMPLEXOBJECT",
                           "HTYPE_SECURITY",
                           "HTYPE_SUBSCRIPTION",
                           "HTYPE_DIRPATH_CTX",
                           "HTYPE_DIRPATH_COLUMN_ARRAY",
                           "HTYPE_DIRPATH_STREAM",
                           "HTYPE_PROC"};
  const char *descriptors[] = {"DTYPE_LOB",
                               "DTYPE_SNAP",
                               "DTYPE_RSET",
                               "DTYPE_PARAM",
                               "DTYPE_ROWID",
                               "DTYPE_COMPLEXOBJECTCOMP",
                               "DTYPE_FILE",
                               "DTYPE_AQENQ_OPTIONS",
                               "DTYPE_AQDEQ_OPTIONS",
                               "DTYPE_AQMSG_PROPERTIES",
                               "DTYPE_AQAGENT",
                               "DTYPE_LOCATOR",
                               "DTYPE_DATETIME",
                               "DTYPE_INTERVAL",
                               "DTYPE_AQNFY_DESCRIPTOR"};
  for (ub4 type = 0; type < 18; ++type) {
    EXPECT_STREQ(o2pGetHandleTypeName(type), handles[type]);
  }
  for (ub4 type = 50; type < 65; ++type) {
    EXPECT_STREQ(o2pGetHandleTypeName(type), descriptors[type - 50]);
  }
}

TEST(HandleTypeNames, NumbersWithoutAHandleAreInvalid) {
  for (const ub4 type : {18u, 29u, 30u, 40u, 49u, 65u, 82u, 83u, 1000u, 0xFFFFFFFFu}) {
    EXPECT_STREQ(o2pGetHandleTypeName(type), "Invalid handle") << type;
  }
}

TEST(ReturnCodeTexts, EveryStatusAndNoOther) {
  const struct {
    sword status;
    const char *text;
  } rows[] = {{0, "SUCCESS"},
              {1, "SUCCESS WITH INFO"},
              {99, "NEED DATA"},
              {100, "NO DATA"},
              {-1, "ERROR"},
              {-2, "INVALID HANDLE"},
              {-3123, "STILL EXECUTING"},
              {-24200, "CONTINUE"}};
  for (const auto &row : rows) {
    EXPECT_STREQ(o2pGetReturnCodeText(row.status), row.text);
  }
  int known = 0;
  for (sword status = -30000; status < 30000; ++status) {
    known += o2pGetReturnCodeText(status) != std::string("UNKNOWN RETURN CODE");
  }
  EXPECT_EQ(known, 8);
  EXPECT_STREQ(o2pGetReturnCodeText(5), "UNKNOWN RETURN CODE");
}

/// The names of all 16-bit numbers that `describe` knows, as "number name".
std::vector<std::string> known(const char *(*describe)(ub2), std::string_view unknown) {
  std::vector<std::string> names;
  for (int number = 0; number <= 0xFFFF; ++number) {
    const char *name = describe(static_cast<ub2>(number));
    if (name != unknown) names.push_back(std::to_string(number) + ' ' + name);
  }
  return names;
}

TEST(DurationTexts, NineDurations) {
  EXPECT_EQ(known(o2pGetDurationText, "UNKNOWN DURATION"),
            (std::vector<std::string>{"5 OCI_DURATION_PROCESS", "6 OCI_DURATION_NEXT",
                                      "8 OCI_DURATION_DEFAULT", "9 OCI_DURATION_NULL",
                                      "10 OCI_DURATION_SESSION", "11 OCI_DURATION_TRANS",
                                      "12 OCI_DURATION_CALL", "13 OCI_DURATION_STATEMENT",
                                      "14 OCI_DURATION_CALLOUT"}));
}

TEST(TypeCodeTexts, ThirtyThreeTypeCodes) {
  EXPECT_EQ(known(o2pGetTypeCodeText, "Unknown Type Code"),
            (std::vector<std::string>{"1 OCI_TYPECODE_VARCHAR",
                                      "2 OCI_TYPECODE_NUMBER",
                                      "3 OCI_TYPECODE_INTEGER",
                                      "4 OCI_TYPECODE_FLOAT",
                                      "7 OCI_TYPECODE_DECIMAL",
                                      "9 OCI_TYPECODE_VARCHAR2",
                                      "12 OCI_TYPECODE_DATE",
                                      "21 OCI_TYPECODE_REAL",
                                      "22 OCI_TYPECODE_DOUBLE",
                                      "23 OCI_TYPECODE_UNSIGNED8",
                                      "25 OCI_TYPECODE_UNSIGNED16",
                                      "26 OCI_TYPECODE_UNSIGNED32",
                                      "27 OCI_TYPECODE_SIGNED8",
                                      "28 OCI_TYPECODE_SIGNED16",
                                      "29 OCI_TYPECODE_SIGNED32",
                                      "32 OCI_TYPECODE_PTR",
                                      "58 OCI_TYPECODE_OPAQUE",
                                      "95 OCI_TYPECODE_RAW",
                                      "96 OCI_TYPECODE_CHAR",
                                      "105 OCI_TYPECODE_MLSLABEL",
                                      "108 OCI_TYPECODE_OBJECT",
                                      "110 OCI_TYPECODE_REF",
                                      "112 OCI_TYPECODE_CLOB",
                                      "113 OCI_TYPECODE_BLOB",
                                      "114 OCI_TYPECODE_BFILE",
                                      "115 OCI_TYPECODE_CFILE",
                                      "122 OCI_TYPECODE_NAMEDCOLLECTION",
                                      "228 OCI_TYPECODE_OTM/SYSFIRST",
                                      "245 OCI_TYPECODE_OCTET",
                                      "246 OCI_TYPECODE_SMALLINT",
                                      "247 OCI_TYPECODE_VARRAY",
                                      "248 OCI_TYPECODE_TABLE",
                                      "320 OCI_TYPECODE_OTM/SYSLAST"}));
}

TEST(ParameterAttributes, NamesWithoutThePrefix) {
  const struct {
    ub4 attribute;
    const char *name;
  } rows[] = {{1, "DATA_SIZE"},
              {2, "DATA_TYPE"},
              {4, "NAME"},
              {11, "POSITION"},
              {50, "COMPLEXOBJECTCOMP_TYPE"},
              {53, "COMPLEXOBJECT_COLL_OUTOFLINE"},
              {100, "DISP_NAME"},
              {210, "OVERLOAD"},
              {225, "HAS_LOB"},
              {272, "LOCKING_MODE"}};
  for (const auto &row : rows) {
    EXPECT_STREQ(o2pDescribeAttribute(row.attribute), row.name);
  }
}

TEST(ParameterAttributes, AreThoseOfFiveRanges) {
  const auto described = [](ub4 a) {
    return (a >= 1 && a <= 11) || (a >= 50 && a <= 53) || a == 100 ||
           (a >= 210 && a <= 272);
  };
  for (ub4 attribute = 0; attribute < 1000; ++attribute) {
    EXPECT_EQ(o2pDescribeAttribute(attribute) != nullptr, described(attribute))
        << attribute;
  }
}

TEST(FunctionCodes, EveryCodeUpTo123ButThoseWithoutAFunction) {
  const std::vector<ub4> none = {0,  9,  14, 15, 16, 19, 22, 23, 24,
                                 30, 31, 36, 40, 41, 49, 53, 60};
  for (ub4 code = 0; code < 300; ++code) {
    const bool named = code <= 123 && std::ranges::find(none, code) == none.end();
    ASSERT_EQ(o2pGetFunctionCode(code) != nullptr, named) << code;
    if (named) {
      EXPECT_EQ(std::string(o2pGetFunctionCode(code)).find("OCI_FNCODE_"), 0u);
    }
  }
  EXPECT_STREQ(o2pGetFunctionCode(1), "OCI_FNCODE_INITIALIZE");
  EXPECT_STREQ(o2pGetFunctionCode(21), "OCI_FNCODE_STMTEXECUTE");
  EXPECT_STREQ(o2pGetFunctionCode(74), "OCI_FNCODE_LOBFILESETNAME");
  EXPECT_STREQ(o2pGetFunctionCode(123), "OCI_FNCODE_LOBARRAYWRITE");
}

TEST(CallbackTypes, AreNamedByTheirNumbers) {
  EXPECT_EQ(OCICallbackTypes[0], nullptr);
  EXPECT_STREQ(OCICallbackTypes[OCI_UCBTYPE_ENTRY], "OCI_UCBTYPE_ENTRY");
  EXPECT_STREQ(OCICallbackTypes[OCI_UCBTYPE_EXIT], "OCI_UCBTYPE_EXIT");
  EXPECT_STREQ(OCICallbackTypes[OCI_UCBTYPE_REPLACE], "OCI_UCBTYPE_REPLACE");
}

TEST(AttributeNames, EveryNumberFromOneHasOne) {
  EXPECT_EQ(OCIAttrs[0], nullptr);
  for (std::size_t i = 1; i < OCIAttrs.size(); ++i) ASSERT_NE(OCIAttrs[i], nullptr) << i;
  EXPECT_STREQ(OCIAttrs[1], "OCI_ATTR_FNCODE");
  EXPECT_STREQ(OCIAttrs[22], "OCI_ATTR_USERNAME");
  EXPECT_STREQ(OCIAttrs[136], "OCI_ATTR_OBJ_ID");
}

TEST(SqlCommandNames, StandAtTheirCodes) {
  EXPECT_STREQ(SQLFCode1[3], "INSERT");
  EXPECT_STREQ(SQLFCode1[4], "SELECT");
  EXPECT_STREQ(SQLFCode1[34], "PL/SQL EXECUTE");
  EXPECT_STREQ(SQLFCode1[99], "DROP PACKAGE BODY");
  EXPECT_EQ(SQLFCode1[15], nullptr);
  EXPECT_STREQ(SQLFCode2[157 - 157], "CREATE DIRECTORY");
  EXPECT_STREQ(SQLFCode2[183 - 157], "ALTER OPERATOR");
}

class DecodedAttributes : public testing::Test {
 protected:
  DecodedAttributes() { OCI2PQ_TRACE_LEVEL = kTraceArguments; }

  /// The line for an attribute, each address as "#".
  template <class T>
  std::string decoded(ub4 attribute, T value) {
    o2pGetDecodedAttribute(attribute, &value);
    return log_.takeNarrative();
  }

  TraceLog log_;
};

TEST_F(DecodedAttributes, EachIsShownInTheFormOfItsType) {
  for (const ub4 attribute : {1u, 2u, 10u, 36u}) {
    EXPECT_EQ(decoded(attribute, ub4{1}), "4: \t<s> = <s>\n") << attribute;
  }
  for (const ub4 attribute : {3u,  32u, 79u, 80u, 97u, 102u, 120u, 121u, 125u, 9u,
                              18u, 30u, 34u, 35u, 42u, 73u,  74u,  84u,  124u, 136u}) {
    EXPECT_EQ(decoded(attribute, ub4{1}), "4: \t<s> = <d>\n") << attribute;
  }
  for (const ub4 attribute : {5u, 6u, 7u, 8u, 127u}) {
    EXPECT_EQ(decoded(attribute, static_cast<void *>(nullptr)), "4: \t<s> = <p>\n")
        << attribute;
  }
  for (const ub4 attribute : {22u, 23u, 111u}) {
    EXPECT_EQ(decoded(attribute, 'x'), "4: \t<s> = <s>\n") << attribute;
  }
  for (const ub4 attribute : {11u, 12u, 13u, 15u, 45u}) {
    EXPECT_EQ(decoded(attribute, ub4{1}), "4: \t<s> = Write Only\n") << attribute;
  }
}

TEST_F(DecodedAttributes, ACommandWithoutANameIsInvalid) {
  for (const ub2 code : {3, 99, 157, 183}) {
    EXPECT_EQ(decoded(10, code), "4: \t<s> = <s>\n") << code;
  }
  for (const ub2 code : {0, 100, 156, 184, 65535}) {
    EXPECT_EQ(decoded(10, code), "4: \t\t\t    <s> = Invalid(<d>)\n") << code;
  }
}

TEST_F(DecodedAttributes, OthersAreIgnored) {
  for (const ub4 attribute : {0u, 4u, 14u, 137u, 138u, 5001u, 0xFFFFFFFFu}) {
    EXPECT_EQ(decoded(attribute, std::uint64_t{1}), "") << attribute;
  }
  o2pGetDecodedAttribute(1, nullptr);
  EXPECT_EQ(log_.takeNarrative(), "");
  OCI2PQ_TRACE_LEVEL = kTraceNarrative;
  EXPECT_EQ(decoded(1, ub4{1}), "");
}

}  // namespace
}  // namespace zev::test
