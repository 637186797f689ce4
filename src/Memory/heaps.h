// The heap of each thread: how it is found, made, orphaned and ended.
#pragma once

#include "Memory/heap_records.h"

namespace vlm::memory {

/// A thread's heap is valid in the life of the allocator that made it. Threads that outlive a tear-down, such as those of an
/// OpenMP team, hold a pointer of an earlier life.
struct heap_holder {
  ThreadHeap* heap;
  uint64_t life;
};
extern constinit thread_local heap_holder holder [[gnu::tls_model("initial-exec")]];
extern constinit std::atomic<uint64_t> allocator_life;

/// The calling thread's heap, or null.
inline ThreadHeap* heap_of_thread() {
  return holder.life == allocator_life.load(std::memory_order_relaxed) ? holder.heap : nullptr;
}

/// Makes the calling thread's heap, with the root if it is absent; null if the system allocator fails.
ThreadHeap* make_heap();

/// Frees a block of a heap whose thread has ended, and the heap with it if that was the last.
void free_into_orphan(chunk_header& chunk, void* block);
void free_into_orphan(large_block_header& block);

}  // namespace vlm::memory
