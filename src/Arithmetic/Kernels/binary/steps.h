// Step functions of two arguments, chopping, and whether a number counts beside a threshold.
#pragma once

#include <cmath>

#include "Arithmetic/Kernels/binary/definition.h"
#include "Arithmetic/Kernels/integer_arithmetic.h"
#include "Arithmetic/Kernels/steps.h"

namespace vlm::machine_function::binary {

/// A function that is 1 where a function of one argument is 1 for both.
template <class OfOne> struct one_for_both {
  static constexpr char return_range[] = "II-II----";
  struct on_integers {
    template <class T> static constexpr T value(T x, T y) {
      return static_cast<T>(OfOne::on_integers::value(x) != 0 && OfOne::on_integers::value(y) != 0);
    }
  };
  struct on_reals : unchecked {
    template <class T> static mint value(T x, T y) {
      return OfOne::on_reals::value(x) & OfOne::on_reals::value(y);
    }
  };
};
struct Box2 : one_for_both<Box> {
  static constexpr int32_t number = 277;
  static constexpr char name[] = "box2";
};
struct UnitStep2 : one_for_both<UnitStep> {
  static constexpr int32_t number = 279;
  static constexpr char name[] = "unitstep2";
};

/// (1 - |x|) (1 - |y|), but 0 where both magnitudes are above 1.
struct Triangle2 {
  static constexpr int32_t number = 280;
  static constexpr char name[] = "triangle2";
  static constexpr char return_range[] = "IR-RR----";
  struct on_integers {
    template <class T> static constexpr T value(T x, T y) { return static_cast<T>(x == 0 && y == 0); }
  };
  struct on_reals : unchecked {
    template <class T> static T value(T x, T y) {
      const T a = magnitude(x), b = magnitude(y);
      return a > 1 && b > 1 ? T(0) : (1 - a) * (1 - b);
    }
  };
};

/// x, or 0 where its magnitude is below the threshold; a complex number part by part.
struct Chop {
  static constexpr int32_t number = 269;
  static constexpr char name[] = "chop";
  static constexpr char return_range[] = "----R--C-";
  struct on_reals : unchecked {
    template <class T> static bool refuses(T, T threshold) { return threshold < 0; }
    template <class T> static T value(T x, T threshold) { return magnitude(x) < threshold ? T(0) : x; }
  };
  struct with_real : unchecked {
    template <class T> static bool refuses(complex::parts<T>, T threshold) { return threshold < 0; }
    template <class T> static complex::parts<T> value(complex::parts<T> z, T threshold) {
      return {on_reals::value(z.re, threshold), on_reals::value(z.im, threshold)};
    }
  };
};

/// 1 where |x| is at least the threshold, of reals also where it is below it by less than 2^-46 of it; else 0.
struct Unitize2 {
  static constexpr int32_t number = 278;
  static constexpr char name[] = "unitize";
  static constexpr char return_range[] = "IIIIIIIII";
  struct on_integers {
    template <class T> static constexpr bool refuses(T, T threshold) { return threshold <= 0; }
    template <class T> static constexpr T value(T x, T threshold) {
      return unsigned_magnitude(x) >= bits_of(threshold);
    }
    template <class T> static constexpr bool fails(T x, T) {
      return std::is_signed_v<T> && x == std::numeric_limits<T>::min();
    }
  };
  struct on_reals : unchecked {
    template <class T> static bool refuses(T, T threshold) { return threshold <= 0; }
    template <class T> static mint value(T x, T threshold) {
      const T a = magnitude(x);
      if (a == threshold) return 1;
      if (a == 0) return 0;
      if (a > threshold) return 1;
      constexpr T tolerance = T(0x1p-46);  // seven bits of a double
      const T distance = threshold - a;
      if (distance == threshold) return 0;
      return threshold >= 1 ? threshold * tolerance > distance : threshold > distance / tolerance;
    }
  };
  struct with_real : unchecked {
    template <class T> static bool refuses(complex::parts<T>, T threshold) { return threshold <= 0; }
    template <class T> static mint value(complex::parts<T> z, T threshold) {
      return on_reals::value(std::hypot(z.re, z.im), threshold);
    }
  };
};

using step_functions = function_list<Box2, UnitStep2, Triangle2, Chop, Unitize2>;

}  // namespace vlm::machine_function::binary
