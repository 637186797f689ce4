#include "Arithmetic/Parallel/pool_environment.h"

#include <cstdlib>
#include <new>

#include "velorim/memory.h"

namespace vlm::parallel {
namespace {

void finish(ParallelThread* worker, bool becomes_idle) {
  ParallelThreadsEnvironment* environment = worker->environment;
  scoped_lock done(environment->doneLock);
  if (becomes_idle) {
    worker->next = environment->idle;
    environment->idle = worker;
  }
  --environment->active;
  KConditionSignal(environment->doneCondition);
}

bool wait_for_order(ParallelThread* worker) {
  scoped_lock own(worker->lock);
  while (worker->go == 0) KConditionWait(worker->wake, worker->lock);
  worker->go = 0;
  return worker->keepRunning != 0;
}

void worker_loop(void* argument) {
  auto* worker = static_cast<ParallelThread*>(argument);
  worker->osThreadId = KThreadID();
  finish(worker, true);
  while (wait_for_order(worker)) {
    worker->work->function(worker->work->argument, worker);
    finish(worker, true);
  }
}

void give_order(ParallelThread* worker, bool keep_running) {
  scoped_lock own(worker->lock);
  if (!keep_running) worker->keepRunning = 0;
  worker->go = 1;
  KConditionSignal(worker->wake);
}

template <class Record> Record* new_record() {
  void* memory = std::malloc(sizeof(Record));
  return memory == nullptr ? nullptr : new (memory) Record{};
}

void delete_thread_record(ParallelThread* record) {
  if (record == nullptr) return;
  if (record->lock != nullptr) Delete_KMutex(record->lock);
  if (record->wake != nullptr) Delete_KCondition(record->wake);
  Delete_KThread(record->thread);
  std::free(record->work);
  std::free(record);
}

ParallelThread* new_thread_record(ParallelThreadsEnvironment* environment, mint id) {
  auto* record = new_record<ParallelThread>();
  if (record == nullptr) return nullptr;
  record->id = id;
  record->environment = environment;
  record->work = new_record<ParallelThreadWork>();
  if (record->work != nullptr) return record;
  delete_thread_record(record);
  return nullptr;
}

/// A worker on its way to the idle list, or null if the system refuses a part of it.
ParallelThread* new_worker(ParallelThreadsEnvironment* environment, mint id) {
  ParallelThread* worker = new_thread_record(environment, id);
  if (worker == nullptr) return nullptr;
  worker->keepRunning = 1;
  worker->lock = New_KMutex();
  worker->wake = New_KCondition();
  if (worker->lock != nullptr && worker->wake != nullptr) {
    {
      scoped_lock done(environment->doneLock);
      ++environment->active;
    }
    worker->thread = KThreadCreate(worker_loop, worker, KTHREAD_PRIORITY_NORMAL);
    if (worker->thread != nullptr) return worker;
    finish(worker, false);
  }
  delete_thread_record(worker);
  return nullptr;
}

void end_workers(ParallelThreadsEnvironment* environment, mint count) {
  bool all_left = true;
  for (mint i = 0; i < count; ++i) {
    give_order(environment->workers[i], false);
    all_left = KThreadWaitForExit(environment->workers[i]->thread) != 0 && all_left;
  }
  // A worker that was not seen to leave may still read its record.
  for (mint i = 0; all_left && i < count; ++i) delete_thread_record(environment->workers[i]);
  zfree(environment->workers);
  environment->workers = nullptr;
  environment->idle = nullptr;
}

void start_workers(ParallelThreadsEnvironment* environment, mint threads) {
  const auto bytes = static_cast<uint64_t>(threads) * sizeof(ParallelThread*);
  environment->workers = static_cast<ParallelThread**>(zalloc(bytes, 0, FailNull));
  if (environment->workers == nullptr) return;
  mint made = 0;
  while (made < threads && (environment->workers[made] = new_worker(environment, made)) != nullptr) ++made;
  wait_for_workers(environment);
  if (made >= 2) {
    environment->numThreads = made;
  } else {
    end_workers(environment, made);
  }
}

}  // namespace

ParallelThreadsEnvironment* new_environment(mint threads) {
  void* memory = zalloc(sizeof(ParallelThreadsEnvironment), 0, FailFatal);
  auto* environment = new (memory) ParallelThreadsEnvironment{};
  environment->busyLock = New_KMutex();
  environment->synchronizeLock = New_KMutex();
  environment->doneLock = New_KMutex();
  environment->doneCondition = New_KCondition();
  environment->mainThread = new_thread_record(environment, 0);
  if (environment->busyLock == nullptr || environment->synchronizeLock == nullptr ||
      environment->doneLock == nullptr || environment->doneCondition == nullptr ||
      environment->mainThread == nullptr) {
    nomem();
  }
  environment->numThreads = 1;
  if (threads >= 2) start_workers(environment, threads);
  return environment;
}

void delete_environment(ParallelThreadsEnvironment* environment) {
  if (environment->workers != nullptr) end_workers(environment, environment->numThreads);
  delete_thread_record(environment->mainThread);
  Delete_KMutex(environment->busyLock);
  Delete_KMutex(environment->synchronizeLock);
  Delete_KMutex(environment->doneLock);
  Delete_KCondition(environment->doneCondition);
  zfree(environment);
}

ParallelThread* take_idle_worker(ParallelThreadsEnvironment* environment) {
  scoped_lock done(environment->doneLock);
  while (environment->idle == nullptr) KConditionWait(environment->doneCondition, environment->doneLock);
  ParallelThread* worker = environment->idle;
  environment->idle = worker->next;
  ++environment->active;
  return worker;
}

void take_all_workers(ParallelThreadsEnvironment* environment) {
  scoped_lock done(environment->doneLock);
  environment->idle = nullptr;
  environment->active = environment->numThreads;
}

void start_work(ParallelThread* worker, const ParallelThreadWork& work) {
  *worker->work = work;
  give_order(worker, true);
}

void wait_for_workers(ParallelThreadsEnvironment* environment) {
  scoped_lock done(environment->doneLock);
  while (environment->active > 0) KConditionWait(environment->doneCondition, environment->doneLock);
}

}  // namespace vlm::parallel
