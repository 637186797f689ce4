// Catches: flags that are not independent of each other or come back by themselves; an abort that is reported outside a frame or
// in the wrong style; counters that repeat a value; a forwarder that forwards something else.
#include <gtest/gtest.h>

#include <cfenv>
#include <limits>
#include <set>
#include <thread>
#include <vector>

#include "Includes/fp_environment.h"
#include "Runtime/aborts.h"
#include "Runtime/hooks.h"
#include "velorim/errors.h"
#include "velorim/runtime.h"

namespace {

class Aborts : public testing::Test {
 protected:
  void SetUp() override { InitializeRuntimeLibrary(); }
  void TearDown() override {
    clearAPIAbort();
    armAPIAbort();
    setExceptionStyle(1);
    DeinitializeRuntimeLibrary(1);
  }
};

TEST_F(Aborts, RequestsFollowTheirFlags) {
  EXPECT_EQ(checkAPIAbortSupported(), 1);
  EXPECT_EQ(checkAPIAbort(), 0);
  triggerAPIAbort();
  EXPECT_EQ(watch, 1u);
  EXPECT_EQ(watch1, 1u);
  EXPECT_EQ(checkAPIAbort(), 1);
  disarmAPIAbort();
  EXPECT_EQ(checkAPIAbort(), 0);
  armAPIAbort();
  EXPECT_EQ(checkAPIAbort(), 1);
  clearAPIAbort();
  EXPECT_EQ(checkAPIAbort(), 0);
  EXPECT_EQ(watch, 1u);  // clearing a request leaves watch
}

TEST_F(Aborts, ArmingSetsWatchOnlyForAPendingRequest) {
  triggerAPIAbort();
  clearAPIAbort();
  watch = watch1 = 0;
  armAPIAbort();
  EXPECT_EQ(watch, 0u);
  triggerAPIAbort();
  disarmAPIAbort();
  watch = watch1 = 0;
  armAPIAbort();
  EXPECT_EQ(watch, 1u);
  EXPECT_EQ(watch1, 1u);
}

TEST_F(Aborts, PhaseZeroAloneClearsWatch) {
  EXPECT_EQ(getAbortWatchHandle(), &watch);
  watch = watch1 = 5;
  for (int32_t phase : {1, 2, 3, 4}) vlm::abort_state_hook(phase);
  EXPECT_EQ(watch + watch1, 10u);
  vlm::abort_state_hook(0);
  EXPECT_EQ(watch, 0u);
  EXPECT_EQ(watch1, 0u);
}

TEST_F(Aborts, ThePollAnswersNoEvenIfWatched) {
  watch = 1;
  EXPECT_EQ(checkAbortWatch(), 0);
  setKernelAbortEnabled(1);
  EXPECT_EQ(checkAbortWatchThrow(), 0);
  setKernelAbortEnabled(0);
  EXPECT_EQ(getExceptionActive(), 0u);
  EXPECT_EQ(abortPoll(nullptr), 0);
  EXPECT_EQ(abortPoll("In DLLFunction"), 0);
}

// What follows a yes of the poll.
TEST_F(Aborts, AReportTravelsInTheStyleAndOnlyInsideAFrame) {
  for (uint32_t style : {0u, 1u, 2u}) {
    setExceptionStyle(style);
    EXPECT_EQ(vlm::report_abort(), 0);  // outside a frame
    EXPECT_EQ(getExceptionActive(), 0u);
    int result = -1;
    EXPECT_EQ(VelorimCompiler_CatchBase(
                  [](void* r, void*, void*, void*) { *static_cast<int*>(r) = vlm::report_abort(); }, &result,
                  nullptr, nullptr, nullptr),
              1);
    EXPECT_EQ(result, style == 1 ? 1 : -1);
    EXPECT_EQ(getExceptionActive(), 0u);
  }
  setExceptionStyle(1);
  setKernelAbortEnabled(1);
  EXPECT_EQ(vlm::report_abort(), 1);
  EXPECT_EQ(setExceptionActive(0), 34u);
  setKernelAbortEnabled(0);
}

TEST_F(Aborts, TestPointsCountEachCallOnce) {
  const mint start = TestPointMint();
  constexpr int threads = 4, calls = 1000;
  std::vector<std::vector<uint64_t>> seen(threads);
  std::vector<std::thread> team;
  for (auto& mine : seen) {
    team.emplace_back([&mine] {
      for (int i = 0; i < calls; ++i) {
        mine.push_back(i % 2 ? TestPointUMint() : reinterpret_cast<uint64_t>(TestPointVoidHandle()));
      }
    });
  }
  for (auto& each : team) each.join();
  std::set<uint64_t> all;
  for (const auto& mine : seen) all.insert(mine.begin(), mine.end());
  EXPECT_EQ(all.size(), size_t{threads * calls});
  EXPECT_EQ(TestPointMint(), start + 1 + threads * calls);
}

TEST_F(Aborts, ClassifiesWithoutRaising) {
  using limits = std::numeric_limits<double>;
  vlm::fp::clear_flags();
  for (double finite : {0.0, -0.0, 1.0, limits::max(), limits::lowest(), limits::denorm_min()}) {
    EXPECT_EQ(TestException(finite), 0);
  }
  for (double nan : {limits::quiet_NaN(), -limits::quiet_NaN(), limits::signaling_NaN()})
    EXPECT_EQ(TestException(nan), 1);
  EXPECT_EQ(TestException(limits::infinity()), 2);
  EXPECT_EQ(TestException(-limits::infinity()), 3);
  EXPECT_EQ(vlm::fp::test_flags(), 0);
  EXPECT_EQ(feraiseexcept_wrapper(FE_DIVBYZERO), 0);
  EXPECT_EQ(vlm::fp::test_flags(), FE_DIVBYZERO);
  vlm::fp::clear_flags();
}

}  // namespace
