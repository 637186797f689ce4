// Sums and maxima of magnitudes, and the Euclidean norm. The order of the sums is that of the reference.
#include <cfenv>
#include <cmath>

#include "MNumericArray/LinearAlgebra/BLAS/Level1/largest_magnitude.h"
#include "MNumericArray/LinearAlgebra/BLAS/Level1/ordered_sum.h"
#include "MNumericArray/LinearAlgebra/BLAS/Level1/scaled_sum.h"
#include "velorim/blas.h"

namespace {

using namespace vlm::blas;

/// Terms that are the magnitudes themselves.
struct plain_terms {
  template <class T> void add(T v, T& sum) { sum += v; }
  template <class T> T largest(T c) const { return c; }
  static auto rule() {
    return [](auto v) { return v; };
  }
  bool operator==(const plain_terms&) const = default;
};

/// Groups of 6 that are added from left to right to the sum, behind the first n mod 6, are the magnitudes in order.
template <class T> T sum_of_magnitudes(mint n, const T* x, mint incx) {
  if (n < 1 || incx < 1) return 0;
  ordered_sum<T, plain_terms> sum({}, 0);
  sum.add(x, n, incx);
  return sum.sum();
}

/// Quotients by one divisor, correctly rounded, in less time than a division. With the rounded reciprocal r of d, q = x r is off
/// by an ulp or so, x - q d is exact, and q + r (x - q d) rounds as x / d does (Markstein, IBM J. Res. Dev. 34, 1990), if all of
/// it is in the ordinary range and rounds to nearest. Where x is so far below d (2^-60, Real32 2^-30) that the difference may be
/// subnormal, the quotient is only known to be as small.
template <class T> class division_by {
 public:
  explicit division_by(T divisor) : divisor_(divisor), reciprocal_(1 / divisor) {
    constexpr bool wide = sizeof(T) == 8;
#if defined(VELORIM_LANES_SSE)
    constexpr bool fused_is_fast = false;
#else
    constexpr bool fused_is_fast = true;
#endif
    by_reciprocal_ = fused_is_fast && divisor >= (wide ? T(0x1p-800) : T(0x1p-40f)) &&
                     divisor <= (wide ? T(0x1p800) : T(0x1p100f)) && std::fegetround() == FE_TONEAREST;
  }
  template <class V> V operator()(V x) const {
    const V d = vlm::broadcast<V>(divisor_);
    if (!by_reciprocal_) return x / d;
    const V r = vlm::broadcast<V>(reciprocal_);
    const V q = x * r;
    return vlm::fused(vlm::fused(-q, d, x), r, q);
  }

 private:
  T divisor_, reciprocal_;
  bool by_reciprocal_;
};

/// Terms that are squares over the square of the running scale. Those of quotients that are only known to be small add nothing to a
/// sum of 1 or more.
template <class T> struct square_terms {
  T scale = 0;
  void add(T v, T& sum) {
    scaled_sum<T> both{scale, sum};
    both.add(v, squared{});
    scale = both.scale;
    sum = both.sum;
  }
  T largest(T) const { return scale; }
  auto rule() const {
    return [over_scale = division_by<T>(scale)](auto v) { return squared{}(over_scale(v)); };
  }
  bool operator==(const square_terms&) const = default;
};

/// Of n numbers, which may be the parts of complex ones.
template <class T> T root_of_squares(mint n, const T* x, mint stride) {
  ordered_sum<T, square_terms<T>> squares({}, 1);
  squares.add(x, n, stride);
  return squares.terms().scale * std::sqrt(squares.sum());
}

template <class T> T norm(mint n, const T* x, mint incx) {
  if (n < 1 || incx < 1) return 0;
  if (n == 1) return std::abs(x[0]);
  return root_of_squares(n, x, incx);
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
  if (*n < 1 || *incx < 1) return 0;
  const mreal* const parts = &x->re;
  if (*incx == 1) return root_of_squares(2 * *n, parts, 1);
  scaled_sum<mreal> squares;
  for (mint i = 0; i < *n; ++i) {
    squares.add(std::abs(x[i * *incx].re), squared{});
    squares.add(std::abs(x[i * *incx].im), squared{});
  }
  return squares.scale * std::sqrt(squares.sum);
}
