// Start and stop of the library: what happens in which order, and nothing of how. The work is done by the hooks and steps of
// the subsystems.
#include "Runtime/hooks.h"
#include "Runtime/os_thread.h"
#include "velorim/runtime.h"

namespace vlm {
namespace {

/// The subsystems in the order in which every phase calls them. A null hook keeps the place of a subsystem that has none.
struct subsystem {
  const char* name;
  void (*hook)(int32_t phase);
};
constexpr subsystem subsystems[] = {
    {"memory", memory_hook},  // first, because every phase 1 after it allocates
    {"hash settings", hash_settings_hook},
    {"function-call registry", nullptr},
    {"array names and shared scalars", array_names_hook},
    {"sparse settings", nullptr},
    {"tensor hash seeds",
     tensor_hash_hook},  // after the hash settings, whose default hash they are made with
    {"random numbers", nullptr},
    {"parallel settings", parallel_settings_hook},
    {"eternal tensor", eternal_tensor_hook},
    {"abort state", abort_state_hook},
};
constexpr int32_t phase_count = 5;

/// One step down. A null step keeps the place of a subsystem that has nothing to take down.
struct tear_down_step {
  const char* what;
  void (*run)();
};
constexpr tear_down_step partial_steps[] = {
    {"name-to-code maps", array_names_free},
    {"key of the shared rank-0 arrays", shared_rank0_key_delete},
    {"thread pool", thread_pool_free},
};
constexpr tear_down_step full_steps[] = {
    {"shared callback tables", nullptr},
    {"what the calling thread holds", run_thread_stop_hooks},
    {"random keys and generator methods", nullptr},
    // Once more the allocator's hook, the first one registered: the step before may have allocated.
    {"heap of the calling thread", [] { call_thread_stop_hook(1); }},
    {"thread hook lists", free_thread_hook_lists},
    {"memory check", memory_check_forget},
    {"allocator", memory_tear_down},
};

template <size_t N> void run_steps(const tear_down_step (&steps)[N]) {
  for (const tear_down_step& step : steps) {
    if (step.run != nullptr) step.run();
  }
}

}  // namespace
}  // namespace vlm

void InitRuntimeLibrary(int32_t phase) noexcept {
  for (const vlm::subsystem& each : vlm::subsystems) {
    if (each.hook != nullptr) each.hook(phase);
  }
}

void InitializeRuntimeLibrary() noexcept {
  for (int32_t phase = 0; phase < vlm::phase_count; ++phase) InitRuntimeLibrary(phase);
}

void VelorimRTL_initialize() noexcept { InitializeRuntimeLibrary(); }

void DeinitializeRuntimeLibrary(int32_t full) noexcept {
  vlm::run_steps(vlm::partial_steps);
  if (full != 0) vlm::run_steps(vlm::full_steps);
}

ParallelThreadsEnvironment* ReinitializeRuntimeLibrary() noexcept {
  vlm::array_names_build();
  vlm::shared_rank0_key_create();
  return vlm::thread_pool_create();
}
