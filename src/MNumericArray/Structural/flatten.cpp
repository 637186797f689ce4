// Merging the first dimensions.
#include <algorithm>

#include "MNumericArray/Copy/element_copy.h"
#include "MNumericArray/Structural/result_array.h"
#include "Memory/working_space.h"
#include "velorim/structural.h"

int32_t MNumericArray_flatten(MNumericArray** target, MNumericArray* source, mint level) VLM_NOEXCEPT {
  if (target == nullptr || source == nullptr) return ArrayStatusNullArgument;
  if (level < 0) return ArrayStatusBadLevel;
  const mint merged = std::max<mint>(std::min(level, source->rank - 1), 0);
  if (merged == 0 && *target == source) return ArrayStatusOk;
  const mint rank = source->rank - merged;
  vlm::memory::working_space<mint> dims(static_cast<uint64_t>(rank), FailReport);
  if (!dims) return ArrayStatusNoMemory;
  if (rank > 0) {
    std::copy(source->dims + merged, source->dims + source->rank, dims.begin());
    for (mint i = 0; i < merged; ++i) dims[0] *= source->dims[i];
  }
  if (*target == source) {
    // Fewer dimensions than the block has room for: nothing is allocated.
    MNumericArray_resetDimensionsCommon(source, rank, dims.data(), FailReport);
    return ArrayStatusOk;
  }
  const int32_t status = MNumericArray_allocateCommon(target, static_cast<int32_t>(source->elementType), rank,
                                                      dims.data(), FailReport);
  if (status == ArrayStatusOk && source->data != nullptr) {
    vlm::copy_run((*target)->data, source->data, source->flattenedLength, vlm::element_bytes_of(source));
  }
  return status;
}
