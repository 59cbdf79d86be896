/// XA open strings taken apart.
#include "net/xa_open_string.h"

#include <gtest/gtest.h>

#include <string>

namespace zev::test {
namespace {

/// The five parts in one text, for comparisons.
std::string parts(std::string_view text) {
  const XaOpenString p = parseXaOpenString(text);
  std::string all;
  for (const auto part : {p.host, p.port, p.database, p.account, p.module}) {
    all += std::string(part) + '|';
  }
  return all;
}

TEST(XaOpenStrings, ItemsAreFoundByNameInAnyOrderAndCase) {
  const struct {
    const char *text;
    const char *parts;
  } rows[] = {
      {"", "|||||"},
      {"acc=P/u/p+sqlnet=db1", "||db1|u/p||"},
      {"hostname=h+portnumber=1+sqlnet=d+acc=P/u/p", "h|1|d|u/p||"},
      {"appname=a+acc=P/u/p+sqlnet=d+portnumber=1+hostname=h", "h|1|d|u/p|a|"},
      {"ACC=P/u/p+HostName=H+SQLNET=D", "H||D|u/p||"},
      {"++hostname=h+++portnumber=1+", "h|1||||"},
      {"logdir=/tmp+logrotationsize=5+logflags=x+hostname=h", "h|||||"},
      {"other=1+novalue+=x+hostname=h", "h|||||"},
      {"hostnames=a+hostnam=b+ hostname=c", "|||||"},
      {"hostname=+portnumber=", "|||||"},
      {"hostname=a+hostname=b", "b|||||"},
      {"hostname=a+hostname=", "a|||||"},
      {"sqlnet=a=b", "||a=b|||"},
      {"acc=user", "|||er||"},
      {"acc=P", "|||||"},
      {"acc=P/", "|||||"},
      {"acc=Pu/p", "|||/p||"},
  };
  for (const auto &row : rows) EXPECT_EQ(parts(row.text), row.parts) << row.text;
}

TEST(XaOpenStrings, AValueOf255BytesIsIgnored) {
  const std::string longest(254, 'x');
  EXPECT_EQ(parseXaOpenString("hostname=" + longest).host.size(), 254u);
  EXPECT_TRUE(parseXaOpenString("hostname=x" + longest).host.empty());
  EXPECT_EQ(parts("hostname=x" + longest + "+portnumber=1"), "|1||||");
}

}  // namespace
}  // namespace zev::test
