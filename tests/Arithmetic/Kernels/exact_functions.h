// Real functions whose value is an exact number, or one rounding away from it, by their plain rules on doubles.
#pragma once

#include <cfenv>
#include <cmath>
#include <cstdint>
#include <limits>

namespace exact_functions {

/// A rule gives the value for every number that is not a NaN; mint results as doubles, exact below 2^53.
struct entry {
  int32_t number_of;
  double (*rule)(double x);
  double of_nan;     // the value at a NaN, NaN for one that stays
  bool nan_signals;  // a quiet NaN raises invalid: the functions that compare it or convert it to an integer
  bool copies;       // the bits of a NaN pass through, a signalling one without a signal
  bool gives_integer;  // the result is an Integer64
};

inline double fraction(double x) { return std::isinf(x) ? std::copysign(0.0, x) : x - std::trunc(x); }
inline double signum(double x) { return static_cast<double>((x > 0) - (x < 0)); }
/// By halves compared with the distance to the floor: to even at a tie.
inline double nearest_even(double x) {
  if (std::abs(x) >= 0x1p52) return x;
  const double low = std::floor(x), rest = x - low;
  if (rest != 0.5) return rest < 0.5 ? low : low + 1;
  return std::fmod(low, 2) == 0 ? low : low + 1;
}

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

inline constexpr entry entries[] = {
    {38, [](double x) { return std::abs(x); }, nan, false, true, false},
    {40, [](double x) { return x; }, nan, false, true, false},
    {42, [](double x) { return x; }, nan, false, true, false},
    {43, [](double x) { return -x; }, nan, false, true, false},
    {44, signum, 1, true, false, true},
    {45, [](double x) { return x > 0 ? 1.0 : 0.0; }, 0, true, false, true},
    {46, [](double x) { return x < 0 ? 1.0 : 0.0; }, 0, true, false, true},
    {47, [](double x) { return x > 0 ? 0.0 : 1.0; }, 0, true, false, true},
    {48, [](double x) { return x < 0 ? 0.0 : 1.0; }, 0, true, false, true},
    {49, nearest_even, 0, true, false, true},
    {50, [](double x) { return std::floor(x); }, 0, true, false, true},
    {51, [](double x) { return std::ceil(x); }, 0, true, false, true},
    {52, [](double x) { return std::copysign(fraction(x), x); }, nan, false, false, false},
    {53, [](double x) { return std::trunc(x); }, 0, true, false, true},
    {66, [](double x) { return x < 0 ? 0.0 : 1.0; }, 1, true, false, true},
    {78, [](double x) { return x == 0 ? 0.0 : 1.0; }, 1, true, false, true},
    {79,
     [](double x) {
       const double f = fraction(x);
       if (x >= 0) return std::copysign(f, x);
       return f == 0 ? 0.0 : f + 1;
     },
     nan, false, false, false},
    {81, [](double x) { return x > 0 ? x : 0.0; }, 0, false, false, false},
    {83, [](double x) { return std::abs(x); }, nan, false, true, false},
    {84, signum, 1, true, false, true},
    {85, [](double x) { return std::abs(x) > 0.5 ? 0.0 : 1.0; }, 1, true, false, true},
    {86, [](double x) { return std::abs(x) >= 1 ? 0.0 : 1 - std::abs(x); }, nan, false, false, false},
};

}  // namespace exact_functions
