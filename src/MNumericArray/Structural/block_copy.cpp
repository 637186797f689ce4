// The walk over the levels of a box.
#include "MNumericArray/Structural/block_copy.h"

#include "MNumericArray/Copy/element_copy.h"

namespace vlm {
namespace {

/// Walks the outer levels and copies a run at each place. No level is empty.
void copy_levels(char* target, const char* source, const copy_level* levels, mint depth, mint element_bytes) {
  if (depth == 0) return copy_run(target, source, 1, element_bytes);
  const copy_level& level = levels[0];
  const mint target_step = level.target_step * element_bytes, source_step = level.source_step * element_bytes;
  if (depth == 1) {
    copy_strided(target, level.target_step, source, level.source_step, level.count, element_bytes);
  } else if (depth == 2 && levels[1].target_step == 1 && levels[1].source_step == 1) {
    for (mint i = 0; i < level.count; ++i)
      copy_run(target + i * target_step, source + i * source_step, levels[1].count, element_bytes);
  } else {
    for (mint i = 0; i < level.count; ++i)
      copy_levels(target + i * target_step, source + i * source_step, levels + 1, depth - 1, element_bytes);
  }
}

}  // namespace

void block_copy::add(mint count, mint target_step, mint source_step) {
  if (count < 1) empty_ = true;
  if (count == 1 || empty_) return;
  if (depth_ > 0) {
    copy_level& outer = levels_[static_cast<uint64_t>(depth_ - 1)];
    if (outer.target_step == count * target_step && outer.source_step == count * source_step) {
      outer = {outer.count * count, target_step, source_step};
      return;
    }
  }
  levels_[static_cast<uint64_t>(depth_++)] = {count, target_step, source_step};
}

void block_copy::run(void* target, const void* source, mint element_bytes) {
  if (empty_) return;
  char* const to = static_cast<char*>(target);
  const char* const from = static_cast<const char*>(source);
  const copy_level* const levels = levels_.data();
  mint inner = 1;
  for (mint i = 1; i < depth_; ++i) inner *= levels[i].count;
  // Large runs go to the team one by one; of many small ones each thread takes a share of the outermost level.
  const parallel::length_pair lengths = parallel::byte_lengths(element_bytes);
  if (depth_ < 2 || inner >= lengths.threshold ||
      !parallel::use_team(levels[0].count * inner, lengths.threshold)) {
    return copy_levels(to, from, levels, depth_, element_bytes);
  }
  const mint share = std::max<mint>(1, lengths.chunk / inner);
  parallel::for_chunks(levels[0].count, share, [=, this](mint first, mint length) {
    for (mint i = first; i < first + length; ++i) {
      copy_levels(to + i * levels[0].target_step * element_bytes,
                  from + i * levels[0].source_step * element_bytes, levels + 1, depth_ - 1, element_bytes);
    }
  });
}

}  // namespace vlm
