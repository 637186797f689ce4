// Names of element types and conversion methods, both ways. Two vocabularies name element types: that of arrays and the older
// one of raw arrays; most names belong to both.
#include <algorithm>
#include <iterator>
#include <string_view>

#include "Includes/element_types.h"
#include "MNumericArray/Allocate/name_map.h"
#include "Runtime/hooks.h"
#include "velorim/array.h"

namespace vlm {
namespace {

enum vocabulary : uint8_t { array_names = 1, raw_names = 2, both = array_names | raw_names };

struct type_name {
  int32_t code;
  std::string_view name;
  vocabulary used_by = both;
};

/// In the order of the codes. The first raw-array name of a code is the one that MRawArrayTypeString gives.
// clang-format off
constexpr type_name type_names[] = {
    {1, "Integer8"}, {1, "SignedInteger8"}, {1, "signed char"},
    {2, "UnsignedInteger8"}, {2, "Byte"}, {2, "Character8"}, {2, "char"}, {2, "unsigned char"}, {2, "UBIT8"},
    {3, "Integer16"}, {3, "SignedInteger16"}, {3, "signed short"},
    {4, "UnsignedInteger16"}, {4, "Bit16"}, {4, "Character16"}, {4, "Short"}, {4, "short"}, {4, "unsigned short"}, {4, "UBIT16"},
    {5, "Integer32"}, {5, "SignedInteger32"}, {5, "Integer", raw_names}, {5, "int"},
    {6, "UnsignedInteger32"}, {6, "Character32"},
    {7, "Integer64"}, {7, "SignedInteger64"}, {7, "MachineInteger", array_names},
    {8, "UnsignedInteger64"}, {8, "Character64"}, {8, "UnsignedMachineInteger", array_names},
    {9, "Real32"}, {9, "Float"}, {9, "float"},
    {10, "Real64"}, {10, "Real", raw_names}, {10, "Double"}, {10, "double"}, {10, "MachineReal", array_names},
    {11, "Complex64"}, {11, "ComplexReal32"}, {11, "complexreal32"},
    {12, "Complex128"}, {12, "ComplexReal64"}, {12, "complexreal64"}, {12, "Complex", raw_names},
    {12, "mcomplex", raw_names}, {12, "MachineComplexReal", array_names},
    {13, "Real16", array_names}, {13, "Half", array_names}, {13, "half", array_names},
};
// clang-format on

constexpr named_code method_names[] = {
    {"Check", MNumericArrayConvertCheck},   {"ClipAndCheck", MNumericArrayConvertClipAndCheck},
    {"Coerce", MNumericArrayConvertCoerce}, {"ClipAndCoerce", MNumericArrayConvertClipAndCoerce},
    {"Round", MNumericArrayConvertRound},   {"ClipAndRound", MNumericArrayConvertClipAndRound},
    {"Scale", MNumericArrayConvertScale},   {"ClipAndScale", MNumericArrayConvertClipAndScale},
    {"Cast", MNumericArrayConvertCast},     {"ClipAndCast", MNumericArrayConvertClipAndCast},
};

constexpr bool every_type_answers_to_its_own_name() {
  bool all = true;
#define VELORIM_ELEMENT_TYPE(CODE, NAME, TYPE, CLASS, BYTES, DIGITS, TENSOR)                         \
  {                                                                                                  \
    bool found = false;                                                                              \
    for (const type_name& entry : type_names) {                                                      \
      found = found || (entry.code == CODE && entry.name == #NAME && (entry.used_by & array_names)); \
    }                                                                                                \
    all = all && found;                                                                              \
  }
#include "Includes/element_types.def"
#undef VELORIM_ELEMENT_TYPE
  return all;
}
static_assert(every_type_answers_to_its_own_name());

name_map element_types_by_name;
name_map methods_by_name;

/// The name of the first entry with the code that `belongs` accepts, or null.
template <class Entry, size_t N, class Predicate>
const char* first_name(const Entry (&entries)[N], int32_t code, Predicate belongs) {
  const auto found =
      std::ranges::find_if(entries, [&](const Entry& e) { return e.code == code && belongs(e); });
  return found != std::end(entries) ? found->name.data() : nullptr;
}

constexpr auto is_raw_name = [](const type_name& entry) { return (entry.used_by & raw_names) != 0; };
constexpr auto is_array_name = [](const type_name& entry) { return (entry.used_by & array_names) != 0; };
constexpr auto is_any = [](const named_code&) { return true; };

}  // namespace

void array_names_build() {
  element_types_by_name.build(type_names, is_array_name);
  methods_by_name.build(method_names, is_any);
}

void array_names_free() {
  element_types_by_name.free();
  methods_by_name.free();
}

void array_names_hook(int32_t phase) {
  if (phase == 0) {
    element_types_by_name.forget();
    methods_by_name.forget();
  } else if (phase == 1) {
    array_names_build();
    shared_rank0_key_create();
  }
}

}  // namespace vlm

int32_t MNumericArrayType_fromString(const char* name) VLM_NOEXCEPT {
  return vlm::element_types_by_name.find(name);
}

int32_t MNumericArrayConvertMethod_fromString(const char* name) VLM_NOEXCEPT {
  return vlm::methods_by_name.find(name);
}

int32_t MRawArrayType_fromString(const char* name) VLM_NOEXCEPT {
  if (name == nullptr) return 0;
  const auto found = std::ranges::find_if(
      vlm::type_names, [name](const auto& entry) { return vlm::is_raw_name(entry) && entry.name == name; });
  return found != std::end(vlm::type_names) ? found->code : 0;
}

const char* MRawArrayTypeString(int32_t code) VLM_NOEXCEPT {
  return vlm::first_name(vlm::type_names, code, vlm::is_raw_name);
}

const char* MNumericArrayTypeString(int32_t code) VLM_NOEXCEPT {
  const char* name = nullptr;
  vlm::with_element_type(code, [&name]<class T>() { name = vlm::element_of<T>::name; });
  return name;
}

const char* MNumericArrayConvertMethodString(int32_t code) VLM_NOEXCEPT {
  return vlm::first_name(vlm::method_names, code, vlm::is_any);
}
