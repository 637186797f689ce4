/* Machine functions: numbered elementwise operations on one number, a vector or an array, that report where
 * they fail.
 *
 * A function is a number. With an element type it names a row of the catalogue: a scalar kernel, a vector
 * kernel and the element type of the result. Function numbers are part of the interface: 1 to 86 take one
 * argument, 257 to 287 two (one row for a pair of element types). All tables are constant and every function here may be called on any thread; calls on distinct
 * targets may run at the same time.
 *
 * What counts as a failure
 *   MACHFUNC_CHECK_FP       for a floating-point source with a floating-point result: a result that is NaN or
 *                           infinite, or a raised floating-point exception (invalid, division by zero,
 *                           overflow; underflow and inexact never count).
 *   MACHFUNC_CHECK_INTEGER  for an integer source or result: overflow of the element type, an argument beyond
 *                           the range of mint.
 * With a bit clear the check is not made: integers wrap at their width, floating-point results are stored as
 * they come. A few failures (marked "always" below) are detected whatever the flags. All other flag bits are
 * ignored.
 *
 * How a vector kernel looks for failures
 *   bulk mode     floating-point results with MACHFUNC_CHECK_FP, source and result apart: every element is
 *                 written, then the exception flags of the run judge it. A failure is reported as the first
 *                 element of the run (of the chunk, when the run is split over the team). A quiet NaN or an
 *                 infinity that merely passes through is no failure.
 *   element mode  the same in place, and integers with MACHFUNC_CHECK_INTEGER: stops at the first element
 *                 that fails its check and reports its exact position; that element and all behind it are
 *                 unwritten.
 *   plain mode    no check; every element is written, except that an "always" failure stops as in element
 *                 mode.
 * A run that is not in place goes to the thread team when it is long enough (parallel.h); elements behind a
 * reported position may then have been written.
 *
 * A result depends on the element alone: it is the same to the bit in every mode, at every place, length,
 * alignment and number of threads, through scalar and vector kernels. Real64 and Real32 functions are within
 * 1.0 ulp, those composed of several steps within a few (the table of bounds is docs/accuracy.md in the
 * sources); Real16 results are computed in double and rounded once. */
#ifndef VELORIM_MACHINE_FUNCTIONS_H
#define VELORIM_MACHINE_FUNCTIONS_H

#include <velorim/base.h>

VLM_BEGIN_DECLS

/** Kernel flags. */
enum { MACHFUNC_CHECK_FP = 2, MACHFUNC_CHECK_INTEGER = 4 };

/** Function numbers. A comment gives the value for a real x where the name does not tell it, then the failures
 *  that are detected always. */
enum MachFuncNumber {
  MachFunc_sin = 1,
  MachFunc_cos = 2,
  MachFunc_tan = 3,
  MachFunc_csc = 5, /**< 1 / sin x */
  MachFunc_sec = 6, /**< 1 / cos x */
  MachFunc_cot = 7, /**< 1 / tan x */
  MachFunc_sinh = 9,
  MachFunc_cosh = 10,
  MachFunc_tanh = 11,
  MachFunc_csch = 13, /**< 1 / sinh x, 0 where sinh overflows */
  MachFunc_sech = 14, /**< 1 / cosh x, 0 where cosh overflows */
  MachFunc_coth = 15, /**< 1 / tanh x */
  MachFunc_asin = 17,
  MachFunc_acos = 18,
  MachFunc_atan = 19,
  MachFunc_acsc = 21, /**< asin(1 / x) */
  MachFunc_asec = 22, /**< acos(1 / x) */
  MachFunc_acot = 23, /**< atan(1 / x); pi / 2 at 0 */
  MachFunc_asinh = 25,
  MachFunc_acosh = 26,
  MachFunc_atanh = 27,
  MachFunc_acsch = 29, /**< asinh(1 / x) */
  MachFunc_asech = 30, /**< acosh(1 / x) */
  MachFunc_acoth = 31, /**< atanh(1 / x) */
  MachFunc_exp = 32,
  MachFunc_expm1 = 33, /**< e^x - 1 */
  MachFunc_log = 34,
  MachFunc_log1p = 35,    /**< log(1 + x) */
  MachFunc_log2 = 36,     /**< integers: always fails unless x is a power of two */
  MachFunc_log10 = 37,    /**< integers: always fails unless x is a power of ten */
  MachFunc_abs = 38,      /**< |x| */
  MachFunc_arg = 39,      /**< 0; always fails for a negative x and for a NaN */
  MachFunc_conj = 40,     /**< x */
  MachFunc_im = 41,       /**< 0, as Integer64 for reals */
  MachFunc_re = 42,       /**< x */
  MachFunc_minus = 43,    /**< -x */
  MachFunc_sign = 44,     /**< -1, 0, 1 as Integer64 for reals; 1 for a NaN */
  MachFunc_pos = 45,      /**< x > 0, as Integer64 */
  MachFunc_neg = 46,      /**< x < 0, as Integer64 */
  MachFunc_npos = 47,     /**< x <= 0, as Integer64 */
  MachFunc_nneg = 48,     /**< x >= 0, as Integer64 */
  MachFunc_round = 49,    /**< to the nearest integer in the current rounding mode, as Integer64; saturates
                             unchecked, NaN gives 0 */
  MachFunc_floor = 50,    /**< as Integer64, like round */
  MachFunc_ceiling = 51,  /**< as Integer64, like round */
  MachFunc_fracpart = 52, /**< fraction with the sign of x */
  MachFunc_intpart = 53,  /**< toward zero, as Integer64, like round */
  MachFunc_evenq = 54,    /**< integers only, as Integer64 */
  MachFunc_oddq = 55,     /**< integers only, as Integer64 */
  MachFunc_square = 56,   /**< x^2 */
  MachFunc_sqrt = 57,
  MachFunc_cbrt = 58,
  MachFunc_rsqrt = 59,     /**< 1 / sqrt x */
  MachFunc_recip = 60,     /**< 1 / x */
  MachFunc_bitcount = 61,  /**< one bits of |x| */
  MachFunc_bitnot = 62,    /**< complement */
  MachFunc_bitlength = 63, /**< bits up to the highest one bit of x, or of its complement if x < 0 */
  MachFunc_intexp10 = 64,  /**< largest k with 10^k dividing x; always fails at 0 */
  MachFunc_intlen10 = 65,  /**< decimal digits of |x|; 0 for 0 */
  MachFunc_unitstep = 66,  /**< 0 below 0, else 1, as Integer64 */
  MachFunc_sinc = 67,      /**< sin x / x; 1 at 0 */
  MachFunc_fibonacci = 68, /**< integers: always fails beyond the range of the type; reals: (p - cos(pi x) /
                              p) / sqrt 5, p = golden^x */
  MachFunc_lucasl = 69,    /**< integers: as fibonacci; reals: p + cos(pi x) / p */
  MachFunc_gudermannian = 70,        /**< 2 atan(tanh(x / 2)) */
  MachFunc_inversegudermannian = 71, /**< 2 atanh(tan(x / 2)) */
  MachFunc_haversine = 72,           /**< sin^2(x / 2) */
  MachFunc_inversehaversine = 73,    /**< 2 asin(sqrt x) */
  MachFunc_erfc = 74,
  MachFunc_erf = 75,
  MachFunc_gamma = 76, /**< integers: (x - 1)!, always fails below 1 and beyond the range of the type */
  MachFunc_loggamma =
      77, /**< log gamma(x) for x > 0; at most 0: unchecked a signalling NaN with invalid raised */
  MachFunc_unitize = 78,   /**< x != 0, as Integer64 */
  MachFunc_mod1 = 79,      /**< x - floor x */
  MachFunc_logistic = 80,  /**< 1 / (1 + e^-x) */
  MachFunc_ramp = 81,      /**< max(x, 0); 0 for a NaN */
  MachFunc_abssquare = 82, /**< |x|^2 */
  MachFunc_realabs = 83,   /**< abs, real classes only */
  MachFunc_realsign = 84,  /**< sign, real classes only */
  MachFunc_box = 85,       /**< 1 for |x| <= 1/2, as Integer64 */
  MachFunc_triangle = 86,  /**< 1 - |x| for |x| < 1, else 0 */
};

/** Functions of two arguments x and y. In brackets the element types that have a row: I the integer types, R the real ones, C the complex
 *  ones, each with itself; "mixed" every pair of different types among Integer64, Real64 and ComplexReal64, "mixed reals" Integer64
 *  with Real64 either way round. A mixed row widens its arguments to the type that is further back, a real to a complex number with
 *  imaginary part 0, and gives what that type gives with itself. The result has the type of the arguments unless a comment says
 *  otherwise. Then follow the failures that are detected always; integer overflow, and a NaN or infinite result of floating-point
 *  arguments, are failures under the flags. */
enum MachFuncNumber2 {
  MachFunc_plus = 257,     /**< x + y [I R C, mixed]; unsigned sums overflow by a carry */
  MachFunc_subtract = 258, /**< x - y [I R C, mixed]; of unsigned types x < y overflows */
  MachFunc_times = 259, /**< x y [I R C, mixed]; complex products recover infinities as C11 annex G has it */
  MachFunc_div = 260,   /**< x / y [R C, mixed] */
  MachFunc_mod =
      261, /**< x modulo y with the sign of y [I R C, mixed]; complex: x - q y with the parts of q = x / y rounded; always
                              fails for y = 0 */
  MachFunc_quotient =
      262, /**< floor(x / y) [I R, mixed reals], an Integer64 for reals; integers always fail for y = 0 and for the most
                              negative x by -1; reals under MACHFUNC_CHECK_INTEGER for y = 0 and beyond mint, unchecked they saturate
                              and NaN gives 0 */
  MachFunc_pow =
      263, /**< x^y [I R C, mixed; R and ComplexReal32 also with Integer64]. An integer exponent goes by products. Integers
                              always fail for 0^y with y <= 0, and for y < 0 unless |x| = 1. Others: 0^0 fails with the check on,
                              unchecked it raises invalid and gives a signalling NaN */
  MachFunc_log2of =
      264, /**< "log", log y to the base x: log(y) / log(x) [R C, mixed]; base 0 like 0^0 of pow */
  MachFunc_atan2 =
      265, /**< angle of the point (x, y), the abscissa first [R C, mixed]; complex: -i log((x + i y) / sqrt(x^2 + y^2)) */
  MachFunc_bitand = 266, /**< [I] */
  MachFunc_bitor = 267,  /**< [I] */
  MachFunc_bitxor = 268, /**< [I] */
  MachFunc_chop =
      269, /**< 0 where |x| < y, else x [R; ComplexReal32 with Real32, ComplexReal64 with Real64: each part, a complex
                              result]; always fails for y < 0 */
  MachFunc_abserr = 270, /**< |x - y| [I R C, mixed], real for complex arguments; unsigned: x - y */
  MachFunc_relerr = 271, /**< |(y - x) / y| [R C, mixed], real for complex arguments */
  MachFunc_maxabs = 272, /**< the larger of |x| and |y| [I R C], real for complex arguments */
  MachFunc_intexp = 273, /**< largest k with y^k dividing x [I]; always fails for y < 2 and for x = 0 */
  MachFunc_intlen = 274, /**< digits of |x| in base y, 0 for 0 [I]; always fails for y < 2 */
  MachFunc_bitshiftleft =
      275, /**< |x| 2^y with the sign of x [I; every other type with Integer64]: integers shift the magnitude,
                                     reals scale, complex numbers part by part; y < 0 shifts right. Under the check, bits that leave the
                                     type fail; unchecked the count is taken modulo the width */
  MachFunc_bitshiftright = 276, /**< bitshiftleft by -y */
  MachFunc_box2 = 277,          /**< 1 for |x|, |y| <= 1/2, else 0 [I R], Integer64 for reals */
  MachFunc_unitize2 =
      278, /**< "unitize", 1 for |x| >= y or |x| within 2^-46 y of it, else 0 [I R; C with its component type],
                                     Integer64 for reals and complex numbers; always fails for y <= 0 */
  MachFunc_unitstep2 = 279, /**< 1 for x, y >= 0, else 0 [I R], Integer64 for reals */
  MachFunc_triangle2 = 280, /**< (1 - |x|) (1 - |y|), 0 where both magnitudes are above 1 [I R] */
  MachFunc_gcd = 281,       /**< greatest common divisor, not negative [I] */
  MachFunc_lcm = 282,       /**< least common multiple, not negative [I] */
  MachFunc_ceilingmultiple =
      283, /**< y ceil(x / y) [I R C, mixed without ci and cd]; Real64 with Integer64 gives Integer64. Integers
                                     always fail for y = 0 and for the most negative x by -1 */
  MachFunc_floormultiple = 284, /**< y floor(x / y), as ceilingmultiple */
  MachFunc_roundmultiple = 285, /**< y round(x / y), ties to even, as ceilingmultiple */
  MachFunc_max = 286,           /**< [I R, mixed reals]; a NaN gives the other argument, +0 is above -0 */
  MachFunc_min = 287,           /**< [I R, mixed reals]; likewise */
};

/** Scalar kernel: one element through pointers to elements of the row's types.
 *  returns 0, or 1 on failure with nothing written. A floating-point result is checked by value, as in element
 *  mode. */
typedef int32_t (*MachFuncScalar1)(void* result, const void* x, uint32_t flags);
typedef int32_t (*MachFuncScalar2)(void* result, const void* x, const void* y, uint32_t flags);
typedef int32_t (*MachFuncScalar3)(void* result, const void* a, const void* x, const void* y, uint32_t flags);

/** Vector kernel: r[i * increments[0]] = f(x[i * increments[1]]) for i from 0 to count - 1.
 *  increments  steps in elements of each operand's own type, in the order result, arguments; 0 and negative
 *              steps too.
 *  returns     0, or the 1-based position of a failing element by the mode above. A count of 0 or less returns
 *              0 and reads nothing.
 *  Result and source may be the same elements; any other overlap gives what reading the whole source first
 *  would give (the source is then copied, and exhausted memory ends the process through nomem). */
typedef mint (*MachFuncVector1)(void* result, const void* x, mint count, const mint* increments,
                                uint32_t flags);
typedef mint (*MachFuncVector2)(void* result, const void* x, const void* y, mint count,
                                const mint* increments, uint32_t flags);
typedef mint (*MachFuncVector3)(void* result, const void* a, const void* x, const void* y, mint count,
                                const mint* increments, uint32_t flags);

typedef union {
  MachFuncScalar1 unary;
  MachFuncScalar2 binary;
  MachFuncScalar3 ternary;
} MachFuncScalarKernel;
typedef union {
  MachFuncVector1 unary;
  MachFuncVector2 binary;
  MachFuncVector3 ternary;
} MachFuncVectorKernel;

/** Row of the catalogue. The empty row, for a pair that does not exist, is all zero. */
typedef struct MachFuncRow {
  MachFuncScalarKernel scalarKernel;
  MachFuncVectorKernel vectorKernel;
  int32_t resultType; /**< element type of what the kernels write */
} MachFuncRow;

/** Increment tables: steps of the result R and the arguments X, Y, Z, each 1 where the name has its letter,
 *  else 0. A whole array uses UnitIncrements; a 0 for an argument uses its one element for every result. */
extern const mint UnitIncrements[4];
extern const mint ZeroIncrements[4];
extern const mint UnitRIncrements[4];
extern const mint UnitXIncrements[4];
extern const mint UnitRXIncrements[4];
extern const mint UnitYIncrements[4];
extern const mint UnitRYIncrements[4];
extern const mint UnitZIncrements[4];
extern const mint UnitRZIncrements[4];
extern const mint UnitRXYIncrements[4];
extern const mint UnitXYIncrements[4];
extern const mint UnitRXZIncrements[4];
extern const mint UnitXZIncrements[4];
extern const mint UnitRYZIncrements[4];
extern const mint UnitYZIncrements[4];
extern const mint UnitXYZIncrements[4];

/** The kernels and the result type of a row.
 *  type     a tensor type code for the MTensor_ forms (0 to 4; the boolean type 1 reads the rows of integers),
 *           an element type code for the MNumericArray_ forms.
 *  returns  null, or 0 for the types, if there is no such row. MTensor_ReturnType1 gives a tensor type code,
 *           and 0 also where the result has no tensor view. */
MachFuncVector1 MTensor_getUnaryVectorMachFunc(int32_t number, int32_t type) VLM_NOEXCEPT;
MachFuncVector1 MNumericArray_getUnaryVectorMachFunc(int32_t number, int32_t type) VLM_NOEXCEPT;
MachFuncScalar1 MTensor_getUnaryScalarMachFunc(int32_t number, int32_t type) VLM_NOEXCEPT;
MachFuncScalar1 MNumericArray_getUnaryScalarMachFunc(int32_t number, int32_t type) VLM_NOEXCEPT;
int32_t MTensor_ReturnType1(int32_t number, int32_t type) VLM_NOEXCEPT;
int32_t MNumericArray_ReturnType1(int32_t number, int32_t type) VLM_NOEXCEPT;

/** The same for functions of two arguments. xType and yType are tensor type codes or element type codes as above; there is no row for
 *  a pair outside the table of MachFuncNumber2. */
MachFuncVector2 MTensor_getBinaryVectorMachFunc(int32_t number, int32_t xType, int32_t yType) VLM_NOEXCEPT;
MachFuncVector2 MNumericArray_getBinaryVectorMachFunc(int32_t number, int32_t xType,
                                                      int32_t yType) VLM_NOEXCEPT;
MachFuncScalar2 MTensor_getBinaryScalarMachFunc(int32_t number, int32_t xType, int32_t yType) VLM_NOEXCEPT;
MachFuncScalar2 MNumericArray_getBinaryScalarMachFunc(int32_t number, int32_t xType,
                                                      int32_t yType) VLM_NOEXCEPT;
int32_t MTensor_ReturnType2(int32_t number, int32_t xType, int32_t yType) VLM_NOEXCEPT;
int32_t MNumericArray_ReturnType2(int32_t number, int32_t xType, int32_t yType) VLM_NOEXCEPT;

/** The tensor type that can hold every result of a function of two arguments on two tensor types: 2, 3 or 4; 7 if there is no such
 *  function for them. The boolean type 1 reads like 2. It speaks of the function over its whole domain (pow and log of reals answer 4),
 *  MTensor_ReturnType2 of the rows. */
int32_t ReturnRangeType2(int32_t number, int32_t xType, int32_t yType) VLM_NOEXCEPT;

/** The tensor type that can hold every result of the function on a tensor type, over its whole domain: log of
 *  reals can be complex.
 *  mark     set to 1 if the result is boolean, else to 0; may be null.
 *  returns  2, 3 or 4; 1 for a boolean result; -1 if the result is the argument itself; 7 if there is no such
 *           function. It speaks of the function, not of the rows: MTensor_ReturnType1 tells what is there. */
int32_t ReturnRangeType1(int32_t number, int32_t type, uint32_t* mark) VLM_NOEXCEPT;

/** Applies a function to a whole tensor: r = f(source), in the shape of the source.
 *  resultType  tensor type of the result, from MTensor_ReturnType1 or ReturnRangeType1 (1 counts as 2). It is
 *              what is allocated; that the kernel writes elements of this type is the caller's business, only
 *              that they fit is made sure of.
 *  result      target: null makes an array, an existing one is reshaped and its storage reused; it may be the
 *              source itself.
 *  returns     0;
 *              4 if an element failed, there is no kernel for function and types, or an argument is null (the
 *              target then has its shape and holds what was written);
 *              5 if memory ran out; any other status of the allocation as it is (402 for a negative
 *              dimension). After an allocation that failed a target that was null is null again.
 *  A real source with a complex result has no kernel in this edition. */
int32_t Math_T_T(int32_t number, uint32_t flags, const MTensor* source, int32_t resultType,
                 MTensor** result) VLM_NOEXCEPT;

/** Operators: f applied to every element of a source, into a result that already has the shape and the type.
 *  TensorOp1 goes by the tensor types of both arrays, PackedTensorOp1 by the source's type and resultType.
 *  Integer sources have integer results only. The result may be the source.
 *  returns  -2 for success;
 *           -1 if there is no kernel for the function and the two types, an array is null, or the result's
 *           storage is too small for what the kernel writes;
 *           else the 0-based index of a failing element, by the mode of the run, which also tells what was
 *           written. */
mint TensorOp1(const MTensor* source, MTensor* result, int32_t number, uint32_t flags) VLM_NOEXCEPT;
mint PackedTensorOp1(const MTensor* source, MTensor* result, int32_t resultType, int32_t number,
                     uint32_t flags) VLM_NOEXCEPT;

/** The same for arrays of every element type. MNumericArray_Op1 goes by the source's element type alone.
 *  MNumericArrayMathUnary returns 0 where MNumericArray_Math_T_T does, and 1 for every other status. */
int32_t MNumericArray_Math_T_T(int32_t number, const MNumericArray* source, int32_t resultType,
                               MNumericArray** result, uint32_t flags) VLM_NOEXCEPT;
mint MNumericArray_Op1(const MNumericArray* source, MNumericArray* result, int32_t number,
                       uint32_t flags) VLM_NOEXCEPT;
int32_t MNumericArrayMathUnary(MNumericArray** result, const MNumericArray* source, int32_t number,
                               int32_t resultType, uint32_t flags) VLM_NOEXCEPT;

/** Vector kernel that copies mint elements; it checks nothing and returns 0. */
mint machfunc_i_copy(void* result, const void* source, mint count, const mint* increments,
                     uint32_t flags) VLM_NOEXCEPT;

VLM_END_DECLS

#endif
