#include "net/xa_open_string.h"

#include <algorithm>

#include "zevoci/text.h"

namespace {

using zev::XaOpenString;

constexpr std::size_t kLongestValue = 254;

/// An account's value begins with a letter and a separator, which say nothing here.
constexpr std::size_t kAccountPrefix = 2;

constexpr struct {
  std::string_view name;
  std::string_view XaOpenString::*field;
  std::size_t skipped;  ///< bytes in front of what counts
} kItems[] = {
    {"hostname", &XaOpenString::host, 0},
    {"portnumber", &XaOpenString::port, 0},
    {"sqlnet", &XaOpenString::database, 0},
    {"acc", &XaOpenString::account, kAccountPrefix},
    {"appname", &XaOpenString::module, 0},
};

bool equalInAnyCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() && oci_strncasecmp(a.data(), b.data(), a.size()) == 0;
}

void takeItem(std::string_view item, XaOpenString &into) {
  const std::size_t equals = item.find('=');
  if (equals == item.npos) return;
  const std::string_view value = item.substr(equals + 1);
  if (value.empty() || value.size() > kLongestValue) return;
  for (const auto &known : kItems) {
    if (!equalInAnyCase(item.substr(0, equals), known.name)) continue;
    if (value.size() >= known.skipped) into.*known.field = value.substr(known.skipped);
  }
}

}  // namespace

XaOpenString zev::parseXaOpenString(std::string_view text) {
  XaOpenString parsed;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('+'), text.size());
    takeItem(text.substr(0, end), parsed);
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return parsed;
}
