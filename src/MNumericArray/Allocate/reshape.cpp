// Giving a record its type and shape, with whatever storage it has. Dimensions are staged first and stored last, so that a
// failure of either block leaves the array as it was.
#include <algorithm>

#include "Includes/assertion.h"
#include "MNumericArray/Allocate/array_record.h"
#include "MNumericArray/Allocate/shape_argument.h"
#include "MNumericArray/Allocate/staged_dims.h"

namespace {

using vlm::staged_dims;

bool has_dimensions(const MNumericArray* array, mint rank, const mint* dims) {
  return array->dims != nullptr && array->rank == rank && std::equal(dims, dims + rank, array->dims);
}

/// 0 or 403; under FailFatal what zalloc and reallocateArrayData do.
int32_t store_shape(MNumericArray* array, int32_t type, mint count, staged_dims& dims, int32_t failMode) {
  if (!dims.ready()) return ArrayStatusNoMemory;
  const int32_t status = vlm::reallocateArrayData(array, type, count, failMode);
  if (status != ArrayStatusOk) return status;
  dims.commit(array, count);
  VELORIM_ASSERT(vlm::array_is_valid(array), "array record is consistent", "store_shape");
  return ArrayStatusOk;
}

int32_t reshape(MNumericArray* array, int32_t type, mint rank, const mint* dims, int32_t failMode) {
  if (has_dimensions(array, rank, dims)) {
    if (array->data == nullptr) {
      vlm::applyElementType(array, type);
      return ArrayStatusOk;
    }
    if (array->elementType == static_cast<uint32_t>(type)) return ArrayStatusOk;
    return vlm::reallocateArrayData(array, type, array->flattenedLength, failMode);
  }
  const mint count = vlm::checked_element_count(rank, dims);
  if (count == vlm::element_count_failed) return vlm::report_size_overflow();
  auto staged = staged_dims::copy(array, rank, dims, failMode);
  return store_shape(array, type, count, staged, failMode);
}

}  // namespace

int32_t MNumericArray_allocateMemoryCommon(MNumericArray* array, int32_t type, mint rank, const mint* dims,
                                           int32_t failMode) VLM_NOEXCEPT {
  if (array == nullptr) return ArrayStatusNullArgument;
  if (const int32_t bad = vlm::check_dimensions(rank, dims)) return bad;
  const int32_t status = reshape(array, type, vlm::effective_rank(rank), dims, failMode);
  if (status != ArrayStatusOk && failMode == FailFatal) nomem();
  return status;
}

int32_t MNumericArray_allocateCommon(MNumericArray** arrayInOut, int32_t type, mint rank, const mint* dims,
                                     int32_t failMode) VLM_NOEXCEPT {
  if (arrayInOut == nullptr) return ArrayStatusNullArgument;
  if (*arrayInOut != nullptr)
    return MNumericArray_allocateMemoryCommon(*arrayInOut, type, rank, dims, failMode);
  MNumericArray* array = MNumericArray_new();
  const int32_t status = MNumericArray_allocateMemoryCommon(array, type, rank, dims, failMode);
  if (status == ArrayStatusOk) {
    *arrayInOut = array;
  } else {
    MNumericArray_delete(array);
  }
  return status;
}

int32_t MNumericArray_allocateMemoryLikeCommon(MNumericArray* array, const MNumericArray* model,
                                               int32_t failMode) VLM_NOEXCEPT {
  if (model == nullptr) return ArrayStatusNullArgument;
  return MNumericArray_allocateMemoryCommon(array, static_cast<int32_t>(model->elementType), model->rank,
                                            model->dims, failMode);
}

int32_t MNumericArray_initializeUsingDims(MNumericArray* record, int32_t type, mint rank, mint* dims,
                                          int32_t copyDims, int32_t failMode) VLM_NOEXCEPT {
  if (record == nullptr) return ArrayStatusNullArgument;
  if (const int32_t bad = vlm::check_dimensions(rank, dims)) return bad;
  rank = vlm::effective_rank(rank);
  // The record's own block is its own already.
  const bool copies = copyDims != 0 || dims == record->dims;
  auto staged = copies ? staged_dims::copy(record, rank, dims, failMode) : staged_dims::take_over(rank, dims);
  mint count = 0;
  if (const int32_t bad = vlm::count_elements(rank, dims, failMode, count)) return bad;
  return store_shape(record, type, count, staged, failMode);
}
