// How a machine function is defined. Each function is one struct, in the header of its family:
//
//   struct Square {
//     static constexpr int32_t number = 56;            // its number, part of the interface
//     static constexpr char name[] = "square";
//     static constexpr char return_range[] = "IRC";    // what ReturnRangeType1 answers, see below
//     struct on_integers { ... };                      // absent where the class has no row
//     struct on_reals { ... };
//     struct on_complexes { ... };
//   };
//
// A class gives
//   value(x)     the result for one element, as a template over the element type. A result of type mint makes
//                an Integer64 row, any other a row of the argument's own type. Integer arithmetic wraps at the
//                element width.
//   obeys        which check it obeys:
//                  plain    it never fails element by element;
//                  checked  the failure is looked for only when the flags ask for it;
//                  always   the failure is detected whatever the flags.
//   failure(x)   for integers and for mint results: the code of the failure for the argument, or success. Real
//                results need none: the result check is the one failure that they know.
//   range<T>()   for real results with a register form: the ordinary range. Inside it value() may be called on
//                a register of lanes: no lane needs special care, and the scalar form raises none of the three
//                flags that count. Lanes outside are recomputed one by one. A class without range() is computed
//                element by element, unless it says
//   register_arithmetic = true    value() is plain arithmetic that raises the right flags on registers too;
//   copies_bits = true            ... and only moves or flips bits, so that Real16 needs no arithmetic for it;
//   ignores_argument = true       value() does not look at its argument.
// The class of complexes gives value() over complex::parts of a number type and its check; the usual one is complex_by, made of a
// function of Kernels/complex/, whose forms say where registers of lanes may be used and which arguments go unchecked.
// From this one definition come the scalar kernel, the vector kernel, the catalogue row and the exported
// scalar entry.
//
// return_range has a letter each for Integer, Real and Complex tensors: I, R, C the tensor type that can hold
// every result, B integer with the boolean mark, = the argument itself, - no such function.
#pragma once

#include <cstdint>

#include "Arithmetic/Kernels/complex/arithmetic.h"
#include "Arithmetic/Kernels/ordinary_range.h"
#include "Includes/element_types.h"
#include "Includes/lanes.h"
#include "Includes/real16.h"
#include "velorim/status.h"

namespace vlm::machine_function {

enum class check { plain, checked, always };

/// A class of functions whose result check reads MACHFUNC_CHECK_FP, and one without it; of reals and of complexes.
struct checked_real {
  static constexpr check obeys = check::checked;
};
struct plain_real {
  static constexpr check obeys = check::plain;
};
using checked_complex = checked_real;
using plain_complex = plain_real;
/// A class that never fails; also for mint results of reals.
struct never_fails {
  static constexpr check obeys = check::plain;
  template <class T> static constexpr VelorimError failure(T) { return VelorimError_success; }
};

/// The integer class of functions that change nothing on integers, and of those that leave nothing of them.
struct argument_itself : never_fails {
  template <class T> static constexpr T value(T x) { return x; }
};
struct always_zero : never_fails {
  template <class T> static constexpr T value(T) { return 0; }
};

/// The real class of a function that is one elementary function (vector_math.h), within its range.
template <const auto& Function, class Checked> struct computed_by : Checked {
  template <class T> static constexpr ordinary_range range() { return Function.template range<T>(); }
  template <class V> static V value(V x) { return Function(x); }
};

/// The complex class of a function that is one of Kernels/complex/.
template <const auto& Function, class Checked> struct complex_by : Checked {
  using form = typename std::remove_cvref_t<decltype(Function)>::form;
  template <class T> static auto value(complex::parts<T> z) { return Function(z); }
};

/// A list of functions; each family header ends with its own.
template <class... F> struct function_list {};

}  // namespace vlm::machine_function
