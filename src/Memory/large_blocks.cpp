// The life of a large block.
#include "Memory/large_blocks.h"

#include <cstdlib>
#include <new>

#include "Memory/chunk_memory.h"
#include "Memory/failure_injection.h"

namespace vlm::memory {
namespace {

/// The larger part of the address space is no size; a sanitizer's malloc ends the process over it.
constexpr uint64_t no_size = uint64_t{1} << 48;

}  // namespace

large_block_header* take_large_block(ThreadHeap& heap, uint64_t rounded) {
  reclaim_large_if_any(heap);
  if (rounded > system_allocation_limit || rounded >= no_size || system_allocation_must_fail())
    return nullptr;
  void* memory = std::malloc(rounded);
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
  std::free(&block);
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
