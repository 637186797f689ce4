// The heap of each thread: how it is found, made, orphaned and ended.
#pragma once

#include "Memory/heap_records.h"

namespace vlm::memory {

/// A thread's heap is valid in the life of the allocator that made it. Threads that outlive a tear-down, such as those of an
/// OpenMP team, hold a pointer of an earlier life.
struct heap_holder {
  ThreadHeap* heap;
  uint64_t life;
  uint64_t direct;  ///< the life again while the heap has no soft limit, else 0
};
extern constinit thread_local heap_holder holder [[gnu::tls_model("initial-exec")]];
extern constinit std::atomic<uint64_t> allocator_life;
/// The life while no failure is injected, else a number that no thread holds: one comparison tells the common case of an allocation.
extern constinit std::atomic<uint64_t> direct_life;

/// The calling thread's heap, or null.
inline ThreadHeap* heap_of_thread() {
  return holder.life == allocator_life.load(std::memory_order_relaxed) ? holder.heap : nullptr;
}

/// Whether the calling thread owns a heap in which a block lives.
inline bool is_mine(const ThreadHeap& heap) { return heap.home.load(std::memory_order_relaxed) == &holder; }

/// Whether the calling thread has a heap whose next allocation has nothing to look after but its block.
inline bool allocates_directly() { return holder.direct == direct_life.load(std::memory_order_relaxed); }

/// Sets the soft limit of the calling thread's heap.
void set_soft_limit(ThreadHeap& heap, uint64_t limit);

/// Makes the calling thread's heap, with the root if it is absent; null if the system allocator fails.
ThreadHeap* make_heap();

/// Frees a block of a heap whose thread has ended, and the heap with it if that was the last.
void free_into_orphan(chunk_header& chunk, void* block);
void free_into_orphan(large_block_header& block);

}  // namespace vlm::memory
