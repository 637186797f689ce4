// The complex functions by the oracle, with the bounds that the library keeps to.
#pragma once

#include <ostream>
#include <vector>

#include "support/complex_oracle.h"
#include "velorim/machine_functions.h"

namespace complex_functions {

using oracle::apply;
using oracle::complex_number;
using oracle::number;

struct entry {
  int32_t number_of;
  const char* name;
  complex_number (*exact)(const complex_number&);
  /// Largest error in units of epsilon: of the whole number against its magnitude, for Real64 and Real32.
  double bound64, bound32;
  /// Largest error of each part against itself, in ulps; 0 where a part may lose its digits beside the other.
  double part_bound64 = 0, part_bound32 = 0;
  /// Functions made in steps: the bound holds for the sum of 1 and the condition number |z f'(z) / f(z)|.
  bool conditioned = false;
};
inline void PrintTo(const entry& e, std::ostream* out) { *out << e.name; }

/// z with the sign that a zero imaginary part takes: plus, or the one that puts real z beyond 1 on the right side of its cut.
inline complex_number above_axis(complex_number z) {
  if (mpfr_zero_p(z.im())) mpfr_set_zero(z.im(), 1);
  return z;
}
inline complex_number beside_cut(complex_number z) {
  if (mpfr_zero_p(z.im())) mpfr_set_zero(z.im(), mpfr_sgn(z.re()) > 0 ? -1 : 1);
  return z;
}
inline complex_number asin(const complex_number& z) { return apply(mpc_asin, beside_cut(z)); }
inline complex_number acos(const complex_number& z) { return apply(mpc_acos, beside_cut(z)); }
inline complex_number atanh(const complex_number& z) { return apply(mpc_atanh, beside_cut(z)); }
inline complex_number log(const complex_number& z) { return apply(mpc_log, above_axis(z)); }
inline complex_number sqrt(const complex_number& z) { return apply(mpc_sqrt, above_axis(z)); }
/// i z through f, and turned back.
template <complex_number (*f)(const complex_number&)> complex_number circular(const complex_number& z) {
  complex_number w;
  mpc_mul_i(w.get(), z.get(), 1, MPC_RNDNN);
  w = f(w);
  mpc_mul_i(w.get(), w.get(), -1, MPC_RNDNN);
  return w;
}
inline complex_number asinh(const complex_number& z) { return circular<asin>(z); }
inline complex_number atan(const complex_number& z) { return circular<atanh>(z); }
inline complex_number acosh(const complex_number& z) {
  const complex_number w = acos(z);
  const int y = mpfr_sgn(z.im());
  const bool upper = y > 0 || (y == 0 && mpfr_cmp_ui(z.re(), 1) <= 0);
  complex_number r;
  mpc_mul_i(r.get(), w.get(), upper ? 1 : -1, MPC_RNDNN);
  return r;
}
template <complex_number (*f)(const complex_number&)> complex_number of_reciprocal(const complex_number& z) {
  return f(complex_number(1) / z);
}
template <auto f> complex_number reciprocal(const complex_number& z) {
  return complex_number(1) / apply(f, z);
}
template <auto f> complex_number plainly(const complex_number& z) { return apply(f, z); }

inline complex_number expm1(const complex_number& z) {
  if (log2_magnitude(z) < -90) return z + z * z / complex_number(2);
  return apply(mpc_exp, z) - complex_number(1);
}
inline complex_number log1p(const complex_number& z) {
  if (log2_magnitude(z) < -90) return z - z * z / complex_number(2);
  return log(above_axis(z) + complex_number(1));
}
template <int base> complex_number log_to(const complex_number& z) {
  return log(z) / complex_number(apply(mpc_log, complex_number(base)));
}
inline complex_number sign(const complex_number& z) {
  complex_number size;
  mpc_abs(size.re(), z.get(), MPFR_RNDN);
  mpfr_set_zero(size.im(), 1);
  return z / size;
}
inline complex_number recip(const complex_number& z) { return complex_number(1) / z; }
inline complex_number rsqrt(const complex_number& z) { return complex_number(1) / sqrt(z); }
inline complex_number logistic(const complex_number& z) {
  return complex_number(1) / (complex_number(1) + apply(mpc_exp, -z));
}
inline complex_number sinc(const complex_number& z) { return apply(mpc_sin, z) / z; }
inline complex_number half(const complex_number& z) { return z / complex_number(2); }
inline complex_number haversine(const complex_number& z) {
  const complex_number s = apply(mpc_sin, half(z));
  return s * s;
}
inline complex_number inversehaversine(const complex_number& z) { return complex_number(2) * asin(sqrt(z)); }
inline complex_number gudermannian(const complex_number& z) {
  return complex_number(2) * atan(apply(mpc_tanh, half(z)));
}
inline complex_number inversegudermannian(const complex_number& z) {
  complex_number quarter;
  mpfr_const_pi(quarter.re(), MPFR_RNDN);
  mpfr_set_zero(quarter.im(), 1);
  return log(apply(mpc_tan, half(z) + quarter / complex_number(4)));
}
/// Golden^z and cos(pi z) / golden^z, with the exact golden ratio and pi.
struct golden_terms {
  complex_number p, q;
  explicit golden_terms(const complex_number& z) {
    const complex_number golden =
        (complex_number(1) + apply(mpc_sqrt, complex_number(5))) / complex_number(2);
    p = apply(mpc_exp, z * apply(mpc_log, golden));
    complex_number pi;
    mpfr_const_pi(pi.re(), MPFR_RNDN);
    mpfr_set_zero(pi.im(), 1);
    q = apply(mpc_cos, z * pi) / p;
  }
};
inline complex_number lucasl(const complex_number& z) {
  const golden_terms g(z);
  return g.p + g.q;
}
inline complex_number fibonacci(const complex_number& z) {
  const golden_terms g(z);
  return (g.p - g.q) / apply(mpc_sqrt, complex_number(5));
}
inline complex_number abs(const complex_number& z) {
  complex_number size;
  mpc_abs(size.re(), z.get(), MPFR_RNDN);
  mpfr_set_zero(size.im(), 1);
  return size;
}
inline complex_number arg(const complex_number& z) {
  complex_number angle;
  mpc_arg(angle.re(), z.get(), MPFR_RNDN);
  mpfr_set_zero(angle.im(), 1);
  return angle;
}
inline complex_number abssquare(const complex_number& z) {
  const complex_number size = abs(z);
  return size * size;
}

inline const std::vector<entry>& all() {
  static const std::vector<entry> entries = {
      {1, "sin", plainly<mpc_sin>, 3, 3, 3, 3},
      {2, "cos", plainly<mpc_cos>, 3, 3, 3, 3},
      {3, "tan", plainly<mpc_tan>, 3, 3, 3, 3},
      {5, "csc", reciprocal<mpc_sin>, 3, 3},
      {6, "sec", reciprocal<mpc_cos>, 3, 3},
      {7, "cot", reciprocal<mpc_tan>, 3, 3},
      {9, "sinh", plainly<mpc_sinh>, 3, 3, 3, 3},
      {10, "cosh", plainly<mpc_cosh>, 3, 3, 3, 3},
      {11, "tanh", plainly<mpc_tanh>, 3, 3, 3, 3},
      {13, "csch", reciprocal<mpc_sinh>, 3, 3},
      {14, "sech", reciprocal<mpc_cosh>, 3, 3},
      {15, "coth", reciprocal<mpc_tanh>, 3, 3},
      {17, "asin", asin, 3, 3, 3, 3},
      {18, "acos", acos, 3, 3, 3, 3},
      {19, "atan", atan, 3, 3},
      {21, "acsc", of_reciprocal<asin>, 3, 3, 0, 0, true},
      {22, "asec", of_reciprocal<acos>, 3, 3, 0, 0, true},
      {23, "acot", of_reciprocal<atan>, 3, 3, 0, 0, true},
      {25, "asinh", asinh, 3, 3, 3, 3},
      {26, "acosh", acosh, 3, 3, 3, 3},
      {27, "atanh", atanh, 3, 3},
      {29, "acsch", of_reciprocal<asinh>, 3, 3, 0, 0, true},
      {30, "asech", of_reciprocal<acosh>, 3, 3, 0, 0, true},
      {31, "acoth", of_reciprocal<atanh>, 3, 3, 0, 0, true},
      {32, "exp", plainly<mpc_exp>, 3, 3, 3, 3},
      {33, "expm1", expm1, 3, 3},
      {34, "log", log, 3, 3, 3, 3},
      {35, "log1p", log1p, 3, 3},
      {36, "log2", log_to<2>, 3, 3},
      {37, "log10", log_to<10>, 3, 3},
      {38, "abs", abs, 1, 1},
      {39, "arg", arg, 1, 1},
      {44, "sign", sign, 3, 3},
      {56, "square", plainly<mpc_sqr>, 3, 3},
      {57, "sqrt", sqrt, 3, 3, 3, 3},
      {59, "rsqrt", rsqrt, 3, 3, 3, 3},
      {60, "recip", recip, 3, 3},
      {67, "sinc", sinc, 4, 4},
      {68, "fibonacci", fibonacci, 4, 4, 0, 0, true},
      {69, "lucasl", lucasl, 4, 4, 0, 0, true},
      {70, "gudermannian", gudermannian, 4, 4, 0, 0, true},
      {71, "inversegudermannian", inversegudermannian, 4, 4, 0, 0, true},
      {72, "haversine", haversine, 4, 4},
      {73, "inversehaversine", inversehaversine, 4, 4, 0, 0, true},
      {80, "logistic", logistic, 4, 4},
      {82, "abssquare", abssquare, 4, 4},
  };
  return entries;
}

}  // namespace complex_functions
