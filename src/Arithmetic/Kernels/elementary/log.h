// log, log1p. Table-driven after Tang (Table-driven implementation of the logarithm function, ACM TOMS 16,
// 1990).
#pragma once

#include "Arithmetic/Kernels/elementary/common.h"

namespace vlm::elementary {

/// log(x.high + x.low), x.high normal, |x.low| <= ulp(x.high) (or x.high = 1 + small with any x.low below
/// 2^-53). x = 2^k m, m in [0.823, 1.646), 1 in the middle of an interval whose c is 1: there log is r -
/// r^2/2 + ... with r = m - 1 exact. Elsewhere log is k ln 2 - log c + log1p(m c - 1), the great part a sum
/// whose error is kept.
template <bool with_low, class V> inline V log_of(pair<V> x) {
  constexpr uint64_t offset = 0x3fea4f0000000000;  // 1 - 0.0216 less five intervals
  constexpr uint64_t exponent_bits = uint64_t{0xfff} << 52;
  const bits_of<V> bits = to_bits(x.high);
  const bits_of<V> from_offset = bits - offset;
  const bits_of<V> exponent = from_offset & exponent_bits;
  const bits_of<V> index = from_offset >> 48;
  const V m = from_bits<V>(bits - exponent);
  const V k = to_number((integers_of<V>)from_offset >> 52);
  const V c = look_up(log_reciprocal, index);
  const V r = fused(m, c, lanes<V>(-1.0));
  const V high = fused(k, lanes<V>(0x1.62e42fefa38p-1), look_up(log_high, index));  // exact: 42 places
  const auto sum = ordered_sum(high, r);
  V low = fused(k, lanes<V>(0x1.ef35793c7673p-45), look_up(log_low, index)) + sum.low;
  V whole = r;
  if constexpr (with_low) {
    const V below = x.low * from_bits<V>(bits_of_one - exponent) * c;
    low = low + below;
    whole = r + below;
  }
  const V square = whole * whole;
  const V curve = fused(whole, polynomial<V>(whole, log_polynomial), lanes<V>(-0.5));
  return sum.high + fused(square, curve, low);
}

/// Natural logarithm. At most 0.64 ulp measured: next to the interval around 1, r is comparable to the result.
inline constexpr ordinary_range log_range{0x1p-1022, 0x1.fffffffffffffp+1023, false};
template <class V> inline V log(V x) { return log_of<false>(pair<V>{x, x}); }

/// log(1 + x), also for small x. At most 0.75 ulp measured, next to 2^-53; elsewhere as log.
inline constexpr ordinary_range log1p_range{-0x1.fffffffffffffp-1, 0x1p+1023, false};
template <class V> inline V log1p(V x) {
  const V y = log_of<true>(exact_sum(lanes<V>(1.0), x));
  return from_bits<V>(to_bits(y) | (to_bits(x) & sign_bit));
}

/// log sqrt((x.high + x.low)^2 + y^2), the argument of the logarithm to twice the precision, so that nothing is lost where it
/// is near 1; x.low at most half an ulp of x.high, 2^-450 <= max(|x|, |y|) <= 2^500.
template <class V> inline V log_magnitude(pair<V> x, V y) {
  const V xx = x.high * x.high, yy = y * y;
  const V xx_low = fused(x.high + x.high, x.low, fused(x.high, x.high, -xx));
  const auto sum = exact_sum(xx, yy);
  return log_of<true>(ordered_sum(sum.high, sum.low + (xx_low + fused(y, y, -yy)))) * 0.5;
}

}  // namespace vlm::elementary
