// The smallest member of the unary frame: a copy of mint elements.
#include <cstring>

#include "Arithmetic/Frames/vector_parallel_omp_funs1.h"
#include "velorim/machine_functions.h"

namespace {

mint copy_run(void* result, const void* source, mint n) {
  if (result != source) std::memmove(result, source, static_cast<size_t>(n) * sizeof(mint));
  return 0;
}

constexpr vlm::vmfun1::kernel copy_kernel = {
    copy_run, copy_run, sizeof(mint), sizeof(mint), vlm::vmfun1::checking::integer, true};

}  // namespace

mint machfunc_i_copy(void* result, const void* source, mint count, const mint* increments,
                     uint32_t flags) noexcept {
  return vlm::vmfun1::vfun1_run(copy_kernel, result, source, count, increments, flags);
}
