// The records of the heaps. What holds of them at every moment that no operation is under way, checked by heapIsValid:
//
//  1. A chunk of a class is on its full list (no free block), on its available list (some free block, some in use) or is the
//     class's one spare (every block free, on no list). `chunks` counts the two lists.
//  2. A chunk's free list has `free_count` blocks, all inside its memory at multiples of the block size; every other block
//     is in use: in its caller's hands, or freed by another thread and waiting on the chunk's remote list.
//  3. A chunk is on its class's remote-chunks list exactly if its remote list is not empty; `remote_next` points to the chunk
//     itself otherwise. `remote_bytes` is the sum of the waiting blocks.
//  4. Every page of a chunk of the classes 0 to 64 leads to the chunk in the page map; no other page leads anywhere.
//  5. `in_use` is the size of the heap's record, plus the block sizes of all blocks in use (class 0 included: the headers of the
//     other classes' chunks), plus the sizes of the large blocks. What an outside allocator reports comes on top.
//  6. A chunk of class 1 to 160 has its header in a block of class 0 of the same heap; a chunk of class 0 has it in its own
//     first 64 bytes. Class 0 has no remote blocks.
//  7. An orphaned heap has no spares, nothing waiting and no memory kept, and holds at least one block or large block.
//
// Who may touch what. The owner uses its lists and counters without a lock. Another thread that frees a block of a class pushes
// it under the class's mutex, a large block under the heap's; the owner looks at those lists without a lock and takes it when they
// are not empty. Once `orphaned` is set, which is under the heap's mutex and then that of each class in turn, everything in the
// heap is under the heap's mutex: a thread that finds the mark under a class's mutex goes on to the heap's. The mutex of the root
// guards the list of heaps; order of locking: root, heap, class, level lock of the page map.
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

struct chunk_header {
  size_class* owner_class;
  chunk_header* previous;
  chunk_header* next;
  chunk_header* remote_next;
  free_block* free_list;
  free_block* remote_free_list;
  void* memory;
  uint64_t free_count;
};
inline constexpr uint64_t chunk_header_bytes = 64;
static_assert(sizeof(chunk_header) == chunk_header_bytes);

inline constexpr uint64_t mapped_chunk_bytes = 0x10000;

struct alignas(64) size_class {
  // What every allocation and free looks at comes first, in one cache line.
  ThreadHeap* owner;
  chunk_header* available;  ///< allocation takes from the first
  std::atomic<chunk_header*> remote_chunks;
  uint64_t block_bytes;
  uint64_t blocks_per_chunk;
  chunk_header* full;
  chunk_header* spare;
  uint64_t chunks;

  uint64_t chunk_bytes;
  uint64_t usable_bytes;  ///< block size times blocks per chunk
  uint64_t chunk_pages;   ///< registered in the page map; 0 for classes above 1024 bytes
  uint64_t remote_bytes;
  /// Memory of chunks that have ended, linked through its first word, which the heap keeps for its next chunks up to a bound. It
  /// holds no blocks and counts nowhere.
  free_block* kept;
  bool orphaned;
  std::mutex mutex;
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
  std::atomic<const heap_holder*> home{
      nullptr};  ///< the owner's thread-local variable (heaps.h); null once orphaned
  size_class classes[size_class_count];
  ThreadHeap* newer = nullptr;  ///< list of the root
  ThreadHeap* older = nullptr;
  large_block_header* large_blocks = nullptr;
  std::atomic<large_block_header*> pending_large{nullptr};
  free_block* kept_mappings = nullptr;  ///< as `kept` of a class, for all classes of mapped chunks together
  uint64_t kept_bytes = 0;              ///< of both kinds
  std::mutex mutex;
  bool orphaned = false;

  size_class& headers() { return classes[0]; }
};

/// Gives a new heap's classes their geometry.
void set_up_classes(ThreadHeap& heap);

/// Checks the invariants above in full; the heap must be still: its owner's thread, or the heap's mutex if it is orphaned.
bool heapIsValid(ThreadHeap& heap);

}  // namespace vlm::memory
