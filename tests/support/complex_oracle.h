// A multiple-precision oracle for complex functions, and errors of complex numbers.
#pragma once

#include <mpc.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "support/oracle.h"

namespace oracle {

/// A complex number of `precision` bits. Zero parts have signs, which tell the side of a cut.
class complex_number {
 public:
  complex_number() { mpc_init2(v_, precision); }
  complex_number(double re, double im = 0) : complex_number() {
    mpc_set_d_d(v_, re, im, MPC_RNDNN);
  }  // NOLINT: numbers mix with doubles in formulas
  complex_number(const complex_number& o) : complex_number() { mpc_set(v_, o.v_, MPC_RNDNN); }
  complex_number& operator=(const complex_number& o) {
    mpc_set(v_, o.v_, MPC_RNDNN);
    return *this;
  }
  ~complex_number() { mpc_clear(v_); }
  mpc_ptr get() { return v_; }
  mpc_srcptr get() const { return v_; }
  mpfr_ptr re() { return mpc_realref(v_); }
  mpfr_ptr im() { return mpc_imagref(v_); }
  mpfr_srcptr re() const { return mpc_realref(v_); }
  mpfr_srcptr im() const { return mpc_imagref(v_); }

 private:
  mpc_t v_;
};

using mpc_unary = int (*)(mpc_ptr, mpc_srcptr, mpc_rnd_t);
inline complex_number apply(mpc_unary f, const complex_number& z) {
  complex_number w;
  f(w.get(), z.get(), MPC_RNDNN);
  return w;
}
using mpc_binary = int (*)(mpc_ptr, mpc_srcptr, mpc_srcptr, mpc_rnd_t);
inline complex_number apply(mpc_binary f, const complex_number& x, const complex_number& y) {
  complex_number w;
  f(w.get(), x.get(), y.get(), MPC_RNDNN);
  return w;
}
inline complex_number operator+(const complex_number& x, const complex_number& y) {
  return apply(mpc_add, x, y);
}
inline complex_number operator-(const complex_number& x, const complex_number& y) {
  return apply(mpc_sub, x, y);
}
inline complex_number operator*(const complex_number& x, const complex_number& y) {
  return apply(mpc_mul, x, y);
}
inline complex_number operator/(const complex_number& x, const complex_number& y) {
  return apply(mpc_div, x, y);
}
inline complex_number operator-(const complex_number& z) { return apply(mpc_neg, z); }

inline bool is_finite(const complex_number& z) { return mpfr_number_p(z.re()) && mpfr_number_p(z.im()); }

/// |z| as a double, within a factor of 2 even if that is out of range: as a power of two.
inline double log2_magnitude(const complex_number& z) {
  number m;
  mpc_abs(m.get(), z.get(), MPFR_RNDN);
  if (mpfr_zero_p(m.get())) return -std::numeric_limits<double>::infinity();
  return static_cast<double>(mpfr_get_exp(m.get()));
}

/// |x| / |y|.
inline double ratio(const complex_number& x, const complex_number& y) {
  number a, b;
  mpc_abs(a.get(), x.get(), MPFR_RNDN);
  mpc_abs(b.get(), y.get(), MPFR_RNDN);
  return mpfr_get_d((a / b).get(), MPFR_RNDN);
}

/// |w - exact| / |exact| in units of the epsilon of T; of an exact value below the normal numbers of T against the least of them.
template <class T> double norm_error(T re, T im, const complex_number& exact) {
  number difference, magnitude;
  mpc_abs(difference.get(), (exact - complex_number(re, im)).get(), MPFR_RNDN);
  mpc_abs(magnitude.get(), exact.get(), MPFR_RNDN);
  const number least(static_cast<double>(std::numeric_limits<T>::min()));
  if (mpfr_cmp(magnitude.get(), least.get()) < 0) magnitude = least;
  return mpfr_get_d((difference / magnitude).get(), MPFR_RNDN) /
         static_cast<double>(std::numeric_limits<T>::epsilon());
}

}  // namespace oracle
