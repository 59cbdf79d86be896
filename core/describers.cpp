#include "zevoci/describers.h"

#include "core/attribute_value.h"
#include "core/named_numbers.h"
#include "zevoci/trace.h"

using zev::byNumber;
using zev::kTraceArguments;
using zev::NamedNumber;
using zev::nameOf;
using zev::takeAttribute;

namespace {

// clang-format off
constexpr const char *kHandleNames[] = {
    "", "HTYPE_ENV", "HTYPE_ERROR", "HTYPE_SVCCTX", "HTYPE_STMT", "HTYPE_BIND",
    "HTYPE_DEFINE", "HTYPE_DESCRIBE", "HTYPE_SERVER", "HTYPE_SESSION", "HTYPE_TRANS",
    "HTYPE_COMPLEXOBJECT", "HTYPE_SECURITY", "HTYPE_SUBSCRIPTION", "HTYPE_DIRPATH_CTX",
    "HTYPE_DIRPATH_COLUMN_ARRAY", "HTYPE_DIRPATH_STREAM", "HTYPE_PROC",
};
constexpr const char *kDescriptorNames[] = {
    "DTYPE_LOB", "DTYPE_SNAP", "DTYPE_RSET", "DTYPE_PARAM", "DTYPE_ROWID",
    "DTYPE_COMPLEXOBJECTCOMP", "DTYPE_FILE", "DTYPE_AQENQ_OPTIONS", "DTYPE_AQDEQ_OPTIONS",
    "DTYPE_AQMSG_PROPERTIES", "DTYPE_AQAGENT", "DTYPE_LOCATOR", "DTYPE_DATETIME",
    "DTYPE_INTERVAL", "DTYPE_AQNFY_DESCRIPTOR",
};
constexpr ub4 kFirstDescriptor = OCI_DTYPE_LOB;

constexpr struct {
  sword status;
  const char *text;
} kStatusTexts[] = {
    {OCI_SUCCESS, "SUCCESS"},
    {OCI_SUCCESS_WITH_INFO, "SUCCESS WITH INFO"},
    {OCI_NEED_DATA, "NEED DATA"},
    {OCI_NO_DATA, "NO DATA"},
    {OCI_ERROR, "ERROR"},
    {OCI_INVALID_HANDLE, "INVALID HANDLE"},
    {OCI_STILL_EXECUTING, "STILL EXECUTING"},
    {OCI_CONTINUE, "CONTINUE"},
};

#define DURATION(name) {OCI_DURATION_##name, "OCI_DURATION_" #name}
constexpr NamedNumber kDurations[] = {
    DURATION(PROCESS), DURATION(NEXT), DURATION(DEFAULT), DURATION(NULL),
    DURATION(SESSION), DURATION(TRANS), DURATION(CALL), DURATION(STATEMENT),
    DURATION(CALLOUT),
};
#undef DURATION

#define TYPECODE(name) {OCI_TYPECODE_##name, "OCI_TYPECODE_" #name}
constexpr NamedNumber kTypeCodes[] = {
    TYPECODE(VARCHAR), TYPECODE(NUMBER), TYPECODE(INTEGER), TYPECODE(FLOAT),
    TYPECODE(DECIMAL), TYPECODE(VARCHAR2), TYPECODE(DATE), TYPECODE(REAL),
    TYPECODE(DOUBLE), TYPECODE(UNSIGNED8), TYPECODE(UNSIGNED16), TYPECODE(UNSIGNED32),
    TYPECODE(SIGNED8), TYPECODE(SIGNED16), TYPECODE(SIGNED32), TYPECODE(PTR),
    TYPECODE(OPAQUE), TYPECODE(RAW), TYPECODE(CHAR), TYPECODE(MLSLABEL),
    TYPECODE(OBJECT), TYPECODE(REF), TYPECODE(CLOB), TYPECODE(BLOB), TYPECODE(BFILE),
    TYPECODE(CFILE), TYPECODE(NAMEDCOLLECTION), {228, "OCI_TYPECODE_OTM/SYSFIRST"},
    TYPECODE(OCTET), TYPECODE(SMALLINT), TYPECODE(VARRAY), TYPECODE(TABLE),
    {320, "OCI_TYPECODE_OTM/SYSLAST"},
};
#undef TYPECODE

#define PARAMETER(name) {OCI_ATTR_##name, #name}
constexpr auto kParameterAttributes = byNumber<273>({
    PARAMETER(DATA_SIZE), PARAMETER(DATA_TYPE), PARAMETER(DISP_SIZE), PARAMETER(NAME),
    PARAMETER(PRECISION), PARAMETER(SCALE), PARAMETER(IS_NULL), PARAMETER(TYPE_NAME),
    PARAMETER(SCHEMA_NAME), PARAMETER(SUB_NAME), PARAMETER(POSITION),
    PARAMETER(COMPLEXOBJECTCOMP_TYPE), PARAMETER(COMPLEXOBJECTCOMP_TYPE_LEVEL),
    PARAMETER(COMPLEXOBJECT_LEVEL), PARAMETER(COMPLEXOBJECT_COLL_OUTOFLINE),
    PARAMETER(DISP_NAME), PARAMETER(OVERLOAD), PARAMETER(LEVEL), PARAMETER(HAS_DEFAULT),
    PARAMETER(IOMODE), PARAMETER(RADIX), PARAMETER(NUM_ARGS), PARAMETER(TYPECODE),
    PARAMETER(COLLECTION_TYPECODE), PARAMETER(VERSION), PARAMETER(IS_INCOMPLETE_TYPE),
    PARAMETER(IS_SYSTEM_TYPE), PARAMETER(IS_PREDEFINED_TYPE),
    PARAMETER(IS_TRANSIENT_TYPE), PARAMETER(IS_SYSTEM_GENERATED_TYPE),
    PARAMETER(HAS_NESTED_TABLE), PARAMETER(HAS_LOB), PARAMETER(HAS_FILE),
    PARAMETER(COLLECTION_ELEMENT), PARAMETER(NUM_TYPE_ATTRS), PARAMETER(LIST_TYPE_ATTRS),
    PARAMETER(NUM_TYPE_METHODS), PARAMETER(LIST_TYPE_METHODS), PARAMETER(MAP_METHOD),
    PARAMETER(ORDER_METHOD), PARAMETER(NUM_ELEMS), PARAMETER(ENCAPSULATION),
    PARAMETER(IS_SELFISH), PARAMETER(IS_VIRTUAL), PARAMETER(IS_INLINE),
    PARAMETER(IS_CONSTANT), PARAMETER(HAS_RESULT), PARAMETER(IS_CONSTRUCTOR),
    PARAMETER(IS_DESTRUCTOR), PARAMETER(IS_OPERATOR), PARAMETER(IS_MAP),
    PARAMETER(IS_ORDER), PARAMETER(IS_RNDS), PARAMETER(IS_RNPS), PARAMETER(IS_WNDS),
    PARAMETER(IS_WNPS), PARAMETER(DESC_PUBLIC), PARAMETER(CACHE_CLIENT_CONTEXT),
    PARAMETER(UCI_CONSTRUCT), PARAMETER(UCI_DESTRUCT), PARAMETER(UCI_COPY),
    PARAMETER(UCI_PICKLE), PARAMETER(UCI_UNPICKLE), PARAMETER(UCI_REFRESH),
    PARAMETER(IS_SUBTYPE), PARAMETER(SUPERTYPE_SCHEMA_NAME), PARAMETER(SUPERTYPE_NAME),
    PARAMETER(LIST_OBJECTS), PARAMETER(NCHARSET_ID), PARAMETER(LIST_SCHEMAS),
    PARAMETER(MAX_PROC_LEN), PARAMETER(MAX_COLUMN_LEN), PARAMETER(CURSOR_COMMIT_BEHAVIOR),
    PARAMETER(MAX_CATALOG_NAMELEN), PARAMETER(CATALOG_LOCATION),
    PARAMETER(SAVEPOINT_SUPPORT), PARAMETER(NOWAIT_SUPPORT), PARAMETER(AUTOCOMMIT_DDL),
    PARAMETER(LOCKING_MODE)
});
#undef PARAMETER

constexpr NamedNumber kPinOptions[] = {
    {OCI_PIN_DEFAULT, "OCI_PIN_DEFAULT"},
    {OCI_PIN_ANY, "OCI_PIN_ANY"},
    {OCI_PIN_RECENT, "OCI_PIN_RECENT"},
    {OCI_PIN_LATEST, "OCI_PIN_LATEST"},
};
// clang-format on

/// In which form an attribute's value is shown.
enum class Form : ub1 {
  Unshown,
  FunctionCode,
  Truth,
  Byte,
  Short,
  Number,
  Pointer,
  Text,
  SqlCommand,
  PinOption,
  WriteOnly
};

constexpr struct {
  Form form;
  std::initializer_list<ub4> attributes;
} kForms[] = {
    {Form::FunctionCode, {1}},
    {Form::Truth, {2}},
    {Form::Byte, {3, 32, 79, 80, 97}},
    {Form::Short, {102, 120, 121, 125}},
    {Form::Number, {9, 18, 30, 34, 35, 42, 73, 74, 84, 124, 136}},
    {Form::Pointer, {5, 6, 7, 8, 127}},
    {Form::Text, {22, 23, 111}},
    {Form::SqlCommand, {10}},
    {Form::PinOption, {36}},
    {Form::WriteOnly, {11, 12, 13, 15, 45}},
};

Form formOf(ub4 attribute) {
  for (const auto &row : kForms) {
    for (const ub4 one : row.attributes) {
      if (one == attribute) return row.form;
    }
  }
  return Form::Unshown;
}

const char *sqlCommand(ub2 code) {
  constexpr ub2 kSecondTable = 157;
  if (code < SQLFCode1.size()) return SQLFCode1[code];
  const std::size_t second = static_cast<std::size_t>(code) - kSecondTable;
  return second < SQLFCode2.size() ? SQLFCode2[second] : nullptr;
}

void traceSqlCommand(const char *name, ub2 code) {
  if (const char *command = sqlCommand(code)) {
    o2pTrace(kTraceArguments, "\t%s = %s\n", name, command);
  } else {
    o2pTrace(kTraceArguments, "\t\t\t    %s = Invalid(%d)\n", name, code);
  }
}

}  // namespace

extern "C" {

const char *o2pGetHandleTypeName(ub4 type) {
  if (type < std::size(kHandleNames)) return kHandleNames[type];
  const ub4 descriptor = type - kFirstDescriptor;
  return descriptor < std::size(kDescriptorNames) ? kDescriptorNames[descriptor]
                                                  : "Invalid handle";
}

const char *o2pGetReturnCodeText(sword status) {
  for (const auto &row : kStatusTexts) {
    if (row.status == status) return row.text;
  }
  return "UNKNOWN RETURN CODE";
}

const char *o2pGetDurationText(ub2 duration) {
  return nameOf(kDurations, duration, "UNKNOWN DURATION");
}

const char *o2pGetTypeCodeText(ub2 code) {
  return nameOf(kTypeCodes, code, "Unknown Type Code");
}

const char *o2pDescribeAttribute(ub4 attribute) {
  return attribute < kParameterAttributes.size() ? kParameterAttributes[attribute]
                                                 : nullptr;
}

const char *o2pGetFunctionCode(ub4 code) {
  return code < OCIFNCode.size() ? OCIFNCode[code] : nullptr;
}

void o2pGetDecodedAttribute(ub4 attribute, const void *value) {
  if (attribute >= OCIAttrs.size() || !zev::narrating(kTraceArguments)) return;
  const char *name = OCIAttrs[attribute];
  const Form form = formOf(attribute);
  if (form == Form::WriteOnly) o2pTrace(kTraceArguments, "\t%s = Write Only\n", name);
  if (!value) return;
  const auto show = [name](const char *format, auto shown) {
    o2pTrace(kTraceArguments, format, name, shown);
  };
  switch (form) {
    case Form::FunctionCode:
      return show("\t%s = %s\n", o2pGetFunctionCode(takeAttribute<ub4>(value)));
    case Form::Truth:
      return show("\t%s = %s\n", takeAttribute<ub1>(value) ? "true" : "false");
    case Form::Byte:
      return show("\t%s = %d\n", takeAttribute<ub1>(value));
    case Form::Short:
      return show("\t%s = %d\n", takeAttribute<ub2>(value));
    case Form::Number:
      return show("\t%s = %d\n", takeAttribute<ub4>(value));
    case Form::Pointer:
      return show("\t%s = %p\n", takeAttribute<const void *>(value));
    case Form::Text:
      return show("\t%s = %s\n", static_cast<const char *>(value));
    case Form::SqlCommand:
      return traceSqlCommand(name, takeAttribute<ub2>(value));
    case Form::PinOption:
      return show("\t%s = %s\n",
                  nameOf(kPinOptions, takeAttribute<ub4>(value), "<invalid>"));
    case Form::WriteOnly:
    case Form::Unshown:
      return;
  }
}

}  // extern "C"
