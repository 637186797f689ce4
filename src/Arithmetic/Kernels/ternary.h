// The machine functions of three arguments a, x, y: a product added, subtracted or subtracted from, and a quotient by a
// difference. All arguments and the result have one element type.
//
// A function gives its value on a class of element types:
//   on_integers   wrapped(p, y): what becomes of the product p, wrapping; fits(p, y): whether it fits the type.
//   on_reals      value(a, x, y) for a number or a register of them; Real16 in half(a, x, y).
//   on_complex    value(a, x, y) for the parts of a number or of the numbers of two registers.
// A class that is absent has no rows. Every row is checked: integers for overflow of the product and then of the result,
// the others for a NaN or an infinity as the result (for the difference that is divided by, too).
#pragma once

#include "Arithmetic/Kernels/binary/fitting.h"
#include "Arithmetic/Kernels/complex/arithmetic.h"
#include "Arithmetic/Kernels/definition.h"

namespace vlm::machine_function::ternary {

using complex::parts;

/// x in a place of its own: a negation stays one where a compiler would fold it into a multiplication, which keeps the sign
/// of a NaN.
template <class V> inline V negative(V x) {
  x = -x;
  keep_in_register(x);
  return x;
}

/// a x + y.
struct Axpy {
  static constexpr int32_t number = 513;
  struct on_integers {
    template <class T> static constexpr T wrapped(T p, T y) { return wrapping_sum(p, y); }
    template <class T> static constexpr bool fits(T p, T y) { return sum_fits(p, y); }
  };
  struct on_reals {
    template <class V> static V value(V a, V x, V y) { return fused(a, x, y); }
    static real16 half(real16 a, real16 x, real16 y) { return multiply_add(a, x, y); }
  };
  struct on_complex {
    template <class V> static parts<V> value(parts<V> a, parts<V> x, parts<V> y) {
      return plain_product(a, x) + y;
    }
  };
};

/// a x - y.
struct Axmy {
  static constexpr int32_t number = 514;
  struct on_integers {
    template <class T> static constexpr T wrapped(T p, T y) { return wrapping_difference(p, y); }
    template <class T> static constexpr bool fits(T p, T y) { return difference_fits(p, y); }
  };
  struct on_reals {
    template <class V> static V value(V a, V x, V y) { return fused(a, x, negative(y)); }
    static real16 half(real16 a, real16 x, real16 y) { return multiply_add(a, x, negated(y)); }
  };
  struct on_complex {
    template <class V> static parts<V> value(parts<V> a, parts<V> x, parts<V> y) {
      return plain_product(a, x) - y;
    }
  };
};

/// y - a x.
struct Ymax {
  static constexpr int32_t number = 515;
  struct on_integers {
    template <class T> static constexpr T wrapped(T p, T y) { return wrapping_difference(y, p); }
    template <class T> static constexpr bool fits(T p, T y) { return difference_fits(y, p); }
  };
  struct on_reals {
    template <class V> static V value(V a, V x, V y) { return fused(negative(a), x, y); }
    static real16 half(real16 a, real16 x, real16 y) { return multiply_add(negated(a), x, y); }
  };
  struct on_complex {
    template <class V> static parts<V> value(parts<V> a, parts<V> x, parts<V> y) {
      return y - plain_product(a, x);
    }
  };
};

/// a / (x - y).
struct Adxmy {
  static constexpr int32_t number = 516;
  struct on_reals {
    template <class V> static V value(V a, V x, V y) { return a / (x - y); }
    static real16 half(real16 a, real16 x, real16 y) { return divide(a, subtract(x, y)); }
  };
  struct on_complex {
    template <class T> static parts<T> value(parts<T> a, parts<T> x, parts<T> y) {
      return quotient(a, x - y);
    }
    /// The same for registers, within the lanes of `ordinary`; there the number form raises none of the three flags.
    template <class V>
    static parts<V> register_value(parts<V> a, parts<V> x, parts<V> y, lane_set& ordinary) {
      const parts<V> divisor = x - y, q = plain_quotient(a, divisor);
      ordinary = is_plain_divisor(divisor) & finite_lanes(q);
      return q;
    }
  };
  /// The difference that is divided by, which answers to the result check too.
  template <class T> static T divisor(T x, T y) {
    if constexpr (std::is_same_v<T, real16>) {
      return subtract(x, y);
    } else if constexpr (is_real_element<T>) {
      return x - y;
    } else {
      return {x.re - y.re, x.im - y.im};
    }
  }
};

using functions = function_list<Axpy, Axmy, Ymax, Adxmy>;

}  // namespace vlm::machine_function::ternary
