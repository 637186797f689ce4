// CRC-32 of IEEE 802.3 and CRC-64 of ECMA-182, eight bytes at a time by eight tables.
#include <array>
#include <bit>
#include <cstring>

#include "velorim/hash.h"

namespace {

static_assert(std::endian::native == std::endian::little, "words of the data are read as they lie");

using table32 = std::array<std::array<uint32_t, 256>, 8>;
using table64 = std::array<std::array<uint64_t, 256>, 8>;

/// Table k: the remainder of a byte followed by k zero bytes; the lowest bit of a byte comes first.
constexpr table32 make_reflected() {
  constexpr uint32_t polynomial = 0xEDB88320;
  table32 t{};
  for (uint32_t i = 0; i < 256; ++i) {
    uint32_t r = i;
    for (int bit = 0; bit < 8; ++bit) r = r >> 1 ^ (r & 1 ? polynomial : 0);
    t[0][i] = r;
  }
  for (int k = 1; k < 8; ++k) {
    for (uint32_t i = 0; i < 256; ++i) t[k][i] = t[k - 1][i] >> 8 ^ t[0][t[k - 1][i] & 255];
  }
  return t;
}

/// The same with the highest bit of a byte first.
constexpr table64 make_forward() {
  constexpr uint64_t polynomial = 0x42F0E1EBA9EA3693;
  table64 t{};
  for (uint64_t i = 0; i < 256; ++i) {
    uint64_t r = i << 56;
    for (int bit = 0; bit < 8; ++bit) r = r << 1 ^ (r >> 63 ? polynomial : 0);
    t[0][i] = r;
  }
  for (int k = 1; k < 8; ++k) {
    for (uint64_t i = 0; i < 256; ++i) t[k][i] = t[k - 1][i] << 8 ^ t[0][t[k - 1][i] >> 56];
  }
  return t;
}

constexpr table32 reflected = make_reflected();
constexpr table64 forward = make_forward();

uint64_t word_at(const uint8_t* bytes) {
  uint64_t word;
  std::memcpy(&word, bytes, sizeof word);
  return word;
}

}  // namespace

uint64_t crc_32_hash(const void* data, uint64_t length) VLM_NOEXCEPT {
  const auto* bytes = static_cast<const uint8_t*>(data);
  uint32_t r = 0xFFFFFFFF;
  for (; length >= 8; bytes += 8, length -= 8) {
    const uint64_t word = word_at(bytes) ^ r;
    r = 0;
    for (int k = 0; k < 8; ++k) r ^= reflected[7 - k][word >> 8 * k & 255];
  }
  for (; length > 0; ++bytes, --length) r = r >> 8 ^ reflected[0][(r ^ *bytes) & 255];
  return static_cast<uint32_t>(~r);
}

uint64_t crc_64_hash(const void* data, uint64_t length) VLM_NOEXCEPT {
  const auto* bytes = static_cast<const uint8_t*>(data);
  uint64_t r = 0;
  for (; length >= 8; bytes += 8, length -= 8) {
    const uint64_t word = __builtin_bswap64(word_at(bytes)) ^ r;
    r = 0;
    for (int k = 0; k < 8; ++k) r ^= forward[k][word >> 8 * k & 255];
  }
  for (; length > 0; ++bytes, --length) r = r << 8 ^ forward[0][r >> 56 ^ *bytes];
  return r;
}
