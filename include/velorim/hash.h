/* Hash functions of bytes and of tensors. None is cryptographic. All are pure but for the settings they name; threads: any. */
#ifndef VELORIM_HASH_H
#define VELORIM_HASH_H

#include <velorim/base.h>

VLM_BEGIN_DECLS

/** A hash of length bytes; data may be NULL if there are none. */
typedef uint64_t (*ByteHashFunction)(const void* data, uint64_t length);

/** The hash that tables and tensors use; metro_64_hash from the start of the library on. Replacing it changes every hash, so it is done
 *  before any table is filled. */
extern ByteHashFunction default_hash_fun;

/** CRC-32 of IEEE 802.3: reflected, initial value and complement 0xFFFFFFFF; 0 for no bytes. "abc" -> 0x352441C2 */
uint64_t crc_32_hash(const void* data, uint64_t length) VLM_NOEXCEPT;
/** CRC-64 of ECMA-182: polynomial 0x42F0E1EBA9EA3693, highest bit first, initial value 0, no complement; 0 for no bytes. */
uint64_t crc_64_hash(const void* data, uint64_t length) VLM_NOEXCEPT;
/** MetroHash128, first variant, with seed 0 and without the length in the start state; the halves XORed. */
uint64_t metro_64_hash(const void* data, uint64_t length) VLM_NOEXCEPT;
/** The same folded to 32 bits. */
uint64_t metro_32_hash(const void* data, uint64_t length) VLM_NOEXCEPT;
/** MurmurHash3, 32 bits: below 128 bytes the x86 32-bit form with seed 0x4370DD55, else the four lanes of the x86 128-bit form, all seeded
 *  0xFC7560E0, XORed. */
uint64_t murmur3_32_hash(const void* data, uint64_t length) VLM_NOEXCEPT;
/** MurmurHash3 x64 128-bit with both lanes seeded 0x6641F5B030CFFB2C; the halves XORed. */
uint64_t murmur3_64_128_hash(const void* data, uint64_t length) VLM_NOEXCEPT;

/** Above twice this many bytes, keys are hashed by so many bytes at both ends and their length. */
extern int64_t HashByteLengthThreshold;
/** Above twice this many places, a level of a tensor is hashed by so many places at both ends. */
extern int64_t HashArrayLengthThreshold;

/** Hash of an integer, real or complex tensor, elements and dimensions.
 *  tolerance  bits of the significand in which reals may differ: 0 and below, exact bits, so that 0.0 and -0.0 differ; else the
 *             significand is rounded to 53 - round(tolerance) bits, and at 53 all reals are alike. Values astride a rounding border may
 *             differ. HashTolerance (floating_point.h) is the usual choice.
 *  returns    0 for any other element type, and for NULL. */
uint64_t MTensor_hash(const MTensor* tensor, uint64_t seed, mreal tolerance) VLM_NOEXCEPT;

VLM_END_DECLS

#endif
