// The support routines of the column-major family.
#include <cstdio>

#include "velorim/blas.h"

int32_t vlb_lsame(const char* a, const char* b) VLM_NOEXCEPT {
  const auto upper = [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; };
  return upper(*a) == upper(*b);
}

int32_t vlb_xerbla(const char* routine, const mint* parameter) VLM_NOEXCEPT {
  std::printf("** On entry to %6s, parameter number %2i had an illegal value\n", routine,
              static_cast<int>(*parameter));
  return 0;
}

void r_cnjg(float* result, const float* z) VLM_NOEXCEPT {
  const float re = z[0], im = z[1];
  result[0] = re;
  result[1] = -im;
}

void d_cnjg(mcomplex* result, const mcomplex* z) VLM_NOEXCEPT { *result = {z->re, -z->im}; }

mreal d_imag(const mcomplex* z) VLM_NOEXCEPT { return z->im; }
