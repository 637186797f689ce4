// The conversions from Integer64.
#include "MNumericArray/Convert/pair_rules.h"

namespace vlm::conversion {
template struct runs_from<int64_t>;
}  // namespace vlm::conversion
