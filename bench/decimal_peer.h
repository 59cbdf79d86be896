/// The decimal library that Debian has, as a yardstick beside MPFR: it computes in
/// decimal digits too, though not everything.
#pragma once

#include <string>

namespace bench {

/// A number of so many digits, and what computes on it.
class PeerNumber {
 public:
  PeerNumber(const std::string &text, int digits);
  PeerNumber(const PeerNumber &) = delete;
  PeerNumber &operator=(const PeerNumber &) = delete;
  ~PeerNumber();

  void *number;   ///< a decNumber
  void *context;  ///< its decContext
};

/// r = a op b, or op a, to the digits of `r`.
using PeerOperation = void (*)(PeerNumber &r, const PeerNumber &a, const PeerNumber &b);

/// The operation that the benchmark calls by this name; null where there is none.
PeerOperation peerOperation(const std::string &name);

}  // namespace bench
