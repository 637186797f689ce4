// Makes catalogue rows out of definitions: scalar kernel, vector kernel, result type, for every element type
// that the function has a class for. Included only by the families' source files, which is where the loops
// are instantiated.
#pragma once

#include <cstring>

#include "Arithmetic/Catalogue/rows.h"
#include "Arithmetic/Frames/vector_parallel_omp_funs1.h"
#include "Arithmetic/Kernels/runs.h"

namespace vlm::machine_function {

/// The flag that asks for F's check on elements of type T: that of integers if the source or the result is
/// one.
template <class F, class T>
inline constexpr uint32_t check_flag = checks_result<F, T> ? MACHFUNC_CHECK_FP : MACHFUNC_CHECK_INTEGER;

/// One element under the flags: 0, or 1 on failure with nothing written.
template <class F, class T> int32_t scalar(result_of<F, T>* result, T x, uint32_t flags) {
  constexpr check obeys = class_of<F, T>::obeys;
  if constexpr (obeys != check::plain) {
    if (obeys == check::always || (flags & check_flag<F, T>) != 0) {
      return checked_element<F>(result, x) == VelorimError_success ? 0 : 1;
    }
  }
  *result = value_of<F>(x);
  return 0;
}

template <class F, class T> int32_t scalar_kernel(void* result, const void* x, uint32_t flags) {
  return scalar<F, T>(static_cast<result_of<F, T>*>(result), *static_cast<const T*>(x), flags);
}

/// Which flag the frame reads, and what it does then.
template <class F, class T>
inline constexpr vmfun1::checking checking_of =
    !checks_result<F, T>                 ? vmfun1::checking::integer
    : std::is_same_v<result_of<F, T>, T> ? vmfun1::checking::floating_same_type
                                         : vmfun1::checking::floating_changed_type;

template <class F, class T>
inline constexpr vmfun1::kernel vector_kernel_parts = {
    plain_run<F, T>, element_run<F, T>, sizeof(result_of<F, T>),
    sizeof(T),       checking_of<F, T>, std::is_same_v<result_of<F, T>, T>};

template <class F, class T>
mint vector_kernel(void* result, const void* x, mint count, const mint* increments, uint32_t flags) {
  return vmfun1::vfun1_run(vector_kernel_parts<F, T>, result, x, count, increments, flags);
}

template <class F, int32_t Code> constexpr MachFuncRow make_row() {
  if constexpr (Code == 0) {
    return {};
  } else {
    using T = element_t<Code>;
    if constexpr (has_row<F, T>) {
      return {{.unary = scalar_kernel<F, T>}, {.unary = vector_kernel<F, T>}, element_code<result_of<F, T>>};
    } else {
      return {};
    }
  }
}

template <class F, int32_t... Code>
constexpr function_rows make_rows(std::integer_sequence<int32_t, Code...>) {
  return {F::number, F::name, F::return_range, {make_row<F, Code>()...}};
}

template <template <class...> class List, class... F>
const function_rows family<List<F...>>::rows[sizeof...(F)] = {
    make_rows<F>(std::make_integer_sequence<int32_t, element_type_count + 1>{})...};

}  // namespace vlm::machine_function
