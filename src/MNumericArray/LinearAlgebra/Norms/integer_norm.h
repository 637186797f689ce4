// The infinity norm and the sum of magnitudes of integers.
#pragma once

#include <algorithm>
#include <limits>
#include <optional>
#include <type_traits>

#include "Arithmetic/Kernels/integer_arithmetic.h"
#include "velorim/base.h"

namespace vlm::norms {

/// Runs fold(m, x) over n elements and gives the last m. Contiguous elements are a loop of their own, for the compiler to
/// vectorise.
template <class T, class M, class Fold>
inline M folded(const T* x, mint n, mint stride, M m, const Fold& fold) {
  const auto run = [&](auto step) {
    for (mint i = 0; i < n; ++i) m = fold(m, x[i * step]);
    return m;
  };
  return stride == 1 ? run(std::integral_constant<mint, 1>{}) : run(stride);
}

/// The largest magnitude, which need not fit a signed T.
template <class T> std::make_unsigned_t<T> largest_magnitude(const T* x, mint n, mint stride) {
  using U = std::make_unsigned_t<T>;
  return folded(x, n, stride, U{0},
                [](U m, T v) { return std::max(m, machine_function::unsigned_magnitude(v)); });
}

/// The sum of magnitudes, wrapped at the width of T.
template <class T> std::make_unsigned_t<T> wrapped_total(const T* x, mint n, mint stride) {
  using U = std::make_unsigned_t<T>;
  return folded(x, n, stride, U{0},
                [](U sum, T v) { return static_cast<U>(sum + machine_function::unsigned_magnitude(v)); });
}

/// The sum of magnitudes if it and every sum on the way fit T. Sums only grow, so that a block whose largest magnitude leaves room
/// for all of its elements needs no test of the single steps.
template <class T> std::optional<T> checked_total(const T* x, mint n, mint stride) {
  using U = std::make_unsigned_t<T>;
  constexpr U most = static_cast<U>(std::numeric_limits<T>::max());
  constexpr mint block = 1024;
  U sum = 0;
  for (mint first = 0; first < n; first += block) {
    const T* const from = x + first * stride;
    const mint length = std::min(block, n - first);
    const U room = static_cast<U>(most - sum);
    if (largest_magnitude(from, length, stride) <= room / static_cast<uint64_t>(length)) {
      sum = static_cast<U>(sum + wrapped_total(from, length, stride));
      continue;
    }
    for (mint i = 0; i < length; ++i) {
      const U magnitude = machine_function::unsigned_magnitude(from[i * stride]);
      if (magnitude > most - sum) return std::nullopt;
      sum = static_cast<U>(sum + magnitude);
    }
  }
  return static_cast<T>(sum);
}

}  // namespace vlm::norms
