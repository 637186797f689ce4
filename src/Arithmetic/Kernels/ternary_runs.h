// Runs of the functions of three arguments: contiguous elements, the result apart from the arguments or the same elements as
// some of them. As in runs.h, a checked run computes a block aside with a mask of failures beside it, copies a clean block out
// and goes through any other element by element.
#pragma once

#include <algorithm>
#include <cstring>
#include <optional>

#include "Arithmetic/Kernels/lane_access.h"
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

/// The value for one element; integers wrap.
template <class F, class T> inline T value_of(T a, T x, T y) {
  if constexpr (std::is_integral_v<T>) {
    return F::on_integers::wrapped(wrapping_product(a, x), y);
  } else if constexpr (std::is_same_v<T, real16>) {
    return F::on_reals::half(a, x, y);
  } else if constexpr (is_real_element<T>) {
    return F::on_reals::value(a, x, y);
  } else {
    return element_from(F::on_complex::value(number_from(a), number_from(x), number_from(y)));
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

/// The lanes that are not ordinary, computed as numbers outside the quiet section.
template <class F, class T, class V>
[[gnu::cold, gnu::noinline]] parts<V> with_special_lanes(parts<V> a, parts<V> x, parts<V> y, parts<V> r,
                                                         lane_set ordinary,
                                                         std::optional<fp::quiet_section>& quiet) {
  using form = lane_form<T>;
  fp::pin(r);
  quiet.reset();
  for (int lane = 0; lane < lanes_of<V>::count; ++lane) {
    if ((ordinary >> lane & 1) != 0) continue;
    form::set_lane(r, lane,
                   F::on_complex::value(form::lane(a, lane), form::lane(x, lane), form::lane(y, lane)));
  }
  quiet.emplace();
  return r;
}

/// One set of registers of a function that divides, in a quiet section, or of another.
template <class F, class T, class V>
inline parts<V> register_value(parts<V> a, parts<V> x, parts<V> y, std::optional<fp::quiet_section>& quiet) {
  if constexpr (divides<F>) {
    lane_set ordinary;
    const parts<V> r = F::on_complex::register_value(a, x, y, ordinary);
    if (ordinary == every_lane<V>) [[likely]]
      return r;
    return with_special_lanes<F, T>(a, x, y, r, ordinary, quiet);
  } else {
    return F::on_complex::value(a, x, y);
  }
}

template <class F, class T> void complex_values(T* result, const T* a, const T* x, const T* y, mint n) {
  using form = lane_form<T>;
  constexpr mint width = lane_count<T>;
  std::optional<fp::quiet_section> quiet;
  if constexpr (divides<F>) quiet.emplace();
  mint i = 0;
  for (; i + width <= n; i += width) {
    form::put(result + i, register_value<F, T>(form::get(a + i), form::get(x + i), form::get(y + i), quiet));
  }
  if (i < n) {
    const mint rest = n - i;
    form::put_first(result + i,
                    register_value<F, T>(form::get_first(a + i, rest), form::get_first(x + i, rest),
                                         form::get_first(y + i, rest), quiet),
                    rest);
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
