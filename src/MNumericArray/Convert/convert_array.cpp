// Conversion of whole arrays and of bare memory by a method.
#include "MNumericArray/Allocate/array_record.h"
#include "MNumericArray/Convert/element_core.h"
#include "velorim/floating_point.h"
#include "velorim/status.h"

using vlm::conversion::convert_elements;
using vlm::conversion::is_method;
using vlm::conversion::record_of;

namespace {

/// Steps from an offset to the end of an array; none for step 0.
__int128 steps_within(const MNumericArray* array, mint offset, mint stride) {
  return stride == 0 ? 0 : (static_cast<__int128>(array->flattenedLength) - offset) / stride;
}

bool has_room(const MNumericArray* target, const MNumericArray* source,
              const MNumericArrayConvertData* record) {
  return steps_within(target, record->targetOffset, record->targetStride) >=
         steps_within(source, record->sourceOffset, record->sourceStride);
}

}  // namespace

int32_t MNumericArray_convert(MNumericArray** target, const MNumericArray* source, int32_t type,
                              int32_t method) VLM_NOEXCEPT {
  if (!vlm::is_element_type(type)) return ArrayStatusBadType;
  if (!is_method(method)) return ArrayStatusBadMethod;
  const MNumericArrayConvertData record = record_of(method);
  return MNumericArray_convert_common(target, source, type, &record);
}

int32_t MNumericArray_convert_common(MNumericArray** target, const MNumericArray* source, int32_t type,
                                     const MNumericArrayConvertData* record) VLM_NOEXCEPT {
  if (!vlm::is_element_type(type)) return ArrayStatusBadType;
  if (target == nullptr || source == nullptr || record == nullptr) return ArrayStatusNullArgument;
  const bool made = *target == nullptr;
  if (made) {
    *target = MNumericArray_newAllocatedCommon(type, source->rank, source->dims, FailNull);
    if (*target == nullptr) return ArrayStatusNoMemory;
  } else {
    if (static_cast<int32_t>((*target)->elementType) != type) return ArrayStatusBadType;
    if (!has_room(*target, source, record)) return ArrayStatusNotRepresentable;
  }
  const int32_t status =
      convert_elements((*target)->data, type, source->data, static_cast<int32_t>(source->elementType),
                       source->flattenedLength, *record);
  if (status != ArrayStatusOk && made) {
    MNumericArray_delete(*target);
    *target = nullptr;
  }
  return status;
}

int32_t MNumericArray_convertType(MNumericArray** target, const MNumericArray* source, int32_t type,
                                  int32_t method, mreal digits) VLM_NOEXCEPT {
  if (source == nullptr) return LibraryFunctionError;
  if (!vlm::is_element_type(type)) return LibraryTypeError;
  if (!is_method(method)) return LibraryFunctionError;
  MNumericArrayConvertData record = record_of(method);
  record.tolerance = BoundMachineTolerance(digits * log2ten);
  return MNumericArray_convert_common(target, source, type, &record) == ArrayStatusOk ? LibraryOk
                                                                                      : LibraryFunctionError;
}

int32_t MNumericArrayData_convert(void* target, int32_t targetType, const void* source, int32_t sourceType,
                                  mint count, int32_t method) VLM_NOEXCEPT {
  if (!vlm::is_element_type(targetType) || !vlm::is_element_type(sourceType)) return ArrayStatusBadType;
  if (!is_method(method)) return ArrayStatusBadMethod;
  return convert_elements(target, targetType, source, sourceType, count, record_of(method));
}

int32_t MNumericArray_fillFromMTensor(MNumericArray* target, const MTensor* source,
                                      const MNumericArrayConvertData* record) VLM_NOEXCEPT {
  if (target == nullptr) return ArrayStatusNullArgument;
  return MNumericArray_convert_common(&target, source, static_cast<int32_t>(target->elementType), record);
}
