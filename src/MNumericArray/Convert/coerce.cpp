// Coercion: conversion by the method "Coerce" with a tolerance of the caller, and the forms for tensors.
#include <utility>

#include "Includes/tensor_type.h"
#include "MNumericArray/Allocate/array_record.h"
#include "MNumericArray/Convert/element_core.h"
#include "MNumericArray/Convert/pair_table.h"
#include "velorim/array_services.h"
#include "velorim/status.h"

using namespace vlm::conversion;
using vlm::element_type_of_tensor;

namespace {

/// The tolerance of tensors: so many bits that no test applies.
constexpr mreal tensor_tolerance = 54.0;

/// Room for an element of any type.
struct alignas(16) any_element {
  char data[16] = {};
};

int32_t type_of(const MNumericArray* array) { return static_cast<int32_t>(array->elementType); }

struct array_owner {
  MNumericArray* array = nullptr;
  ~array_owner() { MNumericArray_delete(array); }
};

/// Gives target the shape of source and a tensor type, and coerces `count` elements from `first` on.
int32_t coerce_range(MTensor* target, int32_t tensor_type, const MTensor* source, mint first, mint count) {
  const int32_t status =
      MTensor_allocateMemoryCommon(target, tensor_type, source->rank, source->dims, FailNull);
  if (status != ArrayStatusOk) return status;
  return MTensor_coerceData(target, first, 1, source, first, 1, count);
}

/// The common part of CoerceTensor and CoercePartOfTensor.
bool coerce_tensor(MTensor* source, int32_t type, MTensor* target, mint first, mint count) {
  const int32_t element_type = element_type_of_tensor(type);
  if (source == nullptr || target == nullptr || element_type == 0) return false;
  if (type_of(source) == element_type) {
    return MTensor_copyUniqueCommon(target, source, FailNull) == ArrayStatusOk;
  }
  if (target != source) return coerce_range(target, type, source, first, count) == ArrayStatusOk;
  const array_owner coerced{MTensor_new()};
  return coerced.array != nullptr &&
         coerce_range(coerced.array, type, source, first, count) == ArrayStatusOk &&
         MNumericArray_copyCommon(target, coerced.array, FailNull) == ArrayStatusOk;
}

}  // namespace

int32_t MNumericArray_coerceDataArray(void* target, int32_t targetType, mint targetOffset, mint targetStride,
                                      const void* source, int32_t sourceType, mint sourceOffset,
                                      mint sourceStride, mint count, mreal tolerance) VLM_NOEXCEPT {
  MNumericArrayConvertData record = record_of(MNumericArrayConvertCoerce);
  record.sourceOffset = sourceOffset;
  record.sourceStride = sourceStride;
  record.targetOffset = targetOffset;
  record.targetStride = targetStride;
  record.tolerance = tolerance;
  return convert_elements(target, targetType, source, sourceType, count, record);
}

int32_t MNumericArray_coerceData(MNumericArray* target, mint targetOffset, mint targetStride,
                                 const MNumericArray* source, mint sourceOffset, mint sourceStride,
                                 mint count, mreal tolerance) VLM_NOEXCEPT {
  if (target == nullptr || source == nullptr) return ArrayStatusNullArgument;
  return MNumericArray_coerceDataArray(target->data, type_of(target), targetOffset, targetStride,
                                       source->data, type_of(source), sourceOffset, sourceStride, count,
                                       tolerance);
}

int32_t MNumericArray_canCoerce(const MNumericArray* array, int32_t type, mreal tolerance) VLM_NOEXCEPT {
  if (array == nullptr) return 0;
  if (array->rank == 0 || array->flattenedLength == 0 || type_of(array) == type) return 1;
  any_element scratch;
  return MNumericArray_coerceDataArray(scratch.data, type, 0, 0, array->data, type_of(array), 0, 1,
                                       array->flattenedLength, tolerance) == ArrayStatusOk;
}

int32_t MTensor_coerceDataArray(void* target, int32_t targetType, mint targetOffset, mint targetStride,
                                const void* source, int32_t sourceType, mint sourceOffset, mint sourceStride,
                                mint count) VLM_NOEXCEPT {
  return MNumericArray_coerceDataArray(target, element_type_of_tensor(targetType), targetOffset, targetStride,
                                       source, element_type_of_tensor(sourceType), sourceOffset, sourceStride,
                                       count, tensor_tolerance);
}

int32_t MTensor_coerceData(MTensor* target, mint targetOffset, mint targetStride, const MTensor* source,
                           mint sourceOffset, mint sourceStride, mint count) VLM_NOEXCEPT {
  return MNumericArray_coerceData(target, targetOffset, targetStride, source, sourceOffset, sourceStride,
                                  count, tensor_tolerance);
}

int32_t MTensor_canCoerce(const MTensor* tensor, int32_t type, mreal tolerance) VLM_NOEXCEPT {
  return MNumericArray_canCoerce(tensor, element_type_of_tensor(type), tolerance);
}

int32_t CanCoerceTensor(const MTensor* tensor, int32_t type, mreal tolerance) VLM_NOEXCEPT {
  constexpr uint32_t reserved_type = 6;
  if (tensor == nullptr || type == MTensorTypeBoolean || tensor->tensorType == MTensorTypeBoolean ||
      tensor->tensorType == reserved_type) {
    return 0;
  }
  return MTensor_canCoerce(tensor, type, tolerance);
}

int32_t CoerceTensor(MTensor* source, int32_t type, MTensor* target) VLM_NOEXCEPT {
  return source != nullptr && coerce_tensor(source, type, target, 0, source->flattenedLength);
}

int32_t CoercePartOfTensor(MTensor* source, int32_t type, MTensor* target, mint from, mint to) VLM_NOEXCEPT {
  if (to < from) return coerce_tensor(source, type, target, 0, 0);
  if (source == nullptr || from < 0 || to >= source->flattenedLength) return 0;
  return coerce_tensor(source, type, target, from, to - from + 1);
}

MNumericArray** MNumericArray_coerceToSharedRank0(const void* source, int32_t sourceType, int32_t targetType,
                                                  mint slot) VLM_NOEXCEPT {
  if (sourceType == targetType) return MNumericArray_loadSharedRank0(source, targetType, slot);
  any_element converted;
  const int32_t status =
      convert_element(converted.data, targetType, source, sourceType, record_of(MNumericArrayConvertCheck));
  return status == ArrayStatusOk ? MNumericArray_loadSharedRank0(converted.data, targetType, slot) : nullptr;
}
