// The conversions from Integer8.
#include "MNumericArray/Convert/pair_rules.h"

namespace vlm::conversion {
template struct runs_from<int8_t>;
}  // namespace vlm::conversion
