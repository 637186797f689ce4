// How a range is cut into pieces, free of threads. Spans are unsigned: end - start need not fit a mint.
#pragma once

#include <algorithm>

#include "velorim/parallel.h"

namespace vlm::parallel {

struct range {
  mint start;
  mint end;
};

/// The length of a range; end is not below start.
constexpr umint span_of(mint start, mint end) { return static_cast<umint>(end) - static_cast<umint>(start); }

/// size rounded up to a multiple of step, or `most` if that is less; size is at most `most`.
constexpr umint round_up(umint size, umint step, umint most) {
  const umint over = size % step;
  const umint missing = over == 0 ? 0 : step - over;
  return missing > most - size ? most : size + missing;
}

/// An even share of what remains for p pieces: at least 1, rounded up to a multiple of step, at most what
/// remains.
constexpr umint even_share(umint remaining, umint pieces, umint step) {
  return round_up(std::max(remaining / pieces, umint{1}), step, remaining);
}

/// The chunk of a schedule as a multiple of step.
constexpr mint chunk_on_step(mint chunk, mint step) { return chunk < step ? step : chunk - chunk % step; }

/// The pieces of ParallelThreads_For, one after the other. end is above start, step at least 1, the
/// schedule's chunk a multiple of step.
class piece_plan {
 public:
  piece_plan(mint start, mint end, mint step, const ParallelThreadsSchedule* schedule, mint workers)
      : cursor_(start), end_(end), step_(static_cast<umint>(step)), workers_(static_cast<umint>(workers)) {
    if (schedule == nullptr) {
      pieces_ = workers_;
      return;
    }
    kind_ = schedule->kind;
    chunk_ = static_cast<umint>(schedule->chunk);
    switch (kind_) {
      case 1:
        pieces_ = workers_;
        break;
      case 2:
        pieces_ = std::max(remaining() / chunk_, umint{1});
        break;
      case 3:
        pieces_ = chunk_;
        break;
      default:
        pieces_ = 1;
        break;
    }
  }

  bool done() const { return cursor_ == end_; }

  range next() {
    const umint left = remaining();
    const mint first = cursor_;
    cursor_ = static_cast<mint>(static_cast<umint>(first) + std::min(size_of_next(left), left));
    --pieces_;
    return {first, cursor_};
  }

 private:
  umint remaining() const { return span_of(cursor_, end_); }

  umint size_of_next(umint left) const {
    switch (kind_) {
      case 1:
        return std::max(even_share(left, pieces_, step_), chunk_);
      case 4:
        return std::max(round_up(left / workers_, step_, left), chunk_);
      default:
        return even_share(left, pieces_, step_);
    }
  }

  mint cursor_;
  mint end_;
  umint step_;
  umint workers_;
  mint kind_ = 0;
  umint chunk_ = 1;
  umint pieces_ =
      1;  // left to give out, and above 0 as long as work remains: one piece takes all; kind 4 does not count
};

}  // namespace vlm::parallel
