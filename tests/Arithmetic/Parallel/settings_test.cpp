// Faults to catch: a threshold stored below its least value, a chunk that is not half of it, an index out of
// range that reads or writes a neighbour, a thread number that is lost or wraps on its way to 32 bits, a
// sub-kernel mark that startup forgets, settings that startup does not put back.
#include "Arithmetic/Parallel/settings.h"

#include <gtest/gtest.h>
#include <omp.h>

#include <limits>

#include "Runtime/hooks.h"
#include "Runtime/processor_count.h"

namespace {

using namespace vlm::parallel;

class Settings : public testing::Test {
 protected:
  void SetUp() override { vlm::parallel_settings_hook(0); }
  void TearDown() override {
    settings.sub_kernel = 0;
    vlm::parallel_settings_hook(0);
  }
};

TEST_F(Settings, PhaseZeroPutsBackFirstValues) {
  ListableCompileEvaluatingThreaded = 7;
  setParallelThreadNumber(9);
  for (int32_t i = 0; i < 4; ++i) setVectorParallelLengthThreshold(i, 100 + i);
  for (int32_t i = 0; i < 3; ++i) setVectorVendorLengthThreshold(i, 100 + i);
  vlm::parallel_settings_hook(0);
  EXPECT_EQ(ListableCompileEvaluatingThreaded, 0);
  EXPECT_EQ(getProcessorCount(), 1);
  EXPECT_EQ(getHyperThreadCount(), 1);
  EXPECT_EQ(getParallelThreadNumber(), 1);
  EXPECT_EQ(getVectorParallelLengthThreshold(0), 32768);
  EXPECT_EQ(lengths(family::reducing).chunk, 16384);
  for (const family elementwise : {family::unary, family::binary, family::ternary}) {
    EXPECT_EQ(getVectorParallelLengthThreshold(static_cast<int32_t>(elementwise)), 8192);
    EXPECT_EQ(lengths(elementwise).chunk, 4096);
  }
  for (int32_t i = 0; i < 3; ++i) EXPECT_EQ(getVectorVendorLengthThreshold(i), 0x7FFFFFFFFFFFFFFF);
}

TEST_F(Settings, PhaseOneReadsTheProcessors) {
  vlm::parallel_settings_hook(1);
  const vlm::processor_counts counts = vlm::count_processors();
  EXPECT_EQ(getProcessorCount(), counts.physical);
  EXPECT_EQ(getHyperThreadCount(), counts.logical);
  EXPECT_EQ(getParallelThreadNumber(), counts.performance);
  EXPECT_EQ(omp_get_max_threads(), counts.performance);
}

TEST_F(Settings, SubKernelStartsWithOneThread) {
  RTL_From_SubKernel();
  vlm::parallel_settings_hook(0);
  vlm::parallel_settings_hook(1);
  EXPECT_EQ(getParallelThreadNumber(), 1);
  EXPECT_EQ(getHyperThreadCount(), vlm::count_processors().logical);
}

TEST_F(Settings, ThreadNumberGivesTheOldOneBack) {
  EXPECT_EQ(setParallelThreadNumber(5), 1);
  EXPECT_EQ(omp_get_max_threads(), 5);
  EXPECT_EQ(setParallelThreadNumber(3), 5);
  restoreParallelThreadNumber(5);
  EXPECT_EQ(getParallelThreadNumber(), 5);
  EXPECT_EQ(omp_get_max_threads(), 5);
}

TEST_F(Settings, OddThreadNumbersAreKept) {
  setParallelThreadNumber(0);
  EXPECT_EQ(getParallelThreadNumber(), 0);
  EXPECT_EQ(omp_get_max_threads(), 1);
  setParallelThreadNumber(-4);
  EXPECT_EQ(setParallelThreadNumber(std::numeric_limits<mint>::max()), -4);
  EXPECT_EQ(getParallelThreadNumber(), std::numeric_limits<int32_t>::max());
  setParallelThreadNumber(std::numeric_limits<mint>::min());
  EXPECT_EQ(getParallelThreadNumber(), std::numeric_limits<int32_t>::min());
}

TEST_F(Settings, LengthThresholds) {
  struct {
    mint value, threshold, chunk;
  } const cases[] = {{1, 2, 1},
                     {9, 9, 4},
                     {2, 2, 1},
                     {3, 3, 1},
                     {-100, 2, 1},
                     {std::numeric_limits<mint>::max(), std::numeric_limits<mint>::max(),
                      std::numeric_limits<mint>::max() / 2}};
  for (int32_t index = 0; index < 4; ++index) {
    for (const auto& [value, threshold, chunk] : cases) {
      setVectorParallelLengthThreshold(index, value);
      EXPECT_EQ(getVectorParallelLengthThreshold(index), threshold);
      EXPECT_EQ(lengths(static_cast<family>(index)).chunk, chunk);
    }
  }
}

TEST_F(Settings, VendorThresholds) {
  for (int32_t index = 0; index < 3; ++index) {
    setVectorVendorLengthThreshold(index, 0);
    EXPECT_EQ(getVectorVendorLengthThreshold(index), 1);
    setVectorVendorLengthThreshold(index, 40 + index);
  }
  for (int32_t index = 0; index < 3; ++index) EXPECT_EQ(getVectorVendorLengthThreshold(index), 40 + index);
}

TEST_F(Settings, IndexOutOfRangeReadsZeroAndWritesNothing) {
  for (const int32_t index :
       {-1, 3, 4, std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max()}) {
    setVectorVendorLengthThreshold(index, 77);
    EXPECT_EQ(getVectorVendorLengthThreshold(index), 0) << index;
    if (index == 3) continue;
    setVectorParallelLengthThreshold(index, 77);
    EXPECT_EQ(getVectorParallelLengthThreshold(index), 0) << index;
  }
  for (int32_t i = 0; i < 4; ++i) EXPECT_NE(getVectorParallelLengthThreshold(i), 77);
  for (int32_t i = 0; i < 3; ++i) EXPECT_NE(getVectorVendorLengthThreshold(i), 77);
}

TEST_F(Settings, ByteRule) {
  EXPECT_EQ(byte_lengths(1).threshold, 131072);
  EXPECT_EQ(byte_lengths(16).threshold, 8192);
  EXPECT_EQ(byte_lengths(16).chunk, 4096);
}

}  // namespace
