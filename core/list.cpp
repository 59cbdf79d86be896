#include "zevoci/list.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "zevoci/text.h"

namespace {

ListCell *newCell(void *data, ListCell *next) {
  auto *cell = static_cast<ListCell *>(std::malloc(sizeof(ListCell)));
  if (cell) *cell = {data, next};
  return cell;
}

List *listOf(void *data) {
  ListCell *cell = newCell(data, nullptr);
  if (!cell) return nullptr;
  auto *list = static_cast<List *>(std::malloc(sizeof(List)));
  if (!list) {
    std::free(cell);
    return nullptr;
  }
  *list = {1, cell, cell};
  return list;
}

}  // namespace

extern "C" {

List *new_list() {
  return listOf(nullptr);
}

List *lappend(List *list, void *data) {
  if (!list) return listOf(data);
  return lappend_cell(list, list->tail, data) ? list : nullptr;
}

ListCell *lappend_cell(List *list, ListCell *cell, void *data) {
  if (!list || !cell) return nullptr;
  ListCell *added = newCell(data, cell->next);
  if (!added) return nullptr;
  cell->next = added;
  if (list->tail == cell) list->tail = added;
  ++list->length;
  return added;
}

List *lcons(void *data, List *list) {
  if (!list) return listOf(data);
  ListCell *cell = newCell(data, list->head);
  if (!cell) return nullptr;
  list->head = cell;
  ++list->length;
  return list;
}

void *list_nth(const List *list, ub4 n) {
  if (!list || n >= list->length) return nullptr;
  if (n == list->length - 1) return list->tail->data;
  const ListCell *cell = list->head;
  while (n-- > 0) cell = cell->next;
  return cell->data;
}

List *list_copy(const List *list) {
  List *copy = nullptr;
  for (void *data : zev::Elements<void>(list)) {
    List *longer = lappend(copy, data);
    if (!longer) {
      list_free(copy);
      return nullptr;
    }
    copy = longer;
  }
  return copy;
}

ListCell *list_head(const List *list) {
  return list ? list->head : nullptr;
}
ListCell *list_tail(const List *list) {
  return list ? list->tail : nullptr;
}
ub4 list_length(const List *list) {
  return list ? list->length : 0;
}

int list_member(const List *list, const void *data) {
  for (void *element : zev::Elements<void>(list)) {
    if (element == data) return 1;
  }
  return 0;
}

int is_member_of_list(const List *list, const char *text) {
  const std::size_t length = std::strlen(text);
  int position = 0;
  for (const char *element : zev::Elements<char>(list)) {
    ++position;
    if (oci_strncasecmp(element, text, length) == 0) return position;
  }
  return 0;
}

void list_free(List *list) {
  if (!list) return;
  for (ListCell *cell = list->head; cell;) {
    ListCell *next = cell->next;
    std::free(cell);
    cell = next;
  }
  std::free(list);
}

List *list_delete(List *list, const void *data) {
  ListCell *before = nullptr;
  for (ListCell *cell = list_head(list); cell; before = cell, cell = cell->next) {
    if (cell->data != data) continue;
    if (list->length == 1) {
      list_free(list);
      return nullptr;
    }
    (before ? before->next : list->head) = cell->next;
    if (list->tail == cell) list->tail = before;
    --list->length;
    std::free(cell);
    return list;
  }
  return list;
}

void free_list_members(List *list) {
  for (ListCell *cell = list_head(list); cell; cell = cell->next) {
    std::free(cell->data);
    cell->data = nullptr;
  }
}

void print_list(const List *list) {
  int n = 0;
  for (const char *element : zev::Elements<char>(list)) {
    std::printf("\n[Param # %d][%s]\n", n++, element);
  }
}

void print_list_ptrs(const List *list) {
  int n = 0;
  for (void *element : zev::Elements<void>(list)) {
    std::printf("\n[Param # %d][%p]\n", n++, element);
  }
}

}  // extern "C"
