// The conversions from Integer32.
#include "MNumericArray/Convert/pair_rules.h"

namespace vlm::conversion {
template struct runs_from<int32_t>;
}  // namespace vlm::conversion
