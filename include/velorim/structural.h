/* Take, drop, flatten, join, partition, reverse, rotate, pad, and walks over positions. */
#ifndef VELORIM_STRUCTURAL_H
#define VELORIM_STRUCTURAL_H

#include <velorim/array.h>

VLM_BEGIN_DECLS

/* Sequence specifications, take and drop. */
int32_t NormalizeSeqSpec(mint d, uint32_t flags, mint* start, mint* end, mint* step,
                         mint* count) VLM_NOEXCEPT;
int32_t MTensor_take(MTensor** target, const MTensor* source, mint n, const mint* starts, const mint* ends,
                     const mint* steps, const uint32_t* flags) VLM_NOEXCEPT;
int32_t MNumericArray_take(MNumericArray** target, const MNumericArray* source, mint n, const mint* starts,
                           const mint* ends, const mint* steps, const uint32_t* flags) VLM_NOEXCEPT;
int32_t MTensor_drop(MTensor** target, const MTensor* source, mint n, const mint* starts, const mint* ends,
                     const mint* steps, const uint32_t* flags) VLM_NOEXCEPT;
int32_t MNumericArray_drop(MNumericArray** target, const MNumericArray* source, mint n, const mint* starts,
                           const mint* ends, const mint* steps, const uint32_t* flags) VLM_NOEXCEPT;
int32_t Runtime_MNumericArray_TakeDrop(MNumericArray** target, const MNumericArray* source, mint n,
                                       const int64_t* specs, int32_t take) VLM_NOEXCEPT;

/* Other rearrangements. */
int32_t MNumericArray_flatten(MNumericArray** target, MNumericArray* source, mint level) VLM_NOEXCEPT;
int32_t MTensor_Join(MTensor** target, MTensor* const* arrays, mint count) VLM_NOEXCEPT;
int32_t MNumericArray_join(MNumericArray** target, MNumericArray* const* arrays, mint count) VLM_NOEXCEPT;
int32_t MTensor_joinDimension(MTensor* target, mint count, MTensor* const* arrays, mint level) VLM_NOEXCEPT;
int32_t MNumericArray_partition(MNumericArray** target, const MNumericArray* source,
                                const MNumericArray* sizes, const MNumericArray* offsets) VLM_NOEXCEPT;
int32_t TensorPartition(MTensor** target, const MTensor* source, const MTensor* sizes,
                        const MTensor* offsets) VLM_NOEXCEPT;
int32_t MNumericArray_reverse(MNumericArray** target, const MNumericArray* source) VLM_NOEXCEPT;
int32_t MNumericArray_rotate(MNumericArray** target, const MNumericArray* source, mint n,
                             const mint* shifts) VLM_NOEXCEPT;
int32_t MTensor_pad(MTensor** target, const MTensor* source, const MTensor* padding, const mint* sizes,
                    const mint* margins) VLM_NOEXCEPT;

/* Position iterators. */
void InitializePosition(mint rank, mint* position) VLM_NOEXCEPT;
int32_t IncrementPosition(mint rank, const mint* dims, mint* position) VLM_NOEXCEPT;
int32_t IncrementPositionBy(mint rank, const mint* dims, mint* position, mint n) VLM_NOEXCEPT;
mint FlatIndex(mint rank, const mint* dims, const mint* position) VLM_NOEXCEPT;

VLM_END_DECLS

#endif
