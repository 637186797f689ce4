#include "Memory/failure_injection.h"

namespace vlm::memory {

namespace detail {

constinit std::atomic<bool> injection_armed{false};

namespace {
constinit std::atomic<int64_t> allocations_to_pass{0};
}

bool injected_failure() {
  if (allocations_to_pass.fetch_sub(1, std::memory_order_relaxed) != 0) return false;
  injection_armed.store(false, std::memory_order_relaxed);
  return true;
}

}  // namespace detail

void fail_allocation_after(int64_t n) {
  detail::allocations_to_pass.store(n, std::memory_order_relaxed);
  detail::injection_armed.store(n >= 0, std::memory_order_relaxed);
}

bool allocation_failure_pending() { return detail::injection_armed.load(std::memory_order_relaxed); }

}  // namespace vlm::memory
