// y := alpha op(A) x + beta y with the arithmetic of the reference: column by column, a column whose factor is exactly zero left out; or,
// transposed, a dot product for each column.
#include <algorithm>

#include "MNumericArray/LinearAlgebra/BLAS/calling_form.h"

namespace {

using namespace vlm::blas;

template <class T> constexpr T zero{};

/// Adds columns to y, up to this many in one pass: y(i) takes them in order, as one after the other would.
constexpr int columns_together = 4;

template <class T> struct column_term {
  const T* column;
  T factor;
};

template <class T, int N> void add_columns(const column_term<T>* terms, mint m, T* y, mint incy) {
  for (mint i = 0; i < m; ++i) {
    T sum = y[i * incy];
    for (int k = 0; k < N; ++k) sum = sum + terms[k].factor * terms[k].column[i];
    y[i * incy] = sum;
  }
}

template <class T> void add_pending(column_term<T>* terms, int count, mint m, T* y, mint incy) {
  if (incy == 1 && count == columns_together) return add_columns<T, columns_together>(terms, m, y, 1);
  for (int k = 0; k < count; ++k) {
    incy == 1 ? add_columns<T, 1>(terms + k, m, y, 1) : add_columns<T, 1>(terms + k, m, y, incy);
  }
}

template <class T>
void multiply(mint m, mint n, T alpha, const T* a, mint lda, const T* x, mint incx, T* y, mint incy) {
  column_term<T> terms[columns_together];
  int pending = 0;
  for (mint j = 0; j < n; ++j) {
    if (x[j * incx] == zero<T>) continue;
    terms[pending++] = {a + j * lda, alpha * x[j * incx]};
    if (pending == columns_together) {
      add_pending(terms, pending, m, y, incy);
      pending = 0;
    }
  }
  add_pending(terms, pending, m, y, incy);
}

/// Dot products of N columns side by side, each in the order of its elements.
template <class T, int N, bool Conjugated>
void dot_columns(mint m, const T* a, mint lda, const T* x, mint incx, T* sums) {
  for (int k = 0; k < N; ++k) sums[k] = zero<T>;
  for (mint i = 0; i < m; ++i) {
    for (int k = 0; k < N; ++k) {
      const T element = a[i + k * lda];
      sums[k] = sums[k] + (Conjugated ? conjugate(element) : element) * x[i * incx];
    }
  }
}

template <class T, bool Conjugated>
void multiply_transposed(mint m, mint n, T alpha, const T* a, mint lda, const T* x, mint incx, T* y,
                         mint incy) {
  constexpr int together = 8;
  T sums[together];
  mint j = 0;
  for (; j + together <= n; j += together) {
    dot_columns<T, together, Conjugated>(m, a + j * lda, lda, x, incx, sums);
    for (int k = 0; k < together; ++k) y[(j + k) * incy] = y[(j + k) * incy] + alpha * sums[k];
  }
  for (; j < n; ++j) {
    dot_columns<T, 1, Conjugated>(m, a + j * lda, lda, x, incx, sums);
    y[j * incy] = y[j * incy] + alpha * sums[0];
  }
}

template <class T>
void gemv(const char* tag, const char* trans, mint m, mint n, T alpha, const T* a, mint lda, const T* x,
          mint incx, T beta, T* y, mint incy) {
  const transposition op = transposition_of(trans);
  if (reports_illegal(tag, {{1, op == transposition::illegal},
                            {2, m < 0},
                            {3, n < 0},
                            {6, lda < std::max<mint>(1, m)},
                            {8, incx == 0},
                            {11, incy == 0}}))
    return;
  constexpr T one = unit_of<T>::value;
  if (m == 0 || n == 0 || (alpha == zero<T> && beta == one)) return;
  const mint x_length = op == transposition::none ? n : m, y_length = op == transposition::none ? m : n;
  x += first_offset(x_length, incx);
  y += first_offset(y_length, incy);
  if (!(beta == one)) {
    for (mint i = 0; i < y_length; ++i) y[i * incy] = beta == zero<T> ? zero<T> : beta * y[i * incy];
  }
  if (alpha == zero<T>) return;
  if (op == transposition::none) {
    multiply(m, n, alpha, a, lda, x, incx, y, incy);
  } else if (op == transposition::plain) {
    multiply_transposed<T, false>(m, n, alpha, a, lda, x, incx, y, incy);
  } else {
    multiply_transposed<T, true>(m, n, alpha, a, lda, x, incx, y, incy);
  }
}

template <class T, class Memory> const complex_pair<T>* pairs(const Memory* p) {
  return reinterpret_cast<const complex_pair<T>*>(p);
}
template <class T, class Memory> complex_pair<T>* pairs(Memory* p) {
  return reinterpret_cast<complex_pair<T>*>(p);
}

}  // namespace

void vlb_sgemv(const char* trans, const mint* m, const mint* n, const float* alpha, const float* a,
               const mint* lda, const float* x, const mint* incx, const float* beta, float* y,
               const mint* incy) VLM_NOEXCEPT {
  gemv("SGEMV ", trans, *m, *n, *alpha, a, *lda, x, *incx, *beta, y, *incy);
}
void vlb_dgemv(const char* trans, const mint* m, const mint* n, const mreal* alpha, const mreal* a,
               const mint* lda, const mreal* x, const mint* incx, const mreal* beta, mreal* y,
               const mint* incy) VLM_NOEXCEPT {
  gemv("DGEMV ", trans, *m, *n, *alpha, a, *lda, x, *incx, *beta, y, *incy);
}
void vlb_cgemv(const char* trans, const mint* m, const mint* n, const float* alpha, const float* a,
               const mint* lda, const float* x, const mint* incx, const float* beta, float* y,
               const mint* incy) VLM_NOEXCEPT {
  gemv("CGEMV ", trans, *m, *n, *pairs<float>(alpha), pairs<float>(a), *lda, pairs<float>(x), *incx,
       *pairs<float>(beta), pairs<float>(y), *incy);
}
void vlb_zgemv(const char* trans, const mint* m, const mint* n, const mcomplex* alpha, const mcomplex* a,
               const mint* lda, const mcomplex* x, const mint* incx, const mcomplex* beta, mcomplex* y,
               const mint* incy) VLM_NOEXCEPT {
  gemv("ZGEMV ", trans, *m, *n, *pairs<double>(alpha), pairs<double>(a), *lda, pairs<double>(x), *incx,
       *pairs<double>(beta), pairs<double>(y), *incy);
}
