// The side of the memory check that creation and deletion of arrays see.
#pragma once

#include "velorim/memory_check.h"

namespace vlm {

/// True while records go through the check's table.
bool memory_check_is_on();

}  // namespace vlm
