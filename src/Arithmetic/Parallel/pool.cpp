#include "Arithmetic/Parallel/pool.h"

#include <pthread.h>

#include <algorithm>
#include <mutex>

#include "Runtime/hooks.h"

namespace vlm::parallel {
namespace {

/// The pool, the thread number that it was made for (it may have fewer workers), and the calls that are in
/// it.
struct {
  std::mutex lock;
  ParallelThreadsEnvironment* environment = nullptr;
  mint made_for = 0;
  mint calls = 0;
} pool;

void renew() {
  const mint wanted = std::max(thread_number(), int32_t{1});
  if (pool.environment != nullptr && pool.made_for != wanted && pool.calls == 0) {
    delete_environment(pool.environment);
    pool.environment = nullptr;
  }
  if (pool.environment == nullptr) {
    pool.environment = new_environment(wanted);
    pool.made_for = wanted;
  }
}

void clear_cancel_unless_busy() {
  scoped_lock busy(pool.environment->busyLock);
  if (pool.environment->busy != 0) return;
  std::atomic_ref(pool.environment->canceled).store(0, std::memory_order_relaxed);
  pool.environment->cancelCode = 0;
}

void before_fork() { pool.lock.lock(); }
void after_fork_in_parent() { pool.lock.unlock(); }
void after_fork_in_child() {
  pool.environment = nullptr;
  pool.calls = 0;
  settings.team_lost.store(true, std::memory_order_relaxed);
  pool.lock.unlock();
}

}  // namespace

pool_call::pool_call(entry how) {
  std::lock_guard guard(pool.lock);
  if (how == entry::renew) {
    renew();
    clear_cancel_unless_busy();
  }
  environment_ = pool.environment;
  if (environment_ != nullptr) ++pool.calls;
}

pool_call::~pool_call() {
  if (environment_ == nullptr) return;
  if (claimed_) finish();
  std::lock_guard guard(pool.lock);
  if (pool.environment == environment_) --pool.calls;  // not so in a child forked by a body
}

bool pool_call::claim() {
  scoped_lock busy(environment_->busyLock);
  claimed_ = environment_->busy == 0;
  environment_->busy = 1;
  return claimed_;
}

int32_t pool_call::finish() {
  scoped_lock busy(environment_->busyLock);
  if (claimed_) environment_->busy = 0;
  claimed_ = false;
  return environment_->canceled != 0 ? environment_->cancelCode : 0;
}

bool pool_exists() {
  std::lock_guard guard(pool.lock);
  return pool.environment != nullptr;
}

void register_fork_handlers() {
  static const int status = pthread_atfork(before_fork, after_fork_in_parent, after_fork_in_child);
  static_cast<void>(status);
}

}  // namespace vlm::parallel

void vlm::thread_pool_free() {
  using parallel::pool;
  std::lock_guard guard(pool.lock);
  if (pool.environment == nullptr || pool.calls != 0) return;  // a body cannot wait for its own worker to end
  parallel::delete_environment(pool.environment);
  pool.environment = nullptr;
}

ParallelThreadsEnvironment* vlm::thread_pool_create() {
  using parallel::pool;
  std::lock_guard guard(pool.lock);
  parallel::renew();
  return pool.environment;
}
