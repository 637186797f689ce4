// The conversions from ComplexReal64.
#include "MNumericArray/Convert/pair_rules.h"

namespace vlm::conversion {
template struct runs_from<mcomplex>;
}  // namespace vlm::conversion
