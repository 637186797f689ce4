/* Offsets and sizes of the records that hosts and compiled code read directly, and the contents of the small
 * tables. Faults it is meant to catch: a field moved, widened or padded; a code that changed its number; a
 * table that lost its order. */
#include <stdio.h>
#include <string.h>
#include <velorim/velorim.h>

#define FIELD(record, field, offset, bytes)                                                    \
  _Static_assert(offsetof(record, field) == (offset), #record "." #field " lies at " #offset); \
  _Static_assert(sizeof(((record*)0)->field) == (bytes), #record "." #field " has " #bytes " bytes")
#define SIZE(type, bytes) _Static_assert(sizeof(type) == (bytes), #type " has " #bytes " bytes")
#define CODE(name, number) _Static_assert((name) == (number), #name " is " #number)

SIZE(mint, 8);
SIZE(umint, 8);
SIZE(mreal, 8);
SIZE(mcomplex, 16);
FIELD(mcomplex, re, 0, 8);
FIELD(mcomplex, im, 8, 8);

FIELD(MNumericArray, precision, 0, 8);
FIELD(MNumericArray, dims, 8, 8);
FIELD(MNumericArray, rank, 16, 8);
FIELD(MNumericArray, tensorType, 24, 4);
FIELD(MNumericArray, flags, 28, 4);
FIELD(MNumericArray, elementType, 32, 4);
FIELD(MNumericArray, flattenedLength, 40, 8);
FIELD(MNumericArray, data, 48, 8);
FIELD(MNumericArray, refCount, 56, 8);
SIZE(MNumericArray, 64);
SIZE(MTensor, 64);

FIELD(TensorProperty, precision, 0, 8);
FIELD(TensorProperty, dims, 8, 8);
FIELD(TensorProperty, rank, 16, 8);
FIELD(TensorProperty, tensorType, 24, 4);
FIELD(TensorProperty, flags, 28, 4);
SIZE(TensorProperty, 32);

FIELD(MNumericArrayConvertData, sourceOffset, 0, 8);
FIELD(MNumericArrayConvertData, sourceStride, 8, 8);
FIELD(MNumericArrayConvertData, targetOffset, 16, 8);
FIELD(MNumericArrayConvertData, targetStride, 24, 8);
FIELD(MNumericArrayConvertData, tolerance, 32, 8);
FIELD(MNumericArrayConvertData, reserved, 40, 8);
FIELD(MNumericArrayConvertData, method, 48, 4);
FIELD(MNumericArrayConvertData, clip, 52, 1);
SIZE(MNumericArrayConvertData, 56);

FIELD(PartSpec, kind, 0, 4);
FIELD(PartSpec, count, 8, 8);
FIELD(PartSpec, indices, 16, 8);
FIELD(PartSpec, stride, 24, 8);
FIELD(PartSpec, position, 32, 8);
SIZE(PartSpec, 40);

FIELD(PartCheckError, first, 0, 8);
FIELD(PartCheckError, second, 8, 8);
FIELD(PartCheckError, report, 16, 8);
SIZE(PartCheckError, 24);

FIELD(HashKeyRecord, key, 0, 8);
FIELD(HashKeyRecord, unused, 8, 8);
FIELD(HashKeyRecord, hash, 16, 8);
SIZE(HashKeyRecord, 24);

FIELD(HashEntry, key, 0, 8);
FIELD(HashEntry, value, 8, 8);
FIELD(HashEntry, hash, 16, 8);
FIELD(HashEntry, next, 24, 8);
SIZE(HashEntry, 32);

FIELD(HashTable, buckets, 0, 8);
FIELD(HashTable, hash, 8, 8);
FIELD(HashTable, set, 16, 8);
FIELD(HashTable, equal, 24, 8);
FIELD(HashTable, init, 32, 8);
FIELD(HashTable, free, 40, 8);
FIELD(HashTable, tableFree, 48, 8);
FIELD(HashTable, initialSize, 56, 8);
FIELD(HashTable, size, 64, 8);
FIELD(HashTable, initialIndex, 72, 8);
FIELD(HashTable, index, 80, 8);
FIELD(HashTable, count, 88, 8);
FIELD(HashTable, flags, 96, 4);
SIZE(HashTable, 104);

FIELD(IntegerArrayHashTable, table, 0, 8);
FIELD(IntegerArrayHashTable, elements, 8, 8);
FIELD(IntegerArrayHashTable, mode, 16, 4);
SIZE(IntegerArrayHashTable, 24);

FIELD(MemoryLinkedList, data, 0, 8);
FIELD(MemoryLinkedList, next, 8, 8);
SIZE(MemoryLinkedList, 16);

FIELD(MBag, firstChunk, 0, 8);
FIELD(MBag, tailLink, 8, 8);
FIELD(MBag, chunkCount, 16, 8);
FIELD(MBag, nextFree, 24, 8);
FIELD(MBag, chunkEnd, 32, 8);
FIELD(MBag, elementSize, 40, 8);
FIELD(MBag, chunkBytes, 48, 8);
FIELD(MBag, elementType, 56, 4);
SIZE(MBag, 64);

FIELD(MBagArray, capacity, 0, 8);
FIELD(MBagArray, lastIndex, 8, 8);
FIELD(MBagArray, bags, 16, 8);
SIZE(MBagArray, 24);

FIELD(BitVector, bits, 0, 8);
FIELD(BitVector, length, 8, 8);
SIZE(BitVector, 16);

CODE(PartKindIndex, 0);
CODE(PartKindList, 1);
CODE(PartKindAll, 2);
CODE(PartKindSpan, 3);

FIELD(CompilerError, type, 0, 4);
FIELD(CompilerError, code, 4, 4);
SIZE(CompilerError, 8);

FIELD(FloatLimits, max, 0, 8);
FIELD(FloatLimits, min, 8, 8);
FIELD(FloatLimits, denorm_min, 16, 8);
FIELD(FloatLimits, lowest, 24, 8);
FIELD(FloatLimits, epsilon, 32, 8);
FIELD(FloatLimits, digits, 40, 8);
FIELD(FloatLimits, max_exponent, 48, 8);
FIELD(FloatLimits, min_exponent, 56, 8);
SIZE(FloatLimits, 64);

CODE(MNumericArrayTypeInteger8, 1);
CODE(MNumericArrayTypeUnsignedInteger8, 2);
CODE(MNumericArrayTypeInteger16, 3);
CODE(MNumericArrayTypeUnsignedInteger16, 4);
CODE(MNumericArrayTypeInteger32, 5);
CODE(MNumericArrayTypeUnsignedInteger32, 6);
CODE(MNumericArrayTypeInteger64, 7);
CODE(MNumericArrayTypeUnsignedInteger64, 8);
CODE(MNumericArrayTypeReal32, 9);
CODE(MNumericArrayTypeReal64, 10);
CODE(MNumericArrayTypeComplexReal32, 11);
CODE(MNumericArrayTypeComplexReal64, 12);
CODE(MNumericArrayTypeReal16, 13);
CODE(MTensorTypeInteger, 2);
CODE(MTensorTypeReal, 3);
CODE(MTensorTypeComplex, 4);
CODE(FailFatal, 0);
CODE(FailNull, 1);
CODE(FailReport, 2);
CODE(MACHFUNC_CHECK_FP, 2);
CODE(MACHFUNC_CHECK_INTEGER, 4);
CODE(VelorimError_integer_overflow, 1);
CODE(VelorimError_floating_point_environment_error, 12);
CODE(VelorimError_unimplemented, 22);
CODE(VelorimError_abort, 34);
CODE(VelorimError_arraycreation, 46);
CODE(VelorimError_reserved_50, 96);
CODE(ArrayStatusBadDimensions, 402);
CODE(ArrayStatusNoMemory, 403);
CODE(ArrayStatusAborted, 1000);
CODE(ArrayStatusArithmetic, 1001);
CODE(LibraryTypeError, 1);
CODE(LibraryNumericalError, 4);
CODE(LibraryMemoryError, 5);
CODE(LibraryFunctionError, 6);

static int failures;

static void expect(int condition, const char* what) {
  if (condition) return;
  failures++;
  printf("not as written: %s\n", what);
}

static void expect_increments(const mint* table, mint r, mint x, mint y, mint z, const char* name) {
  const mint written[4] = {r, x, y, z};
  expect(memcmp(table, written, sizeof written) == 0, name);
}
#define INCREMENTS(name, r, x, y, z) expect_increments(name, r, x, y, z, #name)

int main(void) {
  static const int64_t element_bytes[14] = {0, 1, 1, 2, 2, 4, 4, 8, 8, 4, 8, 8, 16, 2};
  static const int32_t to_element[5] = {0, 7, 7, 10, 12};
  static const int32_t to_tensor[14] = {0, 0, 0, 0, 0, 0, 0, 2, 0, 0, 3, 0, 4, 0};
  static const int64_t compiler_bytes[6] = {0, 4, 8, 8, 16, 8};
  _Static_assert(sizeof MNumericArray_typeSizeTable == sizeof element_bytes, "14 entries");
  _Static_assert(sizeof MTensorToMNumericArrayType == sizeof to_element, "5 entries");
  _Static_assert(sizeof MNumericArrayToMTensorType == sizeof to_tensor, "14 entries");
  _Static_assert(sizeof CompilerTypeSizeTable == sizeof compiler_bytes, "6 entries");
  _Static_assert(sizeof fibonacci_table == 94 * sizeof(uint64_t), "94 entries");
  _Static_assert(sizeof lucasl_table == 93 * sizeof(uint64_t), "93 entries");
  expect(memcmp(MNumericArray_typeSizeTable, element_bytes, sizeof element_bytes) == 0,
         "MNumericArray_typeSizeTable");
  expect(memcmp(MTensorToMNumericArrayType, to_element, sizeof to_element) == 0,
         "MTensorToMNumericArrayType");
  expect(memcmp(MNumericArrayToMTensorType, to_tensor, sizeof to_tensor) == 0, "MNumericArrayToMTensorType");
  expect(memcmp(CompilerTypeSizeTable, compiler_bytes, sizeof compiler_bytes) == 0, "CompilerTypeSizeTable");

  expect(fibonacci_table[0] == 0 && fibonacci_table[1] == 1 && fibonacci_table[93] == 12200160415121876738u,
         "ends of fibonacci_table");
  expect(lucasl_table[0] == 2 && lucasl_table[1] == 1 && lucasl_table[92] == 16860207025497407047u,
         "ends of lucasl_table");
  for (int n = 2; n < 94; n++)
    expect(fibonacci_table[n] == fibonacci_table[n - 1] + fibonacci_table[n - 2],
           "recurrence of fibonacci_table");
  for (int n = 2; n < 93; n++)
    expect(lucasl_table[n] == lucasl_table[n - 1] + lucasl_table[n - 2], "recurrence of lucasl_table");

  INCREMENTS(UnitIncrements, 1, 1, 1, 1);
  INCREMENTS(ZeroIncrements, 0, 0, 0, 0);
  INCREMENTS(UnitRIncrements, 1, 0, 0, 0);
  INCREMENTS(UnitXIncrements, 0, 1, 0, 0);
  INCREMENTS(UnitRXIncrements, 1, 1, 0, 0);
  INCREMENTS(UnitYIncrements, 0, 0, 1, 0);
  INCREMENTS(UnitRYIncrements, 1, 0, 1, 0);
  INCREMENTS(UnitZIncrements, 0, 0, 0, 1);
  INCREMENTS(UnitRZIncrements, 1, 0, 0, 1);
  INCREMENTS(UnitRXYIncrements, 1, 1, 1, 0);
  INCREMENTS(UnitXYIncrements, 0, 1, 1, 0);
  INCREMENTS(UnitRXZIncrements, 1, 1, 0, 1);
  INCREMENTS(UnitXZIncrements, 0, 1, 0, 1);
  INCREMENTS(UnitRYZIncrements, 1, 0, 1, 1);
  INCREMENTS(UnitYZIncrements, 0, 0, 1, 1);
  INCREMENTS(UnitXYZIncrements, 0, 1, 1, 1);

  printf("%d faults\n", failures);
  return failures != 0;
}
