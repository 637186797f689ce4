// Divisors, digits and bits of integers.
#pragma once

#include <bit>
#include <cmath>

#include "Arithmetic/Kernels/binary/definition.h"
#include "Arithmetic/Kernels/binary/fitting.h"

namespace vlm::machine_function::binary {

/// Stein's greatest common divisor.
template <std::unsigned_integral U> constexpr U greatest_common_divisor(U a, U b) {
  if (a == 0) return b;
  if (b == 0) return a;
  const int twos = std::countr_zero(static_cast<U>(a | b));
  a = static_cast<U>(a >> std::countr_zero(a));
  b = static_cast<U>(b >> std::countr_zero(b));
  while (a != b) {
    if (a == 1 || b == 1) return static_cast<U>(U{1} << twos);
    // The difference has as many trailing zeros either way round, which takes the comparison off the path from one step to the next.
    const auto difference = static_cast<U>(b - a);
    const int shift = std::countr_zero(difference);
    const bool a_is_larger = a > b;
    const auto distance = a_is_larger ? static_cast<U>(U{0} - difference) : difference;
    b = a_is_larger ? b : a;
    a = static_cast<U>(distance >> shift);
  }
  return static_cast<U>(a << twos);
}

struct Gcd {
  static constexpr int32_t number = 281;
  static constexpr char name[] = "gcd";
  static constexpr char return_range[] = "I--------";
  struct on_integers {
    template <bool checked, class T> static constexpr bool evaluate(T x, T y, T& result) {
      result = static_cast<T>(greatest_common_divisor(unsigned_magnitude(x), unsigned_magnitude(y)));
      return checked && result < 0;
    }
  };
};

struct Lcm {
  static constexpr int32_t number = 282;
  static constexpr char name[] = "lcm";
  static constexpr char return_range[] = "I--------";
  struct on_integers {
    template <bool checked, class T> static constexpr bool evaluate(T x, T y, T& result) {
      const auto m = unsigned_magnitude(x), n = unsigned_magnitude(y);
      result = 0;
      if (m == 0 || n == 0) return false;
      const auto cofactor = static_cast<std::make_unsigned_t<T>>(n / greatest_common_divisor(m, n));
      result = static_cast<T>(wrapping_product(cofactor, m));
      return checked && (!product_fits(cofactor, m) || result < 0);
    }
  };
};

/// The largest k with y^k dividing x.
struct IntExp {
  static constexpr int32_t number = 273;
  static constexpr char name[] = "intexp";
  static constexpr char return_range[] = "I--------";
  struct on_integers {
    template <class T> static constexpr bool refuses(T x, T base) { return base < 2 || x == 0; }
    template <class T> static constexpr T value(T x, T base) {
      auto rest = unsigned_magnitude(x);
      const auto b = bits_of(base);
      if (std::has_single_bit(b)) return static_cast<T>(std::countr_zero(rest) / std::countr_zero(b));
      int k = 0;
      while (rest % b == 0) {
        rest = static_cast<decltype(rest)>(rest / b);
        ++k;
      }
      return static_cast<T>(k);
    }
  };
};

/// Digits of |x| in base y; 0 for 0.
struct IntLen {
  static constexpr int32_t number = 274;
  static constexpr char name[] = "intlen";
  static constexpr char return_range[] = "I--------";
  struct on_integers {
    template <class T> static constexpr bool refuses(T, T base) { return base < 2; }
    template <class T> static constexpr T value(T x, T base) {
      const uint64_t size = unsigned_magnitude(x), b = bits_of(base);
      if (size < b) return x != 0;
      if (std::has_single_bit(b)) return static_cast<T>((std::bit_width(size) - 1) / std::countr_zero(b) + 1);
      // The power stays at or below size, so that it never leaves the width.
      int digits = 1;
      for (uint64_t power = 1; power <= size / b; power *= b) ++digits;
      return static_cast<T>(digits);
    }
  };
};

struct BitAnd {
  static constexpr int32_t number = 266;
  static constexpr char name[] = "bitand";
  static constexpr char return_range[] = "I--------";
  struct on_integers {
    template <class T> static constexpr T value(T x, T y) { return static_cast<T>(x & y); }
  };
};
struct BitOr {
  static constexpr int32_t number = 267;
  static constexpr char name[] = "bitor";
  static constexpr char return_range[] = "I--------";
  struct on_integers {
    template <class T> static constexpr T value(T x, T y) { return static_cast<T>(x | y); }
  };
};
struct BitXor {
  static constexpr int32_t number = 268;
  static constexpr char name[] = "bitxor";
  static constexpr char return_range[] = "I--------";
  struct on_integers {
    template <class T> static constexpr T value(T x, T y) { return static_cast<T>(x ^ y); }
  };
};

// ---- Shifts ---------------------------------------------------------------------------------------------

/// Shifts are of the magnitude; the sign stays. A negative count shifts the other way.
enum class direction { left, right };

/// A count of at least 0, and whether it goes left.
struct shift_count {
  uint64_t count;
  bool left;
};
template <direction D, std::integral S> constexpr shift_count towards(S s) {
  const uint64_t count = s < 0 ? uint64_t{0} - static_cast<uint64_t>(s) : static_cast<uint64_t>(s);
  return {count, (D == direction::left) == (s >= 0)};
}

template <std::integral T> constexpr T shifted(T x, shift_count by) {
  using U = std::make_unsigned_t<T>;
  constexpr unsigned width = sizeof(T) * 8;
  const U size = unsigned_magnitude(x);
  U r = 0;
  if (by.left) {
    r = static_cast<U>(static_cast<uint64_t>(size) << (by.count % width));
  } else if (by.count < width) {
    r = static_cast<U>(size >> by.count);
  }
  const auto value = static_cast<T>(r);
  return x < 0 ? wrapping_minus(value) : value;
}
/// Whether a shift keeps the magnitude within the type.
template <std::integral T> constexpr bool shift_fits(T x, shift_count by) {
  if (!by.left || x == 0) return true;
  if (by.count >= sizeof(T) * 8) return false;
  const auto most =
      static_cast<std::make_unsigned_t<T>>(bits_of(std::numeric_limits<T>::max()) + (x < 0 ? 1 : 0));
  return unsigned_magnitude(x) <= static_cast<std::make_unsigned_t<T>>(most >> by.count);
}

/// Left shifts from here on leave the range whatever is shifted; right shifts beyond leave a zero.
template <class T> inline constexpr uint64_t shift_bound = 2098;
template <> inline constexpr uint64_t shift_bound<float> = 277;
template <> inline constexpr uint64_t shift_bound<real16> = 40;

/// x times a power of two, with the bound of the format Format.
template <class Format, class T> inline T scaled(T x, shift_count by) {
  if (x == 0) return x;
  if (!by.left && by.count > shift_bound<Format>) return std::copysign(T(0), x);
  const int exponent = static_cast<int>(std::min<uint64_t>(by.count, 2 * shift_bound<double>));
  return std::ldexp(x, by.left ? exponent : -exponent);
}

template <direction D> struct bit_shift {
  static constexpr char return_range[] = "I--R--C--";
  struct on_integers {
    template <class T, class S> static constexpr T value(T x, S s) { return shifted(x, towards<D>(s)); }
    template <class T, class S> static constexpr bool fails(T x, S s) {
      return !shift_fits(x, towards<D>(s));
    }
  };
  /// Any other element with an Integer64 count. A real is scaled by a power of two, a complex number part by part.
  struct with_integer : checked {
    template <class X> static constexpr bool serves = true;
    template <std::integral T> static constexpr T value(T x, mint s) { return on_integers::value(x, s); }
    template <std::integral T> static constexpr bool fails(T x, mint s) { return on_integers::fails(x, s); }
    template <std::floating_point T> static T value(T x, mint s) { return scaled<T>(x, towards<D>(s)); }
    template <class T> static complex::parts<T> value(complex::parts<T> z, mint s) {
      return {value(z.re, s), value(z.im, s)};
    }
    static real16 half(real16 x, mint s) {
      return evaluate([s](double d) { return scaled<real16>(d, towards<D>(s)); }, x);
    }
    template <std::floating_point T> static bool fails(T x, mint s) {
      const shift_count by = towards<D>(s);
      return by.left && x != 0 && by.count >= shift_bound<T>;
    }
    template <class T> static bool fails(complex::parts<T> z, mint s) {
      return fails(z.re, s) || fails(z.im, s);
    }
  };
};

struct BitShiftLeft : bit_shift<direction::left> {
  static constexpr int32_t number = 275;
  static constexpr char name[] = "bitshiftleft";
};
struct BitShiftRight : bit_shift<direction::right> {
  static constexpr int32_t number = 276;
  static constexpr char name[] = "bitshiftright";
};

using integer_functions =
    function_list<Gcd, Lcm, IntExp, IntLen, BitAnd, BitOr, BitXor, BitShiftLeft, BitShiftRight>;

}  // namespace vlm::machine_function::binary
