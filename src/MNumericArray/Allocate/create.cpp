// New arrays. Every record is made by MNumericArray_new, and one whose shape or elements cannot be had is given back through
// MNumericArray_delete, with the blocks that it took over.
#include <algorithm>
#include <cstring>

#include "Includes/assertion.h"
#include "MNumericArray/Allocate/array_record.h"
#include "MNumericArray/Allocate/shape_argument.h"
#include "MNumericArray/Allocate/staged_dims.h"
#include "MNumericArray/MemoryCheck/memory_check.h"

namespace {

using vlm::staged_dims;

constexpr int32_t copy_dims = 1;
constexpr int32_t take_dims = 0;

MNumericArray* new_shaped(int32_t type, mint rank, mint* dims, int32_t copyDims, int32_t failMode) {
  MNumericArray* array = MNumericArray_new();
  if (MNumericArray_initializeUsingDims(array, type, rank, dims, copyDims, failMode) == ArrayStatusOk)
    return array;
  MNumericArray_delete(array);
  return nullptr;
}

/// Keeps the record's data for `count` elements of the type if it lies right for them, and moves it otherwise.
int32_t settle_data(MNumericArray* array, int32_t type, mint count, int32_t failMode) {
  uint64_t bytes = 0;
  if (!vlm::data_bytes(count, type, bytes) || bytes == 0 || !vlm::is_aligned_for(array->data, type)) {
    return vlm::reallocateArrayData(array, type, count, failMode);
  }
  vlm::applyElementType(array, type);
  return ArrayStatusOk;
}

/// A record over data, which it owns from the start, so that deleting it after a failure frees the block too.
MNumericArray* new_over_data(int32_t type, mint rank, const mint* dims, void* data, mint* takenDims,
                             int32_t failMode) {
  rank = vlm::effective_rank(rank);
  MNumericArray* array = MNumericArray_new();
  array->data = data;
  auto staged = takenDims != nullptr ? staged_dims::take_over(rank, takenDims)
                                     : staged_dims::copy(array, rank, dims, failMode);
  mint count = 0;
  if (staged.ready() && vlm::count_elements(rank, dims, failMode, count) == ArrayStatusOk &&
      settle_data(array, type, count, failMode) == ArrayStatusOk) {
    staged.commit(array, count);
    VELORIM_ASSERT(vlm::array_is_valid(array), "array record is consistent", "new_over_data");
    return array;
  }
  MNumericArray_delete(array);
  return nullptr;
}

/// A zero in front of the last dimension: no elements, in a shape that a nested list of data cannot have.
bool is_hollow(mint rank, const mint* dims) {
  return std::any_of(dims, dims + std::max<mint>(rank - 1, 0), [](mint n) { return n < 1; });
}

}  // namespace

MNumericArray* MNumericArray_new(void) VLM_NOEXCEPT {
  auto* record = static_cast<MNumericArray*>(zalloc(sizeof(MNumericArray), 0, FailFatal));
  MNumericArray_initialize(record);
  if (vlm::memory_check_is_on()) TensorMemory_addNew(record);
  return record;
}

void MNumericArray_initialize(MNumericArray* record) VLM_NOEXCEPT {
  *record = MNumericArray{};
  record->precision = vlm::integer_precision;
  record->refCount = 1;
}

MNumericArray* MNumericArray_newAllocatedCommon(int32_t type, mint rank, const mint* dims,
                                                int32_t failMode) VLM_NOEXCEPT {
  return new_shaped(type, rank, const_cast<mint*>(dims), copy_dims, failMode);
}

MNumericArray* MNumericArray_newUsingDimsCommon(int32_t type, mint rank, mint* dims,
                                                int32_t failMode) VLM_NOEXCEPT {
  return new_shaped(type, rank, dims, take_dims, failMode);
}

MNumericArray* MNumericArray_newUsingDataArrayCommon(int32_t type, mint rank, const mint* dims, void* data,
                                                     int32_t failMode) VLM_NOEXCEPT {
  if (data == nullptr) return MNumericArray_newAllocatedCommon(type, rank, dims, failMode);
  if (vlm::check_dimensions(rank, dims) != ArrayStatusOk) return nullptr;
  return new_over_data(type, rank, dims, data, nullptr, failMode);
}

MNumericArray* MNumericArray_newUsingDataArrayAndDimsCommon(int32_t type, mint rank, mint* dims, void* data,
                                                            int32_t failMode) VLM_NOEXCEPT {
  if (data == nullptr) return MNumericArray_newUsingDimsCommon(type, rank, dims, failMode);
  if (vlm::check_dimensions(rank, dims) != ArrayStatusOk) return nullptr;
  return new_over_data(type, rank, dims, data, dims, failMode);
}

MNumericArray* MNumericArray_newCopyFromDataArrayCommon(int32_t type, mint rank, const mint* dims,
                                                        const void* data, int32_t failMode) VLM_NOEXCEPT {
  if (rank > 0 && dims == nullptr) return nullptr;
  const mint count = NumberOfElementsCommon(rank, dims, FailFatal);
  if (count == 0 ? is_hollow(rank, dims) : data == nullptr) return nullptr;
  MNumericArray* array = MNumericArray_newAllocatedCommon(type, rank, dims, failMode);
  if (array != nullptr && count > 0) std::memcpy(array->data, data, vlm::array_bytes(array));
  return array;
}
