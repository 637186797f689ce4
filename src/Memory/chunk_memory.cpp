// Memory of chunks. A loop that fills and empties some chunks would otherwise have the system map, fault in and unmap all of them
// every time, at up to a hundred times the price of their blocks; hence what a heap keeps.
#include "Memory/chunk_memory.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>

#include "Memory/failure_injection.h"
#include "Memory/large_blocks.h"
#include "Memory/shadow.h"

namespace vlm::memory {
namespace {

bool is_mapped(const size_class& c) { return c.chunk_pages != 0; }

void* from_system(const size_class& c) {
  if (!is_mapped(c)) return std::malloc(c.chunk_bytes);
  void* const memory =
      mmap(nullptr, c.chunk_bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) return nullptr;
  shadow::holds_pointers(memory, c.chunk_bytes);
  return memory;
}

void to_system(const size_class& c, void* memory) {
  if (is_mapped(c)) {
    shadow::holds_none(memory, c.chunk_bytes);
    munmap(memory, c.chunk_bytes);
  } else {
    std::free(memory);
  }
}

free_block*& kept_list(size_class& c) { return is_mapped(c) ? c.owner->kept_mappings : c.kept; }

void release_list(size_class& c) {
  free_block*& list = kept_list(c);
  while (list != nullptr) {
    free_block* const memory = list;
    list = memory->next;
    c.owner->kept_bytes -= c.chunk_bytes;
    to_system(c, memory);
  }
}

}  // namespace

void* take_chunk_memory(size_class& c) {
  if (system_allocation_must_fail()) return nullptr;
  free_block*& list = kept_list(c);
  if (list != nullptr) {
    free_block* const memory = list;
    list = memory->next;
    c.owner->kept_bytes -= c.chunk_bytes;
    return memory;
  }
  void* const memory = from_system(c);
  if (memory != nullptr || c.owner->kept_bytes == 0) return memory;
  release_kept_memory(*c.owner);
  return from_system(c);
}

void give_chunk_memory(size_class& c, void* memory) {
  shadow::allow(memory, c.chunk_bytes);
  if (c.owner->kept_bytes + c.chunk_bytes > most_kept_bytes) return to_system(c, memory);
  free_block* const kept = static_cast<free_block*>(memory);
  free_block*& list = kept_list(c);
  kept->next = list;
  list = kept;
  c.owner->kept_bytes += c.chunk_bytes;
}

void release_kept_memory(ThreadHeap& heap) {
  for (size_class& c : heap.classes) release_list(c);
  release_kept_large_blocks(heap);
}

page_info read_page_info() {
  const uint64_t bytes = static_cast<uint64_t>(sysconf(_SC_PAGESIZE));
  return {bytes, bytes - 1, mapped_chunk_bytes / bytes, static_cast<uint32_t>(__builtin_ctzll(bytes))};
}

}  // namespace vlm::memory
