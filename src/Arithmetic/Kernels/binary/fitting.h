// Sums, differences and products of integers that wrap at the element width, and whether they fit it, in forms that loops can be
// made of registers with.
#pragma once

#include "Arithmetic/Kernels/integer_arithmetic.h"
#include "velorim/base.h"

namespace vlm::machine_function {

template <std::integral T> constexpr T wrapping_sum(T x, T y) {
  return static_cast<T>(static_cast<std::make_unsigned_t<T>>(bits_of(x) + bits_of(y)));
}
template <std::integral T> constexpr T wrapping_difference(T x, T y) {
  return static_cast<T>(static_cast<std::make_unsigned_t<T>>(bits_of(x) - bits_of(y)));
}

/// Signed: the wrapped sum has the sign of one of its terms. Unsigned: it did not fall below a term.
template <std::integral T> constexpr bool sum_fits(T x, T y) {
  const T sum = wrapping_sum(x, y);
  if constexpr (std::is_signed_v<T>) {
    return ((x ^ sum) & (y ^ sum)) >= 0;
  } else {
    return sum >= x;
  }
}
template <std::integral T> constexpr bool difference_fits(T x, T y) {
  if constexpr (std::is_signed_v<T>) {
    return ((x ^ y) & (x ^ wrapping_difference(x, y))) >= 0;
  } else {
    return x >= y;
  }
}
template <std::integral T> constexpr bool product_fits(T x, T y) {
  if constexpr (sizeof(T) == 8) {
    T product;
    return !__builtin_mul_overflow(x, y, &product);
  } else {
    // In registers as wide as the element's double.
    using wide =
        std::conditional_t<sizeof(T) == 1, int16_t, std::conditional_t<sizeof(T) == 2, int32_t, int64_t>>;
    using wide_type = std::conditional_t<std::is_signed_v<T>, wide, std::make_unsigned_t<wide>>;
    const auto product = static_cast<wide_type>(static_cast<wide_type>(x) * static_cast<wide_type>(y));
    return product == static_cast<wide_type>(static_cast<T>(product));
  }
}

/// A proof that no product of a pair of 64-bit elements leaves the type, from the bits in use on either side; false where it does not
/// hold.
template <std::integral T> bool products_surely_fit(const T* x, const T* y, mint n) {
  uint64_t used_by_x = 0, used_by_y = 0;
  for (mint i = 0; i < n; ++i) {
    if constexpr (std::is_signed_v<T>) {
      used_by_x |= bits_of(x[i] ^ (x[i] >> 63));
      used_by_y |= bits_of(y[i] ^ (y[i] >> 63));
    } else {
      used_by_x |= x[i];
      used_by_y |= y[i];
    }
  }
  // |x| <= 2^(bits of x), so that a signed product is at most 2^62 in magnitude; an unsigned x is below it.
  return std::bit_width(used_by_x) + std::bit_width(used_by_y) <= (std::is_signed_v<T> ? 62 : 64);
}

}  // namespace vlm::machine_function
