// Copies of arrays and of runs of their elements.
#include <utility>

#include "Includes/element_types.h"
#include "MNumericArray/Allocate/array_record.h"
#include "MNumericArray/Copy/element_copy.h"
#include "velorim/array_services.h"
#include "velorim/memory.h"

namespace {

mint bytes_of(const MNumericArray* array) {
  return static_cast<mint>(vlm::element_bytes(static_cast<int32_t>(array->elementType)));
}

char* element_at(void* data, mint position, mint element_bytes) {
  return static_cast<char*>(data) + position * element_bytes;
}

void delete_and_forget(MNumericArray*& array) { MNumericArray_delete(std::exchange(array, nullptr)); }

}  // namespace

int32_t MNumericArray_copyCommon(MNumericArray* target, const MNumericArray* source,
                                 int32_t failMode) VLM_NOEXCEPT {
  if (target == nullptr || source == nullptr) return ArrayStatusNullArgument;
  if (target == source) return ArrayStatusOk;
  const int32_t status = MNumericArray_allocateMemoryLikeCommon(target, source, failMode);
  if (status == ArrayStatusOk && source->data != nullptr) {
    vlm::copy_run(target->data, source->data, source->flattenedLength, bytes_of(source));
  }
  return status;
}

int32_t MNumericArray_copyUniqueCommon(MNumericArray* target, const MNumericArray* source,
                                       int32_t failMode) VLM_NOEXCEPT {
  return MNumericArray_copyCommon(target, source, failMode);
}

int32_t MNumericArray_copyUniqueInExprCommon(MNumericArray* target, const MNumericArray* source,
                                             int32_t failMode) VLM_NOEXCEPT {
  const int32_t status = MNumericArray_copyCommon(target, source, failMode);
  if (target != nullptr) target->flags |= ArrayFlagInExpr;
  return status;
}

int32_t MNumericArray_makeCopyCommon(MNumericArray** targetInOut, const MNumericArray* source,
                                     int32_t failMode) VLM_NOEXCEPT {
  if (targetInOut == nullptr || source == nullptr) return ArrayStatusNullArgument;
  if (*targetInOut == nullptr) *targetInOut = MNumericArray_new();
  const int32_t status = MNumericArray_copyCommon(*targetInOut, source, failMode);
  if (status != ArrayStatusOk) delete_and_forget(*targetInOut);
  return status;
}

int32_t MNumericArray_copyZeroCommon(MNumericArray** targetOut, const MNumericArray* model,
                                     int32_t failMode) VLM_NOEXCEPT {
  if (targetOut == nullptr || model == nullptr) return ArrayStatusNullArgument;
  MNumericArray* zeros = MNumericArray_new();
  const int32_t status = MNumericArray_allocateMemoryLikeCommon(zeros, model, failMode);
  if (status == ArrayStatusOk) {
    MNumericArray_zero(zeros);
  } else {
    delete_and_forget(zeros);
  }
  *targetOut = zeros;
  return status;
}

void MNumericArray_copyData(MNumericArray* target, mint targetStart, mint targetStep,
                            const MNumericArray* source, mint sourceStart, mint sourceStep,
                            mint count) VLM_NOEXCEPT {
  if (count < 1) return;
  const mint bytes = bytes_of(target);
  vlm::copy_strided(element_at(target->data, targetStart, bytes), targetStep,
                    element_at(source->data, sourceStart, bytes), sourceStep, count, bytes);
}

void MNumericArray_copyContiguousData(MNumericArray* target, mint targetStart, const MNumericArray* source,
                                      mint sourceStart, mint count) VLM_NOEXCEPT {
  MNumericArray_copyData(target, targetStart, 1, source, sourceStart, 1, count);
}

void MNumericArrayData_copyData(int32_t type, void* target, mint targetStep, const void* source,
                                mint sourceStep, mint count) VLM_NOEXCEPT {
  vlm::copy_strided(target, targetStep, source, sourceStep, count,
                    static_cast<mint>(vlm::element_bytes(type)));
}

int32_t MNumericArray_reallocateAndCopyDataCommon(MNumericArray* array, int32_t failMode) VLM_NOEXCEPT {
  if (array == nullptr) return ArrayStatusNullArgument;
  if (array->flattenedLength < 1) {
    zfree(std::exchange(array->data, nullptr));
    return ArrayStatusOk;
  }
  void* const data = zrealloc(array->data, vlm::array_bytes(array),
                              vlm::data_is_aligned16(static_cast<int32_t>(array->elementType)), failMode);
  if (data == nullptr) return ArrayStatusNoMemory;
  array->data = data;
  return ArrayStatusOk;
}

MNumericArray* Runtime_CreateNumericArray(int32_t type, mint rank, const mint* dims) VLM_NOEXCEPT {
  MNumericArray* array = nullptr;
  MNumericArray_allocateCommon(&array, type, rank, dims, FailReport);
  return array;
}

int32_t MTensor_copy(MTensor* target, const MTensor* source) VLM_NOEXCEPT {
  return MNumericArray_copyCommon(target, source, FailFatal);
}
int32_t MTensor_makeCopy(MTensor** targetInOut, const MTensor* source) VLM_NOEXCEPT {
  return MNumericArray_makeCopyCommon(targetInOut, source, FailFatal);
}
int32_t MTensor_copyUniqueCommon(MTensor* target, const MTensor* source, int32_t failMode) VLM_NOEXCEPT {
  return MNumericArray_copyUniqueCommon(target, source, failMode);
}
int32_t iMTensor_copyUniqueInExpr(MTensor* target, const MTensor* source) VLM_NOEXCEPT {
  return MNumericArray_copyUniqueInExprCommon(target, source, FailFatal);
}
int32_t MTensor_copyZeroCommon(MTensor** targetOut, const MTensor* model, int32_t failMode) VLM_NOEXCEPT {
  return MNumericArray_copyZeroCommon(targetOut, model, failMode);
}
void MTensor_copyData(MTensor* target, mint targetStart, mint targetStep, const MTensor* source,
                      mint sourceStart, mint sourceStep, mint count) VLM_NOEXCEPT {
  MNumericArray_copyData(target, targetStart, targetStep, source, sourceStart, sourceStep, count);
}
void MTensor_copyContiguousData(MTensor* target, mint targetStart, const MTensor* source, mint sourceStart,
                                mint count) VLM_NOEXCEPT {
  MNumericArray_copyContiguousData(target, targetStart, source, sourceStart, count);
}
int32_t MTensor_reallocateAndCopyDataCommon(MTensor* array, int32_t failMode) VLM_NOEXCEPT {
  return MNumericArray_reallocateAndCopyDataCommon(array, failMode);
}
void MTensor_resetDimensions(MTensor* array, mint rank, const mint* dims) VLM_NOEXCEPT {
  MNumericArray_resetDimensionsCommon(array, rank, dims, FailFatal);
}
