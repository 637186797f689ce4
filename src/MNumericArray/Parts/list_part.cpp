// The gather of rows.
#include "MNumericArray/Parts/list_part.h"

#include <algorithm>
#include <atomic>

#include "MNumericArray/Copy/element_copy.h"
#include "MNumericArray/Structural/result_array.h"
#include "Memory/working_space.h"
#include "velorim/parts.h"
#include "velorim/status.h"

namespace {

constexpr vlm::parallel::length_pair check_lengths = {8192, 16384};

/// 0, or 3 if a position lies outside 1 to d.
int32_t check_positions(const mint* positions, mint count, mint d) {
  std::atomic<int32_t> status{0};
  const auto check = [&](mint first, mint length) {
    if (status.load(std::memory_order_relaxed) != 0) return;
    const bool bad = std::any_of(positions + first, positions + first + length,
                                 [d](mint position) { return position < 1 || position > d; });
    if (!bad) return;
#pragma omp critical(mna_part_data_check_error)
    if (status.load(std::memory_order_relaxed) == 0)
      status.store(LibraryDimensionError, std::memory_order_relaxed);
  };
  if (vlm::parallel::use_team(count, check_lengths.threshold)) {
    vlm::parallel::for_chunks(count, check_lengths.chunk, check);
  } else {
    check(0, count);
  }
  return status.load(std::memory_order_relaxed);
}

/// Rows of one element.
template <int W> void gather_elements(void* target, const void* source, const mint* positions, mint count) {
  auto* const to = static_cast<vlm::carrier_t<W>*>(target);
  const auto* const from = static_cast<const vlm::carrier_t<W>*>(source);
  vlm::over_elements(count, W, true, [=](mint first, mint length) {
    for (mint k = first; k < first + length; ++k) to[k] = from[positions[k] - 1];
  });
}

/// Rows of any length; neighbours that follow each other in the source move together.
void gather_rows(char* target, const char* source, const mint* positions, mint count, mint row,
                 mint element_bytes) {
  const mint row_bytes = row * element_bytes;
  const auto gather = [=](mint first, mint length) {
    for (mint k = first; k < first + length;) {
      mint together = 1;
      while (k + together < first + length && positions[k + together] == positions[k] + together) ++together;
      vlm::copy_run(target + k * row_bytes, source + (positions[k] - 1) * row_bytes, together * row,
                    element_bytes);
      k += together;
    }
  };
  const auto lengths = vlm::parallel::byte_lengths(element_bytes);
  if (vlm::parallel::use_team(count, lengths.threshold)) {
    vlm::parallel::for_chunks(count, lengths.chunk, gather);
  } else {
    gather(0, count);
  }
}

}  // namespace

namespace vlm {

int32_t list_part_unchecked(MNumericArray** target, const MNumericArray* source,
                            const MNumericArray* indices) {
  memory::working_space<mint> dims(static_cast<uint64_t>(source->rank), FailReport);
  if (!dims) return ArrayStatusNoMemory;
  std::copy_n(source->dims, source->rank, dims.begin());
  dims[0] = indices->flattenedLength;
  const MNumericArray* const read[] = {source, indices};
  result_array result(target, read);
  const int32_t status =
      result.allocate(static_cast<int32_t>(source->elementType), source->rank, dims.data());
  if (status != ArrayStatusOk || result.get()->flattenedLength == 0)
    return status != ArrayStatusOk ? status : result.commit();
  const auto* const positions = static_cast<const mint*>(indices->data);
  const mint count = indices->flattenedLength, row = source->flattenedLength / source->dims[0],
             bytes = element_bytes_of(source);
  char* const to = static_cast<char*>(result.get()->data);
  const char* const from = static_cast<const char*>(source->data);
  if (row == 1) {
    with_width(bytes, [&]<int W>() { gather_elements<W>(to, from, positions, count); });
  } else {
    gather_rows(to, from, positions, count, row, bytes);
  }
  return result.commit();
}

}  // namespace vlm

int32_t MNumericArray_listPart(MNumericArray** target, const MNumericArray* source,
                               const MNumericArray* indices) VLM_NOEXCEPT {
  if (target == nullptr || source == nullptr || indices == nullptr) return ArrayStatusNullArgument;
  if (indices->elementType != MNumericArrayTypeInteger64) return LibraryTypeError;
  if (source->rank < 1) return LibraryRankError;
  const auto* const positions = static_cast<const mint*>(indices->data);
  if (const int32_t bad = check_positions(positions, indices->flattenedLength, source->dims[0])) return bad;
  return vlm::list_part_unchecked(target, source, indices);
}

int32_t MTensor_listPart(MTensor** target, const MTensor* source, const MTensor* indices) VLM_NOEXCEPT {
  return MNumericArray_listPart(target, source, indices);
}
