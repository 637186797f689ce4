// Sums, products, quotients, distances and extrema.
#pragma once

#include <cmath>

#include "Arithmetic/Kernels/binary/definition.h"
#include "Arithmetic/Kernels/binary/fitting.h"
#include "Arithmetic/Kernels/integer_arithmetic.h"
#include "Includes/real16.h"
#include "Includes/vlm_fp_exception.h"

namespace vlm::machine_function::binary {

struct Plus {
  static constexpr int32_t number = 257;
  static constexpr char name[] = "plus";
  static constexpr char return_range[] = "IRCRRCCCC";
  static constexpr mixed widens = mixed::all;
  struct on_integers {
    template <class T> static constexpr T value(T x, T y) { return wrapping_sum(x, y); }
    template <class T> static constexpr bool fails(T x, T y) { return !sum_fits(x, y); }
  };
  struct on_reals : checked {
    static constexpr bool register_arithmetic = true;
    template <class V> static V value(V x, V y) { return x + y; }
    static real16 half(real16 x, real16 y) { return add(x, y); }
  };
  struct on_complexes : checked {
    static constexpr bool each_part = true;
    template <class V> static V value(V x, V y) { return x + y; }
  };
};

struct Subtract {
  static constexpr int32_t number = 258;
  static constexpr char name[] = "subtract";
  static constexpr char return_range[] = "IRCRRCCCC";
  static constexpr mixed widens = mixed::all;
  struct on_integers {
    template <class T> static constexpr T value(T x, T y) { return wrapping_difference(x, y); }
    template <class T> static constexpr bool fails(T x, T y) { return !difference_fits(x, y); }
  };
  struct on_reals : checked {
    static constexpr bool register_arithmetic = true;
    template <class V> static V value(V x, V y) { return x - y; }
    static real16 half(real16 x, real16 y) { return subtract(x, y); }
  };
  struct on_complexes : checked {
    static constexpr bool each_part = true;
    template <class V> static V value(V x, V y) { return x - y; }
  };
};

struct Times {
  static constexpr int32_t number = 259;
  static constexpr char name[] = "times";
  static constexpr char return_range[] = "IRCRRCCCC";
  static constexpr mixed widens = mixed::all;
  struct on_integers {
    template <class T> static constexpr T value(T x, T y) { return wrapping_product(x, y); }
    template <class T> static constexpr bool fails(T x, T y) { return !product_fits(x, y); }
    template <class T>
    requires(sizeof(T) == 8) static bool none_fails(const T* x, const T* y, mint n) {
      return products_surely_fit(x, y, n);
    }
  };
  struct on_reals : checked {
    static constexpr bool register_arithmetic = true;
    template <class V> static V value(V x, V y) { return x * y; }
    static real16 half(real16 x, real16 y) { return multiply(x, y); }
  };
  struct on_complexes : checked {
    template <class T> static complex::parts<T> value(complex::parts<T> x, complex::parts<T> y) {
      return complex::product(x, y);
    }
    template <class V> static complex::parts<V> body(complex::parts<V> x, complex::parts<V> y) {
      return complex::plain_product(x, y);
    }
    template <class V> static lane_set settled(complex::parts<V>, complex::parts<V>, complex::parts<V> r) {
      return complex::finite_lanes(r);
    }
  };
};

struct Divide {
  static constexpr int32_t number = 260;
  static constexpr char name[] = "div";
  static constexpr char return_range[] = "-RCRRCCCC";
  static constexpr mixed widens = mixed::all;
  struct on_reals : checked {
    static constexpr bool register_arithmetic = true;
    template <class V> static V value(V x, V y) { return x / y; }
    static real16 half(real16 x, real16 y) { return divide(x, y); }
  };
  struct on_complexes : checked {
    template <class T> static complex::parts<T> value(complex::parts<T> x, complex::parts<T> y) {
      return complex::quotient(x, y);
    }
    template <class V> static complex::parts<V> body(complex::parts<V> x, complex::parts<V> y) {
      return complex::plain_quotient(x, y);
    }
    template <class V> static lane_set ordinary(complex::parts<V>, complex::parts<V> y) {
      return complex::is_plain_divisor(y);
    }
    template <class V> static lane_set settled(complex::parts<V>, complex::parts<V>, complex::parts<V> r) {
      return complex::finite_lanes(r);
    }
  };
};

/// |x - y|. Of unsigned integers x - y, which must not be negative.
struct AbsErr {
  static constexpr int32_t number = 270;
  static constexpr char name[] = "abserr";
  static constexpr char return_range[] = "IRRRRRRRR";
  static constexpr mixed widens = mixed::all;
  struct on_integers {
    template <class T> static constexpr T value(T x, T y) {
      const T d = wrapping_difference(x, y);
      return d < 0 ? wrapping_minus(d) : d;
    }
    template <class T> static constexpr bool fails(T x, T y) {
      return !difference_fits(x, y) ||
             (std::is_signed_v<T> && wrapping_difference(x, y) == std::numeric_limits<T>::min());
    }
  };
  struct on_reals : checked {
    static constexpr bool register_arithmetic = true;
    template <class V> static V value(V x, V y) { return magnitude(x - y); }
    static real16 half(real16 x, real16 y) { return magnitude(subtract(x, y)); }
  };
  struct on_complexes : checked {
    template <class T> static T value(complex::parts<T> x, complex::parts<T> y) {
      return std::hypot(x.re - y.re, x.im - y.im);
    }
  };
};

/// |(y - x) / y|, with y as the reference.
struct RelErr {
  static constexpr int32_t number = 271;
  static constexpr char name[] = "relerr";
  static constexpr char return_range[] = "-RRRRRRRR";
  static constexpr mixed widens = mixed::all;
  struct on_reals : checked {
    static constexpr bool register_arithmetic = true;
    template <class V> static V value(V x, V y) { return magnitude((y - x) / y); }
  };
  struct on_complexes : checked {
    template <class T> static T value(complex::parts<T> x, complex::parts<T> y) {
      const complex::parts<T> q = complex::quotient(y - x, y);
      return std::hypot(q.re, q.im);
    }
  };
};

/// The larger (or the smaller) of two numbers by the order of their bits: -0 is below +0, and no comparison raises a flag. A NaN
/// gives the other argument.
enum class extreme { larger, smaller };
template <extreme Which, class V> inline V extreme_of(V x, V y) {
  using integers = typename lanes_of<V>::signed_bits;
  constexpr int top = sizeof(number_of<V>) * 8 - 1;
  const auto key = [](V v) {
    const auto bits = std::bit_cast<integers>(v);
    // Those below zero in reverse.
    return bits ^
           std::bit_cast<integers>(std::bit_cast<typename lanes_of<V>::unsigned_bits>(bits >> top) >> 1);
  };
  const auto is_number = [](V v) {
    const auto infinity =
        std::bit_cast<integers>(broadcast<V>(std::numeric_limits<number_of<V>>::infinity()));
    return std::bit_cast<integers>(magnitude(v)) <= infinity;
  };
  const auto x_first = Which == extreme::smaller ? key(x) < key(y) : key(x) > key(y);
  if constexpr (is_register<V>) {
    const auto takes_x = (x_first & is_number(x)) | ~is_number(y);
    return select(std::bit_cast<typename lanes_of<V>::mask>(takes_x), x, y);
  } else {
    return (x_first && is_number(x)) || !is_number(y) ? x : y;
  }
}

/// The larger magnitude; of integers as an unsigned value.
struct MaxAbs {
  static constexpr int32_t number = 272;
  static constexpr char name[] = "maxabs";
  static constexpr char return_range[] = "I---R---R";
  struct on_integers {
    template <class T> static constexpr T value(T x, T y) {
      const auto a = unsigned_magnitude(x), b = unsigned_magnitude(y);
      return static_cast<T>(a > b ? a : b);
    }
    template <class T> static constexpr bool fails(T x, T y) {
      constexpr T least = std::numeric_limits<T>::min();
      return std::is_signed_v<T> && (x == least || y == least);
    }
  };
  struct on_reals : unchecked {
    static constexpr bool register_arithmetic = true;
    template <class V> static V value(V x, V y) {
      return extreme_of<extreme::larger>(magnitude(x), magnitude(y));
    }
  };
  struct on_complexes : unchecked {
    template <class T> static T value(complex::parts<T> x, complex::parts<T> y) {
      const T a = std::hypot(x.re, x.im), b = std::hypot(y.re, y.im);
      return a > b ? a : b;
    }
    template <class T> static bool fails(complex::parts<T> x, complex::parts<T> y) {
      return is_fp_exception(std::hypot(x.re, x.im)) || is_fp_exception(std::hypot(y.re, y.im));
    }
  };
};

struct Max {
  static constexpr int32_t number = 286;
  static constexpr char name[] = "max";
  static constexpr char return_range[] = "IR-RR----";
  static constexpr mixed widens = mixed::reals;
  struct on_integers {
    template <class T> static constexpr T value(T x, T y) { return x > y ? x : y; }
  };
  struct on_reals : unchecked {
    static constexpr bool register_arithmetic = true;
    template <class V> static V value(V x, V y) { return extreme_of<extreme::larger>(x, y); }
  };
};

struct Min {
  static constexpr int32_t number = 287;
  static constexpr char name[] = "min";
  static constexpr char return_range[] = "IR-RR----";
  static constexpr mixed widens = mixed::reals;
  struct on_integers {
    template <class T> static constexpr T value(T x, T y) { return x < y ? x : y; }
  };
  struct on_reals : unchecked {
    static constexpr bool register_arithmetic = true;
    template <class V> static V value(V x, V y) { return extreme_of<extreme::smaller>(x, y); }
  };
};

using arithmetic_functions = function_list<Plus, Subtract, Times, Divide, AbsErr, RelErr, MaxAbs, Max, Min>;

}  // namespace vlm::machine_function::binary
