// Conversion of single numbers, as compiled code calls it.
#include <cmath>
#include <cstring>
#include <limits>

#include "Includes/element_types.h"
#include "MNumericArray/Convert/element_core.h"
#include "MNumericArray/Convert/pair_table.h"
#include "velorim/array.h"
#include "velorim/status.h"

using namespace vlm::conversion;

namespace {

int32_t convert_one(void* result, int32_t type, const void* source, int32_t source_type,
                    const MNumericArrayConvertData* record) {
  if (result == nullptr || record == nullptr) return ArrayStatusNullArgument;
  if (!is_base_method(record->method)) return ArrayStatusBadMethod;
  return convert_element(result, type, source, source_type, *record);
}

template <class T> int32_t from_mint(void* result, mint value, const MNumericArrayConvertData* record) {
  return convert_one(result, vlm::element_code<T>, &value, MNumericArrayTypeInteger64, record);
}

template <class T> int32_t from_mreal(void* result, const MNumericArrayConvertData* record, mreal value) {
  return convert_one(result, vlm::element_code<T>, &value, MNumericArrayTypeReal64, record);
}

template <class T>
int32_t from_mcomplex(void* result, const MNumericArrayConvertData* record, mreal re, mreal im) {
  const mcomplex value{re, im};
  return convert_one(result, vlm::element_code<T>, &value, MNumericArrayTypeComplexReal64, record);
}

/// Converts to an integer type of one signedness and widens that to 64 bits.
template <class Wide>
int32_t to_integer(Wide* result, int32_t type, const MNumericArrayConvertData* record, mreal value) {
  int32_t status = ArrayStatusBadType;
  vlm::with_element_type(type, [&]<class T>() {
    if constexpr (vlm::is_integer_element<T> && std::is_signed_v<T> == std::is_signed_v<Wide>) {
      T narrow{};
      status = from_mreal<T>(result == nullptr ? nullptr : &narrow, record, value);
      if (status == ArrayStatusOk) *result = static_cast<Wide>(+narrow);
    }
  });
  return status;
}

/// Reads an element into a cell of 8 bytes.
int32_t read_real(mreal* cell, const MNumericArray* array, mint index) {
  if (array == nullptr) return ArrayStatusNullArgument;
  int32_t status = ArrayStatusNotRepresentable;
  if (index < 0 || index >= array->flattenedLength) return status;
  vlm::with_element_type(static_cast<int32_t>(array->elementType), [&]<class T>() {
    const T element = static_cast<const T*>(array->data)[index];
    const auto store = [&](const auto& value) {
      *cell = 0;
      std::memcpy(cell, &value, sizeof value);
      status = ArrayStatusOk;
    };
    if constexpr (vlm::is_integer_element<T>) {
      store(static_cast<mreal>(element));
    } else if constexpr (vlm::is_complex_element<T>) {
      if (element.im == 0) store(element.re);
    } else {
      store(element);
    }
  });
  return status;
}

}  // namespace

int32_t convert_mreal_to_signed_integer(int64_t* result, int32_t type, const MNumericArrayConvertData* record,
                                        mreal value) VLM_NOEXCEPT {
  return to_integer(result, type, record, value);
}
int32_t convert_mreal_to_unsigned_integer(uint64_t* result, int32_t type,
                                          const MNumericArrayConvertData* record, mreal value) VLM_NOEXCEPT {
  return to_integer(result, type, record, value);
}

int32_t convert_mint_to_real16(uint16_t* result, mint value,
                               const MNumericArrayConvertData* record) VLM_NOEXCEPT {
  return from_mint<vlm::real16>(result, value, record);
}
int32_t convert_mint_to_real32(float* result, mint value,
                               const MNumericArrayConvertData* record) VLM_NOEXCEPT {
  return from_mint<float>(result, value, record);
}
int32_t convert_mint_to_real64(mreal* result, mint value,
                               const MNumericArrayConvertData* record) VLM_NOEXCEPT {
  return from_mint<mreal>(result, value, record);
}
int32_t convert_mint_to_complexreal32(float* result, mint value,
                                      const MNumericArrayConvertData* record) VLM_NOEXCEPT {
  return from_mint<vlm::complex_real32>(result, value, record);
}
int32_t convert_mint_to_complexreal64(mcomplex* result, mint value,
                                      const MNumericArrayConvertData* record) VLM_NOEXCEPT {
  return from_mint<mcomplex>(result, value, record);
}

int32_t convert_mreal_to_real16(uint16_t* result, const MNumericArrayConvertData* record,
                                mreal value) VLM_NOEXCEPT {
  return from_mreal<vlm::real16>(result, record, value);
}
int32_t convert_mreal_to_real32(float* result, const MNumericArrayConvertData* record,
                                mreal value) VLM_NOEXCEPT {
  return from_mreal<float>(result, record, value);
}
int32_t convert_mreal_to_real64(mreal* result, const MNumericArrayConvertData* record,
                                mreal value) VLM_NOEXCEPT {
  return from_mreal<mreal>(result, record, value);
}
int32_t convert_mreal_to_complexreal32(float* result, const MNumericArrayConvertData* record,
                                       mreal value) VLM_NOEXCEPT {
  return from_mreal<vlm::complex_real32>(result, record, value);
}
int32_t convert_mreal_to_complexreal64(mcomplex* result, const MNumericArrayConvertData* record,
                                       mreal value) VLM_NOEXCEPT {
  return from_mreal<mcomplex>(result, record, value);
}

int32_t convert_mcomplex_to_real16(uint16_t* result, const MNumericArrayConvertData* record, mreal re,
                                   mreal im) VLM_NOEXCEPT {
  return from_mcomplex<vlm::real16>(result, record, re, im);
}
int32_t convert_mcomplex_to_real32(float* result, const MNumericArrayConvertData* record, mreal re,
                                   mreal im) VLM_NOEXCEPT {
  return from_mcomplex<float>(result, record, re, im);
}
int32_t convert_mcomplex_to_real64(mreal* result, const MNumericArrayConvertData* record, mreal re,
                                   mreal im) VLM_NOEXCEPT {
  return from_mcomplex<mreal>(result, record, re, im);
}
int32_t convert_mcomplex_to_complexreal32(float* result, const MNumericArrayConvertData* record, mreal re,
                                          mreal im) VLM_NOEXCEPT {
  return from_mcomplex<vlm::complex_real32>(result, record, re, im);
}
int32_t convert_mcomplex_to_complexreal64(mcomplex* result, const MNumericArrayConvertData* record, mreal re,
                                          mreal im) VLM_NOEXCEPT {
  return from_mcomplex<mcomplex>(result, record, re, im);
}

float double_to_float(int32_t* status, int32_t clip, mreal value) VLM_NOEXCEPT {
  constexpr float most = std::numeric_limits<float>::max();
  const bool beyond = std::fabs(value) > static_cast<mreal>(most);
  if (status != nullptr) *status = beyond && clip == 0;
  if (!beyond) return static_cast<float>(value);
  return clip == 0 ? 0.0f : std::copysign(most, static_cast<float>(std::copysign(1.0, value)));
}

int32_t MNumericArray_dataToReal(mreal* result, const MNumericArray* array, mint index) VLM_NOEXCEPT {
  return result == nullptr ? ArrayStatusNullArgument : read_real(result, array, index);
}

mreal MTensor_dataToReal(const MTensor* array, mint index, int32_t* status) VLM_NOEXCEPT {
  mreal value = 0;
  const int32_t outcome = read_real(&value, array, index);
  if (status != nullptr) *status = outcome;
  return value;
}
