// Blocks and chunks of one size class. All of it is for the owner of the heap, or under the mutex of an orphaned one.
#pragma once

#include "Memory/heap_records.h"
#include "Memory/shadow.h"

namespace vlm::memory {

/// Adds a chunk of free blocks to the class, the spare or a new one; null if the system has no more.
chunk_header* more_blocks(size_class& c);
/// Keeps a chunk's place in step with its free blocks after a free that made it usable again or entirely free.
/// Returns whether the chunk is entirely free now; it may be gone then.
bool chunk_became_usable_or_free(size_class& c, chunk_header& chunk);
void move_to_full(size_class& c, chunk_header& chunk);
/// Gives the spare chunk, if there is one, back.
void release_spare(size_class& c);
/// Takes every chunk of the class apart, whatever it still holds.
void release_all_chunks(size_class& c);
/// Takes back all blocks that other threads freed in this class; the second form under a mutex that the caller holds.
void drain_remote(size_class& c);
void drain_remote_locked(size_class& c);
/// Another thread's free: leaves the block on its chunk's remote list. False, with nothing done, if the class is orphaned.
bool leave_to_owner(size_class& c, chunk_header& chunk, void* block);

/// A block with the chunk it lies in; both null if the system has no more.
struct class_block {
  void* block;
  chunk_header* chunk;
};

/// What a pop leaves behind, in registers: the counters are not read again.
struct popped {
  void* block;
  uint64_t left;    ///< free blocks of the chunk
  uint64_t in_use;  ///< of the heap
};

/// Takes the first free block of a chunk that has one, counted in in_use; the chunk stays on its list.
inline popped pop_block(ThreadHeap& heap, size_class& c, chunk_header& chunk) {
  free_block* const block = chunk.free_list;
  shadow::allow(block, c.block_bytes);
  const uint64_t left = chunk.free_count - 1;
  chunk.free_list = block->next;
  chunk.free_count = left;
  return {block, left, heap.in_use.add(c.block_bytes)};
}

/// A free block of the class, counted in in_use.
inline class_block take_class_block(size_class& c) {
  chunk_header* chunk = c.available;
  if (chunk == nullptr) [[unlikely]] {
    chunk = more_blocks(c);
    if (chunk == nullptr) return {nullptr, nullptr};
  }
  const popped taken = pop_block(*c.owner, c, *chunk);
  if (taken.left == 0) [[unlikely]]
    move_to_full(c, *chunk);
  return {taken.block, chunk};
}

/// The owner's free of a block; returns whether the chunk is entirely free now.
inline bool free_class_block(size_class& c, chunk_header& chunk, void* block) {
  free_block* const freed = static_cast<free_block*>(block);
  freed->next = chunk.free_list;
  chunk.free_list = freed;
  shadow::forbid(block, c.block_bytes);
  c.owner->in_use.subtract(c.block_bytes);
  // In one comparison: 1, which wraps, for a chunk that was full, or all.
  const uint64_t count = ++chunk.free_count;
  if (count - 2 >= c.blocks_per_chunk - 2) [[unlikely]]
    return chunk_became_usable_or_free(c, chunk);
  return false;
}

/// Looks without a lock whether other threads freed blocks; one that is pushed just after the look waits for the next call.
inline void drain_remote_if_any(size_class& c) {
  if (c.remote_chunks.load(std::memory_order_relaxed) != nullptr) [[unlikely]]
    drain_remote(c);
}

}  // namespace vlm::memory
