#include "Arithmetic/Parallel/settings.h"

#include <omp.h>

#include <algorithm>
#include <limits>

#include "Arithmetic/Parallel/pool.h"
#include "Runtime/hooks.h"
#include "Runtime/processor_count.h"

namespace vlm::parallel {

constinit settings_record settings;

namespace {

constexpr auto relaxed = std::memory_order_relaxed;

int32_t store_thread_number(mint n) {
  constexpr mint least = std::numeric_limits<int32_t>::min();
  constexpr mint most = std::numeric_limits<int32_t>::max();
  const auto number = static_cast<int32_t>(std::clamp(n, least, most));
  omp_set_num_threads(std::max(number, int32_t{1}));
  return settings.thread_number.exchange(number, relaxed);
}

void reset_settings() {
  ListableCompileEvaluatingThreaded = 0;
  settings.processor_count.store(1, relaxed);
  settings.hyper_thread_count.store(1, relaxed);
  settings.thread_number.store(1, relaxed);
  for (int32_t i = 0; i < family_count; ++i) {
    settings.lengths[i].chunk.store(default_lengths[i].chunk, relaxed);
    settings.lengths[i].threshold.store(default_lengths[i].threshold, relaxed);
  }
  for (std::atomic<mint>& threshold : settings.vendor) threshold.store(INT64_MAX, relaxed);
}

void read_processor_counts() {
  const processor_counts counts = count_processors();
  settings.processor_count.store(counts.physical, relaxed);
  settings.hyper_thread_count.store(counts.logical, relaxed);
  store_thread_number(settings.sub_kernel.load(relaxed) != 0 ? 1 : counts.performance);
}

}  // namespace
}  // namespace vlm::parallel

void vlm::parallel_settings_hook(int32_t phase) {
  switch (phase) {
    case 0:
      thread_pool_free();
      parallel::reset_settings();
      break;
    case 1:
      parallel::read_processor_counts();
      parallel::register_fork_handlers();
      break;
    default:
      break;
  }
}

using vlm::parallel::settings;

int32_t ListableCompileEvaluatingThreaded = 0;

mint getProcessorCount() noexcept { return settings.processor_count.load(std::memory_order_relaxed); }
mint getHyperThreadCount() noexcept { return settings.hyper_thread_count.load(std::memory_order_relaxed); }
mint getParallelThreadNumber() noexcept { return vlm::parallel::thread_number(); }
mint setParallelThreadNumber(mint n) noexcept { return vlm::parallel::store_thread_number(n); }
void restoreParallelThreadNumber(mint n) noexcept { vlm::parallel::store_thread_number(n); }
void RTL_From_SubKernel() noexcept { settings.sub_kernel.store(1, std::memory_order_relaxed); }

mint getVectorParallelLengthThreshold(int32_t index) noexcept {
  if (index < 0 || index >= vlm::parallel::family_count) return 0;
  return settings.lengths[index].threshold.load(std::memory_order_relaxed);
}

void setVectorParallelLengthThreshold(int32_t index, mint value) noexcept {
  if (index < 0 || index >= vlm::parallel::family_count) return;
  const mint threshold = std::max(value, mint{2});
  settings.lengths[index].threshold.store(threshold, std::memory_order_relaxed);
  settings.lengths[index].chunk.store(threshold >> 1, std::memory_order_relaxed);
}

mint getVectorVendorLengthThreshold(int32_t index) noexcept {
  if (index < 0 || index >= vlm::parallel::vendor_count) return 0;
  return settings.vendor[index].load(std::memory_order_relaxed);
}

void setVectorVendorLengthThreshold(int32_t index, mint value) noexcept {
  if (index < 0 || index >= vlm::parallel::vendor_count) return;
  settings.vendor[index].store(std::max(value, mint{1}), std::memory_order_relaxed);
}
