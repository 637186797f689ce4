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

/// sin(x + quarters pi/2), reduced with pi/2 in two parts.
template <int quarters, class V> inline V real32_sine(V x) {
  return through_double(
      []<class W>(W w) {
        const auto n = nearest_integer(w, 0x1.45f306dc9c883p-1);
        const W first = fused(n.number, lanes<W>(-0x1.921fb54442d18p+0), w);
        const W r = fused(n.number, lanes<W>(-0x1.1a62633145c07p-54), first);
        const W z = r * r;
        const W one = lanes<W>(1.0);
        const W sin = r * fused(z, polynomial<W>(z, real32_sin_polynomial), one);
        const W cos = fused(z, fused(z, polynomial<W>(z, real32_cos_polynomial), lanes<W>(-0.5)), one);
        const bits_of<W> turn = n.bits + static_cast<uint64_t>(quarters);
        const W y = select((turn & uint64_t{1}) == uint64_t{0}, sin, cos);
        return from_bits<W>(to_bits(y) ^ ((turn << 62) & sign_bit));
      },
      x);
}

inline constexpr ordinary_range real32_sin_range{0, 0x1p20, true};
template <class V> inline V real32_sin(V x) { return real32_sine<0>(x); }

inline constexpr ordinary_range real32_cos_range{0, 0x1p20, true};
template <class V> inline V real32_cos(V x) { return real32_sine<1>(x); }

}  // namespace vlm::elementary
