// Element rules with an integer source. A rule has
//
//   accepts(x)          whether x can be converted: without branches, so that a loop over it fills registers;
//   value(x)            the result for an accepted x;
//   plainly_accepts(x)  less than accepts(x), for less work; only in rules with a dear test;
//   never_refuses       true if every x is accepted;
//   stores_refused(x)   whether the result is stored although x is refused; only in rules that test the result.
#pragma once

#include <bit>
#include <limits>
#include <type_traits>

#include "MNumericArray/Convert/number_range.h"
#include "velorim/conversion.h"

namespace vlm::conversion {

/// A conversion as the rules see it: tolerance, method and clip flag.
using convert_data = MNumericArrayConvertData;

/// Integer to integer, value kept. Clip clamps to the limits of T.
template <class S, class T, bool Clip> struct integer_value {
  static constexpr bool above = std::in_range<T>(std::numeric_limits<S>::max());
  static constexpr bool below = std::in_range<T>(std::numeric_limits<S>::min());
  static constexpr bool never_refuses = Clip || (above && below);
  /// The limits of T as far as S reaches.
  static constexpr S most =
      above ? std::numeric_limits<S>::max() : static_cast<S>(std::numeric_limits<T>::max());
  static constexpr S least =
      below ? std::numeric_limits<S>::min() : static_cast<S>(std::numeric_limits<T>::min());

  explicit integer_value(const convert_data&) {}
  static bool accepts(S x) { return (x >= least) & (x <= most); }
  static T value(S x) {
    if constexpr (Clip) x = x < least ? least : x > most ? most : x;
    return static_cast<T>(x);
  }
};

/// Integer to integer, the whole range of S onto the whole range of T. With the lowest integer as 0 all types are unsigned ranges;
/// what goes on in between is a matter of their bits.
template <class S, class T> struct integer_scale {
  using from = std::make_unsigned_t<S>;
  using to = std::make_unsigned_t<T>;
  static constexpr int from_bits = 8 * static_cast<int>(sizeof(S));
  static constexpr int to_bits = 8 * static_cast<int>(sizeof(T));
  static constexpr bool never_refuses = true;

  explicit integer_scale(const convert_data&) {}
  static T value(S x) {
    const to flip =
        std::is_signed_v<S> == std::is_signed_v<T> ? to{0} : static_cast<to>(to{1} << (to_bits - 1));
    const auto bits = static_cast<from>(x);
    if constexpr (to_bits <= from_bits) {
      return static_cast<T>(static_cast<to>(bits >> (from_bits - to_bits)) ^ flip);
    } else if constexpr (std::is_unsigned_v<S> && std::is_unsigned_v<T>) {
      constexpr to repeat = std::numeric_limits<to>::max() / std::numeric_limits<from>::max();  // 0x...0101
      return static_cast<T>(static_cast<to>(bits) * repeat);
    } else {
      constexpr int shift = to_bits - from_bits;
      constexpr to ones = static_cast<to>((to{1} << shift) - 1);
      const to high = static_cast<to>(static_cast<to>(bits) << shift);
      return static_cast<T>((x > 0 ? high | ones : high) ^ flip);
    }
  }
};

/// Integer to real, the nearest number; Exact asks that it converts back. Clip sends integers beyond the numbers that convert back
/// to the largest integer rounded (Exact), or those beyond the finite halves to the largest half.
template <class S, class R, bool Exact, bool Clip> struct integer_to_real {
  using range = integers_among<S, R>;
  using number = number_t<R>;
  static constexpr bool tests = Exact ? !range::all_exact : range::exceeds_finite;
  static constexpr bool never_refuses = !tests || (Clip && !Exact);

  explicit integer_to_real(const convert_data&) {}
  static bool within(S x) { return (x >= range::lower) & (x <= range::upper); }
  static bool accepts(S x) {
    const bool inside = within(x);
    if constexpr (!Exact) {
      return inside;
    } else {
      const S safe = inside ? x : S(0);
      const bool back = static_cast<S>(nearest_number<R>(static_cast<number>(safe))) == safe;
      return Clip ? back : inside & back;
    }
  }
  static R value(S x) {
    const number y = static_cast<number>(x);
    if constexpr (tests && Clip) {
      const number limit = x > range::upper ? range::most_rounded : -range::least_size;
      return to_element<R>(within(x) ? y : limit);
    } else {
      return to_element<R>(y);
    }
  }
};

/// Integer to the unit range of a real, -1 to 1 or 0 to 1. Every operation is one of R.
template <class S, class R, bool Clip> struct integer_to_unit {
  using range = integers_among<S, R>;
  using number = number_t<R>;
  static constexpr bool never_refuses = Clip || !range::exceeds_finite;

  explicit integer_to_unit(const convert_data&) {}
  static bool accepts(S x) { return (x >= range::lower) & (x <= range::upper); }
  static R value(S x) {
    if constexpr (range::exceeds_finite && Clip) {
      if (!accepts(x)) return to_element<R>(x > 0 ? number(1) : number(-1));
    }
    constexpr number below = range::is_signed ? range::least_size : range::most_rounded;
    const number divisor = x < 0 ? below : range::most_rounded;
    if constexpr (std::is_same_v<R, real16>) {
      return divide(to_element<R>(static_cast<number>(x)), to_element<R>(divisor));
    } else if constexpr (!range::all_exact) {
      return static_cast<number>(x) * (1 / range::most_rounded);  // both divisors are this power of two
    } else {
      return static_cast<number>(x) / divisor;
    }
  }
};

}  // namespace vlm::conversion
