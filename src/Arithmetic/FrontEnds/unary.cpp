// Unary front ends: a function number applied to a whole array.
#include <utility>

#include "Arithmetic/Catalogue/catalogue.h"
#include "MNumericArray/Allocate/array_record.h"
#include "velorim/array.h"
#include "velorim/machine_functions.h"
#include "velorim/status.h"

using vlm::machine_function::unary_row;

namespace {

// Outcomes of an operator; 0 and above is the index of a failing element.
constexpr mint outcome_success = -2;
constexpr mint outcome_no_kernel = -1;

/// Success is every negative outcome but that of a missing kernel.
int32_t status_of_outcome(mint outcome) {
  return outcome < outcome_no_kernel ? LibraryOk : LibraryNumericalError;
}

/// Runs the row over the whole of source. The types of the two arrays are not compared with the row's, but
/// what the kernel writes must fit the storage of the result.
mint run_row(const MachFuncRow& row, const MNumericArray* source, MNumericArray* result, uint32_t flags) {
  if (row.vectorKernel.unary == nullptr) return outcome_no_kernel;
  const auto room = static_cast<uint64_t>(result->flattenedLength) *
                    vlm::element_bytes(static_cast<int32_t>(result->elementType));
  const auto need = static_cast<uint64_t>(source->flattenedLength) * vlm::element_bytes(row.resultType);
  if (need > room) return outcome_no_kernel;
  const mint position =
      row.vectorKernel.unary(result->data, source->data, source->flattenedLength, UnitIncrements, flags);
  return position == 0 ? outcome_success : position - 1;
}

using tensor_operator = mint (*)(const MTensor* source, MTensor* result, int32_t number, uint32_t flags);

/// The kernels of one element type. It is a parameter and not read from the source, since the result may be
/// the source and then has its new type already.
template <int32_t ElementType>
mint kernel_operator(const MTensor* source, MTensor* result, int32_t number, uint32_t flags) {
  return run_row(unary_row(number, ElementType), source, result, flags);
}

/// Integers have integer results only: for any other they must be coerced first.
mint no_operator(const MTensor*, MTensor*, int32_t, uint32_t) { return outcome_no_kernel; }

constexpr tensor_operator of_integers = kernel_operator<MNumericArrayTypeInteger64>;
constexpr tensor_operator of_reals = kernel_operator<MNumericArrayTypeReal64>;
constexpr tensor_operator of_complexes = kernel_operator<MNumericArrayTypeComplexReal64>;

/// By source and result type, Integer, Real, Complex.
constexpr tensor_operator TensorOp1Table[3][3] = {
    {of_integers, no_operator, no_operator},
    {of_reals, of_reals, no_operator},
    {of_complexes, of_complexes, of_complexes},
};

mint apply_operator(int32_t source_type, int32_t result_type, const MTensor* source, MTensor* result,
                    int32_t number, uint32_t flags) {
  const auto index = [](int32_t type) {
    return type == MTensorTypeBoolean                                 ? 0
           : type >= MTensorTypeInteger && type <= MTensorTypeComplex ? type - MTensorTypeInteger
                                                                      : -1;
  };
  const int32_t s = index(source_type), r = index(result_type);
  return s < 0 || r < 0 ? outcome_no_kernel : TensorOp1Table[s][r](source, result, number, flags);
}

/// Gives each of two arrays of the same shape the elements of the other.
void exchange_elements(MNumericArray* a, MNumericArray* b) {
  const auto type_of_a = static_cast<int32_t>(a->elementType);
  std::swap(a->data, b->data);
  vlm::applyElementType(a, static_cast<int32_t>(b->elementType));
  vlm::applyElementType(b, type_of_a);
}

/// The target of a front end: the array in *result, reshaped, or a new one; a record apart while the target
/// is the source itself and changes its type, since the source is to be read whole before it changes.
class target {
 public:
  target(const MNumericArray* source, int32_t element_type, MNumericArray** result) : result_(result) {
    apart_ = *result == source && static_cast<int32_t>(source->elementType) != element_type;
    array_ = apart_ ? nullptr : *result;
    status_ = MNumericArray_allocateCommon(&array_, element_type, source->rank, source->dims, FailReport);
    if (!apart_) *result = array_;
  }
  target(const target&) = delete;
  target& operator=(const target&) = delete;
  ~target() {
    if (!apart_ || array_ == nullptr) return;
    if (status_ == ArrayStatusOk) exchange_elements(*result_, array_);
    MNumericArray_delete(array_);
  }

  /// 0, 5 for exhausted memory, or the code of the allocation.
  int32_t status() const { return status_ == ArrayStatusNoMemory ? LibraryMemoryError : status_; }
  MNumericArray* array() const { return array_; }

 private:
  MNumericArray** result_;
  MNumericArray* array_;
  int32_t status_;
  bool apart_;
};

}  // namespace

int32_t Math_T_T(int32_t number, uint32_t flags, const MTensor* source, int32_t resultType,
                 MTensor** result) noexcept {
  if (source == nullptr || result == nullptr) return LibraryNumericalError;
  const auto source_type = static_cast<int32_t>(source->tensorType);
  if (resultType < 0 || resultType > MTensorTypeComplex) return LibraryNumericalError;
  const target to(source, MTensorToMNumericArrayType[resultType], result);
  if (to.status() != LibraryOk) return to.status();
  return status_of_outcome(apply_operator(source_type, resultType, source, to.array(), number, flags));
}

mint TensorOp1(const MTensor* source, MTensor* result, int32_t number, uint32_t flags) noexcept {
  if (source == nullptr || result == nullptr) return outcome_no_kernel;
  return PackedTensorOp1(source, result, static_cast<int32_t>(result->tensorType), number, flags);
}

mint PackedTensorOp1(const MTensor* source, MTensor* result, int32_t resultType, int32_t number,
                     uint32_t flags) noexcept {
  if (source == nullptr || result == nullptr) return outcome_no_kernel;
  return apply_operator(static_cast<int32_t>(source->tensorType), resultType, source, result, number, flags);
}

int32_t MNumericArray_Math_T_T(int32_t number, const MNumericArray* source, int32_t resultType,
                               MNumericArray** result, uint32_t flags) noexcept {
  if (source == nullptr || result == nullptr) return LibraryNumericalError;
  const target to(source, resultType, result);
  if (to.status() != LibraryOk) return to.status();
  return status_of_outcome(MNumericArray_Op1(source, to.array(), number, flags));
}

mint MNumericArray_Op1(const MNumericArray* source, MNumericArray* result, int32_t number,
                       uint32_t flags) noexcept {
  if (source == nullptr || result == nullptr) return outcome_no_kernel;
  if (!vlm::is_element_type(static_cast<int32_t>(result->elementType))) return outcome_no_kernel;
  return run_row(unary_row(number, static_cast<int32_t>(source->elementType)), source, result, flags);
}

int32_t MNumericArrayMathUnary(MNumericArray** result, const MNumericArray* source, int32_t number,
                               int32_t resultType, uint32_t flags) noexcept {
  return MNumericArray_Math_T_T(number, source, resultType, result, flags) == LibraryOk ? 0 : 1;
}
