// Every row of two arguments gives the same bits on every road.
//
// Faults it is meant to catch: a vector form that differs from the scalar kernel in a lane, a tail, a broadcast or a gathered block;
// results that depend on place, alignment, length, threads or on being written over an operand; a refused element that is written, or a
// position that is off; a mixed row that is not the same-type row of its widened arguments.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <vector>

#include "Arithmetic/Kernels/sample_values.h"
#include "Arithmetic/binary_table.h"
#include "velorim/velorim.h"

namespace {

using namespace vlm;
using binary_table::entries;
using bytes = std::vector<unsigned char>;

constexpr uint32_t all_checks = MACHFUNC_CHECK_FP | MACHFUNC_CHECK_INTEGER;

/// n elements of a type as bytes: telling ones paired at random, and ordinary ones.
bytes operands(int32_t type, size_t n, uint64_t seed) {
  bytes data(n * element_bytes(type));
  with_element_type(type, [&]<class T>() {
    std::mt19937_64 engine(seed);
    std::uniform_real_distribution<double> ordinary(-6, 6);
    const auto number = [&]<class N>() {
      static const std::vector<N> telling = sample_values::special_values<N>();
      const bool special = engine() % 3 == 0;
      return special ? telling[engine() % telling.size()] : sample_values::real_number<N>(ordinary(engine));
    };
    auto* elements = reinterpret_cast<T*>(data.data());
    for (size_t i = 0; i < n; ++i) {
      if constexpr (is_complex_element<T>) {
        using real = decltype(T::re);
        elements[i].re = number.template operator()<real>();
        elements[i].im = engine() % 4 == 0 ? real(0) : number.template operator()<real>();
      } else {
        elements[i] = number.template operator()<T>();
      }
    }
  });
  return data;
}

/// NaNs compare equal whatever their payload: which operand's it is, is left to the processor.
bool same_element(int32_t type, const unsigned char* a, const unsigned char* b) {
  bool same = std::memcmp(a, b, element_bytes(type)) == 0;
  if (same) return true;
  with_element_type(type, [&]<class T>() {
    T x, y;
    std::memcpy(&x, a, sizeof x);
    std::memcpy(&y, b, sizeof y);
    const auto alike = [](auto p, auto q) {
      return std::memcmp(&p, &q, sizeof p) == 0 || (p != p && q != q);
    };
    if constexpr (is_complex_element<T>) {
      same = alike(x.re, y.re) && alike(x.im, y.im);
    } else if constexpr (std::is_same_v<T, real16>) {
      same = is_nan(x) && is_nan(y);
    } else if constexpr (is_real_element<T>) {
      same = alike(x, y);
    }
  });
  return same;
}

struct row {
  int32_t number, x, y, result;
  MachFuncScalar2 scalar;
  MachFuncVector2 vector;
  size_t xb() const { return element_bytes(x); }
  size_t yb() const { return element_bytes(y); }
  size_t rb() const { return element_bytes(result); }
};

template <class Body> void for_all_rows(Body&& body) {
  for (const auto& e : entries) {
    for (int32_t x = 1; x <= 13; ++x) {
      for (int32_t y = 1; y <= 13; ++y) {
        const int32_t result = MNumericArray_ReturnType2(e.number, x, y);
        if (result == 0) continue;
        SCOPED_TRACE(testing::Message() << "function " << e.number << " on types " << x << ", " << y);
        body(row{e.number, x, y, result, MNumericArray_getBinaryScalarMachFunc(e.number, x, y),
                 MNumericArray_getBinaryVectorMachFunc(e.number, x, y)});
        if (testing::Test::HasFatalFailure()) return;
      }
    }
  }
}

/// Results of the scalar kernel one by one, and whether each failed.
struct by_scalar {
  bytes results;
  std::vector<bool> failed;
  by_scalar(const row& r, const bytes& x, const bytes& y, size_t n, uint32_t flags)
      : results(n * r.rb(), 0xA5), failed(n) {
    for (size_t i = 0; i < n; ++i) {
      failed[i] =
          r.scalar(results.data() + i * r.rb(), x.data() + i * r.xb(), y.data() + i * r.yb(), flags) != 0;
    }
  }
};

/// Only the elements of a row that do not fail.
void keep_good(const row& r, const by_scalar& scalar, bytes& x, bytes& y) {
  bytes gx, gy;
  for (size_t i = 0; i < scalar.failed.size(); ++i) {
    if (scalar.failed[i]) continue;
    gx.insert(gx.end(), x.begin() + static_cast<long>(i * r.xb()),
              x.begin() + static_cast<long>((i + 1) * r.xb()));
    gy.insert(gy.end(), y.begin() + static_cast<long>(i * r.yb()),
              y.begin() + static_cast<long>((i + 1) * r.yb()));
  }
  x = gx;
  y = gy;
}

void expect_elements(const row& r, const bytes& got, const bytes& expected, size_t n, const char* road) {
  for (size_t i = 0; i < n; ++i) {
    ASSERT_TRUE(same_element(r.result, got.data() + i * r.rb(), expected.data() + i * r.rb()))
        << road << ", element " << i << " of " << n;
  }
}

TEST(BinaryRoads, VectorKernelsGiveWhatScalarKernelsGive) {
  for_all_rows([](const row& r) {
    size_t n = 1400;
    bytes x = operands(r.x, n, 1), y = operands(r.y, n, 2);
    keep_good(r, by_scalar(r, x, y, n, 0), x, y);
    n = x.size() / r.xb();
    const by_scalar scalar(r, x, y, n, 0);
    bytes got(n * r.rb());
    for (const size_t length : {n, size_t{1}, size_t{7}, size_t{513}}) {
      for (const size_t first : {size_t{0}, size_t{3}}) {
        const size_t m = std::min(length, n - first);
        ASSERT_EQ(r.vector(got.data(), x.data() + first * r.xb(), y.data() + first * r.yb(),
                           static_cast<mint>(m), UnitIncrements, 0),
                  0);
        const bytes expected(scalar.results.begin() + static_cast<long>(first * r.rb()),
                             scalar.results.end());
        expect_elements(r, got, expected, m, "unit");
        if (testing::Test::HasFatalFailure()) return;
      }
    }
    // Backwards, and with steps.
    const mint backwards[] = {-1, -1, -1};
    ASSERT_EQ(r.vector(got.data() + (n - 1) * r.rb(), x.data() + (n - 1) * r.xb(),
                       y.data() + (n - 1) * r.yb(), static_cast<mint>(n), backwards, 0),
              0);
    expect_elements(r, got, scalar.results, n, "backwards");
    // One operand repeated.
    for (const bool repeats_x : {true, false}) {
      const size_t m = std::min<size_t>(n, 700), fixed = 11;
      bytes px = x, py = y;
      for (size_t i = 0; i < m; ++i) {
        if (repeats_x) std::memcpy(px.data() + i * r.xb(), x.data() + fixed * r.xb(), r.xb());
        if (!repeats_x) std::memcpy(py.data() + i * r.yb(), y.data() + fixed * r.yb(), r.yb());
      }
      const by_scalar repeated(r, px, py, m, 0);
      const auto stop = std::find(repeated.failed.begin(), repeated.failed.end(), true);
      const auto clean = static_cast<size_t>(stop - repeated.failed.begin());
      const mint position = stop == repeated.failed.end() ? 0 : static_cast<mint>(clean) + 1;
      ASSERT_EQ(r.vector(got.data(), x.data() + (repeats_x ? fixed * r.xb() : 0),
                         y.data() + (repeats_x ? 0 : fixed * r.yb()), static_cast<mint>(m),
                         repeats_x ? UnitRYIncrements : UnitRXIncrements, 0),
                position);
      expect_elements(r, got, repeated.results, clean, "broadcast");
    }
  });
}

TEST(BinaryRoads, InPlaceAndElementModeStopAtTheFirstFailure) {
  for_all_rows([](const row& r) {
    const size_t n = 1300;
    const bool over_x = r.result == r.x, over_y = r.result == r.y;
    // All failures stay in; and then only one, late, behind whole blocks of good ones.
    for (const bool one_late : {false, true}) {
      bytes x = operands(r.x, n, 5), y = operands(r.y, n, 6);
      by_scalar scalar(r, x, y, n, all_checks);
      if (one_late) {
        const auto failing =
            std::find(scalar.failed.begin(), scalar.failed.end(), true) - scalar.failed.begin();
        if (failing == static_cast<long>(n)) return;
        const bytes fx(x.begin() + failing * static_cast<long>(r.xb()),
                       x.begin() + (failing + 1) * static_cast<long>(r.xb()));
        const bytes fy(y.begin() + failing * static_cast<long>(r.yb()),
                       y.begin() + (failing + 1) * static_cast<long>(r.yb()));
        keep_good(r, scalar, x, y);
        const size_t late = x.size() / r.xb() - 3;
        std::memcpy(x.data() + late * r.xb(), fx.data(), r.xb());
        std::memcpy(y.data() + late * r.yb(), fy.data(), r.yb());
        scalar = by_scalar(r, x, y, x.size() / r.xb(), all_checks);
      }
      const size_t m = scalar.failed.size();
      const auto clean = static_cast<size_t>(std::find(scalar.failed.begin(), scalar.failed.end(), true) -
                                             scalar.failed.begin());
      const mint position = clean == m ? 0 : static_cast<mint>(clean) + 1;
      const auto expect_over = [&](bool is_over_x) {
        bytes target = is_over_x ? x : y;
        const bytes before = target;
        ASSERT_EQ(
            r.vector(target.data(), is_over_x ? target.data() : x.data(),
                     is_over_x ? y.data() : target.data(), static_cast<mint>(m), UnitIncrements, all_checks),
            position)
            << (is_over_x ? "over x" : "over y");
        expect_elements(r, target, scalar.results, clean, "in place");
        ASSERT_EQ(
            std::memcmp(target.data() + clean * r.rb(), before.data() + clean * r.rb(), (m - clean) * r.rb()),
            0)
            << "elements from the failing one on were written";
      };
      if (over_x) expect_over(true);
      if (over_y) expect_over(false);
      if (!over_x && !over_y && r.result == 7) {
        bytes target(m * r.rb(), 0x5A);
        ASSERT_EQ(
            r.vector(target.data(), x.data(), y.data(), static_cast<mint>(m), UnitIncrements, all_checks),
            position);
        expect_elements(r, target, scalar.results, clean, "element mode");
      }
    }
  });
}

TEST(BinaryRoads, OtherOverlapReadsTheOperandsFirst) {
  for_all_rows([](const row& r) {
    size_t n = 600;
    bytes x = operands(r.x, n, 8), y = operands(r.y, n, 9);
    keep_good(r, by_scalar(r, x, y, n, 0), x, y);
    n = x.size() / r.xb();
    const by_scalar scalar(r, x, y, n, 0);
    // The results begin one element behind x, then at x itself whatever the sizes.
    for (const size_t shift : {std::max(r.xb(), r.rb()), size_t{0}}) {
      bytes shared(shift + n * std::max(r.xb(), r.rb()) + 16);
      std::memcpy(shared.data(), x.data(), x.size());
      ASSERT_EQ(
          r.vector(shared.data() + shift, shared.data(), y.data(), static_cast<mint>(n), UnitIncrements, 0),
          0);
      const bytes got(shared.begin() + static_cast<long>(shift), shared.end());
      expect_elements(r, got, scalar.results, n, "overlapping");
      if (testing::Test::HasFatalFailure()) return;
    }
  });
}

TEST(BinaryRoads, ManyThreadsGiveTheSameBitsAndTheSmallestPosition) {
  const mint threads_before = getParallelThreadNumber();
  setParallelThreadNumber(4);
  for_all_rows([](const row& r) {
    const size_t n = 9001;
    bytes x = operands(r.x, n, 12), y = operands(r.y, n, 13);
    keep_good(r, by_scalar(r, x, y, n, 0), x, y);
    const size_t m = x.size() / r.xb();
    bytes once = x, oncemore = y;  // long enough for the team, whatever was left out
    while (once.size() / r.xb() < n) {
      once.insert(once.end(), x.begin(), x.end());
      oncemore.insert(oncemore.end(), y.begin(), y.end());
    }
    bytes got(once.size() / r.xb() * r.rb());
    ASSERT_EQ(r.vector(got.data(), once.data(), oncemore.data(), static_cast<mint>(once.size() / r.xb()),
                       UnitIncrements, 0),
              0);
    expect_elements(r, got, by_scalar(r, x, y, m, 0).results, m, "team");
  });
  setParallelThreadNumber(static_cast<int32_t>(threads_before));
}

/// Every mixed row but those with a definition of their own is the same-type row of the wider type.
TEST(BinaryRoads, MixedRowsWidenTheirArguments) {
  int rows = 0;
  for_all_rows([&rows](const row& r) {
    const auto tensor_type = [](int32_t t) { return t == 7 || t == 10 || t == 12; };
    if (r.x == r.y || !tensor_type(r.x) || !tensor_type(r.y)) return;
    const bool own = r.number == 269 || r.number == 275 || r.number == 276 || r.number == 278 ||
                     (r.number == 263 && r.y == 7) || (r.number >= 283 && r.number <= 285 && r.y == 7);
    if (own) return;
    ++rows;
    const int32_t wide = std::max(r.x, r.y);
    const size_t n = 300;
    const bytes x = operands(r.x, n, 20), y = operands(r.y, n, 21);
    const auto widened = [wide](int32_t type, const unsigned char* element) {
      mcomplex z{0, 0};
      if (type == 7) {
        mint i;
        std::memcpy(&i, element, sizeof i);
        z.re = static_cast<double>(i);
      } else {
        std::memcpy(&z, element, element_bytes(type));
      }
      bytes b(16);
      std::memcpy(b.data(), &z, element_bytes(wide));
      return b;
    };
    const MachFuncScalar2 same_type = MNumericArray_getBinaryScalarMachFunc(r.number, wide, wide);
    for (size_t i = 0; i < n; ++i) {
      for (const uint32_t flags : {0u, all_checks}) {
        bytes got(16, 0xA5), expected(16, 0xA5);
        const bytes wx = widened(r.x, x.data() + i * r.xb()), wy = widened(r.y, y.data() + i * r.yb());
        ASSERT_EQ(r.scalar(got.data(), x.data() + i * r.xb(), y.data() + i * r.yb(), flags),
                  same_type(expected.data(), wx.data(), wy.data(), flags));
        ASSERT_TRUE(same_element(r.result, got.data(), expected.data())) << "element " << i;
      }
    }
  });
  EXPECT_EQ(rows, 73);
}

}  // namespace
