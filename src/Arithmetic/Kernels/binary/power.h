// Powers, logarithms to a base, angles.
#pragma once

#include <cmath>

#include "Arithmetic/Kernels/binary/arithmetic.h"
#include "Arithmetic/Kernels/integer_power.h"

namespace vlm::machine_function::binary {

/// x^y in integers. Whatever the flags, 0 to a power below 1 fails, and so does a negative power of anything but 1 and -1.
struct integer_pow {
  template <bool checked, class T> static constexpr bool evaluate(T x, T y, T& result) {
    constexpr uint64_t width = sizeof(T) * 8;
    const bool odd = (y & 1) != 0;
    if (x == 1 || (std::is_signed_v<T> && x == static_cast<T>(-1))) {
      result = odd ? x : T(1);
      return false;
    }
    if (x == 0) {
      result = 0;
      return y <= 0;
    }
    if (y < 0) return true;
    const auto size = unsigned_magnitude(x);
    const uint64_t e = static_cast<uint64_t>(y);
    if (std::has_single_bit(size)) {
      const auto k = static_cast<uint64_t>(std::countr_zero(size));
      const uint64_t n = k * e;
      // What a positive or negative power of two must stay below.
      const uint64_t bound = std::is_unsigned_v<T> || x < 0 ? width : width - 1;
      if (checked && (e >= width || n >= bound)) return true;
      const auto power = static_cast<T>(static_cast<std::make_unsigned_t<T>>(uint64_t{1} << (n % width)));
      result = x < 0 && odd ? wrapping_minus(power) : power;
      return false;
    }
    bool fits = true;
    const auto times = [&fits](T a, T b) {
      if (checked) fits &= product_fits(a, b);
      return wrapping_product(a, b);
    };
    if (e == 0) {
      result = 1;
      return false;
    }
    if (checked && e >= width) return true;  // |x| is at least 3
    const T power = power_by_products(x, e, times);
    if (!fits) return true;
    result = power;
    return false;
  }
};

/// x^y. Real and complex: undefined for 0^0. An integer exponent goes by products.
struct Pow {
  static constexpr int32_t number = 263;
  static constexpr char name[] = "pow";
  static constexpr char return_range[] = "ICCRCCCCC";
  static constexpr mixed widens = mixed::id | mixed::to_complex | mixed::cd;
  using on_integers = integer_pow;
  struct on_reals : checked {
    template <class T> static bool undefined(T x, T y) { return x == 0 && y == 0; }
    template <class T> static T value(T x, T y) { return std::pow(x, y); }
  };
  struct with_integer : checked {
    template <class X> static constexpr bool serves = is_real_element<X>;
    template <class T> static bool undefined(T x, mint y) { return x == 0 && y == 0; }
    template <class T> static T value(T x, mint y) { return integer_power(x, y); }
  };
};

/// The logarithm of x to the base given first; undefined for a base of 0.
struct Log2Of {
  static constexpr int32_t number = 264;
  static constexpr char name[] = "log";
  static constexpr char return_range[] = "-CCCCCCCC";
  static constexpr mixed widens = mixed::all;
  struct on_reals : checked {
    template <class T> static bool undefined(T base, T) { return base == 0; }
    template <class T> static T value(T base, T x) { return std::log(x) / std::log(base); }
  };
};

/// The angle of the point with abscissa x, given first, and ordinate y.
struct Atan2 {
  static constexpr int32_t number = 265;
  static constexpr char name[] = "atan2";
  static constexpr char return_range[] = "-RCRRCCCC";
  static constexpr mixed widens = mixed::all;
  struct on_reals : checked {
    template <class T> static T value(T x, T y) { return std::atan2(y, x); }
  };
};

using power_functions = function_list<Pow, Log2Of, Atan2>;

}  // namespace vlm::machine_function::binary
