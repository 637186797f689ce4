#include "Arithmetic/Catalogue/make_rows.h"
#include "Arithmetic/Kernels/bits.h"

template struct vlm::machine_function::family<vlm::machine_function::bit_functions>;
