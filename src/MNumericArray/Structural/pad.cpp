// Padding: a cyclic pattern with the source laid over it.
#include <algorithm>
#include <cstring>
#include <limits>

#include "MNumericArray/Copy/element_copy.h"
#include "MNumericArray/Structural/block_copy.h"
#include "MNumericArray/Structural/result_array.h"
#include "velorim/status.h"
#include "velorim/structural.h"

namespace {

using wide = __int128;

/// The source's place in one dimension of the result, zero-based.
struct overlay {
  mint target_first;
  mint source_first;
  mint count;
};

overlay place_source(mint size, mint margin, mint length) {
  const wide n = size < 0 ? -wide{size} : wide{size}, m = margin;
  const wide first = size > 0 ? n - m - length : m;
  const wide last = size > 0 ? std::min(n, n - m) : std::min(n, m + length);
  const wide from = std::max<wide>(first, 0);
  if (last <= from) return {0, 0, 0};
  return {static_cast<mint>(from), static_cast<mint>(from - first), static_cast<mint>(last - from)};
}

/// The position where the pattern's first element lands, in 0 to length - 1.
mint phase_of(mint size, mint margin, mint length) {
  const wide k = size > 0 ? wide{size} - margin : wide{margin};
  const wide remainder = k % length;
  return static_cast<mint>(remainder < 0 ? remainder + length : remainder);
}

/// Fills the result with the padding, repeated cyclically in every dimension.
class pattern_fill {
 public:
  pattern_fill(const MNumericArray* result, const MNumericArray* padding, const mint* sizes,
               const mint* margins)
      : result_(result),
        padding_(padding),
        sizes_(sizes),
        margins_(margins),
        bytes_(vlm::element_bytes_of(result)) {}

  void run() const {
    level(0, static_cast<char*>(result_->data), static_cast<const char*>(padding_->data),
          result_->flattenedLength, padding_->flattenedLength);
  }

 private:
  /// The rows of one period are made; the others repeat them, in blocks that double.
  void level(mint i, char* target, const char* pattern, mint length, mint pattern_length) const {
    if (i == result_->rank) {
      std::memcpy(target, pattern, static_cast<size_t>(bytes_));
      return;
    }
    const mint n = result_->dims[i], row = length / n * bytes_;
    const mint period = padding_->rank == 0 ? 1 : padding_->dims[i];
    const mint pattern_row = pattern_length / period * bytes_, k = phase_of(sizes_[i], margins_[i], period);
    const mint made = std::min(n, period);
    for (mint j = 0; j < made; ++j) {
      const mint from = j >= k ? j - k : j - k + period;
      level(i + 1, target + j * row, pattern + from * pattern_row, length / n, pattern_length / period);
    }
    for (mint rows = made; rows < n;) {
      const mint more = std::min(rows, n - rows);
      std::memcpy(target + rows * row, target, static_cast<size_t>(more * row));
      rows += more;
    }
  }

  const MNumericArray* result_;
  const MNumericArray* padding_;
  const mint* sizes_;
  const mint* margins_;
  mint bytes_;
};

int32_t check_pad(const MTensor* source, const MTensor* padding, const mint* sizes, const mint* margins) {
  if (source == nullptr || padding == nullptr) return ArrayStatusNullArgument;
  if (source->rank > 0 && (sizes == nullptr || margins == nullptr)) return ArrayStatusNullArgument;
  if (padding->rank != 0 && padding->rank != source->rank) return LibraryRankError;
  if (padding->elementType != source->elementType) return LibraryTypeError;
  if (!vlm::has_element_type(source)) return ArrayStatusBadType;
  for (mint i = 0; i < source->rank; ++i) {
    if (sizes[i] == 0) return LibraryDimensionError;
    if (sizes[i] == std::numeric_limits<mint>::min()) return ArrayStatusNoMemory;
  }
  return padding->flattenedLength == 0 ? LibraryDimensionError : 0;
}

}  // namespace

int32_t MTensor_pad(MTensor** target, const MTensor* source, const MTensor* padding, const mint* sizes,
                    const mint* margins) VLM_NOEXCEPT {
  if (target == nullptr) return ArrayStatusNullArgument;
  if (const int32_t bad = check_pad(source, padding, sizes, margins)) return bad;
  const mint rank = source->rank;
  vlm::memory::working_space<mint> dims(static_cast<uint64_t>(rank), FailReport);
  vlm::block_copy box(rank);
  if (!dims || !box.ready()) return ArrayStatusNoMemory;
  for (mint i = 0; i < rank; ++i) dims[static_cast<uint64_t>(i)] = std::abs(sizes[i]);

  const MNumericArray* const read[] = {source, padding};
  vlm::result_array result(target, read);
  const int32_t status = result.allocate(static_cast<int32_t>(source->elementType), rank, dims.data());
  if (status != ArrayStatusOk) return status;
  MNumericArray* const made = result.get();
  pattern_fill(made, padding, sizes, margins).run();

  mint target_first = 0, source_first = 0;
  mint target_stride = made->flattenedLength, source_stride = source->flattenedLength;
  for (mint i = 0; i < rank; ++i) {
    const overlay place = place_source(sizes[i], margins[i], source->dims[i]);
    target_stride /= made->dims[i];
    source_stride = source->dims[i] == 0 ? 0 : source_stride / source->dims[i];
    target_first += place.target_first * target_stride;
    source_first += place.source_first * source_stride;
    box.add(place.count, target_stride, source_stride);
  }
  const mint bytes = vlm::element_bytes_of(source);
  box.run(static_cast<char*>(made->data) + target_first * bytes,
          static_cast<const char*>(source->data) + source_first * bytes, bytes);
  return result.commit();
}
