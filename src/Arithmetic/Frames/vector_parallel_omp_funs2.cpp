#include "Arithmetic/Frames/vector_parallel_omp_funs2.h"

#include <algorithm>

#include "Arithmetic/Frames/strided.h"
#include "Arithmetic/Parallel/settings.h"
#include "Arithmetic/Parallel/team.h"
#include "velorim/machine_functions.h"

namespace vlm::vmfun2 {
namespace {

using frames::check_mode;
using frames::gather_length;
using frames::largest_element;

bool is_in_place(const kernel& k, const void* result, const void* x, const void* y) {
  return (k.like_x && result == x) || (k.like_y && result == y);
}

check_mode choose_mode(const kernel& k, bool in_place, uint32_t flags) {
  const uint32_t asks = k.mode == checking::integer ? MACHFUNC_CHECK_INTEGER : MACHFUNC_CHECK_FP;
  if ((flags & asks) == 0) return check_mode::plain;
  return k.mode == checking::floating && !in_place ? check_mode::bulk : check_mode::element;
}

/// One operand of a loop: where its elements lie.
struct operand {
  const unsigned char* data;
  mint step;
  size_t bytes;

  operand from(mint first) const { return {data + first * step * static_cast<mint>(bytes), step, bytes}; }
};

/// Contiguous elements of an operand, a block at a time: those of a step of 1 where they lie, others gathered; the one element of a step
/// of 0 is repeated once for all blocks.
class blocks {
 public:
  blocks(const operand& from, mint count) : from_(from) {
    if (from_.step == 0)
      frames::strided_copy(room_, 1, from_.data, 0, std::min(count, gather_length), from_.bytes);
  }
  const unsigned char* at(mint first, mint length) {
    if (from_.step == 0) return room_;
    return frames::gathered(room_, from_.data, from_.step, from_.bytes, first, length);
  }

 private:
  operand from_;
  alignas(64) unsigned char room_[gather_length * largest_element];
};

/// The loop over one range in one shape, without the judgement of bulk mode.
mint loop(const kernel& k, run body, unsigned char* result, mint r_step, const operand& x, const operand& y,
          mint count) {
  if (r_step == 1 && x.step == 1 && y.step == 1) return body(result, x.data, y.data, count);
  blocks xs(x, count), ys(y, count);
  alignas(64) unsigned char aside[gather_length * largest_element];
  for (mint first = 0; first < count; first += gather_length) {
    const mint length = std::min(gather_length, count - first);
    unsigned char* to = result + first * r_step * k.result_bytes;
    unsigned char* r = r_step == 1 ? to : aside;
    const mint position = body(r, xs.at(first, length), ys.at(first, length), length);
    if (r_step != 1)
      frames::strided_copy(to, r_step, r, 1, position == 0 ? length : position - 1, k.result_bytes);
    if (position != 0) return first + position;
  }
  return 0;
}

/// The loop under its mode. A failure whatever the flags stops even a bulk run at its own position.
mint judged(check_mode mode, const kernel& k, unsigned char* result, mint r_step, const operand& x,
            const operand& y, mint count) {
  const run body = mode == check_mode::element ? k.element : k.plain;
  mint position = 0;
  const mint verdict =
      frames::judged(mode, [&] { return position = loop(k, body, result, r_step, x, y, count); });
  return position != 0 ? position : verdict;
}

}  // namespace

mint vfun2_run(const kernel& k, void* result, const void* x, const void* y, mint count,
               const mint* increments, uint32_t flags) {
  if (count <= 0) return 0;
  auto* r = static_cast<unsigned char*>(result);
  const mint r_step = increments[0];
  const bool in_place = is_in_place(k, result, x, y);
  const check_mode mode = choose_mode(k, in_place, flags);

  const frames::steady_source steady_x(x, increments[1], k.x_bytes, result, r_step, k.result_bytes, count);
  const frames::steady_source steady_y(y, increments[2], k.y_bytes, result, r_step, k.result_bytes, count);
  const operand xs{steady_x.data(), steady_x.step(), k.x_bytes},
      ys{steady_y.data(), steady_y.step(), k.y_bytes};

  const parallel::length_pair lengths = parallel::lengths(parallel::family::binary);
  // In place on one thread; and results that all land on one element, so that the last one stays.
  if (in_place || r_step == 0 || !parallel::use_team(count, lengths.threshold)) {
    return judged(mode, k, r, r_step, xs, ys, count);
  }
  return parallel::smallest_failure(
      count, lengths.chunk,
      [&](mint first, mint length) {
        return judged(mode, k, r + first * r_step * k.result_bytes, r_step, xs.from(first), ys.from(first),
                      length);
      },
      [](auto&& update) {
#pragma omp critical(pvector_error_2)
        update();
      });
}

}  // namespace vlm::vmfun2
