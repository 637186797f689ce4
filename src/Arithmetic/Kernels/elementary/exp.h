// exp, and the cores of the functions made from it. Table-driven after Tang (Table-driven implementation of
// the exponential function, ACM TOMS 15, 1989; expm1, ACM TOMS 18, 1992).
#pragma once

#include "Arithmetic/Kernels/elementary/common.h"

namespace vlm::elementary {

inline constexpr double sixteenths_per_e = 0x1.71547652b82fep+4;  // 16 / ln 2
inline constexpr double sixteenth_high = 0x1.62e42fefa39efp-5;    // ln 2 / 16
inline constexpr double sixteenth_low = 0x1.abc9e3b39803fp-60;

/// 2^(n/16) (1 + part) = exp(x), or of x and a small number besides.
template <class V> struct scaled_exp { V power, part; };
template <class V, class... Low> inline scaled_exp<V> exp_parts(V x, Low... low) {
  const auto n = nearest_integer(x, sixteenths_per_e);
  const V reduced = fused(n.number, lanes<V>(-sixteenth_low), fused(n.number, lanes<V>(-sixteenth_high), x));
  const V r = (reduced + ... + low);
  const V rest = fused(r * r, polynomial<V>(r, exp_polynomial), look_up(power_error, n.bits));
  return {from_bits<V>(to_bits(look_up(power_bits, n.bits)) + (n.bits << 48)), r + rest};
}

/// e^x. x = n ln 2 / 16 + r; the power of two has 60 good bits with its error term, and only 2 % of the
/// result is computed with a rounded r, so the last addition makes nearly all of the error; at most 0.54 ulp
/// measured in 1.5 million arguments.
inline constexpr ordinary_range exp_range{-708, 709, false};
template <class V> inline V exp(V x) {
  const auto e = exp_parts(x);
  return fused(e.power, e.part, e.power);
}

/// scale (high + low) = exp(x) - 1, scale a power of two, for -700 <= x <= 709.4. High and low overlap.
/// Where x is known not to be negative, T - 2^-k takes a shorter sum.
template <class V> struct scaled_expm1 { V high, low, scale; };
template <bool not_negative, class V> inline scaled_expm1<V> expm1_parts(V x) {
  const auto n = nearest_integer(x, sixteenths_per_e);
  const V r = fused(n.number, lanes<V>(-sixteenth_high), x);  // exact: a multiple of 2^-58 below 2^-5
  const V c = n.number * sixteenth_low;
  const V reduced = r - c;
  const V tail = fused(reduced * reduced, polynomial<V>(reduced, exp_polynomial), -c);
  // exp(x) - 1 = 2^k (T (1 + r + tail) - 2^-k), T = 2^(j/16), -8 <= j < 8. T is short, so that T - 2^-k is
  // exact where it cancels or 2^-k is the greater; r enters by a sum whose error is kept, all else is 2 % of
  // the result.
  const bits_of<V> k = ((n.bits + 8) >> 4) << 52;
  const V inverse_scale = from_bits<V>(bits_of_one - k);
  const V power = look_up(centred_power_high, n.bits);
  const auto less = not_negative ? ordered_sum(power, -inverse_scale) : exact_sum(power, -inverse_scale);
  const auto sum = ordered_sum(less.high, r);
  const V low = tail + (look_up(centred_power_low, n.bits) + (less.low + sum.low));
  return {sum.high, fused(look_up(centred_power_less_one, n.bits), r + tail, low),
          from_bits<V>(bits_of_one + k)};
}

/// e^x - 1, also for small x. At most 0.56 ulp measured.
inline constexpr ordinary_range expm1_range{-700, 709, false};
template <class V> inline V expm1(V x) {
  const auto e = expm1_parts<false>(x);
  const V y = (e.high + e.low) * e.scale;
  return from_bits<V>(to_bits(y) | (to_bits(x) & sign_bit));
}

}  // namespace vlm::elementary
