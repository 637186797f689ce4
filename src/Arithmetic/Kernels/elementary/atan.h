// atan and atan2, by a table of middles.
#pragma once

#include "Arithmetic/Kernels/elementary/common.h"

namespace vlm::elementary {

/// atan a = atan c + atan((a - c) / (1 + a c)), c the middle of the half octave that a = |x| lies in; atan a
/// = pi/2 + atan(-1/a) from 16 on.
/// At most 0.69 ulp measured: the quotient, up to a quarter of the result, keeps the error of its rounded divisor.
inline constexpr ordinary_range atan_range{0, 0x1p+1000, true};
template <class V> inline V atan(V x) {
  constexpr uint64_t bits_before_first = 0x3fb8000000000000;  // one interval below 1/8
  const V a = magnitude(x);
  const V end = lanes<V>(16.0);
  const V start = lanes<V>(0.1);
  const auto inside = a < end;
  const V bounded = select(inside, select(a > start, a, start), end);
  const bits_of<V> index = (to_bits(bounded) - bits_before_first) >> 51;
  const V c = look_up(atan_middle, index);
  const V s = select(inside, lanes<V>(1.0), V{});
  const V n = fused(s, a, -c);
  const V d = fused(a, c, s);
  const V reciprocal = lanes<V>(1.0) / d;
  const V t = n * reciprocal;
  const V t_minus_low = fused(t, d, -n) * reciprocal;
  const V z = t * t;
  const auto sum = ordered_sum(look_up(atan_high, index), t);
  const V rest = fused(t * z, polynomial<V>(z, atan_polynomial), t_minus_low);
  return signed_like(sum.high + ((sum.low + look_up(atan_low, index)) - rest), x);
}

/// The angle of (x, y), signs of zeros as in C, 2^-450 <= max(|x|, |y|) <= 2^500. As atan of the ratio, whose difference to a
/// middle is formed from y and x themselves; the division y / x only tells the interval. In the left half plane the angle is
/// taken from pi.
template <class V> inline V atan2(V y, V x) {
  constexpr uint64_t bits_before_first = 0x3fb8000000000000;
  const V n = magnitude(y), d = magnitude(x);
  const V ratio = n / d;
  const V end = lanes<V>(16.0);
  const V start = lanes<V>(0.1);
  const auto inside = ratio < end;
  const V bounded = select(inside, select(ratio > start, ratio, start), end);
  const bits_of<V> index = (to_bits(bounded) - bits_before_first) >> 51;
  const V c = look_up(atan_middle, index);
  const V s = select(inside, lanes<V>(1.0), V{});
  const V above = fused(-c, d, s * n);
  const V below = fused(c, n, s * d);
  const V reciprocal = lanes<V>(1.0) / below;
  const V t = above * reciprocal;
  const V t_minus_low = fused(t, below, -above) * reciprocal;
  const V z = t * t;
  const V rest = fused(t * z, polynomial<V>(z, atan_polynomial), t_minus_low);

  const bits_of<V> left = to_bits(x) & sign_bit;
  const auto is_left = left != uint64_t{0};
  const V middle = look_up(atan_high, index);
  const V pi = lanes<V>(0x1.921fb54442d18p+1);
  const V from_pi = pi - middle;
  const V base = select(is_left, from_pi, middle);
  const V low = look_up(atan_low, index);
  const V base_low =
      select(is_left, ((pi - from_pi) - middle) + (lanes<V>(0x1.1a62633145c07p-53) - low), low);
  const auto sum = ordered_sum(base, from_bits<V>(to_bits(t) ^ left));
  return signed_like(sum.high + ((sum.low + base_low) - from_bits<V>(to_bits(rest) ^ left)), y);
}

}  // namespace vlm::elementary
