// Whole arrays, tensors and single numbers. Faults it is meant to catch: tests in the wrong order; an array lost or kept after a
// failure; a source that is changed; positions outside of a partial coercion; the tolerance of tensors applied to arrays.
#include <gtest/gtest.h>

#include <fenv.h>

#include <cfloat>
#include <cmath>

#include "exact_model.h"
#include "support/array_fixture.h"
#include "velorim/velorim.h"

namespace {

using vlm_test::array_ptr;
using vlm_test::dims_of;

class Coercion : public vlm_test::ArrayTest {
 protected:
  static void SetUpTestSuite() {
    ArrayTest::SetUpTestSuite();
    VelorimRTL_initialize();
    ASSERT_NE(MNumericArray_loadSharedRank0(nullptr, 1, 0), nullptr);  // the thread's table, which stays
  }
  template <class T> static array_ptr array_of(const std::vector<mint>& dims, const std::vector<T>& values) {
    array_ptr array(MNumericArray_newAllocatedCommon(vlm::element_code<T>, static_cast<mint>(dims.size()),
                                                     dims.data(), FailFatal));
    std::copy(values.begin(), values.end(), static_cast<T*>(array->data));
    return array;
  }
  template <class T> static std::vector<T> values_of(const MNumericArray* array) {
    EXPECT_EQ(array->elementType, static_cast<uint32_t>(vlm::element_code<T>));
    const T* first = static_cast<const T*>(array->data);
    return {first, first + array->flattenedLength};
  }
};

TEST_F(Coercion, RecordOfEveryCode) {
  for (int32_t code = -1; code <= 12; ++code) {
    MNumericArrayConvertData record;
    std::memset(&record, 0xff, sizeof record);
    ASSERT_EQ(MNumericArrayConvertData_init(&record, code), &record);
    const bool clips = code >= 2 && code <= 10 && code % 2 == 0;
    const int32_t base = clips ? code - 1 : code;
    EXPECT_EQ(record.method, base);
    EXPECT_EQ(record.clip, 0xf8 + clips);
    EXPECT_EQ(record.tolerance, base == 1 || base == 9 ? 0.0 : 1.0);
    EXPECT_EQ(record.sourceOffset + record.targetOffset + record.reserved, 0);
    EXPECT_EQ(record.sourceStride + record.targetStride, 2);
  }
  EXPECT_EQ(MNumericArrayConvertData_init(nullptr, 1), nullptr);
}

TEST_F(Coercion, ArgumentsInOrder) {
  const array_ptr source = array_of<double>({3}, {1, 2, 3});
  MNumericArray* none = nullptr;
  EXPECT_EQ(MNumericArray_convert(nullptr, nullptr, 0, 0), 1301);
  EXPECT_EQ(MNumericArray_convert(nullptr, nullptr, 14, 0), 1301);
  EXPECT_EQ(MNumericArray_convert(nullptr, nullptr, 1, 11), 1304);
  EXPECT_EQ(MNumericArray_convert(nullptr, source.get(), 1, 1), 1300);
  EXPECT_EQ(MNumericArray_convert(&none, nullptr, 1, 1), 1300);
  EXPECT_EQ(MNumericArray_convert_common(&none, source.get(), 1, nullptr), 1300);
  EXPECT_EQ(MNumericArrayData_convert(nullptr, 1, nullptr, 14, 0, 0), 1301);
  EXPECT_EQ(MNumericArrayData_convert(nullptr, 1, nullptr, 2, 0, 0), 1304);
  EXPECT_EQ(MNumericArrayData_convert(nullptr, 1, nullptr, 2, 0, 1), 0);
  EXPECT_EQ(MNumericArrayData_convert(nullptr, 1, nullptr, 2, 1, 1), 1300);
  EXPECT_EQ(MNumericArray_convertType(&none, nullptr, 99, 1, 0), 6);
  EXPECT_EQ(MNumericArray_convertType(&none, source.get(), 0, 99, 0), 1);
  EXPECT_EQ(MNumericArray_convertType(&none, source.get(), 1, 0, 0), 6);
  EXPECT_EQ(MNumericArray_convertType(nullptr, source.get(), 1, 1, 0), 6);
  EXPECT_EQ(MNumericArray_fillFromMTensor(nullptr, source.get(), nullptr), 1300);
  MNumericArrayConvertData record;
  MNumericArrayConvertData_init(&record, 1);
  record.method = 2;
  EXPECT_EQ(MNumericArray_convert_common(&none, source.get(), 1, &record), 1304);
  EXPECT_EQ(none, nullptr);
  EXPECT_EQ(MNumericArray_convert_common(&none, source.get(), 10, &record),
            0);  // equal types are copied, whatever the method
  const array_ptr copy(none);
  EXPECT_EQ(values_of<double>(copy.get()), (std::vector<double>{1, 2, 3}));
}

TEST_F(Coercion, TargetsMadeAndGiven) {
  const array_ptr source = array_of<double>({2, 3}, {1, 2, 3, 4, 5, 6.5});
  MNumericArray* made = nullptr;
  EXPECT_EQ(MNumericArray_convert(&made, source.get(), 3, MNumericArrayConvertCheck), 1305);
  EXPECT_EQ(made, nullptr);
  EXPECT_EQ(MNumericArray_convert(&made, source.get(), 3, MNumericArrayConvertRound), 0);
  const array_ptr rounded(made);
  EXPECT_EQ(dims_of(made), (std::vector<mint>{2, 3}));
  EXPECT_EQ(values_of<int16_t>(made), (std::vector<int16_t>{1, 2, 3, 4, 5, 6}));

  array_ptr given = array_of<int16_t>({7}, {9, 9, 9, 9, 9, 9, 9});
  MNumericArray* target = given.get();
  EXPECT_EQ(MNumericArray_convert(&target, source.get(), 3, MNumericArrayConvertCheck), 1305);
  EXPECT_EQ(target, given.get());
  EXPECT_EQ(values_of<int16_t>(target), (std::vector<int16_t>{1, 2, 3, 4, 5, 9, 9}));
  EXPECT_EQ(MNumericArray_convert(&target, source.get(), 5, MNumericArrayConvertRound), 1301);
  array_ptr little = array_of<int16_t>({5}, {9, 9, 9, 9, 9});
  target = little.get();
  EXPECT_EQ(MNumericArray_convert(&target, source.get(), 3, MNumericArrayConvertRound), 1305);
  EXPECT_EQ(values_of<int16_t>(target), (std::vector<int16_t>{9, 9, 9, 9, 9}));

  // A digit of tolerance: 3.3 bits.
  const array_ptr nearly = array_of<double>({}, {3.0 + 0x1p-47});
  made = nullptr;
  EXPECT_EQ(MNumericArray_convertType(&made, nearly.get(), 7, MNumericArrayConvertCheck, 1.0), 6);
  EXPECT_EQ(MNumericArray_convertType(&made, nearly.get(), 7, MNumericArrayConvertCheck, 2.0), 0);
  EXPECT_EQ(values_of<mint>(made), std::vector<mint>{3});
  MNumericArray_delete(made);
}

TEST_F(Coercion, MemoryThatFails) {
  const array_ptr source = array_of<double>({40}, std::vector<double>(40, 7.0));
  EXPECT_GT(fail_at_every_allocation(
                [&] {
                  MNumericArray* target = nullptr;
                  const int32_t status =
                      MNumericArray_convert(&target, source.get(), 1, MNumericArrayConvertCoerce);
                  EXPECT_TRUE(status == 0 ? target != nullptr : status == 403 && target == nullptr);
                  MNumericArray_delete(target);
                  return status == 0;
                },
                [] {}),
            0);
  for (const bool in_place : {false, true}) {
    EXPECT_GT(fail_at_every_allocation(
                  [&] {
                    const array_ptr tensor = array_of<double>({40}, std::vector<double>(40, 7.5));
                    const array_ptr other(MTensor_new());
                    const int32_t done =
                        CoerceTensor(tensor.get(), MTensorTypeInteger, in_place ? tensor.get() : other.get());
                    EXPECT_TRUE(vlm::array_is_valid(tensor.get()) && vlm::array_is_valid(other.get()));
                    if (done == 0 || !in_place) {
                      EXPECT_EQ(values_of<double>(tensor.get())[39], 7.5);
                    }
                    return done == 1;
                  },
                  [] {}),
              0);
  }
}

TEST_F(Coercion, CanCoerce) {
  const array_ptr scalar = array_of<double>({}, {1e300});
  const array_ptr empty = array_of<double>({0, 4}, {});
  const array_ptr whole = array_of<double>({3}, {1, -2, 127});
  const array_ptr broken = array_of<double>({3}, {1, -2.5, 127});
  EXPECT_EQ(MNumericArray_canCoerce(scalar.get(), 1, 0.0), 1);
  EXPECT_EQ(MNumericArray_canCoerce(empty.get(), 1, 0.0), 1);
  EXPECT_EQ(MNumericArray_canCoerce(whole.get(), 1, 0.0), 1);
  EXPECT_EQ(MNumericArray_canCoerce(whole.get(), 2, 0.0), 0);
  EXPECT_EQ(MNumericArray_canCoerce(whole.get(), 14, 0.0), 0);
  EXPECT_EQ(MNumericArray_canCoerce(broken.get(), 1, 1.0), 0);
  EXPECT_EQ(MNumericArray_canCoerce(broken.get(), 1, 53.0), 1);
  EXPECT_EQ(MNumericArray_canCoerce(broken.get(), 10, 0.0), 1);
  EXPECT_EQ(MNumericArray_canCoerce(nullptr, 10, 0.0), 0);
  EXPECT_EQ(MTensor_canCoerce(broken.get(), MTensorTypeInteger, 1.0), 0);
  EXPECT_EQ(MTensor_canCoerce(broken.get(), MTensorTypeInteger, 54.0), 1);
  EXPECT_EQ(CanCoerceTensor(whole.get(), MTensorTypeInteger, 0.0), 1);
  EXPECT_EQ(CanCoerceTensor(whole.get(), MTensorTypeBoolean, 0.0), 0);
  EXPECT_EQ(CanCoerceTensor(nullptr, MTensorTypeInteger, 0.0), 0);
  for (const uint32_t no_tensor : {1u, 6u}) {
    whole->tensorType = no_tensor;
    EXPECT_EQ(CanCoerceTensor(whole.get(), MTensorTypeInteger, 0.0), 0);
  }
  whole->tensorType = MTensorTypeReal;
}

TEST_F(Coercion, Tensors) {
  const std::vector<double> reals = {2.7, -2.7, 0.0, 1e18};
  for (const bool in_place : {false, true}) {
    const array_ptr source = array_of<double>({2, 2}, reals);
    const array_ptr other = array_of<int8_t>({1}, {1});
    MTensor* const target = in_place ? source.get() : other.get();
    ASSERT_EQ(CoerceTensor(source.get(), MTensorTypeInteger, target), 1);
    EXPECT_EQ(values_of<mint>(target), (std::vector<mint>{2, -2, 0, 1000000000000000000}));
    EXPECT_EQ(dims_of(target), (std::vector<mint>{2, 2}));
    EXPECT_TRUE(vlm::array_is_valid(target));
    ASSERT_EQ(CoerceTensor(target, MTensorTypeComplex, target), 1);
    EXPECT_EQ(static_cast<const mcomplex*>(target->data)[1].re, -2.0);
    EXPECT_EQ(static_cast<const mcomplex*>(target->data)[1].im, 0.0);
    ASSERT_EQ(CoerceTensor(target, MTensorTypeComplex, target), 1);
    EXPECT_EQ(CoerceTensor(target, 5, target), 0);
    EXPECT_EQ(CoerceTensor(target, 0, target), 0);
    static_cast<mcomplex*>(target->data)[3] = {1e300, 5.0};
    EXPECT_EQ(CoerceTensor(target, MTensorTypeInteger, target),
              0);  // beyond the range; the tensor is as it was
    EXPECT_EQ(target->elementType, 12u);
    EXPECT_EQ(CoerceTensor(target, MTensorTypeReal, target), 1);  // imaginary parts are dropped
    EXPECT_EQ(values_of<double>(target), (std::vector<double>{2, -2, 0, 1e300}));
  }
  EXPECT_EQ(CoerceTensor(nullptr, 2, nullptr), 0);

  mint integers[5] = {9, 9, 9, 9, 9};
  EXPECT_EQ(
      MTensor_coerceDataArray(integers, MTensorTypeInteger, 4, -2, reals.data(), MTensorTypeReal, 0, 1, 3),
      0);
  EXPECT_EQ(std::vector<mint>(integers, integers + 5), (std::vector<mint>{0, 9, -2, 9, 2}));
  EXPECT_EQ(MTensor_coerceDataArray(integers, 5, 0, 1, reals.data(), MTensorTypeReal, 0, 1, 3), 1301);
  EXPECT_EQ(MTensor_coerceData(nullptr, 0, 1, nullptr, 0, 1, 1), 1300);
}

TEST_F(Coercion, PartsOfTensors) {
  const array_ptr source = array_of<double>({5}, {1e300, 1.5, 2.5, 3.5, NAN});
  const array_ptr target(MTensor_new());
  ASSERT_EQ(CoercePartOfTensor(source.get(), MTensorTypeInteger, target.get(), 1, 3), 1);
  EXPECT_EQ(dims_of(target.get()), std::vector<mint>{5});
  EXPECT_EQ(std::vector<mint>(static_cast<mint*>(target->data) + 1, static_cast<mint*>(target->data) + 4),
            (std::vector<mint>{1, 2, 3}));
  EXPECT_EQ(CoercePartOfTensor(source.get(), MTensorTypeInteger, target.get(), 0, 3), 0);
  EXPECT_EQ(CoercePartOfTensor(source.get(), MTensorTypeInteger, target.get(), 3, 2), 1);
  EXPECT_EQ(CoercePartOfTensor(source.get(), MTensorTypeInteger, target.get(), -1, 2), 0);
  EXPECT_EQ(CoercePartOfTensor(source.get(), MTensorTypeInteger, target.get(), 1, 5), 0);
  EXPECT_EQ(CoercePartOfTensor(source.get(), MTensorTypeInteger, target.get(), 1, INT64_MAX), 0);
  ASSERT_EQ(CoercePartOfTensor(source.get(), MTensorTypeReal, target.get(), 1, 1), 1);
  EXPECT_EQ(values_of<double>(target.get())[0], 1e300);
  ASSERT_EQ(CoercePartOfTensor(source.get(), MTensorTypeComplex, source.get(), 2, 2), 1);
  EXPECT_EQ(static_cast<mcomplex*>(source->data)[2].re, 2.5);
}

TEST_F(Coercion, SharedNumbers) {
  const double three = 3.0, broken = 3.5;
  const mint large = INT64_MAX;
  MNumericArray** const cell = MNumericArray_coerceToSharedRank0(&three, 10, 1, 0);
  ASSERT_NE(cell, nullptr);
  EXPECT_EQ(*static_cast<int8_t*>((*cell)->data), 3);
  EXPECT_EQ(MNumericArray_coerceToSharedRank0(&broken, 10, 1, 0), nullptr);
  EXPECT_EQ(*static_cast<int8_t*>((*cell)->data), 3);
  EXPECT_EQ(MNumericArray_coerceToSharedRank0(&large, 7, 10, 1), nullptr);
  MNumericArray** const copied = MNumericArray_coerceToSharedRank0(&large, 7, 7, 2);
  ASSERT_NE(copied, nullptr);
  EXPECT_EQ(*static_cast<mint*>((*copied)->data), large);
  EXPECT_EQ(MNumericArray_coerceToSharedRank0(&three, 10, 14, 0), nullptr);
  EXPECT_EQ(MNumericArray_coerceToSharedRank0(&three, 0, 10, 0), nullptr);
  EXPECT_EQ(MNumericArray_coerceToSharedRank0(&three, 10, 1, 3), nullptr);
  EXPECT_EQ(MNumericArray_coerceToSharedRank0(nullptr, 10, 1, 0), nullptr);
}

TEST_F(Coercion, CommonTypes) {
  // By kind and digits: 0 integer; reals 1, 2, 3; complex 12, 13.
  const auto written_out = [](int32_t a, int32_t b) {
    const auto real_rank = [](int32_t t) { return t == 13 ? 1 : t == 9 || t == 11 ? 2 : t <= 8 ? 0 : 3; };
    if (a <= 8 && b <= 8) return std::max(a, b);
    const int rank = std::max(real_rank(a), real_rank(b));
    const bool complex = a == 11 || a == 12 || b == 11 || b == 12;
    return complex ? (rank == 3 ? 12 : 11) : (rank == 3 ? 10 : rank == 2 ? 9 : 13);
  };
  for (int32_t a = 1; a <= 13; ++a) {
    for (int32_t b = 1; b <= 13; ++b)
      EXPECT_EQ(MNumericArray_common_type(a, b), written_out(a, b)) << a << " " << b;
    EXPECT_EQ(MNumericArray_common_type(a, 0), 0);
    EXPECT_EQ(MNumericArray_common_type(14, a), 0);
  }
}

TEST_F(Coercion, NumbersReadAsReals) {
  int32_t status = 7;
  const double most = 3.4028234663852886e38;
  for (const auto& [value, clip, expected, refused] :
       {std::tuple<double, int, double, int>{0.1, 0, static_cast<double>(0.1f), 0},
        {most, 0, most, 0},
        {-1e39, 0, 0.0, 1},
        {-1e39, 2, -most, 0},
        {INFINITY, 1, most, 0},
        {std::nextafter(most, INFINITY), 0, 0.0, 1}}) {
    EXPECT_EQ(static_cast<double>(double_to_float(&status, clip, value)), expected);
    EXPECT_EQ(status, refused);
    double_to_float(nullptr, clip, value);
  }
  EXPECT_TRUE(std::isnan(double_to_float(&status, 0, NAN)));
  EXPECT_EQ(status, 0);

  double cell = 5.0;
  EXPECT_EQ(MNumericArray_dataToReal(&cell, array_of<uint64_t>({2}, {1, UINT64_MAX}).get(), 1), 0);
  EXPECT_EQ(cell, 18446744073709551616.0);
  EXPECT_EQ(MNumericArray_dataToReal(&cell, array_of<float>({1}, {0.1f}).get(), 0), 0);
  float narrow;
  std::memcpy(&narrow, &cell, sizeof narrow);
  EXPECT_EQ(narrow, 0.1f);
  EXPECT_EQ(MNumericArray_dataToReal(&cell, array_of<vlm::real16>({1}, {vlm::real16{0x3c00}}).get(), 0), 0);
  EXPECT_EQ(std::bit_cast<uint64_t>(cell), 0x3c00u);
  const array_ptr complex = array_of<mcomplex>({2}, {{1.5, -0.0}, {1.5, 1e-300}});
  EXPECT_EQ(MNumericArray_dataToReal(&cell, complex.get(), 0), 0);
  EXPECT_EQ(cell, 1.5);
  EXPECT_EQ(MTensor_dataToReal(complex.get(), 1, &status), 0.0);
  EXPECT_EQ(status, 1305);
  EXPECT_EQ(MTensor_dataToReal(complex.get(), 0, &status), 1.5);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(MNumericArray_dataToReal(&cell, complex.get(), 2), 1305);
  EXPECT_EQ(MNumericArray_dataToReal(&cell, nullptr, 0), 1300);
  EXPECT_EQ(MNumericArray_dataToReal(nullptr, complex.get(), 0), 1300);
}

TEST_F(Coercion, TheRoundingModeOfTheThread) {
  const double halves[] = {0.5, 1.5, -0.5, -1.5, 2.25, 9.75, 1.0, -3.0};
  for (const auto& [mode, round] :
       {std::pair<int, double (*)(double)>{FE_UPWARD, [](double x) { return std::ceil(x); }},
        {FE_DOWNWARD, [](double x) { return std::floor(x); }},
        {FE_TOWARDZERO, [](double x) { return std::trunc(x); }}}) {
    int8_t rounded[8];
    fesetround(mode);
    const int32_t status = MNumericArrayData_convert(rounded, 1, halves, 10, 8, MNumericArrayConvertRound);
    fesetround(FE_TONEAREST);
    EXPECT_EQ(status, 0);
    for (int i = 0; i < 8; ++i) EXPECT_EQ(rounded[i], round(halves[i]));
  }
}

}  // namespace
