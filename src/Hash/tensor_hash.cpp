// The hash of a tensor, level by level.
#include <algorithm>

#include "Hash/hash_rules.h"
#include "velorim/array.h"
#include "velorim/hash.h"

namespace {

using namespace vlm;

/// `element(position)` is the hash of the element there.
template <class Element> class level_hash {
 public:
  level_hash(const MTensor* tensor, uint64_t seed, Element element)
      : tensor_(tensor), seed_(seed), element_(element) {}

  uint64_t run() { return tensor_->rank == 0 ? hash::combine(seed_, element_(0)) : level(0); }

 private:
  uint64_t level(mint depth) {
    const mint d = tensor_->dims[depth];
    uint64_t h = hash::combine(seed_, static_cast<uint64_t>(d));
    const bool last = depth + 1 == tensor_->rank;
    const auto add = [&](mint count) {
      for (mint i = 0; i < count; ++i) h = hash::combine(h, last ? element_(position_++) : level(depth + 1));
    };
    if (d / 2 <= HashArrayLengthThreshold) {
      add(d);
      return h;
    }
    // Only the ends of a long level count; what lies between them is passed over.
    const mint ends = std::max<mint>(HashArrayLengthThreshold, 0);
    mint below = 1;
    for (mint i = depth + 1; i < tensor_->rank; ++i) below *= tensor_->dims[i];
    add(ends);
    position_ += (d - 2 * ends) * below;
    add(ends);
    return h;
  }

  const MTensor* tensor_;
  uint64_t seed_;
  Element element_;
  mint position_ = 0;
};

template <class Element> uint64_t hash_levels(const MTensor* tensor, uint64_t seed, Element element) {
  return level_hash<Element>(tensor, seed, element).run();
}

}  // namespace

uint64_t MTensor_hash(const MTensor* tensor, uint64_t seed, mreal tolerance) VLM_NOEXCEPT {
  if (tensor == nullptr || (tensor->flattenedLength != 0 && tensor->data == nullptr)) return 0;
  const int32_t bits = hash::kept_bits(tolerance);
  switch (tensor->elementType) {
    case MNumericArrayTypeInteger64: {
      const auto* const x = static_cast<const mint*>(tensor->data);
      return hash_levels(tensor, seed, [x](mint i) { return hash::of_integer(x[i]); });
    }
    case MNumericArrayTypeReal64: {
      const auto* const x = static_cast<const mreal*>(tensor->data);
      return hash_levels(tensor, seed, [x, bits](mint i) { return hash::of_real(x[i], bits); });
    }
    case MNumericArrayTypeComplexReal64: {
      const auto* const z = static_cast<const mcomplex*>(tensor->data);
      return hash_levels(tensor, seed,
                         [z, bits](mint i) { return hash::of_complex(z[i].re, z[i].im, bits); });
    }
    default:
      return 0;
  }
}
