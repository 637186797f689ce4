// Runs of functions of two arguments over contiguous elements, the loops that the binary vector frame calls. The result may be one
// of the operands, element for element; other overlap is the frame's business.
//
//   plain_run     every element is written, without element checks; a function that fails whatever the flags stops at its first
//                 failure.
//   element_run   stops at the first element that fails its check; that element and all behind it stay as they were.
//
// Both return 0 or the 1-based position of the failing element. As with one argument, checks are made on blocks.
#pragma once

#include <algorithm>
#include <concepts>
#include <cstring>
#include <optional>
#include <type_traits>

#include "Arithmetic/Kernels/binary/definition.h"
#include "Arithmetic/Kernels/lane_access.h"
#include "Arithmetic/Kernels/runs.h"
#include "Includes/fp_environment.h"
#include "Includes/vlm_fp_exception.h"

namespace vlm::machine_function::binary {

// ---- Which class serves a pair of element types ------------------------------------------------------

template <class X, class Y> constexpr mixed pair_of() {
  constexpr int32_t x = element_code<X>, y = element_code<Y>;
  constexpr int32_t i = MNumericArrayTypeInteger64, d = MNumericArrayTypeReal64,
                    c = MNumericArrayTypeComplexReal64;
  return x == i && y == d   ? mixed::id
         : x == d && y == i ? mixed::di
         : x == i && y == c ? mixed::ic
         : x == c && y == i ? mixed::ci
         : x == d && y == c ? mixed::dc
         : x == c && y == d ? mixed::cd
                            : mixed::none;
}

struct no_row {};
template <class F, class X, class Y> constexpr auto find_class() {
  if constexpr (std::is_same_v<X, Y>) {
    if constexpr (is_integer_element<X> && requires { typename F::on_integers; }) {
      return std::type_identity<typename F::on_integers>{};
    } else if constexpr (is_real_element<X> && requires { typename F::on_reals; }) {
      return std::type_identity<typename F::on_reals>{};
    } else if constexpr (is_complex_element<X> && requires { typename F::on_complexes; }) {
      return std::type_identity<typename F::on_complexes>{};
    } else {
      return std::type_identity<no_row>{};
    }
  } else if constexpr (std::is_same_v<Y, mint> && requires { typename F::with_integer; }) {
    return std::conditional_t<F::with_integer::template serves<X>,
                              std::type_identity<typename F::with_integer>, std::type_identity<no_row>>{};
  } else if constexpr (is_complex_element<X> && is_real_element<Y> && requires { typename F::with_real; }) {
    return std::conditional_t<sizeof(X) == 2 * sizeof(Y), std::type_identity<typename F::with_real>,
                              std::type_identity<no_row>>{};
  } else {
    return std::type_identity<no_row>{};
  }
}
template <class F, class X, class Y> using class_of = typename decltype(find_class<F, X, Y>())::type;

template <class X, class Y> using wider = std::conditional_t<(element_code<X> > element_code<Y>), X, Y>;
template <class F, class X, class Y> constexpr bool find_widening() {
  if constexpr (requires { F::widens; }) {
    using W = wider<X, Y>;
    return std::is_same_v<class_of<F, X, Y>, no_row> && contains(F::widens, pair_of<X, Y>()) &&
           !std::is_same_v<class_of<F, W, W>, no_row>;
  } else {
    return false;
  }
}
template <class F, class X, class Y> inline constexpr bool widens = find_widening<F, X, Y>();
template <class F, class X, class Y>
inline constexpr bool has_row = widens<F, X, Y> || !std::is_same_v<class_of<F, X, Y>, no_row>;

/// The element of a wider type: a mint as the nearest double, a real with imaginary part 0.
template <class W, class T> inline W widened(T x) {
  if constexpr (std::is_same_v<W, T>) {
    return x;
  } else if constexpr (is_complex_element<W>) {
    return {static_cast<double>(x), 0.0};
  } else {
    return static_cast<W>(x);
  }
}

// ---- One element --------------------------------------------------------------------------------------

/// The number in which a class is asked about an element: binary16 widens to double.
template <class T> inline auto operand(T x) {
  if constexpr (std::is_same_v<T, real16>) {
    return to_double(x);
  } else {
    return number_from(x);
  }
}
template <class T> using operand_of = decltype(operand(T{}));

template <class C, class A, class B> inline bool is_refused(A x, B y) {
  if constexpr (requires { C::refuses(x, y); }) {
    return C::refuses(x, y);
  } else {
    return false;
  }
}
template <class C, class A, class B> inline bool is_failing(A x, B y) {
  if constexpr (requires { C::fails(x, y); }) {
    return C::fails(x, y);
  } else {
    return false;
  }
}
template <class C, class A, class B> inline bool is_undefined(A x, B y) {
  if constexpr (requires { C::undefined(x, y); }) {
    return C::undefined(x, y);
  } else {
    return false;
  }
}

/// The value where a function has none, with invalid raised for it.
template <class T> [[gnu::cold]] inline T undefined_value() {
  if constexpr (std::is_same_v<T, double>) {
    fp::raise(FE_INVALID);
    return std::bit_cast<double>(uint64_t{0x7ff4000000000000});
  } else if constexpr (std::is_same_v<T, float>) {
    fp::raise(FE_INVALID);
    return std::bit_cast<float>(uint32_t{0x7fa00000});
  } else if constexpr (std::is_same_v<T, real16>) {
    signal_real16(real16_invalid);
    return real16_signalling_nan;
  } else {
    const auto part = undefined_value<decltype(T::re)>();
    return {part, part};
  }
}

/// Whether the result check applies to what a class gives for an R.
template <class C, class R> constexpr bool find_result_check() {
  if constexpr (!is_integer_element<R> && requires { C::checks_result; }) {
    return C::checks_result;
  } else {
    return false;
  }
}
template <class C, class R> inline constexpr bool checks_result = find_result_check<C, R>();

/// Whether a class finds value and failure together; the result is then of the type of x.
template <class C, class A, class B> inline constexpr bool evaluates = requires(A x, B y, A r) {
  C::template evaluate<true>(x, y, r);
};

/// The value for one pair of elements that is neither refused nor undefined.
template <class C, class X, class Y> inline auto defined_value(X x, Y y) {
  if constexpr (!std::is_same_v<X, real16>) {
    return element_from(C::value(operand(x), operand(y)));
  } else if constexpr (requires { C::half(x, y); }) {
    return C::half(x, y);
  } else if constexpr (std::is_integral_v<Y>) {
    return evaluate([y](double d) { return C::value(d, y); }, x);
  } else if constexpr (std::is_same_v<decltype(C::value(0.0, 0.0)), mint>) {
    signal_if_nan(x);
    signal_if_nan(y);
    return C::value(real16_format::widen(x), real16_format::widen(y));
  } else {
    return evaluate([](double a, double b) { return C::value(a, b); }, x, y);
  }
}

template <class F, class X, class Y> auto result_probe() {
  if constexpr (widens<F, X, Y>) {
    return result_probe<F, wider<X, Y>, wider<X, Y>>();
  } else if constexpr (evaluates<class_of<F, X, Y>, operand_of<X>, operand_of<Y>>) {
    return std::type_identity<X>{};
  } else {
    return std::type_identity<decltype(defined_value<class_of<F, X, Y>>(X{}, Y{}))>{};
  }
}
/// What F writes for elements of types X and Y.
template <class F, class X, class Y> using result_of = typename decltype(result_probe<F, X, Y>())::type;

/// The result check is for rows that write reals or complex numbers.
template <class F, class X, class Y>
inline constexpr bool gives_integers = is_integer_element<result_of<F, X, Y>>;

/// One element, with its checks on or off: true for a failure, with nothing written.
template <bool checked, class C, class R, class X, class Y> inline bool element(R* result, X x, Y y) {
  if (is_refused<C>(operand(x), operand(y))) return true;
  if constexpr (evaluates<C, operand_of<X>, operand_of<Y>>) {
    operand_of<X> value{};
    if (C::template evaluate<checked>(operand(x), operand(y), value)) return true;
    *result = element_from(value);
    return false;
  } else {
    if (checked && is_failing<C>(operand(x), operand(y))) return true;
    if (is_undefined<C>(operand(x), operand(y))) {
      if constexpr (!std::is_integral_v<R>) {
        if (checked) return true;
        *result = undefined_value<R>();
        return false;
      }
    }
    const R value = defined_value<C>(x, y);
    if constexpr (checked && checks_result<C, R>) {
      if (is_fp_exception(value)) return true;
    }
    *result = value;
    return false;
  }
}

/// The scalar kernel.
template <bool checked, class F, class X, class Y>
inline bool scalar_element(result_of<F, X, Y>* result, X x, Y y) {
  if constexpr (widens<F, X, Y>) {
    using W = wider<X, Y>;
    return element<checked, class_of<F, W, W>>(result, widened<W>(x), widened<W>(y));
  } else {
    return element<checked, class_of<F, X, Y>>(result, x, y);
  }
}

// ---- Values of a run, without checks --------------------------------------------------------------------

/// Lanes that are not good, computed as numbers outside the quiet section.
template <class C, class R, class X, class Y>
[[gnu::cold, gnu::noinline]] void special_lanes(typename lane_form<X>::lanes x,
                                                typename lane_form<Y>::lanes y,
                                                typename lane_form<R>::lanes& r, lane_set good, mint n,
                                                std::optional<fp::quiet_section>& quiet) {
  quiet.reset();
  for (int i = 0; i < n; ++i) {
    if ((good >> i & 1) != 0) continue;
    R value{};
    element<false, C>(&value, X(element_from(lane_form<X>::lane(x, i))),
                      Y(element_from(lane_form<Y>::lane(y, i))));
    lane_form<R>::set_lane(r, i, number_from(value));
  }
  quiet.emplace();
}

template <class C, class R, class X, class Y>
[[gnu::flatten]] void lane_values(R* result, const X* x, const Y* y, mint n) {
  constexpr mint width = lane_count<X>;
  constexpr lane_set every = (lane_set{1} << width) - 1;
  std::optional<fp::quiet_section> quiet(std::in_place);
  const auto compute = [&](auto xs, auto ys, mint length) {
    auto rs = C::body(xs, ys);
    lane_set good = every;
    if constexpr (requires { C::ordinary(xs, ys); }) good &= C::ordinary(xs, ys);
    if constexpr (requires { C::settled(xs, ys, rs); }) good &= C::settled(xs, ys, rs);
    if (good != every) [[unlikely]]
      special_lanes<C, R, X, Y>(xs, ys, rs, good, length, quiet);
    return rs;
  };
  mint i = 0;
  for (; i + width <= n; i += width) {
    lane_form<R>::put(result + i, compute(lane_form<X>::get(x + i), lane_form<Y>::get(y + i), width));
  }
  if (i < n) {
    const mint rest = n - i;
    lane_form<R>::put_first(
        result + i, compute(lane_form<X>::get_first(x + i, rest), lane_form<Y>::get_first(y + i, rest), rest),
        rest);
  }
}

template <class C, class T> void arithmetic_values(T* result, const T* x, const T* y, mint n) {
  using V = register_of<T>;
  constexpr mint width = lanes_of<V>::count;
  mint i = 0;
  for (; i + width <= n; i += width) store(result + i, C::value(load<V>(x + i), load<V>(y + i)));
  for (; i < n; ++i) result[i] = C::value(x[i], y[i]);
}

template <class C> inline constexpr bool register_arithmetic = requires { C::register_arithmetic; };
template <class C> inline constexpr bool each_part = requires { C::each_part; };

template <class C, class X, class Y>
inline constexpr bool has_body = requires(typename lane_form<X>::lanes x, typename lane_form<Y>::lanes y) {
  C::body(x, y);
};

/// Whether the class has a register form for the pair of element types.
template <class C, class R, class X, class Y> constexpr bool find_body() {
  if constexpr (is_complex_element<X> || std::is_same_v<X, double> || std::is_same_v<X, float>) {
    if constexpr (std::is_same_v<X, Y> || (std::is_same_v<X, double> && std::is_same_v<Y, mint>)) {
      return has_body<C, X, Y>;
    } else {
      return false;
    }
  } else {
    return false;
  }
}

/// The values of a run none of whose elements is refused.
template <class C, class R, class X, class Y> void values(R* result, const X* x, const Y* y, mint n) {
  if constexpr (requires { C::run(result, x, y, n); }) {
    C::run(result, x, y, n);
  } else if constexpr (find_body<C, R, X, Y>()) {
    lane_values<C>(result, x, y, n);
  } else if constexpr (each_part<C> && is_complex_element<X>) {
    arithmetic_values<C>(fp_parts_of(result), fp_parts_of(x), fp_parts_of(y), 2 * n);
  } else if constexpr (register_arithmetic<C> && (std::is_same_v<X, double> || std::is_same_v<X, float>)) {
    arithmetic_values<C>(result, x, y, n);
  } else {
    VELORIM_INDEPENDENT
    for (mint i = 0; i < n; ++i) element<false, C>(result + i, x[i], y[i]);
  }
}

// ---- Runs ---------------------------------------------------------------------------------------------------

/// Elements one by one from the start, up to the first failure: its 1-based position, 0 if there is none.
template <bool checked, class C, class R, class X, class Y>
mint careful_run(R* result, const X* x, const Y* y, mint n) {
  for (mint i = 0; i < n; ++i) {
    if (element<checked, C>(result + i, x[i], y[i])) return i + 1;
  }
  return 0;
}

/// Whether any argument of a block fails, looked at in a loop without exits.
template <bool checked, class C, class X, class Y> bool any_argument_fails(const X* x, const Y* y, mint n) {
  if constexpr (checked && requires { C::none_fails(x, y, n); }) {
    if (C::none_fails(x, y, n)) return false;
  }
  const auto looks = [x, y](mint i) {
    const auto a = operand(x[i]);
    const auto b = operand(y[i]);
    return static_cast<bool>(static_cast<int>(is_refused<C>(a, b)) |
                             static_cast<int>(checked && is_failing<C>(a, b)));
  };
  if constexpr (std::is_integral_v<X>) {
    std::make_unsigned_t<X> fails = 0;  // as wide as the elements, so that the loop fills registers
    for (mint i = 0; i < n; ++i) fails |= looks(i);
    return fails != 0;
  } else {
    int fails = 0;
    for (mint i = 0; i < n; ++i) fails |= looks(i);
    return fails != 0;
  }
}

/// Arguments are looked at a block at a time, then the block's values are written.
template <bool checked, class C, class R, class X, class Y>
mint argument_checked_run(R* result, const X* x, const Y* y, mint n) {
  for (mint first = 0; first < n; first += block_length) {
    const mint length = std::min(block_length, n - first);
    if (any_argument_fails<checked, C>(x + first, y + first, length)) [[unlikely]]
      return first + careful_run<checked, C>(result + first, x + first, y + first, length);
    values<C>(result + first, x + first, y + first, length);
  }
  return 0;
}

/// A block is computed aside and copied out if it is clean; of another, what stands before the first failing value. Values of
/// undefined arguments are NaNs, which this finds too.
template <class C, class R, class X, class Y>
mint result_checked_run(R* result, const X* x, const Y* y, mint n) {
  alignas(register_bytes) R block[block_length];
  for (mint first = 0; first < n; first += block_length) {
    const mint length = std::min(block_length, n - first);
    values<C>(block, x + first, y + first, length);
    mint clean = length;
    if (fp_exception_iterate(block, length, 1)) [[unlikely]] {
      clean = std::find_if(block, block + length, [](R r) { return is_fp_exception(r); }) - block;
    }
    std::memcpy(result + first, block, static_cast<size_t>(clean) * sizeof(R));
    if (clean < length) return first + clean + 1;
  }
  return 0;
}

template <class C, class X, class Y>
inline constexpr bool refuses = requires(operand_of<X> x, operand_of<Y> y) {
  C::refuses(x, y);
};
template <class C, class X, class Y>
inline constexpr bool can_fail = requires(operand_of<X> x, operand_of<Y> y) {
  C::fails(x, y);
};

/// A run of a class on the types of its row.
template <bool checked, class C, class R, class X, class Y>
mint class_run(R* result, const X* x, const Y* y, mint n) {
  if constexpr (evaluates<C, operand_of<X>, operand_of<Y>>) {
    return careful_run<checked, C>(result, x, y, n);
  } else if constexpr (refuses<C, X, Y> || (checked && can_fail<C, X, Y>)) {
    static_assert(!checks_result<C, R> || !refuses<C, X, Y>);
    if constexpr (checked && !std::is_integral_v<R> && can_fail<C, X, Y>) {
      return careful_run<checked, C>(result, x, y, n);
    } else {
      return argument_checked_run<checked, C>(result, x, y, n);
    }
  } else if constexpr (checked && checks_result<C, R>) {
    return result_checked_run<C>(result, x, y, n);
  } else {
    values<C>(result, x, y, n);
    return 0;
  }
}

/// A run of a row that widens: the arguments of a block are widened aside.
template <bool checked, class C, class W, class R, class X, class Y>
mint widened_run(R* result, const X* x, const Y* y, mint n) {
  alignas(register_bytes) W wide[block_length];
  for (mint first = 0; first < n; first += block_length) {
    const mint length = std::min(block_length, n - first);
    mint position;
    if constexpr (std::is_same_v<X, W>) {
      for (mint i = 0; i < length; ++i) wide[i] = widened<W>(y[first + i]);
      position = class_run<checked, C>(result + first, x + first, wide, length);
    } else if constexpr (std::is_same_v<Y, W>) {
      for (mint i = 0; i < length; ++i) wide[i] = widened<W>(x[first + i]);
      position = class_run<checked, C>(result + first, wide, y + first, length);
    }
    if (position != 0) return first + position;
  }
  return 0;
}

template <bool checked, class F, class X, class Y>
mint run(void* result, const void* x, const void* y, mint n) {
  auto* r = static_cast<result_of<F, X, Y>*>(result);
  const auto* a = static_cast<const X*>(x);
  const auto* b = static_cast<const Y*>(y);
  if constexpr (widens<F, X, Y>) {
    using W = wider<X, Y>;
    return widened_run<checked, class_of<F, W, W>, W>(r, a, b, n);
  } else {
    return class_run<checked, class_of<F, X, Y>>(r, a, b, n);
  }
}

template <class F, class X, class Y> mint plain_run(void* result, const void* x, const void* y, mint n) {
  return run<false, F, X, Y>(result, x, y, n);
}
template <class F, class X, class Y> mint element_run(void* result, const void* x, const void* y, mint n) {
  return run<true, F, X, Y>(result, x, y, n);
}

}  // namespace vlm::machine_function::binary
