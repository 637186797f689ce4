#include "Includes/real16.h"

#include <cfenv>

namespace vlm {
namespace {

constinit thread_local uint32_t flag_word = 0;

void raise_inexact() noexcept {
  // By an inexact sum: nearly every operation is inexact, and a call that reads the status of two units is dear.
  volatile double one = 1.0;
  volatile double sum = one + 0x1p-60;
  static_cast<void>(sum);
}

}  // namespace

uint32_t real16_flag_word() noexcept { return flag_word; }
void clear_real16_flag_word() noexcept { flag_word = 0; }

void signal_real16(uint32_t signals) noexcept {
  flag_word |= signals;
  if (signals & real16_inexact) raise_inexact();
  if ((signals & ~real16_inexact) == 0) [[likely]]
    return;

  int exceptions = 0;
  if (signals & real16_invalid) exceptions |= FE_INVALID;
  if (signals & real16_divide_by_zero) exceptions |= FE_DIVBYZERO;
  if (signals & real16_overflow) exceptions |= FE_OVERFLOW;
  if (signals & real16_underflow) exceptions |= FE_UNDERFLOW;
  if (std::fetestexcept(exceptions) != exceptions) fp::raise(exceptions);  // telling is cheaper than raising
  errno = (signals & real16_invalid) ? EDOM : ERANGE;
}

int real16_format::settled_exceptions() noexcept {
  const uint32_t word = flag_word;
  return (word & real16_overflow ? FE_OVERFLOW : 0) | (word & real16_underflow ? FE_UNDERFLOW : 0) |
         (word & real16_inexact ? FE_INEXACT : 0);
}

real16 real16_format::conclude(double y, int raised) noexcept {
  auto [value, signals] = round(y);
  if (raised & FE_INVALID) signals |= real16_invalid;
  if (raised & FE_DIVBYZERO) signals |= real16_divide_by_zero;
  if (raised & FE_INEXACT) signals |= real16_inexact;
  // Overflow in double counts if it reached the value. A zero that came by way of an underflow, or by way of
  // an infinity that was an overflow, stands for a number below all halves.
  if ((raised & FE_OVERFLOW) && std::isinf(y)) signals |= real16_overflow | real16_inexact;
  if ((raised & (FE_OVERFLOW | FE_UNDERFLOW)) && y == 0.0) signals |= real16_underflow | real16_inexact;
  if (signals != 0) signal_real16(signals);
  return value;
}

}  // namespace vlm
