// Division with remainder: modulus, quotient, and the multiple of y that is next to x.
#pragma once

#include <cmath>

#include "Arithmetic/Kernels/binary/arithmetic.h"
#include "Arithmetic/Kernels/rounding.h"
#include "Arithmetic/Kernels/runs.h"

namespace vlm::machine_function::binary {

/// The most negative value over -1, a quotient beyond the type.
template <class T> constexpr bool is_least_over_minus_one(T x, T y) {
  return std::is_signed_v<T> && x == std::numeric_limits<T>::min() && y == static_cast<T>(-1);
}

/// Quotient and remainder by truncation; y is not 0. In integers, or in a floating-point type that holds them exactly.
template <class N> struct division { N quotient, remainder; };
template <std::integral T> constexpr division<T> truncating(T x, T y) {
  if (is_least_over_minus_one(x, y))
    return {0, 0};  // the remainder is right, the quotient is refused elsewhere
  const auto q = static_cast<T>(x / y);
  return {q, static_cast<T>(x - q * y)};
}
/// For |x|, |y| up to 2^51 (2^24 in float): the exact quotient is no nearer to the next whole number than 1 / |y|, more than rounding
/// can move it, and quotient times y is exact.
template <std::floating_point R> inline division<R> truncating(R x, R y) {
  const R q = std::trunc(x / y);
  return {q, x - q * y};
}

/// Where an exact quotient lies that truncation left r over from: beside one by truncation that is below it (toward minus infinity) or
/// above it.
template <class N> constexpr bool is_below_truncated(N remainder, N y) {
  return (remainder != 0) & ((remainder < 0) != (y < 0));
}

/// Small integers to and from double by their bits, for registers without a conversion of 64-bit integers; |x| < 2^51.
inline constexpr double integer_offset = 0x1.8p52;
template <std::integral T> inline double small_to_double(T x) {
  return std::bit_cast<double>(static_cast<uint64_t>(static_cast<int64_t>(x)) +
                               std::bit_cast<uint64_t>(integer_offset)) -
         integer_offset;
}
template <std::integral T> inline T small_from_double(double x) {
  return static_cast<T>(std::bit_cast<uint64_t>(x + integer_offset) -
                        std::bit_cast<uint64_t>(integer_offset));
}

/// Whether a block can be divided in double.
template <class T> inline bool divides_in_double(const T* x, const T* y, mint n) {
  if constexpr (sizeof(T) < 8) {
    return true;
  } else {
    uint64_t used = 0;
    for (mint i = 0; i < n; ++i) {
      if constexpr (std::is_signed_v<T>) {
        used |= bits_of(x[i] ^ (x[i] >> 63)) | bits_of(y[i] ^ (y[i] >> 63));
      } else {
        used |= x[i] | y[i];
      }
    }
    return std::bit_width(used) <= 50;
  }
}

/// The values of a run from C::from(truncating division, y), in registers of reals where the integers are small enough.
template <class C, class T> void division_run(T* result, const T* x, const T* y, mint n) {
  for (mint first = 0; first < n; first += block_length) {
    const mint length = std::min(block_length, n - first);
    const T *a = x + first, *b = y + first;
    T* r = result + first;
    if constexpr (sizeof(T) <= 2) {
      VELORIM_INDEPENDENT
      for (mint i = 0; i < length; ++i) {
        const auto p = static_cast<float>(a[i]), q = static_cast<float>(b[i]);
        r[i] = static_cast<T>(static_cast<int32_t>(C::from(truncating(p, q), q)));
      }
    } else if (divides_in_double(a, b, length)) {
      VELORIM_INDEPENDENT
      for (mint i = 0; i < length; ++i) {
        const double p = small_to_double(a[i]), q = small_to_double(b[i]);
        r[i] = small_from_double<T>(C::from(truncating(p, q), q));
      }
    } else {
      for (mint i = 0; i < length; ++i) r[i] = C::from(truncating(a[i], b[i]), b[i]);
    }
  }
}

/// x modulo y, with the sign of y.
struct Mod {
  static constexpr int32_t number = 261;
  static constexpr char name[] = "mod";
  static constexpr char return_range[] = "IRCRRCCCC";
  static constexpr mixed widens = mixed::all;
  struct on_integers : refuses_zero {
    template <class N> static constexpr N from(division<N> d, N y) {
      return static_cast<N>(d.remainder + (is_below_truncated(d.remainder, y) ? y : N(0)));
    }
    template <class T> static constexpr T value(T x, T y) { return from(truncating(x, y), y); }
    template <class T> static void run(T* result, const T* x, const T* y, mint n) {
      division_run<on_integers>(result, x, y, n);
    }
  };
  struct on_reals : refuses_zero, unchecked {
    template <class T> static T value(T x, T y) {
      const T r = std::fmod(x, y);
      if (!is_below_truncated(r, y)) return r;
      const T moved = r + y;
      return moved == y ? T(0) : moved;
    }
  };
  /// Numbers without imaginary parts go by the real rule, others lose y times the quotient rounded part by part.
  struct on_complexes : refuses_zero {
    template <bool checked, class T>
    static bool evaluate(complex::parts<T> x, complex::parts<T> y, complex::parts<T>& result) {
      if (x.im == 0 && y.im == 0) {
        result = {on_reals::value(x.re, y.re), 0};
        return false;
      }
      const complex::parts<T> q = complex::quotient(x, y);
      const complex::parts<T> whole = {static_cast<T>(saturated_mint(std::rint(q.re))),
                                       static_cast<T>(saturated_mint(std::rint(q.im)))};
      result = x - complex::product(whole, y);
      return checked && (is_fp_exception(result.re) || is_fp_exception(result.im));
    }
  };
};

/// The largest integer that is not above x / y.
struct Quotient {
  static constexpr int32_t number = 262;
  static constexpr char name[] = "quotient";
  static constexpr char return_range[] = "II-II----";
  static constexpr mixed widens = mixed::reals;
  struct on_integers {
    template <class T> static constexpr bool refuses(T x, T y) {
      return y == 0 || is_least_over_minus_one(x, y);
    }
    template <class N> static constexpr N from(division<N> d, N y) {
      return static_cast<N>(d.quotient - (is_below_truncated(d.remainder, y) ? N(1) : N(0)));
    }
    template <class T> static constexpr T value(T x, T y) { return from(truncating(x, y), y); }
    template <class T> static void run(T* result, const T* x, const T* y, mint n) {
      division_run<on_integers>(result, x, y, n);
    }
  };
  /// Unchecked, quotients outside of mint saturate and a NaN gives 0.
  struct on_reals : unchecked {
    template <class T> static bool fails(T x, T y) {
      const T q = x / y;
      return y == 0 || q < least_mint<T> || q > most_mint<T>;
    }
    template <class T> static mint value(T x, T y) { return saturated_mint(std::floor(x / y)); }
  };
};

/// What the three functions to a multiple of y share. Rounding gives round(x) for a real and whole(division, y), the whole number beside
/// the exact quotient, for integers.
template <class Rounding> struct multiple {
  static constexpr char return_range[] = "IRCIRC--C";
  static constexpr mixed widens = mixed::id | mixed::to_complex;
  struct on_integers {
    template <class T> static constexpr bool refuses(T x, T y) {
      return y == 0 || is_least_over_minus_one(x, y);
    }
    template <class T> static constexpr T value(T x, T y) {
      return wrapping_product(Rounding::whole(truncating(x, y), y), y);
    }
    template <class T> static constexpr bool fails(T x, T y) {
      return y != 0 && !product_fits(Rounding::whole(truncating(x, y), y), y);
    }
  };
  struct on_reals : checked {
    template <class T> static T value(T x, T y) { return y * Rounding::round(x / y); }
  };
  struct on_complexes : checked {
    template <class T> static complex::parts<T> value(complex::parts<T> x, complex::parts<T> y) {
      const complex::parts<T> q = complex::quotient(x, y);
      return complex::product(y, complex::parts<T>{Rounding::round(q.re), Rounding::round(q.im)});
    }
  };
  /// Real64 x with Integer64 y: a mint.
  struct with_integer {
    template <class X> static constexpr bool serves = std::is_same_v<X, double>;
    static mint whole(double x, mint y) {
      return saturated_mint(Rounding::round(x / static_cast<double>(y)));
    }
    static mint value(double x, mint y) { return wrapping_product(whole(x, y), y); }
    static bool fails(double x, mint y) {
      return Quotient::on_reals::fails(x, static_cast<double>(y)) || !product_fits(whole(x, y), y);
    }
  };
};

struct upward {
  template <class T> static T round(T x) { return std::ceil(x); }
  template <class T> static constexpr T whole(division<T> d, T y) {
    return static_cast<T>(d.quotient + (d.remainder != 0 && (d.remainder < 0) == (y < 0) ? 1 : 0));
  }
};
struct downward {
  template <class T> static T round(T x) { return std::floor(x); }
  template <class T> static constexpr T whole(division<T> d, T y) {
    return Quotient::on_integers::from(d, y);
  }
};
/// To nearest, ties to even.
struct to_nearest {
  template <class T> static T round(T x) { return std::rint(x); }
  template <class T> static constexpr T whole(division<T> d, T y) {
    const auto rest = unsigned_magnitude(d.remainder), size = unsigned_magnitude(y);
    const auto other = static_cast<std::make_unsigned_t<T>>(size - rest);
    const bool away = rest > other || (rest == other && (d.quotient & 1) != 0);
    if (!away) return d.quotient;
    return static_cast<T>((d.remainder < 0) == (y < 0) ? d.quotient + 1 : d.quotient - 1);
  }
};

struct CeilingMultiple : multiple<upward> {
  static constexpr int32_t number = 283;
  static constexpr char name[] = "ceilingmultiple";
};
struct FloorMultiple : multiple<downward> {
  static constexpr int32_t number = 284;
  static constexpr char name[] = "floormultiple";
};
struct RoundMultiple : multiple<to_nearest> {
  static constexpr int32_t number = 285;
  static constexpr char name[] = "roundmultiple";
};

using division_functions = function_list<Mod, Quotient, CeilingMultiple, FloorMultiple, RoundMultiple>;

}  // namespace vlm::machine_function::binary
