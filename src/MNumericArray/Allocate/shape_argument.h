// The rank and dimensions that a caller gives, as every entry judges them.
#pragma once

#include "MNumericArray/Allocate/array_record.h"

namespace vlm {

/// A rank below 1 is a scalar.
constexpr mint effective_rank(mint rank) { return rank < 0 ? 0 : rank; }

/// 0, or 402 for a negative dimension or missing dimensions.
inline int32_t check_dimensions(mint rank, const mint* dims) {
  if (rank > 0 && dims == nullptr) return ArrayStatusBadDimensions;
  for (mint i = 0; i < rank; ++i) {
    if (dims[i] < 0) return ArrayStatusBadDimensions;
  }
  return ArrayStatusOk;
}

}  // namespace vlm
