// Tensor type codes and the element types behind them.
#pragma once

#include <iterator>

#include "velorim/array.h"

namespace vlm {

/// The element type of a tensor type code; 0, no type, for a code that is none.
inline int32_t element_type_of_tensor(int32_t tensorType) {
  const bool known =
      tensorType >= 0 && tensorType < static_cast<int32_t>(std::size(MTensorToMNumericArrayType));
  return known ? MTensorToMNumericArrayType[tensorType] : 0;
}

}  // namespace vlm
