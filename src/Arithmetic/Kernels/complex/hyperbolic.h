// Hyperbolic and circular functions of complex numbers. Circular ones are hyperbolic ones of i z.
#pragma once

#include "Arithmetic/Kernels/complex/exponential.h"
#include "Arithmetic/Kernels/complex/function.h"
#include "Arithmetic/Kernels/complex/inverse_hyperbolic.h"
#include "Arithmetic/Kernels/elementary/hyperbolic.h"
#include "Arithmetic/Kernels/elementary/trigonometric.h"

namespace vlm::complex {

namespace form {

template <class T> inline constexpr double most_hyperbolic = by_type<T>(elementary::sinh_range.high, 88);

/// (sinh x cos y, cosh x sin y).
struct sinh {
  template <class T> static lane_set ordinary(parts<lanes> z) {
    return at_most(z.re, most_hyperbolic<T>) & is_moderate_angle(z.im);
  }
  static parts<lanes> body(parts<lanes> z) {
    const auto x = elementary::sinh_cosh(z.re);
    const auto y = elementary::sin_cos(z.im);
    return {x.sinh * y.cos, x.cosh * y.sin};
  }
  template <class T> static parts<T> outside(parts<T> z) {
    if (!std::isfinite(z.im) && (z.re == 0 || std::isinf(z.re))) return {z.re, not_a_number<T>};
    if (z.im == 0 && !std::isfinite(z.re)) return z;
    return {std::sinh(z.re) * std::cos(z.im), std::cosh(z.re) * std::sin(z.im)};
  }
};

/// (cosh x cos y, sinh x sin y).
struct cosh {
  template <class T> static lane_set ordinary(parts<lanes> z) { return sinh::ordinary<T>(z); }
  static parts<lanes> body(parts<lanes> z) {
    const auto x = elementary::sinh_cosh(z.re);
    const auto y = elementary::sin_cos(z.im);
    return {x.cosh * y.cos, x.sinh * y.sin};
  }
  template <class T> static parts<T> outside(parts<T> z) {
    if (!std::isfinite(z.im)) {
      if (std::isinf(z.re)) return {infinite<T>, not_a_number<T>};
      if (z.re == 0) return {not_a_number<T>, z.re};
    }
    if (z.im == 0 && !std::isfinite(z.re)) return {std::fabs(z.re), z.im};
    return {std::cosh(z.re) * std::cos(z.im), std::sinh(z.re) * std::sin(z.im)};
  }
};

/// (sinh x cosh x, sin y cos y) / (sinh^2 x + cos^2 y): the quotient of sinh 2x and sin 2y by cosh 2x + cos 2y, halved above and
/// below, which loses nothing near the poles.
struct tanh {
  template <class T> static lane_set ordinary(parts<lanes> z) {
    return at_most(z.re, by_type<T>(350, 44)) & is_moderate_angle(z.im);
  }
  static parts<lanes> body(parts<lanes> z) {
    const auto x = elementary::sinh_cosh(z.re);
    const auto y = elementary::sin_cos(z.im);
    const lanes d = fused(x.sinh, x.sinh, y.cos * y.cos);
    return {x.sinh * x.cosh / d, y.sin * y.cos / d};
  }
  template <class T> static parts<T> outside(parts<T> z) {
    if (std::isinf(z.re)) {
      const T im = std::isfinite(z.im) ? std::copysign(T{0}, std::sin(2 * z.im)) : T{0};
      return {std::copysign(T{1}, z.re), im};
    }
    if (std::isnan(z.re) && z.im == 0) return z;
    const T s = std::sin(z.im), c = std::cos(z.im);
    if (std::fabs(z.re) < 1) {
      const T sinh = std::sinh(z.re), d = std::fma(sinh, sinh, c * c);
      return {sinh * std::cosh(z.re) / d, s * c / d};
    }
    // Where cosh 2x overflows; and where sinh 2x is equal to it to rounding: 1 and 4 s c e^-2|x|.
    if (std::fabs(z.re) > by_type<T>(350, 44) && std::isfinite(z.im)) {
      const T unit = std::copysign(T{1}, z.re), e = std::exp(-std::fabs(z.re));
      if (std::fabs(z.re) > by_type<T>(355.2, 44.7)) return {unit, z.im > 0 ? T{0} : -T{0}};
      return {unit, 4 * (s * c) * e * e};
    }
    const T d = std::cosh(2 * z.re) + std::cos(2 * z.im);
    return {std::sinh(2 * z.re) / d, std::sin(2 * z.im) / d};
  }
};

using sin = circular<sinh>;
using tan = circular<tanh>;
/// An even function of i z.
template <class Hyperbolic> struct even_circular {
  template <class T> static lane_set ordinary(parts<lanes> z) {
    return Hyperbolic::template ordinary<T>(turned(z));
  }
  static parts<lanes> body(parts<lanes> z) { return Hyperbolic::body(turned(z)); }
  template <class T> static parts<T> outside(parts<T> z) { return Hyperbolic::outside(turned(z)); }
};
using cos = even_circular<cosh>;

/// 1 / f(z), where f(z), which grows with one part of z, is within the bounds of a quotient.
template <class F, bool of_imaginary> struct reciprocal {
  template <class T> static lane_set ordinary(parts<lanes> z) {
    return F::template ordinary<T>(z) & at_most(of_imaginary ? z.im : z.re, 680) &
           size_between(z, least_squared, most_squared);
  }
  static parts<lanes> body(parts<lanes> z) { return recip::body(F::body(z)); }
  template <class T> static parts<T> outside(parts<T> z) {
    const function<F> f;
    return function<recip>{}(f(z));
  }
};
using coth = reciprocal<tanh, false>;
using cot = reciprocal<tan, true>;

/// Of sinh and cosh where they are about to overflow 2 e^-|x| e^-iy or its mirror image, and zero beyond a limit.
template <class F, bool is_sinh> struct vanishing_reciprocal : reciprocal<F, false> {
  template <class T> static parts<T> outside(parts<T> z) {
    constexpr T limit = by_type<T>(710.8224336642239, 89.76256);
    const T a = std::fabs(z.re);
    if (a > limit) return {0, 0};
    if (!(a > static_cast<T>(most_hyperbolic<T>))) return reciprocal<F, false>::outside(z);
    const T size = 2 * std::exp(-a), left = std::copysign(T{1}, z.re);
    const T c = size * std::cos(z.im), s = size * std::sin(z.im);
    return is_sinh ? parts<T>{left * c, -s} : parts<T>{c, -left * s};
  }
};
using csch = vanishing_reciprocal<sinh, true>;
using sech = vanishing_reciprocal<cosh, false>;

/// Those two of i z, where that decides.
struct csc : reciprocal<sin, true> {
  template <class T> static parts<T> outside(parts<T> z) {
    const bool about_to_overflow = std::fabs(z.im) > static_cast<T>(most_hyperbolic<T>);
    return about_to_overflow ? turned(csch::outside(turned(z))) : reciprocal<sin, true>::outside(z);
  }
};
struct sec : reciprocal<cos, true> {
  template <class T> static parts<T> outside(parts<T> z) {
    const bool about_to_overflow = std::fabs(z.im) > static_cast<T>(most_hyperbolic<T>);
    return about_to_overflow ? sech::outside(turned(z)) : reciprocal<cos, true>::outside(z);
  }
};

}  // namespace form

inline constexpr function<form::sin> sin;
inline constexpr function<form::cos> cos;
inline constexpr function<form::tan> tan;
inline constexpr function<form::csc> csc;
inline constexpr function<form::sec> sec;
inline constexpr function<form::cot> cot;
inline constexpr function<form::sinh> sinh;
inline constexpr function<form::cosh> cosh;
inline constexpr function<form::tanh> tanh;
inline constexpr function<form::csch> csch;
inline constexpr function<form::sech> sech;
inline constexpr function<form::coth> coth;

}  // namespace vlm::complex
