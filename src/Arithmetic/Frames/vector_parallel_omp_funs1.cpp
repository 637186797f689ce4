#include "Arithmetic/Frames/vector_parallel_omp_funs1.h"

#include <algorithm>

#include "Arithmetic/Frames/strided.h"
#include "Arithmetic/Parallel/settings.h"
#include "Arithmetic/Parallel/team.h"
#include "velorim/machine_functions.h"

namespace vlm::vmfun1 {

using namespace frames;

namespace {

check_mode choose_mode(const kernel& k, const void* result, const void* source, uint32_t flags) {
  switch (k.mode) {
    case checking::integer:
      return (flags & MACHFUNC_CHECK_INTEGER) != 0 ? check_mode::element : check_mode::plain;
    case checking::floating_changed_type:
      return (flags & MACHFUNC_CHECK_FP) != 0 ? check_mode::bulk : check_mode::plain;
    case checking::floating_same_type:
      break;
  }
  if ((flags & MACHFUNC_CHECK_FP) == 0) return check_mode::plain;
  return result == source ? check_mode::element : check_mode::bulk;
}

/// The loop over one range in one shape, without the judgement of bulk mode.
class loop {
 public:
  loop(const kernel& k, run body, const mint* increments)
      : k_(k), body_(body), r_step_(increments[0]), x_step_(increments[1]) {}

  mint operator()(unsigned char* result, const unsigned char* source, mint count) const {
    if (r_step_ == 1 && x_step_ == 1) return body_(result, source, count);
    if (r_step_ == 1 && x_step_ == 0) return broadcast(result, source, count);
    return general(result, source, count);
  }

 private:
  /// The one source element is computed once and stored everywhere.
  mint broadcast(unsigned char* result, const unsigned char* source, mint count) const {
    alignas(largest_element) unsigned char value[largest_element];
    if (body_(value, source, 1) != 0) return 1;
    strided_copy(result, 1, value, 0, count, k_.result_bytes);
    return 0;
  }

  /// Blocks are gathered, run, and scattered.
  mint general(unsigned char* result, const unsigned char* source, mint count) const {
    alignas(64) unsigned char x[gather_length * largest_element], r[gather_length * largest_element];
    for (mint first = 0; first < count; first += gather_length) {
      const mint length = std::min(gather_length, count - first);
      const mint position = body_(r, gathered(x, source, x_step_, k_.source_bytes, first, length), length);
      const mint good = position == 0 ? length : position - 1;
      strided_copy(result + first * r_step_ * k_.result_bytes, r_step_, r, 1, good, k_.result_bytes);
      if (position != 0) return first + position;
    }
    return 0;
  }

  const kernel& k_;
  run body_;
  mint r_step_, x_step_;
};

}  // namespace

mint vfun1_run(const kernel& k, void* result, const void* source, mint count, const mint* increments,
               uint32_t flags) {
  if (count <= 0) return 0;
  auto* r = static_cast<unsigned char*>(result);
  const check_mode mode = choose_mode(k, result, source, flags);

  const steady_source x(source, increments[1], k.source_bytes, result, increments[0], k.result_bytes, count);
  const mint steps[2] = {increments[0], x.step()};

  const loop body(k, mode == check_mode::element ? k.element : k.plain, steps);
  const parallel::length_pair lengths = parallel::lengths(parallel::family::unary);
  // In place on one thread; and results that all land on one element, so that the last one stays.
  const bool one_thread = (k.same_type && result == source) || steps[0] == 0;
  if (one_thread || !parallel::use_team(count, lengths.threshold)) {
    return judged(mode, [&] { return body(r, x.data(), count); });
  }
  return parallel::smallest_failure(
      count, lengths.chunk,
      [&](mint first, mint length) {
        return judged(mode, [&] {
          return body(r + first * steps[0] * k.result_bytes, x.data() + first * steps[1] * k.source_bytes,
                      length);
        });
      },
      [](auto&& update) {
#pragma omp critical(pvector_error_1)
        update();
      });
}

}  // namespace vlm::vmfun1
