// The conversions from ComplexReal32.
#include "MNumericArray/Convert/pair_rules.h"

namespace vlm::conversion {
template struct runs_from<complex_real32>;
}  // namespace vlm::conversion
