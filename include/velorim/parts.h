/* Reading and writing sub-blocks of an array by a list of part specifications, one for each of its first dimensions.
 *
 *  - Indices are one-based; a negative index counts from the end, -1 being the last. Index 0 stands for the head of a part, which
 *    arrays do not hold.
 *  - Nothing is written before the checks pass. Working space is freed before every return.
 *  - Checks and engine run on the calling thread; the copies in them and MNumericArray_listPart use the team (parallel.h) for large data.
 *  - Threads: any, on distinct targets. The checks write into the specifications, which are therefore made anew for every call. */
#ifndef VELORIM_PARTS_H
#define VELORIM_PARTS_H

#include <velorim/array.h>

VLM_BEGIN_DECLS

/** What a specification selects of its dimension. */
enum {
  PartKindIndex = 0, /**< one position; the result loses the dimension */
  PartKindList = 1,  /**< positions in the order given, repeats allowed */
  PartKindAll = 2,   /**< the whole dimension */
  PartKindSpan = 3   /**< a sequence: start, end, step, flags (NormalizeSeqSpec, structural.h) */
};

typedef struct PartSpec PartSpec;
struct PartSpec {
  uint32_t kind;
  mint count; /**< positions selected; -1 for a span that does not normalise */
  mint*
      indices; /**< 1 entry for an index, count for a list, 4 for a span; not read for all. The checks normalise them. */
  mint stride;   /**< elements per index of the dimension; filled by the checks */
  mint position; /**< not used by callers */
};

/** Where a check reports why it fails. Tags: "partw" an index is out of range; "partd" more depth is asked for than there is; "take" a
 *  span does not normalise. */
typedef struct PartCheckError PartCheckError;
struct PartCheckError {
  mint first;  /**< the index as given, or the span's start */
  mint second; /**< the span's end */
  void (*report)(const char* tag, PartCheckError* error);
};

/** Checks n specifications against dimensions, and normalises them.
 *  resultRank  receives the rank of the result; -1 if the result is empty or an index 0 stands in the innermost place; -2 if a head is
 *              asked for.
 *  error       NULL for no report.
 *  returns     1 if the parts are valid; 0 if not, also for any dimension of 0 that is specified. */
int32_t part_check_tensor_dims_impl(mint rank, const mint* dims, mint n, PartSpec* specs, mint* resultRank,
                                    PartCheckError* error) VLM_NOEXCEPT;

/** Checks that value may be stored in the selected part of target. A level that keeps its dimension runs along the value's next
 *  dimension if that equals its count; else the value is repeated over it. What the value has left must be target's unspecified
 *  dimensions, so that a scalar fits where all dimensions are specified, a vector fits every selected row, and so on.
 *  returns 0 invalid part; 1 valid, also for an empty selection; 2 valid parts but a value of another shape or type, or an index 0. */
int32_t setpart_check_tensor_impl(const MTensor* target, const MTensor* value, mint n, PartSpec* specs,
                                  PartCheckError* error) VLM_NOEXCEPT;

/** Moves checked parts. mode 1: from the selection of `from` to the whole of `to`, which has the result's shape. mode 0: from the
 *  value `from` to the selection of `to`. An empty selection moves nothing. The two arrays are distinct.
 *  returns 1 always; exhaustion of working space ends the process. */
int32_t Tensor_select_or_set_part(const MTensor* from, MTensor* to, mint n, PartSpec* specs,
                                  int32_t mode) VLM_NOEXCEPT;
int32_t NumericArray_select_or_set_part(const MNumericArray* from, MNumericArray* to, mint n, PartSpec* specs,
                                        int32_t mode) VLM_NOEXCEPT;

/** Selection as compiled code asks for it: n kinds and n values. Kind index: the value points to one mint. Kinds list and span: to the
 *  pointer of a rank-1 integer tensor; a span of {v} is the first v positions, or the last -v for negative v; {first, last};
 *  {first, last, step}; {first, last, step, flags}. Kind all: not read.
 *  target      as everywhere: NULL in it gets a new array, another is reshaped; it may be source.
 *  resultRank  the rank of the result: levels that keep their dimension and the dimensions not specified.
 *  returns     0; 4 for parts that are not valid or another rank; 403; 1300. *target changes only with 0, but for unspecified elements
 *              of an array that was reshaped when 403 came late. */
int32_t CompiledCollectedPart(MTensor** target, const MTensor* source, mint resultRank, mint n,
                              const uint32_t* kinds, void* const* values) VLM_NOEXCEPT;

/** Assignment, specified in the same way. value may be target. resultRank is not looked at.
 *  returns 0; 4 for parts or a value that do not fit; 403; 1300. target changes only with 0. */
int32_t CompiledCollectedSetPart(const MTensor* value, MTensor* target, mint resultRank, mint n,
                                 const uint32_t* kinds, void* const* values) VLM_NOEXCEPT;

/** CompiledCollectedPart into existing (NULL for a new array), which is stored in *result on success.
 *  returns 0; 1 on any failure, with *result as it was. */
int32_t MNumericArray_getParts(MNumericArray* existing, MNumericArray** result, const MNumericArray* source,
                               mint resultRank, mint n, const uint32_t* kinds,
                               void* const* values) VLM_NOEXCEPT;
/** CompiledCollectedSetPart.       returns 0; 1 on any failure. */
int32_t MNumericArray_setParts(MNumericArray* target, const MNumericArray* value, mint resultRank, mint n,
                               const uint32_t* kinds, void* const* values) VLM_NOEXCEPT;

/** Rows of the first dimension: row k of the result is row indices[k] of source, from 1 to the dimension; repeats allowed.
 *  indices  an Integer64 array, read flat; empty gives a first dimension of 0.       target  may be either array.
 *  returns  0; 1 for indices of another type; 2 for a source of rank 0; 3 for an index out of range; 403; 1300. */
int32_t MNumericArray_listPart(MNumericArray** target, const MNumericArray* source,
                               const MNumericArray* indices) VLM_NOEXCEPT;
int32_t MTensor_listPart(MTensor** target, const MTensor* source, const MTensor* indices) VLM_NOEXCEPT;

/** Block number index (from 0) over the first depth dimensions, as an array of the dimensions behind them.
 *  returns 0; 2 for a depth outside 0 to the rank; 3 for an index outside; 5 if storage fails; 1300. */
int32_t CompiledGetTensorElement(MTensor** target, const MTensor* source, mint depth,
                                 mint index) VLM_NOEXCEPT;

VLM_END_DECLS

#endif
