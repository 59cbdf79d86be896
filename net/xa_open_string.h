/// The open string of the XA entry points.
#pragma once

#include <string_view>

namespace zev {

/// What an open string says; empty where it says nothing. The texts are parts of the
/// string.
struct XaOpenString {
  std::string_view host;
  std::string_view port;
  std::string_view database;  ///< connect string, or database name
  std::string_view account;   ///< user and password with "/" between them
  std::string_view module;    ///< name of the application
};

/// Takes `text`, items NAME=VALUE with "+" between them, apart. Unknown names, items
/// without "=" and values of no or of more than 254 bytes are passed over; of two items
/// of one name the later holds.
XaOpenString parseXaOpenString(std::string_view text);

}  // namespace zev
