// The allocation entries: rounding, the soft limit, what failure means. Blocks are the engine's.
#include <cstring>

#include "Memory/accounting.h"
#include "Memory/block_engine.h"
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

}  // namespace
}  // namespace vlm::memory

void* zalloc(uint64_t size, int32_t aligned, int32_t failMode) noexcept {
  using namespace vlm::memory;
  if (size == 0) return nullptr;
  heap_accounts* const heap = current_heap();
  const uint64_t rounded = rounded_request(size, aligned != 0);
  if (heap == nullptr || rounded < size) [[unlikely]] {
    return allocation_failed(heap, size, failMode);
  }
  if (heap->limit.get() != 0 && passes_limit(*heap, rounded) && failMode == FailNull) return nullptr;
  void* const block = allocation_must_fail(failMode) ? nullptr : take_block(*heap, rounded, aligned != 0);
  if (block == nullptr) [[unlikely]] {
    return allocation_failed(heap, size, failMode);
  }
  heap->peak.raise_to(heap->in_use.get());
  return block;
}

void zfree(void* pointer) noexcept {
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
