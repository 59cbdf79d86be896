/// What the scanner and the parser of tnsnames.ora files make of a text.
#include "net/tnsnames.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <set>
#include <string>
#include <utility>

#include "tests/unit/net/tnsnames_fixture.h"

namespace zev::test {
namespace {

struct Row {
  const char *name;
  const char *text;
  const char *entries;  ///< null for a syntax error
};

std::string nameOf(const testing::TestParamInfo<Row> &row) {
  return row.param.name;
}

class GrammarTest : public testing::TestWithParam<Row> {};

TEST_P(GrammarTest, GivesItsEntries) {
  const Row &row = GetParam();
  const ParsedFile file(row.text);
  EXPECT_EQ(file.outcome, row.entries ? 0 : 1) << file.err;
  EXPECT_EQ(file.entries, row.entries ? row.entries : "");
  if (row.entries) {
    EXPECT_EQ(file.err, "");
  } else {
    EXPECT_NE(file.err.find(":syntax error, unexpected "), file.err.npos) << file.err;
  }
}

// clang-format off
#define D(parameters) "n=(DESCRIPTION=" parameters ")"
#define A(parameters) D("(ADDRESS=" parameters ")")
#define C(parameters) D("(CONNECT_DATA=" parameters ")")
#define F(parameters) C("(FAILOVER_MODE=" parameters ")")

const Row kEntries[] = {
    {"WholeEntry",           D("(ADDRESS=(PROTOCOL=TCP)(HOST=h)(PORT=1))(CONNECT_DATA=(SID=s))"), "n=h:1/s;"},
    {"TwoEntries",           "a=(DESCRIPTION=(SDU=1)) b=(DESCRIPTION=(ADDRESS=(HOST=h)))", "a=~/-;b=h:-/-;"},
    {"ManyEntriesInOrder",   "c=(DESCRIPTION=(SDU=1))\na=(DESCRIPTION=(SDU=1))\nb=(DESCRIPTION=(SDU=1))\n", "c=~/-;a=~/-;b=~/-;"},
    {"EqualNamesAllStay",    "a=(DESCRIPTION=(SDU=1))A=(DESCRIPTION=(SDU=2))a=(DESCRIPTION=(SDU=3))", "a=~/-;A=~/-;a=~/-;"},
    {"DottedName",           "a.b.c=(DESCRIPTION=(SDU=1))", "a.b.c=~/-;"},
    {"KeywordsInADottedName", "host.port=(DESCRIPTION=(SDU=1))", "host.port=~/-;"},
    {"KeywordAsName",        "host=(DESCRIPTION=(SDU=1))", nullptr},
    {"KeywordInAnyCaseAsName", "Yes=(DESCRIPTION=(SDU=1))", nullptr},
    {"NumberAsName",         "1=(DESCRIPTION=(SDU=1))", nullptr},
    {"AddressAsName",        "1.2.3.4=(DESCRIPTION=(SDU=1))", nullptr},
    {"QuotedName",           "\"n\"=(DESCRIPTION=(SDU=1))", nullptr},
    {"TwoNames",             "a, b=(DESCRIPTION=(SDU=1))", nullptr},
    {"NoName",               "=(DESCRIPTION=(SDU=1))", nullptr},
    {"NoEqualsSign",         "n(DESCRIPTION=(SDU=1))", nullptr},
    {"NoValue",              "n=", nullptr},
    {"NoParentheses",        "n=DESCRIPTION", nullptr},
    {"AddressAlone",         "n=(ADDRESS=(HOST=h))", nullptr},
    {"ConnectDataAlone",     "n=(CONNECT_DATA=(SID=s))", nullptr},
    {"ParameterOfNoEntry",   "ifile=x", nullptr},
    {"UnclosedEntry",        "n=(DESCRIPTION=(SDU=1)", nullptr},
    {"OneParenthesisTooMany", D("(SDU=1)") ")", nullptr},
    {"Empty",                "", nullptr},
    {"BlanksOnly",           " \t\f\r\n\n", nullptr},
    {"CommentOnly",          "# nothing", nullptr},
};

const Row kDescriptions[] = {
    {"Alone",                D("(ADDRESS=(HOST=a))"), "n=a:-/-;"},
    {"ListOfOne",            "n=(DESCRIPTION_LIST=(DESCRIPTION=(ADDRESS=(HOST=a))))", "n=a:-/-;"},
    {"TheFirstOfAListWins",  "n=(DESCRIPTION_LIST=(DESCRIPTION=(ADDRESS=(HOST=a)(PORT=1)))"
                             "(DESCRIPTION=(ADDRESS=(HOST=b)(PORT=2))(CONNECT_DATA=(SID=s))))", "n=a:1/-;"},
    {"TheFirstOfThree",      "n=(DESCRIPTION_LIST=(DESCRIPTION=(SDU=1))(DESCRIPTION=(CONNECT_DATA=(SID=s)))"
                             "(DESCRIPTION=(ADDRESS=(HOST=b))))", "n=~/-;"},
    {"ListWithoutElements",  "n=(DESCRIPTION_LIST=)", nullptr},
    {"ListOfAddresses",      "n=(DESCRIPTION_LIST=(ADDRESS=(HOST=a)))", nullptr},
    {"ListInAList",          "n=(DESCRIPTION_LIST=(DESCRIPTION_LIST=(DESCRIPTION=(SDU=1))))", nullptr},
    {"ListWithParameters",   "n=(DESCRIPTION_LIST=(LOAD_BALANCE=on)(DESCRIPTION=(SDU=1)))", nullptr},
    {"TwoDescriptionsWithoutAList", "n=(DESCRIPTION=(SDU=1))(DESCRIPTION=(SDU=1))", nullptr},
    {"WithoutParameters",    D(""), nullptr},
    {"TheFirstAddressWins",  D("(ADDRESS=(HOST=a))(ADDRESS=(HOST=b)(PORT=2))"), "n=a:-/-;"},
    {"AddressBeforeAList",   D("(ADDRESS=(HOST=a))(ADDRESS_LIST=(ADDRESS=(HOST=b)))"), "n=a:-/-;"},
    {"ListBeforeAnAddress",  D("(ADDRESS_LIST=(ADDRESS=(HOST=a)))(ADDRESS=(HOST=b))"), "n=a:-/-;"},
    {"TheFirstOfAnAddressListWins", D("(ADDRESS_LIST=(ADDRESS=(HOST=a)(PORT=1))(ADDRESS=(HOST=b)(PORT=2)))"), "n=a:1/-;"},
    {"TheFirstOfThreeAddresses", D("(ADDRESS_LIST=(ADDRESS=(KEY=k))(ADDRESS=(HOST=b))(ADDRESS=(PORT=3)))"), "n=-:-/-;"},
    {"AddressListWithoutElements", D("(ADDRESS_LIST=)"), nullptr},
    {"AddressListWithParameters", D("(ADDRESS_LIST=(FAILOVER=on)(ADDRESS=(HOST=a)))"), nullptr},
    {"TheFirstSidWins",      D("(CONNECT_DATA=(SID=s))(CONNECT_DATA=(SID=t))"), "n=~/s;"},
    {"ConnectDataWithoutASidLeavesItToTheNext", D("(CONNECT_DATA=(SERVER=shared))(CONNECT_DATA=(SID=t))"), "n=~/t;"},
    {"ConnectDataFirst",     D("(CONNECT_DATA=(SID=s))(SDU=8192)(ADDRESS=(HOST=h))"), "n=h:-/s;"},
    {"AllParameters",        D("(FAILOVER=on)(LOAD_BALANCE=off)(RECV_BUF_SIZE=1)(SDU=2)(SEND_BUF_SIZE=3)"
                               "(SOURCE_ROUTE=yes)(TYPE_OF_SERVICE=x)(SECURITY=(SSL_SERVER_CERT_DN=\"y\"))"), "n=~/-;"},
    {"FailoverOn",           D("(FAILOVER=ON)"), "n=~/-;"},
    {"FailoverOff",          D("(FAILOVER=OFF)"), "n=~/-;"},
    {"FailoverYes",          D("(FAILOVER=YES)"), "n=~/-;"},
    {"FailoverNo",           D("(FAILOVER=NO)"), "n=~/-;"},
    {"FailoverTrue",         D("(FAILOVER=TRUE)"), "n=~/-;"},
    {"FailoverFalse",        D("(FAILOVER=FALSE)"), "n=~/-;"},
    {"FailoverOther",        D("(FAILOVER=maybe)"), nullptr},
    {"FailoverNumber",       D("(FAILOVER=1)"), nullptr},
    {"LoadBalance",          D("(LOAD_BALANCE=true)"), "n=~/-;"},
    {"LoadBalanceOther",     D("(LOAD_BALANCE=none)"), nullptr},
    {"SourceRoute",          D("(SOURCE_ROUTE=no)"), "n=~/-;"},
    {"SourceRouteOther",     D("(SOURCE_ROUTE=ok)"), nullptr},
    {"ReceiveBufferSize",    D("(RECV_BUF_SIZE=11784)"), "n=~/-;"},
    {"ReceiveBufferSizeWord", D("(RECV_BUF_SIZE=big)"), nullptr},
    {"SendBufferSize",       D("(SEND_BUF_SIZE=11784)"), "n=~/-;"},
    {"SendBufferSizeWord",   D("(SEND_BUF_SIZE=)"), nullptr},
    {"Sdu",                  D("(SDU=8192)"), "n=~/-;"},
    {"NegativeSdu",          D("(SDU=-1)"), nullptr},
    {"TypeOfService",        D("(TYPE_OF_SERVICE=rdb_x)"), "n=~/-;"},
    {"TypeOfServiceKeyword", D("(TYPE_OF_SERVICE=rdb_database)"), nullptr},
    {"Security",             D("(SECURITY=(SSL_SERVER_CERT_DN=\"cn=x,o=\n(y)#\"))"), "n=~/-;"},
    {"SecurityWithEmptyText", D("(SECURITY=(SSL_SERVER_CERT_DN=\"\"))(TYPE_OF_SERVICE=x)(SECURITY=(SSL_SERVER_CERT_DN=\"\"))"), "n=~/-;"},
    {"SecurityWithWord",     D("(SECURITY=(SSL_SERVER_CERT_DN=x))"), nullptr},
    {"SecurityTwice",        D("(SECURITY=(SSL_SERVER_CERT_DN=\"x\")(SSL_SERVER_CERT_DN=\"x\"))"), nullptr},
    {"SecurityEmpty",        D("(SECURITY=)"), nullptr},
    {"AddressParameterInADescription", D("(HOST=h)"), nullptr},
    {"UnknownParameter",     D("(ENABLE=broken)"), nullptr},
    {"QuotedValue",          D("(FAILOVER=\"on\")"), nullptr},
};

const Row kAddresses[] = {
    {"HostAndPort",          A("(HOST=h)(PORT=1521)"), "n=h:1521/-;"},
    {"PortFirst",            A("(PORT=1521)(HOST=h)"), "n=h:1521/-;"},
    {"NeedsNoProtocol",      A("(HOST=h)"), "n=h:-/-;"},
    {"ProtocolTcp",          A("(PROTOCOL=TCP)"), "n=-:-/-;"},
    {"ProtocolIpc",          A("(PROTOCOL=IPC)(KEY=k)"), "n=-:-/-;"},
    {"ProtocolDecnet",       A("(PROTOCOL=DECNET)(NODE=n)(OBJECT=o)"), "n=-:-/-;"},
    {"ProtocolOther",        A("(PROTOCOL=TCPS)"), nullptr},
    {"ProtocolInTheMiddle",  A("(HOST=h)(PROTOCOL=TCP)(PORT=1)"), "n=h:1/-;"},
    {"TheFirstHostWins",     A("(HOST=a)(HOST=b)(PORT=1)"), "n=a:1/-;"},
    {"TheFirstPortWins",     A("(PORT=1)(PORT=2)(HOST=a)(PORT=3)"), "n=a:1/-;"},
    {"HostByNumbers",        A("(HOST=10.0.0.255)"), "n=10.0.0.255:-/-;"},
    {"NumbersAreNotChecked", A("(HOST=999.0000.1.99999999999999999999)"), "n=999.0000.1.99999999999999999999:-/-;"},
    {"HostOfThreeNumbers",   A("(HOST=1.2.3)"), nullptr},
    {"HostOfFiveNumbers",    A("(HOST=1.2.3.4.5)"), nullptr},
    {"HostByDottedName",     A("(HOST=db-1.example.com)"), "n=db-1.example.com:-/-;"},
    {"HostNamesItself",      A("(HOST=host)"), nullptr},
    {"HostNamesItselfWithADot", A("(HOST=host.host)"), "n=host.host:-/-;"},
    {"HostStartingWithADigit", A("(HOST=1host)"), nullptr},
    {"HostAsText",           A("(HOST=\"h\")"), nullptr},
    {"HostWithColons",       A("(HOST=::1)"), nullptr},
    {"HostEmpty",            A("(HOST=)"), nullptr},
    {"HostWithATrailingDot", A("(HOST=a.b.)"), nullptr},
    {"HostBeyondAscii",      A("(HOST=gr\xc3\xbc\xc3\x9f-1)"), "n=gr\xc3\xbc\xc3\x9f-1:-/-;"},
    {"PortLosesZeros",       A("(PORT=007)"), "n=-:7/-;"},
    {"PortZero",             A("(PORT=0)"), "n=-:0/-;"},
    {"PortAtTheLimit",       A("(PORT=2147483647)"), "n=-:2147483647/-;"},
    {"PortKeepsItsLow32Bits", A("(PORT=4294967297)"), "n=-:1/-;"},
    {"PortBeyondAllBounds",  A("(PORT=99999999999999999999)"), "n=-:-1/-;"},
    {"PortAsWord",           A("(PORT=listener)"), nullptr},
    {"PortAsText",           A("(PORT=\"1\")"), nullptr},
    {"PortWithSign",         A("(PORT=+1)"), nullptr},
    {"Key",                  A("(KEY=k.x)"), "n=-:-/-;"},
    {"KeyWithSlash",         A("(KEY=/k)"), nullptr},
    {"KeyStartingWithADigit", A("(KEY=9k)"), nullptr},
    {"Community",            A("(COMMUNITY=c)"), "n=-:-/-;"},
    {"CommunityNumber",      A("(COMMUNITY=1)"), nullptr},
    {"Object",               A("(OBJECT=o)"), "n=-:-/-;"},
    {"ObjectKeyword",        A("(OBJECT=node)"), nullptr},
    {"Node",                 A("(NODE=n)"), "n=-:-/-;"},
    {"NodeWithSlash",        A("(NODE=a/b)"), nullptr},
    {"Empty",                A(""), nullptr},
    {"Sid",                  A("(SID=s)"), nullptr},
    {"NoClosingParenthesis", D("(ADDRESS=(HOST=h)"), nullptr},
};

const Row kConnectData[] = {
    {"Sid",                  C("(SID=s)"), "n=~/s;"},
    {"SidDotted",            C("(SID=s.x)"), "n=~/s.x;"},
    {"TheFirstSidWins",      C("(SID=s)(SID=t)(SID=u)"), "n=~/s;"},
    {"SidBehindAServiceName", C("(SERVICE_NAME=x)(SID=y)"), "n=~/y;"},
    {"SidBetweenOthers",     C("(SERVER=dedicated)(SID=y)(HS=ok)(SID=z)"), "n=~/y;"},
    {"ServiceNameIsDropped", C("(SERVICE_NAME=x)"), "n=~/-;"},
    {"ServiceNameWithSlash", C("(SERVICE_NAME=a/b)"), nullptr},
    {"ServiceNameStartingWithADigit", C("(SERVICE_NAME=9x)"), nullptr},
    {"ServiceNameKeyword",   C("(SERVICE_NAME=shared)"), nullptr},
    {"SidNumber",            C("(SID=1)"), nullptr},
    {"SidKeyword",           C("(SID=sid)"), nullptr},
    {"SidAsText",            C("(SID=\"s\")"), nullptr},
    {"GlobalName",           C("(GLOBAL_NAME=a.b)"), "n=~/-;"},
    {"GlobalNameNumber",     C("(GLOBAL_NAME=1)"), nullptr},
    {"HsOk",                 C("(HS=OK)"), "n=~/-;"},
    {"HsEmpty",              C("(HS=)"), nullptr},
    {"HsYes",                C("(HS=yes)"), nullptr},
    {"InstanceName",         C("(INSTANCE_NAME=i)"), "n=~/-;"},
    {"InstanceNameNumber",   C("(INSTANCE_NAME=1)"), nullptr},
    {"RdbDatabase",          C("(RDB_DATABASE=r)"), "n=~/-;"},
    {"RdbDatabasePath",      C("(RDB_DATABASE=[.mf]personnel)"), nullptr},
    {"ServerDedicated",      C("(SERVER=DEDICATED)"), "n=~/-;"},
    {"ServerShared",         C("(SERVER=SHARED)"), "n=~/-;"},
    {"ServerPooled",         C("(SERVER=POOLED)"), nullptr},
    {"Presentation",         C("(PRESENTATION=p)"), "n=~/-;"},
    {"PresentationUrl",      C("(PRESENTATION=http://x)"), nullptr},
    {"FailoverModeAllParameters", F("(BACKUP=)(TYPE=SESSION)(METHOD=BASIC)(RETRIES=20)(DELAY=15)"), "n=~/-;"},
    {"FailoverModeTwiceTheSame", F("(DELAY=1)(DELAY=2)"), "n=~/-;"},
    {"FailoverModeEmpty",    F(""), nullptr},
    {"BackupTakesNoValue",   F("(BACKUP=b)"), nullptr},
    {"BackupNeedsItsEqualsSign", F("(BACKUP)"), nullptr},
    {"TypeSession",          F("(TYPE=SESSION)"), "n=~/-;"},
    {"TypeSelect",           F("(TYPE=SELECT)"), "n=~/-;"},
    {"TypeNone",             F("(TYPE=NONE)"), "n=~/-;"},
    {"TypeOther",            F("(TYPE=TRANSACTION)"), nullptr},
    {"MethodBasic",          F("(METHOD=BASIC)"), "n=~/-;"},
    {"MethodPreconnect",     F("(METHOD=PRECONNECT)"), "n=~/-;"},
    {"MethodOther",          F("(METHOD=NONE)"), nullptr},
    {"RetriesWord",          F("(RETRIES=many)"), nullptr},
    {"DelayWord",            F("(DELAY=long)"), nullptr},
    {"Empty",                C(""), nullptr},
    {"Address",              C("(ADDRESS=(HOST=h))"), nullptr},
    {"FailoverModeOutside",  D("(FAILOVER_MODE=(DELAY=1))"), nullptr},
};

const Row kTexts[] = {
    {"SpacesEverywhere",     " n\t=\r\n( DESCRIPTION\f=\n( ADDRESS = ( HOST = h ) ( PORT = 1 ) )\n)\n", "n=h:1/-;"},
    {"NoSpaces",             "n=(DESCRIPTION=(ADDRESS=(HOST=h)(PORT=1)))m=(DESCRIPTION=(SDU=1))", "n=h:1/-;m=~/-;"},
    {"CommentsAnywhere",     "# first\nn #name\n=(DESCRIPTION # (\"\n=(SDU=1)#)\n)# last", "n=~/-;"},
    {"CommentEndsAtTheLine", "# one\r\nn=(DESCRIPTION=(SDU=1))", "n=~/-;"},
    {"HashInsideAWord",      "n#1=(DESCRIPTION=(ADDRESS=(HOST=a#b)))", "n#1=a#b:-/-;"},
    {"HashBehindANumber",    "n=(DESCRIPTION=(SDU=1#)\n))", "n=~/-;"},
    {"SignsInsideAWord",     "_n$-1=(DESCRIPTION=(ADDRESS=(HOST=a-$_9)))", "_n$-1=a-$_9:-/-;"},
    {"SignBeforeAWord",      "n=(DESCRIPTION=(ADDRESS=(HOST=-a)))", nullptr},
    {"BlanksAroundADot",     "n=(DESCRIPTION=(ADDRESS=(HOST=a . b)))", nullptr},
    {"CaseOfNamesStays",     "Nn=(DESCRIPTION=(ADDRESS=(HOST=HoSt1))(CONNECT_DATA=(SID=SiD1)))", "Nn=HoSt1:-/SiD1;"},
    {"UnknownBytesVanish",   "n!=@(DESCRIPTION=(ADDRESS=(HOST='h')))", "n=h:-/-;"},
    {"OtherBytesVanish",     "n=!(DESCRIPTION=?(ADDRESS=(HOST='h'&)))|~", "n=h:-/-;"},
    {"VerticalTabVanishes",  "n=\v(DESCRIPTION=(SDU=1))", "n=~/-;"},
};
#undef F
#undef C
#undef A
#undef D
// clang-format on

INSTANTIATE_TEST_SUITE_P(Entry, GrammarTest, testing::ValuesIn(kEntries), nameOf);
INSTANTIATE_TEST_SUITE_P(Description, GrammarTest, testing::ValuesIn(kDescriptions),
                         nameOf);
INSTANTIATE_TEST_SUITE_P(Address, GrammarTest, testing::ValuesIn(kAddresses), nameOf);
INSTANTIATE_TEST_SUITE_P(ConnectData, GrammarTest, testing::ValuesIn(kConnectData),
                         nameOf);
INSTANTIATE_TEST_SUITE_P(Text, GrammarTest, testing::ValuesIn(kTexts), nameOf);

/// A file with every keyword.
const std::string kEveryKeyword = R"(
n = (description_list = (description =
  (address_list = (address = (protocol = tcp) (host = h) (port = 1521) (key = k)
                   (community = c) (object = o) (node = d)))
  (address = (protocol = ipc)) (address = (protocol = decnet))
  (connect_data = (failover_mode = (backup =) (type = session) (type = select)
                   (type = none) (method = basic) (method = preconnect) (retries = 1)
                   (delay = 2)) (global_name = g) (hs = ok) (instance_name = i)
                   (rdb_database = r) (server = dedicated) (server = shared)
                   (service_name = s) (presentation = p) (sid = q))
  (failover = on) (load_balance = off) (recv_buf_size = 3) (sdu = 4) (send_buf_size = 5)
  (source_route = yes) (source_route = no) (source_route = true) (source_route = false)
  (type_of_service = t) (security = (ssl_server_cert_dn = "x"))))
)";

// clang-format off
const char *const kKeywords[] = {
    "address", "address_list", "backup", "basic", "community", "connect_data", "decnet",
    "dedicated", "delay", "description", "description_list", "failover", "failover_mode",
    "false", "global_name", "host", "hs", "instance_name", "ipc", "key", "load_balance",
    "method", "no", "node", "none", "object", "off", "ok", "on", "port", "preconnect",
    "presentation", "protocol", "rdb_database", "recv_buf_size", "retries", "sdu",
    "security", "select", "send_buf_size", "server", "service_name", "session", "shared",
    "sid", "source_route", "ssl_server_cert_dn", "tcp", "true", "type", "type_of_service",
    "yes",
};
// clang-format on

std::string upper(std::string text) {
  for (char &c : text) c = static_cast<char>(std::toupper(c));
  return text;
}

std::string capitalised(std::string text) {
  char before = ' ';
  for (char &c : text) {
    if (!std::isalpha(before)) c = static_cast<char>(std::toupper(c));
    before = c;
  }
  return text;
}

TEST(TnsnamesKeywords, AreOneTokenInEveryCase) {
  auto random = zevtest::generator();
  std::set<int> tokens;
  for (const std::string word : kKeywords) {
    const int token = ScanKeywordLookup(word.c_str());
    EXPECT_GT(token, 256) << word;
    EXPECT_TRUE(tokens.insert(token).second) << word;
    EXPECT_EQ(ScanKeywordLookup(upper(word).c_str()), token) << word;
    EXPECT_EQ(ScanKeywordLookup(capitalised(word).c_str()), token) << word;
    for (int i = 0; i < 20; ++i) {
      std::string spelled = word;
      for (char &c : spelled) c = static_cast<char>(random() % 2 ? std::toupper(c) : c);
      EXPECT_EQ(ScanKeywordLookup(spelled.c_str()), token) << spelled;
    }
  }
  EXPECT_EQ(tokens.size(), 52u);
}

TEST(TnsnamesKeywords, OtherWordsAreNone) {
  for (const std::string word : kKeywords) {
    for (const auto &near : {word + "s", word.substr(1), "_" + word, word + "_",
                             word + " ", word + "-", "x" + word}) {
      const bool known = std::ranges::find(kKeywords, near, [](const char *k) {
                           return std::string(k);
                         }) != std::end(kKeywords);
      EXPECT_EQ(ScanKeywordLookup(near.c_str()) != 0, known) << near;
    }
  }
  for (const char *word : {"", "a", "zzz", "\xff", "k\xc5\x89y", "y\xc9s", "tns"}) {
    EXPECT_EQ(ScanKeywordLookup(word), 0) << word;
  }
}

TEST(TnsnamesKeywords, LongWordsAreNone) {
  for (const std::size_t length : {62u, 63u, 64u, 65u, 100000u}) {
    EXPECT_EQ(ScanKeywordLookup(std::string(length, 'h').c_str()), 0);
  }
}

TEST(TnsnamesKeywords, AFileOfThemAllReadsTheSameInEveryCase) {
  for (const auto &text :
       {kEveryKeyword, upper(kEveryKeyword), capitalised(kEveryKeyword)}) {
    const ParsedFile file(text);
    EXPECT_EQ(file.outcome, 0) << file.err;
    EXPECT_EQ(upper(file.entries), "N=H:1521/Q;");
  }
  for (const std::string word : kKeywords) {
    EXPECT_NE(kEveryKeyword.find(word), kEveryKeyword.npos) << word;
  }
}

/// The tokens of a text: characters as they stand, "I" identifiers, "A" addresses, "N"
/// numbers, "S" texts, each with its value in brackets, and keywords as "k".
std::string tokensOf(std::string_view text) {
  tnsnamesin = fmemopen(const_cast<char *>(text.data()), text.size(), "r");
  const int ident = 258, address = 259, quoted = 260, number = 261;
  std::string tokens;
  while (const int token = tnsnameslex()) {
    if (token < 256) {
      tokens += static_cast<char>(token);
    } else if (token == number) {
      tokens += "N[" + std::to_string(tnsnameslval.number) + ']';
    } else if (token == ident || token == address || token == quoted) {
      tokens += std::string(1, "IAS"[token - ident]) + '[' +
                (tnsnameslval.str ? tnsnameslval.str : "null") + ']';
      std::free(tnsnameslval.str);
    } else {
      tokens += 'k';
    }
  }
  std::fclose(tnsnamesin);
  tnsnamesin = nullptr;
  return tokens;
}

struct Words {
  const char *name;
  std::string_view text;
  const char *tokens;
};

// clang-format off
const Words kWords[] = {
    {"OwnCharacters",         "%()*+,-./:;<=>[]^",     "%()*+,-./:;<=>[]^"},
    {"WhiteSpaceOnly",        " \t\f\n\r",             ""},
    {"WhiteSpaceSeparates",   "a\tb\fc\nd\re f",       "I[a]I[b]I[c]I[d]I[e]I[f]"},
    {"CommentToTheEnd",       "a # b",                 "I[a]"},
    {"CommentToTheLineEnd",   "a # b\nc",              "I[a]I[c]"},
    {"HashInsideAWord",       "a#b c",                 "I[a#b]I[c]"},
    {"Number",                "1521",                  "N[1521]"},
    {"NumberWithZeros",       "007",                   "N[7]"},
    {"NumberOf32Bits",        "2147483648",            "N[-2147483648]"},
    {"NumberThenWord",        "1a",                    "N[1]I[a]"},
    {"NumberWithSigns",       "-1",                    "-N[1]"},
    {"AddressOfFourNumbers",  "1.2.3.4",               "A[1.2.3.4]"},
    {"ThreeNumbers",          "1.2.3",                 "N[1].N[2].N[3]"},
    {"FiveNumbers",           "1.2.3.4.5",             "A[1.2.3.4].N[5]"},
    {"FourNumbersAndAWord",   "1.2.3.4a",              "A[1.2.3.4]I[a]"},
    {"Word",                  "_aZ9#$-\xff",           "I[_aZ9#$-\xff]"},
    {"ByteBeyondAsciiStartsAWord", "\x80x",            "I[\x80x]"},
    {"SignsStartNoWord",      "-a",                    "-I[a]"},
    {"Keyword",               "host",                  "k"},
    {"KeywordInAnotherCase",  "HoSt",                  "k"},
    {"KeywordWithMore",       "hosts",                 "I[hosts]"},
    {"KeywordWithDash",       "host-1",                "I[host-1]"},
    {"DottedWords",           "a.b",                   "I[a.b]"},
    {"DottedKeywords",        "host.port.sid",         "I[host.port.sid]"},
    {"DotAtTheEnd",           "a.b.",                  "I[a.b]."},
    {"KeywordAndDot",         "host.",                 "k."},
    {"DotAtTheStart",         ".a",                    ".I[a]"},
    {"DotAndNumber",          "a.1",                   "I[a].N[1]"},
    {"NumberDotWord",         "1.a",                   "N[1].I[a]"},
    {"TwoDots",               "a..b",                  "I[a]..I[b]"},
    {"Quoted",                "\"a b\"",               "S[a b]"},
    {"QuotedKeyword",         "\"host\"",              "S[host]"},
    {"QuotedLines",           "\"a\n\r#b\"",           "S[a\n\r#b]"},
    {"QuotedBackslash",       "\"a\\\"b",              "S[a\\]I[b]"},
    {"QuotedEmpty",           "\"\"",                  "S[null]"},
    {"QuotedTwice",           "\"a\"\"b\"",            "S[a]S[b]"},
    {"Others",                "a!b",                   "I[a]I[b]"},
    {"AllOthers",             {"!$&'?@\\`{|}~\x01\x7f\v\0a", 17}, "I[a]"},
    {"Empty",                 "",                      ""},
};
// clang-format on

class WordsTest : public testing::TestWithParam<Words> {};

TEST_P(WordsTest, AreSplitLongestFirst) {
  testing::internal::CaptureStdout();
  const std::string tokens = tokensOf(GetParam().text);
  std::fflush(stdout);
  testing::internal::GetCapturedStdout();
  EXPECT_EQ(tokens, GetParam().tokens);
}

INSTANTIATE_TEST_SUITE_P(Tnsnames, WordsTest, testing::ValuesIn(kWords),
                         [](const auto &row) { return row.param.name; });

TEST(TnsnamesMessages, OtherCharactersGoToStandardOutput) {
  const ParsedFile file("n=!(DESCRIPTION=?(SDU=1)\\){`|}~$&'@\x01");
  EXPECT_EQ(file.outcome, 0) << file.err;
  EXPECT_EQ(file.out, "!?\\{`|}~$&'@\x01");
}

/// The line number in front of a message that was printed.
int lineOf(const ParsedFile &file) {
  return std::atoi(file.err.c_str());
}

TEST(TnsnamesMessages, ASyntaxErrorNamesLineAndWords) {
  tnsnameslineno = 1;
  EXPECT_EQ(ParsedFile("\n\nn (").err, "3:syntax error, unexpected '(', expecting '='\n");
  EXPECT_EQ(ParsedFile("host").err, "3:syntax error, unexpected HOST, expecting IDENT\n");
  EXPECT_EQ(ParsedFile("").err,
            "3:syntax error, unexpected end of file, expecting IDENT\n");
}

TEST(TnsnamesMessages, LinesGoOnCountingFromFileToFile) {
  tnsnameslineno = 1;
  EXPECT_EQ(ParsedFile("# c\nn=(DESCRIPTION=\n(SDU=1))\n").outcome, 0);
  EXPECT_EQ(tnsnameslineno, 4);
  EXPECT_EQ(lineOf(ParsedFile("a\n\"x\ny\"")), 6);
  EXPECT_EQ(lineOf(ParsedFile(")\n\n\n")), 6);
}

TEST(TnsnamesMessages, AnUnclosedQuoteIsToldAndEndsTheFile) {
  const ParsedFile inside("n=(DESCRIPTION=(SECURITY=(SSL_SERVER_CERT_DN=\"x");
  EXPECT_EQ(inside.outcome, 1);
  EXPECT_TRUE(inside.err.starts_with("unterminated quoted identifier")) << inside.err;
  EXPECT_NE(inside.err.find("unexpected end of file"), inside.err.npos) << inside.err;
  const ParsedFile behind("n=(DESCRIPTION=(SDU=1))\"x\n");
  EXPECT_EQ(behind.outcome, 0);
  EXPECT_EQ(behind.entries, "n=~/-;");
  EXPECT_EQ(behind.err, "unterminated quoted identifier");
}

TEST(TnsnamesMessages, ACallersOwnIsPrintedAndAnswered) {
  tnsnameslineno = 7;
  testing::internal::CaptureStderr();
  EXPECT_EQ(tnsnameserror("a text"), 1);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "7:a text\n");
}

TEST(TnsnamesParser, NothingOfABrokenFileIsLeft) {
  const ParsedFile file(
      "a=(DESCRIPTION=(ADDRESS=(HOST=h)(PORT=1))(CONNECT_DATA=(SID=s)))\n"
      "b=(DESCRIPTION=(ADDRESS=(HOST=h)(PORT=1))(CONNECT_DATA=(SID=s) (SID=t) b");
  EXPECT_EQ(file.outcome, 1);
  EXPECT_EQ(tnsnames_parsetree_list, nullptr);
  EXPECT_EQ(ParsedFile("a=(DESCRIPTION=(SDU=1))").entries, "a=~/-;");
}

TEST(TnsnamesParser, TakesFilesOfAnyLength) {
  std::string text, entries;
  for (int i = 0; i < 20000; ++i) {
    const std::string name = "n" + std::to_string(i);
    text += name + " = (DESCRIPTION = (ADDRESS = (HOST = h)))\n";
    entries += name + "=h:-/-;";
  }
  EXPECT_EQ(ParsedFile(text).entries, entries);
  const std::string longWord(300000, 'x');
  EXPECT_EQ(ParsedFile("n=(DESCRIPTION=(CONNECT_DATA=(SID=" + longWord + "))" +
                       std::string(100000, '\n') + "(SECURITY=(SSL_SERVER_CERT_DN=\"" +
                       std::string(500000, '(') + "\")))")
                .entries,
            "n=~/" + longWord + ";");
}

TEST(TnsnamesParser, AStreamIsReadFromWhereItStands) {
  const std::string text = "rest of a line\nn=(DESCRIPTION=(SDU=1))";
  tnsnamesin = fmemopen(const_cast<char *>(text.data()), text.size(), "r");
  while (std::fgetc(tnsnamesin) != '\n') {
  }
  EXPECT_EQ(tnsnamesparse(), 0);
  EXPECT_EQ(printed(tnsnames_parsetree_list), "n=~/-;");
  tnsnames::releaseNodes(std::exchange(tnsnames_parsetree_list, nullptr));
  std::fclose(std::exchange(tnsnamesin, nullptr));
}

TEST(TnsnamesRandom, EveryFileOfTheGrammarIsUnderstood) {
  auto random = zevtest::generator();
  for (int i = 0; i < 10000; ++i) {
    const RandomFile file(random);
    const auto [outcome, list] = parseText(file.text);
    const std::string entries = printed(list);
    tnsnames::releaseNodes(list);
    ASSERT_EQ(outcome, 0) << file.text;
    ASSERT_EQ(entries, file.entries) << file.text;
  }
}

TEST(TnsnamesRandom, AChangedFileIsUnderstoodOrRefused) {
  auto random = zevtest::generator();
  int count[2] = {};
  for (int i = 0; i < 10000; ++i) {
    const std::string text = mutated(RandomFile(random).text, random);
    const ParsedFile file(text);
    ASSERT_TRUE(file.outcome == 0 || file.outcome == 1) << text;
    ++count[file.outcome];
    EXPECT_EQ(file.entries.empty(), file.outcome == 1) << text;
    EXPECT_EQ(file.entries.find("no entry"), file.entries.npos) << text;
    EXPECT_EQ(file.err.find(":syntax error, ") != file.err.npos, file.outcome == 1);
  }
  EXPECT_GT(count[0], 100);
  EXPECT_GT(count[1], 1000);
}

/// A node with its texts, as the parser makes it.
template <class Node>
Node *node(NodeTag tag) {
  auto *made = static_cast<Node *>(std::calloc(1, sizeof(Node)));
  made->tag = tag;
  return made;
}

TEST(TnsnamesNodes, ReleaseLeavesNullAndOtherTags) {
  ReleaseOCIHost(nullptr);
  ReleaseOCIPort(nullptr);
  ReleaseOCIAddress(nullptr);
  ReleaseOCISid(nullptr);
  ReleaseOCINetServiceName(nullptr);
  ReleaseOCINode(nullptr);
  for (ub4 tag = 0; tag < 9; ++tag) {
    OCINetServiceName other{};
    other.tag = tag;
    if (tag != kHostTag) ReleaseOCIHost(reinterpret_cast<OCIHost *>(&other));
    if (tag != kPortTag) ReleaseOCIPort(reinterpret_cast<OCIPort *>(&other));
    if (tag != kAddressTag) ReleaseOCIAddress(reinterpret_cast<OCIAddress *>(&other));
    if (tag != kSidTag) ReleaseOCISid(reinterpret_cast<OCISid *>(&other));
    if (tag != kNetServiceNameTag) ReleaseOCINetServiceName(&other);
    if (tag == 0 || tag > kCallableStmtTag) ReleaseOCINode(&other);
    EXPECT_EQ(other.tag, tag);
  }
}

TEST(TnsnamesNodes, AnyNodeIsReleasedByItsTag) {
  for (const NodeTag tag :
       {kHostTag, kPortTag, kAddressTag, kSidTag, kNetServiceNameTag}) {
    ReleaseOCINode(node<OCINetServiceName>(tag));  // the largest; all fields null
  }
  ReleaseOCINode(tnsnames::makeHost(strdup("h")));
  ReleaseOCINode(tnsnames::makePort(1));
  ReleaseOCINode(tnsnames::makeSid(strdup("s")));
  ReleaseOCINode(node<callableStmt>(kCallableStmtTag));
}

/// The list of some entries, from their text.
List *entriesOf(std::string_view text) {
  return parseText(text).second;
}

/// An address before and after entries are applied to it.
struct Target {
  OCIServer server{};

  explicit Target(const char *dblink) { server.dblink = strdup(dblink); }
  ~Target() {
    for (char *text : {server.dblink, server.host, server.port, server.dbname}) {
      std::free(text);
    }
  }
  Target(const Target &) = delete;
  Target &operator=(const Target &) = delete;
  std::string parts() const {
    const auto part = [](const char *text) { return std::string(text ? text : "-"); };
    return part(server.host) + ':' + part(server.port) + '/' + part(server.dbname);
  }
};

std::string applied(const char *dblink, std::string_view text) {
  Target target(dblink);
  EXPECT_TRUE(tnsnames::apply(entriesOf(text), &target.server));
  return target.parts();
}

TEST(TnsnamesApply, TheEntryOfTheNameGivesTheAddress) {
  const char *text =
      "a=(DESCRIPTION=(ADDRESS=(HOST=h)(PORT=1))(CONNECT_DATA=(SID=s)))"
      "b=(DESCRIPTION=(ADDRESS=(HOST=i)(PORT=2))(CONNECT_DATA=(SID=t)))"
      "c=(DESCRIPTION=(CONNECT_DATA=(SERVICE_NAME=u)))";
  EXPECT_EQ(applied("a", text), "h:1/s");
  EXPECT_EQ(applied("B", text), "i:2/t");
  EXPECT_EQ(applied("c", text), "-:-/-");
  EXPECT_EQ(applied("ab", text), "-:-/-");
  EXPECT_EQ(applied("", text), "-:-/-");
  EXPECT_EQ(applied("a/b:c", text), "-:-/-");
}

TEST(TnsnamesApply, ALaterEntryFillsOnlyWhatIsEmpty) {
  EXPECT_EQ(applied("a",
                    "a=(DESCRIPTION=(ADDRESS=(PORT=1)))"
                    "A=(DESCRIPTION=(ADDRESS=(HOST=h)(PORT=2)))"
                    "a=(DESCRIPTION=(ADDRESS=(HOST=i))(CONNECT_DATA=(SID=s)))"),
            "h:1/s");
}

TEST(TnsnamesApply, PartsThatAreKnownStay) {
  Target target("a");
  target.server.port = strdup("9");
  EXPECT_TRUE(tnsnames::apply(
      entriesOf("a=(DESCRIPTION=(ADDRESS=(HOST=h)(PORT=1))(CONNECT_DATA=(SID=s)))"),
      &target.server));
  EXPECT_EQ(target.parts(), "h:9/s");
}

TEST(TnsnamesApply, ElementsThatAreNoEntryAreLeft) {
  OCIHost *host = tnsnames::makeHost(strdup("h"));
  List *list = lappend(lappend(nullptr, nullptr), host);
  Target target("h");
  EXPECT_TRUE(tnsnames::apply(list, &target.server));
  EXPECT_EQ(target.parts(), "-:-/-");
  EXPECT_STREQ(host->host, "h");
  ReleaseOCIHost(host);
}

}  // namespace
}  // namespace zev::test
