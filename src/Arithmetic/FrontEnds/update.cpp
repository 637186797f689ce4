// x op= y: the result takes the place of x, in the type and shape that it needs.
#include "Arithmetic/FrontEnds/shape_rule.h"
#include "Arithmetic/FrontEnds/target.h"
#include "Arithmetic/FrontEnds/tensor_operators2.h"
#include "velorim/conversion.h"
#include "velorim/tensor_arithmetic.h"

using namespace vlm::front_end;

namespace {

/// The elements of x that those of result from `from` on are paired with, in their places.
void keep_old_values(MTensor* result, const MTensor* x, mint from) {
  const operand old(x, result->flattenedLength);
  const auto copy = [&](mint at, mint step, mint length) {
    MTensor_coerceDataArray(result->data, tensor_type(result), at, 1, x->data, tensor_type(x),
                            at / old.block(), step, length);
  };
  if (old.block() == 1) return copy(from, 1, result->flattenedLength - from);
  for (mint end = from; from < result->flattenedLength; from = end) {
    end = (from / old.block() + 1) * old.block();
    copy(from, 0, end - from);
  }
}

/// The outcome of x op= y.
mint update(MTensor* x, const MTensor* y, int32_t number, uint32_t flags) {
  mint rank;
  mint* dims;
  if (x == nullptr || y == nullptr || MTensor_maxCompatibleDimensions(x, y, &rank, &dims) == 0) {
    return outcome_no_kernel;
  }
  const int32_t x_type = tensor_type(x), y_type = tensor_type(y);
  const int32_t type = ReturnRangeType2(number, x_type, y_type);
  if (table_index(type) < 0) return outcome_no_kernel;
  if (x->rank >= y->rank && x_type == type)
    return apply_operator(x_type, y_type, type, x, y, x, number, flags);

  MTensor* const made = MTensor_newAllocatedCommon(type, rank, dims, FailReport);
  if (made == nullptr) return outcome_no_kernel;
  const mint outcome = apply_operator(x_type, y_type, type, x, y, made, number, flags);
  if (outcome >= 0) keep_old_values(made, x, outcome);
  if (outcome != outcome_no_kernel) exchange_contents(x, made);
  MTensor_delete(made);
  return outcome;
}

}  // namespace

int32_t TensorAddTo(MTensor* x, const MTensor* y, uint32_t flags) noexcept {
  return update(x, y, MachFunc_plus, flags) == outcome_success ? 1 : 0;
}
int32_t TensorSubtractFrom(MTensor* x, const MTensor* y, uint32_t flags) noexcept {
  return update(x, y, MachFunc_subtract, flags) == outcome_success ? 1 : 0;
}
int32_t TensorTimesBy(MTensor* x, const MTensor* y, uint32_t flags) noexcept {
  return update(x, y, MachFunc_times, flags) == outcome_success ? 1 : 0;
}
int32_t TensorDivideBy(MTensor* x, const MTensor* y, uint32_t flags) noexcept {
  return update(x, y, MachFunc_div, flags) == outcome_success ? 1 : 0;
}
