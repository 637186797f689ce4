// The engine beneath the allocation interface: where blocks come from and how they find their way back. The
// files above it know requests, failure modes, limits and queries; the engine knows heaps and blocks. This
// header and the inline calls of blocks.h are all that they share.
//
// A heap belongs to one thread, which alone takes blocks from it and writes its accounts. A block that
// another thread frees waits in its heap, still counted, until the owner takes it back in a later call that
// works on the same size class, or until compact() does. When a thread ends, its heap goes at once if no
// block of it lives; otherwise it is orphaned, and whoever frees its last block ends it.
#pragma once

#include <atomic>
#include <cstdint>

#include "velorim/memory.h"

namespace vlm::memory {

/// A counter that one thread writes and any thread may read. Not a shared sum: add is no atomic
/// read-modify-write.
class owner_counter {
 public:
  constexpr owner_counter(uint64_t value = 0) : value_(value) {}
  uint64_t get() const { return value_.load(std::memory_order_relaxed); }
  void set(uint64_t value) { value_.store(value, std::memory_order_relaxed); }
  /// The new value.
  uint64_t add(uint64_t amount) {
    const uint64_t sum = get() + amount;
    set(sum);
    return sum;
  }
  void subtract(uint64_t amount) { set(get() - amount); }
  void raise_to(uint64_t value) {
    if (value > get()) set(value);
  }

 private:
  std::atomic<uint64_t> value_;
};

/// The accounts of a heap. in_use starts at the size of the heap's record and is kept by the engine; the rest
/// is the interface's.
struct heap_accounts {
  owner_counter in_use;
  owner_counter peak;
  owner_counter limit;
  uint64_t outside = 0;  ///< what in_use holds of an outside allocator, modulo 2^64
  int64_t thread_id = 0;
};

/// Bytes freed by other threads that wait in a heap.
struct pending_bytes {
  uint64_t small = 0;
  uint64_t large = 0;
};

/// The calling thread's heap, made with the root if need be; null if the system allocator fails.
heap_accounts* current_heap();

/// The bytes of a block that are its caller's.
uint64_t usable_bytes(const void* block);
/// What in_use would be without the heap's record and the headers of its chunks: the blocks alone.
uint64_t bytes_of_callers(const heap_accounts& heap);

/// The root; null while the allocator is unused.
HeapRoot* heap_root();
/// Makes the root if it is absent; null if the system allocator fails.
HeapRoot* ensure_heap_root();
/// Gives up the memory that the root keeps in reserve for the last message of the process.
void release_reserve();

/// The number of heaps, and a visit to each of them, newest first, under the lock of the list.
using heap_visitor = void (*)(const heap_accounts& heap, pending_bytes pending, void* context);
/// Holds the list of heaps still while it lives.
class heap_list_lock {
 public:
  heap_list_lock();
  ~heap_list_lock();
  heap_list_lock(const heap_list_lock&) = delete;
  heap_list_lock& operator=(const heap_list_lock&) = delete;
  uint64_t count() const;
  void visit(heap_visitor visitor, void* context) const;
};

/// Takes back what waits in every heap. No other thread may be allocating or freeing.
void compact();
/// Ends or orphans the calling thread's heap, if it has one.
void end_current_heap();
/// Releases every heap with its blocks, and the root. A thread that lives on gets a new heap when it next
/// needs one.
void tear_down();

}  // namespace vlm::memory
