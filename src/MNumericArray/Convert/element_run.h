// The one loop of the conversions: a rule over adjacent elements, block by block. A first pass over a block asks whether any
// element is refused and does nothing else, a second one computes; both fill registers, and the source is still near when the
// second reads it. A block with a refused element goes a cold way that ends in front of it.
#pragma once

#include <algorithm>
#include <type_traits>

#include "Arithmetic/Kernels/runs.h"
#include "velorim/conversion.h"

namespace vlm::conversion {

/// How far a run came: `accepted` elements were converted, all of them or up to the first that is refused; `written` is one more if
/// that one was written as well.
struct outcome {
  mint accepted;
  mint written;
};

using element_run = outcome(const MNumericArrayConvertData& record, void* target, const void* source,
                            mint count);

/// Elements of a block.
inline constexpr mint block_length = machine_function::block_length;

/// Whether the predicate, which has no branches, holds for all of the elements.
template <class S, class Predicate> bool holds_for_all(const S* source, mint n, Predicate&& predicate) {
  // Marks as wide as the numbers compared, so that the loop need not change the width of its registers.
  using mark = std::conditional_t<
      sizeof(S) == 1, uint8_t,
      std::conditional_t<sizeof(S) == 2, uint16_t, std::conditional_t<sizeof(S) == 4, uint32_t, uint64_t>>>;
  constexpr mark yes = static_cast<mark>(~mark{0});
  mark all = yes;
  for (mint i = 0; i < n; ++i) all &= predicate(source[i]) ? yes : mark{0};
  return all == yes;
}

/// A rule whose test is dear tells which elements pass it plainly; most blocks have no others.
template <class Rule, class S> bool any_refused(const Rule& rule, const S* source, mint n) {
  if constexpr (requires { rule.plainly_accepts(*source); }) {
    if (holds_for_all(source, n, [&](S x) { return rule.plainly_accepts(x); })) return false;
  }
  return !holds_for_all(source, n, [&](S x) { return rule.accepts(x); });
}

template <class Rule, class S, class T>
void convert_accepted(const Rule& rule, T* target, const S* source, mint n) {
  VELORIM_INDEPENDENT
  for (mint i = 0; i < n; ++i) target[i] = rule.value(source[i]);
}

/// A block with a refused element.
template <class Rule, class S, class T>
[[gnu::cold, gnu::noinline]] outcome convert_up_to_refused(const Rule& rule, T* target, const S* source) {
  mint i = 0;
  for (; rule.accepts(source[i]); ++i) target[i] = rule.value(source[i]);
  if constexpr (requires { rule.stores_refused(*source); }) {
    if (rule.stores_refused(source[i])) {
      target[i] = rule.value(source[i]);
      return {i, i + 1};
    }
  }
  return {i, i};
}

template <class Rule, class S, class T>
outcome run_elements(const MNumericArrayConvertData& record, void* to, const void* from, mint count) {
  auto* const target = static_cast<T*>(to);
  const auto* const source = static_cast<const S*>(from);
  const Rule rule(record);
  if constexpr (Rule::never_refuses) {
    convert_accepted(rule, target, source, count);
  } else {
    for (mint first = 0; first < count; first += block_length) {
      const mint length = std::min(block_length, count - first);
      if (any_refused(rule, source + first, length)) [[unlikely]] {
        const outcome last = convert_up_to_refused(rule, target + first, source + first);
        return {first + last.accepted, first + last.written};
      }
      convert_accepted(rule, target + first, source + first, length);
    }
  }
  return {count, count};
}

}  // namespace vlm::conversion
