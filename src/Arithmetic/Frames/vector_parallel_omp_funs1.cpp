#include "Arithmetic/Frames/vector_parallel_omp_funs1.h"

#include <algorithm>
#include <cstring>

#include "Arithmetic/Parallel/settings.h"
#include "Arithmetic/Parallel/team.h"
#include "Includes/fp_environment.h"
#include "Memory/working_space.h"
#include "velorim/machine_functions.h"

namespace vlm::vmfun1 {
namespace {

constexpr mint gather_length = 512;
constexpr size_t largest_element = 16;

enum class check_mode { plain, bulk, element };

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

template <size_t Bytes> struct cell { unsigned char bytes[Bytes]; };

/// Copies n elements, each by its step; sizes are those of the element types.
template <class Cell>
void copy_cells(unsigned char* to, mint to_step, const unsigned char* from, mint from_step, mint n) {
  for (mint i = 0; i < n; ++i) {
    std::memcpy(to + i * to_step * mint{sizeof(Cell)}, from + i * from_step * mint{sizeof(Cell)},
                sizeof(Cell));
  }
}

void strided_copy(void* to, mint to_step, const void* from, mint from_step, mint n, size_t bytes) {
  auto* t = static_cast<unsigned char*>(to);
  const auto* f = static_cast<const unsigned char*>(from);
  switch (bytes) {
    case 1:
      return copy_cells<cell<1>>(t, to_step, f, from_step, n);
    case 2:
      return copy_cells<cell<2>>(t, to_step, f, from_step, n);
    case 4:
      return copy_cells<cell<4>>(t, to_step, f, from_step, n);
    case 8:
      return copy_cells<cell<8>>(t, to_step, f, from_step, n);
    default:
      return copy_cells<cell<16>>(t, to_step, f, from_step, n);
  }
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
      strided_copy(x, 1, source + first * x_step_ * k_.source_bytes, x_step_, length, k_.source_bytes);
      const mint position = body_(r, x, length);
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

/// The loop with the judgement of its mode: bulk mode clears the three flags, computes everything, and asks
/// the flags.
mint judged(const loop& body, check_mode mode, unsigned char* result, const unsigned char* source,
            mint count) {
  if (mode != check_mode::bulk) return body(result, source, count);
  fp::clear_flags();
  body(result, source, count);
  return fp::test_flags() ? 1 : 0;
}

struct byte_range {
  const unsigned char *first, *last;  // last is one past the end
};

byte_range bytes_of(const void* data, mint step, mint count, size_t bytes) {
  const auto* p = static_cast<const unsigned char*>(data);
  const mint reach = (count - 1) * step * static_cast<mint>(bytes);
  return reach >= 0 ? byte_range{p, p + reach + bytes} : byte_range{p + reach, p + bytes};
}

/// Whether results, written element by element, could change source elements that are still to be read.
bool disturbs_source(const kernel& k, const void* result, const void* source, mint count, const mint* steps) {
  if (count < 2 || (result == source && k.result_bytes == k.source_bytes && steps[0] == steps[1]))
    return false;
  const byte_range r = bytes_of(result, steps[0], count, k.result_bytes);
  const byte_range x = bytes_of(source, steps[1], count, k.source_bytes);
  return r.first < x.last && x.first < r.last;
}

}  // namespace

mint vfun1_run(const kernel& k, void* result, const void* source, mint count, const mint* increments,
               uint32_t flags) {
  if (count <= 0) return 0;
  auto* r = static_cast<unsigned char*>(result);
  const auto* x = static_cast<const unsigned char*>(source);
  const check_mode mode = choose_mode(k, result, source, flags);

  mint steps[2] = {increments[0], increments[1]};
  memory::working_space<unsigned char> copy(0);
  if (disturbs_source(k, result, source, count, steps)) {
    const mint distinct = steps[1] == 0 ? 1 : count;
    copy = memory::working_space<unsigned char>(static_cast<uint64_t>(distinct) * k.source_bytes, FailFatal);
    strided_copy(copy.data(), 1, source, steps[1], distinct, k.source_bytes);
    x = copy.data();
    if (steps[1] != 0) steps[1] = 1;
  }

  const loop body(k, mode == check_mode::element ? k.element : k.plain, steps);
  const parallel::length_pair lengths = parallel::lengths(parallel::family::unary);
  // In place on one thread; and results that all land on one element, so that the last one stays.
  const bool one_thread = (k.same_type && result == source) || steps[0] == 0;
  if (one_thread || !parallel::use_team(count, lengths.threshold)) {
    return judged(body, mode, r, x, count);
  }
  return parallel::smallest_failure(
      count, lengths.chunk,
      [&](mint first, mint length) {
        return judged(body, mode, r + first * steps[0] * k.result_bytes,
                      x + first * steps[1] * k.source_bytes, length);
      },
      [](auto&& update) {
#pragma omp critical(pvector_error_1)
        update();
      });
}

}  // namespace vlm::vmfun1
