// The element core: one conversion over bare element memory, whatever the pair, the strides and the threads.
#pragma once

#include <cstdint>

#include "velorim/conversion.h"

namespace vlm::conversion {

/// Converts count elements as the record says. 0; 1300 for a null pointer, 1301 for an element type, 1304 for a method that is no
/// base method, unless the types are equal, 1305 for a refused element. A count below 1 is nothing to do.
int32_t convert_elements(void* target, int32_t target_type, const void* source, int32_t source_type,
                         mint count, const MNumericArrayConvertData& record);

/// The same for one element at the pointers: the record's offsets and strides are not looked at.
int32_t convert_element(void* target, int32_t target_type, const void* source, int32_t source_type,
                        const MNumericArrayConvertData& record);

/// A record for one of the ten methods.
MNumericArrayConvertData record_of(int32_t method);

constexpr bool is_method(int32_t method) { return method >= 1 && method <= 10; }

}  // namespace vlm::conversion
