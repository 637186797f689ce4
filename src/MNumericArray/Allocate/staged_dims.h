// New dimensions of a record, held until the change of shape can no longer fail.
#pragma once

#include <cstring>
#include <utility>

#include "velorim/array.h"
#include "velorim/memory.h"

namespace vlm {

/// More dimensions than the record has room for wait in a block of their own, which the record receives at the commit; fewer
/// are written into the record's block there. The dimensions given may lie in the record's own block either way.
class staged_dims {
 public:
  /// Copies dims if they will need a new block.
  static staged_dims copy(const MNumericArray* array, mint rank, const mint* dims, int32_t failMode) {
    if (rank <= array->rank) return {rank, dims, nullptr, true};
    const uint64_t bytes = static_cast<uint64_t>(rank) * sizeof(mint);
    auto* block = static_cast<mint*>(zalloc(bytes, 0, failMode));
    if (block != nullptr) std::memcpy(block, dims, bytes);
    return {rank, dims, block, block != nullptr};
  }
  /// Takes the block dims over; it is freed if there is no commit.
  static staged_dims take_over(mint rank, mint* dims) { return {rank, dims, dims, true}; }

  staged_dims(const staged_dims&) = delete;
  staged_dims& operator=(const staged_dims&) = delete;
  ~staged_dims() { zfree(block_); }

  /// False if the block could not be had; there is nothing to commit then.
  bool ready() const { return ready_; }

  /// Gives the record the rank and dimensions, and the length, which at rank 0 is 1.
  void commit(MNumericArray* array, mint length) {
    if (rank_ == 0 || block_ != nullptr) {
      zfree(array->dims);
      array->dims = rank_ == 0 ? nullptr : std::exchange(block_, nullptr);
    } else {
      std::memmove(array->dims, dims_, static_cast<size_t>(rank_) * sizeof(mint));
    }
    array->rank = rank_;
    array->flattenedLength = rank_ == 0 ? 1 : length;
  }

 private:
  staged_dims(mint rank, const mint* dims, mint* block, bool ready)
      : rank_(rank), dims_(dims), block_(block), ready_(ready) {}

  mint rank_;
  const mint* dims_;
  mint* block_;
  bool ready_;
};

}  // namespace vlm
