// Makes catalogue rows out of definitions of two arguments: scalar kernel, vector kernel, result type, for every pair of element types
// that the function has a class for. Included only by the families' source files, which is where the loops are instantiated.
#pragma once

#include "Arithmetic/Catalogue/binary_catalogue.h"
#include "Arithmetic/Frames/vector_parallel_omp_funs2.h"
#include "Arithmetic/Kernels/binary/runs.h"

namespace vlm::machine_function {

/// One element under the flags: 0, or 1 on failure with nothing written.
template <class F, class X, class Y>
int32_t binary_scalar(binary::result_of<F, X, Y>* result, X x, Y y, uint32_t flags) {
  constexpr uint32_t asks = binary::gives_integers<F, X, Y> ? MACHFUNC_CHECK_INTEGER : MACHFUNC_CHECK_FP;
  const bool failed = (flags & asks) != 0 ? binary::scalar_element<true, F>(result, x, y)
                                          : binary::scalar_element<false, F>(result, x, y);
  return failed ? 1 : 0;
}

template <class F, class X, class Y>
int32_t binary_scalar_kernel(void* result, const void* x, const void* y, uint32_t flags) {
  return binary_scalar<F>(static_cast<binary::result_of<F, X, Y>*>(result), *static_cast<const X*>(x),
                          *static_cast<const Y*>(y), flags);
}

template <class F, class X, class Y>
inline constexpr vmfun2::kernel binary_kernel_parts = {
    binary::plain_run<F, X, Y>,
    binary::element_run<F, X, Y>,
    sizeof(binary::result_of<F, X, Y>),
    sizeof(X),
    sizeof(Y),
    binary::gives_integers<F, X, Y>                  ? vmfun2::checking::integer
    : is_integer_element<X> || is_integer_element<Y> ? vmfun2::checking::floating_mixed
                                                     : vmfun2::checking::floating,
    std::is_same_v<binary::result_of<F, X, Y>, X>,
    std::is_same_v<binary::result_of<F, X, Y>, Y>};

template <class F, class X, class Y>
mint binary_vector_kernel(void* result, const void* x, const void* y, mint count, const mint* increments,
                          uint32_t flags) {
  return vmfun2::vfun2_run(binary_kernel_parts<F, X, Y>, result, x, y, count, increments, flags);
}

template <class F, size_t Place> constexpr MachFuncRow make_binary_row() {
  using X = element_t<binary_pairs[Place].x>;
  using Y = element_t<binary_pairs[Place].y>;
  if constexpr (binary::has_row<F, X, Y>) {
    return {{.binary = binary_scalar_kernel<F, X, Y>},
            {.binary = binary_vector_kernel<F, X, Y>},
            element_code<binary::result_of<F, X, Y>>};
  } else {
    return {};
  }
}

template <class F, size_t... Place>
constexpr binary_function_rows make_binary_rows(std::index_sequence<Place...>) {
  return {F::number, F::name, F::return_range, {make_binary_row<F, Place>()...}};
}

template <template <class...> class List, class... F>
const binary_function_rows binary_family<List<F...>>::rows[sizeof...(F)] = {
    make_binary_rows<F>(std::make_index_sequence<binary_pairs.size()>{})...};

}  // namespace vlm::machine_function
