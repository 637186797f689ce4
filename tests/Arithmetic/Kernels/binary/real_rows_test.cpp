// Functions of two reals, on Real64, Real32 and Real16: values against an oracle, and what happens at the edges.
//
// Faults it is meant to catch: powers that lose digits with the size of the exponent, or take an integer exponent another way than by
// the stated products; a zero divisor told only under a flag; remainders on the wrong side of zero; extrema that lose the sign of a zero
// or keep a NaN; the tolerance of unitize; conversions of quotients left to the hardware.
#include <gtest/gtest.h>

#include <cfenv>
#include <cmath>
#include <optional>
#include <random>

#include "Includes/real16.h"
#include "support/oracle.h"
#include "velorim/velorim.h"

namespace {

using namespace vlm;
constexpr uint32_t fp = MACHFUNC_CHECK_FP, integer = MACHFUNC_CHECK_INTEGER;
constexpr double infinity = std::numeric_limits<double>::infinity();
const double nan_value = std::nan("");

/// The scalar kernel's result, or nothing if it fails.
template <class R, class X, class Y> std::optional<R> call(int32_t number, X x, Y y, uint32_t flags) {
  R r{};
  const MachFuncScalar2 kernel =
      MNumericArray_getBinaryScalarMachFunc(number, element_code<X>, element_code<Y>);
  return kernel != nullptr && kernel(&r, &x, &y, flags) == 0 ? std::optional(r) : std::nullopt;
}
std::optional<double> real(int32_t number, double x, double y, uint32_t flags = fp) {
  return call<double>(number, x, y, flags);
}

/// The oracle's value for y log x of any size: pow of numbers.
template <class T> double pow_error(T x, T y) {
  const auto got = call<T>(263, x, y, fp);
  if (!got) return infinity;
  return oracle::ulp_error(*got, oracle::apply(mpfr_pow, oracle::number(static_cast<double>(x)),
                                               oracle::number(static_cast<double>(y))));
}

TEST(RealPow, IsWithinOneUnitInTheLastPlace) {
  std::mt19937_64 engine(1);
  std::uniform_real_distribution<double> unit(-1, 1);
  double worst64 = 0, worst32 = 0;
  for (int i = 0; i < 30000; ++i) {
    const double spread = i % 3 == 0 ? 0.05 : i % 3 == 1 ? 3 : 700;
    const double logarithm = spread * unit(engine), x = std::exp(logarithm),
                 y = 700 * unit(engine) / std::log(x);
    if (std::isfinite(y) && y != 0) worst64 = std::max(worst64, pow_error(x, y));
    const auto x32 = static_cast<float>(std::exp(std::min(80.0, spread) * unit(engine)));
    const auto y32 = static_cast<float>(80 * unit(engine) / std::log(static_cast<double>(x32)));
    if (std::isfinite(y32) && y32 != 0) worst32 = std::max(worst32, pow_error(x32, y32));
  }
  for (int i = 0; i < 3000; ++i) {  // negative bases, whole exponents
    const double x = -std::exp(3 * unit(engine)), y = std::round(30 * unit(engine));
    worst64 = std::max(worst64, pow_error(x, y));
    worst32 = std::max(worst32, pow_error(static_cast<float>(x), static_cast<float>(y)));
  }
  EXPECT_LE(worst64, 1.0);
  EXPECT_LE(worst32, 1.0);
  EXPECT_EQ(real(263, -8.0, 1.0 / 3), std::nullopt);
  EXPECT_GT(*real(263, -0x1.0000000000001p0, 0x1p53 + 2), 1.2);
  EXPECT_LT(*real(263, -0x1.0000000000001p0, 0x1p50 + 1), -1.2);
  EXPECT_EQ(real(263, -2.0, 0.0), 1.0);
  EXPECT_EQ(real(263, 0.0, 0.5), 0.0);
}

template <class T>
double worst_error(int32_t number, double span,
                   oracle::number (*exact)(const oracle::number&, const oracle::number&)) {
  std::mt19937_64 engine(11);
  std::uniform_real_distribution<double> unit(-1, 1);
  double worst = 0;
  for (int i = 0; i < 20000; ++i) {
    const auto x = static_cast<T>(std::exp(span * unit(engine))),
               y = static_cast<T>(std::exp(span * unit(engine)));
    const auto got = call<T>(number, x, y, fp);
    if (!got || x == 1) continue;
    worst = std::max(worst, oracle::ulp_error(*got, exact(oracle::number(static_cast<double>(x)),
                                                          oracle::number(static_cast<double>(y)))));
  }
  return worst;
}

TEST(RealLogarithm, AndTheAngleAreWithinTheirBounds) {
  const auto logarithm = [](const oracle::number& base, const oracle::number& x) {
    return oracle::apply(mpfr_log, x) / oracle::apply(mpfr_log, base);
  };
  const auto angle = [](const oracle::number& x, const oracle::number& y) {
    return oracle::apply(mpfr_atan2, y, x);
  };
  EXPECT_LE((worst_error<double>(264, 600, logarithm)), 2.5);
  EXPECT_LE((worst_error<double>(264, 0.1, logarithm)), 2.5);
  EXPECT_LE((worst_error<float>(264, 80, logarithm)), 2.5);
  EXPECT_LE((worst_error<double>(265, 20, angle)), 1.0);
  EXPECT_LE((worst_error<float>(265, 20, angle)), 1.0);
}

/// By the scheme that the interface states, written out once more: two bits of the exponent at a time from 9 on.
double stated_power(double x, mint y) {
  const uint64_t e = y < 0 ? 0 - static_cast<uint64_t>(y) : static_cast<uint64_t>(y);
  double r = 1;
  const double x2 = x * x, x3 = x2 * x, x4 = x2 * x2;
  const double t[] = {1, x, x2, x3};
  switch (e) {
    case 0:
      r = 1;
      break;
    case 1:
      r = x;
      break;
    case 2:
      r = x2;
      break;
    case 3:
      r = x3;
      break;
    case 4:
      r = x4;
      break;
    case 5:
      r = x4 * x;
      break;
    case 6:
      r = x3 * x3;
      break;
    case 7:
      r = (x3 * x3) * x;
      break;
    case 8:
      r = x4 * x4;
      break;
    default: {
      int bits = 63 - __builtin_clzll(e) - 2;
      r = x4 * t[e >> bits & 3];
      for (; bits >= 2; r = (r * r) * (r * r) * t[e >> bits & 3]) bits -= 2;
      if (bits == 1) r = (r * r) * t[e & 1];
    }
  }
  return y < 0 ? 1 / r : r;
}

TEST(RealPow, IntegerExponentsGoByTheStatedProducts) {
  std::mt19937_64 engine(2);
  std::uniform_real_distribution<double> near_one(0.99, 1.01), wide(-5, 5);
  std::vector<double> x;
  std::vector<mint> y;
  for (mint e = -70; e <= 70; ++e) {
    x.push_back(wide(engine));
    y.push_back(e);
  }
  for (int i = 0; i < 2000; ++i) {
    x.push_back(near_one(engine) * (i % 2 == 0 ? 1 : -1));
    y.push_back(static_cast<mint>(engine() % 60000) - 30000);
  }
  std::vector<double> r(x.size());
  ASSERT_EQ(MNumericArray_getBinaryVectorMachFunc(263, 10, 7)(r.data(), x.data(), y.data(),
                                                              static_cast<mint>(x.size()), UnitIncrements, 0),
            0);
  for (size_t i = 0; i < x.size(); ++i)
    ASSERT_EQ(r[i], stated_power(x[i], y[i])) << x[i] << " to the " << y[i];
  EXPECT_EQ((call<double>(263, -1.0000001, mint{1 << 25} + 1, fp)), -std::pow(1.0000001, (1 << 25) + 1.0));
  EXPECT_EQ((call<double>(263, 2.0, mint{-2}, fp)), 0.25);
  EXPECT_EQ((call<double>(263, 2.0, mint{1024}, fp)), std::nullopt);
  EXPECT_EQ((call<double>(263, 0.0, mint{-1}, fp)), std::nullopt);
  EXPECT_EQ((call<float>(263, 3.0f, mint{-2}, fp)), 1.0f / 9);
}

TEST(RealPow, ZeroToTheZeroIsUndefined) {
  const auto expect_undefined = []<class X, class Y>(int32_t number, X x, Y y) {
    EXPECT_EQ((call<X>(number, x, y, fp)), std::nullopt);
    std::feclearexcept(FE_ALL_EXCEPT);
    const auto got = call<X>(number, x, y, 0);
    EXPECT_TRUE(std::fetestexcept(FE_INVALID));
    ASSERT_TRUE(got);
    EXPECT_TRUE(std::isnan(*got));
    EXPECT_EQ(std::bit_cast<uint64_t>(static_cast<double>(*got)) >> 51 & 1, sizeof(X) == 4 ? 1u : 0u)
        << "a signalling NaN";
  };
  expect_undefined(263, 0.0, -0.0);
  expect_undefined(263, -0.0, mint{0});
  expect_undefined(264, 0.0, 3.0);  // logarithm to base 0
  EXPECT_EQ((call<real16>(263, real16{0}, real16{0}, 0))->bits, real16_signalling_nan.bits);
  EXPECT_EQ(real(264, 2.0, 8.0), 3.0);
  EXPECT_EQ(real(264, 1.0, 8.0), std::nullopt);
}

TEST(RealDivision, RemaindersTakeTheSideOfTheDivisor) {
  EXPECT_EQ(real(261, 5.5, -2.0), -0.5);
  EXPECT_EQ(real(261, -7.0, 3.0), 2.0);
  EXPECT_EQ(real(261, -6.0, 3.0), 0.0);
  EXPECT_EQ(real(261, -1e-20, 1.0), 0.0);
  EXPECT_EQ(real(261, 1e300, 7.0), std::fmod(1e300, 7.0));
  EXPECT_EQ(real(261, 3.0, 0.0, 0), std::nullopt);
  EXPECT_EQ(real(261, 3.0, -0.0, 0), std::nullopt);
  EXPECT_TRUE(std::isnan(*real(261, infinity, 2.0)));
  // A zero divisor stops bulk mode at its own position.
  const double x[] = {1, 2, 3, 4}, y[] = {1, 1, 0, 1};
  double r[] = {9, 9, 9, 9};
  EXPECT_EQ(MNumericArray_getBinaryVectorMachFunc(261, 10, 10)(r, x, y, 4, UnitIncrements, fp), 3);
  EXPECT_EQ(r[1], 0);
  EXPECT_EQ(r[2], 9);
}

TEST(RealDivision, QuotientsAreIntegersOrFailUnderTheIntegerFlag) {
  EXPECT_EQ((call<mint>(262, 7.0, -2.0, integer)), -4);
  EXPECT_EQ((call<mint>(262, mint{-7}, 2.0, integer)), -4);
  EXPECT_EQ((call<mint>(262, 7.5f, 2.0f, integer)), 3);
  EXPECT_EQ((call<mint>(262, 1.0, 0.0, integer)), std::nullopt);
  EXPECT_EQ((call<mint>(262, 1.0, 0.0, fp)), std::numeric_limits<mint>::max());
  EXPECT_EQ((call<mint>(262, 0.0, 0.0, 0)), 0);
  EXPECT_EQ((call<mint>(262, 1e19, 1.0, integer)), std::nullopt);
  EXPECT_EQ((call<mint>(262, -1e19, 1.0, 0)), std::numeric_limits<mint>::min());
  EXPECT_EQ((call<mint>(262, -0x1p63, 1.0, integer)), std::numeric_limits<mint>::min());
  EXPECT_EQ((call<mint>(262, 0x1p63, 1.0, integer)), std::nullopt);
  EXPECT_EQ((call<mint>(262, real16{0x4700}, real16{0xC000}, integer)), -4);  // 7 / -2
}

TEST(RealDivision, MultiplesBesideANumber) {
  EXPECT_EQ(real(283, 7.25, 0.5), 7.5);
  EXPECT_EQ(real(284, -7.25, 2.0), -8.0);
  EXPECT_EQ(real(285, 5.0, 2.0), 4.0);
  EXPECT_EQ(real(285, 5.0, 0.0), std::nullopt);
  EXPECT_EQ((call<mint>(285, 7.0, mint{2}, integer)), 8);
  EXPECT_EQ((call<mint>(283, -7.5, mint{2}, integer)), -6);
  EXPECT_EQ((call<mint>(284, 1e19, mint{1}, integer)), std::nullopt);
  EXPECT_EQ((call<mint>(284, 1.0, mint{0}, integer)), std::nullopt);
  EXPECT_EQ((call<mint>(284, 9.2e18, mint{-3}, 0)), -3 * static_cast<mint>(std::floor(9.2e18 / -3)));
  EXPECT_EQ((call<double>(283, mint{7}, 2.0, fp)), 8.0);
}

TEST(RealExtrema, ZerosHaveAnOrderAndNaNsGiveWay) {
  const auto signed_zero = [](std::optional<double> r) {
    return r && *r == 0 ? (std::signbit(*r) ? '-' : '+') : '?';
  };
  EXPECT_EQ(signed_zero(real(286, -0.0, 0.0)), '+');
  EXPECT_EQ(signed_zero(real(286, 0.0, -0.0)), '+');
  EXPECT_EQ(signed_zero(real(287, -0.0, 0.0)), '-');
  EXPECT_EQ(signed_zero(real(287, 0.0, -0.0)), '-');
  for (const int32_t number : {286, 287, 272}) {
    EXPECT_EQ(real(number, nan_value, 2.0), 2.0);
    EXPECT_EQ(real(number, 2.0, -nan_value), 2.0);
    EXPECT_TRUE(std::isnan(*real(number, nan_value, nan_value)));
  }
  EXPECT_EQ(real(286, -infinity, -3.0), -3.0);
  EXPECT_EQ(real(287, -1.0, -3.0), -3.0);
  EXPECT_EQ(real(272, -infinity, 3.0), infinity);
  EXPECT_EQ((call<double>(286, mint{3}, 2.5, fp)), 3.0);
}

TEST(RealSteps, ChopUnitizeAndTriangles) {
  EXPECT_EQ(real(269, 1e-11, 1e-10), 0.0);
  EXPECT_EQ(real(269, 1e-10, 1e-10), 1e-10);
  EXPECT_EQ(real(269, -5.0, -1.0, 0), std::nullopt);
  const auto unitize = [](double x, double t) { return call<mint>(278, x, t, 0); };
  EXPECT_EQ(unitize(0.0, 1.0), 0);
  EXPECT_EQ(unitize(1.0, 1.0), 1);
  EXPECT_EQ(unitize(0.99999999999999, 1.0), 1);
  EXPECT_EQ(unitize(1 - 0x1p-46, 1.0), 0);
  EXPECT_EQ(unitize(-(1 - 0x1p-47), 1.0), 1);
  EXPECT_EQ(unitize(0.25 * (1 - 0x1p-47), 0.25), 1);
  EXPECT_EQ(unitize(0.25 * (1 - 0x1p-46), 0.25), 0);
  EXPECT_EQ(unitize(1e-300, 1.0), 0);
  EXPECT_EQ(unitize(1.0, 0.0), std::nullopt);
  EXPECT_EQ((call<mint>(278, mcomplex{3, 4}, 5.0, 0)), 1);
  EXPECT_EQ(real(280, 0.5, 2.0), -0.5);
  EXPECT_EQ(real(280, 2.0, 2.0), 0.0);
  EXPECT_EQ(real(280, 1.0, 1.0), 0.0);
  EXPECT_EQ((call<mint>(277, -0.5, 0.5, 0)), 1);
  EXPECT_EQ((call<mint>(279, -0.5, 0.5, 0)), 0);
}

TEST(RealShifts, ScaleByPowersOfTwo) {
  EXPECT_EQ((call<double>(275, 3.0, mint{4}, fp)), 48.0);
  EXPECT_EQ((call<double>(275, 3.0, mint{-4}, fp)), 3.0 / 16);
  EXPECT_EQ((call<double>(275, 0x1p-1074, mint{2097}, fp)), 0x1p1023);
  EXPECT_EQ((call<double>(275, 0x1p-1074, mint{2098}, fp)), std::nullopt);
  EXPECT_EQ((call<double>(275, 0x1p-1074, std::numeric_limits<mint>::max(), 0)), infinity);
  EXPECT_EQ((call<double>(275, 0.0, std::numeric_limits<mint>::max(), fp)), 0.0);
  EXPECT_TRUE(std::signbit(*call<double>(276, -1.0, std::numeric_limits<mint>::max(), fp)));
  EXPECT_EQ((call<double>(276, 1.0, std::numeric_limits<mint>::min(), fp)), std::nullopt);
  EXPECT_EQ((call<float>(275, 1.0f, mint{128}, fp)), std::nullopt);
  EXPECT_EQ((call<real16>(275, real16{0x3C00}, mint{15}, fp))->bits, 0x7800);
  EXPECT_EQ((call<real16>(275, real16{0x3C00}, mint{16}, fp)), std::nullopt);
}

TEST(RealErrors, DistancesAreCheckedWhereTheyLeaveTheRange) {
  EXPECT_EQ(real(270, 1.0, 3.5), 2.5);
  EXPECT_EQ(real(270, 1e308, -1e308), std::nullopt);
  EXPECT_EQ(real(271, 3.0, -4.0), 1.75);
  EXPECT_EQ(real(271, 3.0, 0.0), std::nullopt);
  EXPECT_EQ(real(265, 0.0, 0.0), 0.0);
  EXPECT_EQ(real(265, -1.0, 0.0), std::atan2(0.0, -1.0));
  EXPECT_EQ((call<double>(265, mint{1}, 1.0, fp)), std::atan2(1.0, 1.0));
}

/// Sums, products and quotients of halves are rounded once.
TEST(Real16Rows, ArithmeticIsThatOfTheFormat) {
  std::mt19937_64 engine(3);
  for (int i = 0; i < 20000; ++i) {
    const real16 x{static_cast<uint16_t>(engine())}, y{static_cast<uint16_t>(engine())};
    if (is_nan(x) || is_nan(y)) continue;
    const double a = real16_format::widen(x), b = real16_format::widen(y);
    const double exact[] = {a + b, a - b, a * b, a / b};
    for (int32_t k = 0; k < 4; ++k) {
      const auto got = call<real16>(257 + k, x, y, 0);
      ASSERT_TRUE(got);
      if (std::isnan(exact[k])) {
        ASSERT_TRUE(is_nan(*got));
      } else {
        ASSERT_EQ(got->bits, real16_format::round(exact[k]).value.bits)
            << 257 + k << " of " << a << ", " << b;
      }
    }
  }
}

}  // namespace
