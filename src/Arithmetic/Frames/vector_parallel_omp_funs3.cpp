#include "Arithmetic/Frames/vector_parallel_omp_funs3.h"

#include <algorithm>

#include "Arithmetic/Frames/strided.h"
#include "Arithmetic/Parallel/settings.h"
#include "Arithmetic/Parallel/team.h"
#include "velorim/machine_functions.h"

namespace vlm::vmfun3 {

using namespace frames;

namespace {

check_mode choose_mode(const kernel& k, bool in_place, uint32_t flags) {
  if (k.integer) return (flags & MACHFUNC_CHECK_INTEGER) != 0 ? check_mode::element : check_mode::plain;
  if ((flags & MACHFUNC_CHECK_FP) == 0) return check_mode::plain;
  return in_place ? check_mode::element : check_mode::bulk;
}

/// The loop over the elements from `start` on, without the judgement of bulk mode.
class loop {
 public:
  loop(const kernel& k, run body, unsigned char* result, mint result_step, const steady_source& a,
       const steady_source& x, const steady_source& y)
      : body_(body), bytes_(k.bytes), result_(result), result_step_(result_step), sources_{&a, &x, &y} {
    unit_ = result_step == 1;
    for (const steady_source* s : sources_) unit_ = unit_ && s->step() == 1;
  }

  mint operator()(mint start, mint count) const {
    if (!unit_) return general(start, count);
    const mint at = start * bytes_;
    return body_(result_ + at, sources_[0]->data() + at, sources_[1]->data() + at, sources_[2]->data() + at,
                 count);
  }

 private:
  /// Blocks are gathered, run, and scattered; an argument that stays the same is gathered once.
  mint general(mint start, mint count) const {
    alignas(64) unsigned char room[4][gather_length * largest_element];
    const unsigned char* block[3];
    for (mint done = 0; done < count; done += gather_length) {
      const mint first = start + done, length = std::min(gather_length, count - done);
      for (int s = 0; s < 3; ++s) {
        if (done > 0 && sources_[s]->step() == 0) continue;
        block[s] = gathered(room[s], sources_[s]->data(), sources_[s]->step(), static_cast<size_t>(bytes_),
                            first, length);
      }
      const mint position = body_(room[3], block[0], block[1], block[2], length);
      const mint good = position == 0 ? length : position - 1;
      strided_copy(result_ + first * result_step_ * bytes_, result_step_, room[3], 1, good,
                   static_cast<size_t>(bytes_));
      if (position != 0) return done + position;
    }
    return 0;
  }

  run body_;
  mint bytes_;
  unsigned char* result_;
  mint result_step_;
  const steady_source* sources_[3];
  bool unit_;
};

}  // namespace

mint vfun3_run(const kernel& k, void* result, const void* a, const void* x, const void* y, mint count,
               const mint* increments, uint32_t flags) {
  if (count <= 0) return 0;
  const bool in_place = result == a || result == x || result == y;
  const check_mode mode = choose_mode(k, in_place, flags);

  const auto steady = [&](const void* source, mint step) {
    return steady_source(source, step, k.bytes, result, increments[0], k.bytes, count);
  };
  const steady_source as = steady(a, increments[1]), xs = steady(x, increments[2]),
                      ys = steady(y, increments[3]);
  const loop body(k, mode == check_mode::element ? k.element : k.plain, static_cast<unsigned char*>(result),
                  increments[0], as, xs, ys);

  const parallel::length_pair lengths = parallel::lengths(parallel::family::ternary);
  // In place on one thread; and results that all land on one element, so that the last one stays.
  const bool one_thread = in_place || increments[0] == 0;
  if (one_thread || !parallel::use_team(count, lengths.threshold)) {
    return judged(mode, [&] { return body(0, count); });
  }
  return parallel::smallest_failure(
      count, lengths.chunk,
      [&](mint first, mint length) { return judged(mode, [&] { return body(first, length); }); },
      [](auto&& update) {
#pragma omp critical(pvector_error_3)
        update();
      });
}

}  // namespace vlm::vmfun3
