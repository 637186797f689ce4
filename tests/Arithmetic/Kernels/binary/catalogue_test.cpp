// The catalogue of functions of two arguments.
//
// Faults it is meant to catch: a row that is missing or too many for one pair of element types; a wrong result type; tensor types
// mapped to the wrong element types; a number beside the range that is looked up.
#include <gtest/gtest.h>

#include "Arithmetic/binary_table.h"
#include "velorim/velorim.h"

namespace {

using namespace binary_table;

TEST(BinaryCatalogue, EveryNumberHasItsRowsForEveryPairOfTypes) {
  int rows = 0;
  for (const entry& e : entries) {
    for (int32_t x = -1; x <= 15; ++x) {
      for (int32_t y = -1; y <= 15; ++y) {
        SCOPED_TRACE(testing::Message() << "function " << e.number << " on " << x << ", " << y);
        const bool types = x >= 1 && x <= 13 && y >= 1 && y <= 13;
        const int32_t expected = types ? result_type(e, x, y) : 0;
        rows += expected != 0;
        ASSERT_EQ(MNumericArray_ReturnType2(e.number, x, y), expected);
        ASSERT_EQ(MNumericArray_getBinaryVectorMachFunc(e.number, x, y) != nullptr, expected != 0);
        ASSERT_EQ(MNumericArray_getBinaryScalarMachFunc(e.number, x, y) != nullptr, expected != 0);
      }
    }
  }
  EXPECT_EQ(rows, 411);
}

TEST(BinaryCatalogue, TensorTypesReadTheRowsOfTheirElements) {
  constexpr int32_t element[] = {0, 7, 7, 10, 12};
  constexpr int32_t tensor[] = {0, 0, 0, 0, 0, 0, 0, 2, 0, 0, 3, 0, 4};
  for (const entry& e : entries) {
    for (int32_t x = -1; x <= 6; ++x) {
      for (int32_t y = -1; y <= 6; ++y) {
        SCOPED_TRACE(testing::Message() << "function " << e.number << " on tensor types " << x << ", " << y);
        const bool types = x >= 1 && x <= 4 && y >= 1 && y <= 4;
        const int32_t expected = types ? result_type(e, element[x], element[y]) : 0;
        ASSERT_EQ(MTensor_ReturnType2(e.number, x, y), tensor[expected]);
        ASSERT_EQ(MTensor_getBinaryVectorMachFunc(e.number, x, y),
                  types ? MNumericArray_getBinaryVectorMachFunc(e.number, element[x], element[y]) : nullptr);
        ASSERT_EQ(MTensor_getBinaryScalarMachFunc(e.number, x, y),
                  types ? MNumericArray_getBinaryScalarMachFunc(e.number, element[x], element[y]) : nullptr);
        const auto place = [](int32_t type) { return type == 1 ? 0 : type - 2; };
        const int32_t range = types ? e.range[3 * place(x) + place(y)] - '0' : 7;
        ASSERT_EQ(ReturnRangeType2(e.number, x, y), range);
      }
    }
  }
}

TEST(BinaryCatalogue, OtherNumbersNameNothing) {
  for (const int32_t number : {-1, 0, 1, 86, 256, 288, 513}) {
    EXPECT_EQ(MNumericArray_ReturnType2(number, 10, 10), 0);
    EXPECT_EQ(MTensor_getBinaryVectorMachFunc(number, 3, 3), nullptr);
    EXPECT_EQ(ReturnRangeType2(number, 3, 3), 7);
  }
}

}  // namespace
