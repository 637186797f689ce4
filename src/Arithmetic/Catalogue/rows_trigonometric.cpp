#include "Arithmetic/Catalogue/make_rows.h"
#include "Arithmetic/Kernels/trigonometric.h"

template struct vlm::machine_function::family<vlm::machine_function::trigonometric_functions>;
