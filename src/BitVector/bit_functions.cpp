// Integer bit functions; those of signed values look at the magnitude.
#include <bit>
#include <concepts>
#include <type_traits>

#include "velorim/containers.h"

namespace {

template <std::integral T> std::make_unsigned_t<T> magnitude(T value) {
  const auto bits = static_cast<std::make_unsigned_t<T>>(value);
  return value < 0 ? static_cast<std::make_unsigned_t<T>>(0 - bits) : bits;
}

template <class T> uint32_t ones(T value) { return static_cast<uint32_t>(std::popcount(magnitude(value))); }
template <class T> uint32_t length(T value) {
  return static_cast<uint32_t>(std::bit_width(magnitude(value)));
}
template <class T> uint32_t trailing_zeros(T value) {
  return value == 0 ? 0 : static_cast<uint32_t>(std::countr_zero(magnitude(value)));
}

}  // namespace

uint32_t bit_count_int32(int32_t value) VLM_NOEXCEPT { return ones(value); }
uint32_t bit_count_int64(int64_t value) VLM_NOEXCEPT { return ones(value); }
uint32_t bit_count_uint32(uint32_t value) VLM_NOEXCEPT { return ones(value); }
uint32_t bit_count_uint64(uint64_t value) VLM_NOEXCEPT { return ones(value); }
uint32_t bit_length_int32(int32_t value) VLM_NOEXCEPT { return length(value); }
uint32_t bit_length_int64(int64_t value) VLM_NOEXCEPT { return length(value); }
uint32_t bit_length_uint32(uint32_t value) VLM_NOEXCEPT { return length(value); }
uint32_t bit_length_uint64(uint64_t value) VLM_NOEXCEPT { return length(value); }
uint32_t count_trailing_zeros_int32(int32_t value) VLM_NOEXCEPT { return trailing_zeros(value); }
uint32_t count_trailing_zeros_int64(int64_t value) VLM_NOEXCEPT { return trailing_zeros(value); }
uint32_t count_trailing_zeros_uint32(uint32_t value) VLM_NOEXCEPT { return trailing_zeros(value); }
uint32_t count_trailing_zeros_uint64(uint64_t value) VLM_NOEXCEPT { return trailing_zeros(value); }
