// The type that two element types both convert to.
#include <algorithm>
#include <array>

#include "Includes/element_types.h"
#include "velorim/conversion.h"

namespace vlm::conversion {
namespace {

/// Of two integer types the one of larger code, which need not hold both. Otherwise the kind of either part decides: complex if one
/// is, with as many digits as the longer of the real or complex ones has.
template <int32_t A, int32_t B> constexpr int32_t common_code() {
  using a = element<A>;
  using b = element<B>;
  constexpr bool a_integer = is_integer_element<typename a::type>,
                 b_integer = is_integer_element<typename b::type>;
  if constexpr (a_integer && b_integer) return std::max(A, B);
  if constexpr (a_integer || b_integer) return a_integer ? B : A;
  const bool complex = a::kind == element_class::complex || b::kind == element_class::complex;
  const int digits = std::max(a::digits, b::digits);
  if (complex) return digits == 53 ? MNumericArrayTypeComplexReal64 : MNumericArrayTypeComplexReal32;
  return digits == a::digits ? A : B;
}

template <int32_t A, int32_t... B> constexpr auto common_row(std::integer_sequence<int32_t, B...>) {
  return std::array<int32_t, element_type_count>{common_code<A, B + 1>()...};
}

constexpr auto common_table = []<int32_t... A>(std::integer_sequence<int32_t, A...> all) {
  return std::array{common_row<A + 1>(all)...};
}
(std::make_integer_sequence<int32_t, element_type_count>{});

}  // namespace
}  // namespace vlm::conversion

int32_t MNumericArray_common_type(int32_t a, int32_t b) VLM_NOEXCEPT {
  if (!vlm::is_element_type(a) || !vlm::is_element_type(b)) return 0;
  return vlm::conversion::common_table[static_cast<size_t>(a - 1)][static_cast<size_t>(b - 1)];
}
