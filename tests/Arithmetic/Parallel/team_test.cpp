// Faults to catch: a team opened against the settings, a chunk that no thread runs when the team is smaller
// than asked for, a chunk on another thread than its number says, a later failure that hides an earlier one,
// a hang in a forked child. OpenMP threads are outside of what the thread sanitizer sees; these suites are
// named Team* so that it can leave them out.
#include "Arithmetic/Parallel/team.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <limits>
#include <set>
#include <thread>
#include <vector>

#include "Runtime/hooks.h"

namespace {

using namespace vlm::parallel;

class Team : public testing::Test {
 protected:
  void SetUp() override { vlm::parallel_settings_hook(0); }
  void TearDown() override { vlm::parallel_settings_hook(0); }
};

constexpr auto critical = [](auto&& update) {
#pragma omp critical(team_test)
  update();
};

TEST_F(Team, IsUsedFromTheThresholdWithTwoThreadsUnlessSwitchedOff) {
  EXPECT_FALSE(use_team(100, 10));
  setParallelThreadNumber(2);
  EXPECT_FALSE(use_team(9, 10));
  EXPECT_TRUE(use_team(10, 10));
  ListableCompileEvaluatingThreaded = 1;
  EXPECT_FALSE(use_team(10, 10));
  ListableCompileEvaluatingThreaded = 0;
  setParallelThreadNumber(0);
  EXPECT_FALSE(use_team(10, 10));
  setParallelThreadNumber(-2);
  EXPECT_FALSE(use_team(10, 10));
  EXPECT_EQ(team_size(), 1);
  setParallelThreadNumber(std::numeric_limits<mint>::max());
  EXPECT_EQ(team_size(), largest_team);
}

// What each element saw: how often it was visited, and by which thread.
struct visits {
  explicit visits(mint count) : times(static_cast<size_t>(count)), thread(static_cast<size_t>(count)) {}
  void visit(mint first, mint length) {
    for (mint i = first; i < first + length; ++i) {
      ++times[static_cast<size_t>(i)];
      thread[static_cast<size_t>(i)] = omp_get_thread_num();
    }
  }
  std::vector<int> times, thread;
};

TEST_F(Team, ChunkNumberChoosesTheThread) {
  for (const int threads : {1, 2, 3, 5}) {
    setParallelThreadNumber(threads);
    for (const mint chunk : {1, 2, 7, 100}) {
      for (const mint count : {0, 1, 6, 7, 8, 99, 100, 101}) {
        visits seen(count);
        for_chunks(count, chunk, [&](mint first, mint length) { seen.visit(first, length); });
        for (mint i = 0; i < count; ++i) {
          ASSERT_EQ(seen.times[static_cast<size_t>(i)], 1) << i;
          ASSERT_EQ(seen.thread[static_cast<size_t>(i)], i / chunk % threads) << i;
        }
      }
    }
  }
}

TEST_F(Team, SizeHoldsOnEveryHostThread) {
  setParallelThreadNumber(3);
  visits seen(9);
  std::thread([&] { for_chunks(9, 1, [&](mint first, mint length) { seen.visit(first, length); }); }).join();
  EXPECT_EQ(std::set<int>(seen.thread.begin(), seen.thread.end()), (std::set<int>{0, 1, 2}));
}

TEST_F(Team, SmallerThanAskedForRunsAllChunks) {
  setParallelThreadNumber(4);
  visits seen(10);
#pragma omp parallel num_threads(2)
#pragma omp single
  for_chunks(10, 3, [&](mint first, mint length) { seen.visit(first, length); });
  EXPECT_EQ(seen.times, std::vector<int>(10, 1));
}

TEST_F(Team, ReportsTheSmallestFailure) {
  constexpr mint count = 1000;
  for (const int threads : {1, 2, 3}) {
    setParallelThreadNumber(threads);
    for (const std::set<mint>& failing : {std::set<mint>{},
                                          {0},
                                          {count - 1},
                                          {500},
                                          {499, 500},
                                          {7, 8, 999},
                                          {990, 10},
                                          {300, 301, 302, 700}}) {
      const auto loop = [&](mint first, mint length) -> mint {
        const auto next = failing.lower_bound(first);
        return next != failing.end() && *next < first + length ? *next - first + 1 : 0;
      };
      const mint expected = failing.empty() ? 0 : *failing.begin() + 1;
      for (const mint chunk : {1, 10, 499, 5000})
        EXPECT_EQ(smallest_failure(count, chunk, loop, critical), expected);
    }
  }
}

TEST_F(Team, SkipsChunksBehindAKnownFailure) {
  setParallelThreadNumber(1);
  std::vector<mint> ran;
  const auto loop = [&](mint first, mint) -> mint {
    ran.push_back(first);
    return first == 20 ? 3 : 0;
  };
  EXPECT_EQ(smallest_failure(100, 10, loop, critical), 23);
  EXPECT_EQ(ran, (std::vector<mint>{0, 10, 20}));
}

TEST_F(Team, PositionPrecedesOnlyChunksBehindIt) {
  smallest_position position;
  EXPECT_FALSE(position.precedes(0));
  position.record(11, critical);
  EXPECT_FALSE(position.precedes(10));  // position 11 is the first element of the chunk from 10
  EXPECT_TRUE(position.precedes(11));
  position.record(12, critical);
  EXPECT_EQ(position.value(), 11);
  position.record(3, critical);
  EXPECT_EQ(position.value(), 3);
}

TEST_F(Team, StaysOnTheCallersThreadInAForkedChild) {
  vlm::parallel_settings_hook(1);
  setParallelThreadNumber(2);
  visits seen(8);
  for_chunks(8, 1, [&](mint first, mint length) { seen.visit(first, length); });  // the parent has a team now
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) _exit(use_team(100, 10) ? 1 : 0);
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 0);
  EXPECT_TRUE(use_team(100, 10));
}

}  // namespace
