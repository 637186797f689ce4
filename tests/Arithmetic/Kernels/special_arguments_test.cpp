// Real64 and Real32 functions at their poles, outside their domains, at infinities, zeros and beyond overflow: the kind
// of the value, its sign, and the exception flags, by which a run in bulk mode is judged.
//
// Faults it is meant to catch: a pole that gives a large number; an argument outside the domain that gives a value; a
// NaN or an infinity that is signalled though it merely passes through, or is not though it arises; overflow of an
// intermediate value that is signalled; the sign of a zero or of an infinity; subnormals flushed to zero.
#include <gtest/gtest.h>

#include <cfenv>

#include "Arithmetic/Kernels/real_functions.h"
#include "Arithmetic/Kernels/sample_values.h"

namespace {

using oracle::number;

enum class kind { finite, pole, overflow, undefined, passed_nan };

/// What the exact value is for a number of type T.
template <class T> kind kind_of(const number& exact, T x) {
  if (std::isnan(x)) return kind::passed_nan;
  if (mpfr_nan_p(exact.get())) return kind::undefined;
  if (mpfr_inf_p(exact.get())) {
    return mpfr_overflow_p() ? kind::overflow : std::isinf(x) ? kind::finite : kind::pole;
  }
  return std::isinf(oracle::nearest<T>(exact)) ? kind::overflow : kind::finite;
}

/// Arguments where the formula and the exact function part: 1 / x overflows, or an inner pole is a rounding away.
template <class T> bool parts_from_formula(int32_t number_of, T x, const number& exact) {
  const bool reciprocal_overflows = std::isinf(1 / x) && x != 0;
  const bool of_reciprocal =
      number_of == MachFunc_acot || number_of == MachFunc_acsch || number_of == MachFunc_asech;
  return (reciprocal_overflows && of_reciprocal) ||
         (number_of == MachFunc_inversegudermannian && std::abs(mpfr_get_d(exact.get(), MPFR_RNDN)) > 15);
}

template <class T> class SpecialArguments : public testing::Test {
  void SetUp() override {
    mpfr_set_emax(1 << 18);
    mpfr_set_emin(-(1 << 18));
  }
  void TearDown() override {
    mpfr_set_emax(mpfr_get_emax_max());
    mpfr_set_emin(mpfr_get_emin_min());
  }
};
using wide_reals = testing::Types<float, double>;
TYPED_TEST_SUITE(SpecialArguments, wide_reals);

TYPED_TEST(SpecialArguments, KindSignAndFlags) {
  using T = TypeParam;
  const auto specials = sample_values::special_values<T>();
  for (const auto& e : real_functions::all()) {
    const auto kernel = MNumericArray_getUnaryScalarMachFunc(e.number_of, vlm::element_code<T>);
    for (const T x : specials) {
      mpfr_clear_flags();
      const bool outside = e.number_of == MachFunc_loggamma && x <= 0;
      const number exact = outside ? number(NAN) : e.exact(number(x));
      const kind expected = kind_of(exact, x);
      if (parts_from_formula(e.number_of, x, exact)) continue;
      T y{};
      std::feclearexcept(FE_ALL_EXCEPT);
      ASSERT_EQ(0, kernel(&y, &x, 0));
      const int flags = std::fetestexcept(FE_INVALID | FE_DIVBYZERO | FE_OVERFLOW);
      const auto where = [&] {
        return testing::Message() << e.name << "(" << std::hexfloat << x << ") = " << y;
      };
      switch (expected) {
        case kind::passed_nan:
          EXPECT_TRUE(std::isnan(y) && flags == 0) << where() << " flags " << flags;
          continue;
        case kind::undefined:
          EXPECT_TRUE(std::isnan(y) && (flags & FE_INVALID) != 0) << where() << " flags " << flags;
          continue;
        case kind::pole:
          EXPECT_TRUE(std::isinf(y) && flags == FE_DIVBYZERO) << where() << " flags " << flags;
          break;
        case kind::overflow:
          EXPECT_TRUE(std::isinf(y) && flags == FE_OVERFLOW) << where() << " flags " << flags;
          break;
        case kind::finite:
          EXPECT_TRUE(std::isinf(y) == (mpfr_inf_p(exact.get()) != 0) && flags == 0)
              << where() << " flags " << flags;
          break;
      }
      const bool nonzero =
          mpfr_cmpabs(exact.get(), number(2 * std::numeric_limits<T>::denorm_min()).get()) >= 0;
      const bool plain_zero = y == 0 && (e.number_of == MachFunc_csch || e.number_of == MachFunc_sech);
      EXPECT_TRUE(plain_zero || !nonzero || y != 0) << where();
      EXPECT_TRUE(plain_zero || std::signbit(y) == (mpfr_signbit(exact.get()) != 0)) << where();
    }
  }
}

}  // namespace
