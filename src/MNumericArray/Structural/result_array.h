// Where an operation writes its result: the array in the caller's pointer, reshaped, or a new one; and a fresh array whose content
// moves over at the end if that array is also a source.
#pragma once

#include <span>
#include <utility>

#include "MNumericArray/Allocate/array_record.h"
#include "velorim/memory.h"

namespace vlm {

/// Exchanges what two records hold: type, shape and storage. What belongs to the record stays: reference count and owner's flags.
inline void exchange_content(MNumericArray& a, MNumericArray& b) {
  constexpr uint32_t of_record = ~element_type_flags;
  const uint32_t a_flags = a.flags & of_record, b_flags = b.flags & of_record;
  std::swap(a, b);
  std::swap(a.refCount, b.refCount);
  a.flags = (a.flags & element_type_flags) | a_flags;
  b.flags = (b.flags & element_type_flags) | b_flags;
}

class result_array {
 public:
  /// For a result that must not be written while any of the sources is read.
  result_array(MNumericArray** target, std::span<const MNumericArray* const> sources) : target_(target) {
    for (const MNumericArray* source : sources)
      aliased_ = aliased_ || (source != nullptr && source == *target);
  }
  result_array(MNumericArray** target, const MNumericArray* source)
      : result_array(target, std::span<const MNumericArray* const>(&source, 1)) {}
  ~result_array() { MNumericArray_delete(fresh_); }
  result_array(const result_array&) = delete;
  result_array& operator=(const result_array&) = delete;

  /// 0, or the status of the allocation, with the caller's pointer and array as they were.
  int32_t allocate(int32_t type, mint rank, const mint* dims) {
    MNumericArray** const place = aliased_ ? &fresh_ : target_;
    return MNumericArray_allocateCommon(place, type, rank, dims, FailReport);
  }
  MNumericArray* get() const { return aliased_ ? fresh_ : *target_; }
  /// Puts a finished result into the caller's array.
  int32_t commit() {
    if (aliased_) exchange_content(**target_, *fresh_);
    return ArrayStatusOk;
  }

 private:
  MNumericArray** target_;
  MNumericArray* fresh_ = nullptr;
  bool aliased_ = false;
};

inline bool has_element_type(const MNumericArray* array) {
  return array->elementType >= 1 && array->elementType <= 13;
}

/// Bytes of an element, 0 without a type.
inline mint element_bytes_of(const MNumericArray* array) {
  return static_cast<mint>(element_bytes(static_cast<int32_t>(array->elementType)));
}

}  // namespace vlm
