// Accuracy of the real functions on Real64 and Real32 against a multiple-precision oracle.
//
// Faults it is meant to catch: a function outside its bound anywhere in its domain, above all just inside and
// outside the limit where a register form gives way to the library's (where the two could differ by more than
// rounding), at subnormal arguments and results, and after argument reduction of large angles; a function that has
// no entry in the oracle's table and so was never looked at; the real Fibonacci and Lucas numbers with constants
// that are not those of the element type.
//
// The measured maxima of docs/accuracy.md come from the disabled test at the end: see scripts/measure_accuracy.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <random>
#include <set>

#include "Arithmetic/Kernels/ordinary_ranges.h"
#include "Arithmetic/Kernels/real_functions.h"
#include "Arithmetic/unary_table.h"

namespace {

using namespace vlm;
using real_functions::golden_terms;
using vlm::ordinary_range;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int samples = 60;
#else
constexpr int samples = 500;
#endif
constexpr int edge_steps = 40;

/// Every argument that a function is tried at: ends of its intervals, uniform and log-uniform samples in them, the
/// neighbourhood of the limits of its ordinary range.
template <class T> std::vector<T> arguments_of(const real_functions::entry& e, int count) {
  using limits = std::numeric_limits<T>;
  std::vector<T> xs;
  std::mt19937_64 random(static_cast<uint64_t>(e.number_of) * 1000003);
  constexpr bool single = std::is_same_v<T, float>;
  const double most = single && e.most32 != 0 ? e.most32 : static_cast<double>(limits::max());
  const double least = single ? e.least32 : 0;
  const auto wanted = [&](double x) {
    return std::abs(x) <= most && std::abs(x) >= least &&
           std::any_of(e.where.begin(), e.where.end(), [x](auto w) { return x >= w.low && x <= w.high; });
  };
  const auto add = [&](double x) {
    if (std::abs(x) > most) return;
    const T rounded = static_cast<T>(x);
    if (wanted(rounded)) xs.push_back(rounded);
  };
  const auto unit = [&] { return static_cast<double>(random() >> 11) * 0x1p-53; };
  constexpr int exponents = limits::max_exponent - limits::min_exponent + limits::digits + 1;
  for (const auto& w : e.where) {
    const double low = std::max(w.low, -most), high = std::min(w.high, most);
    add(low);
    add(high);
    for (int i = 0; i < count; ++i) {
      const double share = unit();
      add(low * (1 - share) + high * share);
      const double sign = random() & 1 ? 1 : -1;
      const auto exponent = static_cast<int>(random() % exponents) + limits::min_exponent - limits::digits;
      add(sign * std::ldexp(1 + unit(), exponent));
      add(sign * std::ldexp(1 + unit(), static_cast<int>(random() % 24) - 16));
    }
  }
  for (const double tiny : {limits::denorm_min(), limits::min(), std::nextafter(limits::min(), T(0))}) {
    add(tiny);
    add(-tiny);
  }
  if (const auto ranges = ordinary_ranges<T>(); ranges.contains(e.number_of)) {
    const ordinary_range range = ranges.at(e.number_of);
    for (const double edge : {range.low, range.high, -range.low, -range.high}) {
      T x = static_cast<T>(edge);
      for (int i = 0; i < edge_steps; ++i) x = std::nextafter(x, -limits::infinity());
      for (int i = 0; i < 2 * edge_steps; ++i, x = std::nextafter(x, limits::infinity())) add(x);
    }
  }
  return xs;
}

template <class T> T value(int32_t number_of, T x) {
  T y{};
  EXPECT_EQ(0, MNumericArray_getUnaryScalarMachFunc(number_of, element_code<T>)(&y, &x, 0));
  return y;
}

struct worst_error {
  double ulps = 0, at = 0;
};
template <class T> worst_error measure(const real_functions::entry& e, int count) {
  worst_error worst;
  for (const T x : arguments_of<T>(e, count)) {
    const double ulps = oracle::ulp_error(value(e.number_of, x), e.exact(oracle::number(x)));
    if (ulps > worst.ulps) worst = {ulps, x};
  }
  return worst;
}

class Accuracy : public testing::TestWithParam<real_functions::entry> {};

TEST_P(Accuracy, Real64WithinBound) {
  const worst_error worst = measure<double>(GetParam(), samples);
  EXPECT_LE(worst.ulps, GetParam().bound64) << "at " << std::hexfloat << worst.at;
}
TEST_P(Accuracy, Real32WithinBound) {
  const worst_error worst = measure<float>(GetParam(), samples);
  EXPECT_LE(worst.ulps, GetParam().bound32) << "at " << std::hexfloat << worst.at;
}
INSTANTIATE_TEST_SUITE_P(Functions, Accuracy, testing::ValuesIn(real_functions::all()),
                         [](const auto& entry) { return std::string(entry.param.name); });

/// Error of the real Fibonacci and Lucas numbers in units in the last place of their larger term.
template <class T> worst_error measure_additive(bool lucas, int count) {
  worst_error worst;
  std::mt19937_64 random(68);
  const double reach = std::is_same_v<T, double> ? 1450 : 180;
  for (int i = 0; i < count; ++i) {
    const double share = static_cast<double>(random() >> 11) * 0x1p-52 - 1;
    const T x = static_cast<T>((i % 2 != 0 ? reach : 20.0) * share);
    const golden_terms<T> terms((oracle::number(x)));
    const oracle::number exact = lucas ? terms.lucas() : terms.fibonacci();
    const oracle::number larger = mpfr_cmpabs(terms.p.get(), terms.q.get()) >= 0 ? terms.p : terms.q;
    const oracle::number scale = lucas ? larger : larger / oracle::number(static_cast<T>(2.23606797749979));
    const mpfr_exp_t unit = mpfr_get_exp(scale.get()) - std::numeric_limits<T>::digits;
    oracle::number error = exact - oracle::number(value(lucas ? 69 : 68, x));
    mpfr_mul_2si(error.get(), error.get(), -unit, MPFR_RNDN);
    const double ulps = std::abs(mpfr_get_d(error.get(), MPFR_RNDN));
    if (ulps > worst.ulps) worst = {ulps, x};
  }
  return worst;
}
constexpr double additive_bound = 4;

TEST(AdditiveAccuracy, WithinBoundOfTheLargerTerm) {
  for (const bool lucas : {false, true}) {
    const worst_error in64 = measure_additive<double>(lucas, 10 * samples);
    const worst_error in32 = measure_additive<float>(lucas, 10 * samples);
    EXPECT_LE(in64.ulps, additive_bound) << lucas << " at " << in64.at;
    EXPECT_LE(in32.ulps, additive_bound) << lucas << " at " << in32.at;
  }
}

/// Every function whose value is not exact by construction is measured above.
TEST(Accuracy, EveryRoundedFunctionIsMeasured) {
  std::set<std::string> measured{"fibonacci", "lucasl", "abssquare"};
  for (const auto& e : real_functions::all()) measured.insert(e.name);
  const std::set<std::string> exact = {"abs",     "conj", "re",   "minus",   "fracpart",
                                       "realabs", "ramp", "mod1", "triangle"};
  for (const auto& row : unary_table::rows) {
    const bool rounded = row.on_reals == '=' && !exact.contains(row.name);
    EXPECT_EQ(rounded, measured.contains(row.name)) << row.name;
  }
}

TEST(AccuracyTable, DISABLED_Print) {
  constexpr int many = 8000;
  const auto line = [](const char* name, double b64, worst_error w64, double b32, worst_error w32) {
    std::printf("| `%s` | %g | %.3f | %g | %.3f |\n", name, b64, w64.ulps, b32, w32.ulps);
    std::fflush(stdout);
  };
  for (const auto& e : real_functions::all()) {
    line(e.name, e.bound64, measure<double>(e, many), e.bound32, measure<float>(e, many));
  }
  for (const bool lucas : {false, true}) {
    line(lucas ? "lucasl" : "fibonacci", additive_bound, measure_additive<double>(lucas, 5 * many),
         additive_bound, measure_additive<float>(lucas, 5 * many));
  }
}

}  // namespace
