// Runs of the functions of three arguments: contiguous elements, the result apart from the arguments or the same elements as
// some of them. As in runs.h, a checked run computes a block aside with a mask of failures beside it, copies a clean block out
// and goes through any other element by element.
#pragma once

#include <algorithm>
#include <cstring>
#include <optional>

#include "Arithmetic/Kernels/runs.h"
#include "Arithmetic/Kernels/ternary.h"
#include "velorim/machine_functions.h"

namespace vlm::machine_function::ternary {

template <class F, class T> constexpr bool has_row_for() {
  if constexpr (is_integer_element<T>) {
    return requires { typename F::on_integers; };
  } else {
    return true;
  }
}

template <class F> inline constexpr bool divides = requires {
  &F::on_complex::template register_value<real64_lanes>;
};

template <class T> inline auto parts_of(T z) { return parts<decltype(z.re)>{z.re, z.im}; }

/// The value for one element; integers wrap.
template <class F, class T> inline T value_of(T a, T x, T y) {
  if constexpr (std::is_integral_v<T>) {
    return F::on_integers::wrapped(wrapping_product(a, x), y);
  } else if constexpr (std::is_same_v<T, real16>) {
    return F::on_reals::half(a, x, y);
  } else if constexpr (is_real_element<T>) {
    return F::on_reals::value(a, x, y);
  } else {
    const auto z = F::on_complex::value(parts_of(a), parts_of(x), parts_of(y));
    return {z.re, z.im};
  }
}

/// One element with its check on: true and the result written, or false and nothing.
template <class F, class T> inline bool checked_element(T* result, T a, T x, T y) {
  if constexpr (std::is_integral_v<T>) {
    T product;
    if (__builtin_mul_overflow(a, x, &product)) return false;
    if (!F::on_integers::fits(product, y)) return false;
    *result = F::on_integers::wrapped(product, y);
  } else {
    if constexpr (divides<F>) {
      if (is_fp_exception(F::divisor(x, y))) return false;
    }
    const T r = value_of<F>(a, x, y);
    if (is_fp_exception(r)) return false;
    *result = r;
  }
  return true;
}

// ---- Values of a run, without checks.

/// The numbers of two registers, and those of an array as they lie.
template <class V> inline parts<V> load_parts(const void* p) {
  two_registers<V> pairs;
  std::memcpy(&pairs, p, sizeof pairs);
  pairs = split_pairs(pairs);
  return {pairs.first, pairs.second};
}
template <class V> inline void store_parts(void* p, parts<V> z) {
  const two_registers<V> pairs = join_pairs<V>({z.re, z.im});
  std::memcpy(p, &pairs, sizeof pairs);
}

/// The lanes that are not ordinary, computed as numbers outside the quiet section.
template <class F, class V>
[[gnu::cold, gnu::noinline]] parts<V> with_special_lanes(parts<V> a, parts<V> x, parts<V> y, parts<V> r,
                                                         lane_set ordinary,
                                                         std::optional<fp::quiet_section>& quiet) {
  using number = number_of<V>;
  const auto lane_of = [](parts<V> z, int lane) { return parts<number>{z.re[lane], z.im[lane]}; };
  fp::pin(r);
  quiet.reset();
  for (int lane = 0; lane < lanes_of<V>::count; ++lane) {
    if ((ordinary >> lane & 1) != 0) continue;
    const parts<number> z = F::on_complex::value(lane_of(a, lane), lane_of(x, lane), lane_of(y, lane));
    r.re[lane] = z.re;
    r.im[lane] = z.im;
  }
  quiet.emplace();
  return r;
}

template <class F, class T> void complex_values(T* result, const T* a, const T* x, const T* y, mint n) {
  using V = register_of<typename fp_parts<T>::real>;
  constexpr mint width = lanes_of<V>::count;
  std::optional<fp::quiet_section> quiet;
  if constexpr (divides<F>) quiet.emplace();
  const auto step = [&quiet](T* to, const T* a_at, const T* x_at, const T* y_at) {
    const auto av = load_parts<V>(a_at), xv = load_parts<V>(x_at), yv = load_parts<V>(y_at);
    parts<V> r;
    if constexpr (divides<F>) {
      lane_set ordinary;
      r = F::on_complex::register_value(av, xv, yv, ordinary);
      if (ordinary != every_lane<V>) [[unlikely]]
        r = with_special_lanes<F>(av, xv, yv, r, ordinary, quiet);
    } else {
      r = F::on_complex::value(av, xv, yv);
    }
    store_parts(to, r);
  };
  mint i = 0;
  for (; i + width <= n; i += width) step(result + i, a + i, x + i, y + i);
  if (i < n) {  // the rest, filled up with its first element, which raises nothing new
    T rest[4][width];
    const T* sources[] = {a, x, y};
    for (int s = 0; s < 3; ++s) {
      for (mint k = 0; k < width; ++k) rest[s][k] = sources[s][i + k < n ? i + k : i];
    }
    step(rest[3], rest[0], rest[1], rest[2]);
    std::copy(rest[3], rest[3] + (n - i), result + i);
  }
}

template <class F, class T> void values(T* result, const T* a, const T* x, const T* y, mint n) {
  if constexpr (is_complex_element<T>) {
    complex_values<F>(result, a, x, y, n);
  } else if constexpr (std::is_floating_point_v<T>) {
    using V = register_of<T>;
    constexpr mint width = lanes_of<V>::count;
    mint i = 0;
    for (; i + width <= n; i += width) {
      store(result + i, F::on_reals::value(load<V>(a + i), load<V>(x + i), load<V>(y + i)));
    }
    for (; i < n; ++i) result[i] = F::on_reals::value(a[i], x[i], y[i]);
  } else {
    VELORIM_INDEPENDENT
    for (mint i = 0; i < n; ++i) result[i] = value_of<F>(a[i], x[i], y[i]);
  }
}

// ---- Checked blocks: apart from the arguments, true if every element passes.

template <class F, std::integral T> bool clean_block(T* block, const T* a, const T* x, const T* y, mint n) {
  constexpr bool wide = sizeof(T) == 8;
  if constexpr (wide) {
    if (!products_surely_fit(a, x, n)) return false;
  }
  std::make_unsigned_t<T> fails = 0;  // as wide as the elements, so that the loop fills registers
  for (mint i = 0; i < n; ++i) {
    const T product = wrapping_product(a[i], x[i]);
    block[i] = F::on_integers::wrapped(product, y[i]);
    const bool product_fails = !wide && !product_fits(a[i], x[i]);
    fails |= static_cast<std::make_unsigned_t<T>>(product_fails | !F::on_integers::fits(product, y[i]));
  }
  return fails == 0;
}

template <class F, class T> bool clean_block(T* block, const T* a, const T* x, const T* y, mint n) {
  if constexpr (divides<F>) {
    T divisors[block_length];
    for (mint i = 0; i < n; ++i) divisors[i] = F::divisor(x[i], y[i]);
    if (any_fp_exception(fp_parts_of(divisors), n * fp_parts<T>::count)) return false;
  }
  values<F>(block, a, x, y, n);
  return !any_fp_exception(fp_parts_of(block), n * fp_parts<T>::count);
}

// ---- Runs, as the frame calls them.

template <class F, class T>
mint element_run(void* result, const void* a, const void* x, const void* y, mint n) {
  alignas(register_bytes) T block[block_length];
  for (mint first = 0; first < n; first += block_length) {
    const mint length = std::min(block_length, n - first);
    T* r = static_cast<T*>(result) + first;
    const T *av = static_cast<const T*>(a) + first, *xv = static_cast<const T*>(x) + first,
            *yv = static_cast<const T*>(y) + first;
    if (clean_block<F>(block, av, xv, yv, length)) [[likely]] {
      std::memcpy(r, block, static_cast<size_t>(length) * sizeof(T));
      continue;
    }
    for (mint i = 0; i < length; ++i) {
      if (!checked_element<F>(r + i, av[i], xv[i], yv[i])) return first + i + 1;
    }
  }
  return 0;
}

template <class F, class T>
mint plain_run(void* result, const void* a, const void* x, const void* y, mint n) {
  values<F>(static_cast<T*>(result), static_cast<const T*>(a), static_cast<const T*>(x),
            static_cast<const T*>(y), n);
  return 0;
}

/// One element under the flags: 0, or 1 on failure with nothing written.
template <class F, class T> int32_t scalar(T* result, T a, T x, T y, uint32_t flags) {
  constexpr uint32_t flag = is_integer_element<T> ? MACHFUNC_CHECK_INTEGER : MACHFUNC_CHECK_FP;
  if ((flags & flag) != 0) return checked_element<F>(result, a, x, y) ? 0 : 1;
  *result = value_of<F>(a, x, y);
  return 0;
}

}  // namespace vlm::machine_function::ternary
