// What the column-major routines share: complex numbers as pairs, transposition letters, and the road of an illegal argument.
#pragma once

#include "Includes/lanes.h"
#include "velorim/base.h"
#include "velorim/blas.h"

namespace vlm::blas {

/// A complex number as it lies in memory. A product is the reference's sum of two products, nothing recovered, with the second product
/// fused into the sum: written so, every compiler rounds alike. (Left to themselves some contract the pair of sums in one loop and not in
/// the next, even where contraction is off.)
template <class T> struct complex_pair {
  T re, im;
  friend complex_pair operator+(complex_pair a, complex_pair b) { return {a.re + b.re, a.im + b.im}; }
  friend complex_pair operator*(complex_pair a, complex_pair b) {
    return {fused(a.re, b.re, -(a.im * b.im)), fused(a.re, b.im, a.im * b.re)};
  }
  friend bool operator==(complex_pair a, complex_pair b) { return a.re == b.re && a.im == b.im; }
};

template <class T> inline T conjugate(T x) { return x; }
template <class T> inline complex_pair<T> conjugate(complex_pair<T> z) { return {z.re, -z.im}; }

/// 1 in each type.
template <class T> struct unit_of { static constexpr T value = 1; };
template <class T> struct unit_of<complex_pair<T>> { static constexpr complex_pair<T> value = {1, 0}; };

enum class transposition { none, plain, conjugated, illegal };

inline transposition transposition_of(const char* letter) {
  if (vlb_lsame(letter, "N")) return transposition::none;
  if (vlb_lsame(letter, "T")) return transposition::plain;
  return vlb_lsame(letter, "C") ? transposition::conjugated : transposition::illegal;
}

/// Reports the first test that failed, if any: numbers and conditions in the order of the tests. True if one did.
struct argument_test {
  mint parameter;
  bool illegal;
};
template <size_t N> bool reports_illegal(const char* tag, const argument_test (&tests)[N]) {
  for (const argument_test& test : tests) {
    if (!test.illegal) continue;
    vlb_xerbla(tag, &test.parameter);
    return true;
  }
  return false;
}

/// Where a vector's first element lies: at the far end for a negative increment.
constexpr mint first_offset(mint n, mint increment) { return increment < 0 ? (1 - n) * increment : 0; }

}  // namespace vlm::blas
