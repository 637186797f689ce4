// Squares, roots and reciprocals of complex numbers.
#pragma once

#include "Arithmetic/Kernels/complex/function.h"

namespace vlm::complex {

/// |z| in registers, where no square overflows or is lost. Within 1 ulp, and exact on the axes.
template <class V> inline V plain_magnitude(parts<V> z) {
  const V x = magnitude(z.re), y = magnitude(z.im);
  const auto ordered = x > y;
  const V larger = select(ordered, x, y), smaller = select(ordered, y, x);
  return square_root(fused(larger, larger, smaller * smaller));
}

namespace form {

/// (x x - y y, x y + x y).
struct square {
  static constexpr bool in_own_type = true, arithmetic = true;
  template <class V> static parts<V> body(parts<V> z) {
    const V xy = rounded(z.re * z.im);
    return {rounded(z.re * z.re) - rounded(z.im * z.im), xy + xy};
  }
};

/// x x + y y, infinite if a part is.
struct abssquare {
  static constexpr bool in_own_type = true, arithmetic = true;
  template <class V> static V body(parts<V> z) {
    const V infinity = broadcast<V>(infinite<number_of<V>>);
    const V sum = rounded(z.re * z.re) + rounded(z.im * z.im);
    return select((magnitude(z.re) == infinity) | (magnitude(z.im) == infinity), infinity, sum);
  }
};

/// 1 / z.
struct recip {
  static constexpr bool in_own_type = true;
  template <class T, class V> static lane_set ordinary(parts<V> z) {
    const V size = magnitude(z.re) + magnitude(z.im);
    return is_plain_divisor<V>({size, size});
  }
  template <class V> static parts<V> body(parts<V> z) {
    return plain_quotient<V>(real_part_only(broadcast<V>(1)), z);
  }
  template <class T> static parts<T> outside(parts<T> z) { return quotient(one<T>, z); }
};

/// t = sqrt((|x| + |z|) / 2) and |y| / (2 t), in the order that the sign of x tells.
struct sqrt {
  template <class T> static lane_set ordinary(parts<lanes> z) { return size_between(z, 0x1p-449, 0x1p500); }
  static parts<lanes> body(parts<lanes> z) {
    const lanes x = magnitude(z.re), y = magnitude(z.im);
    const lanes t = square_root((x + plain_magnitude(z)) * 0.5);
    const lanes u = select(x == lanes{}, t, y * 0.5 / t);
    const auto right = is_positive(z.re);
    return {select(right, t, u), with_sign_of(select(right, u, t), without_minus_zero(z.im))};
  }
  template <class T> static parts<T> outside(parts<T> z) {
    constexpr T small = by_type<T>(0x1p-511, 0x1p-63), big = by_type<T>(0x1p512, 0x1.fffffep63);
    if (z.re == 0) {
      const T s = std::sqrt(std::fabs(z.im) / 2);
      return {s, std::copysign(s, z.im)};
    }
    T x = std::fabs(z.re), y = std::fabs(z.im);
    if (y == 0) return std::signbit(z.re) ? parts<T>{0, std::sqrt(x)} : parts<T>{std::sqrt(x), 0};
    T factor = 1;
    if (x > big || y > big) {
      x /= 4;
      y /= 4;
      factor = 2;
    } else if (x < small || y < small) {
      x *= 4;
      y *= 4;
      factor = T(0.5);
    }
    const T t = std::sqrt((x + std::hypot(x, y)) / 2);
    const T u = std::fabs(y / t / 2);
    const parts<T> root = z.re > 0 ? parts<T>{factor * t, factor * u} : parts<T>{factor * u, factor * t};
    return {root.re, z.im < 0 ? -root.im : root.im};
  }
};

/// With m the larger of |x| and |y|, r their ratio and w = sqrt(1 + r^2), so that |z| = m w: half (1 + |x| / |z|) is P / w.
/// The parts are P and half |y| / m over sqrt(m P) w, in the order that the sign of x tells.
struct rsqrt {
  template <class T> static lane_set ordinary(parts<lanes> z) { return size_between(z, 0x1p-449, 0x1p500); }
  static parts<lanes> body(parts<lanes> z) {
    const lanes x = magnitude(z.re), y = magnitude(z.im);
    const auto wide = y < x;
    const lanes m = select(wide, x, y);
    const lanes r = select(wide, y, x) / m;
    const lanes w = square_root(fused(r, r, all(1.0)));
    const lanes p = (select(wide, all(1.0), r) + w) * 0.5;
    const lanes inverse = all(1.0) / (square_root(m * p) * w);
    const lanes great = p * inverse;
    const lanes less = select(x == lanes{}, great, select(wide, r, all(1.0)) * 0.5 * inverse);
    const auto right = is_positive(z.re);
    const lanes im = select(right, less, great);
    // Below the real axis the part is positive; on its positive half it is a zero, also positive.
    return {select(right, great, less), without_minus_zero(select(z.im < lanes{}, im, -im))};
  }
  template <class T> static parts<T> outside(parts<T> z) {
    if (z.re == 0) {
      const bool below = z.im < 0;
      const T s = static_cast<T>(0.7071067811865476) / std::sqrt(below ? -z.im : z.im);
      return {s, below ? s : -s};
    }
    if (z.im == 0) {
      return z.re < 0 ? parts<T>{0, -1 / std::sqrt(-z.re)} : parts<T>{1 / std::sqrt(z.re), 0};
    }
    const T a = std::fabs(z.re), b = std::fabs(z.im);
    const bool wide = b < a;
    const T r = wide ? b / a : a / b;
    const T w = std::sqrt(std::fma(r, r, T{1}));
    const T p = std::sqrt((wide ? w + 1 : r + w) / 2);
    const T q = std::sqrt(wide ? a : b) * w;
    const T great = p / q, less = wide ? r / (q * p) * T(0.5) : T(0.5) / (q * p);
    const T re = z.re > 0 ? great : less, im = z.re > 0 ? less : great;
    return {re, z.im > 0 ? -im : im};
  }
  /// Only an infinity or a NaN that comes from an imaginary z not below 0 is looked at.
  template <class T> static bool unchecked(parts<T> z) { return z.re != 0 || z.im < 0; }
};

}  // namespace form

inline constexpr function<form::square> square;
inline constexpr function<form::abssquare> abssquare;
inline constexpr function<form::recip> recip;
inline constexpr function<form::sqrt> sqrt;
inline constexpr function<form::rsqrt> rsqrt;

}  // namespace vlm::complex
