#include "Arithmetic/FrontEnds/promotion.h"

#include <cstring>

#include "Arithmetic/FrontEnds/target.h"
#include "velorim/conversion.h"

namespace vlm::front_end {
namespace {

/// Elements that the real row is tried on at a time, at most.
constexpr mint longest_run = 512;

/// An element that a row wrote, as a complex number.
mcomplex to_complex(const void* element, int32_t type) {
  mcomplex z = {0, 0};
  if (type == MNumericArrayTypeComplexReal64) {
    std::memcpy(&z, element, sizeof z);
  } else if (type == MNumericArrayTypeInteger64) {
    mint i;
    std::memcpy(&i, element, sizeof i);
    z.re = static_cast<double>(i);
  } else {
    std::memcpy(&z.re, element, sizeof z.re);
  }
  return z;
}

/// The first count elements that the real row wrote into a Real array, as numbers of that type.
void store_as_reals(MTensor* array, int32_t written_type, mint count) {
  if (written_type != MNumericArrayTypeInteger64) return;
  auto* const elements = static_cast<double*>(array->data);
  for (mint i = 0; i < count; ++i) elements[i] = to_complex(elements + i, written_type).re;
}

/// Computes the elements from start on, in runs that are as long as the real row keeps succeeding on. types is what the elements
/// before are.
mint fill(const promoting_function& function, mcomplex* result, mint start, mint count, mint types) {
  const int32_t real_type = function.real_row_type(), complex_type = function.complex_row_type();
  alignas(16) double reals[longest_run];
  mint run = longest_run;
  for (mint i = start; i < count;) {
    run = std::min(run, count - i);
    if (real_type != 0 && function.real(reals, i, run) == 0) {
      for (mint k = 0; k < run; ++k) result[i + k] = to_complex(reals + k, real_type);
      types |= some_real;
      i += run;
      run = std::min(2 * run, longest_run);
    } else if (run > 1) {
      run = real_type == 0 ? 1 : run / 4 + (run < 4);
    } else {
      alignas(16) unsigned char element[sizeof(mcomplex)];
      if (!function.complex(element, i)) return i;
      const mcomplex z = to_complex(element, complex_type);
      if (z.im == 0 && function.wants_imaginary_part()) return i;
      result[i++] = z;
      types |= some_complex;
    }
  }
  return -types;
}

}  // namespace

mint promote(const promoting_function& function, mint count, MTensor* result) {
  const int32_t real_type = function.real_row_type();
  if (element_type(result) != MNumericArrayTypeReal64) {
    if (function.complex_row_type() == 0 || !has_room(result, count, MNumericArrayTypeComplexReal64))
      return outcome_no_kernel;
    return fill(function, static_cast<mcomplex*>(result->data), 0, count, 0);
  }
  if (count > result->flattenedLength) return outcome_no_kernel;
  mint done = outcome_no_kernel;
  if (real_type != 0) {
    done = function.all_real(result);
    store_as_reals(result, real_type, done == outcome_success ? count : done);
    if (done == outcome_success) return done;
  }

  // The result may be an argument, whose elements from `done` on are still to be read: it changes when all is computed.
  MTensor* promoted = MTensor_newAllocatedCommon(MTensorTypeComplex, result->rank, result->dims, FailReport);
  if (promoted == nullptr) return done;
  MTensor_coerceDataArray(promoted->data, MTensorTypeComplex, 0, 1, result->data, MTensorTypeReal, 0, 1,
                          result->flattenedLength);
  const mint start = std::max(done, mint{0});
  const mint outcome =
      function.complex_row_type() == 0
          ? outcome_no_kernel
          : fill(function, static_cast<mcomplex*>(promoted->data), start, count, start > 0 ? some_real : 0);
  exchange_contents(result, promoted);
  MTensor_delete(promoted);
  return outcome;
}

}  // namespace vlm::front_end
