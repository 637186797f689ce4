// The place of the first element of largest magnitude: the largest magnitude of a block by registers, then its place.
#pragma once

#include <algorithm>
#include <cmath>
#include <mutex>

#include "Arithmetic/Parallel/team.h"
#include "Includes/lanes.h"
#include "velorim/base.h"

namespace vlm::blas {

/// An element by its position, from 0, and its magnitude.
template <class T> struct place {
  T magnitude;
  mint index;
  bool operator<(const place& other) const {
    return other.magnitude > magnitude || (other.magnitude == magnitude && other.index < index);
  }
};

/// The largest magnitude of a run, at least 0. No NaN exceeds anything.
template <class T> T largest_in_block(const T* x, mint n) {
  using V = register_of<T>;
  constexpr mint lanes = lanes_of<V>::count, side_by_side = 4;
  constexpr int bytes_ahead = 2048;
  V largest[side_by_side] = {};
  const auto take = [](auto& m, auto v) { m = select(v > m, v, m); };
  mint i = 0;
  for (; i + side_by_side * lanes <= n; i += side_by_side * lanes) {
    for (mint k = 0; k < side_by_side; ++k) {
      const T* const v = x + i + k * lanes;
      __builtin_prefetch(reinterpret_cast<const char*>(v) + bytes_ahead);
      take(largest[k], magnitude(load<V>(v)));
    }
  }
  T m = 0;
  for (const V& v : largest) {
    for (int k = 0; k < lanes; ++k) take(m, T(v[k]));
  }
  for (; i < n; ++i) take(m, magnitude(x[i]));
  return m;
}

/// The first of the largest among x[first] to x[first + n - 1]; index -1 and magnitude 0 if nothing exceeds 0.
template <class T> place<T> largest_in_run(const T* x, mint first, mint n) {
  constexpr mint block = 4096;
  place<T> largest = {0, -1};
  for (mint i = first; i < first + n; i += block) {
    const mint end = std::min(i + block, first + n);
    const T m = largest_in_block(x + i, end - i);
    if (m > largest.magnitude) largest = {m, i};
  }
  if (largest.index >= 0) {
    while (magnitude(x[largest.index]) != largest.magnitude) ++largest.index;
  }
  return largest;
}

/// Its one-based position; 0 for n or incx below 1. In the first place nothing exceeds a NaN.
template <class T> mint index_of_largest(mint n, const T* x, mint incx) {
  if (n < 1 || incx < 1) return 0;
  place<T> largest = {magnitude(x[0]), 0};
  if (std::isnan(largest.magnitude)) return 1;
  if (incx != 1) {
    for (mint i = 1; i < n; ++i) {
      const T m = magnitude(x[i * incx]);
      if (m > largest.magnitude) largest = {m, i};
    }
    return largest.index + 1;
  }
  const parallel::length_pair lengths = parallel::lengths(parallel::family::reducing);
  if (!parallel::use_team(n, lengths.threshold)) return std::max(largest_in_run(x, 0, n).index, mint{0}) + 1;
  std::mutex mutex;
  parallel::for_chunks(n, std::max(lengths.chunk, mint{1}), [&](mint first, mint length) {
    const place<T> found = largest_in_run(x, first, length);
    const std::lock_guard lock(mutex);
    if (found.index >= 0 && largest < found) largest = found;
  });
  return largest.index + 1;
}

}  // namespace vlm::blas
