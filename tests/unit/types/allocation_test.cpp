/// What the converters do when memory runs out. The program's calls of malloc, calloc and
/// strdup come here first (linker option --wrap).
#include <limits>

#include "types/conversion_dispatch.h"
#include "types/numeric.h"
#include "types_fixture.h"
#include "zevoci/string_value.h"

namespace {
thread_local int allocationsLeft = std::numeric_limits<int>::max();

bool allocationFails() {
  if (allocationsLeft == std::numeric_limits<int>::max()) return false;
  return allocationsLeft-- <= 0;
}
}  // namespace

extern "C" {
void *__real_malloc(std::size_t size);
void *__real_calloc(std::size_t count, std::size_t size);
char *__real_strdup(const char *s);
void *__wrap_malloc(std::size_t size) {
  return allocationFails() ? nullptr : __real_malloc(size);
}
void *__wrap_calloc(std::size_t count, std::size_t size) {
  return allocationFails() ? nullptr : __real_calloc(count, size);
}
char *__wrap_strdup(const char *s) {
  return allocationFails() ? nullptr : __real_strdup(s);
}
}

namespace zevtest {
namespace {

/// Lets `allowed` allocations pass while it lives, and no more.
class Memory {
 public:
  explicit Memory(int allowed) { allocationsLeft = allowed; }
  ~Memory() { allocationsLeft = std::numeric_limits<int>::max(); }
};

struct OutOfMemory {
  const char *name;
  ToServerConverter convert;
  std::string value;
  sword result;
  ub1 format;
};

class BindWithoutMemory : public testing::TestWithParam<OutOfMemory> {
 protected:
  Session session;
};

TEST_P(BindWithoutMemory, LeavesNoBuffer) {
  const OutOfMemory &c = GetParam();
  int there = 0;
  void *out = &there;
  ub4 length = 99;
  ub1 format = 99;
  sword result = 77;
  {
    const Memory none(0);
    result = c.convert(session.errhp, c.value.data(), static_cast<sb4>(c.value.size()),
                       nullptr, &out, &length, &format);
  }
  EXPECT_EQ(result, c.result);
  EXPECT_EQ(out, nullptr);
  EXPECT_EQ(format, c.format);
  if (c.convert != ConvertSQLT_FLTToFLOAT4OID &&
      c.convert != ConvertSQLT_FLTToFLOAT8OID) {
    EXPECT_EQ(length, 0u);
  }
  EXPECT_EQ(session.takeRecord(), kNoRecord);
}

const std::string kCounted2 = native<ub2>(3) + "abc", kCounted4 = native<ub4>(3) + "abc";
char chars[] = "abc";
OCIString string{3, 3, reinterpret_cast<OraText *>(chars)};

// clang-format off
INSTANTIATE_TEST_SUITE_P(Members, BindWithoutMemory, testing::Values(
    OutOfMemory{"Char",    ConvertSQLT_INTToCHAROID,    native<sb4>(5), -1, 0},
    OutOfMemory{"Int2GoesAsNull", ConvertSQLT_INTToINT2OID, native<sb4>(5), 0, 0},
    OutOfMemory{"Int4",    ConvertSQLT_INTToINT4OID,    native<sb4>(5), -1, 0},
    OutOfMemory{"Int8",    ConvertSQLT_INTToINT8OID,    native<sb4>(5), -1, 0},
    OutOfMemory{"Numeric", ConvertSQLT_INTToNUMERICOID, native<sb4>(5), -1, 1},
    OutOfMemory{"Number",  ConvertSQLT_NUMToNUMERICOID, "\xC1\x02" + std::string(19, '\0'), -1, 1},
    OutOfMemory{"Varnum",  ConvertSQLT_VNUToNUMERICOID, "\x02\xC1\x02", -1, 1},
    OutOfMemory{"Float4",  ConvertSQLT_FLTToFLOAT4OID,  native(1.5f),   -1, 1},
    OutOfMemory{"Float8",  ConvertSQLT_FLTToFLOAT8OID,  native(1.5f),   -1, 1},
    OutOfMemory{"Bin",     ConvertSQLT_BINToBYTEAOID,   "abc",          -1, 1},
    OutOfMemory{"Lbi",     ConvertSQLT_LBIToBYTEAOID,   "abc",          -1, 1},
    OutOfMemory{"Vbi",     ConvertSQLT_VBIToBYTEAOID,   kCounted2,      -1, 1},
    OutOfMemory{"Lvb",     ConvertSQLT_LVBToBYTEAOID,   kCounted4,      -1, 1},
    OutOfMemory{"Chr",     ConvertSQLT_CHRToTEXTOID,    "abc",          -1, 0},
    OutOfMemory{"Lng",     ConvertSQLT_LNGToTEXTOID,    "abc",          -1, 0},
    OutOfMemory{"Afc",     ConvertSQLT_AFCToTEXTOID,    "abc",          -1, 0},
    OutOfMemory{"Str",     ConvertSQLT_STRToTEXTOID,    "abc\0"s,       -1, 0},
    OutOfMemory{"Vcs",     ConvertSQLT_VCSToTEXTOID,    kCounted2,      -1, 0},
    OutOfMemory{"Lvc",     ConvertSQLT_LVCToTEXTOID,    kCounted4,      -1, 0},
    OutOfMemory{"Vst",     ConvertSQLT_VSTToTEXTOID,    native(&string), -1, 0}),
    nameOf<OutOfMemory>);
// clang-format on

/// Runs `convert` as a bind of `value` with room for `allowed` allocations.
sword bindWith(int allowed, OCIError *errhp, ToServerConverter convert,
               std::string value) {
  void *out = nullptr;
  ub4 length = 0;
  ub1 format = 0;
  const Memory memory(allowed);
  const sword status = convert(errhp, value.data(), static_cast<sb4>(value.size()),
                               nullptr, &out, &length, &format);
  std::free(out);
  return status;
}

TEST(AllocationCount, EachValueCostsOneAndTwoWhenItIsTranscoded) {
  Session narrow;
  EXPECT_EQ(bindWith(1, narrow.errhp, ConvertSQLT_INTToNUMERICOID, native<sb4>(123456)),
            0);
  EXPECT_EQ(bindWith(1, narrow.errhp, ConvertSQLT_CHRToTEXTOID, "abc"), 0);
  EXPECT_EQ(bindWith(1, narrow.errhp, ConvertSQLT_STRToTEXTOID, "abc\0"s), 0);
  Session wide(OCI_UTF16);
  EXPECT_EQ(bindWith(1, wide.errhp, ConvertSQLT_CHRToTEXTOID, utf16("abc")), -1);
  EXPECT_EQ(bindWith(2, wide.errhp, ConvertSQLT_CHRToTEXTOID, utf16("abc")), 0);
}

TEST(AllocationCount, FetchesInTextFormCostNone) {
  Session session;
  char target[40];
  const Memory none(0);
  for (const Oid oid : {Oid{INT2OID}, Oid{INT4OID}, Oid{INT8OID}, Oid{FLOAT8OID},
                        Oid{NUMERICOID}, Oid{TEXTOID}}) {
    for (const ub2 type : {SQLT_CHR, SQLT_INT, SQLT_FLT, SQLT_STR}) {
      ub4 size = type == SQLT_CHR || type == SQLT_STR ? sizeof target : 8;
      EXPECT_EQ(PQ2OCIType(session.errhp, oid, "1234", 4, 0, type, target, &size, nullptr,
                           nullptr, 0),
                0);
    }
  }
}

TEST(FetchWithoutMemory, BinaryNumericFails) {
  Session session;
  const std::string wire = network<sb2>(1) + network<sb2>(0) + network<sb2>(0) +
                           network<sb2>(0) + network<sb2>(42);
  for (const ub2 type : {SQLT_CHR, SQLT_INT, SQLT_FLT, SQLT_STR, SQLT_VNU}) {
    for (const int allowed : {0, 1}) {
      // These need no more than the record.
      if ((type == SQLT_INT || type == SQLT_VNU) && allowed == 1) continue;
      char target[8];
      ub4 size = sizeof target;
      const Memory memory(allowed);
      EXPECT_EQ(PQ2OCIType(session.errhp, NUMERICOID, wire.data(),
                           static_cast<sb4>(wire.size()), 1, type, target, &size, nullptr,
                           nullptr, 0),
                -1)
          << type << " " << allowed;
    }
  }
}

TEST(FetchWithoutMemory, TextThatOutgrowsItsTargetLeavesItAlone) {
  Session session;
  const std::string text(300, 'x');
  char target[8] = "~~~~~~~";
  ub4 size = sizeof target;
  sb2 indicator = 0;
  sword status = 0;
  {
    const Memory none(0);
    status = PQ2OCIType(session.errhp, TEXTOID, text.c_str(), 300, 0, SQLT_VCS, target,
                        &size, &indicator, nullptr, 0);
  }
  EXPECT_EQ(status, -1);
  EXPECT_STREQ(target, "~~~~~~~");
}

TEST(FetchWithoutMemory, CursorNameIsRecorded) {
  Session session;
  OCIStmt child{};
  child.handleType = HANDLE_OCIStmt;
  sword status = 0;
  {
    const Memory none(0);
    status = PQ2OCIType(session.errhp, 1790, "p", 1, 0, SQLT_RSET, &child, nullptr,
                        nullptr, nullptr, 0);
  }
  EXPECT_EQ(status, -1);
  EXPECT_EQ(child.preparedName, nullptr);
}

TEST(FetchWithoutMemory, ClassNamesAreNull) {
  const Memory none(0);
  EXPECT_EQ(GetPQDatatypeName(INT4OID), nullptr);
  EXPECT_EQ(GetOCIDatatypeName(SQLT_INT), nullptr);
}

TEST(FetchWithoutMemory, MissingPairFailsAllTheSame) {
  Session session;
  ub4 size = 0;
  const Memory none(0);
  EXPECT_EQ(PQ2OCIType(session.errhp, INT4OID, "5", 1, 0, SQLT_DAT, nullptr, &size,
                       nullptr, nullptr, 0),
            -1);
}

TEST(NumericWithoutMemory, Fails) {
  numeric *v = nullptr;
  {
    const Memory none(0);
    EXPECT_EQ(alloc_var(&v, 3), -1);
    EXPECT_EQ(v, nullptr);
    EXPECT_EQ(ConvertStringToNumeric("5", &v), -1);
    EXPECT_EQ(ConvertStringToNumeric("NaN", &v), -1);
  }
  ASSERT_EQ(ConvertStringToNumeric("5", &v), 0);
  char *printed = nullptr;
  double number = 0;
  {
    const Memory none(0);
    EXPECT_EQ(ConvertNumericToString(v, &printed, 0), -1);
    EXPECT_EQ(numericvar_to_double(v, &number), -1);
    v->sign = kNumericNaN;
    EXPECT_EQ(ConvertNumericToString(v, &printed, 0), -1);
  }
  std::free(v);
}

}  // namespace
}  // namespace zevtest
