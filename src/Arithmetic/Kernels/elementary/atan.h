// atan, by a table of middles and one division.
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

}  // namespace vlm::elementary
