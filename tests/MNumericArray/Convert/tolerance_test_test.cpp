// The tolerance test by its steps. Faults it is meant to catch: a boundary decided by one unit in the last place; a factor that is
// not the tolerance's; NaN, zeros, infinities and signs in a wrong order; a memo that answers for another tolerance or thread.
#include <gtest/gtest.h>

#include <random>
#include <thread>

#include "exact_model.h"
#include "velorim/velorim.h"

namespace {

using conversion_model::compare;
using conversion_model::format_of;
using oracle::number;

constexpr double inf = INFINITY;

TEST(ToleranceTest, PairsInEveryOrder) {
  const double values[] = {0.0,    -0.0,   1.0,   1.5,   2.0,     0.5, 4e-324,
                           1e-310, 2e-310, 1e-45, 1e300, 1.7e308, inf, NAN};
  int equal = 0;
  for (const double tolerance :
       {-1.0, -0.0, 0.0, 0.3, 1.0, 7.0, 23.5, 24.0, 51.999, 52.0, 52.5, 53.0, 54.0, inf, double{NAN}}) {
    for (const double a : values) {
      for (const double b : values) {
        for (const double sign : {1.0, -1.0}) {
          SCOPED_TRACE(testing::Message() << tolerance << ": " << a << " " << sign * b);
          const int expected = compare(format_of(10), tolerance, number(a), number(sign * b));
          ASSERT_EQ(compare_double(tolerance, a, sign * b), expected);
          ASSERT_EQ(near1_double(tolerance, a, sign * b), expected == 0);
          equal += expected == 0;
          const auto t = static_cast<float>(tolerance), x = static_cast<float>(a),
                     y = static_cast<float>(sign * b);
          const int narrow = compare(format_of(9), static_cast<double>(t), number(static_cast<double>(x)),
                                     number(static_cast<double>(y)));
          ASSERT_EQ(compare_float(t, x, y), narrow);
          ASSERT_EQ(near1_float(t, x, y), narrow == 0);
        }
      }
    }
  }
  EXPECT_GT(equal, 200);
}

// Numbers some units apart, where the factor decides: every tolerance finds its border.
TEST(ToleranceTest, BordersInUnits) {
  std::mt19937_64 engine(20261123);
  int near = 0, far = 0;
  for (int i = 0; i < 60000; ++i) {
    const double tolerance = i % 3 == 0 ? static_cast<double>(engine() % 53)
                                        : std::ldexp(static_cast<double>(engine() % (53 << 12)), -12);
    const int exponent = static_cast<int>(engine() % 2000) - 1000;
    const double x =
        std::ldexp(1.0 + std::ldexp(static_cast<double>(engine() % (uint64_t{1} << 52)), -52), exponent);
    // Apart by about the border of the tolerance.
    const double units = std::exp2(tolerance) * (0.45 + 0.1 * static_cast<double>(engine() % 16));
    const double y = x + std::ldexp(std::nearbyint(units), exponent - 52);
    SCOPED_TRACE(testing::Message() << tolerance << " " << x << " " << y);
    const int expected = compare(format_of(10), tolerance, number(x), number(y));
    ASSERT_EQ(compare_double(tolerance, x, y), expected);
    ASSERT_EQ(compare_double(tolerance, -y, -x), expected);
    ASSERT_EQ(compare_double(tolerance, y, x), -expected);
    ++(expected == 0 ? near : far);

    const auto t = static_cast<float>(i % 2 == 0 ? std::floor(tolerance * 24 / 53) : tolerance * 24 / 53);
    const float u = static_cast<float>(std::ldexp(x, -exponent + exponent / 10));
    const float apart = std::exp2(t) * (0.45f + 0.1f * static_cast<float>(engine() % 16));
    const float v = u + static_cast<float>(std::ldexp(std::nearbyint(apart), exponent / 10 - 23));
    ASSERT_EQ(compare_float(t, u, v), compare(format_of(9), static_cast<double>(t),
                                              number(static_cast<double>(u)), number(static_cast<double>(v))))
        << t << " " << u << " " << v;
  }
  EXPECT_GT(near, 10000);
  EXPECT_GT(far, 10000);
}

// The answer never depends on what was asked before, here or on another thread.
TEST(ToleranceTest, AlternatingTolerancesOnManyThreads) {
  const auto ask = [](int seed, int64_t* wrong) {
    for (int i = 0; i < 20000; ++i) {
      const double tolerance = 3.25 + (i * 7 + seed) % 47;
      const double apart = std::exp2(tolerance - 53);
      *wrong += near1_double(tolerance, 1.0 + apart * 0.9, 1.0) != 1;
      *wrong += near1_double(tolerance, 1.0 + apart * 1.2 + 4e-16, 1.0) != 0;
    }
  };
  int64_t wrong[4] = {};
  std::thread threads[4];
  for (int i = 0; i < 4; ++i) threads[i] = std::thread(ask, i, &wrong[i]);
  for (std::thread& thread : threads) thread.join();
  for (const int64_t w : wrong) EXPECT_EQ(w, 0);
}

TEST(ToleranceTest, NegligibleImaginaryParts) {
  for (const double tolerance : {-1.0, 0.0, 1.0, 20.0, 40.5, 52.0, 53.0, 54.0}) {
    for (const double re : {0.0, -0.0, 1.0, -3.0, 1e-310, 1e300, inf, -inf, double{NAN}}) {
      for (const double im : {0.0, -0.0, 1e-20, -1e-16, 1e-3, -2.0, 1e299, inf, double{NAN}}) {
        EXPECT_EQ(near1_reim_mcomplex(tolerance, re, im),
                  conversion_model::negligible(format_of(10), tolerance, number(re), number(im)))
            << tolerance << " " << re << " " << im;
      }
    }
  }
  EXPECT_EQ(near1_reim_mcomplex(1.0, 1.0, 1e-20), 1);
  EXPECT_EQ(near1_reim_mcomplex(1.0, 1.0, 1e-3), 0);
}

}  // namespace
