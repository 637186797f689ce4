// The list of heaps, from the first that makes the root to the tear-down that frees all.
#include "Memory/heaps.h"

#include <cstdlib>
#include <mutex>
#include <new>

#include "Includes/assertion.h"
#include "Memory/chunk_memory.h"
#include "Memory/chunks.h"
#include "Memory/failure_injection.h"
#include "Memory/large_blocks.h"
#include "Runtime/os_thread.h"

struct HeapRoot {
  vlm::memory::ThreadHeap* newest = nullptr;
  void* reserve = nullptr;
  vlm::memory::page_info page;
};

namespace vlm::memory {

constinit thread_local heap_holder holder [[gnu::tls_model("initial-exec")]] = {nullptr, 0, 0};
constinit std::atomic<uint64_t> allocator_life{1};
constinit std::atomic<uint64_t> direct_life{1};

namespace {

constexpr size_t reserve_bytes = 4096;

constinit std::atomic<HeapRoot*> root{nullptr};
constinit std::mutex root_lock;  // static: it also guards the making of the root

void set_heap_of_thread(ThreadHeap& heap) {
  const uint64_t life = allocator_life.load(std::memory_order_relaxed);
  holder = {&heap, life, life};
  heap.home.store(&holder, std::memory_order_relaxed);
}

HeapRoot* ensure_root_locked() {
  HeapRoot* result = root.load(std::memory_order_relaxed);
  if (result != nullptr) return result;
  void* const storage = std::malloc(sizeof(HeapRoot));
  if (storage == nullptr) return nullptr;
  result = new (storage) HeapRoot;
  result->page = read_page_info();
  if (!pages.create(result->page)) {
    std::free(storage);
    return nullptr;
  }
  result->reserve = std::malloc(reserve_bytes);
  root.store(result, std::memory_order_release);
  return result;
}

void destroy_heap(ThreadHeap* heap) {
  heap->~ThreadHeap();
  std::free(heap);
}

/// For a heap without blocks that no thread can reach any more but through the list.
void unlist_and_destroy(ThreadHeap* heap) {
  {
    const std::lock_guard guard(root_lock);
    if (heap->older != nullptr) heap->older->newer = heap->newer;
    (heap->newer != nullptr ? heap->newer->older : root.load(std::memory_order_relaxed)->newest) =
        heap->older;
  }
  destroy_heap(heap);
}

/// True if no block lives: every chunk of the classes 1 to 160 would hold a block of class 0.
bool is_empty(ThreadHeap& heap) { return heap.headers().chunks == 0 && heap.large_blocks == nullptr; }

void release_spares(ThreadHeap& heap) {
  for (int i = size_class_count - 1; i >= 0; --i) release_spare(heap.classes[i]);
  release_kept_memory(heap);
}

/// The rest of a free in an orphaned heap, under its mutex. True if that was its last block.
bool settle_orphan(ThreadHeap& heap, size_class* c) {
  if (c != nullptr) release_spare(*c);
  release_spare(heap.headers());
  release_kept_memory(heap);
  const bool ended = is_empty(heap);
  VELORIM_ASSERT(ended || heapIsValid(heap), "orphaned heap is consistent", "settle_orphan");
  return ended;
}

}  // namespace

ThreadHeap* make_heap() {
  void* const storage = std::aligned_alloc(alignof(ThreadHeap), sizeof(ThreadHeap));
  if (storage == nullptr) return nullptr;
  ThreadHeap* const heap = new (storage) ThreadHeap{};
  heap->in_use.set(sizeof(ThreadHeap));
  heap->thread_id = KThreadID();
  set_up_classes(*heap);
  {
    const std::lock_guard guard(root_lock);
    HeapRoot* const list = ensure_root_locked();
    if (list != nullptr) {
      heap->older = list->newest;
      if (heap->older != nullptr) heap->older->newer = heap;
      list->newest = heap;
      set_heap_of_thread(*heap);
      return heap;
    }
  }
  destroy_heap(heap);
  return nullptr;
}

void free_into_orphan(chunk_header& chunk, void* block) {
  size_class& c = *chunk.owner_class;
  ThreadHeap& heap = *c.owner;
  bool ended;
  {
    const std::lock_guard guard(heap.mutex);
    free_class_block(c, chunk, block);
    ended = settle_orphan(heap, &c);
  }
  if (ended) unlist_and_destroy(&heap);
}

void free_into_orphan(large_block_header& block) {
  ThreadHeap& heap = *block.owner;
  bool ended;
  {
    const std::lock_guard guard(heap.mutex);
    free_large_block(block);
    ended = settle_orphan(heap, nullptr);
  }
  if (ended) unlist_and_destroy(&heap);
}

heap_accounts* current_heap() {
  ThreadHeap* const heap = heap_of_thread();
  return heap != nullptr ? heap : make_heap();
}

HeapRoot* heap_root() { return root.load(std::memory_order_acquire); }

HeapRoot* ensure_heap_root() {
  const std::lock_guard guard(root_lock);
  return ensure_root_locked();
}

void release_reserve() {
  const std::lock_guard guard(root_lock);
  HeapRoot* const list = root.load(std::memory_order_relaxed);
  if (list == nullptr) return;
  std::free(list->reserve);
  list->reserve = nullptr;
}

heap_list_lock::heap_list_lock() { root_lock.lock(); }
heap_list_lock::~heap_list_lock() { root_lock.unlock(); }

uint64_t heap_list_lock::count() const {
  uint64_t heaps = 0;
  visit([](const heap_accounts&, pending_bytes, void* sum) { ++*static_cast<uint64_t*>(sum); }, &heaps);
  return heaps;
}

void heap_list_lock::visit(heap_visitor visitor, void* context) const {
  const HeapRoot* const list = root.load(std::memory_order_relaxed);
  if (list == nullptr) return;
  for (ThreadHeap* heap = list->newest; heap != nullptr; heap = heap->older) {
    pending_bytes pending;
    {
      const std::lock_guard guard(heap->mutex);
      pending.large = pending_large_bytes(*heap);
    }
    for (const size_class& c : heap->classes) {
      pending.small += c.waiting_blocks.load(std::memory_order_relaxed) * c.block_bytes;
    }
    visitor(*heap, pending, context);
  }
}

void compact() {
  const std::lock_guard guard(root_lock);
  const HeapRoot* const list = root.load(std::memory_order_relaxed);
  if (list == nullptr) return;
  for (ThreadHeap* heap = list->newest; heap != nullptr; heap = heap->older) {
    for (size_class& c : heap->classes) drain_remote_if_any(c);
    reclaim_large_if_any(*heap);
    release_kept_memory(*heap);
    VELORIM_ASSERT(heapIsValid(*heap), "compacted heap is consistent", "compact");
  }
}

void end_current_heap() {
  ThreadHeap* const heap = heap_of_thread();
  if (heap == nullptr) return;
  holder = {};
  {
    // One hold of the heap's mutex from the first mark to the last release: a block that is freed at this moment is either
    // taken back here or finds its class closed and waits for the mutex.
    const std::lock_guard guard(heap->mutex);
    heap->home.store(nullptr, std::memory_order_relaxed);
    for (size_class& c : heap->classes) close_remote(c);
    reclaim_large_locked(*heap);
    release_spares(*heap);
    if (!is_empty(*heap)) {
      heap->orphaned = true;
      VELORIM_ASSERT(heapIsValid(*heap), "orphaned heap is consistent", "end_current_heap");
      return;
    }
  }
  unlist_and_destroy(heap);
}

void tear_down() {
  const std::lock_guard guard(root_lock);
  HeapRoot* const list = root.exchange(nullptr, std::memory_order_relaxed);
  if (list == nullptr) return;
  for (ThreadHeap* heap = list->newest; heap != nullptr;) {
    ThreadHeap* const older = heap->older;
    for (int i = size_class_count - 1; i > 0; --i) {
      drain_remote(heap->classes[i]);
      release_all_chunks(heap->classes[i]);
    }
    release_all_chunks(heap->headers());
    free_all_large_blocks(*heap);
    release_kept_memory(*heap);
    destroy_heap(heap);
    heap = older;
  }
  pages.destroy();
  std::free(list->reserve);
  list->~HeapRoot();
  std::free(list);
  allocator_life.fetch_add(1, std::memory_order_relaxed);
  follow_injection();
}

void set_soft_limit(ThreadHeap& heap, uint64_t limit) {
  heap.limit.set(limit);
  holder.direct = limit == 0 ? holder.life : 0;
}

void follow_injection() {
  constexpr uint64_t nobodys = ~uint64_t{0};
  direct_life.store(injection_is_armed() ? nobodys : allocator_life.load(std::memory_order_relaxed),
                    std::memory_order_relaxed);
}

uint64_t bytes_of_callers(const heap_accounts& accounts) {
  const ThreadHeap& heap = static_cast<const ThreadHeap&>(accounts);
  uint64_t chunks = 0;
  for (int i = 1; i < size_class_count; ++i) {
    chunks += heap.classes[i].chunks + (heap.classes[i].spare != nullptr);
  }
  return heap.in_use.get() - sizeof(ThreadHeap) - chunks * chunk_header_bytes;
}

}  // namespace vlm::memory
