// Hyperbolic functions, their inverses, and the Gudermannian.
#pragma once

#include <algorithm>

#include "Arithmetic/Kernels/complex/hyperbolic.h"
#include "Arithmetic/Kernels/complex/inverse_hyperbolic.h"
#include "Arithmetic/Kernels/complex/special.h"
#include "Arithmetic/Kernels/trigonometric.h"
#include "Arithmetic/Kernels/vector_math.h"

namespace vlm::machine_function {

struct Sinh {
  static constexpr int32_t number = 9;
  static constexpr char name[] = "sinh";
  static constexpr char return_range[] = "-RC";
  using on_reals = computed_by<vm::sinh, checked_real>;
  using on_complexes = complex_by<complex::sinh, checked_complex>;
};

struct Cosh {
  static constexpr int32_t number = 10;
  static constexpr char name[] = "cosh";
  static constexpr char return_range[] = "-RC";
  using on_reals = computed_by<vm::cosh, checked_real>;
  using on_complexes = complex_by<complex::cosh, checked_complex>;
};

struct Tanh {
  static constexpr int32_t number = 11;
  static constexpr char name[] = "tanh";
  static constexpr char return_range[] = "-RC";
  using on_reals = computed_by<vm::tanh, checked_real>;
  using on_complexes = complex_by<complex::tanh, checked_complex>;
};

/// 1 / sinh|x| and 1 / cosh(x) where sinh and cosh overflow or are about to: 2 e^-|x|, and 0 beyond a limit.
template <class T> T small_reciprocal(T x) {
  constexpr T limit = std::is_same_v<T, float> ? T(89.76256) : T(710.8224336642239);
  const T m = magnitude(x);
  return m > limit ? T(0) : T(2) * vm::exp(-m);
}

struct Csch {
  static constexpr int32_t number = 13;
  static constexpr char name[] = "csch";
  static constexpr char return_range[] = "-RC";
  struct on_reals : checked_real {
    template <class T> static constexpr ordinary_range range() {
      return of_reciprocal<T>(vm::sinh.range<T>());
    }
    template <class V> static V value(V x) {
      if constexpr (!is_register<V>) {
        if (__builtin_isgreater(magnitude(x), V(vm::sinh.range<V>().high))) {
          const V r = small_reciprocal(x);
          return r == 0 ? r : with_sign_of(r, x);
        }
      }
      return broadcast<V>(1) / vm::sinh(x);
    }
  };
  using on_complexes = complex_by<complex::csch, checked_complex>;
};

struct Sech {
  static constexpr int32_t number = 14;
  static constexpr char name[] = "sech";
  static constexpr char return_range[] = "-RC";
  struct on_reals : checked_real {
    template <class T> static constexpr ordinary_range range() { return vm::cosh.range<T>(); }
    template <class V> static V value(V x) {
      if constexpr (!is_register<V>) {
        if (__builtin_isgreater(magnitude(x), V(vm::cosh.range<V>().high))) return small_reciprocal(x);
      }
      return broadcast<V>(1) / vm::cosh(x);
    }
  };
  using on_complexes = complex_by<complex::sech, checked_complex>;
};

struct Coth {
  static constexpr int32_t number = 15;
  static constexpr char name[] = "coth";
  static constexpr char return_range[] = "-RC";
  using on_reals = reciprocal_of<vm::tanh>;
  using on_complexes = complex_by<complex::coth, checked_complex>;
};

struct Asinh {
  static constexpr int32_t number = 25;
  static constexpr char name[] = "asinh";
  static constexpr char return_range[] = "-RC";
  using on_reals = computed_by<vm::asinh, plain_real>;
  using on_complexes = complex_by<complex::asinh, plain_complex>;
};

struct Acosh {
  static constexpr int32_t number = 26;
  static constexpr char name[] = "acosh";
  static constexpr char return_range[] = "-CC";
  using on_reals = computed_by<vm::acosh, checked_real>;
  using on_complexes = complex_by<complex::acosh, plain_complex>;
};

struct Atanh {
  static constexpr int32_t number = 27;
  static constexpr char name[] = "atanh";
  static constexpr char return_range[] = "-CC";
  using on_reals = computed_by<vm::atanh, checked_real>;
  using on_complexes = complex_by<complex::atanh, checked_complex>;
};

struct Acsch {
  static constexpr int32_t number = 29;
  static constexpr char name[] = "acsch";
  static constexpr char return_range[] = "-RC";
  struct on_reals : checked_real {
    template <class T> static constexpr ordinary_range range() {
      return with_reciprocal_in<T>(vm::asinh.range<T>());
    }
    template <class V> static V value(V x) { return vm::asinh(broadcast<V>(1) / x); }
  };
  using on_complexes = complex_by<complex::acsch, checked_complex>;
};

struct Asech {
  static constexpr int32_t number = 30;
  static constexpr char name[] = "asech";
  static constexpr char return_range[] = "-CC";
  struct on_reals : checked_real {
    template <class T> static constexpr ordinary_range range() {
      return {2 / vm::acosh.range<T>().high, 1, false};
    }
    template <class V> static V value(V x) { return vm::acosh(broadcast<V>(1) / x); }
  };
  using on_complexes = complex_by<complex::asech, checked_complex>;
};

struct Acoth {
  static constexpr int32_t number = 31;
  static constexpr char name[] = "acoth";
  static constexpr char return_range[] = "-CC";
  struct on_reals : checked_real {
    template <class T> static constexpr ordinary_range range() {
      return {1 + 2 * static_cast<double>(std::numeric_limits<T>::epsilon()),
              with_reciprocal_in<T>(vm::atanh.range<T>()).high, true};
    }
    template <class V> static V value(V x) { return vm::atanh(broadcast<V>(1) / x); }
  };
  using on_complexes = complex_by<complex::acoth, checked_complex>;
};

/// 2 atan(tanh(x / 2)).
struct Gudermannian {
  static constexpr int32_t number = 70;
  static constexpr char name[] = "gudermannian";
  static constexpr char return_range[] = "-CC";
  struct on_reals : checked_real {
    template <class T> static constexpr ordinary_range range() {
      constexpr ordinary_range of_half = vm::tanh.range<T>();
      return {2 * of_half.low, of_half.high, true, of_half.and_zero};
    }
    template <class V> static V value(V x) {
      return broadcast<V>(2) * vm::atan(vm::tanh(x / broadcast<V>(2)));
    }
  };
  using on_complexes = complex_by<complex::gudermannian, checked_complex>;
};

/// 2 atanh(tan(x / 2)); the range keeps clear of the poles at the odd multiples of pi / 2.
struct InverseGudermannian {
  static constexpr int32_t number = 71;
  static constexpr char name[] = "inversegudermannian";
  static constexpr char return_range[] = "-CC";
  struct on_reals : checked_real {
    template <class T> static constexpr ordinary_range range() {
      return {2 * std::max(vm::tan.range<T>().low, vm::atanh.range<T>().low), 1.5, true};
    }
    template <class V> static V value(V x) {
      return broadcast<V>(2) * vm::atanh(vm::tan(x / broadcast<V>(2)));
    }
  };
  using on_complexes = complex_by<complex::inversegudermannian, checked_complex>;
};

using hyperbolic_functions = function_list<Sinh, Cosh, Tanh, Csch, Sech, Coth, Asinh, Acosh, Atanh, Acsch,
                                           Asech, Acoth, Gudermannian, InverseGudermannian>;

}  // namespace vlm::machine_function
