#include "bench/decimal_peer.h"

#include <cstdlib>
#include <map>

extern "C" {
#include <decNumber.h>
}

namespace bench {
namespace {

decNumber *value(const PeerNumber &x) {
  return static_cast<decNumber *>(x.number);
}

decContext *contextOf(const PeerNumber &x) {
  return static_cast<decContext *>(x.context);
}

using Unary = decNumber *(*)(decNumber *, const decNumber *, decContext *);
using Binary = decNumber *(*)(decNumber *, const decNumber *, const decNumber *,
                              decContext *);

template <Unary compute>
void one(PeerNumber &r, const PeerNumber &a, const PeerNumber &) {
  compute(value(r), value(a), contextOf(r));
}

template <Binary compute>
void two(PeerNumber &r, const PeerNumber &a, const PeerNumber &b) {
  compute(value(r), value(a), value(b), contextOf(r));
}

}  // namespace

PeerNumber::PeerNumber(const std::string &text, int digits)
    : number(std::malloc(sizeof(decNumber) +
                         static_cast<std::size_t>(digits) * sizeof(decNumberUnit))),
      context(new decContext) {
  decContext *own = decContextDefault(contextOf(*this), DEC_INIT_BASE);
  own->digits = digits;
  own->traps = 0;
  own->emax = 99999;
  own->emin = -99999;
  decNumberFromString(value(*this), text.c_str(), own);
}

PeerNumber::~PeerNumber() {
  std::free(number);
  delete contextOf(*this);
}

PeerOperation peerOperation(const std::string &name) {
  static const std::map<std::string, PeerOperation> operations = {
      {"add", two<decNumberAdd>},
      {"subtract", two<decNumberSubtract>},
      {"multiply", two<decNumberMultiply>},
      {"divide", two<decNumberDivide>},
      {"pow", two<decNumberPower>},
      {"sqrt", one<decNumberSquareRoot>},
      {"log", one<decNumberLn>},
      {"log10", one<decNumberLog10>},
      {"exp", one<decNumberExp>},
  };
  const auto found = operations.find(name);
  return found == operations.end() ? nullptr : found->second;
}

}  // namespace bench
