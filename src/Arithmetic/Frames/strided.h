// What the vector frames of every arity share: the copies between strided and contiguous elements, sources that stay as they
// are while results are written, the check modes and the judgement of bulk mode.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "Includes/fp_environment.h"
#include "Memory/working_space.h"
#include "velorim/base.h"

namespace vlm::frames {

/// Elements that a frame gathers at a time, and the bytes of the largest element.
inline constexpr mint gather_length = 512;
inline constexpr size_t largest_element = 16;

/// Copies n elements of a size, each end by its own step in elements. The ranges must not overlap.
void strided_copy(void* to, mint to_step, const void* from, mint from_step, mint n, size_t bytes);

/// The block of elements from `first` on, `length` of them, as contiguous elements: where they lie if the step is 1, else
/// gathered into room.
inline const unsigned char* gathered(unsigned char* room, const unsigned char* data, mint step, size_t bytes,
                                     mint first, mint length) {
  const unsigned char* from = data + first * step * static_cast<mint>(bytes);
  if (step == 1) return from;
  strided_copy(room, 1, from, step, length, bytes);
  return room;
}

/// Whether the bytes of two runs of count elements meet.
bool ranges_meet(const void* a, mint a_step, size_t a_bytes, const void* b, mint b_step, size_t b_bytes,
                 mint count);

/// A source that is safe to read while results are written one after the other: the source itself where the ranges are apart
/// or each result lands on the source element that it was computed from, else a copy. Exhausted memory ends the process.
class steady_source {
 public:
  steady_source(const void* source, mint step, size_t bytes, const void* result, mint result_step,
                size_t result_bytes, mint count);
  const unsigned char* data() const { return data_; }
  mint step() const { return step_; }

 private:
  const unsigned char* data_;
  mint step_;
  std::optional<memory::working_space<unsigned char>> copy_;
};

/// How a run looks for failures: machine_functions.h.
enum class check_mode { plain, bulk, element };

/// A loop under its mode: bulk mode clears the three flags, computes everything, and asks the flags.
template <class Loop> mint judged(check_mode mode, Loop&& loop) {
  if (mode != check_mode::bulk) return loop();
  fp::clear_flags();
  loop();
  return fp::test_flags() ? 1 : 0;
}

}  // namespace vlm::frames
