// The table of the pairs: for a source and a target type, the function that chooses the run under a record.
#pragma once

#include <array>

#include "Includes/element_types.h"
#include "MNumericArray/Convert/element_run.h"

namespace vlm::conversion {

/// Whether a method can stand in a record, beside the clip flag.
constexpr bool is_base_method(int32_t method) {
  return method >= MNumericArrayConvertCheck && method <= MNumericArrayConvertCast && method % 2 == 1;
}

using run_chooser = element_run*(const MNumericArrayConvertData& record);
/// The choosers of one source type, by target type code less 1.
using run_row = std::array<run_chooser*, element_type_count>;

/// The row of a source type. Each is instantiated in a file of its own, from_*.cpp.
template <class S> struct runs_from { static const run_row row; };
#define VELORIM_ELEMENT_TYPE(CODE, NAME, TYPE, CLASS, BYTES, DIGITS, TENSOR) \
  extern template struct runs_from<TYPE>;
#include "Includes/element_types.def"
#undef VELORIM_ELEMENT_TYPE

}  // namespace vlm::conversion
