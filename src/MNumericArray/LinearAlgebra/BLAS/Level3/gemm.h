// C := alpha op(A) op(B) + beta C for one element type: arguments, special cases, and the two forms of the product.
//
//   op(A) = A     C is scaled by beta, then takes the columns of A times alpha B(l, j); a column whose B(l, j) is exactly 0 is skipped.
//   otherwise     the sums of products are made apart, from 0; C takes alpha times the sum plus beta C.
#pragma once

#include "MNumericArray/LinearAlgebra/BLAS/Level3/product.h"
#include "MNumericArray/LinearAlgebra/BLAS/calling_form.h"

namespace vlm::blas {

template <class T, int Parts> using element_of = std::conditional_t<Parts == 1, T, complex_pair<T>>;

template <class T, int Parts> void scale(mint m, mint n, const T* beta, T* c, mint ldc) {
  using element = element_of<T, Parts>;
  const element factor = *reinterpret_cast<const element*>(beta);
  if (factor == unit_of<element>::value) return;
  for (mint j = 0; j < n; ++j) {
    element* const column = reinterpret_cast<element*>(c + j * ldc * Parts);
    for (mint i = 0; i < m; ++i) column[i] = factor == element{} ? element{} : factor * column[i];
  }
}

/// c := alpha sum + beta c. The sums may lie in c itself if beta is 0.
template <class T, int Parts>
void combine(mint m, mint n, const T* alpha, const T* sums, mint ldsums, const T* beta, T* c, mint ldc) {
  using element = element_of<T, Parts>;
  const element a = *reinterpret_cast<const element*>(alpha), b = *reinterpret_cast<const element*>(beta);
  for (mint j = 0; j < n; ++j) {
    const element* const sum = reinterpret_cast<const element*>(sums + j * ldsums * Parts);
    element* const column = reinterpret_cast<element*>(c + j * ldc * Parts);
    for (mint i = 0; i < m; ++i) column[i] = b == element{} ? a * sum[i] : a * sum[i] + b * column[i];
  }
}

template <class T, int Parts>
void gemm(const char* tag, const char* transa, const char* transb, mint m, mint n, mint k, const T* alpha,
          const T* a, mint lda, const T* b, mint ldb, const T* beta, T* c, mint ldc) {
  using element = element_of<T, Parts>;
  const transposition op_a = transposition_of(transa), op_b = transposition_of(transb);
  const mint rows_a = op_a == transposition::none ? m : k, rows_b = op_b == transposition::none ? k : n;
  if (reports_illegal(tag, {{1, op_a == transposition::illegal},
                            {2, op_b == transposition::illegal},
                            {3, m < 0},
                            {4, n < 0},
                            {5, k < 0},
                            {8, lda < std::max<mint>(1, rows_a)},
                            {10, ldb < std::max<mint>(1, rows_b)},
                            {13, ldc < std::max<mint>(1, m)}}))
    return;
  const element factor_ab = *reinterpret_cast<const element*>(alpha),
                factor_c = *reinterpret_cast<const element*>(beta);
  const bool nothing_to_add = factor_ab == element{} || k == 0;
  if (m == 0 || n == 0 || (nothing_to_add && factor_c == unit_of<element>::value)) return;
  if (nothing_to_add) return scale<T, Parts>(m, n, beta, c, ldc);

  const factor<T, Parts> left = {a, op_a == transposition::none ? 1 : lda,
                                 op_a == transposition::none ? lda : 1, op_a == transposition::conjugated};
  const factor<T, Parts> right = {b, op_b == transposition::none ? 1 : ldb,
                                  op_b == transposition::none ? ldb : 1, op_b == transposition::conjugated};
  if (op_a == transposition::none) {
    const bool from_zero = factor_c == element{};
    if (!from_zero) scale<T, Parts>(m, n, beta, c, ldc);
    product<T, Parts>(m, n, k, left, right, alpha, true, c, ldc, from_zero).run();
    return;
  }
  static constexpr T one[] = {1, 0};
  if (factor_c == element{}) {
    product<T, Parts>(m, n, k, left, right, one, false, c, ldc, true).run();
    // A complex 1 is multiplied by too: it makes 0 of -0, and NaN beside infinity.
    if (Parts == 2 || alpha[0] != 1) combine<T, Parts>(m, n, alpha, c, ldc, beta, c, ldc);
    return;
  }
  // In pieces of columns whose sums fit the space at hand.
  constexpr mint stack_numbers = 8192, most_numbers = mint{1} << 22;
  alignas(64) T on_stack[stack_numbers];
  const mint column = m * Parts;
  memory::working_space<T> space(0);
  T* sums = on_stack;
  mint room = stack_numbers;
  if (column * n > room) {
    space = memory::working_space<T>(
        static_cast<uint64_t>(std::max(column, std::min(column * n, most_numbers / column * column))),
        FailReport);
    if (space) {
      sums = space.data();
      room = static_cast<mint>(space.size());
    }
  }
  if (column <= room) {
    for (mint j0 = 0; j0 < n; j0 += room / column) {
      const mint width = std::min(room / column, n - j0);
      product<T, Parts>(
          m, width, k, left,
          {b + j0 * right.column_step * Parts, right.row_step, right.column_step, right.conjugated}, one,
          false, sums, m, true)
          .run();
      combine<T, Parts>(m, width, alpha, sums, m, beta, c + j0 * ldc * Parts, ldc);
    }
    return;
  }
  // Without the space, a piece of a column at a time: the same chains.
  for (mint j = 0; j < n; ++j) {
    for (mint i0 = 0; i0 < m; i0 += stack_numbers / Parts) {
      const mint rows = std::min<mint>(stack_numbers / Parts, m - i0);
      product<T, Parts>(
          rows, 1, k, {a + i0 * left.row_step * Parts, left.row_step, left.column_step, left.conjugated},
          {b + j * right.column_step * Parts, right.row_step, right.column_step, right.conjugated}, one,
          false, sums, rows, true)
          .run();
      combine<T, Parts>(rows, 1, alpha, sums, rows, beta, c + (i0 + j * ldc) * Parts, ldc);
    }
  }
}

}  // namespace vlm::blas
