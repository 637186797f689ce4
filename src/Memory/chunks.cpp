// The life of a chunk: made, filled, emptied, kept as the spare or given back; and the blocks that come back from other threads.
#include "Memory/chunks.h"

#include <algorithm>
#include <new>

#include "Includes/assertion.h"
#include "Memory/chunk_memory.h"

namespace vlm::memory {
namespace {

void link_at_head(chunk_header*& list, chunk_header& chunk) {
  chunk.previous = nullptr;
  chunk.next = list;
  if (list != nullptr) list->previous = &chunk;
  list = &chunk;
}

void unlink(chunk_header*& list, chunk_header& chunk) {
  (chunk.previous != nullptr ? chunk.previous->next : list) = chunk.next;
  if (chunk.next != nullptr) chunk.next->previous = chunk.previous;
  chunk.previous = chunk.next = nullptr;
}

bool is_header_class(const size_class& c) { return &c == c.owner->classes; }

/// Threads the blocks in the order of their addresses.
void thread_blocks(const size_class& c, chunk_header& chunk) {
  char* const first = static_cast<char*>(chunk.memory);
  for (uint64_t i = 0; i < c.blocks_per_chunk; ++i) {
    const bool last = i + 1 == c.blocks_per_chunk;
    free_block* const block = reinterpret_cast<free_block*>(first + i * c.block_bytes);
    block->next = last ? nullptr : reinterpret_cast<free_block*>(first + (i + 1) * c.block_bytes);
  }
  chunk.free_list = reinterpret_cast<free_block*>(first);
  chunk.used = 0;
  shadow::forbid(first, c.usable_bytes);
}

void give_header_back(chunk_header* header) {
  chunk_header* const home = pages.find(header);
  free_class_block(*home->owner_class, *home, header);
}

/// A new chunk with all of its blocks free, on no list; null if the system has no more.
chunk_header* make_chunk(size_class& c) {
  void* header = nullptr;
  if (!is_header_class(c)) {
    header = take_class_block(c.owner->headers()).block;
    if (header == nullptr) return nullptr;
  }
  void* const memory = take_chunk_memory(c);
  if (memory == nullptr) {
    if (header != nullptr) give_header_back(static_cast<chunk_header*>(header));
    return nullptr;
  }
  if (header == nullptr) header = memory;
  chunk_header* const chunk = new (header) chunk_header{};
  chunk->owner_class = &c;
  chunk->memory = is_header_class(c) ? chunk + 1 : memory;
  if (c.chunk_pages != 0 && !pages.insert(memory, c.chunk_pages, chunk)) {
    give_chunk_memory(c, memory);
    if (header != memory) give_header_back(chunk);
    return nullptr;
  }
  thread_blocks(c, *chunk);
  return chunk;
}

/// The end of a chunk that is on no list.
void release_chunk(size_class& c, chunk_header& chunk) {
  void* const memory = is_header_class(c) ? &chunk : chunk.memory;
  if (c.chunk_pages != 0) pages.erase(memory, c.chunk_pages);
  give_chunk_memory(c, memory);
  if (memory != &chunk) give_header_back(&chunk);
}

void release_list(size_class& c, chunk_header*& list) {
  while (list != nullptr) {
    chunk_header& chunk = *list;
    unlink(list, chunk);
    --c.chunks;
    c.owner->in_use.subtract(chunk.used * c.block_bytes);
    release_chunk(c, chunk);
  }
}

/// Where a waiting block is linked: behind the word that leads to its chunk, if it has one.
free_block* link_of(const size_class& c, void* block) {
  return reinterpret_cast<free_block*>(static_cast<char*>(block) +
                                       (c.chunk_pages != 0 ? 0 : class_header_bytes));
}

/// Frees the blocks of a waiting list that was taken whole.
void take_back(size_class& c, free_block* list) {
  uint64_t blocks = 0;
  while (list != nullptr) {
    const class_block waited = waiting_block(c, list);
    list = list->next;
    shadow::allow(waited.block, c.block_bytes);
    free_class_block(c, *waited.chunk, waited.block);
    ++blocks;
  }
  if (blocks != 0) c.waiting_blocks.fetch_sub(blocks, std::memory_order_relaxed);
}

}  // namespace

class_block waiting_block(const size_class& c, free_block* link) {
  if (c.chunk_pages != 0) return {link, pages.find(link)};
  uint64_t* const word = reinterpret_cast<uint64_t*>(link) - 1;
  shadow::allow(word, sizeof *word);
  return {word, reinterpret_cast<chunk_header*>(*word & ~chunk_bit)};
}

void set_up_classes(ThreadHeap& heap) {
  const uint64_t pages_per_chunk = read_page_info().pages_per_chunk;
  for (int i = 0; i < size_class_count; ++i) {
    size_class& c = heap.classes[i];
    c.owner = &heap;
    c.block_bytes = i == 0 ? chunk_header_bytes : class_block_bytes[i];
    const bool mapped = c.block_bytes <= headerless_bytes;
    c.blocks_per_chunk = i == 0 ? (mapped_chunk_bytes - chunk_header_bytes) / chunk_header_bytes
                                : std::max<uint64_t>(mapped_chunk_bytes / c.block_bytes, 4);
    c.usable_bytes = c.blocks_per_chunk * c.block_bytes;
    c.chunk_bytes = mapped ? mapped_chunk_bytes : c.usable_bytes;
    c.chunk_pages = mapped ? pages_per_chunk : 0;
  }
  for (uint64_t words = 1; words <= headerless_bytes / 8; ++words) {
    heap.class_of_words[words] = &heap.classes[size_class_of(8 * words)];
  }
}

chunk_header* more_blocks(size_class& c) noexcept {
  chunk_header* chunk = c.spare;
  if (chunk != nullptr) {
    c.spare = nullptr;
  } else {
    chunk = make_chunk(c);
    if (chunk == nullptr) return nullptr;
  }
  link_at_head(c.available, *chunk);
  ++c.chunks;
  return chunk;
}

void move_to_full(size_class& c, chunk_header& chunk) noexcept {
  unlink(c.available, chunk);
  link_at_head(c.full, chunk);
}

bool chunk_became_usable_or_free(size_class& c, chunk_header& chunk) noexcept {
  if (chunk.used != 0) {  // it was full
    unlink(c.full, chunk);
    link_at_head(c.available, chunk);
    return false;
  }
  unlink(c.available, chunk);
  --c.chunks;
  if (c.spare == nullptr) {
    c.spare = &chunk;
  } else {
    release_chunk(c, chunk);
  }
  return true;
}

void release_spare(size_class& c) {
  chunk_header* const chunk = c.spare;
  if (chunk == nullptr) return;
  c.spare = nullptr;
  release_chunk(c, *chunk);
}

void release_all_chunks(size_class& c) {
  release_spare(c);
  release_list(c, c.full);
  release_list(c, c.available);
}

void drain_remote(size_class& c) noexcept {
  if (c.waiting.load(std::memory_order_relaxed) == &closed_list) return;
  take_back(c, c.waiting.exchange(nullptr, std::memory_order_acquire));
}

void close_remote(size_class& c) {
  take_back(c, c.waiting.exchange(&closed_list, std::memory_order_acq_rel));
}

bool leave_to_owner(size_class& c, void* block) {
  free_block* const freed = link_of(c, block);
  shadow::forbid(block, c.block_bytes);
  shadow::allow(freed, sizeof *freed);
  c.waiting_blocks.fetch_add(1, std::memory_order_relaxed);
  free_block* first = c.waiting.load(std::memory_order_relaxed);
  do {
    if (first == &closed_list) {
      c.waiting_blocks.fetch_sub(1, std::memory_order_relaxed);
      shadow::allow(block, c.block_bytes);
      return false;
    }
    freed->next = first;
  } while (
      !c.waiting.compare_exchange_weak(first, freed, std::memory_order_acq_rel, std::memory_order_acquire));
  return true;
}

}  // namespace vlm::memory
