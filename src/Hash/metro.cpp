// The 128-bit core of the MetroHash family (J. Andrew Rogers), first variant, with seed 0 and without the length in the start state.
#include <bit>
#include <cstring>
#include <type_traits>

#include "velorim/hash.h"

namespace {

constexpr uint64_t k0 = 0xC83A91E1, k1 = 0x8648DBDB, k2 = 0x7BDEC03B, k3 = 0x2F5870A5;

struct halves {
  uint64_t first;
  uint64_t second;
};

/// The next word of the data, widened, little-endian.
template <class Word> uint64_t take(const uint8_t*& at) {
  Word word;
  std::memcpy(&word, at, sizeof word);
  at += sizeof word;
  return word;
}

halves metro_128(const void* data, uint64_t length) {
  const auto* at = static_cast<const uint8_t*>(data);
  uint64_t v0 = (0 - k0) * k3, v1 = k1 * k2;
  if (length >= 32) {
    uint64_t v2 = k0 * k2, v3 = (0 - k1) * k3;
    for (; length >= 32; length -= 32) {
      v0 = std::rotr(v0 + take<uint64_t>(at) * k0, 29) + v2;
      v1 = std::rotr(v1 + take<uint64_t>(at) * k1, 29) + v3;
      v2 = std::rotr(v2 + take<uint64_t>(at) * k2, 29) + v0;
      v3 = std::rotr(v3 + take<uint64_t>(at) * k3, 29) + v1;
    }
    v2 ^= std::rotr((v0 + v3) * k0 + v1, 21) * k1;
    v3 ^= std::rotr((v1 + v2) * k1 + v0, 21) * k0;
    v0 ^= std::rotr((v0 + v2) * k0 + v3, 21) * k1;
    v1 ^= std::rotr((v1 + v3) * k1 + v2, 21) * k0;
  }
  if (length >= 16) {
    v0 = std::rotr(v0 + take<uint64_t>(at) * k2, 33) * k3;
    v1 = std::rotr(v1 + take<uint64_t>(at) * k2, 33) * k3;
    v0 ^= std::rotr(v0 * k2 + v1, 45) * k1;
    v1 ^= std::rotr(v1 * k3 + v0, 45) * k0;
    length -= 16;
  }
  if (length & 8) {
    v0 = std::rotr(v0 + take<uint64_t>(at) * k2, 33) * k3;
    v0 ^= std::rotr(v0 * k2 + v1, 27) * k1;
  }
  if (length & 4) {
    v1 = std::rotr(v1 + take<uint32_t>(at) * k2, 33) * k3;
    v1 ^= std::rotr(v1 * k3 + v0, 46) * k0;
  }
  if (length & 2) {
    v0 = std::rotr(v0 + take<uint16_t>(at) * k2, 33) * k3;
    v0 ^= std::rotr(v0 * k2 + v1, 22) * k1;
  }
  if (length & 1) {
    v1 = std::rotr(v1 + take<uint8_t>(at) * k2, 33) * k3;
    v1 ^= std::rotr(v1 * k3 + v0, 58) * k0;
  }
  v0 += std::rotr(v0 * k0 + v1, 13);
  v1 += std::rotr(v1 * k1 + v0, 37);
  v0 += std::rotr(v0 * k2 + v1, 13);
  v1 += std::rotr(v1 * k3 + v0, 37);
  return {v0, v1};
}

}  // namespace

uint64_t metro_64_hash(const void* data, uint64_t length) VLM_NOEXCEPT {
  const halves h = metro_128(data, length);
  return h.first ^ h.second;
}

uint64_t metro_32_hash(const void* data, uint64_t length) VLM_NOEXCEPT {
  const uint64_t x = metro_64_hash(data, length);
  return static_cast<uint32_t>(x ^ x >> 32);
}
