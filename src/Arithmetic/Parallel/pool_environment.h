// The pool's records: making and ending the workers, handing work to them, waiting for them.
//
// What the locks guard, and who waits on what:
//   worker->lock      keepRunning and go of one worker, which waits on worker->wake. Its work record is
//   written before go is
//                     set and read after go was seen, so the same lock orders it.
//   doneLock          active and the idle list. A worker that finishes enters the list, leaves `active` and
//   signals; only the
//                     one call that has the workers waits on doneCondition.
//   busyLock          busy and the two cancel fields.
// No two of them are held together.
#pragma once

#include "velorim/parallel.h"

namespace vlm::parallel {

class scoped_lock {
 public:
  explicit scoped_lock(KMutex* mutex) : mutex_(mutex) { KMutexLock(mutex_); }
  ~scoped_lock() { KMutexUnlock(mutex_); }
  scoped_lock(const scoped_lock&) = delete;
  scoped_lock& operator=(const scoped_lock&) = delete;

 private:
  KMutex* mutex_;
};

/// Makes a pool and returns when its workers wait for work. It has `threads` workers, or as many as the
/// system grants; none, and numThreads 1, if those are fewer than two. Without memory for the record itself
/// the process ends through nomem.
ParallelThreadsEnvironment* new_environment(mint threads);

/// Ends the workers and frees the pool. All workers are idle.
void delete_environment(ParallelThreadsEnvironment* environment);

/// Takes a worker that is idle, waiting for one if need be, and counts it as active.
ParallelThread* take_idle_worker(ParallelThreadsEnvironment* environment);

/// Takes all workers; all are idle.
void take_all_workers(ParallelThreadsEnvironment* environment);

/// Gives a piece of work to a worker that was taken.
void start_work(ParallelThread* worker, const ParallelThreadWork& work);

/// Waits until no worker is active.
void wait_for_workers(ParallelThreadsEnvironment* environment);

}  // namespace vlm::parallel
