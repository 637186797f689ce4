// The engine behind part selection and assignment.
#pragma once

#include "velorim/parts.h"

namespace vlm {

/// Moves the elements that checked specifications select: from a selection of `from` into the whole of `to`, or the whole of `from`,
/// broadcast where it has no matching dimension, into a selection of `to`. False, with nothing moved, if memory is short.
bool move_parts(const MTensor* from, MTensor* to, mint n, const PartSpec* specs, bool selects);

}  // namespace vlm
