// The catalogue as the interface shows it.
#include "Arithmetic/Catalogue/catalogue.h"
#include "Includes/tensor_type.h"

using vlm::element_type_of_tensor;
using vlm::machine_function::function_rows;
using vlm::machine_function::unary_function;
using vlm::machine_function::unary_row;

namespace {

constexpr int32_t no_such_function = 7;
constexpr int32_t same_as_argument = -1;

}  // namespace

MachFuncVector1 MNumericArray_getUnaryVectorMachFunc(int32_t number, int32_t type) noexcept {
  return unary_row(number, type).vectorKernel.unary;
}

MachFuncScalar1 MNumericArray_getUnaryScalarMachFunc(int32_t number, int32_t type) noexcept {
  return unary_row(number, type).scalarKernel.unary;
}

int32_t MNumericArray_ReturnType1(int32_t number, int32_t type) noexcept {
  return unary_row(number, type).resultType;
}

MachFuncVector1 MTensor_getUnaryVectorMachFunc(int32_t number, int32_t type) noexcept {
  return MNumericArray_getUnaryVectorMachFunc(number, element_type_of_tensor(type));
}

MachFuncScalar1 MTensor_getUnaryScalarMachFunc(int32_t number, int32_t type) noexcept {
  return MNumericArray_getUnaryScalarMachFunc(number, element_type_of_tensor(type));
}

int32_t MTensor_ReturnType1(int32_t number, int32_t type) noexcept {
  return MNumericArrayToMTensorType[MNumericArray_ReturnType1(number, element_type_of_tensor(type))];
}

int32_t ReturnRangeType1(int32_t number, int32_t type, uint32_t* mark) noexcept {
  if (mark != nullptr) *mark = 0;
  const function_rows* f = unary_function(number);
  if (f == nullptr || type < MTensorTypeBoolean || type > MTensorTypeComplex) return no_such_function;
  const int32_t column = type == MTensorTypeBoolean ? 0 : type - MTensorTypeInteger;
  switch (f->return_range[column]) {
    case 'I':
      return MTensorTypeInteger;
    case 'R':
      return MTensorTypeReal;
    case 'C':
      return MTensorTypeComplex;
    case 'B':
      if (mark != nullptr) *mark = 1;
      return MTensorTypeBoolean;
    case '=':
      return same_as_argument;
    default:
      return no_such_function;
  }
}
