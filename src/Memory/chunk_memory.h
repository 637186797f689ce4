// Where chunks get their memory: anonymous mappings of 64 KB for blocks without header, the system allocator for the others. A heap
// keeps some of what its chunks leave behind for the next ones.
#pragma once

#include <cstdint>

#include "Memory/heap_records.h"

namespace vlm::memory {

/// Memory of one chunk of the class; null if the system has no more.
void* take_chunk_memory(size_class& c);
/// Gives it back, or keeps it for the heap's next chunk.
void give_chunk_memory(size_class& c, void* memory);
/// Gives the system all that the heap keeps, large blocks too.
void release_kept_memory(ThreadHeap& heap);

/// Reads the page geometry from the system.
page_info read_page_info();

}  // namespace vlm::memory
