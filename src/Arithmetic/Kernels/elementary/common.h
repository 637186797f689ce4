// What the elementary functions share. Each is a template over V, a double or a register of doubles, written
// in IEEE operations, fused multiply-add, selection, operations on the bits and look-ups only: every V gives
// the same bits. They assume rounding to nearest, may raise stray exception flags, and hold in an ordinary
// range; outside of it a lane's result means nothing (the caller recomputes it), but nothing traps or reads
// beyond a table, whatever the argument.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "Arithmetic/Kernels/elementary/constants.h"
#include "Arithmetic/Kernels/ordinary_range.h"
#include "Includes/lanes.h"

namespace vlm::elementary {

template <class V> using bits_of = typename lanes_of<V>::unsigned_bits;
template <class V> using integers_of = typename lanes_of<V>::signed_bits;

inline constexpr uint64_t sign_bit = uint64_t{1} << 63;
inline constexpr uint64_t bits_of_one = uint64_t{1023} << 52;

/// The constant c in every lane.
template <class V> inline V lanes(double c) { return broadcast<V>(c); }

/// c[0] + c[1] x + ..., by Estrin's scheme (short chains instead of few operations).
template <class V, std::size_t n> inline V polynomial(V x, const std::array<V, n>& c) {
  if constexpr (n == 1) {
    return c[0];
  } else {
    std::array<V, (n + 1) / 2> pairs;
    for (std::size_t i = 0; i < n / 2; ++i) pairs[i] = fused(c[2 * i + 1], x, c[2 * i]);
    if constexpr (n % 2 == 1) pairs[n / 2] = c[n - 1];
    return polynomial<V, (n + 1) / 2>(x * x, pairs);
  }
}
template <class V, std::size_t n>
requires is_register<V>
inline V polynomial(V x, const std::array<double, n>& c) {
  std::array<V, n> lanes;
  for (std::size_t i = 0; i < n; ++i) lanes[i] = broadcast<V>(c[i]);
  return polynomial<V, n>(x, lanes);
}

/// The same with the constant added last, so that it is rounded once only: for terms that count in the
/// result.
template <class V, std::size_t n> inline V polynomial_constant_last(V x, const std::array<double, n>& c) {
  std::array<double, n - 1> rest;
  for (std::size_t i = 1; i < n; ++i) rest[i - 1] = c[i];
  return fused(x, polynomial<V>(x, rest), lanes<V>(c[0]));
}

/// The integer nearest to x * scale (|x * scale| < 2^51), as a number and in the low bits of a lane.
template <class V> struct integer_part {
  V number;
  bits_of<V> bits;
};
template <class V> inline integer_part<V> nearest_integer(V x, double scale) {
  constexpr double magic = 0x1.8p52;
  const V shifted = fused(x, broadcast<V>(scale), broadcast<V>(magic));
  return {shifted - magic, to_bits(shifted)};
}

/// An unevaluated sum.
template <class V> struct pair { V high, low; };

/// a + b exactly, for |a| >= |b| or a = 0 (Dekker).
template <class V> inline pair<V> ordered_sum(V a, V b) {
  const V sum = a + b;
  return {sum, (a - sum) + b};
}

/// a + b exactly (Knuth).
template <class V> inline pair<V> exact_sum(V a, V b) {
  const V sum = a + b;
  const V part = sum - a;
  return {sum, (a - (sum - part)) + (b - part)};
}

/// n / d to twice the precision, high part not rounded to nearest; n.low may be a tenth of n.high. A zero
/// n.high keeps its sign in high - minus_low.
template <class V> struct quotient { V high, minus_low; };
template <class V> inline quotient<V> divide(pair<V> n, pair<V> d) {
  const V reciprocal = broadcast<V>(1.0) / d.high;
  const V q = n.high * reciprocal;
  const V excess = fused(q, d.high, -n.high) + fused(q, d.low, -n.low);
  return {q, excess * reciprocal};
}

/// x, not negative, with the sign of s.
template <class V> inline V signed_like(V x, V s) {
  return from_bits<V>(to_bits(x) | (to_bits(s) & sign_bit));
}

}  // namespace vlm::elementary
