#include "Arithmetic/Catalogue/make_rows.h"
#include "Arithmetic/Kernels/sign.h"

template struct vlm::machine_function::family<vlm::machine_function::sign_functions>;
