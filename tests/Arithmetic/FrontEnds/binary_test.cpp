// Front ends of two arguments: the operator table, shapes that meet, positions, aliasing, x op= y.
//
// Faults it is meant to catch: a pair of types that takes a function it should not, or lacks one; shapes that meet by trailing dimensions;
// the operands of an asymmetric function exchanged where the shorter is the second; a position counted within a block, or in a block of
// several that are worked on at once; elements behind the failing block written; an operand read after it was overwritten; a target that
// loses its type, shape or elements when nothing could be done; old values of x kept in the wrong places or type.
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "Arithmetic/FrontEnds/arrays.h"
#include "support/allocation_balance.h"
#include "velorim/parallel.h"
#include "velorim/tensor_arithmetic.h"

namespace {

using namespace front_end_test;
using vlm_test::dims_of;

constexpr uint32_t fp = MACHFUNC_CHECK_FP, integer = MACHFUNC_CHECK_INTEGER;

// ---- The operator table, written out.

struct function {
  int32_t number;
  const char* rows;  // pairs of tensor types with a row, i d c: those of equal types and the mixed ones
  const char* sets;  // pairs whose operators take it
};
constexpr char all_pairs[] = "ii id ic di dd dc ci cd cc", no_ii[] = "id ic di dd dc ci cd cc";
constexpr char not_ci_cd[] = "ii id ic di dd dc cc", reals[] = "ii id di dd", only_real[] = "ii dd";
constexpr function functions[] = {
    {257, all_pairs, all_pairs},               // plus
    {258, all_pairs, all_pairs},               // subtract
    {259, all_pairs, all_pairs},               // times
    {260, no_ii, no_ii},                       // div
    {261, all_pairs, all_pairs},               // mod
    {262, reals, reals},                       // quotient
    {263, all_pairs, all_pairs},               // pow
    {264, no_ii, no_ii},                       // log
    {265, no_ii, no_ii},                       // atan2
    {266, "ii", only_real},                    // bitand
    {267, "ii", only_real},                    // bitor
    {268, "ii", only_real},                    // bitxor
    {269, "dd cd", "dd cd"},                   // chop
    {270, all_pairs, all_pairs},               // abserr
    {271, no_ii, no_ii},                       // relerr
    {272, "ii dd cc", "ii dd cc"},             // maxabs
    {273, "ii", only_real},                    // intexp
    {274, "ii", only_real},                    // intlen
    {275, "ii di ci", "ii di dd ci"},          // bitshiftleft
    {276, "ii di ci", "ii di dd ci"},          // bitshiftright
    {277, only_real, only_real},               // box2
    {278, "ii dd cd", "ii dd cd"},             // unitize
    {279, only_real, only_real},               // unitstep2
    {280, only_real, only_real},               // triangle2
    {281, "ii", only_real},                    // gcd
    {282, "ii", only_real},                    // lcm
    {283, not_ci_cd, "ii id di dd ic dc cc"},  // ceilingmultiple
    {284, not_ci_cd, "ii id di dd ic dc cc"},  // floormultiple
    {285, not_ci_cd, "ii id di dd ic dc cc"},  // roundmultiple
    {286, reals, reals},                       // max
    {287, reals, reals},                       // min
};
bool among(const std::string& pair, const char* pairs) {
  return std::string(pairs).find(pair) != std::string::npos;
}

/// What the table says of a function on tensors of types 2, 3, 4: whether there is a kernel.
bool accepted(int32_t number, int32_t x, int32_t y, int32_t result) {
  if (number < 257 || number > 287) return false;
  const auto pair_of = [](int32_t a, int32_t b) { return std::string{"idc"[a - 2], "idc"[b - 2]}; };
  const function& f = functions[number - 257];
  const std::string pair = pair_of(x, y);
  if (!among(pair, f.sets)) return false;
  if (pair == "ii" && result != 2) return false;
  if ((x == 4 || y == 4) && result == 2) return false;
  const bool promotes = x < 4 && y < 4 && result == 4;
  return among(promotes ? pair == "di" ? "ci" : pair == "id" ? "ic" : "dc" : pair, f.rows);
}

TEST(TensorOp2Table, EveryNumberOnEveryTriple) {
  const vlm::test::AllocationBalance balance;
  const std::vector<mint> two = {2};
  int kernels = 0;
  for (int32_t x = 2; x <= 4; ++x) {
    for (int32_t y = 2; y <= 4; ++y) {
      const auto make = [&two](int32_t type, double value) {
        return type == 2   ? array_with<mint>({static_cast<mint>(value), static_cast<mint>(value)}, two)
               : type == 3 ? array_with<double>({value, value}, two)
                           : array_with<mcomplex>({{value, 0}, {value, 0}}, two);
      };
      const array_ptr xs = make(x, 4), ys = make(y, 2);
      for (int32_t result = 2; result <= 4; ++result) {
        for (int32_t number = 250; number <= 290; ++number) {
          // With room for whatever a row writes.
          const array_ptr r = array_of(result == 2 ? 7 : result == 3 ? 10 : 12, {4});
          std::memset(r->data, 0, 4 * static_cast<size_t>(MNumericArray_typeSizeTable[type_of(r.get())]));
          const mint outcome = TensorOp2(xs.get(), ys.get(), r.get(), number, fp | integer);
          EXPECT_EQ(accepted(number, x, y, result), outcome != -1)
              << number << ": " << x << " " << y << " gives " << result << ", outcome " << outcome;
          kernels += outcome != -1;
        }
      }
    }
  }
  EXPECT_GT(kernels, 200);
  const array_ptr a = vector_with<mint>({1, 2}), r = vector_with<mint>({0, 0});
  for (const int32_t number : {0, 4, 86, 513, -1, INT32_MIN, INT32_MAX}) {
    EXPECT_EQ(-1, TensorOp2(a.get(), a.get(), r.get(), number, 0));
  }
  for (const int32_t type : {-1, 0, 5, INT32_MAX}) {
    EXPECT_EQ(-1, PackedTensorOp2(a.get(), a.get(), r.get(), type, MachFunc_plus, 0));
  }
  EXPECT_EQ(-2, PackedTensorOp2(a.get(), a.get(), r.get(), MTensorTypeBoolean, MachFunc_plus, 0));
  const array_ptr narrow = vector_with<int8_t>({1, 2});
  EXPECT_EQ(-1, TensorOp2(narrow.get(), a.get(), r.get(), MachFunc_plus, 0));
  EXPECT_EQ(-1, TensorOp2(a.get(), a.get(), narrow.get(), MachFunc_plus, 0));
}

TEST(BinaryFrontEnd, NullArguments) {
  const array_ptr a = vector_with<double>({1, 2});
  MTensor* made = nullptr;
  EXPECT_EQ(LibraryNumericalError, Math_TT_T(257, fp, nullptr, a.get(), 3, &made));
  EXPECT_EQ(LibraryNumericalError, Math_TT_T(257, fp, a.get(), nullptr, 3, &made));
  EXPECT_EQ(LibraryNumericalError, Math_TT_T(257, fp, a.get(), a.get(), 3, nullptr));
  EXPECT_EQ(LibraryNumericalError, Math_TT_T(257, fp, a.get(), a.get(), 5, &made));
  EXPECT_EQ(LibraryNumericalError, MNumericArray_Math_TT_T(257, a.get(), nullptr, 10, &made, fp));
  EXPECT_EQ(1, MNumericArrayMathBinary(nullptr, a.get(), a.get(), 257, 10, fp));
  EXPECT_EQ(nullptr, made);
  EXPECT_EQ(-1, TensorOp2(a.get(), a.get(), nullptr, 257, fp));
  EXPECT_EQ(-1, PackedTensorOp2(nullptr, a.get(), a.get(), 3, 257, fp));
  EXPECT_EQ(-1, MNumericArray_Op2(a.get(), nullptr, a.get(), 257, fp));
  EXPECT_EQ(0, TensorPlus(a.get(), nullptr, a.get(), fp));
  EXPECT_EQ(0, TensorAddTo(nullptr, a.get(), fp));
  EXPECT_EQ(0, TensorAddTo(a.get(), nullptr, fp));
}

// ---- Shapes.

/// r[i] = x[i] - 3 y[i] is far from symmetric; here as mod 2^8 and in reals.
TEST(BinaryFrontEnd, ShapesMeetByLeadingDimensions) {
  const vlm::test::AllocationBalance balance;
  const std::vector<std::vector<mint>> shapes = {
      {},        {1},       {2},      {3}, {6},      {0},      {2, 3}, {2, 1},     {3, 2}, {0, 3}, {2, 0},
      {2, 3, 4}, {2, 3, 1}, {5, 256}, {5}, {5, 257}, {300, 4}, {300},  {4, 64, 2}, {4},    {4, 64}};
  const auto numbered = []<class T>(const std::vector<mint>& dims, int first, T) {
    std::vector<T> v(static_cast<size_t>(vlm_test::product_of(dims)));
    for (size_t i = 0; i < v.size(); ++i) v[i] = static_cast<T>(first + static_cast<int>(i) % 100);
    return v;
  };
  for (const auto& x_dims : shapes) {
    for (const auto& y_dims : shapes) {
      const auto& shorter = x_dims.size() < y_dims.size() ? x_dims : y_dims;
      const auto& longer = x_dims.size() < y_dims.size() ? y_dims : x_dims;
      const bool meet = std::equal(shorter.begin(), shorter.end(), longer.begin());
      const auto check = [&]<class T>(T zero) {
        const std::vector<T> x = numbered(x_dims, 3, zero), y = numbered(y_dims, -50, zero);
        const array_ptr xs = array_with(x, x_dims), ys = array_with(y, y_dims);
        MNumericArray* made = nullptr;
        const int32_t type = element_code<T>::value;
        ASSERT_EQ(meet ? 0 : -1, type == 10 ? Math_TT_T(MachFunc_subtract, fp, xs.get(), ys.get(), 3, &made)
                                            : MNumericArray_Math_TT_T(MachFunc_subtract, xs.get(), ys.get(),
                                                                      type, &made, 0));
        const array_ptr owner(made);
        ASSERT_EQ(meet, made != nullptr);
        if (!meet) return;
        ASSERT_EQ(longer, dims_of(made));
        const std::vector<T> r = elements<T>(made);
        for (size_t i = 0; i < r.size(); ++i) {
          ASSERT_EQ(static_cast<T>(x[i / (r.size() / x.size())] - y[i / (r.size() / y.size())]), r[i]) << i;
        }
      };
      SCOPED_TRACE(testing::Message()
                   << testing::PrintToString(x_dims) << " and " << testing::PrintToString(y_dims));
      check(double{});
      check(int8_t{});
    }
  }
}

TEST(BinaryFrontEnd, OperatorsGoByNumbersOfElements) {
  const array_ptr six = vector_with<double>({1, 2, 3, 4, 5, 6}),
                  table = array_with<double>({1, 2, 3, 4, 5, 6}, {2, 3}),
                  four = vector_with<double>({1, 1, 1, 1}), two = vector_with<double>({10, 20}),
                  none = array_of(10, {0}), r = vector_with<double>({0, 0, 0, 0, 0, 0});
  EXPECT_EQ(-2, TensorOp2(six.get(), table.get(), r.get(), MachFunc_plus, fp));
  EXPECT_EQ((std::vector<double>{2, 4, 6, 8, 10, 12}), elements<double>(r.get()));
  EXPECT_EQ(1, TensorSubtract(two.get(), six.get(), r.get(), fp));
  EXPECT_EQ((std::vector<double>{9, 8, 7, 16, 15, 14}), elements<double>(r.get()));
  EXPECT_EQ(-1, TensorOp2(six.get(), four.get(), r.get(), MachFunc_plus, fp));
  EXPECT_EQ(-1, TensorOp2(six.get(), six.get(), four.get(), MachFunc_plus, fp));
  EXPECT_EQ(-2, TensorOp2(six.get(), none.get(), r.get(), MachFunc_plus, fp));
  EXPECT_EQ(-2, TensorOp2(none.get(), none.get(), none.get(), MachFunc_plus, fp));
  EXPECT_EQ((std::vector<double>{9, 8, 7, 16, 15, 14}), elements<double>(r.get()));
  EXPECT_EQ(1, TensorTimes(six.get(), two.get(), r.get(), fp));
  EXPECT_EQ((std::vector<double>{10, 20, 30, 80, 100, 120}), elements<double>(r.get()));
  EXPECT_EQ(1, TensorDivide(two.get(), two.get(), r.get(), fp));
  EXPECT_EQ(1, elements<double>(r.get())[1]);
}

// ---- Positions and what is written: whatever is done at once must look like one call of the kernel after the other.

template <class T> struct work {
  int32_t number;
  uint32_t flags;
  T good, bad;  // values of the longer operand
  T other;      // and of the shorter
};

template <class T> void expect_block_by_block(const work<T>& w, std::mt19937_64& engine) {
  constexpr int32_t type = element_code<T>::value;
  const auto kernel = MNumericArray_getBinaryVectorMachFunc(w.number, type, type);
  for (const mint block : {1, 2, 3, 4, 7, 64, 128, 170, 255, 256, 257, 600}) {
    for (int trial = 0; trial < 12; ++trial) {
      const mint count = 1 + static_cast<mint>(engine() % static_cast<uint64_t>(2000 / block + 1)),
                 n = block * count;
      const bool x_longer = engine() % 2, in_place = engine() % 2;
      std::vector<T> longer(static_cast<size_t>(n), w.good), shorter(static_cast<size_t>(count), w.other);
      for (uint64_t failures = engine() % 3; failures > 0; --failures)
        longer[engine() % longer.size()] = w.bad;
      std::vector<T> l = longer, expected(static_cast<size_t>(n), w.good);
      std::vector<T>& r = in_place ? l : expected;
      mint outcome = -2;
      for (mint j = 0; j < count && outcome == -2; ++j) {
        const T *lp = &l[static_cast<size_t>(j * block)], *sp = &shorter[static_cast<size_t>(j)];
        T* const rp = &r[static_cast<size_t>(j * block)];
        const bool equal = count == n;
        const mint position =
            x_longer ? kernel(rp, lp, sp, block, equal ? UnitIncrements : UnitRXIncrements, w.flags)
                     : kernel(rp, sp, lp, block, equal ? UnitIncrements : UnitRYIncrements, w.flags);
        if (position != 0) outcome = position - 1 + j * block;
        if (equal && j == 0 && !in_place) {  // arrays of equal length are one call
          const mint whole = x_longer
                                 ? kernel(r.data(), l.data(), shorter.data(), n, UnitIncrements, w.flags)
                                 : kernel(r.data(), shorter.data(), l.data(), n, UnitIncrements, w.flags);
          outcome = whole - 1;
          if (whole == 0) outcome = -2;
          break;
        }
      }
      const array_ptr ls = array_with(longer, {count, block}), ss = vector_with(shorter),
                      apart = array_with(std::vector<T>(static_cast<size_t>(n), w.good), {count, block});
      MNumericArray* const to = in_place ? ls.get() : apart.get();
      ASSERT_EQ(outcome, x_longer ? MNumericArray_Op2(ls.get(), ss.get(), to, w.number, w.flags)
                                  : MNumericArray_Op2(ss.get(), ls.get(), to, w.number, w.flags))
          << w.number << " block " << block << " of " << count << " in place " << in_place;
      ASSERT_EQ(0, std::memcmp(r.data(), to->data, r.size() * sizeof(T)))
          << w.number << " block " << block << " of " << count;
    }
  }
}

TEST(BinaryFrontEnd, BlocksLookLikeCallsOneByOne) {
  std::mt19937_64 engine(20260406);
  for (const uint32_t flags : {0u, fp, fp | integer}) {
    expect_block_by_block<double>({MachFunc_times, flags, 2, 1e300, 1e10}, engine);
    expect_block_by_block<double>({MachFunc_mod, flags, 2, 0, 3}, engine);  // a zero divisor always fails
    expect_block_by_block<double>({MachFunc_plus, flags, 2, std::numeric_limits<double>::quiet_NaN(), 3},
                                  engine);
    expect_block_by_block<mcomplex>({MachFunc_times, flags, {2, 1}, {1e300, 1e300}, {1e10, 0}}, engine);
  }
  for (const uint32_t flags : {0u, integer}) {
    expect_block_by_block<mint>({MachFunc_times, flags, 2, INT64_MAX, 5}, engine);
    expect_block_by_block<mint>({MachFunc_quotient, flags, 2, 0, 5}, engine);
    expect_block_by_block<int8_t>({MachFunc_plus, flags, 2, 127, 5}, engine);
  }
}

TEST(BinaryFrontEnd, BlocksThatGoToTheTeam) {
  const mint threads = setParallelThreadNumber(4);
  std::vector<double> x(3 * 9000, 1.0);
  x[9000 + 5000] = 1e308;
  const array_ptr xs = array_with(x, {3, 9000}), ys = vector_with<double>({2, 1e10, 3}),
                  r = array_of(10, {3, 9000});
  EXPECT_EQ(9000 + 4096, TensorOp2(xs.get(), ys.get(), r.get(), MachFunc_times, fp));
  EXPECT_EQ(2.0, elements<double>(r.get())[8999]);
  restoreParallelThreadNumber(threads);
}

// ---- Targets that are operands.

TEST(BinaryFrontEnd, TargetsThatAreOperands) {
  const vlm::test::AllocationBalance balance;
  const auto with = [](int32_t number, int32_t type, const auto& x, const auto& y, MTensor** to) {
    return Math_TT_T(number, fp, x.get(), y.get(), type, to);
  };
  // In place, with a shorter operand and with itself; the failing element and those behind stay.
  array_ptr x = array_with<double>({1, 2, 3, 4}, {2, 2}), y = vector_with<double>({10, 20});
  MTensor* to = x.get();
  void* const storage = x->data;
  EXPECT_EQ(0, with(MachFunc_subtract, 3, y, x, &to));
  EXPECT_EQ(x.get(), to);
  EXPECT_EQ(storage, to->data);
  EXPECT_EQ((std::vector<double>{9, 8, 17, 16}), elements<double>(to));
  EXPECT_EQ(0, with(MachFunc_times, 3, x, x, &to));
  EXPECT_EQ((std::vector<double>{81, 64, 289, 256}), elements<double>(to));
  y = vector_with<double>({1, 0});
  EXPECT_EQ(LibraryNumericalError, with(MachFunc_div, 3, x, y, &to));
  EXPECT_EQ((std::vector<double>{81, 64, 289, 256}), elements<double>(to));

  // The operand of lower rank takes the shape of the other.
  y = vector_with<double>({10, 20});
  to = y.get();
  EXPECT_EQ(0, with(MachFunc_subtract, 3, x, y, &to));
  EXPECT_EQ(y.get(), to);
  EXPECT_EQ((std::vector<mint>{2, 2}), dims_of(to));
  EXPECT_EQ((std::vector<double>{71, 54, 269, 236}), elements<double>(to));

  // A new type: wider, narrower, and one that nothing can be done for.
  array_ptr whole = vector_with<mint>({1, 2}), real = vector_with<double>({0.5, 2.5});
  to = whole.get();
  EXPECT_EQ(0, with(MachFunc_plus, 3, whole, real, &to));
  EXPECT_EQ(whole.get(), to);
  EXPECT_EQ((std::vector<double>{1.5, 4.5}), elements<double>(to));
  array_ptr z = vector_with<mcomplex>({{3, 4}, {5, 12}}), w = vector_with<mcomplex>({{0, 0}, {0, 0}});
  to = z.get();
  EXPECT_EQ(0, with(MachFunc_abserr, 3, z, w, &to));
  EXPECT_EQ(10, type_of(to));
  EXPECT_EQ((std::vector<double>{5, 13}), elements<double>(to));
  whole = vector_with<mint>({7, 8});
  to = whole.get();
  EXPECT_EQ(LibraryNumericalError, with(MachFunc_gcd, 3, whole, real, &to));
  EXPECT_EQ(7, type_of(to));
  EXPECT_EQ((std::vector<mint>{7, 8}), elements<mint>(to));

  // Results of half the bytes that have room in the shorter operand itself.
  z = vector_with<mcomplex>({{3, 4}, {6, 8}});
  w = vector_with<mcomplex>({{0, 0}, {3, 4}, {6, 8}, {0, 0}});
  EXPECT_EQ(-2, MNumericArray_Op2(w.get(), z.get(), z.get(), MachFunc_abserr, fp));
  EXPECT_EQ((std::vector<double>{5, 0, 0, 10}), parts(z.get()));
  // Another array is reshaped and reused.
  to = z.get();
  EXPECT_EQ(0, with(MachFunc_plus, 3, real, real, &to));
  EXPECT_EQ(z.get(), to);
  EXPECT_EQ((std::vector<double>{1, 5}), elements<double>(to));
}

TEST(BinaryFrontEnd, ExhaustedMemory) {
  const array_ptr x = array_of(7, {50, 60}), y = array_with(std::vector<double>(50, 0.5), {50});
  std::fill_n(static_cast<mint*>(x->data), 3000, 4);
  const auto into_new = [&] {
    MTensor* made = nullptr;
    const int32_t status = Math_TT_T(MachFunc_plus, fp, x.get(), y.get(), 3, &made);
    const array_ptr owner(made);
    EXPECT_TRUE(status == 0 || status == LibraryMemoryError) << status;
    EXPECT_EQ(status == 0, made != nullptr);
    return status == 0;
  };
  EXPECT_GT(vlm::test::for_each_failing_allocation(into_new), 0);
  // x changes its type, or stays what it was.
  for (const bool update : {false, true}) {
    mint failures = 0;
    for (bool failed = true; failed; ++failures) {
      const vlm::test::AllocationBalance balance;
      const array_ptr target = array_with(std::vector<mint>(3000, 4), {50, 60});
      MTensor* to = target.get();
      vlm::memory::fail_allocation_after(failures);
      const int32_t status =
          update ? TensorAddTo(to, y.get(), fp) : Math_TT_T(MachFunc_plus, fp, to, y.get(), 3, &to);
      failed = !vlm::memory::allocation_failure_pending();
      vlm::memory::fail_allocation_after(-1);
      ASSERT_EQ(target.get(), to);
      ASSERT_EQ(failed ? (update ? 0 : LibraryMemoryError) : (update ? 1 : 0), status);
      if (failed) {
        ASSERT_EQ(std::vector<mint>(3000, 4), elements<mint>(to));
      } else {
        ASSERT_EQ(std::vector<double>(3000, 4.5), elements<double>(to));
      }
      ASSERT_TRUE(vlm::array_is_valid(to));
    }
    EXPECT_GT(failures, 1);
  }
}

// ---- x op= y.

TEST(TensorUpdate, TypesAndShapes) {
  const vlm::test::AllocationBalance balance;
  array_ptr x = vector_with<mint>({1, 2}), y = vector_with<double>({0.5, 0.25});
  EXPECT_EQ(1, TensorAddTo(x.get(), y.get(), fp));
  EXPECT_EQ(10, type_of(x.get()));
  EXPECT_EQ((std::vector<double>{1.5, 2.25}), elements<double>(x.get()));
  x = vector_with<double>({1, 2});
  y = array_with<double>({1, 2, 3, 4}, {2, 2});
  EXPECT_EQ(1, TensorAddTo(x.get(), y.get(), fp));
  EXPECT_EQ((std::vector<mint>{2, 2}), dims_of(x.get()));
  EXPECT_EQ((std::vector<double>{2, 3, 5, 6}), elements<double>(x.get()));
  void* const storage = x->data;
  EXPECT_EQ(1, TensorSubtractFrom(x.get(), x.get(), fp));
  EXPECT_EQ(storage, x->data);
  EXPECT_EQ(std::vector<double>(4, 0.0), elements<double>(x.get()));
  x = vector_with<double>({6, 8});
  y = vector_with<mcomplex>({{0, 2}, {2, 0}});
  EXPECT_EQ(1, TensorDivideBy(x.get(), y.get(), fp));
  EXPECT_EQ((std::vector<double>{0, -3, 4, 0}), parts(x.get()));
  x = vector_with<mint>({3, 4});
  y = vector_with<mint>({5, 6});
  EXPECT_EQ(1, TensorTimesBy(x.get(), y.get(), integer));
  EXPECT_EQ((std::vector<mint>{15, 24}), elements<mint>(x.get()));
  EXPECT_EQ(0, TensorDivideBy(x.get(), y.get(), integer));  // integers have no quotient
  const array_ptr three = vector_with<mint>({1, 2, 3});
  EXPECT_EQ(0, TensorAddTo(x.get(), three.get(), integer));
  EXPECT_EQ((std::vector<mint>{15, 24}), elements<mint>(x.get()));
}

TEST(TensorUpdate, OldValuesFromTheFailingElementOn) {
  const double huge = 1.7e308;
  // x changes its type: the position is exact, since it has integers.
  array_ptr x = vector_with<mint>({1, 2, 3, INT64_MAX, 5, 6});
  array_ptr y = vector_with<double>({1, 1, 1, std::numeric_limits<double>::infinity(), 1, 1});
  EXPECT_EQ(0, TensorAddTo(x.get(), y.get(), fp));
  EXPECT_EQ((std::vector<double>{2, 3, 4, 0x1p63, 5, 6}), elements<double>(x.get()));
  // In place: exact as well.
  x = vector_with<double>({1, 2, huge, 4});
  y = vector_with<double>({1, 1, huge, 1});
  EXPECT_EQ(0, TensorAddTo(x.get(), y.get(), fp));
  EXPECT_EQ((std::vector<double>{2, 3, huge, 4}), elements<double>(x.get()));
  // x takes a shape: elements of x fill their blocks from the failing one on, here from within a block.
  x = vector_with<mint>({1, 2, 3});
  y = array_with<double>({1, 1, 1, std::numeric_limits<double>::infinity(), 1, 1}, {3, 2});
  EXPECT_EQ(0, TensorAddTo(x.get(), y.get(), fp));
  EXPECT_EQ((std::vector<mint>{3, 2}), dims_of(x.get()));
  EXPECT_EQ((std::vector<double>{2, 2, 3, 2, 3, 3}), elements<double>(x.get()));
  // Reals to complex numbers are judged as a whole.
  x = vector_with<double>({1, huge});
  y = vector_with<mcomplex>({{1, 1}, {huge, 1}});
  EXPECT_EQ(0, TensorAddTo(x.get(), y.get(), fp));
  EXPECT_EQ((std::vector<double>{1, 0, huge, 0}), parts(x.get()));
}

}  // namespace
