#include <libintl.h>
#include <sys/stat.h>

#include <clocale>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string>

#include "core/owned.h"
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

char *copyOf(const char *text) { return makeString(text, std::strlen(text)); }

const EncodingMatch *matchSystemName(const char *name) {
  for (const EncodingMatch &row : encoding_match_list) {
    if (oci_strcasecmp(name, row.systemName) == 0) return &row;
  }
  return nullptr;
}

/// The three parts of a locale name; none of them is null when `complete`.
struct LocaleParts {
  explicit LocaleParts(const char *name) {
    char *l, *t, *c;
    complete = ParseLocale(name, &l, &t, &c);
    language.reset(l);
    territory.reset(t);
    charset.reset(c);
  }
  bool complete;
  zev::Malloced<> language, territory, charset;
};

/// Takes the encoding that NLS_LANG names. True when that settles the locale as well.
bool initFromNlsLang(OCIEnv *env) {
  const char *value = std::getenv("NLS_LANG");
  if (!value) return false;
  const LocaleParts parts(value);
  if (!parts.complete) return false;
  const zev::Malloced<> systemName(findMatchingSysEncoding(parts.charset.get()));
  if (!systemName) return false;

  env->encoding = pg_char_to_encoding(parts.charset.get());
  if (oci_strcasecmp(systemName.get(), "POSIX") == 0) {
    std::setlocale(LC_ALL, "POSIX");
    return true;
  }
  // The whole name is no argument here: the territory alone names the locale to try.
  return std::setlocale(LC_ALL, parts.territory.get()) != nullptr;
}

/// Takes the encoding of the process's own locale where that is a known one.
bool initFromLocale(OCIEnv *env) {
  const char *current = std::setlocale(LC_CTYPE, "");
  if (!current) return false;
  const std::string name = current;
  const LocaleParts parts(name.c_str());
  if (!parts.complete) return false;
  const zev::Malloced<> pgName(findMatchingPgEncoding(parts.charset.get()));
  if (!pgName) return false;
  std::setlocale(LC_ALL, name.c_str());
  env->encoding = pg_char_to_encoding(pgName.get());
  return true;
}

const char *messageDirectory() {
  constexpr const char *kUsual = "/usr/share/locale";
  if (const char *directory = std::getenv("ZEVLOCALEDIR")) return directory;
  struct stat found{};
  return stat(kUsual, &found) == 0 && S_ISDIR(found.st_mode) ? kUsual : "";
}

}  // namespace

extern "C" {

boolean ParseLocale(const char *text, char **language, char **territory, char **charset) {
  for (char **out : {language, territory, charset}) {
    if (out) *out = nullptr;
  }
  const zev::Malloced<> copy(copyOf(text));
  if (!copy) return 0;
  char *state = nullptr;
  const char *first = strtok_r(copy.get(), "_", &state);
  const char *second = first ? strtok_r(nullptr, ".", &state) : nullptr;
  const char *third = second ? strtok_r(nullptr, "", &state) : nullptr;
  if (!third) return 0;
  if (language) *language = copyOf(first);
  if (territory) *territory = copyOf(second);
  if (charset) *charset = copyOf(third);
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
  if (!zev::asEnv(env)) return;
  if (csid >= 1 && csid <= kLastEncoding) {
    env->encoding = pg_char_to_encoding(pg_encoding_to_char(csid));
    return;
  }
  // setlocale changes the whole process, and its answer is static storage.
  static std::mutex localeMutex;
  const std::lock_guard guard(localeMutex);
  if (initFromNlsLang(env) || initFromLocale(env)) return;
  env->encoding = pg_char_to_encoding("sqlascii");
  std::setlocale(LC_ALL, "POSIX");
}

void SetNlsMessagesPath() {
  static std::once_flag localeInitialized;
  std::call_once(localeInitialized, [] {
    bindtextdomain("zevoci", messageDirectory());
    textdomain("zevoci");
  });
}

}  // extern "C"
