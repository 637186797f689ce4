// Faults that these tests are meant to catch:
//  - a half that is not widened exactly, or a NaN that loses its payload, its sign or its signal on the way;
//  - rounding twice (double to float to half), rounding by the thread's mode, a tie or a carry that goes the
//  wrong way, a
//    wrong border between subnormal and normal or between 65504 and infinity;
//  - the hardware's road and the portable one giving different bits or different exceptions;
//  - sums, products, quotients, roots and functions that are not correctly rounded, judged by MPFR with
//  eleven bits;
//  - a missing or a stray exception, errno set for an inexact result, a flag word that forgets or that
//  threads share.
#include "Includes/real16.h"

#include <gtest/gtest.h>
#include <mpfr.h>

#include <cfenv>
#include <cmath>
#include <random>
#include <thread>
#include <vector>

namespace {

using vlm::real16;

constexpr uint32_t all_halves = 0x10000;

real16 half(uint32_t bits) { return {static_cast<uint16_t>(bits)}; }

/// The value of a half by the definition of the format. Not for NaNs.
double value_of(real16 x) {
  const int exponent = x.bits >> 10 & 0x1F;
  const int fraction = x.bits & 0x3FF;
  const double sign = (x.bits & 0x8000) ? -1.0 : 1.0;
  if (exponent == 31) return sign * INFINITY;
  return sign * (exponent == 0 ? std::ldexp(fraction, -24) : std::ldexp(1024 + fraction, exponent - 25));
}

/// What an operation signalled: the flag word, the environment's exceptions in the same bits, and errno.
struct Signals {
  uint32_t word = 0, environment = 0;
  int error = 0;
  bool operator==(const Signals&) const = default;
};
std::ostream& operator<<(std::ostream& out, const Signals& s) {
  return out << "word " << s.word << " environment " << s.environment << " errno " << s.error;
}

uint32_t environment_bits() {
  const int raised = std::fetestexcept(FE_ALL_EXCEPT);
  return (raised & FE_INVALID ? 1u : 0u) | (raised & FE_DIVBYZERO ? 2u : 0u) |
         (raised & FE_OVERFLOW ? 4u : 0u) | (raised & FE_UNDERFLOW ? 8u : 0u) |
         (raised & FE_INEXACT ? 16u : 0u);
}

/// Runs the action with everything clear and tells what it signalled.
template <class Action> Signals signals_of(Action&& action) {
  std::feclearexcept(FE_ALL_EXCEPT);
  vlm::clear_real16_flag_word();
  errno = 0;
  action();
  const Signals result{vlm::real16_flag_word(), environment_bits(), errno};
  std::feclearexcept(FE_ALL_EXCEPT);
  return result;
}

/// The same signals in all three places.
Signals expected(uint32_t word) { return {word, word, (word & 1) ? EDOM : (word & 14) ? ERANGE : 0}; }

/// MPFR numbers in the range of binary16 with gradual underflow.
class Oracle {
 public:
  Oracle() {
    mpfr_init2(a_, 64);
    mpfr_init2(b_, 64);
    mpfr_init2(half_, 11);
    mpfr_init2(free_, 11);
    emin_ = mpfr_get_emin();
    emax_ = mpfr_get_emax();
  }
  ~Oracle() {
    mpfr_clears(a_, b_, half_, free_, nullptr);
    mpfr_free_cache();
  }
  Oracle(const Oracle&) = delete;
  Oracle& operator=(const Oracle&) = delete;

  struct Answer {
    double value;
    uint32_t signals;
  };

  /// The half and the signals of f(target, x, y), computed with eleven bits; f returns MPFR's ternary value.
  template <class Function> Answer round(Function&& f, double x, double y = 0.0) {
    mpfr_set_d(a_, x, MPFR_RNDN);
    mpfr_set_d(b_, y, MPFR_RNDN);
    f(free_, a_, b_);  // with an unbounded exponent: tells tininess after rounding
    const bool tiny = mpfr_regular_p(free_) && mpfr_get_exp(free_) <= -14;
    mpfr_set_emin(-23);
    mpfr_set_emax(16);
    int ternary = f(half_, a_, b_);
    ternary = mpfr_check_range(half_, ternary, MPFR_RNDN);
    ternary = mpfr_subnormalize(half_, ternary, MPFR_RNDN);
    const double value = mpfr_get_d(half_, MPFR_RNDN);
    const bool overflow = mpfr_inf_p(half_) && ternary != 0;
    mpfr_set_emin(emin_);
    mpfr_set_emax(emax_);
    uint32_t signals = 0;
    if (ternary != 0) signals |= vlm::real16_inexact;
    if (overflow) signals |= vlm::real16_overflow;
    if (ternary != 0 && tiny) signals |= vlm::real16_underflow;
    return {value, signals};
  }

 private:
  mpfr_t a_, b_, half_, free_;
  mpfr_exp_t emin_, emax_;
};

/// Sizes equal and signs equal; NaN equals NaN.
bool same(double x, double y) {
  return (std::isnan(x) && std::isnan(y)) || (x == y && std::signbit(x) == std::signbit(y));
}

constexpr auto identity = [](mpfr_ptr r, mpfr_srcptr x, mpfr_srcptr) { return mpfr_set(r, x, MPFR_RNDN); };

TEST(Real16Widening, EveryHalfHasItsExactValueAndOnlySignallingNansSignal) {
  for (uint32_t bits = 0; bits < all_halves; ++bits) {
    const real16 x = half(bits);
    double d = 0.0;
    float f = 0.0f;
    const bool nan = (bits & 0x7FFF) > 0x7C00, signalling = nan && !(bits & 0x200);
    const Signals wanted = expected(signalling ? vlm::real16_invalid : 0);
    ASSERT_EQ(signals_of([&] { d = vlm::to_double(x); }), wanted) << std::hex << bits;
    ASSERT_EQ(signals_of([&] { f = vlm::to_float(x); }), wanted) << std::hex << bits;
    if (nan) {
      const uint64_t sign = bits >> 15, payload = (bits & 0x3FF) | 0x200;
      ASSERT_EQ(std::bit_cast<uint64_t>(d), sign << 63 | uint64_t{0x7FF} << 52 | payload << 42)
          << std::hex << bits;
      ASSERT_EQ(std::bit_cast<uint32_t>(f), sign << 31 | uint64_t{0xFF} << 23 | payload << 13)
          << std::hex << bits;
    } else {
      ASSERT_TRUE(same(d, value_of(x)) && same(f, value_of(x))) << std::hex << bits;
    }
    ASSERT_EQ(vlm::is_nan(x), nan);
    ASSERT_EQ(vlm::is_signalling(x), signalling);
    ASSERT_EQ(vlm::is_infinite(x), std::isinf(d));
    ASSERT_EQ(vlm::is_finite(x), std::isfinite(d));
    ASSERT_EQ(vlm::is_zero(x), d == 0.0);
    ASSERT_EQ(vlm::is_subnormal(x), d != 0.0 && std::fabs(d) < 0x1p-14);
    ASSERT_EQ(vlm::sign_bit(x), std::signbit(d));
  }
}

void expect_rounding(Oracle& oracle, double x) {
  const auto wanted = oracle.round(identity, x);
  real16 got{};
  const Signals signals = signals_of([&] { got = vlm::to_real16(x); });
  ASSERT_TRUE(same(value_of(got), wanted.value))
      << std::hexfloat << x << " " << value_of(got) << " " << wanted.value;
  ASSERT_EQ(signals, expected(wanted.signals)) << std::hexfloat << x;
  const float narrow = static_cast<float>(x);
  if (narrow == x) {
    const Signals from_float = signals_of([&] { got = vlm::to_real16(narrow); });
    ASSERT_TRUE(same(value_of(got), wanted.value)) << std::hexfloat << x;
    ASSERT_EQ(from_float, expected(wanted.signals)) << std::hexfloat << x;
  }
}

// Around every half and around every midpoint of neighbours, one ulp of double and one of float to either
// side.
TEST(Real16Rounding, HalvesMidpointsAndTheirNeighbours) {
  Oracle oracle;
  for (uint32_t bits = 0; bits <= 0x7C00; ++bits) {
    const double below = value_of(half(bits));
    const double above = bits < 0x7BFF ? value_of(half(bits + 1)) : 65536.0;
    for (const double centre : {below, (below + above) / 2}) {
      for (const double sign : {1.0, -1.0}) {
        if (std::isinf(centre)) continue;
        const double up = std::nextafter(centre, INFINITY), down = std::nextafter(centre, -INFINITY);
        const float narrow = static_cast<float>(centre);
        for (const double x : {centre, up, down, static_cast<double>(std::nextafter(narrow, INFINITY)),
                               static_cast<double>(std::nextafter(narrow, -INFINITY))})
          ASSERT_NO_FATAL_FAILURE(expect_rounding(oracle, sign * x));
      }
    }
  }
}

TEST(Real16Rounding, DoubleRoundingBordersAndExtremes) {
  EXPECT_EQ(vlm::to_real16(1 + 0x1p-11 + 0x1p-30).bits, 0x3C01);            // by way of float: a tie, 0x3C00
  EXPECT_EQ(vlm::to_real16(1 + 0x1p-10 + 0x1p-11 - 0x1p-30).bits, 0x3C01);  // by way of float: a tie, 0x3C02
  EXPECT_EQ(vlm::to_real16(65519.99).bits, 0x7BFF);
  EXPECT_EQ(vlm::to_real16(65520.0).bits, 0x7C00);
  EXPECT_EQ(vlm::to_real16(0x1p-25).bits, 0x0000);
  EXPECT_EQ(vlm::to_real16(-0x1.0000000000001p-25).bits, 0x8001);
  Oracle oracle;
  for (const double x :
       {0.0, 0x1p-14 - 0x1p-26, 0x1.ffep-15, 0x1.ffdfffffffffp-15, 0x1.ffcp-15, 0x1p-26, 5e-324,
        2.2250738585072014e-308, 1e-300, 1e300, 1.7976931348623157e308, 65504.0, 65519.999999999993, 65520.0})
    for (const double sign : {1.0, -1.0}) ASSERT_NO_FATAL_FAILURE(expect_rounding(oracle, sign * x));
  EXPECT_EQ(
      signals_of([] { EXPECT_EQ(vlm::to_real16(-std::numeric_limits<double>::infinity()).bits, 0xFC00); }),
      expected(0));
}

TEST(Real16Rounding, RandomNumbersOfEveryScale) {
  Oracle oracle;
  std::mt19937_64 generator(20240611);
  for (int i = 0; i < 200000; ++i) {
    const uint64_t draw = generator();
    const int exponent = static_cast<int>(draw >> 52 & 63) - 40;
    const double x = std::ldexp(1.0 + std::ldexp(static_cast<double>(draw & 0xFFFFFFFFFFFFF), -52), exponent);
    ASSERT_NO_FATAL_FAILURE(expect_rounding(oracle, (draw >> 63) ? -x : x));
    ASSERT_NO_FATAL_FAILURE(expect_rounding(oracle, static_cast<float>(x)));
  }
}

TEST(Real16Rounding, NanPayloadsKeepTheirTopBits) {
  for (const uint64_t sign : {0, 1})
    for (uint64_t top = 0; top < 1024; ++top) {
      const uint64_t low = 0x155;  // never an infinity, and lost
      const double d = std::bit_cast<double>(sign << 63 | uint64_t{0x7FF} << 52 | top << 42 | low);
      const float f =
          std::bit_cast<float>(static_cast<uint32_t>(sign << 31 | uint64_t{0xFF} << 23 | top << 13 | low));
      const auto wanted = static_cast<uint16_t>(sign << 15 | 0x7E00 | top);
      const Signals signals = expected(top & 0x200 ? 0 : vlm::real16_invalid);
      real16 got{};
      ASSERT_EQ(signals_of([&] { got = vlm::to_real16(d); }), signals) << top;
      ASSERT_EQ(got.bits, wanted);
      ASSERT_EQ(signals_of([&] { got = vlm::to_real16(f); }), signals) << top;
      ASSERT_EQ(got.bits, wanted);
    }
}

// The halves, their midpoints and the floats beside both, in every rounding mode: the processor's
// instruction, where there is one, against the portable arithmetic.
TEST(Real16Rounding, FloatRoadsAgreeInEveryRoundingMode) {
  const int before = std::fegetround();
  const auto expect_agreement = [before](uint32_t bits, int mode) {
    const float x = std::bit_cast<float>(bits);
    const auto portable = vlm::real16_format::round(x);
    real16 got{};
    std::fesetround(mode);
    const Signals signals = signals_of([&] { got = vlm::to_real16(x); });
    std::fesetround(before);
    ASSERT_EQ(got.bits, portable.value.bits) << std::hex << bits;
    ASSERT_EQ(signals, expected(portable.signals)) << std::hex << bits;
  };
  const uint32_t first = std::bit_cast<uint32_t>(0x1p-27f), last = std::bit_cast<uint32_t>(0x1p17f);
  for (const int mode : {FE_TONEAREST, FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
    for (const uint32_t sign : {0u, 0x80000000u}) {
      for (uint32_t bits = first; bits <= last; bits += 0x1000) {
        for (const uint32_t near : {bits - 1, bits, bits + 1})
          ASSERT_NO_FATAL_FAILURE(expect_agreement(sign | near, mode));
      }
      for (const uint32_t bits :
           {0u, 1u, 0x7FFFFFu, 0x800000u, 0x7F7FFFFFu, 0x7F800000u, 0x7F800001u, 0x7FC00001u, 0x7FFFFFFFu})
        ASSERT_NO_FATAL_FAILURE(expect_agreement(sign | bits, mode));
    }
  }
}

template <class Operation, class Function>
void expect_operation(Oracle& oracle, Operation&& operation, Function&& f, real16 x, real16 y) {
  const auto wanted = oracle.round(f, value_of(x), value_of(y));
  real16 got{};
  const Signals signals = signals_of([&] { got = operation(x, y); });
  if (std::isnan(wanted.value)) {
    ASSERT_EQ(got.bits, vlm::real16_quiet_nan.bits) << std::hex << x.bits << " " << y.bits;
    ASSERT_EQ(signals, expected(vlm::real16_invalid)) << std::hex << x.bits << " " << y.bits;
    return;
  }
  ASSERT_TRUE(same(value_of(got), wanted.value))
      << std::hex << x.bits << " " << y.bits << " " << got.bits << " " << std::hexfloat << wanted.value;
  ASSERT_EQ(signals, expected(wanted.signals)) << std::hex << x.bits << " " << y.bits;
}

TEST(Real16Arithmetic, RandomOperandsAgreeWithMpfr) {
  Oracle oracle;
  std::mt19937_64 generator(7);
  const auto plus = [](mpfr_ptr r, mpfr_srcptr x, mpfr_srcptr y) { return mpfr_add(r, x, y, MPFR_RNDN); };
  const auto minus = [](mpfr_ptr r, mpfr_srcptr x, mpfr_srcptr y) { return mpfr_sub(r, x, y, MPFR_RNDN); };
  const auto times = [](mpfr_ptr r, mpfr_srcptr x, mpfr_srcptr y) { return mpfr_mul(r, x, y, MPFR_RNDN); };
  const auto over = [](mpfr_ptr r, mpfr_srcptr x, mpfr_srcptr y) { return mpfr_div(r, x, y, MPFR_RNDN); };
  for (int i = 0; i < 400000; ++i) {
    const uint64_t draw = generator();
    const real16 x = half(draw & 0xFFFF);
    // Every fourth pair is close in size, so that sums cancel and quotients are near 1.
    const real16 y = half(draw >> 62 == 0 ? (x.bits ^ (draw >> 20 & 0x8007)) : (draw >> 16 & 0xFFFF));
    if (vlm::is_nan(x) || vlm::is_nan(y)) continue;
    ASSERT_NO_FATAL_FAILURE(expect_operation(oracle, vlm::add, plus, x, y));
    ASSERT_NO_FATAL_FAILURE(expect_operation(oracle, vlm::subtract, minus, x, y));
    ASSERT_NO_FATAL_FAILURE(expect_operation(oracle, vlm::multiply, times, x, y));
    if (!vlm::is_zero(y) || vlm::is_zero(x) || vlm::is_infinite(x)) {
      ASSERT_NO_FATAL_FAILURE(expect_operation(oracle, vlm::divide, over, x, y));
    }
  }
}

TEST(Real16Arithmetic, EveryRootAgreesWithMpfr) {
  Oracle oracle;
  const auto root = [](real16 x, real16) { return vlm::square_root(x); };
  const auto mpfr_root = [](mpfr_ptr r, mpfr_srcptr x, mpfr_srcptr) { return mpfr_sqrt(r, x, MPFR_RNDN); };
  for (uint32_t bits = 0; bits < all_halves; ++bits)
    if (!vlm::is_nan(half(bits))) {
      ASSERT_NO_FATAL_FAILURE(expect_operation(oracle, root, mpfr_root, half(bits), half(0)));
    }
}

TEST(Real16Arithmetic, RoundingModeOfTheThreadDoesNotMatter) {
  const int before = std::fegetround();
  std::mt19937 generator(11);
  for (int i = 0; i < 20000; ++i) {
    const uint32_t draw = generator();
    const real16 x = half(draw & 0xFFFF), y = half(draw >> 16);
    const auto all = [x, y] {
      const auto exp = [](double v) { return std::exp(v); };
      return std::vector<uint16_t>{vlm::add(x, y).bits,
                                   vlm::subtract(x, x).bits,
                                   vlm::multiply(x, y).bits,
                                   vlm::divide(x, y).bits,
                                   vlm::square_root(x).bits,
                                   vlm::evaluate(exp, x).bits,
                                   vlm::to_real16(vlm::to_double(x) / 3.0).bits};
    };
    // A third of x is never near a midpoint, so the mode that moves the quotient in double does not reach the
    // half.
    const auto nearest = all();
    for (const int mode : {FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
      std::fesetround(mode);
      const auto other = all();
      std::fesetround(before);
      ASSERT_EQ(nearest, other) << std::hex << draw << " mode " << mode;
    }
  }
}

TEST(Real16Arithmetic, NansPassQuietlyAndSignallingOnesSignal) {
  const real16 quiet = half(0xFE2A), signalling = half(0x7C15), one = half(0x3C00);
  using Binary = real16 (*)(real16, real16);
  for (const Binary operation :
       {Binary{vlm::add}, Binary{vlm::subtract}, Binary{vlm::multiply}, Binary{vlm::divide}}) {
    real16 got{};
    EXPECT_EQ(signals_of([&] { got = operation(quiet, one); }), expected(0));
    EXPECT_EQ(got.bits, quiet.bits);
    EXPECT_EQ(signals_of([&] { got = operation(one, quiet); }), expected(0));
    EXPECT_EQ(got.bits, quiet.bits);
    EXPECT_EQ(signals_of([&] { got = operation(signalling, one); }), expected(vlm::real16_invalid));
    EXPECT_EQ(got.bits, 0x7E15);
    EXPECT_EQ(signals_of([&] { got = operation(quiet, half(0)); }), expected(0));
    EXPECT_EQ(signals_of([&] { got = operation(quiet, signalling); }), expected(vlm::real16_invalid));
    EXPECT_EQ(got.bits, quiet.bits) << "of two NaNs the first";
  }
  EXPECT_EQ(signals_of([&] { EXPECT_EQ(vlm::square_root(quiet).bits, quiet.bits); }), expected(0));
}

TEST(Real16Arithmetic, DivisionByZeroAndInvalidOperations) {
  const real16 zero = half(0), minus_zero = half(0x8000), one = half(0x3C00), infinity = vlm::real16_infinity;
  const Signals divided = expected(vlm::real16_divide_by_zero), invalid = expected(vlm::real16_invalid);
  EXPECT_EQ(signals_of([&] { EXPECT_EQ(vlm::divide(one, zero).bits, 0x7C00); }), divided);
  EXPECT_EQ(signals_of([&] { EXPECT_EQ(vlm::divide(one, minus_zero).bits, 0xFC00); }), divided);
  EXPECT_EQ(signals_of([&] { EXPECT_EQ(vlm::divide(infinity, zero).bits, 0x7C00); }), expected(0));
  EXPECT_EQ(signals_of([&] { EXPECT_EQ(vlm::divide(zero, minus_zero).bits, 0x7E00); }), invalid);
  EXPECT_EQ(signals_of([&] { EXPECT_EQ(vlm::subtract(infinity, infinity).bits, 0x7E00); }), invalid);
  EXPECT_EQ(signals_of([&] { EXPECT_EQ(vlm::multiply(zero, infinity).bits, 0x7E00); }), invalid);
  EXPECT_EQ(signals_of([&] { EXPECT_EQ(vlm::square_root(half(0xBC00)).bits, 0x7E00); }), invalid);
  EXPECT_EQ(signals_of([&] { EXPECT_EQ(vlm::square_root(minus_zero).bits, 0x8000); }), expected(0));
}

TEST(Real16Signals, WordEnvironmentAndErrnoOfEverySet) {
  for (uint32_t set = 0; set < 32; ++set)
    EXPECT_EQ(signals_of([set] { vlm::signal_real16(set); }), expected(set)) << set;
  errno = EINTR;
  vlm::signal_real16(vlm::real16_inexact);
  EXPECT_EQ(errno, EINTR) << "an inexact result leaves errno";
}

TEST(Real16Signals, FlagWordIsStickyAndBelongsToTheThread) {
  vlm::clear_real16_flag_word();
  vlm::to_real16(1e9);
  vlm::to_real16(1e-9);
  static_cast<void>(vlm::divide(half(0x3C00), half(0)));
  static_cast<void>(vlm::add(half(0x3C00), half(0x3C00)));  // exact: takes nothing away
  EXPECT_EQ(vlm::real16_flag_word(), 2u | 4u | 8u | 16u);
  uint32_t fresh = ~0u, after = 0;
  std::thread other([&] {
    fresh = vlm::real16_flag_word();
    vlm::signal_real16(vlm::real16_invalid);
    after = vlm::real16_flag_word();
  });
  other.join();
  EXPECT_EQ(fresh, 0u);
  EXPECT_EQ(after, 1u);
  EXPECT_EQ(vlm::real16_flag_word(), 2u | 4u | 8u | 16u);
}

TEST(Real16Functions, CorrectlyRoundedOverEveryHalf) {
  Oracle oracle;
  struct Case {
    const char* name;
    double (*f)(double);
    int (*oracle)(mpfr_ptr, mpfr_srcptr, mpfr_rnd_t);
  };
  const Case cases[] = {{"exp", std::exp, mpfr_exp},
                        {"sin", std::sin, mpfr_sin},
                        {"log1p", std::log1p, mpfr_log1p},
                        {"cbrt", std::cbrt, mpfr_cbrt},
                        {"expm1", std::expm1, mpfr_expm1}};
  for (const Case& c : cases) {
    for (uint32_t bits = 0; bits < all_halves; ++bits) {
      const real16 x = half(bits);
      if (vlm::is_nan(x) || vlm::is_infinite(x)) continue;
      const double v = value_of(x);
      if (c.f == static_cast<double (*)(double)>(std::log1p) && v <= -1.0) continue;
      const auto wanted =
          oracle.round([&](mpfr_ptr r, mpfr_srcptr a, mpfr_srcptr) { return c.oracle(r, a, MPFR_RNDN); }, v);
      real16 got{};
      const Signals signals = signals_of([&] { got = vlm::evaluate(c.f, x); });
      ASSERT_TRUE(same(value_of(got), wanted.value)) << c.name << " " << std::hex << bits << " " << got.bits;
      // The C library may call an exact result inexact; nothing else may differ.
      ASSERT_EQ(signals.word | 16u, wanted.signals | 16u) << c.name << " " << std::hex << bits;
      ASSERT_GE(signals.word & 16u, wanted.signals & 16u) << c.name << " " << std::hex << bits;
      ASSERT_EQ(signals, expected(signals.word)) << c.name << " " << std::hex << bits;
    }
  }
}

TEST(Real16Functions, OnlyTheRightSignalsComeOut) {
  const auto run = [](auto f, uint32_t bits, uint16_t wanted, uint32_t signals) {
    const int caller_mode = std::fegetround();
    EXPECT_EQ(signals_of([&] { EXPECT_EQ(vlm::evaluate(f, half(bits)).bits, wanted) << std::hex << bits; }),
              expected(signals))
        << std::hex << bits;
    EXPECT_EQ(std::fegetround(), caller_mode);
  };
  const auto exp = [](double x) { return std::exp(x); };
  const auto log = [](double x) { return std::log(x); };
  const auto csch = [](double x) { return 1.0 / std::sinh(x); };
  constexpr uint32_t infinity = 0x7C00, minus_infinity = 0xFC00, quiet = 0x7E2A, signalling = 0x7C2A;
  run(exp, infinity, 0x7C00, 0);
  run(exp, minus_infinity, 0x0000, 0);
  run(exp, quiet, 0x7E2A, 0);
  run(exp, signalling, 0x7E2A, vlm::real16_invalid);
  run(exp, 0x4A00, 0x7C00, vlm::real16_overflow | vlm::real16_inexact);   // exp(12): beyond halves only
  run(exp, 0x7BFF, 0x7C00, vlm::real16_overflow | vlm::real16_inexact);   // exp(65504): beyond doubles
  run(exp, 0xFBFF, 0x0000, vlm::real16_underflow | vlm::real16_inexact);  // zero in double already
  run(exp, 0xCD00, 0x0000, vlm::real16_underflow | vlm::real16_inexact);  // exp(-20): zero only as a half
  run(log, 0x0000, 0xFC00, vlm::real16_divide_by_zero);
  run(log, 0x3C00, 0x0000, 0);
  run(csch, 0x0000, 0x7C00, vlm::real16_divide_by_zero);
  run(csch, 0x7000, 0x0000,
      vlm::real16_underflow | vlm::real16_inexact);  // sinh(8192) overflows on the way to 0
  run(csch, infinity, 0x0000, 0);
  const real16 minus_one = half(0xBC00);
  EXPECT_EQ(signals_of([&] { EXPECT_TRUE(vlm::is_nan(vlm::evaluate(log, minus_one))); }),
            expected(vlm::real16_invalid));
  const auto sin = [](double x) { return std::sin(x); };
  EXPECT_EQ(signals_of([&] { EXPECT_TRUE(vlm::is_nan(vlm::evaluate(sin, half(infinity)))); }),
            expected(vlm::real16_invalid));
  const auto hypot = [](double x, double y) { return std::hypot(x, y); };
  EXPECT_EQ(
      signals_of([&] { EXPECT_EQ(vlm::evaluate(hypot, half(0x4200), half(0x4400)).bits, 0x4500); }).word &
          ~16u,
      0u);
  const auto atan_over = [](double x) { return std::asin(1.0 / x); };
  EXPECT_EQ(signals_of([&] { static_cast<void>(vlm::evaluate(atan_over, half(0))); }),
            expected(vlm::real16_invalid | vlm::real16_divide_by_zero));
}

// What a caller has raised already, in the flag word, in the environment or in both, neither hides a signal nor makes one.
TEST(Real16Functions, VerdictDoesNotDependOnEarlierSignals) {
  const auto exp = [](double x) { return std::exp(x); };
  const auto log = [](double x) { return std::log(x); };
  const auto sin = [](double x) { return std::sin(x); };
  const auto csch = [](double x) { return 1.0 / std::sinh(x); };
  const auto call = [&](int which, real16 x) {
    return which == 0   ? vlm::evaluate(exp, x)
           : which == 1 ? vlm::evaluate(log, x)
           : which == 2 ? vlm::evaluate(sin, x)
                        : vlm::evaluate(csch, x);
  };
  for (const uint32_t bits : {0x0000u, 0x8000u, 0x0001u, 0x3C00u, 0xBC00u, 0x4A00u, 0x7000u, 0x7BFFu, 0xFBFFu,
                              0xCD00u, 0x7C00u, 0xFC00u, 0x7E2Au, 0x7C2Au}) {
    const real16 x = half(bits);
    for (int which = 0; which < 4; ++which) {
      real16 wanted{};
      const Signals signals = signals_of([&] { wanted = call(which, x); });
      for (uint32_t word = 0; word < 32; ++word) {
        for (uint32_t environment = 0; environment < 32; ++environment) {
          std::feclearexcept(FE_ALL_EXCEPT);
          vlm::clear_real16_flag_word();
          vlm::signal_real16(word);
          std::feclearexcept(FE_ALL_EXCEPT);
          std::feraiseexcept((environment & 1 ? FE_INVALID : 0) | (environment & 2 ? FE_DIVBYZERO : 0) |
                             (environment & 4 ? FE_OVERFLOW : 0) | (environment & 8 ? FE_UNDERFLOW : 0) |
                             (environment & 16 ? FE_INEXACT : 0));
          const uint32_t before = environment_bits();  // overflow may bring inexact along
          errno = 0;
          const real16 got = call(which, x);
          const int error = errno;
          ASSERT_EQ(got.bits, wanted.bits) << std::hex << bits;
          ASSERT_EQ(vlm::real16_flag_word(), word | signals.word) << std::hex << bits << " " << word;
          ASSERT_EQ(environment_bits(), before | signals.environment)
              << std::hex << bits << " " << environment;
          ASSERT_EQ(error, signals.error) << std::hex << bits << " " << word << " " << environment;
        }
      }
    }
  }
  std::feclearexcept(FE_ALL_EXCEPT);
}

TEST(Real16Functions, ExceptionsRaisedBeforeStayRaised) {
  std::feclearexcept(FE_ALL_EXCEPT);
  std::feraiseexcept(FE_DIVBYZERO);
  errno = EINTR;
  EXPECT_EQ(vlm::evaluate([](double x) { return std::fabs(x); }, half(0xBC00)).bits, 0x3C00);
  EXPECT_EQ(std::fetestexcept(FE_ALL_EXCEPT), FE_DIVBYZERO);
  EXPECT_EQ(errno, EINTR);
  std::feclearexcept(FE_ALL_EXCEPT);
}

TEST(Real16Comparison, OrderOfRandomPairsAndNansSignal) {
  std::mt19937 generator(3);
  for (int i = 0; i < 200000; ++i) {
    const uint32_t draw = generator();
    const real16 x = half(draw & 0xFFFF),
                 y = half((draw & 0x10000) ? (draw & 0x8000) ^ 0x8000 ^ (draw >> 17 & 1) : draw >> 16);
    if (vlm::is_nan(x) || vlm::is_nan(y)) {
      const Signals invalid = expected(vlm::real16_invalid);
      ASSERT_EQ(signals_of([&] { EXPECT_FALSE(vlm::equal(x, y)); }), invalid);
      ASSERT_EQ(signals_of([&] { EXPECT_FALSE(vlm::less(x, y)); }), invalid);
      ASSERT_EQ(signals_of([&] { EXPECT_FALSE(vlm::less_equal(x, y)); }), invalid);
      continue;
    }
    ASSERT_EQ(signals_of([&] {
                EXPECT_EQ(vlm::equal(x, y), value_of(x) == value_of(y));
                EXPECT_EQ(vlm::less(x, y), value_of(x) < value_of(y));
                EXPECT_EQ(vlm::less_equal(x, y), value_of(x) <= value_of(y));
              }),
              expected(0))
        << std::hex << x.bits << " " << y.bits;
  }
  EXPECT_TRUE(vlm::equal(half(0), half(0x8000)));
  EXPECT_FALSE(vlm::less(half(0x8000), half(0)));
}

// The expected whole numbers come from integer division of the value in units of 2^-24.
TEST(Real16WholeNumbers, EveryFiniteHalf) {
  const int before = std::fegetround();
  for (uint32_t bits = 0; bits < all_halves; ++bits) {
    const real16 x = half(bits);
    if (!vlm::is_finite(x)) continue;
    const auto units = static_cast<int64_t>(std::ldexp(value_of(x), 24));
    const int64_t one = int64_t{1} << 24;
    const int64_t down = units >> 24, up = -(-units >> 24), rest = units - down * one;
    const int64_t nearest = rest * 2 > one || (rest * 2 == one && (down & 1)) ? up : down;
    const auto expect_whole = [&](real16 (*f)(real16), int64_t wanted, bool tells_inexact) {
      real16 got{};
      const Signals signals = signals_of([&] { got = f(x); });
      ASSERT_TRUE(same(value_of(got), std::copysign(static_cast<double>(wanted), value_of(x))))
          << std::hex << bits;
      ASSERT_EQ(signals.word, tells_inexact && rest != 0 ? 16u : 0u) << std::hex << bits;
      ASSERT_EQ(signals.error, 0);
      ASSERT_EQ(vlm::to_int64(got), wanted) << std::hex << bits;
    };
    expect_whole(vlm::floor, down, false);
    expect_whole(vlm::ceil, up, false);
    expect_whole(vlm::trunc, units < 0 ? up : down, false);
    expect_whole(vlm::rint, nearest, true);
    std::fesetround(FE_UPWARD);
    expect_whole(vlm::rint, up, true);
    std::fesetround(before);
    ASSERT_EQ(signals_of([&] { EXPECT_EQ(vlm::to_int64(x), units < 0 ? up : down); }), expected(0));
  }
}

TEST(Real16WholeNumbers, InfinitiesAndNans) {
  const Signals invalid = expected(vlm::real16_invalid);
  EXPECT_EQ(signals_of([] { EXPECT_EQ(vlm::to_int64(half(0x7C00)), INT64_MAX); }), invalid);
  EXPECT_EQ(signals_of([] { EXPECT_EQ(vlm::to_int64(half(0xFC00)), INT64_MIN); }), invalid);
  EXPECT_EQ(signals_of([] { EXPECT_EQ(vlm::to_int64(half(0x7E00)), 0); }), invalid);
  EXPECT_EQ(signals_of([] { EXPECT_EQ(vlm::to_int64(half(0xFC01)), 0); }), invalid);
  for (real16 (*f)(real16) : {vlm::floor, vlm::ceil, vlm::trunc, vlm::rint}) {
    EXPECT_EQ(signals_of([&] { EXPECT_EQ(f(half(0xFC00)).bits, 0xFC00); }), expected(0));
    EXPECT_EQ(signals_of([&] { EXPECT_EQ(f(half(0xFE07)).bits, 0xFE07); }), expected(0));
    EXPECT_EQ(signals_of([&] { EXPECT_EQ(f(half(0x7C07)).bits, 0x7E07); }), invalid);
  }
}

}  // namespace
