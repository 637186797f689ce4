// The exported tables of element bytes and type codes, and what a record stores beside its element type.
#include "MNumericArray/Allocate/array_record.h"
#include "velorim/floating_point.h"

#define VELORIM_BYTES(CODE, NAME, TYPE, CLASS, BYTES, DIGITS, TENSOR) BYTES,
#define VELORIM_TENSOR_TYPE(CODE, NAME, TYPE, CLASS, BYTES, DIGITS, TENSOR) TENSOR,

constexpr int64_t MNumericArray_typeSizeTable[14] = {
    0,
#define VELORIM_ELEMENT_TYPE VELORIM_BYTES
#include "Includes/element_types.def"
#undef VELORIM_ELEMENT_TYPE
};

constexpr int32_t MNumericArrayToMTensorType[14] = {
    0,
#define VELORIM_ELEMENT_TYPE VELORIM_TENSOR_TYPE
#include "Includes/element_types.def"
#undef VELORIM_ELEMENT_TYPE
};

#undef VELORIM_BYTES
#undef VELORIM_TENSOR_TYPE

constexpr int32_t MTensorToMNumericArrayType[5] = {0, vlm::element_code<mint>, vlm::element_code<mint>,
                                                   vlm::element_code<mreal>, vlm::element_code<mcomplex>};

constexpr int64_t CompilerTypeSizeTable[6] = {
    0, sizeof(int32_t), sizeof(mint), sizeof(mreal), sizeof(mcomplex), sizeof(void*)};

namespace vlm {
namespace {

constexpr bool tensor_types_map_back() {
  for (int32_t type = MTensorTypeInteger; type <= MTensorTypeComplex; ++type) {
    if (MNumericArrayToMTensorType[MTensorToMNumericArrayType[type]] != type) return false;
  }
  return true;
}

/// The list is in the order of the codes, which is what makes it a table indexed by code.
constexpr bool list_is_in_order_of_codes() {
  int32_t next = 1;
#define VELORIM_ELEMENT_TYPE(CODE, NAME, TYPE, CLASS, BYTES, DIGITS, TENSOR) \
  if (CODE != next++) return false;
#include "Includes/element_types.def"
#undef VELORIM_ELEMENT_TYPE
  return next == element_type_count + 1;
}

static_assert(tensor_types_map_back());
static_assert(list_is_in_order_of_codes());
static_assert(sizeof(void*) == 8, "compiler type 5 is a pointer of 64 bits");

constexpr uint32_t flags_of(element_class kind) {
  return kind == element_class::complex ? ArrayFlagNumeric | ArrayFlagComplex : ArrayFlagNumeric;
}

constexpr bool is_integer(element_class kind) {
  return kind == element_class::signed_integer || kind == element_class::unsigned_integer;
}

}  // namespace

void applyElementType(MNumericArray* array, int32_t type) {
  array->elementType = static_cast<uint32_t>(type);
  array->tensorType = 0;
  array->flags &= ~element_type_flags;
  if (type == 0) array->precision = integer_precision;
  with_element_type(type, [array]<class T>() {
    constexpr element_class kind = element_of<T>::kind;
    array->tensorType = static_cast<uint32_t>(element_of<T>::tensor_type);
    array->flags |= flags_of(kind);
    array->precision = is_integer(kind) ? integer_precision : MachinePrecision;
  });
}

}  // namespace vlm
