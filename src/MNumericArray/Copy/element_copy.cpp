// The loops that move elements.
#include "MNumericArray/Copy/element_copy.h"

#include <algorithm>
#include <cstring>
#include <functional>

namespace vlm {
namespace {

struct byte_range {
  const char* first;
  const char* last;  ///< one past
};

/// What count elements at a step touch.
byte_range touched(const void* data, mint step, mint count, mint element_bytes) {
  const char* const start = static_cast<const char*>(data);
  const mint reach = (count - 1) * step * element_bytes;
  return {start + std::min<mint>(reach, 0), start + std::max<mint>(reach, 0) + element_bytes};
}

bool meet(byte_range a, byte_range b) {
  const std::less<const char*> before;
  return before(a.first, b.last) && before(b.first, a.last);
}

/// count copies of an element of W bytes side by side, stored a block at a time.
template <int W> void fill_run(char* to, const void* value, mint count) {
  constexpr mint block_bytes = 64;
  alignas(block_bytes) char block[block_bytes];
  for (mint i = 0; i < block_bytes; i += W) std::memcpy(block + i, value, W);
  const mint bytes = count * W;
  mint i = 0;
  for (; i + block_bytes <= bytes; i += block_bytes) std::memcpy(to + i, block, block_bytes);
  std::memcpy(to + i, block, static_cast<size_t>(bytes - i));
}

}  // namespace

void copy_run(void* target, const void* source, mint count, mint element_bytes) {
  if (count < 1 || target == source) return;
  char* const to = static_cast<char*>(target);
  const char* const from = static_cast<const char*>(source);
  if (meet(touched(to, 1, count, element_bytes), touched(from, 1, count, element_bytes))) {
    std::memmove(to, from, static_cast<size_t>(count * element_bytes));
    return;
  }
  over_elements(count, element_bytes, true, [=](mint first, mint length) {
    std::memcpy(to + first * element_bytes, from + first * element_bytes,
                static_cast<size_t>(length * element_bytes));
  });
}

void copy_strided(void* target, mint target_step, const void* source, mint source_step, mint count,
                  mint element_bytes) {
  if (count < 1) return;
  if (target_step == 1 && source_step == 1) {
    if (with_width(element_bytes, []<int W>() {})) copy_run(target, source, count, element_bytes);
    return;
  }
  with_width(element_bytes, [=]<int W>() {
    using element = carrier_t<W>;
    element* const to = static_cast<element*>(target);
    const element* const from = static_cast<const element*>(source);
    const bool independent = target_step != 0 && !meet(touched(target, target_step, count, W),
                                                       touched(source, source_step, count, W));
    over_elements(count, W, independent, [=](mint first, mint length) {
      for (mint i = first; i < first + length; ++i) to[i * target_step] = from[i * source_step];
    });
  });
}

void fill_pattern(void* data, mint step, const void* values, mint value_count, mint count,
                  mint element_bytes) {
  if (count < 1 || value_count < 1) return;
  with_width(element_bytes, [=]<int W>() {
    using element = carrier_t<W>;
    element* const to = static_cast<element*>(data);
    const element* const from = static_cast<const element*>(values);
    over_elements(count, W, true, [=](mint first, mint length) {
      if (value_count > 1) {
        for (mint i = first; i < first + length; ++i) {
          for (mint k = 0; k < value_count; ++k) to[i * step + k] = from[k];
        }
      } else if (step != 1) {
        const element value = *from;
        for (mint i = first; i < first + length; ++i) to[i * step] = value;
      } else {
        fill_run<W>(reinterpret_cast<char*>(to + first), from, length);
      }
    });
  });
}

void fill_zero(void* data, mint count, mint element_bytes) {
  if (count < 1) return;
  char* const to = static_cast<char*>(data);
  over_elements(count, element_bytes, true, [=](mint first, mint length) {
    std::memset(to + first * element_bytes, 0, static_cast<size_t>(length * element_bytes));
  });
}

}  // namespace vlm
