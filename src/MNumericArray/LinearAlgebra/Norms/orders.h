// The norms of each order over a sequence of magnitudes: one loop for the infinity norm, one for the sum, and one, in
// scaled_sum.h, for every other order. The sequence is a function of the position.
#pragma once

#include <cstdint>
#include <limits>
#include <type_traits>

#include "MNumericArray/LinearAlgebra/BLAS/Level1/scaled_sum.h"
#include "MNumericArray/LinearAlgebra/Norms/real_number.h"
#include "velorim/machine_functions.h"
#include "velorim/status.h"

namespace vlm::norms {

inline constexpr mint infinite_order = std::numeric_limits<mint>::max();

/// n magnitudes, value_at(0) to value_at(n - 1).
template <class T, class ValueAt> struct magnitudes {
  mint n;
  ValueAt value_at;
};
template <class ValueAt>
magnitudes(mint, ValueAt) -> magnitudes<std::invoke_result_t<ValueAt, mint>, ValueAt>;

/// NaNs are passed over.
template <class T, class ValueAt> T largest(const magnitudes<T, ValueAt>& v) {
  T m = 0;
  for (mint i = 0; i < v.n; ++i) {
    const T x = v.value_at(i);
    if (exceeds(x, m)) m = x;
  }
  return m;
}

template <class T, class ValueAt> T total(const magnitudes<T, ValueAt>& v) {
  T sum = 0;
  for (mint i = 0; i < v.n; ++i) sum = sum + v.value_at(i);
  return sum;
}

template <class T, class ValueAt, class Power>
blas::scaled_sum<T> scaled_total(const magnitudes<T, ValueAt>& v, const Power& power) {
  blas::scaled_sum<T> sum;
  for (mint i = 0; i < v.n; ++i) sum.add(v.value_at(i), power);
  return sum;
}

/// The norm of order p. For the mean, sums are divided by `divisor` before the root; 1 leaves them alone.
template <class T, class ValueAt> T norm(mint p, const magnitudes<T, ValueAt>& v, T divisor = T(1)) {
  if (p == infinite_order) return largest(v);
  if (p == 1) return total(v) / divisor;
  if (p == 2) {
    const auto [scale, sum] = scaled_total(v, blas::squared{});
    return scale * root(sum / divisor);
  }
  const auto [scale, sum] = scaled_total(v, to_power<T>{p});
  return scale * root_of_order(sum / divisor, p);
}

/// Stores a result unless the flags forbid it: NaN or infinity under MACHFUNC_CHECK_FP.
template <class Element> int32_t conclude(Element* result, Element value, uint32_t flags) {
  if ((flags & MACHFUNC_CHECK_FP) != 0 && is_fp_exception(value)) return ArrayStatusArithmetic;
  *result = value;
  return ArrayStatusOk;
}

}  // namespace vlm::norms
