// The lists of functions that run when a thread starts and ends.
#include <cstdlib>
#include <new>

#include "Runtime/os_thread.h"
#include "velorim/memory.h"

namespace vlm {
namespace {

/// A growable array of hooks on the system allocator: the lists exist before the library's allocator does.
class hook_list {
 public:
  static hook_list* create() {
    void* const storage = std::malloc(sizeof(hook_list));
    if (storage == nullptr) nomem();
    return new (storage) hook_list;
  }
  static void destroy(hook_list* list) {
    if (list == nullptr) return;
    std::free(list->hooks_);
    std::free(list);
  }

  uint32_t add(thread_hook hook) {
    if (count_ == capacity_) grow(2 * capacity_);
    hooks_[count_] = hook;
    return ++count_;
  }
  uint32_t count() const { return count_; }
  thread_hook operator[](uint32_t index) const { return hooks_[index]; }

 private:
  hook_list() { grow(initial_capacity); }
  void grow(uint32_t capacity) {
    void* const hooks = std::realloc(hooks_, capacity * sizeof(thread_hook));
    if (hooks == nullptr) nomem();
    hooks_ = static_cast<thread_hook*>(hooks);
    capacity_ = capacity;
  }

  static constexpr uint32_t initial_capacity = 8;
  thread_hook* hooks_ = nullptr;
  uint32_t capacity_ = 0;
  uint32_t count_ = 0;
};

constinit hook_list* thread_start_hooks = nullptr;
constinit hook_list* thread_stop_hooks = nullptr;

uint32_t add(hook_list* list, thread_hook hook) { return list == nullptr ? 0 : list->add(hook); }

}  // namespace

uint32_t add_thread_start_hook(thread_hook hook) { return add(thread_start_hooks, hook); }

uint32_t add_thread_stop_hook(thread_hook hook) { return add(thread_stop_hooks, hook); }

uint32_t thread_stop_hook_position(thread_hook hook) {
  const uint32_t count = thread_stop_hooks == nullptr ? 0 : thread_stop_hooks->count();
  for (uint32_t i = 0; i < count; ++i) {
    if ((*thread_stop_hooks)[i] == hook) return i + 1;
  }
  return 0;
}

void run_thread_start_hooks() {
  if (thread_start_hooks == nullptr) return;
  for (uint32_t i = 0; i < thread_start_hooks->count(); ++i) (*thread_start_hooks)[i]();
}

void run_thread_stop_hooks() {
  if (thread_stop_hooks == nullptr) return;
  for (uint32_t i = thread_stop_hooks->count(); i-- > 0;) (*thread_stop_hooks)[i]();
}

void call_thread_stop_hook(uint32_t position) {
  if (thread_stop_hooks == nullptr || position == 0 || position > thread_stop_hooks->count()) return;
  (*thread_stop_hooks)[position - 1]();
}

void free_thread_hook_lists() {
  hook_list::destroy(thread_start_hooks);
  hook_list::destroy(thread_stop_hooks);
  thread_start_hooks = thread_stop_hooks = nullptr;
}

}  // namespace vlm

void KThread_initStartStopFunctions(void) noexcept {
  using namespace vlm;
  if (thread_start_hooks == nullptr) thread_start_hooks = hook_list::create();
  if (thread_stop_hooks == nullptr) thread_stop_hooks = hook_list::create();
}
