/// Every pair of the bind matrix but those of dates against its model: values at their
/// edges, in all sizes, in every environment.
#include "model/bind_model.h"
#include "model/pairs.h"
#include "model/texts.h"
#include "types/conversion_tables.h"
#include "types_fixture.h"
#include "zevoci/string_value.h"

namespace zevtest {
namespace {

using model::BindCall;
using model::BindOutcome;
using model::Pair;

constexpr int kPrintedMismatches = 5;

/// A buffer's contents and what the program says of its size.
struct Sample {
  std::string bytes;
  sb4 length;
};
using Samples = std::vector<Sample>;

Samples integerSamples() {
  Samples all;
  for (const long long value :
       {0LL, 1LL, -5LL, 200LL, 127LL, -128LL, 300LL, 40000LL, -1LL, 4294967301LL,
        2147483647LL, -2147483648LL, 9223372036854775807LL}) {
    for (sb4 size = 0; size <= 10; ++size) {
      all.push_back({native(value) + native(ub4{0}), size});
    }
    all.push_back({native(value), -1});
  }
  return all;
}

Samples floatSamples() {
  Samples all;
  for (const double value : {0.0, 1.5, -2.25, 0.1, 1e300}) {
    for (sb4 size = 0; size <= 10; ++size) {
      all.push_back({native(value) + native(ub4{0}), size});
    }
    all.push_back({native(static_cast<float>(value)), 4});
  }
  return all;
}

Samples byteSamples() {
  Samples all;
  for (sb4 size = 0; size <= 10; ++size) all.push_back({"a\0\xFFzz  \0\1\2"s, size});
  all.push_back({std::string(70000, 'x'), 70000});
  return all;
}

/// A length in front of bytes: lengths at the edges, and sizes that the program claims.
template <class Prefix>
Samples prefixedSamples(std::initializer_list<ub4> lengths) {
  Samples all;
  for (const ub4 length : lengths) {
    std::string bytes = native(static_cast<Prefix>(length));
    bytes += "ab  c d " + std::string(length < 100000 ? length : 0, 'x');
    if (sizeof(Prefix) == 2) all.push_back({bytes, 0});
    if (sizeof(Prefix) == 2) all.push_back({bytes, 1});
    for (const sb4 size : {4, 10, 65535, 65536}) all.push_back({bytes, size});
  }
  return all;
}

Samples limitedSamples() {
  return {{std::string(8, 'x'), 0x7FFFFFFF}};
}

std::string wide(const std::string &ascii) {
  return zevtest::utf16(ascii);
}

Samples textSamples() {
  Samples all;
  const std::string texts[] = {"abc  \0   \0"s,
                               "   \0\0     "s,
                               "\0\0\0\0\0\0\0\0\0\0"s,
                               "a\0b\0c\0\0\0\0\0"s,
                               "abcdefghij"s,
                               "a\0\0\xD8z\0\0\0\0\0"s,
                               "\xAC\x20\x3D\xD8\0\xDE\0\0a\0"s};
  for (const std::string &text : texts) {
    for (sb4 size = 0; size <= 10; ++size) all.push_back({text, size});
    const std::string widened = wide(text.substr(0, 6));
    for (sb4 size = 1; size <= 12; ++size) all.push_back({widened, size});
  }
  for (const std::size_t length : {3998u, 3999u, 4000u, 4500u}) {
    const std::string text = std::string(length, 't') + '\0';
    all.push_back({text, static_cast<sb4>(text.size())});
    all.push_back({text + std::string(499, '#'), static_cast<sb4>(text.size() + 499)});
    all.push_back({wide(text), static_cast<sb4>(2 * text.size())});
  }
  return all;
}

Samples stringSamples() {
  Samples all;
  for (const std::size_t length : {0u, 1u, 3u, 10u, 65533u, 65534u}) {
    for (const sb4 size : {0, 8, 65535, 65536}) {
      all.push_back({std::string(length, 's'), size});
      if (length <= 10) all.push_back({wide(std::string(length, 's')), size});
    }
  }
  all.push_back({"a  ", 8});
  return all;
}

Samples numberSamples(bool withLength) {
  Samples all;
  for (const char *text :
       {"0", "1", "-1", "100", "0.5", "123.45", "-123.45", "0.001", "-0.001", "10000",
        "99999999999999999999", "1e100", "-1e-100", "0.00012345", "1000000", "123456789",
        "0.01", "-7e3", "12345678901234567890.12345678901234567"}) {
    std::string bytes = withLength ? *model::toVarnum(text) : *model::toNumber(text);
    bytes.resize(22, '\0');
    for (const sb4 size : {0, 20, 21, 22, 23}) all.push_back({bytes, size});
  }
  const auto pushRaw = [&](std::string number) {
    number.resize(21, '\0');
    const char length = static_cast<char>(number.find_last_not_of('\0') + 1);
    if (withLength) number = length + number;
    number.resize(22, '\0');
    all.push_back({number, 22});
  };
  pushRaw("\xC1\x02\x66");
  pushRaw("\x3E\x64\x01");
  pushRaw("\x3E\x64");
  return all;
}

Samples samplesOf(const Pair &pair) {
  switch (pair.dty) {
    case SQLT_INT:
    case SQLT_UIN:
      return integerSamples();
    case SQLT_FLT:
    case SQLT_BFLOAT:
    case SQLT_BDOUBLE:
      return floatSamples();
    case SQLT_BIN:
      return byteSamples();
    case SQLT_LBI: {
      Samples all = byteSamples();
      for (const Sample &s : limitedSamples()) all.push_back(s);
      return all;
    }
    case SQLT_VBI:
    case SQLT_VCS:
      return prefixedSamples<ub2>({0, 1, 3, 8, 65532, 65533, 65534, 65535});
    case SQLT_LVB:
    case SQLT_LVC:
      return prefixedSamples<ub4>({0, 1, 3, 8, 70000, 0x7FFFFFFC, 0xFFFFFFFF});
    case SQLT_VST:
      return stringSamples();
    case SQLT_NUM:
    case SQLT_VNU:
      return numberSamples(pair.dty == SQLT_VNU);
    default:
      return textSamples();
  }
}

std::string shown(const std::string &bytes) {
  std::string text;
  for (const char c : bytes.substr(0, 40)) {
    char hex[8];
    std::snprintf(hex, sizeof hex, "%02X ", static_cast<unsigned char>(c));
    text += hex;
  }
  return text + "(" + std::to_string(bytes.size()) + " bytes)";
}

std::string described(const BindOutcome &o) {
  return "result " + std::to_string(o.result) + " bytes " +
         (o.bytes ? shown(*o.bytes) : "none") + " format " + std::to_string(o.format) +
         " record " + std::to_string(o.record) + " " + o.message;
}

std::string described(const BindCall &c) {
  return shown(c.bytes) + " length " + std::to_string(c.length) +
         (c.isNull ? " null" : "") + (c.env.oracleVarchars ? "" : " no-varchars") +
         (c.env.utf16 ? " utf16" : "");
}

/// A failure leaves no buffer; its format means nothing.
bool agree(const BindOutcome &expected, const BindOutcome &seen) {
  return expected.result == seen.result && expected.bytes == seen.bytes &&
         (expected.result != 0 || expected.format == seen.format) &&
         expected.record == seen.record && expected.message == seen.message;
}

std::vector<Pair> bindPairs() {
  std::vector<Pair> pairs;
  for (const ConversionEntry &entry : OCIToPQConversionFunctions) {
    const Pair pair{entry.secondKey, static_cast<ub2>(entry.firstKey)};
    if (!model::isDatePair(pair)) pairs.push_back(pair);
  }
  return pairs;
}

class BindMatrixTest : public testing::TestWithParam<Pair> {
 protected:
  BindOutcome bind(ToServerConverter convert, const BindCall &call) {
    Session &session = call.env.utf16 ? wide_ : narrow_;
    session.env->oracleVarchars = call.env.oracleVarchars;
    const auto block = exactCopy(call.bytes);
    OCIString string{static_cast<ub4>(call.bytes.size()),
                     static_cast<ub4>(call.bytes.size()),
                     reinterpret_cast<OraText *>(block.get())};
    OCIString *pointer = &string;
    const void *value =
        call.dty == SQLT_VST ? static_cast<void *>(&pointer) : block.get();
    void *out = nullptr;
    ub4 length = 0;
    ub1 format = 99;
    sb2 indicator = 0;
    BindOutcome seen;
    seen.result = convert(session.errhp, call.isNull ? nullptr : value, call.length,
                          &indicator, &out, &length, &format);
    const std::unique_ptr<void, decltype(&std::free)> owned(out, std::free);
    if (out) seen.bytes.emplace(static_cast<char *>(out), length);
    seen.format = format;
    seen.record = session.takeRecord();
    if (seen.record == -1) seen.message = session.lastMessage;
    return seen;
  }

  void check(ToServerConverter convert, const BindCall &call) {
    const auto expected = model::predictBind(call);
    ASSERT_TRUE(expected.has_value());
    const BindOutcome seen = bind(convert, call);
    if (agree(*expected, seen) || ++mismatches_ > kPrintedMismatches) return;
    ADD_FAILURE() << described(call) << "\n  expected " << described(*expected)
                  << "\n  seen     " << described(seen);
  }

  void TearDown() override {
    if (mismatches_ > kPrintedMismatches) ADD_FAILURE() << mismatches_ << " mismatches";
  }

  Session narrow_;
  Session wide_{OCI_UTF16};
  int mismatches_ = 0;
};

bool mayBeNull(ub2 dty) {
  const ub2 readAtOnce[] = {SQLT_VCS, SQLT_LVC, SQLT_VST, SQLT_NUM, SQLT_VNU};
  return std::count(std::begin(readAtOnce), std::end(readAtOnce), dty) == 0;
}

TEST_P(BindMatrixTest, ConverterDoesAsTheModel) {
  const Pair pair = GetParam();
  const ToServerConverter convert =
      GetConversionFunctionInternal(pair.dty, pair.oid, OCIToPQConversionFunctions, 0,
                                    kToServerEntries - 1)
          .toServer;
  ASSERT_NE(convert, nullptr) << "the converter is missing";
  for (const bool oracleVarchars : {true, false}) {
    for (const bool utf16 : {true, false}) {
      BindCall call{.dty = pair.dty, .oid = pair.oid, .env = {oracleVarchars, utf16}};
      for (const Sample &sample : samplesOf(pair)) {
        call.bytes = sample.bytes;
        call.length = sample.length;
        check(convert, call);
      }
      if (!mayBeNull(pair.dty)) continue;
      call.isNull = true;
      call.length = 4;
      if (oracleVarchars) check(convert, call);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Bind, BindMatrixTest, testing::ValuesIn(bindPairs()),
                         [](const auto &row) {
                           const std::string name = model::nameOf(row.param);
                           const auto middle = name.find("_to_");
                           return name.substr(middle + 4) + "_to_" +
                                  name.substr(0, middle);
                         });

}  // namespace
}  // namespace zevtest
