// The conversions from Real16.
#include "MNumericArray/Convert/pair_rules.h"

namespace vlm::conversion {
template struct runs_from<real16>;
}  // namespace vlm::conversion
