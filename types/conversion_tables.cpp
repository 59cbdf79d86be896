#include "types/conversion_tables.h"

#include "types/converters.h"
#include "types/guarded_conversions.h"
#include "types/server_types.h"

// A pair that is bound: external type, server type, and the names that its converter has.
#define BIND(type, oid, X, Y) {type, oid, {.toServer = ConvertSQLT_##X##To##Y}},

// clang-format off
extern "C" constexpr ConversionEntry OCIToPQConversionFunctions[kToServerEntries] = {
  BIND(SQLT_CHR,           1043,                CHR,          TEXTOID)
  BIND(SQLT_NUM,           NUMERICOID,          NUM,          NUMERICOID)
  BIND(SQLT_INT,           CHAROID,             INT,          CHAROID)
  BIND(SQLT_INT,           INT8OID,             INT,          INT8OID)
  BIND(SQLT_INT,           INT2OID,             INT,          INT2OID)
  BIND(SQLT_INT,           INT4OID,             INT,          INT4OID)
  BIND(SQLT_INT,           NUMERICOID,          INT,          NUMERICOID)
  BIND(SQLT_FLT,           FLOAT4OID,           FLT,          FLOAT4OID)
  BIND(SQLT_FLT,           FLOAT8OID,           FLT,          FLOAT8OID)
  BIND(SQLT_STR,           TEXTOID,             STR,          TEXTOID)
  BIND(SQLT_STR,           1043,                STR,          TEXTOID)
  BIND(SQLT_VNU,           NUMERICOID,          VNU,          NUMERICOID)
  BIND(SQLT_LNG,           1043,                LNG,          TEXTOID)
  BIND(SQLT_VCS,           1043,                VCS,          TEXTOID)
  BIND(SQLT_DAT,           DATEOID,             DAT,          DATEOID)
  BIND(SQLT_DAT,           TIMESTAMPOID,        DAT,          TIMESTAMPOID)
  BIND(SQLT_VBI,           BYTEAOID,            VBI,          BYTEAOID)
  BIND(SQLT_BFLOAT,        FLOAT4OID,           FLT,          FLOAT4OID)
  BIND(SQLT_BDOUBLE,       FLOAT8OID,           FLT,          FLOAT8OID)
  BIND(SQLT_BIN,           BYTEAOID,            BIN,          BYTEAOID)
  BIND(SQLT_LBI,           BYTEAOID,            LBI,          BYTEAOID)
  BIND(SQLT_UIN,           CHAROID,             INT,          CHAROID)
  BIND(SQLT_UIN,           INT8OID,             INT,          INT8OID)
  BIND(SQLT_UIN,           INT2OID,             INT,          INT2OID)
  BIND(SQLT_UIN,           INT4OID,             INT,          INT4OID)
  BIND(SQLT_LVC,           1043,                LVC,          TEXTOID)
  BIND(SQLT_LVB,           BYTEAOID,            LVB,          BYTEAOID)
  BIND(SQLT_AFC,           1043,                AFC,          TEXTOID)
  BIND(SQLT_AVC,           1043,                STR,          TEXTOID)
  BIND(SQLT_RSET,          1790,                STR,          TEXTOID)
  BIND(SQLT_VST,           1043,                VST,          TEXTOID)
  BIND(SQLT_ODT,           TIMESTAMPOID,        ODT,          TIMESTAMPOID)
  BIND(SQLT_DATE,          TIMESTAMPOID,        DATE,         TIMESTAMPOID)
  BIND(SQLT_TIMESTAMP,     TIMESTAMPOID,        TIMESTAMP,    TIMESTAMPOID)
  BIND(SQLT_TIMESTAMP_TZ,  TIMESTAMPTZOID,      TIMESTAMP_TZ, TIMESTAMPTZOID)
  BIND(SQLT_INTERVAL_YM,   INTERVALOID,         INTERVAL_DS,  INTERVALOID)
  BIND(SQLT_INTERVAL_DS,   INTERVALOID,         INTERVAL_DS,  INTERVALOID)
  BIND(SQLT_TIMESTAMP_LTZ, TIMESTAMPTZOID,      TIMESTAMP_TZ, TIMESTAMPTZOID)
};

// A pair that is fetched is a CELL(oid, type, X, Y), where X and Y name its converter.
// This is a cell whose converter has the name of its type.
#define OWN(oid, X, Y) CELL(oid, SQLT_##Y, X, Y)

// The rows of the matrix by family. A number's SQLT_NUM cell is told apart by the row.
#define NUMBER_ROW(oid, X, NumCell)                                              \
  OWN(oid, X, CHR)  CELL(oid, SQLT_NUM, X, NumCell)                              \
  OWN(oid, X, INT)  OWN(oid, X, FLT)     OWN(oid, X, STR)      OWN(oid, X, VNU)  \
  OWN(oid, X, LNG)  OWN(oid, X, VCS)     OWN(oid, X, BFLOAT)   OWN(oid, X, BDOUBLE) \
  OWN(oid, X, UIN)  OWN(oid, X, LVC)     OWN(oid, X, AFC)      OWN(oid, X, AVC)  \
  OWN(oid, X, VST)
#define CHARACTER_ROW(oid, X)                                                    \
  OWN(oid, X, CHR)  OWN(oid, X, NUM)     OWN(oid, X, INT)      OWN(oid, X, FLT)  \
  OWN(oid, X, STR)  OWN(oid, X, VNU)     OWN(oid, X, LNG)      OWN(oid, X, VCS)  \
  OWN(oid, X, DAT)  OWN(oid, X, VBI)     OWN(oid, X, BFLOAT)   OWN(oid, X, BDOUBLE) \
  OWN(oid, X, BIN)  OWN(oid, X, LBI)     OWN(oid, X, UIN)      OWN(oid, X, LVC)  \
  OWN(oid, X, LVB)  CELL(oid, SQLT_AFC, X, CHR)                OWN(oid, X, AVC)  \
  OWN(oid, X, VST)  OWN(oid, X, ODT)     OWN(oid, X, DATE)     OWN(oid, X, TIMESTAMP) \
  OWN(oid, X, TIMESTAMP_TZ)              CELL(oid, SQLT_TIMESTAMP_LTZ, X, TIMESTAMP_TZ)
#define BINARY_ROW(oid, X)                                                       \
  OWN(oid, X, CHR)  OWN(oid, X, STR)     OWN(oid, X, LNG)      OWN(oid, X, VCS)  \
  OWN(oid, X, VBI)  OWN(oid, X, BIN)     OWN(oid, X, LBI)      OWN(oid, X, LVC)  \
  OWN(oid, X, LVB)  OWN(oid, X, AFC)     OWN(oid, X, AVC)      OWN(oid, X, VST)
// Character targets go by the date, the others by the timestamp, ZoneX by its zone too.
#define DATE_ROW(oid, DateX, TimeX, ZoneX)                                       \
  OWN(oid, DateX, CHR)  OWN(oid, DateX, STR)  OWN(oid, DateX, LNG)  OWN(oid, DateX, VCS) \
  OWN(oid, TimeX, DAT)                                                           \
  OWN(oid, DateX, LVC)  OWN(oid, DateX, AFC)  OWN(oid, DateX, AVC)  OWN(oid, DateX, VST) \
  OWN(oid, TimeX, ODT)  OWN(oid, TimeX, DATE) OWN(oid, TimeX, TIMESTAMP)         \
  OWN(oid, ZoneX, TIMESTAMP_TZ)  CELL(oid, SQLT_TIMESTAMP_LTZ, ZoneX, TIMESTAMP_TZ)

#define FROM_SERVER_ROWS \
  BINARY_ROW(   BYTEAOID,       BYTEAOID)                                               \
  NUMBER_ROW(   CHAROID,        CHAROID,    NUM)                                        \
  NUMBER_ROW(   INT8OID,        INT8OID,    NUM)                                        \
  NUMBER_ROW(   INT2OID,        INT2OID,    NUM)                                        \
  NUMBER_ROW(   INT4OID,        INT4OID,    NUM)                                        \
  CHARACTER_ROW(TEXTOID,        TEXTOID)                                                \
  OWN(          OIDOID,         OIDOID,     BLOB)                                       \
  NUMBER_ROW(   FLOAT4OID,      FLOAT4OID,  NUM)                                        \
  NUMBER_ROW(   FLOAT8OID,      FLOAT8OID,  NUM)                                        \
  CHARACTER_ROW(1042,           TEXTOID)                                                \
  CHARACTER_ROW(1043,           TEXTOID)                                                \
  DATE_ROW(     DATEOID,        DATEOID,    TIMESTAMPOID, TIMESTAMPOID)                 \
  DATE_ROW(     TIMESTAMPOID,   DATEOID,    TIMESTAMPOID, TIMESTAMPOID)                 \
  DATE_ROW(     TIMESTAMPTZOID, DATEOID,    TIMESTAMPOID, TIMESTAMPTZOID)               \
  CELL(         INTERVALOID,    SQLT_INTERVAL_YM, INTERVALOID, INTERVAL_DS)             \
  CELL(         INTERVALOID,    SQLT_INTERVAL_DS, INTERVALOID, INTERVAL_DS)             \
  NUMBER_ROW(   NUMERICOID,     NUMERICOID, VNU)                                        \
  CELL(         1790,           SQLT_RSET,  TEXTOID,      STR)                          \
  BINARY_ROW(   12487,          BYTEAOID)
// clang-format on

#define CELL(oid, type, X, Y) {oid, type, {.fromServer = Convert##X##ToSQLT_##Y}},
extern "C" constexpr ConversionEntry PQToOCIConversionFunctions[kFromServerEntries] = {
    FROM_SERVER_ROWS};
#undef CELL
#define CELL(oid, type, X, Y) zev::kGuarded<Convert##X##ToSQLT_##Y>,
constexpr FromServerConverter zev::kGuardedConverters[kFromServerEntries] = {
    FROM_SERVER_ROWS};
#undef CELL

#undef FROM_SERVER_ROWS
#undef DATE_ROW
#undef BINARY_ROW
#undef CHARACTER_ROW
#undef NUMBER_ROW
#undef OWN
#undef BIND

namespace {

constexpr bool sorted(const ConversionEntry *table, int count) {
  for (int i = 1; i < count; ++i) {
    const auto &a = table[i - 1];
    const auto &b = table[i];
    const bool ascending = a.firstKey < b.firstKey ||
                           (a.firstKey == b.firstKey && a.secondKey < b.secondKey);
    if (!ascending) return false;
  }
  return true;
}

// A missing row would leave a zeroed entry at the end, which the order betrays.
static_assert(sorted(OCIToPQConversionFunctions, kToServerEntries));
static_assert(sorted(PQToOCIConversionFunctions, kFromServerEntries));
static_assert(OCIToPQConversionFunctions[kToServerEntries - 1].firstKey != 0);
static_assert(PQToOCIConversionFunctions[kFromServerEntries - 1].firstKey != 0);

}  // namespace
