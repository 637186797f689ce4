// Powers with an integer exponent, by products. Which products are made, and in which order, is part of the result: every rounding
// counts.
//
//   exponent e         road
//   0                  1, whatever the base (0 to the power 0 is the caller's affair)
//   1 to 8             bits of e from the highest down: square, and times x where the bit is set
//   9 to below 2^25    two bits of e at a time: to the power 4, and times x, x^2 or x^3
//   2^25 and above     pow(|x|, e), with the sign of x if e is odd
//
// A negative exponent gives 1 over the power of its magnitude. None of this tests its result.
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>

#include "Arithmetic/Kernels/integer_arithmetic.h"
#include "Includes/lanes.h"
#include "Includes/real16.h"
#include "velorim/base.h"

namespace vlm::machine_function {

/// Exponents from here on go by pow for real bases, and by the polar form for complex ones.
inline constexpr uint64_t first_exponent_without_products = uint64_t{1} << 25;
inline constexpr uint64_t first_exponent_without_complex_products = uint64_t{1} << 11;

/// x to the power e, e at least 1, by the first two roads of products; V is whatever `times` multiplies: a number, a register, a
/// complex number.
template <class V, class Product> inline V power_by_products(V x, uint64_t e, Product&& times) {
  int bits = static_cast<int>(std::bit_width(e)) - 1;  // those behind the highest
  V power = x;
  if (e <= 8) {
    while (bits-- > 0) {
      power = times(power, power);
      if (e >> bits & 1) power = times(power, x);
    }
    return power;
  }
  const V square = times(x, x);
  const V cube = times(square, x);
  const auto times_power_of = [&](V v, uint64_t two_bits) {
    switch (two_bits) {
      case 1:
        return times(v, x);
      case 2:
        return times(v, square);
      case 3:
        return times(v, cube);
      default:
        return v;
    }
  };
  power = times(square, square);
  bits -= 2;
  power = times_power_of(power, e >> bits & 3);
  while (bits >= 2) {
    power = times(power, power);
    power = times(power, power);
    bits -= 2;
    power = times_power_of(power, e >> bits & 3);
  }
  if (bits == 1) {
    power = times(power, power);
    if (e & 1) power = times(power, x);
  }
  return power;
}

/// The arithmetic that integer_power needs of double, float and their registers.
struct native_power_arithmetic {
  template <class V> static V one() { return broadcast<V>(1); }
  template <class V> static V product(V x, V y) { return x * y; }
  template <class V> static V quotient(V x, V y) { return x / y; }
  /// pow(|x|, e), negated if x is negative and e odd.
  template <class V> static V by_pow(V x, uint64_t e) {
    if constexpr (is_register<V>) {
      for (int i = 0; i < lanes_of<V>::count; ++i) x[i] = by_pow<number_of<V>>(x[i], e);
      return x;
    } else {
      const V power = std::pow(std::abs(x), static_cast<V>(e));
      return x < 0 && (e & 1) != 0 ? -power : power;
    }
  }
};

/// The same of Real16: each step is rounded to it.
struct real16_power_arithmetic {
  template <class> static real16 one() { return real16{0x3C00}; }
  static real16 product(real16 x, real16 y) { return multiply(x, y); }
  static real16 quotient(real16 x, real16 y) { return divide(x, y); }
  static real16 by_pow(real16 x, uint64_t e) {
    const auto wide_pow = [e](double base) { return std::pow(base, static_cast<double>(e)); };
    const real16 power = evaluate(wide_pow, magnitude(x));
    return sign_bit(x) && (e & 1) != 0 ? negated(power) : power;
  }
};

template <class V> struct power_arithmetic_of : native_power_arithmetic {};
template <> struct power_arithmetic_of<real16> : real16_power_arithmetic {};

/// x to the power y for a real number or a register of them: double, float, Real16. 1 for y = 0.
template <class V> inline V integer_power(V x, mint y) {
  using arithmetic = power_arithmetic_of<V>;
  if (y == 0) return arithmetic::template one<V>();
  const uint64_t e = unsigned_magnitude(y);
  const V power = e < first_exponent_without_products
                      ? power_by_products(x, e, [](V a, V b) { return arithmetic::product(a, b); })
                      : arithmetic::by_pow(x, e);
  return y < 0 ? arithmetic::quotient(arithmetic::template one<V>(), power) : power;
}

}  // namespace vlm::machine_function
