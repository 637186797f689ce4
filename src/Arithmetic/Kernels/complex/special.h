// Functions of complex numbers that are made of other ones.
#pragma once

#include "Arithmetic/Kernels/complex/exponential.h"
#include "Arithmetic/Kernels/complex/hyperbolic.h"
#include "Arithmetic/Kernels/complex/inverse_hyperbolic.h"
#include "Arithmetic/Kernels/complex/power.h"

namespace vlm::complex {

template <class V> inline parts<V> scaled(parts<V> z, number_of<V> factor) {
  return {z.re * factor, z.im * factor};
}

namespace form {

/// sin(z) / z, 1 at zero.
struct sinc {
  template <class T> static lane_set ordinary(parts<lanes> z) {
    return sin::ordinary<T>(z) & at_most(z.im, 680) & size_between(z, least_squared, most_squared);
  }
  static parts<lanes> body(parts<lanes> z) { return plain_quotient(sin::body(z), z); }
  template <class T> static parts<T> outside(parts<T> z) {
    return z.re == 0 && z.im == 0 ? one<T> : quotient(complex::sin(z), z);
  }
};

/// With p = golden^z = e^(z log golden) and q = cos(pi z) / p: (p - q) / sqrt 5, and p + q.
template <bool lucas> struct additive_sequence {
  /// Neither p nor the cosine nor their quotient overflows.
  template <class T> static lane_set ordinary(parts<lanes> z) {
    return at_most(z.re, by_type<T>(800, 180)) & at_most(z.im, by_type<T>(95, 28));
  }
  static parts<lanes> body(parts<lanes> z) {
    const parts<lanes> p = exp::body(scaled(z, log_golden));
    return sum(p, plain_quotient(cos::body(scaled(z, pi<double>)), p), all(2.23606797749979));
  }
  template <class T> static parts<T> outside(parts<T> z) {
    const parts<T> p = complex::exp(product({static_cast<T>(log_golden), 0}, z));
    const parts<T> cosine = complex::cos(product({pi<T>, 0}, z));
    return sum(p, quotient(cosine, p), static_cast<T>(2.23606797749979));
  }

 private:
  static constexpr double log_golden = 0.48121182505960347;
  template <class V> static parts<V> sum(parts<V> p, parts<V> q, V root_of_five) {
    if constexpr (lucas) {
      return p + q;
    } else {
      const parts<V> d = p - q;
      return {d.re / root_of_five, d.im / root_of_five};
    }
  }
};

/// The Gudermannian and its inverse outside their bodies near the real axis, where the first term of the series in y is all of it,
/// and near zero, where z is.
template <class T> inline constexpr T least_body_part = by_type<T>(0x1p-300, 0x1p-60);
template <class T> inline constexpr T own_image = by_type<T>(0x1p-27, 0x1p-13);

/// 2 atan(tanh(z / 2)) off the imaginary axis, on which its cuts lie; there, and for large arguments, from the exponential.
struct gudermannian {
  template <class T> static lane_set ordinary(parts<lanes> z) {
    const parts<lanes> half = scaled(z, 0.5);
    return tanh::ordinary<T>(half) & ~set_lanes(z.re == lanes{}) & atan::ordinary<T>(tanh::body(half));
  }
  static parts<lanes> body(parts<lanes> z) { return scaled(atan::body(tanh::body(scaled(z, 0.5))), 2); }
  template <class T> static parts<T> outside(parts<T> z) {
    if (const T x = std::fabs(z.re), y = std::fabs(z.im); x > 0 && x < 2 && y < least_body_part<T>) {
      return {2 * std::atan(std::tanh(z.re / 2)), z.im / std::cosh(z.re)};
    } else if (x > 0 && x < own_image<T> && y < own_image<T>) {
      return z;
    }
    if (z.re < 0) return of_exponential(complex::exp(z));
    if (z.re > 0) return -of_exponential(complex::exp(-z));
    const bool turned_over = z.im > 0;
    const parts<T> e = complex::exp(turned_over ? -z : z);
    parts<T> g;
    if (e.re > T(0.5)) {
      g = {0, std::log1p(2 * e.im / (e.re + 1 - e.im))};
      if (turned_over) g.im = -g.im;
      return g;
    }
    g = of_exponential(e);
    return turned_over ? -g : g;
  }
  /// On the imaginary axis the second form is looked at.
  template <class T> static bool unchecked(parts<T> z) {
    return z.re < 0 || z.re > 0 || (z.re == 0 && std::isfinite(z.im) && std::cos(z.im) > T(0.5));
  }

 private:
  template <class T> static parts<T> of_exponential(parts<T> e) {
    const parts<T> a = complex::atan(e);
    return {2 * a.re - half_pi<T>, 2 * a.im};
  }
};

/// 2 atanh(tan(z / 2)) off the real axis, on which its cuts lie; there log(tan(z / 2 + pi / 4)), but near zero as off it.
struct inversegudermannian {
  template <class T> static lane_set ordinary(parts<lanes> z) {
    const parts<lanes> half = scaled(z, 0.5);
    return tan::ordinary<T>(half) & lanes_between(magnitude(z.im), all(0x1p-300), all(700)) &
           atanh::ordinary<T>(tan::body(half));
  }
  static parts<lanes> body(parts<lanes> z) { return scaled(atanh::body(tan::body(scaled(z, 0.5))), 2); }
  template <class T> static parts<T> outside(parts<T> z) {
    if (z.re == 0 && z.im == 0) return z;
    const T x = z.re / 2, y = std::fabs(z.im);
    if (std::fabs(x) < T(0.75) && y < least_body_part<T>)
      return {2 * std::atanh(std::tan(x)), y == 0 ? T{0} : z.im / std::cos(z.re)};
    if (std::fabs(z.re) < own_image<T> && y < own_image<T>) return z;
    return complex::log(complex::tan(parts<T>{x + quarter_pi<T>, z.im / 2}));
  }
};

/// sin^2(z / 2).
struct haversine {
  template <class T> static lane_set ordinary(parts<lanes> z) {
    return at_most(z.im, by_type<T>(700, 88)) & is_moderate_angle(z.re);
  }
  static parts<lanes> body(parts<lanes> z) { return square_of(sin::body(scaled(z, 0.5))); }
  template <class T> static parts<T> outside(parts<T> z) {
    return square_of(complex::sin(scaled(z, T(0.5))));
  }

 private:
  template <class V> static parts<V> square_of(parts<V> s) {
    const V product = rounded(s.re * s.im);
    return {rounded(s.re * s.re) - rounded(s.im * s.im), product + product};
  }
};

/// 2 asin(sqrt(z)).
struct inversehaversine {
  template <class T> static lane_set ordinary(parts<lanes> z) {
    return sqrt::ordinary<T>(z) & asin::ordinary<T>(sqrt::body(z));
  }
  static parts<lanes> body(parts<lanes> z) { return scaled(asin::body(sqrt::body(z)), 2); }
  template <class T> static parts<T> outside(parts<T> z) {
    return scaled(complex::asin(complex::sqrt(z)), T{2});
  }
};

}  // namespace form

inline constexpr function<form::sinc> sinc;
inline constexpr function<form::additive_sequence<false>> fibonacci;
inline constexpr function<form::additive_sequence<true>> lucasl;
inline constexpr function<form::gudermannian> gudermannian;
inline constexpr function<form::inversegudermannian> inversegudermannian;
inline constexpr function<form::haversine> haversine;
inline constexpr function<form::inversehaversine> inversehaversine;

}  // namespace vlm::complex
