// The factor of fractional tolerances, and the tolerance test as the boundary offers it.
#include "MNumericArray/Convert/tolerance_test.h"

#include "velorim/conversion.h"

namespace vlm {

template <class R> double fractional_tolerance_factor(double tolerance) noexcept {
  struct memo {
    double tolerance = tolerance_test<R>::digits;
    double factor = 1;
  };
  constinit thread_local static memo
      last;  // its two fields always belong together: no other thread sees them
  if (tolerance != last.tolerance) {
    using number = typename tolerance_test<R>::number;
    const auto bits = static_cast<number>(tolerance);
    const number whole = std::floor(bits);
    number power = std::exp2(bits - whole);
    if constexpr (std::is_same_v<R, real16>) power = real16_format::widen(real16_format::round(power).value);
    last = {tolerance, std::ldexp(power, static_cast<int>(whole) - tolerance_test<R>::digits)};
  }
  return last.factor;
}

template double fractional_tolerance_factor<double>(double) noexcept;
template double fractional_tolerance_factor<float>(double) noexcept;
template double fractional_tolerance_factor<real16>(double) noexcept;

}  // namespace vlm

using vlm::tolerance_test;

int32_t near1_double(mreal tolerance, mreal x, mreal y) VLM_NOEXCEPT {
  return tolerance_test<double>(tolerance).equal(x, y);
}
int32_t near1_float(float tolerance, float x, float y) VLM_NOEXCEPT {
  return tolerance_test<float>(static_cast<double>(tolerance)).equal(x, y);
}
int32_t compare_double(mreal tolerance, mreal x, mreal y) VLM_NOEXCEPT {
  return tolerance_test<double>(tolerance).compare(x, y);
}
int32_t compare_float(float tolerance, float x, float y) VLM_NOEXCEPT {
  return tolerance_test<float>(static_cast<double>(tolerance)).compare(x, y);
}
int32_t near1_reim_mcomplex(mreal tolerance, mreal re, mreal im) VLM_NOEXCEPT {
  return !(tolerance < 0.0) && tolerance_test<double>(tolerance).negligible(re, im);
}
