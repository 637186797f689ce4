// Circular functions, their inverses, and what is made of them.
#pragma once

#include <algorithm>
#include <limits>

#include "Arithmetic/Kernels/complex/hyperbolic.h"
#include "Arithmetic/Kernels/complex/inverse_hyperbolic.h"
#include "Arithmetic/Kernels/complex/special.h"
#include "Arithmetic/Kernels/definition.h"
#include "Arithmetic/Kernels/vector_math.h"

namespace vlm::machine_function {

struct Sin {
  static constexpr int32_t number = 1;
  static constexpr char name[] = "sin";
  static constexpr char return_range[] = "-RC";
  using on_reals = computed_by<vm::sin, plain_real>;
  using on_complexes = complex_by<complex::sin, checked_complex>;
};

struct Cos {
  static constexpr int32_t number = 2;
  static constexpr char name[] = "cos";
  static constexpr char return_range[] = "-RC";
  using on_reals = computed_by<vm::cos, plain_real>;
  using on_complexes = complex_by<complex::cos, checked_complex>;
};

struct Tan {
  static constexpr int32_t number = 3;
  static constexpr char name[] = "tan";
  static constexpr char return_range[] = "-RC";
  using on_reals = computed_by<vm::tan, checked_real>;
  using on_complexes = complex_by<complex::tan, checked_complex>;
};

/// The range of a reciprocal of the function with this one: no zero, and no argument so small that it overflows.
template <class T> constexpr ordinary_range of_reciprocal(ordinary_range range) {
  return {std::max(range.low, static_cast<double>(std::numeric_limits<T>::min())), range.high, true};
}

/// The real class of the reciprocal of an elementary function.
template <const auto& Function> struct reciprocal_of : checked_real {
  template <class T> static constexpr ordinary_range range() {
    return of_reciprocal<T>(Function.template range<T>());
  }
  template <class V> static V value(V x) { return broadcast<V>(1) / Function(x); }
};

/// The range in which the reciprocal of x lies in that of an inner function, with a margin for its rounding.
template <class T> constexpr ordinary_range with_reciprocal_in(ordinary_range inner) {
  constexpr double most = std::numeric_limits<T>::max() / 8;
  return {2 / inner.high, inner.low * most > 0.5 ? 0.5 / inner.low : most, true};
}

struct Csc {
  static constexpr int32_t number = 5;
  static constexpr char name[] = "csc";
  static constexpr char return_range[] = "-RC";
  using on_reals = reciprocal_of<vm::sin>;
  using on_complexes = complex_by<complex::csc, checked_complex>;
};

struct Sec {
  static constexpr int32_t number = 6;
  static constexpr char name[] = "sec";
  static constexpr char return_range[] = "-RC";
  struct on_reals : checked_real {
    template <class T> static constexpr ordinary_range range() { return vm::cos.range<T>(); }
    template <class V> static V value(V x) { return broadcast<V>(1) / vm::cos(x); }
  };
  using on_complexes = complex_by<complex::sec, checked_complex>;
};

struct Cot {
  static constexpr int32_t number = 7;
  static constexpr char name[] = "cot";
  static constexpr char return_range[] = "-RC";
  using on_reals = reciprocal_of<vm::tan>;
  using on_complexes = complex_by<complex::cot, checked_complex>;
};

struct Asin {
  static constexpr int32_t number = 17;
  static constexpr char name[] = "asin";
  static constexpr char return_range[] = "-CC";
  using on_reals = computed_by<vm::asin, checked_real>;
  using on_complexes = complex_by<complex::asin, plain_complex>;
};

struct Acos {
  static constexpr int32_t number = 18;
  static constexpr char name[] = "acos";
  static constexpr char return_range[] = "-CC";
  using on_reals = computed_by<vm::acos, checked_real>;
  using on_complexes = complex_by<complex::acos, plain_complex>;
};

struct Atan {
  static constexpr int32_t number = 19;
  static constexpr char name[] = "atan";
  static constexpr char return_range[] = "-RC";
  using on_reals = computed_by<vm::atan, plain_real>;
  using on_complexes = complex_by<complex::atan, checked_complex>;
};

struct Acsc {
  static constexpr int32_t number = 21;
  static constexpr char name[] = "acsc";
  static constexpr char return_range[] = "-CC";
  struct on_reals : checked_real {
    template <class T> static constexpr ordinary_range range() {
      return {1, std::numeric_limits<T>::max() / 8, true};
    }
    template <class V> static V value(V x) { return vm::asin(broadcast<V>(1) / x); }
  };
  using on_complexes = complex_by<complex::acsc, checked_complex>;
};

struct Asec {
  static constexpr int32_t number = 22;
  static constexpr char name[] = "asec";
  static constexpr char return_range[] = "-CC";
  struct on_reals : checked_real {
    template <class T> static constexpr ordinary_range range() {
      return {1, std::numeric_limits<T>::max() / 8, true};
    }
    template <class V> static V value(V x) { return vm::acos(broadcast<V>(1) / x); }
  };
  using on_complexes = complex_by<complex::asec, checked_complex>;
};

struct Acot {
  static constexpr int32_t number = 23;
  static constexpr char name[] = "acot";
  static constexpr char return_range[] = "-RC";
  struct on_reals : checked_real {
    template <class T> static constexpr ordinary_range range() {
      return with_reciprocal_in<T>(vm::atan.range<T>());
    }
    /// Pi / 2 at either zero.
    template <class V> static V value(V x) {
      if constexpr (!is_register<V>) {
        if (x == 0) return static_cast<V>(1.5707963267948966);
      }
      return vm::atan(broadcast<V>(1) / x);
    }
  };
  using on_complexes = complex_by<complex::acot, checked_complex>;
};

struct Sinc {
  static constexpr int32_t number = 67;
  static constexpr char name[] = "sinc";
  static constexpr char return_range[] = "-RC";
  struct on_reals : checked_real {
    template <class T> static constexpr ordinary_range range() {
      return of_reciprocal<T>(vm::sin.range<T>());
    }
    template <class V> static V value(V x) {
      if constexpr (!is_register<V>) {
        if (x == 0) return 1;
      }
      return vm::sin(x) / x;
    }
  };
  using on_complexes = complex_by<complex::sinc, checked_complex>;
};

/// sin^2(x / 2).
struct Haversine {
  static constexpr int32_t number = 72;
  static constexpr char name[] = "haversine";
  static constexpr char return_range[] = "-RC";
  struct on_reals : checked_real {
    template <class T> static constexpr ordinary_range range() { return vm::sin.range<T>(); }
    template <class V> static V value(V x) {
      const V s = vm::sin(x / broadcast<V>(2));
      return s * s;
    }
  };
  using on_complexes = complex_by<complex::haversine, checked_complex>;
};

/// 2 asin(sqrt(x)).
struct InverseHaversine {
  static constexpr int32_t number = 73;
  static constexpr char name[] = "inversehaversine";
  static constexpr char return_range[] = "-CC";
  struct on_reals : checked_real {
    template <class T> static constexpr ordinary_range range() { return {0, 1, false}; }
    template <class V> static V value(V x) { return broadcast<V>(2) * vm::asin(square_root(x)); }
  };
  using on_complexes = complex_by<complex::inversehaversine, checked_complex>;
};

using trigonometric_functions = function_list<Sin, Cos, Tan, Csc, Sec, Cot, Asin, Acos, Atan, Acsc, Asec,
                                              Acot, Sinc, Haversine, InverseHaversine>;

}  // namespace vlm::machine_function
