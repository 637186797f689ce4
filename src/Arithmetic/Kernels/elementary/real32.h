// log, sin and cos of Real32, computed in double to some 34 bits and rounded: little more than half an ulp, and cheaper than
// care for the last bits in single precision. A register of Real32 is gone through as two of doubles.
#pragma once

#include "Arithmetic/Kernels/elementary/common.h"

namespace vlm::elementary {

/// f, a function of doubles, on a Real32 or on a register of them.
template <class F> inline float through_double(F f, float x) {
  return static_cast<float>(f(static_cast<double>(x)));
}
template <class F> inline real32_lanes through_double(F f, real32_lanes x) {
  const auto halves = widened(x);
  return narrowed(f(halves.low), f(halves.high));
}

/// The reduction and the table of log_of, without what its sums lose.
inline constexpr ordinary_range real32_log_range{0x1p-149, 0x1.fffffep+127, false};
template <class V> inline V real32_log(V x) {
  return through_double(
      []<class W>(W w) {
        constexpr uint64_t offset = 0x3fea4f0000000000;
        constexpr uint64_t exponent_bits = uint64_t{0xfff} << 52;
        const bits_of<W> bits = to_bits(w);
        const bits_of<W> from_offset = bits - offset;
        const bits_of<W> index = from_offset >> 48;
        const W m = from_bits<W>(bits - (from_offset & exponent_bits));
        const W k = to_number((integers_of<W>)from_offset >> 52);
        const W r = fused(m, look_up(log_reciprocal, index), lanes<W>(-1.0));
        const W high = fused(k, lanes<W>(0x1.62e42fefa39efp-1), look_up(log_high, index));
        return high + fused(r * r, polynomial<W>(r, real32_log_polynomial), r);
      },
      x);
}

/// sin(x) = (-1)^n sin(x - n pi), and with_half: cos(x) = -(-1)^n sin(x - (n + 1/2) pi); pi in two parts.
template <bool with_half, class V> inline V real32_sine(V x) {
  return through_double(
      []<class W>(W w) {
        constexpr double inverse_pi = 0x1.45f306dc9c883p-2;
        const auto n = with_half ? nearest_integer(fused(w, lanes<W>(inverse_pi), lanes<W>(-0.5)), 1.0)
                                 : nearest_integer(w, inverse_pi);
        const W turns = with_half ? n.number + 0.5 : n.number;
        const W first = fused(turns, lanes<W>(-0x1.921fb54442d18p+1), w);
        const W r = fused(turns, lanes<W>(-0x1.1a62633145c07p-53), first);
        const W z = r * r;
        const W y = r * fused(z, polynomial<W>(z, real32_sin_polynomial), lanes<W>(1.0));
        return from_bits<W>(to_bits(y) ^ ((n.bits + uint64_t{with_half}) << 63));
      },
      x);
}

inline constexpr ordinary_range real32_sin_range{0, 0x1p20, true};
template <class V> inline V real32_sin(V x) { return real32_sine<false>(x); }

inline constexpr ordinary_range real32_cos_range{0, 0x1p20, true};
template <class V> inline V real32_cos(V x) { return real32_sine<true>(x); }

}  // namespace vlm::elementary
