#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iterator>

#include "types/server_types.h"
#include "zevoci/conversion.h"

namespace {

/// A set of external type codes, for tests that run once a value.
class TypeSet {
 public:
  constexpr TypeSet(std::initializer_list<ub2> codes) {
    for (const ub2 code : codes) members_[code] = true;
  }
  constexpr bool holds(ub2 code) const {
    return code < std::size(members_) && members_[code];
  }

 private:
  bool members_[256] = {};
};

constexpr TypeSet kKnownTypes = {
    1,   2,   3,   4,   5,   6,   7,   8,   9,   10,  11,  12,  15,  21,  22,  23,
    24,  68,  91,  94,  95,  96,  97,  100, 101, 102, 104, 105, 106, 108, 110, 112,
    113, 114, 115, 116, 122, 155, 156, 184, 185, 186, 187, 188, 189, 190, 232, 241};

constexpr TypeSet kBinaryTypes = {3,   4,   6,   7,   10,  11,  12,  15,  21,
                                  22,  23,  24,  68,  91,  95,  100, 101, 102,
                                  104, 105, 106, 108, 110, 113, 114, 116, 122,
                                  156, 184, 185, 186, 187, 188, 189, 190, 232};

char *copyOf(const char *name) {
  return ::strdup(name);
}

Oid integerTypeOf(sb4 length) {
  if (length == 2) return INT2OID;
  return length == 8 ? INT8OID : INT4OID;
}

}  // namespace

extern "C" {

sword IsValidOCIDataType(ub4 ociType) {
  return kKnownTypes.holds(static_cast<ub2>(ociType)) ? 0 : -1;
}

sword IsValidOraDataType(ub4 ociType) {
  return kKnownTypes.holds(static_cast<ub2>(ociType)) ? 1 : 0;
}

sword IsValidPQDataType(Oid pgType) {
  constexpr Oid kBeyondThirty[] = {600,  601,  602,  603,  604,   628,  650,  700,
                                   701,  702,  703,  704,  705,   718,  790,  869,
                                   1042, 1043, 1082, 1083, 1114,  1184, 1186, 1266,
                                   1560, 1562, 1700, 1790, 12487, 12501};
  if (pgType <= 30) return pgType >= 16 ? 0 : -1;
  return std::binary_search(std::begin(kBeyondThirty), std::end(kBeyondThirty), pgType)
             ? 0
             : -1;
}

boolean IsBinaryDataType(ub2 ociType) {
  return kBinaryTypes.holds(ociType);
}

Oid OraDataType_To_PGType(ub2 ociType, sb4 length) {
  switch (ociType) {
    case 1:
    case 5:
    case 8:
    case 9:
    case 94:
    case 96:
    case 97:
    case 112:
    case 155:
      return zev::kVarcharOid;
    case 2:
    case 6:
    case 7:
    case 100:
    case 101:
      return NUMERICOID;
    case 3:
    case 68:
      return integerTypeOf(length);
    case 4:
    case 22:
      return FLOAT8OID;
    case 21:
      return FLOAT4OID;
    case 12:
    case 156:
    case 184:
    case 187:
      return TIMESTAMPOID;
    case 15:
    case 23:
    case 24:
    case 95:
    case 113:
    case 114:
    case 115:
      return BYTEAOID;
    case 102:
    case 116:
      return zev::kRefcursorOid;
    case 185:
      return zev::kTimeOid;
    case 186:
      return zev::kTimeTzOid;
    case 188:
    case 232:
      return TIMESTAMPTZOID;
    case 189:
    case 190:
      return INTERVALOID;
    default:
      return static_cast<Oid>(-1);
  }
}

Oid GetParamType(OCIStmt *stmt, ub4 position, ub2 ociType, sb4 length) {
  const bool described = stmt && stmt->pgResult && position != 0;
  const Oid declared =
      described ? PQparamtype(stmt->pgResult, static_cast<int>(position - 1)) : 0;
  return declared != 0 ? declared : OraDataType_To_PGType(ociType, length);
}

ub2 MapPostgresDataTypeToOracleDataType(Oid oid) {
  switch (oid) {
    case 16:
    case INT8OID:
    case INT2OID:
    case INT4OID:
      return SQLT_INT;
    case BYTEAOID:
      return SQLT_BIN;
    case CHAROID:
    case 1043:
    case 705:
      return SQLT_CHR;
    case TEXTOID:
      return SQLT_STR;
    case 600:
    case 601:
    case 602:
    case 603:
    case 604:
    case 628:
    case 650:
    case 718:
    case 790:
    case 869:
    case 1560:
    case 1562:
      return SQLT_NTY;
    case FLOAT4OID:
    case FLOAT8OID:
      return SQLT_FLT;
    case 702:
    case DATEOID:
      return SQLT_ODT;
    case 1042:
      return SQLT_AFC;
    case 1083:
      return SQLT_TIME;
    case TIMESTAMPOID:
      return SQLT_TIMESTAMP;
    case TIMESTAMPTZOID:
      return SQLT_TIMESTAMP_TZ;
    case INTERVALOID:
      return SQLT_INTERVAL_YM;
    case 1266:
      return SQLT_TIME_TZ;
    case NUMERICOID:
      return SQLT_NUM;
    case 1790:
      return SQLT_CUR;
    default:
      return 0;
  }
}

ub2 oid2oci(Oid oid) {
  return oid == CHAROID || oid == 19 || oid == TEXTOID || oid == 1043 ? SQLT_VCS : 0;
}

char *GetPQDatatypeName(Oid oid) {
  switch (oid) {
    case 16:
    case CHAROID:
    case INT8OID:
    case INT2OID:
    case INT4OID:
    case FLOAT4OID:
    case FLOAT8OID:
    case NUMERICOID:
      return copyOf("NUMBER");
    case BYTEAOID:
      return copyOf("BINARY");
    case TEXTOID:
    case 1042:
    case 1043:
      return copyOf("TEXT");
    case DATEOID:
      return copyOf("DATE");
    case 1083:
    case TIMESTAMPOID:
    case TIMESTAMPTZOID:
    case INTERVALOID:
    case 1266:
      return copyOf("TIMESTAMP");
    default:
      return copyOf("");
  }
}

char *GetOCIDatatypeName(ub2 ociType) {
  switch (ociType) {
    case 1:
    case 5:
    case 8:
    case 9:
    case 94:
    case 96:
    case 97:
    case 155:
      return copyOf("TEXT");
    case 2:
    case 3:
    case 4:
    case 6:
    case 7:
    case 21:
    case 22:
    case 68:
      return copyOf("NUMBER");
    case 12:
    case 156:
    case 184:
      return copyOf("DATE");
    case 15:
    case 23:
    case 24:
    case 95:
    case 100:
    case 101:
      return copyOf("BINARY");
    case 185:
    case 186:
    case 187:
    case 188:
    case 189:
    case 190:
    case 232:
      return copyOf("TIMESTAMP");
    default:
      return copyOf("");
  }
}

// clang-format off
#define NO(n) "INVALID(" #n ")"
const char *const SQLTTypes[191] = {
  /*   0 */ NO(0), "SQLT_CHR", "SQLT_NUM", "SQLT_INT", "SQLT_FLT",
  /*   5 */ "SQLT_STR", "SQLT_VNU", "SQLT_PDN", "SQLT_LNG", "SQLT_VCS",
  /*  10 */ "SQLT_NON", "SQLT_RID", "SQLT_DAT", NO(13), NO(14),
  /*  15 */ "SQLT_VBI", NO(16), NO(17), NO(18), NO(19),
  /*  20 */ NO(20), "SQLT_BFLOAT", "SQLT_BDOUBLE", "SQLT_BIN", "SQLT_LBI",
  /*  25 */ NO(25), NO(26), NO(27), NO(28), NO(29),
  /*  30 */ NO(30), NO(31), NO(32), NO(33), NO(34),
  /*  35 */ NO(35), NO(36), NO(37), NO(38), NO(39),
  /*  40 */ NO(40), NO(41), NO(42), NO(43), NO(44),
  /*  45 */ NO(45), NO(46), NO(47), NO(48), NO(49),
  /*  50 */ NO(50), NO(51), NO(52), NO(53), NO(54),
  /*  55 */ NO(55), NO(56), NO(57), NO(58), NO(59),
  /*  60 */ NO(60), NO(61), NO(62), NO(63), NO(64),
  /*  65 */ NO(65), NO(66), NO(67), "SQLT_UIN", NO(69),
  /*  70 */ NO(70), NO(71), NO(72), NO(73), NO(74),
  /*  75 */ NO(75), NO(76), NO(77), NO(78), NO(79),
  /*  80 */ NO(80), NO(81), NO(82), NO(83), NO(84),
  /*  85 */ NO(85), NO(86), NO(87), NO(88), NO(89),
  /*  90 */ NO(90), "SQLT_SLS", NO(92), NO(93), "SQLT_LVC",
  /*  95 */ "SQLT_LVB", "SQLT_AFC", "SQLT_AVC", NO(98), NO(99),
  /* 100 */ "SQLT_IBFLOAT", "SQLT_IBDOUBLE", "SQLT_CUR", NO(103), "SQLT_RDD",
  /* 105 */ "SQLT_LAB", "SQLT_OSL", NO(107), "SQLT_NTY", NO(109),
  /* 110 */ "SQLT_REF", NO(111), "SQLT_CLOB", "SQLT_BLOB", "SQLT_BFILEE",
  /* 115 */ "SQLT_CFILEE", "SQLT_RSET", NO(117), NO(118), NO(119),
  /* 120 */ NO(120), NO(121), "SQLT_NCO", NO(123), NO(124),
  /* 125 */ NO(125), NO(126), NO(127), NO(128), NO(129),
  /* 130 */ NO(130), NO(131), NO(132), NO(133), NO(134),
  /* 135 */ NO(135), NO(136), NO(137), NO(138), NO(139),
  /* 140 */ NO(140), NO(141), NO(142), NO(143), NO(144),
  /* 145 */ NO(145), NO(146), NO(147), NO(148), NO(149),
  /* 150 */ NO(150), NO(151), NO(152), NO(153), NO(154),
  /* 155 */ "SQLT_VST", "SQLT_ODT", NO(157), NO(158), NO(159),
  /* 160 */ NO(160), NO(161), NO(162), NO(163), NO(164),
  /* 165 */ NO(165), NO(166), NO(167), NO(168), NO(169),
  /* 170 */ NO(170), NO(171), NO(172), NO(173), NO(174),
  /* 175 */ NO(175), NO(176), NO(177), NO(178), NO(179),
  /* 180 */ NO(180), NO(181), NO(182), NO(183), "SQLT_DATE",
  /* 185 */ "SQLT_TIME", "SQLT_TIME_TZ", "SQLT_TIMESTAMP", "SQLT_TIMESTAMP_TZ",
            "SQLT_INTERVAL_YM",
  /* 190 */ "SQLT_INTERVAL_DS",
};
#undef NO
// clang-format on

}  // extern "C"
