// Exponential and logarithms of complex numbers.
#pragma once

#include "Arithmetic/Kernels/complex/function.h"
#include "Arithmetic/Kernels/elementary/atan.h"
#include "Arithmetic/Kernels/elementary/exp.h"
#include "Arithmetic/Kernels/elementary/log.h"
#include "Arithmetic/Kernels/elementary/trigonometric.h"

namespace vlm::complex {

/// The lanes whose imaginary part the sines of the bodies reduce.
inline lane_set is_moderate_angle(lanes y) { return at_most(y, elementary::sin_range.high); }

namespace form {

/// e^x (cos y, sin y).
struct exp {
  template <class T> static lane_set ordinary(parts<lanes> z) {
    return lanes_between(z.re, all(elementary::exp_range.low),
                         all(by_type<T>(elementary::exp_range.high, 88))) &
           is_moderate_angle(z.im);
  }
  static parts<lanes> body(parts<lanes> z) {
    const lanes e = elementary::exp(z.re);
    const auto y = elementary::sin_cos(z.im);
    return {e * y.cos, e * y.sin};
  }
  template <class T> static parts<T> outside(parts<T> z) {
    if (std::isinf(z.re)) {
      if (z.re < 0) {
        if (!std::isfinite(z.im)) z.im = 1;
      } else if (z.im == 0 || !std::isfinite(z.im)) {
        return {z.re, std::isinf(z.im) ? not_a_number<T> : z.im};
      }
    } else if (std::isnan(z.re) && z.im == 0) {
      return z;
    }
    const T e = std::exp(z.re);
    return {e * std::cos(z.im), e * std::sin(z.im)};
  }
};

/// With v = e^x - 1, s = sin y and k = cos y - 1 = -2 sin^2(y/2): (v + k + v k, s + v s).
struct expm1 {
  template <class T> static lane_set ordinary(parts<lanes> z) {
    return lanes_between(z.re, all(elementary::expm1_range.low),
                         all(by_type<T>(elementary::expm1_range.high, 88))) &
           is_moderate_angle(z.im);
  }
  static parts<lanes> body(parts<lanes> z) {
    return combined(elementary::expm1(z.re), elementary::sin(z.im), elementary::sin(z.im * 0.5));
  }
  template <class T> static parts<T> outside(parts<T> z) {
    return combined(std::expm1(z.re), std::sin(z.im), std::sin(z.im / 2));
  }

 private:
  template <class V> static parts<V> combined(V v, V s, V half) {
    const V k = -(half + half) * half;
    return {fused(v, k, k + v), fused(s, v, s)};
  }
};

/// (log|z|, angle), on the negative axis with the angle +pi for either zero.
struct log {
  template <class T> static lane_set ordinary(parts<lanes> z) { return size_between(z, 0x1p-449, 0x1p500); }
  static parts<lanes> body(parts<lanes> z) {
    return {elementary::log_magnitude<lanes>({z.re, lanes{}}, z.im),
            elementary::atan2(without_minus_zero(z.im), z.re)};
  }
  /// A magnitude that would overflow is halved first.
  template <class T> static parts<T> outside(parts<T> z) {
    if (z.im == 0 && z.re > 0) return {std::log(z.re), 0};
    if (z.im == 0 && z.re < 0) return {std::log(-z.re), pi<T>};
    constexpr T large = std::numeric_limits<T>::max() / 4;
    const bool halved = is_finite(z) && (std::fabs(z.re) > large || std::fabs(z.im) > large);
    if (halved) z = {z.re / 2, z.im / 2};
    const T l = std::log(std::hypot(z.re, z.im));
    return {halved ? l + ln2<T> : l, std::atan2(z.im, z.re)};
  }
  /// What a real number other than zero gives is not looked at.
  template <class T> static bool unchecked(parts<T> z) { return z.im == 0 && (z.re > 0 || z.re < 0); }
};

/// log(1 + z), 1 + x with what its rounding loses.
struct log1p {
  template <class T> static lane_set ordinary(parts<lanes> z) {
    return at_most(z.re, 0x1p400) & at_most(z.im, 0x1p400) &
           size_between({all(1.0) + z.re, z.im}, 0x1p-449, 0x1p500);
  }
  static parts<lanes> body(parts<lanes> z) {
    const auto x = elementary::exact_sum(all(1.0), z.re);
    return {elementary::log_magnitude(x, z.im), elementary::atan2(without_minus_zero(z.im), x.high)};
  }
  template <class T> static parts<T> outside(parts<T> z) {
    if (z.im == 0 && z.re > -1) return {std::log1p(z.re), 0};
    if (z.im == 0 && z.re < -1) return {std::log1p(-2 - z.re), pi<T>};
    return log::outside<T>({z.re + 1, z.im});
  }
  /// Only -1 and a NaN on the real axis are looked at.
  template <class T> static bool unchecked(parts<T> z) { return z.im != 0 || z.re > -1 || z.re < -1; }
};

/// The logarithm to another base: log divided by that of the base, but exact powers on the real axis.
template <class Base> struct log_to_base {
  template <class T> static lane_set ordinary(parts<lanes> z) {
    return log::ordinary<T>(z) & ~set_lanes(z.im == lanes{});
  }
  static parts<lanes> body(parts<lanes> z) {
    const parts<lanes> l = log::body(z);
    const lanes divisor = all(Base::natural_log);
    return {l.re / divisor, l.im / divisor};
  }
  template <class T> static parts<T> outside(parts<T> z) {
    if (z.im == 0 && z.re > 0) return {Base::log(z.re), 0};
    if (z.im == 0 && z.re < 0) return {Base::log(-z.re), static_cast<T>(Base::angle_of_minus_one)};
    constexpr T divisor = static_cast<T>(Base::natural_log);
    const parts<T> l = log::outside(z);
    return {l.re / divisor, l.im / divisor};
  }
  template <class T> static bool unchecked(parts<T> z) { return log::unchecked(z); }
};
struct base_two {
  static constexpr double natural_log = 0.6931471805599453, angle_of_minus_one = 4.532360141827194;
  template <class T> static T log(T x) { return std::log2(x); }
};
struct base_ten {
  static constexpr double natural_log = 2.302585092994046, angle_of_minus_one = 1.3643763538418412;
  template <class T> static T log(T x) { return std::log10(x); }
};

/// 1 / (1 + e^-z) from the e^w, w = z or -z, that is at most 1 in magnitude. 1 + e^w near its zeros i pi (2 k + 1) is
/// (2 cos^2(y/2) + v cos y, e^x sin y) with v = e^x - 1.
struct logistic {
  template <class T> static lane_set ordinary(parts<lanes> z) {
    return at_most(z.re, -elementary::expm1_range.low) & is_moderate_angle(z.im);
  }
  static parts<lanes> body(parts<lanes> z) {
    const auto positive = is_positive(z.re);
    const lanes x = -magnitude(z.re), y = select(positive, -z.im, z.im);
    const auto angle = elementary::sin_cos(y);
    const lanes half = elementary::cos(z.im * 0.5), v = elementary::expm1(x), e = elementary::exp(x);
    const parts<lanes> power = {e * angle.cos, e * angle.sin};
    const parts<lanes> divisor = {fused(v, angle.cos, (half + half) * half), power.im};
    return plain_quotient<lanes>({select(positive, all(1.0), power.re), select(positive, lanes{}, power.im)},
                                 divisor);
  }
  template <class T> static parts<T> outside(parts<T> z) {
    const bool positive = z.re > 0;
    const function<form::exp> exponential;
    const parts<T> e = exponential(positive ? -z : z);
    const T half = std::cos(z.im / 2), v = std::expm1(-std::fabs(z.re));
    // As in the body, unless e has no such parts.
    const bool near_zero = std::fabs(z.re) < 1 && std::isfinite(z.im);
    const parts<T> divisor = {near_zero ? std::fma(v, std::cos(z.im), 2 * half * half) : e.re + 1,
                              e.im + T{0}};
    return quotient(positive ? one<T> : e, divisor);
  }
};

}  // namespace form

inline constexpr function<form::exp> exp;
inline constexpr function<form::expm1> expm1;
inline constexpr function<form::log> log;
inline constexpr function<form::log1p> log1p;
inline constexpr function<form::log_to_base<form::base_two>> log2;
inline constexpr function<form::log_to_base<form::base_ten>> log10;
inline constexpr function<form::logistic> logistic;

}  // namespace vlm::complex
