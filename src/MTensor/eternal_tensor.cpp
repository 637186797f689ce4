// The eternal tensor: one empty record that no deletion touches and whose reference count cannot come down to 0.
#include <limits>

#include "Runtime/hooks.h"
#include "velorim/array.h"

namespace vlm {
namespace {
MTensor* eternal_tensor = nullptr;
}

void eternal_tensor_hook(int32_t phase) {
  if (phase != 4) return;
  eternal_tensor = MTensor_new();
  eternal_tensor->flags |= ArrayFlagEternal;
  eternal_tensor->refCount = std::numeric_limits<mint>::max();
}

}  // namespace vlm

MTensor* getEternalMTensor(void) VLM_NOEXCEPT { return vlm::eternal_tensor; }
