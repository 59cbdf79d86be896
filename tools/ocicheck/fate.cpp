#include "fate.h"

#include <algorithm>
#include <cctype>
#include <string>

#include "elf_file.h"

namespace zev::ocicheck {
namespace {

// The names stand in one text, each followed by the first letter of its fate, so that a
// search for names in this program finds none.
#define WORKS(result, name, ...) " " #name " w"
#define FAILS(result, name, ...) " " #name " f"
#define STOPS(result, name, ...) " " #name " s"
#define FRAME_STUB(...) STOPS(__VA_ARGS__)
#define QUIET_FRAME_STUB(...) STOPS(__VA_ARGS__)
#define OBJECT_STUB(...) STOPS(__VA_ARGS__)
#define PLAIN_STUB(...) STOPS(__VA_ARGS__)
#define BARE_STUB(...) STOPS(__VA_ARGS__)
#define SOFT_STUB(...) FAILS(__VA_ARGS__)
#define NULL_STUB(...) FAILS(__VA_ARGS__)
#define UNSUPPORTED_STUB(...) FAILS(__VA_ARGS__)
#define UNDECLARED_STUB(name) " " #name " f"

constexpr std::string_view kTable =
#include "core/surface/surface.def"
    ;

#undef STOPS

/// Types of two words or more whose names a program may hold as texts.
constexpr std::string_view kTypes =
    " OCISvcCtx OCIAuthInfo OCISPool OCICPool OCIComplexObject OCIComplexObjectComp"
    " OCIDirPathCtx OCIDirPathColArray OCIDirPathStream OCILobLocator OCIClobLocator"
    " OCIBlobLocator OCIBFileLocator OCIDateTime OCIAQEnqOptions OCIAQDeqOptions"
    " OCIAQMsgProperties OCIAQAgent OCIAQListenOpts OCIAQLisMsgProps OCIAnyData"
    " OCIAnyDataSet OCIThreadId OCIThreadHandle OCIThreadMutex OCIThreadKey OCIFileObject"
    " OCIExtProcContext OCITypeCode OCIPinOpt OCILockOpt OCITypeGetOpt OCIRefreshOpt"
    " OCIObjectPropId OCINumberPart OCIDateYYYY OCIDateMM OCIDateDD OCITimeHH OCITimeMI"
    " OCITimeSS OCIUserCallback OCICallbackInBind OCICallbackOutBind OCICallbackDefine"
    " OCICallbackLobRead OCICallbackLobRead2 OCICallbackLobWrite OCICallbackLobWrite2"
    " OCICallbackLobArrayRead OCICallbackLobArrayWrite OCICallbackFailover"
    " OCICallbackAQEnq OCICallbackAQDeq OCIThreadKeyDestFunc ";

constexpr std::string_view kElderCalls =
    " obindps obndra obndrn obndrv obreak ocan oclose ocof ocom ocon odefin odefinps"
    " odescr odessp oerhms oermsg oexec oexfet oexn ofen ofetch oflng ogetpi olog ologof"
    " onbclr onbset onbtst oopen oopt oparse opinit orol osetpi ";

bool holds(std::string_view words, std::string_view word) {
  return words.find(" " + std::string(word) + " ") != std::string_view::npos;
}

}  // namespace

Fate fateOf(std::string_view function) {
  const std::string word = " " + std::string(function) + " ";
  const std::size_t at = hasInterfacePrefix(function) ? kTable.find(word) : kTable.npos;
  if (at == kTable.npos) return Fate::Unknown;
  const char letter = kTable[at + word.size()];
  return letter == 'w' ? Fate::Works : letter == 'f' ? Fate::Fails : Fate::Stops;
}

bool isFunctionName(std::string_view name) {
  if (!hasInterfacePrefix(name) || !name.starts_with("OCI") || holds(kTypes, name)) {
    return false;
  }
  if (!std::ranges::all_of(name, [](unsigned char c) { return std::isalnum(c); })) {
    return false;
  }
  // A capital that follows a small letter begins a word.
  return std::ranges::adjacent_find(name, [](unsigned char a, unsigned char b) {
           return std::islower(a) && std::isupper(b);
         }) != name.end();
}

bool isElderCall(std::string_view name) {
  return holds(kElderCalls, name);
}

}  // namespace zev::ocicheck
