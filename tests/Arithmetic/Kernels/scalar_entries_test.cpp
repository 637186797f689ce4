// The exported scalar entries: each does what the catalogue's scalar kernel of its number does.
//
// Faults it is meant to catch: an entry bound to another function; a function without its entry; a flag read by an entry
// that the kernel does not read; the one entry that writes before it fails writing something else.
#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cfenv>
#include <map>

#include "Arithmetic/Kernels/sample_values.h"
#include "Arithmetic/unary_table.h"
#include "velorim/complex_functions.h"
#include "velorim/machine_functions.h"
#include "velorim/scalar_functions.h"

namespace {

using namespace vlm;
using sample_values::mixed_values;

constexpr int counted_flags = FE_INVALID | FE_DIVBYZERO | FE_OVERFLOW;

template <class X> using entry = int32_t (*)(void*, X, uint32_t);
template <auto F, class R, class X> int32_t through_void(void* result, X x, uint32_t flags) {
  return F(static_cast<R*>(result), x, flags);
}

template <auto F, class R> int32_t by_parts(void* result, mcomplex z, uint32_t flags) {
  return F(static_cast<R*>(result), flags, z.re, z.im);
}

#define VELORIM_ENTRY(NAME) \
  { MachFunc_##NAME, through_void<s_machfunc_i_##NAME, mint, mint> }
const std::map<int32_t, entry<mint>> integer_entries = {
    VELORIM_ENTRY(log2),     VELORIM_ENTRY(log10),     VELORIM_ENTRY(abs),      VELORIM_ENTRY(arg),
    VELORIM_ENTRY(conj),     VELORIM_ENTRY(im),        VELORIM_ENTRY(re),       VELORIM_ENTRY(minus),
    VELORIM_ENTRY(sign),     VELORIM_ENTRY(pos),       VELORIM_ENTRY(neg),      VELORIM_ENTRY(npos),
    VELORIM_ENTRY(nneg),     VELORIM_ENTRY(round),     VELORIM_ENTRY(floor),    VELORIM_ENTRY(ceiling),
    VELORIM_ENTRY(fracpart), VELORIM_ENTRY(intpart),   VELORIM_ENTRY(evenq),    VELORIM_ENTRY(oddq),
    VELORIM_ENTRY(square),   VELORIM_ENTRY(bitcount),  VELORIM_ENTRY(bitnot),   VELORIM_ENTRY(bitlength),
    VELORIM_ENTRY(intexp10), VELORIM_ENTRY(intlen10),  VELORIM_ENTRY(unitstep), VELORIM_ENTRY(fibonacci),
    VELORIM_ENTRY(lucasl),   VELORIM_ENTRY(gamma),     VELORIM_ENTRY(unitize),  VELORIM_ENTRY(mod1),
    VELORIM_ENTRY(ramp),     VELORIM_ENTRY(abssquare), VELORIM_ENTRY(realabs),  VELORIM_ENTRY(realsign),
    VELORIM_ENTRY(box),      VELORIM_ENTRY(triangle),
};
#undef VELORIM_ENTRY
#define VELORIM_ENTRY(NAME) \
  { MachFunc_##NAME, through_void<s_machfunc_d_##NAME, mreal, mreal> }
#define VELORIM_MINT_ENTRY(NAME) \
  { MachFunc_##NAME, through_void<s_machfunc_d_##NAME, mint, mreal> }
const std::map<int32_t, entry<mreal>> real_entries = {
    VELORIM_ENTRY(sin),
    VELORIM_ENTRY(cos),
    VELORIM_ENTRY(tan),
    VELORIM_ENTRY(csc),
    VELORIM_ENTRY(sec),
    VELORIM_ENTRY(cot),
    VELORIM_ENTRY(sinh),
    VELORIM_ENTRY(cosh),
    VELORIM_ENTRY(tanh),
    VELORIM_ENTRY(csch),
    VELORIM_ENTRY(sech),
    VELORIM_ENTRY(coth),
    VELORIM_ENTRY(asin),
    VELORIM_ENTRY(acos),
    VELORIM_ENTRY(atan),
    VELORIM_ENTRY(acsc),
    VELORIM_ENTRY(asec),
    VELORIM_ENTRY(acot),
    VELORIM_ENTRY(asinh),
    VELORIM_ENTRY(acosh),
    VELORIM_ENTRY(atanh),
    VELORIM_ENTRY(acsch),
    VELORIM_ENTRY(asech),
    VELORIM_ENTRY(acoth),
    VELORIM_ENTRY(exp),
    VELORIM_ENTRY(expm1),
    VELORIM_ENTRY(log),
    VELORIM_ENTRY(log1p),
    VELORIM_ENTRY(log2),
    VELORIM_ENTRY(log10),
    VELORIM_ENTRY(abs),
    VELORIM_MINT_ENTRY(arg),
    VELORIM_ENTRY(conj),
    VELORIM_MINT_ENTRY(im),
    VELORIM_ENTRY(re),
    VELORIM_ENTRY(minus),
    VELORIM_MINT_ENTRY(sign),
    VELORIM_MINT_ENTRY(pos),
    VELORIM_MINT_ENTRY(neg),
    VELORIM_MINT_ENTRY(npos),
    VELORIM_MINT_ENTRY(nneg),
    VELORIM_MINT_ENTRY(round),
    VELORIM_MINT_ENTRY(floor),
    VELORIM_MINT_ENTRY(ceiling),
    VELORIM_ENTRY(fracpart),
    VELORIM_MINT_ENTRY(intpart),
    VELORIM_ENTRY(square),
    VELORIM_ENTRY(sqrt),
    VELORIM_ENTRY(cbrt),
    VELORIM_ENTRY(rsqrt),
    VELORIM_ENTRY(recip),
    VELORIM_MINT_ENTRY(unitstep),
    VELORIM_ENTRY(sinc),
    VELORIM_ENTRY(fibonacci),
    VELORIM_ENTRY(lucasl),
    VELORIM_ENTRY(gudermannian),
    VELORIM_ENTRY(inversegudermannian),
    VELORIM_ENTRY(haversine),
    VELORIM_ENTRY(inversehaversine),
    VELORIM_ENTRY(erfc),
    VELORIM_ENTRY(erf),
    VELORIM_ENTRY(gamma),
    VELORIM_ENTRY(loggamma),
    VELORIM_MINT_ENTRY(unitize),
    VELORIM_ENTRY(mod1),
    VELORIM_ENTRY(logistic),
    VELORIM_ENTRY(ramp),
    VELORIM_ENTRY(abssquare),
    VELORIM_ENTRY(realabs),
    VELORIM_MINT_ENTRY(realsign),
    VELORIM_MINT_ENTRY(box),
    VELORIM_ENTRY(triangle),
};
#undef VELORIM_ENTRY
#undef VELORIM_MINT_ENTRY

#define VELORIM_ENTRY(NAME) \
  { MachFunc_##NAME, by_parts<s_machfunc_c_##NAME, mcomplex> }
#define VELORIM_REAL_ENTRY(NAME) \
  { MachFunc_##NAME, by_parts<s_machfunc_c_##NAME, mreal> }
#define VELORIM_MINT_ENTRY(NAME) \
  { MachFunc_##NAME, by_parts<s_machfunc_c_##NAME, mint> }
const std::map<int32_t, entry<mcomplex>> complex_entries = {
    VELORIM_ENTRY(sin),
    VELORIM_ENTRY(cos),
    VELORIM_ENTRY(tan),
    VELORIM_ENTRY(csc),
    VELORIM_ENTRY(sec),
    VELORIM_ENTRY(cot),
    VELORIM_ENTRY(sinh),
    VELORIM_ENTRY(cosh),
    VELORIM_ENTRY(tanh),
    VELORIM_ENTRY(csch),
    VELORIM_ENTRY(sech),
    VELORIM_ENTRY(coth),
    VELORIM_ENTRY(asin),
    VELORIM_ENTRY(acos),
    VELORIM_ENTRY(atan),
    VELORIM_ENTRY(acsc),
    VELORIM_ENTRY(asec),
    VELORIM_ENTRY(acot),
    VELORIM_ENTRY(asinh),
    VELORIM_ENTRY(acosh),
    VELORIM_ENTRY(atanh),
    VELORIM_ENTRY(acsch),
    VELORIM_ENTRY(asech),
    VELORIM_ENTRY(acoth),
    VELORIM_ENTRY(exp),
    VELORIM_ENTRY(expm1),
    VELORIM_ENTRY(log),
    VELORIM_ENTRY(log1p),
    VELORIM_ENTRY(log2),
    VELORIM_ENTRY(log10),
    VELORIM_REAL_ENTRY(abs),
    VELORIM_REAL_ENTRY(arg),
    VELORIM_ENTRY(conj),
    VELORIM_REAL_ENTRY(im),
    VELORIM_REAL_ENTRY(re),
    VELORIM_ENTRY(minus),
    VELORIM_ENTRY(sign),
    VELORIM_ENTRY(fracpart),
    VELORIM_ENTRY(square),
    VELORIM_ENTRY(sqrt),
    VELORIM_ENTRY(rsqrt),
    VELORIM_ENTRY(recip),
    VELORIM_ENTRY(sinc),
    VELORIM_ENTRY(fibonacci),
    VELORIM_ENTRY(lucasl),
    VELORIM_ENTRY(gudermannian),
    VELORIM_ENTRY(inversegudermannian),
    VELORIM_ENTRY(haversine),
    VELORIM_ENTRY(inversehaversine),
    VELORIM_MINT_ENTRY(unitize),
    VELORIM_ENTRY(mod1),
    VELORIM_ENTRY(logistic),
    VELORIM_REAL_ENTRY(abssquare),
};
#undef VELORIM_ENTRY
#undef VELORIM_REAL_ENTRY
#undef VELORIM_MINT_ENTRY

template <class T> void compare_entries(const std::map<int32_t, entry<T>>& entries) {
  for (const auto& row : unary_table::rows) {
    if (unary_table::result_letter<T>(row) == '-') continue;
    SCOPED_TRACE(row.name);
    const auto found = entries.find(row.number);
    ASSERT_NE(entries.end(), found);
    const auto kernel = MNumericArray_getUnaryScalarMachFunc(row.number, element_code<T>);
    for (const T x : mixed_values<T>(400)) {
      const auto where = [&] { return testing::PrintToString(x); };
      for (const uint32_t flags : {0u, uint32_t{MACHFUNC_CHECK_FP}, uint32_t{MACHFUNC_CHECK_INTEGER}, ~0u}) {
        std::array<int64_t, 2> expected = {0x5A5A5A5A5A5A5A5A, 0x5A5A5A5A5A5A5A5A}, got = expected;
        std::feclearexcept(FE_ALL_EXCEPT);
        const int32_t status = kernel(&expected, &x, flags);
        const int raised = std::fetestexcept(counted_flags);
        std::feclearexcept(FE_ALL_EXCEPT);
        ASSERT_EQ(status, found->second(&got, x, flags)) << where() << " flags " << flags;
        if (!is_integer_element<T>) {
          ASSERT_EQ(raised, std::fetestexcept(counted_flags)) << where();
        }
        // The entry of the integer square stores its wrapped product before it fails.
        if constexpr (is_integer_element<T>) {
          if (row.number == MachFunc_square && status != 0)
            expected[0] = static_cast<int64_t>(static_cast<uint64_t>(x) * static_cast<uint64_t>(x));
        }
        ASSERT_EQ(expected, got) << where() << " flags " << flags;
      }
    }
  }
}
TEST(ScalarEntries, AgreeWithTheScalarKernels) {
  compare_entries<mint>(integer_entries);
  compare_entries<mreal>(real_entries);
  compare_entries<mcomplex>(complex_entries);
}

TEST(ScalarEntries, SineAndCosineTogether) {
  for (const mreal x : mixed_values<mreal>(400)) {
    mreal s = 0, c = 0, sine = 0, cosine = 0;
    EXPECT_EQ(0, SinCos(&s, &c, x));
    s_machfunc_d_sin(&sine, x, 0);
    s_machfunc_d_cos(&cosine, x, 0);
    EXPECT_EQ(std::bit_cast<uint64_t>(sine), std::bit_cast<uint64_t>(s));
    EXPECT_EQ(std::bit_cast<uint64_t>(cosine), std::bit_cast<uint64_t>(c));
    for (const uint32_t flags : {0u, uint32_t{MACHFUNC_CHECK_FP}}) {
      mreal sinh_ = -7, cosh_ = -7, separate_sinh = -7, separate_cosh = -7;
      const int32_t fails_s = s_machfunc_d_sinh(&separate_sinh, x, flags);
      const int32_t fails_c = s_machfunc_d_cosh(&separate_cosh, x, flags);
      EXPECT_EQ(fails_s | fails_c, SinhCosh(&sinh_, &cosh_, flags, x)) << x;
      const bool stored = (fails_s | fails_c) == 0;
      EXPECT_EQ(std::bit_cast<uint64_t>(stored ? separate_sinh : -7), std::bit_cast<uint64_t>(sinh_)) << x;
      EXPECT_EQ(std::bit_cast<uint64_t>(stored ? separate_cosh : -7), std::bit_cast<uint64_t>(cosh_)) << x;
    }
  }
}

}  // namespace
