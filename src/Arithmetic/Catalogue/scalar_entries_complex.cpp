// The exported scalar entries for mcomplex: each is the scalar kernel of its function, with the parts of the argument by
// value.
#include "Arithmetic/Catalogue/make_rows.h"
#include "Arithmetic/Kernels/exponential.h"
#include "Arithmetic/Kernels/hyperbolic.h"
#include "Arithmetic/Kernels/power.h"
#include "Arithmetic/Kernels/rounding.h"
#include "Arithmetic/Kernels/sign.h"
#include "Arithmetic/Kernels/special.h"
#include "Arithmetic/Kernels/steps.h"
#include "Arithmetic/Kernels/trigonometric.h"
#include "velorim/complex_functions.h"

using namespace vlm::machine_function;

int32_t s_machfunc_c_sin(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return scalar<Sin>(result, mcomplex{x, y}, flags);
}
int32_t s_machfunc_c_cos(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return scalar<Cos>(result, mcomplex{x, y}, flags);
}
int32_t s_machfunc_c_tan(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return scalar<Tan>(result, mcomplex{x, y}, flags);
}
int32_t s_machfunc_c_csc(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return scalar<Csc>(result, mcomplex{x, y}, flags);
}
int32_t s_machfunc_c_sec(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return scalar<Sec>(result, mcomplex{x, y}, flags);
}
int32_t s_machfunc_c_cot(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return scalar<Cot>(result, mcomplex{x, y}, flags);
}
int32_t s_machfunc_c_sinh(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return scalar<Sinh>(result, mcomplex{x, y}, flags);
}
int32_t s_machfunc_c_cosh(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return scalar<Cosh>(result, mcomplex{x, y}, flags);
}
int32_t s_machfunc_c_tanh(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return scalar<Tanh>(result, mcomplex{x, y}, flags);
}
int32_t s_machfunc_c_csch(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return scalar<Csch>(result, mcomplex{x, y}, flags);
}
int32_t s_machfunc_c_sech(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return scalar<Sech>(result, mcomplex{x, y}, flags);
}
int32_t s_machfunc_c_coth(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return scalar<Coth>(result, mcomplex{x, y}, flags);
}
int32_t s_machfunc_c_asin(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return scalar<Asin>(result, mcomplex{x, y}, flags);
}
int32_t s_machfunc_c_acos(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return scalar<Acos>(result, mcomplex{x, y}, flags);
}
int32_t s_machfunc_c_atan(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return scalar<Atan>(result, mcomplex{x, y}, flags);
}
int32_t s_machfunc_c_acsc(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return scalar<Acsc>(result, mcomplex{x, y}, flags);
}
int32_t s_machfunc_c_asec(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return scalar<Asec>(result, mcomplex{x, y}, flags);
}
int32_t s_machfunc_c_acot(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return scalar<Acot>(result, mcomplex{x, y}, flags);
}
int32_t s_machfunc_c_asinh(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return scalar<Asinh>(result, mcomplex{x, y}, flags);
}
int32_t s_machfunc_c_acosh(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return scalar<Acosh>(result, mcomplex{x, y}, flags);
}
int32_t s_machfunc_c_atanh(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return scalar<Atanh>(result, mcomplex{x, y}, flags);
}
int32_t s_machfunc_c_acsch(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return scalar<Acsch>(result, mcomplex{x, y}, flags);
}
int32_t s_machfunc_c_asech(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return scalar<Asech>(result, mcomplex{x, y}, flags);
}
int32_t s_machfunc_c_acoth(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return scalar<Acoth>(result, mcomplex{x, y}, flags);
}
int32_t s_machfunc_c_exp(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return scalar<Exp>(result, mcomplex{x, y}, flags);
}
int32_t s_machfunc_c_expm1(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return scalar<Expm1>(result, mcomplex{x, y}, flags);
}
int32_t s_machfunc_c_log(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return scalar<Log>(result, mcomplex{x, y}, flags);
}
int32_t s_machfunc_c_log1p(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return scalar<Log1p>(result, mcomplex{x, y}, flags);
}
int32_t s_machfunc_c_log2(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return scalar<Log2>(result, mcomplex{x, y}, flags);
}
int32_t s_machfunc_c_log10(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return scalar<Log10>(result, mcomplex{x, y}, flags);
}
int32_t s_machfunc_c_abs(mreal* result, uint32_t flags, mreal x, mreal y) noexcept {
  return scalar<Abs>(result, mcomplex{x, y}, flags);
}
int32_t s_machfunc_c_arg(mreal* result, uint32_t flags, mreal x, mreal y) noexcept {
  return scalar<Arg>(result, mcomplex{x, y}, flags);
}
int32_t s_machfunc_c_conj(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return scalar<Conj>(result, mcomplex{x, y}, flags);
}
int32_t s_machfunc_c_im(mreal* result, uint32_t flags, mreal x, mreal y) noexcept {
  return scalar<Im>(result, mcomplex{x, y}, flags);
}
int32_t s_machfunc_c_re(mreal* result, uint32_t flags, mreal x, mreal y) noexcept {
  return scalar<Re>(result, mcomplex{x, y}, flags);
}
int32_t s_machfunc_c_minus(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return scalar<Minus>(result, mcomplex{x, y}, flags);
}
int32_t s_machfunc_c_sign(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return scalar<Sign>(result, mcomplex{x, y}, flags);
}
int32_t s_machfunc_c_fracpart(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return scalar<FracPart>(result, mcomplex{x, y}, flags);
}
int32_t s_machfunc_c_square(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return scalar<Square>(result, mcomplex{x, y}, flags);
}
int32_t s_machfunc_c_sqrt(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return scalar<Sqrt>(result, mcomplex{x, y}, flags);
}
int32_t s_machfunc_c_rsqrt(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return scalar<Rsqrt>(result, mcomplex{x, y}, flags);
}
int32_t s_machfunc_c_recip(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return scalar<Recip>(result, mcomplex{x, y}, flags);
}
int32_t s_machfunc_c_sinc(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return scalar<Sinc>(result, mcomplex{x, y}, flags);
}
int32_t s_machfunc_c_fibonacci(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return scalar<Fibonacci>(result, mcomplex{x, y}, flags);
}
int32_t s_machfunc_c_lucasl(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return scalar<LucasL>(result, mcomplex{x, y}, flags);
}
int32_t s_machfunc_c_gudermannian(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return scalar<Gudermannian>(result, mcomplex{x, y}, flags);
}
int32_t s_machfunc_c_inversegudermannian(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return scalar<InverseGudermannian>(result, mcomplex{x, y}, flags);
}
int32_t s_machfunc_c_haversine(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return scalar<Haversine>(result, mcomplex{x, y}, flags);
}
int32_t s_machfunc_c_inversehaversine(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return scalar<InverseHaversine>(result, mcomplex{x, y}, flags);
}
int32_t s_machfunc_c_unitize(mint* result, uint32_t flags, mreal x, mreal y) noexcept {
  return scalar<Unitize>(result, mcomplex{x, y}, flags);
}
int32_t s_machfunc_c_mod1(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return scalar<Mod1>(result, mcomplex{x, y}, flags);
}
int32_t s_machfunc_c_logistic(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return scalar<Logistic>(result, mcomplex{x, y}, flags);
}
int32_t s_machfunc_c_abssquare(mreal* result, uint32_t flags, mreal x, mreal y) noexcept {
  return scalar<AbsSquare>(result, mcomplex{x, y}, flags);
}
