// Faults looked for: a size class off by one at a boundary; a count that differs from what the block
// consumes; alignment that holds only by luck; zrealloc keeping a block that is too idle, too small or
// misaligned, or losing the old one on failure; sizes near 2^64 that wrap into small ones; a failure mode
// that answers like another; a limit that is not set back.
#include <gtest/gtest.h>

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <vector>

#include "Memory/failure_injection.h"
#include "Memory/working_space.h"
#include "support/allocation_balance.h"
#include "velorim/memory.h"

namespace {

using vlm::test::AllocationBalance;

constexpr uint64_t all_ones = ~uint64_t{0};

/// The block sizes as they are written down: ranges with a constant step.
std::vector<uint64_t> written_block_sizes() {
  struct Range {
    uint64_t first, last, step;
  };
  std::vector<uint64_t> sizes;
  for (const Range r : {Range{8, 256, 8}, Range{272, 512, 16}, Range{544, 1024, 32}, Range{1088, 2048, 64},
                        Range{2176, 4096, 128}, Range{4352, 8192, 256}, Range{8704, 16384, 512},
                        Range{17408, 32768, 1024}, Range{34816, 65536, 2048}}) {
    for (uint64_t size = r.first; size <= r.last; size += r.step) sizes.push_back(size);
  }
  return sizes;
}

uint64_t smallest_holding(const std::vector<uint64_t>& sizes, uint64_t bytes) {
  for (uint64_t size : sizes) {
    if (size >= bytes) return size;
  }
  return 0;
}

uint64_t rounded_to(uint64_t size, uint64_t multiple) { return (size + multiple - 1) / multiple * multiple; }

/// Bytes that a block takes, computed from the written table.
uint64_t expected_consumption(const std::vector<uint64_t>& sizes, uint64_t size, bool aligned) {
  if (size <= 1024) return smallest_holding(sizes, rounded_to(size, aligned ? 16 : 8));
  const uint64_t with_header = rounded_to(size, 8) + (aligned ? 16 : 8);
  return with_header <= 65536 ? smallest_holding(sizes, with_header) : with_header + 32;
}

bool is_multiple(const void* pointer, uint64_t of) { return reinterpret_cast<uintptr_t>(pointer) % of == 0; }

TEST(Zalloc, CountsWhatTheBlockConsumesAndAlignsIt) {
  const std::vector<uint64_t> sizes = written_block_sizes();
  ASSERT_EQ(sizes.size(), 160u);
  std::vector<uint64_t> requests = {65519, 65520, 65521, 65527, 65528, 65529, 65536, 70000, 1 << 20};
  for (uint64_t block : sizes) {
    for (uint64_t around : {block - 17, block - 16, block - 9, block - 8, block - 1, block, block + 1}) {
      if (around - 1 < 65536) requests.push_back(around);
    }
  }
  for (uint64_t size : requests) {
    for (int32_t aligned : {0, 1}) {
      const AllocationBalance balance;
      unsigned char* const block = static_cast<unsigned char*>(zalloc(size, aligned, FailNull));
      ASSERT_NE(block, nullptr);
      EXPECT_EQ(static_cast<uint64_t>(balance.difference()), expected_consumption(sizes, size, aligned != 0))
          << size << " aligned " << aligned;
      EXPECT_TRUE(is_multiple(block, aligned ? 16 : 8));
      std::memset(block, 0xa5, size);
      zfree(block);
    }
  }
}

TEST(Zalloc, ZeroBytesAreNull) {
  const AllocationBalance balance;
  for (int32_t mode : {FailFatal, FailNull, FailReport}) {
    EXPECT_EQ(zalloc(0, 1, mode), nullptr);
    EXPECT_EQ(kCalloc(0, 8, 0, mode), nullptr);
    EXPECT_EQ(kCalloc(8, 0, 0, mode), nullptr);
  }
  zfree(nullptr);
  EXPECT_EQ(balance.difference(), 0);
}

TEST(Zalloc, SmallUnalignedBlocksDoNotAllLieAtSixteen) {
  std::vector<void*> blocks;
  bool odd_multiple = false;
  for (int i = 0; i < 64; ++i) blocks.push_back(zalloc(24, 0, FailFatal));
  for (void* block : blocks) {
    odd_multiple = odd_multiple || !is_multiple(block, 16);
    zfree(block);
  }
  EXPECT_TRUE(odd_multiple);
}

TEST(ZallocRound, FollowsTheTable) {
  const std::vector<uint64_t> sizes = written_block_sizes();
  EXPECT_EQ(zalloc_round(0, 0), 0u);
  EXPECT_EQ(zalloc_round(1, 0), 8u);
  EXPECT_EQ(zalloc_round(1, 1), 16u);
  EXPECT_EQ(zalloc_round(1024, 0), 1024u);
  EXPECT_EQ(zalloc_round(1025, 0), 1088u);
  EXPECT_EQ(zalloc_round(65528, 0), 65568u);
  EXPECT_EQ(zalloc_round(65528, 1), 65576u);
  EXPECT_EQ(zalloc_round(all_ones, 0), all_ones);
  EXPECT_EQ(zalloc_round(all_ones - 40, 1), all_ones);
  for (uint64_t size = 1; size <= 65520; ++size) {
    // Below the large blocks it is what a block consumes.
    ASSERT_EQ(zalloc_round(size, 0), expected_consumption(sizes, size, false)) << size;
    ASSERT_EQ(zalloc_round(size, 1), expected_consumption(sizes, size, true)) << size;
  }
}

TEST(KCalloc, FillsWithZeros) {
  for (uint64_t count : {1u, 127u, 300u, 20000u}) {
    // A dirty block of the size goes back first, so that zeros are not there by luck.
    void* const dirty = zalloc(count * 5, 0, FailFatal);
    std::memset(dirty, 0xff, count * 5);
    zfree(dirty);
    unsigned char* const block = static_cast<unsigned char*>(kCalloc(count, 5, 0, FailNull));
    ASSERT_NE(block, nullptr);
    for (uint64_t i = 0; i < count * 5; ++i) ASSERT_EQ(block[i], 0);
    zfree(block);
  }
  EXPECT_EQ(kCalloc(uint64_t{1} << 33, uint64_t{1} << 33, 0, FailNull), nullptr);
}

TEST(Zrealloc, KeepsABlockWhileHalfOfItIsUsed) {
  struct Case {
    uint64_t size;
    int32_t aligned;
    uint64_t usable;  // block less its header
  };
  for (const Case c :
       {Case{100, 0, 104}, Case{1000, 1, 1024}, Case{1025, 0, 1088 - 8}, Case{1025, 1, 1088 - 16},
        Case{65528, 0, 65536 - 8}, Case{70000, 0, 70000}, Case{70001, 1, 70008}}) {
    SCOPED_TRACE(c.size);
    for (uint64_t kept : {c.usable, c.usable / 2}) {
      void* const block = zalloc(c.size, c.aligned, FailFatal);
      EXPECT_EQ(zrealloc(block, kept, 0, FailNull), block) << kept;
      EXPECT_EQ(zrealloc(block, kept, c.aligned, FailNull), block) << kept;
      std::memset(block, 1, c.usable);
      zfree(block);
    }
    for (uint64_t moved : {c.usable + 1, c.usable / 2 - 1}) {
      unsigned char* const block = static_cast<unsigned char*>(zalloc(c.size, c.aligned, FailFatal));
      for (uint64_t i = 0; i < c.usable; ++i) block[i] = static_cast<unsigned char>(i * 7);
      unsigned char* const other = static_cast<unsigned char*>(zrealloc(block, moved, c.aligned, FailNull));
      ASSERT_NE(other, nullptr);
      EXPECT_NE(other, block) << moved;
      for (uint64_t i = 0; i < std::min(moved, c.usable); ++i) {
        ASSERT_EQ(other[i], static_cast<unsigned char>(i * 7));
      }
      zfree(other);
    }
  }
}

TEST(Zrealloc, MovesToGetAlignment) {
  for (uint64_t size : {1100u, 70000u}) {
    void* const block = zalloc(size, 0, FailFatal);
    ASSERT_FALSE(is_multiple(block, 16));
    void* const moved = zrealloc(block, size, 1, FailNull);
    EXPECT_TRUE(is_multiple(moved, 16));
    zfree(moved);
  }
}

TEST(Zrealloc, NullAllocatesAndFailureLeavesTheOldBlock) {
  const AllocationBalance balance;
  unsigned char* const block = static_cast<unsigned char*>(zrealloc(nullptr, 64, 0, FailNull));
  ASSERT_NE(block, nullptr);
  std::memset(block, 9, 64);
  const int64_t with_block = balance.difference();
  EXPECT_EQ(zrealloc(block, 0, 0, FailNull), nullptr);
  EXPECT_EQ(zrealloc(block, all_ones, 0, FailReport), nullptr);
  vlm::memory::fail_allocation_after(0);
  EXPECT_EQ(zrealloc(block, 1000, 0, FailNull), nullptr);
  EXPECT_FALSE(vlm::memory::allocation_failure_pending());
  EXPECT_EQ(balance.difference(), with_block);
  EXPECT_EQ(block[63], 9);
  zfree(block);
}

TEST(Zalloc, SizesThatNoMemoryHoldsFail) {
  const AllocationBalance balance;
  for (uint64_t size :
       {all_ones, all_ones - 6, all_ones - 7, all_ones - 55, all_ones / 2 + 1, all_ones / 2}) {
    for (int32_t aligned : {0, 1}) {
      for (int32_t mode : {FailNull, FailReport}) EXPECT_EQ(zalloc(size, aligned, mode), nullptr) << size;
    }
  }
  EXPECT_EQ(balance.difference(), 0);
}

TEST(Zalloc, TheAllocationLimitBindsLargeBlocksOnly) {
  system_allocation_limit = 1000;
  EXPECT_EQ(zalloc(65529, 0, FailNull), nullptr);
  EXPECT_EQ(zalloc(65529, 0, FailReport), nullptr);
  void* const small = zalloc(65528, 0, FailNull);
  EXPECT_NE(small, nullptr);
  zfree(small);
  system_allocation_limit = 65536 + 40;
  void* const fits = zalloc(65536, 0, FailNull);
  EXPECT_NE(fits, nullptr);
  EXPECT_EQ(zalloc(65537, 0, FailNull), nullptr);
  zfree(fits);
  system_allocation_limit = all_ones;
}

int interrupts;
int64_t seen_in_use;
void count_interrupt() {
  ++interrupts;
  seen_in_use = MemoryInUse();
}

class SoftLimit : public testing::Test {
 protected:
  SoftLimit() {
    // The first block of a size brings the header of its chunk; later ones count alone.
    for (const uint64_t size : {8, 1024}) zfree(zalloc(size, 0, FailFatal));
    interrupts = 0;
    seen_in_use = 0;
    MC_set_interrupt_fun(count_interrupt);
  }
  ~SoftLimit() override {
    MCsetlimit(0);
    MC_set_interrupt_fun(nullptr);
  }
  const AllocationBalance balance_;
};

TEST_F(SoftLimit, EachModeAnswersInItsWay) {
  const int64_t start = MemoryInUse();
  MCsetlimit(static_cast<uint64_t>(start) + 2048);
  EXPECT_EQ(MCliminuse(), static_cast<uint64_t>(start) + 2048);
  void* const inside = zalloc(1024, 0, FailNull);  // below the limit
  void* const exact = zalloc(1024, 0, FailNull);   // reaches it without passing
  ASSERT_NE(exact, nullptr);
  EXPECT_EQ(interrupts, 0);

  EXPECT_EQ(zalloc(8, 0, FailNull), nullptr);
  EXPECT_EQ(interrupts, 1);
  EXPECT_EQ(seen_in_use, start + 2048 + 8);
  EXPECT_EQ(MemoryInUse(), start + 2048);

  void* const fatal = zalloc(8, 0, FailFatal);
  EXPECT_NE(fatal, nullptr);
  EXPECT_EQ(interrupts, 2);
  void* const report = zalloc(8, 0, FailReport);
  EXPECT_NE(report, nullptr);
  EXPECT_EQ(interrupts, 3);
  MC_set_interrupt_fun(nullptr);
  EXPECT_EQ(zalloc(8, 0, FailNull), nullptr);
  for (void* block : {inside, exact, fatal, report}) zfree(block);
}

TEST_F(SoftLimit, AnImpossibleSizeIsReportedOnlyInReportMode) {
  MCsetlimit(uint64_t{1} << 40);
  EXPECT_EQ(zalloc(all_ones, 0, FailNull), nullptr);
  EXPECT_EQ(interrupts, 0);
  EXPECT_EQ(zalloc(all_ones, 0, FailReport), nullptr);
  EXPECT_EQ(interrupts, 1);
  EXPECT_EQ(seen_in_use, -1);  // all ones
  EXPECT_EQ(balance_.difference(), 0);
}

TEST_F(SoftLimit, AFailedBlockTestsTheLimitAgainInReportMode) {
  MCsetlimit(static_cast<uint64_t>(MemoryInUse()) + 100);
  vlm::memory::fail_allocation_after(0);
  EXPECT_EQ(zalloc(1000, 0, FailReport), nullptr);
  EXPECT_EQ(interrupts, 2);
  vlm::memory::fail_allocation_after(0);
  EXPECT_EQ(zalloc(16, 0, FailReport), nullptr);  // stays below the limit: nothing to report
  EXPECT_EQ(interrupts, 2);
}

TEST(NamedForms, AreTheEntriesTheyAbbreviate) {
  const AllocationBalance balance;
  void* const plain[] = {Malloc_fun(1100), Calloc_fun(11, 100), Malloc_fun_for_gmp(1100),
                         RuntimeAllocate(1100), RuntimeCallocate(11, 100)};
  void* const aligned[] = {MallocAligned_fun(1100),      MallocAlign16_fun(1100),
                           CallocAligned_fun(11, 100),   CallocAlign16_fun(11, 100),
                           RuntimeAllocateAligned(1100), RuntimeCallocateAligned(11, 100)};
  for (void* block : plain) EXPECT_TRUE(block != nullptr && !is_multiple(block, 16));
  for (void* block : aligned) EXPECT_TRUE(block != nullptr && is_multiple(block, 16));
  for (void* zeroed : {plain[1], plain[4], aligned[2], aligned[3], aligned[5]}) {
    for (int i = 0; i < 1100; ++i) ASSERT_EQ(static_cast<char*>(zeroed)[i], 0);
  }
  Free_fun(Realloc_fun(plain[0], 5000));
  Free_fun(plain[1]);
  Free_fun_for_gmp(Realloc_fun_for_gmp(plain[2], 1100, 9000), 9000);
  RuntimeFree(RuntimeReallocate(plain[3], 5000));
  RuntimeFree(plain[4]);
  void* moved = ReallocAligned_fun(aligned[0], 5000);
  EXPECT_TRUE(is_multiple(moved, 16));
  Free_fun(moved);
  moved = RuntimeReallocateAligned(aligned[1], 5000);
  EXPECT_TRUE(is_multiple(moved, 16));
  RuntimeFree(moved);
  for (int i = 2; i < 6; ++i) zfree(aligned[i]);
  // The Runtime forms answer null where the others end the process.
  EXPECT_EQ(RuntimeAllocate(all_ones), nullptr);
  EXPECT_EQ(RuntimeAllocateAligned(all_ones), nullptr);
  EXPECT_EQ(RuntimeCallocate(all_ones, 1), nullptr);
  EXPECT_EQ(RuntimeCallocateAligned(all_ones, 1), nullptr);
}

TEST(working_space, IsFreedOnEveryWayOut) {
  const AllocationBalance balance;
  vlm::memory::working_space<double> space(1000);
  ASSERT_TRUE(space);
  EXPECT_TRUE(is_multiple(space.data(), 16));
  vlm::memory::working_space<double> other(10);
  other = std::move(space);
  EXPECT_EQ(other.size(), 1000u);
  vlm::memory::working_space<double> third(std::move(other));
  third[999] = 1;
  zfree(third.release());
  EXPECT_TRUE(vlm::memory::working_space<int>(0));
  EXPECT_FALSE(vlm::memory::working_space<double>(all_ones / 4));
}

TEST(FailureInjection, ReachesEveryAllocationOnce) {
  const int64_t failures = vlm::test::for_each_failing_allocation([] {
    void* const fatal = zalloc(8, 0, FailFatal);  // never made to fail
    zfree(fatal);
    const vlm::memory::working_space<char> a(100), b(100), c(100000, FailReport);
    return a && b && c;
  });
  EXPECT_EQ(failures, 3);
}

TEST(NomemDeathTest, SaysSoAndExits) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto exhaust = [] {
    std::fflush(stdout);
    dup2(2, 1);  // the message goes to standard output, the death test reads standard error
    zalloc(all_ones, 0, FailFatal);
  };
  EXPECT_EXIT(exhaust(), testing::ExitedWithCode(1),
              "^\nNo more memory available\\.\nTarnovex kernel has shut down\\.\n"
              "Try quitting other applications and then retry\\.\n$");
}

}  // namespace
