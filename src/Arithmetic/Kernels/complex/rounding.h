// Fractional parts of complex numbers.
#pragma once

#include "Arithmetic/Kernels/complex/function.h"
#include "Arithmetic/Kernels/elementary/common.h"

namespace vlm::complex {

/// What the nearest integer is away from x, exact; for |x| up to a limit.
inline constexpr double most_with_fraction = 0x1p50;
inline lanes from_nearest(lanes x) { return x - elementary::nearest_integer(x, 1.0).number; }
/// 1 more where below zero.
inline lanes above_zero(lanes x) { return select(x < lanes{}, x + 1.0, x); }

namespace form {

/// The fractional part of each part, with its sign.
struct fracpart {
  template <class T> static lane_set ordinary(parts<lanes> z) {
    return at_most(z.re, most_with_fraction) & at_most(z.im, most_with_fraction);
  }
  static parts<lanes> body(parts<lanes> z) { return {fraction(z.re), fraction(z.im)}; }
  template <class T> static parts<T> outside(parts<T> z) {
    T whole;
    return {std::modf(z.re, &whole), std::modf(z.im, &whole)};
  }

 private:
  static lanes fraction(lanes x) { return with_sign_of(above_zero(from_nearest(magnitude(x))), x); }
};

/// On the real axis x - floor(x), elsewhere what the nearest whole number is away.
struct mod1 {
  template <class T> static lane_set ordinary(parts<lanes> z) { return fracpart::ordinary<T>(z); }
  static parts<lanes> body(parts<lanes> z) {
    const parts<lanes> d = {from_nearest(z.re), from_nearest(z.im)};
    const lanes above = above_zero(d.re);
    const auto is_real = z.im == lanes{};
    return {select(is_real, select(above == all(1.0), lanes{}, above), d.re), select(is_real, lanes{}, d.im)};
  }
  template <class T> static parts<T> outside(parts<T> z) {
    if (z.im == 0) {
      T r = std::fmod(z.re, T{1});
      if (r < 0) r += 1;
      return {r == 1 ? T{0} : r, 0};
    }
    const parts<T> q = quotient(z, one<T>);
    return z - product({nearest(q.re), nearest(q.im)}, one<T>);
  }
  template <class T> static bool unchecked(parts<T> z) { return z.im == 0; }

 private:
  /// By way of mint, so saturated, and 0 for a NaN.
  template <class T> static T nearest(T x) {
    constexpr T limit = static_cast<T>(0x1p63);
    if (std::isnan(x)) return 0;
    const T n = std::rint(x);
    return n >= limit ? limit : n <= -limit ? -limit : n;
  }
};

}  // namespace form

inline constexpr function<form::fracpart> fracpart;
inline constexpr function<form::mod1> mod1;

}  // namespace vlm::complex
