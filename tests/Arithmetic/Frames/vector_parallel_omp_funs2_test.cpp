// The frame of functions of two arguments: where a failure is reported, by shape, mode and threads.
//
// Faults it is meant to catch: bulk mode that tells a place it cannot know, or misses a flag raised by one thread of the team; element
// mode where bulk is due, or the other way round; positions that count from a chunk or a gathered block instead of from the run; results
// behind a failure in place; a step of 0 or a negative one that reads beside its operand.
#include <gtest/gtest.h>

#include <cmath>
#include <numeric>
#include <vector>

#include "velorim/velorim.h"

namespace {

constexpr uint32_t fp = MACHFUNC_CHECK_FP, integer = MACHFUNC_CHECK_INTEGER;

MachFuncVector2 kernel(int32_t number, int32_t x, int32_t y) {
  return MNumericArray_getBinaryVectorMachFunc(number, x, y);
}

struct with_threads {
  explicit with_threads(mint n) : before(setParallelThreadNumber(n)) {}
  ~with_threads() { restoreParallelThreadNumber(before); }
  const mint before;
};

/// x / y with a zero divisor at some places.
struct division {
  std::vector<double> x, y, r;
  division(size_t n, std::initializer_list<size_t> zeros) : x(n), y(n, 2), r(n, -1) {
    std::iota(x.begin(), x.end(), 1.0);
    for (const size_t i : zeros) y[i] = 0;
  }
  mint run(double* result, const double* a, const double* b, mint count, const mint* increments,
           uint32_t flags) const {
    return kernel(MachFunc_div, 10, 10)(result, a, b, count, increments, flags);
  }
};

TEST(BinaryFrame, BulkModeReportsTheFirstElementAndWritesAll) {
  division d(2000, {700});
  EXPECT_EQ(d.run(d.r.data(), d.x.data(), d.y.data(), 2000, UnitIncrements, fp), 1);
  EXPECT_TRUE(std::isinf(d.r[700]));
  EXPECT_EQ(d.r[1999], 1000);
  EXPECT_EQ(d.run(d.r.data(), d.x.data(), d.y.data(), 2000, UnitIncrements, integer), 0)
      << "the other bit asks for nothing";
  EXPECT_EQ(d.run(d.r.data(), d.x.data(), d.y.data(), 0, UnitIncrements, fp), 0);
  EXPECT_EQ(d.run(nullptr, nullptr, nullptr, -5, UnitIncrements, fp), 0);
  // An infinity that passes through raises nothing.
  division quiet(10, {});
  quiet.x[3] = INFINITY;
  quiet.x[4] = NAN;
  EXPECT_EQ(quiet.run(quiet.r.data(), quiet.x.data(), quiet.y.data(), 10, UnitIncrements, fp), 0);
}

TEST(BinaryFrame, InPlaceOfEitherOperandThePlaceIsExact) {
  for (const bool over_x : {true, false}) {
    division d(2000, {700, 1500});
    const division before = d;
    double* const target = over_x ? d.x.data() : d.y.data();
    EXPECT_EQ(d.run(target, d.x.data(), d.y.data(), 2000, UnitIncrements, fp), 701);
    EXPECT_EQ(target[699], 350);
    EXPECT_EQ(target[700], over_x ? before.x[700] : before.y[700]);
    EXPECT_EQ(target[1999], over_x ? before.x[1999] : before.y[1999]);
  }
}

TEST(BinaryFrame, OnTheTeamBulkModeReportsTheChunkAndElementModeThePlace) {
  const with_threads four(4);
  const auto chunk = static_cast<size_t>(getVectorParallelLengthThreshold(2) / 2);
  const size_t n = 5 * chunk + 100;
  division d(n, {3 * chunk + 7, 4 * chunk});
  EXPECT_EQ(d.run(d.r.data(), d.x.data(), d.y.data(), static_cast<mint>(n), UnitIncrements, fp),
            static_cast<mint>(3 * chunk) + 1);
  // In place on the calling thread, to the element.
  EXPECT_EQ(d.run(d.x.data(), d.x.data(), d.y.data(), static_cast<mint>(n), UnitIncrements, fp),
            static_cast<mint>(3 * chunk) + 8);
  // Integers and mixed rows know the place on any thread.
  std::vector<mint> i(n, 1), j(n, 1), k(n);
  j[2 * chunk + 5] = std::numeric_limits<mint>::max();
  EXPECT_EQ(kernel(MachFunc_plus, 7, 7)(k.data(), i.data(), j.data(), static_cast<mint>(n), UnitIncrements,
                                        integer),
            static_cast<mint>(2 * chunk) + 6);
  EXPECT_EQ(
      kernel(MachFunc_plus, 7, 7)(k.data(), i.data(), j.data(), static_cast<mint>(n), UnitIncrements, fp), 0);
  EXPECT_EQ(
      kernel(MachFunc_div, 7, 10)(d.r.data(), i.data(), d.y.data(), static_cast<mint>(n), UnitIncrements, fp),
      static_cast<mint>(3 * chunk) + 8);
  EXPECT_EQ(kernel(MachFunc_div, 7, 10)(d.r.data(), i.data(), d.y.data(), static_cast<mint>(n),
                                        UnitIncrements, integer),
            0);
}

TEST(BinaryFrame, AFailureWhateverTheFlagsKeepsItsPlaceInEveryMode) {
  std::vector<double> x(1500, 5), y(1500, 3), r(1500, -1);
  y[1200] = 0;
  for (const uint32_t flags : {0u, fp, integer, fp | integer}) {
    std::fill(r.begin(), r.end(), -1);
    EXPECT_EQ(kernel(MachFunc_mod, 10, 10)(r.data(), x.data(), y.data(), 1500, UnitIncrements, flags), 1201)
        << flags;
    EXPECT_EQ(r[1199], 2);
    EXPECT_EQ(r[1200], -1);
    EXPECT_EQ(r[1499], -1);
  }
}

TEST(BinaryFrame, StepsOfEverySignAndKindMeetTheRightElements) {
  const size_t n = 1300;
  std::vector<double> x(4 * n), y(4 * n), r(4 * n);
  for (size_t i = 0; i < 4 * n; ++i) {
    x[i] = static_cast<double>(i) + 0.5;
    y[i] = static_cast<double>(i * i % 977) + 0.25;
  }
  for (const mint rs : {1, 2, -1}) {
    for (const mint xs : {1, 0, 3, -2}) {
      for (const mint ys : {1, 0, 2, -1}) {
        std::fill(r.begin(), r.end(), -1);
        const auto start = [](mint step) { return step < 0 ? -step * static_cast<mint>(n - 1) : mint{0}; };
        const mint increments[] = {rs, xs, ys};
        ASSERT_EQ(kernel(MachFunc_subtract, 10, 10)(r.data() + start(rs), x.data() + start(xs),
                                                    y.data() + start(ys), n, increments, fp),
                  0);
        for (mint i = 0; i < static_cast<mint>(n); ++i) {
          ASSERT_EQ(r[static_cast<size_t>(start(rs) + rs * i)],
                    x[static_cast<size_t>(start(xs) + xs * i)] - y[static_cast<size_t>(start(ys) + ys * i)])
              << i << " with steps " << rs << ", " << xs << ", " << ys;
        }
      }
    }
  }
  // A failure in a gathered block, in place with a step.
  std::vector<double> zeros(2 * n, 1);
  zeros[2 * 900] = 0;
  const mint two[] = {2, 2, 2};
  EXPECT_EQ(kernel(MachFunc_div, 10, 10)(x.data(), x.data(), zeros.data(), n, two, fp), 901);
  EXPECT_EQ(x[1800], 1800.5);
}

}  // namespace
