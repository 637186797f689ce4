// Faults to catch: an index visited twice or never, a worker with two pieces of a reduction, a second call
// that takes the pool, the range or the cancel mark from the first, a thread number that changes the pool
// under a call, a schedule left changed, a pool that hangs when a worker finishes early, when it is made and
// ended over and over, or when no thread is to be had.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <functional>
#include <limits>
#include <memory>
#include <mutex>
#include <random>
#include <set>
#include <thread>
#include <vector>

#include "Arithmetic/Parallel/pool.h"
#include "Runtime/hooks.h"
#include "support/allocation_balance.h"
#include "velorim/memory.h"

namespace {

struct free_schedule {
  void operator()(ParallelThreadsSchedule* schedule) const { Delete_ParallelThreadsSchedule(schedule); }
};
using schedule_ptr = std::unique_ptr<ParallelThreadsSchedule, free_schedule>;

schedule_ptr new_schedule(mint kind, mint chunk) {
  return schedule_ptr(New_ParallelThreadsSchedule(kind, chunk));
}

// Calls with C++ bodies: the argument is the pair of functions.
struct functions {
  std::function<void(ParallelThreadsEnvironment*)> init;
  std::function<void(ParallelThread*)> body;
};
void call_init(void* argument, ParallelThreadsEnvironment* environment) {
  if (const auto& init = static_cast<functions*>(argument)->init) init(environment);
}
void call_body(void* argument, ParallelThread* thread) { static_cast<functions*>(argument)->body(thread); }

int32_t run_for(mint start, mint end, mint step, ParallelThreadsSchedule* schedule, functions f) {
  return ParallelThreads_For(&f, call_init, call_body, start, end, step, schedule);
}
int32_t run_reduce(mint start, mint end, mint step, functions f) {
  return ParallelThreads_Reduce(&f, call_init, call_body, start, end, step);
}
int32_t run_iterate(uint32_t flags, std::function<void(ParallelThread*)> body) {
  functions f{nullptr, std::move(body)};
  return ParallelThreads_Iterate(&f, call_body, flags);
}

class Pool : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    static const bool once = (InitializeMemory(), true);
    static_cast<void>(once);
  }
  void SetUp() override { vlm::parallel_settings_hook(0); }
  void TearDown() override { vlm::parallel_settings_hook(0); }
};

struct piece {
  mint start, end, step, id;
  std::thread::id thread;
};

// The pieces that bodies report, in the order of their starts.
class pieces {
 public:
  void add(ParallelThread* thread) {
    std::lock_guard guard(lock_);
    list_.push_back({ParallelThread_RangeStart(thread), ParallelThread_RangeEnd(thread),
                     ParallelThread_RangeStep(thread), ParallelThread_ID(thread),
                     std::this_thread::get_id()});
  }
  std::vector<piece> sorted() {
    std::stable_sort(list_.begin(), list_.end(),
                     [](const piece& a, const piece& b) { return a.start < b.start; });
    return list_;
  }
  size_t size() const { return list_.size(); }
  bool on_this_thread_alone() const {
    return std::all_of(list_.begin(), list_.end(),
                       [](const piece& p) { return p.thread == std::this_thread::get_id(); });
  }

 private:
  std::mutex lock_;
  std::vector<piece> list_;
};

std::function<void(ParallelThread*)> adder(pieces& list) {
  return [&list](ParallelThread* thread) { list.add(thread); };
}

TEST_F(Pool, Schedules) {
  const schedule_ptr small = new_schedule(2, 0);
  EXPECT_EQ(small->kind, 2);
  EXPECT_EQ(small->chunk, 1);
  EXPECT_EQ(small->single, 0);
  const schedule_ptr single(New_ParallelThreadsScheduleSingle());
  EXPECT_EQ(single->kind, 1);
  EXPECT_EQ(single->chunk, 1);
  EXPECT_EQ(single->single, 1);
  Delete_ParallelThreadsSchedule(nullptr);
}

TEST_F(Pool, IsMadeByTheFirstCallAndFreed) {
  EXPECT_EQ(ParallelThreadsEnvironment_initializedQ(), 0);
  setParallelThreadNumber(3);
  ParallelThreadsEnvironment* environment = vlm::thread_pool_create();
  EXPECT_EQ(ParallelThreadsEnvironment_numThreads(environment), 3);
  EXPECT_EQ(vlm::thread_pool_create(), environment);
  vlm::thread_pool_free();
  EXPECT_EQ(ParallelThreadsEnvironment_initializedQ(), 0);
  vlm::thread_pool_free();
  pieces list;
  EXPECT_EQ(run_for(0, 10, 1, nullptr, {nullptr, adder(list)}), 0);
  EXPECT_EQ(ParallelThreadsEnvironment_initializedQ(), 1);
}

TEST_F(Pool, ForCutsAnEvenRange) {
  setParallelThreadNumber(4);
  pieces list;
  mint workers = 0;
  const auto init = [&](ParallelThreadsEnvironment* e) {
    workers = ParallelThreadsEnvironment_numThreads(e);
  };
  EXPECT_EQ(run_for(0, 10, 1, nullptr, {init, adder(list)}), 0);
  EXPECT_EQ(workers, 4);
  const std::vector<piece> cut = list.sorted();
  ASSERT_EQ(cut.size(), 4U);
  const mint starts[] = {0, 2, 4, 7, 10};
  for (size_t i = 0; i < 4; ++i) {
    EXPECT_EQ(cut[i].start, starts[i]);
    EXPECT_EQ(cut[i].end, starts[i + 1]);
    EXPECT_EQ(cut[i].step, 1);
    EXPECT_LT(cut[i].id, 4);
    EXPECT_NE(cut[i].thread, std::this_thread::get_id());
  }
}

TEST_F(Pool, RefusesBadRangesBeforeInit) {
  setParallelThreadNumber(2);
  bool called = false;
  const functions f{[&](auto*) { called = true; }, [&](auto*) { called = true; }};
  for (const auto& [start, end, step, status] :
       {std::tuple{5, 5, 1, 0}, {5, 4, 1, 0}, {5, 4, 0, 0}, {0, 1, 0, 4}, {0, 1, -1, 4}}) {
    EXPECT_EQ(run_for(start, end, step, nullptr, f), status);
    EXPECT_EQ(run_reduce(start, end, step, f), status);
  }
  functions argument = f;
  EXPECT_EQ(ParallelThreads_For(&argument, call_init, nullptr, 0, 9, 1, nullptr), 4);
  EXPECT_EQ(ParallelThreads_Reduce(&argument, call_init, nullptr, 0, 9, 1), 4);
  EXPECT_EQ(ParallelThreads_Iterate(&argument, nullptr, 0), 4);
  EXPECT_FALSE(called);
}

TEST_F(Pool, ForStaysOnTheCallersThread) {
  struct {
    mint threads, start, end, step, kind, chunk;
  } const cases[] = {
      {1, 0, 100, 1, 0, 0},     // one worker
      {4, 0, 50, 1, 1, 100},    // 50 steps are not above 100
      {4, 0, 100, 1, 1, 100},   // nor are 100
      {4, 0, 1000, 10, 4, 100}  // nor the 100 steps of 10
  };
  for (const auto& c : cases) {
    setParallelThreadNumber(c.threads);
    const schedule_ptr schedule = c.kind == 0 ? nullptr : new_schedule(c.kind, c.chunk);
    pieces list;
    EXPECT_EQ(run_for(c.start, c.end, c.step, schedule.get(), {nullptr, adder(list)}), 0);
    ASSERT_EQ(list.size(), 1U);
    EXPECT_TRUE(list.on_this_thread_alone());
    const piece whole = list.sorted()[0];
    EXPECT_EQ(whole.start, c.start);
    EXPECT_EQ(whole.end, c.end);
    EXPECT_EQ(whole.step, c.step);
    EXPECT_EQ(whole.id, 0);
  }
  const schedule_ptr single(New_ParallelThreadsScheduleSingle());
  pieces list;
  EXPECT_EQ(run_for(0, 1000, 1, single.get(), {nullptr, adder(list)}), 0);
  EXPECT_EQ(list.size(), 1U);
  EXPECT_TRUE(list.on_this_thread_alone());
}

TEST_F(Pool, ScheduleHasASteppedChunkDuringTheCallOnly) {
  setParallelThreadNumber(2);
  const schedule_ptr schedule = new_schedule(1, 10);
  std::atomic<int> others{0};
  std::atomic<int> runs{0};
  EXPECT_EQ(run_for(0, 100, 3, schedule.get(),
                    {nullptr,
                     [&](auto*) {
                       ++runs;
                       others += schedule->chunk != 9;
                     }}),
            0);
  EXPECT_GT(runs, 1);
  EXPECT_EQ(others, 0);
  EXPECT_EQ(schedule->chunk, 10);
}

TEST_F(Pool, VisitsEveryIndexOnce) {
  constexpr uint32_t seed = 7411;
  std::mt19937_64 random(seed);
  const auto draw = [&](mint low, mint high) {
    return std::uniform_int_distribution<mint>(low, high)(random);
  };
  for (int i = 0; i < 400; ++i) {
    if (i % 20 == 0) setParallelThreadNumber(draw(1, 6));
    const mint start = draw(-100, 100);
    const mint end = start + draw(1, 700);
    const mint step = draw(1, 9);
    const mint kind = draw(-1, 5);
    const schedule_ptr schedule = kind < 0 ? nullptr : new_schedule(kind, draw(1, 40));
    std::vector<std::atomic<int>> times(static_cast<size_t>(end - start));
    const functions count{nullptr, [&](ParallelThread* thread) {
                            for (mint at = ParallelThread_RangeStart(thread);
                                 at < ParallelThread_RangeEnd(thread);
                                 at += ParallelThread_RangeStep(thread)) {
                              ++times[static_cast<size_t>(at - start)];
                            }
                          }};
    const bool reduce = i % 3 == 0;
    ASSERT_EQ(reduce ? run_reduce(start, end, step, count) : run_for(start, end, step, schedule.get(), count),
              0);
    for (mint at = start; at < end; ++at) {
      ASSERT_EQ(times[static_cast<size_t>(at - start)], (at - start) % step == 0 ? 1 : 0)
          << "seed " << seed << " case " << i << " kind " << kind << " reduce " << reduce << " at " << at;
    }
  }
}

TEST_F(Pool, ReduceGivesEveryWorkerOnePiece) {
  setParallelThreadNumber(3);
  struct {
    mint start, end, step;
    mint bounds[4];
  } const cases[] = {{0, 10, 1, {0, 3, 6, 10}},   // 10/3 each, the last up to the end
                     {0, 12, 3, {0, 6, 12, 12}},  // 4 becomes 6: nothing is left for the last
                     {-5, 4, 1, {-5, -2, 1, 4}}};
  for (const auto& c : cases) {
    for (int repeat = 0; repeat < 5; ++repeat) {
      pieces list;
      mint parts = 0;
      EXPECT_EQ(run_reduce(c.start, c.end, c.step,
                           {[&](auto* e) { parts = ParallelThreadsEnvironment_numThreads(e); }, adder(list)}),
                0);
      EXPECT_EQ(parts, 3);
      ASSERT_EQ(list.size(), 3U);
      for (const piece& p : list.sorted()) {
        EXPECT_EQ(p.start, c.bounds[p.id]);
        EXPECT_EQ(p.end, c.bounds[p.id + 1]);
        EXPECT_EQ(p.step, c.step);
      }
    }
  }
}

TEST_F(Pool, ReduceCoversRangesAtTheLimitsOfMint) {
  setParallelThreadNumber(3);
  constexpr mint least = std::numeric_limits<mint>::min();
  constexpr mint most = std::numeric_limits<mint>::max();
  for (const mint step : {mint{1}, most / 2}) {
    pieces list;
    EXPECT_EQ(run_reduce(least, most, step, {nullptr, adder(list)}), 0);
    mint cursor = least;
    for (const piece& p : list.sorted()) {
      EXPECT_EQ(p.start, cursor);
      EXPECT_GE(p.end, p.start);
      cursor = p.end;
    }
    EXPECT_EQ(cursor, most);
  }
}

TEST_F(Pool, ReducePreparesForOnePartWhereOneRuns) {
  setParallelThreadNumber(4);
  const auto expect_one_part = [](mint end) {
    pieces list;
    mint parts = 0;
    ParallelThreadsEnvironment* seen = nullptr;
    EXPECT_EQ(run_reduce(0, end, 1,
                         {[&](ParallelThreadsEnvironment* e) {
                            seen = e;
                            parts = ParallelThreadsEnvironment_numThreads(e);
                          },
                          [&](ParallelThread* thread) {
                            EXPECT_EQ(ParallelThreadsEnvironment_numThreads(seen), 1);
                            list.add(thread);
                          }}),
              0);
    EXPECT_EQ(parts, 1);
    EXPECT_EQ(list.size(), 1U);
    EXPECT_TRUE(list.on_this_thread_alone());
  };
  expect_one_part(3);  // fewer steps than workers
  const int32_t status = run_iterate(0, [&](ParallelThread* thread) {
    if (ParallelThread_ID(thread) == 2) expect_one_part(1000);  // a second call
  });
  EXPECT_EQ(status, 0);
  EXPECT_EQ(ParallelThreadsEnvironment_numThreads(vlm::thread_pool_create()), 4);
}

TEST_F(Pool, NestedCallsRunOnTheirOwnThreadWithTheirOwnRange) {
  for (const mint threads : {1, 4}) {
    setParallelThreadNumber(threads);
    std::atomic<int> outer_runs{0};
    const auto body = [&](ParallelThread* outer) {
      const mint start = ParallelThread_RangeStart(outer);
      const mint end = ParallelThread_RangeEnd(outer);
      pieces inner;
      EXPECT_EQ(run_for(100, 200, 5, nullptr, {nullptr, adder(inner)}), 0);
      EXPECT_EQ(run_reduce(300, 400, 1, {nullptr, adder(inner)}), 0);
      EXPECT_EQ(run_iterate(0, adder(inner)), 0);  // runs nothing
      EXPECT_EQ(inner.size(), 2U);
      EXPECT_TRUE(inner.on_this_thread_alone());
      EXPECT_EQ(inner.sorted()[0].end, 200);
      EXPECT_EQ(inner.sorted()[1].id, 0);
      EXPECT_EQ(ParallelThread_RangeStart(outer), start);
      EXPECT_EQ(ParallelThread_RangeEnd(outer), end);
      ++outer_runs;
    };
    EXPECT_EQ(run_for(0, 64, 1, nullptr, {nullptr, body}), 0);
    EXPECT_EQ(outer_runs, threads);
    pieces after;  // the outer call has given the workers back
    EXPECT_EQ(run_for(0, 64, 1, nullptr, {nullptr, adder(after)}), 0);
    EXPECT_EQ(after.size(), static_cast<size_t>(threads));
  }
}

TEST_F(Pool, InitMayCallThePool) {
  setParallelThreadNumber(2);
  pieces inner;
  pieces outer;
  const auto init = [&](ParallelThreadsEnvironment*) {
    setParallelThreadNumber(3);  // must not replace the pool that the outer call has been given
    EXPECT_EQ(run_for(0, 10, 1, nullptr, {nullptr, adder(inner)}), 0);
  };
  EXPECT_EQ(run_for(0, 10, 1, nullptr, {init, adder(outer)}), 0);
  EXPECT_EQ(inner.size(), 2U);
  EXPECT_EQ(outer.size(), 2U);
}

TEST_F(Pool, CancelGivesTheCode) {
  for (const mint threads : {1, 3}) {
    setParallelThreadNumber(threads);
    std::atomic<int> runs{0};
    const auto cancel = [&](ParallelThread* thread) {
      ++runs;
      ParallelThread_cancel(thread, 42);
      EXPECT_EQ(ParallelThread_canceledQ(thread), 1);
    };
    EXPECT_EQ(run_for(0, 30, 1, nullptr, {nullptr, cancel}), 42);
    EXPECT_EQ(runs, threads);  // the pieces given out run all the same
    EXPECT_EQ(run_reduce(0, 30, 1, {nullptr, cancel}), 42);
    std::atomic<int> still_canceled{0};
    const auto look = [&](ParallelThread* thread) { still_canceled += ParallelThread_canceledQ(thread); };
    EXPECT_EQ(run_for(0, 30, 1, nullptr, {nullptr, look}), 0);
    EXPECT_EQ(still_canceled, 0);
  }
  EXPECT_EQ(ParallelThread_canceledQ(nullptr), 0);
  ParallelThread_cancel(nullptr, 1);
}

TEST_F(Pool, NestedCallNeitherLosesNorClearsACancel) {
  setParallelThreadNumber(2);
  const auto outer = [&](ParallelThread* thread) {
    ParallelThread_cancel(thread, 5);
    EXPECT_EQ(
        run_for(0, 10, 1, nullptr,
                {nullptr, [](ParallelThread* inner) { EXPECT_EQ(ParallelThread_canceledQ(inner), 1); }}),
        5);
    EXPECT_EQ(ParallelThread_canceledQ(thread), 1);
  };
  EXPECT_EQ(run_for(0, 10, 1, nullptr, {nullptr, outer}), 5);
  const auto inner_cancels = [&](ParallelThread*) {
    run_for(0, 10, 1, nullptr, {nullptr, [](ParallelThread* inner) { ParallelThread_cancel(inner, 6); }});
  };
  EXPECT_EQ(run_for(0, 10, 1, nullptr, {nullptr, inner_cancels}), 6);
}

TEST_F(Pool, IterateRunsOnceOnEveryWorker) {
  for (const mint threads : {2, 5}) {
    setParallelThreadNumber(threads);
    for (const uint32_t flags : {0U, 1U, 2U, 3U}) {
      pieces list;
      EXPECT_EQ(run_iterate(flags, adder(list)), 0);
      std::set<mint> ids;
      for (const piece& p : list.sorted()) ids.insert(p.id);
      EXPECT_EQ(list.size(), static_cast<size_t>(threads));
      EXPECT_EQ(ids.size(), static_cast<size_t>(threads));
      EXPECT_EQ(*ids.rbegin(), threads - 1);
    }
    EXPECT_EQ(run_iterate(0, [](ParallelThread* thread) { ParallelThread_cancel(thread, 9); }), 9);
  }
}

TEST_F(Pool, IterateFlags) {
  setParallelThreadNumber(1);
  int runs = 0;
  const auto count = [&](ParallelThread*) { ++runs; };
  EXPECT_EQ(run_iterate(1, count), 4);  // no pool
  EXPECT_EQ(ParallelThreadsEnvironment_initializedQ(), 0);
  EXPECT_EQ(run_iterate(2, count), 0);  // workers only, and there are none
  EXPECT_EQ(runs, 0);
  EXPECT_EQ(run_iterate(0, count), 0);
  EXPECT_EQ(run_iterate(1, count), 0);
  EXPECT_EQ(runs, 2);
  setParallelThreadNumber(4);
  EXPECT_EQ(run_iterate(1, count), 0);  // the pool as it is
  EXPECT_EQ(runs, 3);
  setParallelThreadNumber(2);
  pieces list;
  EXPECT_EQ(
      run_for(0, 9, 1, nullptr, {nullptr, [](ParallelThread* thread) { ParallelThread_cancel(thread, 3); }}),
      3);
  EXPECT_EQ(run_iterate(1, adder(list)), 3);  // the cancel mark stays
  EXPECT_EQ(run_iterate(0, adder(list)), 0);
}

TEST_F(Pool, ThreadNumberTakesEffectAtTheNextFreeCall) {
  setParallelThreadNumber(3);
  const auto changes = [&](ParallelThread*) {
    setParallelThreadNumber(2);
    pieces inner;
    EXPECT_EQ(run_for(0, 50, 1, nullptr, {nullptr, adder(inner)}), 0);
    mint count = 0;
    mint* ids = ParallelThreadID(&count);
    EXPECT_EQ(count, 4);
    zfree(ids);
  };
  EXPECT_EQ(run_for(0, 50, 1, nullptr, {nullptr, changes}), 0);
  pieces after;
  EXPECT_EQ(run_for(0, 50, 1, nullptr, {nullptr, adder(after)}), 0);
  EXPECT_EQ(after.size(), 2U);
  for (const mint odd : {0, -3, 1}) {
    setParallelThreadNumber(odd);
    pieces list;
    EXPECT_EQ(run_for(0, 50, 1, nullptr, {nullptr, adder(list)}), 0);
    EXPECT_EQ(list.size(), 1U);
  }
}

TEST_F(Pool, FreeLeavesAPoolInUse) {
  setParallelThreadNumber(2);
  EXPECT_EQ(run_iterate(0, [](ParallelThread*) { vlm::thread_pool_free(); }), 0);
  EXPECT_EQ(ParallelThreadsEnvironment_initializedQ(), 1);
}

TEST_F(Pool, ThreadIds) {
  for (const mint threads : {1, 2, 4}) {
    setParallelThreadNumber(threads);
    mint count = -1;
    const std::unique_ptr<mint[], void (*)(mint*)> ids(ParallelThreadID(&count),
                                                       [](mint* block) { zfree(block); });
    ASSERT_EQ(count, threads == 1 ? 1 : threads + 1);
    EXPECT_EQ(ids[0], KThreadID());
    std::vector<mint> own(static_cast<size_t>(threads));
    run_iterate(0, [&](ParallelThread* thread) {
      own[static_cast<size_t>(ParallelThread_ID(thread))] = KThreadID();
    });
    for (mint i = 1; i < count; ++i) EXPECT_EQ(ids[static_cast<size_t>(i)], own[static_cast<size_t>(i - 1)]);
  }
}

TEST_F(Pool, SynchronizeLockKeepsBodiesApart) {
  setParallelThreadNumber(4);
  mint sum = 0;  // plain on purpose
  const auto add = [&](ParallelThread* thread) {
    for (mint at = ParallelThread_RangeStart(thread); at < ParallelThread_RangeEnd(thread); ++at) {
      ParallelThread_synchronizeLock(thread);
      ParallelThread_synchronizeLock(thread);  // recursive
      sum += at;
      ParallelThread_synchronizeUnlock(thread);
      ParallelThread_synchronizeUnlock(thread);
    }
  };
  EXPECT_EQ(run_for(0, 5000, 1, nullptr, {nullptr, add}), 0);
  EXPECT_EQ(sum, 4999 * 5000 / 2);
}

TEST_F(Pool, TwoHostThreadsMayEnterAtOnce) {
  setParallelThreadNumber(2);
  std::atomic<mint> sum{0};
  const auto host = [&](mint threads) {
    for (int i = 0; i < 200; ++i) {
      if (i % 10 == 0) setParallelThreadNumber(threads + i / 10 % 2);
      const schedule_ptr schedule = new_schedule(i % 5, 3);
      const auto add = [&](ParallelThread* thread) {
        for (mint at = ParallelThread_RangeStart(thread); at < ParallelThread_RangeEnd(thread); ++at)
          sum += at;
      };
      EXPECT_EQ(run_for(0, 100, 1, schedule.get(), {nullptr, add}), 0);
      EXPECT_EQ(run_reduce(0, 100, 1, {nullptr, add}), 0);
    }
  };
  std::thread other(host, 3);
  host(2);
  other.join();
  EXPECT_EQ(sum, 2 * 200 * 2 * 4950);
}

TEST_F(Pool, MadeAndEndedOverAndOver) {
  const vlm::test::AllocationBalance balance;
  for (int i = 0; i < 60; ++i) {
    setParallelThreadNumber(1 + i % 5);
    ASSERT_NE(vlm::thread_pool_create(), nullptr);
    if (i % 2 == 0) {
      std::atomic<int> runs{0};
      ASSERT_EQ(run_iterate(0, [&](ParallelThread*) { ++runs; }), 0);
      ASSERT_EQ(runs, 1 + i % 5);
    }
    vlm::thread_pool_free();
    ASSERT_EQ(ParallelThreadsEnvironment_initializedQ(), 0);
  }
}

TEST_F(Pool, WithoutMemoryForItsWorkersWorksOnTheCallersThread) {
  setParallelThreadNumber(std::numeric_limits<int32_t>::max());
  system_allocation_limit = 1 << 20;
  pieces list;
  EXPECT_EQ(run_for(0, 50, 1, nullptr, {nullptr, adder(list)}), 0);
  system_allocation_limit = ~uint64_t{0};
  EXPECT_EQ(list.size(), 1U);
  EXPECT_TRUE(list.on_this_thread_alone());
  EXPECT_EQ(ParallelThreadsEnvironment_numThreads(vlm::thread_pool_create()), 1);
}

TEST_F(Pool, NullRecordsAnswerZero) {
  EXPECT_EQ(ParallelThread_RangeStart(nullptr) + ParallelThread_RangeEnd(nullptr) +
                ParallelThread_RangeStep(nullptr),
            0);
  EXPECT_EQ(ParallelThread_ID(nullptr), 0);
  EXPECT_EQ(ParallelThreadsEnvironment_numThreads(nullptr), 0);
  ParallelThread_synchronizeLock(nullptr);
  ParallelThread_synchronizeUnlock(nullptr);
}

// The thread sanitizer lets no child of a process with threads start one: its name keeps it out of that run.
TEST(TeamPool, ForkedChildMakesItsOwn) {
  static const bool once = (InitializeMemory(), true);
  static_cast<void>(once);
  vlm::parallel_settings_hook(0);
  vlm::parallel::register_fork_handlers();
  setParallelThreadNumber(2);
  pieces list;
  EXPECT_EQ(run_for(0, 10, 1, nullptr, {nullptr, adder(list)}), 0);
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    pieces own;
    const bool forgotten = ParallelThreadsEnvironment_initializedQ() == 0;
    const bool ran = run_for(0, 10, 1, nullptr, {nullptr, adder(own)}) == 0 && own.size() == 2;
    _exit(forgotten && ran ? 0 : 1);
  }
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 0);
  vlm::parallel_settings_hook(0);
}

}  // namespace
