// Powers, logarithms to a base, angles.
#pragma once

#include <cmath>
#include <utility>

#include "Arithmetic/Kernels/binary/arithmetic.h"
#include "Arithmetic/Kernels/complex/exponential.h"
#include "Arithmetic/Kernels/complex/power.h"
#include "Arithmetic/Kernels/integer_power.h"
#include "Arithmetic/Kernels/vector_math.h"

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
    const uint64_t e = bits_of(y);  // y is not negative
    if (std::has_single_bit(size)) {
      const uint64_t n = static_cast<uint64_t>(std::countr_zero(size)) * e;
      // The power of two that does not fit any more.
      constexpr uint64_t beyond_negative = width, beyond_positive = std::is_signed_v<T> ? width - 1 : width;
      if (checked && (e >= width || n >= (x < 0 ? beyond_negative : beyond_positive))) return true;
      const auto power = static_cast<T>(static_cast<std::make_unsigned_t<T>>(uint64_t{1} << (n % width)));
      result = x < 0 && odd ? wrapping_minus(power) : power;
      return false;
    }
    if (e == 0) {
      result = 1;
      return false;
    }
    if (checked && e >= width) return true;  // |x| is at least 3
    bool fits = true;
    const T power = power_by_products(x, e, [&fits](T a, T b) {
      if (checked) fits &= product_fits(a, b);
      return wrapping_product(a, b);
    });
    if (!fits) return true;
    result = power;
    return false;
  }
};

/// x^y of complex numbers by exp(y log x), where x is not 0 or y is not.
template <class T> inline complex::parts<T> polar_power(complex::parts<T> x, complex::parts<T> y) {
  complex::parts<T> logarithm = complex::log(x);
  if (x.im == 0) logarithm.im = std::atan2(x.im, x.re);  // the side of the cut tells by the sign of the zero
  return complex::exp(complex::product(y, logarithm));
}

/// x^y of a complex number that is not 0 and an integer.
template <class T> inline complex::parts<T> complex_integer_power(complex::parts<T> x, mint y) {
  if (x.im == 0) return {integer_power(x.re, y), 0};
  if (x.re == 0) {
    const T r = integer_power(x.im, y);
    const uint64_t turns = unsigned_magnitude(y) % 4;
    switch (y < 0 ? (4 - turns) % 4 : turns) {
      case 0:
        return {r, 0};
      case 1:
        return {0, r};
      case 2:
        return {-r, 0};
      default:
        return {0, -r};
    }
  }
  const uint64_t e = unsigned_magnitude(y);
  const complex::parts<T> one = {1, 0};
  if (e == 0) return one;
  const complex::parts<T> power =
      e < first_exponent_without_complex_products
          ? power_by_products(x, e,
                              [](complex::parts<T> a, complex::parts<T> b) { return complex::product(a, b); })
          : polar_power(x, {static_cast<T>(e), T(0)});
  return y < 0 ? complex::quotient(one, power) : power;
}

/// Reals to the power of integers in lanes: in each the products of integer_power in its order. Lanes whose exponent is 2^25 or more in
/// magnitude mean nothing.
struct lane_powers {
  static real64_lanes power(real64_lanes x, int64_lanes y) {
    const int64_lanes sign = y >> 63, e = (int64_lanes)((uint64_lanes)(y ^ sign) - (uint64_lanes)sign);
    const lane_set small = is(e <= 8);
    const V x2 = x * x, x3 = x2 * x, x4 = x2 * x2;
    V r = x;
    if (small != every_lane<V>) r = by_windows(x, x2, x3, x4, e);
    if (small != 0) r = select(e <= 8, by_small(x, x2, x3, x4, e), r);
    return is(sign) == 0 ? r : select(sign, broadcast<V>(1) / r, r);
  }
  static lane_set holds(int64_lanes y) {
    constexpr int64_t first_without = first_exponent_without_products;
    return is((y > -first_without) & (y < first_without));
  }

 private:
  using V = real64_lanes;
  static lane_set is(int64_lanes mask) { return set_lanes(std::bit_cast<mask64_lanes>(mask)); }
  static V select(int64_lanes mask, V a, V b) { return vlm::select(std::bit_cast<mask64_lanes>(mask), a, b); }

  static V by_small(V x, V x2, V x3, V x4, int64_lanes e) {
    const std::pair<int, V> powers[] = {
        {2, x2}, {3, x3}, {4, x4}, {5, x4 * x}, {6, x3 * x3}, {7, (x3 * x3) * x}, {8, x4 * x4}};
    V r = select(e == 0, broadcast<V>(1), x);
    for (const auto& [exponent, value] : powers) r = select(e == exponent, value, r);
    return r;
  }

  /// Two bits of every exponent at a time, each lane from its own highest bit down.
  static V by_windows(V x, V x2, V x3, V x4, int64_lanes e) {
    const auto factor = [&](int64_lanes two_bits) {
      const V odd = select((two_bits & 2) != 0, x3, x),
              even = select((two_bits & 2) != 0, x2, broadcast<V>(1));
      return select((two_bits & 1) != 0, odd, even);
    };
    const auto exponent_of_e = std::bit_cast<int64_lanes>(to_number(e)) >> 52;
    int64_lanes rest = exponent_of_e - (1023 + 2);  // bits that are still to come
    rest = rest < 0 ? int64_lanes{} : rest;
    V r = x4 * factor((e >> rest) & 3);
    for (int64_lanes goes_on = rest >= 2; is(goes_on) != 0; goes_on = rest >= 2) {
      const int64_lanes next = goes_on ? rest - 2 : rest;
      const V square = r * r;
      r = select(goes_on, (square * square) * factor((e >> next) & 3), r);
      rest = next;
    }
    const V last = (r * r) * select((e & 1) != 0, x, broadcast<V>(1));
    return select(rest == 1, last, r);
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
    template <class T> static T value(T x, T y) { return vm::pow(x, y); }
    template <class V> static V body(V x, V y) { return vm::pow.body(x, y); }
    template <class V> static lane_set settled(V x, V y, V r) { return vm::pow.settled(x, y, r); }
  };
  struct on_complexes : checked {
    template <class T> static bool undefined(complex::parts<T> x, complex::parts<T> y) {
      return x.re == 0 && x.im == 0 && y.re == 0 && y.im == 0;
    }
    template <class T> static complex::parts<T> value(complex::parts<T> x, complex::parts<T> y) {
      return polar_power(x, y);
    }
  };
  struct with_integer : checked {
    template <class X> static constexpr bool serves = !is_integer_element<X>;
    template <std::floating_point T> static bool undefined(T x, mint y) { return x == 0 && y == 0; }
    template <std::floating_point T> static T value(T x, mint y) { return integer_power(x, y); }
    static real64_lanes body(real64_lanes x, int64_lanes y) { return lane_powers::power(x, y); }
    static lane_set settled(real64_lanes x, int64_lanes y, real64_lanes r) {
      constexpr double least = std::numeric_limits<double>::min(), most = std::numeric_limits<double>::max();
      return lane_powers::holds(y) &
             lanes_between(magnitude(x), broadcast<real64_lanes>(least), broadcast<real64_lanes>(most)) &
             lanes_between(magnitude(r), broadcast<real64_lanes>(least), broadcast<real64_lanes>(most));
    }
    template <class T> static bool undefined(complex::parts<T> x, mint y) {
      return x.re == 0 && x.im == 0 && y == 0;
    }
    template <class T> static complex::parts<T> value(complex::parts<T> x, mint y) {
      return complex_integer_power(x, y);
    }
  };
};

/// The logarithm of x to the base given first; undefined for a base of 0.
struct LogToBase {
  static constexpr int32_t number = 264;
  static constexpr char name[] = "log";
  static constexpr char return_range[] = "-CCCCCCCC";
  static constexpr mixed widens = mixed::all;
  struct on_reals : checked {
    template <class T> static bool undefined(T base, T) { return base == 0; }
    template <class T> static T value(T base, T x) { return vm::log(x) / vm::log(base); }
  };
  struct on_complexes : checked {
    template <class T> static bool undefined(complex::parts<T> base, complex::parts<T>) {
      return base.re == 0 && base.im == 0;
    }
    template <class T> static complex::parts<T> value(complex::parts<T> base, complex::parts<T> x) {
      return complex::quotient(complex::log(x), complex::log(base));
    }
  };
};

/// The angle of the point with abscissa x, given first, and ordinate y.
struct Atan2 {
  static constexpr int32_t number = 265;
  static constexpr char name[] = "atan2";
  static constexpr char return_range[] = "-RCRRCCCC";
  static constexpr mixed widens = mixed::all;
  struct on_reals : checked {
    template <class T> static T value(T x, T y) { return vm::atan2(y, x); }
    template <class V> static V body(V x, V y) { return vm::atan2.body(y, x); }
    template <class V> static lane_set ordinary(V x, V y) { return vm::atan2.ordinary(y, x); }
  };
  /// -i log((x + i y) / sqrt(x^2 + y^2)); real on the axes.
  struct on_complexes : checked {
    template <class T> static bool is_negative(complex::parts<T> z) {
      return z.re < 0 || (z.re == 0 && z.im < 0);
    }
    template <class T> static bool is_zero(complex::parts<T> z) { return z.re == 0 && z.im == 0; }
    template <class T> static complex::parts<T> value(complex::parts<T> x, complex::parts<T> y) {
      constexpr T half_pi = complex::half_pi<T>;
      if (is_zero(x)) return {is_zero(y) ? T(0) : is_negative(y) ? -half_pi : half_pi, 0};
      if (is_zero(y)) return {is_negative(x) ? complex::pi<T> : T(0), 0};
      const complex::parts<T> p = {x.re - y.im, x.im + y.re}, q = {x.re + y.im, x.im - y.re};
      const complex::parts<T> direction = complex::product(p, complex::rsqrt(complex::product(p, q)));
      return complex::turned_back(complex::log(direction));
    }
  };
};

using power_functions = function_list<Pow, LogToBase, Atan2>;

/// The n-th root of z; n is not 0.
template <class T> inline complex::parts<T> complex_root(mint n, complex::parts<T> z) {
  const complex::parts<T> one = {1, 0};
  switch (n) {
    case -2:
      return complex::rsqrt(z);
    case -1:
      return complex::quotient(one, z);
    case 1:
      return z;
    case 2:
      return complex::sqrt(z);
    default:
      return polar_power(z, {1 / static_cast<T>(n), T(0)});
  }
}

}  // namespace vlm::machine_function::binary
