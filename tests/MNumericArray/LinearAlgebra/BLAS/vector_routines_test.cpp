// Faults it is meant to catch: increments from the wrong end; sums in another order than the reference's, seen in their bits; ties
// of the largest magnitude; scales that overflow; illegal arguments reported with the wrong number or tag, or followed by a write.
#include <gtest/gtest.h>

#include <cfenv>
#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "velorim/blas.h"
#include "velorim/parallel.h"

namespace {

const mint one = 1, two = 2, minus = -1, zero = 0;

std::vector<double> numbers(size_t count) {
  std::mt19937_64 engine(4);
  std::uniform_real_distribution<double> distribution(-1, 1);
  std::vector<double> x(count);
  for (double& value : x) value = distribution(engine) * std::exp(20 * distribution(engine));
  return x;
}

TEST(VectorRoutines, SumsInTheOrderOfTheReference) {
  for (mint n = 0; n < 200; ++n) {
    const auto x = numbers(200), y = numbers(400);
    double dot = 0, strided = 0, magnitudes = 0, scale = 0, squares = 1;
    const mint head = n % 5;
    for (mint i = 0; i < head; ++i) dot += x[i] * y[i];
    for (mint i = head; i < n; i += 5)
      dot = dot + x[i] * y[i] + x[i + 1] * y[i + 1] + x[i + 2] * y[i + 2] + x[i + 3] * y[i + 3] +
            x[i + 4] * y[i + 4];
    for (mint i = 0; i < n; ++i) strided += x[n - 1 - i] * y[2 * i];
    const mint six = n % 6;
    for (mint i = 0; i < six; ++i) magnitudes += std::abs(x[i]);
    for (mint i = six; i < n; i += 6)
      magnitudes = magnitudes + std::abs(x[i]) + std::abs(x[i + 1]) + std::abs(x[i + 2]) +
                   std::abs(x[i + 3]) + std::abs(x[i + 4]) + std::abs(x[i + 5]);
    for (mint i = 0; i < n; ++i) {
      const double a = std::abs(x[i]);
      if (scale < a) {
        squares = 1 + squares * ((scale / a) * (scale / a));
        scale = a;
      } else {
        squares += (a / scale) * (a / scale);
      }
    }
    EXPECT_EQ(vlb_ddot(&n, x.data(), &one, y.data(), &one), dot) << n;
    EXPECT_EQ(vlb_ddot(&n, x.data(), &minus, y.data(), &two), strided) << n;
    EXPECT_EQ(vlb_dasum(&n, x.data(), &one), magnitudes) << n;
    EXPECT_EQ(vlb_dnrm2(&n, x.data(), &one), n == 0   ? 0
                                             : n == 1 ? std::abs(x[0])
                                                      : scale * std::sqrt(squares))
        << n;
  }
}

TEST(VectorRoutines, NormsStayInRangeAndPassZerosBy) {
  std::vector<double> x(1000, 1e300);
  const mint n = 1000;
  EXPECT_NEAR(vlb_dnrm2(&n, x.data(), &one) / (1e300 * std::sqrt(1000.0)), 1, 1e-12);
  for (size_t i = 0; i < x.size(); i += 3) x[i] = 0;
  EXPECT_NEAR(vlb_dnrm2(&n, x.data(), &one) / (1e300 * std::sqrt(666.0)), 1, 1e-12);
  EXPECT_EQ(vlb_dnrm2(&n, x.data(), &zero), 0);
  EXPECT_EQ(vlb_dnrm2(&n, x.data(), &minus), 0);
  x[500] = std::numeric_limits<double>::quiet_NaN();
  EXPECT_TRUE(std::isnan(vlb_dnrm2(&n, x.data(), &one)));
  const mcomplex z[] = {{3, 0}, {0, 4}};
  EXPECT_EQ(vlb_dznrm2(&two, z, &one), 5);
}

TEST(VectorRoutines, TheFirstOfTheLargest) {
  const double x[] = {1, -3, 3}, with_nan[] = {1, NAN, 2};
  const float f[] = {-1, 0.5f, 1};
  const mint n = 3;
  EXPECT_EQ(vlb_idamax(&n, x, &one), 2);
  EXPECT_EQ(vlb_isamax(&n, f, &one), 1);
  EXPECT_EQ(vlb_idamax(&n, with_nan, &one), 3);
  EXPECT_EQ(vlb_idamax(&zero, x, &one), 0);
  EXPECT_EQ(vlb_idamax(&n, x, &minus), 0);
}

/// The routines as loops that take one element after the other. The sums are volatile, so that they stay in their rounding mode.
template <class T> T in_turn_sum(const std::vector<T>& x) {
  volatile T sum = 0;
  for (const T v : x) sum = sum + std::abs(v);
  return sum;
}
template <class T> T in_turn_norm(const std::vector<T>& x) {
  volatile T scale = 0, sum = 1;
  for (const T v : x) {
    volatile const T magnitude =
        std::abs(v);  // or the compiler divides by v of either sign, which a square does not show
    const T a = magnitude, before = scale;
    if (a == 0) continue;
    if (before < a) {
      sum = 1 + sum * ((before / a) * (before / a));
      scale = a;
    } else {
      sum = sum + (a / before) * (a / before);
    }
  }
  volatile const T norm = scale * std::sqrt(sum);
  return norm;
}
template <class T> mint in_turn_largest(const std::vector<T>& x) {
  size_t first = 0;
  for (size_t i = 1; i < x.size(); ++i) {
    if (std::abs(x[i]) > std::abs(x[first])) first = i;
  }
  return static_cast<mint>(first) + 1;
}

struct routines {
  static double sum(mint n, const double* x) { return vlb_dasum(&n, x, &one); }
  static double norm(mint n, const double* x) { return vlb_dnrm2(&n, x, &one); }
  static mint largest(mint n, const double* x) { return vlb_idamax(&n, x, &one); }
  static float sum(mint n, const float* x) { return vlb_sasum(&n, x, &one); }
  static float norm(mint n, const float* x) { return vlb_snrm2(&n, x, &one); }
  static mint largest(mint n, const float* x) { return vlb_isamax(&n, x, &one); }
};

template <class T> bool same(T x, T y) { return x == y || (std::isnan(x) && std::isnan(y)); }

/// Numbers of a kind: with many middles between neighbouring sums, a growing scale, sums at the ends of the range, ...
template <class T> std::vector<T> numbers_of_kind(int kind, size_t n) {
  std::mt19937_64 engine(static_cast<uint64_t>(kind));
  std::uniform_real_distribution<T> uniform(-1, 1);
  std::vector<T> x(n);
  for (size_t i = 0; i < n; ++i) {
    const T u = uniform(engine);
    const T powers[] = {
        u,
        static_cast<T>(i) / 1000,
        static_cast<T>(static_cast<int>(engine() % 1000)),
        std::ldexp(static_cast<T>(static_cast<int>(engine() % 8)), -static_cast<int>(engine() % 60)),
        u * std::exp(40 * u),
        u * std::numeric_limits<T>::min() * 4,
        u * std::numeric_limits<T>::max() / 2,
        1 / static_cast<T>(i + 1),
        engine() % 7 == 0 ? u : T(0),
        i + 1 == n ? std::numeric_limits<T>::infinity() : u,
        i == n / 2 ? std::numeric_limits<T>::quiet_NaN() : u};
    x[i] = powers[kind];
  }
  return x;
}

template <class T> class LongVectors : public testing::Test {};
using real_types = testing::Types<double, float>;
TYPED_TEST_SUITE(LongVectors, real_types);

TYPED_TEST(LongVectors, GiveTheBitsOfOneElementAfterTheOtherOnAnyThreads) {
  using T = TypeParam;
  const int mode_before = std::fegetround();
  for (int kind = 0; kind <= 10; ++kind) {
    for (const size_t n : {63, 1024, 1089, 100001}) {
      const std::vector<T> x = numbers_of_kind<T>(kind, n);
      for (const int mode : {FE_TONEAREST, FE_UPWARD}) {
        std::fesetround(mode);
        const T sum = in_turn_sum(x), norm = in_turn_norm(x);
        for (const mint threads : {1, 2, 5}) {
          const mint before = setParallelThreadNumber(threads);
          const mint count = static_cast<mint>(n);
          EXPECT_TRUE(same(routines::sum(count, x.data()), sum))
              << kind << ' ' << n << ' ' << mode << ' ' << threads;
          EXPECT_TRUE(same(routines::norm(count, x.data()), norm))
              << kind << ' ' << n << ' ' << mode << ' ' << threads;
          EXPECT_EQ(routines::largest(count, x.data()), in_turn_largest(x))
              << kind << ' ' << n << ' ' << threads;
          restoreParallelThreadNumber(before);
        }
        std::fesetround(mode_before);
      }
    }
  }
}

TEST(LongVectors, RaiseNoFlagOfTheirOwn) {
  std::vector<double> x(5000, 1.0);
  x[4000] = std::numeric_limits<double>::infinity();
  const mint n = 5000;
  std::feclearexcept(FE_ALL_EXCEPT);
  EXPECT_EQ(vlb_dasum(&n, x.data(), &one), x[4000]);
  EXPECT_EQ(vlb_dnrm2(&n, x.data(), &one), x[4000]);
  EXPECT_FALSE(std::fetestexcept(FE_INVALID | FE_OVERFLOW | FE_DIVBYZERO));
  x[4000] = std::numeric_limits<double>::quiet_NaN();
  EXPECT_TRUE(std::isnan(vlb_dasum(&n, x.data(), &one)));
  EXPECT_FALSE(std::fetestexcept(FE_INVALID | FE_OVERFLOW | FE_DIVBYZERO));
}

TEST(MatrixVector, SkippedColumnsLeaveNoMark) {
  const double nan = NAN, alpha = 1, beta = 1;
  double a[] = {1, 2, nan, nan, 3, 4};
  const double x[] = {1, 0, 1};
  double y[] = {10, 20};
  const mint m = 2, n = 3;
  vlb_dgemv("n", &m, &n, &alpha, a, &m, x, &one, &beta, y, &one);
  EXPECT_EQ(y[0], 14);
  EXPECT_EQ(y[1], 26);
  const double column[] = {nan, 1}, row[] = {0, 0, 0};
  vlb_dger(&m, &n, &alpha, column, &one, row, &one, a, &m);
  EXPECT_EQ(a[0], 1);
  EXPECT_EQ(a[5], 4);
}

TEST(IllegalArguments, AreReportedByNumberAndTouchNothing) {
  const double alpha = 2, beta = 3, a[4] = {1, 2, 3, 4};
  double y[] = {7, 8};
  const auto gemv = [&](const char* trans, mint m, mint n, mint lda, mint incx, mint incy) {
    vlb_dgemv(trans, &m, &n, &alpha, a, &lda, a, &incx, &beta, y, &incy);
  };
  const auto gemm = [&](const char* ta, const char* tb, mint m, mint n, mint k, mint lda, mint ldb,
                        mint ldc) {
    vlb_dgemm(ta, tb, &m, &n, &k, &alpha, a, &lda, a, &ldb, &beta, y, &ldc);
  };
  const auto ger = [&](mint m, mint n, mint incx, mint incy, mint lda) {
    vlb_dger(&m, &n, &alpha, a, &incx, a, &incy, y, &lda);
  };
  testing::internal::CaptureStdout();
  gemv("x", -1, 1, 1, 1, 1);
  gemv("N", -1, -1, 1, 1, 1);
  gemv("N", 1, -1, 1, 1, 1);
  gemv("N", 2, 1, 1, 1, 1);
  gemv("N", 1, 1, 1, 0, 0);
  gemv("N", 1, 1, 1, 1, 0);
  gemm("x", "x", 1, 1, 1, 1, 1, 1);
  gemm("N", "x", 1, 1, 1, 1, 1, 1);
  gemm("N", "N", -1, 1, 1, 1, 1, 1);
  gemm("N", "N", 1, -1, 1, 1, 1, 1);
  gemm("N", "N", 1, 1, -1, 1, 1, 1);
  gemm("T", "N", 1, 1, 2, 1, 2, 1);
  gemm("N", "C", 1, 2, 1, 1, 1, 1);
  gemm("N", "N", 2, 1, 1, 2, 1, 1);
  ger(-1, 1, 1, 1, 1);
  ger(1, -1, 1, 1, 1);
  ger(1, 1, 0, 1, 1);
  ger(1, 1, 1, 0, 1);
  ger(2, 1, 1, 1, 1);
  std::fflush(stdout);
  std::string expected;
  const auto line = [&](const char* tag, int number) {
    char text[100];
    std::snprintf(text, sizeof text, "** On entry to %6s, parameter number %2i had an illegal value\n", tag,
                  number);
    expected += text;
  };
  for (const int number : {1, 2, 3, 6, 8, 11}) line("DGEMV ", number);
  for (const int number : {1, 2, 3, 4, 5, 8, 10, 13}) line("DGEMM ", number);
  for (const int number : {1, 2, 5, 7, 9}) line("DGER  ", number);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), expected);
  EXPECT_EQ(y[0], 7);
  EXPECT_EQ(y[1], 8);
}

TEST(Support, LettersAndConjugates) {
  EXPECT_EQ(vlb_lsame("n", "N"), 1);
  EXPECT_EQ(vlb_lsame("[", "{"), 0);
  float f[] = {1, 2};
  r_cnjg(f, f);
  EXPECT_EQ(f[1], -2);
  mcomplex z = {1, 2};
  d_cnjg(&z, &z);
  EXPECT_EQ(d_imag(&z), -2);
}

}  // namespace
