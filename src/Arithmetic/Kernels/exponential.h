// Exponentials and logarithms.
#pragma once

#include "Arithmetic/Kernels/complex/exponential.h"
#include "Arithmetic/Kernels/definition.h"
#include "Arithmetic/Kernels/integer_arithmetic.h"
#include "Arithmetic/Kernels/vector_math.h"

namespace vlm::machine_function {

struct Exp {
  static constexpr int32_t number = 32;
  static constexpr char name[] = "exp";
  static constexpr char return_range[] = "-RC";
  using on_reals = computed_by<vm::exp, checked_real>;
  using on_complexes = complex_by<complex::exp, checked_complex>;
};

struct Expm1 {
  static constexpr int32_t number = 33;
  static constexpr char name[] = "expm1";
  static constexpr char return_range[] = "-RC";
  using on_reals = computed_by<vm::expm1, checked_real>;
  using on_complexes = complex_by<complex::expm1, checked_complex>;
};

struct Log {
  static constexpr int32_t number = 34;
  static constexpr char name[] = "log";
  static constexpr char return_range[] = "-CC";
  using on_reals = computed_by<vm::log, checked_real>;
  using on_complexes = complex_by<complex::log, checked_complex>;
};

struct Log1p {
  static constexpr int32_t number = 35;
  static constexpr char name[] = "log1p";
  static constexpr char return_range[] = "-CC";
  using on_reals = computed_by<vm::log1p, checked_real>;
  using on_complexes = complex_by<complex::log1p, checked_complex>;
};

struct Log2 {
  static constexpr int32_t number = 36;
  static constexpr char name[] = "log2";
  static constexpr char return_range[] = "ICC";
  struct on_integers {
    /// The exponent of an exact power of two.
    static constexpr check obeys = check::always;
    template <class T> static constexpr T value(T x) { return static_cast<T>(std::countr_zero(bits_of(x))); }
    template <class T> static constexpr VelorimError failure(T x) {
      if (x < 1) return VelorimError_domain;
      return std::has_single_bit(bits_of(x)) ? VelorimError_success : VelorimError_integer_inexact_division;
    }
  };
  using on_reals = computed_by<vm::log2, checked_real>;
  using on_complexes = complex_by<complex::log2, checked_complex>;
};

struct Log10 {
  static constexpr int32_t number = 37;
  static constexpr char name[] = "log10";
  static constexpr char return_range[] = "ICC";
  struct on_integers {
    /// The exponent of an exact power of ten.
    static constexpr check obeys = check::always;
    template <class T> static constexpr T value(T x) {
      T exponent = 0;
      for (; x >= 10; x = static_cast<T>(x / 10)) ++exponent;
      return exponent;
    }
    template <class T> static constexpr VelorimError failure(T x) {
      if (x < 1) return VelorimError_domain;
      for (; x > 1; x = static_cast<T>(x / 10)) {
        if (x % 10 != 0) return VelorimError_integer_inexact_division;
      }
      return VelorimError_success;
    }
  };
  using on_reals = computed_by<vm::log10, checked_real>;
  using on_complexes = complex_by<complex::log10, checked_complex>;
};

/// 1 / (1 + e^-x), from e^-|x| so that nothing overflows.
struct Logistic {
  static constexpr int32_t number = 80;
  static constexpr char name[] = "logistic";
  static constexpr char return_range[] = "-RC";
  struct on_reals : checked_real {
    template <class T> static constexpr ordinary_range range() { return {0, -vm::exp.range<T>().low, true}; }
    template <class V> static V value(V x) {
      const V e = vm::exp(-magnitude(x));
      return select(is_positive(x), broadcast<V>(1), e) / (e + broadcast<V>(1));
    }
  };
  using on_complexes = complex_by<complex::logistic, checked_complex>;
};

using exponential_functions = function_list<Exp, Expm1, Log, Log1p, Log2, Log10, Logistic>;

}  // namespace vlm::machine_function
