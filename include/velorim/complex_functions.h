/* Machine functions on one complex number: s_machfunc_c_<name>.
 *
 * Each does for z = (x, y), x the real and y the imaginary part, what the catalogue's scalar kernel of the same function does
 * (machine_functions.h); what is told here of values, cuts and checks holds for every kernel of the function, of ComplexReal64 and
 * of ComplexReal32.
 *  result   written on success only; mreal * or mint * where the function gives such a number.
 *  flags    MACHFUNC_CHECK_FP asks for the check. A function that is checked then fails when a part of its result is infinite or a
 *           NaN; a zero passes. Without the flag nothing fails and the value is stored as it came out.
 *  returns  0, or 1 on failure.
 * Accuracy: docs/accuracy.md. Threads: any. A function may raise the exception flags of the calling thread. */
#ifndef VELORIM_COMPLEX_FUNCTIONS_H
#define VELORIM_COMPLEX_FUNCTIONS_H

#include <velorim/machine_functions.h>

VLM_BEGIN_DECLS

/** sin z = -i sinh(i z), entire. Checked. The special cases are those of sinh of (-y, x). */
int32_t s_machfunc_c_sin(mcomplex* result, uint32_t flags, mreal x, mreal y) VLM_NOEXCEPT;
/** cos z = cosh(i z), entire. Checked. The special cases are those of cosh of (-y, x). */
int32_t s_machfunc_c_cos(mcomplex* result, uint32_t flags, mreal x, mreal y) VLM_NOEXCEPT;
/** tan z = -i tanh(i z), poles at the odd multiples of pi / 2. Checked. The special cases are those of tanh of (-y, x). */
int32_t s_machfunc_c_tan(mcomplex* result, uint32_t flags, mreal x, mreal y) VLM_NOEXCEPT;
/** 1 / sin z; (0, 0) for |y| above 710.8224336642239, where sin z is about to overflow. Checked: fails at 0. */
int32_t s_machfunc_c_csc(mcomplex* result, uint32_t flags, mreal x, mreal y) VLM_NOEXCEPT;
/** 1 / cos z; (0, 0) for |y| above 710.8224336642239. Checked. */
int32_t s_machfunc_c_sec(mcomplex* result, uint32_t flags, mreal x, mreal y) VLM_NOEXCEPT;
/** 1 / tan z. Checked: fails at 0. */
int32_t s_machfunc_c_cot(mcomplex* result, uint32_t flags, mreal x, mreal y) VLM_NOEXCEPT;
/** (sinh x cos y, cosh x sin y), entire. Checked. (x, NaN) for x infinite or 0 and y not finite; z itself for y = 0 and x not
 *  finite. */
int32_t s_machfunc_c_sinh(mcomplex* result, uint32_t flags, mreal x, mreal y) VLM_NOEXCEPT;
/** (cosh x cos y, sinh x sin y), entire. Checked. (+infinity, NaN) for x infinite and y not finite, (NaN, x) for x = 0 and y not
 *  finite, (|x|, y) for y = 0 and x not finite. */
int32_t s_machfunc_c_cosh(mcomplex* result, uint32_t flags, mreal x, mreal y) VLM_NOEXCEPT;
/** sinh z / cosh z, poles at the odd multiples of i pi / 2. Checked. For x infinite the real part is 1 with the sign of x, the
 *  imaginary part 0 with the sign of sin 2y, +0 if y is not finite; (NaN, y) for x a NaN and y = 0. */
int32_t s_machfunc_c_tanh(mcomplex* result, uint32_t flags, mreal x, mreal y) VLM_NOEXCEPT;
/** 1 / sinh z; (0, 0) for |x| above 710.8224336642239, where sinh z is about to overflow. Checked: fails at 0. */
int32_t s_machfunc_c_csch(mcomplex* result, uint32_t flags, mreal x, mreal y) VLM_NOEXCEPT;
/** 1 / cosh z; (0, 0) for |x| above 710.8224336642239. Checked. */
int32_t s_machfunc_c_sech(mcomplex* result, uint32_t flags, mreal x, mreal y) VLM_NOEXCEPT;
/** 1 / tanh z. Checked: fails at 0. */
int32_t s_machfunc_c_coth(mcomplex* result, uint32_t flags, mreal x, mreal y) VLM_NOEXCEPT;
/** The z with sin z = (x, y) and real part within pi / 2 of 0. Cuts: the real axis beyond -1 and 1, where asin(x) is
 *  (pi/2, -acosh x) for x > 1 and (-pi/2, acosh(-x)) for x < -1, for either zero y. Not checked, never fails. */
int32_t s_machfunc_c_asin(mcomplex* result, uint32_t flags, mreal x, mreal y) VLM_NOEXCEPT;
/** pi / 2 - asin z, real part from 0 to pi. Cuts as asin: (0, acosh x) for x > 1, (pi, -acosh(-x)) for x < -1, for either zero y.
 *  Not checked, never fails. */
int32_t s_machfunc_c_acos(mcomplex* result, uint32_t flags, mreal x, mreal y) VLM_NOEXCEPT;
/** -i atanh(i z). Cuts: the imaginary axis beyond -i and i, which are its poles. Checked. */
int32_t s_machfunc_c_atan(mcomplex* result, uint32_t flags, mreal x, mreal y) VLM_NOEXCEPT;
/** asin(1 / z). Cut: the real axis between -1 and 1. Checked: fails at 0. */
int32_t s_machfunc_c_acsc(mcomplex* result, uint32_t flags, mreal x, mreal y) VLM_NOEXCEPT;
/** acos(1 / z). Cut: the real axis between -1 and 1. Checked: fails at 0. */
int32_t s_machfunc_c_asec(mcomplex* result, uint32_t flags, mreal x, mreal y) VLM_NOEXCEPT;
/** atan(1 / z), (pi / 2, 0) at 0. Cut: the imaginary axis between -i and i. Checked. */
int32_t s_machfunc_c_acot(mcomplex* result, uint32_t flags, mreal x, mreal y) VLM_NOEXCEPT;
/** -i asin(i z). Cuts: the imaginary axis beyond -i and i. Not checked, never fails. */
int32_t s_machfunc_c_asinh(mcomplex* result, uint32_t flags, mreal x, mreal y) VLM_NOEXCEPT;
/** i acos z above the real axis and on it up to 1, -i acos z elsewhere: the real part is not negative but for zeros and the cut.
 *  Cut: the real axis below 1. Not checked, never fails. */
int32_t s_machfunc_c_acosh(mcomplex* result, uint32_t flags, mreal x, mreal y) VLM_NOEXCEPT;
/** log((1 + z) / (1 - z)) / 2. Cuts: the real axis beyond -1 and 1, which are its poles; atanh(x) is (atanh(1/x), -pi/2) for x > 1
 *  and (atanh(1/x), pi/2) for x < -1, for either zero y. Checked. */
int32_t s_machfunc_c_atanh(mcomplex* result, uint32_t flags, mreal x, mreal y) VLM_NOEXCEPT;
/** asinh(1 / z). Cut: the imaginary axis between -i and i. Checked: fails at 0. */
int32_t s_machfunc_c_acsch(mcomplex* result, uint32_t flags, mreal x, mreal y) VLM_NOEXCEPT;
/** acosh(1 / z). Cuts: the real axis below 0 and beyond 1. Checked: fails at 0. */
int32_t s_machfunc_c_asech(mcomplex* result, uint32_t flags, mreal x, mreal y) VLM_NOEXCEPT;
/** atanh(1 / z), (0, pi / 2) at 0. Cut: the real axis between -1 and 1. Checked. */
int32_t s_machfunc_c_acoth(mcomplex* result, uint32_t flags, mreal x, mreal y) VLM_NOEXCEPT;
/** e^x (cos y, sin y). Checked. A zero for x = -infinity, whatever y; (+infinity, NaN) for x = +infinity and y not finite; z itself
 *  for y = 0 and x = +infinity or a NaN. */
int32_t s_machfunc_c_exp(mcomplex* result, uint32_t flags, mreal x, mreal y) VLM_NOEXCEPT;
/** e^z - 1, without cancellation near 0. Checked. */
int32_t s_machfunc_c_expm1(mcomplex* result, uint32_t flags, mreal x, mreal y) VLM_NOEXCEPT;
/** (log|z|, arg z), the angle in (-pi, pi]. Cut: the negative real axis, where the angle is +pi for either zero y. A real number
 *  other than zero is not checked; everything else is: log 0 = (-infinity, 0) fails. */
int32_t s_machfunc_c_log(mcomplex* result, uint32_t flags, mreal x, mreal y) VLM_NOEXCEPT;
/** log(1 + z), without cancellation near 0. Cut: the real axis below -1. Only -1 and a NaN on the real axis are checked. */
int32_t s_machfunc_c_log1p(mcomplex* result, uint32_t flags, mreal x, mreal y) VLM_NOEXCEPT;
/** log z / log 2; on the real axis exact for powers of two. Cut and checks as log. */
int32_t s_machfunc_c_log2(mcomplex* result, uint32_t flags, mreal x, mreal y) VLM_NOEXCEPT;
/** log z / log 10; on the real axis from the real logarithm. Cut and checks as log. */
int32_t s_machfunc_c_log10(mcomplex* result, uint32_t flags, mreal x, mreal y) VLM_NOEXCEPT;
/** hypot(x, y). Checked. */
int32_t s_machfunc_c_abs(mreal* result, uint32_t flags, mreal x, mreal y) VLM_NOEXCEPT;
/** atan2(y, x) in [-pi, pi], 0 at zero whatever the signs. Never fails. */
int32_t s_machfunc_c_arg(mreal* result, uint32_t flags, mreal x, mreal y) VLM_NOEXCEPT;
/** (x, -y), a zero imaginary part +0. Never fails. */
int32_t s_machfunc_c_conj(mcomplex* result, uint32_t flags, mreal x, mreal y) VLM_NOEXCEPT;
/** y. Never fails. */
int32_t s_machfunc_c_im(mreal* result, uint32_t flags, mreal x, mreal y) VLM_NOEXCEPT;
/** x. Never fails. */
int32_t s_machfunc_c_re(mreal* result, uint32_t flags, mreal x, mreal y) VLM_NOEXCEPT;
/** (-x, -y). Never fails. */
int32_t s_machfunc_c_minus(mcomplex* result, uint32_t flags, mreal x, mreal y) VLM_NOEXCEPT;
/** z / |z|, 0 at 0. Never fails. */
int32_t s_machfunc_c_sign(mcomplex* result, uint32_t flags, mreal x, mreal y) VLM_NOEXCEPT;
/** The fractional part of x and of y, each with its sign. Never fails. */
int32_t s_machfunc_c_fracpart(mcomplex* result, uint32_t flags, mreal x, mreal y) VLM_NOEXCEPT;
/** (x x - y y, 2 x y). Checked. */
int32_t s_machfunc_c_square(mcomplex* result, uint32_t flags, mreal x, mreal y) VLM_NOEXCEPT;
/** The root with real part not negative; where that is 0 by the negative real axis, the imaginary part is not negative, for either
 *  zero y. Never fails; never overflows. */
int32_t s_machfunc_c_sqrt(mcomplex* result, uint32_t flags, mreal x, mreal y) VLM_NOEXCEPT;
/** 1 / sqrt z, on the negative real axis (0, -1 / sqrt(-x)). Checked for x = 0 and y not below 0 only: fails at 0. */
int32_t s_machfunc_c_rsqrt(mcomplex* result, uint32_t flags, mreal x, mreal y) VLM_NOEXCEPT;
/** 1 / z, scaled so that no square overflows. Checked: fails at 0. */
int32_t s_machfunc_c_recip(mcomplex* result, uint32_t flags, mreal x, mreal y) VLM_NOEXCEPT;
/** sin z / z, 1 at 0. Checked. */
int32_t s_machfunc_c_sinc(mcomplex* result, uint32_t flags, mreal x, mreal y) VLM_NOEXCEPT;
/** (g^z - cos(pi z) / g^z) / sqrt 5 with the golden ratio g. Checked. */
int32_t s_machfunc_c_fibonacci(mcomplex* result, uint32_t flags, mreal x, mreal y) VLM_NOEXCEPT;
/** g^z + cos(pi z) / g^z. Checked. */
int32_t s_machfunc_c_lucasl(mcomplex* result, uint32_t flags, mreal x, mreal y) VLM_NOEXCEPT;
/** 2 atan(tanh(z / 2)). Cuts on the imaginary axis, |y| > pi / 2 with period 2 pi; purely imaginary on that axis where cos y > 1/2.
 *  Not checked off the imaginary axis and where cos y > 1/2 on it. */
int32_t s_machfunc_c_gudermannian(mcomplex* result, uint32_t flags, mreal x, mreal y) VLM_NOEXCEPT;
/** log tan(z / 2 + pi / 4). Cuts on the real axis where the tangent is negative. Checked. */
int32_t s_machfunc_c_inversegudermannian(mcomplex* result, uint32_t flags, mreal x, mreal y) VLM_NOEXCEPT;
/** sin^2(z / 2). Checked. */
int32_t s_machfunc_c_haversine(mcomplex* result, uint32_t flags, mreal x, mreal y) VLM_NOEXCEPT;
/** 2 asin(sqrt z). Cuts: the real axis below 0 and beyond 1. Checked. */
int32_t s_machfunc_c_inversehaversine(mcomplex* result, uint32_t flags, mreal x, mreal y) VLM_NOEXCEPT;
/** 1 for any z but 0, a NaN included. Never fails. */
int32_t s_machfunc_c_unitize(mint* result, uint32_t flags, mreal x, mreal y) VLM_NOEXCEPT;
/** For y = 0 x - floor(x), not checked; else z less the nearest whole number in each part, checked. */
int32_t s_machfunc_c_mod1(mcomplex* result, uint32_t flags, mreal x, mreal y) VLM_NOEXCEPT;
/** 1 / (1 + e^-z), poles at the odd multiples of i pi. Checked. */
int32_t s_machfunc_c_logistic(mcomplex* result, uint32_t flags, mreal x, mreal y) VLM_NOEXCEPT;
/** x x + y y, infinite if a part is. Checked. */
int32_t s_machfunc_c_abssquare(mreal* result, uint32_t flags, mreal x, mreal y) VLM_NOEXCEPT;

VLM_END_DECLS

#endif
