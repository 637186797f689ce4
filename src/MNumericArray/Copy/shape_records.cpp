// Shape records, byte counts, and integers of other widths.
#include <algorithm>
#include <limits>

#include "Includes/element_types.h"
#include "MNumericArray/Allocate/array_record.h"
#include "velorim/array_services.h"
#include "velorim/memory.h"

uint64_t MNumericArray_getByteCount(const MNumericArray* array) VLM_NOEXCEPT {
  if (array == nullptr) return 0;
  uint64_t bytes = zalloc_round(sizeof(MNumericArray), 0);
  if (array->rank != 0) bytes += zalloc_round(static_cast<uint64_t>(array->rank) * sizeof(mint), 0);
  if (array->data != nullptr) {
    bytes += zalloc_round(vlm::array_bytes(array),
                          vlm::data_is_aligned16(static_cast<int32_t>(array->elementType)));
  }
  return bytes;
}

uint64_t MTensor_getByteCount(const MTensor* array) VLM_NOEXCEPT { return MNumericArray_getByteCount(array); }

TensorProperty* TensorProperty_new(mint rank) VLM_NOEXCEPT {
  const mint entries = std::max<mint>(rank, 2);
  auto* const property = static_cast<TensorProperty*>(zalloc(sizeof(TensorProperty), 0, FailFatal));
  auto* const dims = static_cast<mint*>(kCalloc(static_cast<uint64_t>(entries), sizeof(mint), 0, FailFatal));
  *property = {vlm::integer_precision, dims, rank, 0, 0};
  return property;
}

void TensorProperty_delete(TensorProperty* property) VLM_NOEXCEPT {
  if (property == nullptr) return;
  zfree(property->dims);
  zfree(property);
}

void TensorProperty_copyValues(TensorProperty* target, const TensorProperty* source) VLM_NOEXCEPT {
  if (source->rank > 0) std::copy_n(source->dims, source->rank, target->dims);
  target->tensorType = source->tensorType;
  target->flags = source->flags;
  target->precision = source->precision;
}

TensorProperty* TensorProperty_copy(const TensorProperty* source) VLM_NOEXCEPT {
  if (source == nullptr) return nullptr;
  TensorProperty* const copy = TensorProperty_new(source->rank);
  TensorProperty_copyValues(copy, source);
  return copy;
}

int32_t IntFromMint(int32_t* target, mint value) VLM_NOEXCEPT {
  *target = static_cast<int32_t>(value);
  return *target == value;
}

int32_t IntFromMintArray(int32_t* target, const mint* source, mint count) VLM_NOEXCEPT {
  for (mint i = 0; i < count; ++i) {
    if (!IntFromMint(target + i, source[i])) return 0;
  }
  return 1;
}

mint* MintFromIntArray(mint* target, const int32_t* source, mint count) VLM_NOEXCEPT {
  // Byte-wise reads and writes: the two may be one block seen as both types.
  for (mint i = count; i-- > 0;) {
    int32_t narrow;
    __builtin_memcpy(&narrow, source + i, sizeof narrow);
    const mint wide = narrow;
    __builtin_memcpy(target + i, &wide, sizeof wide);
  }
  return target;
}

int32_t MInt32Q(mint value) VLM_NOEXCEPT {
  constexpr mint most = std::numeric_limits<int32_t>::max();
  return value >= -most && value <= most;
}
