/* Machine functions on one number: s_machfunc_i_<name> for mint, s_machfunc_d_<name> for mreal.
 *
 * Each does for its argument what the catalogue's scalar kernel of the same function does
 * (machine_functions.h), flags included.
 *  result   written on success only, unless a comment says otherwise; mint * where the function gives an
 *           integer.
 *  flags    MACHFUNC_CHECK_INTEGER for integer arguments and integer results, MACHFUNC_CHECK_FP for the others.
 *  returns  0, or 1 on failure.
 * Threads: any. A floating-point function may raise the exception flags of the calling thread. */
#ifndef VELORIM_SCALAR_FUNCTIONS_H
#define VELORIM_SCALAR_FUNCTIONS_H

#include <velorim/machine_functions.h>

VLM_BEGIN_DECLS

/** Fibonacci numbers F(0) = 0, F(1) = 1, ... F(93), and Lucas numbers L(0) = 2, L(1) = 1, ... L(92); the last
 *  ones use the full unsigned width. */
extern const uint64_t fibonacci_table[94];
extern const uint64_t lucasl_table[93];

/** Sine and cosine of one angle in radians, the values of s_machfunc_d_sin and s_machfunc_d_cos. Returns 0. */
int32_t SinCos(mreal* sine, mreal* cosine, mreal x) VLM_NOEXCEPT;
/** Hyperbolic sine and cosine of x under flags. Returns 0, or 1 with nothing stored if either fails. */
int32_t SinhCosh(mreal* sinh_, mreal* cosh_, uint32_t flags, mreal x) VLM_NOEXCEPT;

/* Integers. Always fail, whatever the flags: log2, log10, arg, intexp10, fibonacci, lucasl, gamma outside
 * their domain. */
int32_t s_machfunc_i_log2(mint* result, mint x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_i_log10(mint* result, mint x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_i_abs(mint* result, mint x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_i_arg(mint* result, mint x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_i_conj(mint* result, mint x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_i_im(mint* result, mint x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_i_re(mint* result, mint x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_i_minus(mint* result, mint x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_i_sign(mint* result, mint x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_i_pos(mint* result, mint x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_i_neg(mint* result, mint x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_i_npos(mint* result, mint x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_i_nneg(mint* result, mint x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_i_round(mint* result, mint x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_i_floor(mint* result, mint x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_i_ceiling(mint* result, mint x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_i_fracpart(mint* result, mint x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_i_intpart(mint* result, mint x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_i_evenq(mint* result, mint x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_i_oddq(mint* result, mint x, uint32_t flags) VLM_NOEXCEPT;
/** On overflow with the check on it has stored the wrapped product before it returns 1. */
int32_t s_machfunc_i_square(mint* result, mint x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_i_bitcount(mint* result, mint x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_i_bitnot(mint* result, mint x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_i_bitlength(mint* result, mint x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_i_intexp10(mint* result, mint x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_i_intlen10(mint* result, mint x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_i_unitstep(mint* result, mint x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_i_fibonacci(mint* result, mint x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_i_lucasl(mint* result, mint x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_i_gamma(mint* result, mint x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_i_unitize(mint* result, mint x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_i_mod1(mint* result, mint x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_i_ramp(mint* result, mint x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_i_abssquare(mint* result, mint x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_i_realabs(mint* result, mint x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_i_realsign(mint* result, mint x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_i_box(mint* result, mint x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_i_triangle(mint* result, mint x, uint32_t flags) VLM_NOEXCEPT;

/* Reals. arg always fails for a negative argument and for a NaN. */
int32_t s_machfunc_d_sin(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_cos(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_tan(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_csc(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_sec(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_cot(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_sinh(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_cosh(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_tanh(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_csch(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_sech(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_coth(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_asin(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_acos(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_atan(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_acsc(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_asec(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_acot(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_asinh(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_acosh(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_atanh(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_acsch(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_asech(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_acoth(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_exp(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_expm1(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_log(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_log1p(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_log2(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_log10(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_abs(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_arg(mint* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_conj(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_im(mint* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_re(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_minus(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_sign(mint* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_pos(mint* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_neg(mint* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_npos(mint* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_nneg(mint* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_round(mint* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_floor(mint* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_ceiling(mint* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_fracpart(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_intpart(mint* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_square(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_sqrt(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_cbrt(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_rsqrt(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_recip(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_unitstep(mint* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_sinc(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_fibonacci(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_lucasl(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_gudermannian(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_inversegudermannian(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_haversine(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_inversehaversine(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_erfc(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_erf(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_gamma(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_loggamma(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_unitize(mint* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_mod1(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_logistic(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_ramp(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_abssquare(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_realabs(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_realsign(mint* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_box(mint* result, mreal x, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_d_triangle(mreal* result, mreal x, uint32_t flags) VLM_NOEXCEPT;

VLM_END_DECLS

#endif
