// Checks of memory behaviour that every room's tests share.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>

#include "Memory/block_engine.h"
#include "Memory/failure_injection.h"
#include "velorim/memory.h"

namespace vlm::test {

/// Bytes of the blocks that the calling thread's callers hold: MemoryInUse without what the allocator needs for itself, which a
/// first allocation of a size may raise for good.
inline int64_t bytes_of_blocks() {
  return static_cast<int64_t>(memory::bytes_of_callers(*memory::current_heap()));
}

/// Fails the test if the calling thread does not hold as many bytes when it goes as when it came.
class AllocationBalance {
 public:
  // The place of the caller; not std::source_location, which clang has only from version 16 on.
  explicit AllocationBalance(const char* file = __builtin_FILE(), int line = __builtin_LINE())
      : file_(file), line_(line) {
    CompactifyMemory();
    start_ = bytes_of_blocks();
  }
  ~AllocationBalance() {
    CompactifyMemory();
    EXPECT_EQ(difference(), 0) << "bytes still in use since " << file_ << ":" << line_;
  }
  AllocationBalance(const AllocationBalance&) = delete;
  AllocationBalance& operator=(const AllocationBalance&) = delete;

  int64_t difference() const { return bytes_of_blocks() - start_; }

 private:
  const char* file_;
  int line_;
  int64_t start_;
};

/// Runs the operation again and again, its first, second, ... allocation failing, until none fails.
/// operation() returns whether it succeeded and frees what it made. Every run must be balanced, must fail
/// when an allocation did, and must succeed when none did. Returns how many runs failed: 0 means that the
/// operation allocates nothing that may fail.
template <class Operation>
int64_t for_each_failing_allocation(Operation&& operation, int64_t most_allocations = 1000) {
  for (int64_t n = 0; n <= most_allocations; ++n) {
    SCOPED_TRACE(testing::Message() << n << " allocations succeed, the next one fails");
    const AllocationBalance balance;
    memory::fail_allocation_after(n);
    const bool succeeded = operation();
    const bool failed_one = !memory::allocation_failure_pending();
    memory::fail_allocation_after(-1);
    EXPECT_EQ(succeeded, !failed_one);
    if (!failed_one) return n;
  }
  ADD_FAILURE() << "more than " << most_allocations << " allocations";
  return most_allocations;
}

}  // namespace vlm::test
