// The soft limit of a thread's accounts.
#pragma once

#include "Memory/block_engine.h"

namespace vlm::memory {

/// Whether a further amount would take the heap above its soft limit. If so the interrupt function has been
/// called, with in_use showing the sum, at most all ones. A heap without limit is never above it.
bool passes_limit(heap_accounts& heap, uint64_t amount);

/// Forgets the last report of the outside allocator and the interrupt function.
void reset_process_accounts();

}  // namespace vlm::memory
