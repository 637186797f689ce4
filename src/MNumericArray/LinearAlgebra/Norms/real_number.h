// The real numbers that norms are computed in: double, float, and binary16 behind the same operators, so that each order of norm is
// written once.
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>
#include <type_traits>

#include "Arithmetic/Kernels/integer_power.h"
#include "Includes/element_types.h"
#include "Includes/fp_environment.h"
#include "Includes/lanes.h"
#include "Includes/real16.h"
#include "Includes/vlm_fp_exception.h"

namespace vlm::norms {

/// A Real16 with operators: each is the operation of real16.h, with its signals.
struct binary16 {
  real16 value;
  binary16(real16 x) : value(x) {}
  explicit binary16(mint n) : value(to_real16(static_cast<double>(n))) {}
  binary16(int n) : binary16(mint{n}) {}
  friend binary16 operator+(binary16 x, binary16 y) { return vlm::add(x.value, y.value); }
  friend binary16 operator*(binary16 x, binary16 y) { return multiply(x.value, y.value); }
  friend binary16 operator/(binary16 x, binary16 y) { return divide(x.value, y.value); }
  friend bool operator<(binary16 x, binary16 y) { return less(x.value, y.value); }
  friend bool operator==(binary16 x, binary16 y) { return equal(x.value, y.value); }
};

/// The element type that a number is stored as.
template <class T> inline T stored(T x) { return x; }
inline real16 stored(binary16 x) { return x.value; }

/// The magnitude of an element, as a number; of a complex one by hypot.
inline double magnitude_of(double x) { return magnitude(x); }
inline float magnitude_of(float x) { return magnitude(x); }
inline binary16 magnitude_of(real16 x) { return magnitude(x); }
inline double magnitude_of(mcomplex z) { return std::hypot(z.re, z.im); }
inline float magnitude_of(complex_real32 z) { return std::hypot(z.re, z.im); }

template <class Element> using number_of_element = decltype(magnitude_of(Element{}));
/// What a norm of such elements is stored as: the element type itself, or the component type of a complex one.
template <class Element> using norm_of_element = decltype(stored(magnitude_of(Element{})));

/// x > y, false for a NaN; only a signalling one signals.
template <class T> inline bool exceeds(T x, T y) { return std::isgreater(x, y); }
inline bool exceeds(binary16 x, binary16 y) {
  const real16 quiet = accept_real16(x.value);
  return !is_nan(quiet) && y < quiet;
}

template <class T> inline T root(T x) { return std::sqrt(x); }
inline binary16 root(binary16 x) { return square_root(x.value); }

/// x to the power 1 / p.
template <class T> inline T root_of_order(T x, mint p) { return std::pow(x, T(1) / static_cast<T>(p)); }
inline binary16 root_of_order(binary16 x, mint p) {
  const auto wide_pow = [](double base, double exponent) { return std::pow(base, exponent); };
  return evaluate(wide_pow, x.value, (binary16(1) / binary16(p)).value);
}

/// t to the power p. 0 to the power 0 raises FE_INVALID and is a signalling NaN.
template <class T> struct to_power {
  mint p;
  T operator()(T t) const {
    using element = decltype(stored(t));
    if (p == 0 && t == T(0)) {
      fp::raise(FE_INVALID);
      if constexpr (std::is_same_v<element, double>) return std::bit_cast<double>(0x7FF4000000000000);
      if constexpr (std::is_same_v<element, float>) return std::bit_cast<float>(0x7FA00000);
      if constexpr (std::is_same_v<element, real16>) return real16_signalling_nan;
    }
    return machine_function::integer_power<element>(stored(t), p);
  }
};

}  // namespace vlm::norms
