// Faults it is meant to catch: an element type in another's precision or width; overflow looked for in the wrong sum, or found a
// block too late or too early; the most negative integer; binary16 rounded at the end only; statuses that leave a result.
#include <gtest/gtest.h>

#include <cerrno>
#include <cfenv>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include "Includes/element_types.h"
#include "Includes/real16.h"
#include "velorim/machine_functions.h"
#include "velorim/norms.h"

namespace {

constexpr mint infinite = std::numeric_limits<mint>::max();

template <class T>
int32_t norm_of_array(void* result, mint p, std::vector<T>& x, mint stride, uint32_t flags) {
  MNumericArray array{};
  array.elementType = static_cast<uint32_t>(vlm::element_code<T>);
  array.flattenedLength = static_cast<mint>(x.size());
  array.data = x.data();
  return MTensor_vector_norm(result, p, &array, stride, flags);
}

template <class T> class IntegerNorms : public testing::Test {};
using integer_types =
    testing::Types<int8_t, uint8_t, int16_t, uint16_t, int32_t, uint32_t, int64_t, uint64_t>;
TYPED_TEST_SUITE(IntegerNorms, integer_types);

TYPED_TEST(IntegerNorms, AgreeWithWideArithmetic) {
  using T = TypeParam;
  using U = std::make_unsigned_t<T>;
  constexpr auto most = std::numeric_limits<T>::max();
  std::mt19937_64 engine(5);
  int overflows = 0, fits = 0;
  for (const size_t n : {0, 1, 2, 33, 1024, 1025, 3000}) {
    for (int bits = 0; bits <= static_cast<int>(8 * sizeof(T)); ++bits) {
      for (const mint stride : {1, -1, 0}) {
        std::vector<T> x(n);
        for (T& e : x) {
          const uint64_t random = bits == 0 ? 0 : engine() >> (64 - bits);
          e = static_cast<T>((engine() & 1) != 0 ? random : 0 - random);
        }
        unsigned __int128 total = 0, largest = 0;
        for (size_t i = 0; i < n; ++i) {
          const T e = stride == 0 ? x[0] : x[i];
          const unsigned __int128 magnitude = e < 0 ? -static_cast<__int128>(e) : static_cast<__int128>(e);
          total += magnitude;
          largest = std::max(largest, magnitude);
        }
        T got = 42;
        EXPECT_EQ(norm_of_array(&got, 1, x, stride, MACHFUNC_CHECK_FP), 0);
        EXPECT_EQ(static_cast<U>(got), static_cast<U>(total));
        got = 42;
        const bool total_fits = total <= static_cast<unsigned __int128>(most);
        ++(total_fits ? fits : overflows);
        EXPECT_EQ(norm_of_array(&got, 1, x, stride, MACHFUNC_CHECK_INTEGER),
                  total_fits ? 0 : ArrayStatusArithmetic)
            << n << ' ' << bits << ' ' << stride;
        EXPECT_EQ(got, total_fits ? static_cast<T>(total) : 42);
        got = 42;
        const bool largest_fits = largest <= static_cast<unsigned __int128>(most);
        EXPECT_EQ(norm_of_array(&got, infinite, x, stride, 0), largest_fits ? 0 : ArrayStatusArithmetic);
        EXPECT_EQ(got, largest_fits ? static_cast<T>(largest) : 42);
        EXPECT_EQ(norm_of_array(&got, 2, x, stride, 0), ArrayStatusBadNormOrder);
      }
    }
  }
  EXPECT_GT(overflows, 10);
  EXPECT_GT(fits, 10);
}

TYPED_TEST(IntegerNorms, KnownEdges) {
  using T = TypeParam;
  constexpr T most = std::numeric_limits<T>::max(), least = std::numeric_limits<T>::min();
  T got = 42;
  // The sum reaches the end of the range exactly, then passes it with the last element.
  std::vector<T> x(1500, 0);
  x[3] = static_cast<T>(most - 1);
  x[1499] = 1;
  EXPECT_EQ(norm_of_array(&got, 1, x, 1, MACHFUNC_CHECK_INTEGER), 0);
  EXPECT_EQ(got, most);
  x[1498] = 1;
  EXPECT_EQ(norm_of_array(&got, 1, x, 1, MACHFUNC_CHECK_INTEGER), ArrayStatusArithmetic);
  if constexpr (std::is_signed_v<T>) {
    std::vector<T> y = {least};
    got = 42;
    EXPECT_EQ(norm_of_array(&got, infinite, y, 1, 0), ArrayStatusArithmetic);
    EXPECT_EQ(norm_of_array(&got, 1, y, 1, MACHFUNC_CHECK_INTEGER), ArrayStatusArithmetic);
    EXPECT_EQ(got, 42);
    EXPECT_EQ(norm_of_array(&got, 1, y, 1, 0), 0);
    EXPECT_EQ(got, least);
  }
}

TEST(RealNorms, AreInTheirOwnPrecision) {
  std::mt19937_64 engine(6);
  std::uniform_real_distribution<float> distribution(-1, 1);
  for (const size_t n : {5, 32, 33, 700}) {
    std::vector<float> x(n);
    std::vector<vlm::complex_real32> z(n);
    float sum = 0, complex_sum = 0;
    double squares = 0, complex_squares = 0;
    for (size_t i = 0; i < n; ++i) {
      x[i] = distribution(engine) * 1e20f;  // its square is beyond the range
      z[i] = {distribution(engine) * 1e20f, distribution(engine) * 1e20f};
      sum += std::abs(x[i]);
      complex_sum += static_cast<float>(std::hypot(double{z[i].re}, double{z[i].im}));
      squares += double{x[i]} * x[i];
      complex_squares += double{z[i].re} * z[i].re + double{z[i].im} * z[i].im;
    }
    float got = 0;
    EXPECT_EQ(norm_of_array(&got, 1, x, 1, MACHFUNC_CHECK_FP), 0);
    EXPECT_EQ(got, sum) << n;
    EXPECT_EQ(norm_of_array(&got, 2, x, 1, MACHFUNC_CHECK_FP), 0);
    EXPECT_NEAR(got / std::sqrt(squares), 1, 1e-6 * std::sqrt(static_cast<double>(n)));
    EXPECT_EQ(norm_of_array(&got, 1, z, 1, MACHFUNC_CHECK_FP), 0);
    EXPECT_NEAR(got / complex_sum, 1, 1e-6);
    EXPECT_EQ(norm_of_array(&got, 2, z, -1, MACHFUNC_CHECK_FP), 0);
    EXPECT_NEAR(got / std::sqrt(complex_squares), 1, 1e-6 * std::sqrt(static_cast<double>(n)));
  }
  std::vector<mcomplex> wide = {{3, 4}, {0, 12}, {-84, 0}};
  double got = 0;
  EXPECT_EQ(norm_of_array(&got, 2, wide, 1, 0), 0);
  EXPECT_DOUBLE_EQ(got, 85);
}

/// The nearest half of x, ties to even, as a double.
double half(double x) {
  if (x == 0) return x;
  const double quantum = std::max(std::ldexp(1.0, std::ilogb(x) - 10), 0x1p-24);
  const double rounded = std::nearbyint(x / quantum) * quantum;
  return rounded >= 65520 ? std::numeric_limits<double>::infinity() : rounded;
}

TEST(Real16Norms, RoundEveryStep) {
  std::mt19937_64 engine(7);
  for (const size_t n : {1, 3, 32, 33, 500}) {
    std::vector<vlm::real16> x(n);
    double sum = 0, largest = 0, scale = 0, squares = 1, cubes = 1;
    for (vlm::real16& e : x) {
      e.bits = static_cast<uint16_t>(engine() % 0x4C00 | (engine() & 0x8000));  // below 16 in magnitude
      const double v = std::abs(vlm::real16_format::widen(e));
      sum = half(sum + v);
      largest = std::max(largest, v);
      if (v == 0) continue;
      const double t = half(std::min(v, scale) / std::max(v, scale));
      const double t2 = half(t * t), t3 = half(t2 * t);
      squares = scale < v ? half(half(squares * t2) + 1) : half(squares + t2);
      cubes = scale < v ? half(half(cubes * t3) + 1) : half(cubes + t3);
      scale = std::max(scale, v);
    }
    vlm::real16 got{};
    const auto norm = [&](mint p) {
      EXPECT_EQ(norm_of_array(&got, p, x, 1, MACHFUNC_CHECK_FP), 0);
      return vlm::real16_format::widen(got);
    };
    EXPECT_EQ(norm(1), sum);
    EXPECT_EQ(norm(infinite), largest);
    EXPECT_EQ(norm(2), half(scale * half(std::sqrt(squares))));
    EXPECT_EQ(norm(3), half(scale * half(std::pow(cubes, half(1.0 / 3.0)))));
  }
  std::vector<vlm::real16> x = {{0x3C00}, {0x7D00}, {0xC000}};  // 1, a signalling NaN, -2
  vlm::real16 got{42};
  std::feclearexcept(FE_ALL_EXCEPT);
  errno = 0;
  EXPECT_EQ(norm_of_array(&got, infinite, x, 1, MACHFUNC_CHECK_FP), 0);
  EXPECT_EQ(got.bits, 0x4000);
  EXPECT_TRUE(std::fetestexcept(FE_INVALID));
  EXPECT_EQ(errno, EDOM);
  EXPECT_EQ(norm_of_array(&got, 1, x, 1, MACHFUNC_CHECK_FP), ArrayStatusArithmetic);
  x[1] = {0xFC00};
  EXPECT_EQ(norm_of_array(&got, infinite, x, 1, MACHFUNC_CHECK_FP), ArrayStatusArithmetic);
  EXPECT_EQ(got.bits, 0x4000);
}

TEST(ArrayNorm, RefusesWhatIsNoArray) {
  std::vector<double> x = {1};
  double got = 42;
  MNumericArray array{};
  EXPECT_EQ(MNumericArray_vector_norm(&got, 1, nullptr, 1, 0), ArrayStatusNullArgument);
  for (const uint32_t type : {0u, 14u}) {
    array.elementType = type;
    EXPECT_EQ(MNumericArray_vector_norm(&got, 1, &array, 1, 0), ArrayStatusBadNormOrder);
  }
  EXPECT_EQ(norm_of_array(nullptr, 1, x, 1, 0), ArrayStatusNullArgument);
  EXPECT_EQ(got, 42);
}

}  // namespace
