// The elementary functions that the kernels are built from, in namespace vlm::vm: vm::exp(x), vm::sin(x), ...
// for a number (double, float) or for a register of them.
//
// Each has one form for its ordinary range, the same for one lane and for many, and one for every other
// argument:
//   inside the range  the library's own body (elementary/), where that is faster, or a deterministic form of
//                     SLEEF, which gives the same bits on any register width; both stay within 1.0 ulp;
//   outside           the C library's function, which knows every special case and raises exactly the flags it
//                     should. Where that one is less accurate than 1.0 ulp the next wider type is evaluated and
//                     rounded.
// On a number the choice is made here, with the stray flags of the first form set aside. On a register the
// caller makes sure that all lanes that it keeps are inside range<T>(), and sets the flags aside once for a
// whole run (runs.h).
#pragma once

#include <sleef.h>

#include <cmath>
#include <limits>

#include "Arithmetic/Kernels/definition.h"
#include "Arithmetic/Kernels/elementary/atan.h"
#include "Arithmetic/Kernels/elementary/cbrt.h"
#include "Arithmetic/Kernels/elementary/exp.h"
#include "Arithmetic/Kernels/elementary/hyperbolic.h"
#include "Arithmetic/Kernels/elementary/log.h"
#include "Arithmetic/Kernels/elementary/pow.h"
#include "Arithmetic/Kernels/elementary/real32.h"
#include "Arithmetic/Kernels/elementary/trigonometric.h"
#include "Includes/fp_environment.h"

namespace vlm::vm {

// SLEEF's names end in the register and the instruction set. Its forms for one lane and for a register agree
// bit for bit when both use fused multiply-add (finz) or both do not (cinz).
#if defined(VELORIM_LANES_AVX512)
#define VELORIM_SLEEF_NAMES(F, U)                                                                      \
  Sleef_finz_##F##d1_##U##purecfma, Sleef_finz_##F##d8_##U##avx512f, Sleef_finz_##F##f1_##U##purecfma, \
      Sleef_finz_##F##f16_##U##avx512f
using sleef_real64 = __m512d;
using sleef_real32 = __m512;
#elif defined(VELORIM_LANES_AVX2)
#define VELORIM_SLEEF_NAMES(F, U)                                                                   \
  Sleef_finz_##F##d1_##U##purecfma, Sleef_finz_##F##d4_##U##avx2, Sleef_finz_##F##f1_##U##purecfma, \
      Sleef_finz_##F##f8_##U##avx2
using sleef_real64 = __m256d;
using sleef_real32 = __m256;
#elif defined(VELORIM_LANES_NEON)
#define VELORIM_SLEEF_NAMES(F, U)                                                                      \
  Sleef_finz_##F##d1_##U##purecfma, Sleef_finz_##F##d2_##U##advsimd, Sleef_finz_##F##f1_##U##purecfma, \
      Sleef_finz_##F##f4_##U##advsimd
using sleef_real64 = float64x2_t;
using sleef_real32 = float32x4_t;
#else
#define VELORIM_SLEEF_NAMES(F, U)                                                             \
  Sleef_cinz_##F##d1_##U##purec, Sleef_cinz_##F##d2_##U##sse2, Sleef_cinz_##F##f1_##U##purec, \
      Sleef_cinz_##F##f4_##U##sse2
using sleef_real64 = __m128d;
using sleef_real32 = __m128;
#endif

/// SLEEF's four forms of one function as one overload set.
template <auto Real64, auto Real64Lanes, auto Real32, auto Real32Lanes> struct sleef {
  static double body(double x) { return Real64(x); }
  static float body(float x) { return Real32(x); }
  static real64_lanes body(real64_lanes x) { return (real64_lanes)Real64Lanes((sleef_real64)x); }
  static real32_lanes body(real32_lanes x) { return (real32_lanes)Real32Lanes((sleef_real32)x); }
};

/// The library's own bodies need fused multiply-add in hardware to be fast.
#if defined(VELORIM_LANES_SSE)
inline constexpr bool has_fused_multiply_add = false;
#else
inline constexpr bool has_fused_multiply_add = true;
#endif
template <class V>
inline constexpr bool in_own_form = has_fused_multiply_add&& std::is_same_v<number_of<V>, double>;

/// f evaluated in the next wider type and rounded to the type of x, so within little more than half an ulp.
template <class T, class F> inline T in_wider_type(F f, T x) {
  using wider = std::conditional_t<std::is_same_v<T, float>, double, long double>;
  return static_cast<T>(f(static_cast<wider>(x)));
}

/// An elementary function made of its two forms: Form::body inside Form::range<T>(), Form::outside elsewhere.
template <class Form> struct elementary_function {
  template <class T> static constexpr ordinary_range range() { return Form::template range<T>(); }
  template <class V> V operator()(V x) const {
    if constexpr (is_register<V>) {
      return Form::body(x);
    } else {
      if (!in_range(range<V>(), x)) return Form::outside(x);
      const fp::quiet_section quiet;
      fp::pin(x);
      V y = Form::body(x);
      fp::pin(y);
      return y;
    }
  }
};

namespace form {

inline constexpr double least64 = 0x1p-1022, most64 = 0x1.fffffffffffffp1023;
inline constexpr double least32 = 0x1p-126, most32 = 0x1.fffffep127;

/// Chooses by element type.
template <class T> constexpr ordinary_range by_type(ordinary_range real64, ordinary_range real32) {
  return std::is_same_v<T, double> ? real64 : real32;
}

struct exp {
  using library = sleef<VELORIM_SLEEF_NAMES(exp, u10)>;
  template <class T> static constexpr ordinary_range range() {
    return by_type<T>(has_fused_multiply_add ? elementary::exp_range : ordinary_range{-708, 709, false},
                      {-87, 88, false});
  }
  template <class V> static V body(V x) {
    if constexpr (in_own_form<V>) {
      return elementary::exp(x);
    } else {
      return library::body(x);
    }
  }
  template <class T> static T outside(T x) { return std::exp(x); }
};
struct expm1 {
  using library = sleef<VELORIM_SLEEF_NAMES(expm1, u10)>;
  template <class T> static constexpr ordinary_range range() {
    return by_type<T>(has_fused_multiply_add ? elementary::expm1_range : ordinary_range{-700, 709, false},
                      {-80, 88, false});
  }
  template <class V> static V body(V x) {
    if constexpr (in_own_form<V>) {
      return elementary::expm1(x);
    } else {
      return library::body(x);
    }
  }
  template <class T> static T outside(T x) {
    return in_wider_type([](auto w) { return std::expm1(w); }, x);
  }
};
struct log {
  using library = sleef<VELORIM_SLEEF_NAMES(log, u10)>;
  template <class T> static constexpr ordinary_range range() {
    return by_type<T>(
        has_fused_multiply_add ? elementary::log_range : ordinary_range{least64, most64, false},
        has_fused_multiply_add ? elementary::real32_log_range : ordinary_range{least32, most32, false});
  }
  template <class V> static V body(V x) {
    if constexpr (in_own_form<V>) {
      return elementary::log(x);
    } else if constexpr (has_fused_multiply_add) {
      return elementary::real32_log(x);
    } else {
      return library::body(x);
    }
  }
  template <class T> static T outside(T x) { return std::log(x); }
};
struct log1p {
  using library = sleef<VELORIM_SLEEF_NAMES(log1p, u10)>;
  template <class T> static constexpr ordinary_range range() {
    return by_type<T>(has_fused_multiply_add ? elementary::log1p_range
                                             : ordinary_range{-0x1.fffffffffffffp-1, 1e300, false},
                      {-0x1.fffffep-1, 1e35, false});
  }
  template <class V> static V body(V x) {
    if constexpr (in_own_form<V>) {
      return elementary::log1p(x);
    } else {
      // The library's form flushes subnormals to zero.
      return select(magnitude(x) < broadcast<V>(0x1p-60f), x, library::body(x));
    }
  }
  template <class T> static T outside(T x) {
    return in_wider_type([](auto w) { return std::log1p(w); }, x);
  }
};
struct log2 {
  using library = sleef<VELORIM_SLEEF_NAMES(log2, u10)>;
  template <class T> static constexpr ordinary_range range() {
    return by_type<T>({least64, most64, false}, {least32, most32, false});
  }
  template <class V> static V body(V x) { return library::body(x); }
  template <class T> static T outside(T x) { return std::log2(x); }
};
struct log10 {
  using library = sleef<VELORIM_SLEEF_NAMES(log10, u10)>;
  template <class T> static constexpr ordinary_range range() {
    return by_type<T>({least64, most64, false}, {least32, most32, false});
  }
  template <class V> static V body(V x) { return library::body(x); }
  template <class T> static T outside(T x) {
    return in_wider_type([](auto w) { return std::log10(w); }, x);
  }
};
struct sin {
  using library = sleef<VELORIM_SLEEF_NAMES(sin, u10)>;
  template <class T> static constexpr ordinary_range range() {
    return by_type<T>(has_fused_multiply_add ? elementary::sin_range : ordinary_range{0, 1e9, true},
                      has_fused_multiply_add ? elementary::real32_sin_range : ordinary_range{0, 1e5, true});
  }
  template <class V> static V body(V x) {
    if constexpr (in_own_form<V>) {
      return elementary::sin(x);
    } else if constexpr (has_fused_multiply_add) {
      return elementary::real32_sin(x);
    } else {
      return library::body(x);
    }
  }
  template <class T> static T outside(T x) { return std::sin(x); }
};
struct cos {
  using library = sleef<VELORIM_SLEEF_NAMES(cos, u10)>;
  template <class T> static constexpr ordinary_range range() {
    return by_type<T>(has_fused_multiply_add ? elementary::cos_range : ordinary_range{0, 1e9, true},
                      has_fused_multiply_add ? elementary::real32_cos_range : ordinary_range{0, 1e5, true});
  }
  template <class V> static V body(V x) {
    if constexpr (in_own_form<V>) {
      return elementary::cos(x);
    } else if constexpr (has_fused_multiply_add) {
      return elementary::real32_cos(x);
    } else {
      return library::body(x);
    }
  }
  template <class T> static T outside(T x) { return std::cos(x); }
};
struct tan {
  using library = sleef<VELORIM_SLEEF_NAMES(tan, u10)>;
  template <class T> static constexpr ordinary_range range() {
    return by_type<T>(
        has_fused_multiply_add ? elementary::tan_range : ordinary_range{0x1p-900, 1e9, true, true},
        {0x1p-80, 1e5, true, true});
  }
  template <class V> static V body(V x) {
    if constexpr (in_own_form<V>) {
      return elementary::tan(x);
    } else {
      return library::body(x);
    }
  }
  template <class T> static T outside(T x) {
    return in_wider_type([](auto w) { return std::tan(w); }, x);
  }
};
struct sinh {
  using library = sleef<VELORIM_SLEEF_NAMES(sinh, u10)>;
  template <class T> static constexpr ordinary_range range() {
    return by_type<T>(
        has_fused_multiply_add ? elementary::sinh_range : ordinary_range{0x1p-26, 709, true, true},
        {0x1p-12, 88, true, true});
  }
  template <class V> static V body(V x) {
    if constexpr (in_own_form<V>) {
      return elementary::sinh(x);
    } else {
      return library::body(x);
    }
  }
  template <class T> static T outside(T x) {
    return in_wider_type([](auto w) { return std::sinh(w); }, x);
  }
};
struct cosh {
  using library = sleef<VELORIM_SLEEF_NAMES(cosh, u10)>;
  template <class T> static constexpr ordinary_range range() {
    return by_type<T>(has_fused_multiply_add ? elementary::cosh_range : ordinary_range{0, 709, true},
                      {0, 88, true});
  }
  template <class V> static V body(V x) {
    if constexpr (in_own_form<V>) {
      return elementary::cosh(x);
    } else {
      return library::body(x);
    }
  }
  template <class T> static T outside(T x) {
    return in_wider_type([](auto w) { return std::cosh(w); }, x);
  }
};
struct tanh {
  using library = sleef<VELORIM_SLEEF_NAMES(tanh, u10)>;
  template <class T> static constexpr ordinary_range range() {
    return by_type<T>(
        has_fused_multiply_add ? elementary::tanh_range : ordinary_range{0x1p-26, 700, true, true},
        {0x1p-12, 80, true, true});
  }
  template <class V> static V body(V x) {
    if constexpr (in_own_form<V>) {
      return elementary::tanh(x);
    } else {
      return library::body(x);
    }
  }
  template <class T> static T outside(T x) {
    return in_wider_type([](auto w) { return std::tanh(w); }, x);
  }
};
struct asin {
  using library = sleef<VELORIM_SLEEF_NAMES(asin, u10)>;
  template <class T> static constexpr ordinary_range range() {
    return by_type<T>({0, 1, true}, {0, 1, true});
  }
  template <class V> static V body(V x) { return library::body(x); }
  template <class T> static T outside(T x) { return std::asin(x); }
};
struct acos {
  using library = sleef<VELORIM_SLEEF_NAMES(acos, u10)>;
  template <class T> static constexpr ordinary_range range() {
    return by_type<T>({0, 1, true}, {0, 1, true});
  }
  template <class V> static V body(V x) { return library::body(x); }
  template <class T> static T outside(T x) { return std::acos(x); }
};
struct atan {
  using library = sleef<VELORIM_SLEEF_NAMES(atan, u10)>;
  template <class T> static constexpr ordinary_range range() {
    return by_type<T>(has_fused_multiply_add ? elementary::atan_range : ordinary_range{0, 1e300, true},
                      {0, 1e35, true});
  }
  template <class V> static V body(V x) {
    if constexpr (in_own_form<V>) {
      return elementary::atan(x);
    } else {
      return library::body(x);
    }
  }
  template <class T> static T outside(T x) { return std::atan(x); }
};
struct asinh {
  using library = sleef<VELORIM_SLEEF_NAMES(asinh, u10)>;
  template <class T> static constexpr ordinary_range range() {
    return by_type<T>(
        has_fused_multiply_add ? elementary::asinh_range : ordinary_range{0x1p-26, 1e150, true, true},
        {0x1p-12, 1e18, true, true});
  }
  template <class V> static V body(V x) {
    if constexpr (in_own_form<V>) {
      return elementary::asinh(x);
    } else {
      return library::body(x);
    }
  }
  template <class T> static T outside(T x) {
    return in_wider_type([](auto w) { return std::asinh(w); }, x);
  }
};
struct acosh {
  using library = sleef<VELORIM_SLEEF_NAMES(acosh, u10)>;
  template <class T> static constexpr ordinary_range range() {
    return by_type<T>({1, 1e150, false}, {1, 1e18, false});
  }
  template <class V> static V body(V x) { return library::body(x); }
  template <class T> static T outside(T x) {
    return in_wider_type([](auto w) { return std::acosh(w); }, x);
  }
};
struct atanh {
  using library = sleef<VELORIM_SLEEF_NAMES(atanh, u10)>;
  template <class T> static constexpr ordinary_range range() {
    return by_type<T>({0x1p-26, 0x1.fffffffffffffp-1, true, true}, {0x1p-12, 0x1.fffffep-1, true, true});
  }
  template <class V> static V body(V x) { return library::body(x); }
  template <class T> static T outside(T x) {
    return in_wider_type([](auto w) { return std::atanh(w); }, x);
  }
};
struct cbrt {
  using library = sleef<VELORIM_SLEEF_NAMES(cbrt, u10)>;
  template <class T> static constexpr ordinary_range range() {
    return by_type<T>(has_fused_multiply_add ? elementary::cbrt_range : ordinary_range{least64, most64, true},
                      {least32, most32, true});
  }
  template <class V> static V body(V x) {
    if constexpr (in_own_form<V>) {
      return elementary::cbrt(x);
    } else {
      return library::body(x);
    }
  }
  template <class T> static T outside(T x) {
    return in_wider_type([](auto w) { return std::cbrt(w); }, x);
  }
};
struct erf {
  using library = sleef<VELORIM_SLEEF_NAMES(erf, u10)>;
  template <class T> static constexpr ordinary_range range() {
    return by_type<T>({0x1p-900, 100, true, true}, {0x1p-100, 50, true, true});
  }
  template <class V> static V body(V x) { return library::body(x); }
  template <class T> static T outside(T x) {
    return in_wider_type([](auto w) { return std::erf(w); }, x);
  }
};
struct tgamma {
  using library = sleef<VELORIM_SLEEF_NAMES(tgamma, u10)>;
  template <class T> static constexpr ordinary_range range() {
    return by_type<T>({0x1p-500, 171, false}, {0x1p-60, 34, false});
  }
  template <class V> static V body(V x) { return library::body(x); }
  template <class T> static T outside(T x) {
    return in_wider_type([](auto w) { return std::tgamma(w); }, x);
  }
};
struct lgamma {
  using library = sleef<VELORIM_SLEEF_NAMES(lgamma, u10)>;
  template <class T> static constexpr ordinary_range range() {
    return by_type<T>({0x1p-500, 1e300, false}, {0x1p-60, 1e34, false});
  }
  template <class V> static V body(V x) { return library::body(x); }
  /// The reentrant forms: the others write the sign of gamma to a variable of the process.
  static double outside(double x) {
    int sign;
    return static_cast<double>(lgammal_r(x, &sign));
  }
  static float outside(float x) {
    int sign;
    return static_cast<float>(lgamma_r(x, &sign));
  }
};

}  // namespace form

inline constexpr elementary_function<form::exp> exp;
inline constexpr elementary_function<form::expm1> expm1;
inline constexpr elementary_function<form::log> log;
inline constexpr elementary_function<form::log1p> log1p;
inline constexpr elementary_function<form::log2> log2;
inline constexpr elementary_function<form::log10> log10;
inline constexpr elementary_function<form::sin> sin;
inline constexpr elementary_function<form::cos> cos;
inline constexpr elementary_function<form::tan> tan;
inline constexpr elementary_function<form::sinh> sinh;
inline constexpr elementary_function<form::cosh> cosh;
inline constexpr elementary_function<form::tanh> tanh;
inline constexpr elementary_function<form::asin> asin;
inline constexpr elementary_function<form::acos> acos;
inline constexpr elementary_function<form::atan> atan;
inline constexpr elementary_function<form::asinh> asinh;
inline constexpr elementary_function<form::acosh> acosh;
inline constexpr elementary_function<form::atanh> atanh;
inline constexpr elementary_function<form::cbrt> cbrt;
inline constexpr elementary_function<form::erf> erf;
inline constexpr elementary_function<form::tgamma> tgamma;
inline constexpr elementary_function<form::lgamma> lgamma;

/// erfc, one number at a time in the next wider type: no register form that was at hand stays within 1.0 ulp.
template <class T> inline T erfc(T x) {
  return in_wider_type([](auto w) { return std::erfc(w); }, x);
}

/// x^y, within 1.0 ulp. Its ordinary arguments are judged with the result: body holds where settled vouches for it.
struct two_argument_power {
  template <class V> static V body(V x, V y) {
    const V power = of_magnitude(magnitude(x), y);
    return any(x < V{}) ? signed_power(x, y, power) : power;
  }
  /// The lanes of a normal base and a result well inside the range.
  template <class V> static lane_set settled(V x, V, V result) {
    using T = number_of<V>;
    constexpr T least = std::numeric_limits<T>::min(), most = std::numeric_limits<T>::max();
    constexpr T small = std::is_same_v<T, double> ? T(0x1p-1000) : T(0x1p-120f), great = 1 / small;
    if constexpr (is_register<V>) {
      return lanes_between(magnitude(x), broadcast<V>(least), broadcast<V>(most)) &
             lanes_between(magnitude(result), broadcast<V>(small), broadcast<V>(great));
    } else {
      return in_range<T>({least, most, true}, x) && in_range<T>({small, great, true}, result) ? 1 : 0;
    }
  }
  template <class T> T operator()(T x, T y) const {
    {
      const fp::quiet_section quiet;
      fp::pin(x);
      fp::pin(y);
      T power = body(x, y);
      fp::pin(power);
      if (settled(x, y, power) != 0) return power;
    }
    return std::pow(x, y);
  }

 private:
  static bool any(bool mask) { return mask; }
  template <class Mask> static bool any(Mask mask) { return set_lanes(mask) != 0; }

  template <class V> static V of_magnitude(V x, V y) {
    if constexpr (is_register<V> && std::is_same_v<number_of<V>, float>) {
      const real64_halves a = widened(x), b = widened(y);
      return narrowed(of_magnitude(a.low, b.low), of_magnitude(a.high, b.high));
    } else if constexpr (std::is_same_v<V, float>) {
      return static_cast<float>(of_magnitude(static_cast<double>(x), static_cast<double>(y)));
    } else if constexpr (has_fused_multiply_add) {
      return elementary::pow(x, y);
    } else if constexpr (is_register<V>) {
      return (V)Sleef_cinz_powd2_u10sse2((__m128d)x, (__m128d)y);
    } else {
      return Sleef_cinz_powd1_u10purec(x, y);
    }
  }
  /// A negative base has an odd power below zero, an even one above it, and no other real one.
  template <class V> static V signed_power(V x, V y, V power) {
    const V half = y * broadcast<V>(number_of<V>(0.5));
    const V with_sign = select(truncated(half) != half, -power, power);
    const V none = broadcast<V>(std::numeric_limits<number_of<V>>::quiet_NaN());
    return select(x < V{}, select(truncated(y) == y, with_sign, none), power);
  }
};
inline constexpr two_argument_power pow;

/// The angle of (x, y), within 1.0 ulp, signs of zeros as in C.
struct angle_of_point {
  template <class V> static V body(V y, V x) {
    if constexpr (is_register<V> && std::is_same_v<number_of<V>, float>) {
      const real64_halves a = widened(y), b = widened(x);
      return narrowed(body(a.low, b.low), body(a.high, b.high));
    } else if constexpr (std::is_same_v<V, float>) {
      return static_cast<float>(body(static_cast<double>(y), static_cast<double>(x)));
    } else {
      return elementary::atan2(y, x);
    }
  }
  /// The lanes whose coordinates are 0, but not both, or of a size that neither the quotient nor its parts leave.
  template <class V> static lane_set ordinary(V y, V x) {
    using T = number_of<V>;
    constexpr T small = std::is_same_v<T, double> ? T(0x1p-400) : T(0x1p-60f), great = 1 / small;
    if constexpr (is_register<V>) {
      const auto sized = [](V v) {
        return lanes_between(magnitude(v), broadcast<V>(small), broadcast<V>(great));
      };
      const lane_set y_sized = sized(y), x_sized = sized(x);
      return (y_sized & x_sized) | (y_sized & set_lanes(x == V{})) | (x_sized & set_lanes(y == V{}));
    } else {
      const auto sized = [](T v) { return in_range<T>({small, great, true}, v); };
      return (sized(y) && (sized(x) || x == 0)) || (sized(x) && y == 0) ? 1 : 0;
    }
  }
  template <class T> T operator()(T y, T x) const {
    if (ordinary(y, x) == 0) {
      using wider = std::conditional_t<std::is_same_v<T, float>, double, T>;
      return static_cast<T>(std::atan2(static_cast<wider>(y), static_cast<wider>(x)));
    }
    const fp::quiet_section quiet;
    fp::pin(x);
    fp::pin(y);
    T angle = body(y, x);
    fp::pin(angle);
    return angle;
  }
};
inline constexpr angle_of_point atan2;

/// b^x for a fixed base above 1.
template <class T> inline T power(T base, T x) { return std::pow(base, x); }

}  // namespace vlm::vm
