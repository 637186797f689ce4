#include "Hash/murmur3.h"

#include <bit>
#include <cstring>

#include "velorim/hash.h"

namespace vlm::murmur3 {

seed_use uses_seed;

namespace {

constexpr uint32_t mix(uint32_t h) {
  h = (h ^ h >> 16) * 0x85EBCA6B;
  h = (h ^ h >> 13) * 0xC2B2AE35;
  return h ^ h >> 16;
}
constexpr uint64_t mix(uint64_t h) {
  h = (h ^ h >> 33) * 0xFF51AFD7ED558CCD;
  h = (h ^ h >> 33) * 0xC4CEB9FE1A85EC53;
  return h ^ h >> 33;
}

/// Lane number `lane` of a block of which only `available` bytes are there; the others are 0.
template <class Lane> Lane lane_of(const uint8_t* block, uint64_t available, uint64_t lane) {
  Lane word = 0;
  const uint64_t offset = lane * sizeof(Lane);
  if (available > offset) {
    const uint64_t rest = available - offset;
    std::memcpy(&word, block + offset, rest < sizeof word ? rest : sizeof word);
  }
  return word;
}

/// What each lane of a 128-bit form does to its word and to its state.
template <class Lane> struct lane_rule {
  Lane before;  ///< the word is multiplied by this, rotated, and multiplied by `after`
  int word_rotation;
  Lane after;
  int state_rotation;
  Lane addend;
};

constexpr std::array<lane_rule<uint32_t>, 4> rules_32 = {{{0x239B961B, 15, 0xAB0E9789, 19, 0x561CCD1B},
                                                          {0xAB0E9789, 16, 0x38B34AE5, 17, 0x0BCAA747},
                                                          {0x38B34AE5, 17, 0xA1E38B93, 15, 0x96CD1C35},
                                                          {0xA1E38B93, 18, 0x239B961B, 13, 0x32AC3B17}}};
constexpr std::array<lane_rule<uint64_t>, 2> rules_64 = {
    {{0x87C37B91114253D5, 31, 0x4CF5AD432745937F, 27, 0x52DCE729},
     {0x4CF5AD432745937F, 33, 0x87C37B91114253D5, 31, 0x38495AB5}}};

template <class Lane> Lane scrambled(Lane word, const lane_rule<Lane>& rule) {
  return std::rotl(static_cast<Lane>(word * rule.before), rule.word_rotation) * rule.after;
}

/// The two 128-bit forms: blocks of 16 bytes, a tail, and a finish in which all lanes meet.
template <class Lane, size_t Lanes>
std::array<Lane, Lanes> hash_128(const void* data, uint64_t length, Lane seed, Lane length_word,
                                 const std::array<lane_rule<Lane>, Lanes>& rules) {
  const auto* bytes = static_cast<const uint8_t*>(data);
  std::array<Lane, Lanes> h;
  h.fill(seed);
  const auto meet = [&h] {
    for (size_t i = 1; i < Lanes; ++i) h[0] += h[i];
    for (size_t i = 1; i < Lanes; ++i) h[i] += h[0];
  };
  uint64_t rest = length;
  for (; rest >= 16; rest -= 16, bytes += 16) {
    for (size_t i = 0; i < Lanes; ++i) {
      h[i] ^= scrambled(lane_of<Lane>(bytes, 16, i), rules[i]);
      h[i] = std::rotl(h[i], rules[i].state_rotation) + h[(i + 1) % Lanes];
      h[i] = h[i] * 5 + rules[i].addend;
    }
  }
  for (size_t i = 0; i < Lanes; ++i) h[i] ^= scrambled(lane_of<Lane>(bytes, rest, i), rules[i]);
  for (Lane& lane : h) lane ^= length_word;
  meet();
  for (Lane& lane : h) lane = mix(lane);
  meet();
  return h;
}

}  // namespace

uint32_t x86_32(const void* data, uint64_t length, uint32_t seed) {
  constexpr uint32_t c1 = 0xCC9E2D51, c2 = 0x1B873593;
  const auto* bytes = static_cast<const uint8_t*>(data);
  uint32_t h = seed;
  uint64_t rest = length;
  for (; rest >= 4; rest -= 4, bytes += 4) {
    h ^= std::rotl(lane_of<uint32_t>(bytes, 4, 0) * c1, 15) * c2;
    h = std::rotl(h, 13) * 5 + 0xE6546B64;
  }
  h ^= std::rotl(lane_of<uint32_t>(bytes, rest, 0) * c1, 15) * c2;
  return mix(h ^ static_cast<uint32_t>(length));
}

std::array<uint32_t, 4> x86_128(const void* data, uint64_t length, uint32_t seed) {
  return hash_128<uint32_t, 4>(data, length, seed, static_cast<uint32_t>(length), rules_32);
}

std::array<uint64_t, 2> x64_128(const void* data, uint64_t length, uint64_t seed) {
  return hash_128<uint64_t, 2>(data, length, seed, length, rules_64);
}

}  // namespace vlm::murmur3

using namespace vlm::murmur3;

uint64_t murmur3_32_hash(const void* data, uint64_t length) VLM_NOEXCEPT {
  if (length < 128) return x86_32(data, length, uses_seed.x86_32 ? 0x4370DD55 : 0);
  const auto h = x86_128(data, length, uses_seed.x86_128 ? 0xFC7560E0 : 0);
  return h[0] ^ h[1] ^ h[2] ^ h[3];
}

uint64_t murmur3_64_128_hash(const void* data, uint64_t length) VLM_NOEXCEPT {
  const auto h = x64_128(data, length, uses_seed.x64_128 ? 0x6641F5B030CFFB2C : 0);
  return h[0] ^ h[1];
}
