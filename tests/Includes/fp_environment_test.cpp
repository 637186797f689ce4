// Catches: flags that are cleared, tested or restored in one unit of the processor and not in the other; a clear that takes
// flags which do not count; a section that lets its flags out, swallows earlier ones, runs in the caller's rounding mode
// or leaves another behind; arithmetic that the compiler moves across a clear or a test.
#include "Includes/fp_environment.h"

#include <gtest/gtest.h>

#include <cfenv>
#include <limits>
#include <thread>
#include <vector>

#include "velorim/floating_point.h"

namespace {

using namespace vlm;

constexpr int counted[] = {FE_INVALID, FE_DIVBYZERO, FE_OVERFLOW};
constexpr int uncounted[] = {FE_UNDERFLOW, FE_INEXACT};

/// Raises a flag by arithmetic on T: FE_INVALID 0/0, FE_DIVBYZERO 1/0, FE_OVERFLOW max*max.
template <class T> void raise_by_arithmetic(int flag) {
  volatile T zero = 0, one = 1, large = std::numeric_limits<T>::max(), sink;
  if (flag == FE_INVALID) sink = zero / zero;
  if (flag == FE_DIVBYZERO) sink = one / zero;
  if (flag == FE_OVERFLOW) sink = large * large;
  (void)sink;
}

class FpEnvironment : public testing::Test {
 protected:
  void SetUp() override { std::feclearexcept(FE_ALL_EXCEPT); }
  void TearDown() override { std::feclearexcept(FE_ALL_EXCEPT); }
};

TEST_F(FpEnvironment, ThreeFlagsCountInEveryUnit) {
  for (int flag : counted) {
    for (auto raise :
         {raise_by_arithmetic<float>, raise_by_arithmetic<double>, raise_by_arithmetic<long double>}) {
      EXPECT_EQ(fp::test_flags(), 0);
      EXPECT_EQ(test_fp_environment(), 0);
      raise(flag);
      EXPECT_EQ(fp::test_flags(), flag);
      EXPECT_EQ(test_fp_environment(), 1);
      EXPECT_EQ(clear_fp_environment(), 0);
      EXPECT_EQ(std::fetestexcept(flag), 0);
      raise(flag);
      EXPECT_EQ(fp::clear_flags(), 0);
    }
  }
}

TEST_F(FpEnvironment, OtherFlagsNeitherCountNorGo) {
  for (int flag : uncounted) {
    fp::raise(flag);
    EXPECT_EQ(fp::test_flags(), 0);
    raise_by_arithmetic<double>(FE_INVALID);
    raise_by_arithmetic<long double>(FE_DIVBYZERO);
    fp::clear_flags();
    EXPECT_NE(std::fetestexcept(flag), 0);
  }
}

TEST_F(FpEnvironment, AQuietSectionPutsBackWhatItFound) {
  for (int before : {0, FE_INVALID, FE_DIVBYZERO | FE_INEXACT}) {
    for (int inside : counted) {
      std::feclearexcept(FE_ALL_EXCEPT);
      fp::raise(before);
      const int found = fp::test_flags();
      {
        fp::quiet_section quiet;
        raise_by_arithmetic<double>(inside);
        EXPECT_NE(fp::test_flags() & inside, 0);
      }
      EXPECT_EQ(fp::test_flags(), found);
      {
        fp::quiet_section quiet;
        fp::clear_flags();
        quiet.restore();
        EXPECT_EQ(fp::test_flags(), found);
        raise_by_arithmetic<double>(
            FE_OVERFLOW);  // after the early end: counts, and the end of the scope leaves it
      }
      EXPECT_NE(fp::test_flags() & FE_OVERFLOW, 0);
    }
  }
}

TEST_F(FpEnvironment, SectionsRunToNearestAndGiveTheModeBack) {
  volatile double minus_one = -1,
                  three = 3;  // -1/3 rounded to nearest lies above, rounded down below the quotient
  const double nearest = minus_one / three;
  std::fesetround(FE_DOWNWARD);
  volatile double quiet_value, default_value, after;
  {
    fp::quiet_section quiet;
    quiet_value = minus_one / three;
  }
  EXPECT_EQ(std::fegetround(), FE_DOWNWARD);
  {
    fp::default_section section;
    default_value = minus_one / three;
  }
  EXPECT_EQ(std::fegetround(), FE_DOWNWARD);
  after = minus_one / three;
  std::fesetround(FE_TONEAREST);
  EXPECT_EQ(quiet_value, nearest);
  EXPECT_EQ(default_value, nearest);
  EXPECT_LT(after, nearest);
}

TEST_F(FpEnvironment, ADefaultSectionTellsWhatItRaisedAlone) {
  for (int before : counted) {
    for (int inside : counted) {
      std::feclearexcept(FE_ALL_EXCEPT);
      fp::raise(before);
      const int found = std::fetestexcept(FE_ALL_EXCEPT);
      {
        fp::default_section section;
        EXPECT_EQ(section.raised() & fp::flag_set, 0);
        raise_by_arithmetic<double>(inside);
        EXPECT_EQ(section.raised() & fp::flag_set, inside);
      }
      EXPECT_EQ(std::fetestexcept(FE_ALL_EXCEPT), found);
    }
  }
}

// What the head of fp_environment.h promises: runs over memory are judged whole, single values after pin.
[[gnu::noinline]] int judged_run(double* target, const double* x, const double* y, size_t n) {
  fp::clear_flags();
  for (size_t i = 0; i < n; ++i) target[i] = x[i] / y[i];
  return fp::test_flags();
}
[[gnu::noinline]] int judged_value(double x, double y, double& quotient) {
  fp::clear_flags();
  fp::pin(x);
  fp::pin(y);
  double q = x / y;
  fp::pin(q);
  const int raised = fp::test_flags();
  quotient = q;
  return raised;
}

TEST_F(FpEnvironment, FencesHoldArithmeticInItsPlace) {
  for (size_t n : {1u, 7u, 64u, 513u}) {
    std::vector<double> x(n, 1.0), y(n, 2.0), r(n);
    EXPECT_EQ(judged_run(r.data(), x.data(), y.data(), n), 0);
    for (size_t at : {size_t{0}, n / 2, n - 1}) {
      y[at] = 0;
      EXPECT_EQ(judged_run(r.data(), x.data(), y.data(), n), FE_DIVBYZERO);
      y[at] = 2;
    }
    EXPECT_EQ(judged_run(r.data(), x.data(), y.data(), n), 0);
  }
  double q = 0;
  for (int round = 0; round < 3; ++round) {
    EXPECT_EQ(judged_value(1, 0, q), FE_DIVBYZERO);
    EXPECT_EQ(judged_value(0, 0, q), FE_INVALID);
    EXPECT_EQ(judged_value(1, 2, q), 0);
    EXPECT_EQ(q, 0.5);
  }
}

TEST_F(FpEnvironment, FlagsBelongToTheThread) {
  raise_by_arithmetic<double>(FE_INVALID);
  std::thread([] {
    clear_fp_environment();
    raise_by_arithmetic<double>(FE_DIVBYZERO);
    EXPECT_EQ(fp::test_flags(), FE_DIVBYZERO);
  }).join();
  EXPECT_EQ(fp::test_flags(), FE_INVALID);
}

}  // namespace
