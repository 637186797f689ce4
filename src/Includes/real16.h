// Arithmetic on IEEE 754 binary16. A half is widened exactly, the work is done in double, and the
// result is rounded once, to nearest with ties to even whatever the rounding mode of the thread.
//
// Signals. An operation that IEEE 754 wants signalled raises the exception of the floating-point
// environment, sets errno (EDOM for an invalid operation; ERANGE for overflow, division by zero and
// underflow) and ORs the thread's flag word. An inexact result alone leaves errno. A result underflows
// when it is inexact and tiny, and it is tiny when the exact value, rounded to eleven bits with an
// unbounded exponent, lies below 2^-14 (tininess after rounding, as on x86).
//
// NaNs. A signalling NaN raises invalid and becomes the quiet NaN with the same payload. A NaN that is
// narrowed keeps the top ten bits of its payload.
//
// Why one rounding is enough. A number between two neighbouring halves decides on itself by the side of
// their midpoint it is on, and midpoints have at most twelve significant bits. Sums, differences and
// products of halves are exact in double. A quotient or a root of halves is either a midpoint exactly
// or at least 2^-24 of its size away from every midpoint, and double moves it by 2^-53 (2^-52 in a
// directed rounding mode) at most. So these five are correctly rounded. An elementary function comes
// out of the C library within an ulp or so of double; its half is wrong only if the true value is 2^-51
// or closer to a midpoint without being one. There are no more than 65,536 arguments, so that can be
// looked up by test.
#pragma once

#include <bit>
#include <cerrno>
#include <cfenv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>

#include "Includes/element_types.h"
#include "Includes/fp_environment.h"

#if defined(__F16C__)
#include <immintrin.h>
#endif

namespace vlm {

/// The bits of the flag word.
inline constexpr uint32_t real16_invalid = 1;
inline constexpr uint32_t real16_divide_by_zero = 2;
inline constexpr uint32_t real16_overflow = 4;
inline constexpr uint32_t real16_underflow = 8;
inline constexpr uint32_t real16_inexact = 16;

inline constexpr real16 real16_infinity{0x7C00};
inline constexpr real16 real16_quiet_nan{0x7E00};
inline constexpr real16 real16_signalling_nan{0x7D00};
inline constexpr real16 real16_max{0x7BFF};  // 65504

/// The thread's flag word: what its operations have signalled, sticky; 0 in a fresh thread.
uint32_t real16_flag_word() noexcept;
/// For tests and hosts that start over.
void clear_real16_flag_word() noexcept;

/// Signals a set of these bits: the environment's exceptions, errno and the flag word.
void signal_real16(uint32_t signals) noexcept;

// ---- Classification, from the bits: never a signal --------------------------------------------------

constexpr bool is_nan(real16 x) { return (x.bits & 0x7FFF) > 0x7C00; }
constexpr bool is_signalling(real16 x) { return is_nan(x) && (x.bits & 0x0200) == 0; }
constexpr bool is_infinite(real16 x) { return (x.bits & 0x7FFF) == 0x7C00; }
constexpr bool is_finite(real16 x) { return (x.bits & 0x7C00) != 0x7C00; }
constexpr bool is_zero(real16 x) { return (x.bits & 0x7FFF) == 0; }
constexpr bool is_subnormal(real16 x) { return (x.bits & 0x7C00) == 0 && !is_zero(x); }
constexpr bool sign_bit(real16 x) { return (x.bits & 0x8000) != 0; }

constexpr real16 magnitude(real16 x) { return {static_cast<uint16_t>(x.bits & 0x7FFF)}; }
constexpr real16 negated(real16 x) { return {static_cast<uint16_t>(x.bits ^ 0x8000)}; }
constexpr real16 quieted(real16 x) { return is_nan(x) ? real16{static_cast<uint16_t>(x.bits | 0x0200)} : x; }

// ---- Formats, by integer arithmetic: never a signal -------------------------------------------------

namespace real16_format {

/// A half and what its rounding has to signal.
struct rounded {
  real16 value;
  uint32_t signals;
};

/// The exact value; a NaN comes out quiet.
constexpr double widen(real16 x) {
  const uint64_t sign = static_cast<uint64_t>(x.bits & 0x8000) << 48;
  const uint64_t rest = x.bits & 0x7FFF;
  if (rest >= 0x7C00) {
    const uint64_t quiet = rest > 0x7C00 ? uint64_t{0x0008000000000000} : 0;
    return std::bit_cast<double>(sign | 0x7FF0000000000000 | (rest & 0x03FF) << 42 | quiet);
  }
  if (rest >= 0x0400) return std::bit_cast<double>(sign | ((rest << 42) + (uint64_t{1023 - 15} << 52)));
  const double size = static_cast<double>(rest) * 0x1p-24;
  return sign != 0 ? -size : size;
}

/// The nearest half of a double, ties to even.
constexpr rounded round(double x) {
  const uint64_t bits = std::bit_cast<uint64_t>(x);
  const auto sign = static_cast<uint16_t>(bits >> 48 & 0x8000);
  const uint64_t size = bits & 0x7FFFFFFFFFFFFFFF;
  const auto signed_half = [sign](uint64_t half) { return real16{static_cast<uint16_t>(sign | half)}; };

  constexpr uint64_t infinity = 0x7FF0000000000000;
  if (size >= std::bit_cast<uint64_t>(65520.0)) {  // the midpoint of 65504 and the power of two after it
    if (size < infinity) return {signed_half(0x7C00), real16_overflow | real16_inexact};
    if (size == infinity) return {signed_half(0x7C00), 0};
    const bool signalling = (size & 0x0008000000000000) == 0;
    return {signed_half(0x7E00 | (size >> 42 & 0x03FF)), signalling ? real16_invalid : 0};
  }

  if (size >= std::bit_cast<uint64_t>(0x1p-14)) {
    constexpr uint64_t below = (uint64_t{1} << 42) - 1;
    const uint64_t rebased = size - (uint64_t{1023 - 15} << 52);
    const uint64_t half =
        (rebased + (below >> 1) + (rebased >> 42 & 1)) >> 42;  // a carry runs into the exponent, as it should
    return {signed_half(half), (rebased & below) != 0 ? real16_inexact : 0};
  }

  if (size == 0) return {signed_half(0), 0};
  const uint64_t exponent = size >> 52;
  const uint64_t shift = 1051 - exponent;  // from units of 2^(exponent - 1075) to units of 2^-24
  if (exponent == 0 || shift > 53) return {signed_half(0), real16_underflow | real16_inexact};
  const uint64_t significand = (size & 0x000FFFFFFFFFFFFF) | 0x0010000000000000;
  const uint64_t rest = significand & ((uint64_t{1} << shift) - 1);
  const uint64_t middle = uint64_t{1} << (shift - 1);
  uint64_t half = significand >> shift;
  if (rest == 0) return {signed_half(half), 0};
  if (rest > middle || (rest == middle && (half & 1) != 0)) ++half;
  const bool tiny = size < std::bit_cast<uint64_t>(0x1.ffep-15);  // from here on eleven bits round to 2^-14
  return {signed_half(half), tiny ? real16_underflow | real16_inexact : real16_inexact};
}

/// The nearest half of a float, ties to even. A NaN goes by its bits: converting it to double would
/// lose whether it signals.
constexpr rounded round(float x) {
  const uint32_t bits = std::bit_cast<uint32_t>(x);
  if ((bits & 0x7FFFFFFF) <= 0x7F800000) return round(static_cast<double>(x));
  const auto half = static_cast<uint16_t>((bits >> 16 & 0x8000) | 0x7E00 | (bits >> 13 & 0x03FF));
  return {real16{half}, (bits & 0x00400000) == 0 ? real16_invalid : 0};
}

/// A finite half as a multiple of 2^-24.
constexpr int64_t units(real16 x) {
  const int exponent = x.bits >> 10 & 0x1F;
  const int64_t fraction = x.bits & 0x03FF;
  const int64_t size = exponent == 0 ? fraction : (0x0400 | fraction) << (exponent - 1);
  return sign_bit(x) ? -size : size;
}

}  // namespace real16_format

/// Signals invalid for a signalling NaN; returns x with a NaN made quiet. What every operation does to
/// its operands.
inline real16 accept_real16(real16 x) noexcept {
  if (!is_signalling(x)) [[likely]]
    return x;
  signal_real16(real16_invalid);
  return quieted(x);
}

/// Signals invalid for any NaN, as comparisons and conversions to integers do; true if x is one.
inline bool signal_if_nan(real16 x) noexcept {
  if (!is_nan(x)) [[likely]]
    return false;
  signal_real16(real16_invalid);
  return true;
}

// ---- Widening and rounding --------------------------------------------------------------------------

inline double to_double(real16 x) noexcept { return real16_format::widen(accept_real16(x)); }

inline float to_float(real16 x) noexcept {
#if defined(__F16C__)
  return _cvtsh_ss(accept_real16(x).bits);
#else
  return static_cast<float>(to_double(x));
#endif
}

/// The nearest half, ties to even, rounded once; signals overflow, underflow, inexact, and invalid for
/// a signalling NaN.
inline real16 to_real16(double x) noexcept {
  const auto [value, signals] = real16_format::round(x);
  if (signals != 0) signal_real16(signals);
  return value;
}

inline real16 to_real16(float x) noexcept {
#if defined(__F16C__)
  // The instruction rounds once and to nearest by its own operand. An exact conversion, alone, has
  // nothing to signal.
  const uint16_t half = _cvtss_sh(x, _MM_FROUND_TO_NEAREST_INT);
  if (_cvtsh_ss(half) == x) [[likely]]
    return {half};
#endif
  const auto [value, signals] = real16_format::round(x);
  if (signals != 0) signal_real16(signals);
  return value;
}

real16 to_real16(long double) = delete;

// ---- Arithmetic: correctly rounded ------------------------------------------------------------------

namespace real16_format {

/// The result of an operation with a NaN among its operands: the first of them. Left to the processor,
/// it would be either, as the compiler happens to order the operands of a sum.
inline real16 pass_nan(real16 x, real16 y) noexcept {
  const real16 a = accept_real16(x), b = accept_real16(y);
  return is_nan(a) ? a : b;
}

/// The end of an operation on numbers: y is its value in double. A NaN was an invalid operation.
inline real16 finish(double y) noexcept {
  if (std::isnan(y)) [[unlikely]] {
    signal_real16(real16_invalid);
    return real16_quiet_nan;
  }
  return to_real16(y);
}

}  // namespace real16_format

inline real16 add(real16 x, real16 y) noexcept {
  if (is_nan(x) || is_nan(y)) [[unlikely]]
    return real16_format::pass_nan(x, y);
  const double sum = real16_format::widen(x) + real16_format::widen(y);
  if (sum == 0.0)
    return {static_cast<uint16_t>(x.bits & y.bits & 0x8000)};  // also where the mode cancels to -0
  return real16_format::finish(sum);
}

inline real16 subtract(real16 x, real16 y) noexcept { return add(x, is_nan(y) ? y : negated(y)); }

inline real16 multiply(real16 x, real16 y) noexcept {
  if (is_nan(x) || is_nan(y)) [[unlikely]]
    return real16_format::pass_nan(x, y);
  return real16_format::finish(real16_format::widen(x) * real16_format::widen(y));
}

inline real16 divide(real16 x, real16 y) noexcept {
  if (is_nan(x) || is_nan(y)) [[unlikely]]
    return real16_format::pass_nan(x, y);
  if (is_zero(y) && is_finite(x) && !is_zero(x)) [[unlikely]] {
    signal_real16(real16_divide_by_zero);
    return {static_cast<uint16_t>(0x7C00 | ((x.bits ^ y.bits) & 0x8000))};
  }
  return real16_format::finish(real16_format::widen(x) / real16_format::widen(y));
}

/// a * x + y, rounded once.
inline real16 multiply_add(real16 a, real16 x, real16 y) noexcept {
  if (is_nan(a) || is_nan(x)) [[unlikely]]
    return real16_format::pass_nan(real16_format::pass_nan(a, x), y);
  if (is_nan(y)) [[unlikely]]
    return accept_real16(y);
  if (!is_finite(a) || !is_finite(x) || !is_finite(y)) [[unlikely]]
    return real16_format::finish(real16_format::widen(a) * real16_format::widen(x) + real16_format::widen(y));
  const __int128 product = static_cast<__int128>(real16_format::units(a)) * real16_format::units(x);
  const __int128 exact = product + static_cast<__int128>(real16_format::units(y)) * (1 << 24);  // of 2^-48
  if (exact == 0) return {static_cast<uint16_t>((a.bits ^ x.bits) & y.bits & 0x8000)};
  // The leading bits, the last of them set if anything is cut off: rounding that again is rounding once.
  unsigned __int128 size = exact < 0 ? -static_cast<unsigned __int128>(exact) : exact;
  double scale = exact < 0 ? -0x1p-48 : 0x1p-48;
  if ((size >> 53) != 0) {
    constexpr int cut = 29;  // the size is below 2^82
    size = size >> cut | ((size & ((1u << cut) - 1)) != 0 ? 1 : 0);
    scale *= 0x1p29;
  }
  return to_real16(static_cast<double>(static_cast<uint64_t>(size)) * scale);
}

inline real16 square_root(real16 x) noexcept {
  if (is_nan(x)) [[unlikely]]
    return accept_real16(x);
  if (sign_bit(x) && !is_zero(x)) [[unlikely]] {  // here, for std::sqrt would set errno by its own rule
    signal_real16(real16_invalid);
    return real16_quiet_nan;
  }
  return to_real16(std::sqrt(real16_format::widen(x)));
}

// ---- Comparison: any NaN signals invalid and compares false -----------------------------------------

inline bool equal(real16 x, real16 y) noexcept {
  if (static_cast<int>(signal_if_nan(x)) | static_cast<int>(signal_if_nan(y))) return false;
  return x.bits == y.bits || (is_zero(x) && is_zero(y));
}

inline bool less(real16 x, real16 y) noexcept {
  if (static_cast<int>(signal_if_nan(x)) | static_cast<int>(signal_if_nan(y))) return false;
  return real16_format::widen(x) < real16_format::widen(y);
}

inline bool less_equal(real16 x, real16 y) noexcept {
  if (static_cast<int>(signal_if_nan(x)) | static_cast<int>(signal_if_nan(y))) return false;
  return real16_format::widen(x) <= real16_format::widen(y);
}

// ---- Whole numbers. The whole number beside a half is a half, so these are exact --------------------

inline real16 floor(real16 x) noexcept {
  return real16_format::round(std::floor(real16_format::widen(accept_real16(x)))).value;
}
inline real16 ceil(real16 x) noexcept {
  return real16_format::round(std::ceil(real16_format::widen(accept_real16(x)))).value;
}
inline real16 trunc(real16 x) noexcept {
  return real16_format::round(std::trunc(real16_format::widen(accept_real16(x)))).value;
}
/// In the current rounding mode; signals inexact where the value changes.
inline real16 rint(real16 x) noexcept {
  const real16 whole = real16_format::round(std::rint(real16_format::widen(accept_real16(x)))).value;
  if (whole.bits != quieted(x).bits) signal_real16(real16_inexact);
  return whole;
}

/// Toward zero, without a signal for the part cut off. An infinity signals invalid and gives the end of
/// the range, a NaN signals invalid and gives 0.
inline int64_t to_int64(real16 x) noexcept {
  if (is_finite(x)) [[likely]] {
    // By integer arithmetic: the processor's conversion would raise inexact.
    return real16_format::units(x) / (1 << 24);
  }
  signal_real16(real16_invalid);
  if (is_nan(x)) return 0;
  return sign_bit(x) ? std::numeric_limits<int64_t>::min() : std::numeric_limits<int64_t>::max();
}

// ---- Functions --------------------------------------------------------------------------------------

namespace real16_format {
/// Rounds the value y of a function to half and signals for it. raised holds the FE_ exceptions of the
/// evaluation in double.
real16 conclude(double y, int raised) noexcept;
/// The FE_ exceptions of overflow, underflow and inexact that the flag word holds. Raised once more by
/// an evaluation, on top of a caller's environment that has them too, they change nothing.
int settled_exceptions() noexcept;
}  // namespace real16_format

/// f(x) for a function of doubles: evaluated wholly in double, rounded once. The evaluation runs in the
/// default environment with errno and the exceptions set aside, and these come out of it:
///  - invalid and division by zero of the evaluation;
///  - overflow if the value is beyond the halves, whether in double or in the rounding; an intermediate
///    result that overflows on the way to a finite value, as in 1 / cosh(x), is no overflow;
///  - underflow if the value is tiny for a half and inexact, or so small that the evaluation gave zero;
///  - inexact if the evaluation or the rounding is.
/// An infinite value that the evaluation raised nothing for, such as that of exp at infinity, is
/// infinity without a signal. f is a pure function and may be called twice. A quiet NaN among the
/// arguments goes into f, quietly unless f has a reason of its own; a signalling NaN raises invalid and
/// goes in as a quiet one.
template <class Function, class... Reals> real16 evaluate(Function&& f, Reals... x) noexcept {
  static_assert((std::is_same_v<Reals, real16> && ...));
  const int saved_errno = errno;
  double y = 0.0;
  int raised = 0;
  const auto run = [&](int unheeded) {
    const fp::default_section section(unheeded);
    const auto operand = [](real16 v) {
      double wide = real16_format::widen(v);
      fp::pin(wide);
      return wide;
    };
    y = f(operand(x)...);
    fp::pin(y);
    raised = section.raised();
  };
  const int settled = real16_format::settled_exceptions();
  run(settled);
  // Only of a zero or an infinity does the verdict depend on overflow and underflow in double.
  if ((settled & (FE_OVERFLOW | FE_UNDERFLOW)) && (y == 0.0 || std::isinf(y))) run(0);
  errno = saved_errno;
  (accept_real16(x), ...);
  return real16_format::conclude(y, raised);
}

}  // namespace vlm
