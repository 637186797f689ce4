// The exported scalar entries for mreal: each is the scalar kernel of its function, with the argument by
// value.
#include "velorim/scalar_functions.h"

#include "Arithmetic/Catalogue/make_rows.h"
#include "Arithmetic/Kernels/bits.h"
#include "Arithmetic/Kernels/exponential.h"
#include "Arithmetic/Kernels/hyperbolic.h"
#include "Arithmetic/Kernels/power.h"
#include "Arithmetic/Kernels/rounding.h"
#include "Arithmetic/Kernels/sign.h"
#include "Arithmetic/Kernels/special.h"
#include "Arithmetic/Kernels/steps.h"
#include "Arithmetic/Kernels/trigonometric.h"

using namespace vlm::machine_function;

int32_t s_machfunc_d_sin(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<Sin>(result, x, flags);
}
int32_t s_machfunc_d_cos(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<Cos>(result, x, flags);
}
int32_t s_machfunc_d_tan(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<Tan>(result, x, flags);
}
int32_t s_machfunc_d_csc(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<Csc>(result, x, flags);
}
int32_t s_machfunc_d_sec(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<Sec>(result, x, flags);
}
int32_t s_machfunc_d_cot(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<Cot>(result, x, flags);
}
int32_t s_machfunc_d_sinh(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<Sinh>(result, x, flags);
}
int32_t s_machfunc_d_cosh(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<Cosh>(result, x, flags);
}
int32_t s_machfunc_d_tanh(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<Tanh>(result, x, flags);
}
int32_t s_machfunc_d_csch(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<Csch>(result, x, flags);
}
int32_t s_machfunc_d_sech(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<Sech>(result, x, flags);
}
int32_t s_machfunc_d_coth(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<Coth>(result, x, flags);
}
int32_t s_machfunc_d_asin(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<Asin>(result, x, flags);
}
int32_t s_machfunc_d_acos(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<Acos>(result, x, flags);
}
int32_t s_machfunc_d_atan(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<Atan>(result, x, flags);
}
int32_t s_machfunc_d_acsc(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<Acsc>(result, x, flags);
}
int32_t s_machfunc_d_asec(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<Asec>(result, x, flags);
}
int32_t s_machfunc_d_acot(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<Acot>(result, x, flags);
}
int32_t s_machfunc_d_asinh(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<Asinh>(result, x, flags);
}
int32_t s_machfunc_d_acosh(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<Acosh>(result, x, flags);
}
int32_t s_machfunc_d_atanh(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<Atanh>(result, x, flags);
}
int32_t s_machfunc_d_acsch(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<Acsch>(result, x, flags);
}
int32_t s_machfunc_d_asech(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<Asech>(result, x, flags);
}
int32_t s_machfunc_d_acoth(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<Acoth>(result, x, flags);
}
int32_t s_machfunc_d_exp(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<Exp>(result, x, flags);
}
int32_t s_machfunc_d_expm1(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<Expm1>(result, x, flags);
}
int32_t s_machfunc_d_log(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<Log>(result, x, flags);
}
int32_t s_machfunc_d_log1p(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<Log1p>(result, x, flags);
}
int32_t s_machfunc_d_log2(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<Log2>(result, x, flags);
}
int32_t s_machfunc_d_log10(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<Log10>(result, x, flags);
}
int32_t s_machfunc_d_abs(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<Abs>(result, x, flags);
}
int32_t s_machfunc_d_arg(mint* result, mreal x, uint32_t flags) noexcept {
  return scalar<Arg>(result, x, flags);
}
int32_t s_machfunc_d_conj(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<Conj>(result, x, flags);
}
int32_t s_machfunc_d_im(mint* result, mreal x, uint32_t flags) noexcept {
  return scalar<Im>(result, x, flags);
}
int32_t s_machfunc_d_re(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<Re>(result, x, flags);
}
int32_t s_machfunc_d_minus(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<Minus>(result, x, flags);
}
int32_t s_machfunc_d_sign(mint* result, mreal x, uint32_t flags) noexcept {
  return scalar<Sign>(result, x, flags);
}
int32_t s_machfunc_d_pos(mint* result, mreal x, uint32_t flags) noexcept {
  return scalar<Pos>(result, x, flags);
}
int32_t s_machfunc_d_neg(mint* result, mreal x, uint32_t flags) noexcept {
  return scalar<Neg>(result, x, flags);
}
int32_t s_machfunc_d_npos(mint* result, mreal x, uint32_t flags) noexcept {
  return scalar<Npos>(result, x, flags);
}
int32_t s_machfunc_d_nneg(mint* result, mreal x, uint32_t flags) noexcept {
  return scalar<Nneg>(result, x, flags);
}
int32_t s_machfunc_d_round(mint* result, mreal x, uint32_t flags) noexcept {
  return scalar<Round>(result, x, flags);
}
int32_t s_machfunc_d_floor(mint* result, mreal x, uint32_t flags) noexcept {
  return scalar<Floor>(result, x, flags);
}
int32_t s_machfunc_d_ceiling(mint* result, mreal x, uint32_t flags) noexcept {
  return scalar<Ceiling>(result, x, flags);
}
int32_t s_machfunc_d_fracpart(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<FracPart>(result, x, flags);
}
int32_t s_machfunc_d_intpart(mint* result, mreal x, uint32_t flags) noexcept {
  return scalar<IntPart>(result, x, flags);
}
int32_t s_machfunc_d_square(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<Square>(result, x, flags);
}
int32_t s_machfunc_d_sqrt(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<Sqrt>(result, x, flags);
}
int32_t s_machfunc_d_cbrt(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<Cbrt>(result, x, flags);
}
int32_t s_machfunc_d_rsqrt(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<Rsqrt>(result, x, flags);
}
int32_t s_machfunc_d_recip(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<Recip>(result, x, flags);
}
int32_t s_machfunc_d_unitstep(mint* result, mreal x, uint32_t flags) noexcept {
  return scalar<UnitStep>(result, x, flags);
}
int32_t s_machfunc_d_sinc(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<Sinc>(result, x, flags);
}
int32_t s_machfunc_d_fibonacci(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<Fibonacci>(result, x, flags);
}
int32_t s_machfunc_d_lucasl(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<LucasL>(result, x, flags);
}
int32_t s_machfunc_d_gudermannian(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<Gudermannian>(result, x, flags);
}
int32_t s_machfunc_d_inversegudermannian(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<InverseGudermannian>(result, x, flags);
}
int32_t s_machfunc_d_haversine(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<Haversine>(result, x, flags);
}
int32_t s_machfunc_d_inversehaversine(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<InverseHaversine>(result, x, flags);
}
int32_t s_machfunc_d_erfc(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<Erfc>(result, x, flags);
}
int32_t s_machfunc_d_erf(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<Erf>(result, x, flags);
}
int32_t s_machfunc_d_gamma(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<Gamma>(result, x, flags);
}
int32_t s_machfunc_d_loggamma(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<LogGamma>(result, x, flags);
}
int32_t s_machfunc_d_unitize(mint* result, mreal x, uint32_t flags) noexcept {
  return scalar<Unitize>(result, x, flags);
}
int32_t s_machfunc_d_mod1(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<Mod1>(result, x, flags);
}
int32_t s_machfunc_d_logistic(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<Logistic>(result, x, flags);
}
int32_t s_machfunc_d_ramp(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<Ramp>(result, x, flags);
}
int32_t s_machfunc_d_abssquare(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<AbsSquare>(result, x, flags);
}
int32_t s_machfunc_d_realabs(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<RealAbs>(result, x, flags);
}
int32_t s_machfunc_d_realsign(mint* result, mreal x, uint32_t flags) noexcept {
  return scalar<RealSign>(result, x, flags);
}
int32_t s_machfunc_d_box(mint* result, mreal x, uint32_t flags) noexcept {
  return scalar<Box>(result, x, flags);
}
int32_t s_machfunc_d_triangle(mreal* result, mreal x, uint32_t flags) noexcept {
  return scalar<Triangle>(result, x, flags);
}

int32_t SinCos(mreal* sine, mreal* cosine, mreal x) noexcept {
  *sine = value_of<Sin>(x);
  *cosine = value_of<Cos>(x);
  return 0;
}

int32_t SinhCosh(mreal* sinh_, mreal* cosh_, uint32_t flags, mreal x) noexcept {
  mreal s, c;
  if (scalar<Sinh>(&s, x, flags) != 0 || scalar<Cosh>(&c, x, flags) != 0) return 1;
  *sinh_ = s;
  *cosh_ = c;
  return 0;
}
