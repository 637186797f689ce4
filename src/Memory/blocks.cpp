// Blocks with words ahead of them, and blocks of other threads' heaps.
#include "Memory/blocks.h"

namespace vlm::memory {
namespace {

constexpr uint64_t distance_bit = 2;

/// The caller's pointer behind the words ahead; `last` is the first address that could be it.
void* place_pointer(char* last, bool aligned) {
  if (!aligned || reinterpret_cast<uintptr_t>(last) % 16 == 0) return last;
  *reinterpret_cast<uint64_t*>(last) = alignment_word_bytes | distance_bit;
  return last + alignment_word_bytes;
}

}  // namespace

block_place find_headed_block(const void* pointer) {
  const uint64_t* word = static_cast<const uint64_t*>(pointer) - 1;
  if (*word & distance_bit) word -= (*word & ~distance_bit) / sizeof(uint64_t);
  if (*word & chunk_bit) {
    return {reinterpret_cast<chunk_header*>(*word - chunk_bit), nullptr, const_cast<uint64_t*>(word)};
  }
  const uint64_t* const header = word + 1 - large_header_bytes / sizeof(uint64_t);
  void* const start = const_cast<uint64_t*>(header);
  return {nullptr, static_cast<large_block_header*>(start), start};
}

void* take_headed_block(ThreadHeap& heap, uint64_t rounded, bool aligned) {
  if (rounded > largest_class_bytes) {
    large_block_header* const large = take_large_block(heap, rounded);
    return large == nullptr ? nullptr : place_pointer(reinterpret_cast<char*>(large + 1), aligned);
  }
  size_class& c = heap.classes[size_class_of(rounded)];
  const auto [block, chunk] = take_class_block(c);
  if (block == nullptr) return nullptr;
  *static_cast<uint64_t*>(block) = reinterpret_cast<uintptr_t>(chunk) | chunk_bit;
  drain_remote_if_any(c);
  return place_pointer(static_cast<char*>(block) + class_header_bytes, aligned);
}

void give_remote_block(chunk_header& chunk, void* block) noexcept {
  if (!leave_to_owner(*chunk.owner_class, block)) free_into_orphan(chunk, block);
}

void settle_chunk(size_class& c, chunk_header& chunk) noexcept {
  chunk_became_usable_or_free(c, chunk);
  drain_remote_if_any(c);
}

void give_headed_block(void* pointer) noexcept {
  const block_place place = find_headed_block(pointer);
  ThreadHeap* const owner = place.chunk != nullptr ? place.chunk->owner_class->owner : place.large->owner;
  const bool mine = is_mine(*owner);
  if (place.chunk != nullptr) {
    if (!mine) return give_remote_block(*place.chunk, place.start);
    size_class& c = *place.chunk->owner_class;
    free_class_block(c, *place.chunk, place.start);
    drain_remote_if_any(c);
  } else if (mine) {
    free_large_block(*place.large);
    reclaim_large_if_any(*owner);
  } else if (!leave_to_owner(*place.large)) {
    free_into_orphan(*place.large);
  }
}

uint64_t usable_bytes(const void* pointer) {
  const chunk_header* chunk = pages.find(pointer);
  const void* start = pointer;
  uint64_t size = 0;
  if (chunk != nullptr) {
    size = chunk->owner_class->block_bytes;
  } else {
    const block_place place = find_headed_block(pointer);
    start = place.start;
    size = place.chunk != nullptr ? place.chunk->owner_class->block_bytes : place.large->size;
  }
  return size - static_cast<uint64_t>(static_cast<const char*>(pointer) - static_cast<const char*>(start));
}

}  // namespace vlm::memory
