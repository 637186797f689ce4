// What the error scheme keeps: a style for the process, the rest for each thread.
#pragma once

#include <atomic>
#include <cstdint>

namespace vlm {

enum class exception_style : uint32_t { throw_class = 0, flag = 1, long_jump = 2 };

/// The style as setExceptionStyle stored it; any value that the enumeration lacks acts like throw_class.
extern std::atomic<exception_style> current_exception_style;

/// A jump buffer on the thread's list. Two words, from zalloc.
struct jump_node {
  void* buffer;
  jump_node* next;
};

struct thread_errors {
  uint32_t exception_active = 0;
  uint32_t kernel_abort_enabled = 0;
  jump_node* jump_stack = nullptr;
};
extern constinit thread_local thread_errors errors_of_thread;

/// Takes nodes off the thread's list until its head is node, or the list is empty.
void cut_jump_stack(const jump_node* node) noexcept;

}  // namespace vlm
