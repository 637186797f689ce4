// Norms of vectors of reals and complex numbers: plain, weighted, scaled by tolerances; and the weights of tolerances.
#include <algorithm>

#include "MNumericArray/LinearAlgebra/Norms/plain_norm.h"
#include "velorim/norms.h"

namespace {

using namespace vlm::norms;

/// A vector argument that cannot be read: no elements where there should be some.
bool is_missing(const void* data, mint n) { return data == nullptr && n > 0; }

template <class Element>
int32_t vector_norm(mreal* result, mint p, mint n, const Element* x, mint stride, uint32_t flags) {
  if (result == nullptr || is_missing(x, n)) return ArrayStatusNullArgument;
  return store_plain_norm(result, p, n, x, stride, flags);
}

/// The tolerance that an element is measured by.
template <class Element> mreal tolerance(Element s, mreal a, mreal b) { return magnitude_of(s) * a + b; }

template <class Element>
int32_t norm_weights(mreal* weights, mint n, const Element* s, mint stride, uint32_t flags, mreal a,
                     mreal b) {
  if (is_missing(weights, n) || is_missing(s, n)) return ArrayStatusNullArgument;
  for (mint i = 0; i < n; ++i) {
    const int32_t status = conclude(&weights[i], 1 / tolerance(s[i * stride], a, b), flags);
    if (status != ArrayStatusOk) return status;
  }
  return ArrayStatusOk;
}

/// The norm, or the mean, of the terms of a weighted or scaled vector.
template <class TermAt>
int32_t store_norm_of_terms(mreal* result, mint p, mint n, int32_t mean, uint32_t flags, TermAt term_at) {
  n = std::max(n, mint{0});
  const mreal divisor = mean != 0 ? static_cast<mreal>(n) : 1;
  return conclude(result, norm(p, magnitudes{n, term_at}, divisor), flags);
}

template <class Element>
int32_t weighted_norm(mreal* result, mint n, mint p, const Element* x, mint stride, const mreal* w,
                      int32_t mean, uint32_t flags) {
  if (result == nullptr || is_missing(x, n) || is_missing(w, n)) return ArrayStatusNullArgument;
  return store_norm_of_terms(result, p, n, mean, flags,
                             [=](mint i) { return magnitude_of(x[i * stride]) * w[i]; });
}

template <class Element>
int32_t scaled_norm(mreal* result, mint p, mint n, const Element* x, mint stride, const Element* s,
                    int32_t mean, uint32_t flags, mreal a, mreal b) {
  if (result == nullptr || is_missing(x, n) || is_missing(s, n)) return ArrayStatusNullArgument;
  return store_norm_of_terms(result, p, n, mean, flags,
                             [=](mint i) { return magnitude_of(x[i * stride]) / tolerance(s[i], a, b); });
}

}  // namespace

int32_t machfunc_d_vectornorm(mreal* result, mint p, mint n, const mreal* x, mint stride,
                              uint32_t flags) VLM_NOEXCEPT {
  return vector_norm(result, p, n, x, stride, flags);
}
int32_t machfunc_c_vectornorm(mreal* result, mint p, mint n, const mcomplex* x, mint stride,
                              uint32_t flags) VLM_NOEXCEPT {
  return vector_norm(result, p, n, x, stride, flags);
}

int32_t machfunc_d_vectornormweights(mreal* weights, mint n, const mreal* s, mint stride, uint32_t flags,
                                     mreal a, mreal b) VLM_NOEXCEPT {
  return norm_weights(weights, n, s, stride, flags, a, b);
}
int32_t machfunc_c_vectornormweights(mreal* weights, mint n, const mcomplex* s, mint stride, uint32_t flags,
                                     mreal a, mreal b) VLM_NOEXCEPT {
  return norm_weights(weights, n, s, stride, flags, a, b);
}

int32_t machfunc_d_weightedvectornorm(mreal* result, mint n, mint p, const mreal* x, mint stride,
                                      const mreal* w, int32_t mean, uint32_t flags) VLM_NOEXCEPT {
  return weighted_norm(result, n, p, x, stride, w, mean, flags);
}
int32_t machfunc_c_weightedvectornorm(mreal* result, mint n, mint p, const mcomplex* x, mint stride,
                                      const mreal* w, int32_t mean, uint32_t flags) VLM_NOEXCEPT {
  return weighted_norm(result, n, p, x, stride, w, mean, flags);
}

int32_t machfunc_d_scaledvectornorm(mreal* result, mint p, mint n, const mreal* x, mint stride,
                                    const mreal* s, int32_t mean, uint32_t flags, mreal a,
                                    mreal b) VLM_NOEXCEPT {
  return scaled_norm(result, p, n, x, stride, s, mean, flags, a, b);
}
int32_t machfunc_c_scaledvectornorm(mreal* result, mint p, mint n, const mcomplex* x, mint stride,
                                    const mcomplex* s, int32_t mean, uint32_t flags, mreal a,
                                    mreal b) VLM_NOEXCEPT {
  return scaled_norm(result, p, n, x, stride, s, mean, flags, a, b);
}
