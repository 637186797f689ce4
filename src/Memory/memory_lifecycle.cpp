// How the allocator comes up and goes down, and the end of a process that has no more memory.
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "Memory/accounting.h"
#include "Memory/block_engine.h"
#include "Runtime/hooks.h"
#include "Runtime/os_thread.h"
#include "velorim/memory.h"

namespace {

/// Physical memory in bytes; 0 if the system does not tell.
uint64_t physical_memory() {
  const long pages = sysconf(_SC_PHYS_PAGES);
  const long page_bytes = sysconf(_SC_PAGESIZE);
  return pages > 0 && page_bytes > 0 ? static_cast<uint64_t>(pages) * static_cast<uint64_t>(page_bytes) : 0;
}

void end_thread_memory() { vlm::memory::end_current_heap(); }

}  // namespace

namespace vlm {

void memory_hook(int32_t phase) {
  if (phase != 1) return;
  InitializeMemory();
  system_memory = physical_memory();
  system_allocation_limit = ~uint64_t{0};
}

void memory_tear_down() {
  memory::tear_down();
  memory::reset_process_accounts();
}

}  // namespace vlm

void InitializeMemory(void) noexcept {
  if (vlm::memory::ensure_heap_root() == nullptr) nomem();
  KThread_initStartStopFunctions();
  if (vlm::thread_stop_hook_position(end_thread_memory) == 0) vlm::add_thread_stop_hook(end_thread_memory);
}

void nomem(void) noexcept {
  vlm::memory::release_reserve();
  std::puts("");
  std::puts("No more memory available.");
  std::puts("Tarnovex kernel has shut down.");
  std::puts("Try quitting other applications and then retry.");
  KThread_Sleep(3000);
  std::exit(1);
}
