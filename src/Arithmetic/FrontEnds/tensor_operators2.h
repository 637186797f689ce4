// The operators of two tensors.
#pragma once

#include "Arithmetic/FrontEnds/outcome.h"

namespace vlm::front_end {

/// Whether the operator of these tensor types promotes.
bool operator_promotes(int32_t x_type, int32_t y_type, int32_t result_type);

/// The operator of these tensor types, on tensors that are not null. Outcomes are those of PackedTensorOp2.
mint apply_operator(int32_t x_type, int32_t y_type, int32_t result_type, const MTensor* x, const MTensor* y,
                    MTensor* result, int32_t number, uint32_t flags);

}  // namespace vlm::front_end
