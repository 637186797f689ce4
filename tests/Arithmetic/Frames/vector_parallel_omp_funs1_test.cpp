// The unary vector frame: shapes, modes, threads and overlap, through the catalogue's vector kernels.
//
// Faults it is meant to catch: a failing position off by one, by a block or by a chunk; a first failure shadowed by a
// later one; elements behind a failure written; bulk mode that looks at results instead of flags, or counts underflow,
// or flags of before the run; check bits read by the wrong kind of kernel; an in-place run that is split over threads;
// one below and at the threshold confused; a source overwritten before it is read where the operands overlap; a build
// in which the compiler raises flags that the program does not (speculated division).
#include <gtest/gtest.h>

#include <algorithm>
#include <cfenv>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include "Includes/fp_environment.h"
#include "velorim/machine_functions.h"
#include "velorim/parallel.h"

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double quiet_nan = std::numeric_limits<double>::quiet_NaN();
constexpr uint32_t fp = MACHFUNC_CHECK_FP, integer = MACHFUNC_CHECK_INTEGER;
constexpr double guard = -12345.5;

/// Runs a function over Real64 elements.
mint run(int32_t number, double* result, const double* source, mint count, uint32_t flags, mint r_step = 1,
         mint x_step = 1) {
  const mint increments[2] = {r_step, x_step};
  return MNumericArray_getUnaryVectorMachFunc(number, MNumericArrayTypeReal64)(result, source, count,
                                                                               increments, flags);
}
mint run_integers(int32_t number, mint* result, const mint* source, mint count, uint32_t flags,
                  mint r_step = 1, mint x_step = 1) {
  const mint increments[2] = {r_step, x_step};
  return MNumericArray_getUnaryVectorMachFunc(number, MNumericArrayTypeInteger64)(result, source, count,
                                                                                  increments, flags);
}

/// Threads and threshold for one test, put back at its end.
class team {
 public:
  explicit team(mint threads, mint threshold) : threads_(setParallelThreadNumber(threads)) {
    setVectorParallelLengthThreshold(1, threshold);
  }
  ~team() {
    restoreParallelThreadNumber(threads_);
    setVectorParallelLengthThreshold(1, 8192);
    ListableCompileEvaluatingThreaded = 0;
  }
  team(const team&) = delete;
  team& operator=(const team&) = delete;

 private:
  mint threads_;
};

std::vector<double> ones(size_t n) { return std::vector<double>(n, 1.0); }

/// Sets of failing positions within n elements: none, first, last, in the tail, beside the ends of blocks, two at once,
/// one in every block.
std::vector<std::vector<size_t>> failing_positions(size_t n) {
  std::vector<std::vector<size_t>> sets = {{}, {0}, {n - 1}, {n / 2}, {n / 3, n / 2}, {0, n - 1}};
  for (const size_t near : {size_t{7}, size_t{8}, size_t{511}, size_t{512}, size_t{513}, size_t{1024}}) {
    if (near < n) sets.push_back({near});
  }
  std::vector<size_t> in_every_block;
  for (size_t i = 100; i < n; i += 512) in_every_block.push_back(i);
  if (!in_every_block.empty()) sets.push_back(in_every_block);
  return sets;
}

constexpr size_t counts[] = {1, 2, 9, 511, 512, 513, 1500};

// ---- Element mode.

TEST(ElementMode, StopsAtTheFirstFailureInPlace) {
  for (const size_t n : counts) {
    for (const auto& failing : failing_positions(n)) {
      for (const mint step : {1, 2, -1}) {
        const auto at = [&](size_t i) { return step > 0 ? i * static_cast<size_t>(step) : n - 1 - i; };
        std::vector<double> data(n * 2, guard);
        for (size_t i = 0; i < n; ++i) data[at(i)] = 4.0;
        for (const size_t i : failing) data[at(i)] = -4.0;
        const std::vector<double> before = data;
        double* start = data.data() + at(0);
        const size_t good = failing.empty() ? n : failing.front();
        ASSERT_EQ(good == n ? 0 : static_cast<mint>(good) + 1,
                  run(MachFunc_sqrt, start, start, static_cast<mint>(n), fp, step, step))
            << n << " step " << step;
        std::vector<double> expected = before;
        for (size_t i = 0; i < good; ++i) expected[at(i)] = 2.0;
        ASSERT_EQ(expected, data) << n << " step " << step;
      }
    }
  }
}

TEST(ElementMode, StopsAtTheFirstFailureOfIntegers) {
  for (const size_t n : counts) {
    for (const auto& failing : failing_positions(n)) {
      for (const bool apart : {false, true}) {
        std::vector<mint> source(n, 3), result(n, -99);
        for (const size_t i : failing) source[i] = INT64_MIN;
        const std::vector<mint> before = source;
        mint* r = apart ? result.data() : source.data();
        const size_t good = failing.empty() ? n : failing.front();
        ASSERT_EQ(good == n ? 0 : static_cast<mint>(good) + 1,
                  run_integers(MachFunc_minus, r, source.data(), static_cast<mint>(n), integer));
        for (size_t i = 0; i < n; ++i) ASSERT_EQ(i < good ? -3 : apart ? -99 : before[i], r[i]) << i;
      }
    }
  }
}

/// A failure that is told always stops a run without any check in every shape.
TEST(PlainMode, AlwaysFailuresStop) {
  for (const size_t n : counts) {
    for (const auto& failing : failing_positions(n)) {
      for (const mint r_step : {1, 2}) {
        std::vector<mint> source(n, 8), result(2 * n, -99);
        for (const size_t i : failing) source[i] = 6;
        const size_t good = failing.empty() ? n : failing.front();
        ASSERT_EQ(good == n ? 0 : static_cast<mint>(good) + 1,
                  run_integers(MachFunc_log2, result.data(), source.data(), static_cast<mint>(n), 0, r_step));
        for (size_t i = 0; i < 2 * n; ++i) {
          const bool written = i % static_cast<size_t>(r_step) == 0 && i / static_cast<size_t>(r_step) < good;
          ASSERT_EQ(written ? 3 : -99, result[i]) << i;
        }
      }
    }
  }
  mint result[3] = {-99, -99, -99}, six = 6;
  EXPECT_EQ(1, run_integers(MachFunc_log2, result, &six, 3, 0, 1, 0));
  EXPECT_EQ(-99, result[0]);
}

// ---- Bulk mode.

TEST(BulkMode, WritesAllAndReportsTheRun) {
  for (const size_t n : counts) {
    for (const auto& failing : failing_positions(n)) {
      for (const mint x_step : {1, 2, -1}) {
        std::vector<double> source(2 * n, 4.0), result(n, guard);
        const auto at = [&](size_t i) { return x_step > 0 ? i * static_cast<size_t>(x_step) : n - 1 - i; };
        for (const size_t i : failing) source[at(i)] = -4.0;
        ASSERT_EQ(failing.empty() ? 0 : 1, run(MachFunc_sqrt, result.data(), source.data() + at(0),
                                               static_cast<mint>(n), fp, 1, x_step));
        for (size_t i = 0; i < n; ++i) {
          const bool failed = source[at(i)] < 0;
          ASSERT_TRUE(failed ? std::isnan(result[i]) : result[i] == 2.0) << i;
        }
      }
    }
  }
}

struct pinned {
  int32_t number;
  double x;
  mint bulk, element;
};

/// What the two modes make of the same argument: bulk mode asks the flags, element mode the value.
TEST(Modes, DifferWhereTheyAreToDiffer) {
  const pinned cases[] = {
      {MachFunc_exp, quiet_nan, 0, 4},      {MachFunc_exp, infinity, 0, 4},
      {MachFunc_exp, -infinity, 0, 0},      {MachFunc_sin, infinity, 4, 0},
      {MachFunc_sin, quiet_nan, 0, 0},      {MachFunc_exp, 710.0, 4, 4},
      {MachFunc_exp, -800.0, 0, 0},         {MachFunc_csc, 0.0, 4, 4},
      {MachFunc_sinc, 0.0, 0, 0},           {MachFunc_csch, 800.0, 0, 0},
      {MachFunc_csch, -720.0, 0, 0},        {MachFunc_sech, 710.5, 0, 0},
      {MachFunc_recip, infinity, 0, 0},     {MachFunc_log, 0.0, 4, 4},
      {MachFunc_log, infinity, 0, 4},       {MachFunc_square, 1e200, 4, 4},
      {MachFunc_square, 1e-200, 0, 0},      {MachFunc_loggamma, -1.5, 4, 4},
      {MachFunc_atan, infinity, 0, 0},      {MachFunc_tan, infinity, 4, 4},
      {MachFunc_logistic, -infinity, 0, 0}, {MachFunc_triangle, quiet_nan, 0, 0},
      {MachFunc_fracpart, infinity, 0, 0},  {MachFunc_cbrt, infinity, 0, 0},
  };
  for (const pinned& c : cases) {
    for (const size_t n : {4, 20, 600}) {
      std::vector<double> source = ones(n), result(n, guard);
      source[3] = c.x;
      std::feraiseexcept(FE_ALL_EXCEPT);  // of before the run: not to count
      EXPECT_EQ(c.bulk == 0 ? 0 : 1, run(c.number, result.data(), source.data(), static_cast<mint>(n), fp))
          << c.number << " of " << c.x;
      for (const double r : result) EXPECT_NE(guard, r);
      EXPECT_EQ(c.element, run(c.number, source.data(), source.data(), static_cast<mint>(n), fp))
          << c.number << " of " << c.x;
    }
  }
}

/// Each kind of kernel reads its own flag bit only; no bit means no check.
TEST(Modes, EachKindReadsItsOwnBit) {
  std::vector<double> source = {4.0, -4.0, 4.0};
  double result[3];
  for (const uint32_t flags : {0u, integer, ~fp})
    EXPECT_EQ(0, run(MachFunc_sqrt, result, source.data(), 3, flags));
  for (const uint32_t flags : {fp, ~0u}) EXPECT_EQ(1, run(MachFunc_sqrt, result, source.data(), 3, flags));
  std::vector<double> in_place = source;
  EXPECT_EQ(0, run(MachFunc_sqrt, in_place.data(), in_place.data(), 3, integer));
  EXPECT_TRUE(std::isnan(in_place[1]));

  const std::vector<double> large = {1.0, 1e19, 2.0};
  mint whole[3] = {-99, -99, -99};
  const auto round = MNumericArray_getUnaryVectorMachFunc(MachFunc_round, MNumericArrayTypeReal64);
  EXPECT_EQ(0, round(whole, large.data(), 3, UnitIncrements, fp));
  EXPECT_EQ(INT64_MAX, whole[1]);
  whole[1] = whole[2] = -99;
  EXPECT_EQ(2, round(whole, large.data(), 3, UnitIncrements, integer));
  EXPECT_EQ(-99, whole[1]);
  EXPECT_EQ(-99, whole[2]);

  const mint least[2] = {5, INT64_MIN};
  mint negated[2];
  EXPECT_EQ(0, run_integers(MachFunc_minus, negated, least, 2, fp));
  EXPECT_EQ(INT64_MIN, negated[1]);
}

// ---- Shapes.

TEST(Shapes, NothingHappensForNoElements) {
  double untouched = guard;
  for (const mint count : {mint{0}, mint{-1}, std::numeric_limits<mint>::min()}) {
    for (const uint32_t flags : {0u, fp}) {
      EXPECT_EQ(0, run(MachFunc_sqrt, &untouched, nullptr, count, flags));
      EXPECT_EQ(0, run(MachFunc_sqrt, &untouched, &untouched, count, flags, 2, 0));
    }
    EXPECT_EQ(0, machfunc_i_copy(nullptr, nullptr, count, UnitIncrements, 0));
  }
  EXPECT_EQ(guard, untouched);
}

TEST(Shapes, BroadcastReadsOneElement) {
  for (const size_t n : counts) {
    for (const double x : {9.0, -9.0}) {
      std::vector<double> result(n + 1, guard);
      EXPECT_EQ(x < 0 ? 1 : 0, run(MachFunc_sqrt, result.data(), &x, static_cast<mint>(n), fp, 1, 0));
      for (size_t i = 0; i < n; ++i) ASSERT_TRUE(x < 0 ? std::isnan(result[i]) : result[i] == 3.0);
      EXPECT_EQ(guard, result[n]);
    }
  }
}

/// A result step of 0 leaves the value of the last element.
TEST(Shapes, ResultStepOfZeroKeepsTheLast) {
  const double source[] = {1.0, 4.0, 9.0};
  double result[2] = {guard, guard};
  EXPECT_EQ(0, run(MachFunc_sqrt, result, source, 3, 0, 0, 1));
  EXPECT_EQ(3.0, result[0]);
  EXPECT_EQ(guard, result[1]);
}

// ---- Overlap: as if the source were read whole first.

TEST(Overlap, SameElementSize) {
  std::mt19937_64 random(7);
  for (int trial = 0; trial < 400; ++trial) {
    const auto n = static_cast<mint>(random() % 700 + 1);
    const mint r_step = static_cast<mint>(random() % 5) - 2, x_step = static_cast<mint>(random() % 5) - 2;
    const auto r_start = static_cast<mint>(1500 + random() % 16),
               x_start = static_cast<mint>(1500 + random() % 16);
    if (r_step == 0 || (r_start == x_start && random() % 2)) continue;
    std::vector<double> data(3100);
    for (size_t i = 0; i < data.size(); ++i) data[i] = static_cast<double>(i + 1);
    std::vector<double> expected = data;
    for (mint i = 0; i < n; ++i) {
      expected[static_cast<size_t>(r_start + i * r_step)] = -data[static_cast<size_t>(x_start + i * x_step)];
    }
    ASSERT_EQ(0, run(MachFunc_minus, data.data() + r_start, data.data() + x_start, n, trial % 2 ? fp : 0,
                     r_step, x_step));
    ASSERT_EQ(expected, data) << n << " from " << x_start << " by " << x_step << " to " << r_start << " by "
                              << r_step;
  }
}

/// Real32 elements turned into Integer64 ones over the same storage, at every distance.
TEST(Overlap, DifferentElementSize) {
  const auto floor = MNumericArray_getUnaryVectorMachFunc(MachFunc_floor, MNumericArrayTypeReal32);
  constexpr mint n = 600;
  for (const size_t offset : {0, 8, 16, 400, 2400, 4796}) {
    alignas(16) unsigned char storage[n * sizeof(mint) + 8];
    float source[n];
    for (mint i = 0; i < n; ++i) source[i] = static_cast<float>(i) + 0.5f;
    if (offset + sizeof source > sizeof storage) continue;
    std::memcpy(storage + offset, source, sizeof source);
    ASSERT_EQ(0, floor(storage, storage + offset, n, UnitIncrements, 0));
    for (mint i = 0; i < n; ++i) {
      mint y;
      std::memcpy(&y, storage + i * static_cast<mint>(sizeof y), sizeof y);
      ASSERT_EQ(i, y) << offset;
    }
  }
}

// ---- Threads.

/// A failure in a split run is the first element of its chunk, so it tells whether the run was split.
TEST(TeamRuns, SplitFromTheThresholdOn) {
  const team two(2, 1000);
  for (const mint count : {999, 1000, 1001, 2500}) {
    std::vector<double> source = ones(static_cast<size_t>(count)), result(source.size(), guard);
    source.back() = -1.0;
    const bool split = count >= 1000;
    const mint chunk_start = (count - 1) / 500 * 500;
    EXPECT_EQ(split ? chunk_start + 1 : 1, run(MachFunc_sqrt, result.data(), source.data(), count, fp))
        << count;
    EXPECT_EQ(count, run(MachFunc_sqrt, source.data(), source.data(), count, fp)) << "in place: never split";
  }
}

/// In place nothing is split, so that elements behind the failure are what they were. A split would write the next chunk
/// while the failing one runs, in most trials.
TEST(TeamRuns, InPlaceStaysOnOneThread) {
  const team two(2, 1000);
  std::vector<double> source(4000, 4.0);
  source[1499] = -4.0;
  for (int trial = 0; trial < 100; ++trial) {
    std::vector<double> data = source;
    ASSERT_EQ(1500, run(MachFunc_sqrt, data.data(), data.data(), 4000, fp));
    ASSERT_EQ(2.0, data[1498]);
    ASSERT_TRUE(std::equal(source.begin() + 1499, source.end(), data.begin() + 1499)) << "trial " << trial;
  }
}

TEST(TeamRuns, HostSettingsKeepTheRunOnOneThread) {
  std::vector<double> source = ones(2000), result(2000);
  source[1999] = -1.0;
  {
    const team two(2, 1000);
    ListableCompileEvaluatingThreaded = 1;
    EXPECT_EQ(1, run(MachFunc_sqrt, result.data(), source.data(), 2000, fp));
    ListableCompileEvaluatingThreaded = 0;
    EXPECT_EQ(1501, run(MachFunc_sqrt, result.data(), source.data(), 2000, fp));
  }
  const team one(1, 1000);
  EXPECT_EQ(1, run(MachFunc_sqrt, result.data(), source.data(), 2000, fp));
}

/// The smallest failing position of integers, whichever chunk ends first; the flags of the caller's thread do not count.
TEST(TeamRuns, SmallestPositionWins) {
  const team three(3, 1000);
  for (int trial = 0; trial < 50; ++trial) {
    for (const auto& failing : failing_positions(4000)) {
      std::vector<mint> source(4000, 8), result(4000, -99);
      for (const size_t i : failing) source[i] = 6;
      const size_t good = failing.empty() ? 4000 : failing.front();
      ASSERT_EQ(good == 4000 ? 0 : static_cast<mint>(good) + 1,
                run_integers(MachFunc_log2, result.data(), source.data(), 4000, 0));
      for (size_t i = 0; i < good; ++i) ASSERT_EQ(3, result[i]);
      if (good < 4000) {
        ASSERT_EQ(-99, result[good]);
      }
    }
  }
}

TEST(TeamRuns, FirstFailingChunkOfBulkMode) {
  const team two(2, 1000);
  for (const size_t failing : {0, 499, 500, 1700, 3999}) {
    std::vector<double> source = ones(4000), result(4000, guard);
    source[failing] = -1.0;
    std::feraiseexcept(FE_INVALID);
    EXPECT_EQ(static_cast<mint>(failing / 500 * 500) + 1,
              run(MachFunc_sqrt, result.data(), source.data(), 4000, fp));
  }
}

/// Broadcast and strided runs hand each chunk the right place.
TEST(TeamRuns, ChunksOfEveryShape) {
  const team two(2, 64);
  for (const mint r_step : {1, 2, -1}) {
    for (const mint x_step : {0, 1, 3, -2}) {
      constexpr mint n = 333;
      std::vector<double> source(2000), result(2000, guard), expected = result;
      for (size_t i = 0; i < source.size(); ++i) source[i] = static_cast<double>(i);
      for (mint i = 0; i < n; ++i) {
        expected[static_cast<size_t>(1000 + i * r_step)] = -source[static_cast<size_t>(1000 + i * x_step)];
      }
      ASSERT_EQ(0, run(MachFunc_minus, result.data() + 1000, source.data() + 1000, n, fp, r_step, x_step));
      ASSERT_EQ(expected, result);
    }
  }
}

// ---- The copying kernel.

TEST(IntegerCopy, CopiesInEveryShape) {
  for (const mint n : {1, 5, 600}) {
    std::vector<mint> data(4000);
    for (size_t i = 0; i < data.size(); ++i) data[i] = static_cast<mint>(i);
    for (const mint shift : {0, 1, -1, 700}) {
      for (const mint r_step : {1, 2, -1}) {
        for (const mint x_step : {0, 1, -1}) {
          std::vector<mint> got = data, expected = data;
          for (mint i = 0; i < n; ++i) {
            expected[static_cast<size_t>(1400 + shift + i * r_step)] =
                data[static_cast<size_t>(1400 + i * x_step)];
          }
          const mint increments[2] = {r_step, x_step};
          ASSERT_EQ(0, machfunc_i_copy(got.data() + 1400 + shift, got.data() + 1400, n, increments, ~0u));
          ASSERT_EQ(expected, got) << n << " " << shift << " " << r_step << " " << x_step;
        }
      }
    }
  }
}

// ---- The build.

/// A guarded division, written so that a compiler free to speculate would divide by all elements and choose after.
__attribute__((noinline)) void guarded_reciprocals(double* r, const double* x, mint n) {
  for (mint i = 0; i < n; ++i) r[i] = x[i] != 0 ? 1 / x[i] : 0;
}
TEST(Build, GuardedOperationsRaiseNothing) {
  std::vector<double> x(1000, 0.0), r(1000, guard);
  for (size_t i = 0; i < x.size(); i += 3) x[i] = 4.0;
  vlm::fp::clear_flags();
  guarded_reciprocals(r.data(), x.data(), 1000);
  EXPECT_EQ(0, vlm::fp::test_flags());
  EXPECT_EQ(0.25, r[0]);
  EXPECT_EQ(0.0, r[1]);
}

}  // namespace
