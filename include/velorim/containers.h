/* Bags, bag arrays, linked memory lists, bit vectors and bit functions. */
#ifndef VELORIM_CONTAINERS_H
#define VELORIM_CONTAINERS_H

#include <velorim/parts.h>

VLM_BEGIN_DECLS

typedef struct MBag MBag;
typedef struct MBagArray MBagArray;
typedef struct MemoryLinkedList MemoryLinkedList;
typedef struct BitVector BitVector;
struct MemoryLinkedList { /* one link; a list is a pointer to its first link */
  void* data;
  MemoryLinkedList* next;
};
struct MBag {
  MemoryLinkedList* firstChunk; /* a chunk is a link with its element bytes behind it */
  MemoryLinkedList** tailLink;
  mint chunkCount;
  uint8_t* nextFree;
  uint8_t* chunkEnd;
  mint elementSize;
  mint chunkBytes;
  int32_t elementType;
};
struct MBagArray {
  mint capacity;
  mint lastIndex;
  MBag** bags;
};
struct BitVector {
  uint8_t* bits;
  mint length;
};

MBag* MBag_new(int32_t elementType) VLM_NOEXCEPT;
void MBag_delete(MBag* bag) VLM_NOEXCEPT;
uint64_t MBag_byteCount(const MBag* bag) VLM_NOEXCEPT;
void MBag_stuff(MBag* bag, mint count, const void* source) VLM_NOEXCEPT;
void MBag_copyToArray(void* destination, const MBag* bag) VLM_NOEXCEPT;
int32_t MBag_toMTensor(MTensor** out, const MBag* bag) VLM_NOEXCEPT;
int32_t MBag_part(void* out, const MBag* bag, PartSpec* spec)
    VLM_NOEXCEPT; /* out: one element's room for kind 0, else an MTensor **; open: PartSpec by pointer */
MBagArray* MBagArray_new(void) VLM_NOEXCEPT;
mint MBagArray_newBag(MBagArray* array, int32_t elementType) VLM_NOEXCEPT;
void MBagArray_cleanUp(MBagArray* array) VLM_NOEXCEPT;
void MBagArray_delete(MBagArray* array) VLM_NOEXCEPT;
MemoryLinkedList* MemoryLinkedList_newLink(uint64_t size) VLM_NOEXCEPT;
void MemoryLinkedList_visit(MemoryLinkedList* list, void (*function)(void* data, void* argument),
                            void* argument) VLM_NOEXCEPT;
MemoryLinkedList* MemoryLinkedList_copy(MemoryLinkedList* list, void* (*function)(void* data)) VLM_NOEXCEPT;
void MemoryLinkedList_delete(MemoryLinkedList* list, void (*function)(void* data)) VLM_NOEXCEPT;
BitVector* bitvector_new(mint length, uint32_t fill) VLM_NOEXCEPT;
BitVector* bitvector_copy(const BitVector* vector) VLM_NOEXCEPT;
void bitvector_delete(BitVector* vector) VLM_NOEXCEPT;
uint64_t bitvector_byteCount(const BitVector* vector) VLM_NOEXCEPT;
mint bitvector_count(const BitVector* vector) VLM_NOEXCEPT;
uint32_t bit_count_int32(int32_t value) VLM_NOEXCEPT;
uint32_t bit_count_int64(int64_t value) VLM_NOEXCEPT;
uint32_t bit_count_uint32(uint32_t value) VLM_NOEXCEPT;
uint32_t bit_count_uint64(uint64_t value) VLM_NOEXCEPT;
uint32_t bit_length_int32(int32_t value) VLM_NOEXCEPT;
uint32_t bit_length_int64(int64_t value) VLM_NOEXCEPT;
uint32_t bit_length_uint32(uint32_t value) VLM_NOEXCEPT;
uint32_t bit_length_uint64(uint64_t value) VLM_NOEXCEPT;
uint32_t count_trailing_zeros_int32(int32_t value) VLM_NOEXCEPT;
uint32_t count_trailing_zeros_int64(int64_t value) VLM_NOEXCEPT;
uint32_t count_trailing_zeros_uint32(uint32_t value) VLM_NOEXCEPT;
uint32_t count_trailing_zeros_uint64(uint64_t value) VLM_NOEXCEPT;

VLM_END_DECLS

#endif
