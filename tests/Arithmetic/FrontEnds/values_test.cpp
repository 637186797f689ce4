// Functions applied to single values, and to values and arrays alike.
//
// Faults it is meant to catch: a value copied out with the size of another type; a boolean read or written as eight bytes; the two arguments
// in one slot; a stale value of an earlier call given as a result; types or null pointers that reach a slot that is not there; a tensor taken
// as a number or a number as a tensor.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <vector>

#include "Arithmetic/FrontEnds/arrays.h"
#include "Runtime/hooks.h"
#include "velorim/array_services.h"
#include "velorim/tensor_arithmetic.h"

namespace {

using namespace front_end_test;

constexpr uint32_t fp = MACHFUNC_CHECK_FP, integer = MACHFUNC_CHECK_INTEGER;

class Values : public vlm_test::ArrayTest {
 protected:
  void SetUp() override {
    vlm::shared_rank0_key_create();
    MNumericArray_loadSharedRank0(nullptr, 1, 0);  // this thread's table stays until the thread ends
    ArrayTest::SetUp();
  }
};

TEST_F(Values, OneTensorValue) {
  const double x = -2.25;
  double r = 77;
  EXPECT_EQ(0, Math_V_V(MachFunc_abs, fp, 3, &x, 3, &r));
  EXPECT_EQ(2.25, r);
  mint i[2] = {77, 77};
  EXPECT_EQ(0, Math_V_V(MachFunc_floor, fp | integer, 3, &x, 2, i));
  EXPECT_EQ(-3, i[0]);
  EXPECT_EQ(77, i[1]);
  mcomplex z = {77, 77};
  EXPECT_EQ(0, Math_V_V(MachFunc_sqrt, fp, 3, &x, 4, &z));  // promotion
  EXPECT_EQ(0, z.re);
  EXPECT_EQ(1.5, z.im);
  const mcomplex w = {3, 4};
  EXPECT_EQ(0, Math_V_V(MachFunc_abs, fp, 4, &w, 3, &r));
  EXPECT_EQ(5, r);
  // A boolean is four bytes on either side.
  int32_t truth[2] = {77, 77};
  EXPECT_EQ(0, Math_V_V(MachFunc_neg, fp, 3, &x, 1, truth));
  EXPECT_EQ(1, truth[0]);
  EXPECT_EQ(77, truth[1]);
  truth[0] = -1;
  EXPECT_EQ(0, Math_V_V(MachFunc_minus, integer, 1, truth, 2, i));
  EXPECT_EQ(1, i[0]);
}

TEST_F(Values, WhatAFailureLeaves) {
  const double x = -4;
  double r = 77;
  EXPECT_EQ(LibraryNumericalError, Math_V_V(MachFunc_sqrt, fp, 3, &x, 3, &r));
  EXPECT_TRUE(std::isnan(r));  // judged as a whole: the value was written
  const mint least = INT64_MIN;
  mint i = 77;
  EXPECT_EQ(LibraryNumericalError, Math_V_V(MachFunc_minus, integer, 2, &least, 2, &i));
  EXPECT_EQ(0, i);  // not written
  EXPECT_EQ(LibraryNumericalError, Math_V_V(MachFunc_sin, fp, 2, &least, 2, &i));
  EXPECT_EQ(LibraryNumericalError, Math_VV_V(MachFunc_quotient, 0, 2, &least, 2, &i, 2, &i));
  EXPECT_EQ(0, i);
}

TEST_F(Values, BadArguments) {
  const double x = 1;
  double r = 77;
  for (const int32_t type : {INT32_MIN, -1, 0, 5, 10, INT32_MAX}) {
    EXPECT_EQ(LibraryNumericalError, Math_V_V(MachFunc_abs, fp, type, &x, 3, &r)) << type;
    EXPECT_EQ(LibraryNumericalError, Math_V_V(MachFunc_abs, fp, 3, &x, type, &r)) << type;
    EXPECT_EQ(LibraryNumericalError, Math_VV_V(MachFunc_plus, fp, 3, &x, 3, &x, type, &r)) << type;
    if (type != 0) {
      EXPECT_EQ(LibraryNumericalError, Math_VV_V(MachFunc_plus, fp, type, &x, 3, &x, 3, &r)) << type;
    }
  }
  for (const int32_t type : {-1, 0, 14}) {
    EXPECT_EQ(LibraryNumericalError, MNumericArray_Math_V_V(MachFunc_abs, type, &x, 10, &r, fp));
    EXPECT_EQ(LibraryNumericalError, MNumericArray_Math_V_V(MachFunc_abs, 10, &x, type, &r, fp));
  }
  EXPECT_EQ(LibraryNumericalError, Math_V_V(MachFunc_abs, fp, 3, nullptr, 3, &r));
  EXPECT_EQ(LibraryNumericalError, Math_V_V(MachFunc_abs, fp, 3, &x, 3, nullptr));
  EXPECT_EQ(LibraryNumericalError, Math_VV_V(MachFunc_plus, fp, 3, nullptr, 3, &x, 3, &r));
  EXPECT_EQ(LibraryNumericalError, Math_VV_V(MachFunc_plus, fp, 3, &x, 0, nullptr, 3, &r));
  EXPECT_EQ(LibraryNumericalError, Math_VV_V(MachFunc_plus, fp, 3, &x, 3, &x, 3, nullptr));
  EXPECT_EQ(77, r);
}

TEST_F(Values, EveryElementType) {
  vlm::for_all_element_types([]<class T>() {
    constexpr int32_t type = vlm::element_code<T>;
    T x, r[2];
    std::memset(&x, 1, sizeof x);
    std::memset(r, 0x5A, sizeof r);
    const T guard = r[1];
    EXPECT_EQ(0, MNumericArray_Math_V_V(MachFunc_minus, type, &x, type, r, 0)) << type;
    T expected;
    MNumericArray_getUnaryScalarMachFunc(MachFunc_minus, type)(&expected, &x, 0);
    EXPECT_EQ(0, std::memcmp(&expected, r, sizeof expected)) << type;
    EXPECT_EQ(0, std::memcmp(&guard, r + 1, sizeof guard)) << type;
    EXPECT_EQ(0, MNumericArray_Math_VV_V(MachFunc_plus, type, &x, type, r, type, r, 0)) << type;
    MNumericArray_getBinaryScalarMachFunc(MachFunc_plus, type, type)(&expected, &x, &expected, 0);
    EXPECT_EQ(0, std::memcmp(&expected, r, sizeof expected)) << type;
    EXPECT_EQ(0, std::memcmp(&guard, r + 1, sizeof guard)) << type;
  });
}

TEST_F(Values, TwoValues) {
  const mint i = 7;
  const double d = 2;
  mint whole = 77;
  double r = 77;
  mcomplex z = {77, 77};
  EXPECT_EQ(0, Math_VV_V(MachFunc_subtract, fp, 2, &i, 3, &d, 3, &r));
  EXPECT_EQ(5, r);
  EXPECT_EQ(0, Math_VV_V(MachFunc_subtract, integer, 2, &i, 2, &i, 2, &whole));
  EXPECT_EQ(0, whole);
  EXPECT_EQ(0, Math_VV_V(MachFunc_quotient, integer, 3, &d, 2, &i, 2, &whole));
  EXPECT_EQ(0, whole);
  const double base = -8, third = 1.0 / 3.0;
  EXPECT_EQ(0, Math_VV_V(MachFunc_pow, fp, 3, &base, 3, &third, 4, &z));
  EXPECT_NEAR(1, z.re, 1e-15);
  EXPECT_NEAR(std::sqrt(3.0), z.im, 1e-15);
  EXPECT_EQ(LibraryNumericalError, Math_VV_V(MachFunc_pow, fp, 3, &base, 3, &third, 3, &r));
  // A rank-0 tensor is a value, and the result a number still.
  const array_ptr scalar = array_with<double>({10}, {});
  EXPECT_EQ(0, Math_VV_V(MachFunc_subtract, fp, 0, scalar.get(), 3, &d, 3, &r));
  EXPECT_EQ(8, r);
  EXPECT_EQ(0, MNumericArray_Math_VV_V(MachFunc_div, 10, &d, 0, scalar.get(), 10, &r, fp));
  EXPECT_EQ(0.2, r);
}

TEST_F(Values, ValuesAndArrays) {
  const array_ptr x = vector_with<double>({1, 2, 3}), y = vector_with<mint>({1, 2, 3, 4});
  const mint ten = 10;
  MTensor* made = nullptr;
  EXPECT_EQ(0, Math_VV_V(MachFunc_subtract, fp, 2, &ten, 0, x.get(), 3, &made));
  const array_ptr owner(made);
  ASSERT_NE(nullptr, made);
  EXPECT_EQ((std::vector<double>{9, 8, 7}), elements<double>(made));
  EXPECT_EQ(0, MNumericArray_Math_VV_V(MachFunc_subtract, 0, y.get(), 7, &ten, 7, &made, integer));
  EXPECT_EQ((std::vector<mint>{-9, -8, -7, -6}), elements<mint>(made));
  EXPECT_EQ(-1, Math_VV_V(MachFunc_subtract, fp, 0, x.get(), 0, y.get(), 3, &made));
  EXPECT_EQ(LibraryNumericalError, Math_VV_V(MachFunc_gcd, fp, 0, x.get(), 2, &ten, 3, &made));
  MTensor* itself = x.get();
  EXPECT_EQ(0, Math_VV_V(MachFunc_times, fp, 0, x.get(), 2, &ten, 3, &itself));
  EXPECT_EQ((std::vector<double>{10, 20, 30}), elements<double>(x.get()));
}

}  // namespace
