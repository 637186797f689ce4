// Functions of three arguments: values against exact arithmetic, overflow, shapes, modes, threads and overlap, compensated sums.
//
// Faults it is meant to catch: arguments in another order; a product whose overflow is hidden by the sum; unsigned borrow and
// carry; a fused product that rounds twice (binary16 above all); an element that differs in a register, in a tail, or as a number;
// a difference of 0 or infinity that is divided by unseen; a block that is clean but for a nearly overflowing product; an argument
// overwritten before it is read; positions off by a block or chunk; a running sum that reads its elements too early.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include "Includes/element_types.h"
#include "Includes/real16.h"
#include "support/oracle.h"
#include "velorim/parallel.h"
#include "velorim/tensor_arithmetic.h"

namespace {

constexpr uint32_t fp = MACHFUNC_CHECK_FP, integer = MACHFUNC_CHECK_INTEGER;
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr int32_t products[] = {MachFunc_axpy, MachFunc_axmy, MachFunc_ymax};

template <class T>
mint run(int32_t number, T* r, const T* a, const T* x, const T* y, mint n, uint32_t flags,
         std::array<mint, 4> steps = {1, 1, 1, 1}) {
  constexpr int32_t t = vlm::element_code<T>;
  return MNumericArray_getTernaryVectorMachFunc(number, t, t, t)(r, a, x, y, n, steps.data(), flags);
}
template <class T> int32_t one(int32_t number, T* r, T a, T x, T y, uint32_t flags) {
  constexpr int32_t t = vlm::element_code<T>;
  return MNumericArray_getTernaryScalarMachFunc(number, t, t, t)(r, &a, &x, &y, flags);
}

TEST(TernaryCatalogue, RowsOfEqualTypes) {
  for (const int32_t number : {-1, 0, 287, 512, 513, 514, 515, 516, 517, INT32_MAX}) {
    for (int32_t a = -1; a <= 15; ++a) {
      for (int32_t x = -1; x <= 15; ++x) {
        const bool exists = number >= 513 && number <= 516 && a >= (number == 516 ? 9 : 1) && a <= 13;
        EXPECT_EQ(exists && a == x ? a : 0, MNumericArray_ReturnType3(number, a, x, a));
        EXPECT_EQ(exists && a == x ? a : 0, MNumericArray_ReturnType3(number, a, a, x));
        EXPECT_EQ(exists && a == x, MNumericArray_getTernaryVectorMachFunc(number, a, a, x) != nullptr);
        EXPECT_EQ(exists && a == x, MNumericArray_getTernaryScalarMachFunc(number, x, a, a) != nullptr);
      }
    }
    const int32_t elements[] = {0, 7, 7, 10, 12};
    for (int32_t t = -1; t <= 6; ++t) {
      const int32_t e = t >= 0 && t <= 4 ? elements[t] : 0;
      const bool exists = number >= 513 && number <= 516 && e != 0 && (number != 516 || e != 7);
      EXPECT_EQ(!exists ? 0 : t == 1 ? 2 : t, MTensor_ReturnType3(number, t, t, t));
      EXPECT_EQ(MNumericArray_getTernaryVectorMachFunc(number, e, e, e),
                MTensor_getTernaryVectorMachFunc(number, t, t, t));
      EXPECT_EQ(MNumericArray_getTernaryScalarMachFunc(number, e, e, e),
                MTensor_getTernaryScalarMachFunc(number, t, t, t));
    }
  }
  EXPECT_EQ(2, MTensor_ReturnType3(513, 1, 1, 1));
  EXPECT_EQ(2, MTensor_ReturnType3(513, 1, 2, 2));
  EXPECT_EQ(4, MTensor_ReturnType3(516, 4, 4, 4));
  EXPECT_EQ(0, MTensor_ReturnType3(516, 2, 2, 2));
}

// ---- Integers.

/// The exact result by wide arithmetic: whether product and result fit, and the wrapped result.
template <class T> bool exact(int32_t number, T a, T x, T y, T* wrapped) {
  using U = std::make_unsigned_t<T>;
  using wide = std::conditional_t<std::is_signed_v<T>, __int128, unsigned __int128>;
  const wide p = static_cast<wide>(a) * static_cast<wide>(x);
  const auto cut = static_cast<T>(static_cast<U>(p));
  const __int128 q = cut, w = y;
  const __int128 r = number == MachFunc_axpy ? q + w : number == MachFunc_axmy ? q - w : w - q;
  *wrapped = static_cast<T>(static_cast<U>(r));
  return p == static_cast<wide>(cut) && r >= std::numeric_limits<T>::min() &&
         r <= std::numeric_limits<T>::max();
}

template <class T> std::vector<T> integer_samples(size_t random, std::mt19937_64& engine) {
  constexpr T least = std::numeric_limits<T>::min(), most = std::numeric_limits<T>::max();
  const T root = static_cast<T>(T{1} << (std::numeric_limits<T>::digits / 2));
  std::vector<T> s = {least,
                      static_cast<T>(least + 1),
                      static_cast<T>(least / 2),
                      static_cast<T>(-2),
                      static_cast<T>(-1),
                      0,
                      1,
                      2,
                      3,
                      static_cast<T>(most / 2),
                      static_cast<T>(most / 2 + 1),
                      static_cast<T>(most - 1),
                      most,
                      root,
                      static_cast<T>(root - 1),
                      static_cast<T>(root + 1),
                      static_cast<T>(2 * root - 1)};
  for (size_t i = 0; i < random; ++i) s.push_back(static_cast<T>(engine() >> (engine() % 64)));
  return s;
}

/// Three vectors through the scalar kernels and, up to every failure, through the vector kernels.
template <class T>
void expect_exact(int32_t number, const std::vector<T>& a, const std::vector<T>& x, const std::vector<T>& y) {
  const size_t n = a.size();
  std::vector<T> wrapped(n), plain(n), checked(n, T{77});
  std::vector<bool> fits(n);
  for (size_t i = 0; i < n; ++i) {
    fits[i] = exact(number, a[i], x[i], y[i], &wrapped[i]);
    T r = 77;
    ASSERT_EQ(fits[i] ? 0 : 1, one(number, &r, a[i], x[i], y[i], integer | fp));
    ASSERT_EQ(fits[i] ? wrapped[i] : T{77}, r);
  }
  ASSERT_EQ(0, run(number, plain.data(), a.data(), x.data(), y.data(), static_cast<mint>(n), fp));
  ASSERT_EQ(wrapped, plain);
  std::vector<T> expected(n, T{77});
  for (size_t first = 0; first < n;) {
    const mint position =
        run(number, &checked[first], &a[first], &x[first], &y[first], static_cast<mint>(n - first), integer);
    const size_t good = position == 0 ? n : first + static_cast<size_t>(position) - 1;
    for (size_t i = first; i < good; ++i) {
      ASSERT_TRUE(fits[i]) << number << ": " << +a[i] << " " << +x[i] << " " << +y[i];
      expected[i] = wrapped[i];
    }
    if (good < n) {
      ASSERT_FALSE(fits[good]) << number << ": " << +a[good] << " " << +x[good] << " " << +y[good];
    }
    first = good + 1;
  }
  ASSERT_EQ(expected, checked);
}

TEST(TernaryIntegers, EverySmallTriple) {
  const auto all = []<class T>(T) {
    std::vector<T> a, x, y;
    for (const int some_a : {-128, -127, -16, -2, -1, 0, 1, 3, 15, 16, 127, 200, 255}) {
      a.clear(), x.clear(), y.clear();
      for (int i = 0; i < 256; ++i) {
        for (int j = 0; j < 256; ++j) {
          a.push_back(static_cast<T>(some_a));
          x.push_back(static_cast<T>(j));
          y.push_back(static_cast<T>(i));
        }
      }
      for (const int32_t number : products) expect_exact(number, a, x, y);
    }
  };
  all(int8_t{});
  all(uint8_t{});
}

TEST(TernaryIntegers, EdgesOfTheWiderTypes) {
  std::mt19937_64 engine(20260406);
  const auto edges = [&engine]<class T>(T) {
    const std::vector<T> s = integer_samples<T>(12, engine);
    std::vector<T> a, x, y;
    for (const T i : s) {
      for (const T j : s) {
        for (const T k : s) a.push_back(i), x.push_back(j), y.push_back(k);
      }
    }
    for (const int32_t number : products) expect_exact(number, a, x, y);
  };
  edges(int16_t{}), edges(uint16_t{}), edges(int32_t{}), edges(uint32_t{}), edges(int64_t{}),
      edges(uint64_t{});
}

TEST(TernaryIntegers, NearlyOverflowingProductsAreNotFailures) {
  // Blocks full of the largest products that fit, with sums that fit too.
  const std::vector<mint> a(1000, INT64_MAX), x(1000, 1), y(1000, -1);
  std::vector<mint> r(1000);
  EXPECT_EQ(0, run<mint>(MachFunc_axpy, r.data(), a.data(), x.data(), y.data(), 1000, integer));
  EXPECT_EQ(std::vector<mint>(1000, INT64_MAX - 1), r);
}

// ---- Reals.

template <class T> std::vector<T> real_samples() {
  constexpr T most = std::numeric_limits<T>::max(), least = std::numeric_limits<T>::denorm_min(),
              inf = std::numeric_limits<T>::infinity(), nan = std::numeric_limits<T>::quiet_NaN();
  std::vector<T> s = {0,
                      -T{0},
                      1,
                      -1,
                      most,
                      -most,
                      least,
                      -least,
                      inf,
                      -inf,
                      nan,
                      -nan,
                      T(1) / 3,
                      std::sqrt(most),
                      std::numeric_limits<T>::min(),
                      T(1) + std::numeric_limits<T>::epsilon(),
                      T(3.5),
                      T(-1e-7)};
  return s;
}

template <class T> bool same(T r, T s) { return std::memcmp(&r, &s, sizeof r) == 0; }
bool is_nan(float r) { return std::isnan(r); }
bool is_nan(double r) { return std::isnan(r); }

template <class T> void expect_fused() {
  const std::vector<T> s = real_samples<T>();
  std::vector<T> a, x, y;
  for (const T i : s) {
    for (const T j : s) {
      for (const T k : s) a.push_back(i), x.push_back(j), y.push_back(k);
    }
  }
  const size_t n = a.size();
  for (const int32_t number : {MachFunc_axpy, MachFunc_axmy, MachFunc_ymax, MachFunc_adxmy}) {
    std::vector<T> r(n);
    EXPECT_EQ(0, run(number, r.data(), a.data(), x.data(), y.data(), static_cast<mint>(n), integer));
    for (size_t i = 0; i < n; ++i) {
      volatile T d = x[i] - y[i];
      const T expected = number == MachFunc_axpy   ? std::fma(a[i], x[i], y[i])
                         : number == MachFunc_axmy ? std::fma(a[i], x[i], -y[i])
                         : number == MachFunc_ymax ? std::fma(-a[i], x[i], y[i])
                                                   : a[i] / d;
      ASSERT_TRUE(is_nan(expected) ? is_nan(r[i]) : same(expected, r[i]))
          << number << ": " << a[i] << " " << x[i] << " " << y[i] << " gives " << r[i];
      T alone = 77;
      const bool fails = !std::isfinite(expected) || (number == MachFunc_adxmy && !std::isfinite(d));
      ASSERT_EQ(fails ? 1 : 0, one(number, &alone, a[i], x[i], y[i], fp));
      ASSERT_TRUE(fails ? alone == 77 : same(alone, r[i]));
    }
  }
}

TEST(TernaryReals, RoundOnce) {
  expect_fused<double>();
  expect_fused<float>();
  // The exact residue of the product.
  double r = 0;
  ASSERT_EQ(0, s_machfunc_ddd_axpy(&r, 1e200, 1e100, -1e300, fp));
  EXPECT_NE(0, r);
  EXPECT_EQ(std::fma(1e200, 1e100, -1e300), r);
  EXPECT_EQ(1, s_machfunc_ddd_axpy(&r, 1e200, 1e200, 0.0, fp));
  EXPECT_EQ(1, s_machfunc_ddd_adxmy(&r, 1.0, 2.0, 2.0, fp));
  EXPECT_EQ(1,
            s_machfunc_ddd_adxmy(&r, 1.0, infinity, 2.0, fp));  // a quotient of 0 by a difference that fails
  EXPECT_EQ(0, s_machfunc_ddd_adxmy(&r, 1.0, infinity, 2.0, 0));
  EXPECT_EQ(0, r);
}

/// The value nearest to an exact one among r and its neighbours must be r, with an even last bit where two are equally near.
TEST(TernaryReals, HalvesRoundOnce) {
  using vlm::real16;
  std::mt19937_64 engine(7);
  const auto number_of = [](real16 h) { return oracle::number(vlm::real16_format::widen(h)); };
  const auto distance = [](const oracle::number& p, const oracle::number& q) {
    oracle::number d = p - q;
    mpfr_abs(d.get(), d.get(), MPFR_RNDN);
    return d;
  };
  for (int trial = 0; trial < 60000; ++trial) {
    real16 v[3];
    for (real16& h : v) {
      h.bits = static_cast<uint16_t>(engine());
      if (!is_finite(h)) h.bits ^= 0x4000;
    }
    if (trial % 4 == 0) {  // close to a midpoint: the product's leading bits meet a tiny or a cancelling y
      v[0].bits = static_cast<uint16_t>((v[0].bits & 0x83FF) | 0x6000);
      v[1].bits = static_cast<uint16_t>((v[1].bits & 0x83FF) | 0x2000);
      v[2].bits = static_cast<uint16_t>(v[2].bits & (trial % 8 == 0 ? 0x8003 : 0xE7FF));
    }
    real16 r;
    ASSERT_EQ(0, one(MachFunc_axpy, &r, v[0], v[1], v[2], 0));
    const oracle::number e = number_of(v[0]) * number_of(v[1]) + number_of(v[2]);
    if (!is_finite(r)) {
      ASSERT_GE(std::fabs(mpfr_get_d(e.get(), MPFR_RNDZ)), 65520.0);
      continue;
    }
    const oracle::number error = distance(number_of(r), e);
    for (const int step : {-1, 1}) {
      real16 neighbour = r;
      if ((r.bits & 0x7FFF) == 0) {
        neighbour.bits = step > 0 ? 1 : 0x8001;
      } else {
        neighbour.bits = static_cast<uint16_t>(r.bits + step);
      }
      if (!is_finite(neighbour)) continue;
      const int order = mpfr_cmp(error.get(), distance(number_of(neighbour), e).get());
      ASSERT_TRUE(order < 0 || (order == 0 && (r.bits & 1) == 0))
          << std::hex << v[0].bits << " " << v[1].bits << " " << v[2].bits << " gives " << r.bits;
    }
  }
  real16 r;
  EXPECT_EQ(0, one(MachFunc_axpy, &r, real16{0x3C01}, real16{0x3C00}, real16{0x0001}, fp));
  EXPECT_EQ(0x3C01, r.bits);
  EXPECT_EQ(1, one(MachFunc_axpy, &r, real16{0x7BFF}, real16{0x7BFF}, real16{0xFBFF}, fp));
  EXPECT_EQ(1, one(MachFunc_axmy, &r, real16{0x7C00}, real16{0x3C00}, real16{0x7C00}, fp));
  EXPECT_EQ(0, one(MachFunc_axmy, &r, real16{0x3C00}, real16{0x3C00}, real16{0x3C00}, fp));
  EXPECT_EQ(0x0000, r.bits);
  EXPECT_EQ(0, one(MachFunc_adxmy, &r, real16{0x3C00}, real16{0x4200}, real16{0x3C00}, fp));  // 1 / (3 - 1)
  EXPECT_EQ(0x3800, r.bits);
}

// ---- Complex numbers.

template <class T> void expect_complex() {
  using part = decltype(T{}.re);
  std::mt19937_64 engine(11);
  std::vector<T> a, x, y;
  constexpr part inf = std::numeric_limits<part>::infinity(), most = std::numeric_limits<part>::max();
  const part special[] = {0, -part{0}, inf, -inf, std::numeric_limits<part>::quiet_NaN(), most, 1, 2};
  const auto draw = [&](size_t i) {
    const auto some = [&]() -> part {
      return i % 3 == 0 ? special[engine() % 8]
                        : static_cast<part>(static_cast<int>(engine() % 2001) - 1000) / 7;
    };
    return T{some(), some()};
  };
  for (size_t i = 0; i < 4000; ++i) a.push_back(draw(i)), x.push_back(draw(i)), y.push_back(draw(i));
  for (size_t i = 0; i < 100; ++i) {  // quotients that are exact
    const part re = static_cast<part>(engine() % 64), im = static_cast<part>(engine() % 64);
    x.push_back({4, 3}), y.push_back({1, -1}), a.push_back({re * 3 - im * 4, re * 4 + im * 3});
  }
  const size_t n = a.size();
  std::vector<T> r(n);
  for (const int32_t number : {MachFunc_axpy, MachFunc_axmy, MachFunc_ymax, MachFunc_adxmy}) {
    EXPECT_EQ(0, run(number, r.data(), a.data(), x.data(), y.data(), static_cast<mint>(n), 0));
    for (size_t i = 0; i < n; ++i) {
      T alone;
      ASSERT_EQ(0, one(number, &alone, a[i], x[i], y[i], 0));
      for (const auto& [in_vector, as_number] :
           {std::pair{r[i].re, alone.re}, std::pair{r[i].im, alone.im}}) {
        ASSERT_TRUE(is_nan(as_number) ? is_nan(in_vector) : same(in_vector, as_number))
            << number << " element " << i;
      }
      bool fails = !std::isfinite(alone.re) || !std::isfinite(alone.im);
      if (number == MachFunc_adxmy) {
        fails = fails || !std::isfinite(x[i].re - y[i].re) || !std::isfinite(x[i].im - y[i].im);
        if (i >= 4000) {
          ASSERT_EQ(a[i].re * 25, (r[i].re * 3 - r[i].im * 4) * 25);
        }
      } else {
        volatile part p[] = {a[i].re * x[i].re, a[i].im * x[i].im, a[i].re * x[i].im, a[i].im * x[i].re};
        volatile part re = p[0] - p[1], im = p[2] + p[3];
        const T expected = number == MachFunc_axpy   ? T{re + y[i].re, im + y[i].im}
                           : number == MachFunc_axmy ? T{re - y[i].re, im - y[i].im}
                                                     : T{y[i].re - re, y[i].im - im};
        ASSERT_TRUE(is_nan(expected.re) ? is_nan(r[i].re) : same(expected.re, r[i].re)) << number << " " << i;
        ASSERT_TRUE(is_nan(expected.im) ? is_nan(r[i].im) : same(expected.im, r[i].im)) << number << " " << i;
      }
      ASSERT_EQ(fails ? 1 : 0, one(number, &alone, a[i], x[i], y[i], fp)) << number << " " << i;
    }
  }
  T pole;
  ASSERT_EQ(0, one(MachFunc_adxmy, &pole, T{1, 0}, T{2, 1}, T{2, 1}, 0));
  EXPECT_TRUE(std::isinf(pole.re));
}

TEST(TernaryComplex, ByParts) {
  expect_complex<mcomplex>();
  expect_complex<vlm::complex_real32>();
}

/// Runs of ordinary numbers raise nothing, whatever the registers do on the way; one pole among them is seen.
TEST(TernaryComplex, FlagsOfQuotients) {
  for (const mint n : {1, 7, 8, 9, 513}) {
    std::vector<mcomplex> a(static_cast<size_t>(n), {1, 2}), x(a.size(), {3, 4}), y(a.size(), {1, 1e-300}),
        r(a.size());
    EXPECT_EQ(0, run(MachFunc_adxmy, r.data(), a.data(), x.data(), y.data(), n, fp));
    y.back() = x.back();
    EXPECT_EQ(1, run(MachFunc_adxmy, r.data(), a.data(), x.data(), y.data(), n, fp));
    EXPECT_EQ(n, run(MachFunc_adxmy, a.data(), a.data(), x.data(), y.data(), n, fp));
    EXPECT_EQ(1, a.back().re);
    y.back() = {std::numeric_limits<double>::quiet_NaN(), 0};  // quiet, passing through
    EXPECT_EQ(0, run(MachFunc_adxmy, r.data(), x.data(), x.data(), y.data(), n, fp));
  }
}

// ---- The frame.

TEST(TernaryFrame, StridesAndOverlap) {
  std::mt19937_64 engine(5);
  for (int trial = 0; trial < 3000; ++trial) {
    const mint n = trial % 50 == 0 ? 1300 : static_cast<mint>(engine() % 20);
    std::vector<double> memory(8000);
    for (double& v : memory) v = static_cast<double>(engine() % 1000);
    std::array<mint, 4> steps, starts;
    for (size_t i = 0; i < 4; ++i) {
      steps[i] = trial % 5 == 0 ? 1 : static_cast<mint>(engine() % 4) - 1;
      if (i == 0 && steps[0] == 0) steps[0] = 1;
      starts[i] = 4000 + static_cast<mint>(engine() % 7);
    }
    std::vector<double> expected = memory;
    for (mint i = 0; i < n; ++i) {
      const auto at = [&](size_t k) { return memory[static_cast<size_t>(starts[k] + i * steps[k])]; };
      expected[static_cast<size_t>(starts[0] + i * steps[0])] = at(1) * at(2) - at(3);
    }
    ASSERT_EQ(0, run(MachFunc_axmy, &memory[static_cast<size_t>(starts[0])],
                     &memory[static_cast<size_t>(starts[1])], &memory[static_cast<size_t>(starts[2])],
                     &memory[static_cast<size_t>(starts[3])], n, fp, steps));
    ASSERT_EQ(expected, memory) << trial;
  }
}

TEST(TernaryFrame, ModesAndThreads) {
  constexpr size_t n = 9000;
  const mint threads = setParallelThreadNumber(4);
  setVectorParallelLengthThreshold(3, 8192);
  for (const size_t failing : {size_t{0}, size_t{511}, size_t{512}, size_t{5000}, size_t{8191}, n - 1}) {
    std::vector<double> a(n, 2), x(n, 3), y(n, 1), r(n, -99);
    x[failing] = 1e308, a[failing] = 1e308;
    const size_t chunk = failing / 4096 * 4096;
    EXPECT_EQ(static_cast<mint>(chunk) + 1,
              run(MachFunc_axpy, r.data(), a.data(), x.data(), y.data(), n, fp));
    EXPECT_EQ(infinity, r[failing]);
    EXPECT_EQ(0, run(MachFunc_axpy, r.data(), a.data(), x.data(), y.data(), n, integer));
    EXPECT_EQ(7, r[n - 2]);
    for (std::vector<double>* in_place : {&a, &x, &y}) {
      std::vector<double> before = *in_place;
      EXPECT_EQ(static_cast<mint>(failing) + 1,
                run(MachFunc_axpy, in_place->data(), a.data(), x.data(), y.data(), n, fp));
      for (size_t i = 0; i < n; ++i) ASSERT_EQ(i < failing ? 7 : before[i], (*in_place)[i]);
      *in_place = before;
    }
    std::vector<mint> ia(n, 2), ix(n, 3), iy(n, 1), ir(n, -99);
    ia[failing] = INT64_MIN;
    EXPECT_EQ(static_cast<mint>(failing) + 1,
              run(MachFunc_ymax, ir.data(), ia.data(), ix.data(), iy.data(), n, integer));
    for (size_t i = 0; i < failing; ++i) ASSERT_EQ(-5, ir[i]);
    EXPECT_EQ(-99, ir[failing]);
  }
  restoreParallelThreadNumber(threads);
}

// ---- Compensated addition.

TEST(CompensatedAddition, CarriesWhatIsLost) {
  double sum = 0, lost = 0;
  EXPECT_EQ(0, s_machfunc_ddd_compplus(&sum, &lost, 1e16, 1.0, fp));
  EXPECT_EQ(1e16, sum);
  EXPECT_EQ(1.0, lost);
  EXPECT_EQ(1, s_machfunc_ddd_compplus(&sum, &lost, infinity, 1.0, fp));
  EXPECT_EQ(1e16, sum);
  EXPECT_EQ(0, s_machfunc_ddd_compplus(&sum, &lost, infinity, 1.0, integer));
  EXPECT_EQ(infinity, sum);

  // A running sum: result and a one place, c one place.
  std::vector<double> b(1000, 1.0);
  b.insert(b.begin(), 1e16);
  const mint running[4] = {0, 0, 1, 0};
  sum = lost = 0;
  EXPECT_EQ(0, machfunc_ddd_compplus(&sum, &sum, b.data(), &lost, 1001, running, fp));
  EXPECT_EQ(1e16 + 1000, sum + lost);

  // Apart, with a stop at the failing element.
  std::vector<mcomplex> r(4, {-9, -9}), a = {{1e16, 2}, {1, 1e16}, {1, infinity}, {1, 1}}, c(4, {0, 0}),
                                        d(4, {1, 1});
  EXPECT_EQ(3, machfunc_ccc_compplus(r.data(), a.data(), d.data(), c.data(), 4, UnitIncrements, fp));
  EXPECT_EQ(1e16, r[0].re);
  EXPECT_EQ(1, c[0].re);
  EXPECT_EQ(3, r[0].im);
  EXPECT_EQ(1, c[1].im);
  EXPECT_EQ(-9, r[2].re);
  EXPECT_EQ(0, c[2].re);
  EXPECT_EQ(-9, r[3].re);
  mcomplex z = {5, 5}, w = {0, 0};
  EXPECT_EQ(1, s_machfunc_ccc_compplus(&z, &w, {1, infinity}, {1, 1}, fp));
  EXPECT_EQ(5, z.re);
  EXPECT_EQ(0, s_machfunc_ccc_compplus(&z, &w, {1e16, 1}, {1, 1}, fp));
  EXPECT_EQ(1, w.re);
  EXPECT_EQ(2, z.im);
}

}  // namespace
