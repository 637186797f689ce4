// Small arrays for the tests of front ends.
#pragma once

#include <algorithm>
#include <vector>

#include "support/array_fixture.h"
#include "velorim/array.h"

namespace front_end_test {

using vlm_test::array_ptr;

template <class T> struct element_code;
template <> struct element_code<int8_t> { static constexpr int32_t value = MNumericArrayTypeInteger8; };
template <> struct element_code<mint> { static constexpr int32_t value = MNumericArrayTypeInteger64; };
template <> struct element_code<double> { static constexpr int32_t value = MNumericArrayTypeReal64; };
template <> struct element_code<mcomplex> {
  static constexpr int32_t value = MNumericArrayTypeComplexReal64;
};

inline array_ptr array_of(int32_t type, const std::vector<mint>& dims) {
  return array_ptr(
      MNumericArray_newAllocatedCommon(type, static_cast<mint>(dims.size()), dims.data(), FailFatal));
}
template <class T> array_ptr array_with(const std::vector<T>& values, const std::vector<mint>& dims) {
  array_ptr a = array_of(element_code<T>::value, dims);
  std::copy(values.begin(), values.end(), static_cast<T*>(a->data));
  return a;
}
template <class T> array_ptr vector_with(const std::vector<T>& values) {
  return array_with(values, {static_cast<mint>(values.size())});
}
template <class T> std::vector<T> elements(const MNumericArray* a) {
  const auto* p = static_cast<const T*>(a->data);
  return {p, p + a->flattenedLength};
}
/// Real and imaginary parts in turn.
inline std::vector<double> parts(const MNumericArray* a) {
  const auto* p = static_cast<const double*>(a->data);
  return {p, p + 2 * a->flattenedLength};
}
inline int32_t type_of(const MNumericArray* a) { return static_cast<int32_t>(a->elementType); }

}  // namespace front_end_test
