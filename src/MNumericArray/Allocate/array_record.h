// What the rest of the library needs of the array record: element counts and byte sizes with their checks, the alignment rule,
// the step that gives a record its storage, and the invariants of a record as code.
#pragma once

#include <cstdint>
#include <limits>

#include "Includes/element_types.h"
#include "velorim/array.h"

namespace vlm {

/// What NumberOfElementsCommon gives instead of a count: its only sign of failure.
inline constexpr mint element_count_failed = std::numeric_limits<mint>::max();

/// `precision` of a record whose element type is integer or none. That of the other types is MachinePrecision.
inline constexpr double integer_precision = 9007199254740992.0;

/// The bits of `flags` that belong to the element type.
inline constexpr uint32_t element_type_flags = ArrayFlagNumeric | ArrayFlagComplex;

/// The `aligned` argument of zalloc for elements of a type: integer types live at multiples of 8, all others of 16.
constexpr int32_t data_is_aligned16(int32_t type) { return type >= 1 && type <= 8 ? 0 : 1; }
constexpr uint64_t data_alignment(int32_t type) { return data_is_aligned16(type) ? 16 : 8; }
inline bool is_aligned_for(const void* data, int32_t type) {
  return reinterpret_cast<uintptr_t>(data) % data_alignment(type) == 0;
}

/// Bytes of `count` elements (count not negative); false if they do not fit 64 bits. A type without elements has 0 bytes.
inline bool data_bytes(mint count, int32_t type, uint64_t& bytes) {
  return !__builtin_mul_overflow(static_cast<uint64_t>(count), static_cast<uint64_t>(element_bytes(type)),
                                 &bytes);
}

/// The product of the dimensions, multiplied from the first to the last; element_count_failed if one of them is negative or
/// a product overflows. Dimensions behind a zero are still looked at.
mint checked_element_count(mint rank, const mint* dims);

/// Bytes of the elements of an array.
inline uint64_t array_bytes(const MNumericArray* array) {
  return static_cast<uint64_t>(array->flattenedLength) *
         element_bytes(static_cast<int32_t>(array->elementType));
}

/// Stores the element type with the tensorType, flags and precision that go with it. A code outside 0 to 13 clears tensorType
/// and the type's flags and leaves precision alone.
void applyElementType(MNumericArray* array, int32_t type);

/// Gives a record storage for `count` elements of the type, resizing what it has, and applies the type; without elements the
/// storage is freed. Returns 0 or 403, where the record is unchanged; under FailFatal a size beyond 64 bits ends the process.
int32_t reallocateArrayData(MNumericArray* array, int32_t type, mint count, int32_t failMode);

/// checked_element_count as a status: 0, or 403 for a count that no record can have, where FailFatal ends the process.
int32_t count_elements(mint rank, const mint* dims, int32_t failMode, mint& count);

/// The status of a storage whose size 64 bits cannot hold, after the limit test that zalloc makes for a size of all ones.
int32_t report_size_overflow();

/// Whether a record is what its fields say: dims there exactly at a positive rank and not negative, flattenedLength their
/// product (or 0 in a record that was never shaped), data there exactly if there are elements and aligned for the type,
/// and tensorType, flags and precision those of the element type.
bool array_is_valid(const MNumericArray* array);

}  // namespace vlm
