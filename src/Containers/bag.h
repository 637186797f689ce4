// What the rest of the library needs of bags beyond their exported calls.
#pragma once

#include "velorim/containers.h"

namespace vlm {

/// Elements in a bag.
mint bag_length(const MBag* bag);

}  // namespace vlm
