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

/// Quotient and remainder by truncation; y is not 0. In integers, or in reals that hold them.
template <class N> struct division { N quotient, remainder; };
template <std::integral T> constexpr division<T> truncating(T x, T y) {
  if (is_least_over_minus_one(x, y))
    return {0, 0};  // the remainder is right, the quotient is refused elsewhere
  const auto q = static_cast<T>(x / y);
  return {q, static_cast<T>(x - q * y)};
}
/// Small integers, up to 2^50 (2^24 in float), to and from reals; 64-bit ones by their bits, for registers without the conversion. A
/// quotient of two of them, truncated, is exact: it is no nearer to the next whole number than 1 / |y|, more than rounding can move it.
inline constexpr double integer_offset = 0x1.8p52;
template <class Real, std::integral T> inline Real small_to_real(T x) {
  if constexpr (sizeof(T) == 8) {
    return std::bit_cast<double>(static_cast<uint64_t>(x) + std::bit_cast<uint64_t>(integer_offset)) -
           integer_offset;
  } else {
    return static_cast<Real>(x);
  }
}
template <std::integral T, class Real> inline T small_from_real(Real x) {
  if constexpr (std::is_same_v<Real, double>) {
    return static_cast<T>(std::bit_cast<uint64_t>(x + integer_offset) -
                          std::bit_cast<uint64_t>(integer_offset));
  } else {
    return static_cast<T>(static_cast<int32_t>(x));
  }
}
template <class T> inline bool fits_double(const T* x, mint n) {
  if constexpr (sizeof(T) < 8) {
    return true;
  } else {
    uint64_t used = 0;
    for (mint i = 0; i < n; ++i)
      used |= bits_of(std::is_signed_v<T> ? x[i] ^ (x[i] >> (sizeof(T) * 8 - 1)) : x[i]);
    return std::bit_width(used) <= 50;
  }
}

/// Whether x = q y + r, |r| < |y|, has r on the other side of 0 than y: then the floor of x / y is q - 1, and r + y remains.
template <class N> constexpr auto is_above_floor(N remainder, N y) {
  const N zero = {};
  return (remainder != zero) & ((remainder < zero) != (y < zero));
}
/// a where the condition holds, b elsewhere: for numbers and for registers of either kind.
template <class Condition, class N> constexpr N choose(Condition condition, N a, N b) {
  if constexpr (std::is_same_v<N, real64_lanes> || std::is_same_v<N, real32_lanes>) {
    return select(std::bit_cast<typename lanes_of<N>::mask>(condition), a, b);
  } else {
    return condition ? a : b;
  }
}

/// A sum that wraps, since it may be made although nobody takes it.
template <class N> constexpr N sum(N a, N b) {
  if constexpr (std::is_integral_v<N>) {
    return wrapping_sum(a, b);
  } else if constexpr (std::is_same_v<N, int64_lanes>) {
    return (int64_lanes)((uint64_lanes)a + (uint64_lanes)b);
  } else {
    return a + b;
  }
}

/// x = q y + r with |r| < |y|, r of either sign, for any x and y but 0. The estimate in double leaves a remainder near to |y| at most,
/// whose own quotient mends it; products and differences wrap, and what they give fits.
inline division<int64_lanes> wide_division(int64_lanes x, int64_lanes y) {
  const real64_lanes divisor = nearest_numbers(y);
  const auto multiple = [y](int64_lanes q) { return (int64_lanes)((uint64_lanes)q * (uint64_lanes)y); };
  const auto minus = [](int64_lanes a, int64_lanes b) {
    return (int64_lanes)((uint64_lanes)a - (uint64_lanes)b);
  };
  const int64_lanes estimate = whole_integers(nearest_numbers(x) / divisor);
  const int64_lanes rest = minus(x, multiple(estimate));
  const int64_lanes more = whole_integers(nearest_numbers(rest) / divisor);
  return {(int64_lanes)((uint64_lanes)estimate + (uint64_lanes)more), minus(rest, multiple(more))};
}
template <class C> void wide_division_run(mint* result, const mint* x, const mint* y, mint n) {
  constexpr mint width = lanes_of<int64_lanes>::count;
  const fp::quiet_section quiet;
  mint i = 0;
  for (; i + width <= n; i += width) {
    int64_lanes a, b;
    std::memcpy(&a, x + i, sizeof a);
    std::memcpy(&b, y + i, sizeof b);
    const int64_lanes r = C::from(wide_division(a, b), b);
    std::memcpy(result + i, &r, sizeof r);
  }
  for (; i < n; ++i) result[i] = C::value(x[i], y[i]);
}

/// The values of a run from C::from(truncating division, y). The integers of a block become reals where these hold them, are divided in
/// registers, and become integers again.
template <class C, class T> void division_run(T* result, const T* x, const T* y, mint n) {
  using real = std::conditional_t<(sizeof(T) <= 2), float, double>;
  using V = register_of<real>;
  constexpr mint width = lanes_of<V>::count;
  alignas(register_bytes) real a[block_length], b[block_length];
  for (mint first = 0; first < n; first += block_length) {
    const mint length = std::min(block_length, n - first);
    T* r = result + first;
    if (!fits_double(x + first, length) || !fits_double(y + first, length)) {
      if constexpr (std::is_same_v<T, mint>) {
        wide_division_run<C>(r, x + first, y + first, length);
      } else {
        for (mint i = 0; i < length; ++i) r[i] = C::value(x[first + i], y[first + i]);
      }
      continue;
    }
    for (mint i = 0; i < length; ++i) a[i] = small_to_real<real>(x[first + i]);
    for (mint i = 0; i < length; ++i) b[i] = small_to_real<real>(y[first + i]);
    const mint whole = (length + width - 1) / width * width;
    std::fill(a + length, a + whole, real(0));
    std::fill(b + length, b + whole, real(1));
    for (mint i = 0; i < whole; i += width) {
      const V p = load<V>(a + i), q = load<V>(b + i), t = truncated(p / q);
      store(a + i, C::from(division<V>{t, p - t * q}, q));
    }
    for (mint i = 0; i < length; ++i) r[i] = small_from_real<T>(a[i]);
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
      return choose(is_above_floor(d.remainder, y), sum(d.remainder, y), d.remainder);
    }
    template <class T> static constexpr T value(T x, T y) { return from(truncating(x, y), y); }
    template <class T> static void run(T* result, const T* x, const T* y, mint n) {
      division_run<on_integers>(result, x, y, n);
    }
  };
  struct on_reals : refuses_zero, unchecked {
    template <class T> static T value(T x, T y) {
      const T r = std::fmod(x, y);
      if (!is_above_floor(r, y)) return r;
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
      return choose(is_above_floor(d.remainder, y), sum(d.quotient, static_cast<N>(N{} - 1)), d.quotient);
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
