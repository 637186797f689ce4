// The storage of a record: its size and its resizing. Also the invariants that hold between storage, shape and type.
#include "MNumericArray/Allocate/array_record.h"
#include "Memory/accounting.h"
#include "velorim/memory.h"

namespace vlm {

mint checked_element_count(mint rank, const mint* dims) {
  mint count = 1;
  for (mint i = 0; i < rank; ++i) {
    if (dims[i] < 0 || __builtin_mul_overflow(count, dims[i], &count)) return element_count_failed;
  }
  return count;
}

int32_t report_size_overflow() {
  if (memory::heap_accounts* heap = memory::current_heap()) {
    memory::passes_limit(*heap, std::numeric_limits<uint64_t>::max());
  }
  return ArrayStatusNoMemory;
}

int32_t count_elements(mint rank, const mint* dims, int32_t failMode, mint& count) {
  count = checked_element_count(rank, dims);
  if (count != element_count_failed) return ArrayStatusOk;
  if (failMode == FailFatal) nomem();
  return report_size_overflow();
}

int32_t reallocateArrayData(MNumericArray* array, int32_t type, mint count, int32_t failMode) {
  if (count == 0) {
    zfree(array->data);
    array->data = nullptr;
  } else {
    uint64_t bytes = 0;
    if (!data_bytes(count, type, bytes)) {
      if (failMode == FailFatal) nomem();
      return report_size_overflow();
    }
    if (bytes == 0) return ArrayStatusNoMemory;
    void* data = zrealloc(array->data, bytes, data_is_aligned16(type), failMode);
    if (data == nullptr) return ArrayStatusNoMemory;
    array->data = data;
  }
  applyElementType(array, type);
  return ArrayStatusOk;
}

namespace {

bool shape_is_valid(const MNumericArray& array) {
  if (array.rank < 0 || (array.rank > 0) != (array.dims != nullptr)) return false;
  if (array.rank == 0) return array.flattenedLength == 1 || array.flattenedLength == 0;
  const mint count = checked_element_count(array.rank, array.dims);
  return count != element_count_failed && count == array.flattenedLength;
}

bool type_is_valid(const MNumericArray& array) {
  MNumericArray fresh = array;
  applyElementType(&fresh, static_cast<int32_t>(array.elementType));
  return fresh.tensorType == array.tensorType && fresh.flags == array.flags &&
         fresh.precision == array.precision;
}

}  // namespace

bool array_is_valid(const MNumericArray* array) {
  const auto type = static_cast<int32_t>(array->elementType);
  return shape_is_valid(*array) && type_is_valid(*array) &&
         (array->data != nullptr) == (array->flattenedLength != 0) && is_aligned_for(array->data, type);
}

}  // namespace vlm
