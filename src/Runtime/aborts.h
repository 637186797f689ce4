// The report of an abort, apart from the poll that decides on it.
#pragma once

#include <cstdint>

namespace vlm {

/// What checkAbortWatchThrow does once the poll has answered yes.
int32_t report_abort();

}  // namespace vlm
