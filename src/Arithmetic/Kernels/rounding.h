// Rounding to integers, and what is left of it.
#pragma once

#include <cmath>
#include "Arithmetic/Kernels/complex/rounding.h"
#include "Arithmetic/Kernels/definition.h"
#include "Arithmetic/Kernels/integer_arithmetic.h"

namespace vlm::machine_function {

/// The limits of the arguments that convert to mint. The upper one is the largest number of the type below
/// 2^63.
template <class T> inline constexpr T least_mint = T(-0x1p63);
template <class T>
inline constexpr T most_mint = std::is_same_v<T, float> ? T(0x1.fffffep62) : T(0x1.fffffffffffffp62);

/// x, which has no fraction or loses it toward zero, as mint: saturated outside its range, 0 for a NaN.
template <class T> inline mint saturated_mint(T x) {
  const bool representable = x >= least_mint<T> && x <= most_mint<T>;
  const mint inside = static_cast<mint>(representable ? x : T(0));
  return x > most_mint<T>    ? std::numeric_limits<mint>::max()
         : x < least_mint<T> ? std::numeric_limits<mint>::min()
                             : inside;
}

/// What Round, Floor, Ceiling and IntPart share: the guard looks at the argument, not at the rounded value,
/// and lets a NaN pass, which converts to 0.
struct to_mint {
  static constexpr check obeys = check::checked;
  template <class T> static VelorimError failure(T x) {
    return x < least_mint<T> || x > most_mint<T> ? VelorimError_integer_overflow : VelorimError_success;
  }
};

/// To the nearest integer in the current rounding mode.
struct Round {
  static constexpr int32_t number = 49;
  static constexpr char name[] = "round";
  static constexpr char return_range[] = "=I-";
  using on_integers = argument_itself;
  struct on_reals : to_mint {
    template <class T> static mint value(T x) { return saturated_mint(std::rint(x)); }
  };
};

struct Floor {
  static constexpr int32_t number = 50;
  static constexpr char name[] = "floor";
  static constexpr char return_range[] = "=I-";
  using on_integers = argument_itself;
  struct on_reals : to_mint {
    template <class T> static mint value(T x) { return saturated_mint(std::floor(x)); }
  };
};

struct Ceiling {
  static constexpr int32_t number = 51;
  static constexpr char name[] = "ceiling";
  static constexpr char return_range[] = "=I-";
  using on_integers = argument_itself;
  struct on_reals : to_mint {
    template <class T> static mint value(T x) { return saturated_mint(std::ceil(x)); }
  };
};

struct IntPart {
  static constexpr int32_t number = 53;
  static constexpr char name[] = "intpart";
  static constexpr char return_range[] = "=I-";
  using on_integers = argument_itself;
  struct on_reals : to_mint {
    template <class T> static mint value(T x) { return saturated_mint(x); }
  };
};

/// The fractional part, with the sign of x.
struct FracPart {
  static constexpr int32_t number = 52;
  static constexpr char name[] = "fracpart";
  static constexpr char return_range[] = "IRC";
  using on_integers = always_zero;
  struct on_reals : plain_real {
    template <class T> static T value(T x) {
      T whole;
      return std::modf(x, &whole);
    }
  };
  using on_complexes = complex_by<complex::fracpart, plain_complex>;
};

/// x - floor(x), by way of the fractional part.
struct Mod1 {
  static constexpr int32_t number = 79;
  static constexpr char name[] = "mod1";
  static constexpr char return_range[] = "IRC";
  using on_integers = always_zero;
  struct on_reals : plain_real {
    template <class T> static T value(T x) {
      T whole;
      const T f = std::modf(x, &whole);
      if (__builtin_isgreaterequal(x, T(0))) return f;
      return f == 0 ? T(0) : f + 1;
    }
  };
  using on_complexes = complex_by<complex::mod1, checked_complex>;
};

using rounding_functions = function_list<Round, Floor, Ceiling, IntPart, FracPart, Mod1>;

}  // namespace vlm::machine_function
