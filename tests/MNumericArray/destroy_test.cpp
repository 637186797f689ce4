// Faults to catch: a flagged array deleted, or an unflagged one kept; a null entry or a null block read; a count that frees by
// itself, or a release that frees early, late or twice.
#include "support/array_fixture.h"

using namespace vlm_test;

namespace {

class Destroy : public ArrayTest {
 protected:
  static MNumericArray* make() {
    const mint dims[] = {3, 2};
    return MNumericArray_newAllocatedCommon(12, 2, dims, FailNull);
  }
};

TEST_F(Destroy, FlaggedArraysAreLeftAlone) {
  for (uint32_t flag : {ArrayFlagInExpr, ArrayFlagEternal}) {
    MNumericArray* array = make();
    array->flags |= flag;
    const MNumericArray before = *array;
    auto** block = static_cast<MNumericArray**>(zalloc(2 * sizeof(MNumericArray*), 0, FailFatal));
    block[0] = block[1] = array;
    MNumericArray_delete(array);
    FreeMTensor(array);
    FreeMNumericArray(array);
    MNumericArrayArray_delete(2, block);
    MTensor_release(array);
    EXPECT_EQ(array->refCount, 0);
    array->refCount = 1;
    EXPECT_EQ(std::memcmp(&before, array, sizeof before), 0);
    array->flags &= ~flag;
    MNumericArray_delete(array);
  }
}

TEST_F(Destroy, BlocksOfArraysMayHoldNull) {
  MNumericArray_delete(nullptr);
  MNumericArray_freeMemory(nullptr);
  MNumericArrayArray_delete(5, nullptr);
  for (mint count : {mint{-1}, mint{0}, mint{3}}) {
    auto** block = static_cast<MNumericArray**>(zalloc(3 * sizeof(MNumericArray*), 0, FailFatal));
    block[0] = count > 0 ? make() : nullptr;
    block[1] = nullptr;
    block[2] = count > 0 ? MNumericArray_new() : nullptr;
    MNumericArrayArray_delete(count, block);
  }
  FreeMTensor(make());
  FreeMNumericArray(make());
  EXPECT_EQ(mtensor_null(), nullptr);
  EXPECT_EQ(mnumericarray_null(), nullptr);
}

TEST_F(Destroy, CountsBelongToTheCallers) {
  MNumericArray* array = make();
  EXPECT_EQ(MNumericArray_RefCountIncrement(array), 1);
  EXPECT_EQ(MTensor_RefCountIncrement(array), 2);
  EXPECT_EQ(MTensor_RefCountDecrement(array), 3);
  EXPECT_EQ(MNumericArray_RefCountDecrement(array), 2);
  EXPECT_EQ(MNumericArray_RefCountDecrement(array), 1);
  EXPECT_EQ(array->refCount, 0);
  array->refCount = 2;
  const int64_t inUse = vlm::test::bytes_of_blocks();
  MTensor_release(array);
  EXPECT_EQ(vlm::test::bytes_of_blocks(), inUse);
  EXPECT_EQ(array->refCount, 1);
  MTensor_release(array);
  EXPECT_LT(vlm::test::bytes_of_blocks(), inUse);
  array = make();
  array->refCount = 7;
  MNumericArray_delete(array);
}

}  // namespace
