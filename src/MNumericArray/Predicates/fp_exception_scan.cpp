// Whether an array or a run of data holds a NaN or an infinity.
#include <atomic>

#include "Includes/vlm_fp_exception.h"
#include "MNumericArray/Predicates/fp_exception_team.h"
#include "velorim/array.h"
#include "velorim/floating_point.h"

namespace vlm {
namespace {

template <class T> bool scan(const T* data, mint count, mint stride) {
  if (count <= 0) return false;
  if (stride < 0) data += (1 - count) * stride;
  if (!parallel::use_team(count, fp_parallel_threshold<T>)) return fp_exception_iterate(data, count, stride);

  std::atomic<bool> found{false};  // a stale value costs a wasted chunk
  parallel::for_chunks(count, fp_parallel_chunk<T>, [&](mint first, mint length) {
    if (found.load(std::memory_order_relaxed)) return;
    if (!fp_exception_iterate(data + first * stride, length, stride)) return;
#pragma omp critical(ovfl_error)
    found.store(true, std::memory_order_relaxed);
  });
  return found.load(std::memory_order_relaxed);
}

}  // namespace
}  // namespace vlm

int32_t MNumericArrayData_fpexceptionQ(int32_t type, mint count, const void* data, mint stride) noexcept {
  bool found = false;
  vlm::with_floating_type(type,
                          [&]<class T>() { found = vlm::scan(static_cast<const T*>(data), count, stride); });
  return found;
}

int32_t MNumericArray_fpexceptionQ(const MNumericArray* array) noexcept {
  if (array == nullptr) return 0;
  return MNumericArrayData_fpexceptionQ(static_cast<int32_t>(array->elementType), array->flattenedLength,
                                        array->data, 1);
}

int32_t TensorOverflowQ(const MTensor* tensor) noexcept { return MNumericArray_fpexceptionQ(tensor); }

int32_t MRealArrayOverflowQ(const mreal* data, mint count) noexcept { return vlm::scan(data, count, 1); }

int32_t MComplexArrayOverflowQ(const mcomplex* data, mint count) noexcept {
  return vlm::scan(data, count, 1);
}
