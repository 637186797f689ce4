// How the integers of one type lie among the reals of another: limits and scales as constants.
#pragma once

#include <algorithm>
#include <cmath>
#include <limits>
#include <type_traits>

#include "Includes/element_types.h"
#include "Includes/real16.h"

namespace vlm::conversion {

/// The type in which the numbers of an element type are computed with: halves as the floats of the same value.
template <class E> struct number_type { using type = E; };
template <> struct number_type<real16> { using type = float; };
template <class E> using number_t = typename number_type<E>::type;

template <class E> inline E as_number(E x) noexcept { return x; }
inline float as_number(real16 x) noexcept { return to_float(x); }

/// The nearest element of type E. Halves come by way of float and are rounded to nearest; the others round in the thread's mode.
template <class E, class N> inline E to_element(N x) noexcept {
  if constexpr (std::is_same_v<E, real16>) {
    return to_real16(static_cast<float>(x));
  } else {
    return static_cast<E>(x);
  }
}
/// The same number without a signal.
template <class E, class N> inline number_t<E> nearest_number(N x) noexcept {
  if constexpr (std::is_same_v<E, real16>) {
    return static_cast<float>(real16_format::widen(real16_format::round(static_cast<float>(x)).value));
  } else {
    return static_cast<E>(x);
  }
}

/// 2^n.
template <class N> constexpr N power_of_two(int n) {
  N power = 1;
  for (; n > 0; --n) power *= 2;
  return power;
}

/// The largest finite number of a real type.
template <class R>
inline constexpr number_t<R> most_finite = std::is_same_v<R, real16>
                                               ? number_t<R>(65504)
                                               : std::numeric_limits<number_t<R>>::max();

/// The integer type I seen from the real type R. `bits` are the value bits of I.
template <class I, class R> struct integers_among {
  using number = number_t<R>;
  static constexpr int bits = element_of<I>::digits;
  static constexpr int digits = element_of<R>::digits;
  static constexpr bool is_signed = std::is_signed_v<I>;
  /// Every integer is a number of R; the largest one is.
  static constexpr bool all_exact = bits <= digits;

  /// The largest integer as a number of R rounded to nearest: a power of two where it is not exact.
  static constexpr number most_rounded =
      std::min(all_exact ? static_cast<number>(std::numeric_limits<I>::max()) : power_of_two<number>(bits),
               most_finite<R>);
  /// The same rounded down: the largest number of R that converts to I.
  static constexpr number most =
      std::min(all_exact ? most_rounded
                         : power_of_two<number>(bits) - power_of_two<number>(bits - std::min(bits, digits)),
               most_finite<R>);
  /// The size of the least integer.
  static constexpr number least_size =
      is_signed ? std::min(power_of_two<number>(bits), most_finite<R>) : number(0);
  static constexpr number least = -least_size;

  /// The integers between which the numbers of R lie, `most` and `least` in I.
  static constexpr I upper = static_cast<I>(most);
  static constexpr I lower = static_cast<I>(least);
  /// Whether I has integers beyond all finite numbers of R.
  static constexpr bool exceeds_finite = std::is_same_v<R, real16> && bits > 15;
};

}  // namespace vlm::conversion
