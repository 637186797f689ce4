// How the elements of two arrays meet: one by one, or each element of the shorter with one block of the longer.
#pragma once

#include <algorithm>

#include "Arithmetic/FrontEnds/outcome.h"
#include "Memory/working_space.h"
#include "velorim/machine_functions.h"

namespace vlm::front_end {

/// Elements of any type that a block of working space holds; behind them it may be overrun by a store.
inline constexpr mint working_length = 512;
inline constexpr size_t repeat_overrun = 64;
using working_room = unsigned char[working_length * sizeof(mcomplex) + repeat_overrun];

/// One of two operands: element i of the result meets element i / block of it.
class operand {
 public:
  operand(const MNumericArray* array, mint result_count)
      : data_(static_cast<const unsigned char*>(array->data)),
        bytes_(static_cast<mint>(element_bytes(element_type(array)))),
        count_(array->flattenedLength),
        block_(count_ == 0 ? 1 : std::max<mint>(1, result_count / count_)) {}

  const unsigned char* data() const { return data_; }
  mint bytes() const { return bytes_; }
  mint count() const { return count_; }
  mint block() const { return block_; }

  /// The element that element i of the result meets.
  const unsigned char* at(mint i) const { return data_ + i / block_ * bytes_; }
  /// Those that the elements from first on meet, as contiguous elements, at most working_length of them: where they lie, or
  /// repeated into room.
  const unsigned char* at(mint first, mint length, working_room& room) const;

  /// Reads another copy of the elements.
  void move_to(const unsigned char* data) { data_ = data; }

 private:
  const unsigned char* data_;
  mint bytes_, count_, block_;
};

/// Two operands that meet by their numbers of elements.
class meeting {
 public:
  meeting(const MNumericArray* x, const MNumericArray* y);

  /// Whether the longer is a multiple of the shorter. Elements are looked at only if both have some.
  bool fits() const { return fits_; }
  bool empty() const { return x.count() == 0 || y.count() == 0; }
  /// Elements of the result.
  mint count() const { return count_; }

  /// The row over all blocks in order, up to the first failure: an outcome. result has room for the elements.
  mint run(const MachFuncRow& row, MNumericArray* result, uint32_t flags) const;

 private:
  mint count_;

 public:
  const operand x, y;

 private:
  bool fits_;
};

/// The row over two arrays that meet, into an array that has room for the results. Types are not compared with the row's.
mint run_row(const MachFuncRow& row, const MNumericArray* x, const MNumericArray* y, MNumericArray* result,
             uint32_t flags);

}  // namespace vlm::front_end
