// The conversions from UnsignedInteger32.
#include "MNumericArray/Convert/pair_rules.h"

namespace vlm::conversion {
template struct runs_from<uint32_t>;
}  // namespace vlm::conversion
