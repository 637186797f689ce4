// Faults looked for: a block freed elsewhere that lowers its maker's count too early, twice or never; an
// account listed in the wrong order or not at all; a thread that only frees and gets accounts; nested peaks
// that forget the outer one; memory that stays with the system after tear-down; a heap of an earlier life
// used by a thread that outlived it.
#include <gtest/gtest.h>

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include "Runtime/hooks.h"
#include "Runtime/os_thread.h"
#include "support/allocation_balance.h"
#include "velorim/memory.h"
#include "velorim/thread.h"

namespace {

using vlm::test::AllocationBalance;

std::vector<int64_t> information(int32_t what) {
  mint count = -1;
  int64_t* const array = FullMemoryInformation(&count, what);
  EXPECT_NE(array, nullptr);
  const std::vector<int64_t> result(array, array + count);
  freeMemorySizeArray(array);
  return result;
}

void run_on_thread(std::function<void()> work) {
  KThread* const thread = KThreadCreate([](void* f) { (*static_cast<std::function<void()>*>(f))(); }, &work,
                                        KTHREAD_PRIORITY_NORMAL);
  ASSERT_NE(thread, nullptr);
  EXPECT_EQ(KThreadWaitForExit(thread), 1);
  Delete_KThread(thread);
}

class Accounting : public testing::Test {
 protected:
  Accounting() {
    vlm::memory_hook(1);
    MemoryInUse();
  }
};

TEST_F(Accounting, AFreshThreadStartsAboveZeroWithoutPeakOrLimit) {
  int64_t in_use = 0, peak = -1, after = -1, peak_after = -1;
  uint64_t limit = 1;
  MCsetlimit(uint64_t{1} << 40);
  run_on_thread([&] {
    in_use = MemoryInUse();
    peak = MaxMemoryUsed();
    limit = MCliminuse();
    void* const block = zalloc(100, 0, FailFatal);
    peak_after = MaxMemoryUsed();
    zfree(block);
    after = MCinuse();
  });
  MCsetlimit(0);
  EXPECT_GT(in_use, 0);
  EXPECT_EQ(peak, 0);
  EXPECT_EQ(limit, 0u);
  EXPECT_EQ(peak_after, in_use + 64 + 104);  // the first block of a size brings the header of its chunk
  EXPECT_EQ(after, in_use + 64);             // which stays with the chunk
}

/// Has the chunks of these sizes made, so that the next blocks of them count alone.
void warm_up(std::initializer_list<uint64_t> sizes) {
  for (const uint64_t size : sizes) zfree(zalloc(size, 0, FailFatal));
}

TEST_F(Accounting, NestedPeaks) {
  warm_up({16, 1000, 4096});
  const AllocationBalance balance;
  void* list = nullptr;
  EXPECT_EQ(MaxMemoryListLength(list), 0);
  const int64_t outer = MaxMemoryListPush(&list);
  EXPECT_EQ(outer, MemoryInUse());
  void* block = zalloc(4096, 0, FailFatal);  // consumes 4352
  zfree(block);
  const int64_t inner = MaxMemoryListPush(&list);
  EXPECT_EQ(inner, outer + 16);
  EXPECT_EQ(MaxMemoryListLength(list), 2);
  block = zalloc(1000, 0, FailFatal);
  zfree(block);
  EXPECT_EQ(MaxMemoryListPop(&list), inner + 1024);
  EXPECT_EQ(MaxMemoryUsed(), outer + 4352);
  EXPECT_EQ(MaxMemoryListPop(&list), outer + 4352);
  EXPECT_EQ(list, nullptr);
}

int reports;
TEST_F(Accounting, OutsideAllocatorIsCountedByItsChange) {
  warm_up({16});
  const int64_t start = MemoryInUse();
  void* list = nullptr;
  MaxMemoryListPush(&list);
  reports = 0;
  MC_set_interrupt_fun([] { ++reports; });
  RecordCUDDMemory(10000);
  EXPECT_EQ(MemoryInUse(), start + 16 + 10000);
  MCsetlimit(static_cast<uint64_t>(start) + 12000);
  RecordCUDDMemory(11000);
  EXPECT_EQ(reports, 0);
  RecordCUDDMemory(13000);
  EXPECT_EQ(reports, 1);
  RecordCUDDMemory(12500);  // still above the limit, but shrinking
  EXPECT_EQ(reports, 1);
  EXPECT_EQ(MaxMemoryListPop(&list), start + 16 + 13000);
  RecordCUDDMemory(0);
  MCsetlimit(0);
  MC_set_interrupt_fun(nullptr);
  EXPECT_EQ(MemoryInUse(), start);
}

TEST_F(Accounting, ABlockFreedElsewhereCountsUntilItsMakerTakesItBack) {
  const AllocationBalance balance;
  void* const small = zalloc(100, 0, FailFatal);
  void* const large = zalloc(100000, 0, FailFatal);
  const int64_t with_blocks = vlm::test::bytes_of_blocks();
  run_on_thread([&] {
    zfree(small);
    zfree(large);
  });
  EXPECT_EQ(vlm::test::bytes_of_blocks(), with_blocks);
  EXPECT_EQ(information(2).front(), 104);
  EXPECT_EQ(information(3).front(), 100040);
  void* const other_class = zalloc(500, 0, FailFatal);
  EXPECT_EQ(vlm::test::bytes_of_blocks(), with_blocks + 512);
  zfree(zalloc(104, 0, FailFatal));
  EXPECT_EQ(vlm::test::bytes_of_blocks(), with_blocks + 512 - 104);
  EXPECT_EQ(information(2).front(), 0);
  EXPECT_EQ(information(3).front(), 100040);
  zfree(zalloc(70000, 0, FailFatal));
  EXPECT_EQ(vlm::test::bytes_of_blocks(), with_blocks + 512 - 104 - 100040);
  EXPECT_EQ(information(3).front(), 0);
  zfree(other_class);
}

TEST_F(Accounting, CompactifyTakesBackForEveryThread) {
  const AllocationBalance balance;
  void* blocks[] = {zalloc(8, 0, FailFatal), zalloc(2000, 1, FailFatal), zalloc(100000, 1, FailFatal)};
  run_on_thread([&] {
    for (void* block : blocks) zfree(block);
  });
  EXPECT_EQ(balance.difference(), 8 + 2048 + 100048);
  CompactifyMemory();
  EXPECT_EQ(balance.difference(), 0);
}

TEST_F(Accounting, AThreadThatOnlyFreesHasNoAccounts) {
  void* const block = zalloc(8, 0, FailFatal);
  const size_t threads = information(-1).size();
  size_t during = 0;
  run_on_thread([&] {
    zfree(block);
    zfree(nullptr);
    zalloc(0, 0, FailNull);
    during = information(-1).size();
  });
  EXPECT_EQ(during, threads);
  CompactifyMemory();
}

TEST_F(Accounting, ListsThreadsNewestFirstAndOrphansUntilTheirLastBlockGoes) {
  const std::vector<int64_t> before = information(4);
  EXPECT_EQ(before.back(), KThreadID());
  void* small = nullptr;
  void* large = nullptr;
  int64_t id = 0;
  std::vector<int64_t> during;
  run_on_thread([&] {
    id = KThreadID();
    small = zalloc(8, 0, FailFatal);
    large = zalloc(80000, 0, FailFatal);
    zfree(zalloc(64, 0, FailFatal));
    during = information(4);
  });
  ASSERT_EQ(during.size(), before.size() + 1);
  EXPECT_EQ(during.front(), id);
  EXPECT_EQ(std::vector<int64_t>(during.begin() + 1, during.end()), before);

  const int64_t orphan = information(0).front();
  zfree(small);
  EXPECT_EQ(information(0).front(), orphan - 8 - 64);  // with the block its chunk went
  EXPECT_EQ(information(4).size(), before.size() + 1);
  zfree(large);
  EXPECT_EQ(information(4), before);
  run_on_thread([] { zfree(zalloc(8, 0, FailFatal)); });  // leaves nothing behind
  EXPECT_EQ(information(4), before);
}

/// Blocks that carry their size and the number of their maker, so that a mixed-up or overwritten one shows.
struct Cookie {
  uint64_t size;
  uint64_t maker;
};

Cookie* make_cookie(uint64_t size, uint64_t maker) {
  Cookie* const cookie = static_cast<Cookie*>(zalloc(size, static_cast<int32_t>(maker & 1), FailFatal));
  *cookie = {size, maker};
  unsigned char* const bytes = reinterpret_cast<unsigned char*>(cookie);
  for (uint64_t i = sizeof(Cookie); i < size; ++i) bytes[i] = static_cast<unsigned char>(i * 31 + maker);
  return cookie;
}

bool eat_cookie(Cookie* cookie) {
  bool whole = true;
  const unsigned char* const bytes = reinterpret_cast<unsigned char*>(cookie);
  for (uint64_t i = sizeof(Cookie); i < cookie->size; ++i) {
    whole = whole && bytes[i] == static_cast<unsigned char>(i * 31 + cookie->maker);
  }
  zfree(cookie);
  return whole;
}

/// Four tables on which threads lay blocks and take those of others.
class Exchange {
 public:
  Cookie* swap(size_t table, Cookie* cookie) {
    const std::lock_guard guard(locks_[table]);
    return std::exchange(tables_[table], cookie);
  }

 private:
  std::mutex locks_[4];
  Cookie* tables_[4] = {};
};

uint64_t next_random(uint64_t& state) {
  state = state * 6364136223846793005u + 1442695040888963407u;
  return state >> 33;
}

TEST_F(Accounting, ThreadsHandBlocksToEachOtherAndDieWithSomeAlive) {
  const AllocationBalance balance;
  const size_t threads_before = information(4).size();
  constexpr uint64_t seed = 20260;
  SCOPED_TRACE(testing::Message() << "seed " << seed);
  Exchange exchange;
  std::atomic<int> broken{0};
  for (int round = 0; round < 4; ++round) {
    struct Work {
      Exchange* exchange;
      std::atomic<int>* broken;
      uint64_t state;
      uint64_t number;
    };
    std::vector<Work> work;
    for (uint64_t t = 0; t < 4; ++t) {
      work.push_back({&exchange, &broken, seed + round * 4u + t, t});
    }
    std::vector<KThread*> threads;
    for (Work& w : work) {
      threads.push_back(KThreadCreate(
          [](void* argument) {
            Work& my = *static_cast<Work*>(argument);
            for (int i = 0; i < 3000; ++i) {
              const uint64_t draw = next_random(my.state);
              const uint64_t size = 16 + (draw % 100 == 0 ? draw % 90000 : draw % 1500);
              Cookie* const taken = my.exchange->swap(draw / 128 % 4, make_cookie(size, my.number));
              if (taken != nullptr && !eat_cookie(taken)) ++*my.broken;
            }
          },
          &w, KTHREAD_PRIORITY_NORMAL));
      ASSERT_NE(threads.back(), nullptr);
    }
    for (KThread* thread : threads) {
      KThreadWaitForExit(thread);
      Delete_KThread(thread);
    }
  }
  for (size_t table = 0; table < 4; ++table) {
    Cookie* const left = exchange.swap(table, nullptr);
    EXPECT_TRUE(left == nullptr || eat_cookie(left));
  }
  EXPECT_EQ(broken, 0);
  EXPECT_EQ(information(4).size(), threads_before);
}

TEST_F(Accounting, NoFreeIsLostWhileItsHeapIsOrphaned) {
  // The maker ends while two others free its blocks: whichever comes last must end the heap.
  const size_t threads_before = information(4).size();
  constexpr int blocks_each = 64;
  for (int round = 0; round < 200; ++round) {
    struct Shared {
      void* blocks[2][blocks_each];
      std::atomic<int> ready{0};
    } shared;
    KThread* const maker = KThreadCreate(
        [](void* argument) {
          Shared& s = *static_cast<Shared*>(argument);
          for (auto& half : s.blocks) {
            for (int i = 0; i < blocks_each; ++i) half[i] = zalloc(i % 8 == 7 ? 70000 : 40, 0, FailFatal);
          }
          s.ready = 1;
        },
        &shared, KTHREAD_PRIORITY_NORMAL);
    std::vector<std::thread> eaters;
    for (auto& half : shared.blocks) {
      eaters.emplace_back([&shared, &half] {
        while (shared.ready == 0) std::this_thread::yield();
        for (void* block : half) zfree(block);
      });
    }
    for (std::thread& eater : eaters) eater.join();
    KThreadWaitForExit(maker);
    Delete_KThread(maker);
    ASSERT_EQ(information(4).size(), threads_before) << "round " << round;
  }
}

TEST(MemoryLifecycle, StartsAndEndsAgainAndAgain) {
  vlm::memory_tear_down();
  vlm::free_thread_hook_lists();
  EXPECT_EQ(GetAllocatorList(), nullptr);

  // A thread of the host that lives through all lives of the allocator.
  std::mutex lock;
  std::condition_variable change;
  int asked = 0, done = 0;
  std::thread outlives([&] {
    for (int turn = 1; turn <= 3; ++turn) {
      std::unique_lock guard(lock);
      change.wait(guard, [&] { return asked == turn; });
      EXPECT_NE(zalloc(100, 0, FailFatal), nullptr);
      EXPECT_NE(zalloc(100000, 0, FailFatal), nullptr);
      done = turn;
      change.notify_all();
    }
  });
  for (int turn = 1; turn <= 3; ++turn) {
    system_memory = 0;
    system_allocation_limit = 5;
    vlm::memory_hook(0);
    EXPECT_EQ(system_memory, 0u);
    vlm::memory_hook(1);
    EXPECT_NE(GetAllocatorList(), nullptr);
    EXPECT_GE(system_memory, uint64_t{1} << 26);
    EXPECT_EQ(system_allocation_limit, ~uint64_t{0});
    vlm::memory_hook(1);  // a second run registers nothing twice
    EXPECT_EQ(vlm::add_thread_stop_hook([] {}), 2u);
    {
      std::unique_lock guard(lock);
      asked = turn;
      change.notify_all();
      change.wait(guard, [&] { return done == turn; });
    }
    zalloc(24, 0, FailFatal);  // what nobody frees goes with the allocator
    EXPECT_EQ(information(4).size(), 2u);
    vlm::run_thread_stop_hooks();
    vlm::free_thread_hook_lists();
    vlm::memory_tear_down();
    EXPECT_EQ(GetAllocatorList(), nullptr);
    vlm::memory_tear_down();  // nothing left to do
  }
  outlives.join();
}

}  // namespace
