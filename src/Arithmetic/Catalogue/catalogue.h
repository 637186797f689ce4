// The catalogue of unary machine functions: from a function number and an element type to a row, a name, a
// return range.
#pragma once

#include "Arithmetic/Catalogue/rows.h"

namespace vlm::machine_function {

inline constexpr int32_t unary_number_count = 86;

/// The record of a number, null for a number that names no function.
const function_rows* unary_function(int32_t number);

/// The row of a number and an element type code; the empty row for anything else.
const MachFuncRow& unary_row(int32_t number, int32_t element_type);

}  // namespace vlm::machine_function
