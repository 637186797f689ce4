// The end of arrays, and their reference counts. Every record that ends does so in MNumericArray_delete.
#include "MNumericArray/Allocate/array_record.h"
#include "MNumericArray/MemoryCheck/memory_check.h"
#include "velorim/memory.h"

namespace {

/// Arrays that somebody else ends.
bool outlives_deletion(const MNumericArray* array) {
  return (array->flags & (ArrayFlagInExpr | ArrayFlagEternal)) != 0;
}

}  // namespace

void MNumericArray_freeMemory(MNumericArray* array) VLM_NOEXCEPT {
  if (array == nullptr) return;
  zfree(array->data);
  zfree(array->dims);
  const mint refCount = array->refCount;
  MNumericArray_initialize(array);
  array->refCount = refCount;
}

void MNumericArray_delete(MNumericArray* array) VLM_NOEXCEPT {
  if (array == nullptr || outlives_deletion(array)) return;
  if (vlm::memory_check_is_on()) return TensorMemory_free(array);
  MNumericArray_freeMemory(array);
  zfree(array);
}

void MNumericArrayArray_delete(mint count, MNumericArray** arrays) VLM_NOEXCEPT {
  if (arrays == nullptr) return;
  for (mint i = 0; i < count; ++i) MNumericArray_delete(arrays[i]);
  zfree(arrays);
}

void FreeMTensor(MTensor* array) VLM_NOEXCEPT { MNumericArray_delete(array); }
void FreeMNumericArray(MNumericArray* array) VLM_NOEXCEPT { MNumericArray_delete(array); }

void MTensor_release(MTensor* array) VLM_NOEXCEPT {
  if (array->refCount-- == 1) MNumericArray_delete(array);
}

mint MNumericArray_RefCountIncrement(MNumericArray* array) VLM_NOEXCEPT { return array->refCount++; }
mint MNumericArray_RefCountDecrement(MNumericArray* array) VLM_NOEXCEPT { return array->refCount--; }
mint MTensor_RefCountIncrement(MTensor* array) VLM_NOEXCEPT { return MNumericArray_RefCountIncrement(array); }
mint MTensor_RefCountDecrement(MTensor* array) VLM_NOEXCEPT { return MNumericArray_RefCountDecrement(array); }

MTensor* mtensor_null(void) VLM_NOEXCEPT { return nullptr; }
MNumericArray* mnumericarray_null(void) VLM_NOEXCEPT { return nullptr; }
