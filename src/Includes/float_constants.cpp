// The exported constants of the machine's numbers, and the comparison tolerances.
#include <bit>
#include <limits>

#include "velorim/floating_point.h"

// Declared extern, so that constexpr leaves them their external linkage.
constexpr mreal dInfinity = std::numeric_limits<mreal>::infinity();
constexpr mreal MachinePrecision = -std::numeric_limits<mreal>::infinity();
constexpr mreal MachineOverflow = std::numeric_limits<mreal>::infinity();
constexpr mreal log2ten = 3.321928094887362;
constexpr mreal logten = 2.302585092994046;
constexpr mreal logtwo = 0.6931471805599453;

// Compiled code holds copies of these: the bits are part of the interface.
static_assert(std::bit_cast<uint64_t>(dInfinity) == 0x7FF0000000000000);
static_assert(std::bit_cast<uint64_t>(MachinePrecision) == 0xFFF0000000000000);
static_assert(std::bit_cast<uint64_t>(MachineOverflow) == 0x7FF0000000000000);
static_assert(std::bit_cast<uint64_t>(log2ten) == 0x400A934F0979A371);
static_assert(std::bit_cast<uint64_t>(logten) == 0x40026BB1BBB55516);
static_assert(std::bit_cast<uint64_t>(logtwo) == 0x3FE62E42FEFA39EF);

mreal EqualTolerance = 7.0;
mreal SameQTolerance = 1.0;
mreal HashTolerance = 1.0;

mreal BoundMachineTolerance(mreal bits) noexcept {
  if (bits < 0.0) return -1.0;
  return bits > 54.0 ? 54.0 : bits;
}
