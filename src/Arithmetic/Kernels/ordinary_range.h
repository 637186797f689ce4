// Where a function may be computed in registers without a look at special cases.
#pragma once

#include "Includes/lanes.h"

namespace vlm {

/// A closed interval of x, or of |x|, and perhaps zero besides. NaN is outside every interval.
struct ordinary_range {
  double low, high;
  bool of_magnitude;
  bool and_zero = false;
};

/// Whether a number lies in the range; raises no flag for a quiet NaN.
template <class T> inline bool in_range(const ordinary_range& range, T x) {
  const T m = range.of_magnitude ? magnitude(x) : x;
  const bool inside = __builtin_isgreaterequal(m, static_cast<T>(range.low)) &&
                      __builtin_islessequal(m, static_cast<T>(range.high));
  return inside || (range.and_zero && x == 0);
}

/// The lanes of x inside the ordinary range of a class of functions (or of one) C; may raise stray flags.
template <class C, class V> inline lane_set ordinary_lanes(V x) {
  using T = number_of<V>;
  constexpr ordinary_range range = C::template range<T>();
  constexpr T low = static_cast<T>(range.low), high = static_cast<T>(range.high);
  const V m = range.of_magnitude ? magnitude(x) : x;
  lane_set inside = lanes_between(m, broadcast<V>(low), broadcast<V>(high));
  if constexpr (range.and_zero) inside |= set_lanes(x == V{});
  return inside;
}

}  // namespace vlm
