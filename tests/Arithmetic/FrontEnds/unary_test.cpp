// The catalogue as the interface shows it, and the front ends that apply a function to a whole array.
//
// Faults it is meant to catch: a number or type that names the wrong row, or a row that is missing; the boolean mark left
// from an earlier call; a source read after its type changed under it; a target that leaks, is lost on failure, or loses
// its elements; integers that slip into a real result; a result too small for what the kernel writes; a status that
// hides a failing element.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "Arithmetic/unary_table.h"
#include "support/allocation_balance.h"
#include "support/array_fixture.h"
#include "velorim/array.h"
#include "velorim/machine_functions.h"
#include "velorim/status.h"

namespace {

using vlm_test::array_ptr;
using vlm_test::dims_of;

constexpr uint32_t fp = MACHFUNC_CHECK_FP, integer = MACHFUNC_CHECK_INTEGER;

// ---- The catalogue.

bool is_integer_type(int32_t type) { return type >= 1 && type <= 8; }
bool is_real_type(int32_t type) { return type == 9 || type == 10 || type == 13; }
bool is_complex_type(int32_t type) { return type == 11 || type == 12; }

/// The result type that the written table gives for a number and an element type; 0 for no row.
int32_t written_result_type(int32_t number, int32_t type) {
  for (const auto& row : unary_table::rows) {
    if (row.number != number) continue;
    const char letter = is_integer_type(type)   ? row.on_integers
                        : is_real_type(type)    ? row.on_reals
                        : is_complex_type(type) ? unary_table::on_complexes(row)
                                                : '-';
    const int32_t part = type == 12 ? 10 : 9;
    return letter == '=' ? type : letter == 'm' ? 7 : letter == 'r' ? part : 0;
  }
  return 0;
}

const std::vector<int32_t> odd_codes = {INT32_MIN, -1, 14, 15, 100, INT32_MAX};

TEST(UnaryCatalogue, RowsAreThoseOfTheWrittenTable) {
  std::vector<int32_t> numbers = {INT32_MIN, -1, 257, 513, INT32_MAX};
  for (int32_t n = 0; n <= 256; ++n) numbers.push_back(n);
  std::vector<int32_t> types = odd_codes;
  for (int32_t t = 0; t <= 13; ++t) types.push_back(t);
  int rows = 0;
  for (const int32_t number : numbers) {
    for (const int32_t type : types) {
      const int32_t expected = written_result_type(number, type);
      EXPECT_EQ(expected, MNumericArray_ReturnType1(number, type)) << number << " " << type;
      EXPECT_EQ(expected != 0, MNumericArray_getUnaryVectorMachFunc(number, type) != nullptr)
          << number << " " << type;
      EXPECT_EQ(expected != 0, MNumericArray_getUnaryScalarMachFunc(number, type) != nullptr)
          << number << " " << type;
      rows += expected != 0;
    }
  }
  EXPECT_EQ(unary_table::pair_count, rows);
}

TEST(UnaryCatalogue, TensorGettersMapTheirTypes) {
  const int32_t element_of_tensor[] = {0, 7, 7, 10, 12};
  for (int32_t number = -1; number <= 88; ++number) {
    for (const int32_t type : {INT32_MIN, -1, 5, 7, 10, INT32_MAX, 0, 1, 2, 3, 4}) {
      const int32_t element = type >= 0 && type <= 4 ? element_of_tensor[type] : 0;
      EXPECT_EQ(MNumericArray_getUnaryVectorMachFunc(number, element),
                MTensor_getUnaryVectorMachFunc(number, type));
      EXPECT_EQ(MNumericArray_getUnaryScalarMachFunc(number, element),
                MTensor_getUnaryScalarMachFunc(number, type));
      const int32_t result = written_result_type(number, element);
      EXPECT_EQ(result == 7    ? 2
                : result == 10 ? 3
                : result == 12 ? 4
                               : 0,
                MTensor_ReturnType1(number, type))
          << number << " " << type;
    }
  }
}

TEST(UnaryCatalogue, ReturnRanges) {
  const auto answer = [](char letter) {
    const std::string letters = "BIRC";
    const size_t code = letters.find(letter);
    return letter == '=' ? -1 : code == std::string::npos ? 7 : static_cast<int32_t>(code) + 1;
  };
  for (int32_t number = -2; number <= 90; ++number) {
    const char* range = "---";
    for (const auto& row : unary_table::rows) {
      if (row.number == number) range = row.range;
    }
    for (int32_t type = -1; type <= 6; ++type) {
      const char letter = type == 1 ? range[0] : type >= 2 && type <= 4 ? range[type - 2] : '-';
      uint32_t mark = 0xFFFFFFFF;
      EXPECT_EQ(answer(letter), ReturnRangeType1(number, type, &mark)) << number << " " << type;
      EXPECT_EQ(letter == 'B' ? 1u : 0u, mark) << number << " " << type;
      EXPECT_EQ(answer(letter), ReturnRangeType1(number, type, nullptr));
    }
  }
  for (const int32_t type : odd_codes) EXPECT_EQ(7, ReturnRangeType1(MachFunc_sin, type, nullptr));
}

TEST(UnaryCatalogue, IncrementTablesFollowTheirNames) {
  const std::pair<const mint*, std::string> tables[] = {
      {UnitIncrements, "RXYZ"},  {ZeroIncrements, ""},       {UnitRIncrements, "R"},
      {UnitXIncrements, "X"},    {UnitRXIncrements, "RX"},   {UnitYIncrements, "Y"},
      {UnitRYIncrements, "RY"},  {UnitZIncrements, "Z"},     {UnitRZIncrements, "RZ"},
      {UnitXYIncrements, "XY"},  {UnitRXYIncrements, "RXY"}, {UnitXZIncrements, "XZ"},
      {UnitYZIncrements, "YZ"},  {UnitRXZIncrements, "RXZ"}, {UnitRYZIncrements, "RYZ"},
      {UnitXYZIncrements, "XYZ"}};
  for (const auto& [table, letters] : tables) {
    for (int i = 0; i < 4; ++i) {
      EXPECT_EQ(letters.find("RXYZ"[i]) != std::string::npos ? 1 : 0, table[i]) << letters;
    }
  }
}

// ---- Front ends.

array_ptr array_of(int32_t type, const std::vector<mint>& dims) {
  return array_ptr(
      MNumericArray_newAllocatedCommon(type, static_cast<mint>(dims.size()), dims.data(), FailFatal));
}
array_ptr reals(const std::vector<double>& xs, std::vector<mint> dims = {}) {
  if (dims.empty()) dims = {static_cast<mint>(xs.size())};
  array_ptr a = array_of(MNumericArrayTypeReal64, dims);
  std::copy(xs.begin(), xs.end(), static_cast<double*>(a->data));
  return a;
}
array_ptr integers(const std::vector<mint>& xs) {
  array_ptr a = array_of(MNumericArrayTypeInteger64, {static_cast<mint>(xs.size())});
  std::copy(xs.begin(), xs.end(), static_cast<mint*>(a->data));
  return a;
}
std::vector<double> real_elements(const MNumericArray* a) {
  const auto* p = static_cast<const double*>(a->data);
  return {p, p + a->flattenedLength};
}
std::vector<mint> integer_elements(const MNumericArray* a) {
  const auto* p = static_cast<const mint*>(a->data);
  return {p, p + a->flattenedLength};
}

/// The two families do the same to real tensors: one list of cases goes through both.
struct front_end {
  const char* name;
  int32_t (*apply)(int32_t number, const MNumericArray* source, bool integer_result, MNumericArray** result,
                   uint32_t flags);
};
void PrintTo(const front_end& f, std::ostream* out) { *out << f.name; }

const front_end front_ends[] = {
    {"tensor",
     [](int32_t number, const MNumericArray* source, bool integer_result, MNumericArray** result,
        uint32_t flags) {
       return Math_T_T(number, flags, source, integer_result ? MTensorTypeInteger : MTensorTypeReal, result);
     }},
    {"array",
     [](int32_t number, const MNumericArray* source, bool integer_result, MNumericArray** result,
        uint32_t flags) {
       const int32_t type = integer_result ? MNumericArrayTypeInteger64 : MNumericArrayTypeReal64;
       return MNumericArray_Math_T_T(number, source, type, result, flags);
     }},
};
class FrontEnd : public testing::TestWithParam<front_end> {
 protected:
  const vlm::test::AllocationBalance balance_;
  static int32_t apply(int32_t number, const MNumericArray* source, bool integer_result,
                       MNumericArray** result, uint32_t flags = fp | integer) {
    return GetParam().apply(number, source, integer_result, result, flags);
  }
};
INSTANTIATE_TEST_SUITE_P(Families, FrontEnd, testing::ValuesIn(front_ends),
                         [](const auto& family) { return std::string(family.param.name); });

TEST_P(FrontEnd, MakesTheTargetOrReusesIt) {
  const array_ptr source = reals({1, 4, 9, 16, 25, 36}, {2, 3});
  MNumericArray* made = nullptr;
  ASSERT_EQ(0, apply(MachFunc_sqrt, source.get(), false, &made));
  const array_ptr owner(made);
  EXPECT_EQ((std::vector<double>{1, 2, 3, 4, 5, 6}), real_elements(made));
  EXPECT_EQ((std::vector<mint>{2, 3}), dims_of(made));
  EXPECT_EQ(MTensorTypeReal, static_cast<int32_t>(made->tensorType));

  // An array of the same shape keeps its storage; one of another shape and type is reshaped.
  void* storage = made->data;
  ASSERT_EQ(0, apply(MachFunc_minus, source.get(), false, &made));
  EXPECT_EQ(owner.get(), made);
  EXPECT_EQ(storage, made->data);
  EXPECT_EQ(-36, real_elements(made)[5]);
  const array_ptr other = integers({1, 2, 3, 4});
  MNumericArray* target = other.get();
  ASSERT_EQ(0, apply(MachFunc_square, source.get(), false, &target));
  EXPECT_EQ(other.get(), target);
  EXPECT_EQ((std::vector<mint>{2, 3}), dims_of(target));
  EXPECT_EQ((std::vector<double>{1, 16, 81, 256, 625, 1296}), real_elements(target));
}

TEST_P(FrontEnd, TheSourceAsTarget) {
  const array_ptr same_type = reals({1, 4, 9});
  MNumericArray* target = same_type.get();
  ASSERT_EQ(0, apply(MachFunc_sqrt, target, false, &target));
  EXPECT_EQ(same_type.get(), target);
  EXPECT_EQ((std::vector<double>{1, 2, 3}), real_elements(target));

  const array_ptr changes_type = reals({1.5, -2.5, 3.5, 1e6});
  target = changes_type.get();
  ASSERT_EQ(0, apply(MachFunc_floor, target, true, &target));
  EXPECT_EQ(changes_type.get(), target);
  EXPECT_EQ(MNumericArrayTypeInteger64, static_cast<int32_t>(target->elementType));
  EXPECT_EQ((std::vector<mint>{1, -3, 3, 1000000}), integer_elements(target));
}

TEST_P(FrontEnd, FailingElements) {
  // In place: exact, with the failing element and all behind it as they were.
  const array_ptr data = reals({1, 4, 9, 16, 25, -36, 49});
  MNumericArray* target = data.get();
  EXPECT_EQ(LibraryNumericalError, apply(MachFunc_sqrt, target, false, &target));
  EXPECT_EQ((std::vector<double>{1, 2, 3, 4, 5, -36, 49}), real_elements(target));
  // Apart: the array is there and all elements are written.
  const array_ptr source = reals({1, -4, 9});
  MNumericArray* made = nullptr;
  EXPECT_EQ(LibraryNumericalError, apply(MachFunc_sqrt, source.get(), false, &made));
  const array_ptr owner(made);
  ASSERT_NE(nullptr, made);
  EXPECT_EQ(3, real_elements(made)[2]);
  EXPECT_EQ(0, apply(MachFunc_sqrt, source.get(), false, &made, 0));
}

TEST_P(FrontEnd, NoSuchFunction) {
  const array_ptr source = reals({1, 2});
  for (const int32_t number : {4, 0, -1, 54, 61, 256, 257}) {
    MNumericArray* made = nullptr;
    EXPECT_EQ(LibraryNumericalError, apply(number, source.get(), false, &made)) << number;
    const array_ptr owner(made);
    EXPECT_NE(nullptr, made);
  }
  MNumericArray* made = nullptr;
  EXPECT_EQ(LibraryNumericalError, apply(MachFunc_sin, nullptr, false, &made));
  EXPECT_EQ(nullptr, made);
  EXPECT_EQ(LibraryNumericalError, apply(MachFunc_sin, source.get(), false, nullptr));
}

TEST_P(FrontEnd, EveryShape) {
  for (const auto& dims : vlm_test::sample_shapes()) {
    const array_ptr source = array_of(MNumericArrayTypeReal64, dims);
    auto* x = static_cast<double*>(source->data);
    for (mint i = 0; i < source->flattenedLength; ++i) x[i] = static_cast<double>(i);
    MNumericArray* made = nullptr;
    ASSERT_EQ(0, apply(MachFunc_square, source.get(), false, &made));
    const array_ptr owner(made);
    ASSERT_EQ(dims, dims_of(made));
    for (mint i = 0; i < made->flattenedLength; ++i) {
      ASSERT_EQ(static_cast<double>(i * i), static_cast<double*>(made->data)[i]);
    }
    MNumericArray* itself = source.get();
    ASSERT_EQ(0, apply(MachFunc_round, itself, true, &itself));
    ASSERT_EQ(dims, dims_of(itself));
    for (mint i = 0; i < itself->flattenedLength; ++i) ASSERT_EQ(i, static_cast<mint*>(itself->data)[i]);
  }
}

TEST_P(FrontEnd, ExhaustedMemory) {
  const array_ptr source = reals(std::vector<double>(3000, 4.0));
  const auto into_new = [&] {
    MNumericArray* made = nullptr;
    const int32_t status = apply(MachFunc_sqrt, source.get(), false, &made);
    const array_ptr owner(made);
    EXPECT_TRUE(status == 0 || status == LibraryMemoryError) << status;
    EXPECT_EQ(status == 0, made != nullptr);
    return status == 0;
  };
  EXPECT_GT(vlm::test::for_each_failing_allocation(into_new), 0);
  // Only the front end's allocations are to fail, so the data is made before.
  const std::vector<double> values(3000, 4.5);
  for (int64_t n = 0; n < 10; ++n) {
    const array_ptr data = reals(values);
    MNumericArray* target = data.get();
    vlm::memory::fail_allocation_after(n);
    const int32_t status = apply(MachFunc_floor, target, true, &target);
    const bool failed = !vlm::memory::allocation_failure_pending();
    vlm::memory::fail_allocation_after(-1);
    EXPECT_EQ(failed ? LibraryMemoryError : 0, status);
    EXPECT_EQ(data.get(), target);
    if (status == 0) {
      EXPECT_EQ(std::vector<mint>(3000, 4), integer_elements(target));
      EXPECT_GT(n, 0);
      return;
    }
    EXPECT_EQ(MNumericArrayTypeReal64, static_cast<int32_t>(target->elementType));
    EXPECT_EQ(values, real_elements(target));
  }
  ADD_FAILURE() << "never succeeded";
}

/// A record whose dimensions are bad: the allocation's own code comes through and nothing is left behind.
TEST_P(FrontEnd, NegativeDimension) {
  const array_ptr source = reals({1, 2, 3});
  source->dims[0] = -3;
  MNumericArray* made = nullptr;
  EXPECT_EQ(ArrayStatusBadDimensions, apply(MachFunc_sqrt, source.get(), false, &made));
  EXPECT_EQ(nullptr, made);
  source->dims[0] = 3;
}

// ---- Operators.

/// Complex sources: with complex, real and integer results; a refused element and all behind it keep what they held.
TEST(Operators, ComplexSources) {
  const vlm::test::AllocationBalance balance;
  const array_ptr z = array_of(MNumericArrayTypeComplexReal64, {3});
  auto* parts = static_cast<mcomplex*>(z->data);
  parts[0] = {3, -4};
  parts[1] = {0, 0};
  parts[2] = {-4, 0};
  array_ptr root = array_of(MNumericArrayTypeComplexReal64, {3});
  const array_ptr size = reals({9, 9, 9}), whole = integers({9, 9, 9});
  EXPECT_EQ(-2, TensorOp1(z.get(), root.get(), MachFunc_sqrt, fp));
  const auto* roots = static_cast<const mcomplex*>(root->data);
  EXPECT_EQ(2, roots[0].re);
  EXPECT_EQ(-1, roots[0].im);
  EXPECT_EQ(0, roots[2].re);
  EXPECT_EQ(2, roots[2].im);
  EXPECT_EQ(-2, TensorOp1(z.get(), size.get(), MachFunc_abs, fp));
  EXPECT_EQ((std::vector<mreal>{5, 0, 4}), real_elements(size.get()));
  EXPECT_EQ(-2, TensorOp1(z.get(), whole.get(), MachFunc_unitize, integer));
  EXPECT_EQ((std::vector<mint>{1, 0, 1}), integer_elements(whole.get()));
  EXPECT_EQ(-1, TensorOp1(z.get(), root.get(), MachFunc_cbrt, 0));
  // Apart the run is judged as a whole; in place the position is exact, and checked parts stay.
  EXPECT_EQ(0, TensorOp1(z.get(), root.get(), MachFunc_recip, fp));
  EXPECT_EQ(1, TensorOp1(z.get(), z.get(), MachFunc_recip, fp));
  EXPECT_EQ(0.12, parts[0].re);
  EXPECT_EQ(0.16, parts[0].im);
  EXPECT_EQ(0, parts[1].re);
  EXPECT_EQ(-4, parts[2].re);
}

TEST(Operators, OutcomesByTypes) {
  const vlm::test::AllocationBalance balance;
  const array_ptr real = reals({1, -4, 9}), real_result = reals({0, 0, 0});
  const array_ptr whole = integers({1, 2, 3}), whole_result = integers({0, 0, 0});
  const array_ptr complex = array_of(MNumericArrayTypeComplexReal64, {3});

  EXPECT_EQ(-2, TensorOp1(real.get(), real_result.get(), MachFunc_square, fp));
  EXPECT_EQ(-2, TensorOp1(real.get(), whole_result.get(), MachFunc_sign, fp));
  EXPECT_EQ((std::vector<mint>{1, -1, 1}), integer_elements(whole_result.get()));
  EXPECT_EQ(0, TensorOp1(real.get(), real_result.get(), MachFunc_sqrt, fp));
  EXPECT_EQ(-2, TensorOp1(whole.get(), whole_result.get(), MachFunc_square, integer));
  // Integers have integer results only, whatever the function and the room.
  EXPECT_EQ(-1, TensorOp1(whole.get(), real_result.get(), MachFunc_square, 0));
  EXPECT_EQ(-1, TensorOp1(whole.get(), complex.get(), MachFunc_square, 0));
  EXPECT_EQ(-1, TensorOp1(whole.get(), whole_result.get(), MachFunc_sin, 0));
  EXPECT_EQ(-1, TensorOp1(nullptr, whole_result.get(), MachFunc_square, 0));
  EXPECT_EQ(-1, TensorOp1(whole.get(), nullptr, MachFunc_square, 0));

  // The packed form goes by the type it is given; 1 counts as 2.
  EXPECT_EQ(-2, PackedTensorOp1(whole.get(), whole_result.get(), MTensorTypeBoolean, MachFunc_pos, 0));
  for (const int32_t type : {0, 5, -1}) {
    EXPECT_EQ(-1, PackedTensorOp1(whole.get(), whole_result.get(), type, MachFunc_square, 0));
  }
  EXPECT_EQ(-2, PackedTensorOp1(real.get(), real_result.get(), MTensorTypeInteger, MachFunc_floor, 0));
  EXPECT_EQ((std::vector<mint>{1, -4, 9}), integer_elements(real_result.get()));
}

TEST(Operators, IndexOfTheFailingElement) {
  const array_ptr data = reals({1, 4, 9, 16, 25, -36, 49});
  EXPECT_EQ(5, TensorOp1(data.get(), data.get(), MachFunc_sqrt, fp));
  EXPECT_EQ((std::vector<double>{1, 2, 3, 4, 5, -36, 49}), real_elements(data.get()));
  const array_ptr apart = reals({1, 4, -9}), result = reals({-7, -7, -7});
  EXPECT_EQ(0, MNumericArray_Op1(apart.get(), result.get(), MachFunc_sqrt, fp));
  EXPECT_EQ(2, real_elements(result.get())[1]);
  const array_ptr squares = integers({5, INT64_MAX, 6});
  EXPECT_EQ(1, MNumericArray_Op1(squares.get(), squares.get(), MachFunc_square, integer));
  EXPECT_EQ((std::vector<mint>{25, INT64_MAX, 6}), integer_elements(squares.get()));
}

TEST(Operators, ResultTooSmallIsRefused) {
  const array_ptr source = reals({1, 2, 3}), shorter = reals({-7, -7});
  EXPECT_EQ(-1, TensorOp1(source.get(), shorter.get(), MachFunc_square, fp));
  EXPECT_EQ((std::vector<double>{-7, -7}), real_elements(shorter.get()));
  // Bytes count: three Real32 have no room for the Integer64 that floor writes.
  const array_ptr narrow = array_of(MNumericArrayTypeReal32, {3});
  EXPECT_EQ(-1, MNumericArray_Op1(narrow.get(), narrow.get(), MachFunc_floor, 0));
}

TEST(Operators, EveryElementType) {
  vlm::for_all_element_types([]<class T>() {
    constexpr int32_t type = vlm::element_code<T>;
    const array_ptr source = array_of(type, {4}), result = array_of(type, {4});
    std::memset(source->data, 0, 4 * sizeof(T));
    std::memset(result->data, 0x5A, 4 * sizeof(T));
    const bool has_row = written_result_type(MachFunc_conj, type) != 0;
    EXPECT_EQ(has_row ? -2 : -1, MNumericArray_Op1(source.get(), result.get(), MachFunc_conj, ~0u)) << type;
    EXPECT_EQ(has_row, std::memcmp(source->data, result->data, 4 * sizeof(T)) == 0) << type;
    MNumericArray* made = nullptr;
    EXPECT_EQ(has_row ? 0 : 1, MNumericArrayMathUnary(&made, source.get(), MachFunc_conj, type, 0)) << type;
    const array_ptr owner(made);
  });
}

}  // namespace
