// Sizes: how a request is rounded, the table of size classes, and the header bytes that a block of a given
// size carries.
#pragma once

#include <array>
#include <cstdint>

namespace vlm::memory {

inline constexpr uint64_t headerless_bytes = 1024;  ///< blocks up to this size carry no header
inline constexpr uint64_t largest_class_bytes = 65536;
inline constexpr int size_class_count = 161;  ///< class 0 serves the allocator itself, 1 to 160 its callers

inline constexpr uint64_t class_header_bytes = 8;
inline constexpr uint64_t large_header_bytes = 40;
inline constexpr uint64_t alignment_word_bytes =
    8;  ///< further header of an aligned block above headerless_bytes

constexpr uint64_t round_up(uint64_t size, uint64_t power_of_two) {
  return (size + (power_of_two - 1)) & ~(power_of_two - 1);
}

namespace detail {
/// Classes 1 to 32 rise by 8 bytes; 33 to 48 by 16; from 49 on every 16 classes the step doubles.
constexpr std::array<uint64_t, size_class_count> make_block_bytes() {
  std::array<uint64_t, size_class_count> bytes{};
  uint64_t step = 8;
  for (int c = 1; c < size_class_count; ++c) {
    if (c > 32 && (c - 1) % 16 == 0) step *= 2;
    bytes[c] = bytes[c - 1] + step;
  }
  return bytes;
}
}  // namespace detail

/// Block size of every class.
inline constexpr std::array<uint64_t, size_class_count> class_block_bytes = detail::make_block_bytes();

namespace detail {
constexpr std::array<uint8_t, largest_class_bytes / 8 + 1> make_class_map() {
  std::array<uint8_t, largest_class_bytes / 8 + 1> map{};
  int c = 0;
  for (uint64_t i = 0; i < map.size(); ++i) {
    while (class_block_bytes[c] < 8 * i) ++c;
    map[i] = static_cast<uint8_t>(c);
  }
  return map;
}
}  // namespace detail

/// The smallest class whose blocks hold 8 * i bytes.
inline constexpr std::array<uint8_t, largest_class_bytes / 8 + 1> class_map = detail::make_class_map();

/// The class of a rounded size of at most largest_class_bytes.
constexpr int size_class_of(uint64_t rounded) { return class_map[rounded / 8]; }

/// The bytes asked of the engine for a request: its size with the header it will carry. Less than size if
/// that is more than 64 bits hold.
constexpr uint64_t rounded_request(uint64_t size, bool aligned) {
  if (size <= headerless_bytes) return round_up(size, aligned ? 16 : 8);
  uint64_t rounded = round_up(size, 8);
  if (rounded < size) return 0;
  rounded += class_header_bytes + (aligned ? alignment_word_bytes : 0);
  if (rounded > largest_class_bytes) rounded += large_header_bytes - class_header_bytes;
  return rounded;
}

/// The bytes that a block for a rounded size takes and is counted with.
constexpr uint64_t consumed_bytes(uint64_t rounded) {
  return rounded > largest_class_bytes ? rounded : class_block_bytes[size_class_of(rounded)];
}

/// Bytes of a block that are not its caller's.
constexpr uint64_t header_bytes(uint64_t consumed, bool aligned) {
  if (consumed <= headerless_bytes) return 0;
  return (consumed > largest_class_bytes ? large_header_bytes : class_header_bytes) +
         (aligned ? alignment_word_bytes : 0);
}

/// What byte counts of objects take for a block of this size. From 65528 up it is the figure of a large
/// block, also for the one size that would still fit the largest class.
constexpr uint64_t counted_bytes(uint64_t size, bool aligned) {
  const uint64_t word = aligned ? alignment_word_bytes : 0;
  const uint64_t rounded = round_up(size, 8);
  if (rounded < size) return ~uint64_t{0};
  if (rounded >= largest_class_bytes - class_header_bytes) {
    const uint64_t total = rounded + large_header_bytes + word;
    return total < size ? ~uint64_t{0} : total;
  }
  const uint64_t block =
      rounded <= headerless_bytes ? round_up(size, aligned ? 16 : 8) : rounded + class_header_bytes + word;
  return class_block_bytes[size_class_of(block)];
}

static_assert(class_block_bytes[32] == 256 && class_block_bytes[33] == 272 && class_block_bytes[48] == 512);
static_assert(class_block_bytes[64] == 1024 && class_block_bytes[65] == 1088 &&
              class_block_bytes[80] == 2048);
static_assert(class_block_bytes[144] == 32768 && class_block_bytes[145] == 34816);
static_assert(class_block_bytes[160] == largest_class_bytes);
static_assert(size_class_of(8) == 1 && size_class_of(264) == 33 && size_class_of(largest_class_bytes) == 160);
static_assert(rounded_request(65528, false) == largest_class_bytes);
static_assert(rounded_request(65529, false) == 65536 + large_header_bytes);

}  // namespace vlm::memory
