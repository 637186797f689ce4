/* Structural transforms: they rearrange the elements of an array without looking at their values. The names that begin with MTensor
 * work on tensors, the others on all element types; both are the same operation.
 *
 *  - Results go through a pointer to an array pointer. Where nothing else is said, a NULL *target gets a new array, another array is
 *    reshaped and its storage reused, and *target may be a source: the result is made apart and moved into it.
 *  - Positions are one-based, a negative position counts from the end.
 *  - Statuses: 0; LibraryTypeError, LibraryRankError, LibraryDimensionError and LibraryNumericalError (1 to 4, status.h) as told below;
 *    ArrayStatusNoMemory (403) if storage fails or a size overflows; ArrayStatusNullArgument for a NULL array. After a failure the
 *    sources are as they were; a target that was reshaped holds unspecified elements.
 *  - Copies move in the largest contiguous runs, large ones on the team (parallel.h).
 *  - Threads: any, on distinct targets. */
#ifndef VELORIM_STRUCTURAL_H
#define VELORIM_STRUCTURAL_H

#include <velorim/array.h>

VLM_BEGIN_DECLS

/* ---- Sequences ---- */

/** Bits of the flags of a sequence specification: a start or an end above the dimension is lowered to it. */
enum { SequenceClampStart = 1, SequenceClampEnd = 2 };

/** Normalises start, end and step in a dimension of length d, and counts the positions.
 *  start  0 or less counts from the end: 0 is d + 1, -1 is d.   end  less than 0 counts from the end: -1 is d.
 *  step   the least mint chooses: -1 if the end lies below the start, else 1. 0 is never valid.
 *  An end one place before the start (behind it for a negative step) is an empty sequence.
 *  returns 1 with the normalised values and the count; 0, with nothing stored, if they are not valid in the dimension.
 *  d = 5: (2, -1) is 2 to 5; (6, 5) is empty; (7, 5) is not valid; 1 to 4 by 2 has 2 positions. */
int32_t NormalizeSeqSpec(mint d, uint32_t flags, mint* start, mint* end, mint* step,
                         mint* count) VLM_NOEXCEPT;

/** The elements whose first n indices lie in the n sequences, one for each of the first dimensions; a negative step reads
 *  backwards. The result has the source's rank; dimension i below n is the count of sequence i.
 *  target  always receives a new array; what it held stays the caller's.      flags  NULL means no flags.
 *  returns 0; 2 for n above the rank; 4 for a sequence that is not valid, or missing ones; 403. *target changes only with 0. */
int32_t MNumericArray_take(MNumericArray** target, const MNumericArray* source, mint n, const mint* starts,
                           const mint* ends, const mint* steps, const uint32_t* flags) VLM_NOEXCEPT;
int32_t MTensor_take(MTensor** target, const MTensor* source, mint n, const mint* starts, const mint* ends,
                     const mint* steps, const uint32_t* flags) VLM_NOEXCEPT;

/** The elements none of whose first n indices lies in its sequence; otherwise as take. */
int32_t MNumericArray_drop(MNumericArray** target, const MNumericArray* source, mint n, const mint* starts,
                           const mint* ends, const mint* steps, const uint32_t* flags) VLM_NOEXCEPT;
int32_t MTensor_drop(MTensor** target, const MTensor* source, mint n, const mint* starts, const mint* ends,
                     const mint* steps, const uint32_t* flags) VLM_NOEXCEPT;

/** Take (take not 0) or drop with n specifications as compiled code passes them: two words each, kind and value. Kind 1: the value
 *  is the address of a rank-1 integer tensor: {} selects nothing, {v} one position, {first, last}, {first, last, step}. Any
 *  other kind: the value is a number, the first so many for 0 and above, the last so many below 0; kind -1 clamps the start.
 *  returns as take; 4 for any other tensor. */
int32_t Runtime_MNumericArray_TakeDrop(MNumericArray** target, const MNumericArray* source, mint n,
                                       const int64_t* specs, int32_t take) VLM_NOEXCEPT;

/* ---- Other rearrangements ---- */

/** Merges the first level + 1 dimensions, all of them if there are not so many. In place nothing moves.
 *  returns 0; 1008 for a negative level; 403.       {2, 3, 4} at level 1 -> {6, 4} */
int32_t MNumericArray_flatten(MNumericArray** target, MNumericArray* source, mint level) VLM_NOEXCEPT;

/** count arrays behind each other along the first dimension. Ranks, other dimensions and element types agree.
 *  target  always receives a new array; what it held stays the caller's. No arrays give an empty Integer64 vector.
 *  returns 0; 2 for arrays of rank 0; 3 if ranks or other dimensions differ; 4 if element types differ; 403. */
int32_t MNumericArray_join(MNumericArray** target, MNumericArray* const* arrays, mint count) VLM_NOEXCEPT;
int32_t MTensor_Join(MTensor** target, MTensor* const* arrays, mint count) VLM_NOEXCEPT;

/** The same along dimension level (from 1), into an existing tensor, which may be one of them.
 *  returns 0; 2 for a level outside 1 to the rank of the first, or no arrays; 3; 4; 403. */
int32_t MTensor_joinDimension(MTensor* target, mint count, MTensor* const* arrays, mint level) VLM_NOEXCEPT;

/** Windows over the first n dimensions, n being the length of sizes and offsets (rank-1 Integer64): result element
 *  (w1 .. wn, j1 .. jn, rest) is source element (w1 offset1 + j1, .., wn offsetn + jn, rest), counting from 0, with
 *  max(0, (d - size + offset) / offset) windows, whole windows only, in each.
 *  returns 0, also for an empty result; 1, 2 for sizes or offsets of another type, rank or length, or n above the rank; 3 for a
 *  negative size, an offset below 1, or a source without elements; 4, at n of 2 and more, if a row of a dimension before the n-th lies
 *  in no window; 403.       7 elements, size 3, offset 2 -> {3, 3} */
int32_t MNumericArray_partition(MNumericArray** target, const MNumericArray* source,
                                const MNumericArray* sizes, const MNumericArray* offsets) VLM_NOEXCEPT;
int32_t TensorPartition(MTensor** target, const MTensor* source, const MTensor* sizes,
                        const MTensor* offsets) VLM_NOEXCEPT;

/** Reverses the first dimension: row i of the result is row d - 1 - i.
 *  returns 0; 2 for rank 0; 1301 for a source with elements but no element type; 403. */
int32_t MNumericArray_reverse(MNumericArray** target, const MNumericArray* source) VLM_NOEXCEPT;

/** Rotates the first n dimensions: index p of dimension i takes index (p + shift_i) mod d_i, so that a positive shift moves elements
 *  to the front.
 *  returns 0; 3 for n above the rank; 1301; 403.       {1, 2, 3, 4, 5} by 7 -> {3, 4, 5, 1, 2} */
int32_t MNumericArray_rotate(MNumericArray** target, const MNumericArray* source, mint n,
                             const mint* shifts) VLM_NOEXCEPT;

/** Pads or cuts to the sizes |sizes[i]|, one entry of sizes and margins for each dimension. A positive size puts the source against
 *  the end, with margin places of padding behind it; a negative one against the start, with margin places before it; a negative
 *  margin cuts the source there. The padding repeats cyclically in every dimension, its first element at the place where the margin
 *  begins (positive size) or ends (negative).
 *  padding  of rank 0 or the source's rank.
 *  returns  0; 1 if padding has another element type; 2 another rank; 3 for a size of 0 or an empty padding; 403.
 *  {a, b} to size 5, margin 1, padding {x} -> {x, x, a, b, x}; size -5 -> {x, a, b, x, x} */
int32_t MTensor_pad(MTensor** target, const MTensor* source, const MTensor* padding, const mint* sizes,
                    const mint* margins) VLM_NOEXCEPT;

/* ---- Walks over positions: rank entries from 1 to the dimension, last dimension fastest ---- */

/** All entries 1. */
void InitializePosition(mint rank, mint* position) VLM_NOEXCEPT;
/** One step.       returns 1; 0 with all entries 1 behind the last position; 0 for rank below 1 or a last dimension of 0. */
int32_t IncrementPosition(mint rank, const mint* dims, mint* position) VLM_NOEXCEPT;
/** n steps, in mixed radix; a negative n walks back.
 *  returns 1 if the position stays inside the shape; 0 if it does not (it has wrapped then), for rank below 1 and dimensions of 0. */
int32_t IncrementPositionBy(mint rank, const mint* dims, mint* position, mint n) VLM_NOEXCEPT;
/** The zero-based row-major index of a position.       (2, 3) in {4, 5} -> 7 */
mint FlatIndex(mint rank, const mint* dims, const mint* position) VLM_NOEXCEPT;

VLM_END_DECLS

#endif
