/* Copying, filling and the shared scalars: services on the elements of an array that need no knowledge of their values. */
#ifndef VELORIM_ARRAY_SERVICES_H
#define VELORIM_ARRAY_SERVICES_H

#include <velorim/array.h>

VLM_BEGIN_DECLS

typedef struct TensorProperty TensorProperty;
struct TensorProperty {
  double precision;
  mint* dims;
  mint rank;
  uint32_t tensorType;
  uint32_t flags;
};
/* Copying */
int32_t MNumericArray_copyCommon(MNumericArray* target, const MNumericArray* source,
                                 int32_t failMode) VLM_NOEXCEPT;
int32_t MNumericArray_copyUniqueCommon(MNumericArray* target, const MNumericArray* source,
                                       int32_t failMode) VLM_NOEXCEPT;
int32_t MNumericArray_copyUniqueInExprCommon(MNumericArray* target, const MNumericArray* source,
                                             int32_t failMode) VLM_NOEXCEPT;
int32_t MNumericArray_makeCopyCommon(MNumericArray** targetInOut, const MNumericArray* source,
                                     int32_t failMode) VLM_NOEXCEPT;
int32_t MNumericArray_copyZeroCommon(MNumericArray** targetOut, const MNumericArray* model,
                                     int32_t failMode) VLM_NOEXCEPT;
void MNumericArray_copyData(MNumericArray* target, mint targetStart, mint targetStep,
                            const MNumericArray* source, mint sourceStart, mint sourceStep,
                            mint count) VLM_NOEXCEPT;
void MNumericArray_copyContiguousData(MNumericArray* target, mint targetStart, const MNumericArray* source,
                                      mint sourceStart, mint count) VLM_NOEXCEPT;
void MNumericArrayData_copyData(int32_t type, void* target, mint targetStep, const void* source,
                                mint sourceStep, mint count) VLM_NOEXCEPT;
int32_t MNumericArray_reallocateAndCopyDataCommon(MNumericArray* array, int32_t failMode) VLM_NOEXCEPT;
/* Filling */
void MNumericArray_zero(MNumericArray* array) VLM_NOEXCEPT;
void MNumericArray_setData(MNumericArray* array, mint start, mint step, const void* values,
                           mint valueCount) VLM_NOEXCEPT;
void MNumericArrayData_setData(int32_t type, void* data, mint step, const void* values, mint valueCount,
                               mint count) VLM_NOEXCEPT;
void MNumericArray_setZero(MNumericArray* array, mint start, mint step) VLM_NOEXCEPT;
void MNumericArrayData_setZero(int32_t type, void* data, mint step, mint count) VLM_NOEXCEPT;
/* Rank-0 arrays */
MNumericArray* MNumericArray_loadNewRank0(const void* source, int32_t type) VLM_NOEXCEPT;
MNumericArray** MNumericArray_loadSharedRank0(const void* source, int32_t type, mint slot) VLM_NOEXCEPT;
/* Byte count and shape records */
uint64_t MNumericArray_getByteCount(const MNumericArray* array) VLM_NOEXCEPT;
TensorProperty* TensorProperty_new(mint rank) VLM_NOEXCEPT;
void TensorProperty_delete(TensorProperty* property) VLM_NOEXCEPT;
void TensorProperty_copyValues(TensorProperty* target, const TensorProperty* source) VLM_NOEXCEPT;
TensorProperty* TensorProperty_copy(const TensorProperty* source) VLM_NOEXCEPT;
/* Integer width helpers */
int32_t IntFromMint(int32_t* target, mint value) VLM_NOEXCEPT;
int32_t IntFromMintArray(int32_t* target, const mint* source, mint count) VLM_NOEXCEPT;
mint* MintFromIntArray(mint* target, const int32_t* source, mint count) VLM_NOEXCEPT;
int32_t MInt32Q(mint value) VLM_NOEXCEPT;
/* Creation for compiled code */
MNumericArray* Runtime_CreateNumericArray(int32_t type, mint rank, const mint* dims) VLM_NOEXCEPT;
/* Tensor forms */
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
void MTensor_resetDimensions(MTensor* array, mint rank, const mint* dims) VLM_NOEXCEPT;
MTensor* MTensor_loadNewRank0(const void* source, int32_t tensorType) VLM_NOEXCEPT;
MTensor** MTensor_loadSharedRank0(const void* source, int32_t tensorType, mint slot) VLM_NOEXCEPT;

VLM_END_DECLS

#endif
