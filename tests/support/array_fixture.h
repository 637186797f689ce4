// What tests of array operations share: a library at work, a balance of memory that must come back to zero, arrays made and
// deleted in one line, and storage that fails at every step in turn.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

#include "Includes/element_types.h"
#include "MNumericArray/Allocate/array_record.h"
#include "Memory/failure_injection.h"
#include "Runtime/hooks.h"
#include "support/allocation_balance.h"
#include "velorim/array.h"
#include "velorim/memory.h"

namespace vlm_test {

struct array_deleter {
  void operator()(MNumericArray* array) const { MNumericArray_delete(array); }
};
using array_ptr = std::unique_ptr<MNumericArray, array_deleter>;

inline std::vector<mint> dims_of(const MNumericArray* array) {
  return {array->dims, array->dims + array->rank};
}

/// A block of zalloc with the dimensions, to be taken over.
inline mint* dims_block(const std::vector<mint>& dims) {
  auto* block = static_cast<mint*>(zalloc(dims.size() * sizeof(mint), 0, FailFatal));
  if (block != nullptr) std::memcpy(block, dims.data(), dims.size() * sizeof(mint));
  return block;
}

/// The product by the rule that a reader would use, in 128 bits.
inline mint product_of(const std::vector<mint>& dims) {
  __int128 product = 1;
  for (mint n : dims) product *= n;
  return static_cast<mint>(product);
}

/// Shapes of the ranks 0 to 5, with sizes 0 and 1 in every place.
inline const std::vector<std::vector<mint>>& sample_shapes() {
  static const std::vector<std::vector<mint>> shapes = {{},
                                                        {0},
                                                        {1},
                                                        {7},
                                                        {513},
                                                        {0, 3},
                                                        {3, 0},
                                                        {1, 5},
                                                        {4, 6},
                                                        {2, 3, 4},
                                                        {2, 0, 4},
                                                        {1, 1, 1},
                                                        {5, 4, 3},
                                                        {2, 2, 2, 2},
                                                        {3, 1, 2, 0},
                                                        {2, 1, 3, 1, 2},
                                                        {0, 0, 0, 0, 0}};
  return shapes;
}

class ArrayTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    static const bool running = [] {
      for (int32_t phase = 0; phase <= 4; ++phase) {
        vlm::memory_hook(phase);
        vlm::array_names_hook(phase);
        vlm::eternal_tensor_hook(phase);
      }
      return getEternalMTensor() != nullptr;
    }();
    ASSERT_TRUE(running);
  }
  void SetUp() override { before_ = vlm::test::bytes_of_blocks(); }
  void TearDown() override {
    MCsetlimit(0);
    MC_set_interrupt_fun(nullptr);
    system_allocation_limit = ~uint64_t{0};
    EXPECT_EQ(vlm::test::bytes_of_blocks(), before_) << "an operation kept or lost memory";
  }

  /// Runs `attempt`, which says whether it succeeded, with its first allocation failing, then its second and so on until
  /// none is left to fail. After each failure runs `check`. Returns the number of allocations that were made to fail;
  /// those with FailFatal, such as the records of arrays, are not among them.
  template <class Attempt, class Check>
  static int fail_at_every_allocation(Attempt&& attempt, Check&& check) {
    for (int failures = 0; failures < 1000; ++failures) {
      vlm::memory::fail_allocation_after(failures);
      const bool succeeded = attempt();
      const bool failed = !vlm::memory::allocation_failure_pending();
      vlm::memory::fail_allocation_after(-1);
      EXPECT_EQ(succeeded, !failed) << "with allocation " << failures << " failing";
      if (!failed) return failures;
      check();
    }
    ADD_FAILURE() << "never succeeded";
    return -1;
  }

 private:
  int64_t before_ = 0;
};

}  // namespace vlm_test
