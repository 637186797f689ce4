// Blocks above the largest class, each a piece of its own from the system allocator with a header of 40 bytes.
#pragma once

#include "Memory/heap_records.h"

namespace vlm::memory {

/// A block of `rounded` bytes, header included, counted in in_use; its header. Null if the system has no more or
/// system_allocation_limit forbids it.
large_block_header* take_large_block(ThreadHeap& heap, uint64_t rounded);
/// The owner's free, or anyone's under the mutex of an orphaned heap.
void free_large_block(large_block_header& block);
/// Another thread's free: leaves the block on the pending list. False, with nothing done, if the heap is orphaned.
bool leave_to_owner(large_block_header& block);
/// Takes back all large blocks that other threads freed; the second form under a mutex that the caller holds.
void reclaim_large(ThreadHeap& heap);
void reclaim_large_locked(ThreadHeap& heap);
/// Gives the system the large blocks that the heap keeps.
void release_kept_large_blocks(ThreadHeap& heap);
/// Frees every large block of the heap; some may be kept.
void free_all_large_blocks(ThreadHeap& heap);
/// Bytes that wait on the pending list; under the heap's mutex.
uint64_t pending_large_bytes(const ThreadHeap& heap);

inline void reclaim_large_if_any(ThreadHeap& heap) {
  if (heap.pending_large.load(std::memory_order_relaxed) != nullptr) [[unlikely]]
    reclaim_large(heap);
}

}  // namespace vlm::memory
