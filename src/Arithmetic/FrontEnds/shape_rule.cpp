#include "Arithmetic/FrontEnds/shape_rule.h"

#include <algorithm>
#include <cstring>

namespace vlm::front_end {
namespace {

/// Blocks up to this length are worked on several at a time.
constexpr mint longest_short_block = working_length / 2;

struct sixteen_bytes {
  uint64_t half[2];
};

/// Each element is stored a register at a time, beyond the end of its block, where the next one comes over it.
template <class Cell>
void repeat_cells(unsigned char* to, const unsigned char* from, mint first, mint length, mint block) {
  constexpr mint at_once = mint{repeat_overrun} / mint{sizeof(Cell)};
  const unsigned char* cells = from + first / block * mint{sizeof(Cell)};
  mint left = block - first % block;
  for (mint i = 0; i < length; left = block) {
    Cell cell, copies[at_once];
    std::memcpy(&cell, cells, sizeof cell);
    cells += sizeof cell;
    std::fill_n(copies, at_once, cell);
    const mint end = std::min(i + left, length);
    for (; i < end; i += at_once) std::memcpy(to + i * mint{sizeof cell}, copies, sizeof copies);
    i = end;
  }
}

/// The blocks of one call, in order, by the row's kernel.
class blocks {
 public:
  blocks(const MachFuncRow& row, const operand& x, const operand& y, unsigned char* result, uint32_t flags)
      : kernel_(row.vectorKernel.binary),
        result_bytes_(static_cast<mint>(element_bytes(row.resultType))),
        x_(x),
        y_(y),
        shorter_(x.count() < y.count() ? x : y),
        longer_(x.count() < y.count() ? y : x),
        result_(result),
        flags_(flags) {}

  mint run() const {
    const bool in_place = result_ == longer_.data();
    const bool short_blocks = shorter_.block() <= longest_short_block && shorter_.count() > 1 &&
                              (!in_place || result_bytes_ == longer_.bytes());
    return short_blocks ? several_at_a_time(in_place) : one_by_one(0, shorter_.count());
  }

 private:
  /// The blocks from j on, each with its element.
  mint one_by_one(mint j, mint end) const {
    const mint block = shorter_.block();
    const mint* const increments = &shorter_ == &y_ ? UnitRXIncrements : UnitRYIncrements;
    for (; j < end; ++j) {
      const mint first = j * block;
      const mint position =
          kernel_(result_ + first * result_bytes_, x_.at(first), y_.at(first), block, increments, flags_);
      if (position != 0) return first + position - 1;
    }
    return outcome_success;
  }

  /// As many blocks as the working space holds in one call. In place that stops exactly where the blocks by themselves would. Apart
  /// it is done aside, and done again by blocks where something failed: what is reported and written is that of the blocks.
  mint several_at_a_time(bool in_place) const {
    alignas(64) working_room repeated, aside;
    const mint block = shorter_.block(), at_a_time = working_length / block;
    for (mint j = 0; j < shorter_.count(); j += at_a_time) {
      const mint taken = std::min(at_a_time, shorter_.count() - j);
      const mint first = j * block, length = taken * block;
      unsigned char* const to = result_ + first * result_bytes_;
      const mint position = kernel_(in_place ? to : aside, x_.at(first, length, repeated),
                                    y_.at(first, length, repeated), length, UnitIncrements, flags_);
      if (position == 0) {
        if (!in_place) std::memcpy(to, aside, static_cast<size_t>(length * result_bytes_));
        continue;
      }
      if (in_place) return first + position - 1;
      if (const mint outcome = one_by_one(j, j + taken); outcome != outcome_success) return outcome;
    }
    return outcome_success;
  }

  MachFuncVector2 kernel_;
  mint result_bytes_;
  const operand &x_, &y_, &shorter_, &longer_;
  unsigned char* result_;
  uint32_t flags_;
};

}  // namespace

const unsigned char* operand::at(mint first, mint length, working_room& room) const {
  if (block_ == 1) return at(first);
  switch (bytes_) {
    case 1:
      repeat_cells<uint8_t>(room, data_, first, length, block_);
      break;
    case 2:
      repeat_cells<uint16_t>(room, data_, first, length, block_);
      break;
    case 4:
      repeat_cells<uint32_t>(room, data_, first, length, block_);
      break;
    case 8:
      repeat_cells<uint64_t>(room, data_, first, length, block_);
      break;
    default:
      repeat_cells<sixteen_bytes>(room, data_, first, length, block_);
  }
  return room;
}

meeting::meeting(const MNumericArray* x_array, const MNumericArray* y_array)
    : count_(std::max(x_array->flattenedLength, y_array->flattenedLength)),
      x(x_array, count_),
      y(y_array, count_),
      fits_(empty() || (count_ % x.count() == 0 && count_ % y.count() == 0)) {}

mint meeting::run(const MachFuncRow& row, MNumericArray* result, uint32_t flags) const {
  auto* const r = static_cast<unsigned char*>(result->data);
  if (x.count() == y.count()) {
    return outcome_of_position(row.vectorKernel.binary(r, x.data(), y.data(), count_, UnitIncrements, flags));
  }
  const operand& shorter = x.count() < y.count() ? x : y;
  if (r != shorter.data()) return blocks(row, x, y, r, flags).run();
  // Results of fewer bytes that have room in the shorter array itself.
  memory::working_space<unsigned char> copy(static_cast<uint64_t>(shorter.count() * shorter.bytes()),
                                            FailFatal);
  std::memcpy(copy.data(), shorter.data(), static_cast<size_t>(copy.size()));
  operand x_apart = x, y_apart = y;
  (&shorter == &x ? x_apart : y_apart).move_to(copy.data());
  return blocks(row, x_apart, y_apart, r, flags).run();
}

mint run_row(const MachFuncRow& row, const MNumericArray* x, const MNumericArray* y, MNumericArray* result,
             uint32_t flags) {
  if (row.vectorKernel.binary == nullptr) return outcome_no_kernel;
  const meeting operands(x, y);
  if (operands.empty()) return outcome_success;
  if (!operands.fits() || !has_room(result, operands.count(), row.resultType)) return outcome_no_kernel;
  return operands.run(row, result, flags);
}

}  // namespace vlm::front_end
