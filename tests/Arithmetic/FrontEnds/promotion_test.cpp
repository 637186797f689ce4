// Promotion of real arguments to a complex result, and the table of unary operators that leads to it.
//
// Faults it is meant to catch: an operator for a pair of types that has none; an array that turns complex although reals sufficed, or stays
// real although one element did not; arguments lost when the array they lie in changes its type; an outcome that forgets the elements before
// the first failure; a run of several elements judged where each would be judged otherwise; a complex value without imaginary part taken as
// a cure; integers that a row writes left as bits in an array of reals; an array half changed when memory runs out.
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>
#include <vector>

#include "Arithmetic/FrontEnds/arrays.h"
#include "support/allocation_balance.h"
#include "velorim/tensor_arithmetic.h"

namespace {

using namespace front_end_test;
using vlm_test::dims_of;
using reals = std::vector<double>;

constexpr uint32_t fp = MACHFUNC_CHECK_FP, integer = MACHFUNC_CHECK_INTEGER;
constexpr double infinity = std::numeric_limits<double>::infinity();
const double pi = std::acos(-1.0);

void expect_parts(const MNumericArray* array, const reals& expected) {
  ASSERT_EQ(MNumericArrayTypeComplexReal64, type_of(array));
  const reals found = parts(array);
  ASSERT_EQ(expected.size(), found.size());
  for (size_t i = 0; i < expected.size(); ++i) {
    EXPECT_NEAR(expected[i], found[i], 1e-14) << "part " << i;
  }
}
void expect_reals(const MNumericArray* array, const reals& expected) {
  ASSERT_EQ(MNumericArrayTypeReal64, type_of(array));
  EXPECT_EQ(expected, elements<double>(array));
}

// ---- One argument.

TEST(TensorOp1Table, EveryNumberOnEveryPair) {
  const auto in = [](int32_t number, std::initializer_list<std::pair<int, int>> ranges) {
    for (const auto& [first, last] : ranges) {
      if (number >= first && number <= last) return true;
    }
    return false;
  };
  for (int32_t number = -1; number <= 90; ++number) {
    const bool hole = number <= 28 && number % 4 == 0;
    const bool on_reals = !hole && in(number, {{1, 53}, {56, 60}, {66, 86}});
    const bool on_complexes =
        !hole && in(number, {{1, 44}, {52, 52}, {56, 57}, {59, 60}, {67, 73}, {78, 80}, {82, 82}});
    const bool on_integers = in(number, {{36, 56}, {61, 66}, {68, 69}, {76, 76}, {78, 79}, {81, 86}});
    const array_ptr sources[] = {vector_with<mint>({1}), vector_with<double>({0.75}),
                                 vector_with<mcomplex>({{0.75, 0.5}})};
    for (int s = 0; s < 3; ++s) {
      for (int r = 0; r < 3; ++r) {
        const array_ptr result = r == 0   ? vector_with<mint>({0, 0})
                                 : r == 1 ? vector_with<double>({0, 0})
                                          : vector_with<mcomplex>({{0, 0}, {0, 0}});
        const bool expected = s == 0   ? on_integers && r == 0
                              : s == 2 ? on_complexes
                              : r == 2 ? on_reals && on_complexes
                                       : on_reals;
        EXPECT_EQ(expected, TensorOp1(sources[s].get(), result.get(), number, 0) != -1)
            << number << ": " << s + 2 << " to " << r + 2;
      }
    }
  }
}

TEST(UnaryPromotion, StaysRealOrTurnsComplex) {
  const vlm::test::AllocationBalance balance;
  struct {
    reals source;
    uint32_t flags;
    mint outcome;
    reals result;  // reals for -2, else parts
  } const cases[] = {
      {{1, 4, 9}, fp, -2, {1, 2, 3}},
      {{1, -4, 9}, fp, -7, {1, 0, 0, 2, 3, 0}},
      {{-4}, fp, -4, {0, 2}},
      {{-4, -9}, fp, -4, {0, 2, 0, 3}},
      {{-4, 9}, fp, -7, {0, 2, 3, 0}},
      {{4, -9}, fp, -7, {2, 0, 0, 3}},
      {{}, fp, -2, {}},
  };
  for (const auto& c : cases) {
    for (const bool in_place : {false, true}) {
      const array_ptr source = vector_with(c.source), other = vector_with(reals(c.source.size(), 77));
      MTensor* const result = in_place ? source.get() : other.get();
      ASSERT_EQ(c.outcome, PackedTensorOp1(source.get(), result, MTensorTypeComplex, MachFunc_sqrt, c.flags));
      c.outcome == -2 ? expect_reals(result, c.result) : expect_parts(result, c.result);
      EXPECT_TRUE(vlm::array_is_valid(result));
    }
  }
  // Without the check the real row has no failure.
  const array_ptr x = vector_with<double>({4, -9}), r = vector_with<double>({0, 0}),
                  z = vector_with<mcomplex>({{7, 7}, {7, 7}});
  EXPECT_EQ(-2, PackedTensorOp1(x.get(), r.get(), MTensorTypeComplex, MachFunc_sqrt, integer));
  EXPECT_TRUE(std::isnan(elements<double>(r.get())[1]));
  EXPECT_EQ(-3, TensorOp1(x.get(), z.get(), MachFunc_sqrt, 0));
  EXPECT_TRUE(std::isnan(parts(z.get())[2]));
  // An array that is complex already.
  EXPECT_EQ(-7, TensorOp1(x.get(), z.get(), MachFunc_sqrt, fp));
  expect_parts(z.get(), {2, 0, 0, 3});
  EXPECT_EQ(-3, TensorOp1(x.get(), z.get(), MachFunc_exp, fp));
  const array_ptr small = vector_with<mcomplex>({{7, 7}});
  EXPECT_EQ(-1, TensorOp1(x.get(), small.get(), MachFunc_sqrt, fp));
  EXPECT_EQ(-1,
            PackedTensorOp1(z.get(), vector_with<double>({7}).get(), MTensorTypeComplex, MachFunc_sqrt, fp));
}

TEST(UnaryPromotion, FailsInBothWays) {
  for (const bool in_place : {false, true}) {
    const array_ptr source = vector_with<double>({1, -1, 0, 4}), other = vector_with<double>({0, 0, 0, 0});
    MTensor* const result = in_place ? source.get() : other.get();
    EXPECT_EQ(2, PackedTensorOp1(source.get(), result, MTensorTypeComplex, MachFunc_log, fp));
    ASSERT_EQ(MNumericArrayTypeComplexReal64, type_of(result));
    EXPECT_NEAR(pi, parts(result)[3], 1e-15);
    if (in_place) expect_parts(result, {0, 0, 0, pi, 0, 0, 4, 0});
  }
}

TEST(UnaryPromotion, RowsThatGiveOtherTypes) {
  const array_ptr x = vector_with<double>({-2.5, 0, 3}), r = vector_with<double>({7, 7, 7}),
                  z = vector_with<mcomplex>({{7, 7}, {7, 7}, {7, 7}});
  EXPECT_EQ(-2, PackedTensorOp1(x.get(), r.get(), MTensorTypeComplex, MachFunc_sign, fp));
  expect_reals(r.get(), {-1, 0, 1});
  EXPECT_EQ(-3, TensorOp1(x.get(), z.get(), MachFunc_sign, fp));
  expect_parts(z.get(), {-1, 0, 0, 0, 1, 0});
  EXPECT_EQ(-7,
            TensorOp1(x.get(), z.get(), MachFunc_arg, fp));  // of negative numbers the real row knows none
  expect_parts(z.get(), {pi, 0, 0, 0, 0, 0});
  EXPECT_EQ(-7, PackedTensorOp1(x.get(), x.get(), MTensorTypeComplex, MachFunc_arg, 0));
  expect_parts(x.get(), {pi, 0, 0, 0, 0, 0});
}

TEST(UnaryPromotion, WholeArrays) {
  const vlm::test::AllocationBalance balance;
  const array_ptr x = array_with<double>({4, -9, 16, -25}, {2, 2});
  MTensor* made = nullptr;
  EXPECT_EQ(0, Math_T_T(MachFunc_sqrt, fp, x.get(), MTensorTypeComplex, &made));
  const array_ptr owner(made);
  expect_parts(made, {2, 0, 0, 3, 4, 0, 0, 5});
  EXPECT_EQ((std::vector<mint>{2, 2}), dims_of(made));
  MTensor* itself = x.get();
  EXPECT_EQ(0, Math_T_T(MachFunc_sqrt, fp, itself, MTensorTypeComplex, &itself));
  EXPECT_EQ(x.get(), itself);
  expect_parts(itself, {2, 0, 0, 3, 4, 0, 0, 5});
  const array_ptr none = array_of(MNumericArrayTypeReal64, {0});
  EXPECT_EQ(LibraryNumericalError, Math_T_T(MachFunc_sqrt, fp, none.get(), MTensorTypeComplex, &made));
  const array_ptr kept = vector_with<double>({1, 8});
  itself = kept.get();
  EXPECT_EQ(LibraryNumericalError, Math_T_T(MachFunc_cbrt, fp, itself, MTensorTypeComplex, &itself));
  expect_reals(itself, {1, 8});
}

/// Runs of many lengths: each element is what the scalar kernels give.
TEST(UnaryPromotion, ElementByElement) {
  std::mt19937_64 engine(3);
  const auto real = MNumericArray_getUnaryScalarMachFunc(MachFunc_log, MNumericArrayTypeReal64);
  const auto complex = MNumericArray_getUnaryScalarMachFunc(MachFunc_log, MNumericArrayTypeComplexReal64);
  for (const double share : {0.0, 0.001, 0.02, 0.5, 1.0}) {
    reals source(3000), expected;
    mint types = 0;
    for (double& v : source) {
      v = std::exp(static_cast<double>(engine() % 1000) / 100 - 5);
      if (std::uniform_real_distribution<>()(engine) < share) v = -v;
      mcomplex z = {0, 0};
      if (real(&z.re, &v, fp) == 0) {
        types |= 3;
      } else {
        const mcomplex wide = {v, 0};
        ASSERT_EQ(0, complex(&z, &wide, fp));
        types |= 4;
      }
      expected.push_back(z.re), expected.push_back(z.im);
    }
    const array_ptr x = vector_with(source), z = array_of(MNumericArrayTypeComplexReal64, {3000});
    EXPECT_EQ(-types, TensorOp1(x.get(), z.get(), MachFunc_log, fp));
    EXPECT_EQ(expected, parts(z.get())) << share;
    EXPECT_EQ(types == 3 ? -2 : -types,
              PackedTensorOp1(x.get(), x.get(), MTensorTypeComplex, MachFunc_log, fp));
    if (types != 3) {
      EXPECT_EQ(expected, parts(x.get())) << share;
    }
  }
}

TEST(UnaryPromotion, ExhaustedMemory) {
  const auto attempt = [] {
    const array_ptr x = array_with(reals{1, 4, -9}, {3});
    vlm::memory::fail_allocation_after(0);
    const mint outcome = PackedTensorOp1(x.get(), x.get(), MTensorTypeComplex, MachFunc_sqrt, fp);
    EXPECT_FALSE(vlm::memory::allocation_failure_pending());
    vlm::memory::fail_allocation_after(-1);
    EXPECT_EQ(2, outcome);
    expect_reals(x.get(), {1, 2, -9});
  };
  const vlm::test::AllocationBalance balance;
  attempt();
}

// ---- Two arguments.

struct binary_case {
  int32_t number;
  reals x, y;  // integers where the name says so
  bool x_integer, y_integer;
  uint32_t flags;
  mint into_real, into_complex;  // outcomes with a Real and with a Complex result
  reals result;                  // parts
};
void PrintTo(const binary_case& c, std::ostream* out) {
  *out << c.number << " on " << testing::PrintToString(c.x);
}

class BinaryPromotion : public testing::TestWithParam<binary_case> {};

TEST_P(BinaryPromotion, Outcomes) {
  const vlm::test::AllocationBalance balance;
  const binary_case& c = GetParam();
  const auto operand = [](const reals& values, bool integers) {
    return integers ? vector_with(std::vector<mint>(values.begin(), values.end())) : vector_with(values);
  };
  const size_t n = std::max(c.x.size(), c.y.size());
  const array_ptr x = operand(c.x, c.x_integer), y = operand(c.y, c.y_integer), r = vector_with(reals(n, 77)),
                  z = vector_with(std::vector<mcomplex>(n, {77, 77}));
  EXPECT_EQ(c.into_complex, TensorOp2(x.get(), y.get(), z.get(), c.number, c.flags));
  if (c.into_complex < -2) expect_parts(z.get(), c.result);
  reals real_parts;
  for (size_t i = 0; i < c.result.size(); i += 2) real_parts.push_back(c.result[i]);
  EXPECT_EQ(c.into_real, PackedTensorOp2(x.get(), y.get(), r.get(), MTensorTypeComplex, c.number, c.flags));
  if (c.into_real == -2) {
    expect_reals(r.get(), real_parts);
  } else if (c.into_real < -2) {
    expect_parts(r.get(), c.result);
  }
  // In place, on the operand that has the result's shape and is real.
  for (const bool on_x : {true, false}) {
    if ((on_x ? c.x_integer : c.y_integer) || (on_x ? c.x : c.y).size() != n) continue;
    const array_ptr a = operand(c.x, c.x_integer), b = operand(c.y, c.y_integer);
    MTensor* const to = (on_x ? a : b).get();
    // Promotion finds the same elements, whatever was judged as a whole before.
    EXPECT_EQ(c.into_real, PackedTensorOp2(a.get(), b.get(), to, MTensorTypeComplex, c.number, c.flags))
        << on_x;
    if (c.into_real == -2) {
      expect_reals(to, real_parts);
    } else if (c.into_real < -2) {
      expect_parts(to, c.result);
    }
    EXPECT_TRUE(vlm::array_is_valid(to));
  }
}

const double root2 = std::sqrt(2.0);
INSTANTIATE_TEST_SUITE_P(
    Cases, BinaryPromotion,
    testing::Values(
        binary_case{MachFunc_pow, {-8, 4}, {0.5, 0.5}, false, false, fp, -7, -7, {0, 2 * root2, 2, 0}},
        binary_case{MachFunc_pow, {4}, {0.5}, false, false, fp, -2, -3, {2, 0}},
        binary_case{MachFunc_pow, {4, 9, 16}, {0.5}, false, false, fp, -2, -3, {2, 0, 3, 0, 4, 0}},
        binary_case{MachFunc_pow, {4, -9, 16}, {0.5}, false, false, fp, -7, -7, {2, 0, 0, 3, 4, 0}},
        binary_case{MachFunc_pow, {-8}, {1.0 / 3.0}, false, false, fp, -4, -4, {1, std::sqrt(3.0)}},
        binary_case{MachFunc_pow, {-4}, {0.5, 2, 0.5}, false, false, fp, -7, -7, {0, 2, 16, 0, 0, 2}},
        binary_case{MachFunc_pow, {-2, 2}, {0.5, 0.5}, true, false, fp, -7, -7, {0, root2, root2, 0}},
        binary_case{MachFunc_pow, {-2, 3}, {3, 2}, false, true, fp, -2, -3, {-8, 0, 9, 0}},
        binary_case{MachFunc_log2of, {2, 2}, {-8, 8}, true, false, fp, -7, -7, {3, pi / std::log(2.0), 3, 0}},
        binary_case{MachFunc_div, {6, 1}, {3, 0}, false, false, fp, 1, 1, {}},  // a pole in both
        binary_case{
            MachFunc_abserr, {1, 1.7e308}, {3, -1.7e308}, false, false, 0, -2, 1, {2, 0, infinity, 0}},
        binary_case{MachFunc_plus, {1, 2}, {0.5, 0.5}, true, false, fp, -2, -3, {1.5, 0, 2.5, 0}},
        binary_case{MachFunc_max, {1, 2}, {3, 1}, false, false, fp, -2, -1, {3, 0, 2, 0}},  // no complex row
        binary_case{MachFunc_quotient, {7, -7}, {2, 2}, false, false, fp | integer, -2, -1, {3, 0, -4, 0}},
        binary_case{MachFunc_gcd, {4, 6}, {2, 3}, false, false, fp, -1, -1, {}},
        binary_case{MachFunc_chop, {1, 2}, {3, 1}, true, false, fp, -1, -1, {}}));

TEST(BinaryPromotionArrays, KeepsRealInPlaceAndBlocks) {
  const vlm::test::AllocationBalance balance;
  array_ptr x = array_with<double>({4, 9, 16, 25}, {2, 2});
  const array_ptr y = vector_with<double>({0.5, -0.5});
  MTensor* to = x.get();
  EXPECT_EQ(0, Math_TT_T(MachFunc_pow, fp, to, y.get(), MTensorTypeComplex, &to));
  expect_reals(to, {2, 3, 0.25, 0.2});
  MTensor* made = nullptr;
  EXPECT_EQ(0, Math_TT_T(MachFunc_pow, fp, y.get(), y.get(), MTensorTypeComplex, &made));
  const array_ptr owner(made);
  ASSERT_EQ(MNumericArrayTypeComplexReal64, type_of(made));
  x = array_with<double>({4, -9, 16, 25}, {2, 2});
  to = x.get();
  EXPECT_EQ(0, Math_TT_T(MachFunc_pow, fp, to, y.get(), MTensorTypeComplex, &to));
  EXPECT_EQ(x.get(), to);
  expect_parts(to, {2, 0, 0, 3, 0.25, 0, 0.2, 0});
  // Integers in place become complex apart.
  array_ptr whole = vector_with<mint>({-4, 9});
  to = whole.get();
  EXPECT_EQ(0,
            Math_TT_T(MachFunc_pow, fp, to, vector_with<double>({0.5, 0.5}).get(), MTensorTypeComplex, &to));
  expect_parts(to, {0, 2, 3, 0});
  // What fails in both ways keeps the values behind it.
  x = vector_with<double>({4, -9, 0, 5});
  const array_ptr powers = vector_with<double>({0.5, 0.5, -1, 0.5});
  EXPECT_EQ(2, PackedTensorOp2(x.get(), powers.get(), x.get(), MTensorTypeComplex, MachFunc_pow, fp));
  expect_parts(x.get(), {2, 0, 0, 3, 0, 0, 5, 0});
  // Out of memory: real, up to the failure.
  x = vector_with<double>({4, -9, 16});
  const array_ptr half = vector_with<double>({0.5, 0.5, 0.5});
  vlm::memory::fail_allocation_after(0);
  EXPECT_EQ(1, PackedTensorOp2(x.get(), half.get(), x.get(), MTensorTypeComplex, MachFunc_pow, fp));
  vlm::memory::fail_allocation_after(-1);
  expect_reals(x.get(), {2, -9, 16});
}

}  // namespace
