// The binary vector frame: what every vector kernel of two arguments runs in. It decides loop shape, check mode and threads once,
// outside the loops; a kernel only knows contiguous runs.
#pragma once

#include <cstdint>

#include "velorim/base.h"

namespace vlm::vmfun2 {

/// A run over n contiguous elements: 0, or the 1-based position of the failing element. The result may be one of the operands.
using run = mint (*)(void* result, const void* x, const void* y, mint n);

/// Which flag bit asks for checks, and what a check is.
enum class checking : uint8_t {
  floating,  // MACHFUNC_CHECK_FP: bulk mode, or element mode in place of an operand of the result's type
  floating_mixed,  // a floating result with an integer operand: element mode
  integer          // MACHFUNC_CHECK_INTEGER: element mode
};

/// What one function on one pair of element types gives to the frame.
struct kernel {
  run plain;    // every element is written; stops only where a function fails whatever the flags
  run element;  // stops at the first failing element, which stays unwritten
  uint8_t result_bytes, x_bytes, y_bytes;
  checking mode;
  bool like_x, like_y;  // the result has the element type of x, of y
};

/// Runs the kernel over count elements, increments[0], [1] and [2] elements apart in result, x and y. Returns 0 or the 1-based position
/// of the failing element. In bulk mode a failure is the position of the first element of the run, or of the chunk where the run is
/// split over the team; a failure that happens whatever the flags has its own position there too.
///
/// Overlap: the result may be the same elements as either operand. Any other overlap gives what reading the operands whole first would
/// give: they are then copied aside.
mint vfun2_run(const kernel& k, void* result, const void* x, const void* y, mint count,
               const mint* increments, uint32_t flags);

}  // namespace vlm::vmfun2
