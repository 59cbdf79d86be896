/// The model's own parsers of the server's bytea text.
#pragma once

#include "outcome.h"

namespace zevtest::model {

/// What a parser made of a text, with room for `capacity` bytes.
struct Parsed {
  sword result = 0;
  std::string bytes;
  long length = 0;  ///< `*length` afterwards
  int record = 0;
  std::optional<long> indicator;  ///< only what overwrites the 0
};

/// Hex characters, for character targets.
Parsed pqBinStrToHex(const std::string &text, long capacity);
/// Bytes, for binary targets.
Parsed stringToBytes(const std::string &text, long capacity);
/// The parser of binary fields for character targets: no byte of the target is written,
/// and the length becomes the code of the first hex digit.
Parsed binaryToString(const std::string &value, long capacity);

/// Bytea text into a binary target behind a prefix of 0, 2 or 4 bytes.
Outcome stringToBinary(Run &run, int prefix);

}  // namespace zevtest::model
