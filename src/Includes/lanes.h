// One register of floating-point lanes, and the few operations on it that C++ has no operator for. A function
// body written over a type V (double, float, or a register of them) computes the same bits whichever it is,
// because every step is an IEEE operation: that is how a scalar kernel and a vector kernel can share one
// body.
//
// Registers are the compiler's vector types, so + - * / and comparisons are its operators; a comparison of
// registers gives a mask register of all-ones or all-zero lanes, a comparison of numbers a bool.
#pragma once

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>
#include <utility>

#if defined(__x86_64__)
#include <immintrin.h>
#elif defined(__aarch64__)
#include <arm_neon.h>
#endif

namespace vlm {

#if defined(__AVX512F__) && defined(__AVX512DQ__) && defined(__AVX512VL__)
#define VELORIM_LANES_AVX512 1
inline constexpr int register_bytes = 64;
#elif defined(__AVX2__) && defined(__FMA__)
#define VELORIM_LANES_AVX2 1
inline constexpr int register_bytes = 32;
#elif defined(__aarch64__)
#define VELORIM_LANES_NEON 1
inline constexpr int register_bytes = 16;
#else
#define VELORIM_LANES_SSE 1
inline constexpr int register_bytes = 16;
#endif

using real64_lanes = double __attribute__((vector_size(register_bytes)));
using real32_lanes = float __attribute__((vector_size(register_bytes)));
using int64_lanes = int64_t __attribute__((vector_size(register_bytes)));
using uint64_lanes = uint64_t __attribute__((vector_size(register_bytes)));
using int32_lanes = int32_t __attribute__((vector_size(register_bytes)));
using uint32_lanes = uint32_t __attribute__((vector_size(register_bytes)));
using mask64_lanes = decltype(real64_lanes{} > real64_lanes{});
using mask32_lanes = decltype(real32_lanes{} > real32_lanes{});

/// What belongs to a lane type: its number type, lanes, the integers of its width, its masks.
template <class V> struct lanes_of;
template <> struct lanes_of<double> {
  using number = double;
  using signed_bits = int64_t;
  using unsigned_bits = uint64_t;
  using mask = bool;
  static constexpr int count = 1;
};
template <> struct lanes_of<float> {
  using number = float;
  using signed_bits = int32_t;
  using unsigned_bits = uint32_t;
  using mask = bool;
  static constexpr int count = 1;
};
template <> struct lanes_of<real64_lanes> {
  using number = double;
  using signed_bits = int64_lanes;
  using unsigned_bits = uint64_lanes;
  using mask = mask64_lanes;
  static constexpr int count = register_bytes / 8;
};
template <> struct lanes_of<real32_lanes> {
  using number = float;
  using signed_bits = int32_lanes;
  using unsigned_bits = uint32_lanes;
  using mask = mask32_lanes;
  static constexpr int count = register_bytes / 4;
};

template <> struct lanes_of<int64_lanes> {
  using number = int64_t;
  using mask = int64_lanes;
  static constexpr int count = register_bytes / 8;
};

/// The register of a number type.
template <class T>
using register_of = std::conditional_t<std::is_same_v<T, double>, real64_lanes, real32_lanes>;

template <class V> inline constexpr bool is_register = lanes_of<V>::count > 1;
template <class V> using number_of = typename lanes_of<V>::number;

/// x in every lane.
template <class V> inline V broadcast(number_of<V> x) {
  if constexpr (is_register<V>) {
    return x - V{};
  } else {
    return x;
  }
}

template <class V> inline V load(const number_of<V>* p) {
  V v;
  std::memcpy(&v, p, sizeof v);
  return v;
}
template <class V> inline void store(number_of<V>* p, V v) { std::memcpy(p, &v, sizeof v); }

/// Has a value stay in its register, where the compiler would rather read memory again at every use.
template <class V> inline void keep_in_register(V& v) {
#if defined(__x86_64__)
  asm("" : "+v"(v));
#elif defined(__aarch64__)
  asm("" : "+w"(v));
#endif
}

/// The first n lanes (0 < n < count) from p, the others copies of the first; and the first n lanes to p.
template <class V> inline V load_first(const number_of<V>* p, int64_t n) {
#if defined(VELORIM_LANES_AVX512)
  const V spare = broadcast<V>(p[0]);
  if constexpr (sizeof(*p) == 8) {
    return (V)_mm512_mask_loadu_pd((__m512d)spare, static_cast<__mmask8>((1u << n) - 1), p);
  } else {
    return (V)_mm512_mask_loadu_ps((__m512)spare, static_cast<__mmask16>((1u << n) - 1), p);
  }
#else
  V v = broadcast<V>(p[0]);
  for (int64_t i = 1; i < n; ++i) v[i] = p[i];
  return v;
#endif
}
template <class V> inline void store_first(number_of<V>* p, V v, int64_t n) {
#if defined(VELORIM_LANES_AVX512)
  if constexpr (sizeof(*p) == 8) {
    _mm512_mask_storeu_pd(p, static_cast<__mmask8>((1u << n) - 1), (__m512d)v);
  } else {
    _mm512_mask_storeu_ps(p, static_cast<__mmask16>((1u << n) - 1), (__m512)v);
  }
#else
  for (int64_t i = 0; i < n; ++i) p[i] = v[i];
#endif
}

namespace detail {
template <class V, size_t... I> V picked(V a, V b, std::index_sequence<I...>) {
  return __builtin_shufflevector(a, b, static_cast<int>(I)...);
}
template <size_t First, size_t Step, size_t... I> auto evenly(std::index_sequence<I...>) {
  return std::index_sequence<(First + Step * I)...>{};
}
template <size_t... I> auto first_two(std::index_sequence<I...>) { return std::index_sequence<(I % 2)...>{}; }
template <size_t First, size_t... I> auto twice(std::index_sequence<I...>) {
  return std::index_sequence<(I / 2 * 2 + First)...>{};
}
template <size_t First, size_t N, size_t... I> auto by_turns(std::index_sequence<I...>) {
  return std::index_sequence<(First + I / 2 + I % 2 * N)...>{};
}
}  // namespace detail

/// Two registers: real and imaginary parts, or the numbers of pairs as they lie in memory.
template <class V> struct two_registers { V first, second; };
/// From pairs as they lie to real and imaginary parts, and back.
template <class V> inline two_registers<V> split_pairs(two_registers<V> pairs) {
  constexpr std::make_index_sequence<lanes_of<V>::count> all;
  return {detail::picked(pairs.first, pairs.second, detail::evenly<0, 2>(all)),
          detail::picked(pairs.first, pairs.second, detail::evenly<1, 2>(all))};
}
template <class V> inline two_registers<V> join_pairs(two_registers<V> parts) {
  constexpr size_t n = lanes_of<V>::count;
  constexpr std::make_index_sequence<n> all;
  return {detail::picked(parts.first, parts.second, detail::by_turns<0, n>(all)),
          detail::picked(parts.first, parts.second, detail::by_turns<n / 2, n>(all))};
}

/// A pair in every two lanes.
template <class V> inline V broadcast_pair(const number_of<V>* pair) {
  const V once = {pair[0], pair[1]};
  return detail::picked(once, once, detail::first_two(std::make_index_sequence<lanes_of<V>::count>{}));
}
/// Of pairs as they lie, the real part or the imaginary one of each in both of its places.
template <class V> inline V both_real(V pairs) {
  return detail::picked(pairs, pairs, detail::twice<0>(std::make_index_sequence<lanes_of<V>::count>{}));
}
template <class V> inline V both_imaginary(V pairs) {
  return detail::picked(pairs, pairs, detail::twice<1>(std::make_index_sequence<lanes_of<V>::count>{}));
}
/// From N registers, N a power of two, to the sequence that takes a number of each by turns: the first numbers of all, then the second
/// ones. With as many registers as lanes that is a transposition.
template <class V, size_t N> inline void interleave(V (&registers)[N]) {
  static_assert(std::has_single_bit(N));
  for (size_t round = 1; round < N; round *= 2) {
    V next[N];
    for (size_t i = 0; i < N / 2; ++i) {
      const two_registers<V> joined = join_pairs<V>({registers[i], registers[i + N / 2]});
      next[2 * i] = joined.first;
      next[2 * i + 1] = joined.second;
    }
    for (size_t i = 0; i < N; ++i) registers[i] = next[i];
  }
}

template <class V> inline typename lanes_of<V>::unsigned_bits to_bits(V v) {
  return std::bit_cast<typename lanes_of<V>::unsigned_bits>(v);
}
template <class V> inline V from_bits(typename lanes_of<V>::unsigned_bits b) { return std::bit_cast<V>(b); }

/// a where the mask is set, b elsewhere, lane by lane; both are computed.
inline double select(bool mask, double a, double b) { return mask ? a : b; }
inline float select(bool mask, float a, float b) { return mask ? a : b; }
inline real64_lanes select(mask64_lanes mask, real64_lanes a, real64_lanes b) { return mask ? a : b; }
inline real32_lanes select(mask32_lanes mask, real32_lanes a, real32_lanes b) { return mask ? a : b; }

/// a * b + c, rounded once.
inline double fused(double a, double b, double c) { return std::fma(a, b, c); }
inline float fused(float a, float b, float c) { return std::fma(a, b, c); }
inline real64_lanes fused(real64_lanes a, real64_lanes b, real64_lanes c) {
#if defined(VELORIM_LANES_AVX512)
  return (real64_lanes)_mm512_fmadd_pd((__m512d)a, (__m512d)b, (__m512d)c);
#elif defined(VELORIM_LANES_AVX2)
  return (real64_lanes)_mm256_fmadd_pd((__m256d)a, (__m256d)b, (__m256d)c);
#elif defined(VELORIM_LANES_NEON)
  return (real64_lanes)vfmaq_f64((float64x2_t)c, (float64x2_t)a, (float64x2_t)b);
#else
  return real64_lanes{std::fma(a[0], b[0], c[0]), std::fma(a[1], b[1], c[1])};
#endif
}
inline real32_lanes fused(real32_lanes a, real32_lanes b, real32_lanes c) {
#if defined(VELORIM_LANES_AVX512)
  return (real32_lanes)_mm512_fmadd_ps((__m512)a, (__m512)b, (__m512)c);
#elif defined(VELORIM_LANES_AVX2)
  return (real32_lanes)_mm256_fmadd_ps((__m256)a, (__m256)b, (__m256)c);
#elif defined(VELORIM_LANES_NEON)
  return (real32_lanes)vfmaq_f32((float32x4_t)c, (float32x4_t)a, (float32x4_t)b);
#else
  real32_lanes r;
  for (int i = 0; i < 4; ++i) r[i] = std::fma(a[i], b[i], c[i]);
  return r;
#endif
}

inline double square_root(double x) { return std::sqrt(x); }
inline float square_root(float x) { return std::sqrt(x); }
inline real64_lanes square_root(real64_lanes x) {
#if defined(VELORIM_LANES_AVX512)
  return (real64_lanes)_mm512_maskz_sqrt_pd(0xff, (__m512d)x);
#elif defined(VELORIM_LANES_AVX2)
  return (real64_lanes)_mm256_sqrt_pd((__m256d)x);
#elif defined(VELORIM_LANES_NEON)
  return (real64_lanes)vsqrtq_f64((float64x2_t)x);
#else
  return (real64_lanes)_mm_sqrt_pd((__m128d)x);
#endif
}
inline real32_lanes square_root(real32_lanes x) {
#if defined(VELORIM_LANES_AVX512)
  return (real32_lanes)_mm512_maskz_sqrt_ps(0xffff, (__m512)x);
#elif defined(VELORIM_LANES_AVX2)
  return (real32_lanes)_mm256_sqrt_ps((__m256)x);
#elif defined(VELORIM_LANES_NEON)
  return (real32_lanes)vsqrtq_f32((float32x4_t)x);
#else
  return (real32_lanes)_mm_sqrt_ps((__m128)x);
#endif
}

/// x without its fraction, toward zero.
inline double truncated(double x) { return std::trunc(x); }
inline float truncated(float x) { return std::trunc(x); }
inline real64_lanes truncated(real64_lanes x) {
#if defined(VELORIM_LANES_AVX512)
  return (real64_lanes)_mm512_maskz_roundscale_pd(0xff, (__m512d)x, _MM_FROUND_TO_ZERO | _MM_FROUND_NO_EXC);
#elif defined(VELORIM_LANES_AVX2)
  return (real64_lanes)_mm256_round_pd((__m256d)x, _MM_FROUND_TO_ZERO | _MM_FROUND_NO_EXC);
#elif defined(VELORIM_LANES_NEON)
  return (real64_lanes)vrndq_f64((float64x2_t)x);
#else
  return real64_lanes{std::trunc(x[0]), std::trunc(x[1])};
#endif
}
inline real32_lanes truncated(real32_lanes x) {
#if defined(VELORIM_LANES_AVX512)
  return (real32_lanes)_mm512_maskz_roundscale_ps(0xffff, (__m512)x, _MM_FROUND_TO_ZERO | _MM_FROUND_NO_EXC);
#elif defined(VELORIM_LANES_AVX2)
  return (real32_lanes)_mm256_round_ps((__m256)x, _MM_FROUND_TO_ZERO | _MM_FROUND_NO_EXC);
#elif defined(VELORIM_LANES_NEON)
  return (real32_lanes)vrndq_f32((float32x4_t)x);
#else
  return real32_lanes{std::trunc(x[0]), std::trunc(x[1]), std::trunc(x[2]), std::trunc(x[3])};
#endif
}

/// |x|, by its bits.
template <class V> inline V magnitude(V x) {
  using bits = typename lanes_of<V>::unsigned_bits;
  constexpr auto sign_clear = sizeof(number_of<V>) == 8 ? 0x7fffffffffffffffULL : 0x7fffffffULL;
  if constexpr (is_register<V>) {
    return from_bits<V>(to_bits(x) &
                        (bits{} + static_cast<std::remove_reference_t<decltype(bits{}[0])>>(sign_clear)));
  } else {
    return from_bits<V>(to_bits(x) & static_cast<bits>(sign_clear));
  }
}

/// x with the sign of s.
template <class V> inline V with_sign_of(V x, V s) {
  return from_bits<V>(to_bits(magnitude(x)) | (to_bits(s) ^ to_bits(magnitude(s))));
}

/// low <= x <= infinity for a positive low, lane by lane, on the bits: unlike a comparison of floating-point
/// lanes it raises nothing for a NaN, which is outside.
template <class V> inline typename lanes_of<V>::mask from_up(V x, number_of<V> low) {
  using integers = typename lanes_of<V>::signed_bits;
  const auto least = std::bit_cast<integers>(broadcast<V>(low));
  const auto most = std::bit_cast<integers>(broadcast<V>(std::numeric_limits<number_of<V>>::infinity()));
  const auto bits = std::bit_cast<integers>(x);
  if constexpr (is_register<V>) {
    return std::bit_cast<typename lanes_of<V>::mask>((bits >= least) & (bits <= most));
  } else {
    return bits >= least && bits <= most;
  }
}
/// x > 0 in the same way.
template <class V> inline typename lanes_of<V>::mask is_positive(V x) {
  return from_up(x, std::numeric_limits<number_of<V>>::denorm_min());
}

/// The number nearest to a small integer held in the lane's bits (|k| < 2^51): exact.
inline double to_number(int64_t k) { return static_cast<double>(k); }
inline real64_lanes to_number(int64_lanes k) {
#if defined(VELORIM_LANES_AVX512)
  return (real64_lanes)_mm512_maskz_cvtepi64_pd(0xff, (__m512i)k);
#elif defined(VELORIM_LANES_NEON)
  return (real64_lanes)vcvtq_f64_s64((int64x2_t)k);
#else
  constexpr double magic = 0x1.8p52;
  return from_bits<real64_lanes>((uint64_lanes)k + std::bit_cast<uint64_t>(magic)) - magic;
#endif
}

/// The nearest numbers of any integers, and the integers of numbers without a fraction; those of numbers beyond their range mean nothing,
/// and raise invalid.
inline real64_lanes nearest_numbers(int64_lanes k) {
#if defined(VELORIM_LANES_AVX512)
  return (real64_lanes)_mm512_maskz_cvtepi64_pd(0xff, (__m512i)k);
#elif defined(VELORIM_LANES_NEON)
  return (real64_lanes)vcvtq_f64_s64((int64x2_t)k);
#else
  real64_lanes r;
  for (int i = 0; i < lanes_of<real64_lanes>::count; ++i) r[i] = static_cast<double>(k[i]);
  return r;
#endif
}
inline int64_lanes whole_integers(real64_lanes x) {
#if defined(VELORIM_LANES_AVX512)
  return (int64_lanes)_mm512_maskz_cvttpd_epi64(0xff, (__m512d)x);
#elif defined(VELORIM_LANES_NEON)
  return (int64_lanes)vcvtq_s64_f64((float64x2_t)x);
#else
  int64_lanes r;
  for (int i = 0; i < lanes_of<real64_lanes>::count; ++i) {
    r[i] = _mm_cvttsd_si64(_mm_set_sd(x[i]));
  }
  return r;
#endif
}

/// table[k mod 16] for the integer k of each lane. The table is aligned to 64 bytes.
inline double look_up(const std::array<double, 16>& table, uint64_t k) { return table[k & 15]; }
inline real64_lanes look_up(const std::array<double, 16>& table, uint64_lanes k) {
#if defined(VELORIM_LANES_AVX512)
  return (real64_lanes)_mm512_permutex2var_pd(_mm512_load_pd(table.data()), (__m512i)k,
                                              _mm512_load_pd(table.data() + 8));
#else
  real64_lanes r;
  for (int i = 0; i < lanes_of<real64_lanes>::count; ++i) r[i] = table[k[i] & 15];
  return r;
#endif
}

/// A register of Real32 as two of Real64, its first and its second half, and back, each lane rounded to nearest even.
struct real64_halves {
  real64_lanes low, high;
};
inline real64_halves widened(real32_lanes x) {
#if defined(VELORIM_LANES_AVX512)
  return {(real64_lanes)_mm512_maskz_cvtps_pd(0xff, _mm512_maskz_extractf32x8_ps(0xff, (__m512)x, 0)),
          (real64_lanes)_mm512_maskz_cvtps_pd(0xff, _mm512_maskz_extractf32x8_ps(0xff, (__m512)x, 1))};
#else
  real64_halves halves{};
  constexpr int half = lanes_of<real64_lanes>::count;
  for (int i = 0; i < half; ++i) {
    halves.low[i] = x[i];
    halves.high[i] = x[half + i];
  }
  return halves;
#endif
}
inline real32_lanes narrowed(real64_lanes low, real64_lanes high) {
#if defined(VELORIM_LANES_AVX512)
  return (real32_lanes)_mm512_maskz_insertf32x8(
      0xffff, _mm512_castps256_ps512(_mm512_maskz_cvtpd_ps(0xff, (__m512d)low)),
      _mm512_maskz_cvtpd_ps(0xff, (__m512d)high), 1);
#else
  real32_lanes r{};
  constexpr int half = lanes_of<real64_lanes>::count;
  for (int i = 0; i < half; ++i) {
    r[i] = static_cast<float>(low[i]);
    r[half + i] = static_cast<float>(high[i]);
  }
  return r;
#endif
}

/// Some of the lanes of a register: bit i for lane i.
using lane_set = uint32_t;
template <class V> inline constexpr lane_set every_lane = (lane_set{1} << lanes_of<V>::count) - 1;

inline lane_set set_lanes(mask64_lanes mask) {
#if defined(VELORIM_LANES_AVX512)
  return _mm512_movepi64_mask((__m512i)mask);
#elif defined(VELORIM_LANES_AVX2)
  return static_cast<lane_set>(_mm256_movemask_pd((__m256d)mask));
#elif defined(VELORIM_LANES_NEON)
  return lane_set{mask[0] != 0} | lane_set{mask[1] != 0} << 1;
#else
  return static_cast<lane_set>(_mm_movemask_pd((__m128d)mask));
#endif
}
inline lane_set set_lanes(mask32_lanes mask) {
#if defined(VELORIM_LANES_AVX512)
  return _mm512_movepi32_mask((__m512i)mask);
#elif defined(VELORIM_LANES_AVX2)
  return static_cast<lane_set>(_mm256_movemask_ps((__m256)mask));
#elif defined(VELORIM_LANES_NEON)
  lane_set lanes = 0;
  for (int i = 0; i < 4; ++i) lanes |= lane_set{mask[i] != 0} << i;
  return lanes;
#else
  return static_cast<lane_set>(_mm_movemask_ps((__m128)mask));
#endif
}

/// The lanes with low <= x <= high.
template <class V> inline lane_set lanes_between(V x, V low, V high) {
#if defined(VELORIM_LANES_AVX512)
  if constexpr (sizeof(number_of<V>) == 8) {
    return _mm512_mask_cmp_pd_mask(_mm512_cmp_pd_mask((__m512d)x, (__m512d)low, _CMP_GE_OQ), (__m512d)x,
                                   (__m512d)high, _CMP_LE_OQ);
  } else {
    return _mm512_mask_cmp_ps_mask(_mm512_cmp_ps_mask((__m512)x, (__m512)low, _CMP_GE_OQ), (__m512)x,
                                   (__m512)high, _CMP_LE_OQ);
  }
#else
  return set_lanes((x >= low) & (x <= high));
#endif
}

}  // namespace vlm
