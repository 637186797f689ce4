#include "Arithmetic/Catalogue/make_rows.h"
#include "Arithmetic/Kernels/special.h"

template struct vlm::machine_function::family<vlm::machine_function::special_functions>;
