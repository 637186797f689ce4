// Runs: one function over contiguous elements, the loops that the vector frames call. A run may be in place
// (result and source the same elements); other overlap is the frame's business.
//
//   plain_run     every element is written, without element checks; a function that fails whatever the flags
//                 stops at its first failure.
//   element_run   stops at the first element that fails its check; that element and all behind it stay as
//                 they were.
//
// Both return 0 or the 1-based position of the failing element. Checks are made on blocks: a block is clean
// or is gone through again element by element, which costs clean data nearly nothing and keeps the reported
// position exact.
#pragma once

#include <algorithm>
#include <cstring>
#include <optional>
#include <type_traits>

#include "Arithmetic/Kernels/complex/form_values.h"
#include "Arithmetic/Kernels/definition.h"
#include "Arithmetic/Kernels/lane_access.h"
#include "Includes/fp_environment.h"
#include "Includes/vlm_fp_exception.h"

#if defined(__clang__)
#define VELORIM_INDEPENDENT _Pragma("clang loop vectorize(assume_safety)")
#else
#define VELORIM_INDEPENDENT _Pragma("GCC ivdep")
#endif

namespace vlm::machine_function {

/// Elements of a block: some 4 KB of doubles, so that a block stays in the first-level cache between its two
/// passes.
inline constexpr mint block_length = 512;

/// The class of F's definition that serves T: on_integers, on_reals, on_complexes, or none.
struct no_class {};
template <class F, class T> struct class_for {
  template <class G> static auto pick() {
    if constexpr (is_integer_element<T>) {
      if constexpr (requires { typename G::on_integers; }) {
        return std::type_identity<typename G::on_integers>{};
      } else {
        return std::type_identity<no_class>{};
      }
    } else if constexpr (is_real_element<T>) {
      if constexpr (requires { typename G::on_reals; }) {
        return std::type_identity<typename G::on_reals>{};
      } else {
        return std::type_identity<no_class>{};
      }
    } else if constexpr (requires { typename G::on_complexes; }) {
      return std::type_identity<typename G::on_complexes>{};
    } else {
      return std::type_identity<no_class>{};
    }
  }
  using type = typename decltype(pick<F>())::type;
};
template <class F, class T> using class_of = typename class_for<F, T>::type;
template <class F, class T> inline constexpr bool has_row = !std::is_same_v<class_of<F, T>, no_class>;

/// The type in which a class computes for T: binary16 is computed in double and rounded once, elements of pairs by their parts.
template <class T> struct computing_type_of { using type = T; };
template <> struct computing_type_of<real16> { using type = double; };
template <class T>
requires is_complex_element<T>
struct computing_type_of<T> {
  using type = complex::parts<typename fp_parts<T>::real>;
};
template <class T> using computing_type = typename computing_type_of<T>::type;

/// What F writes for an element of type T: Integer64 where value() gives one, the real part's type where it gives a real for a
/// pair, else the element's own type.
template <class F, class T> struct result_type_of {
  using value = decltype(class_of<F, T>::value(computing_type<T>{}));
  using type = std::conditional_t<
      std::is_same_v<value, mint>, mint,
      std::conditional_t<is_complex_element<T> && std::is_floating_point_v<value>, value, T>>;
};
template <class F, class T> using result_of = typename result_type_of<F, T>::type;
template <class F, class T>
inline constexpr bool gives_mint = !std::is_same_v<T, mint> && std::is_same_v<result_of<F, T>, mint>;

template <class C> inline constexpr bool copies_bits = requires { C::copies_bits; };
template <class C> inline constexpr bool ignores_argument = requires { C::ignores_argument; };
template <class C> inline constexpr bool register_arithmetic = requires { C::register_arithmetic; };
template <class C, class T> inline constexpr bool has_range = requires { C::template range<T>(); };
/// Classes whose result on a floating element is floating: they answer to the result check. The others check the argument.
template <class F, class T>
inline constexpr bool checks_result = (is_real_element<T> || is_complex_element<T>)&&!gives_mint<F, T>;

/// The value for one element, whatever its type.
template <class F, class T> inline result_of<F, T> value_of(T x) {
  using C = class_of<F, T>;
  if constexpr (is_complex_element<T>) {
    return element_from(C::value(number_from(x)));
  } else if constexpr (!std::is_same_v<T, real16>) {
    return C::value(x);
  } else if constexpr (gives_mint<F, T>) {
    if constexpr (!ignores_argument<C>) signal_if_nan(x);
    return C::value(real16_format::widen(x));
  } else if constexpr (copies_bits<C>) {
    return real16{static_cast<uint16_t>(
        std::bit_cast<uint64_t>(C::value(std::bit_cast<double>(uint64_t{x.bits} << 48))) >> 48)};
  } else {
    return evaluate([](double d) { return C::value(d); }, x);
  }
}

/// The failure for one element's argument.
template <class F, class T> inline VelorimError argument_failure(T x) {
  using C = class_of<F, T>;
  if constexpr (std::is_same_v<T, real16>) {
    return C::failure(to_double(x));
  } else if constexpr (is_complex_element<T>) {
    return C::failure(number_from(x));
  } else {
    return C::failure(x);
  }
}

/// What an infinity or a NaN is reported as.
template <class T> inline VelorimError failure_of_exception(T y) {
  using format = fp_format<T>;
  const auto bits = std::bit_cast<typename format::bits>(y);
  const bool infinite = static_cast<typename format::bits>(bits << 1) ==
                        static_cast<typename format::bits>(format::exponent << 1);
  return infinite ? VelorimError_floating_point_infinite : VelorimError_floating_point_nan;
}

/// The result check of one value; of a pair the real part comes first.
template <class T> inline VelorimError result_failure(T y) {
  if (!is_fp_exception(y)) return VelorimError_success;
  if constexpr (is_complex_element<T>) {
    return is_fp_exception(y.re) ? result_failure(y.re) : result_failure(y.im);
  } else {
    return failure_of_exception(y);
  }
}

/// Arguments whose result a class leaves unchecked.
template <class C, class T> inline bool is_unchecked(T x) {
  if constexpr (is_complex_element<T>) {
    if constexpr (requires { C::form::unchecked(number_from(x)); }) {
      return C::form::unchecked(number_from(x));
    }
  }
  return false;
}

/// One element with its check on: the scalar kernel. On failure nothing is written.
template <class F, class T> inline VelorimError checked_element(result_of<F, T>* result, T x) {
  if constexpr (checks_result<F, T>) {
    using C = class_of<F, T>;
    const result_of<F, T> y = value_of<F>(x);
    if constexpr (C::obeys == check::checked) {
      if (const VelorimError error = result_failure(y); error && !is_unchecked<C>(x)) return error;
    }
    *result = y;
  } else {
    if (const VelorimError error = argument_failure<F>(x)) return error;
    *result = value_of<F>(x);
  }
  return VelorimError_success;
}

/// The lanes of x that are not ordinary, computed as numbers outside the quiet section; y holds the others.
template <class C, class V>
[[gnu::cold, gnu::noinline]] V with_special_lanes(V x, V y, lane_set ordinary,
                                                  std::optional<fp::quiet_section>& quiet) {
  fp::pin(y);
  quiet.reset();
  for (int lane = 0; lane < lanes_of<V>::count; ++lane) {
    if ((ordinary >> lane & 1) == 0) y[lane] = C::value(static_cast<number_of<V>>(x[lane]));
  }
  quiet.emplace();
  return y;
}

/// Registers of a class with an ordinary range: stray flags of the register form are set aside for the whole run, and lanes
/// outside the range are computed as numbers with the flags let through. The whole body is inlined, which keeps its constants in
/// registers.
template <class C, class T> [[gnu::flatten]] void ordinary_range_values(T* result, const T* source, mint n) {
  using V = register_of<T>;
  constexpr mint width = lanes_of<V>::count;
  std::optional<fp::quiet_section> quiet(std::in_place);
  mint i = 0;
  for (; i + width <= n; i += width) {
    const V x = load<V>(source + i);
    const lane_set ordinary = ordinary_lanes<C>(x);
    V y = C::value(x);
    if (ordinary != every_lane<V>) [[unlikely]]
      y = with_special_lanes<C>(x, y, ordinary, quiet);
    store(result + i, y);
  }
  if (i < n) {
    const V x = load_first<V>(source + i, n - i);
    const lane_set ordinary = ordinary_lanes<C>(x);
    V y = C::value(x);
    if (ordinary != every_lane<V>) [[unlikely]]
      y = with_special_lanes<C>(x, y, ordinary, quiet);
    store_first(result + i, y, n - i);
  }
}

/// Registers of a class that is plain arithmetic: the flags it raises are the right ones.
template <class C, class T> void arithmetic_values(T* result, const T* source, mint n) {
  using V = register_of<T>;
  constexpr mint width = lanes_of<V>::count;
  mint i = 0;
  for (; i + width <= n; i += width) store(result + i, C::value(load<V>(source + i)));
  for (; i < n; ++i) result[i] = C::value(source[i]);
}

/// The values of a run, without checks.
template <class F, class T> void values(result_of<F, T>* result, const T* source, mint n) {
  using C = class_of<F, T>;
  if constexpr (is_complex_element<T> && requires { typename C::form; }) {
    complex::form_values<typename C::form>(fp_parts_of(result), fp_parts_of(source), n);
  } else if constexpr (checks_result<F, T> && !std::is_same_v<T, real16> && has_range<C, T>) {
    ordinary_range_values<C>(result, source, n);
  } else if constexpr (checks_result<F, T> && !std::is_same_v<T, real16> && register_arithmetic<C>) {
    arithmetic_values<C>(result, source, n);
  } else {
    VELORIM_INDEPENDENT
    for (mint i = 0; i < n; ++i) result[i] = value_of<F>(source[i]);
  }
}

/// Elements one by one from the start, up to the first failure: its 1-based position, 0 if there is none.
template <class F, class T> mint careful_run(result_of<F, T>* result, const T* source, mint n) {
  for (mint i = 0; i < n; ++i) {
    if (checked_element<F>(result + i, source[i])) return i + 1;
  }
  return 0;
}

/// Checks that look at the argument: a pass that only looks, then the values.
template <class F, class T> mint argument_checked_run(result_of<F, T>* result, const T* source, mint n) {
  for (mint first = 0; first < n; first += block_length) {
    const mint length = std::min(block_length, n - first);
    const T* x = source + first;
    bool failed = false;
    if constexpr (std::is_integral_v<T>) {
      std::make_unsigned_t<T> fails = 0;  // as wide as the elements, so that the loop fills registers
      for (mint i = 0; i < length; ++i) fails |= argument_failure<F>(x[i]) != VelorimError_success;
      failed = fails != 0;
    } else {
      int fails = 0;
      for (mint i = 0; i < length; ++i) fails |= argument_failure<F>(x[i]) != VelorimError_success;
      failed = fails != 0;
    }
    if (failed) [[unlikely]]
      return first + careful_run<F>(result + first, x, length);
    values<F>(result + first, x, length);
  }
  return 0;
}

/// Checks that look at the result: a block is computed aside and copied out if it is clean. In a block that
/// is not, what stands before the first failing value is stored.
template <class F, class T> mint result_checked_run(result_of<F, T>* result, const T* source, mint n) {
  using R = result_of<F, T>;
  alignas(register_bytes) R block[block_length];
  for (mint first = 0; first < n; first += block_length) {
    const mint length = std::min(block_length, n - first);
    const T* x = source + first;
    values<F>(block, x, length);
    mint clean = length;
    if (any_fp_exception(fp_parts_of(block), length * fp_parts<R>::count)) [[unlikely]] {
      clean = 0;
      while (clean < length && (!is_fp_exception(block[clean]) || is_unchecked<class_of<F, T>>(x[clean])))
        ++clean;
    }
    std::memcpy(result + first, block, static_cast<size_t>(clean) * sizeof(R));
    if (clean < length) return first + clean + 1;
  }
  return 0;
}

template <class F, class T> mint element_run(void* result, const void* source, mint n) {
  auto* r = static_cast<result_of<F, T>*>(result);
  const auto* x = static_cast<const T*>(source);
  constexpr check obeys = class_of<F, T>::obeys;
  if constexpr (obeys == check::plain) {
    values<F>(r, x, n);
    return 0;
  } else if constexpr (checks_result<F, T>) {
    return result_checked_run<F>(r, x, n);
  } else {
    return argument_checked_run<F>(r, x, n);
  }
}

template <class F, class T> mint plain_run(void* result, const void* source, mint n) {
  if constexpr (class_of<F, T>::obeys == check::always) {
    return element_run<F, T>(result, source, n);
  } else {
    values<F>(static_cast<result_of<F, T>*>(result), static_cast<const T*>(source), n);
    return 0;
  }
}

}  // namespace vlm::machine_function
