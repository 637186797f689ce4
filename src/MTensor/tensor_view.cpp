// The tensor view of the array record: each form maps its tensor type code and is the array form of the same name.
#include "Includes/tensor_type.h"
#include "MNumericArray/Allocate/array_record.h"

using vlm::element_type_of_tensor;

MTensor* MTensor_new(void) VLM_NOEXCEPT { return MNumericArray_new(); }

MTensor* MTensor_newAllocatedCommon(int32_t tensorType, mint rank, const mint* dims,
                                    int32_t failMode) VLM_NOEXCEPT {
  return MNumericArray_newAllocatedCommon(element_type_of_tensor(tensorType), rank, dims, failMode);
}

MTensor* MTensor_newUsingDataArray(int32_t tensorType, mint rank, const mint* dims, void* data) VLM_NOEXCEPT {
  return MNumericArray_newUsingDataArrayCommon(element_type_of_tensor(tensorType), rank, dims, data,
                                               FailFatal);
}

MTensor* MTensor_newCopyFromDataArray(int32_t tensorType, mint rank, const mint* dims,
                                      const void* data) VLM_NOEXCEPT {
  return MNumericArray_newCopyFromDataArrayCommon(element_type_of_tensor(tensorType), rank, dims, data,
                                                  FailFatal);
}

int32_t MTensor_allocateMemoryCommon(MTensor* array, int32_t tensorType, mint rank, const mint* dims,
                                     int32_t failMode) VLM_NOEXCEPT {
  return MNumericArray_allocateMemoryCommon(array, element_type_of_tensor(tensorType), rank, dims, failMode);
}

int32_t MTensor_allocateCommon(MTensor** arrayInOut, int32_t tensorType, mint rank, const mint* dims,
                               int32_t failMode) VLM_NOEXCEPT {
  return MNumericArray_allocateCommon(arrayInOut, element_type_of_tensor(tensorType), rank, dims, failMode);
}

int32_t MTensor_allocateMemoryLikeCommon(MTensor* array, const MTensor* model,
                                         int32_t failMode) VLM_NOEXCEPT {
  return MNumericArray_allocateMemoryLikeCommon(array, model, failMode);
}

void MTensor_delete(MTensor* array) VLM_NOEXCEPT { MNumericArray_delete(array); }

void MTensorArray_delete(mint count, MTensor** arrays) VLM_NOEXCEPT {
  MNumericArrayArray_delete(count, arrays);
}

void MTensor_freeMemory(MTensor* array) VLM_NOEXCEPT { MNumericArray_freeMemory(array); }

void MTensor_setType(MTensor* array, int32_t tensorType) VLM_NOEXCEPT {
  vlm::applyElementType(array, element_type_of_tensor(tensorType));
}

int32_t MTensor_compatibleDimensionsQ(const MTensor* a, const MTensor* b) VLM_NOEXCEPT {
  return MNumericArray_compatibleDimensionsQ(a, b);
}

int32_t MTensor_maxCompatibleDimensions(const MTensor* a, const MTensor* b, mint* rankOut,
                                        mint** dimsOut) VLM_NOEXCEPT {
  return MNumericArray_maxCompatibleDimensions(a, b, rankOut, dimsOut);
}
