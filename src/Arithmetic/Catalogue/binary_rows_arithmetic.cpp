#include "Arithmetic/Catalogue/binary_make_rows.h"
#include "Arithmetic/Kernels/binary/arithmetic.h"

template struct vlm::machine_function::binary_family<vlm::machine_function::binary::arithmetic_functions>;
