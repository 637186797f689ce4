// Reversal of the first dimension, and rotation of the first n.
#include "Arithmetic/Parallel/team.h"
#include "MNumericArray/Copy/element_copy.h"
#include "MNumericArray/Structural/block_copy.h"
#include "MNumericArray/Structural/result_array.h"
#include "velorim/status.h"
#include "velorim/structural.h"

namespace {

/// The non-negative remainder.
mint reduced(mint shift, mint d) {
  const mint remainder = shift % d;
  return remainder < 0 ? remainder + d : remainder;
}

/// Rotates the block of one index tuple over the dimensions before `level`. Row r of the result is row (r + k) mod d.
class rotation {
 public:
  rotation(const MNumericArray* source, mint n, const mint* shifts)
      : dims_(source->dims), n_(n), shifts_(shifts), bytes_(vlm::element_bytes_of(source)) {}

  void run(char* target, const char* source, mint level, mint length) const {
    const mint d = dims_[level], row = length / d * bytes_, k = reduced(shifts_[level], d);
    if (level + 1 == n_) {
      const mint elements = length / d;
      vlm::copy_run(target, source + k * row, (d - k) * elements, bytes_);
      vlm::copy_run(target + (d - k) * row, source, k * elements, bytes_);
      return;
    }
    const auto rows = [&, row, k, d](mint first, mint count) {
      for (mint r = first; r < first + count; ++r) {
        run(target + r * row, source + (r < d - k ? r + k : r + k - d) * row, level + 1, length / d);
      }
    };
    const auto lengths = vlm::parallel::lengths(vlm::parallel::family::unary);
    if (level == 0 && vlm::parallel::use_team(length, lengths.threshold)) {
      vlm::parallel::for_chunks(d, 1, rows);
    } else {
      rows(0, d);
    }
  }

 private:
  const mint* dims_;
  mint n_;
  const mint* shifts_;
  mint bytes_;
};

}  // namespace

int32_t MNumericArray_reverse(MNumericArray** target, const MNumericArray* source) VLM_NOEXCEPT {
  if (target == nullptr || source == nullptr) return ArrayStatusNullArgument;
  if (source->rank < 1) return LibraryRankError;
  vlm::block_copy box(2);
  if (!box.ready()) return ArrayStatusNoMemory;
  vlm::result_array result(target, source);
  const int32_t status =
      result.allocate(static_cast<int32_t>(source->elementType), source->rank, source->dims);
  if (status != ArrayStatusOk) return status;
  if (source->flattenedLength == 0) return result.commit();
  if (!vlm::has_element_type(source)) return ArrayStatusBadType;
  const mint rows = source->dims[0], row = source->flattenedLength / rows,
             bytes = vlm::element_bytes_of(source);
  box.add(rows, row, -row);
  box.add(row, 1, 1);
  box.run(result.get()->data, static_cast<const char*>(source->data) + (rows - 1) * row * bytes, bytes);
  return result.commit();
}

int32_t MNumericArray_rotate(MNumericArray** target, const MNumericArray* source, mint n,
                             const mint* shifts) VLM_NOEXCEPT {
  if (target == nullptr || source == nullptr || (n > 0 && shifts == nullptr)) return ArrayStatusNullArgument;
  if (n > source->rank) return LibraryDimensionError;
  vlm::result_array result(target, source);
  const int32_t status =
      result.allocate(static_cast<int32_t>(source->elementType), source->rank, source->dims);
  if (status != ArrayStatusOk) return status;
  if (source->flattenedLength == 0) return result.commit();
  if (!vlm::has_element_type(source)) return ArrayStatusBadType;
  char* const to = static_cast<char*>(result.get()->data);
  const char* const from = static_cast<const char*>(source->data);
  if (n < 1) {
    vlm::copy_run(to, from, source->flattenedLength, vlm::element_bytes_of(source));
  } else {
    rotation(source, n, shifts).run(to, from, 0, source->flattenedLength);
  }
  return result.commit();
}
