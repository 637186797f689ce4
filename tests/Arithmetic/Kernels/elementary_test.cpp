// Faults to catch: an error of one unit in the last place or more anywhere in the ordinary range (reductions
// near multiples of pi/2, table borders, cancellation near zero, the ends of the range, subnormal arguments);
// a zero of the wrong sign; a register that computes other bits than a number does; a lane that depends on
// its neighbours; traps or wild table reads outside of the range.
#include <gtest/gtest.h>
#include <mpfr.h>

#include <algorithm>
#include <bit>
#include <cfloat>
#include <cmath>
#include <functional>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "Arithmetic/Kernels/elementary/atan.h"
#include "Arithmetic/Kernels/elementary/cbrt.h"
#include "Arithmetic/Kernels/elementary/exp.h"
#include "Arithmetic/Kernels/elementary/hyperbolic.h"
#include "Arithmetic/Kernels/elementary/log.h"
#include "Arithmetic/Kernels/elementary/trigonometric.h"

namespace {

using namespace vlm;

// Arguments per function that are held against MPFR; a build with a greater number searches for the true
// maximum.
#ifndef ELEMENTARY_ORACLE_SAMPLES
#define ELEMENTARY_ORACLE_SAMPLES 20000
#endif
constexpr int oracle_samples = ELEMENTARY_ORACLE_SAMPLES;
constexpr int lane_count = lanes_of<real64_lanes>::count;

struct elementary_function {
  const char* name;
  vlm::ordinary_range range;
  double (*number)(double);
  real64_lanes (*lanes)(real64_lanes);
  int (*oracle)(mpfr_t, const mpfr_t, mpfr_rnd_t);
  double bound;  // units in the last place
  bool odd;
};

#define ELEMENTARY(f, oracle, bound, odd) \
  { #f, elementary::f##_range, elementary::f < double>, elementary::f < real64_lanes>, oracle, bound, odd }

const elementary_function functions[] = {
    ELEMENTARY(exp, mpfr_exp, 0.55, false),    ELEMENTARY(log, mpfr_log, 0.68, false),
    ELEMENTARY(sin, mpfr_sin, 0.85, true),     ELEMENTARY(cos, mpfr_cos, 0.85, false),
    ELEMENTARY(expm1, mpfr_expm1, 0.58, true), ELEMENTARY(log1p, mpfr_log1p, 0.80, true),
    ELEMENTARY(cbrt, mpfr_cbrt, 0.52, true),   ELEMENTARY(tan, mpfr_tan, 0.90, true),
    ELEMENTARY(sinh, mpfr_sinh, 0.60, true),   ELEMENTARY(cosh, mpfr_cosh, 0.68, false),
    ELEMENTARY(tanh, mpfr_tanh, 0.60, true),   ELEMENTARY(atan, mpfr_atan, 0.75, true),
    ELEMENTARY(asinh, mpfr_asinh, 0.68, true),
};

bool in_range(const elementary_function& f, double x) {
  const double t = f.range.of_magnitude ? std::fabs(x) : x;
  return t >= f.range.low && t <= f.range.high;
}

double ulp_error(const elementary_function& f, double x, double y) {
  thread_local struct number {
    mpfr_t value;
    number() { mpfr_init2(value, 160); }
    ~number() { mpfr_clear(value); }
  } in, exact, difference;
  mpfr_set_d(in.value, x, MPFR_RNDN);
  f.oracle(exact.value, in.value, MPFR_RNDN);
  if (mpfr_zero_p(exact.value)) return y == 0 ? 0 : HUGE_VAL;
  if (!std::isfinite(y)) return HUGE_VAL;
  mpfr_sub_d(difference.value, exact.value, y, MPFR_RNDN);
  const long exponent = std::max<long>(mpfr_get_exp(exact.value), -1021);
  mpfr_mul_2si(difference.value, difference.value, 53 - exponent, MPFR_RNDN);
  return std::fabs(mpfr_get_d(difference.value, MPFR_RNDN));
}

double step(double x, int ulps) { return std::bit_cast<double>(std::bit_cast<int64_t>(x) + ulps); }

// Numbers where a method changes its branch, table entry or multiple, each with its neighbours, and the ends
// of the range.
std::vector<double> borders(const elementary_function& f) {
  std::vector<double> centres{f.range.low, f.range.high, 1,          0.5,     2,       3,
                              8,           0x1p-9,       0x1p-27,    0x1p-28, 0x1p-53, 0x1p-54,
                              0x1p-1022,   0x1p-1040,    5e-324 * 8, 0x1p100, 22,      18.7,
                              0x1p-300,    0.1,          16,         1e5,     0x1p18};
  for (int i = 1; i <= 1200; ++i) centres.push_back(i * (M_LN2 / 32));
  for (int i = 1; i <= 4000; ++i) centres.push_back(i * M_PI_4);
  for (int i = 1; i < 20; ++i) centres.push_back(std::ldexp(1.0, i) * M_PI_2);
  for (int i = 0; i < 64; ++i) centres.push_back(std::ldexp(1 + (i % 4) / 4.0, i / 4 - 8));
  for (int i = 0; i < 48; ++i)
    centres.push_back(std::bit_cast<double>(0x3fea4f0000000000 + (static_cast<int64_t>(i - 16) << 48)));
  for (double c : {0x1.6ac5b262ca1ffp+849, 0x1.921fb54442d18p+19}) centres.push_back(c);
  std::vector<double> all;
  for (double c : centres)
    for (int d = -3; d <= 3; ++d)
      for (double x : {step(c, d), -step(c, d), step(c, d) - 1})
        if (in_range(f, x)) all.push_back(x);
  return all;
}

// Half uniform over a window of the usual, half with uniform exponent over the range.
double sample(const elementary_function& f, std::mt19937_64& generator) {
  for (;;) {
    const uint64_t r = generator();
    const double unit = static_cast<double>(generator() >> 11) * 0x1p-53;
    double x = 0;
    switch (r & 7) {
      case 0:
        x = (2 * unit - 1) * std::min(std::fabs(f.range.high), 800.0);
        break;
      case 1:
        x = (2 * unit - 1) * std::min(std::fabs(f.range.high), 0x1p20);
        break;
      case 2:
        x = 4 * unit - 2;
        break;
      case 3:
        x = (2 * unit - 1) * 0.125;
        break;
      case 4:
        x = 1 + (2 * unit - 1) * 0.1;
        break;
      case 5:
        x = std::ldexp(1 + unit, static_cast<int>((r >> 8) % 40) - 30) * ((r & 16) ? 1 : -1);
        break;
      case 6:
        x = std::bit_cast<double>(generator());
        break;
      default:
        x = (2 * unit - 1) * 25;
        break;
    }
    if (in_range(f, x)) return x;
  }
}

TEST(Elementary, StaysBelowItsBoundOfUnitsInTheLastPlace) {
  for (const auto& f : functions) {
    std::mt19937_64 generator(20);
    std::vector<double> arguments = borders(f);
    for (int i = 0; i < oracle_samples; ++i) arguments.push_back(sample(f, generator));
    double worst = 0, at = 0;
    for (double x : arguments) {
      const double e = ulp_error(f, x, f.number(x));
      if (e > worst) worst = e, at = x;
    }
    EXPECT_LE(worst, f.bound) << f.name << " at " << std::hexfloat << at;
    RecordProperty(f.name, std::to_string(worst));
    std::printf("%s: at most %.4f ulp in %zu arguments, at %a\n", f.name, worst, arguments.size(), at);
  }
}

// The doubles nearest to multiples of pi/2 leave the least after reduction; MPFR finds them.
TEST(Elementary, ReducesNextToMultiplesOfHalfPi) {
  mpfr_t half_pi, multiple;
  mpfr_init2(half_pi, 200);
  mpfr_init2(multiple, 200);
  mpfr_const_pi(half_pi, MPFR_RNDN);
  mpfr_div_2ui(half_pi, half_pi, 1, MPFR_RNDN);
  for (const auto& f : functions) {
    if (f.range.high != 0x1p20) continue;
    double worst = 0, at = 0;
    for (unsigned long n = 1; n <= 667000; n += n < 2000 ? 1 : 97) {
      mpfr_mul_ui(multiple, half_pi, n, MPFR_RNDN);
      const double x = mpfr_get_d(multiple, MPFR_RNDN);
      const double e = ulp_error(f, x, f.number(x));
      if (e > worst) worst = e, at = x;
    }
    EXPECT_LE(worst, f.bound) << f.name << " at " << std::hexfloat << at;
  }
  mpfr_clear(half_pi);
  mpfr_clear(multiple);
}

TEST(Elementary, KeepsTheSignOfZero) {
  int seen = 0;
  for (const auto& f : functions) {
    if (!f.odd) continue;
    ++seen;
    for (double zero : {0.0, -0.0}) {
      EXPECT_EQ(std::bit_cast<uint64_t>(f.number(zero)), std::bit_cast<uint64_t>(zero)) << f.name;
      EXPECT_EQ(std::bit_cast<uint64_t>(f.lanes(broadcast<real64_lanes>(zero))[lane_count - 1]),
                std::bit_cast<uint64_t>(zero))
          << f.name;
    }
  }
  EXPECT_EQ(seen, 9);
  EXPECT_EQ(std::bit_cast<uint64_t>(elementary::log(1.0)), 0u);
  EXPECT_EQ(elementary::exp(0.0), 1.0);
  EXPECT_EQ(elementary::cos(-0.0), 1.0);
  EXPECT_EQ(elementary::cosh(-0.0), 1.0);
}

TEST(Elementary, GivesOneLaneTheBitsOfARegister) {
  for (const auto& f : functions) {
    std::mt19937_64 generator(7);
    std::vector<double> arguments = borders(f);
    while (arguments.size() < 400000) arguments.push_back(sample(f, generator));
    arguments.resize(arguments.size() / lane_count * lane_count);
    long different = 0;
    for (size_t i = 0; i < arguments.size(); i += lane_count) {
      const auto y = f.lanes(load<real64_lanes>(&arguments[i]));
      for (int lane = 0; lane < lane_count; ++lane)
        different += std::bit_cast<uint64_t>(static_cast<double>(y[lane])) !=
                     std::bit_cast<uint64_t>(f.number(arguments[i + lane]));
    }
    EXPECT_EQ(different, 0) << f.name;
  }
}

TEST(Elementary, SurvivesAnyBitsInOtherLanes) {
  const double inf = std::numeric_limits<double>::infinity();
  const double odd_ones[] = {std::nan(""), -std::nan(""), inf, -inf, DBL_MAX, -DBL_MAX,
                             5e-324,       -5e-324,       0.0, -1.0, 1e300,   -745.0};
  for (const auto& f : functions) {
    std::mt19937_64 generator(9);
    for (int i = 0; i < 20000; ++i) {
      const double x = sample(f, generator);
      real64_lanes v;
      for (int lane = 0; lane < lane_count; ++lane)
        v[lane] = i % 2 ? std::bit_cast<double>(generator()) : odd_ones[generator() % std::size(odd_ones)];
      v[i % lane_count] = x;
      const double y = f.lanes(v)[i % lane_count];
      ASSERT_EQ(std::bit_cast<uint64_t>(y), std::bit_cast<uint64_t>(f.number(x))) << f.name << " of " << x;
    }
  }
}

}  // namespace
