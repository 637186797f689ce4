// Names under which compiled code reaches the platform, and helpers for testing compiled code.
#include <unwind.h>

#include <atomic>
#include <bit>

#include "Includes/fp_environment.h"
#include "Includes/vlm_fp_exception.h"
#include "velorim/errors.h"

extern "C" {
void __register_frame(void* frame);
void __deregister_frame(void* frame);
}

namespace vlm {
namespace {

std::atomic<uint64_t> test_points{0};
uint64_t next_test_point() { return test_points.fetch_add(1, std::memory_order_relaxed); }

}  // namespace
}  // namespace vlm

int32_t feraiseexcept_wrapper(int32_t excepts) noexcept { return vlm::fp::raise(excepts); }

void Unwind_Resume_Velorim(void* object) { _Unwind_Resume(static_cast<_Unwind_Exception*>(object)); }

void __register_frame_Velorim(void* frame) noexcept { __register_frame(frame); }

void __deregister_frame_Velorim(void* frame) noexcept { __deregister_frame(frame); }

void dummyFunction() noexcept {}

void* TestPointVoidHandle() noexcept { return reinterpret_cast<void*>(vlm::next_test_point()); }

mint TestPointMint() noexcept { return static_cast<mint>(vlm::next_test_point()); }

umint TestPointUMint() noexcept { return vlm::next_test_point(); }

int32_t TestException(mreal x) noexcept {
  if (!vlm::is_fp_exception(x)) return 0;
  const uint64_t bits = std::bit_cast<uint64_t>(x);
  if ((bits & ~vlm::fp_sign_bit<uint64_t>) != vlm::fp_format<mreal>::exponent) return 1;
  return bits & vlm::fp_sign_bit<uint64_t> ? 3 : 2;
}
