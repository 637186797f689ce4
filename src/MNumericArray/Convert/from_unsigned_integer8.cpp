// The conversions from UnsignedInteger8.
#include "MNumericArray/Convert/pair_rules.h"

namespace vlm::conversion {
template struct runs_from<uint8_t>;
}  // namespace vlm::conversion
