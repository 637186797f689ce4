// What a start, an end and a step mean in a dimension.
#include "MNumericArray/Structural/sequence_specification.h"

#include <limits>

int32_t NormalizeSeqSpec(mint d, uint32_t flags, mint* start, mint* end, mint* step,
                         mint* count) VLM_NOEXCEPT {
  // In 128 bits no sum of two of the arguments overflows.
  using wide = __int128;
  wide s = *start, e = *end;
  if (s <= 0) {
    s += wide{d} + 1;
  } else if ((flags & SequenceClampStart) != 0 && s > d) {
    s = d;
  }
  if (e < 0) {
    e += wide{d} + 1;
  } else if ((flags & SequenceClampEnd) != 0 && e > d) {
    e = d;
  }
  mint by = *step;
  if (by == std::numeric_limits<mint>::min()) by = e < s ? -1 : 1;
  const bool valid = by > 0 ? s >= 1 && e + 1 >= s && e <= d : by < 0 && e >= 1 && e <= s + 1 && s <= d;
  if (!valid) return 0;
  // The distance has the sign of the step, or is one place the other way in an empty sequence, where the quotient is -1 or a fraction
  // that rounds down to it.
  const wide distance = e - s;
  wide quotient = distance / by;
  if (distance % by != 0 && (distance < 0) != (by < 0)) --quotient;
  *start = static_cast<mint>(s);
  *end = static_cast<mint>(e);
  *step = by;
  *count = static_cast<mint>(quotient + 1);
  return 1;
}

namespace vlm {

sequence_list::sequence_list(const MNumericArray* source, mint n)
    : items_(static_cast<uint64_t>(n), FailReport), source_(source) {}

int32_t sequence_list::normalize(const mint* starts, const mint* ends, const mint* steps,
                                 const uint32_t* flags) {
  if (!items_) return ArrayStatusNoMemory;
  mint stride = source_->flattenedLength;
  for (uint64_t i = 0; i < items_.size(); ++i) {
    const mint d = source_->dims[i];
    sequence& item = items_[i];
    item = {starts[i], ends[i], steps[i], 0, 0};
    if (!NormalizeSeqSpec(d, flags == nullptr ? 0 : flags[i], &item.start, &item.end, &item.step,
                          &item.count))
      return LibraryNumericalError;
    stride = d == 0 ? 0 : stride / d;
    item.stride = stride;
  }
  return ArrayStatusOk;
}

}  // namespace vlm
