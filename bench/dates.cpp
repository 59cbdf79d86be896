// zevoci_bench_dates: dates computed, printed, read, fetched and bound, without a server;
// beside the C library where that has the like.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <random>
#include <vector>

#include "bench/error_handle.h"
#include "bench/measure.h"
#include "types/bytes.h"
#include "types/conversion_dispatch.h"
#include "types/converters.h"
#include "types/server_types.h"

namespace bench {
namespace {

constexpr int kMoments = 4096;
constexpr int kPasses = 50;
constexpr double kMostForAValue = 40;  ///< nanoseconds

constexpr char kModel[] = "DD-MON-YYYY HH24:MI:SS";
constexpr char kSystemModel[] = "%d-%b-%Y %H:%M:%S";

/// One moment in the forms that the work takes.
struct Moment {
  OCIDate date;
  std::tm system;
  char text[32];  ///< by the model
};

std::vector<Moment> moments() {
  std::mt19937 random(20);
  const auto upTo = [&random](unsigned count) {
    return static_cast<int>(random() % count);
  };
  std::vector<Moment> all(kMoments);
  for (Moment &m : all) {
    m.system = {};
    m.system.tm_year = upTo(136) + 2;
    m.system.tm_mon = upTo(12);
    m.system.tm_mday = upTo(28) + 1;
    m.system.tm_hour = upTo(24);
    m.system.tm_min = upTo(60);
    m.system.tm_sec = upTo(60);
    timegm(&m.system);
    m.date = {static_cast<sb2>(m.system.tm_year + 1900),
              static_cast<ub1>(m.system.tm_mon + 1),
              static_cast<ub1>(m.system.tm_mday),
              {static_cast<ub1>(m.system.tm_hour), static_cast<ub1>(m.system.tm_min),
               static_cast<ub1>(m.system.tm_sec)}};
    std::strftime(m.text, sizeof m.text, kSystemModel, &m.system);
  }
  return all;
}

/// A round of `work` on every moment.
template <class Work>
std::function<double()> round(const std::vector<Moment> &all, Work work) {
  return [&all, work] {
    return seconds([&] {
      for (int pass = 0; pass < kPasses; ++pass) {
        for (const Moment &m : all) work(m);
      }
    });
  };
}

/// Keeps the compiler from leaving out what was stored.
void keep(const void *p) {
  asm volatile("" : : "r"(p) : "memory");
}

const OraText *text(const char *chars) {
  return reinterpret_cast<const OraText *>(chars);
}

[[noreturn]] void failed(const char *what) {
  throw std::runtime_error(std::string(what) + " failed");
}

class Dates {
 public:
  explicit Dates(int rounds) : rounds_(rounds) {}

  void measureAll() {
    measureText();
    measureArithmetic();
    measureFetch();
    measureBind();
    printTable(reports_);
  }

 private:
  template <class ByHand, class Ours>
  void add(const char *name, ByHand byHand, Ours ours) {
    reports_.push_back(run({.name = name,
                            .unit = "ns/call",
                            .factor = 1e9 / kMoments / kPasses,
                            .libpq = round(all_, byHand),
                            .ours = round(all_, ours)},
                           rounds_));
  }
  /// Work that must take no more than the limit.
  template <class Ours>
  void addLimited(const std::string &name, Ours ours) {
    reports_.push_back(run({.name = name,
                            .unit = "ns/value",
                            .factor = 1e9 / kMoments / kPasses,
                            .libpq = {},
                            .ours = round(all_, ours),
                            .limit = kMostForAValue},
                           rounds_));
  }

  void measureText() {
    constexpr auto kLength = static_cast<ub1>(sizeof kModel - 1);
    add(
        "OCIDateToText, strftime",
        [](const Moment &m) {
          char out[32];
          std::strftime(out, sizeof out, kSystemModel, &m.system);
          keep(out);
        },
        [this](const Moment &m) {
          OraText out[32];
          ub4 size = sizeof out;
          if (OCIDateToText(error_.errhp, &m.date, text(kModel), kLength, nullptr, 0,
                            &size, out) != OCI_SUCCESS)
            failed("OCIDateToText");
          keep(out);
        });
    add(
        "OCIDateFromText, strptime",
        [](const Moment &m) {
          std::tm tm{};
          if (!strptime(m.text, kSystemModel, &tm)) failed("strptime");
          keep(&tm);
        },
        [this](const Moment &m) {
          OCIDate date;
          if (OCIDateFromText(error_.errhp, text(m.text),
                              static_cast<ub4>(std::strlen(m.text)), text(kModel),
                              kLength, nullptr, 0, &date) != OCI_SUCCESS)
            failed("OCIDateFromText");
          keep(&date);
        });
  }

  void measureArithmetic() {
    add(
        "OCIDateAddDays, timegm",
        [](const Moment &m) {
          std::tm tm = m.system;
          tm.tm_mday += 1000;
          timegm(&tm);
          keep(&tm);
        },
        [this](const Moment &m) {
          OCIDate sum;
          OCIDateAddDays(error_.errhp, &m.date, 1000, &sum);
          keep(&sum);
        });
    OCIDateTime *first = descriptor<OCIDateTime>(OCI_DTYPE_TIMESTAMP),
                *second = descriptor<OCIDateTime>(OCI_DTYPE_TIMESTAMP);
    auto *span = descriptor<OCIInterval>(OCI_DTYPE_INTERVAL_DS);
    OCIDateTimeConstruct(error_.env(), error_.errhp, second, 2001, 2, 3, 4, 5, 6, 0,
                         nullptr, 0);
    std::tm then{};
    then.tm_year = 101;
    add(
        "OCIDateTimeSubtract, timegm",
        [then](const Moment &m) {
          std::tm a = m.system, b = then;
          const auto difference = timegm(&a) - timegm(&b);
          keep(&difference);
        },
        [=, this](const Moment &m) {
          const OCIDate &d = m.date;
          OCIDateTimeConstruct(error_.env(), error_.errhp, first, d.OCIDateYYYY,
                               d.OCIDateMM, d.OCIDateDD, d.OCIDateTime.OCITimeHH,
                               d.OCIDateTime.OCITimeMI, d.OCIDateTime.OCITimeSS, 0,
                               nullptr, 0);
          OCIDateTimeSubtract(error_.env(), error_.errhp, first, second, span);
          keep(span);
        });
  }

  /// The server's text of each moment.
  static std::vector<std::string> fields(const std::vector<Moment> &all, bool withTime,
                                         const char *behind) {
    std::vector<std::string> made;
    for (const Moment &m : all) {
      char out[64];
      const std::size_t length =
          withTime ? std::strftime(out, sizeof out, "%Y-%m-%d %H:%M:%S", &m.system)
                   : std::strftime(out, sizeof out, "%Y-%m-%d", &m.system);
      made.push_back(std::string(out, length) + behind);
    }
    return made;
  }

  void measureFetch() {
    struct Column {
      const char *name;
      Oid oid;
      bool withTime;
      const char *behind;
    };
    struct Target {
      const char *name;
      ub2 type;
      ub4 size;
      ub4 descriptor;
    };
    for (const Column &column :
         {Column{"date", DATEOID, false, ""}, Column{"timestamp", TIMESTAMPOID, true, ""},
          Column{"timestamp(6)", TIMESTAMPOID, true, ".123456"},
          Column{"timestamptz", TIMESTAMPTZOID, true, "+05:30"}}) {
      const std::vector<std::string> texts = fields(all_, column.withTime, column.behind);
      for (const Target &target :
           {Target{" to DAT", SQLT_DAT, 7, 0}, Target{" to ODT", SQLT_ODT, 8, 0},
            Target{" to TIMESTAMP", SQLT_TIMESTAMP, sizeof(void *), OCI_DTYPE_TIMESTAMP},
            Target{" to TIMESTAMP_TZ", SQLT_TIMESTAMP_TZ, sizeof(void *),
                   OCI_DTYPE_TIMESTAMP_TZ}}) {
        const auto conversion = zev::conversionOf(column.oid, target.type, nullptr);
        char buffer[16] = {};
        if (target.descriptor) {
          zev::writeNative(buffer, descriptor<OCIDateTime>(target.descriptor));
        }
        addLimited(std::string(column.name) + target.name, [&, this](const Moment &m) {
          const std::string &field = texts[static_cast<std::size_t>(&m - all_.data())];
          ub4 length = target.size;
          sb2 indicator;
          ub2 returnCode;
          if (zev::convertField(error_.errhp, conversion,
                                {field.c_str(), static_cast<sb4>(field.size()), 0, false},
                                {buffer, &length, &indicator, &returnCode}) !=
              OCI_SUCCESS)
            failed("a fetch");
          keep(buffer);
        });
      }
    }
  }

  void addBind(const std::string &name, ToServerConverter convert, Oid oid, ub2 type,
               sb4 size, const std::function<const void *(const Moment &)> &value) {
    addLimited(name, [&, this](const Moment &m) {
      sb2 indicator = 0;
      zev::ServerParameter parameter{};
      const zev::BoundValue bound{type, const_cast<void *>(value(m)), size, &indicator};
      if (zev::convertBound(error_.errhp, convert, oid, bound, parameter) != OCI_SUCCESS)
        failed("a bind");
      keep(parameter.value);
      std::free(parameter.value);
    });
  }

  void measureBind() {
    addBind("ODT to timestamp", ConvertSQLT_ODTToTIMESTAMPOID, TIMESTAMPOID, SQLT_ODT, 8,
            [](const Moment &m) { return &m.date; });
    static ub1 bytes[] = {120, 101, 2, 3, 5, 6, 7};
    addBind("DAT to timestamp", ConvertSQLT_DATToTIMESTAMPOID, TIMESTAMPOID, SQLT_DAT, 7,
            [](const Moment &m) {
              bytes[4] = static_cast<ub1>(m.system.tm_hour + 1);
              return bytes;
            });
    auto *d = descriptor<OCIDateTime>(OCI_DTYPE_TIMESTAMP);
    OCIDateTimeConstruct(error_.env(), error_.errhp, d, 2001, 2, 3, 4, 5, 6, 123456,
                         nullptr, 0);
    auto *zoned = descriptor<OCIDateTime>(OCI_DTYPE_TIMESTAMP_TZ);
    OraText zone[] = "+05:30";
    OCIDateTimeConstruct(error_.env(), error_.errhp, zoned, 2001, 2, 3, 4, 5, 6, 123456,
                         zone, 6);
    addBind("TIMESTAMP_TZ to timestamptz", ConvertSQLT_TIMESTAMP_TZToTIMESTAMPTZOID,
            TIMESTAMPTZOID, SQLT_TIMESTAMP_TZ, sizeof zoned,
            [&zoned](const Moment &) { return &zoned; });
    addBind("TIMESTAMP to timestamp", ConvertSQLT_TIMESTAMPToTIMESTAMPOID, TIMESTAMPOID,
            SQLT_TIMESTAMP, sizeof d, [&d](const Moment &) { return &d; });
  }

  template <class Descriptor>
  Descriptor *descriptor(ub4 type) {
    void *made = nullptr;
    if (OCIDescriptorAlloc(error_.env(), &made, type, 0, nullptr) != OCI_SUCCESS)
      failed("OCIDescriptorAlloc");
    return static_cast<Descriptor *>(made);
  }

  const int rounds_;
  const ErrorHandle error_;
  const std::vector<Moment> all_ = moments();
  std::vector<Report> reports_;
};

}  // namespace
}  // namespace bench

int main(int argc, char **argv) {
  try {
    bench::Dates(argc > 1 ? std::max(1, std::atoi(argv[1])) : 7).measureAll();
    return 0;
  } catch (const std::exception &failure) {
    std::fprintf(stderr, "zevoci_bench_dates: %s\n", failure.what());
    return 2;
  }
}
