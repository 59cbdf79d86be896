/// Telling values of every row, as text and in the binary form.
#pragma once

#include <libpq-fe.h>

#include <random>
#include <string>
#include <vector>

namespace zevtest::model {

struct Values {
  std::vector<std::string> texts;
  std::vector<std::string> binaries;
};
Values valuesOf(Oid row);
/// A random field of the row, as text or in the binary form.
std::string randomText(Oid row, std::mt19937_64 &random);
std::string randomBinary(Oid row, std::mt19937_64 &random);

/// The server's binary form of an integer of `width` bytes, and of floats.
std::string networkInteger(long long value, int width);
std::string networkFloat(float value);
std::string networkDouble(double value);

}  // namespace zevtest::model
