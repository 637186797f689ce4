// From an address to the chunk that owns its page, without a lock: a radix tree over the page numbers of 48-bit addresses.
//
//   top     one table for the process, indexed by bits 24 and up of the page number
//   middle  4096 pointers, bits 12 to 23
//   leaf    4096 chunks, bits 0 to 11
//
// Levels are made when a page below them is first registered and live until the map is torn down. In place of a level that does not
// exist stands one without entries, shared by all, so that a look-up tests nothing on its way: an address whose page is not
// registered gives null at the end.
#pragma once

#include <atomic>
#include <cstdint>

namespace vlm::memory {

struct chunk_header;

inline constexpr int address_bits = 48;
inline constexpr int level_bits = 12;
inline constexpr uint64_t level_entries = uint64_t{1} << level_bits;

/// Page geometry, read from the system when the root is made.
struct page_info {
  uint64_t page_bytes;
  uint64_t page_mask;
  uint64_t pages_per_chunk;
  uint32_t page_shift;
};

class page_map {
 public:
  /// Makes the top level; false if the system allocator fails.
  bool create(const page_info& pages);
  /// Frees all levels. Nobody may look anything up any more.
  void destroy();

  /// The chunk registered for the page of an address, or null.
  chunk_header* find(const void* address) const {
    const uint64_t page = page_of(address);
    const middle_level* const middle = top_[page >> (2 * level_bits)].load(std::memory_order_acquire);
    const leaf_level* const leaf =
        middle->leaves[page >> level_bits & (level_entries - 1)].load(std::memory_order_acquire);
    return leaf->chunks[page & (level_entries - 1)].load(std::memory_order_relaxed);
  }

  /// Registers `chunk` for consecutive pages; false if a level cannot be had, with none of the pages registered.
  bool insert(const void* memory, uint64_t pages, chunk_header* chunk);
  /// Clears the entries of pages that are registered. Levels stay.
  void erase(const void* memory, uint64_t pages);

 private:
  // A constant where the processor leaves no choice, which spares every look-up a load.
#if defined(__x86_64__)
  static constexpr uint32_t shift() { return 12; }
#else
  uint32_t shift() const { return page_shift_; }
#endif
  uint64_t page_of(const void* address) const { return reinterpret_cast<uintptr_t>(address) >> shift(); }

  struct leaf_level {
    std::atomic<chunk_header*> chunks[level_entries];
  };
  struct middle_level {
    std::atomic<leaf_level*> leaves[level_entries];
  };

  static leaf_level no_leaf;
  static middle_level no_middle;

  leaf_level* leaf_of(uint64_t page);
  void store(const void* memory, uint64_t pages, chunk_header* chunk);

  std::atomic<middle_level*>* top_ = nullptr;
  uint64_t top_entries_ = 0;
  uint32_t page_shift_ = 0;
};

/// The map of the process. It has a top level exactly while the root exists.
extern constinit page_map pages;

}  // namespace vlm::memory
