/// Dates, intervals and numbers from and to text: what a program of 8 bits gets, a
/// program in UTF-16 gets in UTF-16.
#include <gtest/gtest.h>
#include <iconv.h>
#include <ociap.h>
#include <orl.h>

#include <cstring>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/support/random_inputs.h"

namespace zev::test {
namespace {

std::string converted(const char *to, const char *from, const std::string &text) {
  const iconv_t conversion = iconv_open(to, from);
  std::string out(4 * text.size(), '\0');
  char *in = const_cast<char *>(text.data()), *at = out.data();
  std::size_t left = text.size(), room = out.size();
  const bool failed = iconv(conversion, &in, &left, &at, &room) == std::size_t(-1);
  iconv_close(conversion);
  if (failed) throw std::runtime_error("iconv: " + text);
  out.resize(out.size() - room);
  return out;
}

/// What a call did: its status, the number of its record, its text in UTF-8, and how many
/// characters it says that the text has.
struct Answer {
  sword status = OCI_SUCCESS;
  sb4 record = 0;
  std::string text;
  std::size_t reported = 0;

  bool operator==(const Answer &) const = default;
  friend std::ostream &operator<<(std::ostream &out, const Answer &a) {
    return out << "status " << a.status << " record " << a.record << " \"" << a.text
               << "\" reported " << a.reported;
  }
};

/// A text argument in the program's encoding, in memory that ends with it.
class Text {
 public:
  Text(std::size_t unit, const std::string &utf8, bool terminated = false) {
    const std::string text =
        unit == 2 ? converted("UTF-16LE", "UTF-8", utf8) : std::string(utf8);
    bytes_.assign(text.begin(), text.end());
    if (terminated) bytes_.resize(bytes_.size() + unit, '\0');
    bytes_.reserve(bytes_.size() + 1);  // an empty one has an address, too
  }
  OraText *get() { return reinterpret_cast<OraText *>(bytes_.data()); }
  template <class T>
  T size() const {
    return static_cast<T>(bytes_.size());
  }

 private:
  std::vector<char> bytes_;
};

/// A program of one encoding. Sizes are given in characters.
class Program {
 public:
  explicit Program(ub4 mode) : unit_(mode == OCI_UTF16 ? 2 : 1) {
    EXPECT_EQ(OCIEnvCreate(&env_, mode, nullptr, nullptr, nullptr, nullptr, 0, nullptr),
              OCI_SUCCESS);
    void *made = nullptr;
    EXPECT_EQ(OCIHandleAlloc(env_, &made, OCI_HTYPE_ERROR, 0, nullptr), OCI_SUCCESS);
    err_ = static_cast<OCIError *>(made);
  }
  ~Program() { OCIHandleFree(env_, OCI_HTYPE_ENV); }
  Program(const Program &) = delete;
  Program &operator=(const Program &) = delete;

  Answer dateToText(const OCIDate &date, const std::string &format, std::size_t room) {
    Text fmt(unit_, format);
    return written(room, [&](OraText *out, ub4 *size) {
      return OCIDateToText(err_, &date, fmt.get(), fmt.size<ub1>(), nullptr, 0, size,
                           out);
    });
  }
  Answer dateFromText(const std::string &text, const std::string &format) {
    Text str(unit_, text), fmt(unit_, format);
    OCIDate date{};
    Answer answer = finished(OCIDateFromText(err_, str.get(), str.size<ub4>(), fmt.get(),
                                             fmt.size<ub1>(), nullptr, 0, &date));
    answer.text = bytesOf(date);
    return answer;
  }
  Answer nextDay(const OCIDate &date, const std::string &day) {
    Text name(unit_, day);
    OCIDate next{};
    Answer answer =
        finished(OCIDateNextDay(err_, &date, name.get(), name.size<ub4>(), &next));
    answer.text = bytesOf(next);
    return answer;
  }
  /// A zoned timestamp, its text and its zone's name.
  Answer timestampToText(const OCIDate &date, const std::string &zone,
                         const std::string &format, std::size_t room) {
    Descriptor value(*this, OCI_DTYPE_TIMESTAMP_TZ);
    const sword made = construct(value, date, zone);
    if (made != OCI_SUCCESS) return finished(made);
    Text fmt(unit_, format);
    Answer answer = written(room, [&](OraText *out, ub4 *size) {
      return OCIDateTimeToText(env_, err_, value.dateTime(),
                               format.empty() ? nullptr : fmt.get(), fmt.size<ub1>(), 0,
                               nullptr, 0, size, out);
    });
    const Answer name = written(room % 9, [&](OraText *out, ub4 *size) {
      return OCIDateTimeGetTimeZoneName(env_, err_, value.dateTime(), out, size);
    });
    answer.text += " in " + name.text + ' ' + std::to_string(name.status);
    return answer;
  }
  Answer timestampFromText(const std::string &text, const std::string &format) {
    Descriptor value(*this, OCI_DTYPE_TIMESTAMP);
    Text str(unit_, text), fmt(unit_, format);
    Answer answer = finished(OCIDateTimeFromText(
        env_, err_, str.get(), str.size<size_t>(), format.empty() ? nullptr : fmt.get(),
        fmt.size<ub1>(), nullptr, 0, value.dateTime()));
    if (answer.status == OCI_SUCCESS) {
      sb2 year = 0;
      ub1 month = 0, day = 0;
      OCIDateTimeGetDate(env_, err_, value.dateTime(), &year, &month, &day);
      answer.text =
          std::to_string(year) + '-' + std::to_string(month) + '-' + std::to_string(day);
    }
    return answer;
  }
  Answer intervalThroughText(ub4 type, const std::string &text) {
    Descriptor value(*this, type);
    type == OCI_DTYPE_INTERVAL_DS
        ? OCIIntervalSetDaySecond(env_, err_, 0, 0, 0, 0, 0, value.interval())
        : OCIIntervalSetYearMonth(env_, err_, 0, 0, value.interval());
    Text str(unit_, text, true);
    const sword read =
        OCIIntervalFromText(env_, err_, str.get(), str.size<size_t>(), value.interval());
    if (read != OCI_SUCCESS) return finished(read);
    std::size_t length = 0;
    return written(64, [&](OraText *out, ub4 *) {
      return OCIIntervalToText(env_, err_, value.interval(), 2, 3, out, 64, &length);
    });
  }
  Answer intervalFromZone(const std::string &zone) {
    Descriptor value(*this, OCI_DTYPE_INTERVAL_DS);
    OCIIntervalSetDaySecond(env_, err_, 0, 0, 0, 0, 0, value.interval());
    Text str(unit_, zone, true);
    const sword read =
        OCIIntervalFromTZ(env_, err_, str.get(), str.size<size_t>(), value.interval());
    sb4 day = 0, hour = 0, minute = 0, second = 0, fraction = 0;
    Answer answer = finished(read);
    OCIIntervalGetDaySecond(env_, err_, &day, &hour, &minute, &second, &fraction,
                            value.interval());
    answer.text = std::to_string(hour) + ':' + std::to_string(minute);
    return answer;
  }
  Answer numberToText(const OCINumber &number, const std::string &format,
                      std::size_t room) {
    Text fmt(unit_, format);
    return written(room, [&](OraText *out, ub4 *size) {
      return OCINumberToText(err_, &number, fmt.get(), fmt.size<ub4>(), nullptr, 0, size,
                             out);
    });
  }
  Answer numberFromText(const std::string &text, const std::string &format) {
    Text str(unit_, text), fmt(unit_, format);
    OCINumber number{};
    Answer answer =
        finished(OCINumberFromText(err_, str.get(), str.size<ub4>(), fmt.get(),
                                   fmt.size<ub4>(), nullptr, 0, &number));
    answer.text.assign(reinterpret_cast<char *>(number.OCINumberPart), sizeof number);
    return answer;
  }

 private:
  /// A descriptor of a program's.
  class Descriptor {
   public:
    Descriptor(const Program &program, ub4 type) : type_(type) {
      EXPECT_EQ(OCIDescriptorAlloc(program.env_, &handle_, type, 0, nullptr),
                OCI_SUCCESS);
    }
    ~Descriptor() { OCIDescriptorFree(handle_, type_); }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;
    OCIDateTime *dateTime() const { return static_cast<OCIDateTime *>(handle_); }
    OCIInterval *interval() const { return static_cast<OCIInterval *>(handle_); }

   private:
    void *handle_ = nullptr;
    ub4 type_;
  };

  static std::string bytesOf(const OCIDate &date) {
    return {reinterpret_cast<const char *>(&date), sizeof date};
  }
  sword construct(const Descriptor &value, const OCIDate &date, const std::string &zone) {
    Text name(unit_, zone, true);
    const OCITime &time = date.OCIDateTime;
    return OCIDateTimeConstruct(env_, err_, value.dateTime(), date.OCIDateYYYY,
                                date.OCIDateMM, date.OCIDateDD, time.OCITimeHH,
                                time.OCITimeMI, time.OCITimeSS, 0, name.get(),
                                name.size<size_t>());
  }
  /// What a call that wrote no text did.
  Answer finished(sword status) {
    Answer answer{.status = status};
    if (status != OCI_SUCCESS) {
      OCIErrorGet(err_, 1, nullptr, &answer.record, nullptr, 0, OCI_HTYPE_ERROR);
      ub4 object = 0;  // which clears the records
      OCIAttrGet(env_, OCI_HTYPE_ENV, &object, nullptr, OCI_ATTR_OBJECT, err_);
    }
    return answer;
  }
  /// Lets `write` fill a buffer of so many characters, with nothing behind it.
  template <class Write>
  Answer written(std::size_t room, const Write &write) {
    std::vector<char> exact(room * unit_, '\x7f');
    auto size = static_cast<ub4>(exact.size());
    exact.reserve(exact.size() + 1);
    Answer answer = finished(write(reinterpret_cast<OraText *>(exact.data()), &size));
    if (answer.status != OCI_SUCCESS) return answer;
    answer.reported = size / unit_;
    const std::string raw(exact.begin(), exact.end());
    const std::string all =
        unit_ == 2 ? converted("UTF-8", "UTF-16LE", replaced(raw)) : raw;
    answer.text = all.substr(0, all.find('\0'));
    return answer;
  }
  /// Bytes that nothing was written to, as characters.
  static std::string replaced(std::string raw) {
    for (std::size_t i = 0; i + 1 < raw.size(); i += 2) {
      if (raw[i] == '\x7f' && raw[i + 1] == '\x7f') raw[i + 1] = '\0';
    }
    return raw;
  }

  std::size_t unit_;
  OCIEnv *env_ = nullptr;
  OCIError *err_ = nullptr;
};

class ValueTextTest : public testing::Test {
 protected:
  int between(int least, int most) {
    return std::uniform_int_distribution(least, most)(random_);
  }
  std::string oneOf(const std::vector<std::string> &all) {
    return all[static_cast<std::size_t>(between(0, static_cast<int>(all.size()) - 1))];
  }
  OCIDate date() {
    const auto part = [this](int least, int most) {
      return static_cast<ub1>(between(least, most));
    };
    return {static_cast<sb2>(between(-4712, 9999)),
            part(1, 12),
            part(1, 28),
            {part(0, 23), part(0, 59), part(0, 59)}};
  }
  std::string digits(int least, int most) {
    std::string text;
    for (int i = between(least, most); i > 0; --i) {
      text += static_cast<char>('0' + between(0, 9));
    }
    return text;
  }
  /// Asks both programs the same; they must not differ.
  template <class Ask>
  Answer agree(const Ask &ask) {
    Answer plain = ask(narrow_);
    const Answer wide = ask(wide_);
    EXPECT_EQ(plain, wide);
    return plain;
  }
  /// How many of the answers were good ones, so that a test does not compare failures.
  void count(const Answer &answer) { good_ += answer.status == OCI_SUCCESS; }

  static constexpr int kRounds = 2000;
  Program narrow_{OCI_DEFAULT}, wide_{OCI_UTF16};
  std::mt19937_64 random_ = zevtest::generator();
  int good_ = 0;
};

TEST_F(ValueTextTest, Dates) {
  const std::vector<std::string> formats = {"YYYY-MM-DD HH24:MI:SS", "DD-MON-YY",
                                            "DAY MONTH YEAR",        "J",
                                            "\"год\" YYYY \"年😀\"",  "FMDay, DD Month CC",
                                            "no model at all",       "HH:MI AM",
                                            "SYYYY/MM/DD",           "",
                                            "Q WW IW W D DDD SSSSS", "RM-RR"};
  for (int i = 0; i < kRounds; ++i) {
    const OCIDate value = date();
    const std::string format = oneOf(formats);
    const auto room = static_cast<std::size_t>(between(0, 80));
    // Characters beyond ASCII take more bytes than units: they are cut elsewhere.
    const bool isAscii = format.find("😀") == format.npos;
    const std::size_t enough = isAscii ? room : 100;
    const Answer printed =
        agree([&](Program &p) { return p.dateToText(value, format, enough); });
    count(printed);
    agree([&](Program &p) { return p.dateFromText(printed.text, format); });
  }
  EXPECT_GT(good_, kRounds / 2);
}

TEST_F(ValueTextTest, DaysOfTheWeek) {
  for (int i = 0; i < kRounds; ++i) {
    const std::string name = oneOf({"MONDAY", "sun", "Fri", "Th", "", "Wed!", "вторник"});
    const OCIDate value = date();
    count(agree([&](Program &p) { return p.nextDay(value, name); }));
  }
  EXPECT_GT(good_, kRounds / 3);
}

TEST_F(ValueTextTest, Timestamps) {
  const std::vector<std::string> formats = {"", "YYYY-MM-DD HH24:MI:SS.FF3 TZH:TZM",
                                            "DD MON YYYY", "\"hour\" HH24", "TZR"};
  for (int i = 0; i < kRounds; ++i) {
    OCIDate value = date();
    value.OCIDateYYYY = static_cast<sb2>(between(1, 9999));
    const std::string zone = oneOf({"+02:00", "-11:30", "", "+00:00", "no zone"});
    const std::string format = oneOf(formats);
    const auto room = static_cast<std::size_t>(between(60, 80));
    count(
        agree([&](Program &p) { return p.timestampToText(value, zone, format, room); }));
    const std::string text = oneOf({"03-FEB-01 04.05.06.25 AM", "2001-02-03", "nothing"});
    agree([&](Program &p) {
      return p.timestampFromText(text,
                                 oneOf({""}) + (text[0] == '2' ? "YYYY-MM-DD" : ""));
    });
  }
  EXPECT_GT(good_, kRounds / 3);
}

TEST_F(ValueTextTest, Intervals) {
  for (int i = 0; i < kRounds; ++i) {
    const std::string sign = oneOf({"", "-", "+"});
    const std::string days = sign + digits(1, 4) + ' ' + std::to_string(between(0, 26)) +
                             ':' + std::to_string(between(10, 61)) + ":05";
    const std::string months = sign + digits(1, 4) + ' ' + digits(1, 2);
    count(agree(
        [&](Program &p) { return p.intervalThroughText(OCI_DTYPE_INTERVAL_DS, days); }));
    agree(
        [&](Program &p) { return p.intervalThroughText(OCI_DTYPE_INTERVAL_YM, months); });
    const std::string zone = oneOf({"+", "-"}) + std::to_string(between(0, 15)) + ':' +
                             std::to_string(between(10, 59));
    agree([&](Program &p) { return p.intervalFromZone(zone); });
  }
  EXPECT_GT(good_, kRounds / 5);
}

TEST_F(ValueTextTest, Numbers) {
  for (int i = 0; i < kRounds; ++i) {
    const std::string text =
        oneOf({"", "-", "+"}) + digits(1, 7) + oneOf({"", ".5", ","});
    const std::string format =
        oneOf({"9G999D9", "999999999", "9D99", "TM9", "G999", "", "99G999G999D999", "😀"});
    const Answer read = agree([&](Program &p) { return p.numberFromText(text, format); });
    if (read.status != OCI_SUCCESS) continue;
    OCINumber number;
    std::memcpy(number.OCINumberPart, read.text.data(), sizeof number);
    const auto room = static_cast<std::size_t>(between(1, 60));
    count(agree([&](Program &p) { return p.numberToText(number, format, room); }));
  }
  EXPECT_GT(good_, kRounds / 5);
}

}  // namespace
}  // namespace zev::test
