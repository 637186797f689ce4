// A block engine over the system allocator. Each block is a piece of its own from malloc with a hidden header
// ahead of the caller's bytes:
//
//     [ 8 bytes, for a block whose address is an odd multiple of 8 ] [ block_header ] [ usable bytes ... ]
//
// Blocks are laid at the weakest alignment that their class may have: above 1024 bytes an unaligned block
// lies at an odd multiple of 8, as does any block whose size is one. What a caller did not ask for it does
// not get by luck.
//
// Who may touch what. The owner thread uses its list of live blocks and its counters without a lock. Any
// thread may push onto the lists of freed blocks, under the heap's lock; the owner looks at them without it
// and takes it only when they are not empty. Once a heap is orphaned everything in it is under its lock. The
// lock of the root guards the list of heaps, and is taken before that of a heap.
#include "Memory/block_engine.h"

#include <cstdlib>
#include <mutex>
#include <new>

#include "Memory/size_classes.h"
#include "Runtime/os_thread.h"

namespace vlm::memory {
namespace {

struct ThreadHeap;

struct block_header {
  ThreadHeap* owner;
  block_header* previous;  ///< of the owner's live blocks
  block_header* next;
  uint64_t size_and_flags;  ///< consumed bytes, a multiple of 8, with the two flags below

  static constexpr uint64_t aligned_flag = 1;  ///< the block was asked for at a multiple of 16
  static constexpr uint64_t padded_flag = 2;   ///< 8 bytes precede the header
  static constexpr uint64_t flag_mask = 7;

  uint64_t consumed() const { return size_and_flags & ~flag_mask; }
  bool aligned() const { return (size_and_flags & aligned_flag) != 0; }
  int freed_list() const { return consumed() > largest_class_bytes ? 0 : size_class_of(consumed()); }
  void* block() { return this + 1; }
  void* system_block() {
    return reinterpret_cast<char*>(this) - ((size_and_flags & padded_flag) ? padding : 0);
  }

  static constexpr uint64_t padding = 8;
  static block_header* of(void* block) { return static_cast<block_header*>(block) - 1; }
  static const block_header* of(const void* block) { return static_cast<const block_header*>(block) - 1; }
};
static_assert(sizeof(block_header) % 16 == 0 && __STDCPP_DEFAULT_NEW_ALIGNMENT__ >= 16);

/// Blocks of one class that other threads freed, linked through their first caller's word.
struct freed_blocks {
  std::atomic<block_header*> first{nullptr};
  uint64_t bytes = 0;

  static block_header*& link(block_header* header) { return *static_cast<block_header**>(header->block()); }
};

struct ThreadHeap : heap_accounts {
  ThreadHeap* newer = nullptr;  ///< list of the root
  ThreadHeap* older = nullptr;
  block_header* live = nullptr;
  std::mutex lock;
  bool orphaned = false;
  freed_blocks freed[size_class_count];  ///< by size class; list 0 takes the large blocks
};

}  // namespace
}  // namespace vlm::memory

struct HeapRoot {
  vlm::memory::ThreadHeap* newest = nullptr;
  void* reserve = nullptr;
};

namespace vlm::memory {
namespace {

constexpr size_t reserve_bytes = 4096;

constinit std::atomic<HeapRoot*> root{nullptr};
constinit std::mutex root_lock;  // static: it also guards the making of the root

/// A thread's heap is valid in the life of the allocator that made it. Threads that outlive a tear-down, such
/// as those of an OpenMP team, hold a pointer of an earlier life.
constinit std::atomic<uint64_t> allocator_life{1};
struct heap_holder {
  ThreadHeap* heap;
  uint64_t life;
};
constinit thread_local heap_holder holder [[gnu::tls_model("initial-exec")]] = {nullptr, 0};

ThreadHeap* heap_of_thread() {
  return holder.life == allocator_life.load(std::memory_order_relaxed) ? holder.heap : nullptr;
}

void set_heap_of_thread(ThreadHeap* heap) { holder = {heap, allocator_life.load(std::memory_order_relaxed)}; }

HeapRoot* ensure_root_locked() {
  HeapRoot* result = root.load(std::memory_order_relaxed);
  if (result != nullptr) return result;
  void* const storage = std::malloc(sizeof(HeapRoot));
  if (storage == nullptr) return nullptr;
  result = new (storage) HeapRoot;
  result->reserve = std::malloc(reserve_bytes);
  root.store(result, std::memory_order_release);
  return result;
}

ThreadHeap* make_heap() {
  void* const storage = std::malloc(sizeof(ThreadHeap));
  if (storage == nullptr) return nullptr;
  ThreadHeap* const heap = new (storage) ThreadHeap;
  heap->in_use.set(sizeof(ThreadHeap));
  heap->thread_id = KThreadID();
  {
    const std::lock_guard guard(root_lock);
    HeapRoot* const list = ensure_root_locked();
    if (list != nullptr) {
      heap->older = list->newest;
      if (heap->older != nullptr) heap->older->newer = heap;
      list->newest = heap;
      set_heap_of_thread(heap);
      return heap;
    }
  }
  heap->~ThreadHeap();
  std::free(storage);
  return nullptr;
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

/// Takes a block out of its heap and gives it to the system.
void release(ThreadHeap& heap, block_header* header) {
  if (header->next != nullptr) header->next->previous = header->previous;
  (header->previous != nullptr ? header->previous->next : heap.live) = header->next;
  heap.in_use.subtract(header->consumed());
  std::free(header->system_block());
}

void take_back_locked(ThreadHeap& heap, freed_blocks& list) {
  block_header* header = list.first.exchange(nullptr, std::memory_order_relaxed);
  list.bytes = 0;
  while (header != nullptr) {
    block_header* const next = freed_blocks::link(header);
    release(heap, header);
    header = next;
  }
}

void take_back(ThreadHeap& heap, freed_blocks& list) {
  if (list.first.load(std::memory_order_relaxed) == nullptr) [[likely]] {
    return;
  }
  const std::lock_guard guard(heap.lock);
  take_back_locked(heap, list);
}

/// Frees a block of another thread's heap: leaves it to the owner, or does the owner's work if there is none
/// any more.
void give_remote_block(ThreadHeap* heap, block_header* header) {
  {
    const std::lock_guard guard(heap->lock);
    if (!heap->orphaned) {
      freed_blocks& list = heap->freed[header->freed_list()];
      list.bytes += header->consumed();
      freed_blocks::link(header) = list.first.load(std::memory_order_relaxed);
      list.first.store(header, std::memory_order_relaxed);
      return;
    }
    release(*heap, header);
    if (heap->live != nullptr) return;
  }
  unlist_and_destroy(heap);
}

}  // namespace

heap_accounts* current_heap() {
  ThreadHeap* const heap = heap_of_thread();
  return heap != nullptr ? heap : make_heap();
}

void* take_block(heap_accounts& accounts, uint64_t rounded, bool aligned) {
  ThreadHeap& heap = static_cast<ThreadHeap&>(accounts);
  const bool large = rounded > largest_class_bytes;
  freed_blocks& freed = heap.freed[large ? 0 : size_class_of(rounded)];
  if (large) {
    take_back(heap, freed);
    if (rounded > system_allocation_limit) return nullptr;
  }
  const uint64_t consumed = consumed_bytes(rounded);
  const bool padded = !aligned && (consumed > headerless_bytes || consumed % 16 != 0);
  const uint64_t lead = padded ? block_header::padding : 0;
  const uint64_t usable = consumed - header_bytes(consumed, aligned);
  const uint64_t total = lead + sizeof(block_header) + usable;
  // The larger half of the address space is no size; checked here because a sanitizer's malloc ends the
  // process over it.
  if (total >= uint64_t{1} << 48) return nullptr;
  char* const memory = static_cast<char*>(std::malloc(total));
  if (memory == nullptr) return nullptr;
  block_header* const header = reinterpret_cast<block_header*>(memory + lead);
  *header = {
      &heap, nullptr, heap.live,
      consumed | (aligned ? block_header::aligned_flag : 0) | (padded ? block_header::padded_flag : 0)};
  if (heap.live != nullptr) heap.live->previous = header;
  heap.live = header;
  heap.in_use.add(consumed);
  if (!large) take_back(heap, freed);
  return header->block();
}

void give_block(void* block) {
  block_header* const header = block_header::of(block);
  ThreadHeap* const heap = header->owner;
  if (heap != heap_of_thread()) [[unlikely]] {
    give_remote_block(heap, header);
    return;
  }
  freed_blocks& freed = heap->freed[header->freed_list()];
  release(*heap, header);
  take_back(*heap, freed);
}

uint64_t usable_bytes(const void* block) {
  const block_header* const header = block_header::of(block);
  return header->consumed() - header_bytes(header->consumed(), header->aligned());
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
      const std::lock_guard guard(heap->lock);
      pending.large = heap->freed[0].bytes;
      for (int c = 1; c < size_class_count; ++c) pending.small += heap->freed[c].bytes;
    }
    visitor(*heap, pending, context);
  }
}

void compact() {
  const std::lock_guard guard(root_lock);
  const HeapRoot* const list = root.load(std::memory_order_relaxed);
  if (list == nullptr) return;
  for (ThreadHeap* heap = list->newest; heap != nullptr; heap = heap->older) {
    for (freed_blocks& freed : heap->freed) take_back(*heap, freed);
  }
}

void end_current_heap() {
  ThreadHeap* const heap = heap_of_thread();
  if (heap == nullptr) return;
  set_heap_of_thread(nullptr);
  {
    // One hold of the lock for the last look at the freed lists and for the mark: a block that is freed at
    // this moment is either seen here or finds the mark.
    const std::lock_guard guard(heap->lock);
    for (freed_blocks& freed : heap->freed) take_back_locked(*heap, freed);
    if (heap->live != nullptr) {
      heap->orphaned = true;
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
    while (heap->live != nullptr) release(*heap, heap->live);
    destroy_heap(heap);
    heap = older;
  }
  std::free(list->reserve);
  list->~HeapRoot();
  std::free(list);
  allocator_life.fetch_add(1, std::memory_order_relaxed);
}

}  // namespace vlm::memory
