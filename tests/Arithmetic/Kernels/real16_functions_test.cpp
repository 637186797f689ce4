// Every real function on every one of the 65,536 Real16 arguments.
//
// Faults it is meant to catch: a result that is not the exact value rounded once to eleven bits (by way of float, or
// of a double that sits beside a midpoint); subnormal results and the limit of overflow; a function whose Real16 row
// goes to another function's body; a signal too many or too few, by which a run in bulk mode is judged: overflow of
// an intermediate value, a quiet NaN that raises invalid, a comparison with a NaN that does not.
#include <gtest/gtest.h>

#include <cfenv>
#include <vector>

#include "Arithmetic/Kernels/exact_functions.h"
#include "Arithmetic/Kernels/real_functions.h"
#include "Arithmetic/unary_table.h"
#include "Includes/real16.h"

namespace {

using oracle::number;
using vlm::real16;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr uint32_t argument_step = 37;
#else
constexpr uint32_t argument_step = 1;
#endif
constexpr int counted_flags = FE_INVALID | FE_DIVBYZERO | FE_OVERFLOW;

/// The nearest half, ties to even, from the exact value. Not for NaN.
real16 nearest_half(const number& exact) {
  const auto sign = static_cast<uint16_t>(mpfr_signbit(exact.get()) ? 0x8000 : 0);
  if (mpfr_inf_p(exact.get())) return {static_cast<uint16_t>(sign | 0x7c00)};
  if (mpfr_zero_p(exact.get())) return {sign};
  const mpfr_exp_t unit = std::max<mpfr_exp_t>(mpfr_get_exp(exact.get()) - 11, -24);
  if (unit > 5) return {static_cast<uint16_t>(sign | 0x7c00)};
  number scaled = exact;
  mpfr_mul_2si(scaled.get(), scaled.get(), -unit, MPFR_RNDN);
  mpfr_abs(scaled.get(), scaled.get(), MPFR_RNDN);
  mpfr_roundeven(scaled.get(), scaled.get());
  // Significands from 1024 on carry the implicit one into the exponent field; 2048 carries once more.
  const long bits = ((unit + 24) << 10) + mpfr_get_si(scaled.get(), MPFR_RNDN);
  return {static_cast<uint16_t>(sign | std::min(bits, 0x7c00l))};
}

double exact_double(real16 x) {
  const int exponent = x.bits >> 10 & 31, significand = x.bits & 1023;
  const double size = exponent == 31  ? (significand != 0 ? NAN : INFINITY)
                      : exponent == 0 ? std::ldexp(significand, -24)
                                      : std::ldexp(significand + 1024, exponent - 25);
  return x.bits & 0x8000 ? -size : size;
}

struct outcome {
  int32_t status;
  int flags;
};
template <class R> outcome call(int32_t number_of, R* result, real16 x, uint32_t flags) {
  const auto kernel = MNumericArray_getUnaryScalarMachFunc(number_of, MNumericArrayTypeReal16);
  std::feclearexcept(FE_ALL_EXCEPT);
  const int32_t status = kernel(result, &x, flags);
  return {status, std::fetestexcept(counted_flags)};
}

bool is_signalling_nan(uint32_t bits) { return (bits & 0x7fff) > 0x7c00 && (bits & 0x0200) == 0; }

/// What one function owes for one argument that is no NaN, held against what it did.
void check_number(const unary_table::row& row, real16 x, const number& exact) {
  real16 y{};
  const outcome plain = call(row.number, &y, x, 0);
  const auto where = [&] {
    return testing::Message() << row.name << "(" << exact_double(x) << ") bits " << std::hex << x.bits;
  };
  ASSERT_EQ(0, plain.status) << where();
  const bool finite_argument = std::isfinite(exact_double(x));
  const bool composed_of_powers = row.number == 68 || row.number == 69;
  if (mpfr_nan_p(exact.get())) {
    ASSERT_TRUE(vlm::is_nan(y)) << where();
    ASSERT_TRUE(plain.flags & FE_INVALID) << where();
  } else {
    real16 expected = nearest_half(exact);
    if (row.number == 13 && exact_double(x) < -710.8224336642239)
      expected.bits = 0;  // csch is +0 beyond its limit
    ASSERT_EQ(expected.bits, y.bits) << where();
    const int owed = !vlm::is_infinite(expected) || !finite_argument ? 0
                     : mpfr_inf_p(exact.get()) && !mpfr_overflow_p() ? FE_DIVBYZERO
                                                                     : FE_OVERFLOW;
    if (composed_of_powers) {  // an overflow can come by way of a quotient whose divisor is too small to be told from 0
      ASSERT_EQ(owed != 0, plain.flags != 0) << where();
    } else {
      ASSERT_EQ(owed, plain.flags) << where();
    }
  }
  real16 kept{0x1234};
  const outcome checked = call(row.number, &kept, x, MACHFUNC_CHECK_FP);
  const bool fails = row.real_failure == 'c' && !vlm::is_finite(y);
  ASSERT_EQ(fails ? 1 : 0, checked.status) << where();
  ASSERT_EQ(fails ? 0x1234 : y.bits, kept.bits) << where();
}

void check_nan(const unary_table::row& row, real16 x) {
  real16 y{};
  const outcome plain = call(row.number, &y, x, 0);
  ASSERT_EQ(0, plain.status) << row.name;
  ASSERT_TRUE(vlm::is_nan(y)) << row.name << std::hex << x.bits;
  ASSERT_EQ(is_signalling_nan(x.bits) ? FE_INVALID : 0, plain.flags) << row.name << std::hex << x.bits;
  real16 kept{0x1234};
  ASSERT_EQ(row.real_failure == 'c' ? 1 : 0, call(row.number, &kept, x, MACHFUNC_CHECK_FP).status)
      << row.name;
}

const unary_table::row& row_of(int32_t number_of) {
  for (const auto& row : unary_table::rows) {
    if (row.number == number_of) return row;
  }
  std::abort();
}

/// The oracle's functions at the precision and the exponents that halves need.
class Real16Rounded : public testing::TestWithParam<real_functions::entry> {
 protected:
  void SetUp() override {
    oracle::precision = 120;
    mpfr_set_emax(1 << 18);
    mpfr_set_emin(-(1 << 18));
  }
  void TearDown() override {
    oracle::precision = 256;
    mpfr_set_emax(mpfr_get_emax_max());
    mpfr_set_emin(mpfr_get_emin_min());
  }
};

TEST_P(Real16Rounded, EveryArgument) {
  const auto& e = GetParam();
  const unary_table::row& row = row_of(e.number_of);
  for (uint32_t bits = 0; bits < 0x10000; bits += argument_step) {
    const real16 x{static_cast<uint16_t>(bits)};
    if (vlm::is_nan(x)) {
      check_nan(row, x);
    } else {
      const double exact_x = exact_double(x);
      mpfr_clear_flags();
      const bool outside = e.number_of == 77 && exact_x <= 0;  // log gamma is not defined there
      check_number(row, x, outside ? number(NAN) : e.exact(number(exact_x)));
    }
    if (HasFatalFailure()) return;
  }
}

std::vector<real_functions::entry> rounded_functions() {
  auto entries = real_functions::all();
  const auto add = [&](int32_t number_of, const char* name, auto exact) {
    entries.push_back({number_of, name, exact, {}, 0.5, 0.5});
  };
  add(68, "fibonacci", [](const number& x) { return real_functions::golden_terms<double>(x).fibonacci(); });
  add(69, "lucasl", [](const number& x) { return real_functions::golden_terms<double>(x).lucas(); });
  add(82, "abssquare", [](const number& x) { return x * x; });
  return entries;
}
INSTANTIATE_TEST_SUITE_P(Functions, Real16Rounded, testing::ValuesIn(rounded_functions()),
                         [](const auto& entry) { return std::string(entry.param.name); });

TEST(Real16Exact, EveryArgument) {
  for (const auto& e : exact_functions::entries) {
    const unary_table::row& row = row_of(e.number_of);
    SCOPED_TRACE(row.name);
    for (uint32_t bits = 0; bits < 0x10000; bits += argument_step) {
      const real16 x{static_cast<uint16_t>(bits)};
      const double exact_x = exact_double(x);
      if (e.gives_integer) {
        mint y = -77;
        const outcome plain = call(row.number, &y, x, 0);
        ASSERT_EQ(0, plain.status);
        const double expected = vlm::is_nan(x) ? e.of_nan : e.rule(exact_x);
        const mint integer =
            std::isinf(expected) ? (expected > 0 ? INT64_MAX : INT64_MIN) : static_cast<mint>(expected);
        ASSERT_EQ(integer, y) << exact_x;
        if (!vlm::is_infinite(x)) {
          ASSERT_EQ(vlm::is_nan(x) && e.nan_signals ? FE_INVALID : 0, plain.flags) << exact_x;
        }
        y = -77;
        const bool fails = row.real_failure == 'r' && vlm::is_infinite(x);
        ASSERT_EQ(fails, call(row.number, &y, x, MACHFUNC_CHECK_INTEGER).status != 0) << exact_x;
        ASSERT_EQ(fails ? -77 : integer, y) << exact_x;
      } else if (vlm::is_nan(x) && e.copies) {
        real16 y{};
        ASSERT_EQ(0, call(row.number, &y, x, 0).flags);
        ASSERT_EQ(x.bits & 0x7fff, y.bits & 0x7fff);
      } else if (vlm::is_nan(x) && std::isnan(e.of_nan)) {
        check_nan(row, x);
      } else if (vlm::is_nan(x)) {
        real16 y{0x1234};
        ASSERT_EQ(0, call(row.number, &y, x, 0).status);
        ASSERT_EQ(e.of_nan, exact_double(y));
      } else {
        check_number(row, x, number(e.rule(exact_x)));
      }
      if (HasFatalFailure()) return;
    }
  }
}

/// arg, which fails whatever the flags, and im, which looks at nothing.
TEST(Real16Exact, ArgumentAndImaginaryPart) {
  for (uint32_t bits = 0; bits < 0x10000; ++bits) {
    const real16 x{static_cast<uint16_t>(bits)};
    mint y = -77;
    const bool fails = !(exact_double(x) >= 0);
    ASSERT_EQ(fails, call(39, &y, x, 0).status != 0) << exact_double(x);
    ASSERT_EQ(fails ? -77 : 0, y);
    ASSERT_EQ(0, call(41, &y, x, MACHFUNC_CHECK_INTEGER).status);
    ASSERT_EQ(0, y);
  }
}

}  // namespace
