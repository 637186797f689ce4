#include "Arithmetic/Catalogue/make_rows.h"
#include "Arithmetic/Kernels/steps.h"

template struct vlm::machine_function::family<vlm::machine_function::step_functions>;
