// Magnitude, angle and direction of complex numbers, and their parts.
#pragma once

#include "Arithmetic/Kernels/complex/function.h"
#include "Arithmetic/Kernels/complex/power.h"
#include "Arithmetic/Kernels/elementary/atan.h"

namespace vlm::complex {

namespace form {

struct abs {
  template <class T> static lane_set ordinary(parts<lanes> z) { return size_between(z, 0x1p-449, 0x1p500); }
  static lanes body(parts<lanes> z) { return plain_magnitude(z); }
  template <class T> static T outside(parts<T> z) { return std::hypot(z.re, z.im); }
};

/// 0 at zero, whatever the signs.
struct arg {
  template <class T> static lane_set ordinary(parts<lanes> z) { return size_between(z, 0x1p-449, 0x1p500); }
  static lanes body(parts<lanes> z) { return elementary::atan2(z.im, z.re); }
  template <class T> static T outside(parts<T> z) {
    return z.re == 0 && z.im == 0 ? T{0} : std::atan2(z.im, z.re);
  }
};

/// z / |z|; zero at zero.
struct sign {
  template <class T> static lane_set ordinary(parts<lanes> z) { return size_between(z, 0x1p-449, 0x1p500); }
  static parts<lanes> body(parts<lanes> z) {
    const lanes size = plain_magnitude(z);
    return {without_minus_zero(z.re) / size, without_minus_zero(z.im) / size};
  }
  template <class T> static parts<T> outside(parts<T> z) {
    if (z.re == 0) return {0, z.im == 0 ? T{0} : std::copysign(T{1}, z.im)};
    if (z.im == 0) return {std::copysign(T{1}, z.re), 0};
    const T larger = std::fmax(std::fabs(z.re), std::fabs(z.im));
    const parts<T> scaled = {z.re / larger, z.im / larger};
    const T size = std::hypot(scaled.re, scaled.im);
    return {scaled.re / size, scaled.im / size};
  }
};

/// A zero imaginary part comes out positive.
struct conj {
  static constexpr bool in_own_type = true, arithmetic = true;
  template <class V> static parts<V> body(parts<V> z) { return {z.re, V{} - z.im}; }
};
struct minus {
  static constexpr bool in_own_type = true, arithmetic = true;
  template <class V> static parts<V> body(parts<V> z) { return -z; }
};
struct re {
  static constexpr bool in_own_type = true, arithmetic = true;
  template <class V> static V body(parts<V> z) { return z.re; }
};
struct im {
  static constexpr bool in_own_type = true, arithmetic = true;
  template <class V> static V body(parts<V> z) { return z.im; }
};

}  // namespace form

inline constexpr function<form::abs> abs;
inline constexpr function<form::arg> arg;
inline constexpr function<form::sign> sign;
inline constexpr function<form::conj> conj;
inline constexpr function<form::minus> minus;
inline constexpr function<form::re> re;
inline constexpr function<form::im> im;

}  // namespace vlm::complex
