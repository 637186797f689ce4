// Patterns and zeros.
#include "Includes/element_types.h"
#include "MNumericArray/Copy/element_copy.h"
#include "velorim/array_services.h"

namespace {

constexpr char zero_element[16] = {};

mint bytes_of(int32_t type) { return static_cast<mint>(vlm::element_bytes(type)); }

/// (length - start) / step, truncated; 0 for a step of 0.
mint position_count(mint length, mint start, mint step) {
  return step == 0 ? 0 : static_cast<mint>((static_cast<__int128>(length) - start) / step);
}

}  // namespace

void MNumericArrayData_setData(int32_t type, void* data, mint step, const void* values, mint valueCount,
                               mint count) VLM_NOEXCEPT {
  vlm::fill_pattern(data, step, values, valueCount, count, bytes_of(type));
}

void MNumericArray_setData(MNumericArray* array, mint start, mint step, const void* values,
                           mint valueCount) VLM_NOEXCEPT {
  const auto type = static_cast<int32_t>(array->elementType);
  const mint count = position_count(array->flattenedLength, start, step);
  if (count < 1) return;
  MNumericArrayData_setData(type, static_cast<char*>(array->data) + start * bytes_of(type), step, values,
                            valueCount, count);
}

void MNumericArrayData_setZero(int32_t type, void* data, mint step, mint count) VLM_NOEXCEPT {
  MNumericArrayData_setData(type, data, step, zero_element, 1, count);
}

void MNumericArray_setZero(MNumericArray* array, mint start, mint step) VLM_NOEXCEPT {
  MNumericArray_setData(array, start, step, zero_element, 1);
}

void MNumericArray_zero(MNumericArray* array) VLM_NOEXCEPT {
  const mint bytes = bytes_of(static_cast<int32_t>(array->elementType));
  if (bytes != 0) vlm::fill_zero(array->data, array->flattenedLength, bytes);
}

void MTensor_zero(MTensor* array) VLM_NOEXCEPT { MNumericArray_zero(array); }
void MTensor_setData(MTensor* array, mint start, mint step, const void* values,
                     mint valueCount) VLM_NOEXCEPT {
  MNumericArray_setData(array, start, step, values, valueCount);
}
