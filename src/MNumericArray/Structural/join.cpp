// Arrays behind each other, along the first dimension or any other.
#include <algorithm>
#include <span>

#include "MNumericArray/Copy/element_copy.h"
#include "MNumericArray/Structural/result_array.h"
#include "Memory/working_space.h"
#include "velorim/status.h"
#include "velorim/structural.h"

namespace {

using array_list = std::span<MNumericArray* const>;

int64_t product(const mint* first, const mint* last) {
  mint result = 1;
  for (; first != last; ++first) result *= *first;
  return result;
}

/// 0, or what keeps the arrays from being joined along dimension `at`, tested array by array.
int32_t check_alike(array_list arrays, mint at) {
  const MNumericArray* const first = arrays[0];
  for (const MNumericArray* array : arrays) {
    if (array == nullptr) return ArrayStatusNullArgument;
    if (array->rank != first->rank) return LibraryDimensionError;
    for (mint i = 0; i < first->rank; ++i) {
      if (i != at && array->dims[i] != first->dims[i]) return LibraryDimensionError;
    }
    if (array->elementType != first->elementType) return LibraryNumericalError;
  }
  return ArrayStatusOk;
}

/// The dimensions of the result; false if the sum overflows or memory is short.
bool joined_dimensions(array_list arrays, mint at, vlm::memory::working_space<mint>& dims) {
  if (!dims) return false;
  std::copy_n(arrays[0]->dims, arrays[0]->rank, dims.begin());
  mint sum = 0;
  for (const MNumericArray* array : arrays) {
    if (__builtin_add_overflow(sum, array->dims[at], &sum)) return false;
  }
  dims[static_cast<uint64_t>(at)] = sum;
  return true;
}

/// For each index over the dimensions before `at` each array gives one block in turn.
void interleave(MNumericArray* result, array_list arrays, mint at) {
  if (result->flattenedLength == 0) return;
  const mint bytes = vlm::element_bytes_of(result);
  const mint outer = product(result->dims, result->dims + at);
  char* target = static_cast<char*>(result->data);
  for (mint i = 0; i < outer; ++i) {
    for (const MNumericArray* array : arrays) {
      const mint block = array->flattenedLength / outer;
      vlm::copy_run(target, static_cast<const char*>(array->data) + i * block * bytes, block, bytes);
      target += block * bytes;
    }
  }
}

}  // namespace

int32_t MNumericArray_join(MNumericArray** target, MNumericArray* const* arrays, mint count) VLM_NOEXCEPT {
  if (target == nullptr || (count > 0 && (arrays == nullptr || arrays[0] == nullptr)))
    return ArrayStatusNullArgument;
  if (count < 1) {
    const mint none = 0;
    MNumericArray* const empty =
        MNumericArray_newAllocatedCommon(MNumericArrayTypeInteger64, 1, &none, FailReport);
    if (empty == nullptr) return ArrayStatusNoMemory;
    *target = empty;
    return ArrayStatusOk;
  }
  const array_list all(arrays, static_cast<size_t>(count));
  const MNumericArray* const first = arrays[0];
  if (first->rank < 1) return LibraryRankError;
  if (const int32_t bad = check_alike(all, 0)) return bad;
  vlm::memory::working_space<mint> dims(static_cast<uint64_t>(first->rank), FailReport);
  if (!joined_dimensions(all, 0, dims)) return ArrayStatusNoMemory;
  MNumericArray* const result = MNumericArray_newAllocatedCommon(static_cast<int32_t>(first->elementType),
                                                                 first->rank, dims.data(), FailReport);
  if (result == nullptr) return ArrayStatusNoMemory;
  interleave(result, all, 0);
  *target = result;
  return ArrayStatusOk;
}

int32_t MTensor_Join(MTensor** target, MTensor* const* arrays, mint count) VLM_NOEXCEPT {
  return MNumericArray_join(target, arrays, count);
}

int32_t MTensor_joinDimension(MTensor* target, mint count, MTensor* const* arrays, mint level) VLM_NOEXCEPT {
  if (target == nullptr || (count > 0 && (arrays == nullptr || arrays[0] == nullptr)))
    return ArrayStatusNullArgument;
  if (count < 1 || level < 1 || level > arrays[0]->rank) return LibraryRankError;
  const array_list all(arrays, static_cast<size_t>(count));
  const MTensor* const first = arrays[0];
  if (const int32_t bad = check_alike(all, level - 1)) return bad;
  vlm::memory::working_space<mint> dims(static_cast<uint64_t>(first->rank), FailReport);
  if (!joined_dimensions(all, level - 1, dims)) return ArrayStatusNoMemory;
  vlm::result_array result(&target, std::span<const MNumericArray* const>(arrays, all.size()));
  const int32_t status = result.allocate(static_cast<int32_t>(first->elementType), first->rank, dims.data());
  if (status != ArrayStatusOk) return status;
  interleave(result.get(), all, level - 1);
  return result.commit();
}
