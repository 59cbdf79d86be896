#include <libintl.h>
#include <sys/stat.h>

#include <clocale>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <new>
#include <optional>
#include <string>
#include <string_view>

#include "core/env.h"
#include "zevoci/encodings.h"
#include "zevoci/handle.h"
#include "zevoci/text.h"

namespace {

/// A server encoding and one of the names that systems give it.
struct EncodingMatch {
  const char *pgName;
  const char *systemName;
};

// clang-format off
constexpr EncodingMatch encoding_match_list[] = {
    {"EUC_JP", "EUC-JP"}, {"EUC_JP", "eucJP"}, {"EUC_JP", "IBM-eucJP"}, {"EUC_JP", "sdeckanji"},
    {"EUC_CN", "EUC-CN"}, {"EUC_CN", "eucCN"}, {"EUC_CN", "IBM-eucCN"}, {"EUC_CN", "GB2312"},
    {"EUC_CN", "dechanzi"},
    {"EUC_KR", "EUC-KR"}, {"EUC_KR", "eucKR"}, {"EUC_KR", "IBM-eucKR"}, {"EUC_KR", "deckorean"},
    {"EUC_KR", "5601"},
    {"EUC_TW", "EUC-TW"}, {"EUC_TW", "eucTW"}, {"EUC_TW", "IBM-eucTW"}, {"EUC_TW", "cns11643"},
    {"UTF8", "UTF-8"}, {"UTF8", "utf8"},
    {"LATIN1", "ISO-8859-1"},   {"LATIN1", "ISO8859-1"},   {"LATIN1", "iso88591"},
    {"LATIN2", "ISO-8859-2"},   {"LATIN2", "ISO8859-2"},   {"LATIN2", "iso88592"},
    {"LATIN3", "ISO-8859-3"},   {"LATIN3", "ISO8859-3"},   {"LATIN3", "iso88593"},
    {"LATIN4", "ISO-8859-4"},   {"LATIN4", "ISO8859-4"},   {"LATIN4", "iso88594"},
    {"LATIN5", "ISO-8859-9"},   {"LATIN5", "ISO8859-9"},   {"LATIN5", "iso88599"},
    {"LATIN6", "ISO-8859-10"},  {"LATIN6", "ISO8859-10"},  {"LATIN6", "iso885910"},
    {"LATIN7", "ISO-8859-13"},  {"LATIN7", "ISO8859-13"},  {"LATIN7", "iso885913"},
    {"LATIN8", "ISO-8859-14"},  {"LATIN8", "ISO8859-14"},  {"LATIN8", "iso885914"},
    {"LATIN9", "ISO-8859-15"},  {"LATIN9", "ISO8859-15"},  {"LATIN9", "iso885915"},
    {"LATIN10", "ISO-8859-16"}, {"LATIN10", "ISO8859-16"}, {"LATIN10", "iso885916"},
    {"WINDOWS1252", "CP1252"},
    {"WINDOWS-1253", "CP1253"}, {"WINDOWS-1254", "CP1254"}, {"WINDOWS-1255", "CP1255"},
    {"WINDOWS-1256", "CP1256"}, {"WINDOWS-1257", "CP1257"}, {"WINDOWS-1258", "CP1258"},
    {"KOI8-R", "KOI8-R"},
    {"WINDOWS-1251", "CP1251"},
    {"CP866", "CP866"},
    {"ISO_8859_5", "ISO-8859-5"}, {"ISO_8859_5", "ISO8859-5"}, {"ISO_8859_5", "iso88595"},
    {"ISO_8859_6", "ISO-8859-6"}, {"ISO_8859_6", "ISO8859-6"}, {"ISO_8859_6", "iso88596"},
    {"ISO_8859_7", "ISO-8859-7"}, {"ISO_8859_7", "ISO8859-7"}, {"ISO_8859_7", "iso88597"},
    {"ISO_8859_8", "ISO-8859-8"}, {"ISO_8859_8", "ISO8859-8"}, {"ISO_8859_8", "iso88598"},
    {"sqlascii", "POSIX"},
};
// clang-format on

static_assert(std::size(encoding_match_list) == 73);

char *copyOf(const char *text) {
  return makeString(text, std::strlen(text));
}

const EncodingMatch *matchSystemName(const char *name) {
  for (const EncodingMatch &row : encoding_match_list) {
    if (oci_strcasecmp(name, row.systemName) == 0) return &row;
  }
  return nullptr;
}

/// The three parts of a locale name; the last one runs to the name's end.
struct LocaleName {
  std::string_view language, territory;
  const char *charset;
};

/// The part of `rest` up to one of `ends`, which it leaves behind it. Ends in front of
/// the part do not count; it is empty when nothing else is left.
std::string_view takePart(const char *&rest, const char *ends) {
  rest += std::strspn(rest, ends);
  const std::string_view part(rest, std::strcspn(rest, ends));
  rest += part.size();
  if (*rest) ++rest;
  return part;
}

/// The parts of "language_territory.charset"; none when one of them is missing.
std::optional<LocaleName> splitLocale(const char *text) {
  const std::string_view language = takePart(text, "_");
  const std::string_view territory = takePart(text, ".");
  if (language.empty() || territory.empty() || !*text) return {};
  return LocaleName{language, territory, text};
}

/// Takes the encoding that NLS_LANG names. True when that settles the locale as well.
bool initFromNlsLang(OCIEnv *env) {
  const char *value = std::getenv("NLS_LANG");
  if (!value) return false;
  const std::optional<LocaleName> name = splitLocale(value);
  const EncodingMatch *match = name ? matchSystemName(name->charset) : nullptr;
  if (!match) return false;

  env->encoding = pg_char_to_encoding(name->charset);
  if (oci_strcasecmp(match->systemName, "POSIX") == 0) {
    std::setlocale(LC_ALL, "POSIX");
    return true;
  }
  // The whole name is no argument here: the territory alone names the locale to try.
  return std::setlocale(LC_ALL, std::string(name->territory).c_str()) != nullptr;
}

/// Takes the encoding of the process's own locale where that is a known one.
bool initFromLocale(OCIEnv *env) {
  const char *current = std::setlocale(LC_CTYPE, "");
  if (!current) return false;
  const std::string name = current;  // the answer is overwritten by the next call
  const std::optional<LocaleName> parts = splitLocale(name.c_str());
  const EncodingMatch *match = parts ? matchSystemName(parts->charset) : nullptr;
  if (!match) return false;
  std::setlocale(LC_ALL, name.c_str());
  env->encoding = pg_char_to_encoding(match->pgName);
  return true;
}

const char *messageDirectory() {
  constexpr const char *kUsual = "/usr/share/locale";
  if (const char *directory = std::getenv("ZEVLOCALEDIR")) return directory;
  struct stat found {};
  return stat(kUsual, &found) == 0 && S_ISDIR(found.st_mode) ? kUsual : "";
}

void searchEncoding(OCIEnv *env) {
  // setlocale changes the whole process, and its answer is static storage.
  static std::mutex localeMutex;
  const std::lock_guard guard(localeMutex);
  if (initFromNlsLang(env) || initFromLocale(env)) return;
  env->encoding = pg_char_to_encoding("sqlascii");
  std::setlocale(LC_ALL, "POSIX");
}

}  // namespace

bool zev::settleEncoding(OCIEnv *env, ub2 csid) {
  if (!asEnv(env)) return true;
  if (csid >= 1 && csid <= kLastEncoding) {
    env->encoding = pg_char_to_encoding(pg_encoding_to_char(csid));
    return true;
  }
  try {
    searchEncoding(env);
    return true;
  } catch (const std::bad_alloc &) {
    return false;
  }
}

extern "C" {

boolean ParseLocale(const char *text, char **language, char **territory, char **charset) {
  for (char **out : {language, territory, charset}) {
    if (out) *out = nullptr;
  }
  const std::optional<LocaleName> name = splitLocale(text);
  if (!name) return 0;
  if (language) *language = makeString(name->language.data(), name->language.size());
  if (territory) *territory = makeString(name->territory.data(), name->territory.size());
  if (charset) *charset = copyOf(name->charset);
  return 1;
}

char *findMatchingSysEncoding(const char *name) {
  const EncodingMatch *row = matchSystemName(name);
  return row ? copyOf(row->systemName) : nullptr;
}

char *findMatchingPgEncoding(const char *name) {
  const EncodingMatch *row = matchSystemName(name);
  return row ? copyOf(row->pgName) : nullptr;
}

void InitNls(OCIEnv *env, ub2 csid) {
  zev::settleEncoding(env, csid);
}

void SetNlsMessagesPath() {
  static std::once_flag localeInitialized;
  std::call_once(localeInitialized, [] {
    bindtextdomain("zevoci", messageDirectory());
    textdomain("zevoci");
  });
}

}  // extern "C"
