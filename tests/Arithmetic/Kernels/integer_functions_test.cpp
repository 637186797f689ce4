// Functions of integers on the eight integer types, and the functions that turn reals into integers.
//
// Faults it is meant to catch: arithmetic that wraps at another width than the element's, or is left to signed
// overflow; a check that lets the one overflowing argument pass, or refuses its neighbour; a failure that is told only
// under a flag where it is to be told always, or the other way round; signed rules used for an unsigned type; tables
// that are read past their end; rounding in a fixed mode; conversions of NaN, infinities and numbers beside 2^63 left to
// the hardware.
#include <gtest/gtest.h>

#include <cfenv>
#include <cmath>
#include <random>
#include <set>
#include <vector>

#include "Arithmetic/Kernels/exact_functions.h"
#include "Arithmetic/unary_table.h"
#include "velorim/machine_functions.h"
#include "velorim/scalar_functions.h"

namespace {

using namespace vlm;
using wide = __int128;

/// The exact value of a function, and whether it has none.
struct rule_value {
  wide value = 0;
  bool undefined = false;
};
constexpr rule_value undefined{0, true};

wide power_of(wide base, int exponent) {
  wide p = 1;
  while (exponent-- > 0) p *= base;
  return p;
}
/// The exponent k with base^k = x, or no value.
rule_value exact_logarithm(wide x, int base) {
  for (int k = 0; power_of(base, k) <= x; ++k) {
    if (power_of(base, k) == x) return {k};
  }
  return undefined;
}
/// a(|x|) of a(n) = a(n-1) + a(n-2), extended to negative x by the same recurrence read backwards.
rule_value additive(wide x, wide a0, wide a1) {
  if (x > 200 || x < -200) return undefined;
  wide a = a0, b = a1;
  for (; x > 0 && b < (wide{1} << 100); --x) b = std::exchange(a, b) + b;
  for (; x < 0 && b > -(wide{1} << 100) && b < (wide{1} << 100); ++x) a = std::exchange(b, a), a -= b;
  return x == 0 ? rule_value{a} : undefined;
}
rule_value factorial_below(wide x) {
  if (x < 1 || x > 30) return undefined;
  wide f = 1;
  for (wide n = 2; n < x; ++n) f *= n;
  return {f};
}
/// A square that 127 bits do not hold comes out negative, which no unsigned type holds either.
wide square(wide x) {
  return static_cast<wide>(static_cast<unsigned __int128>(x) * static_cast<unsigned __int128>(x));
}
int one_bits(wide m) {
  int n = 0;
  for (; m != 0; m /= 2) n += static_cast<int>(m % 2);
  return n;
}
int width_of(wide m, int base) {
  int n = 0;
  for (; m != 0; m /= base) ++n;
  return n;
}

/// The rule of each function of integers, without regard to the type but for `is_signed`.
rule_value rule(int32_t number, wide x) {
  const wide magnitude = x < 0 ? -x : x;
  switch (number) {
    case 36:
      return exact_logarithm(x, 2);
    case 37:
      return exact_logarithm(x, 10);
    case 38:
    case 83:
      return {magnitude};
    case 39:
      return x < 0 ? undefined : rule_value{0};
    case 40:
    case 42:
    case 49:
    case 50:
    case 51:
    case 53:
      return {x};
    case 41:
    case 52:
    case 79:
      return {0};
    case 43:
      return {-x};
    case 44:
    case 84:
      return {x < 0 ? -1 : x > 0 ? 1 : 0};
    case 45:
      return {x > 0};
    case 46:
      return {x < 0};
    case 47:
      return {x <= 0};
    case 48:
    case 66:
      return {x >= 0};
    case 54:
      return {x % 2 == 0};
    case 55:
      return {x % 2 != 0};
    case 56:
    case 82:
      return {square(x)};
    case 61:
      return {one_bits(magnitude)};
    case 62:
      return {-x - 1};
    case 63:
      return {width_of(x < 0 ? -x - 1 : x, 2)};
    case 64: {
      if (x == 0) return undefined;
      int k = 0;
      while (x % power_of(10, k + 1) == 0) ++k;
      return {k};
    }
    case 65:
      return {width_of(magnitude, 10)};
    case 68:
      return additive(x, 0, 1);
    case 69:
      return additive(x, 2, 1);
    case 76:
      return factorial_below(x);
    case 78:
      return {x != 0};
    case 81:
      return {x > 0 ? x : wide{0}};
    case 85:
    case 86:
      return {x == 0};
    default:
      ADD_FAILURE() << "no rule for " << number;
      return undefined;
  }
}

template <class T> std::vector<T> arguments_of() {
  std::vector<T> xs;
  using limits = std::numeric_limits<T>;
  if constexpr (sizeof(T) <= 2) {
    for (wide x = limits::min(); x <= limits::max(); ++x) xs.push_back(static_cast<T>(x));
  } else {
    std::set<T> set;
    const auto around = [&](wide middle, int reach) {
      for (wide x = middle - reach; x <= middle + reach; ++x) {
        if (x >= limits::min() && x <= limits::max()) set.insert(static_cast<T>(x));
      }
    };
    around(0, 300);
    around(limits::min(), 20);
    around(limits::max(), 20);
    for (int k = 0; k < 64; ++k) {
      around(wide{1} << k, 2);
      around(-(wide{1} << k), 2);
    }
    for (int k = 0; k <= 20; ++k) {
      for (const int digit : {1, 3, -1, -3}) around(digit * power_of(10, k), 2);
    }
    for (const wide root : {wide{46340}, wide{65535}, wide{3037000499}, wide{4294967295}}) {
      around(root, 3);
      around(-root, 3);
    }
    std::mt19937_64 random(1729);
    for (int i = 0; i < 3000; ++i) set.insert(static_cast<T>(random() >> (i % 64)));
    xs.assign(set.begin(), set.end());
  }
  return xs;
}

/// One function on one type, by its scalar kernel under both settings of the integer flag, R being what it writes.
template <class T, class R> void check_function(const unary_table::row& row, const std::vector<T>& xs) {
  const auto kernel = MNumericArray_getUnaryScalarMachFunc(row.number, element_code<T>);
  ASSERT_NE(nullptr, kernel);
  const R untouched = static_cast<R>(0x5A);
  for (const T x : xs) {
    const rule_value exact = rule(row.number, x);
    const bool fits = !exact.undefined && exact.value >= std::numeric_limits<R>::min() &&
                      exact.value <= std::numeric_limits<R>::max();
    for (const bool check : {false, true}) {
      // The complement of an unsigned number is taken at its width: no overflow.
      const bool fails = row.integer_failure == 'a' ? !fits : row.integer_failure == 'c' && check && !fits;
      R y = untouched;
      const int32_t status = kernel(&y, &x, (check ? MACHFUNC_CHECK_INTEGER : 0) | MACHFUNC_CHECK_FP);
      ASSERT_EQ(fails ? 1 : 0, status) << +x << " check " << check;
      ASSERT_EQ(fails ? untouched : static_cast<R>(exact.value), y) << +x << " check " << check;
    }
  }
}

TEST(IntegerFunctions, EveryFunctionOnEveryType) {
  int ran = 0;
  for_all_element_types([&]<class T>() {
    if constexpr (is_integer_element<T>) {
      const std::vector<T> xs = arguments_of<T>();
      for (const auto& row : unary_table::rows) {
        if (row.on_integers == '-') continue;
        SCOPED_TRACE(testing::Message() << row.name << " on " << element_of<T>::name);
        if (row.on_integers == 'm') {
          check_function<T, mint>(row, xs);
        } else {
          check_function<T, T>(row, xs);
        }
        if (testing::Test::HasFatalFailure()) return;
        ++ran;
      }
    }
  });
  EXPECT_EQ(38 * 8, ran);
}

/// The limits as they are written down, for the three functions that read tables.
TEST(IntegerFunctions, LimitsOfTheTables) {
  struct limits {
    int32_t type;
    mint fibonacci_low, fibonacci_high, lucas_low, lucas_high, gamma_high;
  };
  const limits table[] = {
      {MNumericArrayTypeInteger8, -11, 11, -10, 10, 6},
      {MNumericArrayTypeUnsignedInteger8, 0, 13, 0, 11, 6},
      {MNumericArrayTypeInteger16, -23, 23, -21, 21, 8},
      {MNumericArrayTypeUnsignedInteger16, 0, 24, 0, 23, 9},
      {MNumericArrayTypeInteger32, -46, 46, -44, 44, 13},
      {MNumericArrayTypeUnsignedInteger32, 0, 47, 0, 46, 13},
      {MNumericArrayTypeInteger64, -92, 92, -90, 90, 21},
      {MNumericArrayTypeUnsignedInteger64, 0, 93, 0, 92, 21},
  };
  const auto passes = [](int32_t number, int32_t type, mint x) {
    mint y = 0;  // little-endian: the low bytes are the element
    return MNumericArray_getUnaryScalarMachFunc(number, type)(&y, &x, 0) == 0;
  };
  for (const limits& l : table) {
    const bool is_signed = l.type % 2 == 1;
    for (mint x = is_signed ? -100 : 0; x <= 100; ++x) {
      EXPECT_EQ(x >= l.fibonacci_low && x <= l.fibonacci_high, passes(MachFunc_fibonacci, l.type, x))
          << l.type << " " << x;
      EXPECT_EQ(x >= l.lucas_low && x <= l.lucas_high, passes(MachFunc_lucasl, l.type, x))
          << l.type << " " << x;
      EXPECT_EQ(x >= 1 && x <= l.gamma_high, passes(MachFunc_gamma, l.type, x)) << l.type << " " << x;
    }
  }
}

TEST(IntegerFunctions, ExportedTablesFollowTheRecurrence) {
  EXPECT_EQ(0u, fibonacci_table[0]);
  EXPECT_EQ(1u, fibonacci_table[1]);
  EXPECT_EQ(12200160415121876738u, fibonacci_table[93]);
  EXPECT_EQ(2u, lucasl_table[0]);
  EXPECT_EQ(1u, lucasl_table[1]);
  EXPECT_EQ(16860207025497407047u, lucasl_table[92]);
  for (int n = 2; n < 94; ++n) EXPECT_EQ(fibonacci_table[n - 1] + fibonacci_table[n - 2], fibonacci_table[n]);
  for (int n = 2; n < 93; ++n) EXPECT_EQ(lucasl_table[n - 1] + lucasl_table[n - 2], lucasl_table[n]);
}

// ---- Reals to integers.

template <class T> class RealToInteger : public testing::Test {};
using wide_reals = testing::Types<float, double>;
TYPED_TEST_SUITE(RealToInteger, wide_reals);

template <class T> std::vector<T> rounding_arguments() {
  std::vector<T> xs;
  using limits = std::numeric_limits<T>;
  const auto around = [&](double middle) {
    T x = static_cast<T>(middle);
    for (int i = 0; i < 4; ++i) x = std::nextafter(x, -limits::infinity());
    for (int i = 0; i < 9; ++i, x = std::nextafter(x, limits::infinity())) xs.push_back(x);
  };
  for (int halves = -20; halves <= 20; ++halves) around(halves / 2.0);
  for (const double x :
       {0x1p62, 0x1p63, 0x1p64, 0x1p52, 0x1p53, 0x1p23, 0x1p24, 1e19, 1e30, 0.3, 1234567.5}) {
    around(x);
    around(-x);
  }
  for (const T x :
       {limits::infinity(), limits::quiet_NaN(), limits::max(), limits::min(), limits::denorm_min()}) {
    xs.push_back(x);
    xs.push_back(-x);
  }
  return xs;
}

/// In the type's own numbers: is x beyond what converts?
template <class T> bool out_of_range(T x) {
  const T most = std::nextafter(static_cast<T>(0x1p63), T(0));
  return x < -static_cast<T>(0x1p63) || x > most;
}
mint saturated(double whole) {
  if (std::isnan(whole)) return 0;
  if (whole >= 0x1p63) return INT64_MAX;
  return whole < -0x1p63 ? INT64_MIN : static_cast<mint>(whole);
}

template <class T> void check_conversion(int32_t number, double (*rule_of)(double)) {
  const auto kernel = MNumericArray_getUnaryScalarMachFunc(number, element_code<T>);
  for (const T x : rounding_arguments<T>()) {
    const mint expected = saturated(std::isnan(x) ? NAN : rule_of(x));
    mint y = -77;
    ASSERT_EQ(0, kernel(&y, &x, MACHFUNC_CHECK_FP)) << number << " " << x;
    ASSERT_EQ(expected, y) << number << " " << std::hexfloat << x;
    y = -77;
    ASSERT_EQ(out_of_range(x) ? 1 : 0, kernel(&y, &x, MACHFUNC_CHECK_INTEGER))
        << number << " " << std::hexfloat << x;
    ASSERT_EQ(out_of_range(x) ? -77 : expected, y) << number << " " << std::hexfloat << x;
  }
}

TYPED_TEST(RealToInteger, RoundsByTheRuleAndSaturates) {
  check_conversion<TypeParam>(MachFunc_round, exact_functions::nearest_even);
  check_conversion<TypeParam>(MachFunc_floor, [](double x) { return std::floor(x); });
  check_conversion<TypeParam>(MachFunc_ceiling, [](double x) { return std::ceil(x); });
  check_conversion<TypeParam>(MachFunc_intpart, [](double x) { return std::trunc(x); });
}

TYPED_TEST(RealToInteger, RoundFollowsTheModeAndTheOthersDoNot) {
  struct mode {
    int code;
    double (*rule_of)(double);
  };
  for (const mode m : {mode{FE_DOWNWARD, [](double x) { return std::floor(x); }},
                       mode{FE_UPWARD, [](double x) { return std::ceil(x); }},
                       mode{FE_TOWARDZERO, [](double x) { return std::trunc(x); }}}) {
    ASSERT_EQ(0, std::fesetround(m.code));
    check_conversion<TypeParam>(MachFunc_round, m.rule_of);
    check_conversion<TypeParam>(MachFunc_floor, [](double x) { return std::floor(x); });
    check_conversion<TypeParam>(MachFunc_ceiling, [](double x) { return std::ceil(x); });
    std::fesetround(FE_TONEAREST);
  }
}

/// The functions with exact values on the two wide types, arguments of every kind.
TYPED_TEST(RealToInteger, ExactFunctions) {
  using T = TypeParam;
  for (const auto& e : exact_functions::entries) {
    if (e.gives_integer && e.number_of >= 49 && e.number_of <= 53) continue;  // above
    const auto kernel = MNumericArray_getUnaryScalarMachFunc(e.number_of, element_code<T>);
    for (const T x : rounding_arguments<T>()) {
      const double exact = std::isnan(x) ? e.of_nan : e.rule(x);
      if (e.gives_integer) {
        mint y = -77;
        ASSERT_EQ(0, kernel(&y, &x, MACHFUNC_CHECK_INTEGER));
        ASSERT_EQ(static_cast<mint>(exact), y) << e.number_of << " of " << x;
      } else {
        T y{};
        ASSERT_EQ(0, kernel(&y, &x, MACHFUNC_CHECK_FP));
        const T expected = static_cast<T>(exact);
        ASSERT_TRUE(std::isnan(expected) ? std::isnan(y)
                                         : expected == y && std::signbit(expected) == std::signbit(y))
            << e.number_of << " of " << x << " gave " << y;
      }
    }
  }
}

/// arg fails below zero and for a NaN whatever the flags; im looks at nothing.
TYPED_TEST(RealToInteger, ArgumentAndImaginaryPart) {
  using T = TypeParam;
  for (const T x : rounding_arguments<T>()) {
    mint y = -77;
    const bool fails = !(x >= 0);
    EXPECT_EQ(fails ? 1 : 0, MNumericArray_getUnaryScalarMachFunc(MachFunc_arg, element_code<T>)(&y, &x, 0))
        << x;
    EXPECT_EQ(fails ? -77 : 0, y);
    EXPECT_EQ(0, MNumericArray_getUnaryScalarMachFunc(MachFunc_im, element_code<T>)(&y, &x, ~0u));
    EXPECT_EQ(0, y);
  }
}

TEST(RealDefinition, ValuesAtTheEdges) {
  const auto value = [](auto entry, mreal x, uint32_t flags = 0) {
    mreal y = -77;
    return entry(&y, x, flags) == 0 ? y : INFINITY;
  };
  EXPECT_EQ(1.5707963267948966, value(s_machfunc_d_acot, 0.0));
  EXPECT_EQ(1.5707963267948966, value(s_machfunc_d_acot, -0.0));
  EXPECT_EQ(1.0, value(s_machfunc_d_sinc, 0.0, MACHFUNC_CHECK_FP));
  EXPECT_EQ(0.0, value(s_machfunc_d_csch, 800.0, MACHFUNC_CHECK_FP));
  EXPECT_EQ(0.0, value(s_machfunc_d_sech, -800.0, MACHFUNC_CHECK_FP));
  EXPECT_EQ(0.0, value(s_machfunc_d_exp, -800.0, MACHFUNC_CHECK_FP));
  mreal y = -77;
  EXPECT_EQ(1, s_machfunc_d_csch(&y, 0.0, MACHFUNC_CHECK_FP));
  EXPECT_EQ(1, s_machfunc_d_exp(&y, 710.0, MACHFUNC_CHECK_FP));
  EXPECT_EQ(1, s_machfunc_d_loggamma(&y, 0.0, MACHFUNC_CHECK_FP));
  EXPECT_EQ(-77, y);
  std::feclearexcept(FE_ALL_EXCEPT);
  EXPECT_EQ(0, s_machfunc_d_loggamma(&y, 0.0, 0));
  EXPECT_TRUE(std::fetestexcept(FE_INVALID));
  EXPECT_EQ(0x7FF4000000000000u, std::bit_cast<uint64_t>(y));
  EXPECT_EQ(0, s_machfunc_d_sin(&y, INFINITY, MACHFUNC_CHECK_FP));
  EXPECT_TRUE(std::isnan(y));
}

}  // namespace
