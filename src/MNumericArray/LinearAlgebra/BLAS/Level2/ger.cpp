// A := alpha x y' + A, column by column; a column whose factor in y is exactly zero is left as it is.
#include <algorithm>

#include "MNumericArray/LinearAlgebra/BLAS/calling_form.h"

namespace {

using namespace vlm::blas;

template <bool Conjugated, class T>
void ger(const char* tag, mint m, mint n, T alpha, const T* x, mint incx, const T* y, mint incy, T* a,
         mint lda) {
  if (reports_illegal(
          tag, {{1, m < 0}, {2, n < 0}, {5, incx == 0}, {7, incy == 0}, {9, lda < std::max<mint>(1, m)}}))
    return;
  if (m == 0 || n == 0 || alpha == T{}) return;
  x += first_offset(m, incx);
  y += first_offset(n, incy);
  for (mint j = 0; j < n; ++j) {
    const T element = y[j * incy];
    if (element == T{}) continue;
    const T factor = alpha * (Conjugated ? conjugate(element) : element);
    T* const column = a + j * lda;
    for (mint i = 0; i < m; ++i) column[i] = column[i] + x[i * incx] * factor;
  }
}

using pair = complex_pair<double>;
const pair* pairs(const mcomplex* p) { return reinterpret_cast<const pair*>(p); }

}  // namespace

void vlb_dger(const mint* m, const mint* n, const mreal* alpha, const mreal* x, const mint* incx,
              const mreal* y, const mint* incy, mreal* a, const mint* lda) VLM_NOEXCEPT {
  ger<false>("DGER  ", *m, *n, *alpha, x, *incx, y, *incy, a, *lda);
}
void vlb_zgerc(const mint* m, const mint* n, const mcomplex* alpha, const mcomplex* x, const mint* incx,
               const mcomplex* y, const mint* incy, mcomplex* a, const mint* lda) VLM_NOEXCEPT {
  ger<true>("ZGERC ", *m, *n, *pairs(alpha), pairs(x), *incx, pairs(y), *incy, reinterpret_cast<pair*>(a),
            *lda);
}
void vlb_zgeru(const mint* m, const mint* n, const mcomplex* alpha, const mcomplex* x, const mint* incx,
               const mcomplex* y, const mint* incy, mcomplex* a, const mint* lda) VLM_NOEXCEPT {
  ger<false>("ZGERU ", *m, *n, *pairs(alpha), pairs(x), *incx, pairs(y), *incy, reinterpret_cast<pair*>(a),
             *lda);
}
