/* Services on the elements of an array that need no knowledge of their values: copies, fills, zeros, the byte count, and the
 * rank-0 arrays that carry one number through interfaces that take arrays.
 *
 *  - Statuses are 0 or a code of status.h. A null array gives ArrayStatusNullArgument where a status is returned; the services
 *    without a result take valid arrays.
 *  - start, step and count are in elements and positions count from 0. Steps may be negative or 0. The caller keeps every read and
 *    write inside the data.
 *  - failMode is that of base.h.
 *  - Threads: any, on distinct targets. Work of 128 KiB of elements or more runs on the team (parallel.h), in pieces of 64 KiB. */
#ifndef VELORIM_ARRAY_SERVICES_H
#define VELORIM_ARRAY_SERVICES_H

#include <velorim/array.h>

VLM_BEGIN_DECLS

/* ---- Copies ---- */

/** Gives target the type and shape of source and copies all elements; storage of the right size is reused. target may be source,
 *  which changes nothing.
 *  returns 0, or the status of the allocation, with target as it was. The second name has the same effect. */
int32_t MNumericArray_copyCommon(MNumericArray* target, const MNumericArray* source,
                                 int32_t failMode) VLM_NOEXCEPT;
int32_t MNumericArray_copyUniqueCommon(MNumericArray* target, const MNumericArray* source,
                                       int32_t failMode) VLM_NOEXCEPT;

/** The same, and sets ArrayFlagInExpr on target in every case: also if target is source, also if the copy failed. */
int32_t MNumericArray_copyUniqueInExprCommon(MNumericArray* target, const MNumericArray* source,
                                             int32_t failMode) VLM_NOEXCEPT;

/** Copies into *targetInOut, which gets a new array if it is NULL.
 *  returns 0, or the status of the allocation; then *targetInOut is deleted, even if it was there before, and NULL. */
int32_t MNumericArray_makeCopyCommon(MNumericArray** targetInOut, const MNumericArray* source,
                                     int32_t failMode) VLM_NOEXCEPT;

/** Stores in *targetOut a new array of zeros with the type and shape of model; what *targetOut held is not looked at.
 *  returns 0, or the status of the allocation with NULL in *targetOut. */
int32_t MNumericArray_copyZeroCommon(MNumericArray** targetOut, const MNumericArray* model,
                                     int32_t failMode) VLM_NOEXCEPT;

/** target[targetStart + i targetStep] = source[sourceStart + i sourceStep] for i from 0 to count - 1, elements moved whole. Both
 *  arrays are taken to have target's element type. If source and target overlap, contiguous runs behave as if all of source were
 *  read first, and strided ones move in the order of i. A count below 1 or an array without element type does nothing. */
void MNumericArray_copyData(MNumericArray* target, mint targetStart, mint targetStep,
                            const MNumericArray* source, mint sourceStart, mint sourceStep,
                            mint count) VLM_NOEXCEPT;
/** The same with both steps 1. */
void MNumericArray_copyContiguousData(MNumericArray* target, mint targetStart, const MNumericArray* source,
                                      mint sourceStart, mint count) VLM_NOEXCEPT;
/** The same on bare memory of an element type, both sides from position 0. */
void MNumericArrayData_copyData(int32_t type, void* target, mint targetStep, const void* source,
                                mint sourceStep, mint count) VLM_NOEXCEPT;

/** Fits the storage of an array to its flattenedLength elements, keeping them; a length below 1 frees it.
 *  returns 0; ArrayStatusNoMemory with the array unchanged. */
int32_t MNumericArray_reallocateAndCopyDataCommon(MNumericArray* array, int32_t failMode) VLM_NOEXCEPT;

/* ---- Fills ---- */

/** All bits of all elements 0. An array without element type is left alone. */
void MNumericArray_zero(MNumericArray* array) VLM_NOEXCEPT;

/** data[start + p step + k] = values[k] for k below valueCount, for the positions p from 0 to (flattenedLength - start) / step
 *  (truncated; none for step 0) less 1. With step = valueCount this tiles the pattern. The writes of two positions must not meet.
 *  A length of 6, start 1, step 2, one value: elements 1 and 3. */
void MNumericArray_setData(MNumericArray* array, mint start, mint step, const void* values,
                           mint valueCount) VLM_NOEXCEPT;
/** The same on bare memory of an element type, from position 0, for count positions. */
void MNumericArrayData_setData(int32_t type, void* data, mint step, const void* values, mint valueCount,
                               mint count) VLM_NOEXCEPT;
/** The two with one zero element as the pattern. */
void MNumericArray_setZero(MNumericArray* array, mint start, mint step) VLM_NOEXCEPT;
void MNumericArrayData_setZero(int32_t type, void* data, mint step, mint count) VLM_NOEXCEPT;

/* ---- Rank-0 arrays ---- */

/** A new rank-0 array of an element type, with one element copied from source unless that is NULL. Exhaustion ends the process. */
MNumericArray* MNumericArray_loadNewRank0(const void* source, int32_t type) VLM_NOEXCEPT;

/** The cell of the calling thread's shared table that holds its rank-0 array of an element type in a slot (0, 1 or 2), with one
 *  element copied into the array from source unless that is NULL. The array lives until the thread ends, must not be deleted, and
 *  is the caller's until the next call with the same type and slot.
 *  returns NULL for a type outside 1 to 13, for any other slot, and before the library is initialised. */
MNumericArray** MNumericArray_loadSharedRank0(const void* source, int32_t type, mint slot) VLM_NOEXCEPT;

/** Creation as compiled code calls it: MNumericArray_allocateCommon of a new array with FailReport. NULL on any failure. */
MNumericArray* Runtime_CreateNumericArray(int32_t type, mint rank, const mint* dims) VLM_NOEXCEPT;

/* ---- Byte count and shape records ---- */

/** Bytes that an array occupies: zalloc_round of its record, of its dimensions if it has rank, and of its data if it has any. 0 for
 *  NULL. */
uint64_t MNumericArray_getByteCount(const MNumericArray* array) VLM_NOEXCEPT;

/** The head of an array record alone: a shape without elements. */
typedef struct TensorProperty TensorProperty;
struct TensorProperty {
  double precision;
  mint* dims;
  mint rank;
  uint32_t tensorType;
  uint32_t flags;
};
/** A new one of a rank, with room for at least 2 dimensions, all 0; precision 2^53, tensorType and flags 0. Exhaustion ends the
 *  process. */
TensorProperty* TensorProperty_new(mint rank) VLM_NOEXCEPT;
/** Frees it with its dimensions; NULL is ignored. */
void TensorProperty_delete(TensorProperty* property) VLM_NOEXCEPT;
/** Copies source's dimensions, tensorType, flags and precision. target keeps its rank and must have room for the dimensions. */
void TensorProperty_copyValues(TensorProperty* target, const TensorProperty* source) VLM_NOEXCEPT;
/** A new one with the same rank and values; NULL for NULL. */
TensorProperty* TensorProperty_copy(const TensorProperty* source) VLM_NOEXCEPT;

/* ---- Integers of other widths ---- */

/** Stores value cut to 32 bits.       returns 1 if nothing was lost, else 0. */
int32_t IntFromMint(int32_t* target, mint value) VLM_NOEXCEPT;
/** The same for each element, up to and including the first that loses something.       returns 1 if none did, else 0. */
int32_t IntFromMintArray(int32_t* target, const mint* source, mint count) VLM_NOEXCEPT;
/** Widens count integers, from the last to the first, so that both blocks may begin at the same address.       returns target. */
mint* MintFromIntArray(mint* target, const int32_t* source, mint count) VLM_NOEXCEPT;
/** 1 if value lies in -2147483647 to 2147483647, else 0: the least 32-bit integer does not. */
int32_t MInt32Q(mint value) VLM_NOEXCEPT;

/* ---- Tensor forms: the operation of the same name. Those without failMode take FailFatal; types are tensor types. ---- */

int32_t MTensor_copy(MTensor* target, const MTensor* source) VLM_NOEXCEPT;
int32_t MTensor_makeCopy(MTensor** targetInOut, const MTensor* source) VLM_NOEXCEPT;
int32_t MTensor_copyUniqueCommon(MTensor* target, const MTensor* source, int32_t failMode) VLM_NOEXCEPT;
int32_t iMTensor_copyUniqueInExpr(MTensor* target, const MTensor* source) VLM_NOEXCEPT;
void MTensor_copyData(MTensor* target, mint targetStart, mint targetStep, const MTensor* source,
                      mint sourceStart, mint sourceStep, mint count) VLM_NOEXCEPT;
void MTensor_copyContiguousData(MTensor* target, mint targetStart, const MTensor* source, mint sourceStart,
                                mint count) VLM_NOEXCEPT;
void MTensor_zero(MTensor* array) VLM_NOEXCEPT;
int32_t MTensor_copyZeroCommon(MTensor** targetOut, const MTensor* model, int32_t failMode) VLM_NOEXCEPT;
int32_t MTensor_reallocateAndCopyDataCommon(MTensor* array, int32_t failMode) VLM_NOEXCEPT;
void MTensor_setData(MTensor* array, mint start, mint step, const void* values, mint valueCount) VLM_NOEXCEPT;
uint64_t MTensor_getByteCount(const MTensor* array) VLM_NOEXCEPT;
/** MNumericArray_resetDimensionsCommon without its status: FailFatal leaves none but that of bad dimensions, where nothing changes. */
void MTensor_resetDimensions(MTensor* array, mint rank, const mint* dims) VLM_NOEXCEPT;
MTensor* MTensor_loadNewRank0(const void* source, int32_t tensorType) VLM_NOEXCEPT;
MTensor** MTensor_loadSharedRank0(const void* source, int32_t tensorType, mint slot) VLM_NOEXCEPT;

VLM_END_DECLS

#endif
