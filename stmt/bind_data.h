/// From the program's bind buffers to the parameter arrays of the client library.
#pragma once

#include <vector>

#include "core/owned.h"
#include "core/wire.h"
#include "zevoci/statement.h"

extern "C" {
/// Converts row `iteration` of every bind of a statement. 0, 1, or the failing status,
/// with no value left behind then.
ZEV_HELPER sword GetOCIBindData(OCIStmt *stmt, OCIError *errhp, ub4 iteration);
/// Makes new arrays of the converted values of `*placeholderBinds`, in "$n" order. The
/// caller frees the arrays; the values stay with the binds. -1 when memory runs out.
ZEV_HELPER sword bindPgValues(List **placeholderBinds, char ***values, int **lengths,
                              int **formats);
/// Frees the converted value of each bind.
ZEV_HELPER void release_binds_pgdata(List *binds);
}

namespace zev {

/// The parameter arrays of one execution; bindPgValues with an owner. Few parameters have
/// their room in the object itself.
class ParameterArrays {
 public:
  /// Takes room for one element per element of `placeholderBinds`. Throws std::bad_alloc.
  explicit ParameterArrays(const List *placeholderBinds);
  ParameterArrays(const ParameterArrays &) = delete;
  ParameterArrays &operator=(const ParameterArrays &) = delete;
  /// Takes over the values that the binds hold at this moment.
  void gather();
  /// What the client library's calls take; `count` is the number of parameters sent.
  wire::Parameters parameters(ub4 count) const;

 private:
  /// Room for what most statements have.
  struct Few {
    static constexpr ub4 kCount = 16;
    const char *values[kCount];
    int lengths[kCount];
    int formats[kCount];
  };

  const List *binds_;
  Few few_ = {};
  std::vector<const char *> manyValues_;
  std::vector<int> manyNumbers_;  ///< lengths, then formats
  const char **values_ = few_.values;
  int *lengths_ = few_.lengths;
  int *formats_ = few_.formats;
};

/// The converted values of many rows, which it owns.
class RowValues {
 public:
  /// Rows of one value per element of `placeholderBinds`, which sends `paramCount`.
  RowValues(const List *placeholderBinds, ub4 paramCount);
  /// Takes the values that the binds of `binds`, those of the statement, hold at this
  /// moment as one more row. Throws std::bad_alloc.
  void take(const List *binds);
  void clear();

  int count() const { return count_; }
  /// Row-major, one element per parameter.
  const char *const *values() const { return values_.data(); }
  const int *lengths() const { return lengths_.data(); }
  const int *formats() const { return formats_.data(); }
  /// The formats of the last row; zeros without one.
  const int *lastFormats() const { return lastFormats_.data(); }

 private:
  const List *binds_;
  ub4 width_;
  int count_ = 0;
  std::vector<const char *> values_;
  std::vector<int> lengths_;
  std::vector<int> formats_;
  std::vector<int> lastFormats_;
  std::vector<Malloced<>> owned_;
};

}  // namespace zev
