#include "outcome.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace zevtest::model {

std::size_t targetSize(const Call &call) {
  return call.cap + 2 * call.value.size() + 80;
}

Run::Run(const Call &c)
    : call(c),
      cap(static_cast<long>(c.cap)),
      valueLength(static_cast<long>(c.value.size())) {
  const bool isString = c.dty == SQLT_VST;
  if (!isString) out.target.assign(targetSize(c), kUntouched);
  if (isString) out.text.assign(c.stringSize + 8, kUntouched);
  out.length = c.cap;
}

std::string Run::cText() const {
  return call.value.substr(0, call.value.find('\0'));
}

bool Run::isNull() const {
  return call.nullPointer || call.value.empty() ||
         (call.format == 0 && call.value[0] == '\0');
}

Outcome Run::returns(sword result) {
  out.result = result;
  return out;
}

Outcome Run::failsWith(int record) {
  out.record = record;
  return fails();
}

Outcome Run::nullRule() {
  if (call.returnCode) out.returnCode = 1405;
  if (call.indicator) {
    out.indicator = -1;
    return returns(0);
  }
  out.record = 1405;
  return returns(1);
}

namespace {

/// Writes inside `buffer`; what would stand before it falls away.
void write(std::string &buffer, long at, std::string bytes) {
  if (at < 0) {
    bytes.erase(0, std::min(bytes.size(), static_cast<std::size_t>(-at)));
    at = 0;
  }
  if (static_cast<std::size_t>(at) + bytes.size() > buffer.size()) {
    throw std::out_of_range("the model writes behind its buffer");
  }
  buffer.replace(static_cast<std::size_t>(at), bytes.size(), bytes);
}

}  // namespace

void Run::put(long at, const std::string &bytes) {
  if (!bytes.empty()) write(out.target, at, bytes);
}

void Run::blanks(long from, long to) {
  if (from < to) put(from, std::string(static_cast<std::size_t>(to - from), ' '));
}

void Run::putText(long at, const std::string &bytes) {
  if (!bytes.empty()) write(out.text, at, bytes);
}

void Run::setIndicator(long value) {
  if (call.indicator) out.indicator = static_cast<sb2>(value);
}

void Run::missing(long count) {
  setIndicator(count >= 65536 ? 65534 : count);
}

std::string head(const std::string &text, long room) {
  return text.substr(0, static_cast<std::size_t>(std::max(room, 0L)));
}

std::string native(long long value, int width) {
  std::string bytes;
  for (int i = 0; i < width; ++i) bytes += static_cast<char>(value >> (8 * i));
  return bytes;
}

template <class T>
T readAs(const std::string &bytes) {
  T value;
  std::memcpy(&value, bytes.data(), sizeof value);
  return value;
}
template float readAs<float>(const std::string &);
template double readAs<double>(const std::string &);

std::string nativeFloat(double value) {
  const auto narrow = static_cast<float>(value);
  return {reinterpret_cast<const char *>(&narrow), sizeof narrow};
}

std::string nativeDouble(double value) {
  return {reinterpret_cast<const char *>(&value), sizeof value};
}

std::string reversed(const std::string &bytes) {
  return {bytes.rbegin(), bytes.rend()};
}

long long fromNetwork(const std::string &bytes, int width) {
  long long value = static_cast<signed char>(bytes[0]);
  for (int i = 1; i < width; ++i) {
    value = value * 256 + static_cast<unsigned char>(bytes[static_cast<std::size_t>(i)]);
  }
  return value;
}

Outcome placeInString(Run &run, const std::string &text, const std::string &cut) {
  const long length = static_cast<long>(text.size());
  const long size = run.call.stringSize;
  if (length + 1 <= size) {
    run.putText(0, text);
    run.putText(length, std::string(1, '\0'));
    run.out.textLength = static_cast<ub4>(length);
    return run.returns(0);
  }
  run.out.record = 1406;
  run.missing(length + 1 - size);
  if (size > 0) run.putText(0, cut.substr(0, static_cast<std::size_t>(size - 1)));
  run.putText(size - 1, std::string(1, '\0'));
  run.out.textLength = static_cast<ub4>(std::max(size - 1, 0L));
  return run.returns(1);
}

Outcome fixedFloat(Run &run, long least, Outcome (*member)(Run &)) {
  const bool isFloat = run.call.dty == SQLT_BFLOAT;
  if (run.cap < least) return run.fails();
  Call inner = run.call;
  inner.cap = isFloat ? 4 : 8;
  Run narrowed(inner);
  narrowed.out.target = run.out.target;
  Outcome outcome = member(narrowed);
  if (outcome.result < 0) outcome.length = run.call.cap;
  return outcome;
}

std::optional<Outcome> predict(const Call &call) {
  Run run(call);
  switch (call.oid) {
    case 17:
    case 12487:
      return predictBytea(run);
    case 18:
      return predictCharacter(run);
    case 20:
    case 21:
    case 23:
      return predictInteger(run);
    case 25:
    case 1042:
    case 1043:
    case 1790:
      return predictText(run);
    case 700:
    case 701:
      return predictFloat(run);
    case 1700:
      return predictNumeric(run);
    default:
      return std::nullopt;
  }
}

}  // namespace zevtest::model
