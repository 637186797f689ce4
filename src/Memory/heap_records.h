// The records of the heaps. What holds of them at every moment that no operation is under way, checked by heapIsValid:
//
//  1. A chunk of a class is on its full list (no free block), on its available list (some free block, some in use) or is the
//     class's one spare (every block free, on no list). `chunks` counts the two lists.
//  2. A chunk's free list holds blocks inside its memory at multiples of the block size; the others, `used` of them, are in use:
//     in their callers' hands, or freed by another thread and waiting.
//  3. The blocks on a class's waiting list belong to chunks of the class, and `waiting_blocks` counts them. The count may run ahead
//     of the list while a block is on its way there.
//  4. Every page of a chunk of the classes 0 to 64 leads to the chunk in the page map; no other page leads anywhere.
//  5. `in_use` is the size of the heap's record, plus the block sizes of all blocks in use (class 0 included: the headers of the
//     other classes' chunks), plus the sizes of the large blocks. What an outside allocator reports comes on top.
//  6. A chunk of class 1 to 160 has its header in a block of class 0 of the same heap; a chunk of class 0 has it in its own
//     first 64 bytes. No block of class 0 ever waits.
//  7. An orphaned heap has closed waiting lists, no spares, nothing waiting and no memory kept, and holds at least one block or
//     large block.
//  8. `kept_bytes` is the sum of the memory of ended chunks and large blocks that the heap keeps, at most `most_kept_bytes`.
//
// Who may touch what. The owner uses its lists and counters without a lock. Another thread that frees a block of a class pushes
// it on the waiting list, which the owner takes as a whole when it finds it not empty: one atomic operation for either. Large blocks
// wait on a list under the heap's mutex. A heap is orphaned under its mutex, class by class: taking what waits leaves the closing
// mark there. From then on everything in the heap is under its mutex: a thread that finds the mark, or `orphaned` for a large
// block, goes on to the mutex. The mutex of the root guards the list of heaps; order of locking: root, heap, level lock of the
// page map.
#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>

#include "Memory/block_engine.h"
#include "Memory/page_map.h"
#include "Memory/size_classes.h"

namespace vlm::memory {

struct ThreadHeap;
struct size_class;

struct free_block {
  free_block* next;
};

/// In place of a waiting list's first block once the heap is orphaned.
inline constinit free_block closed_list{nullptr};

inline constexpr uint64_t chunk_header_bytes = 64;
struct alignas(chunk_header_bytes) chunk_header {
  size_class* owner_class;
  chunk_header* previous;
  chunk_header* next;
  free_block* free_list;
  void* memory;
  uint64_t used;
};
static_assert(sizeof(chunk_header) == chunk_header_bytes);

inline constexpr uint64_t mapped_chunk_bytes = 0x10000;

/// The bound of the memory that one heap keeps for its next chunks and large blocks.
inline constexpr uint64_t most_kept_bytes = uint64_t{64} << 20;

struct alignas(64) size_class {
  // What every allocation and free looks at comes first, in one cache line; what other threads write, in another.
  ThreadHeap* owner;
  chunk_header* available;  ///< allocation takes from the first
  uint64_t block_bytes;
  uint64_t blocks_per_chunk;
  chunk_header* full;
  chunk_header* spare;
  uint64_t chunks;
  /// Memory of chunks that have ended, linked through its first word, which the heap keeps for its next chunks up to a bound. It
  /// holds no blocks and counts nowhere.
  free_block* kept;

  alignas(64) std::atomic<free_block*> waiting;  ///< freed by other threads; linked where link_of tells
  std::atomic<uint64_t> waiting_blocks;
  uint64_t chunk_bytes;
  uint64_t usable_bytes;  ///< block size times blocks per chunk
  uint64_t chunk_pages;   ///< registered in the page map; 0 for classes above 1024 bytes
};

struct large_block_header {
  std::atomic<large_block_header*> pending_next;  ///< the block's own address until it is on the pending list
  large_block_header* previous;
  large_block_header* next;
  ThreadHeap* owner;
  uint64_t size;  ///< header included; a multiple of 8
};
static_assert(sizeof(large_block_header) == large_header_bytes);

struct heap_holder;

struct ThreadHeap : heap_accounts {
  size_class classes[size_class_count];
  ThreadHeap* newer = nullptr;  ///< list of the root
  ThreadHeap* older = nullptr;
  large_block_header* large_blocks = nullptr;
  std::atomic<large_block_header*> pending_large{nullptr};
  free_block* kept_mappings = nullptr;  ///< as `kept` of a class, for all classes of mapped chunks together
  /// Freed large blocks, the latest first, for requests of the same size.
  large_block_header* kept_large = nullptr;
  uint64_t kept_bytes = 0;  ///< of all three kinds
  std::mutex mutex;
  bool orphaned = false;

  // What every thread that frees a block here looks at lies apart from what the owner writes at every call.
  /// The owner's thread-local variable (heaps.h); null once orphaned.
  alignas(64) std::atomic<const heap_holder*> home{nullptr};
  /// The class for a request of up to headerless_bytes, by its rounded size in words.
  size_class* class_of_words[headerless_bytes / 8 + 1] = {};

  size_class& headers() { return classes[0]; }
};

/// Gives a new heap's classes their geometry.
void set_up_classes(ThreadHeap& heap);

/// Checks the invariants above in full; the heap must be still: its owner's thread, or the heap's mutex if it is orphaned.
bool heapIsValid(ThreadHeap& heap);

}  // namespace vlm::memory
