// The catalogue of machine functions of three arguments.
#pragma once

#include "velorim/machine_functions.h"

namespace vlm::machine_function {

inline constexpr int32_t first_ternary_number = 513, last_ternary_number = 516;

/// The row of a number for three arguments of the element type; the empty row for anything else.
const MachFuncRow& ternary_row(int32_t number, int32_t element_type);

/// The same for the types of the three arguments: the empty row unless they are equal.
inline const MachFuncRow& ternary_row(int32_t number, int32_t a_type, int32_t x_type, int32_t y_type) {
  return ternary_row(number, a_type == x_type && x_type == y_type ? a_type : 0);
}

}  // namespace vlm::machine_function
