// The rows of the catalogue: for each function one record with a row for every element type. A family's rows
// are made in one source file from its function_list (make_rows.h); here stands what the catalogue needs to
// find them.
#pragma once

#include "Includes/element_types.h"
#include "velorim/machine_functions.h"

namespace vlm::machine_function {

struct function_rows {
  int32_t number;
  const char* name;
  const char* return_range;                  // a letter each for Integer, Real, Complex; definition.h
  MachFuncRow rows[element_type_count + 1];  // by element type code; the empty row is all zero
};

/// The rows of a family, in the order of its list. Defined by make_rows.h, instantiated in the family's
/// source file.
template <class List> struct family;
template <template <class...> class List, class... F> struct family<List<F...>> {
  static const function_rows rows[sizeof...(F)];
};

}  // namespace vlm::machine_function
