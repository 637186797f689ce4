// Magnitude, sign, and the parts of a number as a complex one.
#pragma once

#include "Arithmetic/Kernels/complex/sign.h"
#include "Arithmetic/Kernels/definition.h"
#include "Arithmetic/Kernels/integer_arithmetic.h"

namespace vlm::machine_function {

struct Abs {
  static constexpr int32_t number = 38;
  static constexpr char name[] = "abs";
  static constexpr char return_range[] = "IRR";
  struct on_integers {
    static constexpr check obeys = check::checked;
    template <class T> static constexpr T value(T x) { return static_cast<T>(unsigned_magnitude(x)); }
    template <class T> static constexpr VelorimError failure(T x) {
      return std::is_signed_v<T> && x == std::numeric_limits<T>::min() ? VelorimError_integer_overflow
                                                                       : VelorimError_success;
    }
  };
  struct on_reals : plain_real {
    static constexpr bool register_arithmetic = true, copies_bits = true;
    template <class V> static V value(V x) { return magnitude(x); }
  };
  using on_complexes = complex_by<complex::abs, checked_complex>;
};

struct Arg {
  static constexpr int32_t number = 39;
  static constexpr char name[] = "arg";
  static constexpr char return_range[] = "IIR";
  struct on_integers {
    static constexpr check obeys = check::always;
    template <class T> static constexpr T value(T) { return 0; }
    template <class T> static constexpr VelorimError failure(T x) {
      return x < 0 ? VelorimError_domain : VelorimError_success;
    }
  };
  struct on_reals {
    static constexpr check obeys = check::always;
    template <class T> static mint value(T) { return 0; }
    /// A negative number has no real argument, nor has a NaN.
    template <class T> static VelorimError failure(T x) {
      return x >= 0 ? VelorimError_success : VelorimError_domain;
    }
  };
  using on_complexes = complex_by<complex::arg, plain_complex>;
};

struct Conj {
  static constexpr int32_t number = 40;
  static constexpr char name[] = "conj";
  static constexpr char return_range[] = "IRC";
  using on_integers = argument_itself;
  struct on_reals : plain_real {
    static constexpr bool register_arithmetic = true, copies_bits = true;
    template <class V> static V value(V x) { return x; }
  };
  using on_complexes = complex_by<complex::conj, plain_complex>;
};

struct Im {
  static constexpr int32_t number = 41;
  static constexpr char name[] = "im";
  static constexpr char return_range[] = "IIR";
  using on_integers = always_zero;
  struct on_reals : never_fails {
    static constexpr bool ignores_argument = true;  // so that a NaN is not looked at
    template <class T> static mint value(T) { return 0; }
  };
  using on_complexes = complex_by<complex::im, plain_complex>;
};

struct Re {
  static constexpr int32_t number = 42;
  static constexpr char name[] = "re";
  static constexpr char return_range[] = "IRR";
  using on_integers = argument_itself;
  using on_reals = Conj::on_reals;
  using on_complexes = complex_by<complex::re, plain_complex>;
};

struct Minus {
  static constexpr int32_t number = 43;
  static constexpr char name[] = "minus";
  static constexpr char return_range[] = "IRC";
  struct on_integers {
    static constexpr check obeys = check::checked;
    template <class T> static constexpr T value(T x) { return wrapping_minus(x); }
    template <class T> static constexpr VelorimError failure(T x) {
      const bool overflows = std::is_signed_v<T> ? x == std::numeric_limits<T>::min() : x != 0;
      return overflows ? VelorimError_integer_overflow : VelorimError_success;
    }
  };
  struct on_reals : plain_real {
    static constexpr bool register_arithmetic = true, copies_bits = true;
    template <class V> static V value(V x) { return -x; }
  };
  using on_complexes = complex_by<complex::minus, plain_complex>;
};

/// -1, 0 or 1; 1 for a NaN.
struct Sign {
  static constexpr int32_t number = 44;
  static constexpr char name[] = "sign";
  static constexpr char return_range[] = "IIC";
  struct on_integers : never_fails {
    template <class T> static constexpr T value(T x) { return static_cast<T>((x > 0) - (x < 0)); }
  };
  struct on_reals : never_fails {
    template <class T> static mint value(T x) { return x == 0 ? 0 : x < 0 ? -1 : 1; }
  };
  using on_complexes = complex_by<complex::sign, plain_complex>;
};

struct Pos {
  static constexpr int32_t number = 45;
  static constexpr char name[] = "pos";
  static constexpr char return_range[] = "BB-";
  struct on_integers : never_fails {
    template <class T> static constexpr mint value(T x) { return x > 0; }
  };
  struct on_reals : never_fails {
    template <class T> static mint value(T x) { return x > 0; }
  };
};

struct Neg {
  static constexpr int32_t number = 46;
  static constexpr char name[] = "neg";
  static constexpr char return_range[] = "BB-";
  struct on_integers : never_fails {
    template <class T> static constexpr mint value(T x) { return x < 0; }
  };
  struct on_reals : never_fails {
    template <class T> static mint value(T x) { return x < 0; }
  };
};

struct Npos {
  static constexpr int32_t number = 47;
  static constexpr char name[] = "npos";
  static constexpr char return_range[] = "BB-";
  struct on_integers : never_fails {
    template <class T> static constexpr mint value(T x) { return x <= 0; }
  };
  struct on_reals : never_fails {
    template <class T> static mint value(T x) { return x <= 0; }
  };
};

struct Nneg {
  static constexpr int32_t number = 48;
  static constexpr char name[] = "nneg";
  static constexpr char return_range[] = "BB-";
  struct on_integers : never_fails {
    template <class T> static constexpr mint value(T x) { return x >= 0; }
  };
  struct on_reals : never_fails {
    template <class T> static mint value(T x) { return x >= 0; }
  };
};

/// Abs and Sign for the classes that are real.
struct RealAbs {
  static constexpr int32_t number = 83;
  static constexpr char name[] = "realabs";
  static constexpr char return_range[] = "IR-";
  using on_integers = Abs::on_integers;
  using on_reals = Abs::on_reals;
};

struct RealSign {
  static constexpr int32_t number = 84;
  static constexpr char name[] = "realsign";
  static constexpr char return_range[] = "II-";
  using on_integers = Sign::on_integers;
  using on_reals = Sign::on_reals;
};

using sign_functions =
    function_list<Abs, Arg, Conj, Im, Re, Minus, Sign, Pos, Neg, Npos, Nneg, RealAbs, RealSign>;

}  // namespace vlm::machine_function
