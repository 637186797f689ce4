// C := C + A B, or C := A B, in blocks: stretches of k, for which all of B that is needed and then rows of A are laid out for the tiles.
#pragma once

#include <algorithm>
#include <cmath>
#include <utility>

#include "Arithmetic/Parallel/team.h"
#include "MNumericArray/LinearAlgebra/BLAS/Level3/tile.h"
#include "MNumericArray/LinearAlgebra/BLAS/calling_form.h"
#include "Memory/working_space.h"

namespace vlm::blas {

/// A factor as it lies: element (row, column) is at data + (row * row_step + column * column_step) * Parts.
template <class T> struct factor {
  const T* data;
  mint row_step;
  mint column_step;
  bool conjugated;
};

template <class T, int Parts> class product {
 public:
  /// `skips`: a row of A's columns whose factor in B is exactly 0 leaves no mark on C. alpha multiplies B's elements; 1 leaves them
  /// as they are. `from_zero`: the sums start from 0, whatever C holds.
  product(mint m, mint n, mint k, factor<T> a, factor<T> b, const T* alpha, bool skips, T* c, mint ldc,
          bool from_zero)
      : m_(m),
        n_(n),
        k_(k),
        a_(a),
        b_(b),
        alpha_(alpha),
        skips_(skips),
        from_zero_(from_zero),
        c_(c),
        ldc_(ldc) {
    scales_ = !(alpha[0] == 1 && (Parts == 1 || alpha[Parts - 1] == 0));
  }

  void run() {
    if (m_ == 0 || n_ == 0 || k_ == 0) return;
    if (skips_) find_marks();
    if (careful_) write_zeros();
    const int threads = parallel::use_team(work() >= team_work, 1) ? parallel::team_size() : 1;
    if (threads == 1 && is_small()) {
      in_place_ = Parts == 1;
      alignas(64) T a_space[small_numbers];
      alignas(64) T b_space[small_numbers];
      multiply_stretch(0, k_, 0, n_, a_space, b_space, {1, m_, m_});
    } else {
      run_blocks(threads);
    }
  }

 private:
  using shape = tile_shape<Parts>;
  using V = register_of<T>;
  static constexpr mint lanes = lanes_of<V>::count;
  static constexpr mint strip = shape::registers * lanes;  ///< rows of a full tile
  static constexpr mint columns = shape::columns;
  static constexpr mint stretch =
      256;  ///< of k, so that a strip of A and one of B stay in the first-level cache
  static constexpr mint rows_at_once = 240;  ///< of A, in the second-level cache
  static constexpr mint columns_at_once = 2048;
  static constexpr mint small_numbers = 9216;              ///< room on the stack for either factor
  static constexpr double team_work = 96.0 * 96.0 * 96.0;  ///< multiplications that are worth the team

  double work() const {
    return static_cast<double>(m_) * static_cast<double>(n_) * static_cast<double>(k_) * (Parts * Parts);
  }

  /// Rows of the next strip of those that are left: full, but the last two even, since a low tile has too few chains to hide the
  /// latency of an addition.
  static mint strip_of(mint left) {
    const mint registers = (left + lanes - 1) / lanes;
    if (registers <= shape::registers || registers >= 2 * shape::registers) return std::min(strip, left);
    return (registers + 1) / 2 * lanes;
  }
  static mint rounded(mint value, mint to) { return (value + to - 1) / to * to; }
  bool is_small() const {
    return k_ <= stretch && rounded(m_, strip) * k_ * Parts <= small_numbers &&
           rounded(n_, columns) * k_ * Parts <= small_numbers;
  }

  const T* a_at(mint i, mint l) const { return a_.data + (i * a_.row_step + l * a_.column_step) * Parts; }
  const T* b_at(mint l, mint j) const { return b_.data + (l * b_.row_step + j * b_.column_step) * Parts; }

  static bool is_zero(const T* x) { return x[0] == 0 && (Parts == 1 || x[Parts - 1] == 0); }

  /// Whether exact zeros in B can matter at all: where A is finite and C holds no -0, adding a zero changes nothing. The loops run
  /// along the data as they lie and decide once a column.
  void find_marks() {
    const bool by_columns = b_.row_step == 1;
    const mint lines = by_columns ? n_ : k_, length = by_columns ? k_ : n_;
    bool zeros = false;
    for (mint j = 0; j < lines && !zeros; ++j)
      zeros = holds_zero(by_columns ? b_at(0, j) : b_at(j, 0), length);
    if (!zeros) return;
    for (mint j = 0; j < n_ && !careful_ && !from_zero_; ++j)
      careful_ = holds_minus_zero(c_ + j * ldc_ * Parts, m_ * Parts);
    // Skips exist only for A as it lies, in columns.
    for (mint l = 0; l < k_ && !careful_; ++l) careful_ = !all_finite(a_at(0, l), m_ * Parts);
  }
  /// Gives C the zeros from which its sums start, for loops that add to it.
  void write_zeros() {
    for (mint j = 0; j < n_ && from_zero_; ++j) std::fill_n(c_ + j * ldc_ * Parts, m_ * Parts, T{0});
    from_zero_ = false;
  }
  static bool holds_zero(const T* line, mint length) {
    // Parts first: without a zero among them, which is quickly seen, there is none among the pairs.
    int found = 0;
    for (mint i = 0; i < length * Parts; ++i) found |= line[i] == 0;
    if (Parts == 1 || found == 0) return found != 0;
    for (mint i = 0; i < length; ++i) {
      if (is_zero(line + i * Parts)) return true;
    }
    return false;
  }
  static bool holds_minus_zero(const T* line, mint length) {
    int found = 0;
    for (mint i = 0; i < length; ++i) found |= to_bits(line[i]) == to_bits(-T{0});
    return found != 0;
  }
  static bool all_finite(const T* line, mint length) {
    int found = 0;
    for (mint i = 0; i < length; ++i) found |= !(std::abs(line[i]) <= std::numeric_limits<T>::max());
    return found == 0;
  }

  /// An element of B as the tiles take it.
  void put_b(mint l, mint j, T* to) const {
    const T* const x = b_at(l, j);
    if constexpr (Parts == 1) {
      *to = scales_ ? alpha_[0] * x[0] : x[0];
    } else {
      const complex_pair<T> as_is = {x[0], b_.conjugated ? -x[1] : x[1]};
      const complex_pair<T> scaled = scales_ ? complex_pair<T>{alpha_[0], alpha_[1]} * as_is : as_is;
      to[0] = scaled.re;
      to[1] = scaled.im;
    }
  }

  /// A strip of B, `columns` wide, for a stretch: for each k its elements side by side.
  void pack_b(mint l0, mint count, mint j0, mint width, T* to) const {
    if (b_.row_step == 1 && !scales_ && !b_.conjugated) {
      for (mint j = 0; j < width; ++j) {
        const T* const from = b_at(l0, j0 + j);
        for (mint l = 0; l < count; ++l) {
          for (mint p = 0; p < Parts; ++p) to[(l * columns + j) * Parts + p] = from[l * Parts + p];
        }
      }
      return;
    }
    for (mint j = 0; j < width; ++j) {
      for (mint l = 0; l < count; ++l) put_b(l0 + l, j0 + j, to + (l * columns + j) * Parts);
    }
  }

  /// Pairs into planes and back.
  static void split_column(const T* pairs, mint number, T* re, T* im) {
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
  static void join_column(const T* re, const T* im, mint number, T* pairs) {
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

  /// A strip of A, rows filled up with zeros to `height`: for each k its planes.
  void pack_a(mint i0, mint rows, mint height, mint l0, mint count, T* to) const {
    if (rows < height) std::fill_n(to, count * height * Parts, T{0});
    if (Parts == 1 && a_.row_step == 1) {
      for (mint l = 0; l < count; ++l) std::copy_n(a_at(i0, l0 + l), rows, to + l * height);
    } else if (a_.row_step == 1 && !a_.conjugated) {
      for (mint l = 0; l < count; ++l) {
        T* const re = to + l * height * Parts;
        split_column(a_at(i0, l0 + l), rows, re, re + height);
      }
    } else {
      const T sign = a_.conjugated ? T{-1} : T{1};
      for (mint i = 0; i < rows; ++i) {
        const T* const from = a_at(i0 + i, l0);
        for (mint l = 0; l < count; ++l) {
          T* const at = to + l * height * Parts + i;
          const T* const x = from + l * a_.column_step * Parts;
          at[0] = x[0];
          if constexpr (Parts == 2) at[height] = sign * x[1];
        }
      }
    }
  }

  /// One tile, through a copy of C where the tile is not full height or C is not in planes.
  void multiply_tile(mint count, const T* a, mint a_next, int registers, const T* b, mint b_next,
                     mint b_column, mint i0, mint rows, mint j0, int width, bool from_zero) const {
    alignas(64) static constexpr T zeros[strip * Parts] = {};
    T* const c = c_ + (i0 + j0 * ldc_) * Parts;
    const tile_function<T> tile = tile_of<T, Parts>(registers, width);
    const mint height = registers * lanes;
    if (Parts == 1 && rows == height) {
      return tile(count, a, b,
                  {a_next, b_next, b_column, from_zero ? zeros : c, from_zero ? 0 : ldc_, c, ldc_});
    }
    alignas(64) T copy[static_cast<size_t>(columns * strip * Parts)];
    const mint column = height * Parts;
    if (!from_zero) std::fill_n(copy, width * column, T{0});
    for (int j = 0; j < width && !from_zero; ++j) {
      const T* const from = c + j * ldc_ * Parts;
      T* const to = copy + j * column;
      if constexpr (Parts == 1) {
        std::copy_n(from, rows, to);
      } else {
        split_column(from, rows, to, to + height);
      }
    }
    tile(count, a, b,
         {a_next, b_next, b_column, from_zero ? zeros : copy, from_zero ? 0 : column, copy, column});
    for (int j = 0; j < width; ++j) {
      T* const to = c + j * ldc_ * Parts;
      const T* const from = copy + j * column;
      if constexpr (Parts == 1) {
        std::copy_n(from, rows, to);
      } else {
        join_column(from, from + height, rows, to);
      }
    }
  }

  bool lies_in_strips(mint rows) const { return in_place_ && a_.row_step == 1 && rows % lanes == 0; }
  bool b_lies() const { return in_place_ && !scales_; }

  /// All tiles of some rows, against strips of B that are packed.
  void multiply_rows(mint i0, mint rows, mint l0, mint count, mint j0, mint width, T* a_space,
                     const T* b_space) const {
    for (mint i = 0, here; i < rows; i += here) {
      here = strip_of(rows - i);
      const mint height = rounded(here, lanes);
      if (!lies_in_strips(here)) pack_a(i0 + i, here, height, l0, count, a_space + i * count * Parts);
    }
    for (mint j = 0; j < width; j += columns) {
      const int across = static_cast<int>(std::min<mint>(columns, width - j));
      for (mint i = 0, here; i < rows; i += here) {
        here = strip_of(rows - i);
        const int registers = static_cast<int>((here + lanes - 1) / lanes);
        const bool as_it_lies = lies_in_strips(here);
        multiply_tile(count, as_it_lies ? a_at(i0 + i, l0) : a_space + i * count * Parts,
                      as_it_lies ? a_.column_step : registers * lanes * Parts, registers,
                      b_lies() ? b_at(l0, j0 + j) : b_space + j * count * Parts,
                      b_lies() ? b_.row_step : columns * Parts, b_lies() ? b_.column_step : Parts, i0 + i,
                      here, j0 + j, across, from_zero_ && l0 == 0);
      }
    }
  }

  /// The reference's loops for some rows, with its skips; the chain of each element is that of the tiles.
  void multiply_carefully(mint i0, mint rows, mint l0, mint count, mint j0, mint width) const {
    for (mint j = j0; j < j0 + width; ++j) {
      for (mint l = l0; l < l0 + count; ++l) {
        if (skips_ && is_zero(b_at(l, j))) continue;
        T x[Parts];
        put_b(l, j, x);
        for (mint i = i0; i < i0 + rows; ++i) {
          const T* const a = a_at(i, l);
          T* const c = c_ + (i + j * ldc_) * Parts;
          if constexpr (Parts == 1) {
            c[0] = fused(a[0], x[0], c[0]);
          } else {
            const T a_im = a_.conjugated ? -a[1] : a[1];
            c[0] = fused(-a_im, x[1], fused(a[0], x[0], c[0]));
            c[1] = fused(a_im, x[0], fused(a[0], x[1], c[1]));
          }
        }
      }
    }
  }

  /// How the rows of C are shared out: each member of the team has as many as the others, but the last, and takes them in blocks.
  struct shares {
    int members;
    mint rows;   ///< of a member
    mint block;  ///< rows at once
  };
  shares share_out(int members) const {
    const mint rows = rounded((m_ + members - 1) / members, strip);
    const mint blocks = (rows + rows_at_once - 1) / rows_at_once;
    return {members, rows, rounded((rows + blocks - 1) / blocks, strip)};
  }

  void multiply_stretch(mint l0, mint count, mint j0, mint width, T* a_space, T* b_space,
                        const shares& shared) {
    const mint strips = (width + columns - 1) / columns;
    const auto pack = [&](mint first, mint number) {
      for (mint s = first; s < first + number; ++s) {
        const mint j = s * columns;
        pack_b(l0, count, j0 + j, std::min<mint>(columns, width - j), b_space + j * count * Parts);
      }
    };
    const auto multiply = [&](mint member, mint) {
      T* const own_space = a_space + member * shared.block * count * Parts;
      const mint end = std::min(m_, (member + 1) * shared.rows);
      for (mint i0 = member * shared.rows; i0 < end; i0 += shared.block) {
        const mint rows = std::min(shared.block, end - i0);
        if (careful_) {
          multiply_carefully(i0, rows, l0, count, j0, width);
        } else {
          multiply_rows(i0, rows, l0, count, j0, width, own_space, b_space);
        }
      }
    };
    const bool packs = !careful_ && !b_lies();
    if (shared.members == 1) {
      if (packs) pack(0, strips);
      multiply(0, 1);
      return;
    }
    if (packs) {
      parallel::for_chunks(strips, std::max<mint>(1, strips / (mint{4} * shared.members)), pack,
                           shared.members);
    }
    parallel::for_chunks(shared.members, 1, multiply, shared.members);
  }

  void run_blocks(int threads) {
    const shares shared = share_out(threads);
    const mint count = std::min(stretch, k_), width = std::min(columns_at_once, n_);
    memory::working_space<T> a_space(static_cast<uint64_t>(threads * shared.block * count * Parts),
                                     FailReport);
    memory::working_space<T> b_space(static_cast<uint64_t>(rounded(width, columns) * count * Parts),
                                     FailReport);
    if (!a_space || !b_space) {
      write_zeros();
      return multiply_carefully(0, m_, 0, k_, 0, n_);
    }
    for (mint j0 = 0; j0 < n_; j0 += columns_at_once) {
      for (mint l0 = 0; l0 < k_; l0 += stretch) {
        multiply_stretch(l0, std::min(stretch, k_ - l0), j0, std::min(columns_at_once, n_ - j0),
                         a_space.data(), b_space.data(), shared);
      }
    }
  }

  mint m_, n_, k_;
  factor<T> a_, b_;
  const T* alpha_;
  bool skips_;
  bool from_zero_;
  bool scales_ = false;
  bool careful_ = false;
  bool in_place_ = false;  ///< what lies as the tiles want it is not laid out anew: it will not be read often
  T* c_;
  mint ldc_;
};

}  // namespace vlm::blas
