// Reports of compiled code: styles, the state of the thread, the list of jump buffers, CompilerError.
#include "velorim/errors.h"

#include <csetjmp>
#include <exception>
#include <utility>

#include "Includes/assertion.h"
#include "Runtime/error_state.h"
#include "velorim/memory.h"

namespace vlm {

std::atomic<exception_style> current_exception_style{exception_style::flag};
constinit thread_local thread_errors errors_of_thread;

static_assert(sizeof(jump_node) == 16);

void cut_jump_stack(const jump_node* node) noexcept {
  while (errors_of_thread.jump_stack != nullptr && errors_of_thread.jump_stack != node) SetJumpStack_Pop();
}

}  // namespace vlm

void setExceptionStyle(uint32_t style) noexcept {
  vlm::current_exception_style.store(static_cast<vlm::exception_style>(style), std::memory_order_relaxed);
}

int32_t throwVelorimException(int32_t code) {
  switch (vlm::current_exception_style.load(std::memory_order_relaxed)) {
    case vlm::exception_style::flag:
      setExceptionActive(static_cast<uint32_t>(code));
      return code;
    case vlm::exception_style::long_jump: {
      void* buffer = SetJumpStack_Peek();
      if (buffer == nullptr) std::terminate();
      std::longjmp(*static_cast<std::jmp_buf*>(buffer), code);
    }
    default:
      throw VelorimRuntimeException(static_cast<uint32_t>(code));
  }
}

uint32_t getExceptionActive() noexcept { return vlm::errors_of_thread.exception_active; }

uint32_t setExceptionActive(uint32_t code) noexcept {
  return std::exchange(vlm::errors_of_thread.exception_active, code);
}

uint32_t* getExceptionActiveHandle() noexcept { return &vlm::errors_of_thread.exception_active; }

uint32_t setKernelAbortEnabled(uint32_t value) noexcept {
  return std::exchange(vlm::errors_of_thread.kernel_abort_enabled, value);
}

uint32_t* getKernelAbortEnabled() noexcept { return &vlm::errors_of_thread.kernel_abort_enabled; }

void** SetJumpStack_Push(void* buffer) noexcept {
  vlm::jump_node*& head = vlm::errors_of_thread.jump_stack;
  auto* node = static_cast<vlm::jump_node*>(zalloc(sizeof(vlm::jump_node), 0, FailFatal));
  *node = {buffer, head};
  head = node;
  return reinterpret_cast<void**>(&head);
}

void* SetJumpStack_Peek() noexcept {
  const vlm::jump_node* top = vlm::errors_of_thread.jump_stack;
  return top == nullptr ? nullptr : top->buffer;
}

void SetJumpStack_Pop() noexcept {
  vlm::jump_node* top = vlm::errors_of_thread.jump_stack;
  VELORIM_ASSERT(top != nullptr, "setJumpStack", "SetJumpStack_Pop");
  if (top == nullptr) return;
  vlm::errors_of_thread.jump_stack = top->next;
  zfree(top);
}

CompilerError* New_CompilerError(int32_t type, int32_t code) noexcept {
  auto* error = static_cast<CompilerError*>(zalloc(sizeof(CompilerError), 0, FailFatal));
  *error = {type, code};
  return error;
}

void Delete_CompilerError(CompilerError* error) noexcept { zfree(error); }

CompilerError* CompilerError_null() noexcept { return nullptr; }
