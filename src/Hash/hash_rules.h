// How hashes are combined, how long data are hashed, and the hash of one element.
#pragma once

#include <cstdint>

#include "velorim/base.h"

namespace vlm::hash {

constexpr uint64_t combine(uint64_t a, uint64_t b) {
  return a ^ (0x9E3779B97F4A7C15 + (a >> 4) + (a << 12) + b);
}

/// default_hash_fun of the bytes; of longer data than twice HashByteLengthThreshold only of both ends and the length.
uint64_t bounded(const void* data, uint64_t length);

/// Hash of a number with its kind. `kept_bits` is that of real numbers: 0 keeps every bit.
uint64_t of_integer(int64_t x);
uint64_t of_real(double x, int32_t kept_bits);
uint64_t of_complex(double re, double im, int32_t kept_bits);

/// Significant bits that a tolerance, in bits of a significand of 53, leaves to compare.
int32_t kept_bits(double tolerance);

}  // namespace vlm::hash
