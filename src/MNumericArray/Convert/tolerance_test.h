// The tolerance test: whether two numbers count as equal to within some bits of their scale. Comparison, sorting and conversion
// share it; it knows no arrays.
//
// With D significand bits (53, 24 or 11), x and y match if they are equal, or if both are non-zero, of one sign and
//
//   |x - y|  <  max(|x|, |y|) 2^(tolerance - D),
//
// where a tolerance at or below 0 asks for equality and one of D or more for equal signs alone. A tolerance of 1 admits a
// difference of up to one unit in the last place. The inequality is computed in the arithmetic of the type: the larger side is
// scaled if it is at least 1, else the difference is scaled the other way, so that nothing underflows.
#pragma once

#include <bit>
#include <cmath>
#include <limits>
#include <type_traits>

#include "Includes/element_types.h"
#include "Includes/real16.h"

namespace vlm {

/// 2^(tolerance - D) for a tolerance between 0 and D that is no whole number; the thread remembers the last one.
/// R is double, float or real16, whose factor comes out rounded to half.
template <class R> double fractional_tolerance_factor(double tolerance) noexcept;

/// The test for one tolerance. R is double, float or real16; halves come in as doubles and what is computed with them is
/// rounded to half.
template <class R> class tolerance_test {
 public:
  using number = std::conditional_t<std::is_same_v<R, real16>, double, R>;
  static constexpr int digits = element_of<R>::digits;

  /// The tolerance is narrowed to R.
  explicit tolerance_test(double tolerance) noexcept {
    // Beyond these limits nothing depends on the tolerance, and no type overflows.
    const double wide = tolerance < -1.0 ? -1.0 : tolerance > 64.0 ? 64.0 : tolerance;
    const auto bits = rounded(static_cast<number>(wide));
    if (bits >= digits) {
      kind_ = kind::same_sign;
    } else if (bits > 0) {
      kind_ = kind::scaled;
      const auto whole = static_cast<int>(bits);
      factor_ = bits == static_cast<number>(whole)
                    ? number(1) / static_cast<number>(uint64_t{1} << (digits - whole))
                    : static_cast<number>(fractional_tolerance_factor<R>(bits));
    }
  }

  bool equal(number x, number y) const noexcept { return compare(x, y) == 0; }

  /// 0 if they match, else -1 or 1 by their order. Of a NaN and a number with the same sign bit rule (below 0 or not) the first
  /// counts as the smaller; they match where only signs are asked for.
  int compare(number x, number y) const noexcept {
    if (x == y) return 0;
    if (x == 0) return y < 0 ? 1 : -1;
    if (y == 0 || (x < 0) != (y < 0)) return x < 0 ? -1 : 1;
    if (kind_ == kind::same_sign) return 0;
    return kind_ == kind::scaled && within_factor(x, y) ? 0 : x > y ? 1 : -1;
  }

  /// equal(x, r) for finite x, where r is x rounded to an integer and the tolerance lies between 0 and D, as a loop over many x wants
  /// it: without branches, one comparison. A rounded number that is not 0 has the sign of x and a size of at least 1, so that only
  /// that side of the inequality counts; if it is 0, the difference is |x| itself, which the product never exceeds; and the least
  /// number above 0 lets equal numbers through.
  bool equal_to_rounded(number x, number r) const noexcept {
    if constexpr (std::is_same_v<R, real16>) {
      return equal(x, r);
    } else {
      const number size = std::fabs(x) > std::fabs(r) ? std::fabs(x) : std::fabs(r);
      const number product = size * factor_;
      constexpr number least = std::numeric_limits<number>::denorm_min();
      return (product < least ? least : product) > std::fabs(x - r);
    }
  }

  /// Whether an imaginary part is negligible beside its real part: re must match re moved by |im| towards zero.
  bool negligible(number re, number im) const noexcept {
    if (im == 0 || kind_ == kind::same_sign) return true;
    return equal(re, rounded(std::signbit(re) != std::signbit(im) ? re + im : re - im));
  }

  /// Whether the tolerance asks for equality.
  bool exact() const noexcept { return kind_ == kind::exact; }
  /// Whether the tolerance is D or more: nothing but signs is asked for.
  bool signs_alone() const noexcept { return kind_ == kind::same_sign; }

 private:
  enum class kind { exact, scaled, same_sign };

  static number rounded(number x) noexcept {
    if constexpr (std::is_same_v<R, real16>) {
      return real16_format::widen(real16_format::round(x).value);
    } else {
      return x;
    }
  }

  /// The inequality for two numbers of one sign. An infinity matches no other number: the difference is infinite too, and the
  /// factor is at most 1.
  bool within_factor(number x, number y) const noexcept {
    const number difference = rounded(x > y ? x - y : y - x);
    const number size = std::fabs(x) > std::fabs(y) ? std::fabs(x) : std::fabs(y);
    return size >= 1 ? rounded(size * factor_) > difference : size > rounded(difference / factor_);
  }

  kind kind_ = kind::exact;
  number factor_ = 1;
};

}  // namespace vlm
