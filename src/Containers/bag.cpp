// Bags: chunks of 1024 elements, filled in order and never moved.
#include "Containers/bag.h"

#include <algorithm>
#include <cstring>

#include "MNumericArray/Parts/part_engine.h"
#include "velorim/memory.h"

namespace {

constexpr mint chunk_elements = 1024;

uint8_t* elements_of(MemoryLinkedList* chunk) { return reinterpret_cast<uint8_t*>(chunk + 1); }

/// Links a new chunk behind the last; the next element goes to its start.
void add_chunk(MBag* bag) {
  MemoryLinkedList* const chunk = MemoryLinkedList_newLink(static_cast<uint64_t>(bag->chunkBytes));
  *bag->tailLink = chunk;
  bag->tailLink = &chunk->next;
  ++bag->chunkCount;
  bag->nextFree = elements_of(chunk);
  bag->chunkEnd = bag->nextFree + bag->chunkBytes;
}

/// Appends bytes that fit the last chunk.
void append(MBag* bag, const uint8_t*& source, mint bytes) {
  if (bytes == 0) return;
  std::memcpy(bag->nextFree, source, static_cast<size_t>(bytes));
  bag->nextFree += bytes;
  source += bytes;
}

int32_t new_vector(MTensor** out, int32_t tensorType, mint length) {
  return MTensor_allocateCommon(out, tensorType, 1, &length, FailReport);
}

}  // namespace

namespace vlm {

mint bag_length(const MBag* bag) {
  if (bag->elementSize == 0) return 0;
  return (bag->chunkBytes * bag->chunkCount - (bag->chunkEnd - bag->nextFree)) / bag->elementSize;
}

}  // namespace vlm

MBag* MBag_new(int32_t elementType) VLM_NOEXCEPT {
  auto* const bag = static_cast<MBag*>(zalloc(sizeof(MBag), 0, FailFatal));
  const bool known = elementType >= 0 && elementType < 6;
  const mint size = known ? static_cast<mint>(CompilerTypeSizeTable[elementType]) : 0;
  *bag = {nullptr, &bag->firstChunk, 0, nullptr, nullptr, size, size * chunk_elements, elementType};
  return bag;
}

void MBag_delete(MBag* bag) VLM_NOEXCEPT {
  if (bag == nullptr) return;
  MemoryLinkedList_delete(bag->firstChunk, nullptr);
  zfree(bag);
}

uint64_t MBag_byteCount(const MBag* bag) VLM_NOEXCEPT {
  if (bag == nullptr) return 0;
  const auto chunk = static_cast<uint64_t>(bag->chunkBytes) + sizeof(MemoryLinkedList);
  return chunk * static_cast<uint64_t>(bag->chunkCount) + sizeof(MBag);
}

void MBag_stuff(MBag* bag, mint count, const void* source) VLM_NOEXCEPT {
  const auto* from = static_cast<const uint8_t*>(source);
  mint bytes = std::max<mint>(count, 0) * bag->elementSize;
  const mint room = bag->chunkEnd - bag->nextFree;
  if (bytes < room) return append(bag, from, bytes);
  append(bag, from, room);
  if (bytes == room && room > 0) return;
  bytes -= room;
  add_chunk(bag);
  while (bytes > bag->chunkBytes) {
    append(bag, from, bag->chunkBytes);
    bytes -= bag->chunkBytes;
    add_chunk(bag);
  }
  append(bag, from, bytes);
}

void MBag_copyToArray(void* destination, const MBag* bag) VLM_NOEXCEPT {
  auto* to = static_cast<uint8_t*>(destination);
  mint bytes = vlm::bag_length(bag) * bag->elementSize;
  for (MemoryLinkedList* chunk = bag->firstChunk; bytes > 0; chunk = chunk->next) {
    const mint here = std::min(bytes, bag->chunkBytes);
    std::memcpy(to, elements_of(chunk), static_cast<size_t>(here));
    to += here;
    bytes -= here;
  }
}

int32_t MBag_toMTensor(MTensor** out, const MBag* bag) VLM_NOEXCEPT {
  if (bag == nullptr) return ArrayStatusOk;
  if (out == nullptr) return ArrayStatusNullArgument;
  const int32_t status = new_vector(out, bag->elementType, vlm::bag_length(bag));
  if (status == ArrayStatusOk && (*out)->data != nullptr) MBag_copyToArray((*out)->data, bag);
  return status;
}

int32_t MBag_part(void* out, const MBag* bag, PartSpec* spec) VLM_NOEXCEPT {
  switch (spec->kind) {
    case PartKindIndex: {
      const mint index = spec->indices[0] - 1;
      MemoryLinkedList* chunk = bag->firstChunk;
      for (mint i = 0; i < index / chunk_elements; ++i) chunk = chunk->next;
      std::memcpy(out, elements_of(chunk) + index % chunk_elements * bag->elementSize,
                  static_cast<size_t>(bag->elementSize));
      return ArrayStatusOk;
    }
    case PartKindAll:
      return MBag_toMTensor(static_cast<MTensor**>(out), bag);
    case PartKindList:
    case PartKindSpan: {
      MTensor* whole = nullptr;
      int32_t status = MBag_toMTensor(&whole, bag);
      if (status != ArrayStatusOk) return status;
      auto** const target = static_cast<MTensor**>(out);
      status = new_vector(target, static_cast<int32_t>(whole->tensorType), spec->count);
      spec->stride = 1;
      if (status == ArrayStatusOk && spec->count != 0)
        status = vlm::move_parts(whole, *target, 1, spec, true) ? 0 : ArrayStatusNoMemory;
      MNumericArray_delete(whole);
      return status;
    }
    default:
      return -1;
  }
}
