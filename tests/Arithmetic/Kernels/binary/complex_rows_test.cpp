// Functions of two complex numbers.
//
// Faults it is meant to catch: products and quotients that lose infinities, overflow in between, or leave a rounding error in the
// imaginary part of z conj z; powers with an integer exponent that go the polar way, or along an axis without landing on it; logarithms
// and angles on the wrong side of a cut; a result check of one part only.
#include <gtest/gtest.h>

#include <cmath>
#include <optional>
#include <random>

#include "Includes/element_types.h"
#include "support/complex_oracle.h"
#include "velorim/velorim.h"

namespace {

using namespace vlm;
constexpr uint32_t fp = MACHFUNC_CHECK_FP;
constexpr double infinity = std::numeric_limits<double>::infinity();
const double nan_value = std::nan("");

template <class R = mcomplex, class X, class Y>
std::optional<R> call(int32_t number, X x, Y y, uint32_t flags = fp) {
  R r{};
  const MachFuncScalar2 kernel =
      MNumericArray_getBinaryScalarMachFunc(number, element_code<X>, element_code<Y>);
  return kernel != nullptr && kernel(&r, &x, &y, flags) == 0 ? std::optional(r) : std::nullopt;
}
void expect_value(std::optional<mcomplex> z, double re, double im) {
  ASSERT_TRUE(z);
  EXPECT_EQ(z->re, re);
  EXPECT_EQ(z->im, im);
}

oracle::complex_number exact(mcomplex z) { return {z.re, z.im}; }
oracle::complex_number exact(complex_real32 z) { return {z.re, z.im}; }

/// Numbers of sizes 2^-span to 2^span in every direction.
template <class T> std::vector<T> plane(int span, size_t n, uint64_t seed) {
  std::mt19937_64 engine(seed);
  std::uniform_real_distribution<double> unit(-1, 1);
  std::vector<T> z(n);
  for (T& v : z) {
    v.re = static_cast<decltype(T::re)>(
        std::ldexp(unit(engine), static_cast<int>(engine() % (2 * span + 1)) - span));
    v.im = static_cast<decltype(T::re)>(
        std::ldexp(unit(engine), static_cast<int>(engine() % (2 * span + 1)) - span));
  }
  return z;
}

template <class T, class Exact> double worst_error(int32_t number, int span, Exact value) {
  const auto x = plane<T>(span, 4000, 1), y = plane<T>(span, 4000, 2);
  std::vector<T> r(x.size());
  constexpr int32_t code = element_code<T>;
  EXPECT_EQ(MNumericArray_getBinaryVectorMachFunc(number, code, code)(
                r.data(), x.data(), y.data(), static_cast<mint>(x.size()), UnitIncrements, 0),
            0);
  double worst = 0;
  for (size_t i = 0; i < x.size(); ++i) {
    const oracle::complex_number e = value(exact(x[i]), exact(y[i]));
    if (!oracle::is_finite(e) ||
        oracle::log2_magnitude(e) > std::numeric_limits<decltype(T::re)>::max_exponent - 1)
      continue;
    worst = std::max(worst, oracle::norm_error(r[i].re, r[i].im, e));
  }
  return worst;
}

TEST(ComplexArithmetic, ProductsAndQuotientsAreWithinTwoEpsilon) {
  const auto product = [](const auto& x, const auto& y) { return x * y; };
  const auto quotient = [](const auto& x, const auto& y) { return x / y; };
  EXPECT_LE(worst_error<mcomplex>(259, 300, product), 2);
  EXPECT_LE(worst_error<mcomplex>(260, 300, quotient), 3);
  EXPECT_LE(worst_error<complex_real32>(259, 30, product), 2);
  EXPECT_LE(worst_error<complex_real32>(260, 30, quotient), 3);
  // Divisors whose square leaves the range.
  expect_value(call(260, mcomplex{1e300, 1e300}, mcomplex{1e300, 1e300}), 1, 0);
  expect_value(call(260, mcomplex{0x1p-1060, 0}, mcomplex{0, 0x1p-1070}), 0, -1024);
  for (const mcomplex z : plane<mcomplex>(40, 500, 3)) EXPECT_EQ(call(259, z, mcomplex{z.re, -z.im})->im, 0);
}

TEST(ComplexArithmetic, InfinitiesAreRecoveredWhereTheFormulaGivesNaN) {
  const auto product = call(259, mcomplex{infinity, infinity}, mcomplex{1, 0}, 0);
  ASSERT_TRUE(product);
  EXPECT_TRUE(std::isinf(product->re) && std::isinf(product->im));
  const auto overflowing = call(259, mcomplex{1e200, 1e200}, mcomplex{1e200, nan_value}, 0);
  ASSERT_TRUE(overflowing);
  EXPECT_TRUE(std::isnan(overflowing->re) || std::isinf(overflowing->re));
  const auto pole = call(260, mcomplex{1, -2}, mcomplex{-0.0, 0}, 0);
  EXPECT_EQ(pole->re, -infinity);
  EXPECT_EQ(pole->im, infinity);
  const auto far = call(260, mcomplex{infinity, nan_value}, mcomplex{2, 3}, 0);
  EXPECT_TRUE(std::isinf(far->re));
  expect_value(call(260, mcomplex{1, 1}, mcomplex{infinity, -infinity}, 0), 0, 0);
  EXPECT_FALSE(call(260, mcomplex{1, 0}, mcomplex{0, 0}));
  EXPECT_FALSE(call(257, mcomplex{0, 1e308}, mcomplex{0, 1e308}));
  EXPECT_FALSE(call(258, mcomplex{nan_value, 0}, mcomplex{0, 0}));
}

TEST(ComplexPow, IntegerExponentsStayOnTheAxesAndGoByProducts) {
  expect_value(call(263, mcomplex{-2, 0}, mint{3}), -8, 0);
  expect_value(call(263, mcomplex{0, 2}, mint{3}), 0, -8);
  expect_value(call(263, mcomplex{0, 2}, mint{4}), 16, 0);
  expect_value(call(263, mcomplex{0, 2}, mint{-1}), 0, -0.5);
  expect_value(call(263, mcomplex{0, 2}, mint{-3}), 0, 0.125);
  expect_value(call(263, mcomplex{0, -2}, mint{2}), -4, 0);
  expect_value(call(263, mcomplex{1, 1}, mint{8}), 16, 0);
  expect_value(call(263, mcomplex{1, 2}, mint{0}), 1, 0);
  EXPECT_FALSE(call(263, mcomplex{0, 0}, mint{0}));
  const auto none = call(263, mcomplex{0, 0}, mint{0}, 0);
  EXPECT_TRUE(none && std::isnan(none->re) && std::isnan(none->im));
  EXPECT_FALSE(call(263, mcomplex{0, 0}, mint{-1}));
  for (const mint y : {mint{5}, mint{9}, mint{100}, mint{2047}, mint{2048}, mint{100000}, mint{-77}}) {
    const mcomplex x{0.999, 0.02};
    const auto r = call(263, x, y);
    oracle::complex_number e = exact(x);
    mpc_pow_si(e.get(), e.get(), static_cast<long>(y), MPC_RNDNN);
    ASSERT_TRUE(r);
    EXPECT_LE(oracle::norm_error(r->re, r->im, e), 3 * std::abs(static_cast<double>(y)) + 3) << y;
  }
  expect_value(call<mcomplex>(263, mcomplex{0, 0}, mcomplex{2, 0}), 0, 0);
}

/// The polar way loses digits with the size of y log x, by a unit for each unit of it.
TEST(ComplexPow, ComplexExponentsGoByTheLogarithm) {
  const auto x = plane<mcomplex>(4, 3000, 5), y = plane<mcomplex>(4, 3000, 6);
  for (size_t i = 0; i < x.size(); ++i) {
    const auto r = call(263, x[i], y[i]);
    const oracle::complex_number e = oracle::apply(mpc_pow, exact(x[i]), exact(y[i]));
    const double size = std::hypot(y[i].re, y[i].im) * (std::abs(std::log(std::hypot(x[i].re, x[i].im))) + 4);
    if (size > 600) continue;
    ASSERT_TRUE(r);
    ASSERT_LE(oracle::norm_error(r->re, r->im, e), 2 + 2 * size)
        << x[i].re << " " << x[i].im << " to " << y[i].re << " " << y[i].im;
  }
  EXPECT_NEAR(call(263, mcomplex{-8, 0}, mcomplex{1.0 / 3, 0})->im, std::sqrt(3.0), 1e-14);
  EXPECT_NEAR(call(263, mcomplex{-8, -0.0}, mcomplex{1.0 / 3, 0})->im, -std::sqrt(3.0), 1e-14)
      << "below the cut";
  EXPECT_NEAR(call(263, -8.0, mcomplex{1.0 / 3, 0})->im, std::sqrt(3.0), 1e-14);
}

TEST(ComplexLogarithm, IsTheQuotientOfTheNaturalOnes) {
  const auto x = plane<mcomplex>(20, 500, 7), b = plane<mcomplex>(20, 500, 8);
  for (size_t i = 0; i < x.size(); ++i) {
    const auto r = call(264, b[i], x[i]);
    ASSERT_TRUE(r);
    const oracle::complex_number e =
        oracle::apply(mpc_log, exact(x[i])) / oracle::apply(mpc_log, exact(b[i]));
    EXPECT_LE(oracle::norm_error(r->re, r->im, e), 8);
  }
  EXPECT_FALSE(call(264, mcomplex{0, 0}, mcomplex{2, 0}));
  EXPECT_TRUE(std::isnan(call(264, mcomplex{0, -0.0}, mcomplex{2, 0}, 0)->im));
}

TEST(ComplexAngle, IsRealOnTheAxesAndTheLogarithmElsewhere) {
  const double half_pi = 1.5707963267948966, pi = 3.141592653589793;
  const mcomplex zero{0, 0};
  expect_value(call(265, zero, zero), 0, 0);
  expect_value(call(265, zero, mcomplex{2, 1}), half_pi, 0);
  expect_value(call(265, zero, mcomplex{0, -1}), -half_pi, 0);
  expect_value(call(265, mcomplex{-1, 5}, zero), pi, 0);
  expect_value(call(265, mcomplex{0, 5}, zero), 0, 0);
  // tan of the angle is y / x.
  const auto x = plane<mcomplex>(3, 300, 9), y = plane<mcomplex>(3, 300, 10);
  for (size_t i = 0; i < x.size(); ++i) {
    const auto r = call(265, x[i], y[i]);
    ASSERT_TRUE(r);
    const oracle::complex_number ratio = exact(y[i]) / exact(x[i]),
                                 tangent = oracle::apply(mpc_tan, exact(*r));
    const double condition = 1 + std::exp2(std::abs(oracle::log2_magnitude(ratio)));
    EXPECT_LE(
        oracle::norm_error(mpfr_get_d(tangent.re(), MPFR_RNDN), mpfr_get_d(tangent.im(), MPFR_RNDN), ratio),
        300 * condition * condition);
  }
  EXPECT_NEAR(call(265, mcomplex{-1, 0}, mcomplex{1, 0})->re, 2.356194490192345, 1e-15);
}

TEST(ComplexRemainder, TakesTheQuotientRoundedByParts) {
  expect_value(call(261, mcomplex{7, 0}, mcomplex{-3, 0}), -2, 0);
  expect_value(call(261, mcomplex{7, 5}, mcomplex{3, 0}), 1, -1);
  EXPECT_FALSE(call(261, mcomplex{7, 5}, mcomplex{0, 0}, 0));
  EXPECT_FALSE(call(261, mcomplex{infinity, 5}, mcomplex{1, 1}));
  expect_value(call(285, mcomplex{7, 5}, mcomplex{2, 0}), 8, 4);
  expect_value(call(284, mcomplex{7, -5}, mcomplex{2, 0}), 6, -6);
}

TEST(ComplexDistances, AreRealAndCheckedByParts) {
  EXPECT_EQ((call<double>(270, mcomplex{4, 5}, mcomplex{1, 1})), 5.0);
  EXPECT_FALSE((call<double>(270, mcomplex{1e308, 0}, mcomplex{-1e308, 0})));
  EXPECT_EQ((call<double>(271, mcomplex{0, 0}, mcomplex{3, 4})), 1.0);
  EXPECT_EQ((call<double>(272, mcomplex{3, 4}, mcomplex{0, -6})), 6.0);
  EXPECT_FALSE((call<double>(272, mcomplex{nan_value, 0}, mcomplex{0, 1})));
  EXPECT_FALSE((call<double>(272, mcomplex{0, 1}, mcomplex{infinity, 0})));
  expect_value(call(269, mcomplex{0.1, -2}, 1.0), 0, -2);
  EXPECT_FALSE(call(269, mcomplex{0.1, -2}, -1.0, 0));
  expect_value(call(276, mcomplex{4, -2}, mint{1}), 2, -1);
}

TEST(ComplexRoot, HasItsOwnWayForSmallDegrees) {
  mcomplex r{9, 9};
  const mcomplex z{-8, 0};
  EXPECT_EQ(s_machfunc_ci_root(&r, 0, z, 0), 1);
  EXPECT_EQ(r.re, 9);
  EXPECT_EQ(s_machfunc_ci_root(&r, 1, z, fp), 0);
  EXPECT_EQ(r.re, -8);
  EXPECT_EQ(s_machfunc_ci_root(&r, 2, mcomplex{-4, 0}, fp), 0);
  EXPECT_EQ(r.im, 2);
  EXPECT_EQ(s_machfunc_ci_root(&r, -1, mcomplex{0, 2}, fp), 0);
  EXPECT_EQ(r.im, -0.5);
  EXPECT_EQ(s_machfunc_ci_root(&r, -2, mcomplex{4, 0}, fp), 0);
  EXPECT_EQ(r.re, 0.5);
  EXPECT_EQ(s_machfunc_ci_root(&r, 3, z, fp), 0);
  EXPECT_NEAR(r.re, 1, 1e-15);
  EXPECT_NEAR(r.im, std::sqrt(3.0), 1e-15);
  EXPECT_EQ(s_machfunc_ci_root(&r, -1, mcomplex{0, 0}, fp), 1);
}

}  // namespace
