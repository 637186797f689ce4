// C := C + A B, or C := A B. Every way below makes each element by the same chain, k ascending:
//
//   small       factors where they lie, or laid out on the stack; no allocation
//   few rows    B where it lies; members of the team share the columns
//   few columns A where it lies, read once (few_columns.h); members share the rows
//   blocks      stretches of k, for which all of B that is needed and then rows of A are laid out for the tiles; members share the rows
//   carefully   the reference's loops, for data on which a zero in B leaves out something that would show
#pragma once

#include <algorithm>
#include <cmath>

#include "Arithmetic/Parallel/team.h"
#include "MNumericArray/LinearAlgebra/BLAS/Level3/few_columns.h"
#include "MNumericArray/LinearAlgebra/BLAS/Level3/packing.h"
#include "MNumericArray/LinearAlgebra/BLAS/Level3/tile.h"
#include "Memory/working_space.h"

namespace vlm::blas {

template <class T, int Parts> class product {
 public:
  /// `skips`: a row of A's columns whose factor in B is exactly 0 leaves no mark on C. alpha multiplies B's elements; 1 leaves them
  /// as they are. `from_zero`: the sums start from 0, whatever C holds.
  product(mint m, mint n, mint k, const factor<T, Parts>& a, const factor<T, Parts>& b, const T* alpha,
          bool skips, T* c, mint ldc, bool from_zero)
      : m_(m), n_(n), k_(k), a_(a), b_(b, alpha), skips_(skips), from_zero_(from_zero), c_(c), ldc_(ldc) {}

  void run() {
    if (m_ == 0 || n_ == 0 || k_ == 0) return;
    if (skips_) find_marks();
    if (careful_) write_zeros();
    const int threads = parallel::use_team(work() >= team_work, 1) ? parallel::team_size() : 1;
    const bool small = threads == 1 && is_small();
    // What will be read once or twice is not laid out anew.
    a_stays_ = Parts == 1 && a_.row_step == 1 && (small || n_ <= columns);
    b_stays_ = !b_.scales && !b_.conjugated && (small || m_ <= few_rows);
    if (small) {
      alignas(64) T a_space[small_numbers];
      alignas(64) T b_space[small_numbers];
      multiply_stretch(0, k_, 0, n_, a_space, b_space, {1, m_, m_});
    } else if (m_ <= few_rows && b_stays_) {
      run_few_rows(threads);
    } else if (has_few_columns()) {
      run_few_columns(threads);
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
  static constexpr mint columns_packed_at_once = 16;
  static constexpr mint few_rows = 24;
  static constexpr mint few_rows_space = (few_rows + lanes) * stretch * Parts;
  static constexpr mint few_columns_rows = 1024;           ///< of C, in the first-level cache
  static constexpr mint small_numbers = 9216;              ///< room on the stack for either factor
  static constexpr double team_work = 96.0 * 96.0 * 96.0;  ///< multiplications that are worth the team

  double work() const {
    return static_cast<double>(m_) * static_cast<double>(n_) * static_cast<double>(k_) * (Parts * Parts);
  }

  /// Rows of the next strip of those that are left: full, but the last two even, since a low tile has too few chains to hide the
  /// latency of an addition.
  static mint strip_of(mint left) {
    const mint registers = (left + lanes - 1) / lanes;
    return registers <= shape::registers ? left : std::min(strip, (registers + 1) / 2 * lanes);
  }
  /// Columns of the next tile, in the same way where B's strips are not laid out in full width.
  mint columns_of(mint left) const {
    return b_stays_ && left > columns ? std::min(columns, (left + 1) / 2) : std::min(columns, left);
  }
  static mint rounded(mint value, mint to) { return (value + to - 1) / to * to; }
  bool is_small() const {
    return k_ <= stretch && rounded(m_, strip) * k_ * Parts <= small_numbers &&
           rounded(n_, columns) * k_ * Parts <= small_numbers;
  }

  bool has_few_columns() const {
    return n_ <= few_columns && m_ > few_rows && a_.row_step == 1 && !a_.conjugated && !careful_;
  }

  static bool is_zero(const T* x) { return x[0] == 0 && (Parts == 1 || x[Parts - 1] == 0); }

  /// Whether exact zeros in B can matter at all: where A is finite and C holds no -0, adding a zero changes nothing. The smaller
  /// factor is looked at first, along the data as they lie.
  void find_marks() {
    careful_ = m_ < n_ ? zeros_would_show() && b_holds_zero() : b_holds_zero() && zeros_would_show();
  }
  bool b_holds_zero() const {
    const bool by_columns = b_.row_step == 1;
    return any_line(b_.data, by_columns ? n_ : k_, by_columns ? k_ : n_,
                    by_columns ? b_.column_step : b_.row_step, holds_zero);
  }
  bool zeros_would_show() const {
    if (!from_zero_ && any_line(c_, n_, m_, ldc_, holds_minus_zero)) return true;
    // Skips exist only for A as it lies, in columns.
    return any_line(a_.data, k_, m_, a_.column_step, holds_non_finite);
  }
  /// Whether one of some lines of elements holds what `holds` looks for. Lines without gaps are one.
  template <class Holds>
  static bool any_line(const T* data, mint lines, mint length, mint step, Holds holds) {
    if (step == length) return holds(data, lines * length);
    for (mint i = 0; i < lines; ++i) {
      if (holds(data + i * step * Parts, length)) return true;
    }
    return false;
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
    for (mint i = 0; i < length * Parts; ++i) found |= to_bits(line[i]) == to_bits(-T{0});
    return found != 0;
  }
  static bool holds_non_finite(const T* line, mint length) {
    int found = 0;
    for (mint i = 0; i < length * Parts; ++i) found |= !(std::abs(line[i]) <= std::numeric_limits<T>::max());
    return found != 0;
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

  bool stays(mint rows) const { return a_stays_ && rows % lanes == 0; }

  /// The strips of some rows, side by side, unless they stay where they are. A that lies in columns is read some columns at a time, so
  /// that each is read on from strip to strip.
  void pack_strips(mint i0, mint rows, mint l0, mint count, T* a_space) const {
    const mint at_once = a_.row_step == 1 ? columns_packed_at_once : count;
    for (mint l = 0; l < count; l += at_once) {
      for (mint i = 0, here; i < rows; i += here) {
        here = strip_of(rows - i);
        const mint height = rounded(here, lanes);
        T* const to = a_space + (i * count + l * height) * Parts;
        if (!stays(here)) pack_left(a_, i0 + i, here, height, l0 + l, std::min(at_once, count - l), to);
      }
    }
  }

  /// All tiles of some rows, against strips of B that are packed or stay where they are.
  void multiply_rows(mint i0, mint rows, mint l0, mint count, mint j0, mint width, T* a_space,
                     const T* b_space) const {
    pack_strips(i0, rows, l0, count, a_space);
    for (mint j = 0, across; j < width; j += across) {
      across = columns_of(width - j);
      for (mint i = 0, here; i < rows; i += here) {
        here = strip_of(rows - i);
        const int registers = static_cast<int>((here + lanes - 1) / lanes);
        const bool as_it_lies = stays(here);
        multiply_tile(count, as_it_lies ? a_.at(i0 + i, l0) : a_space + i * count * Parts,
                      as_it_lies ? a_.column_step : registers * lanes * Parts, registers,
                      b_stays_ ? b_.at(l0, j0 + j) : b_space + j * count * Parts,
                      b_stays_ ? b_.row_step * Parts : columns * Parts,
                      b_stays_ ? b_.column_step * Parts : Parts, i0 + i, here, j0 + j,
                      static_cast<int>(across), from_zero_ && l0 == 0);
      }
    }
  }

  /// The reference's loops for some rows, with its skips; the chain of each element is that of the tiles.
  void multiply_carefully(mint i0, mint rows, mint l0, mint count, mint j0, mint width) const {
    for (mint j = j0; j < j0 + width; ++j) {
      for (mint l = l0; l < l0 + count; ++l) {
        if (skips_ && is_zero(b_.at(l, j))) continue;
        T x[Parts];
        b_.put(l, j, x);
        for (mint i = i0; i < i0 + rows; ++i) {
          const T* const a = a_.at(i, l);
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
        pack_right<T, Parts, columns>(b_, l0, count, j0 + j, std::min<mint>(columns, width - j),
                                      b_space + j * count * Parts);
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
    const bool packs = !careful_ && !b_stays_;
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

  void run_few_rows(int threads) {
    const auto multiply = [&](mint j0, mint width) {
      alignas(64) T a_space[few_rows_space];
      for (mint l0 = 0; l0 < k_; l0 += stretch) {
        multiply_stretch(l0, std::min(stretch, k_ - l0), j0, width, a_space, nullptr, {1, m_, m_});
      }
    };
    if (threads == 1) {
      multiply(0, n_);
    } else {
      parallel::for_chunks(n_, rounded((n_ + threads - 1) / threads, columns), multiply, threads);
    }
  }

  void run_few_columns(int threads) {
    write_zeros();
    const auto multiply = [&](mint first, mint length) {
      for (mint i = first; i < first + length; i += few_columns_rows) {
        multiply_few_columns(i, std::min(few_columns_rows, first + length - i), n_, k_, a_, b_, c_, ldc_);
      }
    };
    if (threads == 1) {
      multiply(0, m_);
    } else {
      parallel::for_chunks(m_, rounded((m_ + threads - 1) / threads, lanes), multiply, threads);
    }
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
  factor<T, Parts> a_;
  right_factor<T, Parts> b_;
  bool skips_;
  bool from_zero_;
  bool careful_ = false;
  bool a_stays_ = false;  ///< where it lies as the tiles want it
  bool b_stays_ = false;
  T* c_;
  mint ldc_;
};

}  // namespace vlm::blas
