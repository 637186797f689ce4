#include "Arithmetic/Frames/strided.h"

#include <cstring>

namespace vlm::frames {
namespace {

template <size_t Bytes> struct cell { unsigned char bytes[Bytes]; };

template <class Cell>
void copy_cells(unsigned char* to, mint to_step, const unsigned char* from, mint from_step, mint n) {
  for (mint i = 0; i < n; ++i) {
    std::memcpy(to + i * to_step * mint{sizeof(Cell)}, from + i * from_step * mint{sizeof(Cell)},
                sizeof(Cell));
  }
}

struct byte_range {
  const unsigned char *first, *last;  // last is one past the end
};

byte_range bytes_of(const void* data, mint step, mint count, size_t bytes) {
  const auto* p = static_cast<const unsigned char*>(data);
  const mint reach = (count - 1) * step * static_cast<mint>(bytes);
  return reach >= 0 ? byte_range{p, p + reach + bytes} : byte_range{p + reach, p + bytes};
}

}  // namespace

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

bool ranges_meet(const void* a, mint a_step, size_t a_bytes, const void* b, mint b_step, size_t b_bytes,
                 mint count) {
  const byte_range r = bytes_of(a, a_step, count, a_bytes);
  const byte_range x = bytes_of(b, b_step, count, b_bytes);
  return r.first < x.last && x.first < r.last;
}

steady_source::steady_source(const void* source, mint step, size_t bytes, const void* result,
                             mint result_step, size_t result_bytes, mint count)
    : data_(static_cast<const unsigned char*>(source)), step_(step) {
  const bool same_elements = result == source && result_bytes == bytes && result_step == step && step != 0;
  if (count < 2 || same_elements ||
      !ranges_meet(result, result_step, result_bytes, source, step, bytes, count)) {
    return;
  }
  const mint distinct = step == 0 ? 1 : count;
  copy_.emplace(static_cast<uint64_t>(distinct) * bytes, FailFatal);
  strided_copy(copy_->data(), 1, source, step, distinct, bytes);
  data_ = copy_->data();
  step_ = step == 0 ? 0 : 1;
}

}  // namespace vlm::frames
