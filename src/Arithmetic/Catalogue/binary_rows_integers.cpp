#include "Arithmetic/Catalogue/binary_make_rows.h"
#include "Arithmetic/Kernels/binary/integers.h"

template struct vlm::machine_function::binary_family<vlm::machine_function::binary::integer_functions>;
