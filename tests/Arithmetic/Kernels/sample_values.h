// Arguments that the tests of functions share: where functions change form or have no value, and numbers of every size.
#pragma once

#include <cmath>
#include <cstring>
#include <random>
#include <set>
#include <vector>

#include "Arithmetic/Kernels/ordinary_ranges.h"
#include "Includes/element_types.h"
#include "Includes/real16.h"

namespace sample_values {

using namespace vlm;

template <class T> T real_number(double x) {
  if constexpr (std::is_same_v<T, real16>) {
    return real16_format::round(x).value;
  } else {
    return static_cast<T>(x);
  }
}

/// Arguments where functions change form or have no value.
template <class T> std::vector<T> special_values() {
  std::vector<T> xs;
  if constexpr (is_integer_element<T>) {
    for (const int small : {0, 1, 2, 3, 5, 10, 11, 12, 13, 90, 92, 93, 94, 100, 127}) {
      xs.push_back(static_cast<T>(small));
      xs.push_back(static_cast<T>(-small));
    }
    xs.push_back(std::numeric_limits<T>::min());
    xs.push_back(std::numeric_limits<T>::max());
    xs.push_back(static_cast<T>(std::numeric_limits<T>::min() + 1));
  } else {
    constexpr double least = std::is_same_v<T, double>  ? 0x1p-1022
                             : std::is_same_v<T, float> ? 0x1p-126
                                                        : 0x1p-14;
    constexpr double denormal = std::is_same_v<T, double>  ? 0x1p-1074
                                : std::is_same_v<T, float> ? 0x1p-149
                                                           : 0x1p-24;
    constexpr double most = std::is_same_v<T, double>  ? 0x1.fffffffffffffp1023
                            : std::is_same_v<T, float> ? 0x1.fffffep127
                                                       : 65504.0;
    const double half_pi = 1.5707963267948966;
    for (const double x : {0.0,
                           0.25,
                           0.5,
                           0.75,
                           1.0,
                           1.5,
                           2.0,
                           2.5,
                           3.0,
                           10.0,
                           36.0,
                           100.0,
                           170.0,
                           171.7,
                           710.0,
                           711.0,
                           745.2,
                           800.0,
                           88.5,
                           89.5,
                           89.8,
                           104.0,
                           1e5,
                           1.1e5,
                           1e9,
                           1.1e9,
                           1e18,
                           1e19,
                           9.2e18,
                           0x1p53,
                           0x1p63,
                           1e35,
                           1e150,
                           1e300,
                           half_pi,
                           2 * half_pi,
                           3 * half_pi,
                           1e-5,
                           0x1p-12,
                           0x1p-20,
                           1e-30,
                           1e-160,
                           least,
                           2 * least,
                           denormal,
                           3 * denormal,
                           0.7 * least,
                           most,
                           most / 8,
                           static_cast<double>(INFINITY),
                           static_cast<double>(NAN)}) {
      xs.push_back(real_number<T>(x));
      xs.push_back(real_number<T>(-x));
    }
  }
  return xs;
}

/// Numbers around the limits where functions change form, as they are met by a function, by one that halves or
/// doubles its argument, and by one that takes its reciprocal.
template <class T> std::vector<T> limits_of_forms() {
  std::vector<T> xs;
  std::mt19937_64 random(271828);
  std::set<double> limits;
  for (const auto& [number, range] : ordinary_ranges<T>())
    limits.insert({std::abs(range.low), std::abs(range.high)});
  for (const double limit : limits) {
    for (const double met : {limit, limit / 2, limit * 2, 1 / limit}) {
      T x = static_cast<T>(met);
      if (x == 0 || !std::isfinite(x)) continue;
      for (int i = 0; i < 6; ++i) {
        const double near = static_cast<double>(x) * (0.25 + static_cast<double>(random() % 4096) / 1024);
        if (std::isfinite(static_cast<T>(near))) xs.push_back(static_cast<T>(near));
      }
      for (int i = 0; i < 3; ++i) x = std::nextafter(x, T(0));
      for (int i = 0; i < 7 && std::isfinite(x); ++i, x = std::nextafter(x, INFINITY)) {
        xs.push_back(x);
        xs.push_back(-x);
      }
    }
  }
  return xs;
}

/// Pairs of special parts: each with each for the few that matter most, every other one beside ordinary parts and itself.
template <class T> std::vector<T> special_pairs() {
  using real = decltype(T::re);
  constexpr real infinity = std::numeric_limits<real>::infinity(),
                 nan = std::numeric_limits<real>::quiet_NaN();
  std::vector<T> zs;
  const real few[] = {0, real(-0.0), 1, -1, infinity, -infinity, nan, real(0.75), -100};
  for (const real x : few) {
    for (const real y : few) zs.push_back({x, y});
  }
  for (const real x : special_values<real>()) {
    for (const real y : {real(0), real(-0.0), real(1.5), real(-1e-3)}) {
      zs.push_back({x, y});
      zs.push_back({y, x});
    }
    zs.push_back({x, x});
    zs.push_back({x, -x});
  }
  return zs;
}

/// Specials, and numbers drawn over all bit patterns, over sizes near 1, and over the unit interval. No signalling
/// NaNs: moving one through a register may quiet it.
template <class T> std::vector<T> mixed_reals(size_t n) {
  std::vector<T> xs = special_values<T>();
  std::mt19937_64 random(20240229);
  if constexpr (std::is_floating_point_v<T>) {
    const std::vector<T> limits = limits_of_forms<T>();
    xs.insert(xs.end(), limits.begin(), limits.end());
    n += limits.size();
  }
  while (xs.size() < n) {
    T x;
    const uint64_t draw = random();
    if constexpr (is_integer_element<T>) {
      x = static_cast<T>(draw >> (random() % (8 * sizeof(T))) >> (64 - 8 * sizeof(T)));
    } else {
      std::memcpy(&x, &draw, sizeof x);
      const double unit = static_cast<double>(random() >> 11) * 0x1p-52 - 1;
      if (draw % 4 == 0) x = real_number<T>(unit);
      if (draw % 4 == 1) x = real_number<T>(unit * std::exp2(static_cast<double>(random() % 12)));
      if constexpr (std::is_same_v<T, real16>) {
        if (is_signalling(x)) continue;
      } else if (std::isnan(x)) {
        continue;
      }
    }
    xs.push_back(x);
  }
  return xs;
}

/// The same for every element type; of complex numbers special pairs, and pairs of parts so drawn.
template <class T> std::vector<T> mixed_values(size_t n) {
  if constexpr (is_complex_element<T>) {
    std::vector<T> zs = special_pairs<T>();
    const auto parts = mixed_values<decltype(T::re)>(2 * n);
    for (size_t i = 0; i < n; ++i)
      zs.push_back({parts[parts.size() - 1 - 2 * i], parts[parts.size() - 2 - 2 * i]});
    return zs;
  } else {
    return mixed_reals<T>(n);
  }
}

}  // namespace sample_values
