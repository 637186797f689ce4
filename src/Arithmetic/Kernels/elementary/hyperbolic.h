// sinh, cosh, tanh, asinh, from the cores of expm1, exp and log.
#pragma once

#include "Arithmetic/Kernels/elementary/exp.h"
#include "Arithmetic/Kernels/elementary/log.h"

namespace vlm::elementary {

/// exp(x) - 1 to more than double precision, not scaled, x >= 0.
template <class V> inline pair<V> expm1_pair(V x) {
  const auto e = expm1_parts<true>(x);
  const auto sum = ordered_sum(e.high, e.low);
  return {sum.high * e.scale, sum.low * e.scale};
}

/// e + c to more than double precision.
template <class V> inline pair<V> plus(double c, pair<V> e) {
  const auto sum = exact_sum(lanes<V>(c), e.high);
  return {sum.high, sum.low + e.low};
}

/// (E + E / (E + 1)) / 2 with E = exp|x| - 1.
/// At most 0.56 ulp measured.
inline constexpr ordinary_range sinh_range{0, 709, true};
template <class V> inline V sinh(V x) {
  const auto e = expm1_pair(magnitude(x));
  const auto q = divide(e, plus(1.0, e));
  const auto sum = ordered_sum(e.high, q.high);
  return signed_like((sum.high + (sum.low + (e.low - q.minus_low))) * 0.5, x);
}

/// (e^|x| + 1 / e^|x|) / 2.
/// At most 0.63 ulp measured: the quotient is rounded by itself.
inline constexpr ordinary_range cosh_range{0, 709, true};
template <class V> inline V cosh(V x) {
  const auto e = exp_parts(magnitude(x));
  const V high = fused(e.power, e.part, e.power);
  const V low = fused(e.power, e.part, e.power - high);
  const V inverse = lanes<V>(1.0) / high;
  const auto sum = ordered_sum(high, inverse);
  return (sum.high + (sum.low + fused(-low * inverse, inverse, low))) * 0.5;
}

/// Both from one quotient q = E / (E + 1): (E + q) / 2 and 1 + (E - q) / 2. Within 1 ulp, in the range of cosh.
template <class V> struct hyperbolic_sine_and_cosine { V sinh, cosh; };
template <class V> inline hyperbolic_sine_and_cosine<V> sinh_cosh(V x) {
  const auto e = expm1_pair(magnitude(x));
  const auto q = divide(e, plus(1.0, e));
  const V low = e.low - q.minus_low;
  const auto sum = ordered_sum(e.high, q.high);
  const auto difference = ordered_sum(e.high, -q.high);
  const V high = difference.high * 0.5;
  const auto whole = exact_sum(lanes<V>(1.0), high);
  return {signed_like((sum.high + (sum.low + low)) * 0.5, x),
          whole.high + fused(difference.low + (e.low + q.minus_low), lanes<V>(0.5), whole.low)};
}

/// E / (E + 2) with E = exp(2|x|) - 1; from 22 on the result is 1.
/// At most 0.56 ulp measured.
inline constexpr ordinary_range tanh_range{0, 0x1.fffffffffffffp+1023, true};
template <class V> inline V tanh(V x) {
  const V a = magnitude(x);
  const V limit = lanes<V>(22.0);
  const V bounded = select(a < limit, a, limit);
  const auto e = expm1_pair(bounded + bounded);
  const auto q = divide(e, plus(2.0, e));
  return signed_like(q.high - q.minus_low, x);
}

/// log(a + sqrt(1 + a^2)), a = |x|, its argument to twice the precision; below 2^-9 three terms of the
/// series.
/// At most 0.64 ulp measured.
inline constexpr ordinary_range asinh_range{0, 0x1p500, true};
template <class V> inline V asinh(V x) {
  const V a = magnitude(x);
  const V square = a * a;
  const auto sum = exact_sum(lanes<V>(1.0), square);
  const V root = square_root(sum.high);
  const V residue = fused(-root, root, sum.high) + (sum.low + fused(a, a, -square));
  const V root_low = residue * (lanes<V>(0.5) / root);
  const auto whole = ordered_sum(root, a);
  const auto argument = ordered_sum(whole.high, whole.low + root_low);
  const V series = fused(a * square, fused(square, lanes<V>(3.0 / 40), lanes<V>(-1.0 / 6)), a);
  return signed_like(select(a < lanes<V>(0x1p-9), series, log_of<true>(argument)), x);
}

}  // namespace vlm::elementary
