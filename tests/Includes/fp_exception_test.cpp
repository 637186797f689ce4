// Catches: constants off by a bit; limits of one format in another's record; a border value (largest finite, subnormal, signalling
// NaN, minus zero) that is classed wrongly; a part of a complex number that is not looked at; a test that raises a flag; a scan
// that misses an element of the block border or tail, or reads beyond the run; a replacement that touches other values.
#include <gtest/gtest.h>

#include <bit>
#include <cfenv>
#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "Includes/fp_environment.h"
#include "Includes/vlm_fp_exception_replace.h"
#include "velorim/floating_point.h"

namespace {

using namespace vlm;

uint64_t bits_of(double x) { return std::bit_cast<uint64_t>(x); }
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan_value = std::numeric_limits<double>::quiet_NaN();
constexpr double smallest = std::numeric_limits<double>::denorm_min();

TEST(FloatConstants, HaveTheirBits) {
  EXPECT_EQ(bits_of(dInfinity), 0x7FF0000000000000u);
  EXPECT_EQ(bits_of(MachinePrecision), 0xFFF0000000000000u);
  EXPECT_EQ(bits_of(MachineOverflow), 0x7FF0000000000000u);
  EXPECT_EQ(bits_of(log2ten), 0x400A934F0979A371u);
  EXPECT_EQ(bits_of(logten), 0x40026BB1BBB55516u);
  EXPECT_EQ(bits_of(logtwo), 0x3FE62E42FEFA39EFu);
  EXPECT_EQ(EqualTolerance, 7.0);
  EXPECT_EQ(SameQTolerance, 1.0);
  EXPECT_EQ(HashTolerance, 1.0);
}

TEST(FloatConstants, ToleranceIsBounded) {
  EXPECT_EQ(BoundMachineTolerance(-0.5), -1.0);
  EXPECT_EQ(BoundMachineTolerance(-infinity), -1.0);
  EXPECT_EQ(BoundMachineTolerance(0.0), 0.0);
  EXPECT_EQ(BoundMachineTolerance(7.25), 7.25);
  EXPECT_EQ(BoundMachineTolerance(54.0), 54.0);
  EXPECT_EQ(BoundMachineTolerance(54.5), 54.0);
  EXPECT_EQ(BoundMachineTolerance(infinity), 54.0);
}

// The independent rule: everything follows from the bits of significand and the largest exponent of a binary format.
TEST(FloatConstants, LimitsFollowFromTheFormat) {
  const struct {
    int32_t type;
    int digits, max_exponent;
  } formats[] = {{MNumericArrayTypeReal64, 53, 1024},
                 {MNumericArrayTypeReal32, 24, 128},
                 {MNumericArrayTypeReal16, 11, 16}};
  for (const auto& format : formats) {
    FloatLimits limits{};
    ASSERT_EQ(MNumericArray_getFloatLimits(&limits, format.type), 0);
    const int min_exponent = 3 - format.max_exponent;
    EXPECT_EQ(limits.max, std::ldexp(2.0 - std::ldexp(1.0, 1 - format.digits), format.max_exponent - 1));
    EXPECT_EQ(limits.lowest, -limits.max);
    EXPECT_EQ(limits.min, std::ldexp(1.0, min_exponent - 1));
    EXPECT_EQ(limits.denorm_min, std::ldexp(1.0, min_exponent - format.digits));
    EXPECT_EQ(limits.epsilon, std::ldexp(1.0, 1 - format.digits));
    EXPECT_EQ(limits.digits, format.digits);
    EXPECT_EQ(limits.max_exponent, format.max_exponent);
    EXPECT_EQ(limits.min_exponent, min_exponent);
  }
  for (int32_t type : {-1, 0, 1, 8, 11, 12, 14}) {
    FloatLimits untouched{1, 2, 3, 4, 5, 6, 7, 8};
    EXPECT_EQ(MNumericArray_getFloatLimits(&untouched, type), 1);
    EXPECT_EQ(untouched.max + static_cast<double>(untouched.min_exponent), 9.0);
  }
  EXPECT_EQ(MNumericArray_getFloatLimits(nullptr, MNumericArrayTypeReal64), 1);
}

TEST(FpException, ComplexTestsOnBorders) {
  fp::clear_flags();
  EXPECT_EQ(cTESTFPOV(0.0, nan_value), 1);
  EXPECT_EQ(cTESTFPOV(0.0, 0.0), 0);
  EXPECT_EQ(cTESTFPOV(smallest, 1.0), 0);
  EXPECT_EQ(cTESTFPOV(-infinity, 1.0), 1);
  EXPECT_EQ(cTESTFPOV(1.0, infinity), 1);
  EXPECT_EQ(cTESTFPOV(std::numeric_limits<double>::max(), std::numeric_limits<double>::lowest()), 0);

  EXPECT_EQ(MComplexUnderflowQ(0.0, 1.0), 1);
  EXPECT_EQ(MComplexUnderflowQ(1.0, -0.0), 1);
  EXPECT_EQ(MComplexUnderflowQ(2.2250738585072014e-308, 1.0), 0);
  EXPECT_EQ(MComplexUnderflowQ(-2.2250738585072009e-308, 1.0), 1);
  EXPECT_EQ(MComplexUnderflowQ(nan_value, infinity), 0);
  EXPECT_EQ(MComplexUnderflow0Q(0.0, 1.0), 0);
  EXPECT_EQ(MComplexUnderflow0Q(0.0, -0.0), 0);
  EXPECT_EQ(MComplexUnderflow0Q(smallest, 1.0), 1);
  EXPECT_EQ(MComplexUnderflow0Q(0.0, -smallest), 1);
  EXPECT_EQ(MComplexUnderflow0Q(nan_value, nan_value), 0);
  EXPECT_EQ(fp::test_flags(), 0);
}

// All numbers of binary16, by the C library's classes of their values.
TEST(FpException, EveryHalf) {
  for (uint32_t bits = 0; bits < 65536; ++bits) {
    const real16 half{static_cast<uint16_t>(bits)};
    ASSERT_EQ(is_fp_exception(half), !std::isfinite(real16_format::widen(half))) << bits;
  }
}

template <class T> T element_of_parts(double re, double im) {
  if constexpr (std::is_same_v<T, mcomplex>) return {re, im};
  if constexpr (std::is_same_v<T, complex_real32>) return {static_cast<float>(re), static_cast<float>(im)};
  if constexpr (std::is_same_v<T, real16>) return real16_format::round(re).value;
  if constexpr (std::is_floating_point_v<T>) return static_cast<T>(re);
}

template <class Body> void for_floating_types(Body&& body) {
  int ran = 0;
  for_all_element_types([&]<class T>() {
    if constexpr (!is_integer_element<T>) {
      SCOPED_TRACE(element_of<T>::name);
      body.template operator()<T>();
      ++ran;
    }
  });
  EXPECT_EQ(ran, 5);
}

constexpr mint lengths[] = {0, 1, 2, 3, 7, 8, 31, 32, 33, 255, 256, 257, 511, 512, 513, 1025};

// The hit at every place of every length, at each step, with hits just outside the run that must not be seen.
TEST(FpException, ScanFindsTheOneHitAnywhere) {
  fp::clear_flags();
  for_floating_types([]<class T>() {
    const T plain = element_of_parts<T>(1.5, -2.0);
    const T hits[] = {element_of_parts<T>(nan_value, 1.0), element_of_parts<T>(-infinity, 1.0)};
    for (mint n : lengths) {
      for (mint stride : {mint{1}, mint{2}, mint{-1}, mint{-3}}) {
        const mint step = std::abs(stride);
        std::vector<T> block(static_cast<size_t>(n * step + 2 * step), hits[0]);
        T* first = block.data() + step;
        for (mint i = 0; i < n; ++i) first[i * step] = plain;
        const T* start = stride > 0 ? first : first + (n - 1) * step;
        ASSERT_FALSE(n > 0 && fp_exception_iterate(start, n, stride)) << n << " step " << stride;
        for (mint at : {mint{0}, n / 2, n - 1}) {
          if (n == 0) break;
          for (const T& hit : hits) {
            first[at * step] = hit;
            ASSERT_TRUE(fp_exception_iterate(start, n, stride)) << at << " of " << n << " step " << stride;
          }
          first[at * step] = plain;
        }
      }
    }
  });
  EXPECT_EQ(fp::test_flags(), 0);
}

TEST(FpException, ImaginaryPartsAndBorderValues) {
  for_floating_types([]<class T>() {
    if constexpr (is_complex_element<T>) {
      std::vector<T> run(600, element_of_parts<T>(1, 1));
      run[599] = element_of_parts<T>(1, infinity);
      EXPECT_TRUE(fp_exception_iterate(run.data(), 600, 1));
      EXPECT_TRUE(fp_exception_iterate(run.data() + 599, 1, 2));
    }
    using real = typename fp_parts<T>::real;
    using bits = typename fp_format<real>::bits;
    constexpr bits exponent = fp_format<real>::exponent;
    const auto counts = [](bits b) {
      T element{};
      std::memcpy(static_cast<void*>(&element), &b, sizeof b);
      return fp_exception_iterate(&element, 1, 1);
    };
    const bits sign = fp_sign_bit<bits>;
    EXPECT_FALSE(counts(exponent - 1));                              // largest finite
    EXPECT_FALSE(counts(static_cast<bits>(sign | (exponent - 1))));  // most negative finite
    EXPECT_FALSE(counts(1));                                         // subnormal
    EXPECT_FALSE(counts(sign));                                      // minus zero
    EXPECT_TRUE(counts(exponent));
    EXPECT_TRUE(counts(static_cast<bits>(exponent + 1)));  // signalling NaN
    EXPECT_TRUE(counts(static_cast<bits>(~bits{0})));
  });
}

TEST(FpExceptionReplace, ReplacementsFitTheType) {
  fp::clear_flags();
  EXPECT_EQ(fp_replacement<float>(1e300), std::numeric_limits<float>::max());
  EXPECT_EQ(fp_replacement<float>(-infinity), std::numeric_limits<float>::lowest());
  EXPECT_EQ(fp_replacement<float>(0.1), 0.1f);
  EXPECT_EQ(fp_replacement<double>(infinity), infinity);
  EXPECT_EQ(fp_replacement<real16>(65504.0).bits, 0x7BFF);
  EXPECT_EQ(fp_replacement<real16>(65504.5).bits, 0x7BFF);
  EXPECT_EQ(fp_replacement<real16>(-1e9).bits, 0xFBFF);
  EXPECT_EQ(fp_replacement<real16>(infinity).bits, 0x7BFF);
  // Rounded once: by way of float this would come down to the tie and then to 1.
  EXPECT_EQ(fp_replacement<real16>(1.0 + 0x1p-11 + 0x1p-30).bits, 0x3C01);
  EXPECT_EQ(fp_replacement<real16>(1.0 + 0x1p-11).bits, 0x3C00);
  fp::clear_flags();
  const auto halves = fp_replacements<real16>::of(nan_value, 1e300, -1e300);
  EXPECT_TRUE(is_nan(halves.nan));
  EXPECT_TRUE(std::isnan(fp_replacements<float>::of(nan_value, 0, 0).nan));
  EXPECT_EQ(fp::test_flags(), 0);
}

TEST(FpExceptionReplace, EachKindTakesItsOwnAndTheRestStays) {
  fp::clear_flags();
  for_floating_types([]<class T>() {
    using real = typename fp_parts<T>::real;
    using bits = typename fp_format<real>::bits;
    constexpr bits exponent = fp_format<real>::exponent, sign = fp_sign_bit<bits>;
    const bits kinds[] = {exponent,
                          static_cast<bits>(sign | exponent),
                          static_cast<bits>(exponent + 1),
                          static_cast<bits>(~bits{0}),
                          static_cast<bits>(exponent - 1),
                          static_cast<bits>(sign | (exponent - 1)),
                          1,
                          sign,
                          0};
    const auto with = fp_replacements<real>::of(11.0, 22.0, -33.0);
    const auto expected = [&](bits b) {
      if (b == exponent) return std::bit_cast<bits>(with.plus_infinity);
      if (b == static_cast<bits>(sign | exponent)) return std::bit_cast<bits>(with.minus_infinity);
      return (b & exponent) == exponent ? std::bit_cast<bits>(with.nan) : b;
    };
    for (mint n : lengths) {
      const size_t parts = static_cast<size_t>(n * fp_parts<T>::count);
      std::vector<bits> before(parts + 1, exponent), after;  // one more, which must stay
      for (size_t i = 0; i < parts; ++i)
        before[i] = i % 700 < 520 ? kinds[i % std::size(kinds)] : kinds[4 + i % 5];
      std::vector<T> run(static_cast<size_t>(n) + 1);
      std::memcpy(static_cast<void*>(run.data()), before.data(), (parts + 1) * sizeof(bits));
      fp_exception_replace_iterate(run.data(), n, with);
      after.resize(parts + 1);
      std::memcpy(after.data(), run.data(), (parts + 1) * sizeof(bits));
      for (size_t i = 0; i < parts; ++i) ASSERT_EQ(after[i], expected(before[i])) << i << " of " << n;
      EXPECT_EQ(after[parts], exponent);
    }
  });
  EXPECT_EQ(fp::test_flags(), 0);
}

}  // namespace
