// Special values, cuts, checks and symmetries of the complex functions.
//
// Faults it is meant to catch: a special case of an infinity, a NaN or a signed zero missing or in the wrong order; the wrong side
// of a cut for either zero; a function that is checked where it should not be, or the other way round; a real argument that loses
// its exact value; a symmetry lost to a sign.
#include <gtest/gtest.h>

#include <cfenv>
#include <cmath>
#include <random>
#include <vector>

#include "Arithmetic/unary_table.h"
#include "velorim/complex_functions.h"

namespace {

constexpr double inf = std::numeric_limits<double>::infinity(),
                 nan = std::numeric_limits<double>::quiet_NaN();
constexpr double pi = 3.141592653589793, half_pi = 1.5707963267948966;
constexpr uint32_t check = MACHFUNC_CHECK_FP;

using entry = int32_t (*)(mcomplex*, uint32_t, mreal, mreal);

/// A function at z, and whether the check refuses the value. A sign of zero counts where `signs` says so.
struct special_case {
  const char* name;
  entry function;
  mcomplex z, w;
  bool fails = false;
  bool signs = false;
};

const double acosh2 = std::acosh(2.0), atanh_half = std::atanh(0.5);

const special_case cases[] = {
    {"exp", s_machfunc_c_exp, {-inf, nan}, {0, 0}},
    {"exp", s_machfunc_c_exp, {-inf, inf}, {0, 0}},
    {"exp", s_machfunc_c_exp, {inf, inf}, {inf, nan}, true},
    {"exp", s_machfunc_c_exp, {inf, 0}, {inf, 0}, true},
    {"exp", s_machfunc_c_exp, {inf, 3}, {-inf, inf}, true},
    {"exp", s_machfunc_c_exp, {nan, -0.0}, {nan, -0.0}, true, true},
    {"exp", s_machfunc_c_exp, {0, 0}, {1, 0}},
    {"exp", s_machfunc_c_exp, {800, 0.5}, {inf, inf}, true},
    {"log", s_machfunc_c_log, {0, 0}, {-inf, 0}, true},
    {"log", s_machfunc_c_log, {inf, 0}, {inf, 0}},
    {"log", s_machfunc_c_log, {-inf, -0.0}, {inf, pi}},
    {"log", s_machfunc_c_log, {inf, 1}, {inf, 0}, true},
    {"log", s_machfunc_c_log, {-1, 0}, {0, pi}},
    {"log", s_machfunc_c_log, {-1, -0.0}, {0, pi}},
    {"log", s_machfunc_c_log, {1, -0.0}, {0, 0}, false, true},
    {"log", s_machfunc_c_log, {nan, 1}, {nan, nan}, true},
    {"log1p", s_machfunc_c_log1p, {-1, 0}, {-inf, 0}, true},
    {"log1p", s_machfunc_c_log1p, {nan, 0}, {nan, nan}, true},
    {"log1p", s_machfunc_c_log1p, {inf, 0}, {inf, 0}},
    {"log1p", s_machfunc_c_log1p, {nan, 1}, {nan, nan}},
    {"log1p", s_machfunc_c_log1p, {-2, -0.0}, {0, pi}},
    {"log2", s_machfunc_c_log2, {8, 0}, {3, 0}},
    {"log2", s_machfunc_c_log2, {-8, -0.0}, {3, 4.532360141827194}},
    {"log2", s_machfunc_c_log2, {inf, 0}, {inf, 0}},
    {"log2", s_machfunc_c_log2, {0, 0}, {-inf, 0}, true},
    {"log10", s_machfunc_c_log10, {1000, -0.0}, {3, 0}},
    {"log10", s_machfunc_c_log10, {-1000, 0}, {3, 1.3643763538418412}},
    {"sqrt", s_machfunc_c_sqrt, {-4, 0}, {0, 2}},
    {"sqrt", s_machfunc_c_sqrt, {-4, -0.0}, {0, 2}},
    {"sqrt", s_machfunc_c_sqrt, {9, -0.0}, {3, 0}, false, true},
    {"sqrt", s_machfunc_c_sqrt, {-0.0, 0}, {0, 0}, false, true},
    {"sqrt", s_machfunc_c_sqrt, {0, 8}, {2, 2}},
    {"sqrt", s_machfunc_c_sqrt, {0, -3}, {std::sqrt(1.5), -std::sqrt(1.5)}},
    {"sqrt", s_machfunc_c_sqrt, {inf, 0}, {inf, 0}},
    {"sqrt", s_machfunc_c_sqrt, {nan, nan}, {nan, nan}},
    {"sqrt",
     s_machfunc_c_sqrt,
     {0x1p1023, 0x1p1023},
     {0x1.6a09e667f3bcdp+511 * 1.0986841134678098, 0x1.6a09e667f3bcdp+511 * 0.45508986056222733}},
    {"rsqrt", s_machfunc_c_rsqrt, {0, 0}, {inf, -inf}, true},
    {"rsqrt", s_machfunc_c_rsqrt, {4, -0.0}, {0.5, 0}, false, true},
    {"rsqrt", s_machfunc_c_rsqrt, {-4, -0.0}, {0, -0.5}},
    {"rsqrt", s_machfunc_c_rsqrt, {nan, 0}, {nan, 0}},
    {"recip", s_machfunc_c_recip, {0, 0}, {inf, nan}, true},
    {"recip", s_machfunc_c_recip, {inf, nan}, {0, 0}},
    {"recip", s_machfunc_c_recip, {0, 2}, {0, -0.5}},
    {"recip", s_machfunc_c_recip, {0x1p1023, 0x1p1023}, {0x1p-1024, -0x1p-1024}},
    {"square", s_machfunc_c_square, {3, 4}, {-7, 24}},
    {"square", s_machfunc_c_square, {1e200, 0}, {inf, 0}, true},
    {"conj", s_machfunc_c_conj, {1, 0.0}, {1, 0}, false, true},
    {"conj", s_machfunc_c_conj, {1, -0.0}, {1, 0}, false, true},
    {"conj", s_machfunc_c_conj, {nan, inf}, {nan, -inf}},
    {"minus", s_machfunc_c_minus, {0, -0.0}, {-0.0, 0}, false, true},
    {"sign", s_machfunc_c_sign, {-0.0, 0}, {0, 0}},
    {"sign", s_machfunc_c_sign, {0, -7}, {0, -1}},
    {"sign", s_machfunc_c_sign, {inf, 0}, {1, 0}},
    {"sign", s_machfunc_c_sign, {3e300, -4e300}, {0.6, -0.8}},
    {"fracpart", s_machfunc_c_fracpart, {-2.25, 3.75}, {-0.25, 0.75}},
    {"fracpart", s_machfunc_c_fracpart, {-2, inf}, {-0.0, 0}, false, true},
    {"mod1", s_machfunc_c_mod1, {-0.25, 0}, {0.75, 0}},
    {"mod1", s_machfunc_c_mod1, {-1e-20, 0}, {0, 0}},
    {"mod1", s_machfunc_c_mod1, {2.75, -1.25}, {-0.25, -0.25}},
    {"mod1", s_machfunc_c_mod1, {inf, 0}, {nan, 0}},
    {"mod1", s_machfunc_c_mod1, {nan, 1}, {nan, 1}, true},
    {"sinh", s_machfunc_c_sinh, {inf, nan}, {inf, nan}, true},
    {"sinh", s_machfunc_c_sinh, {-0.0, inf}, {-0.0, nan}, true, true},
    {"sinh", s_machfunc_c_sinh, {-inf, 0}, {-inf, 0}, true},
    {"cosh", s_machfunc_c_cosh, {-inf, inf}, {inf, nan}, true},
    {"cosh", s_machfunc_c_cosh, {0, nan}, {nan, 0}, true},
    {"cosh", s_machfunc_c_cosh, {-inf, 0}, {inf, 0}, true},
    {"cosh", s_machfunc_c_cosh, {0, 0}, {1, 0}},
    {"tanh", s_machfunc_c_tanh, {-inf, 1}, {-1, 0}},
    {"tanh", s_machfunc_c_tanh, {inf, 1}, {1, 0}, false, true},
    {"tanh", s_machfunc_c_tanh, {inf, 2}, {1, -0.0}, false, true},
    {"tanh", s_machfunc_c_tanh, {inf, nan}, {1, 0}},
    {"tanh", s_machfunc_c_tanh, {nan, 0}, {nan, 0}, true},
    {"tanh", s_machfunc_c_tanh, {-1000, -2}, {-1, -0.0}, false, true},
    {"tan", s_machfunc_c_tan, {2, 1000}, {0, 1}},
    {"sin", s_machfunc_c_sin, {0, inf}, {0, inf}, true},
    {"cos", s_machfunc_c_cos, {inf, 0}, {nan, 0}, true},
    {"csc", s_machfunc_c_csc, {0, 800}, {0, 0}},
    {"csc", s_machfunc_c_csc, {1, -inf}, {0, 0}},
    {"csc", s_machfunc_c_csc, {0, 0}, {inf, nan}, true},
    {"sec", s_machfunc_c_sec, {nan, 800}, {0, 0}},
    {"csch", s_machfunc_c_csch, {-800, 3}, {0, 0}},
    {"sech", s_machfunc_c_sech, {800, inf}, {0, 0}},
    {"sech", s_machfunc_c_sech, {0, 0}, {1, 0}},
    {"cot", s_machfunc_c_cot, {0, 0}, {inf, nan}, true},
    {"coth", s_machfunc_c_coth, {1000, 1}, {1, 0}},
    {"asin", s_machfunc_c_asin, {2, 0}, {half_pi, -acosh2}},
    {"asin", s_machfunc_c_asin, {2, -0.0}, {half_pi, -acosh2}},
    {"asin", s_machfunc_c_asin, {-2, -0.0}, {-half_pi, acosh2}},
    {"asin", s_machfunc_c_asin, {1, 0}, {half_pi, 0}},
    {"asin", s_machfunc_c_asin, {-0.5, -0.0}, {std::asin(-0.5), 0}, false, true},
    {"asin", s_machfunc_c_asin, {nan, 0}, {nan, 0}},
    {"asin", s_machfunc_c_asin, {inf, 0}, {half_pi, -inf}},
    {"acos", s_machfunc_c_acos, {2, 0}, {0, acosh2}},
    {"acos", s_machfunc_c_acos, {-2, -0.0}, {pi, -acosh2}},
    {"acos", s_machfunc_c_acos, {0.5, -0.0}, {std::acos(0.5), 0}, false, true},
    {"acos", s_machfunc_c_acos, {-1, 0}, {pi, 0}},
    {"asinh", s_machfunc_c_asinh, {0, 2}, {acosh2, half_pi}},
    {"asinh", s_machfunc_c_asinh, {-0.0, -2}, {-acosh2, -half_pi}},
    {"acosh", s_machfunc_c_acosh, {2, 0}, {acosh2, 0}},
    {"acosh", s_machfunc_c_acosh, {-2, -0.0}, {acosh2, pi}},
    {"acosh", s_machfunc_c_acosh, {0.5, 0}, {0, std::acos(0.5)}},
    {"atanh", s_machfunc_c_atanh, {2, 0}, {atanh_half, -half_pi}},
    {"atanh", s_machfunc_c_atanh, {2, -0.0}, {atanh_half, -half_pi}},
    {"atanh", s_machfunc_c_atanh, {-2, 0}, {-atanh_half, half_pi}},
    {"atanh", s_machfunc_c_atanh, {1, 0}, {inf, 0}, true},
    {"atanh", s_machfunc_c_atanh, {1e300, 1e-300}, {1e-300, half_pi}},
    {"atan", s_machfunc_c_atan, {0, 1}, {0, inf}, true},
    {"atan", s_machfunc_c_atan, {1, 0}, {pi / 4, 0}},
    {"acot", s_machfunc_c_acot, {0, 0}, {half_pi, 0}},
    {"acot", s_machfunc_c_acot, {-0.0, -0.0}, {half_pi, 0}},
    {"acoth", s_machfunc_c_acoth, {0, 0}, {0, half_pi}},
    {"acsc", s_machfunc_c_acsc, {0, 0}, {nan, nan}, true},
    {"asec", s_machfunc_c_asec, {1, 0}, {0, 0}},
    {"acsch", s_machfunc_c_acsch, {0, 1}, {0, -half_pi}},
    {"sinc", s_machfunc_c_sinc, {0, -0.0}, {1, 0}},
    {"fibonacci", s_machfunc_c_fibonacci, {10, 0}, {55, 0}},
    {"lucasl", s_machfunc_c_lucasl, {10, 0}, {123, 0}},
    {"gudermannian", s_machfunc_c_gudermannian, {0, 0}, {0, 0}},
    {"inversegudermannian", s_machfunc_c_inversegudermannian, {0, -0.0}, {0, -0.0}, false, true},
    {"haversine", s_machfunc_c_haversine, {pi, 0}, {1, 0}},
    {"inversehaversine", s_machfunc_c_inversehaversine, {1, 0}, {pi, 0}},
    {"logistic", s_machfunc_c_logistic, {0, 0}, {0.5, 0}},
    {"logistic", s_machfunc_c_logistic, {-inf, 0}, {0, 0}},
    {"logistic", s_machfunc_c_logistic, {nan, 0}, {nan, nan}, true},
};

void expect_part(double expected, double got, bool signs) {
  if (std::isnan(expected)) {
    EXPECT_TRUE(std::isnan(got)) << got;
  } else if (std::isinf(expected) || expected == 0) {
    // What is zero but for rounding (the sine of pi) is not zero.
    if (signs || std::isinf(expected)) {
      EXPECT_EQ(expected, got);
      EXPECT_EQ(std::signbit(expected), std::signbit(got));
    } else {
      EXPECT_NEAR(expected, got, 1.5e-16);
    }
  } else {
    EXPECT_NEAR(expected, got, 1e-15 * std::fabs(expected));
  }
}

TEST(ComplexSpecialValues, ValuesAndChecks) {
  for (const special_case& c : cases) {
    SCOPED_TRACE(testing::Message() << c.name << " of " << c.z.re << ", " << c.z.im);
    mcomplex w = {-77, -77};
    EXPECT_EQ(0, c.function(&w, 0, c.z.re, c.z.im));
    expect_part(c.w.re, w.re, c.signs);
    expect_part(c.w.im, w.im, c.signs);
    mcomplex checked = {-77, -77};
    EXPECT_EQ(c.fails ? 1 : 0, c.function(&checked, check, c.z.re, c.z.im));
    const mcomplex expected = c.fails ? mcomplex{-77, -77} : w;
    if (!std::isnan(expected.re)) {
      EXPECT_EQ(expected.re, checked.re);
    }
    if (!std::isnan(expected.im)) {
      EXPECT_EQ(expected.im, checked.im);
    }
  }
}

TEST(ComplexSpecialValues, RealAndIntegerResults) {
  mreal r = -7;
  EXPECT_EQ(0, s_machfunc_c_abs(&r, check, 3, -4));
  EXPECT_EQ(5, r);
  EXPECT_EQ(1, s_machfunc_c_abs(&r, check, inf, nan));
  EXPECT_EQ(0, s_machfunc_c_abs(&r, 0, nan, -inf));
  EXPECT_EQ(inf, r);
  EXPECT_EQ(0, s_machfunc_c_abs(&r, check, 3e300, 4e300));
  EXPECT_DOUBLE_EQ(5e300, r);
  EXPECT_EQ(0, s_machfunc_c_arg(&r, check, -0.0, -0.0));
  EXPECT_EQ(0, r);
  EXPECT_FALSE(std::signbit(r));
  EXPECT_EQ(0, s_machfunc_c_arg(&r, check, -1, -0.0));
  EXPECT_DOUBLE_EQ(-pi, r);
  EXPECT_EQ(0, s_machfunc_c_arg(&r, check, nan, 1));
  EXPECT_TRUE(std::isnan(r));
  EXPECT_EQ(0, s_machfunc_c_re(&r, check, inf, 1));
  EXPECT_EQ(inf, r);
  EXPECT_EQ(0, s_machfunc_c_im(&r, check, 2, -0.0));
  EXPECT_TRUE(r == 0 && std::signbit(r));
  r = -7;
  EXPECT_EQ(1, s_machfunc_c_abssquare(&r, check, nan, inf));
  EXPECT_EQ(1, s_machfunc_c_abssquare(&r, check, 1e200, 0));
  EXPECT_EQ(-7, r);
  EXPECT_EQ(0, s_machfunc_c_abssquare(&r, 0, nan, -inf));
  EXPECT_EQ(inf, r);
  mint n = -7;
  for (const auto& [x, y, expected] : {std::tuple{0.0, -0.0, 0}, {0.0, 1e-320, 1}, {nan, 0.0, 1}}) {
    EXPECT_EQ(0, s_machfunc_c_unitize(&n, ~0u, x, y));
    EXPECT_EQ(expected, n);
  }
}

/// Purely imaginary where the cosine is above a half, and checked beyond that only.
TEST(ComplexSpecialValues, GudermannianOnTheImaginaryAxis) {
  for (const double y : {1e-300, 1e-9, 0.5, 1.0, -0.7, 2 * pi}) {
    mcomplex w{};
    EXPECT_EQ(0, s_machfunc_c_gudermannian(&w, check, 0, y));
    EXPECT_EQ(0, w.re);
    EXPECT_NEAR(std::asinh(std::tan(y)), w.im, 2e-15 * std::fabs(w.im)) << y;
  }
  mcomplex w{};
  EXPECT_EQ(1, s_machfunc_c_gudermannian(&w, check, 0, inf));
  EXPECT_EQ(1, s_machfunc_c_gudermannian(&w, check, nan, 1));
  EXPECT_EQ(0, s_machfunc_c_gudermannian(&w, check, -1, nan));
}

/// What is finite raises nothing, so that a run judged by its flags passes: scaling keeps overflow away from the results.
TEST(ComplexSpecialValues, FiniteResultsPassARunJudgedByFlags) {
  const std::pair<int32_t, mcomplex> passing[] = {
      {MachFunc_log, {1.5e308, 1.5e308}}, {MachFunc_sqrt, {1.5e308, -1.5e308}},
      {MachFunc_csc, {0, 800}},           {MachFunc_tanh, {1000, 1}},
      {MachFunc_tan, {1, -1000}},         {MachFunc_recip, {1e300, 1e300}},
      {MachFunc_asin, {1e300, 1e-300}},   {MachFunc_acosh, {-1e300, 1e300}},
      {MachFunc_atanh, {1e300, 1e300}},   {MachFunc_sign, {1e308, 1e308}},
      {MachFunc_logistic, {2000, 1}},     {MachFunc_exp, {-1000, 1}},
  };
  for (const auto& [number, z] : passing) {
    const std::vector<mcomplex> source(11, z);
    std::vector<mcomplex> result(11);
    EXPECT_EQ(0, MNumericArray_getUnaryVectorMachFunc(number, MNumericArrayTypeComplexReal64)(
                     result.data(), source.data(), 11, UnitIncrements, check))
        << number;
  }
}

/// f(conj z) = conj f(z) off the axes for every function, f(-z) = -f(z) for the odd ones, bit for bit.
TEST(ComplexSymmetries, ConjugateAndOpposite) {
  std::mt19937_64 random(3);
  std::normal_distribution<double> part(0, 3);
  const std::vector<int32_t> odd = {1,  3,  5,  7,  9,  11, 13, 15, 17, 19, 21,
                                    23, 25, 27, 29, 31, 43, 44, 52, 60, 70};
  for (const auto& row : unary_table::rows) {
    if (unary_table::on_complexes(row) != '=' || row.number == MachFunc_conj) continue;
    const auto f = MNumericArray_getUnaryScalarMachFunc(row.number, MNumericArrayTypeComplexReal64);
    const bool is_odd = std::find(odd.begin(), odd.end(), row.number) != odd.end();
    for (int i = 0; i < 500; ++i) {
      const mcomplex z = {part(random), part(random)}, mirrored = {z.re, -z.im}, opposite = {-z.re, -z.im};
      mcomplex w, of_mirrored, of_opposite;
      f(&w, &z, 0);
      f(&of_mirrored, &mirrored, 0);
      f(&of_opposite, &opposite, 0);
      ASSERT_TRUE(w.re == of_mirrored.re && w.im == -of_mirrored.im)
          << row.name << " " << z.re << " " << z.im;
      if (is_odd) {
        ASSERT_TRUE(w.re == -of_opposite.re && w.im == -of_opposite.im)
            << row.name << " " << z.re << " " << z.im;
      }
    }
  }
}

}  // namespace
