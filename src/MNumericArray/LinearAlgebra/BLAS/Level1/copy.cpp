// Copies of vectors.
#include <cstring>

#include "MNumericArray/LinearAlgebra/BLAS/calling_form.h"

namespace {

using namespace vlm::blas;

template <class T> void copy(mint n, const T* x, mint incx, T* y, mint incy) {
  if (n < 1) return;
  if (incx == 1 && incy == 1) {
    std::memmove(y, x, static_cast<size_t>(n) * sizeof(T));
    return;
  }
  x += first_offset(n, incx);
  y += first_offset(n, incy);
  for (mint i = 0; i < n; ++i) y[i * incy] = x[i * incx];
}

}  // namespace

void vlb_scopy(const mint* n, const float* x, const mint* incx, float* y, const mint* incy) VLM_NOEXCEPT {
  copy(*n, x, *incx, y, *incy);
}
void vlb_dcopy(const mint* n, const mreal* x, const mint* incx, mreal* y, const mint* incy) VLM_NOEXCEPT {
  copy(*n, x, *incx, y, *incy);
}
void vlb_ccopy(const mint* n, const float* x, const mint* incx, float* y, const mint* incy) VLM_NOEXCEPT {
  using pair = complex_pair<float>;
  copy(*n, reinterpret_cast<const pair*>(x), *incx, reinterpret_cast<pair*>(y), *incy);
}
void vlb_zcopy(const mint* n, const mcomplex* x, const mint* incx, mcomplex* y,
               const mint* incy) VLM_NOEXCEPT {
  copy(*n, x, *incx, y, *incy);
}
