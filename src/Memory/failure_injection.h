// Makes allocations fail on purpose, so that tests reach the exits that exhaustion takes.
#pragma once

#include <atomic>
#include <cstdint>

namespace vlm::memory {

/// From now on n allocations of the process succeed and the next one fails, once. Allocations with FailFatal
/// are not counted and never made to fail: their failure ends the process. Any number below 0 turns the
/// injection off.
void fail_allocation_after(int64_t n);

/// True while the failure that was asked for has not happened yet.
bool allocation_failure_pending();

namespace detail {
extern std::atomic<bool> injection_armed;
bool injected_failure();
}  // namespace detail

/// Whether the allocation at hand is the one that is to fail.
inline bool allocation_must_fail(int32_t fail_mode) {
  if (!detail::injection_armed.load(std::memory_order_relaxed)) [[likely]] {
    return false;
  }
  return fail_mode != 0 && detail::injected_failure();
}

}  // namespace vlm::memory
