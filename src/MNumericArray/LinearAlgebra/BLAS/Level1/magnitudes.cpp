// Sums and maxima of magnitudes, and the Euclidean norm. The order of the sums is that of the reference.
#include <algorithm>
#include <cmath>

#include "MNumericArray/LinearAlgebra/BLAS/calling_form.h"

namespace {

/// Groups of 6 that are added from left to right to the sum, behind the first n mod 6, are the magnitudes in order.
template <class T> T sum_of_magnitudes(mint n, const T* x, mint incx) {
  T sum = 0;
  if (n < 1 || incx < 1) return sum;
  for (mint i = 0; i < n; ++i) sum += std::abs(x[i * incx]);
  return sum;
}

template <class T> mint index_of_largest(mint n, const T* x, mint incx) {
  if (n < 1 || incx < 1) return 0;
  mint index = 0;
  T largest = std::abs(x[0]);
  for (mint i = 1; i < n; ++i) {
    const T magnitude = std::abs(x[i * incx]);
    // No NaN exceeds anything, and nothing exceeds a NaN in the first place.
    if (!(magnitude > largest)) continue;
    largest = magnitude;
    index = i;
  }
  return index + 1;
}

/// The running scale and the sum of squares over it.
template <class T> class scaled_squares {
 public:
  void add(T x) {
    if (x == 0) return;
    const T magnitude = std::abs(x);
    if (scale_ < magnitude) {
      const T ratio = scale_ / magnitude;
      sum_ = 1 + sum_ * (ratio * ratio);
      scale_ = magnitude;
    } else {
      const T ratio = magnitude / scale_;
      sum_ += ratio * ratio;
    }
  }
  /// The same for a block whose entries are all below the scale and not zero: the quotients side by side, the sum in order.
  template <int N> bool add_block(const T* x) {
    int plain = 1;
    for (int i = 0; i < N; ++i) {
      const T magnitude = std::abs(x[i]);
      plain &= (magnitude > 0) & (magnitude <= scale_);
    }
    if (plain == 0) return false;
    T squares[N];
    for (int i = 0; i < N; ++i) {
      const T ratio = std::abs(x[i]) / scale_;
      squares[i] = ratio * ratio;
    }
    for (int i = 0; i < N; ++i) sum_ += squares[i];
    return true;
  }
  T norm() const { return scale_ * std::sqrt(sum_); }

 private:
  T scale_ = 0;
  T sum_ = 1;
};

template <class T> T norm(mint n, const T* x, mint incx) {
  if (n < 1 || incx < 1) return 0;
  if (n == 1) return std::abs(x[0]);
  constexpr int block = 64;
  scaled_squares<T> squares;
  mint i = 0;
  while (i < n) {
    if (incx == 1 && n - i >= block && squares.template add_block<block>(x + i)) {
      i += block;
      continue;
    }
    // One entry that was above the scale or 0 costs a block of single steps.
    const mint last = std::min<mint>(n, i + block);
    for (; i < last; ++i) squares.add(x[i * incx]);
  }
  return squares.norm();
}

}  // namespace

mint vlb_isamax(const mint* n, const float* x, const mint* incx) VLM_NOEXCEPT {
  return index_of_largest(*n, x, *incx);
}
mint vlb_idamax(const mint* n, const mreal* x, const mint* incx) VLM_NOEXCEPT {
  return index_of_largest(*n, x, *incx);
}
float vlb_sasum(const mint* n, const float* x, const mint* incx) VLM_NOEXCEPT {
  return sum_of_magnitudes(*n, x, *incx);
}
mreal vlb_dasum(const mint* n, const mreal* x, const mint* incx) VLM_NOEXCEPT {
  return sum_of_magnitudes(*n, x, *incx);
}
float vlb_snrm2(const mint* n, const float* x, const mint* incx) VLM_NOEXCEPT { return norm(*n, x, *incx); }
mreal vlb_dnrm2(const mint* n, const mreal* x, const mint* incx) VLM_NOEXCEPT { return norm(*n, x, *incx); }

mreal vlb_dznrm2(const mint* n, const mcomplex* x, const mint* incx) VLM_NOEXCEPT {
  scaled_squares<mreal> squares;
  if (*n < 1 || *incx < 1) return 0;
  for (mint i = 0; i < *n; ++i) {
    squares.add(x[i * *incx].re);
    squares.add(x[i * *incx].im);
  }
  return squares.norm();
}
