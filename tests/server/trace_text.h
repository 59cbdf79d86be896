/// What differs from run to run in a trace, masked.
#pragma once

#include <string>
#include <string_view>

namespace zev::test {

/// `text` with each address ("0x...") as "<p>" and, in lines of o2pTrace, whose
/// placeholders show no caller's value, numbers as "<d>" and stray bytes as "<s>".
std::string maskAddresses(std::string_view text);

/// `text` with the time in the first brackets of each listed row, "\t(TIME)", left out.
std::string maskTimes(std::string text);

}  // namespace zev::test
