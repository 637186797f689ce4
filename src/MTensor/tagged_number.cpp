// Numbers that carry their tensor type, and their widening in place.
#include "velorim/array.h"

namespace {

void integer_to_real(IDCNum* number) {
  number->value.real = static_cast<mreal>(number->value.integer);
  number->tag = MTensorTypeReal;
}

void real_to_complex(IDCNum* number) {
  number->value.complex = {number->value.real, 0.0};
  number->tag = MTensorTypeComplex;
}

}  // namespace

int32_t IDCNumToType(IDCNum* number, int32_t target) VLM_NOEXCEPT {
  if (number->tag == target) return 0;
  if (target != MTensorTypeReal && target != MTensorTypeComplex) return 1;
  if (target == MTensorTypeReal && number->tag == MTensorTypeComplex) return 1;
  if (number->tag == MTensorTypeInteger) integer_to_real(number);
  if (target == MTensorTypeComplex && number->tag == MTensorTypeReal) real_to_complex(number);
  return 0;
}
