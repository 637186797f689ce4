// Faults it is meant to catch: a width without a loop; steps of 0 or below 0 that run the far-end way; chunks that overlap or leave a gap;
// patterns that run past their count; a failed copy that changes its target; tables of shared arrays that threads share.
#include <thread>

#include "support/index_coded.h"
#include "velorim/parallel.h"
#include "velorim/thread.h"

namespace {

using namespace vlm_test;

class Copies : public ArrayTest {
 protected:
  void SetUp() override {
    MNumericArray_loadSharedRank0(nullptr, 1, 0);  // this thread's table stays until the thread ends
    ArrayTest::SetUp();
  }
};

TEST_F(Copies, StridedElementsFollowTheFormula) {
  random_cases random;
  SCOPED_TRACE(testing::Message() << "seed " << random.seed());
  for (int n = 0; n < 400; ++n) {
    const int32_t type = random.type();
    const mint threads = setParallelThreadNumber(random.in(1, 2));
    const mint count = n % 8 == 0 ? random.in(130000, 140000) : random.in(0, 70);
    const mint target_step = random.in(-3, 3), source_step = random.in(-3, 3);
    const auto room = [count](mint step) { return std::max<mint>(1, std::abs(step) * count + 1); };
    const auto start = [&](mint step) { return step < 0 ? room(step) - 1 : 0; };
    const coded source = coded::numbered({room(source_step)}, 1000);
    coded expected = coded::numbered({room(target_step)});
    const array_ptr from = make_array(type, source), to = make_array(type, expected);
    for (mint i = 0; i < count; ++i) {
      expected.codes[static_cast<size_t>(start(target_step) + i * target_step)] =
          source.codes[static_cast<size_t>(start(source_step) + i * source_step)];
    }
    MNumericArray_copyData(to.get(), start(target_step), target_step, from.get(), start(source_step),
                           source_step, count);
    expect_coded(to.get(), type, expected);
    restoreParallelThreadNumber(threads);
  }
}

TEST_F(Copies, OverlappingRunsMoveAsIfReadFirst) {
  for (const mint shift : {-5, 5}) {
    const array_ptr array = make_array(MNumericArrayTypeComplexReal64, coded::numbered({100}));
    coded expected = coded::numbered({100});
    for (mint i = 10; i < 80; ++i) expected.codes[static_cast<size_t>(i + shift)] = i;
    MNumericArray_copyContiguousData(array.get(), 10 + shift, array.get(), 10, 70);
    expect_coded(array.get(), MNumericArrayTypeComplexReal64, expected);
  }
}

TEST_F(Copies, PatternsTileAndStop) {
  for (int32_t type = 1; type <= 13; ++type) {
    const array_ptr pattern = make_array(type, coded::numbered({3}, 50));
    const array_ptr array = make_array(type, coded::numbered({12}));
    MNumericArray_setData(array.get(), 0, 3, pattern->data, 3);
    expect_coded(array.get(), type, {{12}, {50, 51, 52, 50, 51, 52, 50, 51, 52, 50, 51, 52}});
    const array_ptr six = make_array(type, coded::numbered({6}));
    MNumericArray_setData(six.get(), 0, 0, pattern->data, 1);
    MNumericArray_setData(six.get(), 7, 1, pattern->data, 1);
    MNumericArray_setData(six.get(), 1, 2, pattern->data, 1);
    expect_coded(six.get(), type, {{6}, {0, 50, 2, 50, 4, 5}});
    for (const mint threads : {1, 2}) {
      const mint before = setParallelThreadNumber(threads);
      const array_ptr large = make_array(type, coded::numbered({200001}));
      MNumericArray_setData(large.get(), 1, 1, pattern->data, 1);
      const array_ptr filled = make_array(type, coded{{200001}, std::vector<mint>(200001, 50)});
      EXPECT_EQ(std::memcmp(static_cast<char*>(large->data) + bytes_of(type), filled->data,
                            static_cast<size_t>(200000 * bytes_of(type))),
                0);
      MNumericArray_zero(large.get());
      const auto* const bytes = static_cast<const char*>(large->data);
      EXPECT_TRUE(std::all_of(bytes, bytes + 200001 * bytes_of(type), [](char c) { return c == 0; }));
      restoreParallelThreadNumber(before);
    }
  }
  MNumericArray none;
  MNumericArray_initialize(&none);
  MNumericArray_zero(&none);
  MNumericArray_setZero(&none, 0, 1);
}

TEST_F(Copies, ArraysOfEveryTypeAndShape) {
  for (int32_t type = 1; type <= 13; ++type) {
    for (const std::vector<mint>& dims : sample_shapes()) {
      const coded content = coded::numbered(dims);
      expect_for_every_target(type, content, content, [](MNumericArray** target, MNumericArray* source) {
        return MNumericArray_makeCopyCommon(target, source, FailReport);
      });
      const array_ptr model = make_array(type, content);
      MNumericArray* zeros = nullptr;
      ASSERT_EQ(MNumericArray_copyZeroCommon(&zeros, model.get(), FailReport), 0);
      EXPECT_EQ(dims_of(zeros), dims);
      EXPECT_EQ(MNumericArray_getByteCount(zeros),
                zalloc_round(sizeof(MNumericArray), 0) +
                    (dims.empty() ? 0 : zalloc_round(8 * dims.size(), 0)) +
                    (zeros->data ? zalloc_round(vlm::array_bytes(zeros), type > 8) : 0));
      MNumericArray_delete(zeros);
    }
  }
}

TEST_F(Copies, FailuresLeaveWhatIsTold) {
  const array_ptr source = make_array(MNumericArrayTypeReal64, coded::numbered({40, 50}));
  const array_ptr target = make_array(MNumericArrayTypeInteger8, coded::numbered({3}));
  EXPECT_GT(fail_at_every_allocation(
                [&] { return MNumericArray_copyCommon(target.get(), source.get(), FailReport) == 0; },
                [&] { expect_coded(target.get(), MNumericArrayTypeInteger8, coded::numbered({3})); }),
            0);
  for (MNumericArray* made : {static_cast<MNumericArray*>(nullptr), MNumericArray_new()}) {
    vlm::memory::fail_allocation_after(0);
    EXPECT_EQ(MNumericArray_makeCopyCommon(&made, source.get(), FailNull), ArrayStatusNoMemory);
    EXPECT_EQ(made, nullptr);
    vlm::memory::fail_allocation_after(1);
    EXPECT_EQ(MNumericArray_copyZeroCommon(&made, source.get(), FailNull), ArrayStatusNoMemory);
    EXPECT_EQ(made, nullptr);
    vlm::memory::fail_allocation_after(-1);
  }
  EXPECT_EQ(MNumericArray_copyCommon(nullptr, source.get(), 1), ArrayStatusNullArgument);
  EXPECT_EQ(MNumericArray_copyUniqueInExprCommon(source.get(), source.get(), 1), 0);
  EXPECT_TRUE(source->flags & ArrayFlagInExpr);
  source->flags &= ~static_cast<uint32_t>(ArrayFlagInExpr);
  EXPECT_EQ(Runtime_CreateNumericArray(10, 1, nullptr), nullptr);
  source->flattenedLength = 7;
  EXPECT_EQ(MNumericArray_reallocateAndCopyDataCommon(source.get(), FailReport), 0);
  EXPECT_EQ(static_cast<const uint8_t*>(source->data)[48], byte_of_code(6, 0));
}

TEST_F(Copies, SharedRankZeroArraysBelongToAThread) {
  const mint value = 42, other = 43;
  MNumericArray** const cell = MNumericArray_loadSharedRank0(&value, MNumericArrayTypeInteger64, 1);
  ASSERT_NE(cell, nullptr);
  EXPECT_EQ(MTensor_loadSharedRank0(nullptr, MTensorTypeInteger, 1), cell);
  EXPECT_EQ(*static_cast<mint*>((*cell)->data), 42);
  EXPECT_NE(*MNumericArray_loadSharedRank0(&other, MNumericArrayTypeInteger64, 2), *cell);
  EXPECT_EQ(*static_cast<mint*>((*cell)->data), 42);
  for (const auto& [type, slot] : std::vector<std::pair<int32_t, mint>>{{0, 0}, {14, 0}, {7, 3}, {7, -1}}) {
    EXPECT_EQ(MNumericArray_loadSharedRank0(nullptr, type, slot), nullptr);
  }
  struct Elsewhere {
    MNumericArray** mine;
    bool distinct;
  } elsewhere = {cell, false};
  KThread* const thread = KThreadCreate(
      [](void* argument) {
        auto& e = *static_cast<Elsewhere*>(argument);
        MNumericArray** const theirs = MNumericArray_loadSharedRank0(nullptr, MNumericArrayTypeInteger64, 1);
        e.distinct = theirs != e.mine && *theirs != *e.mine;
      },
      &elsewhere, KTHREAD_PRIORITY_NORMAL);
  KThreadWaitForExit(thread);
  Delete_KThread(thread);
  EXPECT_TRUE(elsewhere.distinct);
  for (int32_t type = 1; type <= 13; ++type) {
    const array_ptr model = make_array(type, coded::numbered({}, 9));
    const array_ptr fresh(MNumericArray_loadNewRank0(model->data, type));
    expect_coded(fresh.get(), type, coded::numbered({}, 9));
  }
}

TEST_F(Copies, ShapeRecordsAndIntegerWidths) {
  TensorProperty* const shape = TensorProperty_new(1);
  shape->dims[0] = 5;
  shape->dims[1] = 6;  // room for two at every rank
  shape->flags = 9;
  TensorProperty* const copy = TensorProperty_copy(shape);
  EXPECT_EQ(copy->dims[0], 5);
  EXPECT_EQ(copy->rank, 1);
  EXPECT_EQ(copy->flags, 9u);
  EXPECT_EQ(copy->precision, 0x1p53);
  TensorProperty_delete(shape);
  TensorProperty_delete(copy);
  TensorProperty_delete(TensorProperty_new(0));
  int32_t narrow[3];
  const mint wide[] = {INT32_MIN, int64_t{1} << 32, 7};
  EXPECT_EQ(IntFromMintArray(narrow, wide, 3), 0);
  EXPECT_EQ(narrow[0], INT32_MIN);
  EXPECT_EQ(narrow[1], 0);
  EXPECT_EQ(IntFromMintArray(narrow, wide, -1), 1);
  EXPECT_EQ(MInt32Q(INT32_MIN), 0);
  EXPECT_EQ(MInt32Q(INT32_MAX), 1);
  mint both[4];
  const int32_t values[] = {-1, 2, -3, 4};
  std::memcpy(both, values, sizeof values);
  MintFromIntArray(both, reinterpret_cast<int32_t*>(both), 4);
  for (int i = 0; i < 4; ++i) EXPECT_EQ(both[i], values[i]);
}

}  // namespace
