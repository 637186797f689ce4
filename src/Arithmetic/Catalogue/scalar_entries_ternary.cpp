// The exported scalar entries of three arguments: each is the scalar kernel of its function, with the arguments by value.
#include "Arithmetic/Kernels/ternary_runs.h"
#include "velorim/tensor_arithmetic.h"

using namespace vlm::machine_function::ternary;

int32_t s_machfunc_iii_axpy(mint* result, mint a, mint x, mint y, uint32_t flags) noexcept {
  return scalar<Axpy>(result, a, x, y, flags);
}
int32_t s_machfunc_iii_axmy(mint* result, mint a, mint x, mint y, uint32_t flags) noexcept {
  return scalar<Axmy>(result, a, x, y, flags);
}
int32_t s_machfunc_iii_ymax(mint* result, mint a, mint x, mint y, uint32_t flags) noexcept {
  return scalar<Ymax>(result, a, x, y, flags);
}
int32_t s_machfunc_ddd_axpy(mreal* result, mreal a, mreal x, mreal y, uint32_t flags) noexcept {
  return scalar<Axpy>(result, a, x, y, flags);
}
int32_t s_machfunc_ddd_axmy(mreal* result, mreal a, mreal x, mreal y, uint32_t flags) noexcept {
  return scalar<Axmy>(result, a, x, y, flags);
}
int32_t s_machfunc_ddd_ymax(mreal* result, mreal a, mreal x, mreal y, uint32_t flags) noexcept {
  return scalar<Ymax>(result, a, x, y, flags);
}
int32_t s_machfunc_ddd_adxmy(mreal* result, mreal a, mreal x, mreal y, uint32_t flags) noexcept {
  return scalar<Adxmy>(result, a, x, y, flags);
}
int32_t s_machfunc_ccc_axpy(mcomplex* result, mcomplex a, mcomplex x, mcomplex y, uint32_t flags) noexcept {
  return scalar<Axpy>(result, a, x, y, flags);
}
int32_t s_machfunc_ccc_axmy(mcomplex* result, mcomplex a, mcomplex x, mcomplex y, uint32_t flags) noexcept {
  return scalar<Axmy>(result, a, x, y, flags);
}
int32_t s_machfunc_ccc_ymax(mcomplex* result, mcomplex a, mcomplex x, mcomplex y, uint32_t flags) noexcept {
  return scalar<Ymax>(result, a, x, y, flags);
}
int32_t s_machfunc_ccc_adxmy(mcomplex* result, mcomplex a, mcomplex x, mcomplex y, uint32_t flags) noexcept {
  return scalar<Adxmy>(result, a, x, y, flags);
}
