// Abort flags, and the questions that long work asks of them.
#include "Runtime/aborts.h"

#include <atomic>

#include "Runtime/error_state.h"
#include "Runtime/hooks.h"
#include "velorim/errors.h"

uint32_t watch = 0;
uint32_t watch1 = 0;

namespace vlm {
namespace {

// Lock-free, so that triggerAPIAbort may run anywhere, in a signal handler too.
std::atomic<uint8_t> abort_requested{0};
std::atomic<uint32_t> abort_armed{1};
static_assert(std::atomic<uint8_t>::is_always_lock_free && std::atomic_ref<uint32_t>::is_always_lock_free);

/// An exported word that hosts read and write plainly: no order, but no torn value either.
std::atomic_ref<uint32_t> shared_word(uint32_t& word) { return std::atomic_ref<uint32_t>(word); }

void raise_watch() {
  shared_word(watch1).store(1, std::memory_order_relaxed);
  shared_word(watch).store(shared_word(watch1).load(std::memory_order_relaxed), std::memory_order_relaxed);
}

}  // namespace

void abort_state_hook(int32_t phase) {
  if (phase != 0) return;
  shared_word(watch).store(0, std::memory_order_relaxed);
  shared_word(watch1).store(0, std::memory_order_relaxed);
}

int32_t report_abort() {
  if (errors_of_thread.kernel_abort_enabled != 1) return 0;
  throwVelorimException(VelorimError_abort);
  return 1;
}

}  // namespace vlm

uint32_t* getAbortWatchHandle() noexcept { return &watch; }

int32_t checkAbortWatch() noexcept {
  if (vlm::shared_word(watch).load(std::memory_order_relaxed) == 0) return 0;
  return abortPoll("Compiler") != 0;
}

int32_t checkAbortWatchThrow() { return checkAbortWatch() != 0 ? vlm::report_abort() : 0; }

int32_t checkAPIAbortSupported() noexcept { return 1; }

void triggerAPIAbort() noexcept {
  vlm::abort_requested.store(1, std::memory_order_release);
  vlm::raise_watch();
}

int32_t checkAPIAbort() noexcept {
  if (vlm::abort_armed.load(std::memory_order_relaxed) == 0) return 0;
  return vlm::abort_requested.load(std::memory_order_acquire);
}

void clearAPIAbort() noexcept { vlm::abort_requested.store(0, std::memory_order_release); }

void armAPIAbort() noexcept {
  vlm::abort_armed.store(1, std::memory_order_relaxed);
  if (vlm::abort_requested.load(std::memory_order_acquire) != 0) vlm::raise_watch();
}

void disarmAPIAbort() noexcept { vlm::abort_armed.store(0, std::memory_order_relaxed); }
