// From a request to a block and from a caller's pointer back to the block: what zalloc and zfree do at every call, inline. What
// stands ahead of a pointer p tells what it is:
//
//   p in a registered page                 a block of at most 1024 bytes, nothing ahead
//   word before p has bit 0                the chunk's address plus 1
//   word before p has bit 1                a distance d plus 2; the word at p - 8 - d is one of the other two
//   neither bit                            `size`, the last field of a large block's header
#pragma once

#include "Memory/chunks.h"
#include "Memory/heaps.h"
#include "Memory/large_blocks.h"

namespace vlm::memory {

/// Where a block with words ahead of the caller's pointer begins: its chunk, or its header if it is large.
struct block_place {
  chunk_header* chunk;
  large_block_header* large;
  void* start;
};
block_place find_headed_block(const void* pointer);

void* take_headed_block(ThreadHeap& heap, uint64_t rounded, bool aligned);
void give_headed_block(void* pointer) noexcept;
/// The rest of a free that changed a chunk's place.
void settle_chunk(size_class& c, chunk_header& chunk) noexcept;
void give_remote_block(chunk_header& chunk, void* block) noexcept;

/// A block for a rounded request (size_classes.h), counted in in_use; null if the system has no more.
inline void* take_block(ThreadHeap& heap, uint64_t rounded, bool aligned) {
  if (rounded > headerless_bytes) [[unlikely]]
    return take_headed_block(heap, rounded, aligned);
  size_class& c = heap.classes[size_class_of(rounded)];
  void* const block = take_class_block(c).block;
  drain_remote_if_any(c);
  return block;
}

/// Gives back a block of any heap; never makes a heap.
inline void give_block(void* pointer) {
  chunk_header* const chunk = pages.find(pointer);
  if (chunk == nullptr) [[unlikely]]
    return give_headed_block(pointer);
  size_class& c = *chunk->owner_class;
  if (!is_mine(*c.owner)) [[unlikely]]
    return give_remote_block(*chunk, pointer);
  if (push_block(c, *chunk, pointer)) [[unlikely]]
    return settle_chunk(c, *chunk);
  drain_remote_if_any(c);
}

}  // namespace vlm::memory
