// Arithmetic on the integer element types that wraps at the element width, and the bounds that tell when it
// did.
#pragma once

#include <bit>
#include <concepts>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace vlm::machine_function {

template <std::integral T> constexpr std::make_unsigned_t<T> bits_of(T x) {
  return static_cast<std::make_unsigned_t<T>>(x);
}

/// |x| as an unsigned number, right also for the most negative one.
template <std::integral T> constexpr std::make_unsigned_t<T> unsigned_magnitude(T x) {
  using U = std::make_unsigned_t<T>;
  return x < 0 ? static_cast<U>(U{0} - bits_of(x)) : bits_of(x);
}

template <std::integral T> constexpr T wrapping_minus(T x) {
  using U = std::make_unsigned_t<T>;
  return static_cast<T>(static_cast<U>(U{0} - bits_of(x)));
}

template <std::integral T> constexpr T wrapping_product(T x, T y) {
  using wide = std::common_type_t<std::make_unsigned_t<T>, unsigned>;
  return static_cast<T>(static_cast<wide>(bits_of(x)) * static_cast<wide>(bits_of(y)));
}

/// The largest root whose square fits T.
template <std::integral T> constexpr T largest_square_root() {
  uint64_t low = 0, high = uint64_t{1} << 32;  // low * low fits, high * high does not
  while (high - low > 1) {
    const uint64_t middle = (low + high) / 2;
    if (middle <= static_cast<uint64_t>(std::numeric_limits<T>::max()) / middle) {
      low = middle;
    } else {
      high = middle;
    }
  }
  return static_cast<T>(low);
}

}  // namespace vlm::machine_function
