#include "Arithmetic/Catalogue/make_rows.h"
#include "Arithmetic/Kernels/power.h"

template struct vlm::machine_function::family<vlm::machine_function::power_functions>;
