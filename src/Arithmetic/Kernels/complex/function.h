// How a complex function is made of its two forms, as vm::elementary_function is for reals:
//
//   struct some_form {
//     // Lanes of which body holds, and in which the ladder of outside raises none of invalid, division by zero and overflow.
//     template <class T> static lane_set ordinary(parts<lanes> z);
//     // Free of branches, over registers of Real64.
//     static parts<lanes> body(parts<lanes> z);
//     // Every other argument, as a number: the whole ladder of special cases.
//     template <class T> static parts<T> outside(parts<T> z);
//     // Optional. Arguments whose result is not looked at by the result check.
//     template <class T> static bool unchecked(parts<T> z);
//   };
//   inline constexpr function<some_form> some;      // some(z) for a number
//
// body and outside give parts, or one real. A number inside goes through body as well, in all lanes of a register, so that every
// road gives the same bits. Real32 goes through the same body in Real64 and is rounded once; a result that Real32 cannot hold is
// left to outside, which works in single precision.
//
// Two optional marks:
//   in_own_type   the body is a template over registers of Real64 and of Real32, and the latter are not widened;
//   arithmetic    (with in_own_type) plain IEEE arithmetic: no ordinary range, no outside, and the flags it raises count.
#pragma once

#include <cmath>
#include <limits>

#include "Arithmetic/Kernels/complex/arithmetic.h"
#include "Arithmetic/Kernels/ordinary_range.h"
#include "Includes/element_types.h"
#include "Includes/fp_environment.h"
#include "Includes/lanes.h"
#include "Includes/vlm_fp_exception.h"

namespace vlm::complex {

using lanes = real64_lanes;

template <class Form> inline constexpr bool in_own_type = requires { Form::in_own_type; };
template <class Form> inline constexpr bool is_arithmetic = requires { Form::arithmetic; };

/// The registers in which a form computes for numbers of type T.
template <class Form, class T> using lanes_for = std::conditional_t<in_own_type<Form>, register_of<T>, lanes>;

/// The pairs from p on, one in each lane.
template <class V, class T> inline parts<V> load_parts(const T* p) {
  two_registers<V> pairs;
  if constexpr (std::is_same_v<number_of<V>, T>) {
    pairs = {load<V>(p), load<V>(p + lanes_of<V>::count)};
  } else {
    const real64_halves halves = widened(load<real32_lanes>(p));
    pairs = {halves.low, halves.high};
  }
  const two_registers<V> split = split_pairs(pairs);
  return {split.first, split.second};
}

/// The results of all lanes from p on.
template <class V, class T> inline void store_parts(T* p, parts<V> z) {
  const two_registers<V> pairs = join_pairs<V>({z.re, z.im});
  if constexpr (std::is_same_v<number_of<V>, T>) {
    store(p, pairs.first);
    store(p + lanes_of<V>::count, pairs.second);
  } else {
    store(p, narrowed(pairs.first, pairs.second));
  }
}
template <class V, class T> inline void store_parts(T* p, V x) {
  if constexpr (std::is_same_v<number_of<V>, T>) {
    store(p, x);
  } else {
    for (int lane = 0; lane < lanes_of<V>::count; ++lane) p[lane] = static_cast<T>(x[lane]);
  }
}

/// The result in one lane, rounded to T.
template <class T, class V> inline parts<T> in_lane(parts<V> z, int lane) {
  return {static_cast<T>(z.re[lane]), static_cast<T>(z.im[lane])};
}
template <class T, class V> inline T in_lane(V x, int lane) { return static_cast<T>(x[lane]); }

/// The lanes whose result a T holds.
template <class T, class V> inline lane_set held_by(V x) {
  return lanes_between(magnitude(x), V{}, broadcast<V>(number_of<V>{std::numeric_limits<T>::max()}));
}
template <class T, class V> inline lane_set held_by(parts<V> z) {
  return held_by<T>(z.re) & held_by<T>(z.im);
}

/// The lanes that keep the result y of body for the argument z of type T.
template <class Form, class T, class V, class Y> inline lane_set kept_lanes(parts<V> z, Y y) {
  if constexpr (is_arithmetic<Form>) {
    return every_lane<V>;
  } else if constexpr (std::is_same_v<number_of<V>, T>) {
    return Form::template ordinary<T>(z);
  } else {
    return Form::template ordinary<T>(z) & held_by<T>(y);
  }
}

template <class V> inline void pin(parts<V>& z) {
  fp::pin(z.re);
  fp::pin(z.im);
}
template <class V> inline void pin(V& x) { fp::pin(x); }

template <class Form> struct function {
  using form = Form;

  /// Not inlined, so that there is one copy of it: another could choose another one of two NaN operands for its result.
  template <class T> [[gnu::noinline]] auto operator()(parts<T> z) const {
    using V = lanes_for<Form, T>;
    if constexpr (is_arithmetic<Form>) {
      pin(z);
      auto y = Form::body(in_all_lanes<V>(z));
      pin(y);
      return in_lane<T>(y, 0);
    } else {
      {
        const fp::quiet_section quiet;
        pin(z);
        const parts<V> x = in_all_lanes<V>(z);
        if (Form::template ordinary<T>(x) & 1) {
          auto y = Form::body(x);
          pin(y);
          if (kept_lanes<Form, T>(x, y) & 1) return in_lane<T>(y, 0);
        }
      }
      return Form::outside(z);
    }
  }

 private:
  template <class V, class T> static parts<V> in_all_lanes(parts<T> z) {
    return {broadcast<V>(number_of<V>{z.re}), broadcast<V>(number_of<V>{z.im})};
  }
};

// ---- What forms are written with --------------------------------------------------------------------------------------------

/// The constant c in every lane.
inline lanes all(double c) { return broadcast<lanes>(c); }

/// The lanes with |x| + |y| in an interval; a NaN is outside. The sum is at most twice the magnitude.
inline lane_set size_between(parts<lanes> z, double low, double high) {
  return lanes_between(magnitude(z.re) + magnitude(z.im), all(low), all(high));
}
/// The lanes with |x| at most a limit.
inline lane_set at_most(lanes x, double limit) { return lanes_between(magnitude(x), lanes{}, all(limit)); }
/// The lanes whose x is zero, or of a magnitude within bounds that squares and products of squares do not leave.
inline constexpr double least_squared = 0x1p-400, most_squared = 0x1p400;
inline lane_set zero_or_squarable(lanes x) {
  return lanes_between(magnitude(x), all(least_squared), all(most_squared)) | set_lanes(x == lanes{});
}

/// Minus zero becomes zero, any other number stays: x + 0.
template <class V> inline V without_minus_zero(V x) { return x + V{}; }

/// A limit for arguments of type T.
template <class T> constexpr double by_type(double of_real64, double of_real32) {
  return std::is_same_v<T, double> ? of_real64 : of_real32;
}

/// i z, and the way back: circular functions are hyperbolic ones of i z.
template <class V> inline parts<V> turned(parts<V> z) { return {-z.im, z.re}; }
template <class V> inline parts<V> turned_back(parts<V> z) { return {z.im, -z.re}; }

template <class V> inline parts<V> real_part_only(V x) { return {x, V{}}; }
template <class T> inline constexpr parts<T> one = {1, 0};

template <class T> inline constexpr T not_a_number = std::numeric_limits<T>::quiet_NaN();
template <class T> inline constexpr T infinite = std::numeric_limits<T>::infinity();
template <class T> inline constexpr T pi = static_cast<T>(3.141592653589793);
template <class T> inline constexpr T half_pi = static_cast<T>(1.5707963267948966);
template <class T> inline constexpr T quarter_pi = static_cast<T>(0.7853981633974483);
template <class T> inline constexpr T ln2 = static_cast<T>(0.6931471805599453);

using detail::is_finite;

}  // namespace vlm::complex
