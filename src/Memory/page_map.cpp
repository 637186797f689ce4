// The making and the end of the page map's levels, and its writers.
#include "Memory/page_map.h"

#include <cstdlib>
#include <mutex>

#include "Includes/assertion.h"
#include "Memory/failure_injection.h"

namespace vlm::memory {

constinit page_map pages;
constinit page_map::leaf_level page_map::no_leaf{};
constinit page_map::middle_level page_map::no_middle{};

namespace {

/// Taken only to make a level; innermost of all locks of the allocator.
constinit std::mutex level_lock;

/// The level behind a link, made by `make` if `absent` stands there; null if the system allocator fails.
template <class Level, class Make>
Level* ensure_level(std::atomic<Level*>& link, const Level& absent, Make make) {
  Level* level = link.load(std::memory_order_acquire);
  if (level != &absent) return level;
  const std::lock_guard guard(level_lock);
  level = link.load(std::memory_order_relaxed);
  if (level != &absent) return level;
  level = system_allocation_must_fail() ? nullptr : make();
  if (level != nullptr) link.store(level, std::memory_order_release);
  return level;
}

}  // namespace

bool page_map::create(const page_info& info) {
  page_shift_ = info.page_shift;
  VELORIM_ASSERT(shift() == page_shift_, "the processor's page size", "page_map::create");
  top_entries_ = uint64_t{1} << (address_bits - shift() - 2 * level_bits);
  for (auto& leaf : no_middle.leaves) leaf.store(&no_leaf, std::memory_order_relaxed);
  top_ = static_cast<std::atomic<middle_level*>*>(std::calloc(top_entries_, sizeof *top_));
  if (top_ == nullptr) return false;
  for (uint64_t i = 0; i < top_entries_; ++i) top_[i].store(&no_middle, std::memory_order_relaxed);
  return true;
}

void page_map::destroy() {
  for (uint64_t i = 0; i < top_entries_; ++i) {
    middle_level* const middle = top_[i].load(std::memory_order_relaxed);
    if (middle == &no_middle) continue;
    for (auto& link : middle->leaves) {
      leaf_level* const leaf = link.load(std::memory_order_relaxed);
      if (leaf != &no_leaf) std::free(leaf);
    }
    std::free(middle);
  }
  std::free(top_);
  top_ = nullptr;
  top_entries_ = 0;
}

page_map::leaf_level* page_map::leaf_of(uint64_t page) {
  middle_level* const middle = ensure_level(top_[page >> (2 * level_bits)], no_middle, [] {
    auto* const made = static_cast<middle_level*>(std::malloc(sizeof(middle_level)));
    if (made == nullptr) return made;
    for (auto& leaf : made->leaves) leaf.store(&no_leaf, std::memory_order_relaxed);
    return made;
  });
  if (middle == nullptr) return nullptr;
  return ensure_level(middle->leaves[page >> level_bits & (level_entries - 1)], no_leaf,
                      // Zeros are null pointers here, as everywhere the library runs.
                      [] { return static_cast<leaf_level*>(std::calloc(1, sizeof(leaf_level))); });
}

void page_map::store(const void* memory, uint64_t count, chunk_header* chunk) {
  const uint64_t first = page_of(memory);
  for (uint64_t page = first; page < first + count; ++page) {
    leaf_of(page)->chunks[page & (level_entries - 1)].store(chunk, std::memory_order_relaxed);
  }
}

bool page_map::insert(const void* memory, uint64_t count, chunk_header* chunk) {
  const uint64_t first = page_of(memory);
  VELORIM_ASSERT((first + count) >> (address_bits - shift()) == 0, "addresses have 48 bits",
                 "page_map::insert");
  // A chunk lies in two leaves at most.
  if (leaf_of(first) == nullptr || leaf_of(first + count - 1) == nullptr) return false;
  store(memory, count, chunk);
  return true;
}

void page_map::erase(const void* memory, uint64_t count) { store(memory, count, nullptr); }

}  // namespace vlm::memory
