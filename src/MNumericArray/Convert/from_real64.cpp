// The conversions from Real64.
#include "MNumericArray/Convert/pair_rules.h"

namespace vlm::conversion {
template struct runs_from<double>;
}  // namespace vlm::conversion
