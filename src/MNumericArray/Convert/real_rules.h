// Element rules with a real source; integer_rules.h tells what a rule is.
#pragma once

#include <cmath>
#include <limits>
#include <type_traits>

#include "MNumericArray/Convert/integer_rules.h"
#include "MNumericArray/Convert/number_range.h"
#include "MNumericArray/Convert/tolerance_test.h"

namespace vlm::conversion {

/// x brought between two limits; a NaN stays one. In two steps, which compilers turn into register code.
template <class N> inline N clamped(N x, N least, N most) {
  const N raised = x < least ? least : x;
  return raised > most ? most : raised;
}

/// r truncated to T. A NaN gives 0, unless the caller knows that there is none. Without Clip, r is in range or a NaN; with it, numbers
/// out of range give the limits of T. The conversion itself only ever sees numbers in range: of others the language and the
/// processors have nothing to say that is the same everywhere.
template <class T, class R, bool Clip, bool MayBeNaN = true> inline T truncated(number_t<R> r) {
  using range = integers_among<T, R>;
  using number = number_t<R>;
  // Conversion to the narrow types goes by way of 32 bits, which the processors have.
  using wide = std::conditional_t<sizeof(T) < 4, int32_t, T>;
  if constexpr (Clip && !range::all_exact) {
    const bool above = r > range::most, below = r < range::least;
    const T inside = static_cast<T>(static_cast<wide>((std::isnan(r) | above | below) ? number(0) : r));
    return above ? std::numeric_limits<T>::max() : below ? std::numeric_limits<T>::min() : inside;
  } else {
    number inside = Clip ? clamped(r, range::least, range::most) : r;
    if constexpr (MayBeNaN) inside = std::isnan(inside) ? number(0) : inside;
    return static_cast<T>(static_cast<wide>(inside));
  }
}

template <class T, class R> inline bool in_range(number_t<R> r) {
  using range = integers_among<T, R>;
  return !(r < range::least) & !(r > range::most);  // a NaN is
}

/// What happens to the fraction: lost, rounded, refused, or rounded where the tolerance test admits it.
enum class fraction { cut, rounded, refused, tested };

/// Real to integer, value kept.
template <class R, class T, fraction Fraction, bool Clip> struct real_to_integer {
  using number = number_t<R>;
  struct no_test {
    explicit no_test(double) {}
  };
  using test = std::conditional_t<Fraction == fraction::tested, tolerance_test<R>, no_test>;
  static constexpr bool never_refuses = Clip && (Fraction == fraction::cut || Fraction == fraction::rounded);

  static constexpr number all_whole = power_of_two<number>(element_of<R>::digits);

  explicit real_to_integer(const convert_data& r) : test_(r.tolerance) {}
  static number whole(number x) { return Fraction == fraction::cut ? x : std::rint(x); }
  bool accepts(R source) const {
    number x = as_number(source);
    // From 2^D on all numbers are whole; an infinity passes the test as one of them, and is left to the range.
    if constexpr (Fraction == fraction::tested && Clip) x = clamped(x, -all_whole, all_whole);
    const number r = whole(x);
    bool accepted = true;
    if constexpr (Fraction == fraction::refused) accepted = x == r;
    if constexpr (Fraction == fraction::tested) accepted = test_.equal_to_rounded(x, r);
    if constexpr (!Clip) accepted &= in_range<T, R>(r);
    return accepted;
  }
  /// Whole numbers.
  static bool plainly_accepts(R source) requires(Fraction == fraction::tested) {
    const number x = as_number(source);
    const bool is_whole = x == whole(x), inside = Clip || in_range<T, R>(x);
    return is_whole & inside;
  }
  static T value(R source) {
    const number x = as_number(source);
    // Both tests refuse a NaN, and what passes the first is whole.
    constexpr bool may_be_nan = Fraction == fraction::cut || Fraction == fraction::rounded;
    return truncated<T, R, Clip, may_be_nan>(Fraction == fraction::refused ? x : whole(x));
  }

 private:
  [[no_unique_address]] test test_;
};

/// The unit range of a real, -1 to 1 or 0 to 1, onto the integers.
template <class R, class T, bool Rounded, bool Clip> struct unit_to_integer {
  using range = integers_among<T, R>;
  using number = number_t<R>;
  static constexpr number least = range::is_signed ? -1 : 0;
  static constexpr bool never_refuses = Clip;

  explicit unit_to_integer(const convert_data&) {}
  static number factor(number x) {
    return range::is_signed && x < 0 ? range::least_size : range::most_rounded;
  }
  static number whole(number y) { return Rounded ? std::rint(y) : y; }
  static bool accepts(R source) {
    const number x = as_number(source);
    const bool unit = !(x < least) & !(x > 1);
    if constexpr (range::all_exact) return unit;  // which the factors take into the range
    return unit & in_range<T, R>(whole(nearest_number<R>(x * factor(x))));
  }
  static T value(R source) {
    number x = as_number(source);
    if constexpr (Clip) x = clamped(x, least, number(1));
    const number y = as_number(to_element<R>(x * factor(x)));
    return truncated<T, R, Clip>(whole(y));
  }
};

/// Refuses every element.
template <class S, class T> struct refusal {
  static constexpr bool never_refuses = false;
  explicit refusal(const convert_data&) {}
  static bool accepts(S) { return false; }
  static T value(S) { return T{}; }
};

/// Real to a type with all its numbers; Rounded rounds before.
template <class S, class T, bool Rounded> struct real_widened {
  static constexpr bool never_refuses = true;
  explicit real_widened(const convert_data&) {}
  static T value(S source) {
    if constexpr (!Rounded && std::is_same_v<S, T>) {
      return source;
    } else if constexpr (!Rounded) {
      return static_cast<T>(as_number(source));
    } else if constexpr (std::is_same_v<S, T> && std::is_same_v<S, real16>) {
      return rint(source);
    } else {
      return static_cast<T>(std::rint(as_number(source)));
    }
  }
};

/// What a narrowed number is held to: nothing, equality, the tolerance test; or it is rounded to an integer afterwards.
enum class narrowing { free, exact, tested, rounded };

/// Real to a type with fewer digits. A number beyond the finite ones is refused, or with Clip goes to the largest one.
template <class S, class T, narrowing How, bool Clip> struct real_narrowed {
  using number = number_t<S>;
  static constexpr bool tests = How == narrowing::exact || How == narrowing::tested;
  static constexpr bool never_refuses = Clip && !tests;
  static constexpr number most = static_cast<number>(most_finite<T>);
  struct no_test {
    explicit no_test(double) {}
  };
  using test = std::conditional_t<How == narrowing::tested, tolerance_test<S>, no_test>;

  explicit real_narrowed(const convert_data& r) : test_(r.tolerance) {}
  static bool finite(number x) { return !(x < -most) & !(x > most); }  // or a NaN
  static number clipped(number x) { return Clip ? clamped(x, -most, most) : x; }
  bool accepts(S source) const {
    const number x = as_number(source);
    const bool finite_or_clipped = Clip ? true : finite(x);
    if constexpr (How == narrowing::exact) {
      return finite_or_clipped & (static_cast<number>(nearest_number<T>(clipped(x))) == x);
    } else if constexpr (How == narrowing::tested) {
      return finite_or_clipped && test_.equal(x, static_cast<number>(nearest_number<T>(clipped(x))));
    } else {
      return finite_or_clipped;
    }
  }
  /// Numbers that are kept.
  static bool plainly_accepts(S source) requires(How == narrowing::tested) {
    const number x = as_number(source);
    const bool inside = Clip || finite(x), kept = static_cast<number>(nearest_number<T>(clipped(x))) == x;
    return inside & kept;
  }
  static T value(S source) {
    const T y = to_element<T>(clipped(as_number(source)));
    if constexpr (How != narrowing::rounded) {
      return y;
    } else if constexpr (std::is_same_v<T, real16>) {
      return rint(y);
    } else {
      return std::rint(y);
    }
  }
  /// The result is stored before it is tested.
  static bool stores_refused(S source) requires tests { return Clip || finite(as_number(source)); }

 private:
  [[no_unique_address]] test test_;
};

}  // namespace vlm::conversion
