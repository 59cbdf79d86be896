// zevoci_bench_cells: one field into one buffer, by hand and through the library's
// dispatch, without a server.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <functional>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/cells_by_hand.h"
#include "bench/error_handle.h"
#include "bench/measure.h"
#include "types/conversion_dispatch.h"
#include "types/number.h"
#include "types/server_types.h"

namespace bench {
namespace {

constexpr int kFields = 4096;
constexpr int kPasses = 200;

/// One pair of types and the fields that cross it.
struct Pair {
  const char *name;
  Oid oid;
  ub2 type;
  ub4 size;
  ByHand byHand;
  std::vector<std::string> fields;
};

std::string digitsOf(std::mt19937 &random, std::size_t count) {
  std::string digits(count, '0');
  for (char &c : digits) c = static_cast<char>('0' + random() % 10);
  return digits;
}

std::vector<std::string> fieldsBy(
    const std::function<std::string(std::mt19937 &)> &make) {
  std::mt19937 random(20);
  std::vector<std::string> fields(kFields);
  std::generate(fields.begin(), fields.end(), [&] { return make(random); });
  return fields;
}

std::string integerField(std::mt19937 &random) {
  return std::to_string(static_cast<int>(random()) >> random() % 32);
}
std::string textField(std::mt19937 &random) {
  return std::string(random() % 40, static_cast<char>('a' + random() % 26)) + "z";
}
std::string binaryField(std::mt19937 &random) {
  std::string field = "\\x";
  for (auto bytes = random() % 40 + 1; bytes > 0; --bytes) {
    field += "0123456789abcdef"[random() % 16];
    field += "0123456789abcdef"[random() % 16];
  }
  return field;
}
std::string numericField(std::mt19937 &random) {
  return (random() % 2 ? "-" : "") + std::to_string(random() % 9 + 1) +
         digitsOf(random, random() % 12) + "." + digitsOf(random, random() % 7 + 1) +
         std::to_string(random() % 9 + 1);
}

std::vector<Pair> pairs() {
  return {
      {"INT4 text to int", INT4OID, SQLT_INT, 4, integerByHand, fieldsBy(integerField)},
      {"numeric text to VARNUM", NUMERICOID, SQLT_VNU, 22, varnumByHand,
       fieldsBy(numericField)},
      {"text to STR", TEXTOID, SQLT_STR, kTarget, stringByHand, fieldsBy(textField)},
      {"bytea text to BIN", BYTEAOID, SQLT_BIN, kTarget, binaryByHand,
       fieldsBy(binaryField)},
  };
}

/// All fields of a pair, `kPasses` times, by `convert`.
template <class Convert>
double timeOf(const Pair &pair, Cell &cell, Convert &&convert) {
  return seconds([&] {
    for (int pass = 0; pass < kPasses; ++pass) {
      for (const std::string &field : pair.fields) {
        cell.length = pair.size;
        convert(field, cell);
        asm volatile("" : : "r"(&cell) : "memory");
      }
    }
  });
}

/// Whether both ways give the same bytes for every field.
template <class Convert>
void checkSame(const Pair &pair, Convert &&convert) {
  for (const std::string &field : pair.fields) {
    Cell byHand{}, ours{};
    ours.length = pair.size;
    pair.byHand(field.c_str(), static_cast<int>(field.size()), byHand);
    convert(field, ours);
    if (byHand.length != ours.length ||
        std::memcmp(byHand.bytes, ours.bytes, ours.length) != 0)
      throw std::runtime_error(std::string(pair.name) + ": differs at " + field);
  }
}

template <class Convert>
Report compare(const Pair &pair, const char *road, int rounds, Convert convert) {
  checkSame(pair, convert);
  const auto byHand = [&pair] {
    Cell cell;
    return timeOf(pair, cell, [&pair](const std::string &field, Cell &into) {
      pair.byHand(field.c_str(), static_cast<int>(field.size()), into);
    });
  };
  const auto ours = [&pair, convert] {
    Cell cell;
    return timeOf(pair, cell, convert);
  };
  return run({.name = std::string(pair.name) + road,
              .unit = "ns/cell",
              .factor = 1e9 / kFields / kPasses,
              .libpq = byHand,
              .ours = ours},
             rounds);
}

/// As a fetch converts: the pair is looked up once a column.
Report compareFetch(OCIError *errhp, const Pair &pair, int rounds) {
  const auto column = zev::conversionOf(pair.oid, pair.type, nullptr);
  return compare(pair, "", rounds, [errhp, column](const std::string &field, Cell &cell) {
    zev::convertField(errhp, column,
                      {field.c_str(), static_cast<sb4>(field.size()), 0, false},
                      {cell.bytes, &cell.length, &cell.indicator, &cell.returnCode});
  });
}

/// The pair looked up for each cell.
Report compareLookup(OCIError *errhp, const Pair &pair, int rounds) {
  return compare(pair, ", PQ2OCIType", rounds,
                 [errhp, &pair](const std::string &field, Cell &cell) {
                   PQ2OCIType(errhp, pair.oid, field.c_str(),
                              static_cast<sb4>(field.size()), 0, pair.type, cell.bytes,
                              &cell.length, &cell.indicator, &cell.returnCode, 0);
                 });
}

int measureAll(int rounds) {
  const ErrorHandle handle;
  std::vector<Report> reports;
  for (const Pair &pair : pairs()) {
    reports.push_back(compareFetch(handle.errhp, pair, rounds));
    reports.push_back(compareLookup(handle.errhp, pair, rounds));
  }
  printTable(reports);
  return 0;
}

}  // namespace
}  // namespace bench

int main(int argc, char **argv) {
  try {
    return bench::measureAll(argc > 1 ? std::max(1, std::atoi(argv[1])) : 7);
  } catch (const std::exception &failure) {
    std::fprintf(stderr, "zevoci_bench_cells: %s\n", failure.what());
    return 2;
  }
}
