// The ternary vector frame: what every vector kernel of three arguments runs in. As the unary frame, it decides loop shape,
// check mode and threads once, outside the loops.
#pragma once

#include <cstdint>

#include "velorim/base.h"

namespace vlm::vmfun3 {

/// A run over n contiguous elements; the result may be the same elements as any of the arguments. 0, or the 1-based position
/// of the failing element.
using run = mint (*)(void* result, const void* a, const void* x, const void* y, mint n);

/// What one function on one element type gives to the frame.
struct kernel {
  run plain;    // every element is written
  run element;  // stops at the first failing element, which stays unwritten
  uint8_t bytes;
  bool
      integer;  // MACHFUNC_CHECK_INTEGER asks for element mode; else MACHFUNC_CHECK_FP for bulk mode, or element mode in place
};

/// Runs the kernel over count elements, which lie increments[0] to increments[3] apart in result, a, x and y. Returns 0 or the
/// 1-based position of the failing element; in bulk mode that of the first element of the run, or of the chunk where the run
/// is split over the team.
///
/// Overlap: the result may be the same elements as any of the arguments. Any other overlap gives what reading the arguments
/// whole first would give.
mint vfun3_run(const kernel& k, void* result, const void* a, const void* x, const void* y, mint count,
               const mint* increments, uint32_t flags);

}  // namespace vlm::vmfun3
