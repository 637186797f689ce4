// Faults it is meant to catch: orders and counts in each other's place; the far end of a negative stride; a wrong road at 32 or 33
// elements; overflow on the way to a finite norm; a mean over something else than n; a result stored although its test failed.
#include <gtest/gtest.h>

#include <cfenv>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "velorim/machine_functions.h"
#include "velorim/norms.h"
#include "velorim/status.h"

namespace {

using wide = long double;

constexpr mint infinite = std::numeric_limits<mint>::max();
constexpr double inf = std::numeric_limits<double>::infinity(),
                 nan_value = std::numeric_limits<double>::quiet_NaN();
constexpr double untouched = -77;

/// The norm by its definition.
wide norm_of(mint p, const std::vector<wide>& v, wide divisor = 1) {
  wide largest = 0, sum = 0;
  for (const wide x : v) largest = std::max(largest, x);
  if (p == infinite || largest == 0) return largest;
  for (const wide x : v) sum += std::pow(x / largest, static_cast<wide>(p));
  return largest * std::pow(sum / divisor, 1 / static_cast<wide>(p));
}

double random_number() {
  static std::mt19937_64 engine(12);
  static std::uniform_real_distribution<double> distribution(-1, 1);
  const double x = distribution(engine);
  return x * std::exp(3 * distribution(engine));
}

void assign(double& x, double re, double) { x = re; }
void assign(mcomplex& z, double re, double im) { z = {re, im}; }
wide magnitude(double x) { return std::abs(wide{x}); }
wide magnitude(mcomplex z) { return std::hypot(wide{z.re}, wide{z.im}); }

int32_t plain(double* r, mint p, mint n, const double* x, mint stride, uint32_t flags = 0) {
  return machfunc_d_vectornorm(r, p, n, x, stride, flags);
}
int32_t plain(double* r, mint p, mint n, const mcomplex* x, mint stride, uint32_t flags = 0) {
  return machfunc_c_vectornorm(r, p, n, x, stride, flags);
}
int32_t weighted(double* r, mint p, mint n, const double* x, mint stride, const double* w, int32_t mean,
                 uint32_t flags = 0) {
  return machfunc_d_weightedvectornorm(r, n, p, x, stride, w, mean, flags);
}
int32_t weighted(double* r, mint p, mint n, const mcomplex* x, mint stride, const double* w, int32_t mean,
                 uint32_t flags = 0) {
  return machfunc_c_weightedvectornorm(r, n, p, x, stride, w, mean, flags);
}
int32_t scaled(double* r, mint p, mint n, const double* x, mint stride, const double* s, int32_t mean,
               double a, double b, uint32_t flags = 0) {
  return machfunc_d_scaledvectornorm(r, p, n, x, stride, s, mean, flags, a, b);
}
int32_t scaled(double* r, mint p, mint n, const mcomplex* x, mint stride, const mcomplex* s, int32_t mean,
               double a, double b, uint32_t flags = 0) {
  return machfunc_c_scaledvectornorm(r, p, n, x, stride, s, mean, flags, a, b);
}
int32_t weights(double* w, mint n, const double* s, mint stride, double a, double b, uint32_t flags = 0) {
  return machfunc_d_vectornormweights(w, n, s, stride, flags, a, b);
}
int32_t weights(double* w, mint n, const mcomplex* s, mint stride, double a, double b, uint32_t flags = 0) {
  return machfunc_c_vectornormweights(w, n, s, stride, flags, a, b);
}

template <class Element> class Norms : public testing::Test {};
using element_types = testing::Types<mreal, mcomplex>;
TYPED_TEST_SUITE(Norms, element_types);

TYPED_TEST(Norms, AreThoseOfTheDefinitionAtEveryStrideAndLength) {
  using Element = TypeParam;
  constexpr mint orders[] = {1, 2, infinite, 3, 4, 7, 8, 9, 31, 1000, 1 << 24, mint{1} << 30};
  for (const mint n : {0, 1, 2, 31, 32, 33, 1000}) {
    for (const mint stride : {1, 2, -1, -3, 0}) {
      // Elements that no norm may read are NaN. Plain norms of a negative stride start at the far end, the others before `x`.
      const mint span = std::abs(stride) * std::max<mint>(n - 1, 0) + 1;
      std::vector<Element> field(static_cast<size_t>(span));
      for (Element& e : field) assign(e, nan_value, nan_value);
      const Element* const plain_x = field.data();
      const Element* const x = stride < 0 ? field.data() + span - 1 : field.data();
      std::vector<Element> s(static_cast<size_t>(n));
      std::vector<double> w(static_cast<size_t>(n));
      for (mint i = 0; i < n; ++i) {
        assign(const_cast<Element&>(x[i * stride]), random_number(), random_number());
        assign(s[i], random_number(), random_number());
        w[i] = std::abs(random_number());
      }
      std::vector<wide> v, weighted_v, scaled_v;
      for (mint i = 0; i < n; ++i) {
        v.push_back(magnitude(x[i * stride]));
        weighted_v.push_back(v.back() * w[i]);
        scaled_v.push_back(v.back() / (magnitude(s[i]) * 0.5L + 0.25L));
      }
      for (const mint p : orders) {
        const std::string where =
            "p " + std::to_string(p) + " n " + std::to_string(n) + " stride " + std::to_string(stride);
        double r = untouched;
        const auto expect = [&](int32_t status, wide expected) {
          const double got = std::exchange(r, untouched);
          EXPECT_EQ(status, 0) << where;
          // 1 / p is rounded, and so is each of the products of t^p.
          const double bound =
              1e-16 * (static_cast<double>(n) + 20 + 4 * std::min(1e3, static_cast<double>(p)));
          EXPECT_NEAR(got, static_cast<double>(expected), bound * static_cast<double>(expected)) << where;
        };
        expect(plain(&r, p, n, plain_x, stride, MACHFUNC_CHECK_FP), norm_of(p, v));
        for (const int32_t mean : {0, 1}) {
          if (mean != 0 && n == 0) continue;
          const wide divisor = mean != 0 ? static_cast<wide>(n) : 1;
          expect(weighted(&r, p, n, x, stride, w.data(), mean, MACHFUNC_CHECK_FP),
                 norm_of(p, weighted_v, divisor));
          expect(scaled(&r, p, n, x, stride, s.data(), mean, 0.5, 0.25), norm_of(p, scaled_v, divisor));
        }
      }
      std::vector<double> t(static_cast<size_t>(n));
      EXPECT_EQ(weights(t.data(), n, x, stride, 0.5, 0.25), 0);
      for (mint i = 0; i < n; ++i)
        EXPECT_NEAR(t[i], static_cast<double>(1 / (v[i] * 0.5L + 0.25L)), 1e-15 * t[i]) << n << ' ' << stride;
    }
  }
}

TEST(PlainNorm, KnownResults) {
  const double zeros[3] = {}, one[1] = {1}, large[2] = {1e308, 1e308};
  double r = untouched;
  EXPECT_EQ(plain(&r, 3, 3, zeros, 1), 0);
  EXPECT_EQ(r, 0);
  EXPECT_EQ(plain(&r, 2, 2, large, 1, MACHFUNC_CHECK_FP), 0);
  EXPECT_DOUBLE_EQ(r, 1e308 * std::sqrt(2.0));
  for (const mint count : {mint{0}, mint{-5}}) {
    for (const mint p : {mint{0}, mint{1}, mint{2}, mint{-3}, infinite}) {
      r = untouched;
      EXPECT_EQ(plain(&r, p, count, static_cast<const double*>(nullptr), -1, MACHFUNC_CHECK_FP), 0);
      EXPECT_EQ(r, 0) << p;
    }
  }
  // The first element is raised as 0 / v: order 0 has no value for it, and negative orders an infinite sum.
  std::feclearexcept(FE_ALL_EXCEPT);
  EXPECT_EQ(plain(&r, 0, 1, one, 1), 0);
  EXPECT_TRUE(std::isnan(r));
  EXPECT_TRUE(std::fetestexcept(FE_INVALID));
  EXPECT_EQ(plain(&r, -2, 1, one, 1, MACHFUNC_CHECK_FP), 0);
  EXPECT_EQ(r, 0);
}

TEST(PlainNorm, NansAndInfinitiesByOrderLengthAndFlag) {
  std::vector<double> x(40, 0.5);
  const auto status_and = [&](mint p, mint n, double* r, uint32_t flags) {
    *r = untouched;
    return plain(r, p, n, x.data(), 1, flags);
  };
  double r;
  for (const mint n : {32, 33}) {
    for (const size_t where : {size_t{0}, size_t{31}}) {
      for (const double bad : {nan_value, inf}) {
        x.assign(40, 0.5);
        x[where] = bad;
        for (const mint p : {1, 2, 3}) {
          EXPECT_EQ(status_and(p, n, &r, 0), 0);
          EXPECT_TRUE(std::isnan(bad) ? std::isnan(r) : r == inf) << p;
          EXPECT_EQ(status_and(p, n, &r, MACHFUNC_CHECK_FP), ArrayStatusArithmetic) << p;
          EXPECT_EQ(r, untouched);
        }
        EXPECT_EQ(status_and(infinite, n, &r, MACHFUNC_CHECK_FP), 0);
        const double expected = std::isinf(bad) ? inf : 0.5;
        if (n == 33 && where == 0 && std::isnan(bad)) {
          EXPECT_TRUE(std::isnan(r));
        } else {
          EXPECT_EQ(r, expected) << n << ' ' << where;
        }
      }
    }
  }
  const double large[2] = {1e308, 1e308};
  EXPECT_EQ(plain(&r, 1, 2, large, 1, MACHFUNC_CHECK_FP), ArrayStatusArithmetic);
  EXPECT_EQ(plain(&r, 1, 2, large, 1, 0), 0);
  EXPECT_EQ(r, inf);
  const mcomplex z[2] = {{3, 4}, {-inf, nan_value}};
  r = untouched;
  EXPECT_EQ(plain(&r, infinite, 2, z, 1, MACHFUNC_CHECK_FP), ArrayStatusArithmetic);
  EXPECT_EQ(r, untouched);
  EXPECT_EQ(plain(&r, infinite, 2, z, 1, 0), 0);
  EXPECT_EQ(r, inf);
}

TEST(WeightedNorm, EmptyMeansAndFailedWeights) {
  const double* const none = nullptr;
  double r;
  for (const mint p : {mint{1}, mint{2}, mint{3}, infinite}) {
    r = untouched;
    EXPECT_EQ(weighted(&r, p, 0, none, 1, none, 0, MACHFUNC_CHECK_FP), 0);
    EXPECT_EQ(r, 0);
    EXPECT_EQ(scaled(&r, p, -1, none, 1, none, 1, 1, 1), 0);
    EXPECT_EQ(std::isnan(r), p != infinite);
    r = untouched;
    EXPECT_EQ(weighted(&r, p, 0, none, 1, none, 1, MACHFUNC_CHECK_FP),
              p == infinite ? 0 : ArrayStatusArithmetic);
    EXPECT_EQ(r, p == infinite ? 0 : untouched);
  }
  const double x[3] = {1, 2, 3}, s[3] = {1, 0, 2};
  double w[3] = {untouched, untouched, untouched};
  EXPECT_EQ(weights(w, 3, s, 1, 1, 0, MACHFUNC_CHECK_FP), ArrayStatusArithmetic);
  EXPECT_EQ(w[0], 1);
  EXPECT_EQ(w[1], untouched);
  EXPECT_EQ(w[2], untouched);
  EXPECT_EQ(weights(w, 3, s, 1, 1, 0), 0);
  EXPECT_EQ(w[1], inf);
  EXPECT_EQ(w[2], 0.5);
  // Infinity is tested here, and NaN terms are passed over.
  EXPECT_EQ(weighted(&r, infinite, 3, x, 1, w, 0, MACHFUNC_CHECK_FP), ArrayStatusArithmetic);
  w[1] = nan_value;
  EXPECT_EQ(weighted(&r, infinite, 3, x, 1, w, 0, MACHFUNC_CHECK_FP), 0);
  EXPECT_EQ(r, 1.5);
}

TEST(AllNorms, RefuseNullPointers) {
  const double x[1] = {1};
  const double* const none = nullptr;
  double r = untouched;
  EXPECT_EQ(plain(nullptr, 1, 1, x, 1), ArrayStatusNullArgument);
  EXPECT_EQ(plain(&r, 1, 1, none, 1), ArrayStatusNullArgument);
  EXPECT_EQ(weights(nullptr, 1, x, 1, 1, 1), ArrayStatusNullArgument);
  EXPECT_EQ(weights(&r, 1, none, 1, 1, 1), ArrayStatusNullArgument);
  EXPECT_EQ(weighted(nullptr, 1, 1, x, 1, x, 0), ArrayStatusNullArgument);
  EXPECT_EQ(weighted(&r, 1, 1, x, 1, none, 0), ArrayStatusNullArgument);
  EXPECT_EQ(scaled(nullptr, 1, 1, x, 1, x, 0, 1, 1), ArrayStatusNullArgument);
  EXPECT_EQ(scaled(&r, 1, 1, none, 1, x, 0, 1, 1), ArrayStatusNullArgument);
  EXPECT_EQ(r, untouched);
}

}  // namespace
