// Settings of hashing, and the rules built on default_hash_fun.
#include "Hash/hash_rules.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "Hash/murmur3.h"
#include "Runtime/hooks.h"
#include "velorim/hash.h"
#include "velorim/hash_table.h"

double HashTableGrowLoadFactor = 0.75;
double HashTableShrinkLoadFactor = 0.1875;
int64_t HashArrayLengthThreshold = std::numeric_limits<int64_t>::max();
int64_t HashByteLengthThreshold = std::numeric_limits<int64_t>::max();
ByteHashFunction default_hash_fun = metro_64_hash;

namespace vlm {
namespace {

/// Where the hashes of each kind of number start; made with default_hash_fun.
struct kind_seeds {
  uint64_t integer;
  uint64_t real;
  uint64_t complex;
};
kind_seeds seeds;

uint64_t seed_of(int64_t kind) { return default_hash_fun(&kind, sizeof kind); }

}  // namespace

void hash_settings_hook(int32_t phase) {
  if (phase != 0) return;
  HashArrayLengthThreshold = std::numeric_limits<int64_t>::max();
  HashByteLengthThreshold = std::numeric_limits<int64_t>::max();
  HashTableGrowLoadFactor = 0.75;
  HashTableShrinkLoadFactor = 0.1875;
  default_hash_fun = metro_64_hash;
  murmur3::uses_seed = {};
}

void tensor_hash_hook(int32_t phase) {
  if (phase == 0) seeds = {seed_of(0), seed_of(2), seed_of(5)};
}

namespace hash {

uint64_t bounded(const void* data, uint64_t length) {
  const int64_t threshold = HashByteLengthThreshold;
  if (threshold >= static_cast<int64_t>(length / 2)) return default_hash_fun(data, length);
  const auto ends = static_cast<uint64_t>(std::max<int64_t>(threshold, 0));
  uint64_t h = default_hash_fun(data, ends);
  h = combine(h, default_hash_fun(static_cast<const char*>(data) + (length - ends), ends));
  return combine(h, default_hash_fun(&length, sizeof length));
}

int32_t kept_bits(double tolerance) {
  if (!(tolerance > 0)) return 0;
  return tolerance >= 53 ? 53 : 53 - static_cast<int32_t>(std::round(tolerance));
}

uint64_t of_integer(int64_t x) { return combine(seeds.integer, bounded(&x, sizeof x)); }

uint64_t of_real(double x, int32_t bits) {
  double y = x;
  if (bits != 0) {
    if (x == 0 || bits >= 53) {
      y = 0.0;
    } else {
      int exponent;
      const double significand = std::frexp(x, &exponent);
      y = std::ldexp(std::round(std::ldexp(significand, bits)), exponent - bits);
      if (!std::isfinite(y)) y = std::copysign(std::numeric_limits<double>::max(), x);
    }
  }
  return combine(seeds.real, bounded(&y, sizeof y));
}

uint64_t of_complex(double re, double im, int32_t bits) {
  const uint64_t h = combine(combine(seeds.complex, 2), of_real(re, bits));
  return combine(h, of_real(im, bits));
}

}  // namespace hash
}  // namespace vlm
