/* Bags, numbered sets of bags, linked memory, bit vectors, and bit functions of integers.
 *
 *  - The containers take their memory with FailFatal: exhaustion ends the process through nomem (memory.h), and no call here reports it
 *    but those that return a status.
 *  - The records are part of the interface; callers read them, and set bits in them, directly.
 *  - Threads: a container is used by one thread at a time. */
#ifndef VELORIM_CONTAINERS_H
#define VELORIM_CONTAINERS_H

#include <velorim/parts.h>

VLM_BEGIN_DECLS

/* ---- Linked memory ---- */

/** A link; a list is a pointer to its first link, NULL the empty list. */
typedef struct MemoryLinkedList MemoryLinkedList;
struct MemoryLinkedList {
  void* data; /**< the payload */
  MemoryLinkedList* next;
};

/** A new last link with size bytes of payload behind it in the same block, at a multiple of 16; data is NULL for size 0. */
MemoryLinkedList* MemoryLinkedList_newLink(uint64_t size) VLM_NOEXCEPT;
/** function(data, argument) for each link, first to last. */
void MemoryLinkedList_visit(MemoryLinkedList* list, void (*function)(void* data, void* argument),
                            void* argument) VLM_NOEXCEPT;
/** A new list as long, its data function(data) of each link in order. */
MemoryLinkedList* MemoryLinkedList_copy(MemoryLinkedList* list, void* (*function)(void* data)) VLM_NOEXCEPT;
/** Frees every link, after function(data) if function is not NULL. */
void MemoryLinkedList_delete(MemoryLinkedList* list, void (*function)(void* data)) VLM_NOEXCEPT;

/* ---- Bags ---- */

/** An append-only store of values of one kind in chunks of 1024, which are filled in order and never move. It holds
 *  (chunkBytes chunkCount - chunkEnd + nextFree) / elementSize elements. */
typedef struct MBag MBag;
struct MBag {
  MemoryLinkedList*
      firstChunk; /**< a chunk is a link with its elements behind it; NULL until the first append */
  MemoryLinkedList** tailLink; /**< the word to fill with the next chunk */
  mint chunkCount;
  uint8_t* nextFree; /**< next free byte of the last chunk; NULL until the first append */
  uint8_t* chunkEnd; /**< one past the last chunk's last byte */
  mint elementSize;  /**< bytes: CompilerTypeSizeTable at elementType (array.h); 0 for any other code */
  mint chunkBytes;   /**< 1024 elements */
  int32_t elementType;
};

/** A new empty bag for elements of a tensor type. */
MBag* MBag_new(int32_t elementType) VLM_NOEXCEPT;
/** Frees the chunks and the record; NULL is ignored. */
void MBag_delete(MBag* bag) VLM_NOEXCEPT;
/** Bytes of chunks and record; 0 for NULL. */
uint64_t MBag_byteCount(const MBag* bag) VLM_NOEXCEPT;
/** Appends count elements; a count below 1 counts as 0. An append that finds no room at all adds a chunk, even for no elements. */
void MBag_stuff(MBag* bag, mint count, const void* source) VLM_NOEXCEPT;
/** Copies all elements in order to destination, which has room for them. */
void MBag_copyToArray(void* destination, const MBag* bag) VLM_NOEXCEPT;
/** The elements as a rank-1 tensor of elementType in *out: a new one if that is NULL, else the one there reshaped.
 *  returns 0; the status of the allocation. A NULL bag gives 0 and leaves *out alone. */
int32_t MBag_toMTensor(MTensor** out, const MBag* bag) VLM_NOEXCEPT;
/** Part of a bag by one specification that the check of parts.h accepted for the bag's length. Index: one element, written to out. Other
 *  kinds: out is an MTensor **, which gets a rank-1 tensor.
 *  returns 0; the status of an allocation; -1 for an unknown kind. */
int32_t MBag_part(void* out, const MBag* bag, PartSpec* spec) VLM_NOEXCEPT;

/** Bags by number. */
typedef struct MBagArray MBagArray;
struct MBagArray {
  mint capacity;  /**< length of bags */
  mint lastIndex; /**< index of the newest bag in use, -1 for none */
  MBag** bags;    /**< NULL in unused slots */
};

MBagArray* MBagArray_new(void) VLM_NOEXCEPT;
/** Takes the next bag into use, made for elementType unless one is there already.       returns its index, from 0. */
mint MBagArray_newBag(MBagArray* array, int32_t elementType) VLM_NOEXCEPT;
/** Deletes the bags in use; the slots stay for reuse. NULL is ignored. */
void MBagArray_cleanUp(MBagArray* array) VLM_NOEXCEPT;
/** The same, and frees slots and record. NULL is ignored. */
void MBagArray_delete(MBagArray* array) VLM_NOEXCEPT;

/* ---- Bit vectors ---- */

/** length bits in ceil(length / 8) bytes: bit i is bit i mod 8, from the lowest, of byte i / 8. Spare bits of the last byte belong to
 *  nobody. */
typedef struct BitVector BitVector;
struct BitVector {
  uint8_t* bits; /**< NULL for a length below 1 */
  mint length;
};

/** A new vector with all bits, spare ones too, set (fill not 0) or clear. */
BitVector* bitvector_new(mint length, uint32_t fill) VLM_NOEXCEPT;
/** A new vector with the same bytes; NULL for NULL. */
BitVector* bitvector_copy(const BitVector* vector) VLM_NOEXCEPT;
void bitvector_delete(BitVector* vector) VLM_NOEXCEPT;
/** zalloc_round of record and storage; 0 for NULL. */
uint64_t bitvector_byteCount(const BitVector* vector) VLM_NOEXCEPT;
/** Bits that are set among the first length, counted on the team (parallel.h) from 131072 bits on; 0 for NULL. */
mint bitvector_count(const BitVector* vector) VLM_NOEXCEPT;

/* ---- Bit functions. Those of signed integers look at the magnitude: bit_count_int32(-1) is 1. ---- */

/** Ones. */
uint32_t bit_count_int32(int32_t value) VLM_NOEXCEPT;
uint32_t bit_count_int64(int64_t value) VLM_NOEXCEPT;
uint32_t bit_count_uint32(uint32_t value) VLM_NOEXCEPT;
uint32_t bit_count_uint64(uint64_t value) VLM_NOEXCEPT;
/** Bits up to and including the highest one; 0 for 0. */
uint32_t bit_length_int32(int32_t value) VLM_NOEXCEPT;
uint32_t bit_length_int64(int64_t value) VLM_NOEXCEPT;
uint32_t bit_length_uint32(uint32_t value) VLM_NOEXCEPT;
uint32_t bit_length_uint64(uint64_t value) VLM_NOEXCEPT;
/** Zeros below the lowest one; 0 for 0. */
uint32_t count_trailing_zeros_int32(int32_t value) VLM_NOEXCEPT;
uint32_t count_trailing_zeros_int64(int64_t value) VLM_NOEXCEPT;
uint32_t count_trailing_zeros_uint32(uint32_t value) VLM_NOEXCEPT;
uint32_t count_trailing_zeros_uint64(uint64_t value) VLM_NOEXCEPT;

VLM_END_DECLS

#endif
