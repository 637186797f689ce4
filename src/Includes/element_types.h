// Element types as C++ sees them: traits and loops expanded from element_types.def, so that no type is ever
// missing from one function.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

#include "velorim/base.h"

namespace vlm {

/// IEEE 754 binary16, as its bits. Arithmetic on it is that of real16.h.
struct real16 {
  uint16_t bits;
};
struct complex_real32 {
  float re, im;
};

enum class element_class { signed_integer, unsigned_integer, real, complex };

/// The number of element types; codes run from 1 to element_type_count.
inline constexpr int32_t element_type_count = 13;

constexpr bool is_element_type(int32_t code) { return code >= 1 && code <= element_type_count; }

/// What is known of the element type with a code: type, kind, bytes, digits, tensor_type, name.
template <int32_t Code> struct element;

/// The same, found by the C++ type.
template <class T> struct element_of;

#define VELORIM_ELEMENT_TYPE(CODE, NAME, TYPE, CLASS, BYTES, DIGITS, TENSOR) \
  template <> struct element<CODE> {                                         \
    using type = TYPE;                                                       \
    static constexpr int32_t code = CODE;                                    \
    static constexpr element_class kind = element_class::CLASS;              \
    static constexpr size_t bytes = BYTES;                                   \
    static constexpr int digits = DIGITS;                                    \
    static constexpr int32_t tensor_type = TENSOR;                           \
    static constexpr const char* name = #NAME;                               \
  };                                                                         \
  static_assert(sizeof(TYPE) == BYTES);                                      \
  template <> struct element_of<TYPE> : element<CODE> {};
#include "element_types.def"
#undef VELORIM_ELEMENT_TYPE

template <int32_t Code> using element_t = typename element<Code>::type;

template <class T> inline constexpr int32_t element_code = element_of<T>::code;
template <class T>
inline constexpr bool is_integer_element = element_of<T>::kind == element_class::signed_integer ||
                                           element_of<T>::kind == element_class::unsigned_integer;
template <class T> inline constexpr bool is_real_element = element_of<T>::kind == element_class::real;
template <class T> inline constexpr bool is_complex_element = element_of<T>::kind == element_class::complex;

/// Bytes of an element by its code; 0 for no type.
constexpr size_t element_bytes(int32_t code) {
  switch (code) {
#define VELORIM_ELEMENT_TYPE(CODE, NAME, TYPE, CLASS, BYTES, DIGITS, TENSOR) \
  case CODE:                                                                 \
    return BYTES;
#include "element_types.def"
#undef VELORIM_ELEMENT_TYPE
    default:
      return 0;
  }
}

/// Calls body.operator()<T>() for the type with the code; false if the code names no type.
template <class Body> bool with_element_type(int32_t code, Body&& body) {
  switch (code) {
#define VELORIM_ELEMENT_TYPE(CODE, NAME, TYPE, CLASS, BYTES, DIGITS, TENSOR) \
  case CODE:                                                                 \
    body.template operator()<TYPE>();                                        \
    return true;
#include "element_types.def"
#undef VELORIM_ELEMENT_TYPE
    default:
      return false;
  }
}

/// Calls body.operator()<T>() once for every element type, in the order of the codes.
template <class Body> void for_all_element_types(Body&& body) {
  [&]<int32_t... I>(std::integer_sequence<int32_t, I...>) {
    (body.template operator()<element_t<I + 1>>(), ...);
  }
  (std::make_integer_sequence<int32_t, element_type_count>{});
}

}  // namespace vlm
