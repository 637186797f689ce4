// Faults it is meant to catch: a tile, strip or stretch at whose edge an element takes another chain of roundings; a transposition or
// conjugation lost; alpha or beta applied in the wrong place; rows behind the matrix written; marks of skipped columns; results that
// depend on the threads or on the memory at hand.
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "Memory/failure_injection.h"
#include "Runtime/hooks.h"
#include "support/allocation_balance.h"
#include "velorim/blas.h"
#include "velorim/parallel.h"

namespace {

template <class T> struct routine;
template <> struct routine<float> {
  static constexpr auto gemm = vlb_sgemm;
  using memory = float;
};
template <> struct routine<double> {
  static constexpr auto gemm = vlb_dgemm;
  using memory = double;
};
template <> struct routine<std::complex<float>> {
  static constexpr auto gemm = vlb_cgemm;
  using memory = float;
};
template <> struct routine<std::complex<double>> {
  static constexpr auto gemm = vlb_zgemm;
  using memory = mcomplex;
};

template <class T> constexpr bool is_complex = !std::is_floating_point_v<T>;

/// One step of the chain of an element.
template <class T> T step(T a, T b, T c) {
  if constexpr (is_complex<T>) {
    return {std::fma(-a.imag(), b.imag(), std::fma(a.real(), b.real(), c.real())),
            std::fma(a.imag(), b.real(), std::fma(a.real(), b.imag(), c.imag()))};
  } else {
    return std::fma(a, b, c);
  }
}
/// The product of two factors: the second of each pair of products is fused into the sum.
template <class T> T times(T a, T b) {
  if constexpr (is_complex<T>) {
    return {std::fma(a.real(), b.real(), -(a.imag() * b.imag())),
            std::fma(a.real(), b.imag(), a.imag() * b.real())};
  } else {
    return a * b;
  }
}

template <class T> struct problem {
  char transa = 'N', transb = 'N';
  mint m = 0, n = 0, k = 0, lda = 1, ldb = 1, ldc = 1;
  T alpha = 1, beta = 0;
  std::vector<T> a, b, c;

  T op(const std::vector<T>& x, mint ld, char trans, mint row, mint column) const {
    const char t = static_cast<char>(std::toupper(trans));
    const T value =
        t == 'N' ? x[static_cast<size_t>(row + column * ld)] : x[static_cast<size_t>(column + row * ld)];
    if constexpr (is_complex<T>) {
      return t == 'C' ? std::conj(value) : value;
    } else {
      return value;
    }
  }

  std::vector<T> expected() const {
    std::vector<T> result = c;
    const bool plain = std::toupper(transa) == 'N';
    if (m == 0 || n == 0 || ((alpha == T(0) || k == 0) && beta == T(1))) return result;
    for (mint j = 0; j < n; ++j) {
      for (mint i = 0; i < m; ++i) {
        T& element = result[static_cast<size_t>(i + j * ldc)];
        const T scaled = beta == T(0) ? T(0) : beta == T(1) ? element : times(beta, element);
        T sum = plain ? scaled : T(0);
        for (mint l = 0; l < k && alpha != T(0); ++l) {
          const T x = op(b, ldb, transb, l, j);
          const T raw = std::toupper(transb) == 'N' ? b[static_cast<size_t>(l + j * ldb)]
                                                    : b[static_cast<size_t>(j + l * ldb)];
          if (plain && raw == T(0)) continue;
          sum = step(op(a, lda, transa, i, l), plain && alpha != T(1) ? times(alpha, x) : x, sum);
        }
        if (plain || alpha == T(0) || k == 0) {
          element = plain ? sum : scaled;
        } else {
          element = beta == T(0) ? times(alpha, sum) : times(alpha, sum) + times(beta, element);
        }
      }
    }
    return result;
  }

  std::vector<T> computed() const {
    std::vector<T> result = c;
    using memory = typename routine<T>::memory;
    const auto in = [](const T* p) { return reinterpret_cast<const memory*>(p); };
    routine<T>::gemm(&transa, &transb, &m, &n, &k, in(&alpha), in(a.data()), &lda, in(b.data()), &ldb,
                     in(&beta), reinterpret_cast<memory*>(result.data()), &ldc);
    return result;
  }
};

/// Every NaN is the same.
template <class T> bool same_bits(T x, T y) {
  if constexpr (is_complex<T>) {
    return same_bits(x.real(), y.real()) && same_bits(x.imag(), y.imag());
  } else {
    return (std::isnan(x) && std::isnan(y)) || std::memcmp(&x, &y, sizeof x) == 0;
  }
}

template <class T>
void expect_same(const std::vector<T>& got, const std::vector<T>& expected, const problem<T>& p) {
  ASSERT_EQ(got.size(), expected.size());
  for (size_t i = 0; i < got.size(); ++i) {
    ASSERT_TRUE(same_bits(got[i], expected[i]))
        << p.transa << p.transb << ' ' << p.m << ' ' << p.n << ' ' << p.k << " element " << i << ": "
        << got[i] << " instead of " << expected[i] << ", alpha " << p.alpha << ", beta " << p.beta;
  }
}

class random_problems {
 public:
  explicit random_problems(uint64_t seed) : engine_(seed) {}
  mint in(mint low, mint high) { return std::uniform_int_distribution<mint>(low, high)(engine_); }
  template <class T> T number() {
    const auto real = [this] { return std::uniform_real_distribution<double>(-1, 1)(engine_); };
    if constexpr (is_complex<T>) {
      return {static_cast<typename T::value_type>(real()), static_cast<typename T::value_type>(real())};
    } else {
      return static_cast<T>(real());
    }
  }
  template <class T> problem<T> make(mint m, mint n, mint k) {
    problem<T> p;
    p.transa = "NnTtCc"[in(0, 5)];
    p.transb = "NnTtCc"[in(0, 5)];
    p.m = m, p.n = n, p.k = k;
    const bool na = std::toupper(p.transa) == 'N', nb = std::toupper(p.transb) == 'N';
    p.lda = std::max<mint>(1, na ? m : k) + in(0, 3);
    p.ldb = std::max<mint>(1, nb ? k : n) + in(0, 3);
    p.ldc = std::max<mint>(1, m) + in(0, 3);
    const T factors[] = {T(0), T(1), T(-1), number<T>()};
    p.alpha = factors[in(0, 9) == 0 ? 0 : in(1, 3)];
    p.beta = factors[in(0, 3)];
    const auto fill = [this](mint count) {
      std::vector<T> x(static_cast<size_t>(count));
      for (T& value : x) value = number<T>();
      return x;
    };
    p.a = fill(p.lda * (na ? k : m) + 1);
    p.b = fill(p.ldb * (nb ? n : k) + 1);
    p.c = fill(p.ldc * n + 1);
    return p;
  }

 private:
  std::mt19937_64 engine_;
};

template <class T> class Gemm : public testing::Test {
 protected:
  Gemm() { vlm::memory_hook(1); }
};
using types = testing::Types<float, double, std::complex<float>, std::complex<double>>;
TYPED_TEST_SUITE(Gemm, types);

TYPED_TEST(Gemm, EveryElementIsOneChain) {
  const uint64_t seed = std::random_device{}();
  SCOPED_TRACE(testing::Message() << "seed " << seed);
  random_problems random(seed);
  const vlm::test::AllocationBalance balance;
  for (int round = 0; round < 400; ++round) {
    // Small shapes, thin ones, and some beyond the blocks of rows and of k.
    const mint most = round % 40 == 0 ? 300 : 60;
    mint m = random.in(0, most), n = random.in(0, round % 40 == 0 ? 40 : 60), k = random.in(0, most);
    if (round % 7 == 0) m = random.in(1, 3);
    if (round % 11 == 0) n = 1;
    auto p = random.make<TypeParam>(m, n, k);
    if (p.beta == TypeParam(0)) std::fill(p.c.begin(), p.c.end(), TypeParam(NAN));  // is not read
    expect_same(p.computed(), p.expected(), p);
  }
}

TYPED_TEST(Gemm, SkippedColumnsLeaveNoMark) {
  random_problems random(11);
  using real = decltype(std::abs(TypeParam()));
  const TypeParam marks[] = {TypeParam(std::numeric_limits<real>::quiet_NaN()),
                             TypeParam(std::numeric_limits<real>::infinity()), TypeParam(real(0.5))};
  for (int round = 0; round < 150; ++round) {
    auto p = random.make<TypeParam>(random.in(1, 50), random.in(1, 20), random.in(1, 50));
    p.transa = 'N';
    p.lda = p.m;
    p.a.assign(static_cast<size_t>(p.m * p.k), marks[2]);
    for (mint count = random.in(0, 2); count > 0; --count)
      p.a[static_cast<size_t>(random.in(0, p.m * p.k - 1))] = marks[round % 3];
    for (TypeParam& x : p.b) {
      if (random.in(0, 2) == 0) x = TypeParam(round % 2 ? real(0) : -real(0));
    }
    if (round % 5 == 0) std::fill(p.c.begin(), p.c.end(), TypeParam(-real(0)));
    if (p.beta == TypeParam(-1)) p.beta = TypeParam(1);
    if (p.beta == TypeParam(0)) std::fill(p.c.begin(), p.c.end(), TypeParam(NAN));
    expect_same(p.computed(), p.expected(), p);
  }
}

TYPED_TEST(Gemm, TheSameBitsOnAnyThreadsAndWithoutMemory) {
  random_problems random(12);
  constexpr mint shapes[][3] = {{257, 131, 300}, {3001, 3, 150}, {7, 450, 300}};
  for (const int form : {0, 1, 2, 3, 4, 6, 8, 10}) {
    const auto [m, n, k] = shapes[form / 4];
    auto p = random.make<TypeParam>(m, n, k);
    p.transa = form / 2 % 2 == 0 ? 'N' : 'T';
    const bool from_zero = form % 2 == 1;
    p.beta = TypeParam(from_zero ? 0 : 0.5);
    if (from_zero) std::fill(p.c.begin(), p.c.end(), TypeParam(NAN));
    p.lda = std::max(m, k);
    p.a.resize(static_cast<size_t>(p.lda * p.lda), TypeParam(0.25));
    p.alpha = TypeParam(0.75);
    const mint before = setParallelThreadNumber(1);
    const auto one = p.computed();
    expect_same(one, p.expected(), p);
    setParallelThreadNumber(2);
    expect_same(p.computed(), one, p);
    restoreParallelThreadNumber(before);
    for (int64_t allocations = 0; allocations < 3; ++allocations) {
      vlm::memory::fail_allocation_after(allocations);
      expect_same(p.computed(), one, p);
      vlm::memory::fail_allocation_after(-1);
    }
  }
}

}  // namespace
