// Faults to catch: a tensor type mapped to the wrong element type, the boolean one above all; a code outside the table read
// beyond it; a form that passes another failMode than it says; the eternal tensor ended, or made in another phase.
#include <limits>

#include "Runtime/hooks.h"
#include "support/array_fixture.h"

using namespace vlm_test;

namespace {

struct view {
  int32_t tensorType;
  uint32_t elementType, storedTensorType;
  size_t bytes;
};
constexpr view views[] = {{1, 7, 2, 8}, {2, 7, 2, 8}, {3, 10, 3, 8}, {4, 12, 4, 16}};
constexpr int32_t no_types[] = {
    0, 5, -1, 13, std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max()};

class TensorView : public ArrayTest {};

TEST_F(TensorView, EveryFormMapsItsType) {
  const mint dims[] = {2, 3};
  const std::vector<double> source = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
  for (const view& v : views) {
    void* data = zalloc(6 * v.bytes, 1, FailFatal);
    MTensor* grown = nullptr;
    EXPECT_EQ(MTensor_allocateCommon(&grown, v.tensorType, 2, dims, FailNull), 0);
    array_ptr reshaped(MTensor_new());
    EXPECT_EQ(MTensor_allocateMemoryCommon(reshaped.get(), v.tensorType, 2, dims, FailNull), 0);
    array_ptr like(MTensor_new());
    EXPECT_EQ(MTensor_allocateMemoryLikeCommon(like.get(), grown, FailNull), 0);
    array_ptr copied(MTensor_newCopyFromDataArray(v.tensorType, 2, dims, source.data()));
    array_ptr over(MTensor_newUsingDataArray(v.tensorType, 2, dims, data));
    array_ptr made(MTensor_newAllocatedCommon(v.tensorType, 2, dims, FailNull));
    EXPECT_EQ(over->data, data);
    EXPECT_EQ(std::memcmp(copied->data, source.data(), 6 * v.bytes), 0);
    for (MTensor* tensor : {grown, reshaped.get(), like.get(), copied.get(), over.get(), made.get()}) {
      EXPECT_EQ(tensor->elementType, v.elementType);
      EXPECT_EQ(tensor->tensorType, v.storedTensorType);
      EXPECT_TRUE(vlm::array_is_valid(tensor));
      mint rank = 0;
      mint* found = nullptr;
      EXPECT_EQ(MTensor_compatibleDimensionsQ(tensor, grown), 1);
      EXPECT_EQ(MTensor_maxCompatibleDimensions(tensor, grown, &rank, &found), 1);
      EXPECT_EQ(found, tensor->dims);
    }
    MTensor_freeMemory(grown);
    EXPECT_EQ(grown->data, nullptr);
    MTensor_delete(grown);
  }
  auto** block = static_cast<MTensor**>(zalloc(sizeof(MTensor*), 0, FailFatal));
  block[0] = MTensor_new();
  MTensorArray_delete(1, block);
}

TEST_F(TensorView, OtherCodesAreNoType) {
  const mint dims[] = {2}, none[] = {0};
  for (int32_t code : no_types) {
    EXPECT_EQ(MTensor_newAllocatedCommon(code, 1, dims, FailNull), nullptr);
    MTensor* made = nullptr;
    EXPECT_EQ(MTensor_allocateCommon(&made, code, 1, dims, FailNull), ArrayStatusNoMemory);
    EXPECT_EQ(made, nullptr);
    array_ptr empty(MTensor_newAllocatedCommon(code, 1, none, FailNull));
    ASSERT_TRUE(empty);
    EXPECT_EQ(empty->elementType, 0u);
  }
}

TEST_F(TensorView, SettingTheTypeKeepsTheBlocks) {
  const mint dims[] = {2, 2};
  array_ptr tensor(MTensor_newAllocatedCommon(3, 2, dims, FailNull));
  auto* reals = static_cast<double*>(tensor->data);
  reals[0] = 1.5;
  const mint* block = tensor->dims;
  for (const view& v : views) {
    MTensor_setType(tensor.get(), v.tensorType);
    EXPECT_EQ(tensor->elementType, v.elementType);
    EXPECT_EQ(tensor->tensorType, v.storedTensorType);
    EXPECT_EQ(tensor->data, reals);
    EXPECT_EQ(tensor->dims, block);
    EXPECT_EQ(reals[0], 1.5);
  }
  for (int32_t code : no_types) {
    MTensor_setType(tensor.get(), code);
    EXPECT_EQ(tensor->elementType, 0u);
    EXPECT_EQ(tensor->flags, 0u);
    EXPECT_EQ(tensor->precision, 9007199254740992.0);
  }
}

TEST_F(TensorView, TheEternalTensorOutlivesDeletion) {
  MTensor* eternal = getEternalMTensor();
  ASSERT_NE(eternal, nullptr);
  MTensor_delete(eternal);
  FreeMTensor(eternal);
  auto** block = static_cast<MTensor**>(zalloc(sizeof(MTensor*), 0, FailFatal));
  block[0] = eternal;
  MTensorArray_delete(1, block);
  EXPECT_EQ(eternal->flags, 0x2000000u);
  EXPECT_EQ(eternal->refCount, 0x7fffffffffffffff);
  EXPECT_EQ(eternal->flattenedLength, 0);
  EXPECT_EQ(eternal->data, nullptr);
  for (int32_t phase : {0, 1, 2, 3}) vlm::eternal_tensor_hook(phase);
  EXPECT_EQ(getEternalMTensor(), eternal);
}

}  // namespace
