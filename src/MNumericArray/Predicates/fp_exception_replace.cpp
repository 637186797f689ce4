// Replacement of the NaNs and infinities of an array.
#include "Includes/vlm_fp_exception_replace.h"
#include "MNumericArray/Predicates/fp_exception_team.h"
#include "velorim/array.h"
#include "velorim/floating_point.h"

namespace vlm {
namespace {

template <class T>
void replace(T* data, mint count, const fp_replacements<typename fp_parts<T>::real>& with) {
  if (!parallel::use_team(count, fp_parallel_threshold<T>))
    return fp_exception_replace_iterate(data, count, with);
  parallel::for_chunks(count, fp_parallel_chunk<T>, [&](mint first, mint length) {
    fp_exception_replace_iterate(data + first, length, with);
  });
}

}  // namespace
}  // namespace vlm

void MNumericArray_fpexception_replace(MNumericArray* array, mreal nanValue, mreal plusInfinity,
                                       mreal minusInfinity) noexcept {
  if (array == nullptr) return;
  vlm::with_floating_type(static_cast<int32_t>(array->elementType), [&]<class T>() {
    using real = typename vlm::fp_parts<T>::real;
    vlm::replace(static_cast<T*>(array->data), array->flattenedLength,
                 vlm::fp_replacements<real>::of(nanValue, plusInfinity, minusInfinity));
  });
}
