// Compensated addition: the sum of numbers with what its rounding lost carried beside it.
#include "Includes/vlm_fp_exception.h"
#include "velorim/machine_functions.h"
#include "velorim/tensor_arithmetic.h"

namespace {

/// a + (b + c), and what the rounding of the outer sum lost.
struct compensated {
  double sum, lost;
};
compensated add(double a, double b, double c) {
  const double s = b + c, sum = a + s;
  return {sum, s + (a - sum)};
}

/// Stores the sum and what it lost; false and nothing stored if a value fails the check that the flags ask for.
bool add_element(mreal& sum, mreal& lost, mreal a, mreal b, mreal c, uint32_t flags) {
  const compensated r = add(a, b, c);
  if ((flags & MACHFUNC_CHECK_FP) != 0 && (vlm::is_fp_exception(r.sum) || vlm::is_fp_exception(r.lost))) {
    return false;
  }
  sum = r.sum;
  lost = r.lost;
  return true;
}

bool add_element(mcomplex& sum, mcomplex& lost, mcomplex a, mcomplex b, mcomplex c, uint32_t flags) {
  mcomplex new_sum, new_lost;
  if (!add_element(new_sum.re, new_lost.re, a.re, b.re, c.re, flags) ||
      !add_element(new_sum.im, new_lost.im, a.im, b.im, c.im, flags)) {
    return false;
  }
  sum = new_sum;
  lost = new_lost;
  return true;
}

/// One element after the other, each reading what those before it have stored: with steps of 0 this is a running sum.
template <class T>
mint add_vectors(T* result, const T* a, const T* b, T* c, mint count, const mint* increments,
                 uint32_t flags) {
  for (mint i = 0; i < count; ++i) {
    T& lost = c[i * increments[3]];
    if (!add_element(result[i * increments[0]], lost, a[i * increments[1]], b[i * increments[2]], lost,
                     flags)) {
      return i + 1;
    }
  }
  return 0;
}

}  // namespace

mint machfunc_ddd_compplus(mreal* result, const mreal* a, const mreal* b, mreal* c, mint count,
                           const mint* increments, uint32_t flags) noexcept {
  return add_vectors(result, a, b, c, count, increments, flags);
}
mint machfunc_ccc_compplus(mcomplex* result, const mcomplex* a, const mcomplex* b, mcomplex* c, mint count,
                           const mint* increments, uint32_t flags) noexcept {
  return add_vectors(result, a, b, c, count, increments, flags);
}

int32_t s_machfunc_ddd_compplus(mreal* sum, mreal* compensation, mreal a, mreal b, uint32_t flags) noexcept {
  return add_element(*sum, *compensation, a, b, *compensation, flags) ? 0 : 1;
}
int32_t s_machfunc_ccc_compplus(mcomplex* sum, mcomplex* compensation, mcomplex a, mcomplex b,
                                uint32_t flags) noexcept {
  return add_element(*sum, *compensation, a, b, *compensation, flags) ? 0 : 1;
}
