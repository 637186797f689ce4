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
  /// What the bound is multiplied with at z, for functions made in steps whose errors grow; infinite where a step leaves the type,
  /// whose largest exponent is `most`.
  double (*growth)(const entry& e, const complex_number& z, const complex_number& exact,
                   double most) = nullptr;
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
template <complex_number (*f)(const complex_number&)> complex_number reciprocal_of(const complex_number& z) {
  return complex_number(1) / f(z);
}
template <auto f> complex_number plainly(const complex_number& z) { return apply(f, z); }

/// As a quotient where the function of the oracle would take for ever.
inline complex_number tanh(const complex_number& z) {
  if (std::fabs(mpfr_get_d(z.re(), MPFR_RNDN)) < 20) return apply(mpc_tanh, z);
  return apply(mpc_sinh, z) / apply(mpc_cosh, z);
}
inline complex_number tan(const complex_number& z) { return circular<tanh>(z); }

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
  if (std::fabs(mpfr_get_d(z.re(), MPFR_RNDN)) > 2000) return complex_number(mpfr_sgn(z.re()) > 0 ? 1 : 0);
  return complex_number(1) / (complex_number(1) + apply(mpc_exp, -z));
}
inline complex_number sinc(const complex_number& z) { return apply(mpc_sin, z) / z; }
inline complex_number pi() {
  complex_number p;
  mpfr_const_pi(p.re(), MPFR_RNDN);
  mpfr_set_zero(p.im(), 1);
  return p;
}
inline complex_number half(const complex_number& z) { return z / complex_number(2); }
inline complex_number haversine(const complex_number& z) {
  const complex_number s = apply(mpc_sin, half(z));
  return s * s;
}
inline complex_number inversehaversine(const complex_number& z) { return complex_number(2) * asin(sqrt(z)); }
/// On the imaginary axis by way of the exponential that is at most 1, which says on which side of the cuts it lies.
inline complex_number gudermannian(const complex_number& z) {
  if (mpfr_zero_p(z.re())) {
    const bool upper = mpfr_sgn(z.im()) > 0;
    const complex_number e = apply(mpc_exp, upper ? -z : z);
    const complex_number g = complex_number(2) * atan(e) - half(pi());
    return upper ? -g : g;
  }
  return complex_number(2) * atan(tanh(half(z)));
}
inline complex_number inversegudermannian(const complex_number& z) {
  if (log2_magnitude(z) < -60) return z + z * z * z / complex_number(6);
  return log(tan(half(z) + pi() / complex_number(4)));
}
/// Golden^z and cos(pi z) / golden^z, with the exact golden ratio and pi.
struct golden_terms {
  complex_number p, q;
  explicit golden_terms(const complex_number& z) {
    const complex_number golden =
        (complex_number(1) + apply(mpc_sqrt, complex_number(5))) / complex_number(2);
    p = apply(mpc_exp, z * apply(mpc_log, golden));
    q = apply(mpc_cos, z * pi()) / p;
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

/// 1 and the condition number |z f'(z) / f(z)|, by a small step.
inline double condition(const entry& e, const complex_number& z, const complex_number& exact, double) {
  double worst = 0;
  for (const complex_number& step : {complex_number(1 + 0x1p-50), complex_number(1, 0x1p-50)}) {
    const complex_number there = e.exact(z * step);
    if (!oracle::is_finite(there)) return std::numeric_limits<double>::infinity();
    worst = std::max(worst,
                     std::exp2(oracle::log2_magnitude(there - exact) - oracle::log2_magnitude(exact) + 51));
  }
  return 1 + worst;
}
/// The same for functions of f(z), whose parts have to be normal numbers or zero.
template <complex_number (*f)(const complex_number&)>
double condition_through(const entry& e, const complex_number& z, const complex_number& exact, double most) {
  const complex_number v = f(z);
  const auto fits = [most](mpfr_srcptr part) {
    return mpfr_zero_p(part) || std::fabs(static_cast<double>(mpfr_get_exp(part))) < most - 1;
  };
  return fits(v.re()) && fits(v.im()) ? condition(e, z, exact, most)
                                      : std::numeric_limits<double>::infinity();
}
/// The sine has to fit.
inline double sine_fits(const entry&, const complex_number& z, const complex_number&, double most) {
  return oracle::log2_magnitude(apply(mpc_sin, z)) < most ? 1 : std::numeric_limits<double>::infinity();
}
/// Up to the limit from which on the result is defined as zero.
template <bool of_imaginary>
double below_limit(const entry&, const complex_number& z, const complex_number&, double most) {
  const double part = mpfr_get_d(of_imaginary ? z.im() : z.re(), MPFR_RNDN);
  return std::fabs(part) <= (most > 200 ? 710.8224336642239 : 89.76256)
             ? 1
             : std::numeric_limits<double>::infinity();
}
/// The terms, with the largest value of the cosine, against the result, and the rounding of their arguments.
inline double of_terms(const entry&, const complex_number& z, const complex_number& exact, double most) {
  const golden_terms g(z);
  const complex_number cosine = g.p * g.q;
  for (const complex_number& step : {g.p, g.q, cosine}) {
    if (!(oracle::log2_magnitude(step) < most)) return std::numeric_limits<double>::infinity();
  }
  const double largest_cosine = 1 + oracle::ratio(cosine, complex_number(1));
  return (oracle::ratio(g.p, exact) + largest_cosine * oracle::ratio(complex_number(1) / g.p, exact)) *
         (1 + oracle::ratio(z, complex_number(1)));
}

inline const std::vector<entry>& all() {
  static const std::vector<entry> entries = {
      {1, "sin", plainly<mpc_sin>, 2, 2, 3, 3},
      {2, "cos", plainly<mpc_cos>, 2, 2, 3, 3},
      {3, "tan", tan, 3, 3, 5, 5},
      {5, "csc", reciprocal<mpc_sin>, 3, 3, 0, 0, below_limit<true>},
      {6, "sec", reciprocal<mpc_cos>, 3, 3, 0, 0, below_limit<true>},
      {7, "cot", reciprocal_of<tan>, 3, 3},
      {9, "sinh", plainly<mpc_sinh>, 2, 2, 3, 3},
      {10, "cosh", plainly<mpc_cosh>, 2, 2, 3, 3},
      {11, "tanh", tanh, 3, 3, 5, 5},
      {13, "csch", reciprocal<mpc_sinh>, 3, 3, 0, 0, below_limit<false>},
      {14, "sech", reciprocal<mpc_cosh>, 3, 3, 0, 0, below_limit<false>},
      {15, "coth", reciprocal_of<tanh>, 3, 3},
      {17, "asin", asin, 2, 2, 3, 3},
      {18, "acos", acos, 2, 2, 3, 3},
      {19, "atan", atan, 2, 2},
      {21, "acsc", of_reciprocal<asin>, 2, 2, 0, 0, condition_through<recip>},
      {22, "asec", of_reciprocal<acos>, 2, 2, 0, 0, condition_through<recip>},
      {23, "acot", of_reciprocal<atan>, 2, 2, 0, 0, condition_through<recip>},
      {25, "asinh", asinh, 2, 2, 3, 3},
      {26, "acosh", acosh, 2, 2, 3, 3},
      {27, "atanh", atanh, 2, 2},
      {29, "acsch", of_reciprocal<asinh>, 2, 2, 0, 0, condition_through<recip>},
      {30, "asech", of_reciprocal<acosh>, 2, 2, 0, 0, condition_through<recip>},
      {31, "acoth", of_reciprocal<atanh>, 2, 2, 0, 0, condition_through<recip>},
      {32, "exp", plainly<mpc_exp>, 2, 2, 3, 3},
      {33, "expm1", expm1, 2, 2},
      {34, "log", log, 1, 1},
      {35, "log1p", log1p, 1, 1},
      {36, "log2", log_to<2>, 2, 2},
      {37, "log10", log_to<10>, 2, 2},
      {38, "abs", abs, 1, 1},
      {39, "arg", arg, 1, 1},
      {44, "sign", sign, 2, 2},
      {56, "square", plainly<mpc_sqr>, 2, 2},
      {57, "sqrt", sqrt, 2, 2, 3, 3},
      {59, "rsqrt", rsqrt, 3, 3, 4, 4},
      {60, "recip", recip, 2, 2},
      {67, "sinc", sinc, 3, 3, 0, 0, sine_fits},
      {68, "fibonacci", fibonacci, 3, 3, 0, 0, of_terms},
      {69, "lucasl", lucasl, 3, 3, 0, 0, of_terms},
      {70, "gudermannian", gudermannian, 2, 2, 0, 0, condition},
      {71, "inversegudermannian", inversegudermannian, 6, 4, 0, 0, condition},
      {72, "haversine", haversine, 3, 3},
      {73, "inversehaversine", inversehaversine, 5, 4, 0, 0, condition_through<sqrt>},
      {80, "logistic", logistic, 3, 3},
      {82, "abssquare", abssquare, 2, 2},
  };
  return entries;
}

}  // namespace complex_functions
