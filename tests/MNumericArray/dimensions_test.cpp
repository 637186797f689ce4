// Faults to catch: an overflow or a negative dimension missed, behind a zero above all; a product that only the order of the
// factors saves; dims that lie in the block being resized; length or elements touched by a change of dimensions; a block lost.
#include <limits>
#include <numeric>

#include "support/array_fixture.h"

using namespace vlm_test;

namespace {

constexpr mint failed = 0x7fffffffffffffff;

class Dimensions : public ArrayTest {};

mint count_of(const std::vector<mint>& dims) {
  return NumberOfElementsCommon(static_cast<mint>(dims.size()), dims.data(), FailNull);
}

TEST_F(Dimensions, CountsElements) {
  for (const auto& dims : sample_shapes()) EXPECT_EQ(count_of(dims), product_of(dims));
  EXPECT_EQ(NumberOfElementsCommon(-3, nullptr, FailFatal), 1);
  const mint half = mint{1} << 31, big = mint{1} << 62;
  EXPECT_EQ(count_of({half, half}), big);
  EXPECT_EQ(count_of({failed - 1}), failed - 1);
  EXPECT_EQ(count_of({0, big, 4}), 0);
  EXPECT_EQ(count_of({3037000499, 3037000499}), mint{3037000499} * 3037000499);
}

TEST_F(Dimensions, CountFailsOnNegativeAndOnOverflow) {
  const mint big = mint{1} << 62, least = std::numeric_limits<mint>::min();
  const std::vector<std::vector<mint>> bad = {{-1},
                                              {0, -1},
                                              {3, -1, 2},
                                              {2, 3, -4},
                                              {least},
                                              {-1, -1},
                                              {0, 0, least},
                                              {big, 2},
                                              {2, big},
                                              {big, 4, 0},
                                              {3037000500, 3037000500},
                                              {failed, 2},
                                              {-1, 0},
                                              {failed},
                                              {big, big, 0},
                                              {5, failed / 5 + 1}};
  for (const auto& dims : bad) {
    for (int32_t mode : {FailNull, FailReport}) {
      EXPECT_EQ(NumberOfElementsCommon(static_cast<mint>(dims.size()), dims.data(), mode), failed);
    }
  }
}

TEST_F(Dimensions, BadCountIsFatalUnderFailFatal) {
  const mint bad[] = {0, -1};
  EXPECT_EXIT(NumberOfElementsCommon(2, bad, FailFatal), ::testing::ExitedWithCode(1), "");
}

TEST_F(Dimensions, SettingReplacesShapeAndLengthButNotElements) {
  for (const auto& from : sample_shapes()) {
    for (const auto& to : sample_shapes()) {
      array_ptr array(
          MNumericArray_newAllocatedCommon(5, static_cast<mint>(from.size()), from.data(), FailNull));
      ASSERT_TRUE(array);
      const void* data = array->data;
      const mint* block = array->dims;
      const auto rank = static_cast<mint>(to.size());
      EXPECT_EQ(MNumericArray_setDimensionsCommon(array.get(), rank, to.data(), 41, FailNull), 0);
      EXPECT_EQ(dims_of(array.get()), to);
      EXPECT_EQ(array->flattenedLength, to.empty() ? 1 : 41);
      EXPECT_EQ(array->data, data);
      EXPECT_EQ(array->dims == nullptr, to.empty());
      if (!to.empty() && to.size() <= from.size()) {
        EXPECT_EQ(array->dims, block);
      }
    }
  }
}

TEST_F(Dimensions, DimsMayOverlapTheOldBlock) {
  for (mint oldRank = 1; oldRank <= 40; ++oldRank) {
    for (mint start = 0; start < oldRank; ++start) {
      for (mint rank = 1; rank <= oldRank - start; ++rank) {
        std::vector<mint> dims(static_cast<size_t>(oldRank));
        std::iota(dims.begin(), dims.end(), 1);
        array_ptr array(MNumericArray_new());
        ASSERT_EQ(MNumericArray_setDimensionsCommon(array.get(), oldRank, dims.data(), 0, FailNull), 0);
        ASSERT_EQ(MNumericArray_setDimensionsCommon(array.get(), rank, array->dims + start, 0, FailNull), 0);
        ASSERT_EQ(dims_of(array.get()), std::vector<mint>(dims.begin() + start, dims.begin() + start + rank));
      }
    }
  }
  // A block that kept room for more dimensions than the record has now: the new ones are read from it while it grows.
  std::vector<mint> dims(64);
  std::iota(dims.begin(), dims.end(), 1);
  array_ptr array(MNumericArray_new());
  ASSERT_EQ(MNumericArray_setDimensionsCommon(array.get(), 64, dims.data(), 0, FailNull), 0);
  ASSERT_EQ(MNumericArray_setDimensionsCommon(array.get(), 1, dims.data(), 0, FailNull), 0);
  ASSERT_EQ(MNumericArray_setDimensionsCommon(array.get(), 20, array->dims + 30, 0, FailNull), 0);
  EXPECT_EQ(dims_of(array.get()), std::vector<mint>(dims.begin() + 30, dims.begin() + 50));
}

TEST_F(Dimensions, ResettingKeepsTheLength) {
  const mint six[] = {6}, twoByThree[] = {2, 3};
  array_ptr array(MNumericArray_newAllocatedCommon(7, 1, six, FailNull));
  MNumericArray_resetDimensionsCommon(array.get(), 2, twoByThree, FailFatal);
  EXPECT_EQ(dims_of(array.get()), (std::vector<mint>{2, 3}));
  EXPECT_EQ(array->flattenedLength, 6);
  const mint* block = array->dims;
  MNumericArray_resetDimensionsCommon(array.get(), 2, array->dims, FailFatal);
  EXPECT_EQ(array->dims, block);
  MNumericArray_resetDimensionsCommon(array.get(), 1, array->dims + 1, FailFatal);
  EXPECT_EQ(dims_of(array.get()), (std::vector<mint>{3}));
  MNumericArray_resetDimensionsCommon(array.get(), 0, nullptr, FailFatal);
  EXPECT_EQ(array->dims, nullptr);
  EXPECT_EQ(array->flattenedLength, 1);
}

TEST_F(Dimensions, FailedSettingLeavesTheShape) {
  const mint small[] = {2, 3};
  const std::vector<mint> large(300, 1);
  array_ptr array(MNumericArray_newAllocatedCommon(7, 2, small, FailNull));
  const int failures = fail_at_every_allocation(
      [&] {
        return MNumericArray_setDimensionsCommon(array.get(), 300, large.data(), 1, FailNull) ==
               ArrayStatusOk;
      },
      [&] {
        EXPECT_EQ(dims_of(array.get()), (std::vector<mint>{2, 3}));
        EXPECT_EQ(array->flattenedLength, 6);
      });
  EXPECT_EQ(failures, 1);
  EXPECT_EQ(array->rank, 300);
  EXPECT_EQ(MNumericArray_setDimensionsCommon(nullptr, 2, small, 6, FailNull), ArrayStatusNullArgument);
  EXPECT_EQ(MNumericArray_setDimensionsCommon(array.get(), 2, nullptr, 6, FailNull),
            ArrayStatusBadDimensions);
}

TEST_F(Dimensions, CompatibleOnTheShorterRank) {
  const auto& shapes = sample_shapes();
  for (const auto& da : shapes) {
    for (const auto& db : shapes) {
      array_ptr a(MNumericArray_newAllocatedCommon(1, static_cast<mint>(da.size()), da.data(), FailNull));
      array_ptr b(MNumericArray_newAllocatedCommon(13, static_cast<mint>(db.size()), db.data(), FailNull));
      bool agree = true;
      for (size_t i = 0; i < da.size() && i < db.size(); ++i) agree = agree && da[i] == db[i];
      EXPECT_EQ(MNumericArray_compatibleDimensionsQ(a.get(), b.get()), agree ? 1 : 0);
      mint rank = -7;
      mint* dims = nullptr;
      EXPECT_EQ(MNumericArray_maxCompatibleDimensions(a.get(), b.get(), &rank, &dims), agree ? 1 : 0);
      const MNumericArray* wider = db.size() > da.size() ? b.get() : a.get();
      EXPECT_EQ(rank, agree ? wider->rank : -7);
      EXPECT_EQ(dims, agree ? wider->dims : nullptr);
    }
  }
}

}  // namespace
