// Walks over the positions of a shape, one-based, last dimension fastest.
#include "velorim/structural.h"

void InitializePosition(mint rank, mint* position) VLM_NOEXCEPT {
  for (mint i = 0; i < rank; ++i) position[i] = 1;
}

int32_t IncrementPosition(mint rank, const mint* dims, mint* position) VLM_NOEXCEPT {
  if (rank < 1 || dims[rank - 1] == 0) return 0;
  for (mint i = rank - 1; i >= 0; --i) {
    if (position[i] < dims[i]) {
      ++position[i];
      return 1;
    }
    position[i] = 1;
  }
  return 0;
}

int32_t IncrementPositionBy(mint rank, const mint* dims, mint* position, mint n) VLM_NOEXCEPT {
  if (n == 1) return IncrementPosition(rank, dims, position);
  if (rank < 1) return 0;
  mint carry = n;
  for (mint i = rank - 1; i >= 0 && carry != 0; --i) {
    if (dims[i] == 0) return 0;
    const __int128 t = static_cast<__int128>(carry) + position[i] - 1;
    // The remainder takes the divisor's sign, so that a walk backwards stays inside as well.
    __int128 digit = t % dims[i];
    if (digit < 0) digit += dims[i];
    position[i] = static_cast<mint>(digit) + 1;
    carry = static_cast<mint>((t - digit) / dims[i]);
  }
  return carry == 0;
}

mint FlatIndex(mint rank, const mint* dims, const mint* position) VLM_NOEXCEPT {
  mint index = 0;
  for (mint i = 0; i < rank; ++i) index = i == 0 ? position[0] - 1 : position[i] + dims[i] * index - 1;
  return index;
}
