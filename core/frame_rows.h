/// What is particular in the frame of each exported function; deviations read down a
/// column.
#pragma once

#include "core/frame.h"

namespace zev::frame {

// clang-format off
//                                             code  clears the error handle          entry  exit
inline constexpr FrameRow kHandleAlloc         {  2, Clear::AfterCallbacks,           true,  true };
inline constexpr FrameRow kHandleFree          {  3, Clear::AfterCallbacks,           true,  true };
inline constexpr FrameRow kDescriptorAlloc     {  4, Clear::Never,                    true,  true };
inline constexpr FrameRow kServerAttach        {  7, Clear::Never,                    true,  true };
inline constexpr FrameRow kServerDetach        {  8, Clear::Never,                    false, false};
inline constexpr FrameRow kSessionBegin        { 10, Clear::AfterCallbacks,           true,  true };
inline constexpr FrameRow kSessionEnd          { 11, Clear::AfterCallbacks,           true,  true };
inline constexpr FrameRow kPasswordChange      { 12, Clear::BeforeCallbacks,          true,  true };
inline constexpr FrameRow kStmtPrepare         { 13, Clear::AfterCallbacks,           true,  true };
inline constexpr FrameRow kBindDynamic         { 17, Clear::AfterCallbacks,           true,  true };
inline constexpr FrameRow kStmtExecute         { 21, Clear::AfterCallbacks,           true,  true };
inline constexpr FrameRow kDefineDynamic       { 26, Clear::AfterCallbacks,           true,  true };
inline constexpr FrameRow kDefineArrayOfStruct { 27, Clear::AfterCallbacks,           true,  true };
inline constexpr FrameRow kStmtFetch           { 28, Clear::AfterCallbacks,           true,  false};
inline constexpr FrameRow kStmtGetBindInfo     { 29, Clear::AfterCallbacks,           true,  true };
inline constexpr FrameRow kDescribeAny         { 32, Clear::Never,                    true,  true };
inline constexpr FrameRow kTransStart          { 33, Clear::AfterCallbacks,           true,  true };
inline constexpr FrameRow kTransCommit         { 35, Clear::AfterCallbacks,           true,  true };
inline constexpr FrameRow kErrorGet            { 37, Clear::Never,                    true,  true };
inline constexpr FrameRow kServerVersion       { 51, Clear::Never,                    true,  true };
inline constexpr FrameRow kAttrSet             { 55, Clear::AfterCallbacks,           true,  true };
inline constexpr FrameRow kTransPrepare        { 63, Clear::AfterCallbacks,           true,  true };
inline constexpr FrameRow kTransRollback       { 64, Clear::Never,                    true,  true };
inline constexpr FrameRow kDefineByPos         { 65, Clear::Never,                    true,  true };
inline constexpr FrameRow kBindByPos           { 66, Clear::AfterCallbacks,           true,  true };
inline constexpr FrameRow kBindByName          { 67, Clear::AfterCallbacks,           true,  true };
inline constexpr FrameRow kLobClose            { 82, Clear::AfterCallbacks,           true,  true };
inline constexpr FrameRow kStmtPrepare2        {108, Clear::AfterCallbacks,           true,  true };
inline constexpr FrameRow kStmtRelease         {109, Clear::AfterCallbacks,           true,  true };
inline constexpr FrameRow kStmtFetch2          {152, Clear::AfterCallbacks,           true,  true };
// clang-format on

}  // namespace zev::frame
