// The invariants of heap_records.h as code.
#include <cstdlib>

#include "Memory/chunks.h"
#include "Memory/shadow.h"

namespace vlm::memory {
namespace {

/// Walks lists that a fault may have closed to a ring; more steps than blocks exist mean that one did.
class heap_walk {
 public:
  explicit heap_walk(ThreadHeap& heap) : heap_(heap) {}

  bool valid() {
    for (size_class& c : heap_.classes) {
      if (!class_valid(c)) return false;
    }
    if (heap_.headers().waiting_blocks != 0 || !kept_valid() || blocks_of(heap_.headers()) != chunks_)
      return false;
    if (!large_blocks_valid()) return false;
    if (heap_.orphaned && (spares_ != 0 || heap_.kept_bytes != 0 || blocks_in_use_ + large_ == 0))
      return false;
    return heap_.in_use.get() - heap_.outside == bytes_ + sizeof(ThreadHeap);
  }

 private:
  enum class place { full, available, spare };

  uint64_t blocks_of(const size_class& c) const {
    uint64_t free = 0;
    for (const chunk_header* chunk = c.available; chunk != nullptr; chunk = chunk->next) {
      free += c.blocks_per_chunk - chunk->used;
    }
    return c.chunks * c.blocks_per_chunk - free;
  }

  bool class_valid(size_class& c) {
    if (c.owner != &heap_ || (c.waiting == &closed_list) != heap_.orphaned) return false;
    const uint64_t before = chunks_;
    if (!list_valid(c, c.full, place::full) || !list_valid(c, c.available, place::available)) return false;
    if (&c != heap_.classes) {
      if (chunks_ - before != c.chunks) return false;
    }
    if (c.spare != nullptr) {
      ++spares_;
      if (!chunk_valid(c, *c.spare, place::spare)) return false;
    }
    if (!waiting_valid(c)) return false;
    blocks_in_use_ += blocks_of(c);
    bytes_ += blocks_of(c) * c.block_bytes;
    return true;
  }

  bool list_valid(size_class& c, const chunk_header* first, place where) {
    const chunk_header* previous = nullptr;
    uint64_t steps = 0;
    for (const chunk_header* chunk = first; chunk != nullptr; previous = chunk, chunk = chunk->next) {
      if (++steps > c.chunks || chunk->previous != previous || !chunk_valid(c, *chunk, where)) return false;
    }
    return true;
  }

  bool chunk_valid(size_class& c, const chunk_header& chunk, place where) {
    if (&c != heap_.classes) ++chunks_;
    const bool fits = where == place::full    ? chunk.used == c.blocks_per_chunk
                      : where == place::spare ? chunk.used == 0
                                              : chunk.used > 0 && chunk.used < c.blocks_per_chunk;
    return chunk.owner_class == &c && fits && free_list_valid(c, chunk) && pages_valid(c, chunk);
  }

  static bool free_list_valid(const size_class& c, const chunk_header& chunk) {
    const uint64_t expected = c.blocks_per_chunk - chunk.used;
    uint64_t count = 0;
    const char* const first = static_cast<const char*>(chunk.memory);
    for (const free_block* block = chunk.free_list; block != nullptr;) {
      const auto offset = static_cast<uint64_t>(reinterpret_cast<const char*>(block) - first);
      if (++count > expected || offset >= c.usable_bytes || offset % c.block_bytes != 0) return false;
      shadow::allow(block, sizeof(free_block));
      const free_block* const next = block->next;
      shadow::forbid(block, sizeof(free_block));
      block = next;
    }
    return count == expected;
  }

  /// Other threads may push while the owner walks: what was there stays.
  static bool waiting_valid(const size_class& c) {
    uint64_t count = 0;
    free_block* link = c.waiting.load(std::memory_order_acquire);
    if (link == &closed_list) return true;
    const uint64_t most = c.waiting_blocks.load(std::memory_order_relaxed);
    for (; link != nullptr; link = link->next) {
      const class_block waited = waiting_block(c, link);
      if (++count > most || waited.chunk->owner_class != &c) return false;
      const auto offset = static_cast<uint64_t>(static_cast<const char*>(waited.block) -
                                                static_cast<const char*>(waited.chunk->memory));
      if (offset >= c.usable_bytes || offset % c.block_bytes != 0) return false;
    }
    return true;
  }

  bool kept_valid() const {
    uint64_t bytes = 0;
    for (const size_class& c : heap_.classes) bytes += length(c.kept) * c.chunk_bytes;
    bytes += length(heap_.kept_mappings) * mapped_chunk_bytes;
    for (const auto* block = heap_.kept_large; block != nullptr; block = block->next) bytes += block->size;
    return bytes == heap_.kept_bytes && bytes <= most_kept_bytes;
  }
  static uint64_t length(const free_block* list) {
    uint64_t count = 0;
    for (; list != nullptr; list = list->next) ++count;
    return count;
  }

  static bool pages_valid(const size_class& c, const chunk_header& chunk) {
    const char* const first = static_cast<const char*>(chunk.memory);
    const chunk_header* const expected = c.chunk_pages != 0 ? &chunk : nullptr;
    return pages.find(first) == expected && pages.find(first + c.usable_bytes - 1) == expected;
  }

  bool large_blocks_valid() {
    const large_block_header* previous = nullptr;
    for (const large_block_header* block = heap_.large_blocks; block != nullptr; block = block->next) {
      if (block->previous != previous || block->owner != &heap_ || block->size % 8 != 0) return false;
      ++large_;
      bytes_ += block->size;
      previous = block;
    }
    return true;
  }

  ThreadHeap& heap_;
  uint64_t chunks_ = 0;  ///< of the classes 1 to 160, spares included
  uint64_t spares_ = 0;
  uint64_t blocks_in_use_ = 0;
  uint64_t large_ = 0;
  uint64_t bytes_ = 0;
};

}  // namespace

bool heapIsValid(ThreadHeap& heap) { return heap_walk(heap).valid(); }

}  // namespace vlm::memory
