// Front ends of functions of two arguments: a function number applied to two arrays.
#include "Arithmetic/Catalogue/binary_catalogue.h"
#include "Arithmetic/FrontEnds/shape_rule.h"
#include "Arithmetic/FrontEnds/target.h"
#include "Arithmetic/FrontEnds/tensor_operators2.h"
#include "velorim/tensor_arithmetic.h"

using namespace vlm::front_end;
using vlm::machine_function::binary_row;

namespace {

constexpr int32_t shapes_do_not_meet = -1;

}  // namespace

int32_t Math_TT_T(int32_t number, uint32_t flags, const MTensor* x, const MTensor* y, int32_t resultType,
                  MTensor** result) noexcept {
  if (x == nullptr || y == nullptr || result == nullptr) return LibraryNumericalError;
  if (resultType < 0 || resultType > MTensorTypeComplex) return LibraryNumericalError;
  mint rank;
  mint* dims;
  if (MTensor_maxCompatibleDimensions(x, y, &rank, &dims) == 0) return shapes_do_not_meet;
  const int32_t x_type = tensor_type(x), y_type = tensor_type(y);
  target to({x, y}, MTensorToMNumericArrayType[resultType], rank, dims, result,
            operator_promotes(x_type, y_type, resultType));
  if (to.status() != LibraryOk) return to.status();
  return to.finish(apply_operator(x_type, y_type, resultType, x, y, to.array(), number, flags));
}

mint TensorOp2(const MTensor* x, const MTensor* y, MTensor* result, int32_t number, uint32_t flags) noexcept {
  if (result == nullptr) return outcome_no_kernel;
  return PackedTensorOp2(x, y, result, tensor_type(result), number, flags);
}

mint PackedTensorOp2(const MTensor* x, const MTensor* y, MTensor* result, int32_t resultType, int32_t number,
                     uint32_t flags) noexcept {
  if (x == nullptr || y == nullptr || result == nullptr) return outcome_no_kernel;
  return apply_operator(tensor_type(x), tensor_type(y), resultType, x, y, result, number, flags);
}

int32_t TensorPlus(const MTensor* x, const MTensor* y, MTensor* result, uint32_t flags) noexcept {
  return TensorOp2(x, y, result, MachFunc_plus, flags) == outcome_success ? 1 : 0;
}
int32_t TensorSubtract(const MTensor* x, const MTensor* y, MTensor* result, uint32_t flags) noexcept {
  return TensorOp2(x, y, result, MachFunc_subtract, flags) == outcome_success ? 1 : 0;
}
int32_t TensorTimes(const MTensor* x, const MTensor* y, MTensor* result, uint32_t flags) noexcept {
  return TensorOp2(x, y, result, MachFunc_times, flags) == outcome_success ? 1 : 0;
}
int32_t TensorDivide(const MTensor* x, const MTensor* y, MTensor* result, uint32_t flags) noexcept {
  return TensorOp2(x, y, result, MachFunc_div, flags) == outcome_success ? 1 : 0;
}

int32_t MNumericArray_Math_TT_T(int32_t number, const MNumericArray* x, const MNumericArray* y,
                                int32_t resultType, MNumericArray** result, uint32_t flags) noexcept {
  if (x == nullptr || y == nullptr || result == nullptr) return LibraryNumericalError;
  mint rank;
  mint* dims;
  if (MNumericArray_maxCompatibleDimensions(x, y, &rank, &dims) == 0) return shapes_do_not_meet;
  target to({x, y}, resultType, rank, dims, result);
  if (to.status() != LibraryOk) return to.status();
  return to.finish(MNumericArray_Op2(x, y, to.array(), number, flags));
}

mint MNumericArray_Op2(const MNumericArray* x, const MNumericArray* y, MNumericArray* result, int32_t number,
                       uint32_t flags) noexcept {
  if (x == nullptr || y == nullptr || result == nullptr) return outcome_no_kernel;
  if (!vlm::is_element_type(element_type(result))) return outcome_no_kernel;
  return run_row(binary_row(number, element_type(x), element_type(y)), x, y, result, flags);
}

int32_t MNumericArrayMathBinary(MNumericArray** result, const MNumericArray* x, const MNumericArray* y,
                                int32_t number, int32_t resultType, uint32_t flags) noexcept {
  return MNumericArray_Math_TT_T(number, x, y, resultType, result, flags) == LibraryOk ? 0 : 1;
}
