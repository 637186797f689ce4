// The conversions from Integer16.
#include "MNumericArray/Convert/pair_rules.h"

namespace vlm::conversion {
template struct runs_from<int16_t>;
}  // namespace vlm::conversion
