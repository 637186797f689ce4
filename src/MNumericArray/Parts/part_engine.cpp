// The walk over a selection. Each level has a place on the walked side, which the specification gives, and a step on the other side: the
// result's rows when selecting, the value's when assigning, 0 where the value is broadcast. What lies behind the last list is a box and
// moves as one; the levels before it are walked.
#include <algorithm>

#include "Includes/assertion.h"
#include "MNumericArray/Copy/element_copy.h"
#include "MNumericArray/Structural/block_copy.h"
#include "MNumericArray/Structural/result_array.h"
#include "velorim/parts.h"

namespace {

/// Where the k-th selected index of a level lies, in elements, counted from the dimension's first.
mint offset_of(const PartSpec& spec, mint k) {
  switch (spec.kind) {
    case PartKindIndex:
      return (spec.indices[0] - 1) * spec.stride;
    case PartKindList:
      return (spec.indices[k] - 1) * spec.stride;
    case PartKindSpan:
      return (spec.indices[0] - 1 + k * spec.indices[2]) * spec.stride;
    default:
      return k * spec.stride;
  }
}

class part_walk {
 public:
  /// `walked` is the array that the specifications select from or assign to, `other` the array of the result or value.
  part_walk(bool selects, const PartSpec* specs, const mint* other_steps, vlm::block_copy& box, mint lists,
            mint element_bytes)
      : selects_(selects),
        specs_(specs),
        other_steps_(other_steps),
        box_(box),
        lists_(lists),
        bytes_(element_bytes) {}

  void run(mint level, char* walked, char* other) const {
    if (level == lists_) {
      selects_ ? box_.run(other, walked, bytes_) : box_.run(walked, other, bytes_);
      return;
    }
    const PartSpec& spec = specs_[level];
    const mint step = other_steps_[level];
    if (level + 1 == lists_ && box_.is_one_element()) return single_elements(spec, walked, other, step);
    for (mint k = 0; k < spec.count; ++k)
      run(level + 1, walked + offset_of(spec, k) * bytes_, other + k * step * bytes_);
  }

 private:
  /// The innermost list, element by element.
  void single_elements(const PartSpec& spec, char* walked, char* other, mint step) const {
    vlm::with_width(bytes_, [&]<int W>() {
      auto* const at = reinterpret_cast<vlm::carrier_t<W>*>(walked);
      auto* const to = reinterpret_cast<vlm::carrier_t<W>*>(other);
      const mint stride = spec.stride;
      for (mint k = 0; k < spec.count; ++k) {
        const mint place = (spec.indices[k] - 1) * stride;
        if (selects_) {
          to[k * step] = at[place];
        } else {
          at[place] = to[k * step];
        }
      }
    });
  }

  bool selects_;
  const PartSpec* specs_;
  const mint* other_steps_;
  vlm::block_copy& box_;
  mint lists_;  ///< levels up to and including the last list
  mint bytes_;
};

/// Elements from one selected index to the next in the result of a selection.
void result_steps(mint n, const PartSpec* specs, mint block, mint* steps) {
  mint step = block;
  for (mint i = n - 1; i >= 0; --i) {
    steps[i] = specs[i].kind == PartKindIndex ? 0 : step;
    if (specs[i].kind != PartKindIndex) step *= specs[i].count;
  }
}

/// The same in a value: 0 for a level that no dimension of the value matches.
void value_steps(const MTensor* value, mint n, const PartSpec* specs, mint* steps) {
  mint step = value->flattenedLength, matched = 0;
  for (mint i = 0; i < n; ++i) {
    steps[i] = 0;
    if (specs[i].kind == PartKindIndex || matched >= value->rank || value->dims[matched] != specs[i].count)
      continue;
    step /= value->dims[matched++];
    steps[i] = step;
  }
}

}  // namespace

namespace vlm {

bool move_parts(const MTensor* from, MTensor* to, mint n, const PartSpec* specs, bool selects) {
  if (std::any_of(specs, specs + n, [](const PartSpec& spec) { return spec.count < 1; })) return true;
  const MTensor* const walked = selects ? from : to;
  const mint bytes = element_bytes_of(walked);
  if (bytes == 0 || walked->flattenedLength == 0) return true;
  memory::small_space<mint, 8> steps(static_cast<uint64_t>(n), FailReport);
  block_copy box(n + 1);
  if (!steps || !box.ready()) return false;
  const mint block = n > 0 ? specs[n - 1].stride : walked->flattenedLength;
  selects ? result_steps(n, specs, block, steps.data()) : value_steps(from, n, specs, steps.data());
  mint lists = n;
  while (lists > 0 && specs[lists - 1].kind != PartKindList) --lists;
  mint first = 0;
  for (mint i = lists; i < n; ++i) {
    first += offset_of(specs[i], 0);
    if (specs[i].kind == PartKindIndex) continue;
    const mint walked_step = specs[i].count > 1 ? offset_of(specs[i], 1) - offset_of(specs[i], 0) : 0;
    const mint other_step = steps[static_cast<uint64_t>(i)];
    box.add(specs[i].count, selects ? other_step : walked_step, selects ? walked_step : other_step);
  }
  box.add(block, 1, 1);
  part_walk(selects, specs, steps.data(), box, lists, bytes)
      .run(0, static_cast<char*>(walked->data) + first * bytes,
           static_cast<char*>(selects ? to->data : from->data));
  return true;
}

}  // namespace vlm
