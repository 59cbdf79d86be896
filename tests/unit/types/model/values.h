/// Telling values of every row, as text and in the binary form.
#pragma once

#include <libpq-fe.h>

#include <string>
#include <vector>

namespace zevtest::model {

struct Values {
  std::vector<std::string> texts;
  std::vector<std::string> binaries;
};
Values valuesOf(Oid row);

/// The server's binary form of an integer of `width` bytes, and of floats.
std::string networkInteger(long long value, int width);
std::string networkFloat(float value);
std::string networkDouble(double value);

}  // namespace zevtest::model
