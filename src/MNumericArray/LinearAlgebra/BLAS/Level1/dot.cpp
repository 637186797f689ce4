// Dot products. The order of the sums is that of the reference: it bounds the speed by the latency of one addition an element.
#include "MNumericArray/LinearAlgebra/BLAS/calling_form.h"

namespace {

using namespace vlm::blas;

/// Groups of 5 that are added from left to right to the sum, behind the first n mod 5, are the products in order.
template <class T> T dot(mint n, const T* x, mint incx, const T* y, mint incy) {
  T sum = 0;
  if (n < 1) return sum;
  x += first_offset(n, incx);
  y += first_offset(n, incy);
  if (incx == 1 && incy == 1) {
    for (mint i = 0; i < n; ++i) sum += x[i] * y[i];
  } else {
    for (mint i = 0; i < n; ++i) sum += x[i * incx] * y[i * incy];
  }
  return sum;
}

template <bool Conjugated, class T>
complex_pair<T> complex_dot(mint n, const complex_pair<T>* x, mint incx, const complex_pair<T>* y,
                            mint incy) {
  complex_pair<T> sum = {0, 0};
  if (n < 1) return sum;
  x += first_offset(n, incx);
  y += first_offset(n, incy);
  for (mint i = 0; i < n; ++i) {
    const complex_pair<T> factor = Conjugated ? conjugate(x[i * incx]) : x[i * incx];
    sum = sum + factor * y[i * incy];
  }
  return sum;
}

template <class T, class Memory> const complex_pair<T>* pairs(const Memory* p) {
  return reinterpret_cast<const complex_pair<T>*>(p);
}

}  // namespace

float vlb_sdot(const mint* n, const float* x, const mint* incx, const float* y,
               const mint* incy) VLM_NOEXCEPT {
  return dot(*n, x, *incx, y, *incy);
}
mreal vlb_ddot(const mint* n, const mreal* x, const mint* incx, const mreal* y,
               const mint* incy) VLM_NOEXCEPT {
  return dot(*n, x, *incx, y, *incy);
}
void vlb_cdotc(float* result, const mint* n, const float* x, const mint* incx, const float* y,
               const mint* incy) VLM_NOEXCEPT {
  const auto sum = complex_dot<true>(*n, pairs<float>(x), *incx, pairs<float>(y), *incy);
  result[0] = sum.re;
  result[1] = sum.im;
}
void vlb_cdotu(float* result, const mint* n, const float* x, const mint* incx, const float* y,
               const mint* incy) VLM_NOEXCEPT {
  const auto sum = complex_dot<false>(*n, pairs<float>(x), *incx, pairs<float>(y), *incy);
  result[0] = sum.re;
  result[1] = sum.im;
}
void vlb_zdotc(mcomplex* result, const mint* n, const mcomplex* x, const mint* incx, const mcomplex* y,
               const mint* incy) VLM_NOEXCEPT {
  const auto sum = complex_dot<true>(*n, pairs<double>(x), *incx, pairs<double>(y), *incy);
  *result = {sum.re, sum.im};
}
void vlb_zdotu(mcomplex* result, const mint* n, const mcomplex* x, const mint* incx, const mcomplex* y,
               const mint* incy) VLM_NOEXCEPT {
  const auto sum = complex_dot<false>(*n, pairs<double>(x), *incx, pairs<double>(y), *incy);
  *result = {sum.re, sum.im};
}
