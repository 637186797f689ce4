// Outcomes of operators, and the tensor types that operators go by.
#pragma once

#include <cstdint>

#include "MNumericArray/Allocate/array_record.h"
#include "velorim/array.h"
#include "velorim/status.h"

namespace vlm::front_end {

// 0 and above is the index of a failing element.
inline constexpr mint outcome_success = -2;
inline constexpr mint outcome_no_kernel = -1;
// Promotion gives minus the union of these.
inline constexpr mint some_real = 3;
inline constexpr mint some_complex = 4;

/// Success is every negative outcome but that of a missing kernel.
inline int32_t status_of_outcome(mint outcome) {
  return outcome < outcome_no_kernel ? LibraryOk : LibraryNumericalError;
}

/// The outcome of a vector kernel's return value.
inline mint outcome_of_position(mint position) { return position == 0 ? outcome_success : position - 1; }

/// The place of a tensor type in an operator table: Integer (and boolean), Real, Complex; -1 for any other code.
inline int32_t table_index(int32_t type) {
  return type == MTensorTypeBoolean                                 ? 0
         : type >= MTensorTypeInteger && type <= MTensorTypeComplex ? type - MTensorTypeInteger
                                                                    : -1;
}

inline int32_t tensor_type(const MTensor* tensor) { return static_cast<int32_t>(tensor->tensorType); }
inline int32_t element_type(const MNumericArray* array) { return static_cast<int32_t>(array->elementType); }

/// Whether the storage of an array holds count elements of a type. That the types agree is the caller's business.
inline bool has_room(const MNumericArray* array, mint count, int32_t type) {
  return static_cast<uint64_t>(count) * element_bytes(type) <= array_bytes(array);
}

}  // namespace vlm::front_end
