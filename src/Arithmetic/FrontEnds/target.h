// The target of a front end that makes its result.
#pragma once

#include <algorithm>
#include <initializer_list>
#include <utility>

#include "Arithmetic/FrontEnds/outcome.h"
#include "MNumericArray/Allocate/array_record.h"

namespace vlm::front_end {

/// Gives each of two arrays the shape, the type and the elements of the other.
inline void exchange_contents(MNumericArray* a, MNumericArray* b) {
  const int32_t type_of_a = element_type(a);
  std::swap(a->dims, b->dims);
  std::swap(a->rank, b->rank);
  std::swap(a->flattenedLength, b->flattenedLength);
  std::swap(a->data, b->data);
  applyElementType(a, element_type(b));
  applyElementType(b, type_of_a);
}

/// The array in *result, reshaped, or a new one; a record apart while the target is a source that changes its type or shape, since
/// the sources are to be read whole before it changes.
class target {
 public:
  /// keeps_real  a source in *result that is Real may stay so: its operator makes it complex if need be.
  target(std::initializer_list<const MNumericArray*> sources, int32_t type, mint rank, const mint* dims,
         MNumericArray** result, bool keeps_real = false)
      : result_(result) {
    if (std::find(sources.begin(), sources.end(), *result) != sources.end()) {
      const MNumericArray* const source = *result;
      const bool same_type =
          element_type(source) == type || (keeps_real && element_type(source) == MNumericArrayTypeReal64);
      const bool same_shape = source->rank == rank && std::equal(dims, dims + rank, source->dims);
      if (same_type && same_shape) {
        array_ = *result;
        return;
      }
      apart_ = true;
    }
    array_ = apart_ ? nullptr : *result;
    status_ = MNumericArray_allocateCommon(&array_, type, rank, dims, FailReport);
    if (!apart_) *result = array_;
  }
  target(const target&) = delete;
  target& operator=(const target&) = delete;
  ~target() {
    if (apart_ && array_ != nullptr) MNumericArray_delete(array_);
  }

  /// 0, 5 for exhausted memory, or the code of the allocation.
  int32_t status() const { return status_ == ArrayStatusNoMemory ? LibraryMemoryError : status_; }
  MNumericArray* array() const { return array_; }

  /// Ends the work: the status of the operator's outcome. A source that was to change is left alone if there was no kernel.
  int32_t finish(mint outcome) {
    if (apart_ && outcome != outcome_no_kernel) exchange_contents(*result_, array_);
    return status_of_outcome(outcome);
  }

 private:
  MNumericArray** result_;
  MNumericArray* array_ = nullptr;
  int32_t status_ = ArrayStatusOk;
  bool apart_ = false;
};

}  // namespace vlm::front_end
