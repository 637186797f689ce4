// The exported scalar entries for mcomplex: each hands the parts of its argument to the scalar kernel of the catalogue.
#include "Arithmetic/Catalogue/catalogue.h"
#include "velorim/complex_functions.h"

namespace {

int32_t of_catalogue(int32_t number, void* result, uint32_t flags, mreal x, mreal y) {
  const mcomplex z = {x, y};
  return vlm::machine_function::unary_row(number, MNumericArrayTypeComplexReal64)
      .scalarKernel.unary(result, &z, flags);
}

}  // namespace

int32_t s_machfunc_c_sin(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return of_catalogue(MachFunc_sin, result, flags, x, y);
}
int32_t s_machfunc_c_cos(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return of_catalogue(MachFunc_cos, result, flags, x, y);
}
int32_t s_machfunc_c_tan(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return of_catalogue(MachFunc_tan, result, flags, x, y);
}
int32_t s_machfunc_c_csc(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return of_catalogue(MachFunc_csc, result, flags, x, y);
}
int32_t s_machfunc_c_sec(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return of_catalogue(MachFunc_sec, result, flags, x, y);
}
int32_t s_machfunc_c_cot(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return of_catalogue(MachFunc_cot, result, flags, x, y);
}
int32_t s_machfunc_c_sinh(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return of_catalogue(MachFunc_sinh, result, flags, x, y);
}
int32_t s_machfunc_c_cosh(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return of_catalogue(MachFunc_cosh, result, flags, x, y);
}
int32_t s_machfunc_c_tanh(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return of_catalogue(MachFunc_tanh, result, flags, x, y);
}
int32_t s_machfunc_c_csch(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return of_catalogue(MachFunc_csch, result, flags, x, y);
}
int32_t s_machfunc_c_sech(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return of_catalogue(MachFunc_sech, result, flags, x, y);
}
int32_t s_machfunc_c_coth(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return of_catalogue(MachFunc_coth, result, flags, x, y);
}
int32_t s_machfunc_c_asin(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return of_catalogue(MachFunc_asin, result, flags, x, y);
}
int32_t s_machfunc_c_acos(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return of_catalogue(MachFunc_acos, result, flags, x, y);
}
int32_t s_machfunc_c_atan(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return of_catalogue(MachFunc_atan, result, flags, x, y);
}
int32_t s_machfunc_c_acsc(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return of_catalogue(MachFunc_acsc, result, flags, x, y);
}
int32_t s_machfunc_c_asec(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return of_catalogue(MachFunc_asec, result, flags, x, y);
}
int32_t s_machfunc_c_acot(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return of_catalogue(MachFunc_acot, result, flags, x, y);
}
int32_t s_machfunc_c_asinh(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return of_catalogue(MachFunc_asinh, result, flags, x, y);
}
int32_t s_machfunc_c_acosh(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return of_catalogue(MachFunc_acosh, result, flags, x, y);
}
int32_t s_machfunc_c_atanh(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return of_catalogue(MachFunc_atanh, result, flags, x, y);
}
int32_t s_machfunc_c_acsch(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return of_catalogue(MachFunc_acsch, result, flags, x, y);
}
int32_t s_machfunc_c_asech(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return of_catalogue(MachFunc_asech, result, flags, x, y);
}
int32_t s_machfunc_c_acoth(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return of_catalogue(MachFunc_acoth, result, flags, x, y);
}
int32_t s_machfunc_c_exp(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return of_catalogue(MachFunc_exp, result, flags, x, y);
}
int32_t s_machfunc_c_expm1(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return of_catalogue(MachFunc_expm1, result, flags, x, y);
}
int32_t s_machfunc_c_log(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return of_catalogue(MachFunc_log, result, flags, x, y);
}
int32_t s_machfunc_c_log1p(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return of_catalogue(MachFunc_log1p, result, flags, x, y);
}
int32_t s_machfunc_c_log2(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return of_catalogue(MachFunc_log2, result, flags, x, y);
}
int32_t s_machfunc_c_log10(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return of_catalogue(MachFunc_log10, result, flags, x, y);
}
int32_t s_machfunc_c_abs(mreal* result, uint32_t flags, mreal x, mreal y) noexcept {
  return of_catalogue(MachFunc_abs, result, flags, x, y);
}
int32_t s_machfunc_c_arg(mreal* result, uint32_t flags, mreal x, mreal y) noexcept {
  return of_catalogue(MachFunc_arg, result, flags, x, y);
}
int32_t s_machfunc_c_conj(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return of_catalogue(MachFunc_conj, result, flags, x, y);
}
int32_t s_machfunc_c_im(mreal* result, uint32_t flags, mreal x, mreal y) noexcept {
  return of_catalogue(MachFunc_im, result, flags, x, y);
}
int32_t s_machfunc_c_re(mreal* result, uint32_t flags, mreal x, mreal y) noexcept {
  return of_catalogue(MachFunc_re, result, flags, x, y);
}
int32_t s_machfunc_c_minus(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return of_catalogue(MachFunc_minus, result, flags, x, y);
}
int32_t s_machfunc_c_sign(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return of_catalogue(MachFunc_sign, result, flags, x, y);
}
int32_t s_machfunc_c_fracpart(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return of_catalogue(MachFunc_fracpart, result, flags, x, y);
}
int32_t s_machfunc_c_square(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return of_catalogue(MachFunc_square, result, flags, x, y);
}
int32_t s_machfunc_c_sqrt(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return of_catalogue(MachFunc_sqrt, result, flags, x, y);
}
int32_t s_machfunc_c_rsqrt(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return of_catalogue(MachFunc_rsqrt, result, flags, x, y);
}
int32_t s_machfunc_c_recip(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return of_catalogue(MachFunc_recip, result, flags, x, y);
}
int32_t s_machfunc_c_sinc(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return of_catalogue(MachFunc_sinc, result, flags, x, y);
}
int32_t s_machfunc_c_fibonacci(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return of_catalogue(MachFunc_fibonacci, result, flags, x, y);
}
int32_t s_machfunc_c_lucasl(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return of_catalogue(MachFunc_lucasl, result, flags, x, y);
}
int32_t s_machfunc_c_gudermannian(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return of_catalogue(MachFunc_gudermannian, result, flags, x, y);
}
int32_t s_machfunc_c_inversegudermannian(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return of_catalogue(MachFunc_inversegudermannian, result, flags, x, y);
}
int32_t s_machfunc_c_haversine(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return of_catalogue(MachFunc_haversine, result, flags, x, y);
}
int32_t s_machfunc_c_inversehaversine(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return of_catalogue(MachFunc_inversehaversine, result, flags, x, y);
}
int32_t s_machfunc_c_unitize(mint* result, uint32_t flags, mreal x, mreal y) noexcept {
  return of_catalogue(MachFunc_unitize, result, flags, x, y);
}
int32_t s_machfunc_c_mod1(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return of_catalogue(MachFunc_mod1, result, flags, x, y);
}
int32_t s_machfunc_c_logistic(mcomplex* result, uint32_t flags, mreal x, mreal y) noexcept {
  return of_catalogue(MachFunc_logistic, result, flags, x, y);
}
int32_t s_machfunc_c_abssquare(mreal* result, uint32_t flags, mreal x, mreal y) noexcept {
  return of_catalogue(MachFunc_abssquare, result, flags, x, y);
}
