// The life of a large block. Working memory and temporaries come and go in the same few sizes; a heap keeps the last of them, since
// mapping and clearing them anew would cost more than most work on them.
#include "Memory/large_blocks.h"

#include <cstdlib>
#include <new>

#include "Memory/chunk_memory.h"
#include "Memory/failure_injection.h"
#include "Memory/shadow.h"

namespace vlm::memory {
namespace {

/// The larger part of the address space is no size; a sanitizer's malloc ends the process over it.
constexpr uint64_t no_size = uint64_t{1} << 48;

constexpr int most_kept_blocks = 8;
constexpr uint64_t most_kept_block_bytes = most_kept_bytes / 4;

/// Takes a block out of the list of those that are kept.
large_block_header* taken_out(ThreadHeap& heap, large_block_header*& link) {
  large_block_header* const block = link;
  link = block->next;
  heap.kept_bytes -= block->size;
  shadow::allow(block + 1, block->size - large_header_bytes);
  return block;
}

void keep(ThreadHeap& heap, large_block_header& block) {
  block.next = heap.kept_large;
  heap.kept_large = &block;
  heap.kept_bytes += block.size;
  shadow::forbid(&block + 1, block.size - large_header_bytes);
  large_block_header** link = &heap.kept_large;
  for (int i = 0; i < most_kept_blocks && *link != nullptr; ++i) link = &(*link)->next;
  if (*link != nullptr) std::free(taken_out(heap, *link));
}

/// A kept block of this very size, or null: another size would show in the accounts.
large_block_header* kept_block(ThreadHeap& heap, uint64_t size) {
  for (large_block_header** link = &heap.kept_large; *link != nullptr; link = &(*link)->next) {
    if ((*link)->size == size) return taken_out(heap, *link);
  }
  return nullptr;
}

}  // namespace

large_block_header* take_large_block(ThreadHeap& heap, uint64_t rounded) {
  reclaim_large_if_any(heap);
  if (rounded > system_allocation_limit || rounded >= no_size || system_allocation_must_fail())
    return nullptr;
  void* memory = kept_block(heap, rounded);
  if (memory == nullptr) memory = std::malloc(rounded);
  if (memory == nullptr && heap.kept_bytes != 0) {
    release_kept_memory(heap);
    memory = std::malloc(rounded);
  }
  if (memory == nullptr) return nullptr;
  auto* const block = new (memory) large_block_header{};
  block->pending_next.store(block, std::memory_order_relaxed);
  block->next = heap.large_blocks;
  block->owner = &heap;
  block->size = rounded;
  if (block->next != nullptr) block->next->previous = block;
  heap.large_blocks = block;
  heap.in_use.add(rounded);
  return block;
}

void free_large_block(large_block_header& block) {
  ThreadHeap& heap = *block.owner;
  (block.previous != nullptr ? block.previous->next : heap.large_blocks) = block.next;
  if (block.next != nullptr) block.next->previous = block.previous;
  heap.in_use.subtract(block.size);
  if (block.size <= most_kept_block_bytes && heap.kept_bytes + block.size <= most_kept_bytes) {
    keep(heap, block);
  } else {
    std::free(&block);
  }
}

bool leave_to_owner(large_block_header& block) {
  ThreadHeap& heap = *block.owner;
  const std::lock_guard guard(heap.mutex);
  if (heap.orphaned) return false;
  block.pending_next.store(heap.pending_large.load(std::memory_order_relaxed), std::memory_order_relaxed);
  heap.pending_large.store(&block, std::memory_order_relaxed);
  return true;
}

void reclaim_large_locked(ThreadHeap& heap) {
  large_block_header* block = heap.pending_large.exchange(nullptr, std::memory_order_relaxed);
  while (block != nullptr) {
    large_block_header* const next = block->pending_next.load(std::memory_order_relaxed);
    free_large_block(*block);
    block = next;
  }
}

void reclaim_large(ThreadHeap& heap) {
  const std::lock_guard guard(heap.mutex);
  reclaim_large_locked(heap);
}

void release_kept_large_blocks(ThreadHeap& heap) {
  while (heap.kept_large != nullptr) std::free(taken_out(heap, heap.kept_large));
}

void free_all_large_blocks(ThreadHeap& heap) {
  for (large_block_header* block = heap.large_blocks; block != nullptr;) {
    large_block_header* const next = block->next;
    free_large_block(*block);
    block = next;
  }
}

uint64_t pending_large_bytes(const ThreadHeap& heap) {
  uint64_t bytes = 0;
  for (const auto* block = heap.pending_large.load(std::memory_order_relaxed); block != nullptr;
       block = block->pending_next.load(std::memory_order_relaxed)) {
    bytes += block->size;
  }
  return bytes;
}

}  // namespace vlm::memory
