// Complex product and quotient, for numbers and for registers of them.
//
// The plain forms are the formulas alone, over V = double, float or a register of either, the same bits for
// every V. The full forms, on numbers, recover infinities that the formulas lose to NaN (C11, annex G.5.1). A
// loop over registers takes the plain form and goes back to the full form for the lanes that finite_lanes and is_plain_divisor do not
// vouch for.
//
// Each product of reals is rounded before it is added: x conj(x) has an imaginary part of exactly 0. Compilers
// that join a multiplication to an addition in pairs of parts are kept from it by rounded().
#pragma once

#include <cmath>
#include <limits>

#include "Includes/lanes.h"

namespace vlm::complex {

/// Real and imaginary part: of one number, or of the numbers in the lanes of two registers.
template <class V> struct parts { V re, im; };

template <class V> inline parts<V> operator-(parts<V> z) { return {-z.re, -z.im}; }
template <class V> inline parts<V> operator+(parts<V> x, parts<V> y) { return {x.re + y.re, x.im + y.im}; }
template <class V> inline parts<V> operator-(parts<V> x, parts<V> y) { return {x.re - y.re, x.im - y.im}; }

/// A product that stands on its own.
template <class V> inline V rounded(V product) {
  if constexpr (!is_register<V>) keep_in_register(product);
  return product;
}

template <class V> inline parts<V> plain_product(parts<V> x, parts<V> y) {
  return {rounded(x.re * y.re) - rounded(x.im * y.im), rounded(x.re * y.im) + rounded(x.im * y.re)};
}

namespace detail {

/// 1 for an infinity and 0 for anything else, with the sign of v.
template <class T> inline T infinity_bit(T v) { return std::copysign(std::isinf(v) ? T{1} : T{0}, v); }
/// v, or a zero with its sign in place of a NaN.
template <class T> inline T without_nan(T v) { return std::isnan(v) ? std::copysign(T{0}, v) : v; }
template <class T> inline parts<T> infinity_bits(parts<T> z) {
  return {infinity_bit(z.re), infinity_bit(z.im)};
}
template <class T> inline parts<T> without_nans(parts<T> z) { return {without_nan(z.re), without_nan(z.im)}; }
template <class T> inline bool has_infinity(parts<T> z) { return std::isinf(z.re) || std::isinf(z.im); }
template <class T> inline bool is_finite(parts<T> z) { return std::isfinite(z.re) && std::isfinite(z.im); }

template <class T>
[[gnu::cold, gnu::noinline]] parts<T> recovered_product(parts<T> x, parts<T> y, parts<T> plain) {
  const bool overflowed = std::isinf(x.re * y.re) || std::isinf(x.im * y.im) || std::isinf(x.re * y.im) ||
                          std::isinf(x.im * y.re);
  bool recovers = false;
  if (has_infinity(x)) {
    x = infinity_bits(x);
    y = without_nans(y);
    recovers = true;
  }
  if (has_infinity(y)) {
    y = infinity_bits(y);
    x = without_nans(x);
    recovers = true;
  }
  if (!recovers && overflowed) {
    x = without_nans(x);
    y = without_nans(y);
    recovers = true;
  }
  if (!recovers) return plain;
  const parts<T> direction = plain_product(x, y);
  constexpr T infinity = std::numeric_limits<T>::infinity();
  return {infinity * direction.re, infinity * direction.im};
}

template <class T>
[[gnu::cold, gnu::noinline]] parts<T> recovered_quotient(parts<T> x, parts<T> y, T exponent, T s,
                                                         parts<T> plain) {
  constexpr T infinity = std::numeric_limits<T>::infinity();
  if (s == 0 && !(std::isnan(x.re) && std::isnan(x.im))) {
    const T pole = std::copysign(infinity, y.re);
    return {pole * x.re, pole * x.im};
  }
  T factor = infinity;
  if (has_infinity(x) && is_finite(y)) {
    x = infinity_bits(x);
  } else if (exponent == infinity && is_finite(x)) {
    y = infinity_bits(y);
    factor = 0;
  } else {
    return plain;
  }
  return {factor * (rounded(x.re * y.re) + rounded(x.im * y.im)),
          factor * (rounded(x.im * y.re) - rounded(x.re * y.im))};
}

/// x times the conjugate of y over s, and the squared magnitude of y.
template <class V> inline parts<V> over(parts<V> x, parts<V> y, V s) {
  return {(rounded(x.re * y.re) + rounded(x.im * y.im)) / s,
          (rounded(x.im * y.re) - rounded(x.re * y.im)) / s};
}
template <class V> inline V squared_magnitude(parts<V> y) {
  return rounded(y.re * y.re) + rounded(y.im * y.im);
}

}  // namespace detail

/// The lanes whose two parts are finite. A plain product or quotient that is finite is the full one.
template <class V> inline lane_set finite_lanes(parts<V> z) {
  using number = number_of<V>;
  const V none{}, most = broadcast<V>(std::numeric_limits<number>::max());
  return lanes_between(magnitude(z.re), none, most) & lanes_between(magnitude(z.im), none, most);
}

/// The full product.
template <class T> inline parts<T> product(parts<T> x, parts<T> y) {
  const parts<T> plain = plain_product(x, y);
  if (std::isnan(plain.re) && std::isnan(plain.im)) [[unlikely]]
    return detail::recovered_product(x, y, plain);
  return plain;
}

/// The quotient; lanes whose divisor lies outside the bounds of is_plain_divisor mean nothing.
template <class V> inline parts<V> plain_quotient(parts<V> x, parts<V> y) {
  using number = number_of<V>;
  using bits = typename lanes_of<V>::unsigned_bits;
  constexpr int digits = std::numeric_limits<number>::digits - 1;
  // 2^-e for the exponent e of the larger part: its biased exponent taken from twice the bias.
  using word = std::conditional_t<sizeof(number) == 8, uint64_t, uint32_t>;
  constexpr word twice_bias = word{2} * (std::numeric_limits<number>::max_exponent - 1);
  const bits re = to_bits(magnitude(y.re)), im = to_bits(magnitude(y.im));
  const bits larger = re > im ? re : im;
  const V scale = from_bits<V>(static_cast<bits>((twice_bias - (larger >> digits)) << digits));
  const parts<V> scaled = {y.re * scale, y.im * scale};
  const parts<V> q = detail::over(x, scaled, detail::squared_magnitude(scaled));
  return {q.re * scale, q.im * scale};
}

/// The lanes whose divisor the plain form can take: its larger part within bounds.
template <class V> inline lane_set is_plain_divisor(parts<V> y) {
  using number = number_of<V>;
  constexpr bool wide = sizeof(number) == 8;
  const V re = magnitude(y.re), im = magnitude(y.im);
  const V larger = select(re > im, re, im);
  return lanes_between(larger, broadcast<V>(wide ? number(0x1p-1000) : number(0x1p-100f)),
                       broadcast<V>(wide ? number(0x1p1000) : number(0x1p100f)));
}

/// The full quotient.
template <class T> inline parts<T> quotient(parts<T> x, parts<T> y) {
  const T exponent = std::logb(std::fmax(std::fabs(y.re), std::fabs(y.im)));
  const int k = std::isfinite(exponent) ? static_cast<int>(exponent) : 0;
  const parts<T> scaled = {std::scalbn(y.re, -k), std::scalbn(y.im, -k)};
  const T s = detail::squared_magnitude(scaled);
  parts<T> q = detail::over(x, scaled, s);
  q = {std::scalbn(q.re, -k), std::scalbn(q.im, -k)};
  if (std::isnan(q.re) && std::isnan(q.im)) [[unlikely]]
    return detail::recovered_quotient(x, scaled, exponent, s, q);
  return q;
}

}  // namespace vlm::complex
