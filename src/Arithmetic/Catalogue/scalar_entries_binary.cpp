// The exported scalar entries of two arguments: each is the scalar kernel of its function, with the arguments by value.
#include "velorim/binary_scalar_functions.h"

#include "Arithmetic/Catalogue/binary_make_rows.h"
#include "Arithmetic/Kernels/binary/division.h"
#include "Arithmetic/Kernels/binary/integers.h"
#include "Arithmetic/Kernels/binary/power.h"
#include "Arithmetic/Kernels/binary/steps.h"

using namespace vlm::machine_function;
using namespace vlm::machine_function::binary;

namespace {

/// Integer arithmetic whose entry stores the wrapped result even where it overflows.
template <class F> int32_t wrapping_scalar(mint* result, mint x, mint y, uint32_t flags) {
  *result = F::on_integers::value(x, y);
  return (flags & MACHFUNC_CHECK_INTEGER) != 0 && F::on_integers::fails(x, y) ? 1 : 0;
}

}  // namespace

int32_t s_machfunc_ii_plus(mint* result, mint x, mint y, uint32_t flags) noexcept {
  return wrapping_scalar<Plus>(result, x, y, flags);
}
int32_t s_machfunc_id_plus(mreal* result, mint x, mreal y, uint32_t flags) noexcept {
  return binary_scalar<Plus>(result, x, y, flags);
}
int32_t s_machfunc_di_plus(mreal* result, mreal x, mint y, uint32_t flags) noexcept {
  return binary_scalar<Plus>(result, x, y, flags);
}
int32_t s_machfunc_dd_plus(mreal* result, mreal x, mreal y, uint32_t flags) noexcept {
  return binary_scalar<Plus>(result, x, y, flags);
}
int32_t s_machfunc_ic_plus(mcomplex* result, mint x, mcomplex y, uint32_t flags) noexcept {
  return binary_scalar<Plus>(result, x, y, flags);
}
int32_t s_machfunc_ci_plus(mcomplex* result, mcomplex x, mint y, uint32_t flags) noexcept {
  return binary_scalar<Plus>(result, x, y, flags);
}
int32_t s_machfunc_dc_plus(mcomplex* result, mreal x, mcomplex y, uint32_t flags) noexcept {
  return binary_scalar<Plus>(result, x, y, flags);
}
int32_t s_machfunc_cd_plus(mcomplex* result, mcomplex x, mreal y, uint32_t flags) noexcept {
  return binary_scalar<Plus>(result, x, y, flags);
}
int32_t s_machfunc_cc_plus(mcomplex* result, mcomplex x, mcomplex y, uint32_t flags) noexcept {
  return binary_scalar<Plus>(result, x, y, flags);
}
int32_t s_machfunc_ii_subtract(mint* result, mint x, mint y, uint32_t flags) noexcept {
  return wrapping_scalar<Subtract>(result, x, y, flags);
}
int32_t s_machfunc_id_subtract(mreal* result, mint x, mreal y, uint32_t flags) noexcept {
  return binary_scalar<Subtract>(result, x, y, flags);
}
int32_t s_machfunc_di_subtract(mreal* result, mreal x, mint y, uint32_t flags) noexcept {
  return binary_scalar<Subtract>(result, x, y, flags);
}
int32_t s_machfunc_dd_subtract(mreal* result, mreal x, mreal y, uint32_t flags) noexcept {
  return binary_scalar<Subtract>(result, x, y, flags);
}
int32_t s_machfunc_ic_subtract(mcomplex* result, mint x, mcomplex y, uint32_t flags) noexcept {
  return binary_scalar<Subtract>(result, x, y, flags);
}
int32_t s_machfunc_ci_subtract(mcomplex* result, mcomplex x, mint y, uint32_t flags) noexcept {
  return binary_scalar<Subtract>(result, x, y, flags);
}
int32_t s_machfunc_dc_subtract(mcomplex* result, mreal x, mcomplex y, uint32_t flags) noexcept {
  return binary_scalar<Subtract>(result, x, y, flags);
}
int32_t s_machfunc_cd_subtract(mcomplex* result, mcomplex x, mreal y, uint32_t flags) noexcept {
  return binary_scalar<Subtract>(result, x, y, flags);
}
int32_t s_machfunc_cc_subtract(mcomplex* result, mcomplex x, mcomplex y, uint32_t flags) noexcept {
  return binary_scalar<Subtract>(result, x, y, flags);
}
int32_t s_machfunc_ii_times(mint* result, mint x, mint y, uint32_t flags) noexcept {
  return wrapping_scalar<Times>(result, x, y, flags);
}
int32_t s_machfunc_id_times(mreal* result, mint x, mreal y, uint32_t flags) noexcept {
  return binary_scalar<Times>(result, x, y, flags);
}
int32_t s_machfunc_di_times(mreal* result, mreal x, mint y, uint32_t flags) noexcept {
  return binary_scalar<Times>(result, x, y, flags);
}
int32_t s_machfunc_dd_times(mreal* result, mreal x, mreal y, uint32_t flags) noexcept {
  return binary_scalar<Times>(result, x, y, flags);
}
int32_t s_machfunc_ic_times(mcomplex* result, mint x, mcomplex y, uint32_t flags) noexcept {
  return binary_scalar<Times>(result, x, y, flags);
}
int32_t s_machfunc_ci_times(mcomplex* result, mcomplex x, mint y, uint32_t flags) noexcept {
  return binary_scalar<Times>(result, x, y, flags);
}
int32_t s_machfunc_dc_times(mcomplex* result, mreal x, mcomplex y, uint32_t flags) noexcept {
  return binary_scalar<Times>(result, x, y, flags);
}
int32_t s_machfunc_cd_times(mcomplex* result, mcomplex x, mreal y, uint32_t flags) noexcept {
  return binary_scalar<Times>(result, x, y, flags);
}
int32_t s_machfunc_cc_times(mcomplex* result, mcomplex x, mcomplex y, uint32_t flags) noexcept {
  return binary_scalar<Times>(result, x, y, flags);
}
int32_t s_machfunc_ii_abserr(mint* result, mint x, mint y, uint32_t flags) noexcept {
  return binary_scalar<AbsErr>(result, x, y, flags);
}
int32_t s_machfunc_id_abserr(mreal* result, mint x, mreal y, uint32_t flags) noexcept {
  return binary_scalar<AbsErr>(result, x, y, flags);
}
int32_t s_machfunc_di_abserr(mreal* result, mreal x, mint y, uint32_t flags) noexcept {
  return binary_scalar<AbsErr>(result, x, y, flags);
}
int32_t s_machfunc_dd_abserr(mreal* result, mreal x, mreal y, uint32_t flags) noexcept {
  return binary_scalar<AbsErr>(result, x, y, flags);
}
int32_t s_machfunc_ic_abserr(mreal* result, mint x, mcomplex y, uint32_t flags) noexcept {
  return binary_scalar<AbsErr>(result, x, y, flags);
}
int32_t s_machfunc_ci_abserr(mreal* result, mcomplex x, mint y, uint32_t flags) noexcept {
  return binary_scalar<AbsErr>(result, x, y, flags);
}
int32_t s_machfunc_dc_abserr(mreal* result, mreal x, mcomplex y, uint32_t flags) noexcept {
  return binary_scalar<AbsErr>(result, x, y, flags);
}
int32_t s_machfunc_cd_abserr(mreal* result, mcomplex x, mreal y, uint32_t flags) noexcept {
  return binary_scalar<AbsErr>(result, x, y, flags);
}
int32_t s_machfunc_cc_abserr(mreal* result, mcomplex x, mcomplex y, uint32_t flags) noexcept {
  return binary_scalar<AbsErr>(result, x, y, flags);
}
int32_t s_machfunc_ii_mod(mint* result, mint x, mint y, uint32_t flags) noexcept {
  return binary_scalar<Mod>(result, x, y, flags);
}
int32_t s_machfunc_id_mod(mreal* result, mint x, mreal y, uint32_t flags) noexcept {
  return binary_scalar<Mod>(result, x, y, flags);
}
int32_t s_machfunc_di_mod(mreal* result, mreal x, mint y, uint32_t flags) noexcept {
  return binary_scalar<Mod>(result, x, y, flags);
}
int32_t s_machfunc_dd_mod(mreal* result, mreal x, mreal y, uint32_t flags) noexcept {
  return binary_scalar<Mod>(result, x, y, flags);
}
int32_t s_machfunc_ic_mod(mcomplex* result, mint x, mcomplex y, uint32_t flags) noexcept {
  return binary_scalar<Mod>(result, x, y, flags);
}
int32_t s_machfunc_ci_mod(mcomplex* result, mcomplex x, mint y, uint32_t flags) noexcept {
  return binary_scalar<Mod>(result, x, y, flags);
}
int32_t s_machfunc_dc_mod(mcomplex* result, mreal x, mcomplex y, uint32_t flags) noexcept {
  return binary_scalar<Mod>(result, x, y, flags);
}
int32_t s_machfunc_cd_mod(mcomplex* result, mcomplex x, mreal y, uint32_t flags) noexcept {
  return binary_scalar<Mod>(result, x, y, flags);
}
int32_t s_machfunc_cc_mod(mcomplex* result, mcomplex x, mcomplex y, uint32_t flags) noexcept {
  return binary_scalar<Mod>(result, x, y, flags);
}
int32_t s_machfunc_ii_pow(mint* result, mint x, mint y, uint32_t flags) noexcept {
  return binary_scalar<Pow>(result, x, y, flags);
}
int32_t s_machfunc_id_pow(mreal* result, mint x, mreal y, uint32_t flags) noexcept {
  return binary_scalar<Pow>(result, x, y, flags);
}
int32_t s_machfunc_di_pow(mreal* result, mreal x, mint y, uint32_t flags) noexcept {
  return binary_scalar<Pow>(result, x, y, flags);
}
int32_t s_machfunc_dd_pow(mreal* result, mreal x, mreal y, uint32_t flags) noexcept {
  return binary_scalar<Pow>(result, x, y, flags);
}
int32_t s_machfunc_ic_pow(mcomplex* result, mint x, mcomplex y, uint32_t flags) noexcept {
  return binary_scalar<Pow>(result, x, y, flags);
}
int32_t s_machfunc_ci_pow(mcomplex* result, mcomplex x, mint y, uint32_t flags) noexcept {
  return binary_scalar<Pow>(result, x, y, flags);
}
int32_t s_machfunc_dc_pow(mcomplex* result, mreal x, mcomplex y, uint32_t flags) noexcept {
  return binary_scalar<Pow>(result, x, y, flags);
}
int32_t s_machfunc_cd_pow(mcomplex* result, mcomplex x, mreal y, uint32_t flags) noexcept {
  return binary_scalar<Pow>(result, x, y, flags);
}
int32_t s_machfunc_cc_pow(mcomplex* result, mcomplex x, mcomplex y, uint32_t flags) noexcept {
  return binary_scalar<Pow>(result, x, y, flags);
}
int32_t s_machfunc_id_div(mreal* result, mint x, mreal y, uint32_t flags) noexcept {
  return binary_scalar<Divide>(result, x, y, flags);
}
int32_t s_machfunc_di_div(mreal* result, mreal x, mint y, uint32_t flags) noexcept {
  return binary_scalar<Divide>(result, x, y, flags);
}
int32_t s_machfunc_dd_div(mreal* result, mreal x, mreal y, uint32_t flags) noexcept {
  return binary_scalar<Divide>(result, x, y, flags);
}
int32_t s_machfunc_ic_div(mcomplex* result, mint x, mcomplex y, uint32_t flags) noexcept {
  return binary_scalar<Divide>(result, x, y, flags);
}
int32_t s_machfunc_ci_div(mcomplex* result, mcomplex x, mint y, uint32_t flags) noexcept {
  return binary_scalar<Divide>(result, x, y, flags);
}
int32_t s_machfunc_dc_div(mcomplex* result, mreal x, mcomplex y, uint32_t flags) noexcept {
  return binary_scalar<Divide>(result, x, y, flags);
}
int32_t s_machfunc_cd_div(mcomplex* result, mcomplex x, mreal y, uint32_t flags) noexcept {
  return binary_scalar<Divide>(result, x, y, flags);
}
int32_t s_machfunc_cc_div(mcomplex* result, mcomplex x, mcomplex y, uint32_t flags) noexcept {
  return binary_scalar<Divide>(result, x, y, flags);
}
int32_t s_machfunc_id_relerr(mreal* result, mint x, mreal y, uint32_t flags) noexcept {
  return binary_scalar<RelErr>(result, x, y, flags);
}
int32_t s_machfunc_di_relerr(mreal* result, mreal x, mint y, uint32_t flags) noexcept {
  return binary_scalar<RelErr>(result, x, y, flags);
}
int32_t s_machfunc_dd_relerr(mreal* result, mreal x, mreal y, uint32_t flags) noexcept {
  return binary_scalar<RelErr>(result, x, y, flags);
}
int32_t s_machfunc_ic_relerr(mreal* result, mint x, mcomplex y, uint32_t flags) noexcept {
  return binary_scalar<RelErr>(result, x, y, flags);
}
int32_t s_machfunc_ci_relerr(mreal* result, mcomplex x, mint y, uint32_t flags) noexcept {
  return binary_scalar<RelErr>(result, x, y, flags);
}
int32_t s_machfunc_dc_relerr(mreal* result, mreal x, mcomplex y, uint32_t flags) noexcept {
  return binary_scalar<RelErr>(result, x, y, flags);
}
int32_t s_machfunc_cd_relerr(mreal* result, mcomplex x, mreal y, uint32_t flags) noexcept {
  return binary_scalar<RelErr>(result, x, y, flags);
}
int32_t s_machfunc_cc_relerr(mreal* result, mcomplex x, mcomplex y, uint32_t flags) noexcept {
  return binary_scalar<RelErr>(result, x, y, flags);
}
int32_t s_machfunc_id_log(mreal* result, mint x, mreal y, uint32_t flags) noexcept {
  return binary_scalar<LogToBase>(result, x, y, flags);
}
int32_t s_machfunc_di_log(mreal* result, mreal x, mint y, uint32_t flags) noexcept {
  return binary_scalar<LogToBase>(result, x, y, flags);
}
int32_t s_machfunc_dd_log(mreal* result, mreal x, mreal y, uint32_t flags) noexcept {
  return binary_scalar<LogToBase>(result, x, y, flags);
}
int32_t s_machfunc_ic_log(mcomplex* result, mint x, mcomplex y, uint32_t flags) noexcept {
  return binary_scalar<LogToBase>(result, x, y, flags);
}
int32_t s_machfunc_ci_log(mcomplex* result, mcomplex x, mint y, uint32_t flags) noexcept {
  return binary_scalar<LogToBase>(result, x, y, flags);
}
int32_t s_machfunc_dc_log(mcomplex* result, mreal x, mcomplex y, uint32_t flags) noexcept {
  return binary_scalar<LogToBase>(result, x, y, flags);
}
int32_t s_machfunc_cd_log(mcomplex* result, mcomplex x, mreal y, uint32_t flags) noexcept {
  return binary_scalar<LogToBase>(result, x, y, flags);
}
int32_t s_machfunc_cc_log(mcomplex* result, mcomplex x, mcomplex y, uint32_t flags) noexcept {
  return binary_scalar<LogToBase>(result, x, y, flags);
}
int32_t s_machfunc_id_atan2(mreal* result, mint x, mreal y, uint32_t flags) noexcept {
  return binary_scalar<Atan2>(result, x, y, flags);
}
int32_t s_machfunc_di_atan2(mreal* result, mreal x, mint y, uint32_t flags) noexcept {
  return binary_scalar<Atan2>(result, x, y, flags);
}
int32_t s_machfunc_dd_atan2(mreal* result, mreal x, mreal y, uint32_t flags) noexcept {
  return binary_scalar<Atan2>(result, x, y, flags);
}
int32_t s_machfunc_ic_atan2(mcomplex* result, mint x, mcomplex y, uint32_t flags) noexcept {
  return binary_scalar<Atan2>(result, x, y, flags);
}
int32_t s_machfunc_ci_atan2(mcomplex* result, mcomplex x, mint y, uint32_t flags) noexcept {
  return binary_scalar<Atan2>(result, x, y, flags);
}
int32_t s_machfunc_dc_atan2(mcomplex* result, mreal x, mcomplex y, uint32_t flags) noexcept {
  return binary_scalar<Atan2>(result, x, y, flags);
}
int32_t s_machfunc_cd_atan2(mcomplex* result, mcomplex x, mreal y, uint32_t flags) noexcept {
  return binary_scalar<Atan2>(result, x, y, flags);
}
int32_t s_machfunc_cc_atan2(mcomplex* result, mcomplex x, mcomplex y, uint32_t flags) noexcept {
  return binary_scalar<Atan2>(result, x, y, flags);
}
int32_t s_machfunc_ii_maxabs(mint* result, mint x, mint y, uint32_t flags) noexcept {
  return binary_scalar<MaxAbs>(result, x, y, flags);
}
int32_t s_machfunc_dd_maxabs(mreal* result, mreal x, mreal y, uint32_t flags) noexcept {
  return binary_scalar<MaxAbs>(result, x, y, flags);
}
int32_t s_machfunc_cc_maxabs(mreal* result, mcomplex x, mcomplex y, uint32_t flags) noexcept {
  return binary_scalar<MaxAbs>(result, x, y, flags);
}
int32_t s_machfunc_ii_quotient(mint* result, mint x, mint y, uint32_t flags) noexcept {
  return binary_scalar<Quotient>(result, x, y, flags);
}
int32_t s_machfunc_di_quotient(mint* result, mreal x, mint y, uint32_t flags) noexcept {
  return binary_scalar<Quotient>(result, x, y, flags);
}
int32_t s_machfunc_id_quotient(mint* result, mint x, mreal y, uint32_t flags) noexcept {
  return binary_scalar<Quotient>(result, x, y, flags);
}
int32_t s_machfunc_dd_quotient(mint* result, mreal x, mreal y, uint32_t flags) noexcept {
  return binary_scalar<Quotient>(result, x, y, flags);
}
int32_t s_machfunc_ii_bitand(mint* result, mint x, mint y, uint32_t flags) noexcept {
  return binary_scalar<BitAnd>(result, x, y, flags);
}
int32_t s_machfunc_ii_bitor(mint* result, mint x, mint y, uint32_t flags) noexcept {
  return binary_scalar<BitOr>(result, x, y, flags);
}
int32_t s_machfunc_ii_bitxor(mint* result, mint x, mint y, uint32_t flags) noexcept {
  return binary_scalar<BitXor>(result, x, y, flags);
}
int32_t s_machfunc_ii_intexp(mint* result, mint x, mint y, uint32_t flags) noexcept {
  return binary_scalar<IntExp>(result, x, y, flags);
}
int32_t s_machfunc_ii_intlen(mint* result, mint x, mint y, uint32_t flags) noexcept {
  return binary_scalar<IntLen>(result, x, y, flags);
}
int32_t s_machfunc_ii_gcd(mint* result, mint x, mint y, uint32_t flags) noexcept {
  return binary_scalar<Gcd>(result, x, y, flags);
}
int32_t s_machfunc_ii_lcm(mint* result, mint x, mint y, uint32_t flags) noexcept {
  return binary_scalar<Lcm>(result, x, y, flags);
}
int32_t s_machfunc_ii_bitshiftleft(mint* result, mint x, mint y, uint32_t flags) noexcept {
  return binary_scalar<BitShiftLeft>(result, x, y, flags);
}
int32_t s_machfunc_di_bitshiftleft(mreal* result, mreal x, mint y, uint32_t flags) noexcept {
  return binary_scalar<BitShiftLeft>(result, x, y, flags);
}
int32_t s_machfunc_ci_bitshiftleft(mcomplex* result, mcomplex x, mint y, uint32_t flags) noexcept {
  return binary_scalar<BitShiftLeft>(result, x, y, flags);
}
int32_t s_machfunc_ii_bitshiftright(mint* result, mint x, mint y, uint32_t flags) noexcept {
  return binary_scalar<BitShiftRight>(result, x, y, flags);
}
int32_t s_machfunc_di_bitshiftright(mreal* result, mreal x, mint y, uint32_t flags) noexcept {
  return binary_scalar<BitShiftRight>(result, x, y, flags);
}
int32_t s_machfunc_ci_bitshiftright(mcomplex* result, mcomplex x, mint y, uint32_t flags) noexcept {
  return binary_scalar<BitShiftRight>(result, x, y, flags);
}
int32_t s_machfunc_dd_chop(mreal* result, mreal x, mreal y, uint32_t flags) noexcept {
  return binary_scalar<Chop>(result, x, y, flags);
}
int32_t s_machfunc_cd_chop(mcomplex* result, mcomplex x, mreal y, uint32_t flags) noexcept {
  return binary_scalar<Chop>(result, x, y, flags);
}
int32_t s_machfunc_ii_unitize(mint* result, mint x, mint y, uint32_t flags) noexcept {
  return binary_scalar<Unitize2>(result, x, y, flags);
}
int32_t s_machfunc_dd_unitize(mint* result, mreal x, mreal y, uint32_t flags) noexcept {
  return binary_scalar<Unitize2>(result, x, y, flags);
}

int32_t s_machfunc_ci_root(mcomplex* result, mint n, mcomplex z, uint32_t flags) noexcept {
  if (n == 0) return 1;
  const mcomplex root = element_from(complex_root(n, number_from(z)));
  if ((flags & MACHFUNC_CHECK_FP) != 0 && vlm::is_fp_exception(root)) return 1;
  *result = root;
  return 0;
}

mint gcd_mint(mint x, mint y) noexcept {
  return static_cast<mint>(greatest_common_divisor(unsigned_magnitude(x), unsigned_magnitude(y)));
}
