// Array work on the OpenMP team: whether to use it, the split into chunks, and the smallest failing position
// of a split run.
//
//   if (!use_team(count, lengths.threshold)) return loop(0, count);
//   return smallest_failure(count, lengths.chunk, loop, [](auto&& update) {
//   #pragma omp critical(pvector_error_1)
//     update();
//   });
//
// Chunk i covers the elements from i * chunk on and goes to thread i mod T of a team of T: which thread runs
// an element depends on the count, the chunk and T alone. All of it runs on the caller's thread when the
// runtime grants no team, as inside another parallel region; a team smaller than asked for still runs every
// chunk.
#pragma once

#include <omp.h>

#include <algorithm>
#include <atomic>

#include "Arithmetic/Parallel/settings.h"

namespace vlm::parallel {

/// The largest team asked for, whatever the thread number: the OpenMP runtime ends the process when it cannot
/// start a thread.
inline constexpr int32_t largest_team = 1024;

/// The threads that the next region asks for, at least 1. The number is handed to each region because the
/// setting of omp_set_num_threads holds for the thread alone that called it, and the thread number for the
/// whole process.
inline int team_size() { return std::clamp(thread_number(), int32_t{1}, largest_team); }

/// True if work of this count is worth the team and the settings allow it.
inline bool use_team(mint count, mint threshold) {
  return count >= threshold && thread_number() >= 2 && ListableCompileEvaluatingThreaded == 0 &&
         !settings.team_lost.load(std::memory_order_relaxed);
}

/// Calls body(first, length) once for each chunk of 0 to count, on a team of `threads`; chunk is at least 1.
/// body must let no exception out: one that leaves a parallel region ends the process. omp_get_thread_num()
/// within body is below threads.
template <class Body> void for_chunks(mint count, mint chunk, Body&& body, int threads = team_size()) {
  const mint chunks = count / chunk + (count % chunk != 0);
#pragma omp parallel for schedule(static, 1) num_threads(threads)
  for (mint i = 0; i < chunks; ++i) {
    const mint first = i * chunk;
    body(first, std::min(chunk, count - first));
  }
}

/// The first failing position that the threads of a region share: one-based, 0 for none. It only ever falls,
/// so that a stale value read before a chunk costs no more than a wasted chunk.
class smallest_position {
 public:
  /// True if a failure is known at or before the chunk's first element (zero-based), which then need not run.
  bool precedes(mint first) const {
    const mint position = value();
    return position != 0 && position <= first;
  }

  /// Takes in a failing position. critical(update) calls update() inside the caller's named critical section.
  template <class Critical> void record(mint position, Critical&& critical) {
    critical([this, position] {
      const mint known = value();
      if (known == 0 || position < known) position_.store(position, std::memory_order_relaxed);
    });
  }

  mint value() const { return position_.load(std::memory_order_relaxed); }

 private:
  std::atomic<mint> position_{0};
};

/// Runs loop(first, length) in chunks on the team. loop returns 0 or the one-based position, within its
/// chunk, of a failing element. The result is the smallest of them counted from the start of the whole, 0 if
/// none. Chunks that began before a failure was known run to their end.
template <class Loop, class Critical>
mint smallest_failure(mint count, mint chunk, Loop&& loop, Critical&& critical) {
  smallest_position position;
  for_chunks(count, chunk, [&](mint first, mint length) {
    if (position.precedes(first)) return;
    if (const mint failed = loop(first, length); failed != 0) position.record(first + failed, critical);
  });
  return position.value();
}

}  // namespace vlm::parallel
