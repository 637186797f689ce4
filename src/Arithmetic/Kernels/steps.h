// Step functions and their kin.
#pragma once

#include "Arithmetic/Kernels/definition.h"
#include "Arithmetic/Kernels/integer_arithmetic.h"

namespace vlm::machine_function {

/// 0 below 0, else 1, for a NaN too.
struct UnitStep {
  static constexpr int32_t number = 66;
  static constexpr char name[] = "unitstep";
  static constexpr char return_range[] = "II-";
  struct on_integers : never_fails {
    template <class T> static constexpr T value(T x) { return x >= 0; }
  };
  struct on_reals : never_fails {
    template <class T> static mint value(T x) { return x < 0 ? 0 : 1; }
  };
};

struct Unitize {
  static constexpr int32_t number = 78;
  static constexpr char name[] = "unitize";
  static constexpr char return_range[] = "III";
  struct on_integers : never_fails {
    template <class T> static constexpr T value(T x) { return x != 0; }
  };
  struct on_reals : never_fails {
    template <class T> static mint value(T x) { return x != 0; }
  };
  struct on_complexes : never_fails {
    template <class T> static mint value(complex::parts<T> z) { return z.re != 0 || z.im != 0; }
  };
};

/// The larger of x and 0: +0 for a negative zero and for a NaN.
struct Ramp {
  static constexpr int32_t number = 81;
  static constexpr char name[] = "ramp";
  static constexpr char return_range[] = "IR-";
  struct on_integers : never_fails {
    template <class T> static constexpr T value(T x) { return x > 0 ? x : T(0); }
  };
  struct on_reals : plain_real {
    static constexpr bool register_arithmetic = true;
    template <class V> static V value(V x) { return select(is_positive(x), x, V{}); }
  };
};

/// 1 for |x| up to a half, and for a NaN.
struct Box {
  static constexpr int32_t number = 85;
  static constexpr char name[] = "box";
  static constexpr char return_range[] = "II-";
  struct on_integers : never_fails {
    template <class T> static constexpr T value(T x) { return x == 0; }
  };
  struct on_reals : never_fails {
    template <class T> static mint value(T x) { return magnitude(x) > T(0.5) ? 0 : 1; }
  };
};

/// 1 - |x| inside the unit interval, 0 outside.
struct Triangle {
  static constexpr int32_t number = 86;
  static constexpr char name[] = "triangle";
  static constexpr char return_range[] = "IR-";
  struct on_integers : never_fails {
    template <class T> static constexpr T value(T x) { return x == 0; }
  };
  struct on_reals : plain_real {
    static constexpr bool register_arithmetic = true;
    template <class V> static V value(V x) {
      const V a = magnitude(x);
      return select(from_up(a, 1), V{}, broadcast<V>(1) - a);
    }
  };
};

using step_functions = function_list<UnitStep, Unitize, Ramp, Box, Triangle>;

}  // namespace vlm::machine_function
