// Every real function of the catalogue beside its exact value: the oracle, where it is compared, and the bound that it keeps.
#pragma once

#include <functional>
#include <ostream>
#include <vector>

#include "Includes/element_types.h"
#include "support/oracle.h"
#include "velorim/machine_functions.h"

namespace real_functions {

using oracle::number;

struct interval {
  double low, high;
};

struct entry {
  int32_t number_of;
  const char* name;
  std::function<number(const number&)> exact;
  std::vector<interval> where;  // arguments are drawn from here; both ends are tried
  double bound64, bound32;      // largest error in units in the last place
  double most32 = 0;            // Real32 arguments keep to this magnitude and above the next; 0 for no limit
  double least32 = 0;
};

inline void PrintTo(const entry& e, std::ostream* out) { *out << e.name; }

/// The terms p = golden^x and q = cos(pi x) / p of the real Fibonacci and Lucas numbers, with the constants of T
/// and the argument of the cosine rounded to T, both as they are defined.
template <class T> struct golden_terms {
  number p, q;
  explicit golden_terms(const number& x) {
    const T x_of_type = static_cast<T>(mpfr_get_d(x.get(), MPFR_RNDN));
    p = oracle::apply(mpfr_pow, number(static_cast<T>(1.618033988749895)), x);
    q = oracle::apply(mpfr_cos, number(static_cast<T>(3.141592653589793) * x_of_type)) / p;
  }
  number fibonacci() const { return (p - q) / number(static_cast<T>(2.23606797749979)); }
  number lucas() const { return p + q; }
};

inline std::vector<entry> all() {
  using oracle::apply;
  const auto f = [](oracle::mpfr_unary g) { return [g](const number& x) { return apply(g, x); }; };
  const auto of_reciprocal = [](oracle::mpfr_unary g) {
    return [g](const number& x) { return apply(g, number(1) / x); };
  };
  const auto gamma_log = [](const number& x) {
    number r;
    int sign;
    mpfr_lgamma(r.get(), &sign, x.get(), MPFR_RNDN);
    return r;
  };
  const double big = 1.7e308;
  const std::vector<interval> everywhere = {{-big, big}, {-1e4, 1e4},     {-20, 20},
                                            {-1, 1},     {-1e-37, 1e-37}, {-1e-300, 1e-300}};
  const std::vector<interval> positive = {{0, big}, {0, 20}, {0.5, 2}, {0, 1e-300}};
  const std::vector<interval> unit = {{-1, 1}, {-0.1, 0.1}, {-1e-37, 1e-37}, {-1e-300, 1e-300}};
  const std::vector<interval> beyond_unit = {{1, 20}, {-20, -1}, {1, big}};
  return {
      {1, "sin", f(mpfr_sin), everywhere, 1, 1},
      {2, "cos", f(mpfr_cos), everywhere, 1, 1},
      {3, "tan", f(mpfr_tan), everywhere, 1, 1},
      {5, "csc", f(mpfr_csc), everywhere, 2, 2},
      {6, "sec", f(mpfr_sec), everywhere, 2, 2},
      {7, "cot", f(mpfr_cot), everywhere, 2, 2},
      {9, "sinh", f(mpfr_sinh), everywhere, 1, 1},
      {10, "cosh", f(mpfr_cosh), everywhere, 1, 1},
      {11, "tanh", f(mpfr_tanh), everywhere, 1, 1},
      {13, "csch", f(mpfr_csch), {{-89.7, 89.7}, {-710.8, 710.8}, {-1, 1}}, 2, 2, 89.76},
      {14, "sech", f(mpfr_sech), {{-89.7, 89.7}, {-710.8, 710.8}, {-1, 1}}, 2, 2, 89.76},
      {15, "coth", f(mpfr_coth), everywhere, 2, 2},
      {17, "asin", f(mpfr_asin), unit, 1, 1},
      {18, "acos", f(mpfr_acos), unit, 1, 1},
      {19, "atan", f(mpfr_atan), everywhere, 1, 1},
      {21, "acsc", of_reciprocal(mpfr_asin), {{1.25, 20}, {-20, -1.25}, {2, big}}, 2, 2},
      {22, "asec", of_reciprocal(mpfr_acos), {{1.25, 20}, {-20, -1.25}, {2, big}}, 2, 2},
      {23, "acot",
       [](const number& x) {
         return apply(mpfr_atan, number(1) / apply(mpfr_abs, x)) * number(mpfr_sgn(x.get()) < 0 ? -1 : 1);
       },
       everywhere, 2, 2},
      {25, "asinh", f(mpfr_asinh), everywhere, 1, 1},
      {26, "acosh", f(mpfr_acosh), {{1, 20}, {1, big}}, 1, 1},
      {27, "atanh", f(mpfr_atanh), unit, 1, 1},
      {29,
       "acsch",
       of_reciprocal(mpfr_asinh),
       {{-big, -3e-308}, {3e-308, big}, {-20, -0.01}, {0.01, 20}},
       2,
       2,
       0,
       1e-37},
      {30, "asech", of_reciprocal(mpfr_acosh), {{3e-308, 0.8}, {1e-37, 1e-30}}, 2, 2, 0, 1e-37},
      {31, "acoth", of_reciprocal(mpfr_atanh), {{1.25, 20}, {-20, -1.25}, {2, big}}, 2.5, 2.5},
      {32, "exp", f(mpfr_exp), everywhere, 1, 1},
      {33, "expm1", f(mpfr_expm1), everywhere, 1, 1},
      {34, "log", f(mpfr_log), positive, 1, 1},
      {35, "log1p", f(mpfr_log1p), {{-1, big}, {-1, 1}, {-1e-300, 1e-300}}, 1, 1},
      {36, "log2", f(mpfr_log2), positive, 1, 1},
      {37, "log10", f(mpfr_log10), positive, 1, 1},
      {56, "square", f(mpfr_sqr), everywhere, 0.5, 0.5},
      {57, "sqrt", f(mpfr_sqrt), positive, 0.5, 0.5},
      {58, "cbrt", f(mpfr_cbrt), everywhere, 1, 1},
      {59, "rsqrt", [](const number& x) { return number(1) / apply(mpfr_sqrt, x); }, positive, 1.5, 1.5},
      {60, "recip", [](const number& x) { return number(1) / x; }, everywhere, 0.5, 0.5},
      {67, "sinc", [](const number& x) { return mpfr_zero_p(x.get()) ? number(1) : apply(mpfr_sin, x) / x; },
       everywhere, 1.75, 1.75},
      {70, "gudermannian",
       [](const number& x) { return number(2) * apply(mpfr_atan, apply(mpfr_tanh, x / number(2))); },
       everywhere, 2.5, 2.5},
      {71,
       "inversegudermannian",
       [](const number& x) { return number(2) * apply(mpfr_atanh, apply(mpfr_tan, x / number(2))); },
       {{-1, 1}},
       3,
       3},
      {72, "haversine", [](const number& x) { return apply(mpfr_sqr, apply(mpfr_sin, x / number(2))); },
       everywhere, 2.75, 2.75},
      {73,
       "inversehaversine",
       [](const number& x) { return number(2) * apply(mpfr_asin, apply(mpfr_sqrt, x)); },
       {{0, 0.8}, {0, 1e-300}},
       2,
       2},
      {74, "erfc", f(mpfr_erfc), everywhere, 1, 1},
      {75, "erf", f(mpfr_erf), everywhere, 1, 1},
      {76, "gamma", f(mpfr_gamma), {{0, 171.6}, {0, 1e-300}, {-30, 30}, {-180, 0}}, 1, 1},
      {77, "loggamma", gamma_log, {{5e-324, 2.5e305}, {0.01, 20}, {0.5, 2.5}, {1e-300, 1e-290}}, 1, 1},
      {80, "logistic",
       [](const number& x) { return number(1) / (number(1) + apply(mpfr_exp, number(0) - x)); }, everywhere,
       2.5, 2.5},
  };
}

}  // namespace real_functions
