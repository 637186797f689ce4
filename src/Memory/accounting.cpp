// What callers learn about memory: the accounts of the calling thread, those of all threads, and the soft
// limit.
#include "Memory/accounting.h"

#include <cstdlib>

#include "Includes/assertion.h"
#include "Memory/heaps.h"
#include "velorim/memory.h"

namespace vlm::memory {
namespace {

using InterruptFunction = void (*)();
constinit std::atomic<InterruptFunction> interrupt_function{nullptr};

/// Total of the outside allocator as last reported.
constinit std::atomic<uint64_t> outside_total{0};

void call_interrupt_function() {
  if (const InterruptFunction function = interrupt_function.load(std::memory_order_relaxed)) function();
}

/// The accounts of the calling thread; there is no answer without them.
heap_accounts& accounts() {
  heap_accounts* const heap = current_heap();
  if (heap == nullptr) nomem();
  return *heap;
}

struct peak_node {
  uint64_t saved_peak;
  peak_node* next;
};
static_assert(sizeof(peak_node) == 16);

uint64_t reported(const heap_accounts& heap, pending_bytes pending, int32_t what) {
  switch (what) {
    case 0:
      return heap.in_use.get();
    case 1:
      return heap.peak.get();
    case 2:
      return pending.small;
    case 3:
      return pending.large;
    default:
      return static_cast<uint64_t>(heap.thread_id);
  }
}

}  // namespace

bool passes_limit(heap_accounts& heap, uint64_t amount) {
  const uint64_t limit = heap.limit.get();
  if (limit == 0) return false;
  const uint64_t in_use = heap.in_use.get();
  uint64_t sum;
  const bool wraps = __builtin_add_overflow(in_use, amount, &sum);
  if (wraps) sum = ~uint64_t{0};
  if (!wraps && sum <= limit) return false;
  // Shown and taken back as a difference: what the function itself allocates or frees stays counted.
  const uint64_t excess = sum - in_use;
  heap.in_use.set(sum);
  call_interrupt_function();
  heap.in_use.subtract(excess);
  return true;
}

void reset_process_accounts() {
  outside_total.store(0, std::memory_order_relaxed);
  interrupt_function.store(nullptr, std::memory_order_relaxed);
}

}  // namespace vlm::memory

using namespace vlm::memory;

int64_t MemoryInUse(void) noexcept { return static_cast<int64_t>(accounts().in_use.get()); }

int64_t MCinuse(void) noexcept { return MemoryInUse(); }

int64_t MaxMemoryUsed(void) noexcept { return static_cast<int64_t>(accounts().peak.get()); }

uint64_t MCliminuse(void) noexcept { return accounts().limit.get(); }

void MCsetlimit(uint64_t limit) noexcept {
  accounts();  // has the thread's heap made
  set_soft_limit(*heap_of_thread(), limit);
}

void MC_set_interrupt_fun(void (*function)(void)) noexcept {
  interrupt_function.store(function, std::memory_order_relaxed);
}

int64_t MaxMemoryListPush(void** head) noexcept {
  peak_node* const node = static_cast<peak_node*>(zalloc(sizeof(peak_node), 0, FailFatal));
  heap_accounts& heap = accounts();
  *node = {heap.peak.get(), static_cast<peak_node*>(*head)};
  *head = node;
  heap.peak.set(heap.in_use.get());
  return static_cast<int64_t>(heap.peak.get());
}

int64_t MaxMemoryListPop(void** head) noexcept {
  heap_accounts& heap = accounts();
  const uint64_t reached = heap.peak.get();
  peak_node* const node = static_cast<peak_node*>(*head);
  VELORIM_ASSERT(node != nullptr, "*head != NULL", "MaxMemoryListPop");
  if (node != nullptr) {
    heap.peak.raise_to(node->saved_peak);
    *head = node->next;
    zfree(node);
  }
  return static_cast<int64_t>(reached);
}

mint MaxMemoryListLength(void* list) noexcept {
  mint length = 0;
  for (const peak_node* node = static_cast<peak_node*>(list); node != nullptr; node = node->next) ++length;
  return length;
}

void RecordCUDDMemory(uint64_t total) noexcept {
  heap_accounts& heap = accounts();
  const uint64_t last = outside_total.exchange(total, std::memory_order_relaxed);
  heap.in_use.add(total - last);
  heap.outside += total - last;
  if (total <= last) return;
  heap.peak.raise_to(heap.in_use.get());
  const uint64_t limit = heap.limit.get();
  if (limit != 0 && heap.in_use.get() > limit) call_interrupt_function();
}

int64_t* FullMemoryInformation(mint* countOut, int32_t what) noexcept {
  struct Output {
    int64_t* next;
    int32_t what;
  };
  const heap_list_lock heaps;
  const uint64_t count = heaps.count();
  // One entry more than needed, so that an answer without heaps is no null.
  int64_t* const array = static_cast<int64_t*>(std::malloc((count + 1) * sizeof(int64_t)));
  if (countOut != nullptr) *countOut = array == nullptr ? 0 : static_cast<mint>(count);
  if (array == nullptr) return nullptr;
  Output output{array, what};
  heaps.visit(
      [](const heap_accounts& heap, pending_bytes pending, void* context) {
        Output& out = *static_cast<Output*>(context);
        *out.next++ = static_cast<int64_t>(reported(heap, pending, out.what));
      },
      &output);
  return array;
}

void freeMemorySizeArray(int64_t* array) noexcept { std::free(array); }

void CompactifyMemory(void) noexcept { compact(); }

HeapRoot* GetAllocatorList(void) noexcept { return heap_root(); }
