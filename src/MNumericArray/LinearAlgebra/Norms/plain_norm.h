// The plain norm of a strided vector of reals or complex numbers, and which lengths and orders go to the column-major routines.
#pragma once

#include "MNumericArray/LinearAlgebra/BLAS/calling_form.h"
#include "MNumericArray/LinearAlgebra/Norms/orders.h"
#include "velorim/blas.h"

namespace vlm::norms {

/// Up to this length a loop here is as fast as the call.
inline constexpr mint longest_local_loop = 32;

/// The routines of an element type. An order without one is computed here at every length.
template <class Element> struct routines {};
template <> struct routines<double> {
  static constexpr auto index_of_largest = vlb_idamax;
  static constexpr auto sum_of_magnitudes = vlb_dasum;
  static constexpr auto euclidean_norm = vlb_dnrm2;
};
template <> struct routines<float> {
  static constexpr auto index_of_largest = vlb_isamax;
  static constexpr auto sum_of_magnitudes = vlb_sasum;
  static constexpr auto euclidean_norm = vlb_snrm2;
};
template <> struct routines<mcomplex> { static constexpr auto euclidean_norm = vlb_dznrm2; };

/// The norm of order p of n elements from x on; a negative stride starts at the far end. The routines know no stride below 1.
template <class Element>
number_of_element<Element> plain_norm(mint p, mint n, const Element* x, mint stride) {
  using available = routines<Element>;
  if (n > longest_local_loop && stride >= 1) {
    if constexpr (requires { available::index_of_largest; }) {
      if (p == infinite_order)
        return magnitude_of(x[(available::index_of_largest(&n, x, &stride) - 1) * stride]);
    }
    if constexpr (requires { available::sum_of_magnitudes; }) {
      if (p == 1) return available::sum_of_magnitudes(&n, x, &stride);
    }
    if constexpr (requires { available::euclidean_norm; }) {
      if (p == 2) return available::euclidean_norm(&n, x, &stride);
    }
  }
  const mint first = blas::first_offset(n, stride);
  return norm(p, magnitudes{n, [=](mint i) { return magnitude_of(x[first + i * stride]); }});
}

/// The infinity norm of reals, which passes NaNs over, is never tested.
template <class Element>
int32_t store_plain_norm(norm_of_element<Element>* result, mint p, mint n, const Element* x, mint stride,
                         uint32_t flags) {
  const bool untested = p == infinite_order && is_real_element<Element> && !std::is_same_v<Element, real16>;
  return conclude(result, stored(plain_norm(p, n, x, stride)), untested ? 0 : flags);
}

}  // namespace vlm::norms
