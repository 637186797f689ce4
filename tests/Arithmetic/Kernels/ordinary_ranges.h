// Where the two forms of the real functions meet: the ordinary ranges of their definitions.
#pragma once

#include <map>

#include "Arithmetic/Kernels/bits.h"
#include "Arithmetic/Kernels/exponential.h"
#include "Arithmetic/Kernels/hyperbolic.h"
#include "Arithmetic/Kernels/power.h"
#include "Arithmetic/Kernels/runs.h"
#include "Arithmetic/Kernels/special.h"
#include "Arithmetic/Kernels/trigonometric.h"

/// By function number; none for functions without a register form.
template <class T> std::map<int32_t, vlm::ordinary_range> ordinary_ranges() {
  std::map<int32_t, vlm::ordinary_range> ranges;
  using namespace vlm::machine_function;
  const auto enter = [&]<class F>() {
    if constexpr (has_range<class_of<F, T>, T>) ranges[F::number] = class_of<F, T>::template range<T>();
  };
  const auto enter_list = [&]<class... F>(function_list<F...>) { (enter.template operator()<F>(), ...); };
  enter_list(trigonometric_functions{});
  enter_list(hyperbolic_functions{});
  enter_list(exponential_functions{});
  enter_list(power_functions{});
  enter_list(special_functions{});
  return ranges;
}
