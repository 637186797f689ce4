// Blocks and chunks of one size class. All of it is for the owner of the heap, or under the mutex of an orphaned one.
#pragma once

#include "Memory/heap_records.h"
#include "Memory/shadow.h"

namespace vlm::memory {

/// A block with the chunk it lies in; both null if the system has no more.
struct class_block {
  void* block;
  chunk_header* chunk;
};

/// Adds a chunk of free blocks to the class, the spare or a new one; null if the system has no more.
chunk_header* more_blocks(size_class& c) noexcept;
/// Keeps a chunk's place in step with its free blocks after a free that made it usable again or entirely free.
/// Returns whether the chunk is entirely free now; it may be gone then.
bool chunk_became_usable_or_free(size_class& c, chunk_header& chunk) noexcept;
void move_to_full(size_class& c, chunk_header& chunk) noexcept;
/// Gives the spare chunk, if there is one, back.
void release_spare(size_class& c);
/// Takes every chunk of the class apart, whatever it still holds.
void release_all_chunks(size_class& c);
/// Takes back all blocks that other threads freed in this class.
void drain_remote(size_class& c) noexcept;
/// The same for good: from now on leave_to_owner refuses.
void close_remote(size_class& c);
/// A block on a class's waiting list, from the word that links it, with its chunk.
class_block waiting_block(const size_class& c, free_block* link);
/// Another thread's free: leaves the block waiting. False, with nothing done, if the class is closed.
bool leave_to_owner(size_class& c, void* block);

/// Set in the word ahead of a block of the classes above headerless_bytes; the rest of that word is the chunk's address.
inline constexpr uint64_t chunk_bit = 1;

/// What a pop leaves behind, in registers: the counters are not read again.
struct popped {
  void* block;
  bool last;        ///< of the chunk's free blocks
  uint64_t in_use;  ///< of the heap
};

/// Takes the first free block of a chunk that has one, counted in in_use; the chunk stays on its list.
inline popped pop_block(ThreadHeap& heap, size_class& c, chunk_header& chunk) {
  free_block* const block = chunk.free_list;
  shadow::allow(block, c.block_bytes);
  chunk.free_list = block->next;
  ++chunk.used;
  return {block, chunk.free_list == nullptr, heap.in_use.add(c.block_bytes)};
}

/// A free block of the class, counted in in_use.
inline class_block take_class_block(size_class& c) {
  chunk_header* chunk = c.available;
  if (chunk == nullptr) [[unlikely]] {
    chunk = more_blocks(c);
    if (chunk == nullptr) return {nullptr, nullptr};
  }
  const popped taken = pop_block(*c.owner, c, *chunk);
  if (taken.last) [[unlikely]]
    move_to_full(c, *chunk);
  return {taken.block, chunk};
}

/// Puts a block back into its chunk; returns whether that made the chunk usable or entirely free, so that its place must change.
inline bool push_block(size_class& c, chunk_header& chunk, void* block) {
  free_block* const freed = static_cast<free_block*>(block);
  free_block* const next = chunk.free_list;
  freed->next = next;
  chunk.free_list = freed;
  shadow::forbid(block, c.block_bytes);
  c.owner->in_use.subtract(c.block_bytes);
  return (--chunk.used == 0) | (next == nullptr);
}

/// The owner's free of a block; returns whether the chunk is entirely free now.
inline bool free_class_block(size_class& c, chunk_header& chunk, void* block) {
  return push_block(c, chunk, block) && chunk_became_usable_or_free(c, chunk);
}

/// Looks without a lock whether other threads freed blocks; one that is pushed just after the look waits for the next call.
inline void drain_remote_if_any(size_class& c) {
  if (c.waiting.load(std::memory_order_relaxed) != nullptr) [[unlikely]]
    drain_remote(c);
}

}  // namespace vlm::memory
