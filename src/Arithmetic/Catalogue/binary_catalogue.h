// The catalogue of machine functions of two arguments: from a function number and two element types to a row, a name, a return range.
#pragma once

#include <array>

#include "Includes/element_types.h"
#include "velorim/machine_functions.h"

namespace vlm::machine_function {

inline constexpr int32_t first_binary_number = 257, last_binary_number = 287;

/// A pair of element type codes for which some function has a row.
struct type_pair {
  int32_t x, y;
  friend constexpr bool operator==(type_pair, type_pair) = default;
};

/// Each type with itself, every other type with Integer64, and the pairs of tensor types and of a complex type with its component that
/// are not among them.
inline constexpr auto binary_pairs = [] {
  constexpr size_t count = 2 * element_type_count - 1 + 5;
  std::array<type_pair, count> pairs{};
  size_t n = 0;
  for (int32_t t = 1; t <= element_type_count; ++t) pairs[n++] = {t, t};
  for (int32_t t = 1; t <= element_type_count; ++t) {
    if (t != MNumericArrayTypeInteger64) pairs[n++] = {t, MNumericArrayTypeInteger64};
  }
  pairs[n++] = {MNumericArrayTypeInteger64, MNumericArrayTypeReal64};
  pairs[n++] = {MNumericArrayTypeInteger64, MNumericArrayTypeComplexReal64};
  pairs[n++] = {MNumericArrayTypeReal64, MNumericArrayTypeComplexReal64};
  pairs[n++] = {MNumericArrayTypeComplexReal64, MNumericArrayTypeReal64};
  pairs[n++] = {MNumericArrayTypeComplexReal32, MNumericArrayTypeReal32};
  return pairs;
}();

struct binary_function_rows {
  int32_t number;
  const char* name;
  const char* return_range;  // a letter for each pair of tensor types; Kernels/binary/definition.h
  MachFuncRow rows[binary_pairs.size()];  // by the place of the pair; the empty row is all zero
};

/// The rows of a family of functions, in the order of its list, made in its own source file (binary_make_rows.h).
template <class List> struct binary_family;
template <template <class...> class List, class... F> struct binary_family<List<F...>> {
  static const binary_function_rows rows[sizeof...(F)];
};

/// The record of a number, null for a number that names no function.
const binary_function_rows* binary_function(int32_t number);

/// The row of a binary number and two element type codes; the empty row for anything else.
const MachFuncRow& binary_row(int32_t number, int32_t x_type, int32_t y_type);

}  // namespace vlm::machine_function
