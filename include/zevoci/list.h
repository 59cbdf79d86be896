/// The generic list of untyped pointers that handles keep their children and records in.
#pragma once

#include <oratypes.h>

#include <iterator>

#include "zevoci/api.h"

struct ListCell {
  void *data;
  ListCell *next;
};

/// A null pointer is a valid empty list. The elements belong to the caller.
struct List {
  ub4 length;
  ListCell *head;
  ListCell *tail;
};

extern "C" {
/// A list of one cell whose data is null; null when memory runs out.
ZEV_HELPER List *new_list();
/// Appends `data` and returns the list, a new one for a null `list`; null when memory
/// runs out.
ZEV_HELPER List *lappend(List *list, void *data);
/// Inserts `data` behind `cell` of `list`; returns the new cell, null when either is
/// null.
ZEV_HELPER ListCell *lappend_cell(List *list, ListCell *cell, void *data);
/// Puts `data` in front and returns the list, a new one for a null `list`.
ZEV_HELPER List *lcons(void *data, List *list);
/// The element at `n`, counted from 0; null for a null list and for `n` equal to the
/// length.
ZEV_HELPER void *list_nth(const List *list, ub4 n);
/// A new list of the same elements.
ZEV_HELPER List *list_copy(const List *list);
ZEV_HELPER ListCell *list_head(const List *list);
ZEV_HELPER ListCell *list_tail(const List *list);
ZEV_HELPER ub4 list_length(const List *list);
/// 1 when `data` is an element, else 0.
ZEV_HELPER int list_member(const List *list, const void *data);
/// Compares `text` with each element as a string, without regard to case, over the length
/// of `text`; the position of the first match counted from 1, or 0.
ZEV_HELPER int is_member_of_list(const List *list, const char *text);
/// Frees the cells and the list, not the elements.
ZEV_HELPER void list_free(List *list);
/// Removes the first cell with `data`. The list is freed with its only cell, so that the
/// caller stores the result: null then, `list` otherwise.
ZEV_HELPER List *list_delete(List *list, const void *data);
/// Frees each element and leaves null in its cell.
ZEV_HELPER void free_list_members(List *list);
/// Prints each element as text to standard output.
ZEV_HELPER void print_list(const List *list);
/// Prints each element as an address to standard output.
ZEV_HELPER void print_list_ptrs(const List *list);
}

namespace zev {

/// The elements of a list as a range of `T *`. The current cell may not be removed in the
/// walk.
template <class T>
class Elements {
 public:
  class Iterator {
   public:
    using iterator_category = std::forward_iterator_tag;
    using value_type = T *;
    using difference_type = std::ptrdiff_t;
    using pointer = T **;
    using reference = T *;

    explicit Iterator(ListCell *cell) : cell_(cell) {}
    T *operator*() const { return static_cast<T *>(cell_->data); }
    Iterator &operator++() {
      cell_ = cell_->next;
      return *this;
    }
    bool operator==(const Iterator &) const = default;

   private:
    ListCell *cell_;
  };

  explicit Elements(const List *list) : head_(list ? list->head : nullptr) {}
  Iterator begin() const { return Iterator(head_); }
  Iterator end() const { return Iterator(nullptr); }

 private:
  ListCell *head_;
};

}  // namespace zev
