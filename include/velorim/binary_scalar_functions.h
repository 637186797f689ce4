/* Machine functions of two arguments on numbers: s_machfunc_<xy>_<name>, x and y each i for mint, d for mreal, c for mcomplex.
 *
 * Each does for its arguments what the catalogue's scalar kernel of the same function and types does (MachFuncNumber2 in
 * machine_functions.h tells value and failures), flags included.
 *  result   written on success only, unless a comment says otherwise.
 *  flags    MACHFUNC_CHECK_INTEGER where the result is a mint, MACHFUNC_CHECK_FP where it is not.
 *  returns  0, or 1 on failure.
 * Threads: any. A floating-point function may raise the exception flags of the calling thread. */
#ifndef VELORIM_BINARY_SCALAR_FUNCTIONS_H
#define VELORIM_BINARY_SCALAR_FUNCTIONS_H

#include <velorim/machine_functions.h>

VLM_BEGIN_DECLS

/* s_machfunc_ii_plus, _subtract and _times store the wrapped result before they report an overflow. */

/** x + y. */
int32_t s_machfunc_ii_plus(mint* result, mint x, mint y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_id_plus(mreal* result, mint x, mreal y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_di_plus(mreal* result, mreal x, mint y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_dd_plus(mreal* result, mreal x, mreal y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_ic_plus(mcomplex* result, mint x, mcomplex y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_ci_plus(mcomplex* result, mcomplex x, mint y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_dc_plus(mcomplex* result, mreal x, mcomplex y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_cd_plus(mcomplex* result, mcomplex x, mreal y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_cc_plus(mcomplex* result, mcomplex x, mcomplex y, uint32_t flags) VLM_NOEXCEPT;

/** x - y. */
int32_t s_machfunc_ii_subtract(mint* result, mint x, mint y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_id_subtract(mreal* result, mint x, mreal y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_di_subtract(mreal* result, mreal x, mint y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_dd_subtract(mreal* result, mreal x, mreal y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_ic_subtract(mcomplex* result, mint x, mcomplex y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_ci_subtract(mcomplex* result, mcomplex x, mint y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_dc_subtract(mcomplex* result, mreal x, mcomplex y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_cd_subtract(mcomplex* result, mcomplex x, mreal y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_cc_subtract(mcomplex* result, mcomplex x, mcomplex y, uint32_t flags) VLM_NOEXCEPT;

/** x y. */
int32_t s_machfunc_ii_times(mint* result, mint x, mint y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_id_times(mreal* result, mint x, mreal y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_di_times(mreal* result, mreal x, mint y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_dd_times(mreal* result, mreal x, mreal y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_ic_times(mcomplex* result, mint x, mcomplex y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_ci_times(mcomplex* result, mcomplex x, mint y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_dc_times(mcomplex* result, mreal x, mcomplex y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_cd_times(mcomplex* result, mcomplex x, mreal y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_cc_times(mcomplex* result, mcomplex x, mcomplex y, uint32_t flags) VLM_NOEXCEPT;

/** |x - y|. */
int32_t s_machfunc_ii_abserr(mint* result, mint x, mint y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_id_abserr(mreal* result, mint x, mreal y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_di_abserr(mreal* result, mreal x, mint y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_dd_abserr(mreal* result, mreal x, mreal y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_ic_abserr(mreal* result, mint x, mcomplex y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_ci_abserr(mreal* result, mcomplex x, mint y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_dc_abserr(mreal* result, mreal x, mcomplex y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_cd_abserr(mreal* result, mcomplex x, mreal y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_cc_abserr(mreal* result, mcomplex x, mcomplex y, uint32_t flags) VLM_NOEXCEPT;

/** x modulo y, with the sign of y; always fails for y = 0. */
int32_t s_machfunc_ii_mod(mint* result, mint x, mint y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_id_mod(mreal* result, mint x, mreal y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_di_mod(mreal* result, mreal x, mint y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_dd_mod(mreal* result, mreal x, mreal y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_ic_mod(mcomplex* result, mint x, mcomplex y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_ci_mod(mcomplex* result, mcomplex x, mint y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_dc_mod(mcomplex* result, mreal x, mcomplex y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_cd_mod(mcomplex* result, mcomplex x, mreal y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_cc_mod(mcomplex* result, mcomplex x, mcomplex y, uint32_t flags) VLM_NOEXCEPT;

/** x^y. */
int32_t s_machfunc_ii_pow(mint* result, mint x, mint y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_id_pow(mreal* result, mint x, mreal y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_di_pow(mreal* result, mreal x, mint y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_dd_pow(mreal* result, mreal x, mreal y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_ic_pow(mcomplex* result, mint x, mcomplex y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_ci_pow(mcomplex* result, mcomplex x, mint y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_dc_pow(mcomplex* result, mreal x, mcomplex y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_cd_pow(mcomplex* result, mcomplex x, mreal y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_cc_pow(mcomplex* result, mcomplex x, mcomplex y, uint32_t flags) VLM_NOEXCEPT;

/** x / y. */
int32_t s_machfunc_id_div(mreal* result, mint x, mreal y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_di_div(mreal* result, mreal x, mint y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_dd_div(mreal* result, mreal x, mreal y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_ic_div(mcomplex* result, mint x, mcomplex y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_ci_div(mcomplex* result, mcomplex x, mint y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_dc_div(mcomplex* result, mreal x, mcomplex y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_cd_div(mcomplex* result, mcomplex x, mreal y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_cc_div(mcomplex* result, mcomplex x, mcomplex y, uint32_t flags) VLM_NOEXCEPT;

/** |(y - x) / y|. */
int32_t s_machfunc_id_relerr(mreal* result, mint x, mreal y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_di_relerr(mreal* result, mreal x, mint y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_dd_relerr(mreal* result, mreal x, mreal y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_ic_relerr(mreal* result, mint x, mcomplex y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_ci_relerr(mreal* result, mcomplex x, mint y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_dc_relerr(mreal* result, mreal x, mcomplex y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_cd_relerr(mreal* result, mcomplex x, mreal y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_cc_relerr(mreal* result, mcomplex x, mcomplex y, uint32_t flags) VLM_NOEXCEPT;

/** log(y) / log(x), the base first. */
int32_t s_machfunc_id_log(mreal* result, mint x, mreal y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_di_log(mreal* result, mreal x, mint y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_dd_log(mreal* result, mreal x, mreal y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_ic_log(mcomplex* result, mint x, mcomplex y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_ci_log(mcomplex* result, mcomplex x, mint y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_dc_log(mcomplex* result, mreal x, mcomplex y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_cd_log(mcomplex* result, mcomplex x, mreal y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_cc_log(mcomplex* result, mcomplex x, mcomplex y, uint32_t flags) VLM_NOEXCEPT;

/** the angle of (x, y), the abscissa first. */
int32_t s_machfunc_id_atan2(mreal* result, mint x, mreal y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_di_atan2(mreal* result, mreal x, mint y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_dd_atan2(mreal* result, mreal x, mreal y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_ic_atan2(mcomplex* result, mint x, mcomplex y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_ci_atan2(mcomplex* result, mcomplex x, mint y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_dc_atan2(mcomplex* result, mreal x, mcomplex y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_cd_atan2(mcomplex* result, mcomplex x, mreal y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_cc_atan2(mcomplex* result, mcomplex x, mcomplex y, uint32_t flags) VLM_NOEXCEPT;

/** the larger magnitude. */
int32_t s_machfunc_ii_maxabs(mint* result, mint x, mint y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_dd_maxabs(mreal* result, mreal x, mreal y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_cc_maxabs(mreal* result, mcomplex x, mcomplex y, uint32_t flags) VLM_NOEXCEPT;

/** floor(x / y). */
int32_t s_machfunc_ii_quotient(mint* result, mint x, mint y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_di_quotient(mint* result, mreal x, mint y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_id_quotient(mint* result, mint x, mreal y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_dd_quotient(mint* result, mreal x, mreal y, uint32_t flags) VLM_NOEXCEPT;

/** bit operations; none fails. */
int32_t s_machfunc_ii_bitand(mint* result, mint x, mint y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_ii_bitor(mint* result, mint x, mint y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_ii_bitxor(mint* result, mint x, mint y, uint32_t flags) VLM_NOEXCEPT;

/** the largest k with y^k dividing x. */
int32_t s_machfunc_ii_intexp(mint* result, mint x, mint y, uint32_t flags) VLM_NOEXCEPT;

/** digits of |x| in base y. */
int32_t s_machfunc_ii_intlen(mint* result, mint x, mint y, uint32_t flags) VLM_NOEXCEPT;

/** greatest common divisor. */
int32_t s_machfunc_ii_gcd(mint* result, mint x, mint y, uint32_t flags) VLM_NOEXCEPT;

/** least common multiple. */
int32_t s_machfunc_ii_lcm(mint* result, mint x, mint y, uint32_t flags) VLM_NOEXCEPT;

/** |x| 2^y with the sign of x. */
int32_t s_machfunc_ii_bitshiftleft(mint* result, mint x, mint y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_di_bitshiftleft(mreal* result, mreal x, mint y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_ci_bitshiftleft(mcomplex* result, mcomplex x, mint y, uint32_t flags) VLM_NOEXCEPT;

/** |x| 2^-y with the sign of x. */
int32_t s_machfunc_ii_bitshiftright(mint* result, mint x, mint y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_di_bitshiftright(mreal* result, mreal x, mint y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_ci_bitshiftright(mcomplex* result, mcomplex x, mint y, uint32_t flags) VLM_NOEXCEPT;

/** x, or 0 where |x| < y. */
int32_t s_machfunc_dd_chop(mreal* result, mreal x, mreal y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_cd_chop(mcomplex* result, mcomplex x, mreal y, uint32_t flags) VLM_NOEXCEPT;

/** 1 where |x| counts beside y, else 0. */
int32_t s_machfunc_ii_unitize(mint* result, mint x, mint y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_dd_unitize(mint* result, mreal x, mreal y, uint32_t flags) VLM_NOEXCEPT;

/** The n-th root of a complex z: z^(1/n) by pow of complex numbers, but 1 / sqrt(z), 1 / z, z and sqrt(z) for n = -2, -1, 1 and 2.
 *  n = 0 always fails. */
int32_t s_machfunc_ci_root(mcomplex* result, mint n, mcomplex z, uint32_t flags) VLM_NOEXCEPT;

/** The greatest common divisor, without a check: 2^63 comes out as the most negative mint. */
mint gcd_mint(mint x, mint y) VLM_NOEXCEPT;

VLM_END_DECLS

#endif
