// C := C + A B where B has few columns and A lies in columns: A is read once, as it lies, a few columns at a time. Each element takes the
// same chain of fused multiply-adds as in the tiles.
#pragma once

#include "MNumericArray/LinearAlgebra/BLAS/Level3/packing.h"

namespace vlm::blas {

inline constexpr mint few_columns = 4;

/// Adds Together columns of A, times their factors in B, to rows of N columns of C; N is at most few_columns.
template <class T, int N, int Together>
void add_columns(mint rows, const T* a, mint lda, const T (&factors)[Together][N], T* c, mint ldc) {
  using V = register_of<T>;
  constexpr mint lanes = lanes_of<V>::count;
  const auto add = [&]<class X>(mint i) {
    X columns[Together];
    for (int l = 0; l < Together; ++l) columns[l] = load<X>(a + l * lda + i);
    for (int j = 0; j < N; ++j) {
      X sum = load<X>(c + j * ldc + i);
      for (int l = 0; l < Together; ++l) sum = fused(columns[l], broadcast<X>(factors[l][j]), sum);
      store(c + j * ldc + i, sum);
    }
  };
  mint i = 0;
  for (; i + lanes <= rows; i += lanes) add.template operator()<V>(i);
  for (; i < rows; ++i) add.template operator()<T>(i);
}

template <class T, int N>
void multiply_few_columns(mint i0, mint rows, mint k, const factor<T, 1>& a, const right_factor<T, 1>& b,
                          T* c, mint ldc) {
  constexpr int together = N == 1 ? 4 : 2;
  const auto add = [&]<int Together>(mint l) {
    T factors[Together][N];
    for (int q = 0; q < Together; ++q) {
      for (int j = 0; j < N; ++j) b.put(l + q, j, &factors[q][j]);
    }
    add_columns<T, N, Together>(rows, a.at(i0, l), a.column_step, factors, c + i0, ldc);
  };
  mint l = 0;
  for (; l + together <= k; l += together) add.template operator()<together>(l);
  for (; l < k; ++l) add.template operator()<1>(l);
}

/// Rows i0 to i0 + rows - 1 of the product; n is from 1 to few_columns.
template <class T>
void multiply_few_columns(mint i0, mint rows, mint n, mint k, const factor<T, 1>& a,
                          const right_factor<T, 1>& b, T* c, mint ldc) {
  static_assert(few_columns == 4);
  switch (n) {
    case 1:
      return multiply_few_columns<T, 1>(i0, rows, k, a, b, c, ldc);
    case 2:
      return multiply_few_columns<T, 2>(i0, rows, k, a, b, c, ldc);
    case 3:
      return multiply_few_columns<T, 3>(i0, rows, k, a, b, c, ldc);
    default:
      return multiply_few_columns<T, 4>(i0, rows, k, a, b, c, ldc);
  }
}

}  // namespace vlm::blas
