// Catches: a subsystem that comes up in the wrong phase or not at all; stop steps left out, doubled or out of order; state that
// survives a full stop and spoils the next start; keys and memory that leak over many cycles; a second start that takes what
// was there before.
#include <gtest/gtest.h>
#include <pthread.h>

#include <vector>

#include "Runtime/os_thread.h"
#include "support/allocation_balance.h"
#include "velorim/array.h"
#include "velorim/errors.h"
#include "velorim/memory.h"
#include "velorim/parallel.h"
#include "velorim/runtime.h"

namespace {

bool names_work() {
  return MNumericArrayType_fromString("Integer8") == MNumericArrayTypeInteger8 &&
         MNumericArrayConvertMethod_fromString("Round") == MNumericArrayConvertRound;
}
bool no_names() {
  return MNumericArrayType_fromString("Integer8") == 0 && MNumericArrayConvertMethod_fromString("Round") == 0;
}

TEST(Lifecycle, EachPhaseDoesItsWorkAndNoMore) {
  watch = watch1 = 1;
  ListableCompileEvaluatingThreaded = 1;
  InitRuntimeLibrary(0);
  EXPECT_EQ(GetAllocatorList(), nullptr);
  EXPECT_EQ(watch, 0u);
  EXPECT_EQ(ListableCompileEvaluatingThreaded, 0);
  EXPECT_EQ(getParallelThreadNumber(), 1);
  EXPECT_TRUE(no_names());

  InitRuntimeLibrary(1);
  EXPECT_NE(GetAllocatorList(), nullptr);
  EXPECT_GT(system_memory, uint64_t{1} << 20);
  EXPECT_EQ(system_allocation_limit, ~uint64_t{0});
  EXPECT_TRUE(names_work());
  EXPECT_GE(getParallelThreadNumber(), 1);
  EXPECT_GE(getHyperThreadCount(), getProcessorCount());

  InitRuntimeLibrary(2);
  const int64_t before = vlm::test::bytes_of_blocks();
  InitRuntimeLibrary(3);
  InitRuntimeLibrary(5);
  InitRuntimeLibrary(-1);
  EXPECT_EQ(vlm::test::bytes_of_blocks(), before);
  InitRuntimeLibrary(4);
  ASSERT_NE(getEternalMTensor(), nullptr);
  EXPECT_TRUE(getEternalMTensor()->flags & ArrayFlagEternal);
  EXPECT_EQ(getEternalMTensor()->refCount, INT64_MAX);
  EXPECT_EQ(ParallelThreadsEnvironment_initializedQ(), 0);
  DeinitializeRuntimeLibrary(1);
  EXPECT_EQ(GetAllocatorList(), nullptr);
}

TEST(Lifecycle, ThePartialStopKeepsMemoryAndComesBack) {
  VelorimRTL_initialize();
  setParallelThreadNumber(3);
  const mint dims[] = {5};
  MNumericArray* array = MNumericArray_newAllocatedCommon(MNumericArrayTypeInteger64, 1, dims, FailFatal);
  auto* data = static_cast<int64_t*>(array->data);
  for (int i = 0; i < 5; ++i) data[i] = i * i;

  for (int round = 0; round < 3; ++round) {
    DeinitializeRuntimeLibrary(0);
    EXPECT_TRUE(no_names());
    EXPECT_EQ(ParallelThreadsEnvironment_initializedQ(), 0);
    EXPECT_NE(GetAllocatorList(), nullptr);
    EXPECT_NE(getEternalMTensor(), nullptr);
    for (int i = 0; i < 5; ++i) EXPECT_EQ(data[i], i * i);

    const ParallelThreadsEnvironment* pool = ReinitializeRuntimeLibrary();
    ASSERT_NE(pool, nullptr);
    EXPECT_EQ(ParallelThreadsEnvironment_numThreads(pool), 3);
    EXPECT_EQ(ParallelThreadsEnvironment_initializedQ(), 1);
    EXPECT_TRUE(names_work());
  }
  MNumericArray_delete(array);
  DeinitializeRuntimeLibrary(1);
  EXPECT_EQ(ParallelThreadsEnvironment_initializedQ(), 0);
}

std::vector<int> hook_order;
bool memory_was_there = true;
template <int N> void recording_hook() {
  hook_order.push_back(N);
  void* block = zalloc(64, 0, FailNull);
  memory_was_there = memory_was_there && block != nullptr;
  zfree(block);
}

TEST(Lifecycle, TheFullStopRunsStopHooksLastFirstAndThenForgetsThem) {
  for (int round = 0; round < 2; ++round) {
    InitializeRuntimeLibrary();
    hook_order.clear();
    ASSERT_GT(vlm::add_thread_stop_hook(recording_hook<1>), 1u);  // the allocator's is the first
    vlm::add_thread_stop_hook(recording_hook<2>);
    DeinitializeRuntimeLibrary(0);
    EXPECT_TRUE(hook_order.empty());
    setParallelThreadNumber(1);  // workers of the pool would run the hooks for themselves
    ReinitializeRuntimeLibrary();
    DeinitializeRuntimeLibrary(1);
    EXPECT_EQ(hook_order, (std::vector<int>{2, 1}));
    EXPECT_TRUE(memory_was_there);
    EXPECT_EQ(vlm::add_thread_stop_hook(recording_hook<1>), 0u);
  }
}

TEST(Lifecycle, ASecondStartResetsSettingsAndKeepsArrays) {
  InitializeRuntimeLibrary();
  const mint dims[] = {3};
  MNumericArray* array = MNumericArray_newAllocatedCommon(MNumericArrayTypeReal64, 1, dims, FailFatal);
  static_cast<double*>(array->data)[2] = 2.5;
  const MTensor* eternal = getEternalMTensor();
  triggerAPIAbort();
  ListableCompileEvaluatingThreaded = 1;
  InitializeRuntimeLibrary();
  clearAPIAbort();
  EXPECT_EQ(watch, 0u);
  EXPECT_EQ(ListableCompileEvaluatingThreaded, 0);
  EXPECT_NE(getEternalMTensor(), eternal);
  EXPECT_TRUE(names_work());
  EXPECT_EQ(static_cast<double*>(array->data)[2], 2.5);
  MNumericArray_delete(array);
  DeinitializeRuntimeLibrary(1);
}

TEST(Lifecycle, ManyCyclesLeaveNothingBehind) {
  int64_t fresh = 0;
  for (int cycle = 0; cycle < PTHREAD_KEYS_MAX + 100; ++cycle) {
    InitializeRuntimeLibrary();
    if (cycle == 0) fresh = vlm::test::bytes_of_blocks();
    ASSERT_EQ(vlm::test::bytes_of_blocks(), fresh) << "cycle " << cycle;
    if (cycle % 100 == 0) {
      setParallelThreadNumber(2);
      ReinitializeRuntimeLibrary();
      void* lost = zalloc(1000, 1, FailFatal);  // the full stop takes back what was not freed
      ASSERT_NE(lost, nullptr);
      EXPECT_EQ(VelorimCompiler_CatchBase([](void*, void*, void*, void*) { throwVelorimException(1); },
                                          nullptr, nullptr, nullptr, nullptr),
                1);
    }
    DeinitializeRuntimeLibrary(1);
  }
  pthread_key_t key;
  ASSERT_EQ(pthread_key_create(&key, nullptr), 0) << "the cycles used up the keys";
  pthread_key_delete(key);
}

}  // namespace
