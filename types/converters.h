/// The converters that the tables name, in the order of the files that define them.
#pragma once

#include "zevoci/conversion.h"

/// The shapes of the two directions, for declarations; conversion.h tells what the
/// arguments are.
using ToServerFunction = std::remove_pointer_t<ToServerConverter>;
using FromServerFunction = std::remove_pointer_t<FromServerConverter>;

// clang-format off
extern "C" {

// Integers that are bound: signed and unsigned ones alike are sign-extended.
ZEV_HELPER ToServerFunction
    ConvertSQLT_INTToCHAROID, ConvertSQLT_INTToINT2OID, ConvertSQLT_INTToINT4OID,
    ConvertSQLT_INTToINT8OID, ConvertSQLT_INTToNUMERICOID;

// Oracle's numbers that are bound.
ZEV_HELPER ToServerFunction ConvertSQLT_NUMToNUMERICOID, ConvertSQLT_VNUToNUMERICOID;

// Floats that are bound.
ZEV_HELPER ToServerFunction ConvertSQLT_FLTToFLOAT4OID, ConvertSQLT_FLTToFLOAT8OID;

// Binary strings that are bound.
ZEV_HELPER ToServerFunction
    ConvertSQLT_BINToBYTEAOID, ConvertSQLT_LBIToBYTEAOID, ConvertSQLT_VBIToBYTEAOID,
    ConvertSQLT_LVBToBYTEAOID;

// Character data that are bound. The result ends in a NUL, which its length counts.
ZEV_HELPER ToServerFunction
    ConvertSQLT_CHRToTEXTOID, ConvertSQLT_LNGToTEXTOID, ConvertSQLT_AFCToTEXTOID,
    ConvertSQLT_STRToTEXTOID, ConvertSQLT_VCSToTEXTOID, ConvertSQLT_LVCToTEXTOID,
    ConvertSQLT_VSTToTEXTOID;

// Numbers that are fetched into characters.
ZEV_HELPER FromServerFunction
    ConvertCHAROIDToSQLT_CHR, ConvertCHAROIDToSQLT_STR, ConvertCHAROIDToSQLT_LNG,
    ConvertCHAROIDToSQLT_VCS, ConvertCHAROIDToSQLT_LVC, ConvertCHAROIDToSQLT_AFC,
    ConvertCHAROIDToSQLT_AVC, ConvertCHAROIDToSQLT_VST,
    ConvertINT2OIDToSQLT_CHR, ConvertINT2OIDToSQLT_STR, ConvertINT2OIDToSQLT_LNG,
    ConvertINT2OIDToSQLT_VCS, ConvertINT2OIDToSQLT_LVC, ConvertINT2OIDToSQLT_AFC,
    ConvertINT2OIDToSQLT_AVC, ConvertINT2OIDToSQLT_VST,
    ConvertINT4OIDToSQLT_CHR, ConvertINT4OIDToSQLT_STR, ConvertINT4OIDToSQLT_LNG,
    ConvertINT4OIDToSQLT_VCS, ConvertINT4OIDToSQLT_LVC, ConvertINT4OIDToSQLT_AFC,
    ConvertINT4OIDToSQLT_AVC, ConvertINT4OIDToSQLT_VST,
    ConvertINT8OIDToSQLT_CHR, ConvertINT8OIDToSQLT_STR, ConvertINT8OIDToSQLT_LNG,
    ConvertINT8OIDToSQLT_VCS, ConvertINT8OIDToSQLT_LVC, ConvertINT8OIDToSQLT_AFC,
    ConvertINT8OIDToSQLT_AVC, ConvertINT8OIDToSQLT_VST,
    ConvertFLOAT4OIDToSQLT_CHR, ConvertFLOAT4OIDToSQLT_STR, ConvertFLOAT4OIDToSQLT_LNG,
    ConvertFLOAT4OIDToSQLT_VCS, ConvertFLOAT4OIDToSQLT_LVC, ConvertFLOAT4OIDToSQLT_AFC,
    ConvertFLOAT4OIDToSQLT_AVC, ConvertFLOAT4OIDToSQLT_VST,
    ConvertFLOAT8OIDToSQLT_CHR, ConvertFLOAT8OIDToSQLT_STR, ConvertFLOAT8OIDToSQLT_LNG,
    ConvertFLOAT8OIDToSQLT_VCS, ConvertFLOAT8OIDToSQLT_LVC, ConvertFLOAT8OIDToSQLT_AFC,
    ConvertFLOAT8OIDToSQLT_AVC, ConvertFLOAT8OIDToSQLT_VST,
    ConvertNUMERICOIDToSQLT_CHR, ConvertNUMERICOIDToSQLT_STR,
    ConvertNUMERICOIDToSQLT_LNG, ConvertNUMERICOIDToSQLT_VCS,
    ConvertNUMERICOIDToSQLT_LVC, ConvertNUMERICOIDToSQLT_AFC,
    ConvertNUMERICOIDToSQLT_AVC, ConvertNUMERICOIDToSQLT_VST;

// Numbers that are fetched into native numbers.
ZEV_HELPER FromServerFunction
    ConvertCHAROIDToSQLT_INT, ConvertCHAROIDToSQLT_UIN, ConvertCHAROIDToSQLT_FLT,
    ConvertCHAROIDToSQLT_BFLOAT, ConvertCHAROIDToSQLT_BDOUBLE,
    ConvertINT2OIDToSQLT_INT, ConvertINT2OIDToSQLT_UIN, ConvertINT2OIDToSQLT_FLT,
    ConvertINT2OIDToSQLT_BFLOAT, ConvertINT2OIDToSQLT_BDOUBLE,
    ConvertINT4OIDToSQLT_INT, ConvertINT4OIDToSQLT_UIN, ConvertINT4OIDToSQLT_FLT,
    ConvertINT4OIDToSQLT_BFLOAT, ConvertINT4OIDToSQLT_BDOUBLE,
    ConvertINT8OIDToSQLT_INT, ConvertINT8OIDToSQLT_UIN, ConvertINT8OIDToSQLT_FLT,
    ConvertINT8OIDToSQLT_BFLOAT, ConvertINT8OIDToSQLT_BDOUBLE,
    ConvertFLOAT4OIDToSQLT_INT, ConvertFLOAT4OIDToSQLT_UIN, ConvertFLOAT4OIDToSQLT_FLT,
    ConvertFLOAT4OIDToSQLT_BFLOAT, ConvertFLOAT4OIDToSQLT_BDOUBLE,
    ConvertFLOAT8OIDToSQLT_INT, ConvertFLOAT8OIDToSQLT_UIN, ConvertFLOAT8OIDToSQLT_FLT,
    ConvertFLOAT8OIDToSQLT_BFLOAT, ConvertFLOAT8OIDToSQLT_BDOUBLE,
    ConvertNUMERICOIDToSQLT_INT, ConvertNUMERICOIDToSQLT_UIN,
    ConvertNUMERICOIDToSQLT_FLT, ConvertNUMERICOIDToSQLT_BFLOAT,
    ConvertNUMERICOIDToSQLT_BDOUBLE;

// Numbers that are fetched as Oracle's numbers.
ZEV_HELPER FromServerFunction
    ConvertCHAROIDToSQLT_NUM, ConvertCHAROIDToSQLT_VNU,
    ConvertINT2OIDToSQLT_NUM, ConvertINT2OIDToSQLT_VNU,
    ConvertINT4OIDToSQLT_NUM, ConvertINT4OIDToSQLT_VNU,
    ConvertINT8OIDToSQLT_NUM, ConvertINT8OIDToSQLT_VNU,
    ConvertFLOAT4OIDToSQLT_NUM, ConvertFLOAT4OIDToSQLT_VNU,
    ConvertFLOAT8OIDToSQLT_NUM, ConvertFLOAT8OIDToSQLT_VNU,
    // In no table: the table has a numeric arrive as SQLT_VNU for SQLT_NUM too.
    ConvertNUMERICOIDToSQLT_NUM, ConvertNUMERICOIDToSQLT_VNU;

// Character data that are fetched: into characters, numbers and, from the text form of
// a byte string, bytes. NUM writes 21 bytes and VNU up to 22; VCS and LVC copy the whole
// text, whatever the target's size.
ZEV_HELPER FromServerFunction
    ConvertTEXTOIDToSQLT_CHR,    ConvertTEXTOIDToSQLT_STR, ConvertTEXTOIDToSQLT_LNG,
    ConvertTEXTOIDToSQLT_AVC,    ConvertTEXTOIDToSQLT_VCS, ConvertTEXTOIDToSQLT_LVC,
    ConvertTEXTOIDToSQLT_VST,
    ConvertTEXTOIDToSQLT_INT,    ConvertTEXTOIDToSQLT_UIN, ConvertTEXTOIDToSQLT_FLT,
    ConvertTEXTOIDToSQLT_BFLOAT, ConvertTEXTOIDToSQLT_BDOUBLE,
    ConvertTEXTOIDToSQLT_NUM,    ConvertTEXTOIDToSQLT_VNU,
    ConvertTEXTOIDToSQLT_BIN,    ConvertTEXTOIDToSQLT_LBI, ConvertTEXTOIDToSQLT_VBI,
    ConvertTEXTOIDToSQLT_LVB;

// Byte strings that are fetched: into hex digits and into bytes. VBI and LVB copy a
// binary field whole, whatever the target's size.
ZEV_HELPER FromServerFunction
    ConvertBYTEAOIDToSQLT_CHR, ConvertBYTEAOIDToSQLT_STR, ConvertBYTEAOIDToSQLT_LNG,
    ConvertBYTEAOIDToSQLT_AFC, ConvertBYTEAOIDToSQLT_AVC, ConvertBYTEAOIDToSQLT_VCS,
    ConvertBYTEAOIDToSQLT_LVC, ConvertBYTEAOIDToSQLT_VST,
    ConvertBYTEAOIDToSQLT_BIN, ConvertBYTEAOIDToSQLT_LBI, ConvertBYTEAOIDToSQLT_VBI,
    ConvertBYTEAOIDToSQLT_LVB;

// Dates, times and intervals that are bound, SQLT_DAT and OCIDate by their bytes, the
// others by the address of their descriptor; all go as text.
ZEV_HELPER ToServerFunction
    ConvertSQLT_DATToDATEOID,            ConvertSQLT_DATToTIMESTAMPOID,
    ConvertSQLT_ODTToTIMESTAMPOID,       ConvertSQLT_DATEToTIMESTAMPOID,
    ConvertSQLT_TIMESTAMPToTIMESTAMPOID, ConvertSQLT_TIMESTAMP_TZToTIMESTAMPTZOID,
    ConvertSQLT_INTERVAL_DSToINTERVALOID;

// Dates and times that are fetched as text, and into SQLT_DAT, OCIDate and the descriptor
// whose address the target holds. A descriptor's length is 40. Words such as "infinity"
// are record 1891 but where the target takes text.
ZEV_HELPER FromServerFunction
    ConvertDATEOIDToSQLT_CHR, ConvertDATEOIDToSQLT_STR, ConvertDATEOIDToSQLT_LNG,
    ConvertDATEOIDToSQLT_VCS, ConvertDATEOIDToSQLT_LVC, ConvertDATEOIDToSQLT_AFC,
    ConvertDATEOIDToSQLT_AVC, ConvertDATEOIDToSQLT_VST,
    ConvertTIMESTAMPOIDToSQLT_DAT,       ConvertTIMESTAMPOIDToSQLT_ODT,
    ConvertTIMESTAMPOIDToSQLT_DATE,      ConvertTIMESTAMPOIDToSQLT_TIMESTAMP,
    ConvertTIMESTAMPOIDToSQLT_TIMESTAMP_TZ,
    ConvertTIMESTAMPTZOIDToSQLT_TIMESTAMP_TZ,
    ConvertTEXTOIDToSQLT_DAT,            ConvertTEXTOIDToSQLT_ODT,
    ConvertTEXTOIDToSQLT_DATE,           ConvertTEXTOIDToSQLT_TIMESTAMP,
    ConvertTEXTOIDToSQLT_TIMESTAMP_TZ,
    ConvertINTERVALOIDToSQLT_INTERVAL_DS;

// The OID of a large object into the locator whose address the target holds. Record 1733
// for what is no locator.
ZEV_HELPER FromServerFunction ConvertOIDOIDToSQLT_BLOB;

}
// clang-format on
