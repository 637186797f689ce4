// How a machine function of two arguments is defined. Each function is one struct, in the header of its family:
//
//   struct Mod {
//     static constexpr int32_t number = 261;               // its number, part of the interface
//     static constexpr char name[] = "mod";
//     static constexpr char return_range[] = "IRCRRCCCC";  // what ReturnRangeType2 answers, see below
//     static constexpr mixed widens = mixed::all;          // the mixed rows that widen to a same-type row
//     struct on_integers { ... };                          // two arguments of one type; absent where there is no row
//     struct on_reals { ... };
//     struct on_complexes { ... };
//     struct with_integer { ... };                         // x of any other type with an Integer64 y, where that is no widening
//     struct with_real { ... };                            // complex x with a y of its component's type
//   };
//
// A class gives
//   value(x, y)      the result, as a template over the number type: integers at the element width, wrapping; double and float;
//                    complex::parts of either. A result of type mint makes an Integer64 row, a real result of complex arguments a
//                    row of the component type, any other a row of the type of x.
//   checks_result    true where the result check of MACHFUNC_CHECK_FP applies: NaN and infinity fail.
//   refuses(x, y)    arguments that fail whatever the flags; value() is not called for them.
//   fails(x, y)      arguments that fail under the check flag, beyond the result check; value() is defined for them.
//   undefined(x, y)  arguments without a value: a failure under the check flag; unchecked, invalid is raised and the result is a
//                    signalling NaN (in both parts).
//   evaluate<checked>(x, y, result)    in place of value(), fails() and the result check where the value and its failure are found
//                    together: true for a failure. The result is of the type of x.
//   none_fails(x, y, n)    true only if no element of the two runs fails: a cheap proof ahead of the search.
//
// and, to be fast,
//   register_arithmetic = true         value() is plain arithmetic that raises the right flags on registers too;
//   each_part = true                   the same, for complex arguments, on each part by itself;
//   body(x, y)                         the value over registers, for pairs in the lanes that both ordinary(x, y), judging arguments,
//                    and settled(x, y, result), judging what came out, vouch for: the bits are those of value(), which raises nothing
//                    there but inexact and underflow. Other lanes go through value(). Either of the two may be absent;
//   run(result, x, y, n)               integers: the values of a whole run, for classes with a faster way than one by one;
//   half(x, y)                         Real16: in place of value() in double, rounded once.
//
// return_range has a letter for each pair of Integer, Real and Complex tensors, in the order II IR IC RI RR RC CI CR CC: I, R, C
// the tensor type that can hold every result, - no such function.
#pragma once

#include <cstdint>

#include "Arithmetic/Kernels/complex/arithmetic.h"
#include "Arithmetic/Kernels/definition.h"

namespace vlm::machine_function::binary {

/// Pairs of mint, mreal and mcomplex whose rows widen both arguments to the larger type and take its row.
enum class mixed : uint8_t {
  none = 0,
  id = 1,
  di = 2,
  ic = 4,
  ci = 8,
  dc = 16,
  cd = 32,
  reals = id | di,
  to_complex = ic | dc,
  all = reals | to_complex | ci | cd,
};
constexpr mixed operator|(mixed a, mixed b) {
  return static_cast<mixed>(static_cast<uint8_t>(a) | static_cast<uint8_t>(b));
}
constexpr bool contains(mixed set, mixed pair) {
  return (static_cast<uint8_t>(set) & static_cast<uint8_t>(pair)) != 0;
}

/// Classes with and without the result check.
struct checked {
  static constexpr bool checks_result = true;
};
struct unchecked {
  static constexpr bool checks_result = false;
};

/// A zero divisor, refused whatever the flags.
struct refuses_zero {
  template <class T> static bool refuses(T, T y) { return y == 0; }
  template <class T> static bool refuses(complex::parts<T>, complex::parts<T> y) {
    return y.re == 0 && y.im == 0;
  }
};

}  // namespace vlm::machine_function::binary
