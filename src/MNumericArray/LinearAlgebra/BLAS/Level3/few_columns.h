// C := C + A B where B has few columns and A lies in columns: A is read once, as it lies, a few columns at a time. Each element takes the
// same chain of fused multiply-adds as in the tiles.
#pragma once

#include "MNumericArray/LinearAlgebra/BLAS/Level3/packing.h"

namespace vlm::blas {

inline constexpr mint few_columns = 4;

/// An element of B as a register of a column of A takes it. Complex: the pairs for the column's real parts, and for its imaginary ones.
template <class V, int Parts> struct column_factor {
  using T = number_of<V>;
  V x[Parts];

  explicit column_factor(const T* element) {
    if constexpr (Parts == 1) {
      x[0] = broadcast<V>(element[0]);
    } else {
      const T turned[] = {-element[1], element[0]};
      x[0] = broadcast_pair<V>(element);
      x[1] = broadcast_pair<V>(turned);
    }
  }
};

/// sum + column * factor for a register of numbers, of pairs if complex.
template <class V, int Parts> V add_product(V sum, V column, const column_factor<V, Parts>& factor) {
  if constexpr (Parts == 1) {
    return fused(column, factor.x[0], sum);
  } else {
    return fused(both_imaginary(column), factor.x[1], fused(both_real(column), factor.x[0], sum));
  }
}
/// The same for one element.
template <class V, int Parts>
void add_element(number_of<V>* sum, const number_of<V>* element, const column_factor<V, Parts>& factor) {
  for (int q = 0; q < Parts; ++q) {
    for (int p = 0; p < Parts; ++p) sum[p] = fused(element[q], number_of<V>(factor.x[q][p]), sum[p]);
  }
}

/// Adds Together columns of A, times their factors in B, to rows of N columns of C; N is at most few_columns.
template <class T, int Parts, int N, int Together>
void add_columns(mint l, mint i0, mint rows, const factor<T, Parts>& a, const right_factor<T, Parts>& b, T* c,
                 mint ldc) {
  using V = register_of<T>;
  constexpr mint lanes = lanes_of<V>::count;
  const auto factors = [&]<int... I>(std::integer_sequence<int, I...>) {
    const auto factor_at = [&](int index) {
      T element[Parts];
      b.put(l + index / N, index % N, element);
      return column_factor<V, Parts>(element);
    };
    return std::array{factor_at(I)...};
  }
  (std::make_integer_sequence<int, Together * N>{});
  const T* const first = a.at(i0, l);
  const mint numbers = rows * Parts, a_step = a.column_step * Parts, c_step = ldc * Parts;
  c += i0 * Parts;
  mint i = 0;
  for (; i + lanes <= numbers; i += lanes) {
    V columns[Together];
    for (int q = 0; q < Together; ++q) columns[q] = load<V>(first + q * a_step + i);
    for (int j = 0; j < N; ++j) {
      V sum = load<V>(c + j * c_step + i);
      for (int q = 0; q < Together; ++q) sum = add_product(sum, columns[q], factors[q * N + j]);
      store(c + j * c_step + i, sum);
    }
  }
  for (; i < numbers; i += Parts) {
    for (int j = 0; j < N; ++j) {
      for (int q = 0; q < Together; ++q) {
        add_element(c + j * c_step + i, first + q * a_step + i, factors[q * N + j]);
      }
    }
  }
}

template <class T, int Parts, int N>
void multiply_few_columns(mint i0, mint rows, mint k, const factor<T, Parts>& a,
                          const right_factor<T, Parts>& b, T* c, mint ldc) {
  constexpr int together = N == 1 ? 4 : 2;
  mint l = 0;
  for (; l + together <= k; l += together) add_columns<T, Parts, N, together>(l, i0, rows, a, b, c, ldc);
  for (; l < k; ++l) add_columns<T, Parts, N, 1>(l, i0, rows, a, b, c, ldc);
}

/// Rows i0 to i0 + rows - 1 of the product; n is from 1 to few_columns. A is not conjugated.
template <class T, int Parts>
void multiply_few_columns(mint i0, mint rows, mint n, mint k, const factor<T, Parts>& a,
                          const right_factor<T, Parts>& b, T* c, mint ldc) {
  static_assert(few_columns == 4);
  switch (n) {
    case 1:
      return multiply_few_columns<T, Parts, 1>(i0, rows, k, a, b, c, ldc);
    case 2:
      return multiply_few_columns<T, Parts, 2>(i0, rows, k, a, b, c, ldc);
    case 3:
      return multiply_few_columns<T, Parts, 3>(i0, rows, k, a, b, c, ldc);
    default:
      return multiply_few_columns<T, Parts, 4>(i0, rows, k, a, b, c, ldc);
  }
}

}  // namespace vlm::blas
