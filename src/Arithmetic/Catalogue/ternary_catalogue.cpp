#include "Arithmetic/Catalogue/ternary_catalogue.h"

#include <utility>

#include "Arithmetic/Frames/vector_parallel_omp_funs3.h"
#include "Arithmetic/Kernels/ternary_runs.h"
#include "Includes/tensor_type.h"
#include "velorim/array.h"
#include "velorim/tensor_arithmetic.h"

namespace vlm::machine_function {
namespace {

template <class F, class T>
int32_t scalar_kernel(void* result, const void* a, const void* x, const void* y, uint32_t flags) {
  return ternary::scalar<F>(static_cast<T*>(result), *static_cast<const T*>(a), *static_cast<const T*>(x),
                            *static_cast<const T*>(y), flags);
}

template <class F, class T>
constexpr vmfun3::kernel vector_kernel_parts = {ternary::plain_run<F, T>, ternary::element_run<F, T>,
                                                sizeof(T), is_integer_element<T>};

template <class F, class T>
mint vector_kernel(void* result, const void* a, const void* x, const void* y, mint count,
                   const mint* increments, uint32_t flags) {
  return vmfun3::vfun3_run(vector_kernel_parts<F, T>, result, a, x, y, count, increments, flags);
}

template <class F, int32_t Code> constexpr MachFuncRow make_row() {
  if constexpr (Code == 0) {
    return {};
  } else {
    using T = element_t<Code>;
    if constexpr (ternary::has_row_for<F, T>()) {
      return {{.ternary = scalar_kernel<F, T>}, {.ternary = vector_kernel<F, T>}, Code};
    } else {
      return {};
    }
  }
}

/// By function number and element type code.
struct row_table {
  MachFuncRow rows[last_ternary_number - first_ternary_number + 1][element_type_count + 1];
};

template <class... F, int32_t... Code>
constexpr row_table make_table(function_list<F...>, std::integer_sequence<int32_t, Code...>) {
  row_table table{};
  const auto enter = [&table]<class G>(G) {
    ((table.rows[G::number - first_ternary_number][Code] = make_row<G, Code>()), ...);
  };
  (enter(F{}), ...);
  return table;
}

constexpr row_table table =
    make_table(ternary::functions{}, std::make_integer_sequence<int32_t, element_type_count + 1>{});
constexpr MachFuncRow empty_row{};

}  // namespace

const MachFuncRow& ternary_row(int32_t number, int32_t element_type) {
  const bool exists =
      number >= first_ternary_number && number <= last_ternary_number && is_element_type(element_type);
  return exists ? table.rows[number - first_ternary_number][element_type] : empty_row;
}

}  // namespace vlm::machine_function

using vlm::machine_function::ternary_row;

namespace {

/// The row of three tensor types.
const MachFuncRow& row_of_tensors(int32_t number, int32_t a, int32_t x, int32_t y) {
  using vlm::element_type_of_tensor;
  return ternary_row(number, element_type_of_tensor(a), element_type_of_tensor(x), element_type_of_tensor(y));
}

}  // namespace

MachFuncVector3 MNumericArray_getTernaryVectorMachFunc(int32_t number, int32_t aType, int32_t xType,
                                                       int32_t yType) noexcept {
  return ternary_row(number, aType, xType, yType).vectorKernel.ternary;
}
MachFuncScalar3 MNumericArray_getTernaryScalarMachFunc(int32_t number, int32_t aType, int32_t xType,
                                                       int32_t yType) noexcept {
  return ternary_row(number, aType, xType, yType).scalarKernel.ternary;
}
int32_t MNumericArray_ReturnType3(int32_t number, int32_t aType, int32_t xType, int32_t yType) noexcept {
  return ternary_row(number, aType, xType, yType).resultType;
}

MachFuncVector3 MTensor_getTernaryVectorMachFunc(int32_t number, int32_t aType, int32_t xType,
                                                 int32_t yType) noexcept {
  return row_of_tensors(number, aType, xType, yType).vectorKernel.ternary;
}
MachFuncScalar3 MTensor_getTernaryScalarMachFunc(int32_t number, int32_t aType, int32_t xType,
                                                 int32_t yType) noexcept {
  return row_of_tensors(number, aType, xType, yType).scalarKernel.ternary;
}
int32_t MTensor_ReturnType3(int32_t number, int32_t aType, int32_t xType, int32_t yType) noexcept {
  return MNumericArrayToMTensorType[row_of_tensors(number, aType, xType, yType).resultType];
}
