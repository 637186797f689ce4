// The unary vector frame: what every vector kernel of one argument runs in. It decides loop shape, check mode
// and threads once, outside the loops; a kernel only knows contiguous runs.
#pragma once

#include <cstdint>

#include "velorim/base.h"

namespace vlm::vmfun1 {

/// A run over n contiguous elements, in place or apart: 0, or the 1-based position of the failing element.
using run = mint (*)(void* result, const void* source, mint n);

/// Which flag bit asks for checks, and what a check is.
enum class checking : uint8_t {
  floating_same_type,     // MACHFUNC_CHECK_FP: bulk mode, or element mode in place
  floating_changed_type,  // MACHFUNC_CHECK_FP: bulk mode
  integer                 // MACHFUNC_CHECK_INTEGER: element mode
};

/// What one function on one pair of element types gives to the frame.
struct kernel {
  run plain;    // every element is written; stops only where a function fails whatever the flags
  run element;  // stops at the first failing element, which stays unwritten
  uint8_t result_bytes, source_bytes;
  checking mode;
  bool same_type;  // result and source have the same element type
};

/// Runs the kernel over count elements, increments[0] and increments[1] elements apart in result and source.
/// Returns 0 or the 1-based position of the failing element; in bulk mode a failure is the position of the
/// first element of the run, or of the chunk where the run is split over the team.
///
/// Overlap: result and source may be the same elements. Any other overlap gives what reading the whole source
/// first would give: the source is then copied aside.
mint vfun1_run(const kernel& k, void* result, const void* source, mint count, const mint* increments,
               uint32_t flags);

}  // namespace vlm::vmfun1
