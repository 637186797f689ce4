// Faults to catch: the team used below the threshold or not at it, partials merged in another order than that
// of the threads, a chunk or a step that starts at the wrong element, a failure of the kernel or of either
// merge that is lost, an accumulator merged twice, a partial left allocated.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <numeric>
#include <vector>

#include "Arithmetic/Frames/vector_parallel_omp_funs1_0.h"
#include "Runtime/hooks.h"
#include "support/allocation_balance.h"

namespace {

using vlm::vmfun1_0::vfun1_0_run;

constexpr mint unit[2] = {0, 1};

// An order-sensitive value: a polynomial hash of the elements seen, mod 2^64, with their number. Joining two
// of them is associative but not commutative, and {0, 0} changes nothing.
struct trace {
  uint64_t hash = 0;
  uint64_t length = 0;
};
bool operator==(const trace& a, const trace& b) { return a.hash == b.hash && a.length == b.length; }
constexpr uint64_t base = 1000003;

uint64_t power(uint64_t exponent) {
  uint64_t result = 1;
  for (uint64_t factor = base; exponent != 0; exponent >>= 1, factor *= factor) {
    if ((exponent & 1) != 0) result *= factor;
  }
  return result;
}
int append(trace* into, const mint* source, mint count, const mint* increments) {
  for (mint i = 0; i < count; ++i) {
    into->hash = into->hash * base + static_cast<uint64_t>(source[i * increments[1]]);
    ++into->length;
  }
  return 0;
}
int join(trace* into, const trace* value) {
  into->hash = into->hash * power(value->length) + value->hash;
  into->length += value->length;
  return 0;
}

class TeamReducingFrame : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    static const bool once = (InitializeMemory(), true);
    static_cast<void>(once);
  }
  void SetUp() override {
    vlm::parallel_settings_hook(0);
    setVectorParallelLengthThreshold(0, 100);
  }
  void TearDown() override { vlm::parallel_settings_hook(0); }

  static std::vector<mint> numbers(mint count) {
    std::vector<mint> result(static_cast<size_t>(count));
    std::iota(result.begin(), result.end(), 1);
    return result;
  }
};

TEST_F(TeamReducingFrame, MergesInTheOrderOfTheThreads) {
  for (const mint step : {1, 3, -2}) {
    const mint increments[2] = {0, step};
    for (const int threads : {1, 2, 3, 8}) {
      setParallelThreadNumber(threads);
      for (const mint count : {99, 100, 101, 149, 150, 151, 475}) {
        const std::vector<mint> data = numbers(count * 3);
        const mint* source = step < 0 ? &data[static_cast<size_t>((count - 1) * 2)] : data.data();
        trace expected;
        const int team = count < 100 ? 1 : threads;
        for (int thread = 0; thread < team; ++thread) {
          for (mint i = 0; i < count; ++i) {
            if (i / 50 % team == thread) append(&expected, source + i * step, 1, unit);
          }
        }
        trace accumulator;
        EXPECT_EQ(vfun1_0_run(append, join, &accumulator, source, count, increments), 0);
        EXPECT_EQ(accumulator, expected)
            << count << " elements, step " << step << ", " << threads << " threads";
      }
    }
  }
}

TEST_F(TeamReducingFrame, UsesTheTeamFromTheThreshold) {
  const std::vector<mint> data = numbers(100);
  std::atomic<int> ranges{0};
  const auto counting = [&](trace* into, const mint* source, mint count, const mint* increments) {
    ++ranges;
    return append(into, source, count, increments);
  };
  const auto ranges_of = [&](mint count) {
    ranges = 0;
    trace accumulator;
    EXPECT_EQ(vfun1_0_run(counting, join, &accumulator, data.data(), count, unit), 0);
    EXPECT_EQ(accumulator.length, static_cast<uint64_t>(count));
    return ranges.load();
  };
  EXPECT_EQ(ranges_of(100), 1);  // one thread
  setParallelThreadNumber(2);
  EXPECT_EQ(ranges_of(0), 1);
  EXPECT_EQ(ranges_of(99), 1);
  EXPECT_EQ(ranges_of(100), 2);
  ListableCompileEvaluatingThreaded = 1;
  EXPECT_EQ(ranges_of(100), 1);
}

TEST_F(TeamReducingFrame, ReportsAFailingRange) {
  const std::vector<mint> data = numbers(400);
  for (const int threads : {1, 2, 3}) {
    setParallelThreadNumber(threads);
    for (const mint bad : {1, 50, 51, 200, 400}) {
      const auto range = [&](trace* into, const mint* source, mint count, const mint* increments) {
        append(into, source, count, increments);
        return source[0] <= bad && bad <= source[count - 1] ? 7 : 0;
      };
      trace accumulator;
      EXPECT_EQ(vfun1_0_run(range, join, &accumulator, data.data(), 400, unit), 1)
          << bad << " on " << threads;
    }
  }
}

TEST_F(TeamReducingFrame, ReportsAFailingMerge) {
  const std::vector<mint> data = numbers(400);
  const vlm::test::AllocationBalance balance;
  for (const int threads : {2, 3}) {
    setParallelThreadNumber(threads);
    // Eight chunks join partials, then the partials join the accumulator: fail at each merge in turn.
    for (int failing = 0; failing < 8 + threads; ++failing) {
      std::atomic<int> merges{0};
      const auto merge = [&](trace* into, const trace* value) {
        return merges++ == failing ? 1 : join(into, value);
      };
      trace accumulator;
      EXPECT_EQ(vfun1_0_run(append, merge, &accumulator, data.data(), 400, unit), 1) << "merge " << failing;
    }
  }
}

TEST_F(TeamReducingFrame, RunsOnThisThreadWithoutMemoryForPartials) {
  setParallelThreadNumber(2);
  const std::vector<mint> data = numbers(100);
  trace expected;
  append(&expected, data.data(), 100, unit);
  vlm::memory::fail_allocation_after(0);
  trace accumulator;
  EXPECT_EQ(vfun1_0_run(append, join, &accumulator, data.data(), 100, unit), 0);
  EXPECT_FALSE(vlm::memory::allocation_failure_pending());
  vlm::memory::fail_allocation_after(-1);
  EXPECT_EQ(accumulator, expected);
}

}  // namespace
