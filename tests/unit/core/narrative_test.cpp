/// What functions tell of themselves at the two levels of the narrative.
#include <ociap.h>

#include "frame_fixture.h"
#include "trace_log.h"

namespace zev::test {
namespace {

constexpr const char *kReturning = "4: \tRETURNING <s>\n";
constexpr const char *kSetting = "Setting Piece Information";

/// Values that the calls work on.
class Narrator : public FrameFixture {
 public:
  Narrator() {
    OCIDateSysDate(errhp, &date);
    locator();
    OCIDescriptorAlloc(env.get(), reinterpret_cast<void **>(&interval),
                       OCI_DTYPE_INTERVAL_DS, 0, nullptr);
    OCIIntervalSetDaySecond(env.get(), errhp, 1, 2, 3, 4, 5, interval);
  }
  OCILobLocator *lob() { return static_cast<OCILobLocator *>(made); }

  OCIDate date = {};
  OCIInterval *interval = nullptr;
  ub4 count = 1;
  sb4 parts[5] = {};
  sword order = 0;
};
using N = Narrator;

struct Tale {
  const char *name;
  const char *line;  ///< at level 3; null where there is none
  sword (*call)(N &);
  const char *arguments = "";  ///< at level 4, between the line and the result
};

class Narratives : public Narrator, public testing::WithParamInterface<Tale> {
 protected:
  std::string told(int level) {
    TraceLog log;
    OCI2PQ_TRACE_LEVEL = level;
    GetParam().call(*this);
    return log.takeNarrative();
  }
};

TEST_P(Narratives, AreOneLineAtLevel3AndArgumentsAndResultAtLevel4) {
  const Tale &tale = GetParam();
  const std::string line = tale.line ? std::string("3: ") + tale.line + '\n' : "";
  EXPECT_EQ(told(2), "");
  EXPECT_EQ(told(3), line);
  EXPECT_EQ(told(4), line + tale.arguments + kReturning);
}

constexpr const char *kErrhp = "4: \terrhp = <p>\n";

// clang-format off
const Tale kTales[] = {
    {"DateAddDays", "OCIDateAddDays", [](N &n) { return OCIDateAddDays(n.errhp, &n.date, 1, &n.date); }},
    {"DateAddMonths", "OCIDateAddMonths", [](N &n) { return OCIDateAddMonths(n.errhp, &n.date, 1, &n.date); }},
    {"DateAssign", "OCIDateAssign", [](N &n) { return OCIDateAssign(n.errhp, &n.date, &n.date); }},
    {"DateCompare", "OCIDateCompare", [](N &n) { return OCIDateCompare(n.errhp, &n.date, &n.date, &n.order); }},
    {"DateDaysBetween", "OCIDateDaysBetween", [](N &n) { return OCIDateDaysBetween(n.errhp, &n.date, &n.date, n.parts); }},
    {"DateFromText", nullptr, [](N &n) {
       return OCIDateFromText(n.errhp, asText("2024"), 4, asText("YYYY"), 4, nullptr, 0, &n.date); }},
    {"DateLastDay", kSetting, [](N &n) { return OCIDateLastDay(n.errhp, &n.date, &n.date); }},
    {"DateNextDay", "OCIDateNextDay", [](N &n) { return OCIDateNextDay(n.errhp, &n.date, asText("MONDAY"), 6, &n.date); }},
    {"DateSysDate", "OCIDateSysDate", [](N &n) { return OCIDateSysDate(n.errhp, &n.date); }},
    {"DateToText", nullptr, [](N &n) {
       n.count = sizeof n.text;
       return OCIDateToText(n.errhp, &n.date, asText("YYYY"), 4, nullptr, 0, &n.count, n.text); }},
    {"IntervalAdd", kSetting, [](N &n) { return OCIIntervalAdd(n.env.get(), n.errhp, n.interval, n.interval, n.interval); }},
    {"IntervalCompare", kSetting, [](N &n) { return OCIIntervalCompare(n.env.get(), n.errhp, n.interval, n.interval, &n.order); }},
    {"IntervalGetDaySecond", kSetting, [](N &n) {
       return OCIIntervalGetDaySecond(n.env.get(), n.errhp, &n.parts[0], &n.parts[1], &n.parts[2], &n.parts[3], &n.parts[4], n.interval); }},
    {"NlsCharSetIdToName", "Getting Character Set Name from ID", [](N &n) {
       return OCINlsCharSetIdToName(n.env.get(), n.text, sizeof n.text, 6); },
     "4: \tenvhp = <p>\n4: \tbuf = <p>\n4: \tbuflen = <d>\n4: \tid = <d>\n"},
    {"LobOpen", "Opening LOB/BFILE", [](N &n) { return OCILobOpen(n.svchp, n.errhp, n.lob(), 0); }, kErrhp},
    {"LobClose", "Closing LOB/BFILE", [](N &n) { return OCILobClose(n.svchp, n.errhp, n.lob()); }, kErrhp},
    {"LobGetLength", "Getting Length of LOB/BFILE", [](N &n) { return OCILobGetLength(n.svchp, n.errhp, n.lob(), &n.count); }, kErrhp},
    {"LobRead", "Reading LOB/BFILE", [](N &n) {
       return OCILobRead(n.svchp, n.errhp, n.lob(), &n.count, 1, n.text, sizeof n.text, nullptr, nullptr, 0, 0); }, kErrhp},
    {"LobTrim", "Truncating LOB", [](N &n) { return OCILobTrim(n.svchp, n.errhp, n.lob(), 0); }, kErrhp},
    {"LobWriteAppend", "Appending to LOB", [](N &n) {
       return OCILobWriteAppend(n.svchp, n.errhp, n.lob(), &n.count, n.text, 1, OCI_ONE_PIECE, nullptr, nullptr, 0, 0); }, kErrhp},
    {"UserCallbackGet", "Getting User Callback for Handle", [](N &n) {
       return OCIUserCallbackGet(n.env.get(), OCI_HTYPE_ENV, n.errhp, 2, 1, nullptr, nullptr, nullptr); }},
};
// clang-format on

INSTANTIATE_TEST_SUITE_P(Functions, Narratives, testing::ValuesIn(kTales),
                         [](const auto &p) { return std::string(p.param.name); });

TEST_F(Narrator, ACheckTellsOfItsTwoComparisonsToo) {
  TraceLog log;
  OCI2PQ_TRACE_LEVEL = 4;
  OCIDateCheck(errhp, &date, &count);
  const std::string compared = std::string("3: OCIDateCompare\n") + kReturning;
  EXPECT_EQ(log.takeNarrative(), "3: OCIDateCheck\n" + compared + compared + kReturning);
}

TEST_F(Narrator, AFailureOfADateFunctionTellsNoResult) {
  TraceLog log;
  OCI2PQ_TRACE_LEVEL = 4;
  EXPECT_EQ(OCIDateAddDays(errhp, nullptr, 1, &date), OCI_ERROR);
  EXPECT_EQ(log.takeNarrative(), "3: OCIDateAddDays\n");
}

}  // namespace
}  // namespace zev::test
