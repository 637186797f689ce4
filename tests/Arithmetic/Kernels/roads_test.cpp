// The same bits through every road: the scalar kernel, and the vector kernel in every mode, shape, length, place and
// number of threads, for every function and element type.
//
// Faults it is meant to catch: a type missing from a function; a vector tail computed by another form than the body;
// a result that depends on the neighbours of its element, on the lane, on alignment or on the chunk; strides of source
// and result mixed up; in-place runs that read what they have written; a vector kernel that raises a flag its scalar
// kernel does not, or swallows one (a register form's stray flags, special lanes in the middle of ordinary ones).
#include <gtest/gtest.h>

#include <algorithm>
#include <cfenv>
#include <cmath>
#include <cstring>
#include <iterator>
#include <random>
#include <vector>

#include "Arithmetic/Kernels/sample_values.h"
#include "Arithmetic/unary_table.h"
#include "Includes/vlm_fp_exception.h"
#include "velorim/machine_functions.h"
#include "velorim/parallel.h"

namespace {

using namespace vlm;
using sample_values::mixed_values;
using sample_values::special_pairs;
using sample_values::special_values;
using bytes = std::vector<unsigned char>;

#if defined(__SANITIZE_ADDRESS__)
constexpr mint many = 4096;
#else
constexpr mint many = 65536;
#endif
constexpr int counted_flags = FE_INVALID | FE_DIVBYZERO | FE_OVERFLOW;
constexpr uint32_t all_checks = MACHFUNC_CHECK_FP | MACHFUNC_CHECK_INTEGER;

template <class T> inline constexpr bool is_floating = is_real_element<T> || is_complex_element<T>;

/// What the scalar kernel says of one argument: the value unchecked, and whether it fails without and with checks.
struct verdict {
  bytes value;
  bool always_fails, fails;
  int flags;
};
struct function {
  int32_t number, type, result_type;
  MachFuncScalar1 scalar;
  MachFuncVector1 vector;
  size_t result_bytes;

  function(int32_t number_of, int32_t type_of)
      : number(number_of),
        type(type_of),
        result_type(MNumericArray_ReturnType1(number_of, type_of)),
        scalar(MNumericArray_getUnaryScalarMachFunc(number_of, type_of)),
        vector(MNumericArray_getUnaryVectorMachFunc(number_of, type_of)),
        result_bytes(element_bytes(result_type)) {}

  template <class T> verdict judge(T x) const {
    verdict v{bytes(result_bytes, 0xA5), false, false, 0};
    std::feclearexcept(FE_ALL_EXCEPT);
    v.always_fails = scalar(v.value.data(), &x, 0) != 0;
    v.flags = std::fetestexcept(counted_flags);
    bytes ignored(result_bytes);
    v.fails = scalar(ignored.data(), &x, all_checks) != 0;
    return v;
  }
};

/// The sources of one function on one type and what the scalar kernel makes of them.
template <class T> struct sample {
  function f;
  std::vector<T> mixed, clean;
  std::vector<verdict> of_mixed, of_clean;

  sample(int32_t number, const std::vector<T>& values) : f(number, element_code<T>), mixed(values) {
    for (const T x : mixed) {
      of_mixed.push_back(f.judge(x));
      if (!of_mixed.back().fails && (of_mixed.back().flags == 0 || is_integer_element<T>)) {
        clean.push_back(x);
        of_clean.push_back(of_mixed.back());
      }
    }
    // Clean values repeat, so that every length can be had.
    for (size_t i = 0; clean.size() < mixed.size(); ++i) {
      const T x = clean[i];
      const verdict v = of_clean[i];
      clean.push_back(x);
      of_clean.push_back(v);
    }
  }
};

constexpr mint lengths[] = {0, 1, 3, 4, 5, 7, 8, 9, 15, 16, 17, 31, 32, 33, 63, 64, 65, 511, 512, 513, 1000};

bool same(const unsigned char* got, const verdict& expected) {
  return std::memcmp(got, expected.value.data(), expected.value.size()) == 0;
}

/// One run on clean values: count elements from `first` on, by steps, from sources and into results that are `shift`
/// elements off the alignment of the vectors. Elements between the strides stay as they were.
template <class T>
void run_clean(const sample<T>& s, mint count, mint r_step, mint x_step, mint shift, uint32_t flags,
               size_t first = 0) {
  const auto distance = [count](mint step) {
    return static_cast<size_t>(std::max<mint>(count - 1, 0) * std::abs(step));
  };
  std::vector<T> source(distance(x_step) + 1 + static_cast<size_t>(shift));
  bytes result((distance(r_step) + 1 + static_cast<size_t>(shift)) * s.f.result_bytes, 0x5A);
  T* x = source.data() + shift + (x_step < 0 ? distance(x_step) : 0);
  unsigned char* r =
      result.data() + (static_cast<size_t>(shift) + (r_step < 0 ? distance(r_step) : 0)) * s.f.result_bytes;
  for (mint i = 0; i < count; ++i) x[i * x_step] = s.clean[first + static_cast<size_t>(x_step == 0 ? 0 : i)];
  const mint increments[2] = {r_step, x_step};
  const auto where = [&](mint i) {
    return testing::Message() << "count " << count << " steps " << r_step << " " << x_step << " shift "
                              << shift << " flags " << flags << " element " << i;
  };
  ASSERT_EQ(0, s.f.vector(r, x, count, increments, flags)) << where(-1);
  bytes expected(result.size(), 0x5A);
  unsigned char* e = expected.data() + (r - result.data());
  for (mint i = 0; i < count; ++i) {
    const verdict& v = s.of_clean[first + static_cast<size_t>(x_step == 0 ? 0 : i)];
    std::memcpy(e + i * r_step * static_cast<mint>(s.f.result_bytes), v.value.data(), s.f.result_bytes);
  }
  if (result == expected) return;
  const auto differing = std::mismatch(result.begin(), result.end(), expected.begin()).first - result.begin();
  FAIL() << where(differing / static_cast<mint>(s.f.result_bytes) - shift) << " of the result's storage";
}

template <class T> void all_shapes(const sample<T>& s) {
  for (const uint32_t flags : {0u, all_checks}) {
    for (const mint count : lengths) {
      for (const mint shift : {0, 1, 3}) run_clean(s, count, 1, 1, shift, flags);
      if (testing::Test::HasFatalFailure()) return;
    }
    for (const mint count : {0, 1, 2, 17, 512, 513}) {
      for (const mint r_step : {1, 2, -1, 3}) {
        for (const mint x_step : {0, 1, 2, -1, -3}) run_clean(s, count, r_step, x_step, 1, flags, 7);
      }
      if (testing::Test::HasFatalFailure()) return;
    }
  }
}

/// In place, where source and result have the same type: the same bits as apart.
template <class T> void in_place(const sample<T>& s) {
  if (s.f.result_type != s.f.type) return;
  for (const uint32_t flags : {0u, all_checks}) {
    for (const mint count : lengths) {
      std::vector<T> data(s.clean.begin(), s.clean.begin() + count);
      ASSERT_EQ(0, s.f.vector(data.data(), data.data(), count, UnitIncrements, flags));
      for (mint i = 0; i < count; ++i) {
        ASSERT_TRUE(same(reinterpret_cast<unsigned char*>(&data[static_cast<size_t>(i)]),
                         s.of_clean[static_cast<size_t>(i)]))
            << "count " << count << " element " << i;
      }
    }
  }
}

/// Split over two threads: the same bits at every length around the chunks.
template <class T> void on_two_threads(const sample<T>& s) {
  setVectorParallelLengthThreshold(1, 128);
  const mint threads = setParallelThreadNumber(2);
  for (const mint count : {127, 128, 129, 1000}) {
    run_clean(s, count, 1, 1, 1, all_checks);
    run_clean(s, count, 2, -1, 0, 0);
  }
  restoreParallelThreadNumber(threads);
  setVectorParallelLengthThreshold(1, 8192);
}

/// Every kind of argument side by side, unchecked: all bits as the scalar kernel gives them, the flags those of the
/// elements together. A failure that is detected always stops the run there.
template <class T> void mixed_run(const sample<T>& s) {
  const size_t n = s.mixed.size();
  bytes result(n * s.f.result_bytes, 0x5A);
  size_t first_failure = 0;
  int flags = 0;
  while (first_failure < n && !s.of_mixed[first_failure].always_fails)
    flags |= s.of_mixed[first_failure++].flags;
  std::feclearexcept(FE_ALL_EXCEPT);
  const mint position = s.f.vector(result.data(), s.mixed.data(), static_cast<mint>(n), UnitIncrements, 0);
  const int raised = std::fetestexcept(counted_flags);
  ASSERT_EQ(first_failure == n ? 0 : static_cast<mint>(first_failure) + 1, position);
  for (size_t i = 0; i < first_failure; ++i) {
    ASSERT_TRUE(same(result.data() + i * s.f.result_bytes, s.of_mixed[i]))
        << "element " << i << " at " << testing::PrintToString(s.mixed[i]);
  }
  if (is_floating<T> && first_failure == n) {
    ASSERT_EQ(flags, raised);
  }
}

/// Each special value amid ordinary ones, at the start, in the middle and in the tail: value, flags, failure.
template <class T> void special_amid_ordinary(const sample<T>& s) {
  constexpr size_t n = 37;
  size_t specials = 0;
  if constexpr (is_complex_element<T>) {
    specials = special_pairs<T>().size();
  } else {
    specials = special_values<T>().size();
  }
  for (size_t k = 0; k < specials; ++k) {
    for (const size_t place : {size_t{0}, size_t{5}, size_t{18}, n - 1}) {
      std::vector<T> source(s.clean.begin(), s.clean.begin() + n);
      source[place] = s.mixed[k];
      const verdict& v = s.of_mixed[k];
      bytes result(n * s.f.result_bytes);
      std::feclearexcept(FE_ALL_EXCEPT);
      const mint plain = s.f.vector(result.data(), source.data(), n, UnitIncrements, 0);
      const int raised = std::fetestexcept(counted_flags);
      const auto where = [&] { return testing::Message() << "special " << k << " at " << place; };
      ASSERT_EQ(v.always_fails ? static_cast<mint>(place) + 1 : 0, plain) << where();
      if (!v.always_fails) {
        ASSERT_TRUE(same(result.data() + place * s.f.result_bytes, v)) << where();
      }
      if (is_floating<T>) {
        ASSERT_EQ(v.flags, raised) << where();
      }
      // Checked and apart: floating results are judged by the flags, everything else by the element.
      const bool bulk = is_floating<T> && s.f.result_type != MNumericArrayTypeInteger64;
      const mint checked = s.f.vector(result.data(), source.data(), n, UnitIncrements, all_checks);
      ASSERT_EQ(bulk ? v.flags != 0 : v.fails ? static_cast<mint>(place) + 1 : 0, checked) << where();
      if (s.f.result_type != s.f.type) continue;
      // In place: by the element.
      const mint stopped = s.f.vector(source.data(), source.data(), n, UnitIncrements, all_checks);
      ASSERT_EQ(v.fails ? static_cast<mint>(place) + 1 : 0, stopped) << where();
      if (v.fails) {
        ASSERT_EQ(0, std::memcmp(&source[place], &s.mixed[k], sizeof(T))) << where();
      }
    }
  }
}

class Roads : public testing::TestWithParam<unary_table::row> {};

TEST_P(Roads, SameBitsAndFlags) {
  const unary_table::row& row = GetParam();
  int ran = 0;
  for_all_element_types([&]<class T>() {
    if (unary_table::result_letter<T>(row) == '-') return;
    SCOPED_TRACE(vlm::element_of<T>::name);
    static const std::vector<T> values = mixed_values<T>(1024);
    const sample<T> s(row.number, values);
    ASSERT_NE(nullptr, s.f.vector);
    all_shapes(s);
    in_place(s);
    on_two_threads(s);
    mixed_run(s);
    special_amid_ordinary(s);
    ++ran;
  });
  EXPECT_EQ((row.on_integers != '-' ? 8 : 0) + (row.on_reals != '-' ? 3 : 0) +
                (unary_table::on_complexes(row) != '-' ? 2 : 0),
            ran);
}

/// Numbers of any bit pattern and, as many again, of sizes that are common: where a form of a function is handed on to the next
/// one is found by such arguments only.
template <class T> std::vector<T> any_numbers(mint count) {
  std::mt19937_64 engine(29);
  std::vector<T> numbers(static_cast<size_t>(count));
  for (size_t i = 0; i < numbers.size(); ++i) {
    const uint64_t bits = engine();
    if (i % 2 == 0) {
      std::memcpy(&numbers[i], &bits, sizeof(T));
    } else {
      const double significand = 1 + static_cast<double>(bits >> 12) * 0x1p-52;
      numbers[i] = static_cast<T>(
          std::ldexp((bits & 1) != 0 ? significand : -significand, static_cast<int>(engine() % 140) - 100));
    }
  }
  return numbers;
}

/// Whether two numbers are both NaN or have the same bits.
template <class Real> bool alike(Real a, Real b) {
  return (std::isnan(a) && std::isnan(b)) || std::memcmp(&a, &b, sizeof a) == 0;
}

template <class T> void many_numbers(const unary_table::row& row) {
  using real = typename fp_parts<T>::real;
  const bool gives_pairs = is_complex_element<T> && unary_table::result_letter<T>(row) == '=';
  const mint in = fp_parts<T>::count, out = gives_pairs ? 2 : 1;
  const std::vector<real> x = any_numbers<real>(many);
  const mint count = many / in;
  std::vector<real> together(static_cast<size_t>(count * out));
  const auto vector = MNumericArray_getUnaryVectorMachFunc(row.number, element_code<T>);
  const auto scalar = MNumericArray_getUnaryScalarMachFunc(row.number, element_code<T>);
  ASSERT_EQ(0, vector(together.data(), x.data(), count, UnitIncrements, 0));
  for (mint i = 0; i < count; ++i) {
    const real* z = x.data() + i * in;
    real alone[2] = {};
    ASSERT_EQ(0, scalar(alone, z, 0));
    for (mint part = 0; part < out; ++part) {
      ASSERT_TRUE(alike(alone[part], together[static_cast<size_t>(i * out + part)]))
          << std::hexfloat << z[0] << " " << z[in - 1] << " part " << part << ": " << alone[part]
          << " alone, " << together[static_cast<size_t>(i * out + part)] << " in a run";
    }
  }
}

/// The functions that give floating results for reals or for complex numbers.
std::vector<unary_table::row> floating_rows() {
  std::vector<unary_table::row> rows;
  std::copy_if(std::begin(unary_table::rows), std::end(unary_table::rows), std::back_inserter(rows),
               [](const unary_table::row& row) {
                 return row.on_reals == '=' || row.range[2] == 'C' || row.range[2] == 'R';
               });
  return rows;
}

class FloatingRoads : public testing::TestWithParam<unary_table::row> {};

TEST_P(FloatingRoads, AnyNumberAloneAndInARun) {
  const unary_table::row& row = GetParam();
  if (row.on_reals == '=') {
    many_numbers<double>(row);
    many_numbers<float>(row);
  }
  if (row.range[2] == 'C' || row.range[2] == 'R') {
    many_numbers<mcomplex>(row);
    many_numbers<complex_real32>(row);
  }
}
INSTANTIATE_TEST_SUITE_P(Functions, FloatingRoads, testing::ValuesIn(floating_rows()),
                         [](const auto& row) { return std::string(row.param.name); });
INSTANTIATE_TEST_SUITE_P(Functions, Roads, testing::ValuesIn(unary_table::rows),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
