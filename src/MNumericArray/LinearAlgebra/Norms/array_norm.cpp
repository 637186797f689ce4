// The norm of all elements of an array, for every element type.
#include "Includes/element_types.h"
#include "MNumericArray/LinearAlgebra/Norms/integer_norm.h"
#include "MNumericArray/LinearAlgebra/Norms/plain_norm.h"
#include "velorim/norms.h"

namespace {

using namespace vlm::norms;

template <class T> int32_t integer_norm(T* result, mint p, mint n, const T* x, mint stride, uint32_t flags) {
  if (n > 0) x += vlm::blas::first_offset(n, stride);
  if (p == infinite_order) {
    const auto largest = largest_magnitude(x, n, stride);
    if (largest > static_cast<decltype(largest)>(std::numeric_limits<T>::max())) return ArrayStatusArithmetic;
    *result = static_cast<T>(largest);
    return ArrayStatusOk;
  }
  if (p != 1) return ArrayStatusBadNormOrder;
  if ((flags & MACHFUNC_CHECK_INTEGER) != 0) {
    const std::optional<T> total = checked_total(x, n, stride);
    if (!total) return ArrayStatusArithmetic;
    *result = *total;
  } else {
    *result = static_cast<T>(wrapped_total(x, n, stride));
  }
  return ArrayStatusOk;
}

}  // namespace

int32_t MNumericArray_vector_norm(void* result, mint p, const MNumericArray* array, mint stride,
                                  uint32_t flags) VLM_NOEXCEPT {
  if (result == nullptr || array == nullptr) return ArrayStatusNullArgument;
  int32_t status = ArrayStatusBadNormOrder;
  vlm::with_element_type(static_cast<int32_t>(array->elementType), [&]<class T>() {
    const mint n = array->flattenedLength;
    const T* const x = static_cast<const T*>(array->data);
    if (x == nullptr && n > 0) {
      status = ArrayStatusNullArgument;
      return;
    }
    if constexpr (vlm::is_integer_element<T>) {
      status = integer_norm(static_cast<T*>(result), p, n, x, stride, flags);
    } else {
      status = store_plain_norm(static_cast<norm_of_element<T>*>(result), p, n, x, stride, flags);
    }
  });
  return status;
}

int32_t MTensor_vector_norm(void* result, mint p, const MTensor* array, mint stride,
                            uint32_t flags) VLM_NOEXCEPT {
  return MNumericArray_vector_norm(result, p, array, stride, flags);
}
