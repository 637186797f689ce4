// The factors of a product, and how pieces of them are laid out for the tiles.
#pragma once

#include <algorithm>
#include <bit>

#include "Includes/lanes.h"
#include "MNumericArray/LinearAlgebra/BLAS/calling_form.h"

namespace vlm::blas {

/// A factor as it lies: element (row, column) is at data + (row * row_step + column * column_step) * Parts. One of the steps is 1.
template <class T, int Parts> struct factor {
  const T* data;
  mint row_step;
  mint column_step;
  bool conjugated;

  const T* at(mint row, mint column) const { return data + (row * row_step + column * column_step) * Parts; }
};

/// The right factor, whose elements enter the product times alpha; an alpha of 1 leaves them as they are.
template <class T, int Parts> struct right_factor : factor<T, Parts> {
  const T* alpha;
  bool scales;

  right_factor(const factor<T, Parts>& b, const T* scale)
      : factor<T, Parts>(b),
        alpha(scale),
        scales(!(scale[0] == 1 && (Parts == 1 || scale[Parts - 1] == 0))) {}

  void put(mint row, mint column, T* to) const {
    const T* const x = this->at(row, column);
    if constexpr (Parts == 1) {
      *to = scales ? alpha[0] * x[0] : x[0];
    } else {
      const complex_pair<T> as_is = {x[0], this->conjugated ? -x[1] : x[1]};
      const complex_pair<T> scaled = scales ? complex_pair<T>{alpha[0], alpha[1]} * as_is : as_is;
      to[0] = scaled.re;
      to[1] = scaled.im;
    }
  }
};

/// Pairs into planes and back.
template <class T> void split_column(const T* pairs, mint number, T* re, T* im) {
  using V = register_of<T>;
  constexpr mint lanes = lanes_of<V>::count;
  mint i = 0;
  for (; i + lanes <= number; i += lanes) {
    const auto parts = split_pairs<V>({load<V>(pairs + 2 * i), load<V>(pairs + 2 * i + lanes)});
    store(re + i, parts.first);
    store(im + i, parts.second);
  }
  for (; i < number; ++i) {
    re[i] = pairs[2 * i];
    im[i] = pairs[2 * i + 1];
  }
}
template <class T> void join_column(const T* re, const T* im, mint number, T* pairs) {
  using V = register_of<T>;
  constexpr mint lanes = lanes_of<V>::count;
  mint i = 0;
  for (; i + lanes <= number; i += lanes) {
    const auto joined = join_pairs<V>({load<V>(re + i), load<V>(im + i)});
    store(pairs + 2 * i, joined.first);
    store(pairs + 2 * i + lanes, joined.second);
  }
  for (; i < number; ++i) {
    pairs[2 * i] = re[i];
    pairs[2 * i + 1] = im[i];
  }
}

/// As many rows of A as a register has lanes, each contiguous, into columns: a transposition. `to` is the first row's place in a strip of
/// `height` rows.
template <class T, int Parts>
void pack_rows(const factor<T, Parts>& a, mint i0, mint l0, mint count, mint height, T* to) {
  using V = register_of<T>;
  constexpr mint lanes = lanes_of<V>::count;
  mint l = 0;
  for (; l + lanes <= count; l += lanes) {
    V parts[Parts][lanes];
    for (mint i = 0; i < lanes; ++i) {
      const T* const from = a.at(i0 + i, l0 + l);
      if constexpr (Parts == 1) {
        parts[0][i] = load<V>(from);
      } else {
        const auto split = split_pairs<V>({load<V>(from), load<V>(from + lanes)});
        parts[0][i] = split.first;
        parts[1][i] = a.conjugated ? -split.second : split.second;
      }
    }
    for (mint p = 0; p < Parts; ++p) {
      interleave(parts[p]);
      for (mint k = 0; k < lanes; ++k) store(to + ((l + k) * Parts + p) * height, parts[p][k]);
    }
  }
  for (; l < count; ++l) {
    for (mint i = 0; i < lanes; ++i) {
      const T* const from = a.at(i0 + i, l0 + l);
      to[l * Parts * height + i] = from[0];
      if constexpr (Parts == 2) to[(l * Parts + 1) * height + i] = a.conjugated ? -from[1] : from[1];
    }
  }
}

/// A strip of A, rows filled up with zeros to `height`: for each k its planes.
template <class T, int Parts>
void pack_left(const factor<T, Parts>& a, mint i0, mint rows, mint height, mint l0, mint count, T* to) {
  constexpr mint lanes = lanes_of<register_of<T>>::count;
  if (rows < height) std::fill_n(to, count * height * Parts, T{0});
  if (a.row_step == 1 && !a.conjugated) {
    for (mint l = 0; l < count; ++l) {
      T* const plane = to + l * height * Parts;
      if constexpr (Parts == 1) {
        std::copy_n(a.at(i0, l0 + l), rows, plane);
      } else {
        split_column(a.at(i0, l0 + l), rows, plane, plane + height);
      }
    }
    return;
  }
  mint i = 0;
  for (; a.column_step == 1 && i + lanes <= rows; i += lanes) {
    pack_rows(a, i0 + i, l0, count, height, to + i);
  }
  for (; i < rows; ++i) {
    for (mint l = 0; l < count; ++l) {
      const T* const x = a.at(i0 + i, l0 + l);
      T* const plane = to + l * height * Parts;
      plane[i] = x[0];
      if constexpr (Parts == 2) plane[height + i] = a.conjugated ? -x[1] : x[1];
    }
  }
}

/// A strip of B, `Columns` wide of which `width` are there, for a stretch: for each k its elements side by side.
template <class T, int Parts, mint Columns>
void pack_right(const right_factor<T, Parts>& b, mint l0, mint count, mint j0, mint width, T* to) {
  using V = register_of<T>;
  constexpr mint lanes = lanes_of<V>::count;
  mint l = 0;
  if constexpr (Parts == 1 && std::has_single_bit(static_cast<size_t>(Columns))) {
    for (; b.row_step == 1 && width == Columns && l + lanes <= count; l += lanes) {
      V columns[Columns];
      for (mint j = 0; j < Columns; ++j) {
        const V column = load<V>(b.at(l0 + l, j0 + j));
        columns[j] = b.scales ? broadcast<V>(b.alpha[0]) * column : column;
      }
      interleave(columns);
      for (mint j = 0; j < Columns; ++j) store(to + l * Columns + j * lanes, columns[j]);
    }
  }
  if (Parts == 2 && b.row_step == 1 && !b.scales && !b.conjugated) {
    for (mint j = 0; j < width; ++j) {
      const T* const from = b.at(l0, j0 + j);
      for (mint k = l; k < count; ++k) std::copy_n(from + k * Parts, Parts, to + (k * Columns + j) * Parts);
    }
    return;
  }
  for (; l < count; ++l) {
    for (mint j = 0; j < width; ++j) b.put(l0 + l, j0 + j, to + (l * Columns + j) * Parts);
  }
}

}  // namespace vlm::blas
