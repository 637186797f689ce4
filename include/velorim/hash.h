/* Hash functions of bytes and of tensors. */
#ifndef VELORIM_HASH_H
#define VELORIM_HASH_H

#include <velorim/base.h>

VLM_BEGIN_DECLS

typedef uint64_t (*ByteHashFunction)(const void* data, uint64_t length);

extern ByteHashFunction default_hash_fun;

uint64_t crc_32_hash(const void* data, uint64_t length) VLM_NOEXCEPT;
uint64_t crc_64_hash(const void* data, uint64_t length) VLM_NOEXCEPT;
uint64_t metro_64_hash(const void* data, uint64_t length) VLM_NOEXCEPT;
uint64_t metro_32_hash(const void* data, uint64_t length) VLM_NOEXCEPT;
uint64_t murmur3_32_hash(const void* data, uint64_t length) VLM_NOEXCEPT;
uint64_t murmur3_64_128_hash(const void* data, uint64_t length) VLM_NOEXCEPT;
uint64_t MTensor_hash(const MTensor* tensor, uint64_t seed, mreal tolerance) VLM_NOEXCEPT;

VLM_END_DECLS

#endif
