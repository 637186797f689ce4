// The innermost piece of a matrix product: a tile of C, some registers high and some columns wide, takes all products of a stretch of k.
// Each element is one chain of fused multiply-adds with k ascending, which starts from what C holds or from 0; so the same bits come out
// whatever the tile's shape and place, and wherever k is cut.
//
// Numbers come as one part (real) or as two (complex), in planes: a row of a strip of A is all its real parts, then all imaginary ones.
#pragma once

#include "Includes/lanes.h"
#include "velorim/base.h"

namespace vlm::blas {

/// Shape of the full tile: it fills the register file with sums, and leaves room for a column of A.
template <int Parts> struct tile_shape {
#if defined(VELORIM_LANES_AVX512)
  static constexpr int registers = 3, columns = Parts == 1 ? 8 : 4;
#elif defined(VELORIM_LANES_NEON)
  static constexpr int registers = Parts == 1 ? 4 : 3, columns = Parts == 1 ? 5 : 3;
#else
  static constexpr int registers = Parts == 1 ? 3 : 1, columns = Parts == 1 ? 4 : 6;
#endif
};

/// Where the sums start and where they go, and the steps of one stretch, in numbers (not pairs): from one k to the next in A and B, from
/// one column to the next in B, in the starts and in C. Starts of step 0 are those of every column.
template <class T> struct tile_places {
  mint a_next;
  mint b_next;
  mint b_column;
  const T* starts;
  mint starts_column;
  T* c;
  mint c_column;
};

/// Real: C tile of Registers registers by Columns columns.
template <class T, int Registers, int Columns>
void real_tile(mint k, const T* a, const T* b, const tile_places<T>& at) {
  using V = register_of<T>;
  constexpr int lanes = lanes_of<V>::count;
  V sums[Columns][Registers];
  for (int j = 0; j < Columns; ++j) {
    for (int i = 0; i < Registers; ++i) sums[j][i] = load<V>(at.starts + j * at.starts_column + i * lanes);
  }
  const mint a_next = at.a_next, b_next = at.b_next, b_column = at.b_column;
#pragma GCC unroll 2
  for (; k > 0; --k, a += a_next, b += b_next) {
    V column[Registers];
    for (int i = 0; i < Registers; ++i) {
      column[i] = load<V>(a + i * lanes);
      keep_in_register(column[i]);
    }
    for (int j = 0; j < Columns; ++j) {
      const V factor = broadcast<V>(b[j * b_column]);
      for (int i = 0; i < Registers; ++i) sums[j][i] = fused(column[i], factor, sums[j][i]);
    }
  }
  for (int j = 0; j < Columns; ++j) {
    for (int i = 0; i < Registers; ++i) store<V>(at.c + j * at.c_column + i * lanes, sums[j][i]);
  }
}

/// Complex, of a tile whose columns are planes too: re takes a.re b.re, then -a.im b.im; im takes a.re b.im, then a.im b.re.
template <class T, int Registers, int Columns>
void complex_tile(mint k, const T* a, const T* b, const tile_places<T>& at) {
  using V = register_of<T>;
  constexpr int lanes = lanes_of<V>::count, plane = Registers * lanes;
  V re[Columns][Registers], im[Columns][Registers];
  for (int j = 0; j < Columns; ++j) {
    for (int i = 0; i < Registers; ++i) {
      re[j][i] = load<V>(at.starts + j * at.starts_column + i * lanes);
      im[j][i] = load<V>(at.starts + j * at.starts_column + plane + i * lanes);
    }
  }
  const mint a_next = at.a_next, b_next = at.b_next, b_column = at.b_column;
  for (; k > 0; --k, a += a_next, b += b_next) {
    V a_re[Registers], a_im[Registers];
    for (int i = 0; i < Registers; ++i) {
      a_re[i] = load<V>(a + i * lanes);
      a_im[i] = load<V>(a + plane + i * lanes);
      keep_in_register(a_re[i]);
      keep_in_register(a_im[i]);
    }
    for (int j = 0; j < Columns; ++j) {
      V b_re = broadcast<V>(b[j * b_column]), b_im = broadcast<V>(b[j * b_column + 1]);
      keep_in_register(b_im);  // so that its sign changes in the addition
      for (int i = 0; i < Registers; ++i) {
        re[j][i] = fused(a_re[i], b_re, re[j][i]);
        im[j][i] = fused(a_im[i], b_re, fused(a_re[i], b_im, im[j][i]));
        re[j][i] = fused(a_im[i], -b_im, re[j][i]);
      }
    }
  }
  for (int j = 0; j < Columns; ++j) {
    for (int i = 0; i < Registers; ++i) {
      store<V>(at.c + j * at.c_column + i * lanes, re[j][i]);
      store<V>(at.c + j * at.c_column + plane + i * lanes, im[j][i]);
    }
  }
}

template <class T> using tile_function = void (*)(mint k, const T* a, const T* b, const tile_places<T>& at);

/// The tile of a number of registers and columns, from 1 to those of the full tile.
template <class T, int Parts> tile_function<T> tile_of(int registers, int columns) {
  constexpr int most_registers = tile_shape<Parts>::registers, most_columns = tile_shape<Parts>::columns;
  static constexpr auto table = []<int... I>(std::integer_sequence<int, I...>) {
    return std::array<tile_function<T>, sizeof...(I)>{
        (Parts == 1 ? real_tile<T, I / most_columns + 1, I % most_columns + 1>
                    : complex_tile<T, I / most_columns + 1, I % most_columns + 1>)...};
  }
  (std::make_integer_sequence<int, most_registers * most_columns>{});
  return table[static_cast<size_t>((registers - 1) * most_columns + columns - 1)];
}

}  // namespace vlm::blas
