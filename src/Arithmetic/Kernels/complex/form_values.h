// The values of a complex function over contiguous elements, by registers of lanes.
#pragma once

#include <cstring>
#include <optional>

#include "Arithmetic/Kernels/complex/function.h"

namespace vlm::complex {

/// Real numbers that a form writes for one element.
template <class Form, class T>
inline constexpr int64_t numbers_of_result =
    std::is_same_v<decltype(function<Form>{}(parts<T>{})), T> ? 1 : 2;

/// The elements in some lanes, computed as numbers outside the quiet section; result holds the others.
template <class Form, class T>
[[gnu::cold, gnu::noinline]] void compute_as_numbers(T* result, const T* source, lane_set wanted,
                                                     std::optional<fp::quiet_section>& quiet) {
  quiet.reset();
  for (mint lane = 0; wanted != 0; ++lane, wanted >>= 1) {
    if ((wanted & 1) == 0) continue;
    const auto y = function<Form>{}(parts<T>{source[2 * lane], source[2 * lane + 1]});
    std::memcpy(result + lane * numbers_of_result<Form, T>, &y, sizeof y);
  }
  quiet.emplace();
}

/// The lanes from source on, to result, which may be the same place.
template <class Form, class T>
inline void register_of_values(T* result, const T* source, std::optional<fp::quiet_section>& quiet) {
  using V = lanes_for<Form, T>;
  const parts<V> z = load_parts<V>(source);
  const auto y = Form::body(z);
  const lane_set kept = kept_lanes<Form, T>(z, y);
  if (kept == every_lane<V>) [[likely]] {
    store_parts(result, y);
    return;
  }
  T arguments[2 * lanes_of<V>::count];
  std::memcpy(arguments, source, sizeof arguments);
  store_parts(result, y);
  compute_as_numbers<Form>(result, arguments, every_lane<V> & ~kept, quiet);
}

/// n elements, each two numbers from source on and one or two from result on. Stray flags of the body are set aside for the whole
/// run. A last register that the elements do not fill is filled up with the first of its elements.
template <class Form, class T> [[gnu::flatten]] void form_values(T* result, const T* source, int64_t n) {
  using V = lanes_for<Form, T>;
  constexpr int64_t width = lanes_of<V>::count, out = numbers_of_result<Form, T>;
  std::optional<fp::quiet_section> quiet;
  if constexpr (!is_arithmetic<Form>) quiet.emplace();
  T x[2 * width], y[out * width];
  for (int64_t i = 0; i < n; i += width) {
    if (const int64_t left = n - i; left >= width) [[likely]] {
      register_of_values<Form>(result + out * i, source + 2 * i, quiet);
    } else {
      for (int64_t k = 0; k < width; ++k)
        std::memcpy(x + 2 * k, source + 2 * (i + (k < left ? k : 0)), 2 * sizeof(T));
      register_of_values<Form>(y, x, quiet);
      std::memcpy(result + out * i, y, static_cast<size_t>(out * left) * sizeof(T));
    }
  }
}

}  // namespace vlm::complex
