// Elements in registers: one register of reals or of mint, two of complex numbers (real parts, imaginary parts). And an element as
// the number that kernels compute with: complex::parts for a complex element.
#pragma once

#include <concepts>
#include <cstring>

#include "Arithmetic/Kernels/complex/arithmetic.h"
#include "Includes/element_types.h"
#include "Includes/lanes.h"

namespace vlm::machine_function {

template <class T> struct lane_form {
  using number = T;
  using lanes = register_of<T>;
  using real_lanes = lanes;
  static lanes get(const T* p) { return load<lanes>(p); }
  static lanes get_first(const T* p, mint n) { return load_first<lanes>(p, n); }
  static void put(T* p, lanes v) { store(p, v); }
  static void put_first(T* p, lanes v, mint n) { store_first(p, v, n); }
  static number lane(lanes v, int i) { return v[i]; }
  static void set_lane(lanes& v, int i, number x) { v[i] = x; }
};

template <> struct lane_form<mint> {
  using number = mint;
  using lanes = int64_lanes;
  using real_lanes = real64_lanes;
  static lanes get(const mint* p) {
    lanes v;
    std::memcpy(&v, p, sizeof v);
    return v;
  }
  static lanes get_first(const mint* p, mint n) {
    lanes v{};
    for (mint i = 0; i < n; ++i) v[i] = p[i];
    return v;
  }
  static number lane(lanes v, int i) { return v[i]; }
};

template <class T>
requires is_complex_element<T>
struct lane_form<T> {
  using real = decltype(T::re);
  using number = complex::parts<real>;
  using real_lanes = register_of<real>;
  using lanes = complex::parts<real_lanes>;
  static constexpr mint width = lanes_of<real_lanes>::count;
  static lanes get(const T* p) {
    const auto* parts = reinterpret_cast<const real*>(p);
    const two_registers<real_lanes> split =
        split_pairs<real_lanes>({load<real_lanes>(parts), load<real_lanes>(parts + width)});
    return {split.first, split.second};
  }
  static lanes get_first(const T* p, mint n) {
    T padded[width];
    for (mint i = 0; i < width; ++i) padded[i] = p[i < n ? i : 0];
    return get(padded);
  }
  static void put(T* p, lanes v) {
    auto* parts = reinterpret_cast<real*>(p);
    const two_registers<real_lanes> pairs = join_pairs<real_lanes>({v.re, v.im});
    store(parts, pairs.first);
    store(parts + width, pairs.second);
  }
  static void put_first(T* p, lanes v, mint n) {
    T padded[width];
    put(padded, v);
    for (mint i = 0; i < n; ++i) p[i] = padded[i];
  }
  static number lane(lanes v, int i) { return {v.re[i], v.im[i]}; }
  static void set_lane(lanes& v, int i, number x) {
    v.re[i] = x.re;
    v.im[i] = x.im;
  }
};

/// Elements that go into one set of registers.
template <class T> inline constexpr mint lane_count = lanes_of<typename lane_form<T>::real_lanes>::count;

/// The element as a number, and back.
template <class T> inline auto number_from(T x) {
  if constexpr (is_complex_element<T>) {
    return complex::parts<decltype(T::re)>{x.re, x.im};
  } else {
    return x;
  }
}
inline double element_from(double x) { return x; }
inline float element_from(float x) { return x; }
inline mcomplex element_from(complex::parts<double> z) { return {z.re, z.im}; }
inline complex_real32 element_from(complex::parts<float> z) { return {z.re, z.im}; }
template <std::integral T> inline T element_from(T x) { return x; }

}  // namespace vlm::machine_function
