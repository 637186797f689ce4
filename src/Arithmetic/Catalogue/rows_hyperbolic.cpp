#include "Arithmetic/Catalogue/make_rows.h"
#include "Arithmetic/Kernels/hyperbolic.h"

template struct vlm::machine_function::family<vlm::machine_function::hyperbolic_functions>;
