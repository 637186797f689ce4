// The reducing frame: a vector into one accumulator, on the calling thread or on the team.
//
// A reduction is two functions. range(accumulator, source, count, increments) folds elements into
// *accumulator and returns 0, or something else when it fails; increments[1] is the step between elements, in
// elements. combine(into, value) merges *value into *into and returns likewise. Neither lets an exception
// out.
//
// On the team each chunk is folded into a value of its own, which starts where the accumulator stood, and
// joins the partial of its thread; the partials join the accumulator in the order of the threads. The start
// value is therefore one that combining with changes nothing. The chunks of a thread and their order depend
// on the count, the chunk and the number of threads alone, and so does the result, also of sums that round.
#pragma once

#include <omp.h>

#include <algorithm>
#include <atomic>

#include "Arithmetic/Parallel/team.h"
#include "Memory/working_space.h"

namespace vlm::vmfun1_0 {

/// Reduces count elements of source into *accumulator, which holds the start value. Returns 0, or 1 when the
/// kernel or the combine function failed; the accumulator then holds no result. Without memory for the
/// partials the calling thread does it all: the same reduction in the order of a single thread.
template <class Accumulator, class Source, class Range, class Combine>
int32_t vfun1_0_run(Range&& range, Combine&& combine, Accumulator* accumulator, const Source* source,
                    mint count, const mint* increments) {
  const parallel::length_pair lengths = parallel::lengths(parallel::family::reducing);
  const auto on_this_thread = [&]() -> int32_t {
    return range(accumulator, source, count, increments) != 0 ? 1 : 0;
  };
  if (!parallel::use_team(count, lengths.threshold)) return on_this_thread();

  const int threads = parallel::team_size();
  memory::working_space<Accumulator> partials(static_cast<uint64_t>(threads));
  if (!partials) return on_this_thread();
  const Accumulator start = *accumulator;
  std::fill(partials.begin(), partials.end(), start);

  std::atomic<bool> failed{false};
  const auto reduce_chunk = [&](mint first, mint length) {
    if (failed.load(std::memory_order_relaxed)) return;
    Accumulator local = start;
    if (range(&local, source + increments[1] * first, length, increments) != 0) {
#pragma omp critical(pvector_error_1_0a)
      failed.store(true, std::memory_order_relaxed);
    } else if (combine(&partials[static_cast<uint64_t>(omp_get_thread_num())], &local) != 0) {
#pragma omp critical(pvector_error_1_0b)
      failed.store(true, std::memory_order_relaxed);
    }
  };
  parallel::for_chunks(count, lengths.chunk, reduce_chunk, threads);
  if (failed.load(std::memory_order_relaxed)) return 1;
  for (const Accumulator& partial : partials.span()) {
    if (combine(accumulator, &partial) != 0) return 1;
  }
  return 0;
}

}  // namespace vlm::vmfun1_0
