// Element rules for complex elements, made from the rules of their parts.
#pragma once

#include <type_traits>

#include "MNumericArray/Convert/real_rules.h"

namespace vlm::conversion {

template <class E> struct part_of { using type = E; };
template <> struct part_of<complex_real32> { using type = float; };
template <> struct part_of<mcomplex> { using type = double; };
/// The real type of a complex element; any other type itself.
template <class E> using part_t = typename part_of<E>::type;

/// The rule of the parts itself: neither side is complex.
template <class Rule, class S, class T> using as_is = Rule;

/// A complex target: imaginary part 0.
template <class Rule, class S, class T> struct with_zero_imaginary : Rule {
  using Rule::Rule;
  T value(S x) const { return {Rule::value(x), 0}; }
};

/// A complex source whose imaginary part must be negligible.
template <class Rule, class S, class T> struct of_real_part {
  static constexpr bool never_refuses = false;

  explicit of_real_part(const convert_data& r) : rule_(r), test_(r.tolerance), negative_(r.tolerance < 0.0) {}
  bool accepts(S z) const {
    if (negative_ || !test_.negligible(z.re, z.im)) return false;
    if constexpr (Rule::never_refuses) {
      return true;
    } else {
      return rule_.accepts(z.re);
    }
  }
  /// Imaginary part 0.
  bool plainly_accepts(S z) const {
    const bool real = (z.im == 0) & !negative_;
    if constexpr (Rule::never_refuses) {
      return real;
    } else if constexpr (requires { rule_.plainly_accepts(z.re); }) {
      return real & rule_.plainly_accepts(z.re);
    } else {
      return real & rule_.accepts(z.re);
    }
  }
  T value(S z) const { return rule_.value(z.re); }
  bool stores_refused(S z) const requires requires { Rule::stores_refused(z.re); }
  { return !negative_ && test_.negligible(z.re, z.im) && Rule::stores_refused(z.re); }

 private:
  [[no_unique_address]] Rule rule_;
  tolerance_test<part_t<S>> test_;
  bool negative_;
};

/// Both parts by themselves. An element whose result is stored before it is tested is stored whole.
template <class Rule, class S, class T> struct of_both_parts : Rule {
  using Rule::Rule;
  bool accepts(S z) const {
    const bool re = Rule::accepts(z.re), im = Rule::accepts(z.im);
    return re & im;
  }
  bool plainly_accepts(S z) const requires requires { Rule::plainly_accepts(z.re); }
  {
    const bool re = Rule::plainly_accepts(z.re), im = Rule::plainly_accepts(z.im);
    return re & im;
  }
  T value(S z) const { return {Rule::value(z.re), Rule::value(z.im)}; }
  bool stores_refused(S z) const requires requires { Rule::stores_refused(z.re); }
  { return Rule::stores_refused(z.re) && Rule::stores_refused(z.im); }
};

}  // namespace vlm::conversion
