// Accuracy of the complex functions on ComplexReal64 and ComplexReal32 against a multiple-precision oracle.
//
// Faults it is meant to catch: a formula that cancels somewhere in the plane (near zeros, poles and branch points, on the unit
// circle, on the axes); a wrong side of a cut; the border between the register form and the ladder of special cases, and between
// the steps of the ladder; overflow or underflow on the way to a result that the type holds.
//
// The measured maxima of docs/accuracy.md come from the disabled test at the end: see scripts/measure_accuracy.
#include <gtest/gtest.h>

#include <cstdio>
#include <random>
#include <set>
#include <string>

#include "Arithmetic/Kernels/complex_functions.h"
#include "Arithmetic/unary_table.h"
#include "Includes/vlm_fp_exception.h"

namespace {

using namespace vlm;
using complex_functions::entry;
using oracle::complex_number;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int samples = 2;
#else
constexpr int samples = 10;
#endif

template <class T> struct point { T re, im; };
template <class T>
using element_for = std::conditional_t<std::is_same_v<T, double>, mcomplex, complex_real32>;

/// The plane by kinds of places, `count` points of each.
template <class T> std::vector<point<T>> points(int count, uint64_t seed) {
  using limits = std::numeric_limits<T>;
  std::mt19937_64 random(seed);
  std::vector<point<T>> zs;
  const auto unit = [&] { return static_cast<double>(random() >> 11) * 0x1p-52 - 1; };
  const auto of_size = [&](int low, int high) {
    return std::ldexp(1 + std::fabs(unit()),
                      low + static_cast<int>(random() % static_cast<uint64_t>(high - low))) *
           (random() % 2 != 0 ? 1 : -1);
  };
  const auto add = [&](double x, double y) {
    const point<T> z = {static_cast<T>(x), static_cast<T>(y)};
    if (std::isfinite(z.re) && std::isfinite(z.im) && (z.re != 0 || z.im != 0)) zs.push_back(z);
  };
  constexpr int least = limits::min_exponent - limits::digits, most = limits::max_exponent - 1;
  constexpr double half_pi = 1.5707963267948966;
  const double largest_exponent = std::is_same_v<T, double> ? 709.78 : 88.72;
  for (int i = 0; i < count; ++i) {
    add(10 * unit(), 10 * unit());
    add(of_size(-40, 10), of_size(-40, 10));
    add(of_size(least, most), of_size(least, most));
    add(of_size(least, most), 4 * unit());
    add(4 * unit(), of_size(least, most));
    // Both sides of the axes, and the axes.
    const double tiny = of_size(least, -20);
    add(4 * unit(), tiny);
    add(tiny, 4 * unit());
    add(4 * unit(), random() % 2 != 0 ? 0.0 : -0.0);
    add(0.0, 4 * unit());
    // Around 1, -1, i, -i; the unit circle, on which |z| - 1 is as small as the type can tell.
    const double sign = random() % 2 != 0 ? 1 : -1, small = of_size(-60, -1), other = of_size(-60, -1);
    add(sign + small, other);
    add(small, sign + other);
    const double angle = 4 * unit();
    add(std::cos(angle), std::sin(angle));
    add((1 + small) * std::cos(angle), (1 + small) * std::sin(angle));
    // Around multiples of pi / 2 on either axis: zeros and poles.
    const double turn = half_pi * static_cast<double>(static_cast<int64_t>(random() % 64) - 32);
    add(turn + small, other);
    add(small, turn + other);
    add(turn, other);
    // Where exponentials overflow and vanish; large angles.
    add(sign * (largest_exponent + 4 * unit()), 10 * unit());
    add(10 * unit(), sign * (largest_exponent + 4 * unit()));
    add(2 * largest_exponent * unit(), 2 * largest_exponent * unit());
    add(of_size(15, 40), 3 * unit());
    add(3 * unit(), of_size(15, 40));
  }
  return zs;
}

template <class T> point<T> value(const entry& e, point<T> z) {
  const element_for<T> x = {z.re, z.im};
  element_for<T> w{};
  EXPECT_EQ(0, MNumericArray_getUnaryScalarMachFunc(e.number_of, element_code<element_for<T>>)(&w, &x, 0));
  return {w.re, w.im};
}

/// The error of a part in ulps; none of a zero, of a part below the normal numbers, and of one so small beside the other that the
/// oracle itself may have lost it.
template <class T> double part_error(T computed, mpfr_srcptr exact, const complex_number& whole) {
  const double least = std::max(static_cast<double>(std::numeric_limits<T>::min_exponent),
                                oracle::log2_magnitude(whole) - 150);
  if (mpfr_zero_p(exact) || static_cast<double>(mpfr_get_exp(exact)) < least) return 0;
  oracle::number part;
  mpfr_set(part.get(), exact, MPFR_RNDN);
  return oracle::ulp_error(computed, part);
}

struct worst_errors {
  double norm = 0, part = 0;
  double norm_re = 0, norm_im = 0, part_re = 0, part_im = 0;
};

template <class T> worst_errors measure(const entry& e, int count) {
  worst_errors worst;
  const double most = std::numeric_limits<T>::max_exponent - 1;
  for (const point<T>& z : points<T>(count, static_cast<uint64_t>(e.number_of) * 77)) {
    const complex_number argument(z.re, z.im);
    const complex_number exact = e.exact(argument);
    // Not where the result or a step of it leaves the type.
    if (!oracle::is_finite(exact) || oracle::log2_magnitude(exact) > most) continue;
    const point<T> w = value(e, z);
    const double growth = e.growth == nullptr ? 1 : e.growth(e, argument, exact, most);
    if (std::isinf(growth)) continue;
    const double norm = oracle::norm_error(w.re, w.im, exact) / growth;
    if (!(norm <= worst.norm)) {
      worst.norm = std::isnan(norm) ? std::numeric_limits<double>::infinity() : norm;
      worst.norm_re = z.re;
      worst.norm_im = z.im;
    }
    if (e.part_bound64 == 0) continue;
    const double part = std::max(part_error(w.re, exact.re(), exact), part_error(w.im, exact.im(), exact));
    if (part > worst.part) {
      worst.part = part;
      worst.part_re = z.re;
      worst.part_im = z.im;
    }
  }
  return worst;
}

class ComplexAccuracy : public testing::TestWithParam<entry> {};

template <class T> void within_bounds(const entry& e, double bound, double part_bound) {
  const worst_errors worst = measure<T>(e, samples);
  EXPECT_LE(worst.norm, bound) << "at " << std::hexfloat << worst.norm_re << " " << worst.norm_im
                               << std::defaultfloat << " = " << worst.norm_re << " " << worst.norm_im;
  EXPECT_LE(worst.part, part_bound) << "part, at " << std::hexfloat << worst.part_re << " " << worst.part_im
                                    << std::defaultfloat << " = " << worst.part_re << " " << worst.part_im;
}
TEST_P(ComplexAccuracy, ComplexReal64WithinBound) {
  within_bounds<double>(GetParam(), GetParam().bound64, GetParam().part_bound64);
}
TEST_P(ComplexAccuracy, ComplexReal32WithinBound) {
  within_bounds<float>(GetParam(), GetParam().bound32, GetParam().part_bound32);
}
INSTANTIATE_TEST_SUITE_P(Functions, ComplexAccuracy, testing::ValuesIn(complex_functions::all()),
                         [](const auto& e) { return std::string(e.param.name); });

TEST(ComplexAccuracyTable, DISABLED_Print) {
  constexpr int many = 200;
  for (const entry& e : complex_functions::all()) {
    const worst_errors in64 = measure<double>(e, many), in32 = measure<float>(e, many);
    std::printf("| `%s` | %g | %.2f | %g | %.2f |", e.name, e.bound64, in64.norm, e.bound32, in32.norm);
    if (e.part_bound64 != 0) {
      std::printf(" %g | %.2f | %g | %.2f |\n", e.part_bound64, in64.part, e.part_bound32, in32.part);
    } else {
      std::printf(" | | | |\n");
    }
    std::fflush(stdout);
  }
}

/// For scripts/plot_complex_accuracy: a line for a function with the largest error of a few points in each cell of the plane, from
/// the lower left corner on, row by row.
TEST(ComplexAccuracyPlane, DISABLED_Print) {
  constexpr int cells = 80, points_in_cell = 4;
  constexpr double reach = 4;
  std::mt19937_64 random(1);
  for (const entry& e : complex_functions::all()) {
    const std::string name = e.name;
    if (!std::set<std::string>{"exp", "log", "sqrt", "tan", "asin", "atanh"}.contains(name)) continue;
    std::printf("plane %s %d %g", e.name, cells, reach);
    for (int cell = 0; cell < cells * cells; ++cell) {
      double worst = 0;
      for (int i = 0; i < points_in_cell; ++i) {
        const auto within = [&](int k) {
          return reach * (2 * (k + static_cast<double>(random() >> 11) * 0x1p-53) / cells - 1);
        };
        const point<double> z = {within(cell % cells), within(cell / cells)};
        const point<double> w = value(e, z);
        worst = std::max(worst, oracle::norm_error(w.re, w.im, e.exact(complex_number(z.re, z.im))));
      }
      std::printf(" %.2f", worst);
    }
    std::printf("\n");
  }
}

}  // namespace
