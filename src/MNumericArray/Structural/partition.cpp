// Windows over the first dimensions.
#include <algorithm>

#include "MNumericArray/Structural/block_copy.h"
#include "MNumericArray/Structural/result_array.h"
#include "velorim/status.h"
#include "velorim/structural.h"

namespace {

const mint* entries(const MNumericArray* array) { return static_cast<const mint*>(array->data); }

bool is_integer_vector(const MNumericArray* array) {
  return array->elementType == MNumericArrayTypeInteger64 && array->rank == 1;
}

int32_t check_partition(const MNumericArray* source, const MNumericArray* sizes,
                        const MNumericArray* offsets) {
  if (sizes->elementType != MNumericArrayTypeInteger64 || offsets->elementType != MNumericArrayTypeInteger64)
    return LibraryTypeError;
  if (!is_integer_vector(sizes) || !is_integer_vector(offsets) ||
      sizes->flattenedLength != offsets->flattenedLength || sizes->flattenedLength > source->rank)
    return LibraryRankError;
  for (mint i = 0; i < sizes->flattenedLength; ++i) {
    if (entries(sizes)[i] < 0 || entries(offsets)[i] < 1) return LibraryDimensionError;
  }
  return source->flattenedLength < 1 ? LibraryDimensionError : 0;
}

mint window_count(mint d, mint size, mint offset) {
  const __int128 count = (static_cast<__int128>(d) - size + offset) / offset;
  return static_cast<mint>(std::max<__int128>(count, 0));
}

/// Whether every row of a dimension lies in some window. There is at least one window, and its size is not 0.
bool covers(mint d, mint size, mint offset, mint windows) {
  return (windows == 1 || offset <= size) && (windows - 1) * offset + size >= d;
}

}  // namespace

int32_t MNumericArray_partition(MNumericArray** target, const MNumericArray* source,
                                const MNumericArray* sizes, const MNumericArray* offsets) VLM_NOEXCEPT {
  if (target == nullptr || source == nullptr || sizes == nullptr || offsets == nullptr)
    return ArrayStatusNullArgument;
  if (const int32_t bad = check_partition(source, sizes, offsets)) return bad;
  const mint n = sizes->flattenedLength, rank = source->rank + n;
  const mint* const size = entries(sizes);
  const mint* const offset = entries(offsets);
  vlm::memory::working_space<mint> dims(static_cast<uint64_t>(rank), FailReport);
  vlm::block_copy box(2 * n + 1);
  if (!dims || !box.ready()) return ArrayStatusNoMemory;
  bool empty = false, covered = true;
  for (mint i = 0; i < n; ++i) {
    const mint windows = window_count(source->dims[i], size[i], offset[i]);
    dims[static_cast<uint64_t>(i)] = windows;
    empty = empty || windows == 0 || size[i] == 0;
    covered = covered && (i + 1 == n || empty || covers(source->dims[i], size[i], offset[i], windows));
  }
  std::copy_n(size, n, dims.begin() + n);
  std::copy(source->dims + n, source->dims + source->rank, dims.begin() + 2 * n);
  if (!empty && !covered) return LibraryNumericalError;

  const MNumericArray* const read[] = {source, sizes, offsets};
  vlm::result_array result(target, read);
  const int32_t status =
      result.allocate(static_cast<int32_t>(source->elementType), rank, rank == 0 ? nullptr : dims.data());
  if (status != ArrayStatusOk) return status;
  MNumericArray* const made = result.get();
  if (made->flattenedLength == 0) return result.commit();
  // The windows come first, then the places within a window, then what is behind them.
  mint target_stride = made->flattenedLength, stride = source->flattenedLength;
  for (mint i = 0; i < n; ++i) {
    stride /= source->dims[i];
    target_stride /= dims[static_cast<uint64_t>(i)];
    box.add(dims[static_cast<uint64_t>(i)], target_stride, offset[i] * stride);
  }
  stride = source->flattenedLength;
  for (mint i = 0; i < n; ++i) {
    stride /= source->dims[i];
    target_stride /= size[i];
    box.add(size[i], target_stride, stride);
  }
  box.add(stride, 1, 1);
  box.run(made->data, source->data, vlm::element_bytes_of(source));
  return result.commit();
}

int32_t TensorPartition(MTensor** target, const MTensor* source, const MTensor* sizes,
                        const MTensor* offsets) VLM_NOEXCEPT {
  return MNumericArray_partition(target, source, sizes, offsets);
}
