// Front ends for single values: the argument goes through a rank-0 array of the calling thread, and so does the result.
#include <cstring>

#include "Arithmetic/FrontEnds/outcome.h"
#include "velorim/array_services.h"
#include "velorim/tensor_arithmetic.h"

using namespace vlm::front_end;

namespace {

// Places in the thread's shared table. The two arguments of a binary function take the first two, its result the last.
constexpr mint first_slot = 0, second_slot = 1, last_slot = 2;

constexpr mcomplex zero = {0, 0};  // as long as any element

/// What the two families differ in: the type codes of values.
struct tensor_values {
  static constexpr int32_t last_type = MTensorTypeComplex;
  static MNumericArray** load(const void* source, int32_t type, mint slot) {
    if (source == nullptr || type != MTensorTypeBoolean) return MTensor_loadSharedRank0(source, type, slot);
    int32_t truth;
    std::memcpy(&truth, source, sizeof truth);
    const mint wide = truth;
    return MTensor_loadSharedRank0(&wide, type, slot);
  }
  static size_t bytes(int32_t type) { return static_cast<size_t>(CompilerTypeSizeTable[type]); }
};
struct array_values {
  static constexpr int32_t last_type = vlm::element_type_count;
  static MNumericArray** load(const void* source, int32_t type, mint slot) {
    return MNumericArray_loadSharedRank0(source, type, slot);
  }
  static size_t bytes(int32_t type) { return static_cast<size_t>(MNumericArray_typeSizeTable[type]); }
};

/// Has the operator write into the slot for a result of the type, which starts as zero, and copies it out whether or not an element
/// failed.
template <class Values, class Operator>
int32_t value_of(int32_t type, void* result, mint slot, Operator&& apply) {
  MNumericArray** const to = Values::load(&zero, type, slot);
  if (to == nullptr) return LibraryNumericalError;
  const mint outcome = apply(*to);
  std::memcpy(result, (*to)->data, Values::bytes(type));
  return status_of_outcome(outcome);
}

template <class Values> bool is_value_type(int32_t type) { return type >= 1 && type <= Values::last_type; }

template <class Values, class Operator>
int32_t unary_value(int32_t argument_type, const void* argument, int32_t result_type, void* result,
                    Operator&& apply) {
  if (argument == nullptr || result == nullptr || !is_value_type<Values>(argument_type) ||
      !is_value_type<Values>(result_type)) {
    return LibraryNumericalError;
  }
  MNumericArray** const from = Values::load(argument, argument_type, first_slot);
  if (from == nullptr) return LibraryNumericalError;
  return value_of<Values>(result_type, result, second_slot,
                          [&](MNumericArray* to) { return apply(*from, to); });
}

/// The array of an argument: a number's rank-0 array in the slot, or the array that is given. Null for bad arguments.
template <class Values>
const MNumericArray* array_of_argument(int32_t type, const void* argument, mint slot) {
  if (type == 0 || argument == nullptr) return static_cast<const MNumericArray*>(argument);
  if (!is_value_type<Values>(type)) return nullptr;
  MNumericArray** const cell = Values::load(argument, type, slot);
  return cell == nullptr ? nullptr : *cell;
}

/// Calls apply(x, y, result) for two values, and otherwise arrays(x, y, result pointer).
template <class Values, class Operator, class Arrays>
int32_t binary_value(int32_t x_type, const void* x, int32_t y_type, const void* y, int32_t result_type,
                     void* result, Operator&& apply, Arrays&& arrays) {
  const MNumericArray* const x_array = array_of_argument<Values>(x_type, x, first_slot);
  const MNumericArray* const y_array = array_of_argument<Values>(y_type, y, second_slot);
  if (x_array == nullptr || y_array == nullptr || result == nullptr) return LibraryNumericalError;
  if (x_array->rank > 0 || y_array->rank > 0) {
    return arrays(x_array, y_array, static_cast<MNumericArray**>(result));
  }
  if (!is_value_type<Values>(result_type)) return LibraryNumericalError;
  return value_of<Values>(result_type, result, last_slot,
                          [&](MNumericArray* to) { return apply(x_array, y_array, to); });
}

}  // namespace

int32_t Math_V_V(int32_t number, uint32_t flags, int32_t argumentType, const void* argument,
                 int32_t resultType, void* result) noexcept {
  return unary_value<tensor_values>(argumentType, argument, resultType, result,
                                    [&](const MTensor* source, MTensor* to) {
                                      return PackedTensorOp1(source, to, resultType, number, flags);
                                    });
}

int32_t MNumericArray_Math_V_V(int32_t number, int32_t argumentType, const void* argument, int32_t resultType,
                               void* result, uint32_t flags) noexcept {
  return unary_value<array_values>(argumentType, argument, resultType, result,
                                   [&](const MNumericArray* source, MNumericArray* to) {
                                     return MNumericArray_Op1(source, to, number, flags);
                                   });
}

int32_t Math_VV_V(int32_t number, uint32_t flags, int32_t xType, const void* x, int32_t yType, const void* y,
                  int32_t resultType, void* result) noexcept {
  return binary_value<tensor_values>(
      xType, x, yType, y, resultType, result,
      [&](const MTensor* x_value, const MTensor* y_value, MTensor* to) {
        return PackedTensorOp2(x_value, y_value, to, resultType, number, flags);
      },
      [&](const MTensor* x_array, const MTensor* y_array, MTensor** to) {
        return Math_TT_T(number, flags, x_array, y_array, resultType, to);
      });
}

int32_t MNumericArray_Math_VV_V(int32_t number, int32_t xType, const void* x, int32_t yType, const void* y,
                                int32_t resultType, void* result, uint32_t flags) noexcept {
  return binary_value<array_values>(
      xType, x, yType, y, resultType, result,
      [&](const MNumericArray* x_value, const MNumericArray* y_value, MNumericArray* to) {
        return MNumericArray_Op2(x_value, y_value, to, number, flags);
      },
      [&](const MNumericArray* x_array, const MNumericArray* y_array, MNumericArray** to) {
        return MNumericArray_Math_TT_T(number, x_array, y_array, resultType, to, flags);
      });
}
