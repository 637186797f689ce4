// The bucket counts of hash tables, and remainders by them without a division.
#pragma once

#include <array>
#include <bit>
#include <cstdint>

namespace vlm::hash {

/// From index 3 on a prime near 2^i; index 2 is the smallest that a table takes.
inline constexpr std::array<uint64_t, 64> primes = {
    3,
    5,
    7,
    11,
    17,
    31,
    67,
    127,
    257,
    521,
    1031,
    2053,
    4099,
    8191,
    16411,
    32771,
    65537,
    131071,
    262147,
    524287,
    1048583,
    2097169,
    4194319,
    8388617,
    16777259,
    33554467,
    67108879,
    134217757,
    268435459,
    536870923,
    1073741827,
    2147483647,
    4294967311,
    8589934609,
    17179869209,
    34359738421,
    68719476767,
    137438953481,
    274877906951,
    549755813911,
    1099511627791,
    2199023255579,
    4398046511119,
    8796093022237,
    17592186044423,
    35184372088891,
    70368744177679,
    140737488355333,
    281474976710677,
    562949953421381,
    1125899906842679,
    2251799813685269,
    4503599627370517,
    9007199254740997,
    18014398509482143,
    36028797018963971,
    72057594037928017,
    144115188075855881,
    288230376151711813,
    576460752303423619,
    1152921504606847009,
    2305843009213693951,
    4611686018427388039,
    9223372036854775783,
};

/// n mod d for one d: the quotient is the high half of n times a reciprocal of 65 bits, of which the lower 64 are kept (Granlund and
/// Montgomery, Division by Invariant Integers using Multiplication, 1994).
class divisor {
 public:
  constexpr explicit divisor(uint64_t d = 3) : d_(d), shift_(std::bit_width(d - 1) - 1) {
    const unsigned __int128 excess = (static_cast<unsigned __int128>(1) << (shift_ + 1)) - d;
    reciprocal_ = static_cast<uint64_t>((excess << 64) / d) + 1;
  }
  constexpr uint64_t remainder(uint64_t n) const {
    const auto high = static_cast<uint64_t>(static_cast<unsigned __int128>(n) * reciprocal_ >> 64);
    const uint64_t quotient = (((n - high) >> 1) + high) >> shift_;
    return n - quotient * d_;
  }

 private:
  uint64_t d_;
  uint64_t reciprocal_ = 0;
  int shift_;
};

inline constexpr std::array<divisor, 64> divisors = [] {
  std::array<divisor, 64> all;
  for (size_t i = 0; i < all.size(); ++i) all[i] = divisor(primes[i]);
  return all;
}();

}  // namespace vlm::hash
