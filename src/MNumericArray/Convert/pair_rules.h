// Which rule a pair of element types follows under a record: every pair with every method. The runs of one source type are
// instantiated in one file, from_*.cpp.
#pragma once

#include <array>
#include <utility>

#include "MNumericArray/Convert/complex_rules.h"
#include "MNumericArray/Convert/element_run.h"
#include "MNumericArray/Convert/integer_rules.h"
#include "MNumericArray/Convert/pair_table.h"
#include "MNumericArray/Convert/real_rules.h"

namespace vlm::conversion {

/// The runs of S to T. `Form` makes the rule of the elements from that of their parts.
template <class S, class T, template <class, class, class> class Form> struct runs_of_pair {
  using from = part_t<S>;
  using to = part_t<T>;

  template <class Rule> static constexpr element_run* run = run_elements<Form<Rule, S, T>, S, T>;

  static element_run* choose(const convert_data& r) {
    const bool clip = (r.clip & 1) != 0;
    if constexpr (is_integer_element<from> && is_integer_element<to>) {
      return integer_to_integer(r.method, clip);
    } else if constexpr (is_integer_element<from>) {
      return integer_to_real_(r.method, clip);
    } else if constexpr (is_integer_element<to>) {
      return clip ? real_to_integer_<true>(r) : real_to_integer_<false>(r);
    } else if constexpr (element_of<to>::digits >= element_of<from>::digits) {
      return r.method == MNumericArrayConvertRound ? run<real_widened<from, to, true>>
                                                   : run<real_widened<from, to, false>>;
    } else {
      return clip ? narrowed<true>(r) : narrowed<false>(r);
    }
  }

 private:
  static element_run* integer_to_integer(int32_t method, bool clip) {
    if (method == MNumericArrayConvertScale) return run<integer_scale<from, to>>;
    // A clip that cannot happen is no instance of its own.
    constexpr bool may_clip = !integer_value<from, to, false>::never_refuses;
    return clip ? run<integer_value<from, to, may_clip>> : run<integer_value<from, to, false>>;
  }

  static element_run* integer_to_real_(int32_t method, bool clip) {
    if (method == MNumericArrayConvertScale) {
      constexpr bool may_clip = !integer_to_unit<from, to, false>::never_refuses;
      return clip ? run<integer_to_unit<from, to, may_clip>> : run<integer_to_unit<from, to, false>>;
    }
    constexpr bool exact = integer_to_real<from, to, true, false>::tests;
    if (method == MNumericArrayConvertCheck || method == MNumericArrayConvertCast) {
      return clip ? run<integer_to_real<from, to, exact, exact>>
                  : run<integer_to_real<from, to, exact, false>>;
    }
    constexpr bool may_clip = integer_to_real<from, to, false, false>::tests;
    return clip ? run<integer_to_real<from, to, false, may_clip>>
                : run<integer_to_real<from, to, false, false>>;
  }

  template <bool Clip> static element_run* real_to_integer_(const convert_data& r) {
    const tolerance_test<from> test(r.tolerance);
    const bool cut = test.signs_alone();
    switch (r.method) {
      case MNumericArrayConvertCast:
        return run_elements<refusal<S, T>, S, T>;
      case MNumericArrayConvertScale:
        return cut ? run<unit_to_integer<from, to, false, Clip>> : run<unit_to_integer<from, to, true, Clip>>;
      case MNumericArrayConvertRound:
        return cut ? run<real_to_integer<from, to, fraction::cut, Clip>>
                   : run<real_to_integer<from, to, fraction::rounded, Clip>>;
      default:
        if (cut) return run<real_to_integer<from, to, fraction::cut, Clip>>;
        return test.exact() ? run<real_to_integer<from, to, fraction::refused, Clip>>
                            : run<real_to_integer<from, to, fraction::tested, Clip>>;
    }
  }

  template <bool Clip> static element_run* narrowed(const convert_data& r) {
    switch (r.method) {
      case MNumericArrayConvertCheck:
      case MNumericArrayConvertCast:
        return tolerance_test<from>(r.tolerance).exact()
                   ? run<real_narrowed<from, to, narrowing::exact, Clip>>
                   : run<real_narrowed<from, to, narrowing::tested, Clip>>;
      case MNumericArrayConvertRound:
        return run<real_narrowed<from, to, narrowing::rounded, Clip>>;
      default:
        return run<real_narrowed<from, to, narrowing::free, Clip>>;
    }
  }
};

/// The run of S to T under a record whose method is a base method; null for two equal types that are copied.
template <class S, class T> element_run* run_of_pair(const convert_data& r) {
  if constexpr (std::is_same_v<S, T>) {
    if (is_integer_element<S> || r.method != MNumericArrayConvertRound) return nullptr;
  }
  if constexpr (std::is_same_v<S, T> && is_integer_element<S>) {
    return nullptr;
  } else if constexpr (is_complex_element<S> && is_complex_element<T>) {
    return runs_of_pair<S, T, of_both_parts>::choose(r);
  } else if constexpr (is_complex_element<S>) {
    return runs_of_pair<S, T, of_real_part>::choose(r);
  } else if constexpr (is_complex_element<T>) {
    return runs_of_pair<S, T, with_zero_imaginary>::choose(r);
  } else {
    return runs_of_pair<S, T, as_is>::choose(r);
  }
}

template <class S>
constinit const run_row runs_from<S>::row = []<int32_t... I>(std::integer_sequence<int32_t, I...>) {
  return run_row{run_of_pair<S, element_t<I + 1>>...};
}
(std::make_integer_sequence<int32_t, element_type_count>{});

}  // namespace vlm::conversion
