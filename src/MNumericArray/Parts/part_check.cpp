// Whether part specifications fit an array, before anything moves. The checks normalise the specifications as they go.
#include <algorithm>
#include <limits>

#include "MNumericArray/Allocate/array_record.h"
#include "velorim/parts.h"
#include "velorim/structural.h"

namespace {

void report(PartCheckError* error, const char* tag, mint first, mint second) {
  if (error == nullptr) return;
  error->first = first;
  error->second = second;
  if (error->report != nullptr) error->report(tag, error);
}

bool has_entries(const PartSpec& spec) { return spec.kind == PartKindIndex || spec.kind == PartKindList; }

/// Strides of the dimensions from the first on.
class stride_walk {
 public:
  stride_walk(mint rank, const mint* dims) : dims_(dims) {
    for (mint i = 1; i < rank; ++i) stride_ *= dims[i];
  }
  /// That of dimension i; called for 0, 1, 2 and so on.
  mint at(mint i) {
    if (i > 0) stride_ = dims_[i] == 0 ? 0 : stride_ / dims_[i];
    return stride_;
  }

 private:
  const mint* dims_;
  mint stride_ = 1;
};

enum class outcome { fits, empty, invalid };

/// What one level selects of a dimension of length d; entries of lists are not looked at.
outcome settle_count(PartSpec& spec, mint d, PartCheckError* error) {
  switch (spec.kind) {
    case PartKindIndex:
      spec.count = 1;
      return outcome::fits;
    case PartKindList:
      return spec.count == 0 ? outcome::empty : outcome::fits;
    case PartKindAll:
      spec.count = d;
      return outcome::fits;
    case PartKindSpan: {
      const mint start = spec.indices[0], end = spec.indices[1];
      if (!NormalizeSeqSpec(d, static_cast<uint32_t>(spec.indices[3]), spec.indices, spec.indices + 1,
                            spec.indices + 2, &spec.count)) {
        report(error, "take", start, end);
        return outcome::invalid;
      }
      return spec.count == 0 ? outcome::empty : outcome::fits;
    }
    default:
      return outcome::invalid;
  }
}

/// Makes the entries of a level positive. `least` is the least entry allowed once d + 1 was added to a negative one. False, with a
/// report, if one lies outside; sees_zero is set if one is 0.
bool normalize_entries(PartSpec& spec, mint d, mint least, bool& sees_zero, PartCheckError* error) {
  for (mint k = 0; k < spec.count; ++k) {
    const mint given = spec.indices[k];
    const mint entry = given < 0 ? given + d + 1 : given;
    if (entry > d || (given < 0 && entry < least)) {
      report(error, "partw", given, error == nullptr ? 0 : error->second);
      return false;
    }
    sees_zero = sees_zero || entry == 0;
    spec.indices[k] = entry;
  }
  return true;
}

/// A specification behind the last dimension that asks for a head or for nothing.
bool selects_no_element(const PartSpec& spec) {
  return (spec.kind == PartKindIndex && spec.indices[0] == 0) || spec.kind == PartKindAll ||
         (spec.kind == PartKindList && spec.count == 0);
}

}  // namespace

int32_t part_check_tensor_dims_impl(mint rank, const mint* dims, mint n, PartSpec* specs, mint* resultRank,
                                    PartCheckError* error) VLM_NOEXCEPT {
  constexpr mint undecided = std::numeric_limits<mint>::max(), empty_result = -1, head = -2;
  *resultRank = undecided;
  mint limit = rank, index_levels = 0;
  stride_walk strides(rank, dims);
  for (mint i = 0; i < std::min(n, limit); ++i) {
    PartSpec& spec = specs[i];
    const mint d = dims[i];
    if (d == 0) return 0;
    spec.stride = strides.at(i);
    index_levels += spec.kind == PartKindIndex;
    const outcome selected = settle_count(spec, d, error);
    if (selected == outcome::invalid) return 0;
    if (selected == outcome::empty) {
      if (*resultRank >= 0) *resultRank = empty_result;
      return 1;
    }
    bool sees_zero = false;
    if (has_entries(spec) && !normalize_entries(spec, d, 1, sees_zero, error)) return 0;
    if (sees_zero) {
      const bool innermost = i + 1 == rank && i + 1 == n;
      *resultRank = std::min(*resultRank, innermost ? empty_result : head);
      if (!innermost) limit = i + 1;
    }
  }
  if (n > limit) {
    if (!selects_no_element(specs[limit])) {
      report(error, "partd", error == nullptr ? 0 : error->first, error == nullptr ? 0 : error->second);
      return 0;
    }
    *resultRank = head;
    return 1;
  }
  if (*resultRank == undecided) *resultRank = rank - index_levels;
  return 1;
}

int32_t setpart_check_tensor_impl(const MTensor* target, const MTensor* value, mint n, PartSpec* specs,
                                  PartCheckError* error) VLM_NOEXCEPT {
  constexpr int32_t invalid = 0, fits = 1, bad_value = 2;
  const mint rank = target->rank;
  const auto too_deep = [error] {
    report(error, "partd", error == nullptr ? 0 : error->first, error == nullptr ? 0 : error->second);
    return invalid;
  };
  stride_walk strides(rank, target->dims);
  mint matched = 0;  // dimensions of the value that levels run along
  bool sees_zero = false;
  for (mint i = 0; i < n; ++i) {
    if (i >= rank) return too_deep();
    PartSpec& spec = specs[i];
    const mint d = target->dims[i];
    if (d == 0) return invalid;
    spec.stride = strides.at(i);
    const outcome selected = settle_count(spec, d, error);
    if (selected == outcome::invalid) return invalid;
    if (selected == outcome::empty) return fits;
    if (has_entries(spec)) {
      bool zero_here = false;
      if (!normalize_entries(spec, d, 0, zero_here, error)) return invalid;
      if (zero_here && n - 1 - i >= 2) return too_deep();
      sees_zero = sees_zero || zero_here;
    }
    if (spec.kind != PartKindIndex && matched < value->rank && value->dims[matched] == spec.count) ++matched;
  }
  if (sees_zero || target->elementType != value->elementType) return bad_value;
  if (value->rank - matched != rank - n) return bad_value;
  return std::equal(value->dims + matched, value->dims + value->rank, target->dims + n) ? fits : bad_value;
}
