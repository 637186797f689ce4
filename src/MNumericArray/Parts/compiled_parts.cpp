// Parts as compiled code asks for them: kinds and values decoded, checked, then moved.
#include <algorithm>

#include "MNumericArray/Parts/part_engine.h"
#include "MNumericArray/Structural/result_array.h"
#include "Memory/working_space.h"
#include "velorim/array_services.h"
#include "velorim/parts.h"
#include "velorim/status.h"
#include "velorim/structural.h"

namespace {

using vlm::memory::working_space;

/// The tensor behind a value of kind list or span; null if it is no rank-1 integer tensor.
const MTensor* index_tensor(void* value) {
  if (value == nullptr) return nullptr;
  const MTensor* const tensor = *static_cast<MTensor* const*>(value);
  const bool fits =
      tensor != nullptr && tensor->rank == 1 && tensor->elementType == MNumericArrayTypeInteger64;
  return fits ? tensor : nullptr;
}

class decoded_parts {
 public:
  /// Decodes n specifications against the dimensions of an array: 0; 4 for one that is malformed; 403.
  int32_t decode(const MTensor* array, mint n, const uint32_t* kinds, void* const* values) {
    if (n < 0 || (n > 0 && (kinds == nullptr || values == nullptr))) return LibraryNumericalError;
    mint entries = 0;
    for (mint i = 0; i < n; ++i) {
      const mint needed = entries_of(kinds[i], values[i]);
      if (needed < 0) return LibraryNumericalError;
      entries += needed;
    }
    specs_ = working_space<PartSpec>(static_cast<uint64_t>(n), FailReport);
    indices_ = working_space<mint>(static_cast<uint64_t>(entries), FailReport);
    if (!specs_ || !indices_) return ArrayStatusNoMemory;
    mint* next = indices_.data();
    for (mint i = 0; i < n; ++i) {
      const mint d = i < array->rank ? array->dims[i] : 0;
      specs_[static_cast<uint64_t>(i)] = {kinds[i], 0, next, 0, 0};
      fill(specs_[static_cast<uint64_t>(i)], d, values[i]);
      next += entries_of(kinds[i], values[i]);
    }
    return ArrayStatusOk;
  }
  PartSpec* specs() { return specs_.data(); }

 private:
  static constexpr mint span_entries = 4;

  /// Room that a specification needs; -1 if it is malformed.
  static mint entries_of(uint32_t kind, void* value) {
    const MTensor* const tensor =
        kind == PartKindList || kind == PartKindSpan ? index_tensor(value) : nullptr;
    switch (kind) {
      case PartKindIndex:
        return value == nullptr ? -1 : 1;
      case PartKindList:
        return tensor == nullptr ? -1 : tensor->flattenedLength;
      case PartKindAll:
        return 0;
      case PartKindSpan:
        return tensor == nullptr || tensor->flattenedLength < 1 || tensor->flattenedLength > span_entries
                   ? -1
                   : span_entries;
      default:
        return -1;
    }
  }

  static void fill(PartSpec& spec, mint d, void* value) {
    if (spec.kind == PartKindIndex) {
      spec.count = 1;
      spec.indices[0] = *static_cast<const mint*>(value);
    } else if (spec.kind == PartKindAll) {
      spec.count = d;
    } else {
      const MTensor* const tensor = index_tensor(value);
      const mint length = tensor->flattenedLength;
      const mint* const v = static_cast<const mint*>(tensor->data);
      if (spec.kind == PartKindList) {
        spec.count = length;
        std::copy_n(v, length, spec.indices);
      } else {
        fill_span(spec, d, v, length);
      }
    }
  }

  static void fill_span(PartSpec& spec, mint d, const mint* v, mint length) {
    const mint single_start = v[0] < 0 ? v[0] : 1, single_end = v[0] < 0 ? -1 : v[0];
    mint start = spec.indices[0] = length == 1 ? single_start : v[0];
    mint end = spec.indices[1] = length == 1 ? single_end : v[1];
    mint step = spec.indices[2] = length >= 3 ? v[2] : 1;
    spec.indices[3] = length == 4 ? v[3] : 0;
    // Normalised apart: the check wants what was given.
    if (!NormalizeSeqSpec(d, static_cast<uint32_t>(spec.indices[3]), &start, &end, &step, &spec.count))
      spec.count = -1;
  }

  working_space<PartSpec> specs_{0};
  working_space<mint> indices_{0};
};

/// Tells an empty selection from an index 0 in the innermost place, which the check gives the same rank.
bool has_empty_level(mint n, const PartSpec* specs) {
  return std::any_of(specs, specs + n, [](const PartSpec& spec) { return spec.count == 0; });
}

/// The rank of a selection whose result is empty, where the check tells no rank.
mint rank_of_empty(mint rank, mint n, const PartSpec* specs) {
  const auto index_levels =
      std::count_if(specs, specs + n, [](const PartSpec& spec) { return spec.kind == PartKindIndex; });
  return n - index_levels + std::max<mint>(rank - n, 0);
}

/// Counts of the levels that keep their dimension, then the dimensions behind. False for a count that is none.
bool result_dimensions(const MTensor* source, mint n, const PartSpec* specs, working_space<mint>& dims) {
  uint64_t filled = 0;
  for (mint i = 0; i < n; ++i) {
    if (specs[i].kind == PartKindIndex) continue;
    if (specs[i].count < 0) return false;
    dims[filled++] = specs[i].count;
  }
  for (mint i = n; i < source->rank; ++i) dims[filled++] = source->dims[i];
  return true;
}

}  // namespace

int32_t Tensor_select_or_set_part(const MTensor* from, MTensor* to, mint n, PartSpec* specs,
                                  int32_t mode) VLM_NOEXCEPT {
  // The engine's working space is small; without it the process cannot honour a call that always succeeds.
  if (!vlm::move_parts(from, to, n, specs, mode != 0)) nomem();
  return 1;
}

int32_t NumericArray_select_or_set_part(const MNumericArray* from, MNumericArray* to, mint n, PartSpec* specs,
                                        int32_t mode) VLM_NOEXCEPT {
  return Tensor_select_or_set_part(from, to, n, specs, mode);
}

int32_t CompiledCollectedPart(MTensor** target, const MTensor* source, mint resultRank, mint n,
                              const uint32_t* kinds, void* const* values) VLM_NOEXCEPT {
  if (target == nullptr || source == nullptr) return ArrayStatusNullArgument;
  decoded_parts parts;
  if (const int32_t bad = parts.decode(source, n, kinds, values)) return bad;
  mint rank = 0;
  if (!part_check_tensor_dims_impl(source->rank, source->dims, n, parts.specs(), &rank, nullptr))
    return LibraryNumericalError;
  if (rank == -1 && has_empty_level(n, parts.specs())) rank = rank_of_empty(source->rank, n, parts.specs());
  if (rank < 0 || rank != resultRank) return LibraryNumericalError;
  working_space<mint> dims(static_cast<uint64_t>(rank), FailReport);
  if (!dims) return ArrayStatusNoMemory;
  if (!result_dimensions(source, n, parts.specs(), dims)) return LibraryNumericalError;
  vlm::result_array result(target, source);
  const int32_t status = result.allocate(static_cast<int32_t>(source->elementType), rank, dims.data());
  if (status != ArrayStatusOk) return status;
  if (!vlm::move_parts(source, result.get(), n, parts.specs(), true)) return ArrayStatusNoMemory;
  return result.commit();
}

int32_t CompiledCollectedSetPart(const MTensor* value, MTensor* target, mint, mint n, const uint32_t* kinds,
                                 void* const* values) VLM_NOEXCEPT {
  if (target == nullptr || value == nullptr) return ArrayStatusNullArgument;
  decoded_parts parts;
  if (const int32_t bad = parts.decode(target, n, kinds, values)) return bad;
  if (setpart_check_tensor_impl(target, value, n, parts.specs(), nullptr) != 1) return LibraryNumericalError;
  MTensor* copy = nullptr;
  if (value == target) {
    const int32_t status = MNumericArray_makeCopyCommon(&copy, value, FailReport);
    if (status != ArrayStatusOk) return status;
  }
  const bool moved = vlm::move_parts(copy != nullptr ? copy : value, target, n, parts.specs(), false);
  MNumericArray_delete(copy);
  return moved ? ArrayStatusOk : ArrayStatusNoMemory;
}

int32_t MNumericArray_getParts(MNumericArray* existing, MNumericArray** result, const MNumericArray* source,
                               mint resultRank, mint n, const uint32_t* kinds,
                               void* const* values) VLM_NOEXCEPT {
  MNumericArray* array = existing;
  if (result == nullptr || CompiledCollectedPart(&array, source, resultRank, n, kinds, values) != 0) return 1;
  *result = array;
  return 0;
}

int32_t MNumericArray_setParts(MNumericArray* target, const MNumericArray* value, mint resultRank, mint n,
                               const uint32_t* kinds, void* const* values) VLM_NOEXCEPT {
  return CompiledCollectedSetPart(value, target, resultRank, n, kinds, values) != 0;
}

int32_t CompiledGetTensorElement(MTensor** target, const MTensor* source, mint depth,
                                 mint index) VLM_NOEXCEPT {
  if (target == nullptr || source == nullptr) return ArrayStatusNullArgument;
  if (depth < 0 || depth > source->rank) return LibraryRankError;
  mint blocks = 1;
  for (mint i = 0; i < depth; ++i) blocks *= source->dims[i];
  if (index < 0 || index >= blocks) return LibraryDimensionError;
  vlm::result_array result(target, source);
  if (result.allocate(static_cast<int32_t>(source->elementType), source->rank - depth,
                      source->dims + depth) != 0)
    return LibraryMemoryError;
  const mint length = result.get()->flattenedLength;
  MNumericArray_copyContiguousData(result.get(), 0, source, index * length, length);
  return result.commit();
}
