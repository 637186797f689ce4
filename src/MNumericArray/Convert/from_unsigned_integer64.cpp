// The conversions from UnsignedInteger64.
#include "MNumericArray/Convert/pair_rules.h"

namespace vlm::conversion {
template struct runs_from<uint64_t>;
}  // namespace vlm::conversion
