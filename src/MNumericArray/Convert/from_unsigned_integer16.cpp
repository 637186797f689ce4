// The conversions from UnsignedInteger16.
#include "MNumericArray/Convert/pair_rules.h"

namespace vlm::conversion {
template struct runs_from<uint16_t>;
}  // namespace vlm::conversion
