// Faults it is meant to catch: a chunk too many or too few where an append just fills one; elements read from the wrong chunk; counts of an
// untouched bag; slots of a bag array reused or grown wrongly; spare bits counted; magnitudes taken for two's complement.
#include "velorim/containers.h"

#include <numeric>

#include "Arithmetic/Parallel/settings.h"
#include "Containers/bag.h"
#include "support/array_fixture.h"
#include "velorim/parallel.h"

namespace {

class Containers : public vlm_test::ArrayTest {};

std::vector<mint> numbers(mint count) {
  std::vector<mint> v(static_cast<size_t>(count));
  std::iota(v.begin(), v.end(), mint{1});
  return v;
}

TEST_F(Containers, BagsKeepTheOrderThroughTheirChunks) {
  for (const std::vector<mint>& appends :
       {std::vector<mint>{1024, 1}, {2500}, {1, 1023, 0, 1024}, {1023, 2, 2048}, {0}, {}, {1025, -4, 3}}) {
    MBag* const bag = MBag_new(MTensorTypeInteger);
    EXPECT_EQ(vlm::bag_length(bag), 0);
    mint total = 0;
    const std::vector<mint> all = numbers(6000);
    for (const mint count : appends) {
      MBag_stuff(bag, count, all.data() + total);
      total += std::max<mint>(count, 0);
      ASSERT_EQ(vlm::bag_length(bag), total);
    }
    MTensor* tensor = nullptr;
    ASSERT_EQ(MBag_toMTensor(&tensor, bag), 0);
    ASSERT_EQ(tensor->flattenedLength, total);
    for (mint i = 0; i < total; ++i) ASSERT_EQ(static_cast<mint*>(tensor->data)[i], i + 1);
    EXPECT_EQ(MBag_byteCount(bag), sizeof(MBag) + static_cast<uint64_t>(bag->chunkCount) * (8192 + 16));
    MNumericArray_delete(tensor);
    MBag_delete(bag);
  }
}

TEST_F(Containers, AnAppendThatFillsAChunkMakesNoOther) {
  MBag* const bag = MBag_new(MTensorTypeReal);
  const std::vector<double> x(2500, 0.5);
  MBag_stuff(bag, 1024, x.data());
  EXPECT_EQ(bag->chunkCount, 1);
  EXPECT_EQ(bag->nextFree, bag->chunkEnd);
  MBag_stuff(bag, 1476, x.data());
  EXPECT_EQ(bag->chunkCount, 3);
  EXPECT_EQ(bag->chunkEnd - bag->nextFree, (3072 - 2500) * 8);
  MBag_delete(bag);
  MBag* const untyped = MBag_new(77);
  EXPECT_EQ(vlm::bag_length(untyped), 0);
  MBag_delete(untyped);
  MBag_delete(nullptr);
  EXPECT_EQ(MBag_byteCount(nullptr), 0u);
}

TEST_F(Containers, PartsOfABag) {
  MBag* const bag = MBag_new(MTensorTypeInteger);
  const std::vector<mint> all = numbers(3000);
  MBag_stuff(bag, 3000, all.data());
  for (mint index : {1, 1024, 1025, 3000}) {
    mint element = 0;
    PartSpec spec = {PartKindIndex, 1, &index, 1, 0};
    EXPECT_EQ(MBag_part(&element, bag, &spec), 0);
    EXPECT_EQ(element, index);
  }
  std::vector<mint> list = {3000, 1, 1025};
  mint span[] = {2, 3000, 1000, 0};
  PartSpec specs[] = {{PartKindList, 3, list.data(), 0, 0}, {PartKindSpan, 3, span, 0, 0}};
  const std::vector<mint> expected[] = {list, {2, 1002, 2002}};
  MTensor* out = nullptr;
  for (int i = 0; i < 2; ++i) {
    ASSERT_EQ(MBag_part(&out, bag, &specs[i]), 0);
    EXPECT_EQ(std::vector<mint>(static_cast<mint*>(out->data), static_cast<mint*>(out->data) + 3),
              expected[i]);
  }
  PartSpec all_of_it = {PartKindAll, 3000, nullptr, 0, 0}, unknown = {9, 0, nullptr, 0, 0};
  EXPECT_EQ(MBag_part(&out, bag, &all_of_it), 0);
  EXPECT_EQ(out->flattenedLength, 3000);
  EXPECT_EQ(MBag_part(&out, bag, &unknown), -1);
  MNumericArray_delete(out);
  MTensor* fresh = nullptr;
  const auto make = [&] { return MBag_part(&fresh, bag, &specs[0]) == 0; };
  EXPECT_GT(fail_at_every_allocation(make, [&] { EXPECT_EQ(fresh, nullptr); }), 0);
  MNumericArray_delete(fresh);
  MBag_delete(bag);
}

TEST_F(Containers, BagArraysDoubleAndAreReused) {
  MBagArray* const array = MBagArray_new();
  const mint capacities[] = {1, 2, 4, 4, 8};
  for (mint i = 0; i < 5; ++i) {
    EXPECT_EQ(MBagArray_newBag(array, MTensorTypeReal), i);
    EXPECT_EQ(array->capacity, capacities[i]);
  }
  MBagArray_cleanUp(array);
  EXPECT_EQ(array->lastIndex, -1);
  EXPECT_EQ(MBagArray_newBag(array, MTensorTypeInteger), 0);
  EXPECT_EQ(array->bags[0]->elementType, MTensorTypeInteger);
  EXPECT_EQ(array->capacity, 8);
  MBagArray_delete(array);
  MBagArray_delete(nullptr);
}

TEST_F(Containers, LinkedMemory) {
  MemoryLinkedList* const first = MemoryLinkedList_newLink(40);
  EXPECT_EQ(first->data, first + 1);
  first->next = MemoryLinkedList_newLink(0);
  EXPECT_EQ(first->next->data, nullptr);
  int visited = 0;
  MemoryLinkedList_visit(
      first, [](void*, void* n) { ++*static_cast<int*>(n); }, &visited);
  EXPECT_EQ(visited, 2);
  MemoryLinkedList* const copy = MemoryLinkedList_copy(first, [](void*) { return zalloc(8, 0, FailFatal); });
  EXPECT_NE(copy->next->data, nullptr);
  EXPECT_EQ(copy->next->next, nullptr);
  MemoryLinkedList_delete(copy, zfree);
  MemoryLinkedList_delete(first, nullptr);
  EXPECT_EQ(MemoryLinkedList_copy(nullptr, nullptr), nullptr);
}

TEST_F(Containers, BitVectorsCountWithoutTheirSpareBits) {
  for (const mint threads : {1, 2}) {
    const mint before = setParallelThreadNumber(threads);
    for (const mint length : {-1, 0, 1, 7, 8, 10, 64, 131071, 131072, 131075, 1000001}) {
      BitVector* const set = bitvector_new(length, 1);
      EXPECT_EQ(bitvector_count(set), std::max<mint>(length, 0));
      BitVector* const copy = bitvector_copy(set);
      mint cleared = 0;
      for (mint i = 0; i < length; i += 37, ++cleared)
        copy->bits[i / 8] &= static_cast<uint8_t>(~(1 << i % 8));
      EXPECT_EQ(bitvector_count(copy), std::max<mint>(length, 0) - cleared) << length;
      EXPECT_EQ(
          bitvector_byteCount(set),
          zalloc_round(16, 0) + zalloc_round(static_cast<uint64_t>(length < 1 ? 0 : (length + 7) / 8), 0));
      bitvector_delete(set);
      bitvector_delete(copy);
    }
    restoreParallelThreadNumber(before);
  }
  EXPECT_EQ(bitvector_count(nullptr), 0);
  EXPECT_EQ(bitvector_copy(nullptr), nullptr);
  BitVector* const ten = bitvector_new(10, 1);
  EXPECT_EQ(ten->bits[1], 255);
  bitvector_delete(ten);
}

TEST(BitFunctions, LookAtMagnitudes) {
  EXPECT_EQ(bit_count_int32(-1), 1u);
  EXPECT_EQ(bit_count_uint32(~0u), 32u);
  EXPECT_EQ(bit_count_int32(INT32_MIN), 1u);
  EXPECT_EQ(bit_count_int64(-7), 3u);
  EXPECT_EQ(bit_count_uint64(~uint64_t{0}), 64u);
  EXPECT_EQ(bit_length_int64(-8), 4u);
  EXPECT_EQ(bit_length_int64(INT64_MIN), 64u);
  EXPECT_EQ(bit_length_uint32(0), 0u);
  EXPECT_EQ(bit_length_int32(INT32_MAX), 31u);
  EXPECT_EQ(bit_length_uint64(1), 1u);
  EXPECT_EQ(count_trailing_zeros_uint64(0), 0u);
  EXPECT_EQ(count_trailing_zeros_int32(-8), 3u);
  EXPECT_EQ(count_trailing_zeros_int64(INT64_MIN), 63u);
  EXPECT_EQ(count_trailing_zeros_uint32(6), 1u);
}

}  // namespace
