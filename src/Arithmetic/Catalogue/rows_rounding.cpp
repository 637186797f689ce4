#include "Arithmetic/Catalogue/make_rows.h"
#include "Arithmetic/Kernels/rounding.h"

template struct vlm::machine_function::family<vlm::machine_function::rounding_functions>;
