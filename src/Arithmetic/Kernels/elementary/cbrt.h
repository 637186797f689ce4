// cbrt: a polynomial for m^(-1/3), one step of third order, one of Newton with the residue in fused
// multiply-add.
#pragma once

#include "Arithmetic/Kernels/elementary/common.h"

namespace vlm::elementary {

/// Real cube root; zeros and subnormal numbers included.
/// At most 0.501 ulp measured.
inline constexpr ordinary_range cbrt_range{0, 0x1.fffffffffffffp+1023, true};
template <class V> inline V cbrt(V x) {
  constexpr uint64_t significand_bits = (uint64_t{1} << 52) - 1;
  const V a = magnitude(x);
  const auto subnormal = a < lanes<V>(0x1p-1022);
  const V normal = select(subnormal, a * 0x1p54, a);
  const bits_of<V> bits = to_bits(normal);
  const V exponent = to_number((integers_of<V>)(bits >> 52)) - 1023.0;
  const V m = from_bits<V>((bits & significand_bits) | bits_of_one);
  // exponent = 3 third + remainder, remainder -1, 0 or 1; w = 2^remainder m.
  const auto third = nearest_integer(exponent, 1.0 / 3);
  const V remainder = fused(third.number, lanes<V>(-3.0), exponent);
  const V w = from_bits<V>(bits - (third.bits << 52) - (third.bits << 53));
  // 2^(-remainder/3) by a parabola through its three points.
  constexpr double up = 0x1.965fea53d6e3dp-1, down = 0x1.428a2f98d728bp+0;
  const V factor = fused(
      remainder, fused(remainder, lanes<V>((up + down) / 2 - 1), lanes<V>((up - down) / 2)), lanes<V>(1.0));
  const V inverse = polynomial<V>(m, inverse_cube_root_polynomial) * factor;
  const V inverse_square = inverse * inverse;
  const V guess = w * inverse_square;
  const V h = fused(-guess, inverse, lanes<V>(1.0));
  const V y = fused(guess * h, fused(h, lanes<V>(5.0 / 9), lanes<V>(2.0 / 3)), guess);
  const V square = y * y;
  const V square_low = fused(y, y, -square);
  const V excess = fused(square_low, y, fused(square, y, -w));
  const V root = fused(excess, inverse_square * (-1.0 / 3), y);
  const V scaled =
      from_bits<V>(to_bits(root) + (third.bits << 52)) * select(subnormal, lanes<V>(0x1p-18), lanes<V>(1.0));
  return signed_like(select(a == V{}, V{}, scaled), x);
}

}  // namespace vlm::elementary
