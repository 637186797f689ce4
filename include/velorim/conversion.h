/* Conversion of elements between the thirteen element types, by one of ten methods, within a tolerance in bits; and the tolerance test
 * itself.
 *
 *  Methods (array.h). Five base methods, each with a clipping form whose code is one more: what it would refuse because it lies beyond
 *  the range of the target goes to the end of the range instead.
 *
 *    Check   1, 2   the value must survive: tolerance 0              Scale  7, 8   range onto range; reals have the unit range
 *    Coerce  3, 4   the value must nearly survive: tolerance 1       Cast   9, 10  like Check, but never from a real to an integer
 *    Round   5, 6   reals are rounded to whole numbers: tolerance 1
 *
 *  The tolerance is taken in the type of the source (as the nearest Real32 or Real16 of it).
 *
 *  A base method for each class of pair. "Refused" is status 1305. T is the target type, lo and hi its limits, M the largest finite
 *  number of a real T; D the significand bits of a real or complex type (Real16 11, Real32 24, Real64 53); rint rounds to the nearest
 *  integer in the rounding mode of the thread; "matches" is the tolerance test below in the arithmetic of the source's type.
 *
 *                        Check              Coerce             Round              Scale                    Cast
 *    integer to integer  value; refused outside of lo to hi    as Check           range map (1)            as Check
 *    integer to real     nearest number,    nearest number     as Coerce          value / hi of the        as Check
 *                        must convert back  (2)                                   source (3)
 *    real to integer     rint(x), which x must match, in       rint(x) in lo..hi  rint(x hi), x in the     refused
 *                        lo..hi (4)                            (4)                unit range (5)
 *    real to real,       x                  x                  rint(x)            x                        x
 *      T as long or longer
 *    real to shorter     nearest number,    nearest number,    rint of the        as Coerce                as Check
 *                        which x must       |x| up to M        nearest number,
 *                        match, |x| up to M                    |x| up to M
 *    equal types         copied; Round applies rint to every number of a real or complex element
 *
 *    (1) The lowest integer goes to the lowest, the highest to the highest; with equal signs 0 goes to 0. To fewer bits: the top bits.
 *        To more bits: unsigned to unsigned repeats the bits (1 to 257 from 8 to 16 bits); otherwise the new low bits are all ones for
 *        numbers above 0, else all zero (Integer8 to Integer16: 1 to 511, -128 to -32768). Where the signs differ the top bit flips.
 *        Refuses nothing.
 *    (2) Only Real16 refuses, beyond 65504. "Clip" of Check and Cast gives the rounded hi of the source for integers above every
 *        number that converts back (2^63 from Integer64); those below that do not convert back stay refused.
 *    (3) Negative integers are divided by 2^(bits - 1), others by hi rounded to the real type. For Real16 both divisors are at most
 *        65504, Integer16 has 32768 twice, and integers beyond 65504 are refused or clipped to 1 and -1.
 *    (4) From a tolerance of D on nothing is rounded or tested: x is truncated toward zero, if it lies in lo..hi. A NaN gives 0
 *        wherever no test refuses it: Check and Coerce do below D, Round and Scale never do. An infinity is out of range.
 *        Clip does not save what the tolerance test refuses.
 *    (5) The unit range is -1..1, or 0..1 for unsigned T; x outside is refused or clipped, and then x hi once more. Negative x has the
 *        factor 2^(bits - 1). Where hi is not a number of the real type it is rounded up, and x = 1 is out of range. From a tolerance
 *        of D on the product is truncated instead of rounded. Real16 has the factors of (3).
 *
 *  "Up to M": beyond, and infinities, refused or clipped to M or -M; a NaN stays one, which Check and Cast refuse below D. Real64 goes to
 *  Real16 by way of Real32.
 *
 *  Complex elements. A real or integer source gets the imaginary part 0. To a complex target each part is converted by itself. To an
 *  integer or real target the imaginary part must be negligible (near1_reim_mcomplex), or the element is refused by every method, with
 *  clip or without; then the real part is converted. A negative tolerance refuses every one of these; elsewhere it acts as 0.
 *
 *  Refused elements. Those before the first refused element are converted, it and those behind it keep what they held; except that
 *  where Check and Cast to a shorter real fail the match alone, the nearest number is stored (both parts of a complex one). From two
 *  chunks of 64 KiB of target on, conversions run on the team (parallel.h): then other elements may or may not be converted.
 *
 *  Overlap. Elements of one type are copied as if all were read first, if the strides are 1. Source and target of different types
 *  may be the same memory if their elements have the same size; any other overlap of different types leaves unspecified elements.
 *
 *  Statuses 0; ArrayStatusNoMemory (403); ArrayStatusNullArgument (1300); ArrayStatusBadType (1301) for an element type outside of 1 to
 *  13 and for a target of another type; ArrayStatusBadMethod (1304); ArrayStatusNotRepresentable (1305) for a refused element and for
 *  a target too small.       Threads: any, on distinct targets. */
#ifndef VELORIM_CONVERSION_H
#define VELORIM_CONVERSION_H

#include <velorim/array.h>

VLM_BEGIN_DECLS

/* ---- The record of one conversion ---- */

/** Element i is read at sourceOffset + i sourceStride and written at targetOffset + i targetStride, in elements. Strides may be
 *  negative or 0. With a target stride of 0 every result lands on one element: a pass that only asks whether all can be converted. */
typedef struct MNumericArrayConvertData MNumericArrayConvertData;
struct MNumericArrayConvertData {
  mint sourceOffset;
  mint sourceStride;
  mint targetOffset;
  mint targetStride;
  mreal tolerance;  /**< bits */
  int64_t reserved; /**< 0 */
  int32_t method;   /**< base method 1, 3, 5, 7 or 9 */
  uint8_t clip;     /**< bit 0: clip; the others mean nothing */
};

/** Fills a record for a method code 1 to 10: offsets 0, strides 1, the base method with its clip bit, tolerance 0.0 for Check and Cast
 *  and 1.0 for the others. Bits 1 and 2 of clip are cleared, bits 3 to 7 stay as they were. Any other code is stored as it is.
 *  returns record; NULL does nothing. */
MNumericArrayConvertData* MNumericArrayConvertData_init(MNumericArrayConvertData* record,
                                                        int32_t method) VLM_NOEXCEPT;

/* ---- Whole arrays ---- */

/** *target = source converted to an element type by a method code.
 *  target  *target NULL makes an array of the shape of source; another array must have the type and at least as many elements, and
 *          keeps its shape.
 *  returns 0; 1301, 1304, 1300, tested in this order; 403; 1305. After a failure an array made here is deleted and *target is NULL,
 *          another keeps what was written. A target of the wrong type or too short is not touched. */
int32_t MNumericArray_convert(MNumericArray** target, const MNumericArray* source, int32_t type,
                              int32_t method) VLM_NOEXCEPT;

/** The same by a record: as many elements as source has are read and written at the record's offsets and strides, which must stay
 *  inside of both arrays. A target that is there must offer, counted as (length - offset) / stride, at least as many steps as the source;
 *  stride 0 offers none. */
int32_t MNumericArray_convert_common(MNumericArray** target, const MNumericArray* source, int32_t type,
                                     const MNumericArrayConvertData* record) VLM_NOEXCEPT;

/** MNumericArray_convert_common into an array that is there, by its own type. */
int32_t MNumericArray_fillFromMTensor(MNumericArray* target, const MTensor* source,
                                      const MNumericArrayConvertData* record) VLM_NOEXCEPT;

/** MNumericArray_convert as plug-ins call it, with a tolerance in decimal digits: BoundMachineTolerance(digits log2(10)) bits.
 *  returns LibraryOk; LibraryTypeError (1) for the type; LibraryFunctionError (6) for anything else. */
int32_t MNumericArray_convertType(MNumericArray** target, const MNumericArray* source, int32_t type,
                                  int32_t method, mreal digits) VLM_NOEXCEPT;

/* ---- Bare memory, aligned for its elements ---- */

/** count elements side by side, by a method code.       returns 0, also for a count below 1; 1301, 1304, 1300, tested in this order;
 *  1305. */
int32_t MNumericArrayData_convert(void* target, int32_t targetType, const void* source, int32_t sourceType,
                                  mint count, int32_t method) VLM_NOEXCEPT;

/** target[targetOffset + i targetStride] = source[sourceOffset + i sourceStride] for i below count, by Coerce with a tolerance in
 *  bits.       returns 0, also for a count below 1; 1301; 1300; 1305. */
int32_t MNumericArray_coerceDataArray(void* target, int32_t targetType, mint targetOffset, mint targetStride,
                                      const void* source, int32_t sourceType, mint sourceOffset,
                                      mint sourceStride, mint count, mreal tolerance) VLM_NOEXCEPT;
/** The same on the elements of two arrays. */
int32_t MNumericArray_coerceData(MNumericArray* target, mint targetOffset, mint targetStride,
                                 const MNumericArray* source, mint sourceOffset, mint sourceStride,
                                 mint count, mreal tolerance) VLM_NOEXCEPT;
/** 1 if Coerce with this tolerance refuses no element of the array, else 0; nothing is stored. Arrays of rank 0, without elements
 *  or of the type already are always 1, NULL is 0. */
int32_t MNumericArray_canCoerce(const MNumericArray* array, int32_t type, mreal tolerance) VLM_NOEXCEPT;

/* ---- Tensors: type arguments are tensor types. Coercion of elements has a tolerance of 54 bits, so that nothing is tested but the
 *      range: reals are truncated to integers, and imaginary parts dropped. ---- */

int32_t MTensor_coerceDataArray(void* target, int32_t targetType, mint targetOffset, mint targetStride,
                                const void* source, int32_t sourceType, mint sourceOffset, mint sourceStride,
                                mint count) VLM_NOEXCEPT;
int32_t MTensor_coerceData(MTensor* target, mint targetOffset, mint targetStride, const MTensor* source,
                           mint sourceOffset, mint sourceStride, mint count) VLM_NOEXCEPT;
/** MNumericArray_canCoerce with the caller's tolerance. */
int32_t MTensor_canCoerce(const MTensor* tensor, int32_t type, mreal tolerance) VLM_NOEXCEPT;
/** The same, but 0 for the boolean type, in the argument or in tensorType. */
int32_t CanCoerceTensor(const MTensor* tensor, int32_t type, mreal tolerance) VLM_NOEXCEPT;

/** target = source coerced to a tensor type. target is a record of any former content, which is reshaped and its storage reused; a
 *  source of the type is copied.
 *  target may be source: the result is made apart and copied back.
 *  returns 1; 0 on any failure: no such type, no memory, an element that is refused. Then target, if it is source, is as it was;
 *  otherwise its elements are unspecified. */
int32_t CoerceTensor(MTensor* source, int32_t type, MTensor* target) VLM_NOEXCEPT;
/** The same for the elements from `from` to `to`, flat positions from 0, both included; they go to the same positions, and the other
 *  elements of target are unspecified. With to below from target is shaped and nothing converted. A source of the type is copied
 *  whole.       returns 1; 0 also for positions outside of source. */
int32_t CoercePartOfTensor(MTensor* source, int32_t type, MTensor* target, mint from, mint to) VLM_NOEXCEPT;

/* ---- Shared numbers and types ---- */

/** MNumericArray_loadSharedRank0 (array_services.h) of the element at source, converted by Check from one type to another.
 *  returns the cell; NULL for a refused element, a bad type or slot, or source NULL with two types. Then the slot is left alone. */
MNumericArray** MNumericArray_coerceToSharedRank0(const void* source, int32_t sourceType, int32_t targetType,
                                                  mint slot) VLM_NOEXCEPT;

/** The type to which elements of both types convert without loss of kind: complex if one is, else real if one is, with the longer
 *  significand of the real or complex ones; an integer beside a real or complex type gives the latter. Of two integer types the
 *  one of larger code, which need not hold both: Integer8 and UnsignedInteger8 give UnsignedInteger8. 0 if an argument is no type. */
int32_t MNumericArray_common_type(int32_t a, int32_t b) VLM_NOEXCEPT;

/* ---- One number. Each applies the rules above under a record, whose offsets and strides are not looked at.
 *      returns 0; 1300; 1301; 1304 for a method that is no base method; 1305, with *result as it was but for the stored number of a
 *      failed match. ---- */

/** To an integer type of codes 1, 3, 5, 7, or 2, 4, 6, 8, widened to 64 bits. */
int32_t convert_mreal_to_signed_integer(int64_t* result, int32_t type, const MNumericArrayConvertData* record,
                                        mreal value) VLM_NOEXCEPT;
int32_t convert_mreal_to_unsigned_integer(uint64_t* result, int32_t type,
                                          const MNumericArrayConvertData* record, mreal value) VLM_NOEXCEPT;

/** To one element. A Real16 is its bits; a ComplexReal32 two floats, real part first. */
int32_t convert_mint_to_real16(uint16_t* result, mint value,
                               const MNumericArrayConvertData* record) VLM_NOEXCEPT;
int32_t convert_mint_to_real32(float* result, mint value,
                               const MNumericArrayConvertData* record) VLM_NOEXCEPT;
int32_t convert_mint_to_real64(mreal* result, mint value,
                               const MNumericArrayConvertData* record) VLM_NOEXCEPT;
int32_t convert_mint_to_complexreal32(float* result, mint value,
                                      const MNumericArrayConvertData* record) VLM_NOEXCEPT;
int32_t convert_mint_to_complexreal64(mcomplex* result, mint value,
                                      const MNumericArrayConvertData* record) VLM_NOEXCEPT;
int32_t convert_mreal_to_real16(uint16_t* result, const MNumericArrayConvertData* record,
                                mreal value) VLM_NOEXCEPT;
int32_t convert_mreal_to_real32(float* result, const MNumericArrayConvertData* record,
                                mreal value) VLM_NOEXCEPT;
int32_t convert_mreal_to_real64(mreal* result, const MNumericArrayConvertData* record,
                                mreal value) VLM_NOEXCEPT;
int32_t convert_mreal_to_complexreal32(float* result, const MNumericArrayConvertData* record,
                                       mreal value) VLM_NOEXCEPT;
int32_t convert_mreal_to_complexreal64(mcomplex* result, const MNumericArrayConvertData* record,
                                       mreal value) VLM_NOEXCEPT;
int32_t convert_mcomplex_to_real16(uint16_t* result, const MNumericArrayConvertData* record, mreal re,
                                   mreal im) VLM_NOEXCEPT;
int32_t convert_mcomplex_to_real32(float* result, const MNumericArrayConvertData* record, mreal re,
                                   mreal im) VLM_NOEXCEPT;
int32_t convert_mcomplex_to_real64(mreal* result, const MNumericArrayConvertData* record, mreal re,
                                   mreal im) VLM_NOEXCEPT;
int32_t convert_mcomplex_to_complexreal32(float* result, const MNumericArrayConvertData* record, mreal re,
                                          mreal im) VLM_NOEXCEPT;
int32_t convert_mcomplex_to_complexreal64(mcomplex* result, const MNumericArrayConvertData* record, mreal re,
                                          mreal im) VLM_NOEXCEPT;

/** The nearest float; a NaN stays one. Beyond the finite floats: with clip 0 the result is 0.0 and *status 1, else the largest float
 *  with the sign of value. *status is 0 otherwise; status may be NULL. */
float double_to_float(int32_t* status, int32_t clip, mreal value) VLM_NOEXCEPT;

/** Reads the element at a flat position from 0 into a cell of 8 bytes: integers as the nearest double, Real64 as it is; Real32 and
 *  Real16 in their own form in the first bytes, the others 0; of a complex element the real part, likewise.
 *  returns 0; 1300; 1305 for an imaginary part that is not 0, an array without type and a position outside. Then nothing is stored. */
int32_t MNumericArray_dataToReal(mreal* result, const MNumericArray* array, mint index) VLM_NOEXCEPT;
/** The same by value, for tensors; 0.0 on failure. status may be NULL. */
mreal MTensor_dataToReal(const MTensor* array, mint index, int32_t* status) VLM_NOEXCEPT;

/* ---- The tolerance test. With D significand bits (53; 24 in the float forms) x and y match if they are equal, or if both are not 0,
 *      have one sign, and |x - y| < max(|x|, |y|) 2^(tolerance - D). At or below a tolerance of 0 only equal numbers match; from D on
 *      all non-zero numbers of one sign do. A NaN matches nothing below D. An infinity matches no other number below D. ---- */

/** 1 if x and y match, else 0. */
int32_t near1_double(mreal tolerance, mreal x, mreal y) VLM_NOEXCEPT;
int32_t near1_float(float tolerance, float x, float y) VLM_NOEXCEPT;
/** 0 if they match, else -1 or 1 by their order; with a NaN -1 or 1 likewise: not antisymmetric. */
int32_t compare_double(mreal tolerance, mreal x, mreal y) VLM_NOEXCEPT;
int32_t compare_float(float tolerance, float x, float y) VLM_NOEXCEPT;
/** 1 if an imaginary part is negligible beside a real part: it is 0, or the tolerance is at least 53, or re matches re moved by |im|
 *  toward 0, past it if |im| is larger. 0 for a negative tolerance. 1 + 1e-20 i passes at any tolerance from 0 on. */
int32_t near1_reim_mcomplex(mreal tolerance, mreal re, mreal im) VLM_NOEXCEPT;

VLM_END_DECLS

#endif
