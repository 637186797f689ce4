// Take and drop.
#include <algorithm>

#include "MNumericArray/Copy/element_copy.h"
#include "MNumericArray/Structural/block_copy.h"
#include "MNumericArray/Structural/result_array.h"
#include "MNumericArray/Structural/sequence_specification.h"

namespace {

using vlm::memory::working_space;

/// The dimensions of a result whose first n differ from the source's; status as that of the operation.
template <class Dimension>
int32_t new_result(MNumericArray** target, const MNumericArray* source, mint n, Dimension dimension) {
  working_space<mint> dims(static_cast<uint64_t>(source->rank), FailReport);
  if (!dims) return ArrayStatusNoMemory;
  for (mint i = 0; i < source->rank; ++i) {
    dims[static_cast<uint64_t>(i)] = i < n ? dimension(i) : source->dims[i];
  }
  MNumericArray* const made = MNumericArray_newAllocatedCommon(static_cast<int32_t>(source->elementType),
                                                               source->rank, dims.data(), FailReport);
  if (made == nullptr) return ArrayStatusNoMemory;
  *target = made;
  return ArrayStatusOk;
}

int32_t check_arguments(MNumericArray** target, const MNumericArray* source, mint n, const mint* starts,
                        const mint* ends, const mint* steps) {
  if (target == nullptr || source == nullptr) return ArrayStatusNullArgument;
  if (n > source->rank) return LibraryRankError;
  return n > 0 && (starts == nullptr || ends == nullptr || steps == nullptr) ? LibraryNumericalError : 0;
}

/// The index tuples in which no index is a dropped one, copied in row-major order.
class drop_walk {
 public:
  drop_walk(const vlm::sequence_list& dropped, mint n, const MNumericArray* source, char* target)
      : dropped_(dropped), n_(n), source_(source), bytes_(vlm::element_bytes_of(source)), target_(target) {}

  void run(mint level, const char* from) {
    const vlm::sequence& drop = dropped_[level];
    mint next = 0;  // zero-based, as `dropped` below
    for (mint k = 0; k < drop.count; ++k) {
      const mint dropped = drop.start - 1 + k * drop.step;
      keep(level, from, next, dropped - next);
      next = dropped + 1;
    }
    keep(level, from, next, source_->dims[level] - next);
  }

 private:
  void keep(mint level, const char* from, mint first, mint count) {
    const mint stride = dropped_[level].stride;
    if (level + 1 == n_) {
      vlm::copy_run(target_, from + first * stride * bytes_, count * stride, bytes_);
      target_ += std::max<mint>(count, 0) * stride * bytes_;
      return;
    }
    for (mint i = first; i < first + count; ++i) run(level + 1, from + i * stride * bytes_);
  }

  const vlm::sequence_list& dropped_;
  mint n_;
  const MNumericArray* source_;
  mint bytes_;
  char* target_;
};

}  // namespace

int32_t MNumericArray_take(MNumericArray** target, const MNumericArray* source, mint n, const mint* starts,
                           const mint* ends, const mint* steps, const uint32_t* flags) VLM_NOEXCEPT {
  n = std::max<mint>(n, 0);
  if (const int32_t bad = check_arguments(target, source, n, starts, ends, steps)) return bad;
  vlm::sequence_list taken(source, n);
  if (const int32_t bad = taken.normalize(starts, ends, steps, flags)) return bad;
  vlm::block_copy box(n + 1);
  if (!box.ready()) return ArrayStatusNoMemory;
  const int32_t status = new_result(target, source, n, [&](mint i) { return taken[i].count; });
  if (status != ArrayStatusOk || (*target)->flattenedLength == 0) return status;
  mint first = 0, target_stride = (*target)->flattenedLength;
  for (mint i = 0; i < n; ++i) {
    const vlm::sequence& item = taken[i];
    target_stride /= item.count;
    first += (item.start - 1) * item.stride;
    box.add(item.count, target_stride, item.step * item.stride);
  }
  box.add(target_stride, 1, 1);
  const mint bytes = vlm::element_bytes_of(source);
  box.run((*target)->data, static_cast<const char*>(source->data) + first * bytes, bytes);
  return ArrayStatusOk;
}

int32_t MNumericArray_drop(MNumericArray** target, const MNumericArray* source, mint n, const mint* starts,
                           const mint* ends, const mint* steps, const uint32_t* flags) VLM_NOEXCEPT {
  n = std::max<mint>(n, 0);
  if (const int32_t bad = check_arguments(target, source, n, starts, ends, steps)) return bad;
  vlm::sequence_list dropped(source, n);
  if (const int32_t bad = dropped.normalize(starts, ends, steps, flags)) return bad;
  const int32_t status =
      new_result(target, source, n, [&](mint i) { return source->dims[i] - dropped[i].count; });
  if (status != ArrayStatusOk || (*target)->flattenedLength == 0) return status;
  for (mint i = 0; i < n; ++i) {
    vlm::sequence& item = dropped[i];
    if (item.step > 0) continue;
    item.start += (item.count - 1) * item.step;
    item.step = -item.step;
  }
  if (n == 0) {
    vlm::copy_run((*target)->data, source->data, source->flattenedLength, vlm::element_bytes_of(source));
  } else {
    drop_walk(dropped, n, source, static_cast<char*>((*target)->data))
        .run(0, static_cast<const char*>(source->data));
  }
  return ArrayStatusOk;
}

int32_t Runtime_MNumericArray_TakeDrop(MNumericArray** target, const MNumericArray* source, mint n,
                                       const int64_t* specs, int32_t take) VLM_NOEXCEPT {
  if (n > 0 && specs == nullptr) return LibraryNumericalError;
  n = std::max<mint>(n, 0);
  working_space<mint> limits(3 * static_cast<uint64_t>(n), FailReport);
  working_space<uint32_t> flags(static_cast<uint64_t>(n), FailReport);
  if (!limits || !flags) return ArrayStatusNoMemory;
  mint* const starts = limits.data();
  mint* const ends = starts + n;
  mint* const steps = ends + n;
  for (mint i = 0; i < n; ++i) {
    const int64_t kind = specs[2 * i], value = specs[2 * i + 1];
    steps[i] = 1;
    flags[static_cast<uint64_t>(i)] = kind == -1 ? SequenceClampStart : 0;
    if (kind != 1) {
      starts[i] = value < 0 ? value : 1;
      ends[i] = value < 0 ? -1 : value;
      continue;
    }
    const auto* const list = reinterpret_cast<const MTensor*>(value);
    if (list == nullptr || list->rank != 1 || list->elementType != MNumericArrayTypeInteger64 ||
        list->flattenedLength > 3)
      return LibraryNumericalError;
    const auto* const v = static_cast<const mint*>(list->data);
    const mint length = list->flattenedLength;
    starts[i] = length == 0 ? 1 : v[0];
    ends[i] = length == 0 ? 0 : v[length == 1 ? 0 : 1];
    if (length == 3) steps[i] = v[2];
  }
  return (take != 0 ? MNumericArray_take : MNumericArray_drop)(target, source, n, starts, ends, steps,
                                                               flags.data());
}

int32_t MTensor_take(MTensor** target, const MTensor* source, mint n, const mint* starts, const mint* ends,
                     const mint* steps, const uint32_t* flags) VLM_NOEXCEPT {
  return MNumericArray_take(target, source, n, starts, ends, steps, flags);
}
int32_t MTensor_drop(MTensor** target, const MTensor* source, mint n, const mint* starts, const mint* ends,
                     const mint* steps, const uint32_t* flags) VLM_NOEXCEPT {
  return MNumericArray_drop(target, source, n, starts, ends, steps, flags);
}
