// Faults to catch: a type missing from a creation form; data misaligned, or a misaligned block taken as it is; a
// block freed that stays the caller's, or kept that was taken over; a record half reshaped after a failure;
// failMode heard by the record or not heard by the storage; elements lost by a call that should not touch them; a
// limit not tested, or tested where it must not be.
#include <cstdlib>
#include <limits>

#include "support/array_fixture.h"

using namespace vlm_test;

namespace {

constexpr int32_t all_modes[] = {FailFatal, FailNull, FailReport};

mint rank_of(const std::vector<mint>& dims) { return static_cast<mint>(dims.size()); }

/// The shape, the type and the storage that a finished array must have.
void expect_array(const MNumericArray* array, int32_t type, const std::vector<mint>& dims) {
  ASSERT_NE(array, nullptr);
  EXPECT_TRUE(vlm::array_is_valid(array));
  EXPECT_EQ(array->elementType, static_cast<uint32_t>(type));
  EXPECT_EQ(dims_of(array), dims);
  EXPECT_EQ(array->dims == nullptr, dims.empty());
  EXPECT_EQ(array->flattenedLength, product_of(dims));
  EXPECT_EQ(array->data == nullptr, product_of(dims) == 0);
  EXPECT_EQ(reinterpret_cast<uintptr_t>(array->data) % (type <= 8 ? 8 : 16), 0u);
  EXPECT_EQ(array->refCount, 1);
}

/// Writes every byte of the elements, so that a block too small is seen by the sanitizer or the allocator's own checks.
void fill(MNumericArray* array, int seed) {
  auto* bytes = static_cast<unsigned char*>(array->data);
  for (uint64_t i = 0; i < vlm::array_bytes(array); ++i)
    bytes[i] = static_cast<unsigned char>(i * 31 + static_cast<uint64_t>(seed));
}

std::vector<unsigned char> bytes_of(const MNumericArray* array) {
  const auto* bytes = static_cast<const unsigned char*>(array->data);
  return {bytes, bytes + vlm::array_bytes(array)};
}

template <class Body> void for_all_types_and_shapes(Body&& body) {
  int bodies = 0;
  vlm::for_all_element_types([&]<class T>() {
    for (const auto& dims : sample_shapes()) body.template operator()<T>(dims);
    ++bodies;
  });
  EXPECT_EQ(bodies, 13);
}

/// A block of zalloc of 1000 bytes or more at a multiple of 8 that is none of 16. Where such blocks lie is the allocator's
/// choice, so sizes are tried until one is found.
void* misaligned_block() {
  std::vector<void*> others;
  void* found = nullptr;
  for (uint64_t size = 1000; found == nullptr && size < 5000; size += 8) {
    void* block = zalloc(size, 0, FailFatal);
    if (reinterpret_cast<uintptr_t>(block) % 16 != 0) {
      found = block;
    } else {
      others.push_back(block);
    }
  }
  for (void* other : others) zfree(other);
  return found;
}

/// Counts the calls of the interrupt function.
int interrupts = 0;
void count_interrupt() { ++interrupts; }

class Allocate : public ArrayTest {};

TEST_F(Allocate, NewArraysOfEveryTypeShapeAndMode) {
  for_all_types_and_shapes([]<class T>(const std::vector<mint>& dims) {
    constexpr int32_t type = vlm::element_code<T>;
    for (int32_t mode : all_modes) {
      array_ptr copied(MNumericArray_newAllocatedCommon(type, rank_of(dims), dims.data(), mode));
      expect_array(copied.get(), type, dims);
      fill(copied.get(), 1);
      mint* block = dims_block(dims);
      array_ptr taken(MNumericArray_newUsingDimsCommon(type, rank_of(dims), block, mode));
      expect_array(taken.get(), type, dims);
      EXPECT_EQ(taken->dims, block);
      fill(taken.get(), 2);
      MNumericArray* made = nullptr;
      EXPECT_EQ(MNumericArray_allocateCommon(&made, type, rank_of(dims), dims.data(), mode), 0);
      expect_array(made, type, dims);
      MNumericArray* same = made;
      EXPECT_EQ(MNumericArray_allocateCommon(&made, type, rank_of(dims), dims.data(), mode), 0);
      EXPECT_EQ(made, same);
      MNumericArray_delete(made);
    }
  });
}

TEST_F(Allocate, RankZeroIsAScalar) {
  array_ptr scalar(MNumericArray_newAllocatedCommon(13, 0, nullptr, FailNull));
  expect_array(scalar.get(), 13, {});
  array_ptr negativeRank(MNumericArray_newAllocatedCommon(10, -2, nullptr, FailNull));
  expect_array(negativeRank.get(), 10, {});
  array_ptr freesDims(MNumericArray_newUsingDimsCommon(10, 0, dims_block({4, 5}), FailNull));
  expect_array(freesDims.get(), 10, {});
}

TEST_F(Allocate, CallersRecordTakesAShape) {
  MNumericArray record;
  MNumericArray_initialize(&record);
  std::vector<mint> dims = {2, 5};
  ASSERT_EQ(MNumericArray_initializeUsingDims(&record, 9, 2, dims.data(), 1, FailNull), 0);
  EXPECT_NE(record.dims, dims.data());
  expect_array(&record, 9, dims);
  mint* block = dims_block({3, 1, 4});
  ASSERT_EQ(MNumericArray_initializeUsingDims(&record, 3, 3, block, 0, FailNull), 0);
  EXPECT_EQ(record.dims, block);
  ASSERT_EQ(MNumericArray_initializeUsingDims(&record, 3, 2, record.dims, 0, FailNull), 0);
  expect_array(&record, 3, {3, 1});
  record.flags |= ArrayFlagInExpr | ArrayFlagEternal;
  record.refCount = 5;
  MNumericArray_freeMemory(&record);
  EXPECT_EQ(record.dims, nullptr);
  EXPECT_EQ(record.data, nullptr);
  EXPECT_EQ(record.flags, 0u);
  EXPECT_EQ(record.flattenedLength, 0);
  EXPECT_EQ(record.precision, 9007199254740992.0);
  EXPECT_EQ(record.refCount, 5);
}

TEST_F(Allocate, ReshapesAnyContentIntoAnyOther) {
  for_all_types_and_shapes([]<class T>(const std::vector<mint>& from) {
    constexpr int32_t type = vlm::element_code<T>;
    for (int32_t other : {1, 8, 12, 13, static_cast<int>(type)}) {
      for (const auto& to : sample_shapes()) {
        array_ptr array(MNumericArray_newAllocatedCommon(type, rank_of(from), from.data(), FailNull));
        array->refCount = 1;
        fill(array.get(), 3);
        const auto before = bytes_of(array.get());
        ASSERT_EQ(MNumericArray_allocateMemoryCommon(array.get(), other, rank_of(to), to.data(), FailNull),
                  0);
        expect_array(array.get(), other, to);
        if (to == from) {
          const auto after = bytes_of(array.get());
          const size_t kept = std::min(before.size(), after.size());
          EXPECT_TRUE(
              std::equal(after.begin(), after.begin() + static_cast<std::ptrdiff_t>(kept), before.begin()));
        }
        fill(array.get(), 4);
        array_ptr like(MNumericArray_new());
        ASSERT_EQ(MNumericArray_allocateMemoryLikeCommon(like.get(), array.get(), FailNull), 0);
        expect_array(like.get(), other, to);
      }
    }
  });
}

TEST_F(Allocate, EqualShapeOfEqualTypeTouchesNothing) {
  const mint dims[] = {3, 7};
  array_ptr array(MNumericArray_newAllocatedCommon(10, 2, dims, FailNull));
  array->flags |= ArrayFlagInExpr;
  const MNumericArray before = *array;
  MCsetlimit(1);
  EXPECT_EQ(MNumericArray_allocateMemoryCommon(array.get(), 10, 2, array->dims, FailNull), 0);
  EXPECT_EQ(MNumericArray_allocateMemoryLikeCommon(array.get(), array.get(), FailNull), 0);
  MCsetlimit(0);
  EXPECT_EQ(std::memcmp(&before, array.get(), sizeof before), 0);
  array->flags &= ~static_cast<uint32_t>(ArrayFlagInExpr);
}

TEST_F(Allocate, DimsOfTheArrayItselfAreAShape) {
  const mint dims[] = {2, 3, 4, 5};
  array_ptr array(MNumericArray_newAllocatedCommon(10, 4, dims, FailNull));
  EXPECT_EQ(MNumericArray_allocateMemoryCommon(array.get(), 10, 2, array->dims + 1, FailNull), 0);
  expect_array(array.get(), 10, {3, 4});
}

TEST_F(Allocate, BadDimensionsLeaveEverythingToTheCaller) {
  const std::vector<std::vector<mint>> bad = {
      {-1}, {2, -1}, {0, -1}, {-1, 0}, {3, 4, std::numeric_limits<mint>::min()}};
  const mint good[] = {2, 3};
  for (const auto& dims : bad) {
    for (int32_t mode : all_modes) {
      EXPECT_EQ(MNumericArray_newAllocatedCommon(10, rank_of(dims), dims.data(), mode), nullptr);
      MNumericArray* made = nullptr;
      EXPECT_EQ(MNumericArray_allocateCommon(&made, 10, rank_of(dims), dims.data(), mode),
                ArrayStatusBadDimensions);
      EXPECT_EQ(made, nullptr);
      mint* block = dims_block(dims);
      void* data = zalloc(64, 1, FailFatal);
      EXPECT_EQ(MNumericArray_newUsingDimsCommon(10, rank_of(dims), block, mode), nullptr);
      EXPECT_EQ(MNumericArray_newUsingDataArrayCommon(10, rank_of(dims), block, data, mode), nullptr);
      EXPECT_EQ(MNumericArray_newUsingDataArrayAndDimsCommon(10, rank_of(dims), block, data, mode), nullptr);
      zfree(data);
      zfree(block);
      array_ptr array(MNumericArray_newAllocatedCommon(9, 2, good, mode));
      const MNumericArray before = *array;
      EXPECT_EQ(MNumericArray_allocateMemoryCommon(array.get(), 10, rank_of(dims), dims.data(), mode),
                ArrayStatusBadDimensions);
      EXPECT_EQ(MNumericArray_initializeUsingDims(array.get(), 10, rank_of(dims),
                                                  const_cast<mint*>(dims.data()), 0, mode),
                ArrayStatusBadDimensions);
      EXPECT_EQ(std::memcmp(&before, array.get(), sizeof before), 0);
    }
  }
  EXPECT_EQ(MNumericArray_newAllocatedCommon(10, 1, nullptr, FailFatal), nullptr);
  EXPECT_EQ(MNumericArray_allocateMemoryCommon(nullptr, 10, 2, good, FailFatal), ArrayStatusNullArgument);
  EXPECT_EQ(MNumericArray_allocateCommon(nullptr, 10, 2, good, FailFatal), ArrayStatusNullArgument);
}

TEST_F(Allocate, ImpossibleSizesAreNoMemory) {
  const mint big = mint{1} << 62;
  const std::vector<std::vector<mint>> countOverflows = {{big, 4}, {3, big}, {big, 4, 0}};
  const std::vector<std::vector<mint>> bytesOverflow = {{big, 1}, {1, big}};
  const mint good[] = {2, 3};
  for (const auto* shapes : {&countOverflows, &bytesOverflow}) {
    for (const auto& dims : *shapes) {
      for (int32_t mode : {FailNull, FailReport}) {
        EXPECT_EQ(MNumericArray_newAllocatedCommon(12, rank_of(dims), dims.data(), mode), nullptr);
        EXPECT_EQ(MNumericArray_newUsingDimsCommon(12, rank_of(dims), dims_block(dims), mode), nullptr);
        EXPECT_EQ(MNumericArray_newUsingDataArrayCommon(12, rank_of(dims), dims.data(),
                                                        zalloc(64, 1, FailFatal), mode),
                  nullptr);
        EXPECT_EQ(MNumericArray_newUsingDataArrayAndDimsCommon(12, rank_of(dims), dims_block(dims),
                                                               zalloc(64, 1, FailFatal), mode),
                  nullptr);
        array_ptr array(MNumericArray_newAllocatedCommon(9, 2, good, mode));
        fill(array.get(), 7);
        const auto bytes = bytes_of(array.get());
        const MNumericArray before = *array;
        EXPECT_EQ(MNumericArray_allocateMemoryCommon(array.get(), 12, rank_of(dims), dims.data(), mode),
                  ArrayStatusNoMemory);
        EXPECT_EQ(std::memcmp(&before, array.get(), sizeof before), 0);
        EXPECT_EQ(bytes_of(array.get()), bytes);
      }
    }
  }
}

TEST_F(Allocate, ImpossibleSizesTestTheLimit) {
  const mint big = mint{1} << 62;
  const mint count[] = {big, 4}, bytes[] = {big};
  MC_set_interrupt_fun(count_interrupt);
  array_ptr array(MNumericArray_new());
  for (uint64_t limit : {uint64_t{0}, uint64_t{1} << 40}) {
    MCsetlimit(limit);
    interrupts = 0;
    EXPECT_EQ(MNumericArray_allocateMemoryCommon(array.get(), 12, 2, count, FailReport), ArrayStatusNoMemory);
    EXPECT_EQ(interrupts, limit != 0 ? 1 : 0);
    EXPECT_EQ(MNumericArray_allocateMemoryCommon(array.get(), 12, 1, bytes, FailReport), ArrayStatusNoMemory);
    EXPECT_EQ(interrupts, limit != 0 ? 2 : 0);
  }
}

TEST_F(Allocate, NoTypeHasNoElements) {
  const mint three[] = {3}, none[] = {3, 0};
  for (int32_t type : {0, 14, -1}) {
    EXPECT_EQ(MNumericArray_newAllocatedCommon(type, 1, three, FailNull), nullptr);
    EXPECT_EQ(MNumericArray_newUsingDataArrayCommon(type, 1, three, zalloc(64, 1, FailFatal), FailNull),
              nullptr);
    EXPECT_EQ(MNumericArray_newCopyFromDataArrayCommon(type, 1, three, three, FailNull), nullptr);
    array_ptr empty(MNumericArray_newAllocatedCommon(type, 2, none, FailNull));
    ASSERT_TRUE(empty);
    EXPECT_EQ(empty->elementType, static_cast<uint32_t>(type));
    EXPECT_EQ(empty->flattenedLength, 0);
    array_ptr array(MNumericArray_newAllocatedCommon(10, 1, three, FailNull));
    EXPECT_EQ(MNumericArray_allocateMemoryCommon(array.get(), type, 1, three, FailNull), ArrayStatusNoMemory);
    expect_array(array.get(), 10, {3});
  }
}

TEST_F(Allocate, ReshapeFailsWithoutATraceAtEveryAllocation) {
  const mint from[] = {2, 3}, to[] = {3, 5, 7, 2, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1};
  for (int32_t mode : {FailNull, FailReport}) {
    for (int32_t oldType : {0, 5, 12}) {
      array_ptr array(MNumericArray_new());
      if (oldType != 0) {
        ASSERT_EQ(MNumericArray_allocateMemoryCommon(array.get(), oldType, 2, from, mode), 0);
      }
      fill(array.get(), 9);
      const auto bytes = bytes_of(array.get());
      const MNumericArray before = *array;
      const int failures = fail_at_every_allocation(
          [&] { return MNumericArray_allocateMemoryCommon(array.get(), 10, 20, to, mode) == ArrayStatusOk; },
          [&] {
            EXPECT_EQ(std::memcmp(&before, array.get(), sizeof before), 0);
            EXPECT_EQ(bytes_of(array.get()), bytes);
          });
      EXPECT_EQ(failures, 2);
      expect_array(array.get(), 10, {to, to + 20});
    }
  }
}

TEST_F(Allocate, CreationFailsWithoutALeakAtEveryAllocation) {
  const std::vector<mint> dims = {3, 5, 7, 2};
  const std::vector<unsigned char> source(4096, 1);
  const int64_t inUse = vlm::test::bytes_of_blocks();
  const auto nothing_kept = [&] { EXPECT_EQ(vlm::test::bytes_of_blocks(), inUse); };
  const auto succeeded = [](MNumericArray* array) {
    MNumericArray_delete(array);
    return array != nullptr;
  };
  for (int32_t mode : {FailNull, FailReport}) {
    EXPECT_EQ(2, fail_at_every_allocation(
                     [&] { return succeeded(MNumericArray_newAllocatedCommon(12, 4, dims.data(), mode)); },
                     nothing_kept));
    EXPECT_EQ(2, fail_at_every_allocation(
                     [&] {
                       return succeeded(
                           MNumericArray_newCopyFromDataArrayCommon(12, 4, dims.data(), source.data(), mode));
                     },
                     nothing_kept));
    EXPECT_EQ(1,
              fail_at_every_allocation(
                  [&] { return succeeded(MNumericArray_newUsingDimsCommon(12, 4, dims_block(dims), mode)); },
                  nothing_kept));
    EXPECT_EQ(1,
              fail_at_every_allocation(
                  [&] {
                    void* data = zalloc(210 * 16, 1, FailFatal);
                    return succeeded(MNumericArray_newUsingDataArrayCommon(12, 4, dims.data(), data, mode));
                  },
                  nothing_kept));
    EXPECT_EQ(2, fail_at_every_allocation(
                     [&] {
                       MNumericArray* made = nullptr;
                       const int32_t status = MNumericArray_allocateCommon(&made, 3, 4, dims.data(), mode);
                       EXPECT_EQ(status, made == nullptr ? ArrayStatusNoMemory : ArrayStatusOk);
                       return succeeded(made);
                     },
                     nothing_kept));
  }
}

TEST_F(Allocate, ReportModeFailsOnlyWhereTheStorageDoes) {
  const mint dims[] = {20000};
  MCsetlimit(1);
  array_ptr overLimit(MNumericArray_newAllocatedCommon(10, 1, dims, FailReport));
  expect_array(overLimit.get(), 10, {20000});
  EXPECT_EQ(MNumericArray_newAllocatedCommon(10, 1, dims, FailNull), nullptr);
  MCsetlimit(0);
  system_allocation_limit = 65536;
  EXPECT_EQ(MNumericArray_newAllocatedCommon(10, 1, dims, FailReport), nullptr);
  EXPECT_EQ(MNumericArray_newAllocatedCommon(10, 1, dims, FailNull), nullptr);
  array_ptr small(MNumericArray_new());
  EXPECT_EQ(MNumericArray_allocateMemoryCommon(small.get(), 10, 1, dims, FailReport), ArrayStatusNoMemory);
  EXPECT_TRUE(vlm::array_is_valid(small.get()));
}

TEST_F(Allocate, FatalModeEndsTheProcess) {
  const mint overflow[] = {mint{1} << 62, 4}, bytes[] = {mint{1} << 62}, negative[] = {-1};
  array_ptr array(MNumericArray_new());
  EXPECT_EXIT(MNumericArray_allocateMemoryCommon(array.get(), 10, 2, overflow, FailFatal),
              ::testing::ExitedWithCode(1), "");
  EXPECT_EXIT(MNumericArray_newAllocatedCommon(12, 1, bytes, FailFatal), ::testing::ExitedWithCode(1), "");
  EXPECT_EXIT(MNumericArray_newCopyFromDataArrayCommon(10, 1, negative, negative, FailNull),
              ::testing::ExitedWithCode(1), "");
}

TEST_F(Allocate, TakesOverAlignedData) {
  for_all_types_and_shapes([]<class T>(const std::vector<mint>& dims) {
    constexpr int32_t type = vlm::element_code<T>;
    const uint64_t size = static_cast<uint64_t>(product_of(dims)) * sizeof(T);
    for (const bool takesDims : {false, true}) {
      void* data = zalloc(size != 0 ? size : 8, 1, FailFatal);
      mint* block = takesDims ? dims_block(dims) : nullptr;
      array_ptr array(
          takesDims
              ? MNumericArray_newUsingDataArrayAndDimsCommon(type, rank_of(dims), block, data, FailNull)
              : MNumericArray_newUsingDataArrayCommon(type, rank_of(dims), dims.data(), data, FailNull));
      expect_array(array.get(), type, dims);
      EXPECT_EQ(array->data, size != 0 ? data : nullptr);
      if (takesDims) {
        EXPECT_EQ(array->dims, block);
      }
      array_ptr noData(
          MNumericArray_newUsingDataArrayCommon(type, rank_of(dims), dims.data(), nullptr, FailNull));
      expect_array(noData.get(), type, dims);
    }
  });
}

TEST_F(Allocate, MovesMisalignedData) {
  const std::vector<mint> dims = {7, 3};
  int moved = 0;
  vlm::for_all_element_types([&]<class T>() {
    constexpr int32_t type = vlm::element_code<T>;
    for (const bool fails : {false, true}) {
      void* data = misaligned_block();
      ASSERT_NE(data, nullptr);
      std::memset(data, 0x5A, 21 * sizeof(T));
      array_ptr array(MNumericArray_new());
      mint* block = dims_block(dims);
      if (fails) vlm::memory::fail_allocation_after(0);
      array.reset(MNumericArray_newUsingDataArrayAndDimsCommon(type, 2, block, data, FailNull));
      vlm::memory::fail_allocation_after(-1);
      if (type <= 8) {
        ASSERT_TRUE(array);
        EXPECT_EQ(array->data, data);
      } else if (fails) {
        EXPECT_EQ(array.get(), nullptr);
      } else {
        expect_array(array.get(), type, dims);
        EXPECT_NE(array->data, data);
        EXPECT_EQ(bytes_of(array.get()), std::vector<unsigned char>(21 * sizeof(T), 0x5A));
        ++moved;
      }
    }
  });
  EXPECT_EQ(moved, 5);
}

TEST_F(Allocate, CopiesFromData) {
  std::vector<unsigned char> source(513 * 16);
  for (size_t i = 0; i < source.size(); ++i) source[i] = static_cast<unsigned char>(i * 7 + i / 256);
  for_all_types_and_shapes([&]<class T>(const std::vector<mint>& dims) {
    constexpr int32_t type = vlm::element_code<T>;
    const bool zeroBeforeLast = dims.size() >= 2 && std::count(dims.begin(), dims.end() - 1, 0) > 0;
    array_ptr array(
        MNumericArray_newCopyFromDataArrayCommon(type, rank_of(dims), dims.data(), source.data(), FailNull));
    ASSERT_EQ(array == nullptr, zeroBeforeLast);
    if (zeroBeforeLast) return;
    expect_array(array.get(), type, dims);
    const auto size = static_cast<std::ptrdiff_t>(product_of(dims)) * static_cast<std::ptrdiff_t>(sizeof(T));
    EXPECT_EQ(bytes_of(array.get()), std::vector<unsigned char>(source.begin(), source.begin() + size));
  });
  const mint dims[] = {2};
  EXPECT_EQ(MNumericArray_newCopyFromDataArrayCommon(10, 1, dims, nullptr, FailNull), nullptr);
  EXPECT_EQ(MNumericArray_newCopyFromDataArrayCommon(10, 1, nullptr, source.data(), FailNull), nullptr);
}

}  // namespace
