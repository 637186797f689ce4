// Unary front ends: a function number applied to a whole array.
#include "Arithmetic/Catalogue/catalogue.h"
#include "Arithmetic/FrontEnds/promotion.h"
#include "Arithmetic/FrontEnds/target.h"
#include "velorim/array.h"
#include "velorim/machine_functions.h"
#include "velorim/status.h"

using namespace vlm::front_end;
using vlm::machine_function::unary_row;

namespace {

/// Runs the row over the whole of source. The types of the two arrays are not compared with the row's, but
/// what the kernel writes must fit the storage of the result.
mint run_row(const MachFuncRow& row, const MNumericArray* source, MNumericArray* result, uint32_t flags) {
  if (row.vectorKernel.unary == nullptr) return outcome_no_kernel;
  if (!has_room(result, source->flattenedLength, row.resultType)) return outcome_no_kernel;
  return outcome_of_position(
      row.vectorKernel.unary(result->data, source->data, source->flattenedLength, UnitIncrements, flags));
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

/// A function of reals that may leave them, on the elements of one array.
class unary_promotion final : public promoting_function {
 public:
  unary_promotion(const MTensor* source, int32_t number, uint32_t flags)
      : real_(unary_row(number, MNumericArrayTypeReal64)),
        complex_(unary_row(number, MNumericArrayTypeComplexReal64)),
        count_(source->flattenedLength),
        elements_(static_cast<const double*>(source->data)),
        flags_(flags) {}

  int32_t real_row_type() const override { return real_.resultType; }
  int32_t complex_row_type() const override { return complex_.resultType; }
  mint all_real(MTensor* result) const override {
    return outcome_of_position(
        real_.vectorKernel.unary(result->data, elements_, count_, UnitIncrements, flags_));
  }
  mint real(void* to, mint first, mint length) const override {
    return real_.vectorKernel.unary(to, elements_ + first, length, UnitIncrements, flags_);
  }
  bool complex(void* to, mint index) const override {
    const mcomplex z = {elements_[index], 0};
    return complex_.vectorKernel.unary(to, &z, 1, UnitIncrements, flags_) == 0;
  }
  bool wants_imaginary_part() const override { return false; }

 private:
  const MachFuncRow &real_, &complex_;
  mint count_;
  const double* elements_;
  uint32_t flags_;
};

mint promoting_operator(const MTensor* source, MTensor* result, int32_t number, uint32_t flags) {
  const unary_promotion function(source, number, flags);
  if (function.real_row_type() == 0 || function.complex_row_type() == 0) return outcome_no_kernel;
  return promote(function, source->flattenedLength, result);
}

constexpr tensor_operator of_integers = kernel_operator<MNumericArrayTypeInteger64>;
constexpr tensor_operator of_reals = kernel_operator<MNumericArrayTypeReal64>;
constexpr tensor_operator of_complexes = kernel_operator<MNumericArrayTypeComplexReal64>;

/// By source and result type, Integer, Real, Complex.
constexpr tensor_operator TensorOp1Table[3][3] = {
    {of_integers, no_operator, no_operator},
    {of_reals, of_reals, promoting_operator},
    {of_complexes, of_complexes, of_complexes},
};

mint apply_operator(int32_t source_type, int32_t result_type, const MTensor* source, MTensor* result,
                    int32_t number, uint32_t flags) {
  const int32_t s = table_index(source_type), r = table_index(result_type);
  return s < 0 || r < 0 ? outcome_no_kernel : TensorOp1Table[s][r](source, result, number, flags);
}

}  // namespace

int32_t Math_T_T(int32_t number, uint32_t flags, const MTensor* source, int32_t resultType,
                 MTensor** result) noexcept {
  if (source == nullptr || result == nullptr) return LibraryNumericalError;
  const int32_t source_type = tensor_type(source);
  if (resultType < 0 || resultType > MTensorTypeComplex) return LibraryNumericalError;
  target to({source}, MTensorToMNumericArrayType[resultType], source->rank, source->dims, result);
  if (to.status() != LibraryOk) return to.status();
  return to.finish(apply_operator(source_type, resultType, source, to.array(), number, flags));
}

mint TensorOp1(const MTensor* source, MTensor* result, int32_t number, uint32_t flags) noexcept {
  if (source == nullptr || result == nullptr) return outcome_no_kernel;
  return PackedTensorOp1(source, result, tensor_type(result), number, flags);
}

mint PackedTensorOp1(const MTensor* source, MTensor* result, int32_t resultType, int32_t number,
                     uint32_t flags) noexcept {
  if (source == nullptr || result == nullptr) return outcome_no_kernel;
  return apply_operator(tensor_type(source), resultType, source, result, number, flags);
}

int32_t MNumericArray_Math_T_T(int32_t number, const MNumericArray* source, int32_t resultType,
                               MNumericArray** result, uint32_t flags) noexcept {
  if (source == nullptr || result == nullptr) return LibraryNumericalError;
  target to({source}, resultType, source->rank, source->dims, result);
  if (to.status() != LibraryOk) return to.status();
  return to.finish(MNumericArray_Op1(source, to.array(), number, flags));
}

mint MNumericArray_Op1(const MNumericArray* source, MNumericArray* result, int32_t number,
                       uint32_t flags) noexcept {
  if (source == nullptr || result == nullptr) return outcome_no_kernel;
  if (!vlm::is_element_type(element_type(result))) return outcome_no_kernel;
  return run_row(unary_row(number, element_type(source)), source, result, flags);
}

int32_t MNumericArrayMathUnary(MNumericArray** result, const MNumericArray* source, int32_t number,
                               int32_t resultType, uint32_t flags) noexcept {
  return MNumericArray_Math_T_T(number, source, resultType, result, flags) == LibraryOk ? 0 : 1;
}
