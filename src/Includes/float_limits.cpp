// FloatLimits of the three real formats.
#include <bit>
#include <limits>

#include "Includes/element_types.h"
#include "velorim/floating_point.h"

namespace vlm {
namespace {

template <class T> constexpr FloatLimits float_limits() {
  using limits = std::numeric_limits<T>;
  static_assert(limits::is_iec559 && limits::digits == element_of<T>::digits);
  return {limits::max(),     limits::min(),  limits::denorm_min(), limits::lowest(),
          limits::epsilon(), limits::digits, limits::max_exponent, limits::min_exponent};
}

constexpr FloatLimits real64_limits = float_limits<double>();
constexpr FloatLimits real32_limits = float_limits<float>();
// binary16: 5 bits of exponent, 10 bits of fraction.
constexpr FloatLimits real16_limits = {
    65504.0, 0x1p-14, 0x1p-24, -65504.0, 0x1p-10, element_of<real16>::digits, 16, -13};

static_assert(std::bit_cast<uint64_t>(real64_limits.max) == 0x7FEFFFFFFFFFFFFF);
static_assert(std::bit_cast<uint64_t>(real64_limits.min) == 0x0010000000000000);
static_assert(std::bit_cast<uint64_t>(real64_limits.denorm_min) == 0x0000000000000001);
static_assert(real32_limits.max == 3.4028234663852886e38 && real32_limits.min == 0x1p-126);
static_assert(real32_limits.denorm_min == 0x1p-149);

constexpr const FloatLimits* limits_of(int32_t type) {
  switch (type) {
    case MNumericArrayTypeReal64:
      return &real64_limits;
    case MNumericArrayTypeReal32:
      return &real32_limits;
    case MNumericArrayTypeReal16:
      return &real16_limits;
    default:
      return nullptr;
  }
}

}  // namespace
}  // namespace vlm

int32_t MNumericArray_getFloatLimits(FloatLimits* limits, int32_t type) noexcept {
  const FloatLimits* known = vlm::limits_of(type);
  if (known == nullptr || limits == nullptr) return 1;
  *limits = *known;
  return 0;
}
