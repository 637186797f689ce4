// Catches: element types that a scan or replacement leaves out or should leave alone; chunks of a team that overlap, are left
// out or start at the wrong place for a stride; the wrong end of a run for a negative stride; a team that decides otherwise
// than one thread.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <vector>

#include "Includes/fp_environment.h"
#include "MNumericArray/Predicates/fp_exception_team.h"
#include "velorim/array.h"
#include "velorim/floating_point.h"
#include "velorim/parallel.h"

namespace {

using namespace vlm;

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan_value = std::numeric_limits<double>::quiet_NaN();

class FpExceptionArray : public testing::TestWithParam<mint> {
 protected:
  void SetUp() override {
    old_ = setParallelThreadNumber(GetParam());
    ListableCompileEvaluatingThreaded = 0;
  }
  void TearDown() override { restoreParallelThreadNumber(old_); }

 private:
  mint old_ = 1;
};

/// A record over data that the test owns.
template <class T> MNumericArray array_over(std::vector<T>& data) {
  MNumericArray array{};
  array.elementType = element_code<T>;
  array.flattenedLength = static_cast<mint>(data.size());
  array.data = data.data();
  return array;
}

template <class T> T hit() {
  T value{};
  if constexpr (std::is_same_v<T, mcomplex>) value.im = -infinity;
  if constexpr (std::is_same_v<T, complex_real32>) value.im = static_cast<float>(nan_value);
  if constexpr (std::is_same_v<T, real16>) value.bits = 0xFC00;
  if constexpr (std::is_floating_point_v<T>) value = static_cast<T>(nan_value);
  return value;
}

TEST_P(FpExceptionArray, TheByteRuleInElements) {
  EXPECT_EQ(fp_parallel_threshold<real16>, 65536);
  EXPECT_EQ(fp_parallel_threshold<float>, 32768);
  EXPECT_EQ(fp_parallel_threshold<double>, 16384);
  EXPECT_EQ(fp_parallel_threshold<complex_real32>, 16384);
  EXPECT_EQ(fp_parallel_threshold<mcomplex>, 8192);
  EXPECT_EQ(fp_parallel_chunk<real16>, 32768);
  EXPECT_EQ(fp_parallel_chunk<mcomplex>, 4096);
}

TEST_P(FpExceptionArray, OneHitAtTheBordersOfChunks) {
  int ran = 0;
  for_all_element_types([&]<class T>() {
    if constexpr (!is_integer_element<T>) {
      ++ran;
      SCOPED_TRACE(element_of<T>::name);
      constexpr mint threshold = fp_parallel_threshold<T>, chunk = fp_parallel_chunk<T>;
      for (mint n : {mint{1}, mint{513}, threshold - 1, threshold, threshold + chunk / 2 + 3}) {
        for (mint stride : {mint{1}, mint{2}, mint{-1}, mint{-2}}) {
          const mint step = std::abs(stride);
          std::vector<T> data(static_cast<size_t>(n * step));
          if (step > 1) {  // between the elements: not part of the run
            for (mint i = 1; i < n * step; i += step) data[static_cast<size_t>(i)] = hit<T>();
          }
          const auto scan = [&] {
            return MNumericArrayData_fpexceptionQ(element_code<T>, n, data.data(), stride);
          };
          ASSERT_EQ(scan(), 0) << n << " step " << stride;
          for (mint at : {mint{0}, chunk - 1, chunk, 2 * chunk - 1, n / 2, n - 1}) {
            if (at >= n) continue;
            T& element = data[static_cast<size_t>(at * step)];
            element = hit<T>();
            ASSERT_EQ(scan(), 1) << at << " of " << n << " step " << stride;
            element = T{};
          }
        }
      }
    }
  });
  EXPECT_EQ(ran, 5);
}

TEST_P(FpExceptionArray, EveryEntryAndEveryType) {
  fp::clear_flags();
  for_all_element_types([]<class T>() {
    SCOPED_TRACE(element_of<T>::name);
    std::vector<T> data(20);
    MNumericArray array = array_over(data);
    EXPECT_EQ(MNumericArray_fpexceptionQ(&array), 0);
    std::vector<T> filled(20);
    std::memset(static_cast<void*>(filled.data()), 0xFF, filled.size() * sizeof(T));  // NaN, or -1
    array = array_over(filled);
    EXPECT_EQ(MNumericArray_fpexceptionQ(&array), !is_integer_element<T>);
    EXPECT_EQ(TensorOverflowQ(&array), !is_integer_element<T>);
    MNumericArray_fpexception_replace(&array, 1, 2, 3);
    EXPECT_EQ(MNumericArray_fpexceptionQ(&array), 0);
    if (is_integer_element<T>) {
      const auto* bytes = reinterpret_cast<const unsigned char*>(filled.data());
      EXPECT_EQ(bytes[0] & bytes[filled.size() * sizeof(T) - 1], 0xFF);
    }
  });
  for (int32_t type : {-1, 0, 14}) EXPECT_EQ(MNumericArrayData_fpexceptionQ(type, 5, nullptr, 1), 0);
  for (mint count : {0, -3})
    EXPECT_EQ(MNumericArrayData_fpexceptionQ(MNumericArrayTypeReal64, count, nullptr, -1), 0);
  EXPECT_EQ(MNumericArray_fpexceptionQ(nullptr), 0);
  EXPECT_EQ(TensorOverflowQ(nullptr), 0);
  MNumericArray_fpexception_replace(nullptr, 0, 0, 0);

  const double reals[] = {1.0, 2.0, infinity};
  EXPECT_EQ(MRealArrayOverflowQ(reals, 2), 0);
  EXPECT_EQ(MRealArrayOverflowQ(reals, 3), 1);
  EXPECT_EQ(MRealArrayOverflowQ(nullptr, 0), 0);
  const mcomplex complexes[] = {{1.0, 2.0}, {0.0, nan_value}};
  EXPECT_EQ(MComplexArrayOverflowQ(complexes, 1), 0);
  EXPECT_EQ(MComplexArrayOverflowQ(complexes, 2), 1);
  EXPECT_EQ(fp::test_flags(), 0);
}

TEST_P(FpExceptionArray, ReplacementOnTheTeam) {
  constexpr mint n = fp_parallel_threshold<float> + fp_parallel_chunk<float> + 77;
  std::vector<float> data(n);
  const auto before = [](mint i) {
    switch (i % 5) {
      case 0:
        return std::numeric_limits<float>::infinity();
      case 1:
        return -std::numeric_limits<float>::infinity();
      case 2:
        return std::numeric_limits<float>::quiet_NaN();
      default:
        return static_cast<float>(i);
    }
  };
  for (mint i = 0; i < n; ++i) data[static_cast<size_t>(i)] = before(i);
  MNumericArray array = array_over(data);
  MNumericArray_fpexception_replace(&array, 0.5, 1e300, -2.5);
  for (mint i = 0; i < n; ++i) {
    const float expected[] = {std::numeric_limits<float>::max(), -2.5f, 0.5f, static_cast<float>(i),
                              static_cast<float>(i)};
    ASSERT_EQ(data[static_cast<size_t>(i)], expected[i % 5]) << i;
  }
  std::vector<double> nans(3, nan_value);
  array = array_over(nans);
  MNumericArray_fpexception_replace(&array, nan_value, 1, 1);
  EXPECT_TRUE(std::isnan(nans[0]) && std::isnan(nans[2]));
}

INSTANTIATE_TEST_SUITE_P(OneThreadAndMany, FpExceptionArray, testing::Values(1, 2, 5));

}  // namespace
