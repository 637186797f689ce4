// Copying a box of elements from one place to another: a list of levels, each a count with a step on either side. Neighbouring levels
// that together run evenly are merged first, so that the copy moves in the largest contiguous runs there are.
#pragma once

#include <cstdint>

#include "Memory/working_space.h"
#include "velorim/base.h"

namespace vlm {

/// One level of a box, outermost first: `count` places, this many elements apart.
struct copy_level {
  mint count;
  mint target_step;
  mint source_step;
};

class block_copy {
 public:
  /// Room for that many levels; `ready` is false if memory is short.
  explicit block_copy(mint most_levels) : levels_(static_cast<uint64_t>(most_levels), FailReport) {}
  bool ready() const { return static_cast<bool>(levels_); }

  /// Adds the next inner level.
  void add(mint count, mint target_step, mint source_step);
  bool is_one_element() const { return depth_ == 0 && !empty_; }
  /// Copies the box that begins at target and source, which must not overlap; on the team if it is large.
  void run(void* target, const void* source, mint element_bytes);

 private:
  memory::small_space<copy_level, 8> levels_;
  mint depth_ = 0;
  bool empty_ = false;
};

}  // namespace vlm
