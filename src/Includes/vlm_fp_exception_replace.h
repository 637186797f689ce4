// Replacement of NaNs and infinities in a run of numbers.
#pragma once

#include <limits>

#include "Includes/fp_environment.h"
#include "Includes/real16.h"
#include "Includes/vlm_fp_exception.h"

namespace vlm {

/// A replacement as the real type takes it: beyond its finite range the nearest end of it, else rounded to the type. Double
/// stays as it is, infinities too.
template <class Real> Real fp_replacement(double value);

template <> inline double fp_replacement<double>(double value) { return value; }
template <> inline float fp_replacement<float>(double value) {
  constexpr double largest = std::numeric_limits<float>::max();
  if (value < -largest) return -std::numeric_limits<float>::max();
  if (value > largest) return std::numeric_limits<float>::max();
  return static_cast<float>(value);
}
template <> inline real16 fp_replacement<real16>(double value) {
  if (value < -65504.0) return negated(real16_max);
  if (value > 65504.0) return real16_max;
  return real16_format::round(value).value;
}

/// What takes the place of each kind, in the type of the numbers.
template <class Real> struct fp_replacements {
  Real nan, plus_infinity, minus_infinity;

  /// Leaves the exception flags as they are: comparing and rounding NaNs would raise invalid.
  static fp_replacements of(double nan, double plus_infinity, double minus_infinity) {
    fp::pin(nan), fp::pin(plus_infinity), fp::pin(minus_infinity);
    fp::quiet_section quiet;
    fp::pin(nan), fp::pin(plus_infinity), fp::pin(minus_infinity);
    fp_replacements made{fp_replacement<Real>(nan), fp_replacement<Real>(plus_infinity),
                         fp_replacement<Real>(minus_infinity)};
    quiet.restore();
    return made;
  }
};

/// Replaces in count adjacent elements. A block without exception values is only read.
template <class T>
void fp_exception_replace_iterate(T* data, mint count,
                                  const fp_replacements<typename fp_parts<T>::real>& with) {
  using real = typename fp_parts<T>::real;
  using format = fp_format<real>;
  using bits = typename format::bits;
  const bits nan = std::bit_cast<bits>(with.nan);
  const bits plus = std::bit_cast<bits>(with.plus_infinity);
  const bits minus = std::bit_cast<bits>(with.minus_infinity);

  real* parts = fp_parts_of(data);
  const mint total = count * fp_parts<T>::count;
  for (mint start = 0; start < total; start += fp_scan_block) {
    const mint end = std::min(start + fp_scan_block, total);
    if (!any_fp_exception(parts + start, end - start)) continue;
    for (mint i = start; i < end; ++i) {
      const bits x = std::bit_cast<bits>(parts[i]);
      const bits size = x & static_cast<bits>(~fp_sign_bit<bits>);
      const bits infinity = x == size ? plus : minus;
      const bits special = size == format::exponent ? infinity : nan;
      parts[i] = std::bit_cast<real>(size < format::exponent ? x : special);
    }
  }
}

}  // namespace vlm
