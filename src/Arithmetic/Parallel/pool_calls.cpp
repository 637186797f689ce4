// ParallelThreads_For, ParallelThreads_Reduce, ParallelThreads_Iterate.
#include "Arithmetic/Parallel/piece_plan.h"
#include "Arithmetic/Parallel/pool.h"

namespace vlm::parallel {
namespace {

using body_function = void (*)(void* argument, ParallelThread* thread);
using init_function = void (*)(void* argument, ParallelThreadsEnvironment* environment);

constexpr int32_t bad_argument = 4;
constexpr uint32_t flag_as_it_is = 1;
constexpr uint32_t flag_workers_only = 2;

/// Runs work on the calling thread. A call that has not claimed the pool gets a record of its own, since
/// mainThread may be in use by the call that has, and an outer body would find its range overwritten.
void run_here(ParallelThreadsEnvironment* environment, bool claimed, ParallelThreadWork work) {
  if (claimed) {
    ParallelThread* main = environment->mainThread;
    main->osThreadId = KThreadID();
    *main->work = work;
    work.function(work.argument, main);
    return;
  }
  ParallelThread own{};
  own.environment = environment;
  own.osThreadId = KThreadID();
  own.work = &work;
  work.function(work.argument, &own);
}

/// Puts a multiple of step in place of a schedule's chunk for the length of a call.
class stepped_chunk {
 public:
  stepped_chunk(ParallelThreadsSchedule* schedule, mint step) : schedule_(schedule) {
    if (schedule_ == nullptr) return;
    chunk_ = schedule_->chunk;
    schedule_->chunk = chunk_on_step(chunk_, step);
  }
  ~stepped_chunk() {
    if (schedule_ != nullptr) schedule_->chunk = chunk_;
  }
  stepped_chunk(const stepped_chunk&) = delete;
  stepped_chunk& operator=(const stepped_chunk&) = delete;

 private:
  ParallelThreadsSchedule* schedule_;
  mint chunk_ = 0;
};

bool stays_here(const ParallelThreadsSchedule* schedule, umint steps) {
  if (schedule == nullptr) return false;
  return schedule->single != 0 || steps <= static_cast<umint>(std::max(schedule->chunk, mint{1}));
}

void deal_out(ParallelThreadsEnvironment* environment, ParallelThreadWork work,
              ParallelThreadsSchedule* schedule) {
  const stepped_chunk for_this_call(schedule, work.step);
  piece_plan plan(work.start, work.end, work.step, schedule, environment->numThreads);
  while (!plan.done()) {
    const range piece = plan.next();
    work.start = piece.start;
    work.end = piece.end;
    start_work(take_idle_worker(environment), work);
  }
  wait_for_workers(environment);
}

void one_piece_each(ParallelThreadsEnvironment* environment, ParallelThreadWork work) {
  const mint workers = environment->numThreads;
  const mint end = work.end;
  const umint size =
      even_share(span_of(work.start, end), static_cast<umint>(workers), static_cast<umint>(work.step));
  take_all_workers(environment);
  for (mint i = 0; i < workers; ++i) {
    const umint left = span_of(work.start, end);
    work.end =
        i == workers - 1 || left <= size ? end : static_cast<mint>(static_cast<umint>(work.start) + size);
    start_work(environment->workers[i], work);
    work.start = work.end;
  }
  wait_for_workers(environment);
}

int32_t run_for(const ParallelThreadWork& work, init_function init, ParallelThreadsSchedule* schedule) {
  pool_call call(entry::renew);
  ParallelThreadsEnvironment* environment = call.environment();
  if (init != nullptr) init(work.argument, environment);
  const bool claimed = call.claim();
  const umint steps = span_of(work.start, work.end) / static_cast<umint>(work.step);
  // Only a call that has the workers may look at the schedule's chunk: the one that has them may be rounding
  // it just now.
  if (!claimed || environment->numThreads == 1 || stays_here(schedule, steps)) {
    run_here(environment, claimed, work);
  } else {
    deal_out(environment, work, schedule);
  }
  return call.finish();
}

int32_t run_reduce(const ParallelThreadWork& work, init_function init) {
  pool_call call(entry::renew);
  ParallelThreadsEnvironment* environment = call.environment();
  const bool claimed = call.claim();
  const umint steps = span_of(work.start, work.end) / static_cast<umint>(work.step);
  const bool all_workers =
      claimed && environment->numThreads >= 2 && steps >= static_cast<umint>(environment->numThreads);
  // init is to prepare for the pieces that will run. A record of one worker stands for the pool where that is
  // one piece, because another thread may be reading the pool's own.
  ParallelThreadsEnvironment one_worker{};
  one_worker.numThreads = 1;
  one_worker.synchronizeLock = environment->synchronizeLock;
  one_worker.mainThread = environment->mainThread;
  if (init != nullptr) init(work.argument, all_workers ? environment : &one_worker);
  if (all_workers) {
    one_piece_each(environment, work);
  } else {
    run_here(environment, claimed, work);
  }
  return call.finish();
}

int32_t run_iterate(const ParallelThreadWork& work, uint32_t flags) {
  pool_call call((flags & flag_as_it_is) != 0 ? entry::as_it_is : entry::renew);
  ParallelThreadsEnvironment* environment = call.environment();
  if (environment == nullptr) return bad_argument;
  if (!call.claim()) return 0;
  if (environment->numThreads == 1) {
    if ((flags & flag_workers_only) == 0) run_here(environment, true, work);
    return 0;
  }
  take_all_workers(environment);
  for (mint i = 0; i < environment->numThreads; ++i) start_work(environment->workers[i], work);
  wait_for_workers(environment);
  return call.finish();
}

}  // namespace
}  // namespace vlm::parallel

int32_t ParallelThreads_For(void* argument, void (*init)(void*, ParallelThreadsEnvironment*),
                            void (*body)(void*, ParallelThread*), mint start, mint end, mint step,
                            ParallelThreadsSchedule* schedule) noexcept {
  if (end <= start) return 0;
  if (step < 1 || body == nullptr) return vlm::parallel::bad_argument;
  return vlm::parallel::run_for({start, end, step, body, argument}, init, schedule);
}

int32_t ParallelThreads_Reduce(void* argument, void (*init)(void*, ParallelThreadsEnvironment*),
                               void (*body)(void*, ParallelThread*), mint start, mint end,
                               mint step) noexcept {
  if (end <= start) return 0;
  if (step < 1 || body == nullptr) return vlm::parallel::bad_argument;
  return vlm::parallel::run_reduce({start, end, step, body, argument}, init);
}

int32_t ParallelThreads_Iterate(void* argument, void (*function)(void*, ParallelThread*),
                                uint32_t flags) noexcept {
  if (function == nullptr) return vlm::parallel::bad_argument;
  return vlm::parallel::run_iterate({0, 0, 1, function, argument}, flags);
}
