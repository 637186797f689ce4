// A multiple-precision oracle for real functions, and errors in units in the last place.
#pragma once

#include <mpfr.h>

#include <cmath>
#include <limits>
#include <utility>

namespace oracle {

/// The bits of numbers made from now on. 256 are enough that a value computed in a few steps is exact for any
/// judgement about doubles; a test of a shorter type may lower it for speed.
inline mpfr_prec_t precision = 256;

/// A number of that many bits.
class number {
 public:
  number() { mpfr_init2(v_, precision); }
  number(double x) : number() {
    mpfr_set_d(v_, x, MPFR_RNDN);
  }  // NOLINT: numbers mix with doubles in formulas
  number(const number& o) : number() { mpfr_set(v_, o.v_, MPFR_RNDN); }
  number& operator=(const number& o) {
    mpfr_set(v_, o.v_, MPFR_RNDN);
    return *this;
  }
  ~number() { mpfr_clear(v_); }
  mpfr_ptr get() { return v_; }
  mpfr_srcptr get() const { return v_; }

 private:
  mpfr_t v_;
};

using mpfr_unary = int (*)(mpfr_ptr, mpfr_srcptr, mpfr_rnd_t);
using mpfr_binary = int (*)(mpfr_ptr, mpfr_srcptr, mpfr_srcptr, mpfr_rnd_t);

inline number apply(mpfr_unary f, const number& x) {
  number r;
  f(r.get(), x.get(), MPFR_RNDN);
  return r;
}
inline number apply(mpfr_binary f, const number& x, const number& y) {
  number r;
  f(r.get(), x.get(), y.get(), MPFR_RNDN);
  return r;
}
inline number operator+(const number& x, const number& y) { return apply(mpfr_add, x, y); }
inline number operator-(const number& x, const number& y) { return apply(mpfr_sub, x, y); }
inline number operator*(const number& x, const number& y) { return apply(mpfr_mul, x, y); }
inline number operator/(const number& x, const number& y) { return apply(mpfr_div, x, y); }

/// |y - exact| in units of the last place that a T of the size of exact has (the spacing of subnormals near zero).
template <class T> double ulp_error(T y, const number& exact) {
  if (mpfr_nan_p(exact.get()) || !std::isfinite(y)) {
    const bool both_nan = mpfr_nan_p(exact.get()) && std::isnan(y);
    const double rounded = mpfr_get_d(exact.get(), MPFR_RNDN);
    const bool same_infinity = std::isinf(y) && static_cast<T>(rounded) == y;
    return both_nan || same_infinity ? 0 : std::numeric_limits<double>::infinity();
  }
  constexpr int digits = std::numeric_limits<T>::digits;
  constexpr mpfr_exp_t least = std::numeric_limits<T>::min_exponent - digits;
  const mpfr_exp_t exponent = mpfr_zero_p(exact.get()) ? least : mpfr_get_exp(exact.get()) - digits;
  number error = exact - number(static_cast<double>(y));
  mpfr_abs(error.get(), error.get(), MPFR_RNDN);
  mpfr_mul_2si(error.get(), error.get(), -std::max(exponent, least), MPFR_RNDN);
  return mpfr_get_d(error.get(), MPFR_RNDN);
}

/// The nearest T, ties to even, subnormals and overflow as IEEE 754 rounds them.
template <class T> T nearest(const number& exact) {
  if constexpr (std::is_same_v<T, double>) {
    return mpfr_get_d(exact.get(), MPFR_RNDN);
  } else {
    return mpfr_get_flt(exact.get(), MPFR_RNDN);
  }
}

}  // namespace oracle
