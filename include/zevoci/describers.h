/// Names of the interface's numbers, for traces. The texts are constant and nobody's to
/// free.
#pragma once

#include <array>

#include "zevoci/handle.h"

extern "C" {
/// Names of the function codes of user callbacks, "OCI_FNCODE_..."; null where no
/// function has the code.
extern ZEV_HELPER const std::array<const char *, 124> OCIFNCode;
/// Names of the attributes of handles, "OCI_ATTR_..."; null at 0.
extern ZEV_HELPER const std::array<const char *, 137> OCIAttrs;
/// Names of the SQL commands that a statement reports as OCI_ATTR_SQLFNCODE: those of the
/// codes below 100, by code, and those from 157 on, by code minus 157. Null where a code
/// has no command (published interface).
extern ZEV_HELPER const std::array<const char *, 100> SQLFCode1;
extern ZEV_HELPER const std::array<const char *, 27> SQLFCode2;

/// "HTYPE_ENV" for a handle or descriptor type (OCI_HTYPE_*, OCI_DTYPE_*), "Invalid
/// handle" for a number that has none.
ZEV_HELPER const char *o2pGetHandleTypeName(ub4 type);
/// "SUCCESS" for a status, "UNKNOWN RETURN CODE" for another number.
ZEV_HELPER const char *o2pGetReturnCodeText(sword status);
/// "OCI_DURATION_SESSION" for a duration, "UNKNOWN DURATION" for another number.
ZEV_HELPER const char *o2pGetDurationText(ub2 duration);
/// "OCI_TYPECODE_NUMBER" for a type code, "Unknown Type Code" for another number.
ZEV_HELPER const char *o2pGetTypeCodeText(ub2 code);
/// "DATA_SIZE" for an attribute of a parameter, null for another number.
ZEV_HELPER const char *o2pDescribeAttribute(ub4 attribute);
/// The name in OCIFNCode, null for a code above 123 or without a function.
ZEV_HELPER const char *o2pGetFunctionCode(ub4 code);
/// Traces the value of a handle's attribute at level 4, in the form of its type. `value`
/// points to what OCIAttrGet gives out; a text is passed as it is. Attributes of 137 and
/// above, those of other types, and a null value are passed over.
ZEV_HELPER void o2pGetDecodedAttribute(ub4 attribute, const void *value);
}
