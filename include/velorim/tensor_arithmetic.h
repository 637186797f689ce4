/* Arithmetic of whole arrays and of single values: functions of two arguments applied to arrays that meet, functions of three
 * arguments on vectors, one-number calls, compensated addition.
 *
 * Function numbers, kernel flags, rows, increments and the ways of looking for failures are those of machine_functions.h; here
 * "in place" means that the result is any one of the arguments.
 *
 * Shapes. Two arrays meet when the dimensions of the one of lower rank equal the leading dimensions of the other: {2} meets
 * {2, 3}, and a rank-0 array meets every array. {2, 3} does not meet {3}. The result has the shape of the one of higher rank;
 * each element of the other is paired with one contiguous block of it:
 *
 *   {1, 2} + {{1, 2}, {3, 4}} = {{2, 3}, {5, 6}}
 *
 * The blocks are worked on in order, each as one call of the row's vector kernel with the element that it is paired with; a
 * position is counted from the first element of the whole, and a failure in bulk mode is the first element of its block (or
 * chunk). The blocks behind the failing one are unwritten.
 *
 * Types. The row of a function is found by the types of the arguments; what it writes is told by MTensor_ReturnType2,
 * MNumericArray_ReturnType2 and ReturnRangeType2. A tensor of integers, reals or complexes takes the row of Integer64, Real64
 * or ComplexReal64. Numbers of tensor operators, by the types of x and y (I, R, C):
 *
 *   II     result I      all but div, log, atan2, chop, relerr
 *   IR, RI result I, R   plus subtract times div mod quotient pow log atan2 abserr relerr ceilingmultiple floormultiple
 *                        roundmultiple max min; RI bitshiftleft and bitshiftright too
 *   RR     result I, R   every function with a Real64 row
 *   IC, RC result R, C   plus subtract times div mod pow log atan2 abserr relerr ceilingmultiple floormultiple roundmultiple
 *   CI     result R, C   plus subtract times div mod pow log atan2 abserr relerr bitshiftleft bitshiftright
 *   CR     result R, C   plus subtract times div mod pow log atan2 chop abserr relerr unitize
 *   CC     result R, C   as RC, and maxabs
 *   IR, RI, RR with result C: promotion, for the functions of that line
 *
 * All other combinations have no kernel.
 *
 * Promotion: real arguments, complex result. A function that can leave the reals, such as the square root or a power, is
 * computed in reals where that succeeds, and in complex numbers where it does not:
 *  - If the result array is still Real (an operator with Complex as the type asked for), the real row runs first. When it finds
 *    no failure the result stays Real and the outcome is -2. When it does, the array becomes Complex, keeps the elements before
 *    the failing one, and the rest is computed one by one.
 *  - Otherwise every element is computed one by one. The outcome is -3 if all elements computed so were real, -4 if all were
 *    complex, -7 if there were both (elements kept count as real), and 0 for no elements at all.
 *  - Functions of two arguments detect real failures with MACHFUNC_CHECK_FP whatever the flags, and a complex value whose
 *    imaginary part is exactly 0 does not cure one: pow(-8.0, 1.0 / 3.0) becomes complex, a division by zero stays a failure.
 *    Functions of one argument go by the caller's flags: without MACHFUNC_CHECK_FP, log of -1.0 is a real NaN.
 *  - An element that fails in both ways is the outcome. The elements behind it are those of the array before, as complex numbers
 *    with imaginary part 0, as far as the array had been left real.
 *  - Without a complex row the outcome is -1, for functions of two arguments only after the real row has been tried.
 *  - Rows that give integers or reals from such arguments (sign, abs, quotient) have their values stored as numbers of the
 *    result's type.
 *  - Where memory runs out, the array stays Real and the outcome is the index of the real failure, -1 if there is no real row.
 *
 * Threads: any, on distinct targets. */
#ifndef VELORIM_TENSOR_ARITHMETIC_H
#define VELORIM_TENSOR_ARITHMETIC_H

#include <velorim/machine_functions.h>

VLM_BEGIN_DECLS

/* ---- Two arrays ---- */

/** r = f(x, y) with a target that is made or reused.
 *  x, y        tensors that meet; they may be the same.
 *  resultType  tensor type of the result (1 counts as 2), as for Math_T_T.
 *  result      target: null makes a tensor, an existing one is reshaped and its storage reused. It may be x or y: then work is in
 *              place if it has the shape of the result and its type (or is real where promotion can keep it real), and else
 *              gives what reading x and y whole first would give.
 *  returns     0;
 *              4 if an element failed, there is no kernel for function and types, or an argument is null (a target that is x or y
 *              is then unchanged where there was no kernel; any other has its shape and holds what was written);
 *              5 if memory ran out; -1 if the shapes do not meet; any other status of the allocation as it is. In these cases
 *              nothing has changed. */
int32_t Math_TT_T(int32_t number, uint32_t flags, const MTensor* x, const MTensor* y, int32_t resultType,
                  MTensor** result) VLM_NOEXCEPT;
/** The same for arrays of every element type, by the row of the element types of x and y. There is no promotion.
 *  MNumericArrayMathBinary returns 0 where MNumericArray_Math_TT_T does, and 1 for every other status. */
int32_t MNumericArray_Math_TT_T(int32_t number, const MNumericArray* x, const MNumericArray* y,
                                int32_t resultType, MNumericArray** result, uint32_t flags) VLM_NOEXCEPT;
int32_t MNumericArrayMathBinary(MNumericArray** result, const MNumericArray* x, const MNumericArray* y,
                                int32_t number, int32_t resultType, uint32_t flags) VLM_NOEXCEPT;

/** Operators: the same into a result that already has the shape and the type. TensorOp2 goes by the tensor types of all three
 *  arrays, PackedTensorOp2 by those of x and y and resultType. Shapes go by the numbers of elements alone: equal, or the one a
 *  multiple of the other. The result may be x or y, whichever has the higher rank.
 *  returns  -2 for success, also if x or y has no elements; -3, -4, -7 and 0 from promotion as told above;
 *           -1 if there is no kernel for the function and the types, an array is null, the numbers of elements do not fit each
 *           other, or the result's storage is too small for what the kernel writes;
 *           else the 0-based index of a failing element, by the mode of the run, which also tells what was written. */
mint TensorOp2(const MTensor* x, const MTensor* y, MTensor* result, int32_t number,
               uint32_t flags) VLM_NOEXCEPT;
mint PackedTensorOp2(const MTensor* x, const MTensor* y, MTensor* result, int32_t resultType, int32_t number,
                     uint32_t flags) VLM_NOEXCEPT;
mint MNumericArray_Op2(const MNumericArray* x, const MNumericArray* y, MNumericArray* result, int32_t number,
                       uint32_t flags) VLM_NOEXCEPT;

/** x + y, x - y, x * y, x / y into a result of the right shape and type.
 *  returns  1 if the outcome of TensorOp2 is -2, else 0: promotion counts as failure here. */
int32_t TensorPlus(const MTensor* x, const MTensor* y, MTensor* result, uint32_t flags) VLM_NOEXCEPT;
int32_t TensorSubtract(const MTensor* x, const MTensor* y, MTensor* result, uint32_t flags) VLM_NOEXCEPT;
int32_t TensorTimes(const MTensor* x, const MTensor* y, MTensor* result, uint32_t flags) VLM_NOEXCEPT;
int32_t TensorDivide(const MTensor* x, const MTensor* y, MTensor* result, uint32_t flags) VLM_NOEXCEPT;

/** x += y, -=, *=, /=. x takes the type of ReturnRangeType2 and the shape of the one of higher rank: Integer += Real makes x
 *  Real, {1, 2} += {{1, 2}, {3, 4}} makes x {{2, 3}, {5, 6}}.
 *  returns  1, or 0: an element failed; there is no kernel (integers have no quotient), the shapes do not meet, memory ran out
 *           or an argument is null, and x is unchanged.
 *  After a failed element x can be gone on with: results stand before it, and from it on the elements of x as they were, in the
 *  type and shape that x then has. Where x keeps type and shape the failing element is found exactly, as in all work in place.
 */
int32_t TensorAddTo(MTensor* x, const MTensor* y, uint32_t flags) VLM_NOEXCEPT;
int32_t TensorSubtractFrom(MTensor* x, const MTensor* y, uint32_t flags) VLM_NOEXCEPT;
int32_t TensorTimesBy(MTensor* x, const MTensor* y, uint32_t flags) VLM_NOEXCEPT;
int32_t TensorDivideBy(MTensor* x, const MTensor* y, uint32_t flags) VLM_NOEXCEPT;

/* ---- Values ---- */

/** r = f(v) for one number.
 *  argumentType, resultType  tensor types: 1 is an int32_t, 2 a mint, 3 an mreal, 4 an mcomplex. With a real argument and a
 *                            complex result this is promotion.
 *  result                    written with the size of its type whether or not the function failed: what the kernel wrote, 0 where
 *                            it wrote nothing.
 *  returns                   0; 4 if the function failed, there is none for the types, a pointer is null, or the library is not
 *                            initialised (with a null pointer, a wrong type or no library nothing is written). */
int32_t Math_V_V(int32_t number, uint32_t flags, int32_t argumentType, const void* argument,
                 int32_t resultType, void* result) VLM_NOEXCEPT;
/** The same by element types 1 to 13. */
int32_t MNumericArray_Math_V_V(int32_t number, int32_t argumentType, const void* argument, int32_t resultType,
                               void* result, uint32_t flags) VLM_NOEXCEPT;

/** r = f(x, y) for numbers and arrays alike.
 *  xType, yType  tensor type of the number that the pointer points to; 0 if the pointer is a const MTensor *.
 *  result        if both arguments are numbers or rank-0 tensors: a number of resultType, written as by Math_V_V; else an MTensor
 *                ** as for Math_TT_T.
 *  returns       as Math_V_V for two numbers, else as Math_TT_T. */
int32_t Math_VV_V(int32_t number, uint32_t flags, int32_t xType, const void* x, int32_t yType, const void* y,
                  int32_t resultType, void* result) VLM_NOEXCEPT;
/** The same by element types, with MNumericArray in place of MTensor. */
int32_t MNumericArray_Math_VV_V(int32_t number, int32_t xType, const void* x, int32_t yType, const void* y,
                                int32_t resultType, void* result, uint32_t flags) VLM_NOEXCEPT;

/* ---- Three arguments ----
 * All arguments and the result have one type. Argument order is always a, x, y.
 *
 *   513  axpy   a x + y          every element type
 *   514  axmy   a x - y          every element type
 *   515  ymax   y - a x          every element type
 *   516  adxmy  a / (x - y)      real and complex types
 *
 * Integers with MACHFUNC_CHECK_INTEGER fail if the product overflows, or else the result. Reals round once (fused), for adxmy the
 * difference and the quotient. Complex products are taken by parts, without recovery of infinities; quotients with it. With
 * MACHFUNC_CHECK_FP, out of place, runs are judged as a whole by their exception flags (bulk mode); in place, and in scalar
 * kernels, the result and the difference of adxmy are looked at element by element. */

enum { MachFunc_axpy = 513, MachFunc_axmy = 514, MachFunc_ymax = 515, MachFunc_adxmy = 516 };

/** The kernels and the result type of a row.
 *  returns  null, or 0 for the types, if there is none: types that differ or are no types, another number. Types are tensor types
 *           for the MTensor_ forms, element types for the others. */
MachFuncVector3 MTensor_getTernaryVectorMachFunc(int32_t number, int32_t aType, int32_t xType,
                                                 int32_t yType) VLM_NOEXCEPT;
MachFuncVector3 MNumericArray_getTernaryVectorMachFunc(int32_t number, int32_t aType, int32_t xType,
                                                       int32_t yType) VLM_NOEXCEPT;
MachFuncScalar3 MTensor_getTernaryScalarMachFunc(int32_t number, int32_t aType, int32_t xType,
                                                 int32_t yType) VLM_NOEXCEPT;
MachFuncScalar3 MNumericArray_getTernaryScalarMachFunc(int32_t number, int32_t aType, int32_t xType,
                                                       int32_t yType) VLM_NOEXCEPT;
int32_t MTensor_ReturnType3(int32_t number, int32_t aType, int32_t xType, int32_t yType) VLM_NOEXCEPT;
int32_t MNumericArray_ReturnType3(int32_t number, int32_t aType, int32_t xType, int32_t yType) VLM_NOEXCEPT;

/** The scalar kernels with their arguments by value.
 *  returns  0, or 1 on failure with nothing written. */
int32_t s_machfunc_iii_axpy(mint* result, mint a, mint x, mint y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_ddd_axpy(mreal* result, mreal a, mreal x, mreal y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_ccc_axpy(mcomplex* result, mcomplex a, mcomplex x, mcomplex y,
                            uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_iii_axmy(mint* result, mint a, mint x, mint y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_ddd_axmy(mreal* result, mreal a, mreal x, mreal y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_ccc_axmy(mcomplex* result, mcomplex a, mcomplex x, mcomplex y,
                            uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_iii_ymax(mint* result, mint a, mint x, mint y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_ddd_ymax(mreal* result, mreal a, mreal x, mreal y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_ccc_ymax(mcomplex* result, mcomplex a, mcomplex x, mcomplex y,
                            uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_ddd_adxmy(mreal* result, mreal a, mreal x, mreal y, uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_ccc_adxmy(mcomplex* result, mcomplex a, mcomplex x, mcomplex y,
                             uint32_t flags) VLM_NOEXCEPT;

/* ---- Compensated addition ----
 * With s = b + c: the sum a + s, and what its rounding lost, s + (a - sum), which is exact where |a| >= |s| (T. J. Dekker, "A
 * floating-point technique for extending the available precision", 1971). Carried from one addition to the next as c it makes
 * Kahan's summation. The real and the imaginary part of a complex number are added by themselves. */

/** For i from 0 to count - 1, in order and on the calling thread: the sum of a[i], b[i] and c[i] to result[i], and what it lost
 *  to c[i].
 *  increments  the steps of result, a, b and c in elements, of any size and sign. Every element is read when its turn comes:
 *              result and a one element with step 0, and c one element with step 0, make *a the sum of all b.
 *  flags       MACHFUNC_CHECK_FP: stop where the sum or what it lost is a NaN or infinite, with that element unwritten.
 *  returns     0, or the 1-based position of that element. */
mint machfunc_ddd_compplus(mreal* result, const mreal* a, const mreal* b, mreal* c, mint count,
                           const mint* increments, uint32_t flags) VLM_NOEXCEPT;
mint machfunc_ccc_compplus(mcomplex* result, const mcomplex* a, const mcomplex* b, mcomplex* c, mint count,
                           const mint* increments, uint32_t flags) VLM_NOEXCEPT;
/** One element, with *compensation in the place of c.       returns 0, or 1 on failure with nothing written.
 *  a = 1e16, b = 1.0, *compensation = 0.0: *sum = 1e16, *compensation = 1.0. */
int32_t s_machfunc_ddd_compplus(mreal* sum, mreal* compensation, mreal a, mreal b,
                                uint32_t flags) VLM_NOEXCEPT;
int32_t s_machfunc_ccc_compplus(mcomplex* sum, mcomplex* compensation, mcomplex a, mcomplex b,
                                uint32_t flags) VLM_NOEXCEPT;

VLM_END_DECLS

#endif
