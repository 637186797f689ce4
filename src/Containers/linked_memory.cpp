// Linked memory: links whose payload stands behind them in the same block, or anywhere.
#include "velorim/containers.h"
#include "velorim/memory.h"

MemoryLinkedList* MemoryLinkedList_newLink(uint64_t size) VLM_NOEXCEPT {
  uint64_t bytes;
  if (__builtin_add_overflow(size, uint64_t{sizeof(MemoryLinkedList)}, &bytes)) bytes = ~uint64_t{0};
  // At a multiple of 16, as is the payload then.
  auto* const link = static_cast<MemoryLinkedList*>(zalloc(bytes, 1, FailFatal));
  *link = {size == 0 ? nullptr : link + 1, nullptr};
  return link;
}

void MemoryLinkedList_visit(MemoryLinkedList* list, void (*function)(void* data, void* argument),
                            void* argument) VLM_NOEXCEPT {
  for (; list != nullptr; list = list->next) function(list->data, argument);
}

MemoryLinkedList* MemoryLinkedList_copy(MemoryLinkedList* list, void* (*function)(void* data)) VLM_NOEXCEPT {
  MemoryLinkedList* copy = nullptr;
  MemoryLinkedList** tail = &copy;
  for (; list != nullptr; list = list->next) {
    *tail = MemoryLinkedList_newLink(0);
    (*tail)->data = function(list->data);
    tail = &(*tail)->next;
  }
  return copy;
}

void MemoryLinkedList_delete(MemoryLinkedList* list, void (*function)(void* data)) VLM_NOEXCEPT {
  while (list != nullptr) {
    MemoryLinkedList* const next = list->next;
    if (function != nullptr) function(list->data);
    zfree(list);
    list = next;
  }
}
