// Faults to catch: a field of the record moved or widened; a table entry wrong or missing for a type (Real16 above all);
// bits of flags lost or left behind when the type changes; precision of the wrong kind; a code outside the list read as a type.
#include <cstddef>
#include <limits>

#include "support/array_fixture.h"

using namespace vlm_test;

static_assert(offsetof(MNumericArray, precision) == 0);
static_assert(offsetof(MNumericArray, dims) == 8);
static_assert(offsetof(MNumericArray, rank) == 16);
static_assert(offsetof(MNumericArray, tensorType) == 24);
static_assert(offsetof(MNumericArray, flags) == 28);
static_assert(offsetof(MNumericArray, elementType) == 32);
static_assert(offsetof(MNumericArray, flattenedLength) == 40);
static_assert(offsetof(MNumericArray, data) == 48);
static_assert(offsetof(MNumericArray, refCount) == 56);
static_assert(sizeof(MNumericArray) == 64);
static_assert(sizeof(IDCNum) == 24 && offsetof(IDCNum, value) == 8);

namespace {

struct type_row {
  int64_t bytes;
  uint32_t tensorType, flags;
  bool integer;
  uint64_t alignment;
};

// Written out by hand, one row for each code from 0 to 13.
constexpr type_row rows[14] = {{0, 0, 0x00, true, 16},   {1, 0, 0x83, true, 8},   {1, 0, 0x83, true, 8},
                               {2, 0, 0x83, true, 8},    {2, 0, 0x83, true, 8},   {4, 0, 0x83, true, 8},
                               {4, 0, 0x83, true, 8},    {8, 2, 0x83, true, 8},   {8, 0, 0x83, true, 8},
                               {4, 0, 0x83, false, 16},  {8, 3, 0x83, false, 16}, {8, 0, 0x8B, false, 16},
                               {16, 4, 0x8B, false, 16}, {2, 0, 0x83, false, 16}};

class ArrayRecord : public ArrayTest {};

TEST_F(ArrayRecord, TablesHoldTheDocumentedEntries) {
  for (int type = 0; type <= 13; ++type) {
    EXPECT_EQ(MNumericArray_typeSizeTable[type], rows[type].bytes) << type;
    EXPECT_EQ(MNumericArrayToMTensorType[type], static_cast<int32_t>(rows[type].tensorType)) << type;
    EXPECT_EQ(vlm::data_alignment(type), rows[type].alignment) << type;
  }
  const int32_t elementTypes[5] = {0, 7, 7, 10, 12};
  const int64_t compilerBytes[6] = {0, 4, 8, 8, 16, 8};
  EXPECT_TRUE(std::equal(elementTypes, elementTypes + 5, MTensorToMNumericArrayType));
  EXPECT_TRUE(std::equal(compilerBytes, compilerBytes + 6, CompilerTypeSizeTable));
}

TEST_F(ArrayRecord, ApplyingATypeWritesItsFieldsAndNoOtherBit) {
  const uint32_t foreign = 0x2800000u | 0x10u | 0x40000000u;
  for (int from = 0; from <= 13; ++from) {
    for (int to = 0; to <= 13; ++to) {
      MNumericArray record;
      MNumericArray_initialize(&record);
      vlm::applyElementType(&record, from);
      record.flags |= foreign;
      vlm::applyElementType(&record, to);
      EXPECT_EQ(record.elementType, static_cast<uint32_t>(to));
      EXPECT_EQ(record.tensorType, rows[to].tensorType) << from << " to " << to;
      EXPECT_EQ(record.flags, foreign | rows[to].flags) << from << " to " << to;
      EXPECT_EQ(record.precision,
                rows[to].integer ? 9007199254740992.0 : -std::numeric_limits<double>::infinity());
    }
  }
}

TEST_F(ArrayRecord, CodesOutsideTheListClearTheTypeButNotThePrecision) {
  for (int32_t code : {14, 255, std::numeric_limits<int32_t>::max(), -1}) {
    MNumericArray record;
    MNumericArray_initialize(&record);
    vlm::applyElementType(&record, 12);
    vlm::applyElementType(&record, code);
    EXPECT_EQ(record.elementType, static_cast<uint32_t>(code));
    EXPECT_EQ(record.tensorType, 0u);
    EXPECT_EQ(record.flags, 0u);
    EXPECT_EQ(record.precision, -std::numeric_limits<double>::infinity());
  }
}

TEST_F(ArrayRecord, NewRecordsAreEmpty) {
  array_ptr made(MNumericArray_new());
  MNumericArray provided;
  std::memset(&provided, 0xAB, sizeof provided);
  MNumericArray_initialize(&provided);
  for (const MNumericArray* record :
       {static_cast<const MNumericArray*>(made.get()), static_cast<const MNumericArray*>(&provided)}) {
    uint64_t precision = 0;
    std::memcpy(&precision, &record->precision, sizeof precision);
    EXPECT_EQ(precision, 0x4340000000000000u);
    EXPECT_EQ(record->dims, nullptr);
    EXPECT_EQ(record->rank, 0);
    EXPECT_EQ(record->tensorType, 0u);
    EXPECT_EQ(record->flags, 0u);
    EXPECT_EQ(record->elementType, 0u);
    EXPECT_EQ(record->flattenedLength, 0);
    EXPECT_EQ(record->data, nullptr);
    EXPECT_EQ(record->refCount, 1);
    EXPECT_TRUE(vlm::array_is_valid(record));
  }
}

TEST_F(ArrayRecord, TheInvariantsSeeEachBrokenField) {
  const mint dims[] = {2, 3};
  array_ptr array(MNumericArray_newAllocatedCommon(10, 2, dims, FailNull));
  ASSERT_TRUE(vlm::array_is_valid(array.get()));
  const MNumericArray sound = *array;
  const auto breaks = [&](auto&& damage) {
    damage(*array);
    const bool seen = !vlm::array_is_valid(array.get());
    *array = sound;
    return seen;
  };
  EXPECT_TRUE(breaks([](auto& a) { a.flattenedLength = 5; }));
  EXPECT_TRUE(breaks([](auto& a) { a.rank = 1; }));
  EXPECT_TRUE(breaks([](auto& a) { a.rank = -1; }));
  EXPECT_TRUE(breaks([](auto& a) { a.dims = nullptr; }));
  EXPECT_TRUE(breaks([](auto& a) { a.data = nullptr; }));
  EXPECT_TRUE(breaks([](auto& a) { a.data = static_cast<char*>(a.data) + 8; }));
  EXPECT_TRUE(breaks([](auto& a) { a.elementType = 12; }));
  EXPECT_TRUE(breaks([](auto& a) { a.tensorType = 2; }));
  EXPECT_TRUE(breaks([](auto& a) { a.precision = 1; }));
  EXPECT_TRUE(breaks([](auto& a) { a.flags = 0x03; }));
  array->dims[0] = -2;
  EXPECT_FALSE(vlm::array_is_valid(array.get()));
}

}  // namespace
