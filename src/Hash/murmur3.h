// MurmurHash3 (Austin Appleby, public domain), its three forms with all lanes seeded alike. The length enters as 32 bits in the x86
// forms.
#pragma once

#include <array>
#include <cstdint>

namespace vlm::murmur3 {

uint32_t x86_32(const void* data, uint64_t length, uint32_t seed);
std::array<uint32_t, 4> x86_128(const void* data, uint64_t length, uint32_t seed);
std::array<uint64_t, 2> x64_128(const void* data, uint64_t length, uint64_t seed);

/// While a flag is clear the exported hash of that form runs with seed 0.
struct seed_use {
  bool x86_32 = true;
  bool x86_128 = true;
  bool x64_128 = true;
};
extern seed_use uses_seed;

}  // namespace vlm::murmur3
