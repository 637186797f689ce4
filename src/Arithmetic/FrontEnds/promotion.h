// Promotion: real arguments and a complex result, computed in reals where that succeeds.
#pragma once

#include <algorithm>

#include "Arithmetic/FrontEnds/outcome.h"
#include "Includes/element_types.h"
#include "velorim/machine_functions.h"

namespace vlm::front_end {

/// A function that promotes, on arguments whose elements are counted along the result.
class promoting_function {
 public:
  virtual ~promoting_function() = default;
  /// What the two rows write: an element type code, 0 for a row that does not exist.
  virtual int32_t real_row_type() const = 0;
  virtual int32_t complex_row_type() const = 0;
  /// The real row over all elements, by the caller's flags: an outcome.
  virtual mint all_real(MTensor* result) const = 0;
  /// The real row on the elements from first on into bare memory, with the flags that decide between real and complex: 0 or the
  /// position of a failure.
  virtual mint real(void* to, mint first, mint length) const = 0;
  /// The complex row on one element: whether it succeeded.
  virtual bool complex(void* to, mint index) const = 0;
  /// Whether a complex value with imaginary part 0 is no cure for a real failure.
  virtual bool wants_imaginary_part() const = 0;
};

/// Applies the function to count elements; result is Real, where it stays so if it can, or Complex. An outcome.
mint promote(const promoting_function& function, mint count, MTensor* result);

}  // namespace vlm::front_end
