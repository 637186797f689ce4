// sin, cos, tan. The argument is reduced by multiples of pi/2 in three parts with fused multiply-add (Boldo,
// Daumas, Li: Formally verified argument reduction with a fused multiply-add, IEEE Trans. Computers 58,
// 2009).
#pragma once

#include "Arithmetic/Kernels/elementary/common.h"

namespace vlm::elementary {

/// x = number * pi/2 + high + low, |high| <= pi/4, for |x| <= 2^20. number * pi/2 is known to 139 bits,
/// beyond what the closest such x to a multiple needs. A zero keeps its sign in high - minus_low.
template <class V> struct quarter_turns {
  V high, minus_low;
  bits_of<V> number;
};
template <class V> inline quarter_turns<V> reduce(V x) {
  const auto n = nearest_integer(x, 0x1.45f306dc9c883p-1);
  const V first = fused(n.number, lanes<V>(-0x1.921fb54442d18p+0), x);  // exact: a multiple of 2^-53 below 1
  const V second = lanes<V>(0x1.1a6263318p-54);                         // 33 bits: its multiples are exact
  const V high = fused(n.number, -second, first);
  const V error = fused(n.number, second, high - first);
  return {high, fused(n.number, lanes<V>(-0x1.d1fc8f8cbb5bfp-89), error), n.bits};
}

/// The sine and the cosine of a reduced argument: both series are summed, each with what its leading terms lose to rounding.
template <class V> struct reduced_sine_cosine { V sin, cos; };
template <class V> inline reduced_sine_cosine<V> of_reduced(const quarter_turns<V>& q) {
  const V r = q.high;
  const V z = r * r;
  const V sin = r - fused(r * z, polynomial_constant_last<V>(z, sin_polynomial), q.minus_low);
  const V half = r * 0.5;
  const V one = lanes<V>(1.0);
  const V great = fused(-half, r, one);
  const V rest = fused(-half, r, one - great);
  const V cos =
      great + fused(z * z, polynomial_constant_last<V>(z, cos_polynomial), fused(r, q.minus_low, rest));
  return {sin, cos};
}

/// sin(x + quarters pi/2): the quadrant selects one of the two.
template <int quarters, class V> inline V in_quadrant(const reduced_sine_cosine<V>& of, bits_of<V> number) {
  const bits_of<V> turn = number + static_cast<uint64_t>(quarters);
  const V y = select((turn & uint64_t{1}) == uint64_t{0}, of.sin, of.cos);
  return from_bits<V>(to_bits(y) ^ ((turn << 62) & sign_bit));
}
template <int quarters, class V> inline V sine(V x) {
  const auto q = reduce(x);
  return in_quadrant<quarters>(of_reduced(q), q.number);
}

/// At most 0.83 ulp measured: near pi/4 the cubic term is 8 % of the result and is rounded three times.
inline constexpr ordinary_range sin_range{0, 0x1p20, true};
template <class V> inline V sin(V x) { return sine<0>(x); }

/// At most 0.84 ulp measured, where it is the sine of the reduced argument.
inline constexpr ordinary_range cos_range{0, 0x1p20, true};
template <class V> inline V cos(V x) { return sine<1>(x); }

/// Both at the price of little more than one.
template <class V> struct sine_and_cosine { V sin, cos; };
template <class V> inline sine_and_cosine<V> sin_cos(V x) {
  const auto q = reduce(x);
  const auto of = of_reduced(q);
  return {in_quadrant<0>(of, q.number), in_quadrant<1>(of, q.number)};
}

/// With t = 2 tan(r/2): tan r = t / (1 - t^2/4), and in odd quadrants -1 / tan r.
/// At most 0.84 ulp measured.
inline constexpr ordinary_range tan_range{0, 0x1p20, true};
template <class V> inline V tan(V x) {
  const auto q = reduce(x);
  const V r = q.high;
  const V z = r * r;
  // A compiler may turn -(a b + c) into (-a) b - c, which makes other zeros: q.minus_low is not negated.
  const V less = fused(-(r * z), polynomial_constant_last<V>(z, half_tan_polynomial), q.minus_low);
  const V t = r - less;
  const V t_low = (r - t) - less;
  const V one = lanes<V>(1.0);
  const V quarter = t * 0.25;
  const V d = fused(-quarter, t, one);
  const V d_low = fused(-quarter, t, one - d) - (quarter + quarter) * t_low;
  const auto even = (q.number & uint64_t{1}) == uint64_t{0};
  const auto y = divide<V>({select(even, t, d), select(even, t_low, d_low)},
                           {select(even, d, t), select(even, d_low, t_low)});
  return from_bits<V>(to_bits(y.high - y.minus_low) ^ (q.number << 63));
}

}  // namespace vlm::elementary
