/* The array record, its type tables and its life.
 *
 * Every array of the library, of any element type, is one record: MNumericArray. An MTensor is the same record seen
 * through the smaller set of tensor type codes; each MTensor_ form maps its code and is the MNumericArray_ form of the same
 * name.
 *
 * Conventions of this header:
 *  - Ownership. The record, its dims block and its data block are three blocks of zalloc (memory.h) that belong to the
 *    record; MNumericArray_delete frees all three. "Taken over" means that a block of the caller, which must come from
 *    zalloc, belongs to the record from then on. dims that are not taken over are copied and stay the caller's.
 *  - failMode. FailFatal, FailNull or FailReport (base.h). It governs dims and data; a record itself is allocated with
 *    FailFatal always. Storage that cannot be had ends the process under FailFatal, and gives 403 or NULL otherwise.
 *  - Status. On any nonzero status the array holds what it held before the call, elements included.
 *      0     success.
 *      402   ArrayStatusBadDimensions: a negative dimension, or dims NULL at a positive rank. Never fatal, whatever failMode.
 *      403   ArrayStatusNoMemory: storage failed, its size overflows 64 bits, or elements of no type (code 0 or outside
 *            0..13) were asked for.
 *      1300  ArrayStatusNullArgument: no array.
 *  - Shapes. rank dimensions, row-major; a rank below 1 is rank 0, a scalar: one element and no dims. A shape with a zero
 *    dimension has no elements: data is NULL and dims are kept. New elements are not initialised. The number of elements is
 *    below 2^63 - 1.
 *  - Threads. An array is used by one thread at a time; it may be deleted on a thread other than the one that made it.
 *    Distinct arrays may be used on any threads. refCount is a plain, not an atomic counter. */
#ifndef VELORIM_ARRAY_H
#define VELORIM_ARRAY_H

#include <velorim/base.h>
#include <velorim/status.h>

/** The array record. Compiled code and plug-ins read the fields directly: order and widths are fixed. */
struct MNumericArray {
  double precision; /**< 2^53 for an integer type or none, MachinePrecision (minus infinity) for the others */
  mint* dims;       /**< rank dimensions, a block of zalloc; NULL at rank 0 */
  mint rank;        /**< number of dimensions */
  uint32_t tensorType;  /**< MTensorTypeInteger, MTensorTypeReal, MTensorTypeComplex, or 0: no tensor view */
  uint32_t flags;       /**< bits of ArrayFlag */
  uint32_t elementType; /**< element type code 0..13 */
  mint flattenedLength; /**< product of the dimensions, 1 at rank 0; 0 in a record that never had a shape */
  void* data;    /**< elements, at a multiple of 8 for types 1..8, of 16 for the others; NULL if none */
  mint refCount; /**< starts at 1; a counter of the callers, which only MTensor_release acts on */
};

/** Bits of MNumericArray::flags. Setting an element type writes the bits 0x8B and no other. */
enum ArrayFlag {
  ArrayFlagNumeric = 0x83,     /**< three bits, set together for every element type 1..13 */
  ArrayFlagComplex = 0x08,     /**< set beside ArrayFlagNumeric for the complex types */
  ArrayFlagInExpr = 0x800000,  /**< owned by an expression: deletion ignores the array */
  ArrayFlagEternal = 0x2000000 /**< the eternal tensor: deletion ignores it */
};

/** Conversion method codes, by the names of MNumericArrayConvertMethodString. */
enum MNumericArrayConvertMethod {
  MNumericArrayConvertCheck = 1,
  MNumericArrayConvertClipAndCheck = 2,
  MNumericArrayConvertCoerce = 3,
  MNumericArrayConvertClipAndCoerce = 4,
  MNumericArrayConvertRound = 5,
  MNumericArrayConvertClipAndRound = 6,
  MNumericArrayConvertScale = 7,
  MNumericArrayConvertClipAndScale = 8,
  MNumericArrayConvertCast = 9,
  MNumericArrayConvertClipAndCast = 10
};

/** A tagged number: tag is MTensorTypeInteger, MTensorTypeReal or MTensorTypeComplex and names the member
 * that holds. */
typedef struct IDCNum {
  int64_t tag;
  union {
    mint integer;
    mreal real;
    mcomplex complex;
  } value;
} IDCNum;

VLM_BEGIN_DECLS

/* ---- Tables
 * ----------------------------------------------------------------------------------------------------------
 */

/** Bytes of an element by element type code: 0, 1, 1, 2, 2, 4, 4, 8, 8, 4, 8, 8, 16, 2. */
extern const int64_t MNumericArray_typeSizeTable[14];
/** Element type by tensor type code: 0, 7, 7, 10, 12. */
extern const int32_t MTensorToMNumericArrayType[5];
/** Tensor type by element type code, 0 where there is no tensor view: 2 at 7, 3 at 10, 4 at 12. */
extern const int32_t MNumericArrayToMTensorType[14];
/** Bytes of an element by compiler type code: 0, 4, 8, 8, 16, 8. */
extern const int64_t CompilerTypeSizeTable[6];

/* ---- Names ----
 * Exact match, letter case included. The two lookups that say so need the maps that exist from phase 1 of the initialisation
 * to DeinitializeRuntimeLibrary, and from ReinitializeRuntimeLibrary on; without them they give 0. Strings returned are
 * constants. Threads: any, outside the lifecycle operations. */

/** Element type code of a name such as "Integer8", "Byte", "double" or "Half"; 0 for any other and for NULL.
 * Needs the maps. "Complex64" is ComplexReal32 and "Complex128" ComplexReal64: the number counts the bits of
 * both parts. */
int32_t MNumericArrayType_fromString(const char* name) VLM_NOEXCEPT;
/** Element type code of a name of the older raw-array vocabulary, which also has "Integer" (5), "Real" (10),
 * "Complex" and "mcomplex" (12), and lacks the Machine... names and Real16; 0 for any other and for NULL.
 * Works at all times. */
int32_t MRawArrayType_fromString(const char* name) VLM_NOEXCEPT;
/** Raw-array name of an element type code 1..12, such as "Complex64" for 11; NULL for any other code. */
const char* MRawArrayTypeString(int32_t code) VLM_NOEXCEPT;
/** Name of an element type code 1..13, such as "ComplexReal32" for 11; NULL for any other code. */
const char* MNumericArrayTypeString(int32_t code) VLM_NOEXCEPT;
/** Conversion method code of "Check", "ClipAndCheck", "Coerce", "ClipAndCoerce", "Round", "ClipAndRound",
 * "Scale", "ClipAndScale", "Cast", "ClipAndCast" (1..10); 0 for any other and for NULL. Needs the maps. */
int32_t MNumericArrayConvertMethod_fromString(const char* name) VLM_NOEXCEPT;
/** Name of a conversion method code 1..10; NULL for any other. */
const char* MNumericArrayConvertMethodString(int32_t code) VLM_NOEXCEPT;

/** Widens a tagged number in place to the tag target: integer to real (rounded to nearest even), integer or real to complex
 *  with imaginary part 0.0.
 *  returns 0 if the number now has the tag target or had it already, and, for target 3 and 4, if its tag is none of 2, 3
 *          and 4 (number unchanged); 1 for complex to real and for any other target (number unchanged).
 *  number not NULL. Threads: any, on distinct numbers. */
int32_t IDCNumToType(IDCNum* number, int32_t target) VLM_NOEXCEPT;

/* ---- Creation ---- */

/** New empty record: precision 2^53, refCount 1, all else 0. Never NULL. Give it back with MNumericArray_delete. */
MNumericArray* MNumericArray_new(void) VLM_NOEXCEPT;

/** Stores the values of an empty record in a record that the caller provides (not NULL), whatever it held:
 * blocks of a former content are not freed. Release the content with MNumericArray_freeMemory. */
void MNumericArray_initialize(MNumericArray* record) VLM_NOEXCEPT;

/** New array of the type and shape, elements not initialised. NULL on failure: any status but 0 of this header. */
MNumericArray* MNumericArray_newAllocatedCommon(int32_t type, mint rank, const mint* dims,
                                                int32_t failMode) VLM_NOEXCEPT;

/** The same, taking over the block dims. At rank 0 a block that is not NULL is freed.
 *  NULL on failure: then dims has been freed, except under 402 (a negative dimension), where it stays the caller's. */
MNumericArray* MNumericArray_newUsingDimsCommon(int32_t type, mint rank, mint* dims,
                                                int32_t failMode) VLM_NOEXCEPT;

/** Gives an initialised record a type and shape; storage that it has is reused or replaced, elements are not initialised.
 *  copyDims  nonzero: dims is copied; zero: dims is taken over.
 *  returns   0; 402 or 1300 (dims stays the caller's); 403 (a block dims that was to be taken over has been freed). */
int32_t MNumericArray_initializeUsingDims(MNumericArray* record, int32_t type, mint rank, mint* dims,
                                          int32_t copyDims, int32_t failMode) VLM_NOEXCEPT;

/** New array over the block data, taken over, with dims copied. data holds the elements of the shape; a block that is not
 *  aligned for the type (multiple of 8 for types 1..8, of 16 for the others) is moved. With data NULL this is
 *  MNumericArray_newAllocatedCommon. For a shape without elements the block is freed.
 *  NULL on failure: then data has been freed, except under 402, where it stays the caller's. */
MNumericArray* MNumericArray_newUsingDataArrayCommon(int32_t type, mint rank, const mint* dims, void* data,
                                                     int32_t failMode) VLM_NOEXCEPT;

/** The same, taking over dims too. With data NULL this is MNumericArray_newUsingDimsCommon.
 *  NULL on failure: then both blocks have been freed, except under 402, where both stay the caller's. */
MNumericArray* MNumericArray_newUsingDataArrayAndDimsCommon(int32_t type, mint rank, mint* dims, void* data,
                                                            int32_t failMode) VLM_NOEXCEPT;

/** New array with dims and elements copied. A zero is accepted as the last dimension only; at rank 0 one element is copied.
 *  NULL on failed storage, on a zero before the last dimension, for dims NULL at a positive rank, and for data NULL with
 *  elements to copy. A negative dimension or a count of elements that overflows ends the process (nomem), whatever
 *  failMode. */
MNumericArray* MNumericArray_newCopyFromDataArrayCommon(int32_t type, mint rank, const mint* dims,
                                                        const void* data, int32_t failMode) VLM_NOEXCEPT;

/** Reshapes a record of any former content, keeping its blocks where it can: an equal shape of equal type returns at once
 *  and keeps the elements; otherwise elements have no defined value but what a resize of the block keeps. A record whose
 *  dimensions are equal already and that has no data gets the type alone.
 *  dims     may be or overlap the array's own block.
 *  returns  0; 402; 403; 1300. */
int32_t MNumericArray_allocateMemoryCommon(MNumericArray* array, int32_t type, mint rank, const mint* dims,
                                           int32_t failMode) VLM_NOEXCEPT;

/** The target form: with *arrayInOut NULL makes the array there (NULL again on failure), otherwise
 *  MNumericArray_allocateMemoryCommon on it.
 *  returns  0; 402; 403; 1300 for arrayInOut NULL. */
int32_t MNumericArray_allocateCommon(MNumericArray** arrayInOut, int32_t type, mint rank, const mint* dims,
                                     int32_t failMode) VLM_NOEXCEPT;

/** MNumericArray_allocateMemoryCommon with the type, rank and dims of model. model may be array. */
int32_t MNumericArray_allocateMemoryLikeCommon(MNumericArray* array, const MNumericArray* model,
                                               int32_t failMode) VLM_NOEXCEPT;

/* ---- Destruction and sharing ---- */

/** Frees an array whatever its refCount. NULL, and an array with ArrayFlagInExpr or ArrayFlagEternal, is left alone. */
void MNumericArray_delete(MNumericArray* array) VLM_NOEXCEPT;
/** Frees data and dims and resets the record to no shape, no type and no flags, whatever its flags were. The record and its
 *  refCount stay. NULL is ignored. */
void MNumericArray_freeMemory(MNumericArray* array) VLM_NOEXCEPT;
/** MNumericArray_delete of count entries, NULL ones skipped, and zfree of the block arrays. A NULL block is ignored. */
void MNumericArrayArray_delete(mint count, MNumericArray** arrays) VLM_NOEXCEPT;
/** MNumericArray_delete. */
void FreeMTensor(MTensor* array) VLM_NOEXCEPT;
void FreeMNumericArray(MNumericArray* array) VLM_NOEXCEPT;
/** Lowers refCount by 1 and deletes the array if it was 1. array not NULL. */
void MTensor_release(MTensor* array) VLM_NOEXCEPT;
/** refCount + 1, refCount - 1. Return the old value and free nothing. array not NULL. */
mint MTensor_RefCountIncrement(MTensor* array) VLM_NOEXCEPT;
mint MNumericArray_RefCountIncrement(MNumericArray* array) VLM_NOEXCEPT;
mint MTensor_RefCountDecrement(MTensor* array) VLM_NOEXCEPT;
mint MNumericArray_RefCountDecrement(MNumericArray* array) VLM_NOEXCEPT;
/** NULL, for code that needs it as a call. */
MTensor* mtensor_null(void) VLM_NOEXCEPT;
MNumericArray* mnumericarray_null(void) VLM_NOEXCEPT;
/** The eternal tensor: one empty record with ArrayFlagEternal and refCount 0x7fffffffffffffff, which deletion ignores. NULL
 *  before phase 4 of the initialisation. */
MTensor* getEternalMTensor(void) VLM_NOEXCEPT;

/* ---- Dimensions ---- */

/** Product of the dimensions; 1 for a rank below 1. {0, 5} -> 0.
 *  returns  0x7fffffffffffffff if a dimension is negative, also behind a zero, if a product from the left overflows, or for
 *           dims NULL at a positive rank; under FailFatal the process ends instead. */
mint NumberOfElementsCommon(mint rank, const mint* dims, int32_t failMode) VLM_NOEXCEPT;

/** Stores a rank and dimensions and flattenedLength = length; data stays. Rank 0 frees the block of the dimensions and stores
 *  length 1. dims may be or overlap the array's own block. The caller sees to it that length is the product.
 *  returns  0; 403; 402 for dims NULL at a positive rank; 1300. */
int32_t MNumericArray_setDimensionsCommon(MNumericArray* array, mint rank, const mint* dims, mint length,
                                          int32_t failMode) VLM_NOEXCEPT;

/** The same keeping flattenedLength, but for rank 0, which stores 1: another shape of equal length over the same elements.
 *  Call it with FailFatal: it has no result, and leaves the array unchanged if another mode fails. */
void MNumericArray_resetDimensionsCommon(MNumericArray* array, mint rank, const mint* dims,
                                         int32_t failMode) VLM_NOEXCEPT;

/** 1 if the dimensions agree on the shorter rank, so that rank 0 agrees with everything; 0 if not. {2} with {2, 3} -> 1.
 *  a, b not NULL, here and below. */
int32_t MNumericArray_compatibleDimensionsQ(const MNumericArray* a, const MNumericArray* b) VLM_NOEXCEPT;

/** If compatible, stores the larger rank and the dimensions of the array that has it (a at equal rank) and returns 1; 0 and
 *  nothing stored otherwise. *dimsOut points into that array: do not free it. */
int32_t MNumericArray_maxCompatibleDimensions(const MNumericArray* a, const MNumericArray* b, mint* rankOut,
                                              mint** dimsOut) VLM_NOEXCEPT;

/* ---- Tensor forms ----
 * tensorType is a code 0..4 and mapped by MTensorToMNumericArrayType; any other counts as 0, no type. Where nothing is said
 * below, each is the MNumericArray_ form of the same name. */

MTensor* MTensor_new(void) VLM_NOEXCEPT;
MTensor* MTensor_newAllocatedCommon(int32_t tensorType, mint rank, const mint* dims,
                                    int32_t failMode) VLM_NOEXCEPT;
/** MNumericArray_newUsingDataArrayCommon with FailFatal. */
MTensor* MTensor_newUsingDataArray(int32_t tensorType, mint rank, const mint* dims, void* data) VLM_NOEXCEPT;
/** MNumericArray_newCopyFromDataArrayCommon with FailFatal. */
MTensor* MTensor_newCopyFromDataArray(int32_t tensorType, mint rank, const mint* dims,
                                      const void* data) VLM_NOEXCEPT;
int32_t MTensor_allocateMemoryCommon(MTensor* array, int32_t tensorType, mint rank, const mint* dims,
                                     int32_t failMode) VLM_NOEXCEPT;
int32_t MTensor_allocateCommon(MTensor** arrayInOut, int32_t tensorType, mint rank, const mint* dims,
                               int32_t failMode) VLM_NOEXCEPT;
int32_t MTensor_allocateMemoryLikeCommon(MTensor* array, const MTensor* model, int32_t failMode) VLM_NOEXCEPT;
void MTensor_delete(MTensor* array) VLM_NOEXCEPT;
void MTensorArray_delete(mint count, MTensor** arrays) VLM_NOEXCEPT;
void MTensor_freeMemory(MTensor* array) VLM_NOEXCEPT;
/** Changes the element type with its tensorType, flags and precision; data and dims stay as they are, so that the caller
 *  sees to the bytes. The boolean type, 1, gives integer elements. array not NULL. */
void MTensor_setType(MTensor* array, int32_t tensorType) VLM_NOEXCEPT;
int32_t MTensor_compatibleDimensionsQ(const MTensor* a, const MTensor* b) VLM_NOEXCEPT;
int32_t MTensor_maxCompatibleDimensions(const MTensor* a, const MTensor* b, mint* rankOut,
                                        mint** dimsOut) VLM_NOEXCEPT;

VLM_END_DECLS

#endif
