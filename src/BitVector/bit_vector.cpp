// Bit vectors: bit i is bit i mod 8 of byte i / 8.
#include <omp.h>

#include <bit>
#include <cstring>
#include <numeric>

#include "Arithmetic/Parallel/team.h"
#include "Memory/working_space.h"
#include "velorim/containers.h"

namespace {

/// From this many bits on the team counts, in blocks of this many bytes.
constexpr mint parallel_bits = 131072;
constexpr mint block_bytes = 8192;

uint64_t storage_bytes(mint length) { return length < 1 ? 0 : (static_cast<uint64_t>(length) + 7) / 8; }

mint count_ones(const uint8_t* bytes, mint count) {
  mint ones = 0, i = 0;
  for (; i + 8 <= count; i += 8) {
    uint64_t word;
    std::memcpy(&word, bytes + i, sizeof word);
    ones += std::popcount(word);
  }
  for (; i < count; ++i) ones += std::popcount(bytes[i]);
  return ones;
}

mint count_ones_on_team(const uint8_t* bytes, mint count) {
  const int threads = vlm::parallel::team_size();
  vlm::memory::working_space<mint> counters(static_cast<uint64_t>(threads), FailFatal);
  std::fill(counters.begin(), counters.end(), mint{0});
  mint* const counter = counters.data();
  vlm::parallel::for_chunks(
      count, block_bytes,
      [=](mint first, mint length) { counter[omp_get_thread_num()] += count_ones(bytes + first, length); },
      threads);
  return std::accumulate(counters.begin(), counters.end(), mint{0});
}

}  // namespace

BitVector* bitvector_new(mint length, uint32_t fill) VLM_NOEXCEPT {
  auto* const vector = static_cast<BitVector*>(zalloc(sizeof(BitVector), 0, FailFatal));
  const uint64_t bytes = storage_bytes(length);
  *vector = {static_cast<uint8_t*>(zalloc(bytes, 0, FailFatal)), length};
  if (bytes != 0) std::memset(vector->bits, fill != 0 ? 255 : 0, bytes);
  return vector;
}

BitVector* bitvector_copy(const BitVector* vector) VLM_NOEXCEPT {
  if (vector == nullptr) return nullptr;
  BitVector* const copy = bitvector_new(vector->length, 0);
  if (copy->bits != nullptr) std::memcpy(copy->bits, vector->bits, storage_bytes(vector->length));
  return copy;
}

void bitvector_delete(BitVector* vector) VLM_NOEXCEPT {
  if (vector == nullptr) return;
  zfree(vector->bits);
  zfree(vector);
}

uint64_t bitvector_byteCount(const BitVector* vector) VLM_NOEXCEPT {
  if (vector == nullptr) return 0;
  return zalloc_round(sizeof(BitVector), 0) + zalloc_round(storage_bytes(vector->length), 0);
}

mint bitvector_count(const BitVector* vector) VLM_NOEXCEPT {
  if (vector == nullptr || vector->length < 1) return 0;
  const mint whole = vector->length / 8, rest = vector->length % 8;
  const mint ones = vlm::parallel::use_team(vector->length, parallel_bits)
                        ? count_ones_on_team(vector->bits, whole)
                        : count_ones(vector->bits, whole);
  const uint8_t kept = static_cast<uint8_t>((1 << rest) - 1);
  return rest == 0 ? ones : ones + std::popcount(static_cast<uint8_t>(vector->bits[whole] & kept));
}
