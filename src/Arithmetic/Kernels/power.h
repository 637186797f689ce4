// Powers and roots.
#pragma once

#include "Arithmetic/Kernels/complex/power.h"
#include "Arithmetic/Kernels/definition.h"
#include "Arithmetic/Kernels/integer_arithmetic.h"
#include "Arithmetic/Kernels/vector_math.h"

namespace vlm::machine_function {

struct Square {
  static constexpr int32_t number = 56;
  static constexpr char name[] = "square";
  static constexpr char return_range[] = "IRC";
  struct on_integers {
    static constexpr check obeys = check::checked;
    template <class T> static constexpr T value(T x) { return wrapping_product(x, x); }
    template <class T> static constexpr VelorimError failure(T x) {
      using U = std::make_unsigned_t<T>;
      constexpr auto root = bits_of(largest_square_root<T>());
      const bool overflows = std::is_signed_v<T>
                                 ? static_cast<U>(bits_of(x) + root) > static_cast<U>(2 * root)
                                 : bits_of(x) > root;
      return overflows ? VelorimError_integer_overflow : VelorimError_success;
    }
  };
  struct on_reals : checked_real {
    static constexpr bool register_arithmetic = true;
    template <class V> static V value(V x) { return x * x; }
  };
  using on_complexes = complex_by<complex::square, checked_complex>;
};

/// |x|^2, the square for everything that is not complex.
struct AbsSquare {
  static constexpr int32_t number = 82;
  static constexpr char name[] = "abssquare";
  static constexpr char return_range[] = "IRR";
  using on_integers = Square::on_integers;
  using on_reals = Square::on_reals;
  using on_complexes = complex_by<complex::abssquare, checked_complex>;
};

struct Sqrt {
  static constexpr int32_t number = 57;
  static constexpr char name[] = "sqrt";
  static constexpr char return_range[] = "-CC";
  struct on_reals : checked_real {
    static constexpr bool register_arithmetic = true;
    template <class V> static V value(V x) { return square_root(x); }
  };
  using on_complexes = complex_by<complex::sqrt, plain_complex>;
};

struct Cbrt {
  static constexpr int32_t number = 58;
  static constexpr char name[] = "cbrt";
  static constexpr char return_range[] = "-R-";
  using on_reals = computed_by<vm::cbrt, plain_real>;
};

struct Rsqrt {
  static constexpr int32_t number = 59;
  static constexpr char name[] = "rsqrt";
  static constexpr char return_range[] = "-CC";
  struct on_reals : checked_real {
    static constexpr bool register_arithmetic = true;
    template <class V> static V value(V x) { return broadcast<V>(1) / square_root(x); }
  };
  using on_complexes = complex_by<complex::rsqrt, checked_complex>;
};

struct Recip {
  static constexpr int32_t number = 60;
  static constexpr char name[] = "recip";
  static constexpr char return_range[] = "-RC";
  struct on_reals : checked_real {
    static constexpr bool register_arithmetic = true;
    template <class V> static V value(V x) { return broadcast<V>(1) / x; }
  };
  using on_complexes = complex_by<complex::recip, checked_complex>;
};

using power_functions = function_list<Square, AbsSquare, Sqrt, Cbrt, Rsqrt, Recip>;

}  // namespace vlm::machine_function
