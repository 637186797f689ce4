// Exception values, NaN and infinity: the test of one number and the scan of a run. Decided on the bits, so that no test raises
// a flag, signalling NaNs included.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>

#include "Includes/element_types.h"

namespace vlm {

/// The layout of a real format: bits is an unsigned integer as wide, exponent has all exponent bits set.
template <class Real> struct fp_format;
template <> struct fp_format<real16> {
  using bits = uint16_t;
  static constexpr bits exponent = 0x7C00;
};
template <> struct fp_format<float> {
  using bits = uint32_t;
  static constexpr bits exponent = 0x7F800000;
};
template <> struct fp_format<double> {
  using bits = uint64_t;
  static constexpr bits exponent = 0x7FF0000000000000;
};

/// The real type of the parts of an element, and their number.
template <class T> struct fp_parts {
  using real = T;
  static constexpr mint count = 1;
};
template <> struct fp_parts<complex_real32> {
  using real = float;
  static constexpr mint count = 2;
};
template <> struct fp_parts<mcomplex> {
  using real = double;
  static constexpr mint count = 2;
};

/// The sign bit of a format's bits.
template <class Bits>
inline constexpr Bits fp_sign_bit = static_cast<Bits>(Bits{1} << (sizeof(Bits) * 8 - 1));

/// Has its sign bit set if and only if x counts: adding the lowest exponent bit to an exponent of all ones carries into it.
/// Masks of several numbers may be OR-ed, which is how a loop over them stays free of branches.
template <class Real> constexpr auto fp_exception_mask(Real x) {
  using format = fp_format<Real>;
  using bits = typename format::bits;
  constexpr bits lowest = format::exponent & static_cast<bits>(~format::exponent + 1);
  return static_cast<bits>((std::bit_cast<bits>(x) & format::exponent) + lowest);
}

template <class Real> constexpr bool is_fp_exception(Real x) {
  using bits = typename fp_format<Real>::bits;
  return (fp_exception_mask(x) & fp_sign_bit<bits>) != 0;
}
constexpr bool is_fp_exception(complex_real32 z) { return is_fp_exception(z.re) || is_fp_exception(z.im); }
constexpr bool is_fp_exception(mcomplex z) { return is_fp_exception(z.re) || is_fp_exception(z.im); }

/// Numbers that are looked at before the scan asks whether to go on: long enough for vector code, short enough to stop early.
inline constexpr mint fp_scan_block = 512;

/// True if any of a few adjacent real numbers counts; reads all of them.
template <class Real> bool any_fp_exception(const Real* data, mint count) {
  using bits = typename fp_format<Real>::bits;
  bits seen = 0;
  for (mint i = 0; i < count; ++i) seen |= fp_exception_mask(data[i]);
  return (seen & fp_sign_bit<bits>) != 0;
}

/// The adjacent parts of adjacent elements.
template <class T> auto fp_parts_of(T* data) {
  using element = std::remove_const_t<T>;
  using real = typename fp_parts<element>::real;
  return reinterpret_cast<std::conditional_t<std::is_const_v<T>, const real, real>*>(data);
}

/// True if any of count elements, stride apart from data on, counts. Ends at the first, or with the block that holds it.
template <class T> bool fp_exception_iterate(const T* data, mint count, mint stride) {
  if (stride != 1) {
    for (mint i = 0; i < count; ++i) {
      if (is_fp_exception(data[i * stride])) return true;
    }
    return false;
  }
  const auto* parts = fp_parts_of(data);
  const mint total = count * fp_parts<T>::count;
  for (mint i = 0; i < total; i += fp_scan_block) {
    if (any_fp_exception(parts + i, std::min(fp_scan_block, total - i))) return true;
  }
  return false;
}

}  // namespace vlm
