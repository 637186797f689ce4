// The allocation entries: rounding, the soft limit, what failure means. Blocks are the engine's.
#include <cstring>

#include "Memory/accounting.h"
#include "Memory/blocks.h"
#include "Memory/failure_injection.h"
#include "Memory/size_classes.h"
#include "velorim/memory.h"

uint64_t system_memory = 0;
uint64_t system_allocation_limit = ~uint64_t{0};

namespace vlm::memory {
namespace {

/// The end of every request that cannot be met.
[[gnu::cold, gnu::noinline]] void* allocation_failed(heap_accounts* heap, uint64_t size, int32_t fail_mode) {
  if (fail_mode == FailFatal) nomem();
  if (fail_mode == FailReport && heap != nullptr) passes_limit(*heap, size);
  return nullptr;
}

/// Puts a chunk that gave its last block where it belongs; the block.
[[gnu::cold, gnu::noinline]] void* with_chunk_full(size_class& c, chunk_header& chunk, void* block) noexcept {
  move_to_full(c, chunk);
  return block;
}

/// Every request, step by step.
[[gnu::noinline]] void* allocate(uint64_t size, int32_t wants_alignment, int32_t fail_mode) noexcept {
  if (size == 0) return nullptr;
  const bool aligned = wants_alignment != 0;
  ThreadHeap* heap = heap_of_thread();
  if (heap == nullptr) heap = make_heap();
  const uint64_t rounded = rounded_request(size, aligned);
  if (heap == nullptr || rounded < size) return allocation_failed(heap, size, fail_mode);
  if (heap->limit.get() != 0 && passes_limit(*heap, rounded) && fail_mode == FailNull) return nullptr;
  void* const block = allocation_must_fail(fail_mode) ? nullptr : take_block(*heap, rounded, aligned);
  if (block == nullptr) return allocation_failed(heap, size, fail_mode);
  heap->peak.raise_to(heap->in_use.get());
  return block;
}

}  // namespace
}  // namespace vlm::memory

void* zalloc(uint64_t size, int32_t aligned, int32_t failMode) noexcept {
  using namespace vlm::memory;
  // The common case: a small block from a chunk at hand, with nothing else to look after.
  if (allocates_directly() && size - 1 < headerless_bytes) [[likely]] {
    ThreadHeap& heap = *holder.heap;
    uint64_t rounded = size + 7;
    if (aligned != 0) [[unlikely]]
      rounded = round_up(size, 16);
    size_class& c = *heap.class_of_words[rounded / 8];
    chunk_header* const chunk = c.available;
    if (chunk != nullptr && c.waiting.load(std::memory_order_relaxed) == nullptr) [[likely]] {
      const popped taken = pop_block(heap, c, *chunk);
      heap.peak.raise_to(taken.in_use);
      if (taken.last) [[unlikely]]
        return with_chunk_full(c, *chunk, taken.block);
      return taken.block;
    }
  }
  return allocate(size, aligned, failMode);
}

void zfree(void* pointer) noexcept {
  // Without a root there is no page map, and no block either.
  if (pointer != nullptr) vlm::memory::give_block(pointer);
}

void* zrealloc(void* pointer, uint64_t size, int32_t aligned, int32_t failMode) noexcept {
  if (pointer == nullptr) return zalloc(size, aligned, failMode);
  const uint64_t usable = vlm::memory::usable_bytes(pointer);
  const bool placed = aligned == 0 || reinterpret_cast<uintptr_t>(pointer) % 16 == 0;
  if (usable >= size && usable - size <= size && placed) return pointer;
  void* const moved = zalloc(size, aligned, failMode);
  if (moved == nullptr) return nullptr;
  std::memcpy(moved, pointer, usable < size ? usable : size);
  zfree(pointer);
  return moved;
}

uint64_t zalloc_round(uint64_t size, int32_t aligned) noexcept {
  return vlm::memory::counted_bytes(size, aligned != 0);
}

void* kCalloc(uint64_t count, uint64_t size, int32_t aligned, int32_t failMode) noexcept {
  uint64_t bytes;
  if (__builtin_mul_overflow(count, size, &bytes)) bytes = ~uint64_t{0};
  void* const block = zalloc(bytes, aligned, failMode);
  return block == nullptr ? nullptr : std::memset(block, 0, bytes);
}

void* Malloc_fun(uint64_t size) noexcept { return zalloc(size, 0, FailFatal); }
void* MallocAligned_fun(uint64_t size) noexcept { return zalloc(size, 1, FailFatal); }
void* MallocAlign16_fun(uint64_t size) noexcept { return zalloc(size, 1, FailFatal); }
void* Calloc_fun(uint64_t count, uint64_t size) noexcept { return kCalloc(count, size, 0, FailFatal); }
void* CallocAligned_fun(uint64_t count, uint64_t size) noexcept { return kCalloc(count, size, 1, FailFatal); }
void* CallocAlign16_fun(uint64_t count, uint64_t size) noexcept { return kCalloc(count, size, 1, FailFatal); }
void* Realloc_fun(void* pointer, uint64_t size) noexcept { return zrealloc(pointer, size, 0, FailFatal); }
void* ReallocAligned_fun(void* pointer, uint64_t size) noexcept {
  return zrealloc(pointer, size, 1, FailFatal);
}
void Free_fun(void* pointer) noexcept { zfree(pointer); }

void* Malloc_fun_for_gmp(uint64_t size) noexcept { return zalloc(size, 0, FailFatal); }
void* Realloc_fun_for_gmp(void* pointer, uint64_t, uint64_t newSize) noexcept {
  return zrealloc(pointer, newSize, 0, FailFatal);
}
void Free_fun_for_gmp(void* pointer, uint64_t) noexcept { zfree(pointer); }

void* RuntimeAllocate(uint64_t size) noexcept { return zalloc(size, 0, FailNull); }
void* RuntimeAllocateAligned(uint64_t size) noexcept { return zalloc(size, 1, FailNull); }
void* RuntimeReallocate(void* pointer, uint64_t size) noexcept {
  return zrealloc(pointer, size, 0, FailNull);
}
void* RuntimeReallocateAligned(void* pointer, uint64_t size) noexcept {
  return zrealloc(pointer, size, 1, FailNull);
}
void* RuntimeCallocate(uint64_t count, uint64_t size) noexcept { return kCalloc(count, size, 0, FailNull); }
void* RuntimeCallocateAligned(uint64_t count, uint64_t size) noexcept {
  return kCalloc(count, size, 1, FailNull);
}
void RuntimeFree(void* pointer) noexcept { zfree(pointer); }
