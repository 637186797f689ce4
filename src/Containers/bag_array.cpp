// The numbered bags of one library data record.
#include <algorithm>

#include "velorim/containers.h"
#include "velorim/memory.h"

namespace {

/// The first of 1, 2, 4, ... times the capacity (1 at least) that is above an index.
mint capacity_above(mint capacity, mint index) {
  capacity = std::max<mint>(capacity, 1);
  while (capacity <= index) capacity *= 2;
  return capacity;
}

void grow(MBagArray* array, mint capacity) {
  auto** const bags =
      static_cast<MBag**>(kCalloc(static_cast<uint64_t>(capacity), sizeof(MBag*), 0, FailFatal));
  if (array->capacity > 0) std::copy_n(array->bags, array->capacity, bags);
  zfree(array->bags);
  array->bags = bags;
  array->capacity = capacity;
}

}  // namespace

MBagArray* MBagArray_new(void) VLM_NOEXCEPT {
  auto* const array = static_cast<MBagArray*>(zalloc(sizeof(MBagArray), 0, FailFatal));
  *array = {0, -1, nullptr};
  return array;
}

mint MBagArray_newBag(MBagArray* array, int32_t elementType) VLM_NOEXCEPT {
  const mint next = array->lastIndex + 1;
  if (next >= array->capacity) grow(array, capacity_above(array->capacity, next));
  if (array->bags[next] == nullptr) array->bags[next] = MBag_new(elementType);
  array->lastIndex = next;
  return next;
}

void MBagArray_cleanUp(MBagArray* array) VLM_NOEXCEPT {
  if (array == nullptr) return;
  for (mint i = 0; i <= array->lastIndex; ++i) {
    MBag_delete(array->bags[i]);
    array->bags[i] = nullptr;
  }
  array->lastIndex = -1;
}

void MBagArray_delete(MBagArray* array) VLM_NOEXCEPT {
  if (array == nullptr) return;
  MBagArray_cleanUp(array);
  zfree(array->bags);
  zfree(array);
}
