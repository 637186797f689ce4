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

/// The same for the memory that the engine itself asks of the system: chunks, large blocks, levels of the page map.
void fail_system_memory_after(int64_t n);

/// Has the heaps see that the injection was turned on or off; heaps.cpp.
void follow_injection();

namespace detail {
extern std::atomic<bool> injection_armed;
extern std::atomic<bool> system_injection_armed;
bool injected_failure();
bool injected_system_failure();
}  // namespace detail

inline bool injection_is_armed() { return detail::injection_armed.load(std::memory_order_relaxed); }

/// Whether the allocation at hand is the one that is to fail.
inline bool allocation_must_fail(int32_t fail_mode) {
  return injection_is_armed() && fail_mode != 0 && detail::injected_failure();
}

/// Whether the request to the system at hand is the one that is to fail.
inline bool system_allocation_must_fail() {
  return detail::system_injection_armed.load(std::memory_order_relaxed) && detail::injected_system_failure();
}

}  // namespace vlm::memory
