// The exported scalar entries for mint: each is the scalar kernel of its function, with the argument by
// value.
#include "velorim/scalar_functions.h"

#include "Arithmetic/Catalogue/make_rows.h"
#include "Arithmetic/Kernels/bits.h"
#include "Arithmetic/Kernels/exponential.h"
#include "Arithmetic/Kernels/hyperbolic.h"
#include "Arithmetic/Kernels/power.h"
#include "Arithmetic/Kernels/rounding.h"
#include "Arithmetic/Kernels/sign.h"
#include "Arithmetic/Kernels/special.h"
#include "Arithmetic/Kernels/steps.h"
#include "Arithmetic/Kernels/trigonometric.h"

using namespace vlm::machine_function;

int32_t s_machfunc_i_log2(mint* result, mint x, uint32_t flags) noexcept {
  return scalar<Log2>(result, x, flags);
}
int32_t s_machfunc_i_log10(mint* result, mint x, uint32_t flags) noexcept {
  return scalar<Log10>(result, x, flags);
}
int32_t s_machfunc_i_abs(mint* result, mint x, uint32_t flags) noexcept {
  return scalar<Abs>(result, x, flags);
}
int32_t s_machfunc_i_arg(mint* result, mint x, uint32_t flags) noexcept {
  return scalar<Arg>(result, x, flags);
}
int32_t s_machfunc_i_conj(mint* result, mint x, uint32_t flags) noexcept {
  return scalar<Conj>(result, x, flags);
}
int32_t s_machfunc_i_im(mint* result, mint x, uint32_t flags) noexcept {
  return scalar<Im>(result, x, flags);
}
int32_t s_machfunc_i_re(mint* result, mint x, uint32_t flags) noexcept {
  return scalar<Re>(result, x, flags);
}
int32_t s_machfunc_i_minus(mint* result, mint x, uint32_t flags) noexcept {
  return scalar<Minus>(result, x, flags);
}
int32_t s_machfunc_i_sign(mint* result, mint x, uint32_t flags) noexcept {
  return scalar<Sign>(result, x, flags);
}
int32_t s_machfunc_i_pos(mint* result, mint x, uint32_t flags) noexcept {
  return scalar<Pos>(result, x, flags);
}
int32_t s_machfunc_i_neg(mint* result, mint x, uint32_t flags) noexcept {
  return scalar<Neg>(result, x, flags);
}
int32_t s_machfunc_i_npos(mint* result, mint x, uint32_t flags) noexcept {
  return scalar<Npos>(result, x, flags);
}
int32_t s_machfunc_i_nneg(mint* result, mint x, uint32_t flags) noexcept {
  return scalar<Nneg>(result, x, flags);
}
int32_t s_machfunc_i_round(mint* result, mint x, uint32_t flags) noexcept {
  return scalar<Round>(result, x, flags);
}
int32_t s_machfunc_i_floor(mint* result, mint x, uint32_t flags) noexcept {
  return scalar<Floor>(result, x, flags);
}
int32_t s_machfunc_i_ceiling(mint* result, mint x, uint32_t flags) noexcept {
  return scalar<Ceiling>(result, x, flags);
}
int32_t s_machfunc_i_fracpart(mint* result, mint x, uint32_t flags) noexcept {
  return scalar<FracPart>(result, x, flags);
}
int32_t s_machfunc_i_intpart(mint* result, mint x, uint32_t flags) noexcept {
  return scalar<IntPart>(result, x, flags);
}
int32_t s_machfunc_i_evenq(mint* result, mint x, uint32_t flags) noexcept {
  return scalar<EvenQ>(result, x, flags);
}
int32_t s_machfunc_i_oddq(mint* result, mint x, uint32_t flags) noexcept {
  return scalar<OddQ>(result, x, flags);
}
// Stores the wrapped product even when it then reports the overflow.
int32_t s_machfunc_i_square(mint* result, mint x, uint32_t flags) noexcept {
  *result = Square::on_integers::value(x);
  mint kept;
  return scalar<Square>(&kept, x, flags);
}
int32_t s_machfunc_i_bitcount(mint* result, mint x, uint32_t flags) noexcept {
  return scalar<BitCount>(result, x, flags);
}
int32_t s_machfunc_i_bitnot(mint* result, mint x, uint32_t flags) noexcept {
  return scalar<BitNot>(result, x, flags);
}
int32_t s_machfunc_i_bitlength(mint* result, mint x, uint32_t flags) noexcept {
  return scalar<BitLength>(result, x, flags);
}
int32_t s_machfunc_i_intexp10(mint* result, mint x, uint32_t flags) noexcept {
  return scalar<IntExp10>(result, x, flags);
}
int32_t s_machfunc_i_intlen10(mint* result, mint x, uint32_t flags) noexcept {
  return scalar<IntLen10>(result, x, flags);
}
int32_t s_machfunc_i_unitstep(mint* result, mint x, uint32_t flags) noexcept {
  return scalar<UnitStep>(result, x, flags);
}
int32_t s_machfunc_i_fibonacci(mint* result, mint x, uint32_t flags) noexcept {
  return scalar<Fibonacci>(result, x, flags);
}
int32_t s_machfunc_i_lucasl(mint* result, mint x, uint32_t flags) noexcept {
  return scalar<LucasL>(result, x, flags);
}
int32_t s_machfunc_i_gamma(mint* result, mint x, uint32_t flags) noexcept {
  return scalar<Gamma>(result, x, flags);
}
int32_t s_machfunc_i_unitize(mint* result, mint x, uint32_t flags) noexcept {
  return scalar<Unitize>(result, x, flags);
}
int32_t s_machfunc_i_mod1(mint* result, mint x, uint32_t flags) noexcept {
  return scalar<Mod1>(result, x, flags);
}
int32_t s_machfunc_i_ramp(mint* result, mint x, uint32_t flags) noexcept {
  return scalar<Ramp>(result, x, flags);
}
int32_t s_machfunc_i_abssquare(mint* result, mint x, uint32_t flags) noexcept {
  return scalar<AbsSquare>(result, x, flags);
}
int32_t s_machfunc_i_realabs(mint* result, mint x, uint32_t flags) noexcept {
  return scalar<RealAbs>(result, x, flags);
}
int32_t s_machfunc_i_realsign(mint* result, mint x, uint32_t flags) noexcept {
  return scalar<RealSign>(result, x, flags);
}
int32_t s_machfunc_i_box(mint* result, mint x, uint32_t flags) noexcept {
  return scalar<Box>(result, x, flags);
}
int32_t s_machfunc_i_triangle(mint* result, mint x, uint32_t flags) noexcept {
  return scalar<Triangle>(result, x, flags);
}
