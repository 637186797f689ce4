// A sum of powers that no element can overflow: of each magnitude only its ratio to a running scale, the largest so far, is raised
// to the power. The method of the reference dnrm2 (Lawson et al., ACM TOMS 5, 1979), for any power.
#pragma once

namespace vlm::blas {

/// The power of the Euclidean norm.
struct squared {
  template <class T> T operator()(T ratio) const { return ratio * ratio; }
};

/// The magnitudes v taken in are represented as scale^p sum(...): the sum of (v / scale)^p, to which the starting value 1 belongs
/// from the first element that is not 0 on. T is a type of real numbers with the operators of double.
template <class T> struct scaled_sum {
  T scale = 0;
  T sum = 1;

  /// A NaN exceeds no scale and makes the sum NaN.
  template <class Power> void add(T v, const Power& power) {
    if (v == T(0)) return;
    if (scale < v) {
      sum = sum * power(scale / v) + T(1);
      scale = v;
    } else {
      sum = sum + power(v / scale);
    }
  }
};

}  // namespace vlm::blas
