// The process-wide settings of parallel work, as the frames read them. The exported accessors over them are
// in velorim/parallel.h. Reads are relaxed loads, as cheap as plain ones, so that a body which changes a
// setting in the middle of a call is no data race; two settings read one after the other need not belong
// together.
#pragma once

#include <atomic>
#include <cstdint>

#include "velorim/base.h"
#include "velorim/parallel.h"

namespace vlm::parallel {

/// The lengths that steer one family of frames: from `threshold` elements on a frame may use the team, in
/// chunks of `chunk`.
struct length_pair {
  mint chunk;
  mint threshold;
};

/// Which pair a family uses.
enum class family : int32_t { reducing = 0, unary = 1, binary = 2, ternary = 3 };
inline constexpr int32_t family_count = 4;
inline constexpr int32_t vendor_count = 3;

/// The pairs at startup, by family.
inline constexpr length_pair default_lengths[family_count] = {
    {16384, 32768}, {4096, 8192}, {4096, 8192}, {4096, 8192}};

struct atomic_length_pair {
  constexpr atomic_length_pair(length_pair pair) : chunk(pair.chunk), threshold(pair.threshold) {}
  std::atomic<mint> chunk;
  std::atomic<mint> threshold;
};

/// One object for the process, settings.cpp; usable before startup, when it holds the values of startup's
/// first phase.
struct settings_record {
  std::atomic<int32_t> processor_count{1};
  std::atomic<int32_t> hyper_thread_count{1};
  std::atomic<int32_t> thread_number{1};
  std::atomic<int32_t> sub_kernel{0};
  atomic_length_pair lengths[family_count] = {default_lengths[0], default_lengths[1], default_lengths[2],
                                              default_lengths[3]};
  std::atomic<mint> vendor[vendor_count] = {INT64_MAX, INT64_MAX, INT64_MAX};
  std::atomic<bool> team_lost{false};  // in a forked child the threads of the team do not exist any more
};
extern settings_record settings;

/// The parallel thread number, as set: 0 and negative numbers, which a host may have set, mean one thread.
inline int32_t thread_number() { return settings.thread_number.load(std::memory_order_relaxed); }

inline length_pair lengths(family which) {
  const atomic_length_pair& pair = settings.lengths[static_cast<int32_t>(which)];
  return {pair.chunk.load(std::memory_order_relaxed), pair.threshold.load(std::memory_order_relaxed)};
}

/// The byte rule of plain loops over elements of one size: the team from 128 KiB of data on, in chunks of 64
/// KiB.
constexpr length_pair byte_lengths(mint element_bytes) {
  return {65536 / element_bytes, 131072 / element_bytes};
}

}  // namespace vlm::parallel
