/// Where one row of a bind's buffers lies.
#pragma once

#include "zevoci/statement.h"

namespace zev {

/// A length of the program's: 16 bits wide, or the 32 of OCIBindByName2 and its sisters.
class LengthCell {
 public:
  LengthCell(void *at, bool wide) : at_(at), wide_(wide) {}

  explicit operator bool() const { return at_ != nullptr; }
  ub4 get() const { return wide_ ? *static_cast<ub4 *>(at_) : *static_cast<ub2 *>(at_); }
  void set(ub4 length) const {
    if (wide_) {
      *static_cast<ub4 *>(at_) = length;
    } else {
      *static_cast<ub2 *>(at_) = static_cast<ub2>(length);
    }
  }
  static std::size_t width(bool wide) { return wide ? sizeof(ub4) : sizeof(ub2); }

 private:
  void *at_;
  bool wide_;
};

/// The buffers of one row; each may be null.
struct RowBuffers {
  void *value;
  sb2 *indicator;
  LengthCell length;
  ub2 *returnCode;
};

template <class T>
T *rowOf(T *base, ub4 row, std::size_t stride) {
  if (!base) return nullptr;
  return reinterpret_cast<T *>(reinterpret_cast<char *>(base) + row * stride);
}

/// The buffers of row `row`: every skip of an array of structs, or, in plain arrays, one
/// value size and one element.
inline RowBuffers rowBuffers(const OCIBind *bind, ub4 row) {
  const auto stride = [bind](ub4 skip, std::size_t own) {
    return bind->isStruct ? skip : own;
  };
  return {rowOf(static_cast<char *>(bind->valuep), row,
                stride(bind->pvskip, static_cast<std::size_t>(bind->valueSize))),
          rowOf(bind->indp, row, stride(bind->indskip, sizeof(sb2))),
          {rowOf(bind->alenp, row,
                 stride(bind->alskip, LengthCell::width(bind->wideLengths))),
           static_cast<bool>(bind->wideLengths)},
          rowOf(bind->rcodep, row, stride(bind->rcskip, sizeof(ub2)))};
}

/// The statement that takes the cursor of a SQLT_RSET bind; null for the other types and
/// where the bind has none.
inline OCIStmt *childOf(const OCIBind *bind, ub4 row) {
  if (bind->dty != SQLT_RSET) return nullptr;
  return static_cast<OCIStmt *>(rowBuffers(bind, row).value);
}

}  // namespace zev
