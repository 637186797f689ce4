// Element counts, the dimensions of a record, and their agreement between two records.
#include <algorithm>

#include "MNumericArray/Allocate/array_record.h"
#include "MNumericArray/Allocate/shape_argument.h"
#include "MNumericArray/Allocate/staged_dims.h"

mint NumberOfElementsCommon(mint rank, const mint* dims, int32_t failMode) VLM_NOEXCEPT {
  const bool missing = rank > 0 && dims == nullptr;
  const mint count = missing ? vlm::element_count_failed : vlm::checked_element_count(rank, dims);
  if (count == vlm::element_count_failed && failMode == FailFatal) nomem();
  return count;
}

int32_t MNumericArray_setDimensionsCommon(MNumericArray* array, mint rank, const mint* dims, mint length,
                                          int32_t failMode) VLM_NOEXCEPT {
  if (array == nullptr) return ArrayStatusNullArgument;
  if (rank > 0 && dims == nullptr) return ArrayStatusBadDimensions;
  auto staged = vlm::staged_dims::copy(array, vlm::effective_rank(rank), dims, failMode);
  if (!staged.ready()) return ArrayStatusNoMemory;
  staged.commit(array, length);
  return ArrayStatusOk;
}

void MNumericArray_resetDimensionsCommon(MNumericArray* array, mint rank, const mint* dims,
                                         int32_t failMode) VLM_NOEXCEPT {
  if (array == nullptr || (array->rank == rank && array->dims == dims && rank > 0)) return;
  MNumericArray_setDimensionsCommon(array, rank, dims, array->flattenedLength, failMode);
}

int32_t MNumericArray_compatibleDimensionsQ(const MNumericArray* a, const MNumericArray* b) VLM_NOEXCEPT {
  return std::equal(a->dims, a->dims + std::min(a->rank, b->rank), b->dims) ? 1 : 0;
}

int32_t MNumericArray_maxCompatibleDimensions(const MNumericArray* a, const MNumericArray* b, mint* rankOut,
                                              mint** dimsOut) VLM_NOEXCEPT {
  if (!MNumericArray_compatibleDimensionsQ(a, b)) return 0;
  const MNumericArray* larger = b->rank > a->rank ? b : a;
  *rankOut = larger->rank;
  *dimsOut = larger->dims;
  return 1;
}
