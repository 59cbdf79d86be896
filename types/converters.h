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
    ConvertINT2OIDToSQLT_CHR,    ConvertINT2OIDToSQLT_STR,
    ConvertINT4OIDToSQLT_CHR,    ConvertINT4OIDToSQLT_STR,
    ConvertINT8OIDToSQLT_CHR,    ConvertINT8OIDToSQLT_STR,
    ConvertFLOAT8OIDToSQLT_CHR,  ConvertFLOAT8OIDToSQLT_STR,
    ConvertNUMERICOIDToSQLT_CHR, ConvertNUMERICOIDToSQLT_STR;

// Numbers that are fetched into native numbers.
ZEV_HELPER FromServerFunction
    ConvertINT2OIDToSQLT_INT,    ConvertINT2OIDToSQLT_FLT,
    ConvertINT4OIDToSQLT_INT,    ConvertINT4OIDToSQLT_FLT,
    ConvertINT8OIDToSQLT_INT,    ConvertINT8OIDToSQLT_FLT,
    ConvertFLOAT8OIDToSQLT_INT,  ConvertFLOAT8OIDToSQLT_FLT,
    ConvertNUMERICOIDToSQLT_INT, ConvertNUMERICOIDToSQLT_FLT;

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

// The OID of a large object into the locator whose address the target holds. Record 1733
// for what is no locator.
ZEV_HELPER FromServerFunction ConvertOIDOIDToSQLT_BLOB;

}
// clang-format on
