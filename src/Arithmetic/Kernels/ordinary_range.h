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

/// Whether x lies in the range, lane by lane. Raises no flag that counts for a number that is not a
/// signalling NaN.
template <class V> inline auto in_range(const ordinary_range& range, V x) {
  const V m = range.of_magnitude ? magnitude(x) : x;
  using T = number_of<V>;
  const V low = broadcast<V>(static_cast<T>(range.low)), high = broadcast<V>(static_cast<T>(range.high));
  if constexpr (is_register<V>) {
    const auto inside = (m >= low) & (m <= high);
    return range.and_zero ? inside | (x == V{}) : inside;
  } else {
    return (__builtin_isgreaterequal(m, low) && __builtin_islessequal(m, high)) || (range.and_zero && x == 0);
  }
}

}  // namespace vlm
