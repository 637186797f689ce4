// Schedules, and what bodies and callers ask of the pool's records.
#include <algorithm>
#include <new>

#include "Arithmetic/Parallel/pool.h"
#include "velorim/memory.h"

namespace {

ParallelThreadsSchedule* new_schedule(const ParallelThreadsSchedule& schedule) {
  void* memory = zalloc(sizeof(ParallelThreadsSchedule), 0, FailNull);
  return memory == nullptr ? nullptr : new (memory) ParallelThreadsSchedule(schedule);
}

}  // namespace

ParallelThreadsSchedule* New_ParallelThreadsSchedule(mint kind, mint chunk) noexcept {
  return new_schedule({kind, std::max(chunk, mint{1}), 0});
}

ParallelThreadsSchedule* New_ParallelThreadsScheduleSingle() noexcept { return new_schedule({1, 1, 1}); }

void Delete_ParallelThreadsSchedule(ParallelThreadsSchedule* schedule) noexcept { zfree(schedule); }

mint* ParallelThreadID(mint* count) noexcept {
  using namespace vlm::parallel;
  const pool_call call(entry::renew);
  const ParallelThreadsEnvironment* environment = call.environment();
  const mint workers = environment->numThreads >= 2 ? environment->numThreads : 0;
  const auto bytes = static_cast<uint64_t>(workers + 1) * sizeof(mint);
  auto* ids = static_cast<mint*>(zalloc(bytes, 0, FailNull));
  if (count != nullptr) *count = ids == nullptr ? 0 : workers + 1;
  if (ids == nullptr) return nullptr;
  ids[0] = KThreadID();
  for (mint i = 0; i < workers; ++i) ids[i + 1] = environment->workers[i]->osThreadId;
  return ids;
}

int32_t ParallelThreadsEnvironment_initializedQ() noexcept { return vlm::parallel::pool_exists() ? 1 : 0; }

mint ParallelThreadsEnvironment_numThreads(const ParallelThreadsEnvironment* environment) noexcept {
  return environment == nullptr ? 0 : environment->numThreads;
}

mint ParallelThread_RangeStart(const ParallelThread* thread) noexcept {
  return thread == nullptr ? 0 : thread->work->start;
}
mint ParallelThread_RangeEnd(const ParallelThread* thread) noexcept {
  return thread == nullptr ? 0 : thread->work->end;
}
mint ParallelThread_RangeStep(const ParallelThread* thread) noexcept {
  return thread == nullptr ? 0 : thread->work->step;
}
mint ParallelThread_ID(const ParallelThread* thread) noexcept { return thread == nullptr ? 0 : thread->id; }

void ParallelThread_synchronizeLock(ParallelThread* thread) noexcept {
  if (thread != nullptr) KMutexLock(thread->environment->synchronizeLock);
}
void ParallelThread_synchronizeUnlock(ParallelThread* thread) noexcept {
  if (thread != nullptr) KMutexUnlock(thread->environment->synchronizeLock);
}

void ParallelThread_cancel(ParallelThread* thread, int32_t code) noexcept {
  if (thread == nullptr) return;
  ParallelThreadsEnvironment* environment = thread->environment;
  vlm::parallel::scoped_lock busy(environment->busyLock);
  environment->cancelCode = code;
  std::atomic_ref(environment->canceled).store(1, std::memory_order_relaxed);
}

int32_t ParallelThread_canceledQ(const ParallelThread* thread) noexcept {
  if (thread == nullptr) return 0;
  return std::atomic_ref(thread->environment->canceled).load(std::memory_order_relaxed) != 0 ? 1 : 0;
}
