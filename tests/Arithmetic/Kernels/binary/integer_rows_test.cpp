// Functions of two integers on the eight integer types: all pairs of 8-bit operands, and the wider types on numbers beside their limits,
// against exact arithmetic in 128 bits.
//
// Faults it is meant to catch: arithmetic at another width than the element's; a check that lets one overflowing pair pass or refuses
// its neighbour; a failure told under a flag where it is told always, or the other way round; signed rules for an unsigned type;
// division that goes wrong for large operands, for the most negative value, or with the sign of a remainder; a vector form that differs
// from the scalar one.
#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <vector>

#include "Includes/element_types.h"
#include "velorim/velorim.h"

namespace {

using namespace vlm;
using wide = __int128;

/// The exact value; whether there is none (always a failure); whether the check refuses it although it may fit.
struct exact {
  wide value = 0;
  bool none = false;
  bool refused = false;
};
constexpr exact no_value{0, true, false};

wide size_of(wide x) { return x < 0 ? -x : x; }
wide floor_of(wide x, wide y) { return x / y - ((x % y != 0 && (x < 0) != (y < 0)) ? 1 : 0); }
/// Of two numbers of 64 bits. What 127 bits do not hold comes out negative, which no unsigned type holds either.
wide product_of(wide x, wide y) {
  return static_cast<wide>(static_cast<unsigned __int128>(x) * static_cast<unsigned __int128>(y));
}
wide gcd_of(wide x, wide y) { return y == 0 ? size_of(x) : gcd_of(y, x % y); }
/// x / y to nearest, ties to even.
wide nearest_of(wide x, wide y) {
  const wide low = floor_of(x, y), twice_rest = 2 * (x - low * y);
  const wide order = y > 0 ? twice_rest - y : y - twice_rest;
  return order > 0 || (order == 0 && low % 2 != 0) ? low + 1 : low;
}
/// x^y modulo 2^64 with an exact sign of overflow: beyond 2^100 it is 2^100 and more.
constexpr wide huge = wide{1} << 100;
exact power_of(wide x, wide y) {
  if (x == 0) return y > 0 ? exact{0} : no_value;
  if (x == 1) return {1};
  if (x == -1) return {y % 2 == 0 ? 1 : -1};
  if (y < 0) return no_value;
  wide value = 1;
  for (; y > 0; --y) {
    if (size_of(value) > huge / size_of(x)) return {huge};
    value *= x;
  }
  return {value};
}

struct type_facts {
  wide least, most;
  int width;
};

exact rule(int32_t number, wide x, wide y, const type_facts& type) {
  const bool is_signed = type.least < 0;
  switch (number) {
    case 257:
      return {x + y};
    case 258:
      return {x - y};
    case 259:
      return {product_of(x, y)};
    case 261:
      return y == 0 ? no_value : exact{x - floor_of(x, y) * y};
    case 262:
      return y == 0 || (x == type.least && y == -1) ? no_value : exact{floor_of(x, y)};
    case 263:
      return power_of(x, y);
    case 266:
      return {x & y};
    case 267:
      return {x | y};
    case 268:
      return {x ^ y};
    case 270: {
      // Unchecked, the magnitude is that of the difference as it wraps.
      const wide d = x - y, range = wide{1} << type.width;
      const wide wrapped = d < type.least ? d + range : d > type.most ? d - range : d;
      return {is_signed ? size_of(wrapped) : d, false, is_signed && wrapped != d};
    }
    case 272:
      return {std::max(size_of(x), size_of(y))};
    case 273: {
      if (y < 2 || x == 0) return no_value;
      int k = 0;
      for (; x % y == 0; x /= y) ++k;
      return {k};
    }
    case 274: {
      if (y < 2) return no_value;
      int digits = 0;
      for (wide m = size_of(x); m != 0; m /= y) ++digits;
      return {digits};
    }
    case 275:
    case 276: {
      const wide left = number == 275 ? y : -y, m = size_of(x);
      wide shifted = 0;
      if (x == 0) return {0};
      if (left < 0) {
        shifted = -left >= type.width ? 0 : m >> -left;
      } else if (left < type.width) {
        shifted = m << left;
      } else {
        return {(x < 0 ? -1 : 1) * (m << (left % type.width)), false, true};
      }
      return {x < 0 ? -shifted : shifted};
    }
    case 277:
    case 280:
      return {x == 0 && y == 0};
    case 278:
      return y <= 0 ? no_value : exact{size_of(x) >= y, false, is_signed && x == type.least};
    case 279:
      return {x >= 0 && y >= 0};
    case 281:
      return {gcd_of(x, y)};
    case 282:
      return {x == 0 || y == 0 ? 0 : product_of(size_of(x) / gcd_of(x, y), size_of(y))};
    case 283:
      return y == 0 || (x == type.least && y == -1) ? no_value : exact{-floor_of(-x, y) * y};
    case 284:
      return y == 0 || (x == type.least && y == -1) ? no_value : exact{floor_of(x, y) * y};
    case 285:
      return y == 0 || (x == type.least && y == -1) ? no_value : exact{nearest_of(x, y) * y};
    case 286:
      return {std::max(x, y)};
    case 287:
      return {std::min(x, y)};
    default:
      ADD_FAILURE() << "no rule for " << number;
      return no_value;
  }
}

constexpr int32_t integer_functions[] = {257, 258, 259, 261, 262, 263, 266, 267, 268, 270, 272, 273, 274,
                                         275, 276, 277, 278, 279, 280, 281, 282, 283, 284, 285, 286, 287};

/// Unchecked, what does not fit wraps at the width; of powers that are too large for the rule that is computed apart.
template <class T> T wrapped(int32_t number, const exact& e, T x, T y) {
  if (number == 263 && size_of(e.value) >= huge) {
    const uint64_t m = x < 0 ? 0 - static_cast<uint64_t>(x) : static_cast<uint64_t>(x);
    if ((m & (m - 1)) == 0) {  // a power of two shifts modulo the width
      uint64_t k = 0;
      while (m >> k != 1) ++k;
      const uint64_t n = k * static_cast<uint64_t>(y) % (sizeof(T) * 8);
      const auto power = static_cast<T>(uint64_t{1} << n);
      return static_cast<T>(x < 0 && (y & 1) != 0 ? 0 - static_cast<uint64_t>(power)
                                                  : static_cast<uint64_t>(power));
    }
    uint64_t power = 1;
    for (uint64_t base = static_cast<uint64_t>(x), e2 = static_cast<uint64_t>(y); e2 != 0;
         e2 >>= 1, base *= base) {
      if (e2 & 1) power *= base;
    }
    return static_cast<T>(power);
  }
  return static_cast<T>(e.value);
}

/// Compares scalar and vector kernels with the rule on all pairs of the operands.
template <class T> void expect_rule(const std::vector<T>& xs, const std::vector<T>& ys) {
  constexpr int32_t code = element_code<T>;
  const type_facts type{std::numeric_limits<T>::min(), std::numeric_limits<T>::max(), sizeof(T) * 8};
  for (const int32_t number : integer_functions) {
    const MachFuncScalar2 scalar = MNumericArray_getBinaryScalarMachFunc(number, code, code);
    const MachFuncVector2 vector = MNumericArray_getBinaryVectorMachFunc(number, code, code);
    ASSERT_TRUE(scalar != nullptr && vector != nullptr) << number;
    for (const uint32_t flags : {0u, 4u}) {
      for (const T x : xs) {
        // The row of x with every y, in the order of ys: what is expected up to the first failure, and from there on.
        std::vector<T> expected;
        std::vector<T> valid_y;
        mint first_failure = 0;
        for (size_t i = 0; i < ys.size(); ++i) {
          const T y = ys[i];
          const exact e = rule(number, x, y, type);
          const bool fails =
              e.none || (flags != 0 && (e.refused || e.value < type.least || e.value > type.most));
          T got = 99;
          const int32_t status = scalar(&got, &x, &y, flags);
          const T value = fails ? T(99) : wrapped(number, e, x, y);
          // Unchecked powers of two wrap by the shift count, not as numbers do.
          const bool shifts_round = number == 263 && !fails && flags == 0 &&
                                    (e.value < type.least || e.value > type.most) &&
                                    (size_of(x) & (size_of(x) - 1)) == 0;
          const T wanted = shifts_round ? wrapped(number, exact{huge}, x, y) : value;
          ASSERT_EQ(status, fails ? 1 : 0)
              << "function " << number << " of " << +x << ", " << +y << " flags " << flags;
          ASSERT_EQ(got, wanted) << "function " << number << " of " << +x << ", " << +y << " flags " << flags;
          if (fails && first_failure == 0) first_failure = static_cast<mint>(i) + 1;
          if (!fails) {
            valid_y.push_back(y);
            expected.push_back(got);
          }
        }
        // The whole row: stops at the first failure. Without the failing ones: all of it, in blocks and in registers.
        const std::vector<T> all_x(ys.size(), x);
        std::vector<T> result(ys.size(), T(77));
        ASSERT_EQ(vector(result.data(), all_x.data(), ys.data(), static_cast<mint>(ys.size()), UnitIncrements,
                         flags),
                  first_failure)
            << "function " << number << " of " << +x << " flags " << flags;
        if (first_failure != 0) {
          ASSERT_EQ(result[static_cast<size_t>(first_failure - 1)], T(77)) << number;
        }
        result.assign(valid_y.size(), T(77));
        ASSERT_EQ(vector(result.data(), all_x.data(), valid_y.data(), static_cast<mint>(valid_y.size()),
                         UnitIncrements, flags),
                  0)
            << "function " << number << " of " << +x << " flags " << flags;
        ASSERT_EQ(result, expected) << "function " << number << " of " << +x << " flags " << flags;
      }
    }
  }
}

template <class T> std::vector<T> all_values() {
  std::vector<T> values;
  for (int v = std::numeric_limits<T>::min(); v <= std::numeric_limits<T>::max(); ++v)
    values.push_back(static_cast<T>(v));
  return values;
}

/// Numbers beside the limits, beside powers of two, beside 0, beside square and cube roots of the limits, and some from anywhere.
template <class T> std::vector<T> telling_values() {
  using limits = std::numeric_limits<T>;
  std::vector<T> values;
  const auto around = [&values](wide v) {
    for (wide d = -1; d <= 1; ++d) {
      if (v + d >= limits::min() && v + d <= limits::max()) values.push_back(static_cast<T>(v + d));
    }
  };
  around(limits::min());
  around(limits::max());
  for (size_t k = 1; k < sizeof(T) * 8; k += k < 8 ? 1 : 7) {
    around(wide{1} << k);
    around(-(wide{1} << k));
  }
  for (const wide v : {wide{0}, wide{10}, wide{1000}, wide{46341}, wide{3037000499}, wide{2097151}, wide{7}})
    around(v);
  std::mt19937_64 engine(42);
  for (int i = 0; i < 6; ++i) values.push_back(static_cast<T>(engine() >> (i * 9)));
  return values;
}

TEST(BinaryIntegerRows, EightBitOperandsGiveTheExactResultOrTheirFailure) {
  expect_rule(all_values<int8_t>(), all_values<int8_t>());
  expect_rule(all_values<uint8_t>(), all_values<uint8_t>());
}

TEST(BinaryIntegerRows, WiderOperandsGiveTheExactResultOrTheirFailure) {
  expect_rule(telling_values<int16_t>(), telling_values<int16_t>());
  expect_rule(telling_values<uint16_t>(), telling_values<uint16_t>());
  expect_rule(telling_values<int32_t>(), telling_values<int32_t>());
  expect_rule(telling_values<uint32_t>(), telling_values<uint32_t>());
  expect_rule(telling_values<int64_t>(), telling_values<int64_t>());
  expect_rule(telling_values<uint64_t>(), telling_values<uint64_t>());
}

/// Long runs of random operands of every size, where blocks take one way or the other by what is in them.
TEST(BinaryIntegerRows, DivisionOfLongRunsIsExact) {
  std::mt19937_64 engine(7);
  for (int shift = 0; shift < 64; shift += 3) {
    constexpr size_t length = 1100;
    std::vector<mint> x(length), y(length), r(length);
    for (size_t i = 0; i < length; ++i) {
      x[i] = static_cast<mint>(engine()) >> (shift / 2);
      y[i] = static_cast<mint>(engine()) >> shift;
      if (y[i] == 0 || y[i] == -1) y[i] = 1;
    }
    for (const int32_t number : {261, 262}) {
      ASSERT_EQ(MNumericArray_getBinaryVectorMachFunc(number, 7, 7)(r.data(), x.data(), y.data(), length,
                                                                    UnitIncrements, 4),
                0);
      for (size_t i = 0; i < length; ++i) {
        const wide floor = floor_of(x[i], y[i]);
        ASSERT_EQ(r[i], static_cast<mint>(number == 262 ? floor : x[i] - floor * y[i]))
            << x[i] << ", " << y[i] << " shift " << shift;
      }
    }
  }
}

/// Counts of a left or right shift for x narrower than they are.
TEST(BinaryIntegerRows, ShiftsOfNarrowNumbersByIntegerCounts) {
  const auto expect = [](auto x, mint s, int32_t number, bool fails, auto value) {
    using T = decltype(x);
    T got = 99;
    EXPECT_EQ(MNumericArray_getBinaryScalarMachFunc(number, element_code<T>, 7)(&got, &x, &s, 4),
              fails ? 1 : 0)
        << +x << " " << s;
    EXPECT_EQ(got, fails ? T(99) : static_cast<T>(value)) << +x << " " << s;
  };
  expect(int8_t{1}, 6, 275, false, 64);
  expect(int8_t{1}, 7, 275, true, 0);
  expect(int8_t{-1}, 7, 275, false, -128);
  expect(uint8_t{1}, 7, 275, false, 128);
  expect(uint16_t{1}, 16, 275, true, 0);
  expect(int32_t{-5}, 1, 276, false, -2);
  expect(int32_t{-5}, std::numeric_limits<mint>::max(), 276, false, 0);
  expect(uint32_t{3}, std::numeric_limits<mint>::min(), 275, false, 0);
}

/// The exported forms that store the wrapped result all the same, and the unchecked divisor.
TEST(BinaryIntegerRows, ScalarEntriesOfSumsStoreWhatWraps) {
  constexpr mint most = std::numeric_limits<mint>::max(), least = std::numeric_limits<mint>::min();
  mint r = 0;
  EXPECT_EQ(s_machfunc_ii_plus(&r, most, 1, 4), 1);
  EXPECT_EQ(r, least);
  EXPECT_EQ(s_machfunc_ii_subtract(&r, least, 1, 4), 1);
  EXPECT_EQ(r, most);
  EXPECT_EQ(s_machfunc_ii_times(&r, most, 2, 4), 1);
  EXPECT_EQ(r, -2);
  EXPECT_EQ(s_machfunc_ii_times(&r, most, 2, 2), 0);
  EXPECT_EQ(gcd_mint(-12, 18), 6);
  EXPECT_EQ(gcd_mint(least, 0), least);
}

}  // namespace
