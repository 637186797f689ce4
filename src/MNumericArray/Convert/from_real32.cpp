// The conversions from Real32.
#include "MNumericArray/Convert/pair_rules.h"

namespace vlm::conversion {
template struct runs_from<float>;
}  // namespace vlm::conversion
