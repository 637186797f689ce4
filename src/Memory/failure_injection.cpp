#include "Memory/failure_injection.h"

namespace vlm::memory {

namespace detail {

constinit std::atomic<bool> injection_armed{false};
constinit std::atomic<bool> system_injection_armed{false};

namespace {

constinit std::atomic<int64_t> allocations_to_pass{0};
constinit std::atomic<int64_t> system_requests_to_pass{0};

bool count_down(std::atomic<int64_t>& to_pass, std::atomic<bool>& armed) {
  if (to_pass.fetch_sub(1, std::memory_order_relaxed) != 0) return false;
  armed.store(false, std::memory_order_relaxed);
  return true;
}

}  // namespace

bool injected_failure() {
  const bool fails = count_down(allocations_to_pass, injection_armed);
  if (fails) follow_injection();
  return fails;
}
bool injected_system_failure() { return count_down(system_requests_to_pass, system_injection_armed); }

}  // namespace detail

void fail_allocation_after(int64_t n) {
  detail::allocations_to_pass.store(n, std::memory_order_relaxed);
  detail::injection_armed.store(n >= 0, std::memory_order_relaxed);
  follow_injection();
}

bool allocation_failure_pending() { return detail::injection_armed.load(std::memory_order_relaxed); }

void fail_system_memory_after(int64_t n) {
  detail::system_requests_to_pass.store(n, std::memory_order_relaxed);
  detail::system_injection_armed.store(n >= 0, std::memory_order_relaxed);
}

}  // namespace vlm::memory
