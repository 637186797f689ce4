// Exports over the floating-point environment and over single numbers.
#include "Includes/fp_environment.h"
#include "Includes/vlm_fp_exception.h"
#include "velorim/floating_point.h"

namespace vlm {
namespace {

constexpr uint64_t magnitude_bits(mreal x) { return std::bit_cast<uint64_t>(x) & ~fp_sign_bit<uint64_t>; }
constexpr bool below_normal(mreal x) { return magnitude_bits(x) < std::bit_cast<uint64_t>(0x1p-1022); }
constexpr bool subnormal(mreal x) { return below_normal(x) && magnitude_bits(x) != 0; }

}  // namespace
}  // namespace vlm

int32_t clear_fp_environment() noexcept { return vlm::fp::clear_flags(); }

int32_t test_fp_environment() noexcept { return vlm::fp::test_flags() != 0; }

int32_t cTESTFPOV(mreal re, mreal im) noexcept { return vlm::is_fp_exception(mcomplex{re, im}); }

int32_t MComplexUnderflowQ(mreal re, mreal im) noexcept {
  return vlm::below_normal(re) || vlm::below_normal(im);
}

int32_t MComplexUnderflow0Q(mreal re, mreal im) noexcept { return vlm::subnormal(re) || vlm::subnormal(im); }
