#include "Arithmetic/Catalogue/make_rows.h"
#include "Arithmetic/Kernels/exponential.h"

template struct vlm::machine_function::family<vlm::machine_function::exponential_functions>;
