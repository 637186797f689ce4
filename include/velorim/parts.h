/* Reading and writing sub-blocks of an array by part specifications. */
#ifndef VELORIM_PARTS_H
#define VELORIM_PARTS_H

#include <velorim/array.h>

VLM_BEGIN_DECLS

typedef struct PartSpec PartSpec;
struct PartSpec {
  uint32_t kind;
  mint count;
  mint* indices;
  mint stride;
  mint position;
};
typedef struct PartCheckError PartCheckError;
struct PartCheckError {
  mint first;
  mint second;
  void (*report)(const char* tag, PartCheckError* error);
};
/* Checks and engine */
int32_t part_check_tensor_dims_impl(mint rank, const mint* dims, mint n, PartSpec* specs, mint* resultRank,
                                    PartCheckError* error) VLM_NOEXCEPT;
int32_t setpart_check_tensor_impl(const MTensor* target, const MTensor* value, mint n, PartSpec* specs,
                                  PartCheckError* error) VLM_NOEXCEPT;
int32_t Tensor_select_or_set_part(const MTensor* from, MTensor* to, mint n, PartSpec* specs,
                                  int32_t mode) VLM_NOEXCEPT;
int32_t NumericArray_select_or_set_part(const MNumericArray* from, MNumericArray* to, mint n, PartSpec* specs,
                                        int32_t mode) VLM_NOEXCEPT;
/* Compiled forms */
int32_t CompiledCollectedPart(MTensor** target, const MTensor* source, mint resultRank, mint n,
                              const uint32_t* kinds, void* const* values) VLM_NOEXCEPT;
int32_t CompiledCollectedSetPart(const MTensor* value, MTensor* target, mint resultRank, mint n,
                                 const uint32_t* kinds, void* const* values) VLM_NOEXCEPT;
int32_t MNumericArray_getParts(MNumericArray* existing, MNumericArray** result, const MNumericArray* source,
                               mint resultRank, mint n, const uint32_t* kinds,
                               void* const* values) VLM_NOEXCEPT;
int32_t MNumericArray_setParts(MNumericArray* target, const MNumericArray* value, mint resultRank, mint n,
                               const uint32_t* kinds, void* const* values) VLM_NOEXCEPT;
int32_t MNumericArray_listPart(MNumericArray** target, const MNumericArray* source,
                               const MNumericArray* indices) VLM_NOEXCEPT;
int32_t MTensor_listPart(MTensor** target, const MTensor* source, const MTensor* indices) VLM_NOEXCEPT;
int32_t CompiledGetTensorElement(MTensor** target, const MTensor* source, mint depth,
                                 mint index) VLM_NOEXCEPT;

VLM_END_DECLS

#endif
