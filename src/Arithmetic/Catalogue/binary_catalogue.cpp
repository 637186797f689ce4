#include "Arithmetic/Catalogue/binary_catalogue.h"

#include "Arithmetic/Kernels/binary/division.h"
#include "Arithmetic/Kernels/binary/integers.h"
#include "Arithmetic/Kernels/binary/power.h"
#include "Arithmetic/Kernels/binary/steps.h"
#include "Includes/tensor_type.h"

namespace vlm::machine_function {

// Instantiated in the families' source files.
extern template struct binary_family<binary::arithmetic_functions>;
extern template struct binary_family<binary::division_functions>;
extern template struct binary_family<binary::power_functions>;
extern template struct binary_family<binary::integer_functions>;
extern template struct binary_family<binary::step_functions>;

namespace {

constexpr size_t number_count = last_binary_number - first_binary_number + 1;
using number_table = std::array<const binary_function_rows*, number_count>;

template <template <class...> class List, class... F> constexpr void enter(number_table& table, List<F...>*) {
  size_t i = 0;
  ((table[F::number - first_binary_number] = binary_family<List<F...>>::rows + i++), ...);
}

template <class... Lists> constexpr number_table make_table() {
  number_table table{};
  (enter(table, static_cast<Lists*>(nullptr)), ...);
  return table;
}

constexpr number_table functions =
    make_table<binary::arithmetic_functions, binary::division_functions, binary::power_functions,
               binary::integer_functions, binary::step_functions>();

/// How many functions have each number; exactly one is right.
using number_counts = std::array<int32_t, number_count>;
template <template <class...> class List, class... F>
constexpr void count(number_counts& counts, List<F...>*) {
  (++counts[F::number - first_binary_number], ...);
}
template <class... Lists> constexpr bool complete() {
  number_counts counts{};
  (count(counts, static_cast<Lists*>(nullptr)), ...);
  for (const int32_t n : counts) {
    if (n != 1) return false;
  }
  return true;
}
static_assert(complete<binary::arithmetic_functions, binary::division_functions, binary::power_functions,
                       binary::integer_functions, binary::step_functions>());

/// The place of a pair among binary_pairs; -1 for other pairs.
constexpr auto places = [] {
  std::array<std::array<int8_t, element_type_count + 1>, element_type_count + 1> table{};
  for (auto& row : table) row.fill(-1);
  for (size_t i = 0; i < binary_pairs.size(); ++i) {
    table[static_cast<size_t>(binary_pairs[i].x)][static_cast<size_t>(binary_pairs[i].y)] =
        static_cast<int8_t>(i);
  }
  return table;
}();

constexpr MachFuncRow empty_row{};

}  // namespace

const binary_function_rows* binary_function(int32_t number) {
  return number >= first_binary_number && number <= last_binary_number
             ? functions[static_cast<size_t>(number - first_binary_number)]
             : nullptr;
}

const MachFuncRow& binary_row(int32_t number, int32_t x_type, int32_t y_type) {
  const binary_function_rows* f = binary_function(number);
  if (f == nullptr || !is_element_type(x_type) || !is_element_type(y_type)) return empty_row;
  const int8_t place = places[static_cast<size_t>(x_type)][static_cast<size_t>(y_type)];
  return place < 0 ? empty_row : f->rows[place];
}

}  // namespace vlm::machine_function

// ---- The catalogue as the interface shows it ----------------------------------------------------------------------------------

using namespace vlm::machine_function;
using vlm::element_type_of_tensor;

MachFuncVector2 MNumericArray_getBinaryVectorMachFunc(int32_t number, int32_t xType, int32_t yType) noexcept {
  return binary_row(number, xType, yType).vectorKernel.binary;
}

MachFuncScalar2 MNumericArray_getBinaryScalarMachFunc(int32_t number, int32_t xType, int32_t yType) noexcept {
  return binary_row(number, xType, yType).scalarKernel.binary;
}

int32_t MNumericArray_ReturnType2(int32_t number, int32_t xType, int32_t yType) noexcept {
  return binary_row(number, xType, yType).resultType;
}

MachFuncVector2 MTensor_getBinaryVectorMachFunc(int32_t number, int32_t xType, int32_t yType) noexcept {
  return MNumericArray_getBinaryVectorMachFunc(number, element_type_of_tensor(xType),
                                               element_type_of_tensor(yType));
}

MachFuncScalar2 MTensor_getBinaryScalarMachFunc(int32_t number, int32_t xType, int32_t yType) noexcept {
  return MNumericArray_getBinaryScalarMachFunc(number, element_type_of_tensor(xType),
                                               element_type_of_tensor(yType));
}

int32_t MTensor_ReturnType2(int32_t number, int32_t xType, int32_t yType) noexcept {
  return MNumericArrayToMTensorType[MNumericArray_ReturnType2(number, element_type_of_tensor(xType),
                                                              element_type_of_tensor(yType))];
}

int32_t ReturnRangeType2(int32_t number, int32_t xType, int32_t yType) noexcept {
  constexpr int32_t no_such_function = 7;
  const auto column = [](int32_t type) { return type == MTensorTypeBoolean ? 0 : type - MTensorTypeInteger; };
  const auto is_tensor_type = [](int32_t type) {
    return type >= MTensorTypeBoolean && type <= MTensorTypeComplex;
  };
  const binary_function_rows* f = binary_function(number);
  if (f == nullptr || !is_tensor_type(xType) || !is_tensor_type(yType)) return no_such_function;
  switch (f->return_range[3 * column(xType) + column(yType)]) {
    case 'I':
      return MTensorTypeInteger;
    case 'R':
      return MTensorTypeReal;
    case 'C':
      return MTensorTypeComplex;
    default:
      return no_such_function;
  }
}
