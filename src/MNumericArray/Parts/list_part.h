// Rows of the first dimension by their positions.
#pragma once

#include "velorim/base.h"

namespace vlm {

/// MNumericArray_listPart for positions that are known to lie in the first dimension, such as a permutation of it.
int32_t list_part_unchecked(MNumericArray** target, const MNumericArray* source,
                            const MNumericArray* indices);

}  // namespace vlm
