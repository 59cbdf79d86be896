#include <algorithm>
#include <iterator>
#include <string_view>

#include "zevoci/encodings.h"

// clang-format off
extern "C" {

const pg_enc2name zev_enc2name_tbl[] = {
    {"SQL_ASCII", 0}, {"EUC_JP", 1}, {"EUC_CN", 2},
    {"EUC_KR", 3}, {"EUC_TW", 4}, {"JOHAB", 5},
    {"UTF8", 6}, {"MULE_INTERNAL", 7}, {"LATIN1", 8},
    {"LATIN2", 9}, {"LATIN3", 10}, {"LATIN4", 11},
    {"LATIN5", 12}, {"LATIN6", 13}, {"LATIN7", 14},
    {"LATIN8", 15}, {"LATIN9", 16}, {"LATIN10", 17},
    {"WINDOWS-1256", 18}, {"WINDOWS-1258", 19}, {"CP866", 20},
    {"WINDOWS-874", 21}, {"KOI8-R", 22}, {"WINDOWS-1251", 23},
    {"WINDOWS1252", 24}, {"ISO_8859_5", 25}, {"ISO_8859_6", 26},
    {"ISO_8859_7", 27}, {"ISO_8859_8", 28}, {"WINDOWS-1250", 29},
    {"WINDOWS-1253", 30}, {"WINDOWS-1254", 31}, {"WINDOWS-1255", 32},
    {"WINDOWS-1257", 33}, {"SJIS", 34}, {"BIG5", 35},
    {"GBK", 36}, {"UHC", 37}, {"GB18030", 38},
    {"UTF-16LE", 39}, {"UTF-16BE", 40},
};

const pg_encname zev_encname_tbl[] = {
    {"abc", 19}, {"alt", 20}, {"big5", 35}, {"euccn", 2},
    {"eucjp", 1}, {"euckr", 3}, {"euctw", 4}, {"gb18030", 38},
    {"gbk", 36}, {"iso88591", 8}, {"iso885910", 13}, {"iso885913", 14},
    {"iso885914", 15}, {"iso885915", 16}, {"iso885916", 17}, {"iso88592", 9},
    {"iso88593", 10}, {"iso88594", 11}, {"iso88595", 25}, {"iso88596", 26},
    {"iso88597", 27}, {"iso88598", 28}, {"iso88599", 12}, {"johab", 5},
    {"koi8", 22}, {"koi8r", 22}, {"latin1", 8}, {"latin10", 17},
    {"latin2", 9}, {"latin3", 10}, {"latin4", 11}, {"latin5", 12},
    {"latin6", 13}, {"latin7", 14}, {"latin8", 15}, {"latin9", 16},
    {"mskanji", 34}, {"muleinternal", 7}, {"shiftjis", 34}, {"sjis", 34},
    {"sqlascii", 0}, {"tcvn", 19}, {"tcvn5712", 19}, {"uhc", 37},
    {"unicode", 6}, {"utf16be", 40}, {"utf16le", 39}, {"utf8", 6},
    {"vscii", 19}, {"win", 23}, {"win1250", 29}, {"win1251", 23},
    {"win1252", 24}, {"win1253", 30}, {"win1254", 31}, {"win1255", 32},
    {"win1256", 18}, {"win1257", 33}, {"win1258", 19}, {"win866", 20},
    {"win874", 21}, {"win932", 34}, {"win936", 36}, {"win949", 37},
    {"win950", 35}, {"windows1250", 29}, {"windows1251", 23}, {"windows1252", 24},
    {"windows1253", 30}, {"windows1254", 31}, {"windows1255", 32}, {"windows1256", 18},
    {"windows1257", 33}, {"windows1258", 19}, {"windows866", 20}, {"windows874", 21},
    {"windows932", 34}, {"windows936", 36}, {"windows949", 37}, {"windows950", 35},
    {nullptr, -1},
};

const unsigned int zev_encname_tbl_sz = std::size(zev_encname_tbl) - 1;

}  // extern "C"
// clang-format on
